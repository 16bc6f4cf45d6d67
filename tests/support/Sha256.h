// SHA-256 of bytes, as FIPS 180-4 defines it: for tests that remember what a result was without keeping it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace zqx::img::test {

/// Takes bytes piece by piece; how they are divided does not matter.
class Sha256 {
public:
    void add(std::span<const std::uint8_t> bytes);

    /// The hash of all bytes so far, as 64 hexadecimal digits in lower case. More may be added afterwards.
    std::string hexadecimal() const;

private:
    static constexpr std::size_t BLOCK_BYTES = 64;
    using State = std::array<std::uint32_t, 8>;

    void addByte(std::uint8_t byte);
    static void compress(const std::array<std::uint8_t, BLOCK_BYTES>& block, State& state);

    /// The first 32 bits of the fractional parts of the square roots of the first eight primes.
    State mState = {0x6a09e667, 0xbb67ae85, 0x3c6ef372, 0xa54ff53a, 0x510e527f, 0x9b05688c, 0x1f83d9ab, 0x5be0cd19};
    std::array<std::uint8_t, BLOCK_BYTES> mBlock{};
    std::uint64_t mByteCount = 0;
};

} // namespace zqx::img::test
