// TIFF 6.0: a header of 8 bytes points to the first directory, whose entries of 12 bytes are tag, type, count and
// value. BigTIFF has wider offsets and counts. JPEG XR files have directories of the same kind.
#include <algorithm>
#include <limits>
#include <vector>

#include "zqx/pictures/bytes/HeaderReaders.h"

namespace zqx::pictures {

namespace {

enum Tag : std::uint64_t {
    SUBFILE_TYPE = 254,
    IMAGE_WIDTH = 256,
    IMAGE_LENGTH = 257,
    BITS_PER_SAMPLE = 258,
    PHOTOMETRIC_INTERPRETATION = 262,
    STRIP_OFFSETS = 273,
    ORIENTATION = 274,
    SAMPLES_PER_PIXEL = 277,
    STRIP_BYTE_COUNTS = 279,
    TILE_OFFSETS = 324,
    TILE_BYTE_COUNTS = 325,
    EXTRA_SAMPLES = 338,
    SAMPLE_FORMAT = 339,
};
constexpr std::uint64_t PALETTE = 3;
constexpr std::uint64_t IEEE_FLOAT = 3;
constexpr std::uint64_t ASSOCIATED_ALPHA = 1;
constexpr std::uint64_t REDUCED_RESOLUTION = 1;

/// The values of an entry.
struct Array {
    std::uint64_t place = 0;
    std::uint64_t count = 0;
    std::size_t size = 0; ///< bytes per value
};

/// What a directory says about its picture.
struct Directory {
    std::uint64_t width = 0;
    std::uint64_t height = 0;
    bool palette = false;
    bool reduced = false; ///< a reduced version of another picture
    int orientation = 1;
    TiffSamples samples;
    Array offsets; ///< of strips or tiles
    Array sizes;
    std::uint64_t next = 0;
};

class TiffReader {
public:
    explicit TiffReader(ByteReader& reader, std::uint64_t base = 0) : mReader(reader), mBase(base) {
        constexpr std::uint64_t BIG_VERSION = 43;
        mReader.seek(base);
        mReader.setOrder(mReader.text(2) == "MM" ? ByteReader::Order::BIG : ByteReader::Order::LITTLE);
        if (mReader.number(2) == BIG_VERSION) {
            mWordSize = 8;
            mCountSize = 8;
            mReader.skip(4); // the size of offsets
        }
        mFirst = mReader.number(mWordSize);
    }

    std::uint64_t first() const { return mFirst; }

    Directory readDirectory(std::uint64_t place) {
        mReader.seek(mBase + place);
        Directory directory;
        const std::uint64_t count = mReader.number(mCountSize);
        const std::uint64_t entries = mReader.place();
        const std::size_t entrySize = 4 + 2 * mWordSize;
        for (std::uint64_t i = 0; i < std::min<std::uint64_t>(count, MOST_PARTS); ++i) {
            mReader.seek(entries + i * entrySize);
            readEntry(directory);
        }
        if (count <= MOST_PARTS) {
            mReader.seek(entries + count * entrySize);
            directory.next = mReader.number(mWordSize);
        }
        return directory;
    }

    /// The end of the last strip or tile of a picture; 0 if unknown.
    std::uint64_t dataEnd(const Directory& directory) {
        if (directory.offsets.count != directory.sizes.count || directory.offsets.count > MOST_STRIPS) {
            return 0;
        }
        std::vector<std::uint64_t> ends = getNumbers(directory.offsets);
        const std::vector<std::uint64_t> sizes = getNumbers(directory.sizes);
        for (std::size_t i = 0; i < ends.size(); ++i) {
            ends[i] += std::min(sizes[i], std::numeric_limits<std::uint64_t>::max() - ends[i]);
        }
        return ends.empty() ? 0 : *std::ranges::max_element(ends);
    }

private:
    static constexpr std::uint64_t MOST_STRIPS = 1'000'000;

    std::vector<std::uint64_t> getNumbers(const Array& array) {
        mReader.seek(array.place);
        std::vector<std::uint64_t> numbers;
        while (numbers.size() < array.count) {
            numbers.push_back(mReader.number(array.size));
        }
        return numbers;
    }

    static std::size_t sizeOfType(std::uint64_t type) {
        constexpr std::uint64_t BYTE = 1;
        constexpr std::uint64_t SHORT = 3;
        constexpr std::uint64_t LONG = 4;
        constexpr std::uint64_t LONG8 = 16;
        switch (type) {
        case BYTE: return 1;
        case SHORT: return 2;
        case LONG: return 4;
        case LONG8: return 8;
        default: return 0; // of no interest here
        }
    }

    void readEntry(Directory& directory) {
        const std::uint64_t tag = mReader.number(2);
        const std::size_t size = sizeOfType(mReader.number(2));
        if (size == 0 || tag < SUBFILE_TYPE || tag > SAMPLE_FORMAT) {
            return;
        }
        Array values{0, mReader.number(mWordSize), size};
        if (values.count > mWordSize / size) { // they do not fit into the entry and are stored elsewhere
            mReader.seek(mBase + mReader.number(mWordSize));
        }
        values.place = mReader.place();
        switch (tag) {
        case STRIP_OFFSETS:
        case TILE_OFFSETS: directory.offsets = values; break;
        case STRIP_BYTE_COUNTS:
        case TILE_BYTE_COUNTS: directory.sizes = values; break;
        default: note(directory, tag, mReader.number(size)); break; // the first value will do
        }
    }

    static void note(Directory& directory, std::uint64_t tag, std::uint64_t value) {
        const auto number = static_cast<unsigned>(std::min<std::uint64_t>(value, 0xFFFF));
        switch (tag) {
        case SUBFILE_TYPE: directory.reduced = (value & REDUCED_RESOLUTION) != 0; break;
        case IMAGE_WIDTH: directory.width = value; break;
        case IMAGE_LENGTH: directory.height = value; break;
        case BITS_PER_SAMPLE: directory.samples.bits = number; break;
        case PHOTOMETRIC_INTERPRETATION: directory.palette = value == PALETTE; break;
        case ORIENTATION: directory.orientation = static_cast<int>(number); break;
        case SAMPLES_PER_PIXEL: directory.samples.perPixel = number; break;
        case EXTRA_SAMPLES: directory.samples.premultiplied = value == ASSOCIATED_ALPHA; break;
        case SAMPLE_FORMAT: directory.samples.floats = value == IEEE_FLOAT; break;
        default: break;
        }
    }

    ByteReader& mReader;
    std::size_t mWordSize = 4;  // of offsets, counts and values
    std::size_t mCountSize = 2; // of the number of entries
    std::uint64_t mBase;        // of the structure in the file
    std::uint64_t mFirst = 0;
};

unsigned decodedChannels(const Directory& directory) {
    const unsigned stored = directory.samples.perPixel;
    return directory.palette ? std::max(stored, 3U) : stored == 2 ? 4U : stored; // grey with alpha becomes colour
}

} // namespace

void readTiffHeader(ByteReader& reader, Header& header) {
    constexpr int MOST_DIRECTORIES = 64; // a chain of directories may be circular
    TiffReader tiff(reader);
    const Directory first = tiff.readDirectory(tiff.first());
    header.tiff = first.samples;
    header.orientation = first.orientation;
    setPixels(header, first.width, first.height, decodedChannels(first), first.samples.bits);
    std::uint64_t next = first.next;
    for (int i = 0; next != 0 && next != tiff.first() && i < MOST_DIRECTORIES && !header.info.severalPictures; ++i) {
        const Directory further = tiff.readDirectory(next);
        header.info.severalPictures = !further.reduced;
        next = further.next;
    }
    header.dataEnd = tiff.dataEnd(first);
}

int readTiffOrientation(ByteReader& reader, std::uint64_t base) {
    TiffReader tiff(reader, base);
    return tiff.readDirectory(tiff.first()).orientation;
}

} // namespace zqx::pictures
