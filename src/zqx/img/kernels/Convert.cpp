// Conversion row by row: read runs as the target's channels, encode them.
#include "Convert.h"

#include "Codec.h"
#include "Rows.h"
#include "Samples.h"

namespace zqx::img::kernels {

void convertPixels(const Image& source, const Image& target) {
    if (!isKnown(source.getFormat()) || !isKnown(target.getFormat())) {
        return;
    }
    const RowLayout row = sampleRow(source, target).value_or(pixelRow(source, target));
    const RunReader reader(row.source, row.target);
    const EncodeRun encode = encoderOf(row.target, writingOf(source, target));
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
