// The header readers of the formats. Each is given an empty header and fills in what its file says.
#pragma once

#include "zqx/pictures/bytes/ByteReader.h"
#include "zqx/pictures/bytes/Probe.h"

namespace zqx::pictures {

/// Real files have a few dozen segments, boxes, chunks or directory entries; one with more than this is probably
/// hostile.
constexpr int MOST_PARTS = 4096;

/// All @throws NoMoreBytes if the file ends early or has another format; what was found up to there is kept.
void readJpegHeader(ByteReader& reader, Header& header);
void readTiffHeader(ByteReader& reader, Header& header);
void readPngHeader(ByteReader& reader, Header& header);
void readMngHeader(ByteReader& reader, Header& header);
void readJngHeader(ByteReader& reader, Header& header);
void readGifHeader(ByteReader& reader, Header& header);
void readWebpHeader(ByteReader& reader, Header& header);
void readPsdHeader(ByteReader& reader, Header& header);
void readExrHeader(ByteReader& reader, Header& header);
void readJp2Header(ByteReader& reader, Header& header);
void readCodestreamHeader(ByteReader& reader, Header& header);

/// Moves past the comma that introduces the first frame of a GIF file. @throws NoMoreBytes if there is none
void findFirstGifFrame(ByteReader& reader);
/// Skips a colour table if the flags announce one.
void skipGifColors(ByteReader& reader, std::uint64_t flags);

/// The orientation in a TIFF structure, such as an Exif block, at an offset in the file; 1 if it gives none.
int readTiffOrientation(ByteReader& reader, std::uint64_t base);

/// Fills in the size and the samples of a pixel, unless they make no sense.
inline void setPixels(Header& header, std::uint64_t width, std::uint64_t height, std::uint64_t channels,
                      std::uint64_t bitsPerChannel) {
    constexpr std::uint64_t LARGEST = 0xFFFFFFFF;
    constexpr std::uint64_t MOST_CHANNELS = 4; // more are not decoded
    constexpr std::uint64_t MOST_BITS = 64;
    if (width == 0 || width > LARGEST || height == 0 || height > LARGEST || channels == 0 || bitsPerChannel == 0 ||
        bitsPerChannel > MOST_BITS) {
        return;
    }
    header.info.width = static_cast<std::uint32_t>(width);
    header.info.height = static_cast<std::uint32_t>(height);
    header.info.channels = static_cast<unsigned>(channels < MOST_CHANNELS ? channels : MOST_CHANNELS);
    header.info.bitsPerChannel = static_cast<unsigned>(bitsPerChannel);
}

} // namespace zqx::pictures
