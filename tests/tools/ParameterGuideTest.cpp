// What the guide says of the parameters is what the program knows of them.
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "zqx/tools/parameters/ParameterTable.h"

namespace zqx::tools {

namespace {

std::string guide() {
    std::ifstream file(ZQX_PARAMETER_GUIDE, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// The guide's table is about the members of one object, so it leaves that object's name out.
std::string pickRow(const Parameter& parameter) {
    constexpr std::string_view OBJECT = "imageProcessing.";
    EXPECT_TRUE(parameter.path.starts_with(OBJECT)) << parameter.path;
    const std::string range = parameter.kind == Parameter::Kind::COLOR ? "r, g, b, a" : describeRange(parameter);
    return "\n| `" + std::string(parameter.path.substr(OBJECT.size())) + "` | " + range + " | ";
}

} // namespace

TEST(ParameterGuideTest, EveryParameterHasARowWithItsRange) {
    const std::string text = guide();
    for (const Parameter& parameter : parameters()) {
        EXPECT_NE(text.find(pickRow(parameter)), std::string::npos) << pickRow(parameter);
    }
}

TEST(ParameterGuideTest, TheShownDocumentIsTheNeutralOne) {
    const std::string text = guide();
    const std::string opening = "```json\n";
    const std::size_t begin = text.find(opening) + opening.size();
    std::string shown = text.substr(begin, text.find("```", begin) - begin);
    std::string neutral = img::ImageProcessingPipeline(0).saveParams();
    for (std::string* document : {&shown, &neutral}) { // the guide has its arrays on one line
        std::erase_if(*document, [](char c) { return c == ' ' || c == '\n'; });
    }
    EXPECT_EQ(shown, neutral);
}

} // namespace zqx::tools
