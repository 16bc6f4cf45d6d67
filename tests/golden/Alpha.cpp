// Premultiplication and its reverse. 256 x 256 pixels of bytes hold every colour byte beside every alpha byte.
#include "golden/Pictures.h"
#include "golden/Record.h"

namespace golden {

namespace {

void pairEveryByte(const Image& image) {
    for (std::size_t alpha = 0; alpha < 256; ++alpha) {
        for (std::size_t color = 0; color < 256; ++color) {
            auto* pixel = static_cast<std::uint8_t*>(image.getPixelPtr(color, alpha));
            pixel[0] = pixel[1] = pixel[2] = static_cast<std::uint8_t>(color);
            pixel[3] = static_cast<std::uint8_t>(alpha);
        }
    }
}

} // namespace

void recordAlpha(Record& record) {
    const auto recordBoth = [&](Image::Format format, const std::string& name, auto change) {
        record.keep(name + "/" + test::getName(format), [&](auto add) {
            for (const Layout& layout : STRIDED_LAYOUTS) {
                for (const Content content : CONTENTS) {
                    Picture picture(layout, format, content, layout.width);
                    change(picture.image());
                    add(picture.bytes(NanBits::CANONICAL));
                }
            }
            if (oracle::pixelSize(format) == 4 && !oracle::facts(format).isFloat) {
                Picture picture({256, 256}, format);
                pairEveryByte(picture.image());
                change(picture.image());
                add(picture.bytes(NanBits::CANONICAL));
            }
        });
    };
    for (const Image::Format format : test::ALL_FORMATS) {
        recordBoth(format, "straight", zqx::img::premultiplied2StraightAlpha);
        recordBoth(format, "premultiplied", zqx::img::straight2PremultipliedAlpha);
    }
}

} // namespace golden
