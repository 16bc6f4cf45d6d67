#include "kernels/filters/FilterWork.h"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace zqx::img::kernels {

namespace {

Format floatChannels(Format known) {
    const PixelFormat& format = pixelFormat(known);
    return format.isGrey() ? Image::GRAY32F : format.hasAlpha() ? Image::RGBA32F : Image::RGB32F;
}

bool haveSameLayout(const Image& a, const Image& b) {
    return a.getDataPtr() == b.getDataPtr() && a.getBytePixelStride() == b.getBytePixelStride() &&
           a.getByteRowStride() == b.getByteRowStride();
}

RowLayout rowLayout(const Image& source, const Image& output, Treatment treatment) {
    const RowLayout pixels = pixelRow(source, output);
    return treatment == Treatment::OF_CHANNELS ? sampleRow(source, output).value_or(pixels) : pixels;
}

} // namespace

std::optional<FilterWork> FilterWork::between(const Image& source, const Image& output, Treatment treatment) {
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
    const bool isEntangled = shareMemory(effective, output) && !haveSameLayout(effective, output);
    return FilterWork(isEntangled ? effective.convertTo(channels) : std::make_shared<Image>(effective), output,
                      channels, treatment);
}

FilterWork::FilterWork(std::shared_ptr<Image> source, const Image& output, Format channels, Treatment treatment)
    : mSource(std::move(source)), mOutput(output), mRow(rowLayout(*mSource, output, treatment)),
      mChannels(mRow.step > 1 ? Image::GRAY32F : channels), mIsInPlace(shareMemory(*mSource, output)),
      mReader(mRow.source, mChannels), mWriter(mChannels, mRow.target, chooseWriting(*mSource, output)) {
}

void FilterWork::read(std::size_t y, std::size_t first, std::size_t length, Run& run) const {
    const auto* pixels = static_cast<const std::uint8_t*>(mSource->getRowPtr(y)) + first * mRow.sourceStride;
    const Planes planes = mReader.read(pixels, mRow.sourceStride, length, run);
    if (planes.g == run.r && !pixelFormat(mChannels).isGrey()) {
        std::copy_n(run.r, length, run.g);
        std::copy_n(run.r, length, run.b);
    }
}

void FilterWork::write(std::size_t y, std::size_t first, std::size_t length, Run& run) const {
    auto* pixels = static_cast<std::uint8_t*>(mOutput.getRowPtr(y)) + first * mRow.targetStride;
    mWriter.write(run, length, pixels, mRow.targetStride);
}

} // namespace zqx::img::kernels
