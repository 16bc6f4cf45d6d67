#include "TiledDenoiser.h"

#include <zqx/img/DenoisingFilter.h>

namespace tiled_denoise {

using zqx::img::DenoisingFilter;
using zqx::img::Image;

TiledDenoiser::TiledDenoiser(std::size_t tileSize) : TiledFilter(tileSize, OVERLAP, MARGIN) {
}

/// The regions of the inputs are views that report GRAY8, whatever the pictures are. That does not matter here: the
/// denoiser takes every pixel for three floats and finds it by the strides, which are right.
///
/// Not its mode for linear values: that chooses an exposure for each run from the colours it sees, so that every tile
/// would come out a little different.
bool TiledDenoiser::filterRegion(const std::map<int, Image>& inputs, Image& output) {
    DenoisingFilter denoiser;
    for (const auto& [key, region] : inputs) {
        denoiser.setInput(key, region);
    }
    denoiser.setOutput(output);
    denoiser.setHDR(false);
    if (!denoiser.execute()) {
        mErrorMessage = denoiser.getErrorMessage();
        return false;
    }
    return true;
}

} // namespace tiled_denoise
