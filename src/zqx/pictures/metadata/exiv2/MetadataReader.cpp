// Reading metadata with Exiv2, which knows far more of it than the picture decoders do and is less easily hurt by it.
#include "zqx/pictures/metadata/exiv2/MetadataReader.h"

#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>

#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/metadata/Orientation.h"
#include "zqx/pictures/metadata/exiv2/ExifTags.h"
#include "zqx/pictures/metadata/exiv2/Exiv2Library.h"
#include "zqx/pictures/metadata/exiv2/SourceIo.h"

namespace zqx::pictures {

namespace {

constexpr std::size_t LARGEST_BLOCK = std::size_t{64} << 20;

bool hasMetadata(FileFormat format) {
    switch (format) {
    case FileFormat::JPEG:
    case FileFormat::PNG:
    case FileFormat::TIFF:
    case FileFormat::WEBP:
    case FileFormat::JP2:
    case FileFormat::PSD:
    case FileFormat::RAW: return true;
    default: return false;
    }
}

/// Does what may fail with one kind of metadata, and warns where it did or where the block is too large.
template <typename Block>
Block readBlock(const std::string& name, const char* kind, const std::function<Block()>& read) {
    try {
        Block block = read();
        if (block.size() <= LARGEST_BLOCK) {
            if (block.empty() && hasComplaint(kind)) {
                warn(name, std::string("its ") + kind + " cannot be read and is left out");
            }
            return block;
        }
        warn(name, std::string("its ") + kind + " is larger than 64 MiB and is left out");
    } catch (const std::exception& failure) {
        warn(name, std::string("its ") + kind + " cannot be read (" + getMessage(failure) + ") and is left out");
    }
    return {};
}

std::vector<unsigned char> getExif(Exiv2::Image& image, FileFormat format, int orientation) {
    Exiv2::ExifData& tags = image.exifData();
    keepDescription(tags, orientation);
    if (format == FileFormat::TIFF && !tellSomething(tags)) {
        return {}; // every TIFF file has tags, which does not make them Exif
    }
    return encodeExif(tags, image.byteOrder());
}

std::vector<unsigned char> getIptc(Exiv2::Image& image) {
    return image.iptcData().empty() ? std::vector<unsigned char>()
                                    : getBytes(Exiv2::IptcParser::encode(image.iptcData()));
}

std::string getXmp(Exiv2::Image& image, int orientation) {
    Exiv2::XmpData& properties = image.xmpData();
    // The properties', not the image's, which for TIFF is none and for others is written anew.
    std::string packet = properties.xmpPacket();
    const long before = properties.count();
    keepDescription(properties, orientation);
    if (properties.empty()) {
        return {};
    }
    const bool changed = properties.count() != before || orientation != UPRIGHT;
    if ((changed || packet.empty()) && Exiv2::XmpParser::encode(packet, properties) != 0) {
        throw std::runtime_error("it cannot be encoded");
    }
    return packet;
}

/// The parts of a damaged file that could be read are kept.
void parse(Exiv2::Image& image, const std::string& name) {
    forgetComplaints();
    try {
        image.readMetadata();
    } catch (const std::exception& failure) {
        warn(name, "not all of its metadata can be read (" + getMessage(failure) + "); the rest is left out");
    }
}

FileMetadata read(Exiv2::Image& image, const std::string& name, FileFormat format) {
    parse(image, name);
    FileMetadata result;
    result.orientation = getOrientation(image.exifData());
    result.blocks.icc =
        readBlock<std::vector<unsigned char>>(name, "colour profile", [&] { return getProfile(image); });
    result.blocks.exif =
        readBlock<std::vector<unsigned char>>(name, "Exif", [&] { return getExif(image, format, result.orientation); });
    result.resolution = getResolution(image.exifData());
    result.blocks.iptc = readBlock<std::vector<unsigned char>>(name, "IPTC", [&] { return getIptc(image); });
    result.blocks.xmp = readBlock<std::string>(name, "XMP", [&] { return getXmp(image, result.orientation); });
    return result;
}

} // namespace

FileMetadata readByExiv2(ByteSource& file, FileFormat format) {
    if (!hasMetadata(format)) {
        return {};
    }
    prepareExiv2();
    try {
        const std::unique_ptr<Exiv2::Image> image = openImage(file);
        return read(*image, file.name(), format);
    } catch (const std::exception& failure) {
        warn(file.name(), "its metadata cannot be read (" + getMessage(failure) + ") and is left out");
    }
    return {};
}

} // namespace zqx::pictures
