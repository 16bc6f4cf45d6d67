// Names the outputs, refuses collisions and skips pictures that need not be processed.
#include <zqx/tools/BatchPlan.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <map>
#include <set>
#include <system_error>

#include <zqx/tools/NameTemplate.h>
#include <zqx/tools/OutputCheck.h>

#include "zqx/pictures/FileFormat.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/files/FileNames.h"
#include "zqx/tools/batch/FileIdentity.h"

namespace zqx::tools {

using namespace pictures;

namespace fs = std::filesystem;

namespace {

std::vector<std::string> nameOutputs(const std::vector<Input>& inputs, const PlanOptions& options) {
    std::vector<std::string> outputs;
    if (!options.output.empty()) {
        outputFormat(options.output);
        outputs.assign(inputs.size(), options.output);
        return outputs;
    }
    const NameTemplate pattern(options.nameTemplate);
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        const std::string name = toName(toPath(options.outputDirectory) / toPath(pattern.expand(inputs[i], i + 1)));
        try {
            outputFormat(name);
        } catch (const UsageError& error) {
            throw pattern.usesExtension()
                ? UsageError(inputs[i].name, std::string("would become ") + error.what() +
                                                 ", for example with --name \"{dir}/{stem}.png\"")
                : error;
        }
        outputs.push_back(name);
    }
    return outputs;
}

void refuseSharedOutputs(const std::vector<Input>& inputs, const std::vector<std::string>& outputs) {
    std::map<std::string, std::size_t> owners;
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        const auto [owner, isFirst] = owners.emplace(foldCase(canonicalName(outputs[i])), i);
        if (isFirst) {
            continue;
        }
        const std::size_t first = owner->second;
        const std::string both = "would be written for both " + inputs[first].name + " and " + inputs[i].name;
        const bool same = outputs[first] == outputs[i];
        throw UsageError(outputs[i],
                         (same ? both : both + " (as " + outputs[first] + ", which is the same name on many disks)") +
                             "; give them different names, for example with --name \"{dir}/{stem}_{n:04}.{ext}\"");
    }
}

void refuseInputsAsOutputs(const std::vector<std::string>& read, const std::vector<std::string>& outputs) {
    FileSet inputs;
    for (const std::string& name : read) {
        inputs.insert(name);
    }
    for (const std::string& output : outputs) {
        if (inputs.contains(output)) {
            throw UsageError(output, "would replace a picture that this run reads; choose another --output-dir or "
                                     "--name");
        }
    }
}

void refuseCollisions(const std::vector<Input>& inputs, const std::vector<std::string>& outputs,
                      const PlanOptions& options) {
    std::vector<std::string> read = options.documents;
    std::ranges::transform(inputs, std::back_inserter(read), &Input::name);
    refuseSharedOutputs(inputs, outputs);
    if (options.output.empty()) {
        refuseInputsAsOutputs(read, outputs);
    }
    if (outputs.size() == 1) { // if the output was named explicitly, it may replace its input
        checkOutputs(read, {{"--output", outputs.front(), options.output.empty() ? "" : inputs.front().name},
                            {"--before-after", options.comparison}});
    } else if (!outputs.empty() && !options.comparison.empty()) {
        throw UsageError("--before-after", "takes a single picture");
    }
}

bool exists(const std::string& name) {
    std::error_code failure;
    return fs::exists(toPath(name), failure);
}

/// Whether all outputs are as new as all sources.
bool isUpToDate(const std::vector<std::string>& outputs, const std::vector<std::string>& sources) {
    const auto getTime = [](const std::string& name, std::error_code& failure) {
        return fs::last_write_time(toPath(name), failure);
    };
    for (const std::string& output : outputs) {
        std::error_code failure;
        const fs::file_time_type written = getTime(output, failure);
        for (const std::string& source : sources) {
            if (failure || getTime(source, failure) > written) {
                return false;
            }
        }
        if (failure) {
            return false;
        }
    }
    return true;
}

PlannedPicture planPicture(const Input& input, const std::string& output, const PlanOptions& options) {
    using enum PlannedPicture::Action;
    std::vector<std::string> outputs{output};
    if (!options.comparison.empty()) {
        outputs.push_back(options.comparison);
    }
    if (options.keepExisting && std::ranges::any_of(outputs, exists)) {
        return {input.name, output, SKIP, "exists"};
    }
    if (options.onlyOutdated) {
        std::vector<std::string> sources = options.documents;
        sources.push_back(input.name);
        if (isUpToDate(outputs, sources)) {
            return {input.name, output, SKIP, "up to date"};
        }
    }
    return {input.name, output, exists(output) ? REPLACE : CREATE, ""};
}

} // namespace

std::vector<PlannedPicture> planBatch(const std::vector<Input>& inputs, const PlanOptions& options) {
    const std::vector<std::string> outputs = nameOutputs(inputs, options);
    refuseCollisions(inputs, outputs, options);
    std::vector<PlannedPicture> plan;
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        plan.push_back(planPicture(inputs[i], outputs[i], options));
    }
    return plan;
}

void makeFolders(const std::vector<PlannedPicture>& plan, const std::string& outputDirectory) {
    std::set<fs::path> folders;
    if (!outputDirectory.empty()) {
        for (const PlannedPicture& picture : plan) {
            if (picture.action != PlannedPicture::Action::SKIP) {
                folders.insert(toPath(picture.output).parent_path());
            }
        }
    }
    for (const fs::path& folder : folders) {
        std::error_code failure;
        fs::create_directories(folder, failure);
        if (failure && !fs::is_directory(folder)) {
            throw Error(toName(folder), "the folder cannot be created (" + failure.message() + ")");
        }
    }
}

} // namespace zqx::tools
