// params: the normalised parameter document, for keeping and for editing, and what there is to know about it.
#include <memory>

#include <CLI/CLI.hpp>

#include "commands/Commands.h"
#include "options/ParameterOptions.h"
#include "terminal/Output.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/files/OutputFile.h"
#include "zqx/tools/parameters/ParameterReference.h"
#include "zqx/tools/parameters/ParameterTable.h"

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

void requireSense(const ParamsOptions& options) {
    if (options.explain && options.schema) {
        throw UsageError("--schema", "does not go with --explain, write one document at a time");
    }
    if (options.json && !options.explain) {
        throw UsageError("--json", "goes with --explain only, the other documents are JSON anyway");
    }
    const ParameterOptions& adjustments = options.adjustments;
    if ((options.explain || options.schema) &&
        (!adjustments.documents.empty() || !adjustments.settings.empty() || adjustments.strict)) {
        throw UsageError(options.explain ? "--explain" : "--schema",
                         "does not depend on adjustments, leave --params, --set and --strict out");
    }
}

void runParams(const ParamsOptions& options) {
    requireSense(options);
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

Exit codes: 0 done, 1 something failed, 2 the command line cannot be meant.
)";

} // namespace

void addParamsCommand(CLI::App& program) {
    CLI::App& command =
        *program.add_subcommand("params", "Print the parameter document of the given adjustments, or explain it");
    const auto options = std::make_shared<ParamsOptions>();
    options->adjustments.addTo(command);
    command.add_flag("--explain", options->explain,
                     "Print every adjustment with its range, default, meaning and place instead");
    command.add_flag("--schema", options->schema, "Print a JSON Schema of the document instead, for editors");
    command.add_flag("--json", options->json, "With --explain: as JSON");
    command.add_option("-o,--output", options->output, "Write what is printed here instead")->type_name("FILE");
    command.footer(describeParameters() + FOOTER);
    command.callback([options] { runParams(*options); });
}

} // namespace zqx::app
