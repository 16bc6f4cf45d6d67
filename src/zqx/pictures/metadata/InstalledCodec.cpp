// The metadata codec of the process, and the fallback without one.
#include "zqx/pictures/metadata/InstalledCodec.h"

#include <utility>

#include "zqx/pictures/files/Error.h"

namespace zqx::pictures {

namespace {

std::unique_ptr<MetadataCodec>& installed() {
    static std::unique_ptr<MetadataCodec>& codec = *new std::unique_ptr<MetadataCodec>; // outlives all threads
    return codec;
}

bool hasBlocks(const Metadata& metadata) {
    return !metadata.exif.empty() || !metadata.iptc.empty() || !metadata.xmp.empty();
}

} // namespace

MetadataCodec::~MetadataCodec() = default;

void setMetadataCodec(std::unique_ptr<MetadataCodec> codec) {
    installed() = std::move(codec);
}

FileMetadata readMetadata(ByteSource& file, const Header& header) {
    if (installed()) {
        return installed()->read(file, header.info.format);
    }
    FileMetadata metadata;
    metadata.orientation = header.orientation;
    return metadata;
}

ExifSummary summarizeExif(const std::vector<unsigned char>& exif) {
    return installed() && !exif.empty() ? installed()->summarize(exif) : ExifSummary();
}

void writeWithMetadata(const std::string& name, std::string_view encoded, const Metadata& metadata, unsigned width,
                       unsigned height, const FileConsumer& consumer) {
    if (installed() && hasBlocks(metadata)) {
        installed()->write(name, encoded, metadata, width, height, consumer);
        return;
    }
    if (hasBlocks(metadata)) {
        warn(name, "Exif, IPTC and XMP are left out because no metadata codec is installed");
    }
    consumer(encoded);
}

} // namespace zqx::pictures
