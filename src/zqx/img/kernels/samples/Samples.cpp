#include "kernels/samples/Samples.h"

namespace zqx::img::kernels {

namespace {

bool hasSameOrder(const PixelFormat& a, const PixelFormat& b) {
    return a.red == b.red && a.green == b.green && a.blue == b.blue && a.alpha == b.alpha;
}

bool isEncodedAlike(const PixelFormat& format) {
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

bool isPacked(const Image& image) {
    return image.getBytePixelStride() == pixelByteSize(image.getFormat());
}

} // namespace

RowLayout pixelRow(const Image& source, const Image& target) {
    return {source.getFormat(),          target.getFormat(), source.getBytePixelStride(),
            target.getBytePixelStride(), source.getWidth(),  1};
}

std::optional<RowLayout> sampleRow(const Image& source, const Image& target) {
    const PixelFormat& from = pixelFormat(source.getFormat());
    const PixelFormat& to = pixelFormat(target.getFormat());
    if (!isPacked(source) || !isPacked(target) || !hasSameOrder(from, to) || !isEncodedAlike(from) ||
        !isEncodedAlike(to)) {
        return std::nullopt;
    }
    const std::size_t count = from.elementCount();
    return RowLayout{singleChannel(from.encoding), singleChannel(to.encoding),
                     from.elementSize(),           to.elementSize(),
                     source.getWidth() * count,    count};
}

} // namespace zqx::img::kernels
