// Streams that do what a test wants, and a file's bytes in memory.
#pragma once

#include <cstdint>
#include <cstring>
#include <functional>
#include <utility>
#include <vector>

#include <qutil/IIOStream.h>
#include <tov/CountedObject.h>
#include <tov/IOutputStream.h>
#include <tov/Runtime.h>
#include <tov/TovRef.h>

namespace test {

using Bytes = std::vector<unsigned char>;

/// A buffer as streams hand it out.
inline unsigned char* runtimeCopy(const Bytes& bytes) {
    auto* copy = static_cast<unsigned char*>(tov::tovCalloc(bytes.size(), 1));
    if (!bytes.empty()) {
        std::memcpy(copy, bytes.data(), bytes.size());
    }
    return copy;
}

/// Serves bytes; either method can be replaced.
class FakeInputStream final : public tov::CountedObject<qutil::IIOStream> {
public:
    using Size = std::function<tov::Result(std::uint32_t*)>;
    using Read = std::function<tov::Result(std::uint32_t, unsigned char**)>;

    static tov::TovRef<FakeInputStream> create(Bytes bytes) {
        return tov::TovRef(new FakeInputStream(std::move(bytes)));
    }

    tov::Result getSize(std::uint32_t* pSize) override {
        ++sizeCalls;
        *pSize = static_cast<std::uint32_t>(mBytes.size());
        return onSize ? onSize(pSize) : tov::SUCCESS;
    }
    tov::Result read(std::uint32_t count, unsigned char** pBuffer) override {
        counts.push_back(count);
        if (onRead) {
            return onRead(count, pBuffer);
        }
        *pBuffer = runtimeCopy(mBytes);
        return tov::SUCCESS;
    }

    Size onSize;
    Read onRead;
    int sizeCalls = 0;
    /// What was asked for, call by call.
    std::vector<std::uint32_t> counts;

private:
    explicit FakeInputStream(Bytes bytes) : mBytes(std::move(bytes)) {}

    Bytes mBytes;
};

/// Collects what is written, write by write, and answers what a test wants.
class FakeOutputStream final : public tov::CountedObject<tov::IOutputStream> {
public:
    static tov::TovRef<FakeOutputStream> create() { return tov::TovRef(new FakeOutputStream); }

    tov::Result write(const tov::Sequence<unsigned char>& bytes) override {
        writes.emplace_back(bytes.data, bytes.data + bytes.count);
        return onWrite ? onWrite() : tov::SUCCESS;
    }

    std::function<tov::Result()> onWrite;
    std::vector<Bytes> writes;

private:
    FakeOutputStream() = default;
};

} // namespace test
