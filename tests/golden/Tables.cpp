// 3D lookup tables of floats and of bytes, and the tables of gradients.
#include "golden/Looks.h"
#include "golden/Pictures.h"
#include "golden/Record.h"

namespace golden {

namespace {

constexpr std::size_t SIZES[] = {1, 2, 17, 33};

void recordTable(Record& record, const Look& look, std::size_t size) {
    const std::size_t count = 3 * size * size * size;
    const std::string name = look.name + "/" + std::to_string(size);
    record.keep("float/" + name, [&](auto add) {
        std::vector<float> table(count);
        look.grading.generate3DLUT_RGB32F(size, table.data());
        add(floatBytes(table, NanBits::CANONICAL));
    });
    record.keep("byte/" + name, [&](auto add) {
        std::vector<std::uint8_t> table(count);
        look.grading.generate3DLUT_SRGB8(size, table.data());
        add(table);
    });
}

void recordGradient(Record& record, const Look& look) {
    record.keep("gradient/" + look.name, [&](auto add) {
        std::vector<float> components;
        const zqx::img::Color* entries = look.grading.getGradientMap().getLUTPtr();
        for (std::size_t i = 0; i < 256; ++i) {
            components.insert(components.end(), {entries[i].r, entries[i].g, entries[i].b, entries[i].a});
        }
        add(floatBytes(components, NanBits::CANONICAL));
    });
}

} // namespace

void recordTables(Record& record) {
    for (const Look& look : mixedLooks()) {
        for (const std::size_t size : SIZES) {
            recordTable(record, look, size);
        }
    }
    for (const auto& looks : {singleLooks(), nanLooks()}) {
        for (const Look& look : looks) {
            recordTable(record, look, 5);
            if (look.name.starts_with("gradient")) {
                recordGradient(record, look);
            }
        }
    }
}

} // namespace golden
