// What the program tells of its parameters: the explanation, and the schema as another program understands it.
#include <sstream>

#include <rapidjson/document.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>

#include "cli/Program.h"

namespace zqx::img::test {

namespace {

rapidjson::Document parse(const std::string& text) {
    rapidjson::Document document;
    document.Parse(text.c_str());
    EXPECT_FALSE(document.HasParseError()) << text;
    return document;
}

/// A document that has a value at a path, and the version.
std::string documentWith(const std::string& path, const std::string& value) {
    std::string opened;
    std::string closed;
    std::istringstream names(path);
    for (std::string name; std::getline(names, name, '.');) {
        const bool isVersioned = opened == R"({"imageProcessing": )" && name != "version";
        opened.append(isVersioned ? R"({"version": 1, ")" : R"({")").append(name).append(R"(": )");
        closed += '}';
    }
    return opened + value + closed;
}

/// Builds the document that a schema's defaults and constants make.
rapidjson::Value getDefaults(const rapidjson::Value& schema, rapidjson::Document::AllocatorType& allocator) {
    for (const char* key : {"const", "default"}) {
        if (schema.HasMember(key)) {
            return {schema[key], allocator};
        }
    }
    rapidjson::Value object(rapidjson::kObjectType);
    if (schema.HasMember("properties")) {
        for (const auto& property : schema["properties"].GetObject()) {
            if (property.name != "$schema") {
                object.AddMember(rapidjson::Value(property.name, allocator), getDefaults(property.value, allocator),
                                 allocator);
            }
        }
    }
    return object;
}

class ParameterSchemaTest : public ProgramTest {
protected:
    ParameterSchemaTest() { succeed({"params", "--schema", "-o", at("schema.json")}); }

    rapidjson::Document schema() const { return parse(readFile(at("schema.json"))); }

    static rapidjson::Document explanation() { return parse(zqxImg({"params", "--explain", "--json"}).out); }

    /// Expects that the schema and the program alike accept a document, or do not.
    void expectAccepted(bool accepted, const std::string& text) {
        const std::string name = at(std::to_string(mNames.size()) + ".json");
        writeFile(name, text);
        mNames.push_back(name);
        mVerdicts += accepted ? "valid\n" : "invalid\n";
        EXPECT_EQ(zqxImg({"params", "--strict", "--params", name}).exitCode, accepted ? 0 : 1) << text;
    }

    /// Has all documents judged by an independent validator at once, which takes long to start.
    void TearDown() override {
        std::vector<std::string> command = {"python3", ZQX_VALIDATE, at("schema.json")};
        command.insert(command.end(), mNames.begin(), mNames.end());
        const Outcome outcome = runCommand(command);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        EXPECT_EQ(outcome.out, mVerdicts);
    }

private:
    std::vector<std::string> mNames;
    std::string mVerdicts;
};

} // namespace

TEST_F(ParameterSchemaTest, NeutralDocumentIsValid) {
    expectAccepted(true, zqxImg({"params"}).out);
}

TEST_F(ParameterSchemaTest, DefaultsMakeTheNeutralDocument) {
    rapidjson::Document defaults;
    const rapidjson::Document neutral = parse(zqxImg({"params"}).out);
    const rapidjson::Document read = schema();
    defaults.CopyFrom(getDefaults(read, defaults.GetAllocator()), defaults.GetAllocator());
    EXPECT_EQ(defaults, neutral);
}

TEST_F(ParameterSchemaTest, NumbersAreValidWithinTheirRangeOnly) {
    int numbers = 0;
    const rapidjson::Document read = explanation();
    for (const auto& parameter : read["parameters"].GetArray()) {
        if (parameter["kind"] == "number") {
            ++numbers;
            const std::string path = parameter["path"].GetString();
            const double minimum = parameter["minimum"].GetDouble();
            const double maximum = parameter["maximum"].GetDouble();
            expectAccepted(true, documentWith(path, std::to_string(minimum)));
            expectAccepted(true, documentWith(path, std::to_string(maximum)));
            expectAccepted(false, documentWith(path, std::to_string(minimum - 0.01)));
            expectAccepted(false, documentWith(path, std::to_string(maximum + 0.01)));
            expectAccepted(false, documentWith(path, "\"0\""));
        }
    }
    EXPECT_EQ(numbers, 9);
}

TEST_F(ParameterSchemaTest, HighlightAndShadowHaveTheRangesOfTheGradingItself) {
    expectAccepted(true, documentWith("imageProcessing.colorGrading.highlight", "8"));
    expectAccepted(false, documentWith("imageProcessing.colorGrading.highlight", "8.5"));
    expectAccepted(false, documentWith("imageProcessing.colorGrading.highlight", "-1.5"));
    expectAccepted(true, documentWith("imageProcessing.colorGrading.shadow", "-8"));
    expectAccepted(false, documentWith("imageProcessing.colorGrading.shadow", "-8.5"));
    expectAccepted(false, documentWith("imageProcessing.colorGrading.shadow", "1.5"));
}

TEST_F(ParameterSchemaTest, SwitchesAreTrueOrFalse) {
    for (const char* name : {"inversionEnabled", "flipX", "flipY"}) {
        expectAccepted(true, documentWith(std::string("imageProcessing.") + name, "true"));
        expectAccepted(false, documentWith(std::string("imageProcessing.") + name, "1"));
        expectAccepted(false, documentWith(std::string("imageProcessing.") + name, "null"));
    }
}

TEST_F(ParameterSchemaTest, GradientTakesTwoColorsOfFourNumbers) {
    const auto gradient = [](const std::string& members) {
        return documentWith("imageProcessing.colorGrading.gradientMap", "{" + members + "}");
    };
    expectAccepted(true, gradient(R"("black": [-1, 0, 0, 1], "white": [1, 2e3, 1, 0])"));
    expectAccepted(true, gradient(R"("intensity": 1)"));
    expectAccepted(false, gradient(R"("black": [0, 0, 0, 1])"));
    expectAccepted(false, gradient(R"("white": [0, 0, 0, 1])"));
    expectAccepted(false, gradient(R"("black": [0, 0, 0], "white": [1, 1, 1, 1])"));
    expectAccepted(false, gradient(R"("black": [0, 0, 0, 1], "white": [1, 1, 1, 1, 1])"));
    expectAccepted(false, gradient(R"("black": [0, 0, 0, 1], "white": [1, "1", 1, 1])"));
    expectAccepted(false, gradient(R"("black": [0, 0, 0, 1], "white": [1, 3.5e38, 1, 1])"));
    expectAccepted(true, gradient(R"("black": [0, 0, 0, 1], "white": [1, 3.4028234e38, 1, 1])"));
}

TEST_F(ParameterSchemaTest, UnknownMembersAreInvalidOnEveryLevel) {
    expectAccepted(false, R"({"imageProcessing": {"version": 1}, "author": "me"})");
    expectAccepted(false, documentWith("imageProcessing.exposure", "1"));
    expectAccepted(false, documentWith("imageProcessing.colorGrading.flipX", "true"));
    expectAccepted(false, documentWith("imageProcessing.colorGrading.gradientMap.grey", "[0, 0, 0, 1]"));
}

TEST_F(ParameterSchemaTest, VersionIsRequired) {
    expectAccepted(true, documentWith("imageProcessing.version", "1"));
    expectAccepted(false, documentWith("imageProcessing.version", "2"));
    expectAccepted(false, documentWith("imageProcessing.version", "\"1\""));
    expectAccepted(false, R"({"imageProcessing": {}})");
    expectAccepted(false, "{}");
    expectAccepted(false, "[]");
}

TEST_F(ParameterSchemaTest, DocumentsMayNameTheirSchema) {
    expectAccepted(true, R"({"$schema": "schema.json", "imageProcessing": {"version": 1}})");
    expectAccepted(false, R"({"$schema": 1, "imageProcessing": {"version": 1}})");
}

TEST_F(ParameterSchemaTest, ExplanationNamesEveryParameterInLinesThatFit) {
    const Outcome outcome = zqxImg({"params", "--explain"});
    EXPECT_EQ(outcome.exitCode, 0);
    const rapidjson::Document read = explanation();
    EXPECT_EQ(read["parameters"].Size(), 14U);
    for (const auto& parameter : read["parameters"].GetArray()) {
        const std::size_t row = outcome.out.find(std::string("\n") + parameter["name"].GetString() + " ");
        ASSERT_NE(row, std::string::npos) << parameter["name"].GetString();
        const std::string line = outcome.out.substr(row + 1, outcome.out.find('\n', row + 1) - row - 1);
        EXPECT_TRUE(line.ends_with(std::string(" ") + parameter["path"].GetString())) << line;
    }
    std::istringstream lines(outcome.out);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_LE(line.size(), 100U) << line;
    }
}

TEST_F(ParameterSchemaTest, ExplanationTellsRangeUnitAndDefault) {
    EXPECT_NE(
        zqxImg({"params", "--explain"})
            .out.find("\ntemperature         2500 to 10500 K      6500     imageProcessing.colorGrading.temperature"
                      "\n    Colour of the light corrected for"),
        std::string::npos);
    const rapidjson::Document read = explanation();
    const auto& temperature = read["parameters"][4];
    EXPECT_STREQ(temperature["name"].GetString(), "temperature");
    EXPECT_EQ(temperature["minimum"].GetDouble(), 2500.0);
    EXPECT_EQ(temperature["maximum"].GetDouble(), 10500.0);
    EXPECT_STREQ(temperature["unit"].GetString(), "K");
    EXPECT_EQ(temperature["default"].GetDouble(), 6500.0);
}

TEST_F(ParameterSchemaTest, NamesAndPathsOfTheExplanationMeanTheSame) {
    const rapidjson::Document read = explanation();
    for (const auto& parameter : read["parameters"].GetArray()) {
        const std::string kind = parameter["kind"].GetString();
        if (kind == "color") {
            continue; // needs its other half in a document
        }
        const std::string value = kind == "switch" ? "true" : std::to_string(parameter["maximum"].GetDouble());
        writeFile(at("in.json"), documentWith(parameter["path"].GetString(), value));
        const Outcome set = zqxImg({"params", "--set", parameter["name"].GetString() + ("=" + value)});
        EXPECT_EQ(set.out, zqxImg({"params", "--params", at("in.json")}).out) << parameter["name"].GetString();
        EXPECT_NE(set.out, zqxImg({"params"}).out);
    }
}

TEST_F(ParameterSchemaTest, ExplanationsCanBeWrittenToFiles) {
    succeed({"params", "--explain", "-o", at("a.txt")});
    succeed({"params", "--explain", "--json", "-o", at("a.json")});
    EXPECT_EQ(readFile(at("a.txt")), zqxImg({"params", "--explain"}).out);
    EXPECT_EQ(readFile(at("a.json")), zqxImg({"params", "--explain", "--json"}).out);
    EXPECT_EQ(readFile(at("schema.json")), zqxImg({"params", "--schema"}).out);
}

} // namespace zqx::img::test
