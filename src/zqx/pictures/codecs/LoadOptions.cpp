// Who decodes a picture, where nobody said.
#include "zqx/pictures/codecs/LoadOptions.h"

#include "zqx/pictures/isolation/IsolatedDecoder.h"

namespace zqx::pictures {

void LoadOptions::isolateByDefault() {
    if (!isolate && canIsolate()) {
        isolate = true;
    }
}

} // namespace zqx::pictures
