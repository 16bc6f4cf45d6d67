// Headers of container formats, made of chunks, blocks or boxes, which may contain more than one picture.
#include <algorithm>
#include <iterator>
#include <set>
#include <string>

#include "zqx/pictures/bytes/HeaderReaders.h"

namespace zqx::pictures {

namespace {

constexpr std::uint64_t CHUNK_TAIL = 4; // the checksum of PNG and its kin

void skipGifBlocks(ByteReader& reader) {
    for (std::uint64_t length = reader.big(1); length != 0; length = reader.big(1)) {
        reader.skip(length);
    }
}

/// Moves to the next frame; false if there is none.
bool findGifFrame(ByteReader& reader) {
    for (int i = 0; i < MOST_PARTS; ++i) {
        const std::uint64_t kind = reader.big(1);
        if (kind == ',') {
            return true;
        }
        if (kind != '!') {
            return false;
        }
        reader.skip(1); // type of the extension
        skipGifBlocks(reader);
    }
    return false;
}

/// Frame tag and start code, then width and height of 14 bits each with a scale in the upper two bits.
void readVp8Lossy(ByteReader& reader, Header& header) {
    reader.skip(6);
    const std::uint64_t width = reader.little(2) & 0x3FFFU;
    setPixels(header, width, reader.little(2) & 0x3FFFU, 3, 8);
}

void readVp8Lossless(ByteReader& reader, Header& header) {
    reader.expect("\x2F");
    const std::uint64_t packed = reader.little(4); // 14 bits each
    setPixels(header, (packed & 0x3FFFU) + 1, (packed >> 14U & 0x3FFFU) + 1, 4, 8);
}

void readVp8Extended(ByteReader& reader, Header& header) {
    constexpr std::uint64_t ANIMATION = 0x02;
    const std::uint64_t flags = reader.little(1);
    reader.skip(3);
    const std::uint64_t width = reader.little(3) + 1;
    setPixels(header, width, reader.little(3) + 1, 4, 8);
    header.info.severalPictures = (flags & ANIMATION) != 0;
}

/// Reads attributes, each with a name, a type and a size, up to an empty name.
class ExrReader {
public:
    explicit ExrReader(ByteReader& reader) : mReader(reader) {}

    void read(Header& header) {
        for (int i = 0; i < MOST_PARTS; ++i) {
            const std::string name = mReader.textUpToZero(LONGEST_NAME);
            if (name.empty()) {
                break;
            }
            mReader.textUpToZero(LONGEST_NAME); // type
            const std::uint64_t size = mReader.little(4);
            const std::uint64_t value = mReader.place();
            if (name == "channels") {
                readChannels(value + size, header);
            } else if (name == "dataWindow") {
                readWindow();
            }
            mReader.seek(value + size);
        }
        setPixels(header, mWidth, mHeight, mChannels, 32);
    }

private:
    static constexpr std::size_t LONGEST_NAME = 255;

    void readChannels(std::uint64_t end, Header& header) {
        constexpr std::uint64_t DESCRIPTION = 16;
        std::set<std::string> names;
        for (int i = 0; i < MOST_PARTS && mReader.place() < end; ++i) {
            const std::string name = mReader.textUpToZero(LONGEST_NAME);
            if (name.empty()) {
                break;
            }
            mReader.skip(DESCRIPTION);
            names.insert(name);
        }
        mChannels = static_cast<unsigned>(names.size());
        noteUndecoded(names, header);
    }

    /// The decoder reads RGB, or luminance with chroma, each with alpha, and otherwise luminance alone. It refuses
    /// files with several channels of other names.
    static void noteUndecoded(const std::set<std::string>& names, Header& header) {
        const bool colored = (names.contains("R") && names.contains("G") && names.contains("B")) ||
                             (names.contains("Y") && names.contains("RY") && names.contains("BY"));
        const std::size_t decoded = colored ? names.contains("A") ? 4 : 3 : 1;
        if ((colored || names.contains("Y")) && names.size() > decoded) {
            header.lost.emplace_back(colored ? "channels beyond RGBA" : "channels beyond grey");
        }
    }

    /// Reads the two corners, which are inclusive.
    void readWindow() {
        const std::uint64_t left = mReader.little(4);
        const std::uint64_t top = mReader.little(4);
        const std::uint64_t right = mReader.little(4);
        const std::uint64_t bottom = mReader.little(4);
        mWidth = (right - left + 1) & 0xFFFFFFFFU;
        mHeight = (bottom - top + 1) & 0xFFFFFFFFU;
    }

    ByteReader& mReader;
    std::uint64_t mWidth = 0;
    std::uint64_t mHeight = 0;
    unsigned mChannels = 0;
};

} // namespace

/// Reads the chunks before the pixels, among which an animation is announced.
void readPngHeader(ByteReader& reader, Header& header) {
    constexpr unsigned CHANNELS[] = {1, 0, 3, 4, 4, 0, 4}; // a palette may be transparent; grey with alpha becomes RGBA
    reader.expect("\x89PNG\r\n\x1A\n");
    for (int i = 0; i < MOST_PARTS; ++i) {
        const std::uint64_t size = reader.big(4);
        const std::string name = reader.text(4);
        const std::uint64_t content = reader.place();
        if (name == "IHDR") {
            const std::uint64_t width = reader.big(4);
            const std::uint64_t height = reader.big(4);
            const std::uint64_t bits = reader.big(1);
            const std::uint64_t type = reader.big(1);
            setPixels(header, width, height, type < std::size(CHANNELS) ? CHANNELS[type] : 0, bits);
        } else if (name == "acTL") {
            header.info.severalPictures = reader.big(4) > 1;
        } else if (name == "IDAT" || name == "IEND") {
            return;
        }
        reader.seek(content + size + CHUNK_TAIL);
    }
}

void readMngHeader(ByteReader& reader, Header& header) {
    reader.expect("\x8AMNG\r\n\x1A\n");
    reader.skip(4);
    reader.expect("MHDR");
    const std::uint64_t width = reader.big(4);
    setPixels(header, width, reader.big(4), 4, 8);
    header.info.severalPictures = true; // it is an animation format
}

void readJngHeader(ByteReader& reader, Header& header) {
    reader.expect("\x8BJNG\r\n\x1A\n");
    reader.skip(4);
    reader.expect("JHDR");
    const std::uint64_t width = reader.big(4);
    setPixels(header, width, reader.big(4), 4, 8);
}

void skipGifColors(ByteReader& reader, std::uint64_t flags) {
    if ((flags & 0x80U) != 0) {
        reader.skip(std::uint64_t{3} << ((flags & 7U) + 1));
    }
}

void findFirstGifFrame(ByteReader& reader) {
    reader.expect("GIF8");
    reader.skip(6); // version, and size of the screen
    const std::uint64_t flags = reader.big(1);
    reader.skip(2);
    skipGifColors(reader, flags);
    if (!findGifFrame(reader)) {
        throw NoMoreBytes();
    }
}

/// Reads the size of the first frame, which is the one decoded. The screen size in the header may differ from it.
void readGifHeader(ByteReader& reader, Header& header) {
    findFirstGifFrame(reader);
    reader.skip(4);
    const std::uint64_t width = reader.little(2);
    setPixels(header, width, reader.little(2), 4, 8);
    skipGifColors(reader, reader.big(1));
    reader.skip(1); // bits of a code
    skipGifBlocks(reader);
    header.info.severalPictures = findGifFrame(reader);
}

void readWebpHeader(ByteReader& reader, Header& header) {
    reader.expect("RIFF");
    reader.skip(4);
    reader.expect("WEBP");
    const std::string chunk = reader.text(4);
    reader.skip(4);
    if (chunk == "VP8X") {
        readVp8Extended(reader, header);
    } else if (chunk == "VP8L") {
        readVp8Lossless(reader, header);
    } else if (chunk == "VP8 ") {
        readVp8Lossy(reader, header);
    }
}

/// Header, colour map, resources, then layers. The decoder reads the merged picture only.
void readPsdHeader(ByteReader& reader, Header& header) {
    constexpr std::uint64_t RESERVED = 6;
    reader.expect("8BPS");
    reader.skip(2 + RESERVED);
    const std::uint64_t channels = reader.big(2);
    const std::uint64_t height = reader.big(4);
    const std::uint64_t width = reader.big(4);
    setPixels(header, width, height, channels, reader.big(2));
    reader.skip(2);
    reader.skip(reader.big(4));
    reader.skip(reader.big(4));
    if (reader.big(4) > 0 && reader.big(4) > 0) {
        const std::uint64_t count =
            reader.big(2); // negative if the first extra channel is the transparency of the merged picture
        header.info.severalPictures = std::min(count, 0x10000 - count) > 1;
    }
}

void readExrHeader(ByteReader& reader, Header& header) {
    constexpr std::uint64_t SEVERAL_PARTS = 0x1000;
    reader.expect("v/1\x01");
    header.info.severalPictures = (reader.little(4) & SEVERAL_PARTS) != 0;
    ExrReader(reader).read(header);
}

/// ISO/IEC 15444-1, A.5.1: the picture is the part of the reference grid to the right of and below its offset.
void readCodestreamHeader(ByteReader& reader, Header& header) {
    reader.expect("\xFF\x4F\xFF\x51");
    reader.skip(4);
    const std::uint64_t right = reader.big(4);
    const std::uint64_t bottom = reader.big(4);
    const std::uint64_t left = reader.big(4);
    const std::uint64_t top = reader.big(4);
    reader.skip(16);
    const std::uint64_t channels = reader.big(2);
    const std::uint64_t bits = (reader.big(1) & 0x7FU) + 1;
    if (left <= right && top <= bottom) {
        setPixels(header, right - left, bottom - top, channels, bits);
    }
}

/// Uses the size in the codestream, which is the one decoded, rather than that in the image header box.
void readJp2Header(ByteReader& reader, Header& header) {
    for (int i = 0; i < MOST_PARTS; ++i) {
        const std::uint64_t start = reader.place();
        std::uint64_t length = reader.big(4);
        const std::string type = reader.text(4);
        if (length == 1) {
            length = reader.big(8);
        }
        if (type == "jp2c") {
            readCodestreamHeader(reader, header);
            return;
        }
        if (length < reader.place() - start) { // 0 is a box up to the end of the file
            return;
        }
        reader.seek(start);
        reader.skip(length);
    }
}

} // namespace zqx::pictures
