// Pictures of doubles, which a few file formats hold and no pixel format does.
#pragma once

#include <zqx/img/Image.h>

#include "kernels/samples/SampleView.h"

namespace zqx::img::kernels {

/// Rounds doubles to the nearest floats; what is beyond their range becomes infinity.
/// @param target of the source's size, in the float format of as many channels
void narrowDoubles(const SampleView<const double>& source, const Image& target);

} // namespace zqx::img::kernels
