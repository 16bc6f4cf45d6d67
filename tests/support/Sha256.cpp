#include "support/Sha256.h"

#include <bit>

namespace zqx::img::test {

namespace {

/// The first 32 bits of the fractional parts of the cube roots of the first 64 primes.
constexpr std::array<std::uint32_t, 64> ROUND_CONSTANTS = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

using Schedule = std::array<std::uint32_t, 64>;

Schedule expand(std::span<const std::uint8_t> block) {
    Schedule words{};
    for (std::size_t i = 0; i < 64; ++i) {
        words[i / 4 % 16] = words[i / 4 % 16] << 8U | block[i]; // big-endian
    }
    for (std::size_t i = 16; i < words.size(); ++i) {
        const std::uint32_t a = words[i - 15];
        const std::uint32_t b = words[i - 2];
        const std::uint32_t s0 = std::rotr(a, 7) ^ std::rotr(a, 18) ^ a >> 3U;
        const std::uint32_t s1 = std::rotr(b, 17) ^ std::rotr(b, 19) ^ b >> 10U;
        words[i] = words[i - 16] + s0 + words[i - 7] + s1;
    }
    return words;
}

} // namespace

void Sha256::add(std::span<const std::uint8_t> bytes) {
    for (const std::uint8_t byte : bytes) {
        addByte(byte);
    }
}

void Sha256::addByte(std::uint8_t byte) {
    mBlock[mByteCount % BLOCK_BYTES] = byte;
    ++mByteCount;
    if (mByteCount % BLOCK_BYTES == 0) {
        compress(mBlock, mState);
    }
}

void Sha256::compress(const std::array<std::uint8_t, BLOCK_BYTES>& block, State& state) {
    const Schedule words = expand(block);
    auto [a, b, c, d, e, f, g, h] = state;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::uint32_t s1 = std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25);
        const std::uint32_t choice = (e & f) ^ (~e & g);
        const std::uint32_t t1 = h + s1 + choice + ROUND_CONSTANTS[i] + words[i];
        const std::uint32_t s0 = std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22);
        const std::uint32_t majority = (a & b) ^ (a & c) ^ (b & c);
        h = g;
        g = f;
        f = e;
        e = d + t1;
        d = c;
        c = b;
        b = a;
        a = t1 + s0 + majority;
    }
    const State worked = {a, b, c, d, e, f, g, h};
    for (std::size_t i = 0; i < state.size(); ++i) {
        state[i] += worked[i];
    }
}

std::string Sha256::hexadecimal() const {
    Sha256 padded = *this;
    padded.addByte(0x80);
    while (padded.mByteCount % BLOCK_BYTES != BLOCK_BYTES - 8) {
        padded.addByte(0);
    }
    for (int shift = 56; shift >= 0; shift -= 8) {
        padded.addByte(static_cast<std::uint8_t>(mByteCount * 8 >> static_cast<unsigned>(shift)));
    }
    std::string digits;
    for (const std::uint32_t word : padded.mState) {
        for (int shift = 28; shift >= 0; shift -= 4) {
            digits += "0123456789abcdef"[word >> static_cast<unsigned>(shift) & 15U];
        }
    }
    return digits;
}

} // namespace zqx::img::test
