// Checks names of output pictures and writes them.
#include "commands/ResultFile.h"

#include <utility>

#include <zqx/tools/OutputCheck.h>

#include "zqx/pictures/codecs/Encode.h"
#include "zqx/pictures/files/Error.h"

namespace zqx::app {

using namespace pictures;

void checkResultFile(const std::string& name, const std::vector<std::string>& inputs) {
    static_cast<void>(outputFormat(name));
    tools::checkOutputs(inputs, {{"--output", name}});
    OutputFile::check(name);
}

void writeResultFile(const std::string& name, const img::Image& image, SampleLayout wanted, const Picture& original,
                     const WriteOptions& encoding) {
    const FileFormat format = outputFormat(name);
    const SampleLayout layout = chooseLayout(name, format, wanted);
    PixelBuffer copy(image.getWidth(), image.getHeight(), layout);
    copy.image().convertFrom(image);
    OutputFile file(name);
    encodePicture(file, name, format, std::move(copy), layout, original, encoding);
    file.commit();
}

} // namespace zqx::app
