// Checks that need no decoder.
#include "zqx/pictures/codecs/PictureFile.h"

#include <filesystem>
#include <system_error>
#include <utility>

#include "zqx/pictures/codecs/Limits.h"
#include "zqx/pictures/files/Error.h"

namespace zqx::pictures {

PictureFile::PictureFile(const std::string& name, const Limits& limits) : PictureFile(openPicture(name), limits) {
}

PictureFile::PictureFile(InputFile file, const Limits& limits) : input(std::move(file)) {
    checkFileSize(name(), input.size(), limits);
    header = probe(input);
    checkPictureSize(name(), header.info.width, header.info.height, limits);
}

void checkReplacement(const PictureFile& input, const std::string& output) {
    std::error_code failure;
    if (input.header.info.severalPictures &&
        std::filesystem::equivalent(toPath(input.name()), toPath(output), failure)) {
        throw Error(output, "holds several pictures, of which only the first would be kept; write to another file");
    }
}

} // namespace zqx::pictures
