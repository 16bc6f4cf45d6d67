// Flips and rotations. Pixels are moved: whatever their bits, they keep them.
#include "golden/Pictures.h"
#include "golden/Record.h"

namespace golden {

namespace {

/// More pixels on both sides than the rotations' tiles have.
constexpr Layout SIZES[] = {{1, 1}, {1, 9, 3}, {11, 1}, {7, 5, 7}, {67, 13}, {131, 70, 5}};

} // namespace

void recordTurns(Record& record) {
    for (const Image::Format format : test::ALL_FORMATS) {
        const auto flip = [&](const std::string& name, auto change) {
            record.keep(name + "/" + test::getName(format), [&](auto add) {
                for (const Layout& layout : SIZES) {
                    Picture picture(layout, format, Content::WILD, layout.width);
                    change(picture.image());
                    add(picture.bytes(NanBits::AS_THEY_ARE));
                }
            });
        };
        const auto rotate = [&](const std::string& name, auto turned) {
            record.keep(name + "/" + test::getName(format), [&](auto add) {
                for (const Layout& layout : SIZES) {
                    Picture picture(layout, format, Content::WILD, layout.width);
                    add(pixelBytes(*turned(picture.image()), NanBits::AS_THEY_ARE));
                }
            });
        };
        flip("flipHorizontal", [](Image& image) { image.flipHorizontal(); });
        flip("flipVertical", [](Image& image) { image.flipVertical(); });
        rotate("rotate90", [](const Image& image) { return image.rotate90(); });
        rotate("rotate180", [](const Image& image) { return image.rotate180(); });
        rotate("rotate270", [](const Image& image) { return image.rotate270(); });
    }
}

} // namespace golden
