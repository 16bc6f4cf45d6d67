// Runs ExifTool.
#include "Exiftool.h"

#include <sstream>

#include <gtest/gtest.h>

#include <support/Process.h>

namespace zqx::img::test {

void writeTags(const std::string& name, std::vector<std::string> assignments) {
    assignments.insert(assignments.begin(), {"exiftool", "-q", "-q", "-m", "-overwrite_original", "-n"});
    assignments.push_back(name);
    const Outcome outcome = runCommand(assignments);
    ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
}

std::vector<std::string> getTags(const std::string& name, const std::vector<std::string>& tags) {
    std::vector<std::string> command{"exiftool", "-n", "-f", "-T"};
    for (const std::string& tag : tags) {
        command.push_back("-" + tag);
    }
    command.push_back(name);
    std::istringstream line(runCommand(command).out);
    std::vector<std::string> values;
    for (std::string value; std::getline(line, value, '\t');) {
        value.erase(value.find_last_not_of('\n') + 1);
        values.push_back(value);
    }
    return values;
}

std::string getTag(const std::string& name, const std::string& tag) {
    const std::vector<std::string> values = getTags(name, {tag});
    return values.empty() ? "" : values.front();
}

std::string bytesOfTag(const std::string& name, const std::string& tag) {
    return runCommand({"exiftool", "-b", "-" + tag, name}).out;
}

} // namespace zqx::img::test
