// Streams of hosts: positions, short reads, files that are not there, files that appear only complete.
#include <qutil/Streams.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include <tov/Runtime.h>

#if defined(__linux__)
#include <csignal>
#include <cstdlib>

#include <sys/resource.h>
#endif

namespace fs = std::filesystem;

namespace {

/// Reads through the interface; "failed" where that fails.
std::string readFrom(qutil::IIOStream& stream, std::uint32_t count) {
    unsigned char* buffer = nullptr;
    if (tov::failed(stream.read(count, &buffer))) {
        EXPECT_EQ(buffer, nullptr);
        return "failed";
    }
    std::string text(buffer, buffer + count);
    tov::tovFree(buffer);
    return text;
}

tov::Result writeTo(tov::IOutputStream& stream, std::string text) {
    return stream.write({static_cast<std::uint32_t>(text.size()), reinterpret_cast<unsigned char*>(text.data())});
}

std::string getContents(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

void store(const fs::path& path, const std::string& contents) {
    std::ofstream(path, std::ios::binary) << contents;
}

/// An own directory, whose name is not plain ASCII.
class FileStreams : public testing::Test {
protected:
    FileStreams() {
        const std::string test = testing::UnitTest::GetInstance()->current_test_info()->name();
        mDirectory = fs::temp_directory_path() / (u8"zqx-Ströme-東-" + std::u8string(test.begin(), test.end()));
        fs::remove_all(mDirectory);
        fs::create_directories(mDirectory);
    }
    ~FileStreams() override { fs::remove_all(mDirectory); }

    fs::path path(const char* name) const { return mDirectory / name; }
    std::string utf8(const char* name) const {
        const std::u8string text = path(name).u8string();
        return {text.begin(), text.end()};
    }
    std::ptrdiff_t fileCount() const { return std::distance(fs::directory_iterator(mDirectory), {}); }

private:
    fs::path mDirectory;
};

} // namespace

TEST(MemoryInputStream, ReadsOnFromItsPosition) {
    const auto stream = qutil::MemoryInputStream::create("abcdef", 6);
    EXPECT_EQ(readFrom(*stream, 2), "ab");
    EXPECT_EQ(readFrom(*stream, 4), "cdef");
    EXPECT_EQ(readFrom(*stream, 0), "");
    EXPECT_EQ(readFrom(*stream, 1), "failed");
}

TEST(MemoryInputStream, ShortReadFailsAndReadsNothing) {
    const auto stream = qutil::MemoryInputStream::create("abc", 3);
    EXPECT_EQ(readFrom(*stream, 4), "failed");
    EXPECT_EQ(readFrom(*stream, 0xFFFFFFFF), "failed");
    EXPECT_EQ(readFrom(*stream, 3), "abc");
}

TEST(MemoryInputStream, SizeIsThatOfTheWhole) {
    const auto stream = qutil::MemoryInputStream::create("abc", 3);
    std::uint32_t size = 0;
    EXPECT_EQ(readFrom(*stream, 2), "ab");
    EXPECT_EQ(stream->getSize(&size), tov::SUCCESS);
    EXPECT_EQ(size, 3U);
}

TEST(MemoryInputStream, KeepsItsOwnCopy) {
    char text[] = "abc";
    const auto stream = qutil::MemoryInputStream::create(text, 3);
    text[0] = 'x';
    EXPECT_EQ(readFrom(*stream, 3), "abc");
}

TEST(MemoryInputStream, NullPointersAreInvalid) {
    const auto stream = qutil::MemoryInputStream::create("abc", 3);
    EXPECT_EQ(stream->getSize(nullptr), tov::INVALID_ARGUMENT);
    EXPECT_EQ(stream->read(1, nullptr), tov::INVALID_ARGUMENT);
    EXPECT_FALSE(qutil::MemoryInputStream::create(nullptr, 1));
    EXPECT_TRUE(qutil::MemoryInputStream::create(nullptr, 0));
}

TEST(MemoryInputStream, MoreThanFourGibibytesAreRefused) {
    if constexpr (sizeof(std::size_t) > 4) {
        EXPECT_FALSE(qutil::MemoryInputStream::create("abc", std::size_t{1} << 32U));
    }
}

TEST(MemoryInputStream, IsAComponent) {
    const auto stream = qutil::MemoryInputStream::create("abc", 3);
    tov::TovRef<tov::IUnknown> found;
    EXPECT_EQ(stream->queryInterface(qutil::IIOStream::IID, found.receive()), tov::SUCCESS);
    EXPECT_STREQ(found->getInterfaceName(), "IDL:qutil/IIOStream:1.0");
}

TEST(MemoryOutputStream, CollectsWhatIsWritten) {
    const auto stream = qutil::MemoryOutputStream::create();
    EXPECT_EQ(writeTo(*stream, "abc"), tov::SUCCESS);
    EXPECT_EQ(writeTo(*stream, ""), tov::SUCCESS);
    EXPECT_EQ(writeTo(*stream, "de"), tov::SUCCESS);
    EXPECT_EQ(std::string(stream->bytes().begin(), stream->bytes().end()), "abcde");
}

TEST(MemoryOutputStream, NullBytesAreInvalidUnlessThereAreNone) {
    const auto stream = qutil::MemoryOutputStream::create();
    EXPECT_EQ(stream->write({1, nullptr}), tov::INVALID_ARGUMENT);
    EXPECT_EQ(stream->write({0, nullptr}), tov::SUCCESS);
    EXPECT_TRUE(stream->bytes().empty());
}

TEST_F(FileStreams, InputReadsAFile) {
    store(path("in.bin"), std::string("ab\0\r\n\x1Az", 7));
    const auto stream = qutil::FileInputStream::create(utf8("in.bin"));
    ASSERT_TRUE(stream);
    std::uint32_t size = 0;
    EXPECT_EQ(stream->getSize(&size), tov::SUCCESS);
    EXPECT_EQ(size, 7U);
    EXPECT_EQ(readFrom(*stream, 3), std::string("ab\0", 3));
    EXPECT_EQ(readFrom(*stream, 5), "failed");
    EXPECT_EQ(readFrom(*stream, 4), "\r\n\x1Az");
    EXPECT_EQ(readFrom(*stream, 1), "failed");
}

TEST_F(FileStreams, MissingFilesAndDirectoriesAreNoInput) {
    EXPECT_FALSE(qutil::FileInputStream::create(utf8("missing.bin")));
    EXPECT_FALSE(qutil::FileInputStream::create(utf8("")));
    EXPECT_FALSE(qutil::FileInputStream::create(""));
}

TEST_F(FileStreams, FileCutShortSinceIsAFailure) {
    store(path("in.bin"), std::string(100'000, 'a'));
    const auto stream = qutil::FileInputStream::create(utf8("in.bin"));
    ASSERT_TRUE(stream);
    fs::resize_file(path("in.bin"), 10);
    EXPECT_EQ(readFrom(*stream, 100'000), "failed");
    EXPECT_EQ(readFrom(*stream, 10), std::string(10, 'a'));
}

#if defined(__linux__)
TEST_F(FileStreams, FilesOfFourGibibytesAreRefused) {
    store(path("large.bin"), "a");
    std::error_code error;
    fs::resize_file(path("large.bin"), 1ULL << 32U, error); // sparse: takes no room
    if (error) {
        GTEST_SKIP() << "the file system has no large files";
    }
    EXPECT_FALSE(qutil::FileInputStream::create(utf8("large.bin")));
    fs::resize_file(path("large.bin"), (1ULL << 32U) - 1);
    EXPECT_TRUE(qutil::FileInputStream::create(utf8("large.bin")));
}
#endif

TEST_F(FileStreams, OutputAppearsWhenClosed) {
    const auto stream = qutil::FileOutputStream::create(utf8("out.bin"));
    ASSERT_TRUE(stream);
    EXPECT_EQ(writeTo(*stream, "ab\n"), tov::SUCCESS);
    EXPECT_FALSE(fs::exists(path("out.bin")));
    EXPECT_EQ(writeTo(*stream, "cd"), tov::SUCCESS);
    EXPECT_EQ(stream->close(), tov::SUCCESS);
    EXPECT_EQ(getContents(path("out.bin")), "ab\ncd");
    EXPECT_EQ(fileCount(), 1);
}

TEST_F(FileStreams, OutputReplacesAnEarlierFile) {
    store(path("out.bin"), "a longer text from before");
    const auto stream = qutil::FileOutputStream::create(utf8("out.bin"));
    EXPECT_EQ(writeTo(*stream, "new"), tov::SUCCESS);
    EXPECT_EQ(getContents(path("out.bin")), "a longer text from before");
    EXPECT_EQ(stream->close(), tov::SUCCESS);
    EXPECT_EQ(getContents(path("out.bin")), "new");
}

TEST_F(FileStreams, OutputThatIsNotClosedLeavesNothing) {
    store(path("out.bin"), "old");
    {
        const auto stream = qutil::FileOutputStream::create(utf8("out.bin"));
        EXPECT_EQ(writeTo(*stream, "half"), tov::SUCCESS);
        EXPECT_EQ(fileCount(), 2);
    }
    EXPECT_EQ(getContents(path("out.bin")), "old");
    EXPECT_EQ(fileCount(), 1);
}

TEST_F(FileStreams, ClosedOutputTakesNothingMore) {
    const auto stream = qutil::FileOutputStream::create(utf8("out.bin"));
    EXPECT_EQ(stream->close(), tov::SUCCESS);
    EXPECT_EQ(stream->close(), tov::NOT_READY);
    EXPECT_EQ(writeTo(*stream, "more"), tov::NOT_READY);
    EXPECT_EQ(getContents(path("out.bin")), "");
}

TEST_F(FileStreams, OutputIntoNowhereIsRefused) {
    EXPECT_FALSE(qutil::FileOutputStream::create(utf8("no-directory/out.bin")));
    EXPECT_FALSE(qutil::FileOutputStream::create(utf8("")));
    EXPECT_FALSE(qutil::FileOutputStream::create(""));
    EXPECT_EQ(fileCount(), 0);
}

TEST_F(FileStreams, OutputThatCannotBePutInPlaceFailsAndLeavesNothing) {
    const auto stream = qutil::FileOutputStream::create(utf8("out.bin"));
    EXPECT_EQ(writeTo(*stream, "text"), tov::SUCCESS);
    fs::create_directory(path("out.bin"));
    EXPECT_EQ(stream->close(), tov::FAILURE);
    EXPECT_EQ(fileCount(), 1);
}

TEST_F(FileStreams, NullBytesAreInvalid) {
    const auto stream = qutil::FileOutputStream::create(utf8("out.bin"));
    EXPECT_EQ(stream->write({1, nullptr}), tov::INVALID_ARGUMENT);
    EXPECT_EQ(stream->write({0, nullptr}), tov::SUCCESS);
}

#if defined(__linux__)
TEST_F(FileStreams, FullDiskIsAFailureThatChangesNothing) {
    store(path("out.bin"), "old");
    const auto stream = qutil::FileOutputStream::create(utf8("out.bin"));
    ASSERT_TRUE(stream);
    // A size limit stands in for the full disk, in a process of its own.
    EXPECT_EXIT(
        {
            struct rlimit limit = {};
            limit.rlim_cur = 1000;
            limit.rlim_max = 1000;
            setrlimit(RLIMIT_FSIZE, &limit);
            std::signal(SIGXFSZ, SIG_IGN);
            const bool refused = tov::failed(writeTo(*stream, std::string(100'000, 'a')));
            const bool failed = tov::failed(stream->close());
            std::_Exit(refused && failed && getContents(path("out.bin")) == "old" ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}
#endif
