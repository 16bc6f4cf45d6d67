// apply with many pictures: which are taken, what they become, and what one of them going wrong does to the others.
#include <algorithm>
#include <filesystem>
#include <map>
#include <sstream>

#include <rapidjson/document.h>

#include "cli/Pictures.h"
#include "cli/Program.h"

namespace zqx::img::test {

namespace fs = std::filesystem;

namespace {

using Names = std::vector<std::string>;

std::vector<std::string> getLines(const std::string& text) {
    std::vector<std::string> lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return lines;
}

class BatchTest : public ProgramTest {
protected:
    void makePicture(const std::string& name, int seed = 0) const {
        fs::create_directories(fs::path(at(name)).parent_path());
        writePicture(at(name), paint(20, 10, 24, [seed](unsigned x, unsigned y) {
                         return motley(x + static_cast<unsigned>(seed), y);
                     }));
    }

    void makeDamaged(const std::string& name) const {
        fs::create_directories(fs::path(at(name)).parent_path());
        writeFile(at(name), "no picture");
    }

    /// All files below a folder, sorted, hidden ones too.
    Names filesBelow(const std::string& folder) const {
        Names names;
        if (fs::exists(at(folder))) {
            for (const fs::directory_entry& entry : fs::recursive_directory_iterator(at(folder))) {
                if (!entry.is_directory()) {
                    names.push_back(fs::relative(entry.path(), at(folder)).string());
                }
            }
        }
        std::ranges::sort(names);
        return names;
    }

    std::map<std::string, std::string> contentBelow(const std::string& folder) const {
        std::map<std::string, std::string> contents;
        for (const std::string& name : filesBelow(folder)) {
            contents[name] = readFile(at(folder + "/" + name));
        }
        return contents;
    }

    /// The records of a run, by the input's file name; the summary has the name "summary".
    static std::map<std::string, rapidjson::Document> getRecords(const Outcome& outcome) {
        std::map<std::string, rapidjson::Document> records;
        for (const std::string& line : getLines(outcome.out)) {
            rapidjson::Document record;
            record.Parse(line.c_str());
            if (record.HasParseError() || !record.IsObject()) {
                ADD_FAILURE() << "no record: " << line;
                continue;
            }
            const std::string name =
                record.HasMember("input") ? fs::path(record["input"].GetString()).filename().string() : "summary";
            records[name] = std::move(record);
        }
        return records;
    }
};

/// The figures at the end of a run, without the time.
std::string getCounts(const Outcome& outcome) {
    const std::vector<std::string> lines = getLines(outcome.err);
    return lines.empty() ? "" : lines.back().substr(0, lines.back().find(" in "));
}

} // namespace

TEST_F(BatchTest, FolderBecomesAFolder) {
    makePicture("in/a.png", 1);
    makePicture("in/b.tif", 2);
    const Outcome outcome = zqxImg({"apply", at("in"), "--output-dir", at("new/out"), "--set", "flipX=true"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(getCounts(outcome), "2 written, 0 failed, 0 skipped");
    EXPECT_EQ(filesBelow("new/out"), (Names{"a.png", "b.tif"}));
    for (const int seed : {1, 2}) {
        const Bitmap expected = paint(
            20, 10, 24, [seed](unsigned x, unsigned y) { return motley(19 - x + static_cast<unsigned>(seed), y); });
        EXPECT_TRUE(isIdentical(readPicture(at(seed == 1 ? "new/out/a.png" : "new/out/b.tif")), expected));
    }
}

TEST_F(BatchTest, RecursiveRunsKeepTheFolders) {
    makePicture("in/a.png");
    makePicture("in/2024/a.png");
    makePicture("in/2024/may/a.png");
    EXPECT_EQ(zqxImg({"apply", at("in"), "-r", "--output-dir", at("out")}).exitCode, 0);
    EXPECT_EQ(filesBelow("out"), (Names{"2024/a.png", "2024/may/a.png", "a.png"}));
}

TEST_F(BatchTest, OutputFolderInTheInputFolderIsNotReadAgain) {
    makePicture("in/a.png");
    for (int run = 0; run < 2; ++run) {
        EXPECT_EQ(zqxImg({"apply", at("in"), "-r", "--output-dir", at("in/out")}).exitCode, 0);
        EXPECT_EQ(filesBelow("in"), (Names{"a.png", "out/a.png"}));
    }
}

TEST_F(BatchTest, NamesFollowTheTemplate) {
    for (const char* name : {"b.png", "a.png", "sub/c.png"}) {
        makePicture(std::string("in/") + name);
    }
    EXPECT_EQ(
        zqxImg({"apply", at("in"), "-r", "--output-dir", at("out"), "--name", "{dir}/{stem}_{n:04}.bmp"}).exitCode, 0);
    EXPECT_EQ(filesBelow("out"), (Names{"a_0001.bmp", "b_0002.bmp", "sub/c_0003.bmp"}));
}

TEST_F(BatchTest, SinglePictureIntoAFolderIsDoneWithoutAWord) {
    makePicture("a.png");
    succeed({"apply", at("a.png"), "--output-dir", at("out")});
    EXPECT_EQ(filesBelow("out"), Names{"a.png"});
}

TEST_F(BatchTest, RefusalsComeBeforeAnyWork) {
    makePicture("x/a.png");
    makePicture("y/a.png");
    fail(2, {"apply", at("x"), at("y"), "--output-dir", at("out")}, "would be written for both " + at("x/a.png"));
    fail(2, {"apply", at("x"), "--output-dir", at("x")}, "would replace a picture that this run reads");
    fail(2, {"apply", at("x/a.png"), at("y/a.png"), "-o", at("o.png")},
         "--output: takes a single picture; use --output-dir");
    fail(2, {"apply", at("x")}, "apply: missing output; give --output FILE for one picture, or --output-dir DIR");
    fail(2, {"apply", at("x/a.png"), "-o", at("o.png"), "--output-dir", at("out")},
         "apply: --output cannot be combined with --output-dir");
    fail(2, {"apply", at("x/a.png"), "-o", at("o.png"), "--name", "{stem}.png"}, "--name: requires --output-dir");
    fail(2, {"apply", at("x"), "--output-dir", at("out"), "--name", "{date}.png"}, "unknown field {date}");
    fail(2, {"apply", at("x"), "--output-dir", at("out"), "--name", "{stem}.cr2"}, "can be read but not written");
    fail(2,
         {"apply", at("x/a.png"), at("y"), "--output-dir", at("out"), "--name", "{n}.png", "--before-after",
          at("both.png")},
         "--before-after: takes a single picture");
    fail(2, {"apply", at("x/a.png"), "--output-dir", at("out"), "--before-after", at("out/a.png")},
         "--before-after: is the same file as another output");
    fail(2, {"apply", at("x"), at("none"), "--output-dir", at("out"), "--set", "no=1"}, "unknown adjustment");
    fail(2, {"apply", at("x"), "--output-dir", at("out"), "--max-memory", "lots"}, "\"lots\" is not a number of bytes");
    for (const char* jobs : {"0", "-1", "many"}) {
        fail(2, {"apply", at("x"), "--output-dir", at("out"), "--jobs", jobs}, "--jobs");
    }
    EXPECT_EQ(files(), (Names{"x", "y"}));
    EXPECT_EQ(filesBelow("x"), Names{"a.png"});
}

TEST_F(BatchTest, OneBadFileDoesNotStopTheRest) {
    makePicture("in/a.png");
    makeDamaged("in/b.png");
    makePicture("in/c.png");
    const Outcome outcome = zqxImg({"apply", at("in"), at("none.png"), "--output-dir", at("out")});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(filesBelow("out"), (Names{"a.png", "c.png"}));
    EXPECT_EQ(getCounts(outcome), "2 written, 2 failed, 0 skipped");
    EXPECT_NE(outcome.err.find("zqx-img: " + at("in/b.png") + ": cannot be read as PNG"), std::string::npos);
    EXPECT_NE(outcome.err.find("zqx-img: " + at("none.png") + ": there is no such file"), std::string::npos);
    EXPECT_EQ(getLines(outcome.err).size(), 3U) << outcome.err;
}

TEST_F(BatchTest, ReasonsAreTheDecodersOwnForEveryPicture) {
    makeDamaged("in/1.jpg");
    makePicture("in/2.png");
    makeDamaged("in/3.jpg");
    makePicture("in/4.png");
    makeDamaged("in/5.jpg");
    for (const char* jobs : {"1", "4"}) {
        const Outcome outcome = zqxImg({"apply", at("in"), "--output-dir", at("out"), "--jobs", jobs});
        for (const char* name : {"in/1.jpg", "in/3.jpg", "in/5.jpg"}) {
            EXPECT_NE(
                outcome.err.find(at(name) + ": cannot be read as JPEG (Not a JPEG file: starts with 0x6e 0x6f); "),
                std::string::npos)
                << outcome.err;
        }
    }
}

TEST_F(BatchTest, NothingButMissingPicturesFails) {
    const Outcome outcome = zqxImg({"apply", at("none"), "--output-dir", at("out")});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.err, "zqx-img: " + at("none") + ": there is no such file; check the name\n");
    EXPECT_TRUE(files().empty());
}

TEST_F(BatchTest, FullDiskFailsOnlyWhatDoesNotFit) {
    makePicture("in/small.png");
    writePicture(at("in/large.png"), paint(200, 200, 24, motley));
    const Outcome outcome =
        runCommand({"sh", "-c", "ulimit -f 8; exec \"$0\" \"$@\"", ZQX_PROGRAM, "apply", at("in"), "--output-dir",
                    at("out"), "--name", "{stem}.bmp", "--no-isolate"}); // whose memory the limit would be on, too
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_NE(outcome.err.find(at("out/large.bmp") + ": could not be written (File too large)"), std::string::npos)
        << outcome.err;
    EXPECT_EQ(filesBelow("out"), Names{"small.bmp"});
}

TEST_F(BatchTest, ResultsDoNotDependOnJobsAndThreads) {
    const Bitmap colors = paint(120, 90, 24, motley);
    const Bitmap clear = paint(120, 90, 32, motley);
    for (const char* name : {"a.png", "b.jpg", "c.tif", "d.bmp", "e.webp", "f.tga", "g.ppm", "h.jp2", "i.gif"}) {
        fs::create_directory(at("in"));
        writePicture(at(std::string("in/") + name), std::string(name) == "i.gif"
                                                        ? Bitmap(FreeImage_ConvertTo8Bits(colors.get()))
                                                    : std::string(name) == "a.png" || std::string(name) == "c.tif"
                                                        ? Bitmap(FreeImage_Clone(clear.get()))
                                                        : Bitmap(FreeImage_Clone(colors.get())));
    }
    const Bitmap floats = fillSamples(FIT_RGBF, 96, 120, 90);
    for (const char* name : {"in/j.exr", "in/k.pfm", "in/l.hdr", "in/m.tif"}) {
        writePicture(at(name), floats);
    }
    const auto run = [&](const std::string& out, const char* jobs, const char* threads) {
        const Outcome outcome = zqxImg({"apply", at("in"), "--output-dir", at(out), "--jobs", jobs, "--threads",
                                        threads, "--set", "exposure=0.5", "--set", "sharpness=0.3", "--set", "hue=40"});
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        return contentBelow(out);
    };
    const auto expected = run("one", "1", "1");
    EXPECT_EQ(expected.size(), 13U);
    EXPECT_TRUE(run("two", "8", "1") == expected);
    EXPECT_TRUE(run("three", "1", "4") == expected);
    EXPECT_TRUE(run("four", "5", "3") == expected);
    EXPECT_TRUE(run("five", "8", "0") == expected);
}

TEST_F(BatchTest, DryRunOnlyTells) {
    makePicture("in/a.png");
    makePicture("in/b.png");
    makePicture("out/b.png");
    fs::last_write_time(at("out/b.png"), fs::last_write_time(at("in/b.png")) - std::chrono::seconds(5));
    const std::string before = readFile(at("out/b.png"));
    const Outcome outcome = zqxImg({"apply", at("in"), at("none.png"), "--output-dir", at("out"), "--dry-run"});
    EXPECT_EQ(outcome.exitCode, 1); // as the run will
    EXPECT_EQ(outcome.out, at("in/a.png") + " -> " + at("out/a.png") + "\n" + at("in/b.png") + " -> " +
                               at("out/b.png") + " (would replace)\n");
    EXPECT_EQ(outcome.err, "zqx-img: " + at("none.png") + ": there is no such file; check the name\n");
    EXPECT_EQ(filesBelow("out"), Names{"b.png"});
    const Outcome keeping = zqxImg({"apply", at("in"), "--output-dir", at("out"), "--dry-run", "--no-clobber"});
    EXPECT_NE(keeping.out.find(at("out/b.png") + " (skipped: exists)\n"), std::string::npos) << keeping.out;
    EXPECT_EQ(zqxImg({"apply", at("in"), "--output-dir", at("other"), "--dry-run"}).exitCode, 0);
    EXPECT_FALSE(fs::exists(at("other")));
    fail(1, {"apply", at("in/a.png"), "-o", at("other/a.png"), "--dry-run"}, "there is no folder " + at("other"));
}

TEST_F(BatchTest, NoClobberKeepsWhatIsThere) {
    makePicture("in/a.png");
    makePicture("in/b.png");
    fs::create_directory(at("out"));
    writeFile(at("out/a.png"), "precious");
    const Outcome outcome = zqxImg({"apply", at("in"), "--output-dir", at("out"), "--no-clobber"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(getCounts(outcome), "1 written, 0 failed, 1 skipped");
    EXPECT_EQ(readFile(at("out/a.png")), "precious");
    EXPECT_EQ(filesBelow("out"), (Names{"a.png", "b.png"}));
}

TEST_F(BatchTest, SkippedSinglePictureIsSaid) {
    makePicture("a.png");
    writeFile(at("b.png"), "precious");
    const Outcome outcome = zqxImg({"apply", at("a.png"), "-o", at("b.png"), "--no-clobber"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.err, at("a.png") + " -> " + at("b.png") + ": skipped: exists\n");
    EXPECT_EQ(readFile(at("b.png")), "precious");
}

TEST_F(BatchTest, UpdateWritesOnlyWhatIsOutOfDate) {
    for (const char* name : {"in/a.png", "in/b.png", "in/c.png"}) {
        makePicture(name);
    }
    succeed({"params", "--set", "exposure=1", "-o", at("look.json")});
    const Names command{"apply", at("in"), "--output-dir", at("out"), "--update", "--params", at("look.json")};
    EXPECT_EQ(getCounts(zqxImg(command)), "3 written, 0 failed, 0 skipped");
    EXPECT_EQ(getCounts(zqxImg(command)), "0 written, 0 failed, 3 skipped");
    fs::remove(at("out/a.png"));
    fs::last_write_time(at("in/b.png"), fs::file_time_type::clock::now() + std::chrono::seconds(5));
    EXPECT_EQ(getCounts(zqxImg(command)), "2 written, 0 failed, 1 skipped");
    fs::last_write_time(at("look.json"), fs::file_time_type::clock::now() + std::chrono::seconds(5));
    EXPECT_EQ(getCounts(zqxImg(command)), "3 written, 0 failed, 0 skipped");
}

TEST_F(BatchTest, QuietRunsSayNothingButErrors) {
    makePicture("in/a.png");
    writePicture(at("in/b.png"), paint(9, 9, 32, motley)); // loses its alpha below
    makeDamaged("in/c.png");
    const Outcome outcome = zqxImg({"apply", at("in"), "--output-dir", at("out"), "--name", "{stem}.jpg", "--quiet"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(getLines(outcome.err).size(), 1U) << outcome.err;
    EXPECT_NE(outcome.err.find(at("in/c.png")), std::string::npos);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(filesBelow("out"), (Names{"a.jpg", "b.jpg"}));
}

TEST_F(BatchTest, VerboseRunsTellTimesAndSizes) {
    makePicture("in/a.png");
    makePicture("in/b.png");
    const Outcome outcome = zqxImg({"apply", at("in"), "--output-dir", at("out"), "--verbose", "--jobs", "2",
                                    "--threads", "3", "--max-memory", "1G"});
    const std::vector<std::string> lines = getLines(outcome.err);
    ASSERT_EQ(lines.size(), 4U) << outcome.err;
    EXPECT_NE(lines[0].find(", 2 pictures at once x 3 threads, up to 1.0 GiB of memory"), std::string::npos)
        << lines[0];
    for (const char* part :
         {" -> ", "20 x 10, 8-bit colour, decode ", ", adjust ", ", encode ", ", store ", " megapixels/s"}) {
        EXPECT_NE(lines[1].find(part), std::string::npos) << part;
        EXPECT_NE(lines[2].find(part), std::string::npos) << part;
    }
}

TEST_F(BatchTest, ProcessorsAreThoseThatTheUserAllows) {
    makePicture("a.png");
    makePicture("b.png");
    const Outcome outcome = runCommand({"env", "OMP_NUM_THREADS=6", ZQX_PROGRAM, "apply", at("a.png"), at("b.png"),
                                        "--output-dir", at("out"), "--verbose"});
    EXPECT_NE(outcome.err.find(", 2 pictures at once x 3 threads"), std::string::npos) << outcome.err;
}

TEST_F(BatchTest, JsonRunsPrintARecordForEachPicture) {
    makePicture("in/a.png");
    makeDamaged("in/b.png");
    writePicture(at("in/c.png"), paint(7, 5, 32, motley));
    makePicture("in/d.png");
    fs::create_directory(at("out"));
    writeFile(at("out/d.jpg"), "precious");
    const Outcome outcome = zqxImg(
        {"apply", at("in"), at("none"), "--output-dir", at("out"), "--name", "{stem}.jpg", "--no-clobber", "--json"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(getLines(outcome.err).size(), 2U) << outcome.err; // errors, no warnings
    auto records = getRecords(outcome);
    ASSERT_EQ(records.size(), 6U) << outcome.out;
    EXPECT_STREQ(records["a.png"]["status"].GetString(), "written");
    EXPECT_EQ(records["a.png"]["output"].GetString(), at("out/a.jpg"));
    EXPECT_EQ(records["a.png"]["width"].GetUint(), 20U);
    EXPECT_STREQ(records["a.png"]["depth"].GetString(), "8-bit colour");
    EXPECT_GT(records["a.png"]["seconds"]["encode"].GetDouble(), 0.0);
    EXPECT_STREQ(records["b.png"]["status"].GetString(), "failed");
    EXPECT_NE(std::string(records["b.png"]["reason"].GetString()).find("cannot be read as PNG"), std::string::npos);
    ASSERT_EQ(records["c.png"]["warnings"].Size(), 1U);
    EXPECT_NE(std::string(records["c.png"]["warnings"][0].GetString()).find("no transparency"), std::string::npos);
    EXPECT_STREQ(records["d.png"]["status"].GetString(), "skipped");
    EXPECT_STREQ(records["d.png"]["reason"].GetString(), "exists");
    EXPECT_STREQ(records["none"]["status"].GetString(), "failed");
    EXPECT_EQ(records["summary"]["summary"]["written"].GetUint(), 2U);
    EXPECT_EQ(records["summary"]["summary"]["failed"].GetUint(), 2U);
    EXPECT_EQ(records["summary"]["summary"]["skipped"].GetUint(), 1U);
    EXPECT_TRUE(getLines(outcome.out).back().starts_with("{\"summary\""));
}

TEST_F(BatchTest, JsonOfADryRunIsPlanned) {
    makePicture("in/a.png");
    auto records = getRecords(zqxImg({"apply", at("in"), "--output-dir", at("out"), "--json", "--dry-run"}));
    EXPECT_STREQ(records["a.png"]["status"].GetString(), "planned");
    EXPECT_EQ(records["summary"]["summary"]["planned"].GetUint(), 1U);
}

TEST_F(BatchTest, FullStandardOutputStopsTheRunAndLeavesNoPartialFile) {
    for (int i = 0; i < 20; ++i) {
        makePicture("in/" + std::to_string(i) + ".png");
    }
    const Outcome full = runCommand({"sh", "-c", "exec \"$0\" \"$@\" > /dev/full", ZQX_PROGRAM, "apply", at("in"),
                                     "--output-dir", at("out"), "--json", "--jobs", "1"});
    EXPECT_EQ(full.exitCode, 1);
    EXPECT_NE(full.err.find("standard output: could not be written"), std::string::npos) << full.err;
    EXPECT_EQ(filesBelow("out").size(), 1U);
}

TEST_F(BatchTest, ReaderWhoHasLeftStopsTheRunAndLeavesNoPartialFile) {
    for (int i = 0; i < 20; ++i) {
        makePicture("in/" + std::to_string(i) + ".png");
    }
    // A pipe whose reading end is closed already.
    const Outcome outcome =
        runCommand({"sh", "-c", "mkfifo \"$1\"; exec 3<>\"$1\" 4>\"$1\" 3<&-; shift; exec \"$0\" \"$@\" >&4",
                    ZQX_PROGRAM, at("pipe"), "apply", at("in"), "--output-dir", at("out"), "--json", "--jobs", "1"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_NE(outcome.err.find("standard output: could not be written"), std::string::npos) << outcome.err;
    EXPECT_EQ(filesBelow("out").size(), 1U);
}

TEST_F(BatchTest, PictureBeyondTheMemoryLimitIsRefusedAloneWithTheWayOut) {
    makePicture("in/small.png");
    writePicture(at("in/large.png"), paint(2000, 1000, 24, motley));
    const Outcome outcome =
        zqxImg({"apply", at("in"), "--output-dir", at("out"), "--name", "{stem}.bmp", "--max-memory", "16M"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_NE(outcome.err.find(at("in/large.png") + ": needs about 25 MiB of memory, more than the 16 MiB allowed; "
                                                    "--max-memory raises this limit"),
              std::string::npos)
        << outcome.err;
    EXPECT_EQ(filesBelow("out"), Names{"small.bmp"});
}

TEST_F(BatchTest, NothingOfTheProgressIsSeenOnAPipe) {
    makePicture("in/a.png");
    makePicture("in/b.png");
    const Outcome outcome = zqxImg({"apply", at("in"), "--output-dir", at("out")});
    EXPECT_EQ(outcome.err.find('\r'), std::string::npos);
    EXPECT_EQ(outcome.err.find('\x1b'), std::string::npos);
}

TEST_F(BatchTest, TerminalShowsTheProgressAndIsTidyAtTheEnd) {
    makePicture("in/a.png");
    makeDamaged("in/b.png");
    makePicture("in/c.png");
    const auto onTerminal = [&](const char* kind) {
        const std::string command = std::string("TERM=") + kind + " LC_ALL=C " + ZQX_PROGRAM + " apply " + at("in") +
                                    " --output-dir " + at("out") + " --jobs 1";
        return runCommand({"script", "--quiet", "--return", "--command", command, "/dev/null"});
    };
    const Outcome shown = onTerminal("xterm");
    EXPECT_EQ(shown.exitCode, 1);
    EXPECT_NE(shown.out.find("/3"), std::string::npos) << shown.out;
    EXPECT_NE(shown.out.find("\r\x1b[Kzqx-img: " + at("in/b.png") + ": cannot be read"), std::string::npos)
        << shown.out;
    EXPECT_NE(shown.out.find("\r\x1b[K2 written, 1 failed, 0 skipped in "), std::string::npos) << shown.out;
    EXPECT_EQ(shown.out.find('\x1b', shown.out.find("2 written")), std::string::npos) << shown.out;
    const Outcome dumb = onTerminal("dumb");
    EXPECT_EQ(dumb.out.find('\x1b'), std::string::npos) << dumb.out;
    EXPECT_NE(dumb.out.find("2 written, 1 failed"), std::string::npos) << dumb.out;
}

TEST_F(BatchTest, NamesMayBeInAnyScript) {
    makePicture("фото/日本 ☕.png");
    makePicture("фото/b.png");
    EXPECT_EQ(zqxImg({"apply", at("фото"), "--output-dir", at("Ausgabe ü")}).exitCode, 0);
    EXPECT_EQ(filesBelow("Ausgabe ü"), (Names{"b.png", "日本 ☕.png"}));
}

TEST_F(BatchTest, NewFilesHaveThePermissionsOfAnyNewFile) {
    for (int i = 0; i < 10; ++i) {
        makePicture("in/" + std::to_string(i) + ".png");
    }
    const Outcome outcome = runCommand({"sh", "-c", "umask 027; exec \"$0\" \"$@\"", ZQX_PROGRAM, "apply", at("in"),
                                        "--output-dir", at("out"), "--jobs", "8"});
    EXPECT_EQ(outcome.exitCode, 0);
    for (const std::string& name : filesBelow("out")) {
        EXPECT_EQ(fs::status(at("out/" + name)).permissions(), fs::perms(0640)) << name;
    }
}

TEST_F(BatchTest, OutputFolderThatCannotBeMadeIsTold) {
    makePicture("in/a.png");
    writeFile(at("file"), "x");
    fail(1, {"apply", at("in"), "--output-dir", at("file/out")}, at("file/out") + ": the folder cannot be created");
}

} // namespace zqx::img::test
