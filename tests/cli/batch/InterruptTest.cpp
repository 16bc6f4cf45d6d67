// Runs that are interrupted: no partial file stays, what is there is whole, and the next run goes on from there.
#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <map>
#include <sstream>
#include <thread>

#include <rapidjson/document.h>

#include "cli/Pictures.h"
#include "cli/Program.h"

namespace zqx::img::test {

namespace fs = std::filesystem;

namespace {

class InterruptTest : public ProgramTest {
protected:
    static constexpr int PICTURES = 12;

    InterruptTest() {
        fs::create_directory(at("in"));
        for (int i = 0; i < PICTURES; ++i) {
            writePicture(at("in/" + std::to_string(100 + i) + ".bmp"), picture(i));
        }
    }

    /// Noise takes long to compress.
    static Bitmap picture(int number) {
        std::uint32_t state = static_cast<std::uint32_t>(number) + 1;
        return paint(700, 700, 24, [&state](unsigned, unsigned) {
            state = state * 1664525U + 1013904223U; // Numerical Recipes
            return Rgba{static_cast<int>(state >> 24), static_cast<int>(state >> 16 & 0xFF),
                        static_cast<int>(state >> 8 & 0xC0)};
        });
    }

    std::vector<std::string> command(const std::vector<std::string>& more = {}) const {
        std::vector<std::string> all{ZQX_PROGRAM,  "apply",  at("in"), "--output-dir", at("out"), "--name",
                                     "{stem}.png", "--jobs", "2"};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }

    std::vector<std::string> outputs(bool hidden) const {
        std::vector<std::string> names;
        if (fs::exists(at("out"))) {
            for (const fs::directory_entry& entry : fs::directory_iterator(at("out"))) {
                const std::string name = entry.path().filename().string();
                if (name.starts_with('.') == hidden) {
                    names.push_back(name);
                }
            }
        }
        std::ranges::sort(names);
        return names;
    }

    /// Waits until some pictures are done and another one is being written.
    void waitForWork(std::size_t done) const {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (outputs(false).size() < done || outputs(true).empty()) {
            ASSERT_LT(std::chrono::steady_clock::now(), end) << "nothing is written";
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

    void expectWholePictures() const {
        for (const std::string& name : outputs(false)) {
            EXPECT_TRUE(isIdentical(readPicture(at("out/" + name)), picture(std::stoi(name) - 100))) << name;
        }
    }
};

} // namespace

TEST_F(InterruptTest, InterruptedRunLeavesWholePicturesAndGoesOnFromThere) {
    BackgroundCommand run(command());
    waitForWork(2);
    run.sendSignal(SIGINT);
    const Outcome outcome = run.wait();
    EXPECT_EQ(outcome.exitCode, 130) << outcome.err;
    EXPECT_TRUE(outputs(true).empty());
    const std::vector<std::string> done = outputs(false);
    EXPECT_GE(done.size(), 2U);
    EXPECT_LT(done.size(), static_cast<std::size_t>(PICTURES));
    EXPECT_NE(outcome.err.find(" of 12 pictures done; --update continues from here"), std::string::npos) << outcome.err;
    expectWholePictures();

    std::map<std::string, fs::file_time_type> times;
    for (const std::string& name : done) {
        times[name] = fs::last_write_time(at("out/" + name));
    }
    const Outcome rest = runCommand(command({"--update"}));
    EXPECT_EQ(rest.exitCode, 0) << rest.err;
    EXPECT_NE(rest.err.find(std::to_string(PICTURES - done.size()) + " written, 0 failed, " +
                            std::to_string(done.size()) + " skipped"),
              std::string::npos)
        << rest.err;
    EXPECT_EQ(outputs(false).size(), static_cast<std::size_t>(PICTURES));
    for (const auto& [name, time] : times) {
        EXPECT_EQ(fs::last_write_time(at("out/" + name)), time) << name;
    }
    expectWholePictures();
}

TEST_F(InterruptTest, EachSignalHasItsExitCode) {
    for (const int number : {SIGTERM, SIGHUP}) {
        fs::remove_all(at("out"));
        BackgroundCommand run(command());
        waitForWork(0);
        run.sendSignal(number);
        EXPECT_EQ(run.wait().exitCode, 128 + number);
        EXPECT_TRUE(outputs(true).empty());
    }
}

TEST_F(InterruptTest, SignalsInARowDoNoHarm) {
    BackgroundCommand run(command());
    waitForWork(1);
    for (int i = 0; i < 20; ++i) {
        run.sendSignal(i % 2 == 0 ? SIGINT : SIGTERM);
    }
    const int code = run.wait().exitCode;
    EXPECT_TRUE(code == 128 + SIGINT || code == 128 + SIGTERM) << code;
    EXPECT_TRUE(outputs(true).empty());
    expectWholePictures();
}

TEST_F(InterruptTest, RunThatWasStartedDeafGoesOn) {
    std::vector<std::string> deaf{"sh", "-c", "trap '' HUP; exec \"$0\" \"$@\""};
    const std::vector<std::string> plain = command();
    deaf.insert(deaf.end(), plain.begin(), plain.end());
    BackgroundCommand run(deaf);
    waitForWork(1);
    run.sendSignal(SIGHUP);
    EXPECT_EQ(run.wait().exitCode, 0);
    EXPECT_EQ(outputs(false).size(), static_cast<std::size_t>(PICTURES));
}

TEST_F(InterruptTest, SinglePictureLeavesTheOldFileAndNoWord) {
    fs::create_directory(at("out"));
    writePicture(at("large.bmp"), paint(3000, 2000, 24, motley));
    writeFile(at("out/picture.png"), "precious");
    BackgroundCommand run({ZQX_PROGRAM, "apply", at("large.bmp"), "-o", at("out/picture.png")});
    waitForWork(1);
    run.sendSignal(SIGINT);
    const Outcome outcome = run.wait();
    EXPECT_EQ(outcome.exitCode, 130);
    EXPECT_EQ(outcome.err, "");
    EXPECT_TRUE(outputs(true).empty());
    EXPECT_EQ(readFile(at("out/picture.png")), "precious");
}

TEST_F(InterruptTest, RecordsStayWholeLinesAndTheLastSaysSo) {
    BackgroundCommand run(command({"--json"}));
    waitForWork(2);
    run.sendSignal(SIGINT);
    const Outcome outcome = run.wait();
    ASSERT_TRUE(outcome.out.ends_with('\n'));
    std::istringstream lines(outcome.out);
    rapidjson::Document last;
    std::size_t written = 0;
    for (std::string line; std::getline(lines, line);) {
        last.Parse(line.c_str());
        ASSERT_FALSE(last.HasParseError()) << line;
        written += last.HasMember("status");
    }
    ASSERT_TRUE(last.HasMember("summary")) << outcome.out;
    EXPECT_TRUE(last["summary"]["interrupted"].GetBool());
    EXPECT_EQ(last["summary"]["written"].GetUint64(), written);
}

} // namespace zqx::img::test
