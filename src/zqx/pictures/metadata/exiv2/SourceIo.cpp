// Exiv2's interface to files, for reading.
#include "zqx/pictures/metadata/exiv2/SourceIo.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <string>

namespace zqx::pictures {

namespace {

#if EXIV2_TEST_VERSION(0, 28, 0)
using IoPointer = Exiv2::BasicIo::UniquePtr;
using PathName = const std::string&;
using Offset = std::int64_t;
#else
using IoPointer = Exiv2::BasicIo::AutoPtr;
using PathName = std::string;
#if defined(_MSC_VER)
using Offset = std::int64_t;
#else
using Offset = long;
#endif
#endif

class SourceIo final : public Exiv2::BasicIo {
public:
    explicit SourceIo(ByteSource& source) : mSource(source) {}

    int open() override {
        mPlace = 0;
        mAtEnd = false;
        return 0;
    }
    int close() override { return munmap(); }
    bool isopen() const override { return true; }
    int error() const override { return 0; }
    bool eof() const override { return mAtEnd; }
#if EXIV2_TEST_VERSION(0, 28, 0)
    PathName path() const noexcept override {
        return mSource.name();
    }
#else
    PathName path() const override {
        return mSource.name();
    }
#endif
#if defined(EXV_UNICODE_PATH)
    std::wstring wpath() const override {
        return {};
    }
#endif

    Exiv2Size write(const Exiv2::byte*, Exiv2Size) override {
        return 0;
    }
    Exiv2Size write(Exiv2::BasicIo&) override {
        return 0;
    }
    int putb(Exiv2::byte) override {
        return EOF;
    }
    void transfer(Exiv2::BasicIo&) override {
    }

    Exiv2::DataBuf read(Exiv2Size count) override {
        const std::uint64_t left = mSource.size() - std::min(mPlace, mSource.size());
        const auto wanted = static_cast<Exiv2Size>(std::min(positive(count), left));
        Exiv2::DataBuf buffer(wanted);
#if EXIV2_TEST_VERSION(0, 28, 0)
        buffer.resize(take(buffer.data(), positive(wanted)));
#else
        buffer.size_ = static_cast<Exiv2Size>(take(buffer.pData_, positive(wanted)));
#endif
        mAtEnd |= positive(count) > left;
        return buffer;
    }
    Exiv2Size read(Exiv2::byte* bytes, Exiv2Size count) override {
        return static_cast<Exiv2Size>(take(bytes, positive(count)));
    }
    int getb() override {
        Exiv2::byte byte = 0;
        return take(&byte, 1) == 1 ? byte : EOF;
    }

    int seek(Offset offset, Position from) override {
        const std::uint64_t start = from == beg ? 0 : from == cur ? mPlace : mSource.size();
        const auto place = static_cast<std::int64_t>(start) + static_cast<std::int64_t>(offset);
        if (place < 0 || static_cast<std::uint64_t>(place) > mSource.size()) {
            return 1;
        }
        mPlace = static_cast<std::uint64_t>(place);
        mAtEnd = false;
        return 0;
    }
    Exiv2Size tell() const override {
        return static_cast<Exiv2Size>(mPlace);
    }
    std::size_t size() const override {
        return static_cast<std::size_t>(mSource.size());
    }

    /// Exiv2 writes to what it maps only where it writes files.
    Exiv2::byte* mmap(bool) override {
        if (!mMapping) {
            mMapping = mSource.map();
        }
        if (!mMapping) {
            throw std::runtime_error("it cannot be mapped into memory");
        }
        return const_cast<Exiv2::byte*>(mMapping.get());
    }
    int munmap() override {
        mMapping.reset();
        return 0;
    }

private:
    static std::uint64_t positive(Exiv2Size count) {
        return static_cast<std::uint64_t>(std::max<Exiv2Size>(count, 0));
    }

    std::size_t take(Exiv2::byte* bytes, std::uint64_t count) {
        const std::size_t got =
            count == 0 ? 0 : mSource.readAt(mPlace, reinterpret_cast<char*>(bytes), static_cast<std::size_t>(count));
        mPlace += got;
        mAtEnd |= got < count;
        return got;
    }

    ByteSource& mSource;
    std::shared_ptr<const unsigned char> mMapping;
    std::uint64_t mPlace = 0;
    bool mAtEnd = false;
};

} // namespace

std::unique_ptr<Exiv2::Image> openImage(ByteSource& source) {
    return std::unique_ptr<Exiv2::Image>(Exiv2::ImageFactory::open(IoPointer(new SourceIo(source))).release());
}

} // namespace zqx::pictures
