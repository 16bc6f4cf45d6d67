// Files that end early or have bytes changed: loading them gives a picture or a result code. Each load runs in a
// process of its own (LoadFile.cpp), as the picture library itself is not proof against all of them.
#include <algorithm>
#include <sstream>

#include "FileTest.h"

namespace zqx::img::test {

/// What FreeImage 3.18 is known to do over damaged files of a format, in its own decoder.
struct Weakness {
    bool mayDie = false;
    bool mayHang = false;
};

struct DamageCase {
    const char* name;
    const char* ending;
    FREE_IMAGE_FORMAT format;
    int flags;
    int channels;
    Depth depth;
    Weakness weakness = {};
};

namespace {

/// OpenEXR is not told when its input ends, and looks for the end of a header for ever; it believes the sizes that it
/// reads, and may fault over them.
constexpr Weakness EXR_WEAKNESS = {.mayDie = true, .mayHang = true};

/// The same sequence on every machine.
class Dice {
public:
    explicit Dice(std::uint32_t seed) : mState(seed * 2654435761U + 1U) {}

    std::size_t below(std::size_t limit) {
        mState ^= mState << 13U;
        mState ^= mState >> 17U;
        mState ^= mState << 5U;
        return mState % limit;
    }

private:
    std::uint32_t mState;
};

/// Changes a few bytes: every other time near the beginning, where headers are.
std::string damaged(std::string content, std::uint32_t seed) {
    Dice dice(seed + 1);
    const std::size_t reach = seed % 2 == 0 ? std::min<std::size_t>(content.size(), 96) : content.size();
    for (std::size_t i = 0; i <= seed % 3; ++i) {
        char& byte = content[dice.below(reach)];
        byte = static_cast<char>(byte ^ static_cast<char>(1 + dice.below(255)));
    }
    return content;
}

class DamagedFileTest : public FileTest, public ::testing::WithParamInterface<DamageCase> {
protected:
    DamagedFileTest() {
        const DamageCase& file = GetParam();
        const Component component = getComponent(paint(Content::TWO_LEVELS, file.channels, file.depth));
        const auto stream = qutil::MemoryOutputStream::create();
        if (component->saveToStream(stream.get(), file.format, file.flags) != tov::SUCCESS) {
            throw std::runtime_error("cannot make the file to be damaged");
        }
        mContent.assign(stream->bytes().begin(), stream->bytes().end());
    }

    std::string add(const std::string& stem, const std::string& content) {
        const std::string path = at(stem + '.' + GetParam().ending);
        writeFile(path, content);
        return path;
    }

    /// Loads files in processes of their own, and expects each to give a picture or tov::FAILURE.
    static void expectHarmless(std::vector<std::string> files) {
        const std::size_t count = files.size();
        // Sanitizers: memory that is refused is no mistake, and what the picture library leaks is not ours to judge.
        std::vector<std::string> command = {
            "env", "ASAN_OPTIONS=detect_leaks=0:allocator_may_return_null=1:max_allocation_size_mb=1024", ZQX_PROGRAM,
            patience()};
        command.insert(command.end(), files.begin(), files.end());
        const Outcome outcome = runCommand(command);
        ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
        std::istringstream lines(outcome.out);
        std::size_t seen = 0;
        for (std::string line; std::getline(lines, line); ++seen) {
            EXPECT_TRUE(isTolerable(line.substr(0, line.find(' ')))) << line;
        }
        EXPECT_EQ(seen, 2 * count);
    }

    /// Seconds of processor time after which a decoder is taken to hang. A changed byte can make a small picture a
    /// large one, which takes its time on a slow machine; waiting long costs nothing where hanging is not expected.
    static const char* patience() { return GetParam().weakness.mayHang ? "1" : "60"; }

    /// Where hanging is to be expected it costs time: a few lengths must do.
    static std::vector<std::size_t> headerLengths() {
        return GetParam().weakness.mayHang ? std::vector<std::size_t>{1, 8, 40}
                                           : std::vector<std::size_t>{1, 2, 4, 8, 13, 18, 26, 40, 54, 64, 100, 200};
    }

    static bool isTolerable(const std::string& ending) {
        const Weakness& weakness = GetParam().weakness;
        return ending == "loaded" || ending == "refused" ||
               ((ending == "died" || ending == "faulted") && weakness.mayDie) || (ending == "hung" && weakness.mayHang);
    }

    std::string mContent;
};

} // namespace

TEST_P(DamagedFileTest, TheUndamagedFileLoads) {
    const Component component = makeComponent();
    EXPECT_EQ(component->load(DETECT, add("whole", mContent).c_str(), 0), tov::SUCCESS);
}

TEST_P(DamagedFileTest, FilesThatEndEarly) {
    std::vector<std::string> files;
    for (const std::size_t length : headerLengths()) {
        files.push_back(add("first-" + std::to_string(length), mContent.substr(0, length)));
    }
    for (const std::size_t eighths : {2, 4, 6, 7}) {
        files.push_back(add("eighths-" + std::to_string(eighths), mContent.substr(0, mContent.size() * eighths / 8)));
    }
    files.push_back(add("all-but-one", mContent.substr(0, mContent.size() - 1)));
    expectHarmless(std::move(files));
}

TEST_P(DamagedFileTest, FilesWithChangedBytes) {
    constexpr std::uint32_t VARIANTS = 40;
    std::vector<std::string> files;
    for (std::uint32_t seed = 0; seed < VARIANTS; ++seed) {
        files.push_back(add("flip-" + std::to_string(seed), damaged(mContent, seed)));
    }
    expectHarmless(std::move(files));
}

namespace {

using enum Depth;

} // namespace

INSTANTIATE_TEST_SUITE_P(Formats, DamagedFileTest,
                         ::testing::Values(DamageCase{"Png", "png", FIF_PNG, 0, 3, BYTE},
                                           DamageCase{"PngRgba16", "png", FIF_PNG, 0, 4, WORD},
                                           DamageCase{"PngInterlaced", "png", FIF_PNG, PNG_INTERLACED, 4, BYTE},
                                           DamageCase{"Jpeg", "jpg", FIF_JPEG, 0, 3, BYTE},
                                           DamageCase{"JpegProgressive", "jpg", FIF_JPEG, JPEG_PROGRESSIVE, 3, BYTE},
                                           DamageCase{"TiffLzw", "tif", FIF_TIFF, TIFF_LZW, 3, BYTE},
                                           DamageCase{"TiffUncompressed", "tif", FIF_TIFF, TIFF_NONE, 4, BYTE},
                                           DamageCase{"TiffFloat", "tif", FIF_TIFF, TIFF_NONE, 3, FLOAT},
                                           DamageCase{"Bmp", "bmp", FIF_BMP, 0, 3, BYTE},
                                           DamageCase{"BmpPalette", "bmp", FIF_BMP, 0, 1, BYTE},
                                           DamageCase{"Tga", "tga", FIF_TARGA, 0, 3, BYTE},
                                           DamageCase{"TgaRunLengths", "tga", FIF_TARGA, TARGA_SAVE_RLE, 4, BYTE},
                                           DamageCase{"Gif", "gif", FIF_GIF, 0, 1, BYTE},
                                           DamageCase{"Exr", "exr", FIF_EXR, 0, 3, FLOAT, EXR_WEAKNESS},
                                           DamageCase{"ExrZip", "exr", FIF_EXR, EXR_ZIP, 4, FLOAT, EXR_WEAKNESS},
                                           DamageCase{"Hdr", "hdr", FIF_HDR, 0, 3, FLOAT},
                                           DamageCase{"Pfm", "pfm", FIF_PFM, 0, 3, FLOAT},
                                           DamageCase{"WebpLossless", "webp", FIF_WEBP, WEBP_LOSSLESS, 4, BYTE},
                                           DamageCase{"Webp", "webp", FIF_WEBP, 0, 3, BYTE}),
                         CaseName());

} // namespace zqx::img::test
