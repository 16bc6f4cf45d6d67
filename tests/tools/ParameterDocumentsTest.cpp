// Documents and settings on their way into a pipeline.
#include <string>
#include <vector>

#include <zqx/tools/ParameterDocuments.h>

#include "zqx/pictures/files/Error.h"

#include <support/DirectoryTest.h>
#include <support/Process.h>

namespace zqx::tools {

using namespace pictures;

namespace {

using ParameterDocumentsTest = img::test::DirectoryTest;
using Faults = ParameterDocuments::Faults;

std::string document(const std::string& members) {
    return R"({"imageProcessing": {"version": 1, )" + members + "}}";
}

float measureSharpness(img::ImageProcessingPipeline pipeline) {
    float sharpness = 0.0F;
    pipeline.getSharpness(&sharpness);
    return sharpness;
}

} // namespace

TEST_F(ParameterDocumentsTest, NothingGivenIsNeutral) {
    EXPECT_EQ(ParameterDocuments().makePipeline().saveParams(), img::ImageProcessingPipeline(0).saveParams());
}

TEST_F(ParameterDocumentsTest, LaterDocumentsGoOverEarlierOnes) {
    ParameterDocuments documents;
    documents.addText("base", document(R"("sharpness": 0.5, "colorGrading": {"exposure": 1, "contrast": 0.75})"));
    documents.addText("over", document(R"("colorGrading": {"exposure": 2})"));
    const img::ImageProcessingPipeline pipeline = documents.makePipeline();
    EXPECT_EQ(pipeline.getColorGrading().getExposure(), 2.0F);
    EXPECT_EQ(pipeline.getColorGrading().getContrast(), 0.75F);
    EXPECT_EQ(measureSharpness(pipeline), 0.5F);
}

TEST_F(ParameterDocumentsTest, SettingsGoOverDocumentsWhereverTheyAreAdded) {
    ParameterDocuments documents;
    documents.addSetting("exposure=3");
    documents.addText("base", document(R"("colorGrading": {"exposure": 1})"));
    EXPECT_EQ(documents.makePipeline().getColorGrading().getExposure(), 3.0F);
}

TEST_F(ParameterDocumentsTest, FilesAndSettingsAreReadInOneCall) {
    img::test::writeFile(at("look.json"), document(R"("colorGrading": {"hue": 30})"));
    const img::ImageProcessingPipeline pipeline = readParameters({at("look.json")}, {"saturation=0.5"});
    EXPECT_EQ(pipeline.getColorGrading().getHue(), 30.0F);
    EXPECT_EQ(pipeline.getColorGrading().getSaturation(), 0.5F);
}

TEST_F(ParameterDocumentsTest, FaultsAreWarnedOfOrRefusedTogether) {
    ParameterDocuments documents;
    documents.addText("look", document(R"("sharpnes": 1)"));
    documents.addSetting("exposure=7");
    std::vector<std::string> warnings;
    {
        const WarningListener listener([&](const std::string& line) { warnings.push_back(line); });
        EXPECT_EQ(documents.makePipeline().getColorGrading().getExposure(), 5.0F);
    }
    ASSERT_EQ(warnings.size(), 2U);
    EXPECT_EQ(warnings[1], "--set exposure=7: outside the range -5 to 5; limited to 5");
    try {
        documents.makePipeline(Faults::REFUSE);
        FAIL() << "was accepted";
    } catch (const Error& error) {
        const std::string text = error.what();
        EXPECT_NE(text.find("\nlook: imageProcessing.sharpnes is unknown"), std::string::npos) << text;
        EXPECT_NE(text.find("\n--set exposure=7: outside the range -5 to 5"), std::string::npos) << text;
    }
}

TEST_F(ParameterDocumentsTest, WhatCannotBeUnderstoodIsAnError) {
    EXPECT_THROW(readParameters({at("none.json")}), Error);
    EXPECT_THROW(readParameters({}, {"exposure"}), UsageError);
    EXPECT_THROW(readParameters({}, {"exposur=1"}), UsageError);
    EXPECT_THROW(readParameters({}, {"exposure=nan"}), UsageError);
    ParameterDocuments documents;
    documents.addText("look", "{");
    EXPECT_THROW(documents.makePipeline(), Error);
}

TEST_F(ParameterDocumentsTest, FilesBeyondTheLimitAreRefused) {
    img::test::writeFile(at("large.json"), std::string(ParameterDocuments::LARGEST + 1, ' '));
    ParameterDocuments documents;
    EXPECT_THROW(documents.addFile(at("large.json")), Error);
}

} // namespace zqx::tools
