// Parameter documents that nobody vouches for: an error, or values that are sound. The library's own reading of the
// same text is what an accepted document is compared with.
#include <array>
#include <cmath>
#include <cstdint>
#include <functional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "zqx/pictures/files/Error.h"
#include "zqx/tools/parameters/ParameterDocument.h"
#include "zqx/tools/parameters/Remarks.h"

namespace zqx::tools {

using namespace pictures;

namespace {

const std::string NAME = "in.json";

/// What became of one document.
struct Reading {
    std::string error; ///< empty when it was accepted
    std::vector<std::string> warnings;
    std::string saved; ///< the parameters of a pipeline that took it
};

bool isInRange(const Parameter& parameter, const img::ImageProcessingPipeline& pipeline) {
    const Parameter::Value value = parameter.get(pipeline);
    for (const float number : value) {
        if (!std::isfinite(number)) {
            return false;
        }
    }
    return parameter.kind != Parameter::Kind::NUMBER ||
           (value[0] >= parameter.minimum && value[0] <= parameter.maximum);
}

Reading read(const std::string& text) {
    Reading reading;
    const WarningListener listener([&](const std::string& line) { reading.warnings.push_back(line); });
    try {
        Remarks remarks(false);
        MergedDocument merged;
        merged.add(NAME, text, remarks);
        merged.checkGradient(remarks);
        img::ImageProcessingPipeline pipeline(0);
        EXPECT_TRUE(pipeline.loadParams(merged.text())) << merged.text();
        for (const Parameter& parameter : parameters()) {
            EXPECT_TRUE(isInRange(parameter, pipeline)) << parameter.name << " of " << text;
        }
        reading.saved = pipeline.saveParams();
    } catch (const Error& error) {
        reading.error = error.what();
    }
    return reading;
}

std::string readByLibrary(const std::string& text) {
    img::ImageProcessingPipeline pipeline(0);
    return pipeline.loadParams(text) ? pipeline.saveParams() : "refused";
}

/// A line for the terminal that names the file, and cannot do more to it than be read.
void expectPresentable(const std::string& line) {
    EXPECT_TRUE(line.starts_with(NAME + ": ")) << line;
    for (const char c : line) {
        EXPECT_TRUE(c >= ' ' && c <= '~') << line;
    }
    EXPECT_LT(line.size(), 400U) << line;
}

std::string repeated(const std::string& text, std::size_t times) {
    std::string result;
    for (std::size_t i = 0; i < times; ++i) {
        result += text;
    }
    return result;
}

std::string document(const std::string& members) {
    return R"({"imageProcessing": {"version": 1)" + (members.empty() ? "" : ", " + members) + "}}";
}

const std::string FULL_DOCUMENT = R"({
    "imageProcessing": {
        "version": 1,
        "inversionEnabled": true,
        "colorGrading": {
            "exposure": -1.25, "contrast": 0.75, "highlight": 8, "shadow": -7.5,
            "temperature": 10499.5, "hue": 1e2, "saturation": 0.1,
            "gradientMap": {"intensity": 0.3, "black": [0.1, -2, 3e3, 1.0], "white": [1, 0.5, 0.25, 0]}
        },
        "sharpness": -0.7, "flipX": false, "flipY": true
    }
})";

/// Different names that are one to std::hash of the GNU library on 64-bit systems: MurmurHash64A with a fixed seed. It
/// takes eight characters at a time into its state, and every step can be undone. So for any first word there is a
/// second one that leads to a wanted state; of 67 such pairs in three places there are 300,763 names.
class CollidingNames {
public:
    std::vector<std::string> make() {
        constexpr std::size_t PAIRS = 3;
        std::vector<std::string> names{""};
        std::uint64_t state = SEED ^ (PAIRS * 2 * sizeof(std::uint64_t) * MULTIPLIER);
        for (std::size_t place = 0; place < PAIRS; ++place) {
            std::vector<std::string> longer;
            for (const std::string& pair : pairsBehind(state)) {
                for (const std::string& name : names) {
                    longer.push_back(name + pair);
                }
            }
            names = std::move(longer);
            state = WANTED;
        }
        return names;
    }

private:
    static constexpr std::uint64_t MULTIPLIER = 0xC6A4A7935BD1E995;
    static constexpr std::uint64_t SEED = 0xC70F6907;
    static constexpr std::uint64_t WANTED = 0; // any state would do
    static constexpr int SHIFT = 47;

    /// The number that undoes a multiplication by the multiplier, by Newton's method.
    static constexpr std::uint64_t inverse() {
        std::uint64_t result = MULTIPLIER; // right in its lowest three bits, as of any odd number
        for (int bits = 3; bits < 64; bits *= 2) {
            result *= 2 - MULTIPLIER * result;
        }
        return result;
    }

    static std::uint64_t mix(std::uint64_t word) {
        word *= MULTIPLIER;
        return (word ^ word >> SHIFT) * MULTIPLIER;
    }

    static std::uint64_t unmix(std::uint64_t word) {
        word *= inverse();
        return (word ^ word >> SHIFT) * inverse();
    }

    static bool isPlainText(std::uint64_t word) {
        for (int shift = 0; shift < 64; shift += 8) {
            const auto c = static_cast<unsigned char>(word >> shift);
            if (c < ' ' || c > '~' || c == '"' || c == '\\') {
                return false;
            }
        }
        return true;
    }

    std::vector<std::string> pairsBehind(std::uint64_t state) {
        constexpr std::size_t CHOICES = 67;
        std::vector<std::string> pairs;
        while (pairs.size() < CHOICES) {
            const std::uint64_t first = (mRandom() & 0x1F1F1F1F1F1F1F1F) + 0x4040404040404040; // letters, mostly
            const std::uint64_t second = unmix(WANTED * inverse() ^ (state ^ mix(first)) * MULTIPLIER);
            const std::uint64_t words[] = {first, second};
            if (isPlainText(first) && isPlainText(second)) {
                pairs.emplace_back(reinterpret_cast<const char*>(words), sizeof words);
            }
        }
        return pairs;
    }

    std::mt19937_64 mRandom{7};
};

/// Damages a document the way that hands, editors and enemies do. The numbers are the generator's own, so that all
/// systems try the same cases.
class Mutator {
public:
    std::string mutate(std::string text) {
        for (std::size_t changes = 1 + below(3); changes > 0; --changes) {
            change(text);
        }
        return text;
    }

private:
    std::size_t below(std::size_t limit) { return mRandom() % limit; }

    template <std::size_t COUNT>
    const std::string& requireOneOf(const std::array<std::string, COUNT>& choices) {
        return choices[below(COUNT)];
    }

    const std::string& token() {
        static const std::array<std::string, 24> TOKENS = {
            "{",       "}",        "[",    "]",       ",",       ":",    "\"",  "\\",
            "null",    "1",        "e9",   "-",       ".",       " ",    "\n",  "\x7F",
            "\x1B[2J", "\xC3\xA4", "\xFF", "\\u0000", "\\ud800", "[[[[", "NaN", std::string(1, '\0')};
        return requireOneOf(TOKENS);
    }

    const std::string& value() {
        static const std::array<std::string, 16> VALUES = {"null",
                                                           "true",
                                                           "false",
                                                           "0",
                                                           "1",
                                                           "-1",
                                                           "9e9",
                                                           "1e300",
                                                           "-1e300",
                                                           "1e-400",
                                                           "0.5",
                                                           "\"yes\"",
                                                           "[]",
                                                           "{}",
                                                           "[0, 0.5, -1, 1]",
                                                           "[1e300, 0, 0, 1]"};
        return requireOneOf(VALUES);
    }

    const std::string& member() {
        static const std::array<std::string, 12> MEMBERS = {
            "\"exposure\": ", "\"flipX\": ", "\"black\": ",    "\"white\": ",       "\"hue\": ",      "\"version\": ",
            "\"\": ",         "\"x\\ny\": ", "\"\xC3\xA4\": ", "\"gradientMap\": ", "\"sharpnes\": ", "\"$schema\": "};
        return requireOneOf(MEMBERS);
    }

    /// The place after one of some characters, from somewhere on.
    std::size_t placeAfter(const std::string& text, const char* characters) {
        const std::size_t somewhere = below(text.size() + 1);
        const std::size_t found = text.find_first_of(characters, somewhere);
        return found == std::string::npos ? somewhere : found + 1;
    }

    void change(std::string& text) {
        const std::size_t at = below(text.size() + 1);
        const std::size_t atMember = placeAfter(text, "{,");
        const std::size_t atValue = placeAfter(text, ":");
        switch (below(10)) {
        case 0: text.insert(at, token()); break;
        case 1: {
            const std::size_t length = below(6);
            text.replace(at, length, token());
            break;
        }
        case 2: text.erase(at, below(12)); break;
        case 3: text.insert(at, text.substr(atMember, below(60))); break;
        case 4:
            if (at < text.size()) {
                text[at] = static_cast<char>(static_cast<unsigned char>(text[at]) ^ (1U << below(8)));
            }
            break;
        case 5:
        case 6: {
            const std::string name = member(); // first, so that the order of the random numbers is certain
            text.insert(atMember, name + value() + ", ");
            break;
        }
        default: text.replace(atValue, text.find_first_of(",}", atValue) - atValue, value());
        }
    }

    std::mt19937 mRandom{20240607};
};

} // namespace

TEST(MergedDocumentTest, DamagedDocumentsAreRefusedOrReadAsTheLibraryReadsThem) {
    constexpr int CASES = 20000;
    const std::string seeds[] = {FULL_DOCUMENT, img::ImageProcessingPipeline(0).saveParams(),
                                 document(R"("sharpness": 0.25, "colorGrading": {"hue": -5})")};
    Mutator mutator;
    int refused = 0;
    int silent = 0;
    int warned = 0;
    for (int i = 0; i < CASES; ++i) {
        const std::string text = mutator.mutate(seeds[static_cast<std::size_t>(i) % std::size(seeds)]);
        const Reading reading = read(text);
        if (!reading.error.empty()) {
            ++refused;
            expectPresentable(reading.error);
            continue;
        }
        ++(reading.warnings.empty() ? silent : warned);
        for (const std::string& line : reading.warnings) {
            expectPresentable(line);
        }
        EXPECT_EQ(reading.saved, readByLibrary(text)) << text;
        const Reading again = read(reading.saved);
        EXPECT_EQ(again.saved, reading.saved);
        EXPECT_TRUE(again.error.empty() && again.warnings.empty()) << reading.saved;
    }
    // Otherwise the damage is too great, or too small, to try anything.
    EXPECT_GT(refused, CASES / 10);
    EXPECT_GT(warned, CASES / 10);
    EXPECT_GT(silent, CASES / 50);
}

TEST(MergedDocumentTest, EveryTruncationIsRefused) {
    for (std::size_t length = 0; length < FULL_DOCUMENT.size(); ++length) {
        EXPECT_NE(read(FULL_DOCUMENT.substr(0, length)).error, "") << length;
    }
    EXPECT_EQ(read(FULL_DOCUMENT).error, "");
}

TEST(MergedDocumentTest, DeepNestingIsRefusedWithItsPlace) {
    constexpr std::size_t DEPTH = 4000000;
    const std::string expected = NAME + ": is nested too deeply at line 1, column ";
    EXPECT_EQ(read(repeated("[", DEPTH)).error, expected + "101 to be a parameter document");
    EXPECT_EQ(read(repeated("{\"a\":", 200)).error, expected + "501 to be a parameter document");
    EXPECT_EQ(read(document("\"x\": " + repeated("[", 200) + repeated("]", 200))).error.substr(0, expected.size()),
              expected);
}

TEST(MergedDocumentTest, NestingOfForeignMembersIsIgnoredUpToALimit) {
    const auto nested = [](std::size_t depth) {
        return read(document("\"x\": " + repeated("[", depth) + repeated("]", depth)));
    };
    EXPECT_EQ(nested(98).error, "");
    EXPECT_NE(nested(99).error, "");
}

TEST(MergedDocumentTest, NeighboursAreNotNested) {
    EXPECT_EQ(read(document("\"x\": [" + repeated("[{}], ", 500) + "0]")).error, "");
}

TEST(MergedDocumentTest, BracketsInStringsAreNoNesting) {
    const Reading reading = read(document("\"x\": \"\\\"" + repeated("[{", 500) + "\\\\\", \"sharpness\": 0.5"));
    EXPECT_EQ(reading.error, "");
    EXPECT_EQ(reading.saved, readByLibrary(document("\"sharpness\": 0.5")));
}

TEST(MergedDocumentTest, NobodyHasToReadAMillionWarnings) {
    std::string members = "\"flipX\": true";
    for (int i = 0; i < 100000; ++i) {
        members += ", \"a" + std::to_string(i) + "\": 0";
    }
    const Reading reading = read(document(members));
    ASSERT_EQ(reading.warnings.size(), 101U);
    EXPECT_EQ(reading.warnings.back(), NAME + ": has 99900 more problems like these");
    EXPECT_EQ(reading.saved, readByLibrary(document("\"flipX\": true")));
}

TEST(MergedDocumentTest, NamesThatCollideInAHashTableAreReadLikeOthers) {
    // Looking for names given twice takes ten minutes with a hash table of the GNU library: the test has a time limit.
    const std::vector<std::string> names = CollidingNames().make();
    std::string members;
    for (const std::string& name : names) {
#if defined(__GLIBCXX__)
        ASSERT_EQ(std::hash<std::string>()(name), std::hash<std::string>()(names.front())) << name;
#endif
        members += "\"" + name + "\":0,";
    }
    const Reading reading = read(document(members + "\"flipX\": true"));
    ASSERT_EQ(reading.warnings.size(), 101U);
    EXPECT_EQ(reading.warnings.back(),
              NAME + ": has " + std::to_string(names.size() - 100) + " more problems like these");
    EXPECT_EQ(reading.saved, readByLibrary(document("\"flipX\": true")));
}

TEST(MergedDocumentTest, LongNamesAreCutInMessages) {
    const Reading reading = read(document("\"" + repeated("x", 1000000) + "\": 0"));
    ASSERT_EQ(reading.warnings.size(), 1U);
    EXPECT_TRUE(reading.warnings[0].starts_with(NAME + ": imageProcessing.\"" + repeated("x", 60) + "\"... is unknown"))
        << reading.warnings[0].substr(0, 300);
}

TEST(MergedDocumentTest, CutNamesEndWithAWholeCharacter) {
    const Reading reading = read(document("\"" + repeated("x", 59) + repeated("\xC3\xA4", 9) + "\": 0"));
    ASSERT_EQ(reading.warnings.size(), 1U);
    EXPECT_TRUE(reading.warnings[0].starts_with(NAME + ": imageProcessing.\"" + repeated("x", 59) + "\"... is unknown"))
        << reading.warnings[0];
}

TEST(MergedDocumentTest, NamesCannotSteerTheTerminal) {
    const Reading reading = read(document("\"\\u001B[2J\\u0007\\u0000\\n\xC2\x9B\": 0"));
    ASSERT_EQ(reading.warnings.size(), 1U);
    EXPECT_TRUE(
        reading.warnings[0].starts_with(NAME + R"(: imageProcessing."\u001B[2J\u0007\u0000\n\u009B" is unknown)"))
        << reading.warnings[0];
}

TEST(MergedDocumentTest, ANameWithAZeroInItIsNotTheNameBeforeIt) {
    const Reading reading = read(document("\"flipX\\u0000\": true"));
    EXPECT_EQ(reading.warnings.size(), 1U);
    EXPECT_EQ(reading.saved, readByLibrary(document("")));
}

} // namespace zqx::tools
