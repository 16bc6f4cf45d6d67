// From a file to a picture: limits first, then pixels, then what travels beside them.
#include "zqx/pictures/codecs/Decode.h"

#include <utility>

#include "zqx/pictures/codecs/Limits.h"
#include "zqx/pictures/codecs/Metadata.h"
#include "zqx/pictures/codecs/freeimage/FreeImageDecoder.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/isolation/IsolatedDecoder.h"
#include "zqx/pictures/metadata/InstalledCodec.h"
#include "zqx/pictures/metadata/Orientation.h"

namespace zqx::pictures {

namespace {

void warnOfWhatIsLost(const std::string& name, const Header& header) {
    if (header.info.severalPictures) {
        warn(name, "holds several pictures, of which only the first is used");
    }
    for (const std::string& what : header.lost) {
        warn(name, "holds " + what + ", which cannot be carried over");
    }
}

} // namespace

Picture readPicture(const std::string& name, const ReadOptions& options) {
    PictureFile file(name, options.limits);
    return readPicture(file, options);
}

Picture readPicture(PictureFile& file, const ReadOptions& options) {
    return options.isolate.value_or(false) ? decodeIsolated(file, options) : decodePicture(file, options.limits);
}

HeaderInfo examinePicture(const std::string& name) {
    InputFile file = openPicture(name);
    const HeaderInfo info = probe(file).info;
    if (info.format == FileFormat::UNKNOWN) {
        throw Error(name, "is not a picture in a known format");
    }
    return info;
}

Picture decodePicture(PictureFile& file, const Limits& limits, const HeaderListener& listener) {
    identify(file, limits, listener);
    warnOfWhatIsLost(file.name(), file.header);
    Picture picture = decodeByFreeImage(file.input, file.header, limits);
    FileMetadata source = readMetadata(file.input, file.header);
    if (file.header.info.format != FileFormat::RAW) { // whose decoder turns them itself
        turnUpright(picture, source.orientation);
    }
    completeMetadata(source, picture.metadata);
    picture.metadata = std::move(source.blocks);
    return picture;
}

void identify(PictureFile& file, const Limits& limits, const HeaderListener& listener) {
    const auto tell = [&](const HeaderInfo& info) {
        if (listener) {
            listener(info);
        }
    };
    HeaderInfo known;
    known.format = detectFormat(file.input);
    tell(known);
    if (known.format != file.header.info.format || !isProbed(known.format)) {
        file.header = readHeader(file.input, known.format);
        checkPictureSize(file.name(), file.header.info.width, file.header.info.height, limits);
    }
    tell(file.header.info);
}

} // namespace zqx::pictures
