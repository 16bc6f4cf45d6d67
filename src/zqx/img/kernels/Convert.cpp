// Conversion row by row: read runs as the target's channels, encode them.
#include "Convert.h"

#include "Codec.h"
#include "Rows.h"

namespace zqx::img::kernels {

namespace {

bool hasSameOrder(const PixelFormat& a, const PixelFormat& b) {
    return a.red == b.red && a.green == b.green && a.blue == b.blue && a.alpha == b.alpha;
}

/// Elements that are converted alike, so that a row of pixels may be taken for a longer row of single channels.
bool isUniform(const PixelFormat& format) {
    return !format.hasAlpha() || alphaEncoding(format.encoding) == format.encoding;
}

Format singleChannel(Encoding encoding) {
    switch (encoding) {
    case Encoding::LINEAR_BYTE: return Image::GRAY8;
    case Encoding::GAMMA_BYTE: return Image::SGRAY8;
    case Encoding::FLOAT: break;
    }
    return Image::GRAY32F;
}

/// A row as it is converted: pixels, or single elements of packed pixels whose channels need no rearranging.
struct Row {
    Format source;
    Format target;
    std::size_t sourceStride;
    std::size_t targetStride;
    std::size_t width;
};

Row rowOf(const Image& source, const Image& target) {
    const PixelFormat& from = pixelFormat(source.getFormat());
    const PixelFormat& to = pixelFormat(target.getFormat());
    const bool isPacked =
        source.getBytePixelStride() == from.byteSize() && target.getBytePixelStride() == to.byteSize();
    if (isPacked && hasSameOrder(from, to) && isUniform(from) && isUniform(to)) {
        return {singleChannel(from.encoding), singleChannel(to.encoding), from.elementSize(), to.elementSize(),
                source.getWidth() * from.elementCount()};
    }
    return {source.getFormat(), target.getFormat(), source.getBytePixelStride(), target.getBytePixelStride(),
            source.getWidth()};
}

} // namespace

void convertPixels(const Image& source, const Image& target) {
    if (!isKnown(source.getFormat()) || !isKnown(target.getFormat())) {
        return;
    }
    const Row row = rowOf(source, target);
    const RunReader reader(row.source, row.target);
    const EncodeRun encode = encoderOf(row.target);
    forEachRow(source.getHeight(), [&](std::size_t y) {
        const auto* from = static_cast<const std::uint8_t*>(source.getRowPtr(y));
        auto* to = static_cast<std::uint8_t*>(target.getRowPtr(y));
        Run run;
        forEachRun(row.width, [&](std::size_t first, std::size_t length) {
            const Planes planes = reader.read(from + first * row.sourceStride, row.sourceStride, length, run);
            encode(planes, length, to + first * row.targetStride, row.targetStride);
        });
    });
}

void bringInto(const Image& source, Image& target) {
    if (source.getFormat() == target.getFormat()) {
        target.copyFrom(source);
    } else {
        convertPixels(source, target);
    }
}

} // namespace zqx::img::kernels
