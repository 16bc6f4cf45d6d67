// What the image library and the TIFF library say about files: to whom it goes, and that none of it goes to the
// terminal.
#include <algorithm>
#include <cstdarg>
#include <cstdlib>

#include <dlfcn.h>

#include <platform/LogCapture.h>
#include <support/ErrorOutput.h>
#include <zqx/img/FreeImage.h>

#include "FileTest.h"

namespace zqx::img::test {

namespace {

/// A TIFF of one grey pixel, put together by hand: little-endian, one directory.
class SmallTiff {
public:
    void add(std::uint16_t tag, std::uint16_t type, std::uint32_t value) {
        put(mEntries, tag, 2);
        put(mEntries, type, 2);
        put(mEntries, 1, 4);
        put(mEntries, value, 4);
        ++mCount;
    }

    std::string bytes() const {
        std::string file = "II*";
        file += '\0';
        put(file, 8, 4); // where the directory is
        put(file, mCount, 2);
        file += mEntries;
        put(file, 0, 4); // no other directory
        return file;
    }

private:
    static void put(std::string& bytes, std::uint32_t value, int count) {
        for (int i = 0; i < count; ++i) {
            bytes += static_cast<char>(value >> (8 * i));
        }
    }

    std::string mEntries;
    std::uint32_t mCount = 0;
};

constexpr std::uint16_t SHORT = 3;
constexpr std::uint16_t LONG = 4;

/// @param offset where the pixel is; behind the end of the file for one that does not decode
std::string tiffWithAnUnknownTag(std::uint32_t offset) {
    SmallTiff tiff;
    tiff.add(256, SHORT, 1);      // width
    tiff.add(257, SHORT, 1);      // height
    tiff.add(258, SHORT, 8);      // bits
    tiff.add(259, SHORT, 1);      // not compressed
    tiff.add(262, SHORT, 1);      // black is 0
    tiff.add(273, LONG, offset);  // place of the pixels
    tiff.add(278, SHORT, 1);      // rows in a strip
    tiff.add(279, LONG, 1);       // bytes in it
    tiff.add(0xC001, SHORT, 123); // nobody knows it
    return tiff.bytes();
}

constexpr std::uint32_t INSIDE = 0;
constexpr std::uint32_t BEHIND_THE_END = 100'000;

using TiffHandler = void (*)(const char*, const char*, va_list);

TiffHandler setTiffHandler(const char* setter, TiffHandler handler) {
    return reinterpret_cast<TiffHandler (*)(TiffHandler)>(dlsym(RTLD_DEFAULT, setter))(handler);
}

constexpr const char* SETTERS[] = {"TIFFSetWarningHandler", "TIFFSetErrorHandler"};

bool hasTiffLibrary() {
    return std::ranges::all_of(SETTERS, [](const char* setter) { return dlsym(RTLD_DEFAULT, setter) != nullptr; });
}

int gTiffMessages = 0;

void countTiffMessage(const char* /*module*/, const char* /*format*/, va_list /*arguments*/) {
    ++gTiffMessages;
}

std::string gHeard;

void hear(FREE_IMAGE_FORMAT /*format*/, const char* message) {
    gHeard += message;
}

class LibraryMessagesTest : public FileTest {
protected:
    std::string getFile(const std::string& content) const {
        writeFile(at("a.tif"), content);
        return at("a.tif");
    }
    /// A PNG that ends in its header.
    std::string damagedPng() const {
        const std::string path = samplePng("damaged.png");
        writeFile(path, readFile(path).substr(0, 60));
        return path;
    }

    static tov::Result load(const std::string& path) { return makeComponent()->load(DETECT, path.c_str(), 0); }

    /// As a component does, by both ways, and as a linked class does.
    static void loadInEveryWay(const std::string& path) {
        load(path);
        const std::string bytes = readFile(path);
        makeComponent()->loadFromStream(DETECT, memoryStream(bytes).get(), 0);
        FreeImage::load(path.c_str());
    }

    LogCapture mLog; // records of failures are not what is tested here
};

/// Where FreeImage brings a TIFF library of its own, there is none to be asked.
class TiffMessagesTest : public LibraryMessagesTest {
protected:
    void SetUp() override {
        if (!hasTiffLibrary()) {
            GTEST_SKIP() << "FreeImage has a TIFF library of its own";
        }
    }
};

} // namespace

TEST_F(LibraryMessagesTest, DamagedTiffWritesNothingToTheTerminal) {
    const std::string whole = [this] {
        getComponent(paint(Content::MOTLEY, 3, Depth::BYTE))->save(FIF_TIFF, at("a.tif").c_str(), TIFF_LZW);
        return readFile(at("a.tif"));
    }();
    for (const std::string& content : {tiffWithAnUnknownTag(INSIDE), tiffWithAnUnknownTag(BEHIND_THE_END),
                                       whole.substr(0, whole.size() - 20), whole.substr(0, 60)}) {
        const std::string path = getFile(content);
        const ErrorOutput errors;
        loadInEveryWay(path);
        EXPECT_EQ(errors.text(), "");
    }
}

TEST_F(TiffMessagesTest, TheLibrarySpeaksAgainAfterwards) {
    ASSERT_EQ(load(getFile(tiffWithAnUnknownTag(INSIDE))), tov::SUCCESS);
    const ErrorOutput errors;
    FIBITMAP* bitmap = FreeImage_Load(FIF_TIFF, at("a.tif").c_str());
    EXPECT_NE(bitmap, nullptr);
    FreeImage_Unload(bitmap);
    EXPECT_NE(errors.text(), "") << "the program's own call";
}

TEST_F(TiffMessagesTest, FunctionsThatTheProgramGaveTheLibraryStayAndAreCalled) {
    const std::string path = getFile(tiffWithAnUnknownTag(BEHIND_THE_END));
    TiffHandler before[2];
    std::transform(std::begin(SETTERS), std::end(SETTERS), before,
                   [](const char* setter) { return setTiffHandler(setter, countTiffMessage); });
    gTiffMessages = 0;
    load(path);
    EXPECT_GT(gTiffMessages, 0);
    for (std::size_t i = 0; i < std::size(SETTERS); ++i) {
        EXPECT_EQ(setTiffHandler(SETTERS[i], before[i]), countTiffMessage) << SETTERS[i];
    }
}

TEST_F(TiffMessagesTest, SilenceThatTheProgramWantedStays) {
    TiffHandler before[2];
    std::transform(std::begin(SETTERS), std::end(SETTERS), before,
                   [](const char* setter) { return setTiffHandler(setter, nullptr); });
    load(getFile(tiffWithAnUnknownTag(INSIDE)));
    for (std::size_t i = 0; i < std::size(SETTERS); ++i) {
        EXPECT_EQ(setTiffHandler(SETTERS[i], before[i]), nullptr) << SETTERS[i];
    }
}

TEST_F(LibraryMessagesTest, ProgramsOwnMessageFunctionGoesOnHearingEverything) {
    const std::string path = damagedPng();
    FreeImage_SetOutputMessage(hear);
    gHeard.clear();
    EXPECT_EQ(load(path), tov::FAILURE);
    const std::string aboutOurLoad = gHeard;
    gHeard.clear();
    EXPECT_EQ(FreeImage_Load(FIF_PNG, path.c_str()), nullptr);
    FreeImage_SetOutputMessage(nullptr);
    EXPECT_NE(aboutOurLoad, "");
    EXPECT_EQ(FreeImage::getLibraryMessage(), aboutOurLoad);
    EXPECT_EQ(gHeard, aboutOurLoad) << "about its own load, after ours";
}

TEST_F(LibraryMessagesTest, FunctionOfTheSecondConventionStaysWhenItIsGivenAfterTheFirstLoad) {
    const std::string path = damagedPng();
    // In a process of its own, as there is no way back: nobody can ask for the function that was there before.
    EXPECT_EXIT(
        {
            load(path);
            FreeImage_SetOutputMessageStdCall(hear);
            load(path);
            std::_Exit(gHeard.empty() ? 1 : 0);
        },
        ::testing::ExitedWithCode(0), "");
}

TEST_F(LibraryMessagesTest, WhatTheProgramLoadsItselfIsNotGathered) {
    const std::string path = damagedPng();
    ASSERT_EQ(load(samplePng()), tov::SUCCESS);
    EXPECT_EQ(FreeImage_Load(FIF_PNG, path.c_str()), nullptr);
    EXPECT_EQ(FreeImage::getLibraryMessage(), "");
}

TEST_F(LibraryMessagesTest, MessageOfAnEarlierFileIsForgottenWhenAStreamFails) {
    load(damagedPng());
    ASSERT_NE(FreeImage::getLibraryMessage(), "");
    ASSERT_EQ(makeComponent()->saveToStream(qutil::MemoryOutputStream::create().get(), FIF_PNG, 0), tov::NOT_READY);
    EXPECT_EQ(FreeImage::getLibraryMessage(), "");
}

} // namespace zqx::img::test
