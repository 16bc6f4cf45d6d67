#include "kernels/filters/BandBlur.h"

#include "kernels/Simd.h"

#ifndef ZQX_IMG_RING_KIB
#define ZQX_IMG_RING_KIB 640 // bench/sizes measures others
#endif

namespace zqx::img::kernels {

namespace {

/// Rings of several bands may together take this much, in floats: 60 MiB. Very wide pictures get fewer bands instead.
constexpr std::size_t FLOAT_BUDGET = std::size_t{15} << 20U;

std::size_t roundUp(std::size_t value, std::size_t multiple) {
    return (value + multiple - 1) / multiple * multiple;
}

/// A band reads 2 * radius rows beyond its own, so it should have several times as many; its seams must not overlap.
std::size_t bandCount(const BlurShape& shape, std::size_t floatsPerBand) {
    const std::size_t byHeight = shape.height / (4 * shape.radius + 8);
    const std::size_t byMemory = FLOAT_BUDGET / floatsPerBand;
    return std::max<std::size_t>(1, std::min({threadCount(), byHeight, byMemory}));
}

} // namespace

BlurShape cacheStrip(const BlurShape& picture) {
    constexpr std::size_t CACHE_SHARE = (std::size_t{ZQX_IMG_RING_KIB} << 10U) / sizeof(float);
    const std::size_t unit = RUN_LENGTH * picture.step; // whole runs, and whole pixels
    const std::size_t rows = (2 * picture.radius + BLUR_GROUP) * picture.planes;
    BlurShape strip = picture;
    if (!picture.isInPlace) {
        strip.width = std::min(picture.width, std::max<std::size_t>(1, CACHE_SHARE / rows / unit) * unit);
    }
    return strip;
}

BlurBands::BlurBands(const BlurShape& shape)
    : mShape(shape), mPlaneStride(roundUp(shape.width + WEIGHTED_SUM_EXCESS, WEIGHTED_SUM_EXCESS)),
      mRingRows(std::min(2 * shape.radius + BLUR_GROUP, shape.height)) {
    mRowsPerBand = mRingRows + (shape.isInPlace ? 2 * shape.radius : 0);
    mFloatsPerBand = roundUp(lineFloats() + WEIGHTED_SUM_EXCESS, WEIGHTED_SUM_EXCESS) + mRowsPerBand * rowFloats();
    mCount = bandCount(shape, mFloatsPerBand);
    mMemory.reset(new (VECTOR_ALIGNMENT) float[mCount * mFloatsPerBand]);
}

float* BlurBands::row(std::size_t band, std::size_t y) const {
    const std::size_t below = bandBelowSeam(band, y);
    if (below != 0) {
        return ring(below) + (mRingRows + y - seamBegin(below)) * rowFloats();
    }
    return ring(band) + y % mRingRows * rowFloats();
}

std::size_t BlurBands::bandBelowSeam(std::size_t band, std::size_t y) const {
    for (const std::size_t below : {band, band + 1}) {
        if (below < mCount && seamRows(below) > 0 && y >= seamBegin(below) && y < seamBegin(below) + seamRows(below)) {
            return below;
        }
    }
    return 0;
}

} // namespace zqx::img::kernels
