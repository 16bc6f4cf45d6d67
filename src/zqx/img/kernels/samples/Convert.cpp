// Conversion row by row: look bytes up, or read runs as the target's channels, encode them.
#include "kernels/samples/Convert.h"

#include "kernels/Rows.h"
#include "kernels/maths/LookUp.h"
#include "kernels/samples/Codec.h"
#include "kernels/samples/Samples.h"

namespace zqx::img::kernels {

namespace {

bool isPacked(const RowLayout& row) {
    return row.sourceStride == pixelByteSize(row.source) && row.targetStride == pixelByteSize(row.target);
}

/// Single bytes become floats by their table alone.
bool isLookUp(const RowLayout& row) {
    return row.target == Image::GRAY32F && pixelFormat(row.source).byteSize() == 1 && isPacked(row);
}

void lookUpRows(const RowLayout& row, const Image& source, const Image& target) {
    const ByteTable& table = linearLightTable(row.source);
    forEachRow(source.getHeight(), [&](std::size_t y) {
        lookUp(table.data(), static_cast<const std::uint8_t*>(source.getRowPtr(y)), row.width, target.getRowPtr(y));
    });
}

void convertRows(const RowLayout& row, const Image& source, const Image& target) {
    const RunReader reader(row.source, row.target);
    const EncodeRun encode = getEncoder(row.target, chooseWriting(source, target));
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

} // namespace

void convertPixels(const Image& source, const Image& target) {
    if (!isKnown(source.getFormat()) || !isKnown(target.getFormat())) {
        return;
    }
    const RowLayout row = sampleRow(source, target).value_or(pixelRow(source, target));
    isLookUp(row) ? lookUpRows(row, source, target) : convertRows(row, source, target);
}

void bringInto(const Image& source, Image& target) {
    if (source.getFormat() == target.getFormat()) {
        target.copyFrom(source);
    } else {
        convertPixels(source, target);
    }
}

} // namespace zqx::img::kernels
