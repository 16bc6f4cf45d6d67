// Enforcement of the size limits.
#include "zqx/pictures/codecs/Limits.h"

#include "zqx/pictures/files/Error.h"
#include "zqx/text/Amounts.h"

namespace zqx::pictures {

namespace {

void refuse(const std::string& name, const std::string& fact, const std::string& limit, const std::string& option) {
    throw Error(name, fact + ", more than the " + limit + " allowed; " + option + " raises this limit");
}

} // namespace

void checkFileSize(const std::string& name, std::uint64_t bytes, const Limits& limits) {
    if (bytes > limits.bytes) {
        refuse(name, "is a file of " + text::exactSize(bytes), text::exactSize(limits.bytes), "--max-bytes");
    }
}

void checkPictureSize(const std::string& name, std::uint64_t width, std::uint64_t height, const Limits& limits) {
    if (width > limits.width) {
        refuse(name, "is " + std::to_string(width) + " pixels wide", std::to_string(limits.width), "--max-width");
    }
    if (height > limits.height) {
        refuse(name, "is " + std::to_string(height) + " pixels high", std::to_string(limits.height), "--max-height");
    }
    if (width * height > limits.pixels) { // no overflow: neither has more than 32 bits
        refuse(name, "has " + std::to_string(width * height) + " pixels", std::to_string(limits.pixels),
               "--max-pixels");
    }
}

} // namespace zqx::pictures
