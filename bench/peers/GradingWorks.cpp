// Grading of whole pictures, against OpenColorIO and against the literal rules.
#include "peers/Work.h"

#include <array>
#include <thread>

#include <OpenColorIO/OpenColorIO.h>

#include "common/Pictures.h"
#include "common/Settings.h"
#include "peers/Literal.h"

using namespace zqx::img;
namespace ocio = OCIO_NAMESPACE;

namespace bench {

namespace {

ocio::TransformRcPtr power(double exponent) {
    const auto transform = ocio::ExponentTransform::Create();
    const double exponents[4] = {exponent, exponent, exponent, 1.0};
    transform->setValue(exponents);
    return transform;
}

ocio::TransformRcPtr exposureAndContrast(const ColorGrading& grading) {
    const auto transform = ocio::ExposureContrastTransform::Create();
    transform->setStyle(ocio::EXPOSURE_CONTRAST_LINEAR);
    transform->setExposure(static_cast<double>(grading.getExposure()));
    transform->setContrast(1.38); // tan(0.6 * pi / 2): the same slope
    transform->setPivot(0.5);
    return transform;
}

ocio::TransformRcPtr highlightsAndShadows() {
    ocio::GradingTone tone(ocio::GRADING_LIN);
    tone.m_highlights.m_master = 0.8;
    tone.m_shadows.m_master = 1.2;
    const auto transform = ocio::GradingToneTransform::Create(ocio::GRADING_LIN);
    transform->setValue(tone);
    return transform;
}

ocio::TransformRcPtr whiteBalance(const ColorGrading& grading) {
    const oracle::Matrix matrix = oracle::whiteBalanceMatrix(grading.getTemperature());
    double extended[16] = {};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            extended[4 * row + column] = static_cast<double>(matrix[3 * row + column]);
        }
    }
    extended[15] = 1.0;
    const auto transform = ocio::MatrixTransform::Create();
    transform->setMatrix(extended);
    return transform;
}

ocio::TransformRcPtr saturation(const ColorGrading& grading) {
    const auto transform = ocio::CDLTransform::Create();
    transform->setStyle(ocio::CDL_NO_CLAMP);
    transform->setSat(static_cast<double>(grading.getSaturation()));
    return transform;
}

/// The steps of the grading that the peer has, in our order: all but the gradient map. Bytes are decoded before and
/// encoded after.
ocio::ConstCPUProcessorRcPtr processor(const ColorGrading& grading, ocio::BitDepth depth) {
    const auto group = ocio::GroupTransform::Create();
    const bool encoded = depth == ocio::BIT_DEPTH_UINT8;
    if (encoded) {
        group->appendTransform(power(2.2));
    }
    group->appendTransform(exposureAndContrast(grading));
    group->appendTransform(highlightsAndShadows());
    group->appendTransform(whiteBalance(grading));
    group->appendTransform(saturation(grading));
    if (encoded) {
        group->appendTransform(power(1.0 / 2.2));
    }
    return ocio::Config::CreateRaw()->getProcessor(group)->getOptimizedCPUProcessor(depth, depth,
                                                                                    ocio::OPTIMIZATION_DEFAULT);
}

ocio::PackedImageDesc getBand(const Image& image, ocio::BitDepth depth, std::size_t first, std::size_t last) {
    return {image.getRowPtr(first),
            static_cast<long>(image.getWidth()),
            static_cast<long>(last - first),
            ocio::CHANNEL_ORDERING_RGBA,
            depth,
            ocio::AutoStride,
            static_cast<std::ptrdiff_t>(image.getBytePixelStride()),
            static_cast<std::ptrdiff_t>(image.getByteRowStride())};
}

/// The peer leaves threads to its caller: a band of rows for each.
void applyInBands(const ocio::ConstCPUProcessorRcPtr& processor, ocio::BitDepth depth, const Image& source,
                  const Image& target, std::size_t threads) {
    std::vector<std::jthread> team;
    for (std::size_t thread = 0; thread < threads; ++thread) {
        const std::size_t first = thread * source.getHeight() / threads;
        const std::size_t last = (thread + 1) * source.getHeight() / threads;
        team.emplace_back([&, first, last] {
            const ocio::PackedImageDesc from = getBand(source, depth, first, last);
            ocio::PackedImageDesc to = getBand(target, depth, first, last);
            processor->apply(from, to);
        });
    }
}

Work againstOpenColorIo(const Conditions& conditions, Image::Format format, ocio::BitDepth depth) {
    const auto source = photograph(conditions.width, conditions.height, format);
    const auto target = blankPicture(conditions.width, conditions.height, format);
    const ColorGrading grading = gradingWithoutHue();
    const auto prepared = processor(grading, depth);
    const auto threads = static_cast<std::size_t>(conditions.threads);
    return {.ours = [=] { grading.apply(*source, *target); },
            .peer = [=] { applyInBands(prepared, depth, *source, *target, threads); },
            .pixels = conditions.pixels(),
            .peerPixels = conditions.pixels(),
            .bytes = byteCount(*source) + byteCount(*target)};
}

oracle::Surface getSurface(const Image& image) {
    return {image.getFormat(),          static_cast<unsigned char*>(image.getDataPtr()),
            image.getWidth(),           image.getHeight(),
            image.getBytePixelStride(), image.getByteRowStride()};
}

void gradeLiterally(const oracle::Prepared& params, const oracle::Surface& source, const oracle::Surface& target) {
    const auto rows = static_cast<std::int64_t>(source.height);
#pragma omp parallel for schedule(static)
    for (std::int64_t row = 0; row < rows; ++row) {
        const auto y = static_cast<std::size_t>(row);
        for (std::size_t x = 0; x < source.width; ++x) {
            oracle::writeLinear(target, x, y, oracle::gradePixel(params, oracle::readLinear(source, x, y)));
        }
    }
}

Work againstLiteral(const Conditions& conditions, const ColorGrading& grading) {
    const auto source = photograph(conditions.width, conditions.height, Image::RGB32F);
    const auto target = blankPicture(conditions.width, conditions.height, Image::RGB32F);
    const oracle::Prepared params = literalParams(grading);
    return {.ours = [=] { grading.apply(*source, *target); },
            .peer = [=] { gradeLiterally(params, getSurface(*source), getSurface(*target)); },
            .pixels = conditions.pixels(),
            .peerPixels = conditions.pixels(),
            .bytes = byteCount(*source) + byteCount(*target)};
}

} // namespace

std::vector<WorkEntry> gradingWorks(const Conditions& conditions) {
    return {
        {"grade SRGBA8 to SRGBA8, all but hue", "OpenColorIO 8-bit", 3.0, 0.0,
         [=] { return againstOpenColorIo(conditions, Image::SRGBA8, ocio::BIT_DEPTH_UINT8); }},
        {"grade RGBA32F to RGBA32F, all but hue", "OpenColorIO float", 8.0, 0.0,
         [=] { return againstOpenColorIo(conditions, Image::RGBA32F, ocio::BIT_DEPTH_F32); }},
        {"grade RGB32F to RGB32F, with hue", "literal scalar code", 12.0, 0.0,
         [=] { return againstLiteral(conditions, gradingWithHue()); }},
    };
}

} // namespace bench
