// The table of header readers, and the readers of the simple formats.
#include "zqx/pictures/bytes/Probe.h"

#include <algorithm>
#include <cctype>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "zqx/pictures/bytes/HeaderReaders.h"

namespace zqx::pictures {

namespace {

void readBmp(ByteReader& reader, Header& header) {
    constexpr std::uint64_t CORE_HEADER = 12;
    reader.expect("BM");
    reader.seek(14);
    const std::size_t size = reader.little(4) == CORE_HEADER ? 2 : 4;
    const std::uint64_t width = reader.little(size);
    const auto height = static_cast<std::int32_t>(reader.little(size)); // negative: top first
    reader.skip(2);
    const std::uint64_t bitsPerPixel = reader.little(2);
    setPixels(header, width, static_cast<std::uint64_t>(std::abs(std::int64_t{height})), bitsPerPixel == 32 ? 4 : 3, 8);
}

/// A file has any number of icons, of which the first one is decoded. A side of 0 means 256.
void readIco(ByteReader& reader, Header& header) {
    reader.skip(4);
    header.info.severalPictures = reader.little(2) > 1;
    const auto side = [&reader] {
        const std::uint64_t pixels = reader.little(1);
        return pixels == 0 ? 256 : pixels;
    };
    const std::uint64_t width = side();
    setPixels(header, width, side(), 4, 8);
}

void readDds(ByteReader& reader, Header& header) {
    reader.expect("DDS ");
    reader.skip(8);
    const std::uint64_t height = reader.little(4);
    setPixels(header, reader.little(4), height, 4, 8);
}

void readSgi(ByteReader& reader, Header& header) {
    reader.expect("\x01\xDA");
    reader.skip(1);
    const std::uint64_t bytesPerChannel = reader.big(1);
    reader.skip(2);
    const std::uint64_t width = reader.big(2);
    const std::uint64_t height = reader.big(2);
    setPixels(header, width, height, reader.big(2), 8 * bytesPerChannel);
}

void readPcx(ByteReader& reader, Header& header) {
    reader.skip(3);
    const std::uint64_t bits = reader.little(1);
    const std::uint64_t left = reader.little(2);
    const std::uint64_t top = reader.little(2);
    const std::uint64_t right = reader.little(2);
    const std::uint64_t bottom = reader.little(2);
    if (left <= right && top <= bottom) {
        setPixels(header, right - left + 1, bottom - top + 1, 3, bits);
    }
}

void readRas(ByteReader& reader, Header& header) {
    reader.expect("\x59\xA6\x6A\x95");
    const std::uint64_t width = reader.big(4);
    const std::uint64_t height = reader.big(4);
    setPixels(header, width, height, reader.big(4) == 32 ? 4 : 3, 8);
}

void readCut(ByteReader& reader, Header& header) {
    const std::uint64_t width = reader.little(2);
    setPixels(header, width, reader.little(2), 3, 8);
}

void readTarga(ByteReader& reader, Header& header) {
    reader.skip(12);
    const std::uint64_t width = reader.little(2);
    const std::uint64_t height = reader.little(2);
    setPixels(header, width, height, reader.little(1) == 32 ? 4 : 3, 8);
}

/// A variable-length integer: seven bits per byte, the eighth bit is set in all bytes but the last.
std::uint64_t readVariable(ByteReader& reader) {
    std::uint64_t value = 0;
    for (int i = 0; i < 4; ++i) {
        const std::uint64_t byte = reader.big(1);
        value = value << 7U | (byte & 0x7FU);
        if ((byte & 0x80U) == 0) {
            return value;
        }
    }
    throw NoMoreBytes();
}

void readWbmp(ByteReader& reader, Header& header) {
    const std::uint64_t type = readVariable(reader);
    const std::uint64_t extensions = reader.big(1);
    if (type != 0 || (extensions & 0x80U) != 0) {
        throw NoMoreBytes();
    }
    const std::uint64_t width = readVariable(reader);
    setPixels(header, width, readVariable(reader), 1, 1);
}

// Formats whose headers are text.

constexpr std::uint64_t LARGEST_TEXT_HEADER = 65536;

char nextCharacter(ByteReader& reader) {
    if (reader.place() >= LARGEST_TEXT_HEADER) {
        throw NoMoreBytes();
    }
    return static_cast<char>(reader.big(1));
}

/// Reads the next number after white space and comments, and the character behind it.
std::uint64_t takeNumber(ByteReader& reader) {
    constexpr std::uint64_t TOO_LARGE = std::uint64_t{1} << 40U;
    char c = nextCharacter(reader);
    while (std::isspace(static_cast<unsigned char>(c)) != 0 || c == '#') {
        while (c == '#' && nextCharacter(reader) != '\n') {
        }
        c = nextCharacter(reader);
    }
    std::uint64_t value = 0;
    for (; c >= '0' && c <= '9'; c = nextCharacter(reader)) {
        value = std::min(10 * value + static_cast<std::uint64_t>(c - '0'), TOO_LARGE);
    }
    return value;
}

/// PBM, PGM, PPM ("P1" to "P6") and PFM ("Pf", "PF").
void readPortableMap(ByteReader& reader, Header& header) {
    reader.expect("P");
    const char kind = nextCharacter(reader);
    const std::uint64_t width = takeNumber(reader);
    const std::uint64_t height = takeNumber(reader);
    if (kind == 'f' || kind == 'F') {
        setPixels(header, width, height, kind == 'F' ? 3 : 1, 32);
        return;
    }
    const bool wide = kind != '1' && kind != '4' && takeNumber(reader) > 255;
    setPixels(header, width, height, kind == '3' || kind == '6' ? 3 : 1, wide ? 16 : 8);
}

/// Radiance: an empty line ends the header, followed by "-Y height +X width".
void readRadiance(ByteReader& reader, Header& header) {
    reader.expect("#?");
    for (char last = nextCharacter(reader), c = nextCharacter(reader); last != '\n' || c != '\n';) {
        last = c;
        c = nextCharacter(reader);
    }
    reader.skip(3);
    const std::uint64_t height = takeNumber(reader);
    reader.skip(2);
    setPixels(header, takeNumber(reader), height, 3, 32);
}

struct Signature {
    std::string_view bytes;
    FileFormat format;
};

constexpr Signature SIGNATURES[] = {
    {"\x89PNG\r\n\x1A\n", FileFormat::PNG},
    {"\x8AMNG\r\n\x1A\n", FileFormat::MNG},
    {"\x8BJNG\r\n\x1A\n", FileFormat::JNG},
    {"\xFF\xD8\xFF", FileFormat::JPEG},
    {{"II*\0", 4}, FileFormat::TIFF},
    {{"MM\0*", 4}, FileFormat::TIFF},
    {{"II+\0", 4}, FileFormat::TIFF},
    {{"MM\0+", 4}, FileFormat::TIFF},
    {"BM", FileFormat::BMP},
    {"GIF8", FileFormat::GIF},
    {"8BPS", FileFormat::PSD},
    {"#?", FileFormat::HDR},
    {"v/1\x01", FileFormat::EXR},
    {"\xFF\x4F\xFF\x51", FileFormat::J2K},
    {{"\0\0\0\x0CjP  ", 8}, FileFormat::JP2},
    {"DDS ", FileFormat::DDS},
    {"\x01\xDA", FileFormat::SGI},
    {"\x59\xA6\x6A\x95", FileFormat::RAS},
    {"P1", FileFormat::PBM},
    {"P2", FileFormat::PGM},
    {"P3", FileFormat::PPM},
    {"P4", FileFormat::PBMRAW},
    {"P5", FileFormat::PGMRAW},
    {"P6", FileFormat::PPMRAW},
    {"PF", FileFormat::PFM},
    {"Pf", FileFormat::PFM},
};

using HeaderReader = void (*)(ByteReader&, Header&);

HeaderReader getReader(FileFormat format) {
    switch (format) {
    case FileFormat::BMP: return readBmp;
    case FileFormat::CUT: return readCut;
    case FileFormat::DDS: return readDds;
    case FileFormat::EXR: return readExrHeader;
    case FileFormat::GIF: return readGifHeader;
    case FileFormat::HDR: return readRadiance;
    case FileFormat::ICO: return readIco;
    case FileFormat::J2K: return readCodestreamHeader;
    case FileFormat::JNG: return readJngHeader;
    case FileFormat::JP2: return readJp2Header;
    case FileFormat::JPEG: return readJpegHeader;
    case FileFormat::MNG: return readMngHeader;
    case FileFormat::PBM:
    case FileFormat::PBMRAW:
    case FileFormat::PFM:
    case FileFormat::PGM:
    case FileFormat::PGMRAW:
    case FileFormat::PPM:
    case FileFormat::PPMRAW: return readPortableMap;
    case FileFormat::PCX: return readPcx;
    case FileFormat::PNG: return readPngHeader;
    case FileFormat::PSD: return readPsdHeader;
    case FileFormat::RAS: return readRas;
    case FileFormat::SGI: return readSgi;
    case FileFormat::TARGA: return readTarga;
    case FileFormat::TIFF: return readTiffHeader;
    case FileFormat::WBMP: return readWbmp;
    case FileFormat::WEBP: return readWebpHeader;
    default: return nullptr;
    }
}

FileFormat formatOfContent(InputFile& file) {
    const std::string start = file.readAt(0, 16);
    for (const auto& [signature, format] : SIGNATURES) {
        if (start.starts_with(signature)) {
            return format;
        }
    }
    return start.starts_with("RIFF") && start.substr(8, 4) == "WEBP" ? FileFormat::WEBP : FileFormat::UNKNOWN;
}

} // namespace

bool isProbed(FileFormat format) {
    return getReader(format) != nullptr;
}

Header probeAs(InputFile& file, FileFormat format) {
    Header header;
    header.info.format = format;
    if (const HeaderReader read = getReader(format)) {
        ByteReader reader(file);
        try {
            read(reader, header);
        } catch (const NoMoreBytes&) { // what was found up to there is kept
        }
    }
    return header;
}

Header probe(InputFile& file) {
    const FileFormat named = formatOfName(file.name());
    if (named == FileFormat::RAW) { // their content looks like a TIFF file with a small picture
        return probeAs(file, named);
    }
    const FileFormat format = formatOfContent(file);
    return probeAs(file, format == FileFormat::UNKNOWN ? named : format);
}

} // namespace zqx::pictures
