// The options of every command that adjusts pictures.
#pragma once

#include <string>
#include <vector>

#include <zqx/img/ImageProcessingPipeline.h>

namespace CLI {
class App;
}

namespace zqx::app {

/// The adjustments asked for on a command line.
struct ParameterOptions {
    std::vector<std::string> documents; ///< files of --params; members of later ones replace those of earlier ones
    std::vector<std::string> settings;  ///< name=value of --set, in order; they override the documents
    bool strict = false;                ///< fail where there would be warnings

    /// Adds --params, --set and --strict to a command.
    void addTo(CLI::App& command);

    /// A pipeline with these adjustments and no stage active. Warns about values that are ignored or clamped.
    /// @throws UsageError for an invalid setting; Error for an unreadable document and, if strict, in place of warnings
    img::ImageProcessingPipeline makePipeline() const;
};

} // namespace zqx::app
