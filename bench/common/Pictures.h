// Pictures to measure on: smooth detail at several scales with some grain, as a photograph has it.
#pragma once

#include <cstddef>
#include <memory>

#include <zqx/img/Image.h>

namespace bench {

/// A picture of linear light over the whole of [0, 1], the same on every run, in the given format. Alpha is opaque.
std::shared_ptr<zqx::img::Image> photograph(std::size_t width, std::size_t height, zqx::img::Image::Format format);

/// A packed picture whose memory has been touched, so that no page is fetched while it is measured.
std::shared_ptr<zqx::img::Image> blankPicture(std::size_t width, std::size_t height, zqx::img::Image::Format format);

/// Bytes of all pixels.
std::size_t byteCount(const zqx::img::Image& image);

} // namespace bench
