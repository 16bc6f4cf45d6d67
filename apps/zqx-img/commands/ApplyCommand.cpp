// apply: what the user asked for, checked as a whole and handed to the run.
#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "commands/Commands.h"
#include "help/About.h"
#include "options/ParameterOptions.h"
#include "options/ReadingOptions.h"
#include "options/SizeOption.h"
#include "options/WritingOptions.h"
#include "terminal/Interrupts.h"
#include "terminal/RunReport.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/files/InputFile.h"
#include "zqx/text/Amounts.h"
#include "zqx/tools/batch/BatchPlan.h"
#include "zqx/tools/batch/BatchRun.h"
#include "zqx/tools/batch/InputList.h"
#include "zqx/tools/batch/MemoryGate.h"
#include "zqx/tools/batch/NameTemplate.h"
#include "zqx/tools/batch/Threads.h"
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
    LoadOptions loading;
    EncodeOptions encoding;
    bool noClobber = false;
    bool update = false;
    std::optional<unsigned> jobs;
    std::optional<unsigned> threads;
    std::uint64_t maxMemory = 0; // the default
    ReportOptions report;
};

bool isSameFile(const std::string& a, const std::string& b) {
    std::error_code failure;
    return std::filesystem::weakly_canonical(toPath(a), failure) ==
           std::filesystem::weakly_canonical(toPath(b), failure);
}

void checkOutputs(const ApplyOptions& options) {
    if (options.output.empty() == options.outputDirectory.empty()) {
        throw UsageError("apply", options.output.empty() ? "needs --output for one picture, or --output-dir for any "
                                                           "number of them"
                                                         : "takes --output or --output-dir, not both");
    }
    if (!options.output.empty() && options.inputs.size() > 1) {
        throw UsageError("--output", "is for one picture, name an --output-dir for several");
    }
    if (!options.nameTemplate.empty() && options.outputDirectory.empty()) {
        throw UsageError("--name", "needs an --output-dir");
    }
}

/// One picture and its output are as they are named; everything else is for many.
InputList findInputs(const ApplyOptions& options) {
    if (!options.output.empty()) {
        return {{{options.inputs.front(), ""}}, {}};
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
    const WorkSplit split = splitWork(countWork(plan), availableProcessors(), options.jobs, options.threads);
    MemoryGate gate(options.maxMemory != 0 ? options.maxMemory : defaultMemoryLimit());
    report.note(simdTarget() + ", " + std::to_string(split.jobs) + (split.jobs == 1 ? " picture" : " pictures") +
                " at once x " + std::to_string(split.threads) + (split.threads == 1 ? " thread" : " threads") +
                ", up to " + text::roundedSize(gate.limit()) + " of memory");
    makeFolders(plan, options.outputDirectory);
    runBatch(plan, options.comparison, settings, split, gate, report);
}

void checkComparison(const ApplyOptions& options, const std::vector<PlannedPicture>& plan) {
    if (options.comparison.empty()) {
        return;
    }
    if (plan.size() > 1) {
        throw UsageError("--before-after", "is for one picture");
    }
    if (!plan.empty() && isSameFile(plan.front().output, options.comparison)) {
        throw UsageError("--before-after", "needs another file than the output");
    }
}

void runApply(const ApplyOptions& options) {
    checkOutputs(options);
    const InputList found = findInputs(options);
    const std::vector<PlannedPicture> plan = planBatch(found.inputs, planOptions(options));
    checkComparison(options, plan);
    LoadOptions loading = options.loading;
    if (plan.size() > 1) {
        loading.isolateByDefault();
    }
    const ApplySettings settings{options.adjustments.makePipeline(), loading, options.encoding,
                                 options.noClobber ? OutputFile::Existing::KEEP : OutputFile::Existing::REPLACE};
    RunReport report(options.report, plan.size() + found.failures.size());
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
The format of an output follows its extension, that of an input its content. Photographs are turned upright. 8-bit
pictures stay 8-bit, 16-bit pictures 16-bit, float pictures (EXR, HDR, PFM, float TIFF) float, where the output allows
it; where it does not, the nearest that it holds is written and a warning says what is lost. 8-bit and 16-bit values are
taken as encoded for a screen, floats as linear light. EXR is always written with whole 32-bit floats, which hold half
floats exactly. Grey pictures stay grey: of a look that adds colour they take its red. With -o, INPUT and OUTPUT may be
the same file; an output appears whole or not at all. What is left neutral keeps every pixel exactly.

Alpha is straight: colour does not depend on it. Files that hold colour multiplied by alpha (EXR, as its format asks
for, and TIFF that says so) are divided after reading; EXR is multiplied again before writing. Where alpha is 0 colour
is left as it is. An EXR file that is written to an opaque format is taken as it looks in front of black.

Fields of --name: {stem} and {ext} of the input's name, {n} the picture's number in the run, {n:04} the same with zeros
in front, {dir} the input's folder below the folder that was named. A brace itself is written twice.

A picture that fails does not stop the others. Interrupted (Ctrl-C), a run leaves no partial file; the same command with
--update goes on from there.

The colour profile, Exif, XMP, IPTC and comments travel into OUTPUT as far as its format can hold them; what it cannot
is told, and --strip leaves them out. Thumbnails stay behind, since they show the picture as it was.

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

Exit codes: 0 done, 1 something failed (with many pictures: at least one), 2 the command line cannot be meant,
130 interrupted.
)";

void addInputOptions(CLI::App& command, ApplyOptions& options) {
    command.add_option("INPUT", options.inputs, "Pictures to adjust, and folders of pictures")
        ->type_name("FILE")
        ->required();
    command.add_flag("-r,--recursive", options.recursive, "Also the folders in folders");
}

void addOutputOptions(CLI::App& command, ApplyOptions& options) {
    command.add_option("-o,--output", options.output, "The picture to write, for one INPUT")->type_name("FILE");
    command.add_option("--output-dir", options.outputDirectory, "The folder to write to, made when missing")
        ->type_name("DIR");
    command
        .add_option("--name", options.nameTemplate,
                    "Names of the files in --output-dir; see below [{dir}/{stem}.{ext}]")
        ->type_name("TEMPLATE");
    addWritingOptions(command, options.encoding);
    command
        .add_option("--before-after", options.comparison, "Also write a picture: left half before, right half after")
        ->type_name("FILE");
    command.add_flag("--no-clobber", options.noClobber, "Skip pictures whose output exists");
    command.add_flag("--update", options.update,
                     "Skip pictures whose output is as new as the input and all --params files (--set has no date)");
    command.add_flag("--dry-run", options.report.dryRun, "Only list what would be written");
}

void addRunOptions(CLI::App& command, ApplyOptions& options) {
    constexpr unsigned MOST_THREADS = 1024;
    command.add_option("--jobs", options.jobs, "Pictures at once [one a processor]")
        ->check(CLI::Range(1U, MOST_THREADS))
        ->type_name("N");
    command.add_option("--threads", options.threads, "Threads for each picture, 0 for all [the processors left]")
        ->check(CLI::Range(0U, MOST_THREADS))
        ->type_name("N");
    addSizeOption(command, "--max-memory", options.maxMemory, "half of all",
                  "Memory for the pictures worked on at once");
    CLI::Option* const quiet = command.add_flag("-q,--quiet", options.report.quiet, "Say nothing but errors");
    command
        .add_flag("-v,--verbose", options.report.verbose,
                  "Tell the instruction set and threads used, and each picture's size, depth and times")
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
    addRunOptions(command, *options);
    command.footer(describeParameters() + FOOTER);
    command.callback([options] { runApply(*options); });
}

} // namespace zqx::app
