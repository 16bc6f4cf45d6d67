// Inversion, with every mask of the four channels.
#include "golden/Pictures.h"
#include "golden/Record.h"

namespace golden {

void recordInversions(Record& record) {
    constexpr unsigned MASKS = 16;
    for (const Image::Format format : test::ALL_FORMATS) {
        for (unsigned mask = 0; mask < MASKS; ++mask) {
            record.keep(test::getName(format) + "/" + std::to_string(mask), [&](auto add) {
                for (const Layout& layout : STRIDED_LAYOUTS) {
                    for (const Content content : CONTENTS) {
                        Picture picture(layout, format, content, layout.width);
                        picture.image().invert(static_cast<zqx::img::Channel>(mask));
                        add(picture.bytes(NanBits::CANONICAL));
                    }
                }
            });
        }
    }
}

} // namespace golden
