// Parameter documents on the command line: several over each other, what is said about their faults, and refusals.
#include <sstream>

#include "cli/Program.h"

namespace zqx::img::test {

namespace {

std::string document(const std::string& members) {
    return R"({"imageProcessing": {"version": 1)" + (members.empty() ? "" : ", " + members) + "}}";
}

std::string grading(const std::string& members) {
    return document("\"colorGrading\": {" + members + "}");
}

class ParameterDocumentTest : public ProgramTest {
protected:
    using Lines = std::vector<std::string>;

    /// The parameters that come of documents, each written to a file of its own: 0.json, 1.json ...
    Outcome merge(const Lines& documents, const Lines& more = {}) const {
        Lines arguments = {"params"};
        for (std::size_t i = 0; i < documents.size(); ++i) {
            const std::string name = at(std::to_string(i) + ".json");
            writeFile(name, documents[i]);
            arguments.insert(arguments.end(), {"--params", name});
        }
        arguments.insert(arguments.end(), more.begin(), more.end());
        return zqxImg(arguments);
    }

    /// What is said, line by line, about documents that are taken; without the folder.
    Lines warnings(const Lines& documents, const Lines& more = {}) const {
        const Outcome outcome = merge(documents, more);
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_NE(outcome.out, "");
        return getLines(outcome.err, "zqx-img: warning: ");
    }

    Lines getLines(const std::string& text, const std::string& prefix) const {
        Lines result;
        std::istringstream lines(text);
        for (std::string line; std::getline(lines, line);) {
            EXPECT_TRUE(line.starts_with(prefix)) << line;
            line.erase(0, prefix.size());
            const std::string folder = at("");
            if (line.starts_with(folder)) {
                line.erase(0, folder.size());
            }
            result.push_back(line);
        }
        return result;
    }

    /// What is said about a document that is refused; without the folder.
    std::string refusal(const std::string& text) const {
        const Outcome outcome = merge({text});
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_EQ(outcome.out, "");
        const Lines lines = getLines(outcome.err, "zqx-img: ");
        EXPECT_EQ(lines.size(), 1U) << outcome.err;
        return lines.empty() ? "" : lines[0];
    }
};

} // namespace

TEST_F(ParameterDocumentTest, MembersOfLaterDocumentsReplaceThoseOfEarlierOnes) {
    const Outcome merged =
        merge({document(R"("flipX": true, "sharpness": 0.5, "colorGrading": {"exposure": 1, "hue": 20, "gradientMap":
                  {"intensity": 0.5, "black": [0.5, 0.5, 0.5, 1], "white": [0, 1, 0, 1]}})"),
               document(R"("sharpness": 0.25, "flipY": true, "colorGrading": {"exposure": 2, "gradientMap":
                  {"black": [0.25, 0, 0, 1]}})"),
               document(R"("flipY": false, "colorGrading": {"contrast": 0.75}, "inversionEnabled": true)")});
    const Outcome expected = merge({document(
        R"("flipX": true, "sharpness": 0.25, "flipY": false, "inversionEnabled": true, "colorGrading":
        {"exposure": 2, "hue": 20, "contrast": 0.75, "gradientMap":
        {"intensity": 0.5, "black": [0.25, 0, 0, 1], "white": [0, 1, 0, 1]}})")});
    EXPECT_EQ(merged.out, expected.out);
    EXPECT_EQ(merged.err, "");
    EXPECT_NE(merged.out, zqxImg({"params"}).out);
}

TEST_F(ParameterDocumentTest, TheLastDocumentWins) {
    const std::string one = grading("\"exposure\": 1");
    const std::string two = grading("\"exposure\": 2");
    EXPECT_EQ(merge({one, two}).out, merge({two}).out);
    EXPECT_EQ(merge({two, one}).out, merge({one}).out);
    EXPECT_NE(merge({one}).out, merge({two}).out);
}

TEST_F(ParameterDocumentTest, NeutralValuesReplaceOthers) {
    EXPECT_EQ(merge({grading("\"exposure\": 1"), zqxImg({"params"}).out}).out, zqxImg({"params"}).out);
}

TEST_F(ParameterDocumentTest, SettingsGoOverAllDocuments) {
    writeFile(at("a.json"), grading("\"exposure\": 1"));
    writeFile(at("b.json"), grading("\"exposure\": 2"));
    const Outcome outcome =
        zqxImg({"params", "--set", "exposure=3", "--params", at("a.json"), "--params", at("b.json")});
    EXPECT_EQ(outcome.out, zqxImg({"params", "--set", "exposure=3"}).out);
}

TEST_F(ParameterDocumentTest, EveryCommandTakesSeveralDocuments) {
    writeFile(at("a.json"), document("\"flipX\": true"));
    writeFile(at("b.json"), document("\"flipY\": true"));
    succeed({"apply", ZQX_SAMPLE, "-o", at("ab.png"), "--params", at("a.json"), "--params", at("b.json")});
    succeed({"apply", ZQX_SAMPLE, "-o", at("set.png"), "--set", "flipX=on", "--set", "flipY=on"});
    EXPECT_EQ(readFile(at("ab.png")), readFile(at("set.png")));
}

TEST_F(ParameterDocumentTest, EachDocumentHasToBeOne) {
    const Outcome outcome = merge({document(""), R"({"imageProcessing": {"flipX": true}})", document("")});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.err, "zqx-img: " + at("1.json") +
                               ": is not a parameter document of version 1 (imageProcessing.version is missing); "
                               "\"zqx-img params\" prints a valid one\n");
}

TEST_F(ParameterDocumentTest, UnknownMembersSuggestTheNearest) {
    EXPECT_EQ(warnings({grading("\"exposur\": 1")}),
              Lines{"0.json: imageProcessing.colorGrading.exposur is unknown; did you mean \"exposure\"? It is "
                    "ignored"});
    EXPECT_EQ(warnings({document(R"("Sharpness": 1, "flipx": true)")}),
              (Lines{"0.json: imageProcessing.Sharpness is unknown; did you mean \"sharpness\"? It is ignored",
                     "0.json: imageProcessing.flipx is unknown; did you mean \"flipX\"? It is ignored"}));
    EXPECT_EQ(warnings({grading(R"("gradientMap": {"intensiti": 1})")}),
              Lines{"0.json: imageProcessing.colorGrading.gradientMap.intensiti is unknown; did you mean "
                    "\"intensity\"? It is ignored"});
}

TEST_F(ParameterDocumentTest, MisplacedMembersSuggestTheirPlace) {
    EXPECT_EQ(warnings({document("\"exposure\": 1")}),
              Lines{"0.json: imageProcessing.exposure is unknown; did you mean "
                    "\"imageProcessing.colorGrading.exposure\"? It is ignored"});
    EXPECT_EQ(warnings({R"({"imageProcessing": {"version": 1}, "flipX": true})"}),
              Lines{"0.json: flipX is unknown; did you mean \"imageProcessing.flipX\"? It is ignored"});
}

TEST_F(ParameterDocumentTest, NamesOfSettingsSuggestTheirMembers) {
    EXPECT_EQ(warnings({document("\"invert\": true")}),
              Lines{"0.json: imageProcessing.invert is unknown; did you mean \"inversionEnabled\"? It is ignored"});
}

TEST_F(ParameterDocumentTest, MembersLikeNothingElseGetTheNamesThatThereAre) {
    EXPECT_EQ(warnings({R"({"imageProcessing": {"version": 1}, "author": "me"})"}),
              Lines{"0.json: author is unknown (known members: $schema, imageProcessing). It is ignored"});
}

TEST_F(ParameterDocumentTest, WarningsNameTheDocumentTheyAreAbout) {
    EXPECT_EQ(warnings({document(""), document("\"flipZ\": true"), document("\"flipX\": 1")}),
              (Lines{"1.json: imageProcessing.flipZ is unknown; did you mean \"flipX\"? It is ignored",
                     "2.json: imageProcessing.flipX is a number but must be true or false. It is ignored"}));
}

TEST_F(ParameterDocumentTest, MembersOfAWrongTypeAreIgnoredAloud) {
    const std::pair<const char*, const char*> cases[] = {
        {R"("sharpness": "0.5")", "sharpness is a string but must be a number from -1 to 1"},
        {R"("sharpness": null)", "sharpness is null but must be a number from -1 to 1"},
        {R"("sharpness": [0.5])", "sharpness is an array of 1 but must be a number from -1 to 1"},
        {R"("flipX": "yes")", "flipX is a string but must be true or false"},
        {R"("inversionEnabled": 1)", "inversionEnabled is a number but must be true or false"},
        {R"("colorGrading": 5)", "colorGrading is a number but must be an object"},
        {R"("colorGrading": {"hue": true})", "colorGrading.hue is true but must be a number from -180 to 180"},
        {R"("colorGrading": {"gradientMap": []})", "colorGrading.gradientMap is an array of 0 but must be an object"},
    };
    for (const auto& [members, words] : cases) {
        EXPECT_EQ(warnings({document(members)}),
                  Lines{std::string("0.json: imageProcessing.") + words + ". It is ignored"});
        EXPECT_EQ(merge({document(members)}).out, zqxImg({"params"}).out) << members;
    }
}

TEST_F(ParameterDocumentTest, ColorsHaveFourNumbers) {
    const std::string path = "0.json: imageProcessing.colorGrading.gradientMap.black ";
    const std::pair<const char*, const char*> cases[] = {
        {"[0, 0, 0]", "is an array of 3"}, {"[0, 0, 0, \"1\"]", "is an array of 4"}, {"{\"r\": 1}", "is an object"}};
    for (const auto& [color, words] : cases) {
        const Lines lines =
            warnings({grading(std::string(R"("gradientMap": {"white": [0, 1, 0, 1], "black": )") + color + "}")});
        ASSERT_EQ(lines.size(), 2U);
        EXPECT_EQ(lines[0], path + words + " but must be four numbers [r, g, b, a]. It is ignored");
        EXPECT_EQ(lines[1], "0.json: imageProcessing.colorGrading.gradientMap.white has no effect without "
                            "imageProcessing.colorGrading.gradientMap.black. It is ignored");
    }
}

TEST_F(ParameterDocumentTest, ALoneEndOfTheGradientIsIgnoredAloud) {
    const Outcome outcome = merge({grading(R"("gradientMap": {"black": [1, 0, 0, 1]})"), document("")});
    EXPECT_EQ(outcome.out, zqxImg({"params"}).out);
    EXPECT_EQ(outcome.err, "zqx-img: warning: " + at("0.json") +
                               ": imageProcessing.colorGrading.gradientMap.black has no effect without "
                               "imageProcessing.colorGrading.gradientMap.white. It is ignored\n");
}

TEST_F(ParameterDocumentTest, TheEndsOfTheGradientMayComeFromTwoDocuments) {
    const Outcome outcome = merge(
        {grading(R"("gradientMap": {"black": [1, 0, 0, 1]})"), grading(R"("gradientMap": {"white": [0, 1, 0, 1]})")});
    EXPECT_EQ(outcome.out, zqxImg({"params", "--set", "gradient.black=1,0,0", "--set", "gradient.white=0,1,0"}).out);
    EXPECT_EQ(outcome.err, "");
}

TEST_F(ParameterDocumentTest, AlphaOfTheGradientIsKept) {
    EXPECT_NE(
        merge({grading(R"("gradientMap": {"black": [0, 0, 0, 0.375], "white": [1, 1, 1, 1]})")}).out.find("0.375"),
        std::string::npos);
}

TEST_F(ParameterDocumentTest, IgnoredMembersReplaceNothing) {
    const std::string first = document(R"("flipX": true, "colorGrading": {"hue": 5}, "sharpness": 0.5)");
    const Outcome outcome = merge({first, document(R"("flipX": "no", "colorGrading": [], "sharpness": null)")});
    EXPECT_EQ(outcome.out, merge({first}).out);
}

TEST_F(ParameterDocumentTest, ValuesOutOfRangeTellWhatTheyBecame) {
    EXPECT_EQ(
        warnings({grading(R"("exposure": 7, "temperature": 0, "highlight": 8.5, "shadow": -8.25)")}),
        (Lines{
            "0.json: imageProcessing.colorGrading.exposure is 7, outside the range -5 to 5; limited to 5",
            "0.json: imageProcessing.colorGrading.temperature is 0, outside the range 2500 to 10500; limited to 2500",
            "0.json: imageProcessing.colorGrading.highlight is 8.5, outside the range -1 to 8; limited to 8",
            "0.json: imageProcessing.colorGrading.shadow is -8.25, outside the range -8 to 1; limited to -8"}));
}

TEST_F(ParameterDocumentTest, HugeNumbersAreLimitedLikeOthers) {
    const std::string text = document("\"sharpness\": -1e300");
    EXPECT_EQ(warnings({text}),
              Lines{"0.json: imageProcessing.sharpness is -1e+300, outside the range -1 to 1; limited to -1"});
    EXPECT_EQ(merge({text}).out, zqxImg({"params", "--set", "sharpness=-1"}).out);
}

TEST_F(ParameterDocumentTest, MembersGivenTwiceCountOnce) {
    const std::string text = document(R"("flipX": true, "flipX": false, "sharpness": "x", "sharpness": 1)");
    EXPECT_EQ(warnings({text}),
              (Lines{"0.json: imageProcessing.flipX is given more than once; only the first one counts",
                     "0.json: imageProcessing.sharpness is a string but must be a number from -1 to 1. It is ignored",
                     "0.json: imageProcessing.sharpness is given more than once; only the first one counts"}));
    EXPECT_EQ(merge({text}).out, merge({document("\"flipX\": true")}).out);
}

TEST_F(ParameterDocumentTest, StrictListsAllFaultsAndFails) {
    const Outcome outcome =
        merge({document(R"("exposur": 1, "sharpness": 4, "flipX": 1, "flipY": true, "flipY": true)"),
               grading(R"("gradientMap": {"black": [1, 0, 0, 1]})")},
              {"--set", "hue=200", "--strict"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(getLines(outcome.err, "zqx-img: "),
              (Lines{"--strict: correct the following, or omit --strict to continue with warnings",
                     "0.json: imageProcessing.exposur is unknown; did you mean "
                     "\"imageProcessing.colorGrading.exposure\"?",
                     "0.json: imageProcessing.sharpness is 4, outside the range -1 to 1",
                     "0.json: imageProcessing.flipX is a number but must be true or false",
                     "0.json: imageProcessing.flipY is given more than once",
                     "1.json: imageProcessing.colorGrading.gradientMap.black has no effect without "
                     "imageProcessing.colorGrading.gradientMap.white",
                     "--set hue=200: outside the range -180 to 180"}));
}

TEST_F(ParameterDocumentTest, StrictWritesNothing) {
    writeFile(at("in.json"), document("\"flipZ\": true"));
    fail(1, {"apply", ZQX_SAMPLE, "-o", at("out.png"), "--params", at("in.json"), "--strict"}, "flipZ is unknown");
    fail(1, {"params", "--set", "hue=200", "--strict", "-o", at("out.json")},
         "--set hue=200: outside the range -180 to 180");
    EXPECT_EQ(files(), Lines{"in.json"});
}

TEST_F(ParameterDocumentTest, StrictHasNothingAgainstGoodDocuments) {
    const Outcome outcome =
        merge({document("\"flipX\": true"), zqxImg({"params"}).out}, {"--set", "hue=1", "--strict"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, "");
}

TEST_F(ParameterDocumentTest, SyntaxErrorsNameTheirPlace) {
    const std::pair<std::string, const char*> cases[] = {
        {"", "line 1, column 1: the document is empty"},
        {"not JSON", "line 1, column 2: a value is missing or misspelt"},
        {"{\"imageProcessing\":\n  {\"version\": 1\n  \"flipX\": true}}", "line 3, column 3: a comma or } is missing"},
        {"{\"imageProcessing\":\r\n{\"version\": 1,}}", "line 2, column 15: a name in double quotes is missing"},
        {"{\"\xC3\xA4\xE2\x82\xAC\": NaN}", "line 1, column 8: a value is missing or misspelt"},
        {document("\"flipX\" true"), "line 1, column 44: a colon is missing after a name"},
        {document("\"x\": [1 2]"), "line 1, column 44: a comma or ] is missing"},
        {document("\"sharpness\": 1e999"), "line 1, column 49: a number is too large"},
        {document("\"sharpness\": 1."), "line 1, column 51: digits are missing after the decimal point"},
        {document("") + "\n{}", "line 2, column 1: there is text after the end of the document"},
        {"{\"a", "line 1, column 4: a closing quotation mark is missing"},
        {document("\"a\xFF\": 0"), "line 1, column 38: this is not UTF-8, or a control character inside a string"},
        {document("") + std::string(1, '\0') + "garbage",
         "line 1, column 36: this is a zero byte; save the document as UTF-8 text"},
        {std::string("\xFF\xFE{\0", 4), "line 1, column 4: this is a zero byte; save the document as UTF-8 text"}};
    for (const auto& [text, words] : cases) {
        EXPECT_EQ(refusal(text), std::string("0.json: is not valid JSON at ") + words);
    }
}

TEST_F(ParameterDocumentTest, JsonThatIsNoParameterDocumentIsRefusedWithTheReason) {
    const std::pair<const char*, const char*> cases[] = {
        {"[]", "it must be an object"},
        {"{}", "the object imageProcessing is missing"},
        {R"({"imageProcessing": []})", "the object imageProcessing is missing"},
        {R"({"imageProcessing": {}})", "imageProcessing.version is missing"},
        {R"({"imageProcessing": {"version": 2}})", "imageProcessing.version must be 1"},
        {R"({"imageProcessing": {"version": 1.0}})", "imageProcessing.version must be 1"},
        {R"({"imageProcessing": {"version": "1"}})", "imageProcessing.version must be 1"}};
    for (const auto& [text, words] : cases) {
        EXPECT_EQ(refusal(text), std::string("0.json: is not a parameter document of version 1 (") + words +
                                     "); \"zqx-img params\" prints a valid one");
    }
}

TEST_F(ParameterDocumentTest, NumbersTooLargeForAColorAreRefused) {
    EXPECT_EQ(
        refusal(grading(R"("gradientMap": {"black": [0, 0, 0, 1], "white": [1e300, 1, 1, 1]})")),
        "0.json: imageProcessing.colorGrading.gradientMap.white contains a number that is too large for a colour");
}

TEST_F(ParameterDocumentTest, AMissingDocumentIsNamed) {
    fail(1, {"params", "--params", at("none.json")}, at("none.json") + ": there is no such file");
}

TEST_F(ParameterDocumentTest, AByteOrderMarkIsAccepted) {
    const std::string text = document("\"flipX\": true");
    const Outcome outcome = merge({"\xEF\xBB\xBF" + text});
    EXPECT_EQ(outcome.out, merge({text}).out);
    EXPECT_EQ(outcome.err, "");
}

TEST_F(ParameterDocumentTest, DocumentsOfMoreThan16MebibytesAreRefused) {
    constexpr std::size_t LIMIT = std::size_t{16} << 20;
    const std::string text = document("");
    EXPECT_EQ(merge({std::string(LIMIT - text.size(), ' ') + text}).err, "");
    EXPECT_EQ(refusal(std::string(LIMIT + 1 - text.size(), ' ') + text),
              "0.json: is larger than 16 MiB, too large for a document");
}

} // namespace zqx::img::test
