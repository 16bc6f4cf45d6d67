// A processor fault as an exception. Its text is put together by hand: in a signal handler nothing may allocate, and
// the library's formatting does not promise that.
#include <qutil/SehException.h>

#include <cstdint>

namespace qutil {

namespace {

char* appendText(char* end, const char* text) {
    while (*text != '\0') {
        *end++ = *text++;
    }
    return end;
}

/// Appends a number in hexadecimal with "0x" before it. @param digits how many at least
char* appendHexadecimal(char* end, std::uintptr_t value, int digits) {
    constexpr int BITS_PER_DIGIT = 4;
    constexpr int MOST_DIGITS = 2 * static_cast<int>(sizeof value);
    end = appendText(end, "0x");
    for (int digit = MOST_DIGITS - 1; digit >= 0; --digit) {
        const std::uintptr_t rest = value >> (BITS_PER_DIGIT * digit);
        if (rest != 0 || digit < digits) {
            *end++ = "0123456789ABCDEF"[rest & 0xFU];
        }
    }
    return end;
}

} // namespace

SehException::SehException(unsigned int code, const void* address) noexcept : mCode(code), mAddress(address) {
    constexpr int CODE_DIGITS = 8;
    char* end = appendText(mText, "Processor fault ");
    end = appendHexadecimal(end, code, CODE_DIGITS);
    end = appendText(end, " at ");
    end = appendHexadecimal(end, reinterpret_cast<std::uintptr_t>(address), 1);
    *end = '\0';
}

const char* SehException::what() const noexcept {
    return mText;
}

} // namespace qutil
