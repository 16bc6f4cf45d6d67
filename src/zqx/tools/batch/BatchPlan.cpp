// Outputs, collisions, and what need not be done.
#include "zqx/tools/batch/BatchPlan.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <iterator>
#include <set>
#include <system_error>
#include <unordered_map>
#include <unordered_set>

#include "zqx/pictures/FileFormat.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/files/InputFile.h"
#include "zqx/pictures/files/OutputFile.h"
#include "zqx/tools/batch/NameTemplate.h"

namespace zqx::tools {

using namespace pictures;

namespace fs = std::filesystem;

namespace {

/// One name for one file, whether it is there yet or not.
std::string identityOf(const std::string& name) {
    std::error_code failure;
    const fs::path path = fs::weakly_canonical(fs::absolute(toPath(name)), failure);
    return failure ? name : toName(path);
}

/// Names that differ in case alone are one file on many memory cards and disks, where the second picture would replace
/// the first without a word.
std::string foldCase(std::string name) {
    std::ranges::transform(name, name.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return name;
}

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
            throw pattern.usesExtension() ? UsageError(inputs[i].name, std::string("would become ") + error.what() +
                                                                           ", as with --name \"{dir}/{stem}.png\"")
                                          : error;
        }
        outputs.push_back(name);
    }
    return outputs;
}

void refuseSharedOutputs(const std::vector<Input>& inputs, const std::vector<std::string>& outputs,
                         const std::vector<std::string>& identities) {
    std::unordered_map<std::string, std::size_t> owners;
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        const auto [owner, isFirst] = owners.emplace(foldCase(identities[i]), i);
        if (isFirst) {
            continue;
        }
        const std::size_t first = owner->second;
        const std::string both = "would be written for both " + inputs[first].name + " and " + inputs[i].name;
        const bool same = outputs[first] == outputs[i];
        throw UsageError(outputs[i],
                         (same ? both : both + " (as " + outputs[first] + ", which many disks do not tell apart)") +
                             ", tell them apart as with --name \"{dir}/{stem}_{n:04}.{ext}\"");
    }
}

void refuseInputsAsOutputs(const std::vector<Input>& inputs, const std::vector<std::string>& outputs,
                           const std::vector<std::string>& identities) {
    std::unordered_set<std::string> read;
    for (const Input& input : inputs) {
        read.insert(identityOf(input.name));
    }
    for (std::size_t i = 0; i < outputs.size(); ++i) {
        if (read.contains(identities[i])) {
            throw UsageError(outputs[i], "would replace a picture that is read in this run, name another --output-dir "
                                         "or --name");
        }
    }
}

void refuseCollisions(const std::vector<Input>& inputs, const std::vector<std::string>& outputs) {
    std::vector<std::string> identities;
    std::ranges::transform(outputs, std::back_inserter(identities), identityOf);
    refuseSharedOutputs(inputs, outputs, identities);
    refuseInputsAsOutputs(inputs, outputs, identities);
}

bool exists(const std::string& name) {
    std::error_code failure;
    return fs::exists(toPath(name), failure);
}

/// When all outputs were written after all sources.
bool isUpToDate(const std::vector<std::string>& outputs, const std::vector<std::string>& sources) {
    const auto timeOf = [](const std::string& name, std::error_code& failure) {
        return fs::last_write_time(toPath(name), failure);
    };
    for (const std::string& output : outputs) {
        std::error_code failure;
        const fs::file_time_type written = timeOf(output, failure);
        for (const std::string& source : sources) {
            if (failure || timeOf(source, failure) > written) {
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
    if (options.output.empty()) { // a single picture may be replaced by itself
        refuseCollisions(inputs, outputs);
    }
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
            throw Error(toName(folder), "the folder cannot be made (" + failure.message() + ")");
        }
    }
}

} // namespace zqx::tools
