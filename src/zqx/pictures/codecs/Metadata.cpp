// Colour profile, comments and resolution: the metadata that decoders and encoders handle themselves.
#include "zqx/pictures/codecs/Metadata.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <utility>

#include "zqx/pictures/files/Error.h"

namespace zqx::pictures {

namespace {

constexpr std::size_t PROFILE_HEADER_SIZE = 128;

/// Whether a block has the header of an ICC profile (ICC.1): its own size and the profile signature.
bool isProfile(const std::vector<unsigned char>& block) {
    constexpr std::size_t SIGNATURE_OFFSET = 36;
    if (block.size() < PROFILE_HEADER_SIZE || std::memcmp(block.data() + SIGNATURE_OFFSET, "acsp", 4) != 0) {
        return false;
    }
    std::size_t size = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        size = size << 8 | block[i];
    }
    return size == block.size();
}

/// A profile describes one colour space in one encoding; attached to other pixels, it would change their colours.
bool profileFits(const std::vector<unsigned char>& profile, SampleLayout stored, SampleLayout layout) {
    constexpr std::size_t COLOR_SPACE_OFFSET = 16;
    return isFloat(layout) == isFloat(stored) &&
           std::memcmp(profile.data() + COLOR_SPACE_OFFSET, hasColor(layout) ? "RGB " : "GRAY", 4) == 0;
}

/// Why a profile cannot be written to a file; null if it can.
const char* obstacleForProfile(const std::vector<unsigned char>& profile, FileFormat format, SampleLayout layout,
                               SampleLayout stored) {
    if (!isProfile(profile)) {
        return "the colour profile of the source is damaged and is left out";
    }
    if (!holdsColorProfile(format)) {
        return "this format cannot store a colour profile; that of the source is left out";
    }
    if (!profileFits(profile, stored, layout)) {
        return "the colour profile of the source does not apply to this file and is left out";
    }
    return nullptr;
}

/// Removes a zero-terminated word from the front of a text.
std::string takeWord(std::string_view& rest) {
    const std::size_t end = std::min(rest.find('\0'), rest.size());
    std::string word(rest.substr(0, end));
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return word;
}

} // namespace

std::vector<Comment> commentsIn(const std::string& block) {
    std::vector<Comment> comments;
    for (std::string_view rest(block); !rest.empty();) {
        std::string keyword = takeWord(rest);
        comments.push_back({std::move(keyword), takeWord(rest)});
    }
    return comments;
}

void completeMetadata(FileMetadata& source, const Metadata& decoded) {
    Metadata& blocks = source.blocks;
    if (!decoded.icc.empty()) {
        blocks.icc = decoded.icc;
    }
    blocks.comments = decoded.comments;
    const bool toldByExif = source.resolution && decoded.resolution == Resolution();
    blocks.resolution = toldByExif ? *source.resolution : decoded.resolution;
}

Metadata metadataFor(const std::string& name, FileFormat format, SampleLayout layout, SampleLayout stored,
                     Metadata metadata) {
    if (!metadata.icc.empty()) {
        if (const char* obstacle = obstacleForProfile(metadata.icc, format, layout, stored)) {
            warn(name, obstacle);
            metadata.icc.clear();
        }
    }
    return metadata;
}

} // namespace zqx::pictures
