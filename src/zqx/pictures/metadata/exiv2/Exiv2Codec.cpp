// The metadata codec that programs install.
#include "zqx/pictures/metadata/exiv2/Exiv2Codec.h"

#include <memory>

#include "zqx/pictures/MetadataCodec.h"
#include "zqx/pictures/metadata/exiv2/ExifSummary.h"
#include "zqx/pictures/metadata/exiv2/Exiv2Library.h"
#include "zqx/pictures/metadata/exiv2/MetadataReader.h"
#include "zqx/pictures/metadata/exiv2/MetadataWriter.h"

namespace zqx::pictures {

namespace {

class Exiv2Codec final : public MetadataCodec {
public:
    FileMetadata read(ByteSource& file, FileFormat format) override { return readByExiv2(file, format); }

    ExifSummary summarize(const std::vector<unsigned char>& exif) override { return summarizeByExiv2(exif); }

    void write(const std::string& name, std::string_view encoded, const Metadata& metadata, unsigned width,
               unsigned height, const FileConsumer& consumer) override {
        writeByExiv2(name, encoded, metadata, width, height, consumer);
    }
};

} // namespace

void installExiv2() {
    setMetadataCodec(std::make_unique<Exiv2Codec>());
}

std::string exiv2Version() {
    return Exiv2::versionString();
}

} // namespace zqx::pictures
