// Blur against OpenCV and libvips, sharpening against libvips.
#include "peers/Work.h"

#include <opencv2/imgproc.hpp>

#include <zqx/img/GaussianBlur.h>
#include <zqx/img/Sharpen.h>

#include "common/Pictures.h"
#include "peers/OpenCv.h"
#include "peers/Vips.h"

using namespace zqx::img;

namespace bench {

namespace {

void blur(const Image& source, const Image& target, float sigma) {
    GaussianBlur filter;
    filter.setSigma(sigma);
    filter.setSrcImage(source);
    filter.setOutput(target);
    filter.execute();
}

void sharpen(const Image& source, const Image& target, float radius) {
    Sharpen filter;
    filter.setRadius(radius);
    filter.setStrength(1.5F);
    filter.setSrcImage(source);
    filter.setOutput(target);
    filter.execute();
}

Work blurFloats(const Conditions& conditions, float sigma) {
    const auto source = photograph(conditions.width, conditions.height, Image::RGB32F);
    const auto target = blankPicture(conditions.width, conditions.height, Image::RGB32F);
    const cv::Mat from = asMatrix(*source, CV_32FC3);
    cv::Mat to = asMatrix(*target, CV_32FC3);
    const auto sigmaOfPeer = static_cast<double>(sigma);
    const auto taps = static_cast<int>(GaussianBlur::computeKernel(sigmaOfPeer).size());
    return {.ours = [=] { blur(*source, *target, sigma); },
            .peer =
                [=]() mutable {
                    cv::GaussianBlur(from, to, {taps, taps}, sigmaOfPeer, sigmaOfPeer, cv::BORDER_REPLICATE);
                },
            .pixels = conditions.pixels(),
            .peerPixels = conditions.pixels(),
            .bytes = byteCount(*source) + byteCount(*target)};
}

Work blurBytes(const Conditions& conditions) {
    const auto source = photograph(conditions.width, conditions.height, Image::SRGB8);
    const auto target = blankPicture(conditions.width, conditions.height, Image::SRGB8);
    // The peer ends its kernel where the Gaussian falls below a tenth: at sigma 3 that leaves the 13 taps we have. It
    // blurs encoded bytes as they are, where we decode and encode.
    return {.ours = [=] { blur(*source, *target, 3.0F); },
            .peer =
                [=] {
                    vips::gaussianBlur(source->getDataPtr(), target->getDataPtr(), source->getWidth(),
                                       source->getHeight(), 3.0, 0.1);
                },
            .pixels = conditions.pixels(),
            .peerPixels = conditions.pixels(),
            .bytes = byteCount(*source) + byteCount(*target)};
}

Work sharpenBytes(const Conditions& conditions) {
    const auto source = photograph(conditions.width, conditions.height, Image::SRGB8);
    const auto target = blankPicture(conditions.width, conditions.height, Image::SRGB8);
    return {.ours = [=] { sharpen(*source, *target, 1.0F); },
            .peer =
                [=] {
                    vips::sharpen(source->getDataPtr(), target->getDataPtr(), source->getWidth(), source->getHeight(),
                                  1.0);
                },
            .pixels = conditions.pixels(),
            .peerPixels = conditions.pixels(),
            .bytes = byteCount(*source) + byteCount(*target)};
}

} // namespace

std::vector<WorkEntry> filterWorks(const Conditions& conditions) {
    return {
        {"blur RGB32F, sigma 1", "OpenCV GaussianBlur", 2.0, 0.0, [=] { return blurFloats(conditions, 1.0F); }},
        {"blur RGB32F, sigma 3", "OpenCV GaussianBlur", 2.5, 0.0, [=] { return blurFloats(conditions, 3.0F); }},
        {"blur RGB32F, sigma 6", "OpenCV GaussianBlur", 2.5, 0.0, [=] { return blurFloats(conditions, 6.0F); }},
        {"blur SRGB8 to SRGB8, sigma 3", "libvips gaussblur (float)", 5.0, 0.0, [=] { return blurBytes(conditions); }},
        {"sharpen SRGB8 to SRGB8", "libvips sharpen", 8.0, 0.0, [=] { return sharpenBytes(conditions); }},
    };
}

} // namespace bench
