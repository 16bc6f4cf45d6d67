// The table of adjustments: what it says is what the classes, the parameter document and the guides do.
#include <zqx/img/Parameters.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <iterator>
#include <limits>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace zqx::img {

/// How the test framework shows one.
static void PrintTo(const Parameter& parameter, std::ostream* stream) {
    *stream << parameter.name;
}

} // namespace zqx::img

namespace {

using zqx::img::Color;
using zqx::img::ImageProcessingPipeline;
using zqx::img::Parameter;
using zqx::img::PARAMETERS;
using Kind = Parameter::Kind;

std::string describe(const Parameter& parameter) {
    return std::string(parameter.name);
}

class EveryParameterTest : public testing::TestWithParam<Parameter> {
protected:
    /// What the pipeline holds after a first element was set.
    float stored(float value) {
        GetParam().set(mPipeline, {value, 0.0F, 0.0F});
        return GetParam().get(mPipeline)[0];
    }

    ImageProcessingPipeline mPipeline{0};
};

std::string caseName(const testing::TestParamInfo<Parameter>& tested) {
    std::string name(tested.param.name);
    std::erase(name, '.');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Table, EveryParameterTest, testing::ValuesIn(PARAMETERS), caseName);

std::vector<Parameter> getParameters(Kind kind) {
    std::vector<Parameter> found;
    std::ranges::copy_if(PARAMETERS, std::back_inserter(found), [kind](const Parameter& p) { return p.kind == kind; });
    return found;
}

using EveryNumberTest = EveryParameterTest;
INSTANTIATE_TEST_SUITE_P(Table, EveryNumberTest, testing::ValuesIn(getParameters(Kind::NUMBER)), caseName);

using EverySwitchTest = EveryParameterTest;
INSTANTIATE_TEST_SUITE_P(Table, EverySwitchTest, testing::ValuesIn(getParameters(Kind::SWITCH)), caseName);

std::string getContent(const char* path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

std::string number(float value) {
    char digits[32];
    return {digits, std::to_chars(digits, digits + sizeof digits, value).ptr};
}

/// "-5 to 5 stops"
std::string formatRange(const Parameter& parameter) {
    return number(parameter.minimum) + " to " + number(parameter.maximum) +
           (parameter.unit.empty() ? "" : " " + std::string(parameter.unit));
}

} // namespace

TEST_P(EveryParameterTest, NewPipelineHasTheNeutralValue) {
    EXPECT_EQ(GetParam().get(mPipeline), GetParam().neutral);
}

TEST_P(EveryParameterTest, NeutralValueIsWithinTheRange) {
    if (GetParam().kind != Kind::COLOR) {
        EXPECT_LE(GetParam().minimum, GetParam().neutral[0]);
        EXPECT_GE(GetParam().maximum, GetParam().neutral[0]);
    }
}

TEST_P(EveryParameterTest, SettingChangesNothingElse) {
    const float other = GetParam().neutral[0] == 0.0F ? 1.0F : 0.75F;
    GetParam().set(mPipeline, {other, 0.25F, 0.5F});
    for (const Parameter& parameter : PARAMETERS) {
        EXPECT_EQ(parameter.get(mPipeline) == parameter.neutral, parameter.name != GetParam().name)
            << describe(parameter);
    }
}

TEST_P(EveryParameterTest, MemberIsTheLastPartOfItsPathInTheDocument) {
    const std::string path(GetParam().path);
    EXPECT_TRUE(path.starts_with("imageProcessing."));
    EXPECT_TRUE(path.ends_with("." + std::string(GetParam().member())));
    EXPECT_NE(mPipeline.saveParams().find('"' + std::string(GetParam().member()) + "\":"), std::string::npos);
}

TEST_P(EveryParameterTest, ItIsExplained) {
    EXPECT_FALSE(GetParam().meaning.empty());
    EXPECT_TRUE(GetParam().details.ends_with("."));
}

TEST_P(EveryParameterTest, DocumentRestoresIt) {
    const float other = GetParam().neutral[0] == 0.0F ? 1.0F : 0.75F;
    GetParam().set(mPipeline, {other, 0.25F, 0.5F});
    ImageProcessingPipeline restored(0);
    ASSERT_TRUE(restored.loadParams(mPipeline.saveParams()));
    EXPECT_EQ(GetParam().get(restored), GetParam().get(mPipeline));
}

TEST_P(EveryNumberTest, IsLimitedToTheRangeThatIsSaid) {
    constexpr float INFINITE = std::numeric_limits<float>::infinity();
    EXPECT_EQ(stored(GetParam().minimum), GetParam().minimum);
    EXPECT_EQ(stored(std::nextafter(GetParam().minimum, -INFINITE)), GetParam().minimum);
    EXPECT_EQ(stored(-INFINITE), GetParam().minimum);
    EXPECT_EQ(stored(GetParam().maximum), GetParam().maximum);
    EXPECT_EQ(stored(std::nextafter(GetParam().maximum, INFINITE)), GetParam().maximum);
    EXPECT_EQ(stored(INFINITE), GetParam().maximum);
    EXPECT_TRUE(std::isnan(stored(std::numeric_limits<float>::quiet_NaN())));
}

TEST_P(EverySwitchTest, IsOnForAnythingButZero) {
    EXPECT_EQ(stored(1.0F), 1.0F);
    EXPECT_EQ(stored(0.0F), 0.0F);
    EXPECT_EQ(stored(-0.5F), 1.0F);
}

TEST(ParametersTest, NamesAndPathsAreTheirOwn) {
    std::set<std::string_view> names;
    std::set<std::string_view> paths;
    for (const Parameter& parameter : PARAMETERS) {
        EXPECT_TRUE(names.insert(parameter.name).second) << describe(parameter);
        EXPECT_TRUE(paths.insert(parameter.path).second) << describe(parameter);
    }
}

TEST(ParametersTest, DocumentHasNoNumberOrSwitchThatTheTableLacks) {
    const std::string document = ImageProcessingPipeline(0).saveParams();
    std::set<std::string> members = {"imageProcessing", "version", "colorGrading", "gradientMap"};
    for (const Parameter& parameter : PARAMETERS) {
        members.insert(std::string(parameter.member()));
    }
    std::size_t seen = 0;
    for (std::size_t end = document.find("\":"); end != std::string::npos;
         end = document.find("\":", end + 1), ++seen) {
        const std::size_t begin = document.rfind('"', end - 1) + 1;
        EXPECT_TRUE(members.contains(document.substr(begin, end - begin))) << document.substr(begin, end - begin);
    }
    EXPECT_EQ(seen, members.size());
}

TEST(ParametersTest, EndsOfTheGradientAreSetOneByOneAndOpaque) {
    ImageProcessingPipeline pipeline(0);
    zqx::img::parameter::GRADIENT_BLACK.set(pipeline, {0.1F, 0.2F, 0.3F});
    zqx::img::parameter::GRADIENT_WHITE.set(pipeline, {0.7F, 0.8F, 2.0F});
    const zqx::img::ColorGradient& gradient = pipeline.getColorGrading().getGradientMap();
    EXPECT_EQ(gradient.getColorAt(0).compare(Color{0.1F, 0.2F, 0.3F, 1.0F}), 0);
    EXPECT_EQ(gradient.getColorAt(255).compare(Color{0.7F, 0.8F, 2.0F, 1.0F}), 0);
}

TEST(ParametersTest, TableIsKnownToTheCompiler) {
    static_assert(PARAMETERS.size() == 14);
    static_assert(PARAMETERS[0].name == "exposure");
    static_assert(zqx::img::parameter::TEMPERATURE.neutral[0] == 6500.0F);
}

TEST(ParametersTest, GuideNamesRangesAndNeutralValuesAsTheyAre) {
    const std::string guide = getContent(ZQX_GUIDE);
    ASSERT_FALSE(guide.empty());
    std::size_t named = 0;
    for (const Parameter& parameter : PARAMETERS) {
        const std::size_t place = guide.find("\n`" + std::string(parameter.name) + "`, ");
        if (parameter.kind != Kind::NUMBER || place == std::string::npos) {
            continue;
        }
        ++named;
        const std::string said = guide.substr(place, 100);
        EXPECT_NE(said.find("`, " + formatRange(parameter) + ","), std::string::npos) << said;
        EXPECT_NE(said.find("neutral " + number(parameter.neutral[0])), std::string::npos) << said;
    }
    EXPECT_EQ(named, 9U);
}

TEST(ParametersTest, DocumentGuideHasARowForEveryNumber) {
    const std::string guide = getContent(ZQX_PARAMETER_GUIDE);
    for (const Parameter& parameter : PARAMETERS) {
        if (parameter.kind == Kind::NUMBER) {
            const std::string row = "." + std::string(parameter.member()) + "` | " + formatRange(parameter) + " |";
            const std::string bare = "| `" + std::string(parameter.member()) + "` | " + formatRange(parameter) + " |";
            EXPECT_TRUE(guide.find(row) != std::string::npos || guide.find(bare) != std::string::npos) << row;
        }
    }
}
