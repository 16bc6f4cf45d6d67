// The readers of single formats. Each is handed a header without numbers and fills in those of its file.
#pragma once

#include "zqx/pictures/bytes/ByteReader.h"
#include "zqx/pictures/bytes/Probe.h"

namespace zqx::pictures {

/// Files have a few dozen segments, boxes, chunks or directory entries. Whoever has more does not mean well.
constexpr int MOST_PARTS = 4096;

/// All @throws NoMoreBytes where the file ends early or is none of theirs; what was found before stays.
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

/// Goes behind the comma that announces the first frame of a GIF file. @throws NoMoreBytes where there is none
void findFirstGifFrame(ByteReader& reader);
/// Passes over a table of colours, if the flags announce one.
void skipGifColors(ByteReader& reader, std::uint64_t flags);

/// The orientation in a TIFF structure that begins at a place of the file, as Exif blocks do; 1 where it says none.
int readTiffOrientation(ByteReader& reader, std::uint64_t base);

/// Fills in the size and what a pixel is.
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
