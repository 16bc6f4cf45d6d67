// SuperFastHash: four bytes at a time as two 16-bit words, then what is left, then a final avalanche.
// Source of the steps and shifts: P. Hsieh, "Hash functions", 2004-2008.
#include <qutil/Hash.h>

namespace qutil {

namespace {

/// Little-endian on every machine, which makes the hash portable.
std::uint32_t wordAt(const char* data) {
    return static_cast<unsigned char>(data[0]) | static_cast<std::uint32_t>(static_cast<unsigned char>(data[1])) << 8;
}

/// The odd byte at the end counts with its sign, as it did where char is signed.
std::uint32_t signedByteAt(const char* data) {
    return static_cast<std::uint32_t>(static_cast<signed char>(*data));
}

std::uint32_t mixRest(std::uint32_t hash, const char* data, std::size_t left) {
    switch (left) {
    case 3:
        hash += wordAt(data);
        hash ^= hash << 16;
        hash ^= signedByteAt(data + 2) << 18;
        return hash + (hash >> 11);
    case 2:
        hash += wordAt(data);
        hash ^= hash << 11;
        return hash + (hash >> 17);
    case 1:
        hash += signedByteAt(data);
        hash ^= hash << 10;
        return hash + (hash >> 1);
    default: return hash;
    }
}

std::uint32_t avalanche(std::uint32_t hash) {
    hash ^= hash << 3;
    hash += hash >> 5;
    hash ^= hash << 4;
    hash += hash >> 17;
    hash ^= hash << 25;
    return hash + (hash >> 6);
}

} // namespace

std::uint32_t superFastHash(const char* data, std::size_t length) {
    if (data == nullptr || length == 0) {
        return 0;
    }
    auto hash = static_cast<std::uint32_t>(length);
    for (; length >= 4; length -= 4, data += 4) {
        hash += wordAt(data);
        hash = hash << 16 ^ wordAt(data + 2) << 11 ^ hash;
        hash += hash >> 11;
    }
    return avalanche(mixRest(hash, data, length));
}

} // namespace qutil
