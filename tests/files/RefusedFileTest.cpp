// Loads that fail half-way: the component is empty afterwards and says so, and the reason is to be had.
#include <platform/LogCapture.h>
#include <zqx/img/FreeImage.h>

#include "FileTest.h"

namespace zqx::img::test {

struct RefusedCase {
    const char* name;
    const char* file;
    FREE_IMAGE_FORMAT format;
    int channels;
    Depth depth;
    std::size_t length; ///< how much is left of the file
};

namespace {

class RefusedFileTest : public FileTest, public ::testing::WithParamInterface<RefusedCase> {
protected:
    void SetUp() override {
        ASSERT_EQ(mComponent->save(GetParam().format, mPath.c_str(), 0), tov::SUCCESS);
        ASSERT_EQ(mComponent->load(DETECT, mPath.c_str(), 0), tov::SUCCESS);
        writeFile(mPath, readFile(mPath).substr(0, GetParam().length));
    }

    void expectEmpty() const {
        int number = 0;
        void* line = nullptr;
        EXPECT_EQ(mComponent->getWidth(&number), tov::NOT_READY);
        EXPECT_EQ(mComponent->getHeight(&number), tov::NOT_READY);
        EXPECT_EQ(mComponent->getPitch(&number), tov::NOT_READY);
        EXPECT_EQ(mComponent->getScanline(0, &line), tov::NOT_READY);
        EXPECT_EQ(mComponent->save(FIF_PNG, at("never.png").c_str(), 0), tov::NOT_READY);
        EXPECT_FALSE(std::filesystem::exists(at("never.png")));
    }

    /// One record of the failure, whatever the picture library said.
    static void expectRecorded(const LogCapture& log) { EXPECT_EQ(log.texts(), std::vector<std::string>{END}); }

    static constexpr const char* END = "End TOV-Function result: Operation failed";

    std::string mPath = at(GetParam().file);
    Component mComponent = getComponent(paint(Content::MOTLEY, GetParam().channels, GetParam().depth));
};

} // namespace

TEST_P(RefusedFileTest, ByPath) {
    {
        const LogCapture log;
        ASSERT_EQ(mComponent->load(DETECT, mPath.c_str(), 0), tov::FAILURE);
        expectRecorded(log);
    }
    expectEmpty();
}

TEST_P(RefusedFileTest, ByStream) {
    {
        const LogCapture log;
        const auto stream = qutil::FileInputStream::create(mPath);
        ASSERT_TRUE(stream);
        ASSERT_EQ(mComponent->loadFromStream(GetParam().format, stream.get(), 0), tov::FAILURE);
        expectRecorded(log);
    }
    expectEmpty();
}

TEST_P(RefusedFileTest, LibrarysWordsAreKeptForTheCaller) {
    const LogCapture log;
    ASSERT_EQ(mComponent->load(DETECT, mPath.c_str(), 0), tov::FAILURE);
    EXPECT_NE(FreeImage::getLibraryMessage(), "");
}

TEST_P(RefusedFileTest, WhoeverWantsToKnowMoreFindsTheWordsInTheLog) {
    const int before = qutil::Log::reportingLevel();
    qutil::Log::setReportingLevel(3);
    const LogCapture log;
    ASSERT_EQ(mComponent->load(DETECT, mPath.c_str(), 0), tov::FAILURE);
    qutil::Log::setReportingLevel(before);
    EXPECT_EQ(log.texts(), (std::vector<std::string>{"FreeImage: " + FreeImage::getLibraryMessage(), END}));
    EXPECT_EQ(log.records().front().level, 3);
}

TEST_P(RefusedFileTest, TheNextFileLoads) {
    ASSERT_EQ(mComponent->load(DETECT, mPath.c_str(), 0), tov::FAILURE);
    ASSERT_EQ(mComponent->load(DETECT, samplePng("next.png").c_str(), 0), tov::SUCCESS);
    EXPECT_EQ(FreeImage::getLibraryMessage(), "");
    EXPECT_TRUE(isSame(getSamples(*mComponent), paint(Content::MOTLEY, 3, Depth::BYTE)));
}

using enum Depth;

INSTANTIATE_TEST_SUITE_P(Formats, RefusedFileTest,
                         ::testing::Values(RefusedCase{"Png", "a.png", FIF_PNG, 3, BYTE, 60},
                                           RefusedCase{"Jpeg", "a.jpg", FIF_JPEG, 3, BYTE, 60},
                                           RefusedCase{"Tiff", "a.tif", FIF_TIFF, 3, BYTE, 60},
                                           RefusedCase{"Bmp", "a.bmp", FIF_BMP, 3, BYTE, 20},
                                           RefusedCase{"Gif", "a.gif", FIF_GIF, 1, BYTE, 60},
                                           RefusedCase{"Hdr", "a.hdr", FIF_HDR, 3, FLOAT, 30},
                                           RefusedCase{"Pfm", "a.pfm", FIF_PFM, 3, FLOAT, 60},
                                           RefusedCase{"Webp", "a.webp", FIF_WEBP, 3, BYTE, 30}),
                         CaseName());

} // namespace zqx::img::test
