// The encoded byte nearest to a linear value. Conversion truncates, which suits values that have been bytes before;
// means and products scatter around the right code, and would come out half a step too dark.
#pragma once

#include "kernels/samples/ThresholdEncoder.h"

namespace zqx::img::kernels {

using NearestCode = ThresholdEncoder<256>;

/// The code c from which (c - 0.5) / 255 and (c + 0.5) / 255, decoded, lie around the value. Made with the first call.
const NearestCode& nearestCode();

} // namespace zqx::img::kernels
