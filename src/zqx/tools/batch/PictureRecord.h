#pragma once
#include <zqx/tools/PictureRecord.h>
