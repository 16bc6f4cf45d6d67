#pragma once
#include <zqx/tools/NameTemplate.h>
