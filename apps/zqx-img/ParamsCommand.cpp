// params: the normalised parameter document, for keeping and for editing.
#include <cstdio>
#include <memory>

#include <CLI/CLI.hpp>

#include "Commands.h"
#include "Error.h"
#include "OutputFile.h"
#include "ParameterTable.h"

namespace zqx::img::app {

namespace {

struct ParamsOptions {
    ParameterOptions adjustments;
    std::string output;
};

void runParams(const ParamsOptions& options) {
    const std::string text = options.adjustments.makePipeline().saveParams() + "\n";
    if (!options.output.empty()) {
        OutputFile file(options.output);
        file.write(text);
        file.commit();
    } else if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() || std::fflush(stdout) != 0) {
        throw Error("standard output", "could not be written");
    }
}

} // namespace

void addParamsCommand(CLI::App& program) {
    CLI::App& command = *program.add_subcommand("params", "Print the parameter document of the given adjustments");
    const auto options = std::make_shared<ParamsOptions>();
    options->adjustments.addTo(command);
    command.add_option("-o,--output", options->output, "Write the document here instead")->type_name("FILE");
    command.footer(describeParameters() + "\nExample:\n  zqx-img params --set exposure=0.5 --set saturation=1.2 "
                                          "-o warm.json\n");
    command.callback([options] { runParams(*options); });
}

} // namespace zqx::img::app
