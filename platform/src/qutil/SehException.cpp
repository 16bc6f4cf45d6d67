// A processor fault as an exception.
#include <qutil/SehException.h>

#include <cstdio>
#include <string>

namespace qutil {

namespace {

std::string describe(unsigned int code, const void* address) {
    char text[80];
    std::snprintf(text, sizeof text, "Processor fault 0x%08X at %p", code, address);
    return text;
}

} // namespace

SehException::SehException(unsigned int code, const void* address)
    : std::runtime_error(describe(code, address)), mCode(code), mAddress(address) {
}

} // namespace qutil
