// How often a picture file is opened: once. Whoever opens a name twice may find two files there.
#if defined(__linux__)

#include <cstddef>
#include <string>

#include <sys/inotify.h>
#include <unistd.h>

#include "cli/Pictures.h"
#include "cli/Program.h"

namespace zqx::img::test {

namespace {

/// Counts how often a file is opened, by whatever process.
class OpeningCounter {
public:
    explicit OpeningCounter(const std::string& name) : mDescriptor(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
        // Events that are alike and follow each other come as one: reading and closing keep openings apart.
        EXPECT_GE(inotify_add_watch(mDescriptor, name.c_str(), IN_OPEN | IN_ACCESS | IN_CLOSE), 0);
    }
    OpeningCounter(const OpeningCounter&) = delete;
    OpeningCounter& operator=(const OpeningCounter&) = delete;
    ~OpeningCounter() { close(mDescriptor); }

    /// Since it was last asked.
    int take() {
        int count = 0;
        alignas(inotify_event) char events[4096];
        for (ssize_t size = 0; (size = read(mDescriptor, events, sizeof events)) > 0;) {
            for (std::size_t place = 0; place < static_cast<std::size_t>(size);) {
                const auto* event = reinterpret_cast<const inotify_event*>(events + place);
                count += (event->mask & IN_OPEN) != 0 ? 1 : 0;
                place += sizeof(inotify_event) + event->len;
            }
        }
        return count;
    }

private:
    int mDescriptor;
};

class OpeningTest : public ProgramTest, public ::testing::WithParamInterface<const char*> {};

} // namespace

TEST_P(OpeningTest, EveryCommandOpensAPictureOnce) {
    const std::string in = at(GetParam());
    writePicture(in, paint(9, 7, 24, motley));
    writePicture(at("other.png"), paint(9, 7, 24, motley));
    OpeningCounter counter(in);
    for (const char* isolation : {"--isolate", "--no-isolate"}) {
        const std::vector<std::vector<std::string>> commands = {
            {"apply", in, "-o", at("out.png"), isolation, "--max-memory", "1G"},
            {"apply", in, at("other.png"), "--output-dir", at("out"), "--name", "{stem}.png", isolation},
            {"info", in, isolation, "--max-memory", "1G"},
            {"preview", in, "-o", at("out.png"), isolation},
            {"histogram", in, "--json", isolation},
            {"compare", in, at("other.png"), "--tolerance", "1", isolation},
        };
        for (const std::vector<std::string>& command : commands) {
            const Outcome outcome = zqxImg(command);
            EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
            EXPECT_EQ(counter.take(), 1) << command.front() << " " << isolation;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Formats, OpeningTest, ::testing::Values("in.png", "in.jpg", "in.tif", "in.ppm", "in.psd"),
                         [](const auto& test) { return std::string(test.param).substr(3); });

} // namespace zqx::img::test

#endif
