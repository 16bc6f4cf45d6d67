// Who decodes a picture, where nobody said.
#include "zqx/pictures/codecs/ReadOptions.h"

#include "zqx/pictures/isolation/IsolatedDecoder.h"

namespace zqx::pictures {

void ReadOptions::isolateByDefault() {
    if (!isolate && canIsolate()) {
        isolate = true;
    }
}

} // namespace zqx::pictures
