// Knows just enough about the file formats to locate their metadata without parsing it.
#include "zqx/pictures/codecs/MetadataMask.h"

#include <algorithm>
#include <cstdint>
#include <string>

#include "zqx/pictures/bytes/ByteReader.h"

namespace zqx::pictures {

namespace {

/// Real files have a few dozen segments, resources or entries; a file with more than this is probably hostile.
constexpr int MAX_PARTS = 4096;

/// The unsigned number at an offset. @throws NoMoreBytes
std::uint64_t numberAt(ByteReader& reader, std::uint64_t offset, std::size_t size) {
    reader.seek(offset);
    return reader.number(size);
}

/// Exif and XMP (APP1) and Photoshop segments (APP13) begin with a signature; without it they are ignored.
void maskJpeg(ByteReader& reader, ByteMask& mask) {
    constexpr std::uint64_t APP1 = 0xE1;
    constexpr std::uint64_t APP13 = 0xED;
    constexpr std::uint64_t START_OF_SCAN = 0xDA;
    constexpr std::uint64_t FIRST_MARKER = 0xC0;
    constexpr std::size_t SIGNATURE_SIZE = 4;
    reader.seek(2);
    for (int i = 0; i < MAX_PARTS; ++i) {
        reader.expect("\xFF");
        std::uint64_t marker = reader.big(1);
        while (marker == 0xFF) { // any number of fill bytes may precede a marker
            marker = reader.big(1);
        }
        const std::uint64_t segment = reader.place();
        const std::uint64_t length = reader.big(2);
        if (marker < FIRST_MARKER || marker == START_OF_SCAN || length < 2) {
            return;
        }
        if ((marker == APP1 || marker == APP13) && length >= 2 + SIGNATURE_SIZE) {
            mask.add(segment + 2, std::string(SIGNATURE_SIZE, '\0'));
        }
        reader.seek(segment + length);
    }
}

/// Both the chunk and the flag that announces it: a container with a flag but no chunk would be refused.
void maskWebp(ByteReader& reader, ByteMask& mask) {
    constexpr std::uint64_t FIRST_CHUNK = 12;
    constexpr std::uint64_t CHUNK_HEADER = 8;
    constexpr std::uint64_t EXIF_FLAG = 0x08;
    std::uint64_t offset = FIRST_CHUNK;
    for (int i = 0; i < MAX_PARTS; ++i) {
        reader.seek(offset);
        const std::string name = reader.text(4);
        if (name == "VP8X") {
            const std::uint64_t flags = numberAt(reader, offset + CHUNK_HEADER, 1);
            mask.add(offset + CHUNK_HEADER, std::string(1, static_cast<char>(flags & ~EXIF_FLAG)));
        } else if (name == "EXIF") {
            mask.add(offset, "none");
        }
        const std::uint64_t size = numberAt(reader, offset + 4, 4);
        offset += CHUNK_HEADER + size + size % 2;
    }
}

/// Changes the numbers of image resources to one that has no meaning.
void maskPsd(ByteReader& reader, ByteMask& mask) {
    constexpr std::uint64_t HEADER = 26;
    constexpr std::uint64_t IPTC = 1028;
    constexpr std::uint64_t EXIF_1 = 1058;
    constexpr std::uint64_t EXIF_3 = 1059;
    std::uint64_t offset = HEADER + 4 + numberAt(reader, HEADER, 4); // behind the colour map
    const std::uint64_t end = offset + 4 + numberAt(reader, offset, 4);
    offset += 4;
    for (int i = 0; i < MAX_PARTS && offset < end; ++i) {
        const std::uint64_t number = numberAt(reader, offset + 4, 2);
        if (number == IPTC || number == EXIF_1 || number == EXIF_3) {
            mask.add(offset + 4, std::string(2, '\0'));
        }
        const std::uint64_t nameLength = numberAt(reader, offset + 6, 1) + 1;
        const std::uint64_t sizeField = offset + 6 + nameLength + nameLength % 2;
        const std::uint64_t size = numberAt(reader, sizeField, 4);
        offset = sizeField + 4 + size + size % 2;
    }
}

/// Sets the orientation in the first directory to upright.
void maskTiff(ByteReader& reader, ByteMask& mask) {
    constexpr std::uint64_t VERSION = 42; // not 43 of BigTIFF, whose metadata is not read at all
    constexpr std::uint64_t ORIENTATION = 0x0112;
    constexpr std::uint64_t ENTRY_SIZE = 12;
    constexpr std::uint64_t VALUE_OFFSET = 8;
    const bool bigEndian = reader.text(1) == "M";
    reader.setOrder(bigEndian ? ByteReader::Order::BIG : ByteReader::Order::LITTLE);
    if (numberAt(reader, 2, 2) != VERSION) {
        return;
    }
    const std::uint64_t directory = numberAt(reader, 4, 4);
    const std::uint64_t entries = numberAt(reader, directory, 2);
    for (std::uint64_t i = 0; i < entries && i < MAX_PARTS; ++i) {
        const std::uint64_t entry = directory + 2 + i * ENTRY_SIZE;
        if (numberAt(reader, entry, 2) == ORIENTATION) {
            mask.add(entry + VALUE_OFFSET, std::string(bigEndian ? "\0\1" : "\1\0", 2));
        }
    }
}

/// Headers of 52 to 124 bytes add channel masks, which follow directly after the 40 bytes of the old header, and colour
/// spaces. FreeImage refuses them but reads them when presented as old headers. A palette is then expected right behind
/// the old header.
void maskBmp(ByteReader& reader, ByteMask& mask) {
    constexpr std::uint64_t HEADER = 14;
    constexpr std::uint64_t OLD_SIZE = 40;
    constexpr std::uint64_t NEWEST_SIZE = 124;
    constexpr std::uint64_t BITS = HEADER + 14;
    constexpr std::uint64_t COLORS = HEADER + 32;
    constexpr std::size_t BYTES_PER_COLOR = 4;
    const std::uint64_t size = numberAt(reader, HEADER, 4);
    const std::uint64_t bits = numberAt(reader, BITS, 2);
    if (size < 52 || size > NEWEST_SIZE || size == 64) { // 64: the OS/2 header, which FreeImage supports
        return;
    }
    mask.add(HEADER, std::string("\x28\0\0\0", 4));
    if (bits <= 8) {
        const std::uint64_t most = std::uint64_t{1} << bits;
        const std::uint64_t stated = numberAt(reader, COLORS, 4);
        const std::uint64_t colors = stated == 0 ? most : std::min(stated, most);
        reader.seek(HEADER + size);
        mask.add(HEADER + OLD_SIZE, reader.peek(static_cast<std::size_t>(colors) * BYTES_PER_COLOR));
    }
}

} // namespace

ByteMask maskMetadata(InputFile& file, FileFormat format) {
    using enum ByteReader::Order;
    ByteMask mask;
    ByteReader reader(file, format == FileFormat::BMP || format == FileFormat::WEBP ? LITTLE : BIG);
    try {
        switch (format) {
        case FileFormat::BMP: maskBmp(reader, mask); break;
        case FileFormat::JPEG: maskJpeg(reader, mask); break;
        case FileFormat::WEBP: maskWebp(reader, mask); break;
        case FileFormat::PSD: maskPsd(reader, mask); break;
        case FileFormat::TIFF: maskTiff(reader, mask); break;
        default: break;
        }
    } catch (const NoMoreBytes&) { // whatever was found up to there is hidden
    }
    return mask;
}

} // namespace zqx::pictures
