// apply: checks the combination of options, plans the run and starts it.
#include <algorithm>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include <zqx/img/Runtime.h>
#include <zqx/tools/Batch.h>
#include <zqx/tools/BatchPlan.h>
#include <zqx/tools/InputList.h>
#include <zqx/tools/MemoryGate.h>
#include <zqx/tools/NameTemplate.h>

#include "commands/Commands.h"
#include "help/About.h"
#include "options/MemoryOption.h"
#include "options/ParameterOptions.h"
#include "options/ReadingOptions.h"
#include "options/Validators.h"
#include "options/WritingOptions.h"
#include "terminal/Interrupts.h"
#include "terminal/RunReport.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/files/OutputFile.h"
#include "zqx/text/Amounts.h"
#include "zqx/tools/parameters/ParameterTable.h"

namespace zqx::app {

using namespace pictures;
using namespace tools;

namespace {

struct ApplyOptions {
    std::vector<std::string> inputs;
    bool recursive = false;
    std::string output;
    std::string outputDirectory;
    std::string nameTemplate;
    std::string comparison;
    ParameterOptions adjustments;
    ReadOptions loading;
    WriteOptions encoding;
    bool noClobber = false;
    bool update = false;
    std::optional<unsigned> jobs;
    std::optional<unsigned> threads;
    std::uint64_t memory = 0; ///< the default
    ReportOptions report;
};

void checkOutputOptions(const ApplyOptions& options) {
    if (options.output.empty() == options.outputDirectory.empty()) {
        throw UsageError("apply", options.output.empty()
                                      ? "missing output; give --output FILE for one picture, or --output-dir "
                                        "DIR for any number"
                                      : "--output cannot be combined with --output-dir");
    }
    if (!options.output.empty() && options.inputs.size() > 1) {
        throw UsageError("--output", "takes a single picture; use --output-dir for several");
    }
    if (!options.nameTemplate.empty() && options.outputDirectory.empty()) {
        throw UsageError("--name", "requires --output-dir");
    }
}

/// With --output, the single input is taken as it is; folders are for --output-dir.
InputList findInputs(const ApplyOptions& options) {
    if (!options.output.empty()) {
        InputList list;
        list.inputs.push_back({options.inputs.front(), ""});
        return list;
    }
    return listInputs(options.inputs, options.recursive, options.outputDirectory);
}

PlanOptions planOptions(const ApplyOptions& options) {
    PlanOptions plan;
    plan.output = options.output;
    plan.outputDirectory = options.outputDirectory;
    plan.nameTemplate = options.nameTemplate.empty() ? "{dir}/{stem}.{ext}" : options.nameTemplate;
    plan.comparison = options.comparison;
    plan.documents = options.adjustments.documents;
    plan.keepExisting = options.noClobber;
    plan.onlyOutdated = options.update;
    return plan;
}

std::size_t countWork(const std::vector<PlannedPicture>& plan) {
    return static_cast<std::size_t>(std::ranges::count_if(
        plan, [](const PlannedPicture& picture) { return picture.action != PlannedPicture::Action::SKIP; }));
}

void work(const ApplyOptions& options, const ApplySettings& settings, const std::vector<PlannedPicture>& plan,
          RunReport& report) {
    const WorkSplit split = splitWork(countWork(plan), img::availableProcessors(), options.jobs, options.threads);
    MemoryGate gate(options.memory != 0 ? options.memory : defaultMemoryLimit());
    report.note(std::string(img::instructionSet()) + ", " + std::to_string(split.jobs) +
                (split.jobs == 1 ? " picture" : " pictures") + " at once x " + std::to_string(split.threads) +
                (split.threads == 1 ? " thread" : " threads") + ", up to " + text::roundedSize(gate.limit()) +
                " of memory");
    makeFolders(plan, options.outputDirectory);
    runBatch(plan, options.comparison, settings, split, gate, report);
}

void runApply(const ApplyOptions& options) {
    checkOutputOptions(options);
    const InputList found = findInputs(options);
    const std::vector<PlannedPicture> plan = planBatch(found.inputs, planOptions(options));
    ReadOptions loading = options.loading;
    if (plan.size() > 1) {
        loading.isolateByDefault();
    }
    const ApplySettings settings{options.adjustments.makePipeline(), loading, options.encoding, options.noClobber};
    RunReport report(options.report, plan.size() + found.failures.size(), found.unreadable);
    const LastWords lastWords([&report] { report.concludeInterrupted(); });
    for (const auto& [name, reason] : found.failures) {
        report.finish({name, {}, PictureRecord::Status::FAILED, Error(name, reason).what()});
    }
    if (options.report.dryRun) {
        rehearseBatch(plan, !options.outputDirectory.empty(), report);
    } else {
        work(options, settings, plan, report);
    }
    report.conclude();
    if (!report.isHeard()) {
        throw Error("standard output", "could not be written");
    }
    if (report.totals().failed > 0) {
        throw ExitCode{1};
    }
}

constexpr const char* FOOTER = R"(
The output format follows from the file extension; the input format is detected from the content. Photographs are turned
upright. Pictures keep their depth - 8 bits, 16 bits or float (EXR, HDR, PFM, float TIFF) - where the output format
allows it; otherwise the nearest depth is written, and a warning says what is lost. 8-bit and 16-bit values are
gamma-encoded, floats are linear light. EXR is always written with 32-bit floats, which hold half floats exactly. Grey
pictures stay grey: of an adjustment that would tint them only the red channel remains. With -o, INPUT and OUTPUT may be
the same file. An output appears complete or not at all. Without adjustments every pixel keeps its exact value.

Alpha is unpremultiplied in memory: colours do not depend on it. Files with premultiplied alpha (EXR, and TIFF that says
so) are unpremultiplied after reading; EXR is premultiplied again when it is written. Colours of fully transparent
pixels are kept. An EXR file written to an opaque format looks as it does over black.

Fields of --name: {stem} and {ext}, the name of the input without its extension, and the extension; {n}, the number of
the picture in the run; {n:04}, the same padded with zeros; {dir}, the folder of the input relative to the folder given.
Braces themselves are doubled.

A picture that fails does not stop the others. An interrupted run (Ctrl-C) leaves no partial file; the same command with
--update continues from there.

Colour profile, Exif, XMP, IPTC and comments are copied to OUTPUT as far as its format can store them; a warning names
what it cannot, and --strip leaves them out. Thumbnails are dropped, since they show the picture as it was.

Lines for people show control characters of file names, and bytes that are not UTF-8, as escapes such as \x1B, also in
pipes; programs should read --json, which is valid UTF-8 with U+FFFD for such bytes.

Examples:
  zqx-img apply in.jpg -o out.jpg --set exposure=0.5 --set shadow=0.3 --quality 95
  zqx-img apply in.png -o out.png --params look.json --set saturation=0
  zqx-img apply in.png -o out.png --set gradient.intensity=1 --set gradient.white=1,0.8,0.6
  zqx-img apply in.exr -o out.png --set exposure=-1 --before-after compare.png
  zqx-img apply photos --recursive --output-dir graded --params look.json --update
  zqx-img apply *.tif --output-dir web --name "{stem}_{n:04}.jpg" --dry-run
  zqx-img apply in.jpg -o public.jpg --strip exif,xmp,iptc

Exit codes: 0 success, 1 failure (of at least one picture), 2 invalid command line (nothing was done), 130 interrupted.
)";

void addInputOptions(CLI::App& command, ApplyOptions& options) {
    command.add_option("INPUT", options.inputs, "Pictures to adjust, and folders of pictures")
        ->type_name("FILE")
        ->required();
    command.add_flag("-r,--recursive", options.recursive, "Include subfolders");
}

void addOutputOptions(CLI::App& command, ApplyOptions& options) {
    command.add_option("-o,--output", options.output, "The picture to write, for one INPUT")->type_name("FILE");
    command.add_option("--output-dir", options.outputDirectory, "The folder to write to, created if missing")
        ->type_name("DIR");
    command
        .add_option("--name", options.nameTemplate,
                    "Names of the files in --output-dir, see below [{dir}/{stem}.{ext}]")
        ->type_name("TEMPLATE");
    addWritingOptions(command, options.encoding);
    command
        .add_option("--before-after", options.comparison,
                    "Also write a picture whose left half is the input, whose right half the output")
        ->type_name("FILE");
    command.add_flag("--no-clobber", options.noClobber, "Skip pictures whose output exists");
    command.add_flag("--update", options.update,
                     "Skip pictures whose output is as new as the input and all --params files");
    command.add_flag("--dry-run", options.report.dryRun, "List what would be written, and write nothing");
}

void addRunOptions(CLI::App& command, ApplyOptions& options) {
    constexpr unsigned MOST_THREADS = 1024;
    command.add_option("--jobs", options.jobs, "Pictures to process at once [one per processor]")
        ->check(wholeNumber(1, MOST_THREADS))
        ->type_name("N");
    command.add_option("--threads", options.threads, "Threads for each picture, 0 for all [the remaining processors]")
        ->check(wholeNumber(0, MOST_THREADS))
        ->type_name("N");
    CLI::Option* const quiet = command.add_flag("-q,--quiet", options.report.quiet, "Print nothing but errors");
    command
        .add_flag("-v,--verbose", options.report.verbose,
                  "Print the instruction set and threads used, and the size, depth and times of each picture")
        ->excludes(quiet);
    command.add_flag("--json", options.report.json, "Print a line of JSON for each picture, and one at the end");
}

} // namespace

void addApplyCommand(CLI::App& program) {
    CLI::App& command = *program.add_subcommand("apply", "Adjust picture files");
    const auto options = std::make_shared<ApplyOptions>();
    addInputOptions(command, *options);
    addOutputOptions(command, *options);
    options->adjustments.addTo(command);
    addReadingOptions(command, options->loading);
    addMemoryOption(command, options->memory);
    addRunOptions(command, *options);
    command.footer(describeParameters() + FOOTER);
    command.callback([options] { runApply(*options); });
}

} // namespace zqx::app
