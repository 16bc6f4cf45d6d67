#pragma once
#include <zqx/tools/InputList.h>
