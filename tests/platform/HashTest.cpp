// The hash: known answers, worked out apart from the library by following the published steps.
#include <qutil/Hash.h>

#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace {

std::uint32_t computeHash(std::string_view text) {
    return qutil::superFastHash(text.data(), text.size());
}

} // namespace

TEST(SuperFastHash, NothingHashesToZero) {
    EXPECT_EQ(qutil::superFastHash(nullptr, 0), 0U);
    EXPECT_EQ(qutil::superFastHash(nullptr, 5), 0U);
    EXPECT_EQ(computeHash(""), 0U);
}

TEST(SuperFastHash, KnownAnswersForEveryRemainder) {
    EXPECT_EQ(computeHash("a"), 0x115EA782U);
    EXPECT_EQ(computeHash("ab"), 0x516B8B44U);
    EXPECT_EQ(computeHash("abc"), 0xD2BE198AU);
    EXPECT_EQ(computeHash("abcd"), 0xDAD8B8DBU);
    EXPECT_EQ(computeHash("abcde"), 0x51ED072EU);
    EXPECT_EQ(computeHash("abcdef"), 0x963B9DDAU);
    EXPECT_EQ(computeHash("abcdefg"), 0xF071C3EDU);
    EXPECT_EQ(computeHash("The quick brown fox jumps over the lazy dog"), 0x05BF7CE3U);
}

TEST(SuperFastHash, BytesOf128AndMoreCountAsPublished) {
    EXPECT_EQ(computeHash("\xFF"), 0U); // the length 1 and the byte -1 cancel out
    EXPECT_EQ(computeHash("\x80\xFE"), 0x014FADDCU);
    EXPECT_EQ(computeHash("\x01\x02\xF0"), 0x29941A65U);
}

TEST(SuperFastHash, ZeroBytesCount) {
    EXPECT_EQ(computeHash(std::string_view("\0\0\0\0", 4)), 0x2B21473AU);
}

TEST(SuperFastHash, LongRanges) {
    std::vector<char> ramp(1000);
    for (std::size_t i = 0; i < ramp.size(); ++i) {
        ramp[i] = static_cast<char>(static_cast<unsigned char>(i * 7 + 3));
    }
    EXPECT_EQ(qutil::superFastHash(ramp.data(), 1000), 0x85B7ECBFU);
    EXPECT_EQ(qutil::superFastHash(ramp.data(), 999), 0x2AD2A678U);
    EXPECT_EQ(qutil::superFastHash(ramp.data(), 997), 0x7479174FU);
}

TEST(SuperFastHash, AlignmentDoesNotMatter) {
    alignas(8) char text[] = "xabcdefg";
    EXPECT_EQ(qutil::superFastHash(text + 1, 7), computeHash("abcdefg"));
}
