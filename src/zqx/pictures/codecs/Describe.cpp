// The decoder's view of the pixels and the metadata codec's view of the rest, put together.
#include "zqx/pictures/codecs/Describe.h"

#include <exception>
#include <utility>

#include "zqx/pictures/codecs/Metadata.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/isolation/IsolatedDecoder.h"
#include "zqx/pictures/metadata/InstalledCodec.h"
#include "zqx/text/Cleaning.h"

namespace zqx::pictures {

namespace {

ExifSummary getSummary(const std::string& name, const std::vector<unsigned char>& exif) {
    try {
        return summarizeExif(exif);
    } catch (const std::exception& failure) {
        warn(name, "its Exif cannot be shown (" + text::inOneLine(failure.what()) + ")");
        return {};
    }
}

} // namespace

PictureFacts describePicture(PictureFile& file, const ReadOptions& options) {
    return options.isolate.value_or(false) ? describeIsolated(file, options)
                                           : describePicture(file, options.limits, {});
}

PictureFacts describePicture(PictureFile& file, const Limits& limits, const HeaderListener& listener) {
    identify(file, limits, listener);
    PictureFacts facts;
    facts.format = file.header.info.format;
    facts.pixels = describeByFreeImage(file.input, facts.format);
    facts.metadata = readMetadata(file.input, file.header);
    completeMetadata(facts.metadata, std::exchange(facts.pixels.metadata, {}));
    facts.exif = getSummary(file.name(), facts.metadata.blocks.exif);
    return facts;
}

} // namespace zqx::pictures
