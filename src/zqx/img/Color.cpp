#include <zqx/img/Color.h>

#include <cmath>

#include "kernels/GammaTables.h"

namespace zqx::img {

namespace {

constexpr float ENCODING_EXPONENT = 0.45454544F;
constexpr float DECODING_EXPONENT = 2.2F;

Color powerOf(const Color& color, float exponent) {
    return {std::pow(color.r, exponent), std::pow(color.g, exponent), std::pow(color.b, exponent), color.a};
}

} // namespace

int Color::compare(const Color& other) const {
    constexpr float Color::*COMPONENTS[] = {&Color::r, &Color::g, &Color::b, &Color::a};
    for (const auto component : COMPONENTS) {
        if (this->*component != other.*component) {
            return this->*component < other.*component ? -1 : 1;
        }
    }
    return 0;
}

Color Color::toSrgb() const {
    return powerOf(*this, ENCODING_EXPONENT);
}

Color Color::toLinear() const {
    return powerOf(*this, DECODING_EXPONENT);
}

float srgb2linear(const unsigned char& v) {
    return kernels::GAMMA_DECODE[v];
}

} // namespace zqx::img
