// Who decodes a picture, where nobody said.
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
