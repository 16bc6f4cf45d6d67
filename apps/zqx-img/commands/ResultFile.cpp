// Writing what previews and charts are.
#include "commands/ResultFile.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "zqx/pictures/codecs/Encode.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/files/InputFile.h"

namespace zqx::app {

using namespace pictures;

void checkResultFile(const std::string& name, const std::string& input) {
    static_cast<void>(outputFormat(name));
    std::error_code failure;
    if (std::filesystem::equivalent(toPath(name), toPath(input), failure)) {
        throw UsageError(name, "is the picture itself, which would be lost; name another file");
    }
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
