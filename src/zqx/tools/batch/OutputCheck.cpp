// Checks outputs against inputs and against each other.
#include <zqx/tools/OutputCheck.h>

#include <set>

#include "zqx/pictures/files/Error.h"
#include "zqx/tools/batch/FileIdentity.h"

namespace zqx::tools {

using namespace pictures;

namespace {

bool isSameFile(const std::string& a, const std::string& b) {
    FileSet files;
    files.insert(a);
    return files.contains(b);
}

void refuseInput(const Output& output, const std::string& input) {
    if (input.empty() || !isSameFile(input, output.name)) {
        return;
    }
    if (output.replaceable.empty() || !isSameFile(output.replaceable, input)) {
        throw UsageError(output.name, "would replace the input " + input + "; choose another name");
    }
}

void refuseSharedOutputs(const std::vector<Output>& outputs) {
    std::set<std::string> written;
    for (const Output& output : outputs) {
        if (!output.name.empty() && !written.insert(foldCase(canonicalName(output.name))).second) {
            throw UsageError(output.option, "is the same file as another output; choose another name");
        }
    }
}

} // namespace

void checkOutputs(const std::vector<std::string>& inputs, const std::vector<Output>& outputs) {
    for (const Output& output : outputs) {
        if (output.name.empty()) {
            continue;
        }
        for (const std::string& input : inputs) {
            refuseInput(output, input);
        }
    }
    refuseSharedOutputs(outputs);
}

} // namespace zqx::tools
