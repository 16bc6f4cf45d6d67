#pragma once
#include <zqx/tools/BatchObserver.h>
