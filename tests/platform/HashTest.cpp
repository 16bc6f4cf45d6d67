// The hash: known answers, worked out apart from the library by following the published steps.
#include <qutil/Hash.h>

#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace {

std::uint32_t hashOf(std::string_view text) {
    return qutil::superFastHash(text.data(), text.size());
}

} // namespace

TEST(SuperFastHash, NothingHashesToZero) {
    EXPECT_EQ(qutil::superFastHash(nullptr, 0), 0U);
    EXPECT_EQ(qutil::superFastHash(nullptr, 5), 0U);
    EXPECT_EQ(hashOf(""), 0U);
}

TEST(SuperFastHash, KnownAnswersForEveryRemainder) {
    EXPECT_EQ(hashOf("a"), 0x115EA782U);
    EXPECT_EQ(hashOf("ab"), 0x516B8B44U);
    EXPECT_EQ(hashOf("abc"), 0xD2BE198AU);
    EXPECT_EQ(hashOf("abcd"), 0xDAD8B8DBU);
    EXPECT_EQ(hashOf("abcde"), 0x51ED072EU);
    EXPECT_EQ(hashOf("abcdef"), 0x963B9DDAU);
    EXPECT_EQ(hashOf("abcdefg"), 0xF071C3EDU);
    EXPECT_EQ(hashOf("The quick brown fox jumps over the lazy dog"), 0x05BF7CE3U);
}

TEST(SuperFastHash, BytesOf128AndMoreCountAsPublished) {
    EXPECT_EQ(hashOf("\xFF"), 0U); // the length 1 and the byte -1 cancel out
    EXPECT_EQ(hashOf("\x80\xFE"), 0x014FADDCU);
    EXPECT_EQ(hashOf("\x01\x02\xF0"), 0x29941A65U);
}

TEST(SuperFastHash, ZeroBytesCount) {
    EXPECT_EQ(hashOf(std::string_view("\0\0\0\0", 4)), 0x2B21473AU);
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
    EXPECT_EQ(qutil::superFastHash(text + 1, 7), hashOf("abcdefg"));
}
