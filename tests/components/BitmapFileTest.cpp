// Files and streams of the bitmap component. All files are made with the component itself.
#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include <qutil/Streams.h>
#include <zqx/img/FreeImage.h>

#include "components/support/Bitmaps.h"
#include "components/support/ComponentTest.h"
#include "components/support/FakeStreams.h"
#include "components/support/ForeignBitmap.h"
#include "components/support/Interposed.h"

#if defined(__linux__)
#include <sys/mman.h>
#include <unistd.h>
#endif

namespace {

using namespace test;
using LinkedBitmap = zqx::img::FreeImage;

constexpr int UNREADABLE = 999; ///< a format number that nothing is known of

/// A bitmap as a file in memory.
Bytes encoded(IFreeImage& bitmap, int format) {
    const auto stream = FakeOutputStream::create();
    EXPECT_EQ(bitmap.saveToStream(stream.get(), format, 0), 0U);
    return stream->writes.empty() ? Bytes() : stream->writes.front();
}

void writeFile(const std::string& path, const Bytes& bytes) {
    std::ofstream file(std::filesystem::path(std::u8string(path.begin(), path.end())), std::ios::binary);
    std::copy(bytes.begin(), bytes.end(), std::ostreambuf_iterator<char>(file));
}

const Bytes GARBAGE = {'n', 'o', ' ', 'p', 'i', 'c', 't', 'u', 'r', 'e', ' ', 'a', 't', ' ', 'a', 'l', 'l'};

class BitmapFileTest : public ComponentTest {
protected:
    std::string file(const std::string& name) const { return mDirectory.file(name); }

private:
    TemporaryDirectory mDirectory;
};

#if defined(__linux__)

/// A text of 4 GiB and a few bytes, in which the same pages of memory come again and again.
class RepeatedText {
public:
    RepeatedText() {
        const int file = memfd_create("text", 0);
        const std::string page(PAGE, 'x');
        for (std::size_t i = 0; i < BLOCK; i += PAGE) {
            mIsWhole = mIsWhole && write(file, page.data(), PAGE) == static_cast<ssize_t>(PAGE);
        }
        // The last block is another one, which stays zero behind its first letters.
        mText = mmap(nullptr, SIZE + BLOCK, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        mIsWhole = mIsWhole && mText != MAP_FAILED;
        for (std::size_t at = 0; mIsWhole && at < SIZE; at += BLOCK) {
            mIsWhole =
                mmap(static_cast<char*>(mText) + at, BLOCK, PROT_READ, MAP_SHARED | MAP_FIXED, file, 0) != MAP_FAILED;
        }
        if (mIsWhole) {
            std::memcpy(static_cast<char*>(mText) + SIZE, "abc", 3);
        }
        close(file);
    }
    ~RepeatedText() {
        if (mText != MAP_FAILED) {
            munmap(mText, SIZE + BLOCK);
        }
    }
    RepeatedText(const RepeatedText&) = delete;
    RepeatedText& operator=(const RepeatedText&) = delete;

    /// Null where there are not enough addresses.
    const char* text() const { return mIsWhole ? static_cast<const char*>(mText) : nullptr; }

private:
    static constexpr std::size_t PAGE = 4096;
    static constexpr std::size_t BLOCK = std::size_t{16} << 20U;
    static constexpr std::size_t SIZE = std::size_t{1} << 32U;

    bool mIsWhole = true;
    void* mText = MAP_FAILED;
};

#endif

/// The packet that a bitmap holds.
FITAG* getPacket(const LinkedBitmap& bitmap) {
    FITAG* tag = nullptr;
    FreeImage_GetMetadata(FIMD_XMP, bitmap.getBitmap(), "XMLPacket", &tag);
    return tag;
}

} // namespace

// --- Loading files

TEST_F(BitmapFileTest, SavedFileLoadsWithTheSamePixels) {
    EXPECT_EQ(painted(5, 3)->save(FIF_PNG, file("a.png").c_str(), 0), 0U);
    const Bitmap loaded = newBitmap();
    EXPECT_EQ(loaded->load(FIF_PNG, file("a.png").c_str(), 0), 0U);
    EXPECT_TRUE(isPainted(*loaded, 5, 3));
    EXPECT_TRUE(records().empty());
}

TEST_F(BitmapFileTest, ContentWinsOverTheExtension) {
    EXPECT_EQ(painted(5, 3)->save(FIF_PNG, file("a.jpg").c_str(), 0), 0U);
    const Bitmap loaded = newBitmap();
    EXPECT_EQ(loaded->load(-1, file("a.jpg").c_str(), 0), 0U);
    EXPECT_TRUE(isPainted(*loaded, 5, 3)) << "as PNG, without loss";
}

TEST_F(BitmapFileTest, ExtensionDecidesWhereContentSaysNothing) {
    const Bitmap bits = allocated(FIT_BITMAP, 9, 2, 1);
    ASSERT_EQ(bits->save(FIF_WBMP, file("a.wbmp").c_str(), 0), 0U);
    const Bitmap loaded = newBitmap();
    EXPECT_EQ(loaded->load(-1, file("a.wbmp").c_str(), 0), 0U);
    EXPECT_EQ(readWidth(*loaded), 9);
    EXPECT_EQ(readHeight(*loaded), 2);
}

TEST_F(BitmapFileTest, FileNamesAreUtf8) {
    const std::string path = file("\xC3\xBC\x62\x65\x72\xE2\x82\xAC.png");
    EXPECT_EQ(painted(2, 2)->save(FIF_PNG, path.c_str(), 0), 0U);
    EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(std::u8string(path.begin(), path.end()))));
    const Bitmap loaded = newBitmap();
    EXPECT_EQ(loaded->load(-1, path.c_str(), 0), 0U);
    EXPECT_TRUE(isPainted(*loaded, 2, 2));
}

TEST_F(BitmapFileTest, LoadFlagsArePassedOn) {
    ASSERT_EQ(painted(5, 3)->save(FIF_PNG, file("a.png").c_str(), 0), 0U);
    const Bitmap headerOnly = newBitmap();
    ASSERT_EQ(headerOnly->load(-1, file("a.png").c_str(), FIF_LOAD_NOPIXELS), 0U);
    EXPECT_EQ(readWidth(*headerOnly), 5);
    void* line = nullptr;
    EXPECT_EQ(headerOnly->getScanline(0, &line), 0x80004005U);
}

TEST_F(BitmapFileTest, LoadingWithoutAPathKeepsTheBitmap) {
    const Bitmap bitmap = painted(2, 2);
    EXPECT_EQ(bitmap->load(-1, nullptr, 0), 0x80070057U);
    EXPECT_TRUE(isPainted(*bitmap, 2, 2));
}

TEST_F(BitmapFileTest, LoadingAnUnreadableFormatKeepsTheBitmap) {
    ASSERT_EQ(painted(3, 3)->save(FIF_PNG, file("a.png").c_str(), 0), 0U);
    const Bitmap bitmap = painted(2, 2);
    EXPECT_EQ(bitmap->load(UNREADABLE, file("a.png").c_str(), 0), 0x80004005U);
    EXPECT_TRUE(isPainted(*bitmap, 2, 2));
    EXPECT_EQ(logTexts(), Texts{endText(0x80004005)});
}

TEST_F(BitmapFileTest, LoadingAnUnknownFormatKeepsTheBitmap) {
    writeFile(file("a.nothing"), GARBAGE);
    const Bitmap bitmap = painted(2, 2);
    EXPECT_EQ(bitmap->load(-1, file("a.nothing").c_str(), 0), 0x80004005U);
    EXPECT_EQ(bitmap->load(-1, file("missing").c_str(), 0), 0x80004005U);
    EXPECT_TRUE(isPainted(*bitmap, 2, 2));
}

TEST_F(BitmapFileTest, LoadingAFileThatDoesNotDecodeLeavesTheObjectEmpty) {
    writeFile(file("a.png"), GARBAGE);
    const Bitmap bitmap = painted(2, 2);
    EXPECT_EQ(bitmap->load(-1, file("a.png").c_str(), 0), 0x80004005U);
    EXPECT_TRUE(isEmpty(*bitmap));
    EXPECT_EQ(records().back().text, endText(0x80004005));
}

TEST_F(BitmapFileTest, LoadingAMissingFileOfAKnownExtensionLeavesTheObjectEmpty) {
    const Bitmap bitmap = painted(2, 2);
    EXPECT_EQ(bitmap->load(-1, file("missing.png").c_str(), 0), 0x80004005U);
    EXPECT_TRUE(isEmpty(*bitmap));
}

TEST_F(BitmapFileTest, FailingLoadLogsExactlyItsEnd) {
    writeFile(file("a.png"), GARBAGE);
    EXPECT_EQ(newBitmap()->load(FIF_PNG, file("a.png").c_str(), 0), 0x80004005U);
    const Texts texts = logTexts();
    EXPECT_EQ(std::count(texts.begin(), texts.end(), endText(0x80004005)), 1);
    EXPECT_EQ(texts.back(), endText(0x80004005));
}

TEST_F(BitmapFileTest, LoadingReplacesTheBitmap) {
    ASSERT_EQ(painted(5, 3)->save(FIF_BMP, file("a.bmp").c_str(), 0), 0U);
    const Bitmap bitmap = painted(2, 2);
    EXPECT_EQ(bitmap->load(-1, file("a.bmp").c_str(), 0), 0U);
    EXPECT_TRUE(isPainted(*bitmap, 5, 3));
}

// --- The static load

TEST_F(BitmapFileTest, LinkedLoadGivesTheLoadedComponentWithOneReference) {
    ASSERT_EQ(painted(5, 3)->save(FIF_PNG, file("a.png").c_str(), 0), 0U);
    const tov::TovRef<LinkedBitmap> bitmap = LinkedBitmap::load(file("a.png").c_str());
    ASSERT_TRUE(bitmap);
    EXPECT_TRUE(isPainted(*bitmap, 5, 3));
    EXPECT_EQ(getReferences(*bitmap), 1U);
    EXPECT_TRUE(assertions().empty());
}

TEST_F(BitmapFileTest, LinkedLoadIsEmptyWhenTheHandlerDeclines) {
    answerAssertions(false);
    EXPECT_FALSE(LinkedBitmap::load(file("missing").c_str()));
    EXPECT_EQ(assertions(), Texts{qutil::tovStrError(0x80004005)});
}

TEST_F(BitmapFileTest, LinkedLoadGivesAnEmptyComponentWhenTheHandlerGoesOn) {
    answerAssertions(true);
    const tov::TovRef<LinkedBitmap> bitmap = LinkedBitmap::load(file("missing").c_str());
    ASSERT_TRUE(bitmap);
    EXPECT_EQ(bitmap->getBitmap(), nullptr);
    EXPECT_EQ(getReferences(*bitmap), 1U);
    EXPECT_EQ(assertions().size(), 1U);
}

TEST_F(BitmapFileTest, LinkedLoadAssertsANullPath) {
    EXPECT_FALSE(LinkedBitmap::load(nullptr));
    EXPECT_EQ(assertions(), Texts{qutil::tovStrError(0x80070057)});
}

// --- Loading streams

TEST_F(BitmapFileTest, StreamLoadsWithOneSizeQueryAndOneRead) {
    const Bytes bytes = encoded(*painted(5, 3), FIF_PNG);
    const auto stream = FakeInputStream::create(bytes);
    const Bitmap bitmap = newBitmap();
    EXPECT_EQ(bitmap->loadFromStream(-1, stream.get(), 0), 0U);
    EXPECT_TRUE(isPainted(*bitmap, 5, 3));
    EXPECT_EQ(stream->sizeCalls, 1);
    EXPECT_EQ(stream->counts, std::vector<std::uint32_t>{static_cast<std::uint32_t>(bytes.size())});
    EXPECT_EQ(getReferences(*stream), 1U);
}

TEST_F(BitmapFileTest, StreamOfTheHostsLoads) {
    const Bytes bytes = encoded(*painted(5, 3), FIF_BMP);
    const auto stream = qutil::MemoryInputStream::create(bytes.data(), bytes.size());
    const Bitmap bitmap = newBitmap();
    EXPECT_EQ(bitmap->loadFromStream(FIF_BMP, stream.get(), 0), 0U);
    EXPECT_TRUE(isPainted(*bitmap, 5, 3));
}

TEST_F(BitmapFileTest, NullStreamIsNamedAndKeepsTheBitmap) {
    const Bitmap bitmap = painted(2, 2);
    EXPECT_EQ(bitmap->loadFromStream(-1, nullptr, 0), 0x80070057U);
    EXPECT_EQ(logTexts(), Texts{"pStream"});
    EXPECT_TRUE(isPainted(*bitmap, 2, 2));
}

TEST_F(BitmapFileTest, FailingSizeQueryIsAssertedAndItsCodeReturned) {
    const Bitmap bitmap = painted(2, 2);
    const auto stream = FakeInputStream::create(GARBAGE);
    stream->onSize = [](std::uint32_t*) { return tov::Result{0x80000101}; };
    EXPECT_EQ(bitmap->loadFromStream(-1, stream.get(), 0), 0x80000101U);
    EXPECT_EQ(assertions(), Texts{qutil::tovStrError(0x80000101)});
    EXPECT_EQ(logTexts(), Texts{endText(0x80000101)});
    EXPECT_TRUE(stream->counts.empty()) << "it is not read";
    EXPECT_TRUE(isPainted(*bitmap, 2, 2));
}

TEST_F(BitmapFileTest, FailingSizeQueryIsOverlookedWhenTheHandlerGoesOn) {
    answerAssertions(true);
    const auto stream = FakeInputStream::create(encoded(*painted(5, 3), FIF_PNG));
    stream->onSize = [](std::uint32_t*) { return tov::FAILURE; };
    const Bitmap bitmap = newBitmap();
    EXPECT_EQ(bitmap->loadFromStream(-1, stream.get(), 0), 0U);
    EXPECT_TRUE(isPainted(*bitmap, 5, 3));
    EXPECT_EQ(assertions().size(), 1U);
    EXPECT_TRUE(records().empty());
}

TEST_F(BitmapFileTest, FailingReadIsAssertedAndItsCodeReturned) {
    const Bitmap bitmap = painted(2, 2);
    const auto stream = FakeInputStream::create(GARBAGE);
    stream->onRead = [](std::uint32_t, unsigned char** pBuffer) {
        *pBuffer = nullptr;
        return tov::Result{0x80001234};
    };
    EXPECT_EQ(bitmap->loadFromStream(-1, stream.get(), 0), 0x80001234U);
    EXPECT_EQ(assertions(), Texts{qutil::tovStrError(0x80001234)});
    EXPECT_EQ(logTexts(), Texts{endText(0x80001234)});
    EXPECT_TRUE(isPainted(*bitmap, 2, 2));
}

TEST_F(BitmapFileTest, BufferOfAFailingReadIsFreed) {
    const auto stream = FakeInputStream::create(GARBAGE);
    stream->onRead = [](std::uint32_t, unsigned char** pBuffer) {
        *pBuffer = runtimeCopy(GARBAGE); // leak detection tells if it is not
        return tov::FAILURE;
    };
    EXPECT_EQ(newBitmap()->loadFromStream(-1, stream.get(), 0), 0x80004005U);
}

TEST_F(BitmapFileTest, FailingReadIsOverlookedWhenTheHandlerGoesOn) {
    answerAssertions(true);
    const Bytes bytes = encoded(*painted(5, 3), FIF_PNG);
    const auto stream = FakeInputStream::create(bytes);
    stream->onRead = [&bytes](std::uint32_t, unsigned char** pBuffer) {
        *pBuffer = runtimeCopy(bytes);
        return tov::FAILURE;
    };
    const Bitmap bitmap = newBitmap();
    EXPECT_EQ(bitmap->loadFromStream(-1, stream.get(), 0), 0U);
    EXPECT_TRUE(isPainted(*bitmap, 5, 3));
}

TEST_F(BitmapFileTest, FailuresOfSizeAndReadAreBothAsserted) {
    answerAssertions(true);
    const auto stream = FakeInputStream::create({});
    stream->onSize = [](std::uint32_t*) { return tov::NOT_READY; };
    stream->onRead = [](std::uint32_t, unsigned char** pBuffer) {
        *pBuffer = nullptr;
        return tov::FAILURE;
    };
    EXPECT_EQ(newBitmap()->loadFromStream(-1, stream.get(), 0), 0x80004005U);
    EXPECT_EQ(assertions(), (Texts{qutil::tovStrError(0x80000100), qutil::tovStrError(0x80004005)}));
}

TEST_F(BitmapFileTest, ReadWithoutBytesIsAnEmptyFileWhenTheHandlerGoesOn) {
    answerAssertions(true);
    const Bitmap bitmap = painted(2, 2);
    const auto stream = FakeInputStream::create(GARBAGE);
    stream->onRead = [](std::uint32_t, unsigned char** pBuffer) {
        *pBuffer = nullptr;
        return tov::FAILURE;
    };
    EXPECT_EQ(bitmap->loadFromStream(FIF_PNG, stream.get(), 0), 0x80004005U);
    EXPECT_TRUE(isEmpty(*bitmap)) << "a known format has unloaded the bitmap";
}

TEST_F(BitmapFileTest, EmptyStreamFails) {
    const Bitmap bitmap = painted(2, 2);
    EXPECT_EQ(bitmap->loadFromStream(-1, FakeInputStream::create({}).get(), 0), 0x80004005U);
    EXPECT_TRUE(isPainted(*bitmap, 2, 2)) << "no format was found, so nothing is unloaded";
}

TEST_F(BitmapFileTest, StreamOfUnknownContentKeepsTheBitmap) {
    const Bitmap bitmap = painted(2, 2);
    EXPECT_EQ(bitmap->loadFromStream(-1, FakeInputStream::create(GARBAGE).get(), 0), 0x80004005U);
    EXPECT_TRUE(isPainted(*bitmap, 2, 2));
}

TEST_F(BitmapFileTest, UnreadableStreamFormatReportsTheBitmapThatIsHeld) {
    const Bitmap bitmap = painted(2, 2);
    const auto stream = FakeInputStream::create(encoded(*painted(3, 3), FIF_PNG));
    EXPECT_EQ(bitmap->loadFromStream(UNREADABLE, stream.get(), 0), 0U);
    EXPECT_TRUE(isPainted(*bitmap, 2, 2));
    EXPECT_TRUE(records().empty());
    EXPECT_EQ(newBitmap()->loadFromStream(UNREADABLE, stream.get(), 0), 0x80004005U) << "without one it fails";
}

TEST_F(BitmapFileTest, ShortStreamLeavesTheObjectEmpty) {
    Bytes bytes = encoded(*painted(20, 20), FIF_PNG);
    bytes.resize(40);
    const Bitmap bitmap = painted(2, 2);
    EXPECT_EQ(bitmap->loadFromStream(-1, FakeInputStream::create(bytes).get(), 0), 0x80004005U);
    EXPECT_TRUE(isEmpty(*bitmap));
    EXPECT_EQ(records().back().text, endText(0x80004005));
}

TEST_F(BitmapFileTest, StreamFormatCanBeGivenWrong) {
    const Bitmap bitmap = painted(2, 2);
    const auto stream = FakeInputStream::create(encoded(*painted(3, 3), FIF_PNG));
    EXPECT_EQ(bitmap->loadFromStream(FIF_BMP, stream.get(), 0), 0x80004005U);
    EXPECT_TRUE(isEmpty(*bitmap));
}

// --- Saving

TEST_F(BitmapFileTest, SavingWithoutAPathIsCheckedBeforeTheBitmap) {
    EXPECT_EQ(newBitmap()->save(FIF_PNG, nullptr, 0), 0x80070057U);
    EXPECT_EQ(newBitmap()->save(FIF_PNG, file("a.png").c_str(), 0), 0x80000100U);
    EXPECT_EQ(newBitmap()->save(-1, file("a.png").c_str(), 0), 0x80000100U) << "before the format";
    EXPECT_TRUE(records().empty());
}

TEST_F(BitmapFileTest, SavingDetectsNoFormat) {
    EXPECT_EQ(painted(2, 2)->save(-1, file("a.png").c_str(), 0), 0x80000101U);
    EXPECT_EQ(painted(2, 2)->save(UNREADABLE, file("a.png").c_str(), 0), 0x80000101U);
    EXPECT_FALSE(std::filesystem::exists(file("a.png")));
}

TEST_F(BitmapFileTest, FormatsThatCannotHoldTheBitmapAreRefused) {
    const Bitmap floats = allocated(FIT_RGBF, 2, 2, 96);
    EXPECT_EQ(floats->save(FIF_PNG, file("a.png").c_str(), 0), 0x80000101U);
    EXPECT_EQ(floats->save(FIF_HDR, file("a.hdr").c_str(), 0), 0U);
    EXPECT_EQ(painted(2, 2)->save(FIF_HDR, file("b.hdr").c_str(), 0), 0x80000101U);
    EXPECT_EQ(painted(2, 2)->save(FIF_GIF, file("a.gif").c_str(), 0), 0x80000101U) << "by bits per pixel";
    EXPECT_EQ(allocated(FIT_BITMAP, 2, 2, 8)->save(FIF_GIF, file("a.gif").c_str(), 0), 0U);
}

TEST_F(BitmapFileTest, SavingWhereNoFileCanBeFailsWithoutALog) {
    EXPECT_EQ(painted(2, 2)->save(FIF_PNG, file("no/such/directory/a.png").c_str(), 0), 0x80004005U);
    EXPECT_TRUE(records().empty());
}

TEST_F(BitmapFileTest, SaveFlagsArePassedOn) {
    const Bitmap bitmap = painted(20, 20);
    ASSERT_EQ(bitmap->save(FIF_JPEG, file("good.jpg").c_str(), JPEG_QUALITYSUPERB), 0U);
    ASSERT_EQ(bitmap->save(FIF_JPEG, file("bad.jpg").c_str(), JPEG_QUALITYBAD), 0U);
    EXPECT_GT(std::filesystem::file_size(file("good.jpg")), std::filesystem::file_size(file("bad.jpg")));
}

TEST_F(BitmapFileTest, StreamIsWrittenOnceWithTheWholeFile) {
    const Bitmap bitmap = painted(5, 3);
    ASSERT_EQ(bitmap->save(FIF_PNG, file("a.png").c_str(), 0), 0U);
    const auto stream = FakeOutputStream::create();
    EXPECT_EQ(bitmap->saveToStream(stream.get(), FIF_PNG, 0), 0U);
    ASSERT_EQ(stream->writes.size(), 1U);
    std::ifstream saved(file("a.png"), std::ios::binary);
    EXPECT_EQ(stream->writes.front(), Bytes(std::istreambuf_iterator<char>(saved), std::istreambuf_iterator<char>()));
    EXPECT_EQ(getReferences(*stream), 1U);
}

TEST_F(BitmapFileTest, NullOutputStreamIsCheckedFirstAndNotLogged) {
    EXPECT_EQ(newBitmap()->saveToStream(nullptr, FIF_PNG, 0), 0x80070057U);
    EXPECT_EQ(painted(2, 2)->saveToStream(nullptr, FIF_PNG, 0), 0x80070057U);
    EXPECT_TRUE(records().empty());
}

TEST_F(BitmapFileTest, OutputStreamIsNotWrittenWithoutABitmapOrAFormat) {
    const auto stream = FakeOutputStream::create();
    EXPECT_EQ(newBitmap()->saveToStream(stream.get(), -1, 0), 0x80000100U);
    EXPECT_EQ(painted(2, 2)->saveToStream(stream.get(), -1, 0), 0x80000101U);
    EXPECT_EQ(allocated(FIT_RGBF, 2, 2, 96)->saveToStream(stream.get(), FIF_PNG, 0), 0x80000101U);
    EXPECT_TRUE(stream->writes.empty());
    EXPECT_EQ(logTexts(), (Texts{endText(0x80000100), endText(0x80000101), endText(0x80000101)}));
}

TEST_F(BitmapFileTest, ResultOfTheWriteIsPassedOn) {
    const auto stream = FakeOutputStream::create();
    stream->onWrite = [] { return tov::Result{0x80001234}; };
    EXPECT_EQ(painted(2, 2)->saveToStream(stream.get(), FIF_PNG, 0), 0x80001234U);
    EXPECT_EQ(logTexts(), Texts{endText(0x80001234)});
    clearLog();
    stream->onWrite = [] { return tov::Result{5}; };
    EXPECT_EQ(painted(2, 2)->saveToStream(stream.get(), FIF_PNG, 0), 5U) << "remarks, too";
    EXPECT_TRUE(records().empty());
}

#if defined(ZQX_CAN_INTERPOSE)

TEST_F(BitmapFileTest, LibraryThatOpensNoMemoryIsAFailure) {
    const Bitmap bitmap = painted(2, 2);
    const auto input = FakeInputStream::create(encoded(*bitmap, FIF_PNG));
    const auto output = FakeOutputStream::create();
    const FaultScope fault(Fault::OPEN_MEMORY);
    EXPECT_EQ(bitmap->loadFromStream(-1, input.get(), 0), 0x80004005U);
    EXPECT_EQ(bitmap->saveToStream(output.get(), FIF_PNG, 0), 0x80004005U);
    EXPECT_TRUE(output->writes.empty());
    EXPECT_TRUE(isPainted(*bitmap, 2, 2));
}

TEST_F(BitmapFileTest, LibraryThatDoesNotSaveOrHandOverMemoryIsAFailure) {
    for (const Fault kind : {Fault::SAVE_TO_MEMORY, Fault::ACQUIRE_MEMORY}) {
        clearLog();
        const auto output = FakeOutputStream::create();
        const FaultScope fault(kind);
        EXPECT_EQ(painted(2, 2)->saveToStream(output.get(), FIF_PNG, 0), 0x80004005U);
        EXPECT_TRUE(output->writes.empty());
        EXPECT_EQ(logTexts(), Texts{endText(0x80004005)});
    }
}

TEST_F(BitmapFileTest, LibraryThatRefusesMetaDataIsAFailure) {
    const Bitmap bitmap = painted(2, 2);
    for (const Fault kind : {Fault::CREATE_TAG, Fault::SET_METADATA}) {
        const FaultScope fault(kind);
        EXPECT_EQ(bitmap->setMetaData("<x/>"), 0x80004005U);
    }
}

#endif

// --- Allocation and sizes

TEST_F(BitmapFileTest, AllocatingReplacesTheBitmapByZeros) {
    const Bitmap bitmap = painted(2, 2);
    EXPECT_EQ(bitmap->allocate(FIT_BITMAP, 4, 3, 32), 0U);
    EXPECT_EQ(readWidth(*bitmap), 4);
    EXPECT_EQ(readHeight(*bitmap), 3);
    EXPECT_EQ(getDepth(*bitmap), 32);
    EXPECT_EQ(detectType(*bitmap), FIT_BITMAP);
    EXPECT_EQ(computePitch(*bitmap), 16);
    EXPECT_EQ(pixelAt(*bitmap, 3, 2), (Pixel{0.0F, 0.0F, 0.0F, 0.0F}));
}

TEST_F(BitmapFileTest, EveryTypeIsAllocatedAsTheLibraryKnowsIt) {
    const std::vector<std::pair<int, int>> depths = {{FIT_UINT16, 16}, {FIT_FLOAT, 32},   {FIT_DOUBLE, 64},
                                                     {FIT_RGB16, 48},  {FIT_RGBA16, 64},  {FIT_RGBF, 96},
                                                     {FIT_RGBAF, 128}, {FIT_COMPLEX, 128}};
    for (const auto& [type, depth] : depths) {
        const Bitmap bitmap = allocated(type, 3, 2, depth);
        EXPECT_EQ(detectType(*bitmap), type);
        EXPECT_EQ(getDepth(*bitmap), depth);
    }
}

TEST_F(BitmapFileTest, FailingAllocationLeavesTheObjectEmpty) {
    const Bitmap bitmap = painted(2, 2);
    EXPECT_EQ(bitmap->allocate(FIT_UNKNOWN, 4, 4, 24), 0x80004005U);
    EXPECT_TRUE(isEmpty(*bitmap));
    EXPECT_EQ(bitmap->allocate(FIT_BITMAP, 0x7fffffff, 0x7fffffff, 32), 0x80004005U);
}

TEST_F(BitmapFileTest, UnloadingAlwaysSucceeds) {
    const Bitmap bitmap = painted(2, 2);
    EXPECT_EQ(bitmap->unload(), 0U);
    EXPECT_TRUE(isEmpty(*bitmap));
    EXPECT_EQ(bitmap->unload(), 0U);
    EXPECT_TRUE(records().empty());
}

TEST_F(BitmapFileTest, SizesOfAnEmptyObjectCheckThePointerFirst) {
    const Bitmap bitmap = newBitmap();
    int number = -7;
    for (const auto get :
         {&IFreeImage::getWidth, &IFreeImage::getHeight, &IFreeImage::getBitsPerPixel, &IFreeImage::getDataType}) {
        EXPECT_EQ((bitmap.get()->*get)(nullptr), 0x80070057U);
        EXPECT_EQ((bitmap.get()->*get)(&number), 0x80000100U);
    }
    EXPECT_EQ(number, -7);
}

TEST_F(BitmapFileTest, PitchChecksTheBitmapFirst) {
    EXPECT_EQ(newBitmap()->getPitch(nullptr), 0x80000100U);
    EXPECT_EQ(painted(3, 2)->getPitch(nullptr), 0x80070057U);
    EXPECT_EQ(computePitch(*painted(3, 2)), 12);
}

TEST_F(BitmapFileTest, LinkedSizesOfAnEmptyObjectAreZero) {
    const LinkedBitmap bitmap;
    EXPECT_EQ(bitmap.getWidth(), 0U);
    EXPECT_EQ(bitmap.getHeight(), 0U);
    EXPECT_EQ(bitmap.getBitsPerPixel(), 0U);
}

// --- Metadata

TEST_F(BitmapFileTest, PacketIsStoredWithItsTerminatingZero) {
    const tov::TovRef bitmap(LinkedBitmap::create());
    bitmap->allocate(FIT_BITMAP, 2, 2, 24);
    EXPECT_EQ(bitmap->setMetaData("<x/>"), 0U);
    FITAG* tag = getPacket(*bitmap);
    ASSERT_NE(tag, nullptr);
    EXPECT_STREQ(FreeImage_GetTagKey(tag), "XMLPacket");
    EXPECT_EQ(FreeImage_GetTagLength(tag), 5U);
    EXPECT_EQ(FreeImage_GetTagCount(tag), 5U);
    EXPECT_EQ(FreeImage_GetTagType(tag), FIDT_ASCII);
    EXPECT_STREQ(static_cast<const char*>(FreeImage_GetTagValue(tag)), "<x/>");
}

TEST_F(BitmapFileTest, NullPacketIsOneZeroByte) {
    const tov::TovRef bitmap(LinkedBitmap::create());
    bitmap->allocate(FIT_BITMAP, 2, 2, 24);
    EXPECT_EQ(bitmap->setMetaData(nullptr), 0U);
    FITAG* tag = getPacket(*bitmap);
    ASSERT_NE(tag, nullptr);
    EXPECT_EQ(FreeImage_GetTagLength(tag), 1U);
    EXPECT_EQ(FreeImage_GetTagCount(tag), 1U);
    EXPECT_STREQ(static_cast<const char*>(FreeImage_GetTagValue(tag)), "");
}

TEST_F(BitmapFileTest, PacketReplacesTheOneBefore) {
    const tov::TovRef bitmap(LinkedBitmap::create());
    bitmap->allocate(FIT_BITMAP, 2, 2, 24);
    bitmap->setMetaData("first");
    EXPECT_EQ(bitmap->setMetaData("second"), 0U);
    EXPECT_STREQ(static_cast<const char*>(FreeImage_GetTagValue(getPacket(*bitmap))), "second");
}

TEST_F(BitmapFileTest, PacketNeedsABitmap) {
    EXPECT_EQ(newBitmap()->setMetaData("<x/>"), 0x80004005U);
    EXPECT_EQ(newBitmap()->setMetaData(nullptr), 0x80004005U);
}

#if defined(__linux__)

TEST_F(BitmapFileTest, PacketWhoseLengthNeedsMoreThan32BitsIsRefused) {
    const RepeatedText packet;
    ASSERT_NE(packet.text(), nullptr);
    EXPECT_EQ(painted(2, 2)->setMetaData(packet.text()), 0x80004005U);
}

#endif

TEST_F(BitmapFileTest, PacketTravelsWithTheFile) {
    const tov::TovRef bitmap(LinkedBitmap::create());
    bitmap->allocate(FIT_BITMAP, 16, 16, 24);
    ASSERT_EQ(bitmap->setMetaData("<x:xmpmeta/>"), 0U);
    ASSERT_EQ(bitmap->save(FIF_PNG, file("a.png").c_str(), 0), 0U);
    const tov::TovRef<LinkedBitmap> loaded = LinkedBitmap::load(file("a.png").c_str());
    ASSERT_TRUE(loaded);
    FITAG* tag = getPacket(*loaded);
    ASSERT_NE(tag, nullptr);
    EXPECT_EQ(std::string(static_cast<const char*>(FreeImage_GetTagValue(tag)), 12), "<x:xmpmeta/>");
}
