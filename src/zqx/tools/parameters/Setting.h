// A single adjustment in the notation of the command line: "exposure=0.5".
#pragma once

#include <string>

#include <zqx/img/ImageProcessingPipeline.h>

namespace zqx::tools {

class Remarks;

/// Sets one parameter. Adds a remark if a number is out of range and had to be clamped.
/// @throws UsageError naming the setting if there is no such parameter or its value is of the wrong kind
void applySetting(img::ImageProcessingPipeline& pipeline, const std::string& setting, Remarks& remarks);

} // namespace zqx::tools
