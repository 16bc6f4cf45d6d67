// The commands of the program. Each function adds a command to the command line, which runs it if it is chosen.
#pragma once

namespace CLI {
class App;
}

namespace zqx::app {

/// apply: adjusts picture files.
void addApplyCommand(CLI::App& program);
/// compare: reports how much two pictures differ.
void addCompareCommand(CLI::App& program);
/// preview: writes or shows a small version of an adjusted picture, or a contact sheet of several.
void addPreviewCommand(CLI::App& program);
/// histogram: draws or counts the distribution of values.
void addHistogramCommand(CLI::App& program);
/// denoise: removes noise from a render with the help of its albedo and normals.
void addDenoiseCommand(CLI::App& program);
/// params: prints the parameter document of the given adjustments.
void addParamsCommand(CLI::App& program);
/// lut: bakes the grading into a .cube lookup table.
void addLutCommand(CLI::App& program);
/// info: shows what a picture file contains.
void addInfoCommand(CLI::App& program);
/// help: explains the other commands, which must have been added before.
void addHelpCommand(CLI::App& program);

} // namespace zqx::app
