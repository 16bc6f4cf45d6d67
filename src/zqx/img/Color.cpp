#include <zqx/img/Color.h>

#include "kernels/maths/Gamma.h"
#include "kernels/maths/GammaTables.h"
#include "kernels/maths/ScalarMaths.h"

namespace zqx::img {

namespace {

namespace maths = kernels::maths;

Color raiseToPower(const Color& color, float exponent) {
    return {maths::pow(color.r, exponent), maths::pow(color.g, exponent), maths::pow(color.b, exponent), color.a};
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
    return raiseToPower(*this, kernels::ENCODING_EXPONENT);
}

Color Color::toLinear() const {
    return raiseToPower(*this, kernels::DECODING_EXPONENT);
}

float srgb2linear(const unsigned char& v) {
    return kernels::GAMMA_DECODE[v];
}

} // namespace zqx::img
