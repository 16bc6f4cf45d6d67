#include "FilterWork.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace zqx::img::kernels {

namespace {

Format floatChannels(Format known) {
    const PixelFormat& format = pixelFormat(known);
    return format.isGrey() ? Image::GRAY32F : format.hasAlpha() ? Image::RGBA32F : Image::RGB32F;
}

bool shareMemory(const Image& a, const Image& b) {
    const auto begin = [](const Image& image) { return reinterpret_cast<std::uintptr_t>(image.getDataPtr()); };
    const auto end = [&](const Image& image) { return begin(image) + image.getHeight() * image.getByteRowStride(); };
    return begin(a) < end(b) && begin(b) < end(a);
}

bool haveSameLayout(const Image& a, const Image& b) {
    return a.getDataPtr() == b.getDataPtr() && a.getBytePixelStride() == b.getBytePixelStride() &&
           a.getByteRowStride() == b.getByteRowStride();
}

} // namespace

std::optional<FilterWork> FilterWork::between(const Image& source, const Image& output) {
    if (!isKnown(output.getFormat())) {
        return std::nullopt;
    }
    // A float output that begins where the source does is the source; and one whose source cannot be converted keeps
    // what it holds.
    const bool isOutputTheSource =
        output.hasFloatFormat() && (output.getDataPtr() == source.getDataPtr() || !isKnown(source.getFormat()));
    const Image& effective = isOutputTheSource ? output : source;
    if (!isKnown(effective.getFormat())) {
        return std::nullopt;
    }
    const Format channels = output.hasFloatFormat() ? output.getFormat() : floatChannels(effective.getFormat());
    if (!shareMemory(effective, output)) {
        return FilterWork(std::make_shared<Image>(effective), output, channels, false);
    }
    if (haveSameLayout(effective, output)) {
        return FilterWork(std::make_shared<Image>(effective), output, channels, true);
    }
    return FilterWork(effective.convertTo(channels), output, channels, false);
}

FilterWork::FilterWork(std::shared_ptr<Image> source, const Image& output, Format channels, bool isInPlace)
    : mSource(std::move(source)), mOutput(output), mChannels(channels), mIsInPlace(isInPlace),
      mReader(mSource->getFormat(), channels), mWriter(channels, output.getFormat()) {
}

void FilterWork::read(std::size_t y, std::size_t first, std::size_t length, Run& run) const {
    const Planes planes = mReader.read(static_cast<const std::uint8_t*>(mSource->getPixelPtr(first, y)),
                                       mSource->getBytePixelStride(), length, run);
    if (planes.g == run.r && !pixelFormat(mChannels).isGrey()) {
        std::copy_n(run.r, length, run.g);
        std::copy_n(run.r, length, run.b);
    }
}

void FilterWork::write(std::size_t y, std::size_t first, std::size_t length, Run& run) const {
    mWriter.write(run, length, static_cast<std::uint8_t*>(mOutput.getPixelPtr(first, y)), mOutput.getBytePixelStride());
}

} // namespace zqx::img::kernels
