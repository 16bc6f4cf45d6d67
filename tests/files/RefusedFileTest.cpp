// Loads that fail half-way: the component is empty afterwards, says so, and the log has the reason.
#include <algorithm>

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
    bool isExplained;   ///< whether the picture library has words for it
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

    static void expectExplained(const LogCapture& log) {
        const std::vector<std::string> texts = log.texts();
        EXPECT_TRUE(std::ranges::count(texts, "End TOV-Function result: Operation failed"));
        const std::string message = FreeImage::getLibraryMessage();
        EXPECT_EQ(!message.empty(), GetParam().isExplained) << message;
        EXPECT_EQ(std::ranges::count(texts, "FreeImage: " + message), GetParam().isExplained ? 1 : 0);
    }

    std::string mPath = at(GetParam().file);
    Component mComponent = componentOf(paint(Content::MOTLEY, GetParam().channels, GetParam().depth));
};

} // namespace

TEST_P(RefusedFileTest, ByPath) {
    {
        const LogCapture log;
        ASSERT_EQ(mComponent->load(DETECT, mPath.c_str(), 0), tov::FAILURE);
        expectExplained(log);
    }
    expectEmpty();
}

TEST_P(RefusedFileTest, ByStream) {
    {
        const LogCapture log;
        const auto stream = qutil::FileInputStream::create(mPath);
        ASSERT_TRUE(stream);
        ASSERT_EQ(mComponent->loadFromStream(GetParam().format, stream.get(), 0), tov::FAILURE);
        expectExplained(log);
    }
    expectEmpty();
}

TEST_P(RefusedFileTest, TheNextFileLoads) {
    ASSERT_EQ(mComponent->load(DETECT, mPath.c_str(), 0), tov::FAILURE);
    ASSERT_EQ(mComponent->load(DETECT, samplePng("next.png").c_str(), 0), tov::SUCCESS);
    EXPECT_EQ(FreeImage::getLibraryMessage(), "");
    EXPECT_TRUE(isSame(samplesOf(*mComponent), paint(Content::MOTLEY, 3, Depth::BYTE)));
}

using enum Depth;

INSTANTIATE_TEST_SUITE_P(Formats, RefusedFileTest,
                         ::testing::Values(RefusedCase{"Png", "a.png", FIF_PNG, 3, BYTE, 60, true},
                                           RefusedCase{"Jpeg", "a.jpg", FIF_JPEG, 3, BYTE, 60, true},
                                           RefusedCase{"Tiff", "a.tif", FIF_TIFF, 3, BYTE, 60, true},
                                           RefusedCase{"Bmp", "a.bmp", FIF_BMP, 3, BYTE, 20, true},
                                           RefusedCase{"Gif", "a.gif", FIF_GIF, 1, BYTE, 60, true},
                                           RefusedCase{"Hdr", "a.hdr", FIF_HDR, 3, FLOAT, 30, true},
                                           RefusedCase{"Pfm", "a.pfm", FIF_PFM, 3, FLOAT, 60, true},
                                           RefusedCase{"Webp", "a.webp", FIF_WEBP, 3, BYTE, 30, true}),
                         CaseName());

} // namespace zqx::img::test
