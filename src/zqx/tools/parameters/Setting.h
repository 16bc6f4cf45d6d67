// A single adjustment as it is written on a command line: "exposure=0.5".
#pragma once

#include <string>

#include <zqx/img/ImageProcessingPipeline.h>

namespace zqx::tools {

class Remarks;

/// Sets one parameter. Remarks on a number that is out of range and had to be limited.
/// @throws UsageError naming the setting when there is no such parameter, or the value is none of its kind
void applySetting(img::ImageProcessingPipeline& pipeline, const std::string& setting, Remarks& remarks);

} // namespace zqx::tools
