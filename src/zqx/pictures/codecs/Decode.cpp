// From a file to a picture: limits first, then pixels, then what travels beside them.
#include "zqx/pictures/codecs/Decode.h"

#include <utility>

#include "zqx/pictures/codecs/Metadata.h"
#include "zqx/pictures/codecs/freeimage/FreeImageDecoder.h"
#include "zqx/pictures/isolation/IsolatedDecoder.h"
#include "zqx/pictures/metadata/MetadataReader.h"

namespace zqx::pictures {

Picture loadPicture(const std::string& name, const ReadOptions& options) {
    return options.isolate.value_or(false) ? decodeIsolated(name, options) : decodePicture(name, options.limits);
}

Findings examine(InputFile& file, const Limits& limits, const FindingsListener& listener) {
    const auto tell = [&](const Findings& findings) {
        if (listener) {
            listener(findings);
        }
    };
    checkFileSize(file.name(), file.size(), limits);
    Findings findings;
    findings.format = detectFormat(file);
    tell(findings);
    findings.size = sizeFromHeader(file, findings.format);
    if (findings.size) {
        checkPictureSize(file.name(), *findings.size, limits);
    }
    tell(findings);
    return findings;
}

Picture decodePicture(const std::string& name, const Limits& limits, const FindingsListener& listener) {
    InputFile file = openPicture(name);
    const FileFormat format = examine(file, limits, listener).format;
    Picture picture = decodeByFreeImage(file, format, limits);
    SourceMetadata source = readMetadata(name, format);
    if (format != FileFormat::RAW) { // whose decoder turns them itself
        turnUpright(picture, source.orientation);
    }
    completeMetadata(source, picture.metadata);
    picture.metadata = std::move(source.blocks);
    return picture;
}

} // namespace zqx::pictures
