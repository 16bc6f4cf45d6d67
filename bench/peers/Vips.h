// The two filters of libvips that are peers. Kept apart: its headers are C and full of macros.
#pragma once

#include <cstddef>

namespace bench::vips {

/// Once, before anything else. Results are never cached.
void start(const char* program, int threads);

/// Both take a packed picture of three encoded bytes per pixel and write one of the same size.
/// @throws std::runtime_error with the library's message
void gaussianBlur(const void* source, void* target, std::size_t width, std::size_t height, double sigma,
                  double smallestTap);
void sharpen(const void* source, void* target, std::size_t width, std::size_t height, double sigma);

} // namespace bench::vips
