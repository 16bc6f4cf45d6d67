// FreeImage's input callbacks. They must not throw: parts of FreeImage are written in C.
#include "zqx/pictures/codecs/freeimage/FreeImageStream.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <limits>

namespace zqx::pictures {

FREE_IMAGE_FORMAT FreeImageStream::detectFormat() {
    FreeImageIO callbacks = io();
    mPlace = 0;
    return FreeImage_GetFileTypeFromHandle(&callbacks, this, 0);
}

FIBITMAP* FreeImageStream::decode(FREE_IMAGE_FORMAT format, int flags) {
    mPlace = 0;
    mReadAtEnd = mReadShort = false;
    FreeImageIO callbacks = io();
    return FreeImage_LoadFromHandle(format, &callbacks, this, flags);
}

std::size_t FreeImageStream::takeFromWindow(std::span<char> bytes) {
    if (mPlace < mWindowPlace || mPlace - mWindowPlace >= mWindow.size()) {
        return 0;
    }
    const auto start = static_cast<std::size_t>(mPlace - mWindowPlace);
    const std::size_t count = std::min(bytes.size(), mWindow.size() - start);
    std::memcpy(bytes.data(), mWindow.data() + start, count);
    mPlace += count;
    return count;
}

std::size_t FreeImageStream::take(std::span<char> bytes) {
    constexpr std::size_t WINDOW_SIZE = 65536;
    std::size_t taken = takeFromWindow(bytes);
    if (taken == bytes.size()) {
        return taken;
    }
    const std::span<char> rest = bytes.subspan(taken);
    if (rest.size() >= WINDOW_SIZE) {
        const std::size_t got = mFile.readAt(mPlace, rest);
        mPlace += got;
        return taken + got;
    }
    mWindow.resize(WINDOW_SIZE);
    mWindowPlace = mPlace;
    mWindow.resize(mFile.readAt(mPlace, std::span(mWindow)));
    return taken + takeFromWindow(rest);
}

unsigned FreeImageStream::read(void* buffer, unsigned size, unsigned count, fi_handle handle) {
    FreeImageStream& stream = *static_cast<FreeImageStream*>(handle);
    const std::span<char> wanted(static_cast<char*>(buffer), std::size_t{size} * count);
    if (wanted.empty()) {
        return 0;
    }
    const std::uint64_t place = stream.mPlace;
    const std::span<char> got = wanted.first(stream.take(wanted));
    stream.mMask.apply(place, got);
    stream.mReadAtEnd |= got.empty();
    stream.mReadShort |= got.size() < wanted.size();
    // Some decoders ignore the result of a read: let them find zeros, which terminate strings, rather than random
    // bytes.
    std::ranges::fill(wanted.subspan(got.size()), '\0');
    return static_cast<unsigned>(got.size() / size);
}

int FreeImageStream::seek(fi_handle handle, long offset, int origin) {
    FreeImageStream& stream = *static_cast<FreeImageStream*>(handle);
    const std::uint64_t from = origin == SEEK_SET ? 0 : origin == SEEK_CUR ? stream.mPlace : stream.mFile.size();
    if (offset < 0 && static_cast<std::uint64_t>(-static_cast<std::int64_t>(offset)) > from) {
        return -1;
    }
    const std::uint64_t place = from + static_cast<std::uint64_t>(std::int64_t{offset});
    if (place > static_cast<std::uint64_t>(std::numeric_limits<long>::max())) {
        return -1;
    }
    stream.mPlace = place;
    return 0;
}

long FreeImageStream::tell(fi_handle handle) {
    return static_cast<long>(static_cast<FreeImageStream*>(handle)->mPlace);
}

FreeImageIO FreeImageStream::io() {
    return {read, nullptr, seek, tell};
}

} // namespace zqx::pictures
