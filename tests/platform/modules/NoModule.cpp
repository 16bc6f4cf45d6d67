// A library without the entry points of a module.
#include "../Exported.h"

ZQX_TEST_EXPORT int justANumber() {
    return 42;
}
