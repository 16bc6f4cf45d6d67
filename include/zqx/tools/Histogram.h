/// @file
/// How often each stored value occurs in a picture.
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

/// Bins of a channel: one for each gamma-encoded byte.
/// @ingroup tools
constexpr std::size_t HISTOGRAM_BINS = 256;

/// The values of one channel. What is out of range is counted apart and in no bin.
/// @ingroup tools
struct ChannelCounts {
    std::array<std::uint64_t, HISTOGRAM_BINS> bins{}; ///< pixels of each value
    std::uint64_t below = 0;                          ///< pixels below 0
    std::uint64_t above = 0;                          ///< pixels above 1
    std::uint64_t nan = 0;                            ///< pixels that are not a number

    /// Pixels that are as dark as bytes can be, or darker.
    std::uint64_t shadows() const { return bins.front() + below; }
    /// Pixels that are as bright as bytes can be, or brighter.
    std::uint64_t highlights() const { return bins.back() + above; }
};

/// Elements that lie one after the other and belong to somebody else.
/// @ingroup tools
template <typename Element>
class ArrayView {
public:
    /// @param first element @param size how many there are
    ArrayView(const Element* first, std::size_t size) : mFirst(first), mSize(size) {}

    /// @{

    /// As of containers of the standard library.
    const Element* begin() const { return mFirst; }
    const Element* end() const { return mFirst + mSize; }
    std::size_t size() const { return mSize; }
    const Element& operator[](std::size_t index) const { return mFirst[index]; }
    /// @}

private:
    const Element* mFirst;
    std::size_t mSize;
};

/// Counts on the scale of gamma-encoded bytes, 0 to 255. Float pictures are encoded to it and go to the nearest value.
/// Transparency is not looked at.
/// @ingroup tools
struct Histogram {
    /// Places in channels.
    enum Channel : std::size_t {
        RED,   ///< of colour pictures
        GREEN, ///< of colour pictures
        BLUE,  ///< of colour pictures
        LUMA,  ///< of all pictures
    };

    /// Luma is the weighted sum of linear light by ITU-R BT.709, encoded; of grey pictures it is all there is.
    std::array<ChannelCounts, 4> channels;
    std::uint64_t pixels = 0; ///< in the picture, and so in each channel
    bool color = false;       ///< whether there are red, green and blue
    bool outOfRange = false;  ///< any value of any channel

    /// Luma, and for colour the others before it. Valid as long as this object.
    ArrayView<ChannelCounts> present() const {
        const std::size_t first = color ? RED : LUMA;
        return {channels.data() + first, channels.size() - first};
    }
    /// "red", in the order of present(). Valid for ever.
    ZQX_TOOLS_EXPORT ArrayView<std::string_view> names() const;
};

/// Counts the values of a picture. The result is the same for any number of threads.
/// @param image in the working format of a layout
/// @ingroup tools
ZQX_TOOLS_EXPORT Histogram countValues(const img::Image& image);

/// A channel in another number of bins of equal width, each with its share of the counts.
/// @param counts of the channel
/// @param bins at least 1
/// @ingroup tools
ZQX_TOOLS_EXPORT std::vector<double> rebinned(const ChannelCounts& counts, std::size_t bins);

/// The height up to which to draw channels of equally many bins: the largest but for the two ends, where clipped values
/// gather. Where a few bins stand out, they are cut off there, so that a spike does not flatten all else.
/// @param bins of each channel
/// @ingroup tools
ZQX_TOOLS_EXPORT double drawingLimit(const std::vector<std::vector<double>>& bins);

/// A share of all pixels as text, "0.25 %"; a few are not none, but "< 0.01 %".
/// @param count of the share
/// @param pixels at least 1
/// @ingroup tools
ZQX_TOOLS_EXPORT std::string percentage(std::uint64_t count, std::uint64_t pixels);

} // namespace zqx::tools
