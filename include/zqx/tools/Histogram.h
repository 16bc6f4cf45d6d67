/// @file
/// Histograms of pictures.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <zqx/img/Image.h>
#include <zqx/tools/Export.h>

namespace zqx::tools {

/// The number of bins per channel, one for each gamma-encoded 8-bit value.
/// @ingroup tools
constexpr std::size_t HISTOGRAM_BINS = 256;

/// The counts of one channel. Values out of range are counted separately, in no bin.
/// @ingroup tools
struct ChannelCounts {
    std::array<std::uint64_t, HISTOGRAM_BINS> bins{}; ///< pixels of each value
    std::uint64_t below = 0;                          ///< pixels below 0
    std::uint64_t above = 0;                          ///< pixels above 1
    std::uint64_t nan = 0;                            ///< pixels that are NaN

    /// Pixels at or below the lower end of the scale.
    std::uint64_t shadows() const { return bins.front() + below; }
    /// Pixels at or above the upper end of the scale.
    std::uint64_t highlights() const { return bins.back() + above; }
};

/// A view of contiguous elements that it does not own.
/// @ingroup tools
template <typename Element>
class ArrayView {
public:
    /// @param first the first element @param size the number of elements
    ArrayView(const Element* first, std::size_t size) : mFirst(first), mSize(size) {}

    /// @{

    /// As in the containers of the standard library.
    const Element* begin() const { return mFirst; }
    const Element* end() const { return mFirst + mSize; }
    std::size_t size() const { return mSize; }
    const Element& operator[](std::size_t index) const { return mFirst[index]; }
    /// @}

private:
    const Element* mFirst;
    std::size_t mSize;
};

/// Counts on the scale of gamma-encoded bytes, 0 to 255. Floats are encoded and rounded to this scale. Alpha is
/// ignored.
/// @ingroup tools
struct Histogram {
    /// Indices into channels.
    enum Channel : std::size_t {
        RED,   ///< of colour pictures
        GREEN, ///< of colour pictures
        BLUE,  ///< of colour pictures
        LUMA,  ///< of all pictures
    };

    /// Counts by Channel. Luma is the weighted sum of linear light by ITU-R BT.709, gamma-encoded; grey pictures have
    /// luma only.
    std::array<ChannelCounts, 4> channels;
    std::uint64_t pixels = 0; ///< number of pixels, and so the total of each channel
    bool color = false;       ///< whether there are red, green and blue
    bool outOfRange = false;  ///< whether any value of any channel is out of range

    /// The channels that the picture has, luma last. Valid for as long as this object exists.
    ArrayView<ChannelCounts> present() const {
        const std::size_t first = color ? RED : LUMA;
        return {channels.data() + first, channels.size() - first};
    }
    /// The names of the channels, such as "red", in the order of present(). Always valid.
    ZQX_TOOLS_EXPORT ArrayView<std::string_view> names() const;
};

/// Counts the values of a picture. The result does not depend on the number of threads.
/// @param image in the working format of a layout
/// @ingroup tools
ZQX_TOOLS_EXPORT Histogram countValues(const img::Image& image);

/// Distributes the counts of a channel over another number of bins of equal width.
/// @param counts of the channel
/// @param bins number of bins, at least 1
/// @ingroup tools
ZQX_TOOLS_EXPORT std::vector<double> rebinned(const ChannelCounts& counts, std::size_t bins);

/// The count that should reach the top of a chart: the largest one, except those at both ends, where clipped values
/// accumulate. If a few bins stand out above all others, the limit is lower, so that they do not flatten the rest.
/// @param bins of each channel, equally many
/// @ingroup tools
ZQX_TOOLS_EXPORT double drawingLimit(const std::vector<std::vector<double>>& bins);

/// A share of all pixels as text, such as "0.25 %". Shares that would round to zero without being zero are "< 0.01 %".
/// @param count of the pixels in question
/// @param pixels number of all pixels, at least 1
/// @ingroup tools
ZQX_TOOLS_EXPORT std::string percentage(std::uint64_t count, std::uint64_t pixels);

} // namespace zqx::tools
