#include "kernels/filters/Blur.h"

#include "kernels/filters/BandBlur.h"
#include "kernels/filters/FilterWork.h"

namespace zqx::img::kernels {

void convolve(const Image& source, const Image& output, const std::vector<float>& taps) {
    const std::optional<FilterWork> work = FilterWork::between(source, output, Treatment::OF_CHANNELS);
    if (!work) {
        return;
    }
    const auto read = [&](std::size_t y, std::size_t first, std::size_t length, Run& run) {
        work->read(y, first, length, run);
    };
    const auto write = [&](std::size_t y, std::size_t first, std::size_t length, Run& run) {
        work->write(y, first, length, run);
    };
    blurInBands({work->width(), work->height(), work->planes(), work->step(), taps.size() / 2, work->isInPlace()}, taps,
                read, write);
}

} // namespace zqx::img::kernels
