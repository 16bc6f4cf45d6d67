// Reads through a small buffer: headers are parsed byte by byte, and each byte costs one comparison.
#include "zqx/pictures/bytes/ByteReader.h"

#include <limits>
#include <span>

namespace zqx::pictures {

namespace {

constexpr std::size_t WINDOW_SIZE = 4096;

} // namespace

void ByteReader::skip(std::uint64_t count) {
    constexpr std::uint64_t LAST = std::numeric_limits<std::uint64_t>::max();
    mPlace = count > LAST - mPlace ? LAST : mPlace + count;
}

void ByteReader::load() {
    if (mLoaded >= mLimit) {
        throw NoMoreBytes();
    }
    mWindow.resize(WINDOW_SIZE);
    mWindowPlace = mPlace;
    mWindow.resize(mFile.readAt(mPlace, std::span(mWindow)));
    mLoaded += WINDOW_SIZE;
    if (mWindow.empty()) {
        throw NoMoreBytes();
    }
}

unsigned char ByteReader::next() {
    if (mPlace < mWindowPlace || mPlace - mWindowPlace >= mWindow.size()) {
        load();
    }
    const char byte = mWindow[static_cast<std::size_t>(mPlace - mWindowPlace)];
    ++mPlace;
    return static_cast<unsigned char>(byte);
}

std::uint64_t ByteReader::big(std::size_t size) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < size; ++i) {
        value = value << 8U | next();
    }
    return value;
}

std::uint64_t ByteReader::little(std::size_t size) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < size; ++i) {
        value |= std::uint64_t{next()} << 8U * i;
    }
    return value;
}

std::string ByteReader::text(std::size_t size) {
    std::string text;
    while (text.size() < size) {
        text.push_back(static_cast<char>(next()));
    }
    return text;
}

std::string ByteReader::peek(std::size_t size) {
    const std::uint64_t start = mPlace;
    std::string text;
    try {
        while (text.size() < size) {
            text.push_back(static_cast<char>(next()));
        }
    } catch (const NoMoreBytes&) { // fewer bytes are fine
    }
    mPlace = start;
    return text;
}

std::string ByteReader::textUpToZero(std::size_t limit) {
    std::string text;
    for (char byte = static_cast<char>(next()); byte != '\0'; byte = static_cast<char>(next())) {
        if (text.size() == limit) {
            throw NoMoreBytes();
        }
        text.push_back(byte);
    }
    return text;
}

void ByteReader::expect(std::string_view bytes) {
    for (const char byte : bytes) {
        if (next() != static_cast<unsigned char>(byte)) {
            throw NoMoreBytes();
        }
    }
}

} // namespace zqx::pictures
