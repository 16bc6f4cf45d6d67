// Names of files: in any script, missing, of things that are no files, and where nothing can be written.
#include "FileTest.h"

namespace zqx::img::test {

struct Name {
    const char* name;
    const char* stem;
};

namespace {

class UnicodeNameTest : public FileTest, public ::testing::WithParamInterface<Name> {
protected:
    std::string mDirectoryName = at(std::string("in ") + GetParam().stem);
    std::string mPath = mDirectoryName + '/' + GetParam().stem + ".png";
    Samples mPicture = paint(Content::MOTLEY, 3, Depth::BYTE);

    void SetUp() override { std::filesystem::create_directory(mDirectoryName); }
};

class PathTest : public FileTest {
protected:
    /// Whether a path that cannot be loaded is refused, leaving no bitmap where its name promised a picture.
    static void expectRefusedAndEmptied(const std::string& path) {
        const Component component = getComponent(paint(Content::MOTLEY, 3, Depth::BYTE));
        EXPECT_EQ(component->load(DETECT, path.c_str(), 0), tov::FAILURE);
        EXPECT_TRUE(isEmpty(*component));
    }

    /// Whether a path without a known ending, whose content says nothing either, is refused before the bitmap is lost.
    static void expectRefusedAndKept(const std::string& path) {
        const Samples picture = paint(Content::MOTLEY, 3, Depth::BYTE);
        const Component component = getComponent(picture);
        EXPECT_EQ(component->load(DETECT, path.c_str(), 0), tov::FAILURE);
        ASSERT_FALSE(isEmpty(*component));
        EXPECT_TRUE(isSame(getSamples(*component), picture));
    }
};

} // namespace

TEST_P(UnicodeNameTest, FilesAreSavedAndLoaded) {
    const Component component = getComponent(mPicture);
    ASSERT_EQ(component->save(FIF_PNG, mPath.c_str(), 0), tov::SUCCESS);
    ASSERT_TRUE(std::filesystem::exists(mPath));
    EXPECT_TRUE(isSame(readWithMagick(mPath, 3, Depth::BYTE), mPicture));
    const Component again = makeComponent();
    ASSERT_EQ(again->load(DETECT, mPath.c_str(), 0), tov::SUCCESS);
    EXPECT_TRUE(isSame(getSamples(*again), mPicture));
}

TEST_P(UnicodeNameTest, StreamsAreSavedAndLoaded) {
    const Component component = getComponent(mPicture);
    const auto output = qutil::FileOutputStream::create(mPath);
    ASSERT_TRUE(output);
    ASSERT_EQ(component->saveToStream(output.get(), FIF_PNG, 0), tov::SUCCESS);
    ASSERT_EQ(output->close(), tov::SUCCESS);
    const auto input = qutil::FileInputStream::create(mPath);
    ASSERT_TRUE(input);
    const Component again = makeComponent();
    ASSERT_EQ(again->loadFromStream(DETECT, input.get(), 0), tov::SUCCESS);
    EXPECT_TRUE(isSame(getSamples(*again), mPicture));
}

INSTANTIATE_TEST_SUITE_P(Scripts, UnicodeNameTest,
                         ::testing::Values(Name{"Latin", "Stra\xC3\x9F"
                                                         "e f\xC3\xBCr \xC3\x89t\xC3\xA9"},
                                           Name{"Greek", "\xCE\xB5\xCE\xB9\xCE\xBA\xCF\x8C\xCE\xBD\xCE\xB1"},
                                           Name{"Chinese", "\xE7\x85\xA7\xE7\x89\x87"},
                                           Name{"Japanese",
                                                "\xE5\x86\x99\xE7\x9C\x9F \xE3\x83\x86\xE3\x82\xB9\xE3\x83\x88"},
                                           Name{"BeyondTheBasicPlane", "\xF0\x9F\x96\xBC"}),
                         CaseName());

TEST_F(PathTest, MissingFileIsRefused) {
    expectRefusedAndEmptied(at("missing.png"));
    expectRefusedAndKept(at("missing"));
    expectRefusedAndKept(at("no such directory") + "/missing");
    EXPECT_FALSE(qutil::FileInputStream::create(at("missing.png")));
}

TEST_F(PathTest, EmptyNameIsRefused) {
    expectRefusedAndKept("");
    EXPECT_EQ(getComponent(paint(Content::MOTLEY, 3, Depth::BYTE))->save(FIF_PNG, "", 0), tov::FAILURE);
}

TEST_F(PathTest, DirectoryIsRefused) {
    std::filesystem::create_directory(at("album"));
    std::filesystem::create_directory(at("album.png"));
    expectRefusedAndKept(at("album"));
    expectRefusedAndEmptied(at("album.png"));
    EXPECT_FALSE(qutil::FileInputStream::create(at("album.png")));
}

TEST_F(PathTest, EmptyFileIsRefused) {
    writeFile(at("empty.png"), "");
    writeFile(at("empty"), "");
    expectRefusedAndEmptied(at("empty.png"));
    expectRefusedAndKept(at("empty"));
}

TEST_F(PathTest, EmptyStreamIsRefusedAndTheBitmapKept) {
    const Component component = getComponent(paint(Content::MOTLEY, 3, Depth::BYTE));
    const auto stream = memoryStream("");
    ASSERT_TRUE(stream);
    EXPECT_EQ(component->loadFromStream(DETECT, stream.get(), 0), tov::FAILURE);
    EXPECT_FALSE(isEmpty(*component));
}

TEST_F(PathTest, TextIsRefusedAndTheBitmapKept) {
    const std::string text = "Dear reader, this is no picture.\n";
    writeFile(at("letter.txt"), text);
    expectRefusedAndKept(at("letter.txt"));
    const Component component = getComponent(paint(Content::MOTLEY, 3, Depth::BYTE));
    const auto stream = memoryStream(text);
    EXPECT_EQ(component->loadFromStream(DETECT, stream.get(), 0), tov::FAILURE);
    EXPECT_FALSE(isEmpty(*component));
}

TEST_F(PathTest, UnwritableTargetsAreRefused) {
    std::filesystem::create_directory(at("album.png"));
    writeFile(at("file"), "x");
    const Component component = getComponent(paint(Content::MOTLEY, 3, Depth::BYTE));
    for (const std::string& target : {at("no such directory") + "/a.png", at("album.png"), at("file") + "/a.png",
                                      at(std::string(300, 'n') + ".png")}) {
        EXPECT_EQ(component->save(FIF_PNG, target.c_str(), 0), tov::FAILURE) << target;
        EXPECT_FALSE(isEmpty(*component));
    }
    EXPECT_FALSE(qutil::FileOutputStream::create(at("no such directory") + "/a.png"));
    EXPECT_EQ(readFile(at("file")), "x");
}

TEST_F(PathTest, NullPathsAreRefusedBeforeAnythingElse) {
    const Component empty = makeComponent();
    EXPECT_EQ(empty->load(DETECT, nullptr, 0), tov::INVALID_ARGUMENT);
    EXPECT_EQ(empty->save(FIF_PNG, nullptr, 0), tov::INVALID_ARGUMENT);
    EXPECT_EQ(empty->save(FIF_PNG, at("a.png").c_str(), 0), tov::NOT_READY);
    EXPECT_TRUE(files().empty());
}

} // namespace zqx::img::test
