// The list of characters that must not reach a terminal, and two ways of dealing with them.
#include "zqx/text/Cleaning.h"

#include <algorithm>

#include "zqx/text/Hexadecimal.h"
#include "zqx/text/Utf8.h"

namespace zqx::text {

namespace {

std::string escaped(char32_t code) {
    switch (code) {
    case '\n': return "\\n";
    case '\r': return "\\r";
    case '\t': return "\\t";
    default: return code < 0x100 ? "\\x" + hexadecimal(code, 2) : "\\u" + hexadecimal(code, 4);
    }
}

} // namespace

bool isHarmless(char32_t code) {
    struct Range {
        char32_t first;
        char32_t last;
    };
    static constexpr Range HARMFUL[] = {{0x00, 0x1F},     {0x7F, 0x9F},     {0x061C, 0x061C}, {0x200E, 0x200F},
                                        {0x2028, 0x202E}, {0x2066, 0x2069}, {0xFEFF, 0xFEFF}};
    return std::ranges::none_of(HARMFUL,
                                [code](const Range& range) { return code >= range.first && code <= range.last; });
}

std::string printable(std::string_view text, Charset charset) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const Character character = takeCharacter(text);
        if (!character.valid) {
            result += escaped(static_cast<unsigned char>(character.bytes.front()));
        } else if (!isHarmless(character.code)) {
            result += escaped(character.code);
        } else if (charset == Charset::ASCII && character.code >= 0x80) {
            result += '?';
        } else {
            result += character.bytes;
        }
    }
    return result;
}

std::string inOneLine(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const Character character = takeCharacter(text);
        if (!character.valid) {
            appendUtf8(result, REPLACEMENT_CHARACTER);
        } else if (isHarmless(character.code)) {
            result += character.bytes;
        } else {
            result += ' ';
        }
    }
    return result;
}

std::string withoutTrailingSpaces(std::string text) {
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

} // namespace zqx::text
