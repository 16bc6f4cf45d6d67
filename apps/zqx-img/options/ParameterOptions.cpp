// The options --params, --set and --strict.
#include "options/ParameterOptions.h"

#include <CLI/CLI.hpp>

#include <zqx/tools/ParameterDocuments.h>

namespace zqx::app {

void ParameterOptions::addTo(CLI::App& command) {
    command
        .add_option("--params", documents,
                    "Read adjustments from this JSON document; later documents override earlier ones")
        ->type_name("FILE")
        ->allow_extra_args(false);
    command.add_option("--set", settings, "Set one adjustment, overriding --params; see below")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    command.add_flag("--strict", strict,
                     "Fail, instead of warning, if an adjustment is unknown, of the wrong type or out of range");
}

img::ImageProcessingPipeline ParameterOptions::makePipeline() const {
    using Faults = tools::ParameterDocuments::Faults;
    return tools::readParameters(documents, settings, strict ? Faults::REFUSE : Faults::WARN);
}

} // namespace zqx::app
