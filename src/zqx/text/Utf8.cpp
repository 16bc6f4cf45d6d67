// Well-formed sequences according to table 3-7 of the Unicode Standard, in which only the range of the second byte
// varies.
#include "zqx/text/Utf8.h"

namespace zqx::text {

namespace {

/// The sequence that a first byte introduces.
struct Sequence {
    std::size_t length; // 0: no character begins like this
    unsigned char lowestSecond = 0x80;
    unsigned char highestSecond = 0xBF;
};

Sequence sequenceFrom(unsigned char first) {
    if (first < 0x80) {
        return {1};
    }
    if (first < 0xC2 || first > 0xF4) { // C0 and C1 would be overlong
        return {0};
    }
    switch (first) {
    case 0xE0: return {3, 0xA0};       // below: overlong
    case 0xED: return {3, 0x80, 0x9F}; // above: surrogates
    case 0xF0: return {4, 0x90};       // below: overlong
    case 0xF4: return {4, 0x80, 0x8F}; // above: beyond U+10FFFF
    default: return {first < 0xE0 ? std::size_t{2} : first < 0xF0 ? std::size_t{3} : std::size_t{4}};
    }
}

unsigned char byteAt(std::string_view text, std::size_t i) {
    return static_cast<unsigned char>(text[i]);
}

/// The length of the first character in bytes; 0 if the text does not begin with a well-formed one.
std::size_t lengthOfFirst(std::string_view text) {
    const Sequence sequence = sequenceFrom(byteAt(text, 0));
    if (sequence.length > text.size()) {
        return 0;
    }
    for (std::size_t i = 1; i < sequence.length; ++i) {
        const unsigned char lowest = i == 1 ? sequence.lowestSecond : 0x80;
        const unsigned char highest = i == 1 ? sequence.highestSecond : 0xBF;
        if (byteAt(text, i) < lowest || byteAt(text, i) > highest) {
            return 0;
        }
    }
    return sequence.length;
}

} // namespace

Character takeCharacter(std::string_view& text) {
    const std::size_t length = lengthOfFirst(text);
    if (length == 0) {
        const Character stray{text.substr(0, 1), REPLACEMENT_CHARACTER, false};
        text.remove_prefix(1);
        return stray;
    }
    char32_t code = length == 1 ? byteAt(text, 0) : byteAt(text, 0) & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        code = code << 6U | (byteAt(text, i) & 0x3FU);
    }
    const Character character{text.substr(0, length), code, true};
    text.remove_prefix(length);
    return character;
}

bool isUtf8(std::string_view text) {
    while (!text.empty()) {
        if (!takeCharacter(text).valid) {
            return false;
        }
    }
    return true;
}

std::string repairedUtf8(std::string_view text) {
    std::string repaired;
    repaired.reserve(text.size());
    while (!text.empty()) {
        if (const Character character = takeCharacter(text); character.valid) {
            repaired += character.bytes;
        } else {
            appendUtf8(repaired, REPLACEMENT_CHARACTER);
        }
    }
    return repaired;
}

void appendUtf8(std::string& text, char32_t code) {
    const auto append = [&text](char32_t byte) { text += static_cast<char>(static_cast<unsigned char>(byte)); };
    const auto appendRest = [&](unsigned shift) { append(0x80U | (code >> shift & 0x3FU)); };
    if (code < 0x80) {
        append(code);
    } else if (code < 0x800) {
        append(0xC0U | code >> 6U);
        appendRest(0);
    } else if (code < 0x10000) {
        append(0xE0U | code >> 12U);
        appendRest(6);
        appendRest(0);
    } else {
        append(0xF0U | code >> 18U);
        appendRest(12);
        appendRest(6);
        appendRest(0);
    }
}

std::string_view prefix(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes) {
        return text;
    }
    constexpr std::size_t LONGEST = 4;
    // A character that extends beyond the end begins at most three bytes before it.
    for (std::size_t start = bytes; start > 0 && start + LONGEST > bytes; --start) {
        const std::size_t length = lengthOfFirst(text.substr(start - 1));
        if (length > 0) {
            return text.substr(0, start - 1 + length > bytes ? start - 1 : bytes);
        }
    }
    return text.substr(0, bytes);
}

std::size_t countCharacters(std::string_view text) {
    std::size_t count = 0;
    for (; !text.empty(); ++count) {
        takeCharacter(text);
    }
    return count;
}

} // namespace zqx::text
