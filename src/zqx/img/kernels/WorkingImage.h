// Where a filter works: in linear floats, in the output itself when that holds floats.
#pragma once

#include <memory>

#include <zqx/img/Image.h>

#include "Convert.h"
#include "PixelFormat.h"

namespace zqx::img::kernels {

inline bool haveSameSize(const Image& a, const Image& b) {
    return a.getWidth() == b.getWidth() && a.getHeight() == b.getHeight();
}

/// The linear float image that a filter changes in place: a view of a float output that has received the source, or
/// else a float copy of the source. Empty when a format is unknown.
/// @throws std::bad_alloc
inline std::shared_ptr<Image> beginWork(const Image& source, Image& output) {
    if (!output.hasFloatFormat()) {
        return source.convertToLinearFloat();
    }
    if (output.getDataPtr() != source.getDataPtr()) {
        bringInto(source, output);
    }
    return std::make_shared<Image>(output);
}

/// Brings the finished working image into an output that it is not already a view of.
inline void endWork(const Image& working, Image& output) {
    if (output.getDataPtr() != working.getDataPtr() && haveSameSize(output, working)) {
        bringInto(working, output);
    }
}

} // namespace zqx::img::kernels
