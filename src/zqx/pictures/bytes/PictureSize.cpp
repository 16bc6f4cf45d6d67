// Headers of picture files. FreeImage reads most of them; what it cannot read without the pixels is read here, as far
// as it is simple.
#include "zqx/pictures/bytes/PictureSize.h"

#include <array>
#include <span>
#include <string_view>

#include "zqx/pictures/codecs/freeimage/FreeImageDecoder.h"
#include "zqx/pictures/files/InputFile.h"

namespace zqx::pictures {

namespace {

/// Thrown where a header ends early or is none. What to say of such a file is the decoder's matter.
struct NoHeader {};

/// Numbers of a file, one after the other. A seek beyond the end shows when something is read there.
class HeaderReader {
public:
    HeaderReader(InputFile& file, std::uint64_t place) : mFile(file), mPlace(place) {}

    std::uint64_t place() const { return mPlace; }
    void skip(std::uint64_t count) { mPlace += count; }

    std::uint32_t big(unsigned bytes) {
        std::uint32_t value = 0;
        for (const unsigned char byte : take(bytes)) {
            value = value << 8U | byte;
        }
        return value;
    }

    std::uint32_t little(unsigned bytes) {
        std::uint32_t value = 0;
        unsigned shift = 0;
        for (const unsigned char byte : take(bytes)) {
            value |= std::uint32_t{byte} << shift;
            shift += 8;
        }
        return value;
    }

    void expect(std::string_view bytes) {
        for (const char byte : bytes) {
            if (big(1) != static_cast<unsigned char>(byte)) {
                throw NoHeader();
            }
        }
    }

private:
    std::span<const unsigned char> take(unsigned bytes) {
        mBytes = mFile.readAt(mPlace, bytes);
        if (mBytes.size() != bytes) {
            throw NoHeader();
        }
        mPlace += bytes;
        return {reinterpret_cast<const unsigned char*>(mBytes.data()), bytes};
    }

    InputFile& mFile;
    std::uint64_t mPlace;
    std::string mBytes;
};

/// A file may have any number of blocks before the one that is looked for.
constexpr int MAX_BLOCKS = 4096;

void skipGifExtension(HeaderReader& reader) {
    reader.skip(1); // what it is about
    for (int i = 0; i < MAX_BLOCKS; ++i) {
        const std::uint32_t length = reader.big(1);
        if (length == 0) {
            return;
        }
        reader.skip(length);
    }
    throw NoHeader();
}

/// The first frame's size, which is what the decoder makes. The screen's in the header need not have to do with it.
PictureSize readGif(HeaderReader reader) {
    reader.expect("GIF8");
    reader.skip(6);
    const std::uint32_t flags = reader.big(1);
    reader.skip(2);
    if ((flags & 0x80U) != 0) {
        reader.skip(3U << ((flags & 7U) + 1));
    }
    for (int i = 0; i < MAX_BLOCKS; ++i) {
        const std::uint32_t kind = reader.big(1);
        if (kind == '!') {
            skipGifExtension(reader);
        } else if (kind == ',') {
            reader.skip(4);
            const std::uint32_t width = reader.little(2);
            return {width, reader.little(2), 8};
        } else {
            break;
        }
    }
    throw NoHeader();
}

PictureSize readDds(HeaderReader reader) {
    reader.expect("DDS ");
    reader.skip(8);
    const std::uint32_t height = reader.little(4);
    return {reader.little(4), height, 32};
}

PictureSize readSgi(HeaderReader reader) {
    reader.expect("\x01\xDA");
    reader.skip(1);
    const std::uint32_t bytesPerChannel = reader.big(1);
    reader.skip(2);
    const std::uint32_t width = reader.big(2);
    const std::uint32_t height = reader.big(2);
    return {width, height, 8 * bytesPerChannel * reader.big(2)};
}

/// Seven bits a byte, the last one without the eighth.
std::uint32_t readVariable(HeaderReader& reader) {
    std::uint32_t value = 0;
    for (int i = 0; i < 4; ++i) {
        const std::uint32_t byte = reader.big(1);
        value = value << 7U | (byte & 0x7FU);
        if ((byte & 0x80U) == 0) {
            return value;
        }
    }
    throw NoHeader();
}

PictureSize readWbmp(HeaderReader reader) {
    const std::uint32_t type = readVariable(reader);
    const std::uint32_t extensions = reader.big(1);
    if (type != 0 || (extensions & 0x80U) != 0) {
        throw NoHeader();
    }
    const std::uint32_t width = readVariable(reader);
    return {width, readVariable(reader), 1};
}

/// ISO/IEC 15444-1, A.5.1: the reference grid, of which the picture is what lies right of and below its offset.
PictureSize readCodestream(HeaderReader reader) {
    reader.expect("\xFF\x4F\xFF\x51");
    reader.skip(4);
    const std::uint32_t right = reader.big(4);
    const std::uint32_t bottom = reader.big(4);
    const std::uint32_t left = reader.big(4);
    const std::uint32_t top = reader.big(4);
    reader.skip(16);
    const std::uint32_t channels = reader.big(2);
    const std::uint32_t depth = (reader.big(1) & 0x7FU) + 1;
    if (left > right || top > bottom) {
        throw NoHeader();
    }
    return {right - left, bottom - top, channels * (depth > 8 ? 16U : 8U)};
}

/// The codestream's size counts, not that of the file's own header: it is what gets decoded.
PictureSize readJp2(HeaderReader reader) {
    constexpr std::uint32_t CODESTREAM = 0x6A703263; // "jp2c"
    for (int i = 0; i < MAX_BLOCKS; ++i) {
        const std::uint64_t start = reader.place();
        std::uint64_t length = reader.big(4);
        const std::uint32_t type = reader.big(4);
        if (length == 1) {
            length = std::uint64_t{reader.big(4)} << 32U;
            length |= reader.big(4);
        }
        if (type == CODESTREAM) {
            return readCodestream(reader);
        }
        if (length < reader.place() - start) { // 0 is a box up to the end of the file
            break;
        }
        reader.skip(length - (reader.place() - start));
    }
    throw NoHeader();
}

using OwnReader = PictureSize (*)(HeaderReader);

OwnReader ownReaderOf(FileFormat format) {
    switch (format) {
    case FileFormat::DDS: return readDds;
    case FileFormat::GIF: return readGif;
    case FileFormat::J2K: return readCodestream;
    case FileFormat::JP2: return readJp2;
    case FileFormat::SGI: return readSgi;
    case FileFormat::WBMP: return readWbmp;
    default: return nullptr;
    }
}

} // namespace

std::optional<PictureSize> sizeFromHeader(InputFile& file, FileFormat format) {
    if (const OwnReader read = ownReaderOf(format)) {
        try {
            return read(HeaderReader(file, 0));
        } catch (const NoHeader&) {
            return std::nullopt;
        }
    }
    return sizeByFreeImage(file, format);
}

} // namespace zqx::pictures
