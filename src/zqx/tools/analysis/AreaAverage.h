#pragma once
#include <zqx/tools/Resize.h>
