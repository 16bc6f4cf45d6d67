// Denoising renders of any size: the denoiser sees one tile at a time, and no seam shows where tiles meet.
#pragma once

#include <cstddef>
#include <map>

#include <zqx/img/TiledFilter.h>

namespace tiled_denoise {

/// Inputs and output are those of zqx::img::DenoisingFilter. Colours are in [0, 1], as a ToneCurve makes them; the
/// output is RGB32F and shares no memory with the inputs, as a tile reads what its neighbours have written otherwise.
class TiledDenoiser : public zqx::img::TiledFilter {
public:
    /// Measured on the sample render, mirrored to 1024 x 1024 pixels, tiled against whole, as the largest difference
    /// relative to max(value, 0.05):
    ///
    ///     discarded next to a seam (margin)   16     32     48     64      80 and more
    ///     largest difference                  10 %   7 %    1.5 %  0.3 %   none
    ///
    /// The network looks 80 pixels far, then. 8 more are for versions that look a little further.
    static constexpr std::size_t MARGIN = 88;
    /// Both margins and 16 pixels of cross-fade.
    static constexpr std::size_t OVERLAP = 192;
    /// The network halves its picture four times over. Tiles that begin elsewhere than at the picture's own blocks of
    /// 16 pixels come out different all over, by half of a value and more, with any overlap.
    static constexpr std::size_t ALIGNMENT = 16;
    static constexpr std::size_t SMALLEST_TILE = OVERLAP + ALIGNMENT;
    /// What tiles may differ from the whole in. Versions 1.4.3 and 2.5.1 of the denoiser give the same bits on a
    /// processor; this leaves room for one that rounds sums by the size of the picture.
    static constexpr double BOUND = 1e-4;

    /// @param tileSize a multiple of ALIGNMENT, at least SMALLEST_TILE. Overlaps are denoised twice: the larger, the
    ///                 less work, and the more memory.
    explicit TiledDenoiser(std::size_t tileSize);

protected:
    bool filterRegion(const std::map<int, zqx::img::Image>& inputs, zqx::img::Image& output) override;
};

} // namespace tiled_denoise
