// Conversion between pixel formats, against OpenCV.
#include "peers/Work.h"

#include <cmath>

#include "common/Pictures.h"
#include "peers/OpenCv.h"

using zqx::img::Image;

namespace bench {

namespace {

Work encode(const Conditions& conditions) {
    const auto source = photograph(conditions.width, conditions.height, Image::RGB32F);
    const auto target = blankPicture(conditions.width, conditions.height, Image::SRGB8);
    const cv::Mat from = asMatrix(*source, CV_32FC3);
    cv::Mat between = cv::Mat::zeros(from.size(), CV_32FC3);
    cv::Mat to = asMatrix(*target, CV_8UC3);
    return {.ours = [=] { target->convertFrom(*source); },
            .peer =
                [=]() mutable {
                    cv::pow(from, 0.45454544, between);
                    between.convertTo(to, CV_8U, 255.0);
                },
            .pixels = conditions.pixels(),
            .peerPixels = conditions.pixels(),
            .bytes = byteCount(*source) + byteCount(*target)};
}

cv::Mat decodingTable() {
    cv::Mat table(1, 256, CV_32F);
    for (int i = 0; i < 256; ++i) {
        table.at<float>(i) = static_cast<float>(std::pow(i / 255.0, 2.2));
    }
    return table;
}

Work decode(const Conditions& conditions) {
    const auto source = photograph(conditions.width, conditions.height, Image::SRGB8);
    const auto target = blankPicture(conditions.width, conditions.height, Image::RGB32F);
    const cv::Mat from = asMatrix(*source, CV_8UC3);
    const cv::Mat table = decodingTable();
    cv::Mat to = asMatrix(*target, CV_32FC3);
    return {.ours = [=] { target->convertFrom(*source); },
            .peer = [=]() mutable { cv::LUT(from, table, to); },
            .pixels = conditions.pixels(),
            .peerPixels = conditions.pixels(),
            .bytes = byteCount(*source) + byteCount(*target)};
}

} // namespace

std::vector<WorkEntry> conversionWorks(const Conditions& conditions) {
    return {
        {"convert RGB32F to SRGB8", "OpenCV pow + convertTo", 5.0, 3.0, [=] { return encode(conditions); }},
        {"convert SRGB8 to RGB32F", "OpenCV LUT", 1.0, 0.0, [=] { return decode(conditions); }},
    };
}

} // namespace bench
