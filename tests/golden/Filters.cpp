// Blur and sharpening between all formats and in place, and the taps of the blur.
#include <zqx/img/GaussianBlur.h>
#include <zqx/img/Sharpen.h>

#include "golden/Pictures.h"
#include "golden/Record.h"

namespace golden {

namespace {

using zqx::img::GaussianBlur;
using zqx::img::Sharpen;

/// Tall enough for several bands of rows, and wider than a run.
constexpr Layout SIZES[] = {{1, 1}, {1, 9}, {11, 1}, {7, 5}, {67, 13}, {19, 90}, {513, 3}};
constexpr Layout FEW_SIZES[] = {{7, 5}, {67, 13}};

constexpr Image::Format FORMATS[] = {Image::GRAY32F, Image::RGB32F, Image::RGBA32F,
                                     Image::SGRAY8,  Image::SRGB8,  Image::RGBA8};

/// A float output's rows follow each other without gaps; all others may have them.
Layout outputLayout(const Layout& layout, Image::Format format) {
    return {layout.width, layout.height, oracle::facts(format).isFloat ? 0U : 5U};
}

template <typename Filter>
void run(Filter filter, const Image& source, const Image& output) {
    filter.setSrcImage(source);
    filter.setOutput(output);
    filter.execute();
}

template <typename Filter>
void recordBetween(Record& record, const std::string& name, const Filter& filter, Image::Format from, Image::Format to,
                   std::span<const Layout> sizes) {
    record.keep(name + "/" + test::getName(from) + "-" + test::getName(to), [&](auto add) {
        for (const Layout& size : sizes) {
            for (const Content content : CONTENTS) {
                Picture source({size.width, size.height, 7}, from, content, size.width);
                Picture output(outputLayout(size, to), to);
                run(filter, source.image(), output.image());
                add(output.bytes(NanBits::CANONICAL));
            }
        }
    });
}

template <typename Filter>
void recordInPlace(Record& record, const std::string& name, const Filter& filter, Image::Format format) {
    record.keep(name + "/" + test::getName(format) + "-in-place", [&](auto add) {
        for (const Layout& size : SIZES) {
            Picture picture(outputLayout(size, format), format, Content::SHADED, size.width);
            run(filter, picture.image(), picture.image());
            add(picture.bytes(NanBits::CANONICAL));
        }
    });
}

/// One filter between all formats.
template <typename Filter>
void recordAllPairs(Record& record, const std::string& name, const Filter& filter) {
    test::forAllPairs(
        [&](Image::Format from, Image::Format to) { recordBetween(record, name, filter, from, to, FEW_SIZES); });
}

/// One filter over all sizes, in some formats.
template <typename Filter>
void recordAllSizes(Record& record, const std::string& name, const Filter& filter) {
    for (const Image::Format format : FORMATS) {
        recordBetween(record, name + "/sizes", filter, format, format, SIZES);
        recordInPlace(record, name, filter, format);
    }
}

GaussianBlur getBlur(const char* sigma) {
    GaussianBlur blur;
    blur.setSigma(std::stof(sigma));
    return blur;
}

Sharpen getSharpen(float radius, float strength, float threshold) {
    Sharpen sharpen;
    sharpen.setRadius(radius);
    sharpen.setStrength(strength);
    sharpen.setThreshold(threshold);
    return sharpen;
}

/// Radii 1 to 499, from where Simpson's rule has many samples to where it has three.
constexpr const char* SIGMAS[] = {"0.05", "0.3", "0.4", "0.5",  "0.7",  "1",     "1.25", "1.5",
                                  "2",    "3",   "6",   "12.3", "24.5", "40.25", "99.9", "249.5"};

} // namespace

void recordBlurs(Record& record) {
    for (const char* sigma : SIGMAS) {
        record.keep(std::string("taps/") + sigma, [&](auto add) {
            add(floatBytes(GaussianBlur::computeKernel(std::stod(sigma)), NanBits::CANONICAL));
        });
    }
    recordAllPairs(record, "sigma=1.5", getBlur("1.5"));
    for (const char* sigma : {"0.4", "1", "2.3", "6"}) {
        recordAllSizes(record, std::string("sigma=") + sigma, getBlur(sigma));
    }
}

void recordSharpenings(Record& record) {
    recordAllPairs(record, "radius=1,strength=3,threshold=0.02", getSharpen(1.0F, 3.0F, 0.02F));
    recordAllSizes(record, "radius=0.5,strength=5,threshold=0", getSharpen(0.5F, 5.0F, 0.0F));
    recordAllSizes(record, "radius=1,strength=0,threshold=0.02", getSharpen(1.0F, 0.0F, 0.02F));
    recordAllSizes(record, "radius=3,strength=1.2,threshold=0.1", getSharpen(3.0F, 1.2F, 0.1F));
}

} // namespace golden
