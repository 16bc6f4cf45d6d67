#include "kernels/samples/Doubles.h"

#include <cstdint>

#include "kernels/Rows.h"
#include "kernels/samples/Element.h"

namespace zqx::img::kernels {

void narrowDoubles(const SampleView<const double>& source, const Image& target) {
    forEachRow(source.height, [&](std::size_t y) {
        const double* sample = source.row(y);
        auto* pixel = static_cast<std::uint8_t*>(target.getRowPtr(y));
        for (std::size_t x = 0; x < source.width; ++x, pixel += target.getBytePixelStride()) {
            for (std::size_t channel = 0; channel < source.channels; ++channel) {
                encodeElement<Encoding::FLOAT>(static_cast<float>(*sample++), pixel, channel);
            }
        }
    });
}

} // namespace zqx::img::kernels
