// Color grading of images: each parameter alone between some formats, mixtures between all of them and in place.
#include "golden/Looks.h"
#include "golden/Pictures.h"
#include "golden/Record.h"

namespace golden {

namespace {

struct Pair {
    Image::Format from;
    Image::Format to;
};

/// Bytes and floats on either side, alpha and none, both byte orders, grey.
constexpr Pair PAIRS[] = {{Image::RGB32F, Image::RGB32F},  {Image::SRGB8, Image::SRGB8},
                          {Image::RGBA32F, Image::SBGRA8}, {Image::SBGRA8, Image::RGBA32F},
                          {Image::RGB8, Image::GRAY8},     {Image::GRAY32F, Image::RGBA8}};

void recordBetween(Record& record, const Look& look, Pair pair, std::span<const Layout> layouts) {
    record.keep(look.name + "/" + test::getName(pair.from) + "-" + test::getName(pair.to), [&](auto add) {
        for (const Layout& layout : layouts) {
            for (const Content content : CONTENTS) {
                Picture source(layout, pair.from, content, layout.width);
                Picture target({layout.width, layout.height, layout.rowGap + 3, layout.pixelGap}, pair.to);
                look.grading.apply(source.image(), target.image());
                add(target.bytes(NanBits::CANONICAL));
            }
        }
    });
}

void recordInPlace(Record& record, const Look& look, Image::Format format) {
    record.keep(look.name + "/" + test::getName(format) + "-in-place", [&](auto add) {
        for (const Layout& layout : STRIDED_LAYOUTS) {
            Picture picture(layout, format, Content::SHADED, layout.width);
            look.grading.apply(picture.image(), picture.image());
            add(picture.bytes(NanBits::CANONICAL));
        }
    });
}

constexpr Layout FEW_LAYOUTS[] = {{7, 5, 7}, {67, 13}, {33, 3, 2, 3}};

} // namespace

void recordGradings(Record& record) {
    for (const auto& looks : {singleLooks(), nanLooks()}) {
        for (const Look& look : looks) {
            for (const Pair& pair : PAIRS) {
                recordBetween(record, look, pair, STRIDED_LAYOUTS);
            }
        }
    }
    for (const Look& look : mixedLooks()) {
        test::forAllPairs([&](Image::Format from, Image::Format to) {
            recordBetween(record, look, {from, to}, FEW_LAYOUTS);
        });
        for (const Image::Format format : test::ALL_FORMATS) {
            recordInPlace(record, look, format);
        }
    }
}

} // namespace golden
