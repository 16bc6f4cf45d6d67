// The entry point of the module. It is loaded only when a command draws, because its libraries take longer to load than
// most commands to run.
#include "drawing/module/Module.h"

#include "drawing/module/CairoCanvas.h"
#include "drawing/module/ChafaPicture.h"

#if defined(_WIN32)
#define ZQX_DRAWING_EXPORT __declspec(dllexport)
#else
#define ZQX_DRAWING_EXPORT __attribute__((visibility("default")))
#endif

extern "C" ZQX_DRAWING_EXPORT const zqx::app::drawing::Functions* ZQX_DRAWING_ENTRY() {
    static constexpr zqx::app::drawing::Functions FUNCTIONS = {zqx::app::drawing::makeCanvas,
                                                               zqx::app::drawing::encodeForTerminal};
    return &FUNCTIONS;
}
