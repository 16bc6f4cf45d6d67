/// @file
/// Removing the noise of path-traced renders with OpenImageDenoise.
#pragma once

#include <cstddef>
#include <string>

#include <zqx/img/Export.h>
#include <zqx/img/Filter.h>
#include <zqx/img/Warnings.h>

namespace zqx::img {

ZQX_IMG_BEGIN_PLAIN_DESTRUCTORS

/// Removes rendering noise from a colour image with the help of the albedo and the normals of the surfaces seen.
///
/// Set the three inputs and the output, all RGB32F of one size; formats are not examined, every pixel is taken for
/// three floats at the strides of its image, and the size is that of the colour image. All three inputs are needed.
/// The output may be one of the inputs. Albedo is in [0, 1], normals are in [-1, 1] in any space; a pixel without a
/// surface has zeros in both.
///
/// OpenImageDenoise is looked for at the first run: version 1, or else 2, where the system's loader finds libraries and
/// beside this one. Its device and its filter are made once and kept until the process ends; what fails then is not
/// tried again.
///
/// Thread-safety: one run at a time in the whole process, as all filters share the device. The library itself uses all
/// processors.
/// @ingroup filters
class ZQX_IMG_API DenoisingFilter : public Filter {
public:
    /// @name Keys of the inputs
    /// @{
    static constexpr int COLOR = 0;  ///< the noisy picture
    static constexpr int ALBEDO = 1; ///< reflectance of the surface at each pixel
    static constexpr int NORMAL = 2; ///< direction of the surface at each pixel
    /// @}

    /// A filter without images, for display-referred values.
    DenoisingFilter() = default;

    /// @param hdr true for linear values without an upper bound, false (the default) for display-referred sRGB values
    ///            in [0, 1]
    void setHDR(bool hdr) { mHDR = hdr; }

    /// Denoises the colour input into the output.
    ///
    /// Inputs that were not set become empty ones.
    /// @return false with an error message when OpenImageDenoise cannot be had (the message of the first run says why,
    ///         later ones "Denoiser not available."), when an image has no pixels ("Invalid Input"), or when
    ///         OpenImageDenoise reports an error (its own words)
    bool execute() override;

private:
    bool mHDR = false;
};

ZQX_IMG_END_PLAIN_DESTRUCTORS

/// Denoises plain arrays in place. See DenoisingFilter.
///
/// The buffers that it works in are kept for the next call of the same size, so only one thread at a time may call it.
/// @ingroup filters
/// @param color width * height pixels of four floats R, G, B, A; on success R, G and B are replaced, A is kept
/// @param albedo three floats a pixel, packed
/// @param normal three floats a pixel, packed
/// @param width pixels in a row
/// @param height rows
/// @param hdr as for DenoisingFilter::setHDR
/// @param error set to the filter's message on failure, otherwise left alone
/// @return false on failure; color is then unchanged
/// @throws std::bad_alloc, std::length_error for sizes that no memory could hold
ZQX_IMG_API bool denoiseImage(float* color, float* albedo, float* normal, std::size_t width, std::size_t height,
                              bool hdr, std::string& error);

} // namespace zqx::img
