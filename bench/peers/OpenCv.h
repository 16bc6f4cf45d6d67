// The library's pictures as OpenCV sees them.
#pragma once

#include <opencv2/core.hpp>

#include <zqx/img/Image.h>

namespace bench {

/// A matrix over the image's memory. @param type for instance CV_8UC3
inline cv::Mat asMatrix(const zqx::img::Image& image, int type) {
    return {static_cast<int>(image.getHeight()), static_cast<int>(image.getWidth()), type, image.getDataPtr(),
            image.getByteRowStride()};
}

} // namespace bench
