// Row kernels of the 11 x 11 format pairs: decode a run, take grey from colour where needed, encode the run.
#include "Convert.h"

#include <cmath>

#include "Codec.h"
#include "ColorScience.h"
#include "PairTable.h"
#include "Rows.h"

namespace zqx::img::kernels {

namespace {

/// Linear grey of linear colour, in place of the red plane.
void greyOfLinearColor(Run& run, std::size_t length) {
    for (std::size_t i = 0; i < length; ++i) {
        run.r[i] = luma(run.r[i], run.g[i], run.b[i]);
    }
}

/// Linear grey of encoded colour: luma is taken of the stored values, and its power is decoded as a whole.
void greyOfEncodedColor(Run& run, std::size_t length) {
    for (std::size_t i = 0; i < length; ++i) {
        const float encoded =
            ENCODED_LUMA_RED * run.r[i] + ENCODED_LUMA_GREEN * run.g[i] + ENCODED_LUMA_BLUE * run.b[i];
        run.r[i] = std::pow(encoded, 2.2F);
    }
}

template <Format S, Format T>
struct Conversion {
    static void row(const std::uint8_t* source, std::size_t sourceStride, std::uint8_t* target,
                    std::size_t targetStride, std::size_t width) {
        constexpr PixelFormat SOURCE = pixelFormat(S);
        constexpr PixelFormat TARGET = pixelFormat(T);
        constexpr bool TAKES_GREY = TARGET.isGrey() && !SOURCE.isGrey();
        constexpr bool FROM_ENCODED = SOURCE.encoding == Encoding::GAMMA_BYTE;
        constexpr Reading READING = TAKES_GREY && FROM_ENCODED ? Reading::AS_STORED : Reading::LINEAR_LIGHT;

        Run run;
        const Planes planes = SOURCE.isGrey() ? Planes{run.r, run.r, run.r, run.a} : Planes{run.r, run.g, run.b, run.a};
        forEachRun(width, [&](std::size_t first, std::size_t length) {
            decodeRun<S, READING, TARGET.hasAlpha()>(source + first * sourceStride, sourceStride, length, run);
            if constexpr (TAKES_GREY && FROM_ENCODED) {
                greyOfEncodedColor(run, length);
            } else if constexpr (TAKES_GREY) {
                greyOfLinearColor(run, length);
            }
            encodeRun<T>(planes, length, target + first * targetStride, targetStride);
        });
    }
};

} // namespace

void convertPixels(const Image& source, const Image& target) {
    if (!isKnown(source.getFormat()) || !isKnown(target.getFormat())) {
        return;
    }
    const auto convertRow = pairKernel<Conversion>(source.getFormat(), target.getFormat());
    forEachRow(source.getHeight(), [&](std::size_t y) {
        convertRow(static_cast<const std::uint8_t*>(source.getRowPtr(y)), source.getBytePixelStride(),
                   static_cast<std::uint8_t*>(target.getRowPtr(y)), target.getBytePixelStride(), source.getWidth());
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
