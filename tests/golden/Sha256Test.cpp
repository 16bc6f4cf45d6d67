// The hash that golden results are remembered by, against the examples of its standard (FIPS 180-4 and its samples).
#include "support/Sha256.h"

#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using zqx::img::test::Sha256;

std::string computeHash(const std::string& text) {
    Sha256 hash;
    hash.add(std::vector<std::uint8_t>(text.begin(), text.end()));
    return hash.hexadecimal();
}

TEST(Sha256Test, HashesTheExamplesOfTheStandard) {
    EXPECT_EQ("e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855", computeHash(""));
    EXPECT_EQ("ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad", computeHash("abc"));
    EXPECT_EQ("248d6a61d20638b8e5c026930c3e6039a33ce45964ff2167f6ecedd419db06c1",
              computeHash("abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq"));
    EXPECT_EQ("cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0",
              computeHash(std::string(1000000, 'a')));
}

TEST(Sha256Test, DoesNotDependOnHowBytesAreDivided) {
    const std::vector<std::uint8_t> bytes(150, 7);
    Sha256 whole;
    whole.add(bytes);
    Sha256 pieces;
    pieces.add(std::span(bytes).first(63));
    pieces.add(std::span(bytes).subspan(63, 1));
    EXPECT_NE(whole.hexadecimal(), pieces.hexadecimal());
    pieces.add(std::span(bytes).subspan(64));
    EXPECT_EQ(whole.hexadecimal(), pieces.hexadecimal());
}

} // namespace
