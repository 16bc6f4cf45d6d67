#pragma once
#include <zqx/tools/MemoryGate.h>
