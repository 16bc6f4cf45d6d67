// The commands of the program. Each adds itself to the command line and runs when it is the one chosen.
#pragma once

namespace CLI {
class App;
}

namespace zqx::app {

/// apply: adjusts a picture file.
void addApplyCommand(CLI::App& program);
/// compare: tells how far two pictures are from each other.
void addCompareCommand(CLI::App& program);
/// preview: a small version of an adjusted picture, or a sheet of several.
void addPreviewCommand(CLI::App& program);
/// histogram: the values of a picture, drawn or counted.
void addHistogramCommand(CLI::App& program);
/// denoise: removes the noise of a render with the help of its albedo and normals.
void addDenoiseCommand(CLI::App& program);
/// params: writes the parameter document of the adjustments asked for.
void addParamsCommand(CLI::App& program);
/// lut: bakes the grading into a .cube lookup table.
void addLutCommand(CLI::App& program);
/// info: tells what a picture file holds.
void addInfoCommand(CLI::App& program);
/// help: explains the other commands, which have to be there already.
void addHelpCommand(CLI::App& program);

} // namespace zqx::app
