// Adds up stored sizes, and counts run lengths without decoding their pixels.
#include "zqx/pictures/bytes/Completeness.h"

#include <algorithm>
#include <array>
#include <limits>

#include "zqx/pictures/bytes/HeaderReaders.h"

namespace zqx::pictures {

namespace {

constexpr std::uint64_t ALL = std::numeric_limits<std::uint64_t>::max();

Completeness completeIf(bool complete) {
    return complete ? Completeness::COMPLETE : Completeness::CUT_SHORT;
}

/// Run-length encoding: if the two upper bits of a byte are set, the other six are the length of a run.
Completeness checkPcx(ByteReader& reader) {
    constexpr std::uint64_t HEADER = 128;
    constexpr std::uint64_t RUN = 0xC0;
    reader.seek(2);
    const bool runs = reader.little(1) == 1;
    reader.skip(1);
    reader.skip(2);
    const std::uint64_t top = reader.little(2);
    reader.skip(2);
    const std::uint64_t bottom = reader.little(2);
    reader.seek(65);
    const std::uint64_t planes = reader.little(1);
    const std::uint64_t bytesPerLine = reader.little(2);
    if (bottom < top) {
        return Completeness::COMPLETE;
    }
    std::uint64_t missing = (bottom - top + 1) * planes * bytesPerLine;
    reader.seek(HEADER);
    if (!runs) {
        reader.skip(missing > 0 ? missing - 1 : 0);
        reader.little(1);
        return Completeness::COMPLETE;
    }
    while (missing > 0) {
        const std::uint64_t byte = reader.little(1);
        const std::uint64_t count = byte >= RUN ? byte - RUN : 1;
        if (byte >= RUN) {
            reader.little(1);
        }
        missing -= std::min(count, missing);
    }
    return Completeness::COMPLETE;
}

/// Skips run-length packets: the upper bit marks a run of one pixel, the other seven bits are the length minus 1.
void skipTargaPackets(ByteReader& reader, std::uint64_t pixels, std::uint64_t pixelSize) {
    while (pixels > 0) {
        const std::uint64_t packet = reader.little(1);
        const std::uint64_t count = std::min((packet & 0x7FU) + 1, pixels);
        reader.skip(((packet & 0x80U) != 0 ? 1 : count) * pixelSize - 1);
        reader.little(1);
        pixels -= count;
    }
}

Completeness checkTarga(ByteReader& reader, std::uint64_t fileSize) {
    constexpr std::uint64_t RUNS = 8; // flag in the image type: run-length encoded
    const std::uint64_t identification = reader.little(1);
    const bool mapped = reader.little(1) != 0;
    const std::uint64_t kind = reader.little(1);
    reader.skip(2);
    const std::uint64_t colors = reader.little(2);
    const std::uint64_t colorSize = (reader.little(1) + 7) / 8;
    reader.skip(4);
    const std::uint64_t pixels = reader.little(2) * reader.little(2);
    const std::uint64_t pixelSize = (reader.little(1) + 7) / 8;
    reader.skip(1 + identification + (mapped ? colors * colorSize : 0));
    if (kind == 0 || pixelSize == 0) {
        return Completeness::COMPLETE;
    }
    if ((kind & RUNS) == 0) {
        return completeIf(fileSize >= reader.place() && (fileSize - reader.place()) / pixelSize >= pixels);
    }
    skipTargaPackets(reader, pixels, pixelSize);
    return Completeness::COMPLETE;
}

/// The first surface: blocks of 4 x 4 pixels, or pixels of whole bytes.
Completeness checkDds(ByteReader& reader, std::uint64_t fileSize) {
    constexpr std::uint64_t HEADER = 128;
    reader.seek(12);
    const std::uint64_t height = reader.little(4);
    const std::uint64_t width = reader.little(4);
    reader.seek(80);
    const bool compressed = (reader.little(4) & 4U) != 0;
    const std::string code = reader.text(4);
    const std::uint64_t pixelSize = (reader.little(4) + 7) / 8;
    const std::uint64_t blockSize = code == "DXT1" ? 8 : 16;
    const std::uint64_t blocks = (width + 3) / 4 * ((height + 3) / 4);
    const std::uint64_t units = compressed ? blocks : width * height;
    const std::uint64_t unitSize = std::max<std::uint64_t>(compressed ? blockSize : pixelSize, 1);
    return completeIf(fileSize >= HEADER && (fileSize - HEADER) / unitSize >= units);
}

/// A directory lists the icons with their offsets; only the first one is decoded.
Completeness checkIco(ByteReader& reader, std::uint64_t fileSize) {
    reader.seek(14);
    const std::uint64_t size = reader.little(4);
    const std::uint64_t place = reader.little(4);
    return completeIf(place <= fileSize && size <= fileSize - place);
}

Completeness checkWbmp(ByteReader& reader, const Header& header, std::uint64_t fileSize) {
    reader.skip(2);
    for (int number = 0; number < 2; ++number) { // width and height, variable-length integers
        while ((reader.big(1) & 0x80U) != 0) {
        }
    }
    const std::uint64_t rowSize = (std::uint64_t{header.info.width} + 7) / 8;
    return completeIf(fileSize - std::min(reader.place(), fileSize) >= rowSize * header.info.height);
}

/// Reads LZW codes, least significant bit first, from GIF data blocks of up to 255 bytes.
class GifCodes {
public:
    explicit GifCodes(ByteReader& reader) : mReader(reader) {}

    /// Reads a code; false at the end of the blocks.
    bool take(unsigned bits, unsigned& code) {
        while (mCount < bits) {
            if (mLeft == 0) {
                mLeft = mReader.big(1);
                if (mLeft == 0) {
                    mEnded = true;
                    return false;
                }
            }
            mBuffer |= static_cast<unsigned>(mReader.big(1)) << mCount;
            mCount += 8;
            --mLeft;
        }
        code = mBuffer & ((1U << bits) - 1);
        mBuffer >>= bits;
        mCount -= bits;
        return true;
    }

    /// Skips the remaining blocks.
    void finish() {
        while (!mEnded) {
            mReader.skip(mLeft);
            mLeft = mReader.big(1);
            mEnded = mLeft == 0;
        }
    }

private:
    ByteReader& mReader;
    std::uint64_t mLeft = 0;
    unsigned mBuffer = 0;
    unsigned mCount = 0;
    bool mEnded = false;
};

/// Counts the pixels in an LZW stream from the lengths of its strings, without decoding them.
class GifPixels {
public:
    GifPixels(ByteReader& reader, unsigned codeBits)
        : mCodes(reader), mClear(1U << codeBits), mFirstBits(codeBits + 1) {
        clear();
    }

    /// Whether the stream has at least this many pixels.
    bool has(std::uint64_t pixels) {
        std::uint64_t made = 0;
        unsigned code = 0;
        while (made < pixels && mCodes.take(mBits, code)) {
            if (code == mClear) {
                clear();
            } else if (code == mClear + 1) {
                break;
            } else if (!add(code, made)) {
                return false;
            }
        }
        mCodes.finish();
        return made >= pixels;
    }

private:
    static constexpr unsigned MOST_CODES = 4096;

    void clear() {
        mBits = mFirstBits;
        mNext = mClear + 2;
        mPrevious = 0;
    }

    /// Counts the pixels of a code; false if the code is invalid.
    bool add(unsigned code, std::uint64_t& made) {
        if (code > mNext || (code == mNext && mPrevious == 0) || (code > mClear && mPrevious == 0)) {
            return false;
        }
        const std::uint32_t length = code < mClear ? 1 : code == mNext ? mPrevious + 1 : mLengths[code];
        if (mPrevious > 0 && mNext < MOST_CODES) {
            mLengths[mNext++] = mPrevious + 1;
            if (mNext == 1U << mBits && mBits < 12) {
                ++mBits;
            }
        }
        made += length;
        mPrevious = length;
        return true;
    }

    GifCodes mCodes;
    unsigned mClear;
    unsigned mFirstBits;
    unsigned mBits = 0;
    unsigned mNext = 0;
    std::uint32_t mPrevious = 0; // pixels of the previous code; 0 for none
    std::array<std::uint32_t, MOST_CODES> mLengths{};
};

Completeness checkGif(ByteReader& reader, const Header& header) {
    constexpr unsigned MOST_BITS = 11;
    findFirstGifFrame(reader);
    reader.skip(8); // position and size
    skipGifColors(reader, reader.big(1));
    const auto bits = static_cast<unsigned>(reader.big(1));
    if (bits == 0 || bits > MOST_BITS) {
        return Completeness::DAMAGED;
    }
    return GifPixels(reader, bits).has(header.info.pixels()) ? Completeness::COMPLETE : Completeness::DAMAGED;
}

Completeness checkAs(ByteReader& reader, const Header& header, std::uint64_t fileSize) {
    switch (header.info.format) {
    case FileFormat::DDS: return checkDds(reader, fileSize);
    case FileFormat::GIF: return checkGif(reader, header);
    case FileFormat::ICO: return checkIco(reader, fileSize);
    case FileFormat::PCX: return checkPcx(reader);
    case FileFormat::TARGA: return checkTarga(reader, fileSize);
    case FileFormat::TIFF:
        return completeIf(!header.tiff.floats ||
                          header.dataEnd <= fileSize); // other samples are checked by the decoder
    case FileFormat::WBMP: return checkWbmp(reader, header, fileSize);
    default: return Completeness::COMPLETE;
    }
}

} // namespace

Completeness checkCompleteness(InputFile& file, const Header& header) {
    if (!header.info.hasSize()) {
        return Completeness::COMPLETE;
    }
    ByteReader reader(file, ByteReader::Order::BIG, ALL);
    try {
        return checkAs(reader, header, file.size());
    } catch (const NoMoreBytes&) {
        return Completeness::CUT_SHORT;
    }
}

} // namespace zqx::pictures
