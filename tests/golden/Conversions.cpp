// All 121 conversions: into new images, and into memory that is padded.
#include "golden/Pictures.h"
#include "golden/Record.h"

namespace golden {

namespace {

/// Floats are moved where no grey is made of them.
NanBits nanBits(Image::Format from, Image::Format to) {
    const bool isMove = oracle::facts(from).isFloat && oracle::facts(to).isFloat &&
                        (oracle::facts(from).channels == 1 || oracle::facts(to).channels > 1);
    return isMove ? NanBits::AS_THEY_ARE : NanBits::CANONICAL;
}

/// Equal formats are copied, and so their pixels are packed.
std::span<const Layout> layouts(Image::Format from, Image::Format to) {
    return from == to ? std::span<const Layout>(LAYOUTS) : std::span<const Layout>(STRIDED_LAYOUTS);
}

} // namespace

void recordConversions(Record& record) {
    test::forAllPairs([&](Image::Format from, Image::Format to) {
        const std::string pair = test::getName(from) + "-" + test::getName(to);
        record.keep("convertTo/" + pair, [&](auto add) {
            for (const Layout& layout : STRIDED_LAYOUTS) {
                for (const Content content : CONTENTS) {
                    Picture source(layout, from, content, layout.width);
                    add(pixelBytes(*source.image().convertTo(to), nanBits(from, to)));
                }
            }
        });
        record.keep("convertFrom/" + pair, [&](auto add) {
            for (const Layout& layout : layouts(from, to)) {
                for (const Content content : CONTENTS) {
                    Picture source(layout, from, content, layout.height);
                    Picture target({layout.width, layout.height, layout.rowGap + 3, layout.pixelGap}, to);
                    target.image().convertFrom(source.image());
                    add(target.bytes(nanBits(from, to)));
                }
            }
        });
    });
    for (const Image::Format from : test::ALL_FORMATS) {
        record.keep("convertToLinearFloat/" + test::getName(from), [&](auto add) {
            Picture source({67, 13, 7}, from, Content::SHADED, 1);
            add(pixelBytes(*source.image().convertToLinearFloat(), NanBits::AS_THEY_ARE));
        });
    }
}

} // namespace golden
