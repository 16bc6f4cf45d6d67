// JPEG, ITU-T T.81 (B.1.1.3 and B.2.2): markers with segments, up to the first scan.
#include <algorithm>
#include <string_view>

#include "zqx/pictures/bytes/HeaderReaders.h"

namespace zqx::pictures {

namespace {

enum Marker : std::uint64_t {
    FIRST_FRAME = 0xC0,
    HUFFMAN_TABLES = 0xC4,
    EXTENSION = 0xC8,
    ARITHMETIC_CONDITIONING = 0xCC,
    LAST_FRAME = 0xCF,
    START_OF_SCAN = 0xDA,
    APP1 = 0xE1,
    APP2 = 0xE2,
};

bool beginsFrame(std::uint64_t marker) {
    return marker >= FIRST_FRAME && marker <= LAST_FRAME && marker != HUFFMAN_TABLES && marker != EXTENSION &&
           marker != ARITHMETIC_CONDITIONING;
}

void noteLoss(Header& header, const char* what) {
    for (const std::string& known : header.lost) {
        if (known == what) {
            return;
        }
    }
    header.lost.emplace_back(what);
}

bool contains(std::string_view text, std::string_view words) {
    return text.find(words) != std::string_view::npos;
}

/// A broken Exif block is no reason to give up the rest of the header.
int readExifOrientation(ByteReader& reader) {
    constexpr std::uint64_t SIGNATURE_SIZE = 6;
    try {
        return readTiffOrientation(reader, reader.place() + SIGNATURE_SIZE);
    } catch (const NoMoreBytes&) {
        return 1;
    }
}

/// Notes the orientation, and content that would be lost. @param reader at the content of an application segment
void noteExtras(std::uint64_t marker, ByteReader& reader, std::size_t size, Header& header) {
    using namespace std::string_view_literals;
    constexpr std::size_t SIGNATURE_SIZE = 40;
    const std::string signature = reader.peek(std::min(size, SIGNATURE_SIZE));
    if (marker == APP1 && signature.starts_with("Exif\0\0"sv)) {
        header.orientation = readExifOrientation(reader);
    } else if (marker == APP1 && signature.starts_with("http://ns.adobe.com/xmp/extension/\0"sv)) {
        noteLoss(header, "extended XMP");
    } else if (marker == APP1 && signature.starts_with("http://ns.adobe.com/xap/1.0/\0"sv)) {
        const std::string packet = reader.peek(size);
        if (contains(packet, "http://ns.adobe.com/hdr-gain-map/") || contains(packet, "HDRGainMap")) {
            noteLoss(header, "a gain map");
        }
    } else if (marker == APP2 && signature.starts_with("urn:iso:std:iso:ts:21496:-1\0"sv)) {
        noteLoss(header, "a gain map");
    } else if (marker == APP2 && signature.starts_with("MPF\0"sv)) {
        noteLoss(header, "further pictures behind the first");
    }
}

/// The next marker. Any number of fill bytes may precede it.
std::uint64_t takeMarker(ByteReader& reader) {
    reader.expect("\xFF");
    std::uint64_t marker = reader.big(1);
    while (marker == 0xFF) {
        marker = reader.big(1);
    }
    return marker;
}

} // namespace

void readJpegHeader(ByteReader& reader, Header& header) {
    constexpr std::uint64_t LENGTH_SIZE = 2;
    reader.expect("\xFF\xD8");
    for (int i = 0; i < MOST_PARTS; ++i) {
        const std::uint64_t marker = takeMarker(reader);
        if (marker < FIRST_FRAME || marker == START_OF_SCAN) {
            return;
        }
        const std::uint64_t segment = reader.place();
        const std::uint64_t length = reader.big(LENGTH_SIZE);
        if (length < LENGTH_SIZE) {
            return;
        }
        if (beginsFrame(marker)) {
            const std::uint64_t bits = reader.big(1);
            const std::uint64_t height = reader.big(2);
            const std::uint64_t width = reader.big(2);
            setPixels(header, width, height, reader.big(1), bits);
        } else if (marker == APP1 || marker == APP2) {
            noteExtras(marker, reader, static_cast<std::size_t>(length - LENGTH_SIZE), header);
        }
        reader.seek(segment + length);
    }
}

} // namespace zqx::pictures
