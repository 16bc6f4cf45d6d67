// TIFF 6.0: a header of 8 bytes leads to the first directory, whose entries of 12 bytes are tag, type, count and value.
// BigTIFF has longer numbers. Every number is taken from the bytes that were read, never from beyond them.
#include "zqx/pictures/bytes/TiffLayout.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace zqx::pictures {

namespace {

enum Tag : std::uint64_t {
    BITS_PER_SAMPLE = 258,
    SAMPLES_PER_PIXEL = 277,
    EXTRA_SAMPLES = 338,
    SAMPLE_FORMAT = 339,
};
constexpr std::uint64_t ASSOCIATED_ALPHA = 1;
constexpr std::uint64_t IEEE_FLOAT = 3;
constexpr std::uint64_t SHORT_TYPE = 3;
constexpr std::size_t SHORT_SIZE = 2;
constexpr std::size_t BIG_HEADER_SIZE = 16;

class TiffReader {
public:
    explicit TiffReader(InputFile& file) : mFile(file) {
        const std::string header = file.readAt(0, BIG_HEADER_SIZE);
        mBigEndian = !header.empty() && header[0] == 'M';
        constexpr std::uint64_t BIG_VERSION = 43;
        if (number(header, 2, 2) == BIG_VERSION) {
            mWordSize = 8;
            mCountSize = 8;
        }
        mDirectory = number(header, mWordSize == 8 ? 8 : 4, mWordSize);
    }

    std::optional<TiffLayout> layout() {
        const std::size_t entrySize = 4 + 2 * mWordSize; // tag, type, count, value
        const std::uint64_t stated = number(mFile.readAt(mDirectory, mCountSize), 0, mCountSize);
        if (mDirectory == 0 || stated == 0 || stated > UINT16_MAX) {
            return std::nullopt;
        }
        const std::string entries = mFile.readAt(mDirectory + mCountSize, static_cast<std::size_t>(stated) * entrySize);
        TiffLayout layout;
        for (std::size_t entry = 0; entry + entrySize <= entries.size(); entry += entrySize) {
            note(layout, entries, entry);
        }
        return layout;
    }

private:
    /// 0 where the bytes end before.
    std::uint64_t number(const std::string& bytes, std::size_t offset, std::size_t size) const {
        std::uint64_t value = 0;
        for (std::size_t i = 0; offset + size <= bytes.size() && i < size; ++i) {
            value = value << 8 | static_cast<unsigned char>(bytes[offset + (mBigEndian ? i : size - 1 - i)]);
        }
        return value;
    }

    /// The first of an entry's values, which lie in the entry itself where there is room.
    std::uint64_t firstValue(const std::string& entries, std::size_t entry) {
        const std::size_t value = entry + 4 + mWordSize;
        return number(entries, entry + 4, mWordSize) <= mWordSize / SHORT_SIZE
                   ? number(entries, value, SHORT_SIZE)
                   : number(mFile.readAt(number(entries, value, mWordSize), SHORT_SIZE), 0, SHORT_SIZE);
    }

    void note(TiffLayout& layout, const std::string& entries, std::size_t entry) {
        const std::uint64_t tag = number(entries, entry, 2);
        if (number(entries, entry + 2, 2) != SHORT_TYPE) {
            return; // as all of these are
        }
        switch (tag) {
        case BITS_PER_SAMPLE: layout.bitsPerSample = static_cast<unsigned>(firstValue(entries, entry)); break;
        case SAMPLES_PER_PIXEL: layout.samplesPerPixel = static_cast<unsigned>(firstValue(entries, entry)); break;
        case EXTRA_SAMPLES: layout.associatedAlpha = firstValue(entries, entry) == ASSOCIATED_ALPHA; break;
        case SAMPLE_FORMAT: layout.floats = firstValue(entries, entry) == IEEE_FLOAT; break;
        default: break;
        }
    }

    InputFile& mFile;
    bool mBigEndian = false;
    std::size_t mWordSize = 4;  // of offsets, counts and values
    std::size_t mCountSize = 2; // of the number of entries
    std::uint64_t mDirectory = 0;
};

} // namespace

std::optional<TiffLayout> readTiffLayout(InputFile& file) {
    return TiffReader(file).layout();
}

} // namespace zqx::pictures
