// params: prints a parameter document with the given adjustments, or its description or schema.
#include <memory>

#include <CLI/CLI.hpp>

#include "commands/Commands.h"
#include "options/ParameterOptions.h"
#include "terminal/Output.h"
#include "zqx/pictures/FileFormat.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/files/OutputFile.h"
#include "zqx/tools/parameters/ParameterTable.h"
#include <zqx/tools/ParameterReference.h>

namespace zqx::app {

using namespace pictures;
using namespace tools;

namespace {

struct ParamsOptions {
    ParameterOptions adjustments;
    std::string output;
    bool explain = false;
    bool json = false;
    bool schema = false;
};

std::string makeText(const ParamsOptions& options) {
    if (options.schema) {
        return parameterSchema();
    }
    if (options.explain) {
        return options.json ? explainParametersAsJson() : explainParameters();
    }
    return options.adjustments.makePipeline().saveParams() + "\n";
}

void checkCombination(const ParamsOptions& options) {
    if (options.explain && options.schema) {
        throw UsageError("--schema", "cannot be combined with --explain");
    }
    if (options.json && !options.explain) {
        throw UsageError("--json", "requires --explain; all other output is JSON already");
    }
    const ParameterOptions& adjustments = options.adjustments;
    if ((options.explain || options.schema) &&
        (!adjustments.documents.empty() || !adjustments.settings.empty() || adjustments.strict)) {
        throw UsageError(options.explain ? "--explain" : "--schema",
                         "cannot be combined with --params, --set and --strict");
    }
}

/// The output is text; with the extension of a picture format it would be taken for a picture.
void checkOutput(const ParamsOptions& options) {
    if (formatOfName(options.output) != FileFormat::UNKNOWN) {
        throw UsageError(options.output,
                         "is the name of a picture, but the output is text; choose a name that ends in .json");
    }
    OutputFile::check(options.output);
}

void runParams(const ParamsOptions& options) {
    checkCombination(options);
    if (!options.output.empty()) {
        checkOutput(options);
    }
    const std::string text = makeText(options);
    if (!options.output.empty()) {
        OutputFile file(options.output);
        file.write(text);
        file.commit();
    } else {
        print(text);
    }
}

constexpr const char* FOOTER = R"(
Examples:
  zqx-img params --set exposure=0.5 --set saturation=1.2 -o warm.json
  zqx-img params --params base.json --params warm.json --strict
  zqx-img params --explain
  zqx-img params --schema -o parameters.schema.json

Exit codes: 0 success, 1 failure, 2 invalid command line.
)";

} // namespace

void addParamsCommand(CLI::App& program) {
    CLI::App& command =
        *program.add_subcommand("params", "Print the parameter document of the given adjustments, or describe it");
    const auto options = std::make_shared<ParamsOptions>();
    options->adjustments.addTo(command);
    command.add_flag("--explain", options->explain,
                     "Print a description of every parameter instead: range, default, meaning, place");
    command.add_flag("--schema", options->schema, "Print a JSON Schema of the document instead, for editors");
    command.add_flag("--json", options->json, "With --explain: print it as JSON");
    command.add_option("-o,--output", options->output, "Write to this file instead of standard output")
        ->type_name("FILE");
    command.footer(describeParameters() + FOOTER);
    command.callback([options] { runParams(*options); });
}

} // namespace zqx::app
