/// @file
/// Who reads and writes Exif, IPTC and XMP.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <zqx/pictures/ByteSource.h>
#include <zqx/pictures/Export.h>
#include <zqx/pictures/FileFormat.h>
#include <zqx/pictures/Metadata.h>

namespace zqx::pictures {

/// What a file says beside its pixels.
/// @ingroup pictures
struct FileMetadata {
    Metadata blocks;                      ///< for the upright picture, and without what is true of this file only
    int orientation = 1;                  ///< how the stored picture lies, as Exif numbers it; 1 is upright
    std::optional<Resolution> resolution; ///< by Exif, for the upright picture
};

/// One thing that Exif tells about how a picture was taken.
/// @ingroup pictures
struct ExifField {
    std::string label; ///< for people: "exposure time"
    std::string key;   ///< for programs: "exposureTime"
    std::string value; ///< as people write it, without control characters: "1/60 s"
};

/// What people want to know of an Exif block.
/// @ingroup pictures
struct ExifSummary {
    std::vector<ExifField> fields; ///< camera, lens, time and exposure, as far as they are there
    bool hasPosition = false;      ///< tells where the picture was taken
};

/// Takes the bytes of a whole file.
/// @ingroup pictures
using FileConsumer = std::function<void(std::string_view bytes)>;

/// Reads and writes the blocks of metadata that picture decoders leave alone: Exif, IPTC, XMP, and the colour profiles
/// of some formats. This library has none of its own; zqx-img brings one that is made with Exiv2.
///
/// Its methods are called by any number of threads at once. Failures are warnings: a picture is not lost over them.
/// @ingroup pictures
class ZQX_PICTURES_EXPORT MetadataCodec {
public:
    MetadataCodec() = default;
    MetadataCodec(const MetadataCodec&) = delete;
    MetadataCodec& operator=(const MetadataCodec&) = delete;
    virtual ~MetadataCodec();

    /// Reads a file's metadata. What is damaged or beyond measure is left out with a warning.
    /// @param file the open file
    /// @param format what the file is
    virtual FileMetadata read(ByteSource& file, FileFormat format) = 0;

    /// Tells what an Exif block says about how the picture was taken.
    /// @param exif a block as in Metadata; may be empty
    /// @throws std::exception when it is damaged
    virtual ExifSummary summarize(const std::vector<unsigned char>& exif) = 0;

    /// Hands an encoded picture on with the metadata in it that its format can hold, and warns of what it cannot.
    /// @param name the file to be written, for warnings
    /// @param encoded the picture, which has profile, resolution and comments already
    /// @param metadata what to put in
    /// @param width of the picture in pixels
    /// @param height of the picture in pixels
    /// @param consumer is called once
    virtual void write(const std::string& name, std::string_view encoded, const Metadata& metadata, unsigned width,
                       unsigned height, const FileConsumer& consumer) = 0;
};

/// Installs a codec for the process, or removes it. To be called before other threads use the library.
/// @ingroup pictures
ZQX_PICTURES_EXPORT void setMetadataCodec(std::unique_ptr<MetadataCodec> codec);

} // namespace zqx::pictures
