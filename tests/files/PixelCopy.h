// Pixels in and out of a component by scan lines, so that loading and saving can be judged by number.
#pragma once

#include "Component.h"
#include "Samples.h"

namespace zqx::img::test {

/// The pixels of a component. Palettes are looked up: pictures of 1, 4 and 8 bits come out in three channels.
/// @throws std::runtime_error for layouts that no test has
Samples getSamples(IFreeImage& component);

/// A component that holds the samples, in the bitmap type that fits them.
Component getComponent(const Samples& samples);

} // namespace zqx::img::test
