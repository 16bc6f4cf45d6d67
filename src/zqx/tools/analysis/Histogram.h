// How often each stored value occurs in a picture.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <zqx/img/Image.h>

#include "zqx/pictures/codecs/StoredScale.h"

namespace zqx::tools {

/// The values of one channel. What is out of range is counted apart and in no bin.
struct ChannelCounts {
    std::array<std::uint64_t, pictures::CODES> bins{};
    std::uint64_t below = 0; ///< 0
    std::uint64_t above = 0; ///< 1
    std::uint64_t nan = 0;   ///< not a number

    /// Pixels that are as dark or as bright as bytes can be, or beyond.
    std::uint64_t shadows() const { return bins.front() + below; }
    std::uint64_t highlights() const { return bins.back() + above; }
};

/// Counts on the scale of gamma-encoded bytes, 0 to 255. Float pictures are encoded to it and go to the nearest value.
/// Transparency is not looked at.
struct Histogram {
    enum Channel : std::size_t { RED, GREEN, BLUE, LUMA };

    /// Luma is the weighted sum of linear light by ITU-R BT.709, encoded; of grey pictures it is all there is.
    std::array<ChannelCounts, 4> channels;
    std::uint64_t pixels = 0;
    bool color = false;
    bool outOfRange = false; ///< any value of any channel

    /// Luma, and for colour the others before it.
    std::span<const ChannelCounts> present() const {
        return std::span(channels).subspan(color ? std::size_t{RED} : std::size_t{LUMA});
    }
    /// "red", in the order of present().
    std::span<const std::string_view> names() const;
};

/// @param image in the working format of a layout
Histogram countValues(const img::Image& image);

/// A channel in another number of bins of equal width, each with its share of the counts.
std::vector<double> rebinned(const ChannelCounts& counts, std::size_t bins);

/// The height up to which to draw bins: the largest but for the two ends, where clipped values gather. Where a few bins
/// stand out, they are cut off there, so that a spike does not flatten all else.
double drawingLimit(std::span<const std::vector<double>> bins);

/// A share of all pixels as text, "0.25 %".
std::string percentage(std::uint64_t count, std::uint64_t pixels);

} // namespace zqx::tools
