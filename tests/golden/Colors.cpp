// The encoding and the decoding of single colours, and the table of bytes.
#include <limits>

#include <zqx/img/Color.h>

#include "golden/Pictures.h"
#include "golden/Record.h"

namespace golden {

namespace {

using zqx::img::Color;

/// Both curves at every value.
void recordCurves(Record& record, const std::string& name, const std::vector<float>& values) {
    const auto curve = [&](const char* direction, Color (Color::*convert)() const) {
        record.keep(std::string(direction) + "/" + name, [&](auto add) {
            std::vector<float> components;
            for (const float value : values) {
                const Color converted = (Color{value, -value, value * 0.5F, value}.*convert)();
                components.insert(components.end(), {converted.r, converted.g, converted.b, converted.a});
            }
            add(floatBytes(components, NanBits::CANONICAL));
        });
    };
    curve("toSrgb", &Color::toSrgb);
    curve("toLinear", &Color::toLinear);
}

std::vector<float> multiples(int count, float unit) {
    std::vector<float> values;
    for (int i = 0; i <= count; ++i) {
        values.push_back(static_cast<float>(i) * unit);
    }
    return values;
}

std::vector<float> quotients(int count, float divisor) {
    std::vector<float> values;
    for (int i = 0; i <= count; ++i) {
        values.push_back(static_cast<float>(i) / divisor);
    }
    return values;
}

std::vector<float> powersOfTwo() {
    std::vector<float> values;
    for (float value = std::numeric_limits<float>::denorm_min(); value < std::numeric_limits<float>::infinity();
         value *= 2.0F) {
        values.push_back(value);
    }
    return values;
}

std::vector<float> corners() {
    using Limits = std::numeric_limits<float>;
    return {0.0F,
            -0.0F,
            Limits::min(),
            Limits::denorm_min(),
            Limits::max(),
            Limits::infinity(),
            Limits::quiet_NaN(),
            0.99999994F,
            1.0000001F,
            1e-40F};
}

} // namespace

void recordColors(Record& record) {
    recordCurves(record, "bytes", quotients(255, 255.0F));
    recordCurves(record, "hundredths", quotients(400, 100.0F));
    recordCurves(record, "256ths", multiples(1024, 1.0F / 256.0F));
    recordCurves(record, "powers-of-two", powersOfTwo());
    recordCurves(record, "corners", corners());
    record.keep("srgb2linear", [](auto add) {
        std::vector<float> table;
        for (unsigned value = 0; value < 256; ++value) {
            table.push_back(zqx::img::srgb2linear(static_cast<unsigned char>(value)));
        }
        add(floatBytes(table, NanBits::CANONICAL));
    });
}

} // namespace golden
