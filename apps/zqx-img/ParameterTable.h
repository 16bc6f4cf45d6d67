// The adjustments that a user can name on the command line: one table for reading, checking and explaining them.
#pragma once

#include <span>
#include <string>
#include <vector>

#include <zqx/img/Parameters.h>

namespace CLI {
class App;
}

namespace zqx::img::app {

/// All adjustments in the order in which they are explained.
std::span<const Parameter> parameters();

/// A parameter's present value in the spelling that --set reads.
std::string formatValue(const Parameter& parameter, const ImageProcessingPipeline& pipeline);

/// A number in the fewest digits that read back as the same number, whatever the locale.
std::string formatNumber(float value);
std::string formatNumber(double value);

/// The values that a parameter takes, with their unit: "-5 to 5 stops".
std::string describeRange(const Parameter& parameter);

/// The table of adjustments as help text.
std::string describeParameters();

/// The adjustments asked for on a command line.
struct ParameterOptions {
    std::vector<std::string> documents; ///< files of --params; members of later ones replace those of earlier ones
    std::vector<std::string> settings;  ///< name=value of --set, in order, after the documents
    bool strict = false;                ///< fail where there would be warnings

    /// Adds --params, --set and --strict to a command.
    void addTo(CLI::App& command);

    /// A pipeline with these adjustments and no stage active. Warns of what is ignored or limited.
    /// @throws UsageError for a setting that cannot be meant, Error for a document that cannot be read, and instead of
    /// warnings where they are not wanted
    ImageProcessingPipeline makePipeline() const;
};

} // namespace zqx::img::app
