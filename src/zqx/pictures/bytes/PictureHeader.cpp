// Each format's reader takes numbers at known places. All reading goes through one class that knows the file's end, and
// all loops are bounded, so that nothing a file says can do harm.
#include "zqx/pictures/bytes/PictureHeader.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string_view>

#include "zqx/pictures/FileFormat.h"
#include "zqx/pictures/files/InputFile.h"

namespace zqx::pictures {

namespace {

/// Numbers anywhere in a file. What lies beyond its end is 0.
class Bytes {
public:
    explicit Bytes(const std::string& name) : mFile(toPath(name), std::ios::binary) { mPrefix = read(0, PREFIX_SIZE); }

    /// Up to so many bytes.
    std::string read(std::uint64_t offset, std::size_t size) {
        std::string block(size, '\0');
        mFile.clear();
        mFile.seekg(static_cast<std::streamoff>(offset));
        mFile.read(block.data(), static_cast<std::streamsize>(size));
        block.resize(static_cast<std::size_t>(std::max<std::streamsize>(0, mFile.gcount())));
        return block;
    }

    std::uint64_t big(std::uint64_t offset, std::size_t size) {
        std::uint64_t value = 0;
        for (const unsigned char byte : bytesAt(offset, size)) {
            value = value << 8 | byte;
        }
        return value;
    }

    std::uint64_t little(std::uint64_t offset, std::size_t size) {
        std::string bytes = bytesAt(offset, size);
        std::ranges::reverse(bytes);
        std::uint64_t value = 0;
        for (const unsigned char byte : bytes) {
            value = value << 8 | byte;
        }
        return value;
    }

    bool startsWith(std::string_view signature, std::size_t offset = 0) const {
        return mPrefix.size() >= offset + signature.size() &&
               std::string_view(mPrefix).substr(offset, signature.size()) == signature;
    }

    std::string_view prefix() const { return mPrefix; }

private:
    static constexpr std::size_t PREFIX_SIZE = 4096;

    std::string bytesAt(std::uint64_t offset, std::size_t size) {
        std::string bytes = offset + size <= mPrefix.size() ? mPrefix.substr(static_cast<std::size_t>(offset), size)
                                                            : read(offset, size);
        bytes.resize(size, '\0');
        return bytes;
    }

    std::ifstream mFile;
    std::string mPrefix;
};

using Header = std::optional<PictureHeader>;

Header readPng(Bytes& bytes) {
    constexpr unsigned CHANNELS[] = {1, 0, 3, 4, 4, 0, 4}; // a palette may be transparent; grey with alpha becomes RGBA
    const std::uint64_t type = bytes.big(25, 1);
    if (type >= std::size(CHANNELS)) {
        return std::nullopt;
    }
    return PictureHeader{bytes.big(16, 4), bytes.big(20, 4), CHANNELS[type], static_cast<unsigned>(bytes.big(24, 1))};
}

/// Goes from segment to segment until one begins a frame (ITU-T T.81, B.1.1.3 and B.2.2).
Header readJpeg(Bytes& bytes) {
    constexpr int MOST_SEGMENTS = 10000;
    std::uint64_t place = 2;
    for (int i = 0; i < MOST_SEGMENTS && bytes.big(place, 1) == 0xFF; ++i) {
        const std::uint64_t marker = bytes.big(place + 1, 1);
        if (marker == 0xFF) { // fill byte
            ++place;
        } else if (marker >= 0xC0 && marker <= 0xCF && marker != 0xC4 && marker != 0xC8 && marker != 0xCC) {
            return PictureHeader{bytes.big(place + 7, 2), bytes.big(place + 5, 2),
                                 static_cast<unsigned>(bytes.big(place + 9, 1)), 8};
        } else {
            place += 2 + bytes.big(place + 2, 2);
        }
    }
    return std::nullopt;
}

Header readTiff(Bytes& bytes) {
    const bool bigEndian = bytes.startsWith("MM");
    const auto number = [&](std::uint64_t offset, std::size_t size) {
        return bigEndian ? bytes.big(offset, size) : bytes.little(offset, size);
    };
    constexpr std::uint64_t MOST_ENTRIES = 1000;
    constexpr std::uint64_t SHORT = 3;
    constexpr std::uint64_t PALETTE = 3;
    PictureHeader header{0, 0, 1, 1};
    const std::uint64_t directory = number(4, 4);
    const std::uint64_t entries = std::min(number(directory, 2), MOST_ENTRIES);
    for (std::uint64_t i = 0; i < entries; ++i) {
        const std::uint64_t entry = directory + 2 + 12 * i;
        const std::uint64_t count = number(entry + 4, 4);
        const std::size_t size = number(entry + 2, 2) == SHORT ? 2 : 4;
        // More than four bytes of values are stored elsewhere; the first of them will do.
        const std::uint64_t value = number(count * size > 4 ? number(entry + 8, 4) : entry + 8, size);
        switch (number(entry, 2)) {
        case 256: header.width = value; break;
        case 257: header.height = value; break;
        case 258: header.bitsPerChannel = static_cast<unsigned>(value); break;
        case 262: header.channels = value == PALETTE ? 3 : header.channels; break;
        case 277: header.channels = std::max(header.channels, value == 2 ? 4 : static_cast<unsigned>(value)); break;
        default: break;
        }
    }
    return header;
}

Header readBmp(Bytes& bytes) {
    constexpr std::uint64_t CORE_HEADER = 12;
    const bool core = bytes.little(14, 4) == CORE_HEADER;
    const auto height = static_cast<std::int32_t>(bytes.little(core ? 20 : 22, core ? 2 : 4)); // negative: top first
    const std::uint64_t bitsPerPixel = bytes.little(core ? 24 : 28, 2);
    return PictureHeader{bytes.little(18, core ? 2 : 4), static_cast<std::uint64_t>(std::abs(std::int64_t{height})),
                         bitsPerPixel == 32 ? 4U : 3U, 8};
}

Header readGif(Bytes& bytes) {
    return PictureHeader{bytes.little(6, 2), bytes.little(8, 2), 4, 8};
}

Header readWebp(Bytes& bytes) {
    if (bytes.startsWith("VP8X", 12)) {
        return PictureHeader{bytes.little(24, 3) + 1, bytes.little(27, 3) + 1, 4, 8};
    }
    if (bytes.startsWith("VP8L", 12)) {
        const std::uint64_t packed = bytes.little(21, 4); // 14 bits each
        return PictureHeader{(packed & 0x3FFF) + 1, (packed >> 14 & 0x3FFF) + 1, 4, 8};
    }
    return PictureHeader{bytes.little(26, 2) & 0x3FFF, bytes.little(28, 2) & 0x3FFF, 3, 8};
}

Header readPsd(Bytes& bytes) {
    return PictureHeader{bytes.big(18, 4), bytes.big(14, 4),
                         static_cast<unsigned>(std::min<std::uint64_t>(4, bytes.big(12, 2))),
                         static_cast<unsigned>(bytes.big(22, 2))};
}

/// Takes a number from the front of a text.
std::uint64_t takeNumber(std::string_view& text) {
    std::uint64_t value = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), value);
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return failure == std::errc() ? value : 0;
}

/// Radiance: the line after the empty one is "-Y height +X width".
Header readRadiance(Bytes& bytes) {
    std::string_view text = bytes.prefix();
    const std::size_t empty = text.find("\n\n");
    if (empty == std::string_view::npos || text.size() < empty + 5) {
        return std::nullopt;
    }
    text.remove_prefix(empty + 5);
    const std::uint64_t first = takeNumber(text);
    text.remove_prefix(std::min<std::size_t>(4, text.size()));
    return PictureHeader{takeNumber(text), first, 3, 32};
}

void skipSpaceAndComments(std::string_view& text) {
    while (!text.empty() && (std::isspace(static_cast<unsigned char>(text.front())) || text.front() == '#')) {
        text.remove_prefix(text.front() == '#' ? std::min(text.find('\n'), text.size()) : 1);
    }
}

/// PBM, PGM, PPM ("P1" to "P6") and PFM ("Pf", "PF").
Header readPortableMap(Bytes& bytes) {
    std::string_view text = bytes.prefix();
    const char kind = text[1];
    text.remove_prefix(2);
    skipSpaceAndComments(text);
    const std::uint64_t width = takeNumber(text);
    skipSpaceAndComments(text);
    const std::uint64_t height = takeNumber(text);
    if (kind == 'f' || kind == 'F') {
        return PictureHeader{width, height, kind == 'F' ? 3U : 1U, 32};
    }
    skipSpaceAndComments(text);
    const bool wide = kind != '1' && kind != '4' && takeNumber(text) > 255;
    return PictureHeader{width, height, kind == '3' || kind == '6' ? 3U : 1U, wide ? 16U : 8U};
}

/// Attributes with a name, a type and a size each, up to an empty name.
class ExrReader {
public:
    explicit ExrReader(Bytes& bytes) : mBytes(bytes) {}

    Header read() {
        constexpr int MOST_ATTRIBUTES = 1000;
        PictureHeader header{0, 0, 0, 32};
        for (int i = 0; i < MOST_ATTRIBUTES; ++i) {
            const std::string name = takeName();
            if (name.empty()) {
                break;
            }
            takeName(); // type
            const std::uint64_t value = mPlace + 4;
            const std::uint64_t end = value + mBytes.little(mPlace, 4);
            mPlace = value;
            if (name == "channels") {
                header.channels = countChannels(end);
            } else if (name == "dataWindow") {
                header.width = extent(value);
                header.height = extent(value + COORDINATE);
            }
            mPlace = end;
        }
        return header;
    }

private:
    static constexpr std::uint64_t COORDINATE = 4;

    std::string takeName() {
        constexpr std::size_t LONGEST_NAME = 256;
        const std::string text = mBytes.read(mPlace, LONGEST_NAME);
        std::string name = text.substr(0, text.find('\0'));
        mPlace += name.size() + 1;
        return name;
    }

    unsigned countChannels(std::uint64_t end) {
        constexpr unsigned MOST_CHANNELS = 4; // more are not decoded
        constexpr std::uint64_t DESCRIPTION = 16;
        unsigned count = 0;
        while (mPlace < end && count < MOST_CHANNELS && !takeName().empty()) {
            mPlace += DESCRIPTION;
            ++count;
        }
        return count;
    }

    /// Between the corners, which both belong to the picture.
    std::uint64_t extent(std::uint64_t first) {
        return (mBytes.little(first + 2 * COORDINATE, 4) - mBytes.little(first, 4) + 1) & 0xFFFFFFFF;
    }

    Bytes& mBytes;
    std::uint64_t mPlace = 8;
};

Header readExr(Bytes& bytes) {
    return ExrReader(bytes).read();
}

Header readCodestream(Bytes& bytes, std::uint64_t start) {
    return PictureHeader{bytes.big(start + 8, 4) - std::min(bytes.big(start + 8, 4), bytes.big(start + 16, 4)),
                         bytes.big(start + 12, 4) - std::min(bytes.big(start + 12, 4), bytes.big(start + 20, 4)),
                         static_cast<unsigned>(bytes.big(start + 40, 2)),
                         static_cast<unsigned>((bytes.big(start + 42, 1) & 0x7F) + 1)};
}

/// JPEG 2000 in its boxes: the image header is the first box in the header box.
Header readJp2(Bytes& bytes) {
    constexpr int MOST_BOXES = 100;
    constexpr std::uint64_t HEADER_BOX = 0x6A703268; // "jp2h"
    std::uint64_t place = 0;
    for (int i = 0; i < MOST_BOXES; ++i) {
        const std::uint64_t size = bytes.big(place, 4);
        if (bytes.big(place + 4, 4) == HEADER_BOX) {
            return PictureHeader{bytes.big(place + 20, 4), bytes.big(place + 16, 4),
                                 static_cast<unsigned>(bytes.big(place + 24, 2)),
                                 static_cast<unsigned>((bytes.big(place + 26, 1) & 0x7F) + 1)};
        }
        if (size < 8) {
            break;
        }
        place += size;
    }
    return std::nullopt;
}

struct Signature {
    std::string_view bytes;
    Header (*read)(Bytes&);
};

constexpr Signature SIGNATURES[] = {
    {"\x89PNG\r\n\x1A\n", readPng},
    {"\xFF\xD8\xFF", readJpeg},
    {std::string_view("II*\0", 4), readTiff},
    {std::string_view("MM\0*", 4), readTiff},
    {"BM", readBmp},
    {"GIF8", readGif},
    {"8BPS", readPsd},
    {"#?", readRadiance},
    {"v/1\x01", readExr},
    {"\xFF\x4F\xFF\x51", [](Bytes& bytes) { return readCodestream(bytes, 0); }},
    {std::string_view("\0\0\0\x0CjP  ", 8), readJp2},
    {"P1", readPortableMap},
    {"P2", readPortableMap},
    {"P3", readPortableMap},
    {"P4", readPortableMap},
    {"P5", readPortableMap},
    {"P6", readPortableMap},
    {"PF", readPortableMap},
    {"Pf", readPortableMap},
};

/// Targa has no signature: its name has to do.
Header readTarga(Bytes& bytes) {
    return PictureHeader{bytes.little(12, 2), bytes.little(14, 2), bytes.little(16, 1) == 32 ? 4U : 3U, 8};
}

Header readKnown(Bytes& bytes, const std::string& name) {
    for (const Signature& signature : SIGNATURES) {
        if (bytes.startsWith(signature.bytes)) {
            return signature.read(bytes);
        }
    }
    if (bytes.startsWith("RIFF") && bytes.startsWith("WEBP", 8)) {
        return readWebp(bytes);
    }
    if (formatOfName(name) == FileFormat::TARGA) {
        return readTarga(bytes);
    }
    return std::nullopt;
}

bool makesSense(const PictureHeader& header) {
    constexpr std::uint64_t LARGEST = 0xFFFFFFFF;
    return header.width > 0 && header.width <= LARGEST && header.height > 0 && header.height <= LARGEST &&
           header.channels > 0 && header.bitsPerChannel > 0 && header.bitsPerChannel <= 64;
}

} // namespace

std::optional<PictureHeader> readPictureHeader(const std::string& name) {
    std::error_code failure;
    if (!std::filesystem::is_regular_file(toPath(name), failure)) {
        return std::nullopt; // opening a pipe would wait for somebody who writes to it
    }
    Bytes bytes(name);
    Header header = readKnown(bytes, name);
    if (!header || !makesSense(*header)) {
        return std::nullopt;
    }
    header->channels = std::min(header->channels, 4U);
    return header;
}

} // namespace zqx::pictures
