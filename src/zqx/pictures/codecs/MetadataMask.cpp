// Just enough knowledge of file formats to find their metadata without looking into it.
#include "zqx/pictures/codecs/MetadataMask.h"

#include <algorithm>
#include <cstdint>
#include <string>

namespace zqx::pictures {

namespace {

/// Real files have a few dozen segments, resources or entries. Whoever has more does not mean well.
constexpr int MAX_PARTS = 4096;

enum class Endian { LITTLE, BIG };

/// An unsigned number of some bytes at a place; 0 behind the end of the file.
std::uint64_t numberAt(InputFile& file, std::uint64_t offset, std::size_t size, Endian endian) {
    const std::string bytes = file.readAt(offset, size);
    if (bytes.size() < size) {
        return 0;
    }
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < size; ++i) {
        value = value << 8 | static_cast<unsigned char>(bytes[endian == Endian::BIG ? i : size - 1 - i]);
    }
    return value;
}

/// The segments of Exif and XMP (APP1) and of Photoshop (APP13) begin with a signature, without which they are nothing.
void maskJpeg(InputFile& file, ByteMask& mask) {
    constexpr std::uint64_t APP1 = 0xFFE1;
    constexpr std::uint64_t APP13 = 0xFFED;
    constexpr std::uint64_t START_OF_SCAN = 0xFFDA;
    constexpr std::uint64_t FIRST_MARKER = 0xFFC0;
    constexpr std::size_t SIGNATURE_SIZE = 4;
    std::uint64_t offset = 2;
    for (int i = 0; i < MAX_PARTS; ++i) {
        std::uint64_t marker = numberAt(file, offset, 2, Endian::BIG);
        while (marker == 0xFFFF) { // any number of fill bytes may precede a marker
            marker = numberAt(file, ++offset, 2, Endian::BIG);
        }
        const std::uint64_t length = numberAt(file, offset + 2, 2, Endian::BIG);
        if (marker < FIRST_MARKER || marker == START_OF_SCAN || length < 2) {
            return;
        }
        if ((marker == APP1 || marker == APP13) && length >= 2 + SIGNATURE_SIZE) {
            mask.add(offset + 4, std::string(SIGNATURE_SIZE, '\0'));
        }
        offset += 2 + length;
    }
}

/// Both the chunk and the flag that announces it: a container that says more than it has is refused.
void maskWebp(InputFile& file, ByteMask& mask) {
    constexpr std::uint64_t FIRST_CHUNK = 12;
    constexpr std::uint64_t CHUNK_HEADER = 8;
    constexpr char EXIF_FLAG = 0x08;
    std::uint64_t offset = FIRST_CHUNK;
    for (int i = 0; i < MAX_PARTS; ++i) {
        const std::string name = file.readAt(offset, 4);
        if (name.size() < 4) {
            return;
        }
        if (name == "VP8X") {
            std::string flags = file.readAt(offset + CHUNK_HEADER, 1);
            if (!flags.empty()) {
                flags[0] = static_cast<char>(flags[0] & ~EXIF_FLAG);
                mask.add(offset + CHUNK_HEADER, flags);
            }
        } else if (name == "EXIF") {
            mask.add(offset, "none");
        }
        const std::uint64_t size = numberAt(file, offset + 4, 4, Endian::LITTLE);
        offset += CHUNK_HEADER + size + size % 2;
    }
}

/// Image resources get a number that stands for nothing.
void maskPsd(InputFile& file, ByteMask& mask) {
    constexpr std::uint64_t HEADER = 26;
    constexpr std::uint64_t IPTC = 1028;
    constexpr std::uint64_t EXIF_1 = 1058;
    constexpr std::uint64_t EXIF_3 = 1059;
    std::uint64_t offset = HEADER + 4 + numberAt(file, HEADER, 4, Endian::BIG); // behind the colour map
    const std::uint64_t end = offset + 4 + numberAt(file, offset, 4, Endian::BIG);
    offset += 4;
    for (int i = 0; i < MAX_PARTS && offset < end; ++i) {
        const std::uint64_t number = numberAt(file, offset + 4, 2, Endian::BIG);
        if (number == IPTC || number == EXIF_1 || number == EXIF_3) {
            mask.add(offset + 4, std::string(2, '\0'));
        }
        const std::uint64_t nameLength = numberAt(file, offset + 6, 1, Endian::BIG) + 1;
        const std::uint64_t sizeField = offset + 6 + nameLength + nameLength % 2;
        const std::uint64_t size = numberAt(file, sizeField, 4, Endian::BIG);
        offset = sizeField + 4 + size + size % 2;
    }
}

/// The orientation entry of the first directory becomes upright.
void maskTiff(InputFile& file, ByteMask& mask) {
    constexpr std::uint64_t VERSION = 42; // not 43, of the large files, whose metadata nobody here reads
    constexpr std::uint64_t ORIENTATION = 0x0112;
    constexpr std::uint64_t ENTRY_SIZE = 12;
    constexpr std::uint64_t VALUE_OFFSET = 8;
    const Endian endian = file.readAt(0, 1) == "M" ? Endian::BIG : Endian::LITTLE;
    if (numberAt(file, 2, 2, endian) != VERSION) {
        return;
    }
    const std::uint64_t directory = numberAt(file, 4, 4, endian);
    const std::uint64_t entries = numberAt(file, directory, 2, endian);
    for (std::uint64_t i = 0; i < entries && i < MAX_PARTS; ++i) {
        const std::uint64_t entry = directory + 2 + i * ENTRY_SIZE;
        if (numberAt(file, entry, 2, endian) == ORIENTATION) {
            mask.add(entry + VALUE_OFFSET, std::string(endian == Endian::BIG ? "\0\1" : "\1\0", 2));
        }
    }
}

/// The headers of 52 to 124 bytes add channel masks, which lie where the old header of 40 has them, and colour spaces.
/// FreeImage refuses them; shown as old ones they are read. A palette then has to begin where the old header ends.
void maskBmp(InputFile& file, ByteMask& mask) {
    constexpr std::uint64_t HEADER = 14;
    constexpr std::uint64_t OLD_SIZE = 40;
    constexpr std::uint64_t NEWEST_SIZE = 124;
    constexpr std::uint64_t BITS = HEADER + 14;
    constexpr std::uint64_t COLORS = HEADER + 32;
    constexpr std::size_t BYTES_PER_COLOR = 4;
    const std::uint64_t size = numberAt(file, HEADER, 4, Endian::LITTLE);
    const std::uint64_t bits = numberAt(file, BITS, 2, Endian::LITTLE);
    if (size < 52 || size > NEWEST_SIZE || size == 64) { // 64: another family, which FreeImage knows
        return;
    }
    mask.add(HEADER, std::string("\x28\0\0\0", 4));
    if (bits <= 8) {
        const std::uint64_t most = std::uint64_t{1} << bits;
        const std::uint64_t stated = numberAt(file, COLORS, 4, Endian::LITTLE);
        const std::uint64_t colors = stated == 0 ? most : std::min(stated, most);
        mask.add(HEADER + OLD_SIZE, file.readAt(HEADER + size, static_cast<std::size_t>(colors) * BYTES_PER_COLOR));
    }
}

} // namespace

ByteMask maskMetadata(InputFile& file, FileFormat format) {
    ByteMask mask;
    switch (format) {
    case FileFormat::BMP: maskBmp(file, mask); break;
    case FileFormat::JPEG: maskJpeg(file, mask); break;
    case FileFormat::WEBP: maskWebp(file, mask); break;
    case FileFormat::PSD: maskPsd(file, mask); break;
    case FileFormat::TIFF: maskTiff(file, mask); break;
    default: break;
    }
    return mask;
}

} // namespace zqx::pictures
