// Applies patches to bytes that were read.
#include "zqx/pictures/bytes/ByteMask.h"

#include <algorithm>

namespace zqx::pictures {

void ByteMask::apply(std::uint64_t offset, std::span<char> bytes) const {
    for (const Patch& patch : mPatches) {
        const std::uint64_t begin = std::max(patch.offset, offset);
        const std::uint64_t end = std::min(patch.offset + patch.bytes.size(), offset + bytes.size());
        if (begin < end) {
            std::copy_n(patch.bytes.data() + (begin - patch.offset), end - begin, bytes.data() + (begin - offset));
        }
    }
}

} // namespace zqx::pictures
