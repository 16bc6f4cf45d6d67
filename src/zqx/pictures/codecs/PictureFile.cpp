// What can be refused before a decoder sees a file.
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

std::optional<HeaderInfo> findHeader(const std::string& name) {
    try {
        InputFile file = openPicture(name);
        const HeaderInfo info = probe(file).info;
        return info.hasSize() ? std::optional(info) : std::nullopt;
    } catch (const Error&) {
        return std::nullopt;
    }
}

void checkReplacement(const std::string& input, const std::string& output) {
    std::error_code failure;
    if (!std::filesystem::equivalent(toPath(input), toPath(output), failure)) {
        return;
    }
    InputFile file = openPicture(input);
    if (probe(file).info.severalPictures) {
        throw Error(output, "holds several pictures, of which only the first would be left; write to another file");
    }
}

} // namespace zqx::pictures
