// Decoding in a process of its own: the same pictures and words as without, and clear words where it is lost.
#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <thread>

#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Pictures.h"
#include "Program.h"

namespace zqx::img::test {

namespace fs = std::filesystem;

namespace {

class IsolationTest : public ProgramTest {
protected:
    /// What a run comes to: exit code, words and the bytes of the picture that was written.
    struct Result {
        int exitCode;
        std::string words;
        std::string picture;
        bool operator==(const Result&) const = default;
        friend std::ostream& operator<<(std::ostream& stream, const Result& result) {
            return stream << result.exitCode << ", " << result.words;
        }
    };

    Result getResult(const std::string& in, const std::string& out, const char* option) {
        const Outcome outcome = zqxImg({"apply", in, "-o", out, option});
        const std::string picture = fs::exists(out) ? getContent(out) : "";
        fs::remove(out);
        return {outcome.exitCode, outcome.err, picture};
    }

    /// Everything in a picture file. TIFF's encoder leaves chance bytes between its strips, so these are read.
    static std::string getContent(const std::string& name) {
        if (!name.ends_with(".tif")) {
            return readFile(name);
        }
        const Bitmap bitmap = readPicture(name);
        std::string content = runCommand({"exiftool", "-a", "-G1", "--File:all", "--System:all", name}).out;
        for (unsigned y = 0; y < FreeImage_GetHeight(bitmap.get()); ++y) {
            content.append(reinterpret_cast<const char*>(FreeImage_GetScanLine(bitmap.get(), static_cast<int>(y))),
                           FreeImage_GetLine(bitmap.get()));
        }
        return content;
    }

    /// Runs with and without a process of its own and expects the same of both.
    Result sameBothWays(const std::string& in, const std::string& out) {
        Result here = getResult(in, out, "--no-isolate");
        const Result isolated = getResult(in, out, "--isolate");
        EXPECT_EQ(isolated.exitCode, here.exitCode) << isolated.words;
        EXPECT_EQ(isolated.words, here.words);
        EXPECT_TRUE(isolated.picture == here.picture) << in << " to " << out;
        return here;
    }

    /// Applies nothing to a file with isolation and expects that this fails in one line. @return that line's text
    /// behind the file's name
    std::string getFailure(const std::string& in, std::vector<std::string> options) {
        std::vector<std::string> arguments{"apply", in, "-o", at("out.png"), "--isolate"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const Outcome outcome = zqxImg(arguments);
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_FALSE(fs::exists(at("out.png")));
        return getText(in, outcome.err);
    }

    static std::string getText(const std::string& in, const std::string& line) {
        const std::string front = "zqx-img: " + in + ": ";
        EXPECT_EQ(line.substr(0, front.size()), front);
        EXPECT_EQ(line.find('\n'), line.size() - 1) << line;
        return line.size() > front.size() ? line.substr(front.size(), line.size() - front.size() - 1) : "";
    }

    /// A picture that keeps its decoder busy for ever, under a name that no other process knows.
    std::string endlessPicture() {
        fs::copy_file(fs::path(ZQX_DAMAGED) / "endless.xbm", at("endless.xbm"));
        return at("endless.xbm");
    }
};

/// The program somewhere else, with another decoder beside it or none.
class OtherDecoderTest : public IsolationTest {
protected:
    OtherDecoderTest() {
        fs::create_directory(at("bin"));
        fs::copy_file(ZQX_PROGRAM, at("bin/zqx-img"));
        writePicture(at("in.png"), paint(5, 5, 24, motley));
    }

    /// A decoder that does what a shell does. It finds the result's place at descriptor 3; 4 is open as long as it
    /// lives.
    void makeDecoder(const std::string& commands) {
        const std::string name = at("bin/zqx-img-decoder");
        writeFile(name, "#!/bin/sh\n" + commands + "\n");
        fs::permissions(name, fs::perms(0755));
    }

    std::string failure(const std::string& time = "20") {
        const Outcome outcome = runCommand(
            {at("bin/zqx-img"), "apply", at("in.png"), "-o", at("out.png"), "--isolate", "--decode-time", time});
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_FALSE(fs::exists(at("out.png")));
        return getText(at("in.png"), outcome.err);
    }
};

struct Sample {
    const char* name;
    FREE_IMAGE_TYPE type;
    int bits;
    int flags = 0;
};

Bitmap getPicture(const Sample& sample) {
    if (sample.type != FIT_BITMAP) {
        return fillSamples(sample.type, sample.bits, 137, 121);
    }
    if (sample.bits <= 8) {
        const auto color = [&](unsigned i) {
            const int level = static_cast<int>(i * 255 / ((1U << static_cast<unsigned>(sample.bits)) - 1));
            return Rgba{level, level, sample.bits == 8 ? level : 255 - level};
        };
        return paintIndexed(137, 121, sample.bits, color, [&](unsigned x, unsigned y) {
            return (x + 3 * y) % (1U << static_cast<unsigned>(sample.bits));
        });
    }
    return paint(137, 121, sample.bits, motley);
}

class EachFormatTest : public IsolationTest, public ::testing::WithParamInterface<Sample> {};

} // namespace

TEST_P(EachFormatTest, GivesTheSameFileInAProcessOfItsOwn) {
    const std::string in = at(GetParam().name);
    writePicture(in, getPicture(GetParam()), GetParam().flags);
    for (const char* out : {"out.png", "out.tif"}) {
        const Result result = sameBothWays(in, at(out));
        EXPECT_EQ(result.exitCode, 0) << result.words;
        EXPECT_FALSE(result.picture.empty());
    }
    if (fs::path(in).extension() != ".wbmp") { // of which two colours are all
        sameBothWays(in, at("out" + fs::path(in).extension().string()));
    }
}

TEST_P(EachFormatTest, IsDescribedTheSameByAProcessOfItsOwn) {
    const std::string in = at(GetParam().name);
    writePicture(in, getPicture(GetParam()), GetParam().flags);
    for (const char* form : {"--json", "--no-isolate"}) { // the second in words
        std::vector<std::string> isolated{"info", in, "--isolate"};
        if (form == std::string("--json")) {
            isolated.emplace_back(form);
        }
        const Outcome there = zqxImg(isolated);
        const Outcome here = zqxImg({"info", in, form});
        EXPECT_EQ(there.exitCode, 0) << there.err;
        EXPECT_EQ(there.out, here.out);
        EXPECT_EQ(there.err, here.err);
    }
}

TEST_P(EachFormatTest, IsToldToBeDamagedInTheSameWords) {
    const std::string in = at(GetParam().name);
    writePicture(in, getPicture(GetParam()), GetParam().flags);
    const std::string content = readFile(in);
    writeFile(in, content.substr(0, content.size() * 7 / 10));
    const Result isolated = getResult(in, at("out.png"), "--isolate");
    EXPECT_LE(isolated.exitCode, 1) << isolated.words;
    const Result here = getResult(in, at("out.png"), "--no-isolate");
    const bool survived = here.exitCode <= 1 && here.words.find("AddressSanitizer") == std::string::npos;
    if (survived) { // Photoshop's decoder takes the whole program with it
        EXPECT_EQ(isolated, here);
    } else {
        EXPECT_EQ(isolated.exitCode, 1);
    }
}

INSTANTIATE_TEST_SUITE_P(Decoders, EachFormatTest,
                         ::testing::Values(Sample{"rgb.png", FIT_BITMAP, 24}, Sample{"rgba.png", FIT_BITMAP, 32},
                                           Sample{"grey.png", FIT_BITMAP, 8}, Sample{"bits.png", FIT_BITMAP, 1},
                                           Sample{"grey16.png", FIT_UINT16, 16}, Sample{"rgb16.png", FIT_RGB16, 48},
                                           Sample{"rgba16.tif", FIT_RGBA16, 64}, Sample{"double.tif", FIT_DOUBLE, 64},
                                           Sample{"counts.tif", FIT_UINT32, 32}, Sample{"greyf.tif", FIT_FLOAT, 32},
                                           Sample{"rgbf.tif", FIT_RGBF, 96},
                                           Sample{"rgbaf.exr", FIT_RGBAF, 128, EXR_FLOAT},
                                           Sample{"rgbf.pfm", FIT_RGBF, 96}, Sample{"rgbf.hdr", FIT_RGBF, 96},
                                           Sample{"rgb.jpg", FIT_BITMAP, 24}, Sample{"rgb.bmp", FIT_BITMAP, 24},
                                           Sample{"palette.bmp", FIT_BITMAP, 4}, Sample{"rgba.tga", FIT_BITMAP, 32},
                                           Sample{"rgb.psd", FIT_BITMAP, 24}, Sample{"rgb.ppm", FIT_BITMAP, 24},
                                           Sample{"grey.pgm", FIT_BITMAP, 8},
                                           Sample{"rgba.webp", FIT_BITMAP, 32, WEBP_LOSSLESS},
                                           Sample{"grey.gif", FIT_BITMAP, 8}, Sample{"rgb.jp2", FIT_BITMAP, 24},
                                           Sample{"rgb.xpm", FIT_BITMAP, 24}, Sample{"bits.wbmp", FIT_BITMAP, 1}),
                         [](const auto& test) {
                             std::string name = test.param.name;
                             std::ranges::replace(name, '.', '_');
                             return name;
                         });

TEST_F(IsolationTest, EveryCommandThatReadsPicturesCanIsolate) {
    const std::string in = endlessPicture();
    writePicture(at("b.png"), paint(8, 8, 24, motley));
    const std::vector<std::vector<std::string>> commands = {
        {"info", in},
        {"preview", in, "-o", at("out.png")},
        {"histogram", in},
        {"compare", in, at("b.png")},
        {"denoise", in, "--albedo", at("b.png"), "--normal", at("b.png"), "-o", at("out.png")}};
    for (std::vector<std::string> command : commands) {
        command.insert(command.end(), {"--decode-time", "0.5"});
        const Outcome outcome = zqxImg(command);
        EXPECT_EQ(outcome.exitCode, 1) << command.front();
        EXPECT_EQ(getText(in, outcome.err),
                  "takes longer to decode than the 0.5 s allowed; --decode-time raises this limit")
            << command.front();
        EXPECT_FALSE(fs::exists(at("out.png")));
    }
}

TEST_F(IsolationTest, EveryCommandThatReadsPicturesGivesTheSameWithIsolation) {
    writePicture(at("a.png"), paint(8, 8, 24, motley));
    const std::vector<std::vector<std::string>> commands = {
        {"info", at("a.png"), "--json"}, {"histogram", at("a.png"), "--json"}, {"compare", at("a.png"), at("a.png")}};
    for (const std::vector<std::string>& command : commands) {
        std::vector<std::string> isolated = command;
        isolated.emplace_back("--isolate");
        const Outcome outcome = zqxImg(isolated);
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        EXPECT_EQ(outcome.out, zqxImg(command).out) << command.front();
    }
}

TEST_F(IsolationTest, MetadataAndTurningAreTheSame) {
    const std::string in = at("in.jpg");
    writeOrientedJpeg(in, 40, 20, 6);
    ASSERT_EQ(runCommand({"exiftool", "-q", "-overwrite_original", "-EXIF:Make=Tester", "-IPTC:City=Example",
                          "-XMP-dc:Title=A title", "-XResolution=300", "-YResolution=150", "-Comment=Hello", in})
                  .exitCode,
              0);
    for (const char* out : {"out.jpg", "out.png", "out.tif"}) {
        EXPECT_EQ(sameBothWays(in, at(out)).exitCode, 0);
    }
    EXPECT_EQ(zqxImg({"apply", in, "-o", at("out.jpg"), "--isolate"}).exitCode, 0);
    const Outcome described = zqxImg({"info", in, "--isolate"});
    EXPECT_EQ(described.out, zqxImg({"info", in}).out);
    EXPECT_NE(described.out.find("Tester"), std::string::npos);
    EXPECT_EQ(runCommand({"exiftool", "-s3", "-EXIF:Make", "-IPTC:City", "-XMP:Title", at("out.jpg")}).out,
              "Tester\nExample\nA title\n");
}

TEST_F(IsolationTest, ProfileAndCommentsAreTheSame) {
    const Bitmap bitmap = paint(12, 9, 24, motley);
    std::string profile(200, '\7');
    profile.replace(16, 4, "RGB ");
    FreeImage_CreateICCProfile(bitmap.get(), profile.data(), static_cast<long>(profile.size()));
    FITAG* tag = FreeImage_CreateTag();
    FreeImage_SetTagKey(tag, "Comment");
    FreeImage_SetTagType(tag, FIDT_ASCII);
    FreeImage_SetTagCount(tag, 6);
    FreeImage_SetTagLength(tag, 6);
    FreeImage_SetTagValue(tag, "Hello");
    FreeImage_SetMetadata(FIMD_COMMENTS, bitmap.get(), "Comment", tag);
    FreeImage_DeleteTag(tag);
    for (const char* in : {"in.jpg", "in.tif"}) {
        writePicture(at(in), bitmap);
        for (const char* out : {"out.tif", "out.jpg"}) {
            EXPECT_EQ(sameBothWays(at(in), at(out)).exitCode, 0);
        }
    }
}

TEST_F(IsolationTest, WhatCannotBeReadIsToldInTheSameWords) {
    writeFile(at("in.xyz"), "This is no picture, whatever one does.");
    writeFile(at("in.png"), "Neither is this.");
    writeFile(at("empty.jpg"), "");
    fs::create_directory(at("folder.png"));
    ASSERT_EQ(mkfifo(at("pipe.png").c_str(), 0600), 0);
    for (const char* name : {"none.png", "in.xyz", "in.png", "empty.jpg", "folder.png", "pipe.png", "no/where.png"}) {
        const Result result = sameBothWays(at(name), at("out.png"));
        EXPECT_EQ(result.exitCode, 1) << name;
        EXPECT_NE(getText(at(name), result.words), "") << name;
    }
}

TEST_F(IsolationTest, ForbiddenFileIsToldInTheSameWords) {
    writePicture(at("in.png"), paint(2, 2, 24, motley));
    fs::permissions(at("in.png"), fs::perms::none);
    for (const char* option : {"--isolate", "--no-isolate"}) {
        std::vector<std::string> command{ZQX_PROGRAM, "apply", at("in.png"), "-o", at("out.png"), option};
        if (geteuid() == 0) { // root reads everything, unless told that it may not
            const char* const asMortal[] = {"setpriv", "--bounding-set=-dac_override,-dac_read_search"};
            command.insert(command.begin(), std::begin(asMortal), std::end(asMortal));
        }
        EXPECT_EQ(getText(at("in.png"), runCommand(command).err),
                  "cannot be opened (Permission denied); check its permissions");
    }
}

TEST_F(IsolationTest, NamesOfAllKindsArrive) {
    for (const char* name : {"-dash.png", "\xC3\xA4 \xE2\x82\xAC.png", "with\nline.png", "a: b.png"}) {
        writePicture(at(name), paint(3, 3, 24, motley));
        succeed({"apply", at(name), "-o", at("out.png"), "--isolate"});
    }
}

TEST_F(IsolationTest, EndlessDecodingIsEnded) {
    EXPECT_EQ(getFailure(endlessPicture(), {"--decode-time", "1"}),
              "takes longer to decode than the 1 s allowed; --decode-time raises this limit");
}

/// What the decoder's memory looks like decides whether it dies at once, later or just refuses.
TEST_F(IsolationTest, FilesThatDecodersDoNotSurviveAreErrors) {
    int count = 0;
    for (const fs::directory_entry& entry : fs::directory_iterator(ZQX_DAMAGED)) {
        if (entry.path().extension() != ".md") {
            EXPECT_NE(getFailure(entry.path().string(), {"--decode-time", "2"}), "") << entry.path();
            ++count;
        }
    }
    EXPECT_EQ(count, 8);
    EXPECT_TRUE(files().empty());
}

TEST_F(IsolationTest, PicturesBeyondTheMemoryAreRefused) {
    writePicture(at("in.png"), paint(2000, 2000, 24, motley));
    EXPECT_EQ(getFailure(at("in.png"), {"--decode-memory", "8M"}),
              "needs more than the 8 MiB allowed for decoding; --decode-memory raises this limit");
    succeed({"apply", at("in.png"), "-o", at("out.png"), "--decode-memory", "256M"});
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) // which need all the address space there is
TEST_F(IsolationTest, DecodersThatTakeMoreThanThePixelsAreLimited) {
    writePicture(at("in.jp2"), paint(1200, 1200, 24, motley)); // decoded to 32-bit integers first
    EXPECT_EQ(getFailure(at("in.jp2"), {"--decode-memory", "6M"}),
              "needs more than the 6 MiB allowed for decoding; --decode-memory raises this limit");
    EXPECT_NE(getFailure(at("in.jp2"), {"--decode-memory", "12M"}), "");
    succeed({"apply", at("in.jp2"), "-o", at("out.png"), "--decode-memory", "256M"});
}
#endif

TEST_F(IsolationTest, ProgramWithoutStandardDescriptorsWorks) {
    writePicture(at("in.png"), paint(5, 5, 24, motley));
    const std::string script = "exec \"$0\" apply \"$1\" -o \"$2\" --isolate <&- >&- 2>&-";
    EXPECT_EQ(runCommand({"sh", "-c", script, ZQX_PROGRAM, at("in.png"), at("out.png")}).exitCode, 0);
    EXPECT_TRUE(isIdentical(readPicture(at("in.png")), readPicture(at("out.png"))));
}

TEST_F(IsolationTest, ProgramWhoseChildrenAreNobodysBusinessWorks) {
    writePicture(at("in.png"), paint(5, 5, 24, motley));
    const std::string script = "trap '' CHLD; exec \"$0\" apply \"$1\" -o \"$2\" --isolate";
    const Outcome outcome = runCommand({"sh", "-c", script, ZQX_PROGRAM, at("in.png"), at("out.png")});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
}

#if defined(__linux__)

namespace {

/// Processes that were given a file's name.
std::vector<pid_t> processesWith(const std::string& name) {
    std::vector<pid_t> found;
    for (const fs::directory_entry& entry : fs::directory_iterator("/proc")) {
        const std::string number = entry.path().filename().string();
        if (number.find_first_not_of("0123456789") == std::string::npos &&
            readFile(entry.path() / "cmdline").find(name) != std::string::npos) {
            found.push_back(std::stoi(number));
        }
    }
    return found;
}

bool isDecoder(pid_t process) {
    return readFile("/proc/" + std::to_string(process) + "/comm").starts_with("zqx-img-dec");
}

/// Waits for as long as it may take on a busy machine.
bool waitUntil(const std::function<bool()>& condition) {
    for (int i = 0; i < 1500; ++i) {
        if (condition()) {
            return true;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return false;
}

/// A run of the program that only ends when somebody ends it.
class EndlessRunTest : public IsolationTest {
protected:
    EndlessRunTest() {
        mRun = std::thread([this] {
            mOutcome = zqxImg({"apply", mInput, "-o", at("out.png"), "--isolate", "--decode-time", "600"});
        });
        EXPECT_TRUE(waitUntil([this] { return findProcesses(); })) << "no decoder is seen";
    }
    ~EndlessRunTest() override {
        for (const pid_t process : processesWith(mInput)) {
            kill(process, SIGKILL);
        }
        end();
    }

    pid_t program() const { return mProgram; }
    pid_t decoder() const { return mDecoder; }
    std::string getStatus(const char* file) const {
        return readFile(fs::path("/proc") / std::to_string(mDecoder) / file);
    }
    const std::string& input() const { return mInput; }

    const Outcome& end() {
        if (mRun.joinable()) {
            mRun.join();
        }
        return mOutcome;
    }

private:
    bool findProcesses() {
        const std::vector<pid_t> processes = processesWith(mInput);
        const auto found = std::ranges::find_if(processes, isDecoder);
        if (processes.size() != 2 || found == processes.end()) {
            return false;
        }
        mDecoder = *found;
        mProgram = mDecoder == processes[0] ? processes[1] : processes[0];
        return true;
    }

    const std::string mInput = endlessPicture();
    pid_t mProgram = -1;
    pid_t mDecoder = -1;
    std::thread mRun;
    Outcome mOutcome;
};

} // namespace

TEST_F(EndlessRunTest, DecoderGoesWithTheProgram) {
    ASSERT_GT(program(), 0);
    kill(program(), SIGKILL);
    end();
    EXPECT_TRUE(waitUntil([this] { return processesWith(input()).empty(); }));
}

TEST_F(EndlessRunTest, LostDecoderTakesNobodyWithIt) {
    ASSERT_GT(decoder(), 0);
    kill(decoder(), SIGABRT);
    EXPECT_EQ(end().exitCode, 1);
    EXPECT_TRUE(getText(input(), end().err) // the format may or may not have been known by then
                    .ends_with("decoder (aborted); the file is damaged or hostile"))
        << end().err;
}

TEST_F(EndlessRunTest, DecoderHasNoMoreThanItNeeds) {
    ASSERT_GT(decoder(), 0);
    EXPECT_TRUE(
        waitUntil([this] { return getStatus("limits").find("Max open files            32 ") != std::string::npos; }));
    EXPECT_NE(getStatus("limits").find("Max core file size        0 "), std::string::npos);
    EXPECT_NE(getStatus("status").find("NoNewPrivs:\t1"), std::string::npos);
    EXPECT_NE(getStatus("status").find("CapEff:\t0000000000000000"), std::string::npos);
#if defined(ZQX_WITH_SECCOMP)
    EXPECT_TRUE(waitUntil([this] { return getStatus("status").find("Seccomp:\t2") != std::string::npos; }));
#endif
    for (const char* descriptor : {"0", "1", "2"}) {
        EXPECT_EQ(fs::read_symlink(fs::path("/proc") / std::to_string(decoder()) / "fd" / descriptor), "/dev/null");
    }
}

#endif

TEST_F(OtherDecoderTest, NoneAtAll) {
    EXPECT_EQ(failure(), "cannot be decoded in a separate process: there is no program zqx-img-decoder in " +
                             at("bin") + " or " + at("libexec/zqx-img") + "; install it, or use --no-isolate");
    EXPECT_EQ(runCommand({at("bin/zqx-img"), "apply", at("in.png"), "-o", at("out.png")}).exitCode, 0);
}

TEST_F(OtherDecoderTest, InstalledOneIsFound) {
    fs::create_directories(at("libexec/zqx-img"));
    fs::copy_file(ZQX_DECODER, at("libexec/zqx-img/zqx-img-decoder"));
    const Outcome outcome = runCommand({at("bin/zqx-img"), "apply", at("in.png"), "-o", at("out.png"), "--isolate"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
}

TEST_F(OtherDecoderTest, ThatCannotBeStarted) {
    writeFile(at("bin/zqx-img-decoder"), "\x7F"
                                         "ELF");
    fs::permissions(at("bin/zqx-img-decoder"), fs::perms(0755));
    EXPECT_NE(failure().find("cannot be decoded in a separate process ("), std::string::npos);
}

TEST_F(OtherDecoderTest, ThatSaysNothing) {
    makeDecoder("exit 0");
    EXPECT_NE(failure().find("its decoder's result cannot be used (it is empty)"), std::string::npos);
}

TEST_F(OtherDecoderTest, ThatGivesUp) {
    makeDecoder("exit 9");
    EXPECT_EQ(failure(), "its decoder failed with exit code 9; the file may be damaged");
}

TEST_F(OtherDecoderTest, ThatTalksNonsense) {
    makeDecoder("head -c 200000 /dev/zero >&3");
    EXPECT_NE(failure().find("its decoder's result cannot be used ("), std::string::npos);
    makeDecoder("head -c 200000 \"$0\" /bin/sh >&3");
    EXPECT_NE(failure().find("its decoder's result cannot be used ("), std::string::npos);
}

TEST_F(OtherDecoderTest, ThatWantsToBeLeftAlone) {
    makeDecoder("exec 4>&-; sleep 600");
    EXPECT_EQ(failure(), "its decoder was killed, possibly for lack of memory");
}

TEST_F(OtherDecoderTest, ThatLeavesOthersBehind) {
    makeDecoder("sleep 600 & exit 0");
    EXPECT_EQ(failure("1"), "takes longer to decode than the 1 s allowed; --decode-time raises this limit");
}

TEST_F(OtherDecoderTest, ThatDiesOfItsSignals) {
    makeDecoder("kill -SEGV $$");
    EXPECT_EQ(failure(), "crashed its decoder (segmentation fault); the file is damaged or hostile");
    makeDecoder("kill -ABRT $$");
    EXPECT_EQ(failure(), "crashed its decoder (aborted); the file is damaged or hostile");
    makeDecoder("kill -XCPU $$");
    EXPECT_EQ(failure(), "takes longer to decode than the 20 s allowed; --decode-time raises this limit");
}

TEST_F(OtherDecoderTest, FindsNothingOfTheProgramButItsTwoDescriptors) {
    makeDecoder("readlink /proc/self/fd/0 /proc/self/fd/1 /proc/self/fd/2 > \"$(dirname \"$0\")/seen\"; exit 0");
    failure();
    EXPECT_EQ(readFile(at("bin/seen")), "/dev/null\n" + at("bin/seen") + "\n/dev/null\n");
}

TEST_F(IsolationTest, DecoderIsNotForUsers) {
    const Outcome outcome = runCommand({ZQX_DECODER, "in.png"});
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_EQ(outcome.err, "zqx-img-decoder: is run by zqx-img --isolate, not by hand\n");
}

} // namespace zqx::img::test
