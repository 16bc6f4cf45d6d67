// The module's only way in. It is loaded when a command draws: the libraries behind it take longer to load than most
// commands to run.
#include "Module.h"

#include "CairoCanvas.h"
#include "ChafaPicture.h"

#if defined(_WIN32)
#define ZQX_DRAWING_EXPORT __declspec(dllexport)
#else
#define ZQX_DRAWING_EXPORT __attribute__((visibility("default")))
#endif

extern "C" ZQX_DRAWING_EXPORT const zqx::img::app::drawing::Functions* ZQX_DRAWING_ENTRY() {
    static constexpr zqx::img::app::drawing::Functions FUNCTIONS = {zqx::img::app::drawing::makeCanvas,
                                                                    zqx::img::app::drawing::encodeForTerminal};
    return &FUNCTIONS;
}
