#include "kernels/samples/NearestCode.h"

#include "kernels/maths/Gamma.h"
#include "kernels/maths/ScalarMaths.h"

namespace zqx::img::kernels {

const NearestCode& nearestCode() {
    static const NearestCode encoder([](std::size_t code) {
        constexpr double LARGEST = 255.0;
        return static_cast<float>(maths::pow((static_cast<double>(code) - 0.5) / LARGEST, GAMMA));
    });
    return encoder;
}

} // namespace zqx::img::kernels
