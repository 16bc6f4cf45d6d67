// writePicture(): writes a picture without adjusting it.
#include <utility>

#include "zqx/pictures/Writer.h"
#include "zqx/pictures/codecs/Alpha.h"
#include "zqx/pictures/codecs/Encode.h"
#include "zqx/pictures/files/Error.h"

namespace zqx::pictures {

namespace {

PixelBuffer makeCopy(const img::Image& image, SampleLayout layout) {
    PixelBuffer copy(image.getWidth(), image.getHeight(), layout);
    copy.image().convertFrom(image);
    return copy;
}

} // namespace

void writePicture(const Picture& picture, const std::string& name, const WriteOptions& options) {
    const FileFormat format = outputFormat(name);
    if (picture.pixels.isEmpty()) {
        throw Error(name, "the picture has no pixels to write");
    }
    const SampleLayout layout = chooseLayout(name, format, picture.stored);
    warnOfLosses(name, picture, layout);
    Picture source; // a copy whose pixels may be changed
    source.pixels = makeCopy(picture.image(), picture.pixels.layout());
    source.stored = picture.stored;
    source.alpha = picture.alpha;
    source.metadata = picture.metadata;
    prepareAlpha(source, format, layout, false);
    PixelBuffer pixels =
        source.pixels.layout() == workingLayout(layout) ? std::move(source.pixels) : makeCopy(source.image(), layout);
    source.pixels.reset();
    OutputFile file(name);
    encodePicture(file, name, format, std::move(pixels), layout, source, options);
    file.commit();
}

} // namespace zqx::pictures
