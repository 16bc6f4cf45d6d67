#pragma once
#include <zqx/tools/Histogram.h>
