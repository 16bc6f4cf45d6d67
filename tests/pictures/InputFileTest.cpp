// What is opened for reading is the file that was opened, and nothing makes the program wait.
#include <filesystem>

#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/files/InputFile.h"

#include <support/DirectoryTest.h>
#include <support/Process.h>

#if !defined(_WIN32)
#include <thread>

#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>
#endif

namespace zqx::pictures {

namespace fs = std::filesystem;

namespace {

class InputFileTest : public img::test::DirectoryTest {
protected:
    /// What opening a file says, or "opened".
    static std::string attempt(const std::string& name, InputFile::Source source) {
        try {
            const InputFile file(name, source);
            return "opened";
        } catch (const Error& error) {
            return error.what();
        }
    }

    static std::string attemptPicture(const std::string& name) { return attempt(name, InputFile::Source::FILE_ONLY); }
};

} // namespace

TEST_F(InputFileTest, TextIsReadWhole) {
    img::test::writeFile(at("in"), std::string(200'000, 'x') + "end");
    EXPECT_EQ(InputFile(at("in")).readText(1U << 20U), std::string(200'000, 'x') + "end");
}

TEST_F(InputFileTest, TextBeyondTheLimitIsRefused) {
    img::test::writeFile(at("in"), std::string(2U << 20U, 'x'));
    EXPECT_THROW(InputFile(at("in")).readText(1U << 20U), Error);
}

TEST_F(InputFileTest, PartsAreReadFromAnyPlace) {
    img::test::writeFile(at("in"), "0123456789");
    InputFile file(at("in"));
    EXPECT_EQ(file.readAt(3, 4), "3456");
    EXPECT_EQ(file.readAt(8, 4), "89");
    EXPECT_EQ(file.readAt(0, 2), "01");
    EXPECT_EQ(file.readAt(100, 4), "");
    EXPECT_EQ(file.readAt(~std::uint64_t{0}, 4), "");
}

TEST_F(InputFileTest, MissingFileAndPathThroughAFile) {
    img::test::writeFile(at("file"), "x");
    EXPECT_EQ(attemptPicture(at("none")), at("none") + ": there is no such file; check the name");
    EXPECT_EQ(attemptPicture(at("file/in")), at("file/in") + ": there is no such file; check the name");
}

TEST_F(InputFileTest, FileStaysTheOneThatWasOpened) {
    img::test::writeFile(at("in"), "first");
    InputFile file(at("in"));
    img::test::writeFile(at("other"), "the second one");
    fs::rename(at("other"), at("in"));
    EXPECT_EQ(file.size(), 5U);
    EXPECT_EQ(file.readText(100), "first");
}

TEST_F(InputFileTest, DirectoryIsRefused) {
    EXPECT_EQ(attemptPicture(at("")), at("") + ": is a folder; name a file");
    EXPECT_EQ(attempt(at(""), InputFile::Source::FILE_OR_PIPE), at("") + ": is a folder; name a file");
}

#if !defined(_WIN32)

TEST_F(InputFileTest, PipeThatNobodyWritesToIsRefusedAtOnce) {
    ASSERT_EQ(mkfifo(at("pipe").c_str(), 0600), 0);
    EXPECT_EQ(attemptPicture(at("pipe")),
              at("pipe") + ": is a pipe, and pictures cannot be read from pipes; save its output to a file first");
}

TEST_F(InputFileTest, TextComesThroughAPipe) {
    ASSERT_EQ(mkfifo(at("pipe").c_str(), 0600), 0);
    InputFile file(at("pipe"));
    // Opened before there is anybody at the other end, who then takes two turns.
    std::thread writer([this] {
        const int end = open(at("pipe").c_str(), O_WRONLY);
        EXPECT_EQ(write(end, "one ", 4), 4);
        EXPECT_EQ(write(end, "two", 3), 3);
        close(end);
    });
    EXPECT_EQ(file.readText(100), "one two");
    writer.join();
}

TEST_F(InputFileTest, SocketIsRefused) {
    const int server = socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string name = at("s");
    ASSERT_LT(name.size(), sizeof address.sun_path);
    name.copy(address.sun_path, name.size());
    ASSERT_EQ(bind(server, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(attemptPicture(name), name + ": is a socket; name a file");
    EXPECT_EQ(attempt(name, InputFile::Source::FILE_OR_PIPE), name + ": is a socket; name a file");
    close(server);
}

TEST_F(InputFileTest, DevicesAreRefused) {
    for (const char* name : {"/dev/null", "/dev/zero", "/dev/full"}) {
        EXPECT_EQ(attemptPicture(name), std::string(name) + ": is a device; name a file");
        EXPECT_EQ(attempt(name, InputFile::Source::FILE_OR_PIPE), std::string(name) + ": is a device; name a file");
    }
}

TEST_F(InputFileTest, LinksAreFollowed) {
    img::test::writeFile(at("in"), "text");
    fs::create_symlink("in", at("link"));
    fs::create_symlink("/dev/null", at("null.png"));
    EXPECT_EQ(InputFile(at("link")).readText(100), "text");
    EXPECT_EQ(attemptPicture(at("null.png")), at("null.png") + ": is a device; name a file");
}

TEST_F(InputFileTest, DescriptorIsNotInheritedAndIsClosed) {
    img::test::writeFile(at("in"), "text");
    const int next = dup(STDIN_FILENO);
    close(next);
    {
        const InputFile file(at("in"));
        EXPECT_NE(fcntl(next, F_GETFD) & FD_CLOEXEC, 0);
        EXPECT_EQ(fcntl(next, F_GETFL) & O_NONBLOCK, 0);
    }
    EXPECT_EQ(fcntl(next, F_GETFD), -1);
}

#endif

} // namespace zqx::pictures
