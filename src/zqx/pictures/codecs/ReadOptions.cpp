// The default of isolated decoding.
#include "zqx/pictures/Reader.h"

#include "zqx/pictures/isolation/IsolatedDecoder.h"

namespace zqx::pictures {

void ReadOptions::isolateByDefault() {
    if (!isolate && canIsolate()) {
        isolate = true;
        requireConfinement = false;
    }
}

} // namespace zqx::pictures
