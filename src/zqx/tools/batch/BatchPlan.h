#pragma once
#include <zqx/tools/BatchPlan.h>
