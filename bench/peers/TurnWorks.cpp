// Quarter turns and flips, against OpenCV.
#include "peers/Work.h"

#include "common/Pictures.h"
#include "peers/OpenCv.h"

using zqx::img::Image;

namespace bench {

namespace {

enum class Mirror { LEFT_RIGHT, TOP_BOTTOM };

int matrixType(Image::Format format) {
    return format == Image::RGB32F ? CV_32FC3 : CV_8UC3;
}

/// Both allocate the picture that they return.
Work turn(const Conditions& conditions, Image::Format format) {
    const auto source = photograph(conditions.width, conditions.height, format);
    const cv::Mat from = asMatrix(*source, matrixType(format));
    return {.ours = [=] { source->rotate90(); },
            .peer =
                [=] {
                    cv::Mat to;
                    cv::rotate(from, to, cv::ROTATE_90_CLOCKWISE);
                },
            .pixels = conditions.pixels(),
            .peerPixels = conditions.pixels(),
            .bytes = 2 * byteCount(*source)};
}

/// Both in place.
Work flip(const Conditions& conditions, Image::Format format, Mirror mirror) {
    const auto picture = photograph(conditions.width, conditions.height, format);
    cv::Mat matrix = asMatrix(*picture, matrixType(format));
    const int code = mirror == Mirror::LEFT_RIGHT ? 1 : 0;
    return {.ours = [=] { mirror == Mirror::LEFT_RIGHT ? picture->flipHorizontal() : picture->flipVertical(); },
            .peer = [=]() mutable { cv::flip(matrix, matrix, code); },
            .pixels = conditions.pixels(),
            .peerPixels = conditions.pixels(),
            .bytes = 2 * byteCount(*picture)};
}

} // namespace

std::vector<WorkEntry> turnWorks(const Conditions& conditions) {
    std::vector<WorkEntry> works;
    for (const auto& [format, name] : {std::pair(Image::RGB8, "RGB8"), std::pair(Image::RGB32F, "RGB32F")}) {
        works.push_back({std::string("rotate 90 ") + name, "OpenCV rotate", 2.0, 0.0,
                         [=, format = format] { return turn(conditions, format); }});
    }
    for (const auto& [format, name] : {std::pair(Image::RGB8, "RGB8"), std::pair(Image::RGB32F, "RGB32F")}) {
        works.push_back({std::string("flip horizontally ") + name, "OpenCV flip", 1.2, 0.0,
                         [=, format = format] { return flip(conditions, format, Mirror::LEFT_RIGHT); }});
        works.push_back({std::string("flip vertically ") + name, "OpenCV flip", 1.2, 0.0,
                         [=, format = format] { return flip(conditions, format, Mirror::TOP_BOTTOM); }});
    }
    return works;
}

} // namespace bench
