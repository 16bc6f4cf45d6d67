// The part of the metadata that FreeImage reads and writes. Exif, IPTC and XMP are not among it.
#include "zqx/pictures/codecs/Metadata.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

#include "zqx/pictures/files/Error.h"

namespace zqx::pictures {

namespace {

constexpr std::size_t PROFILE_HEADER_SIZE = 128;

/// True for what begins as ICC.1 has it: with its own size, and the signature of profiles.
bool isProfile(const std::vector<BYTE>& block) {
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

/// Profiles describe one colour space and one encoding of it; on other pixels they do harm.
bool profileFits(const std::vector<BYTE>& profile, const Picture& original, Form form) {
    constexpr std::size_t COLOR_SPACE_OFFSET = 16;
    return isFloat(form) == isFloat(original.stored) &&
           std::memcmp(profile.data() + COLOR_SPACE_OFFSET, hasColor(form) ? "RGB " : "GRAY", 4) == 0;
}

/// Some programs hide Exif and IPTC in PNG comments, as hexadecimal digits. Those blocks travel in their own way.
bool isBlockInDisguise(const std::string& keyword) {
    return keyword.starts_with("Raw profile type ");
}

struct TagDeleter {
    void operator()(FITAG* tag) const { FreeImage_DeleteTag(tag); }
};

void setComment(FIBITMAP* bitmap, const std::string& keyword, const std::string& text) {
    const std::unique_ptr<FITAG, TagDeleter> tag(FreeImage_CreateTag());
    const auto size = static_cast<DWORD>(text.size() + 1);
    if (tag && FreeImage_SetTagKey(tag.get(), keyword.c_str()) && FreeImage_SetTagType(tag.get(), FIDT_ASCII) &&
        FreeImage_SetTagLength(tag.get(), size) && FreeImage_SetTagCount(tag.get(), size) &&
        FreeImage_SetTagValue(tag.get(), text.c_str())) {
        FreeImage_SetMetadata(FIMD_COMMENTS, bitmap, keyword.c_str(), tag.get());
    }
}

std::string commentsOf(FIBITMAP* bitmap) {
    std::string block;
    FITAG* tag = nullptr;
    FIMETADATA* search = FreeImage_FindFirstMetadata(FIMD_COMMENTS, bitmap, &tag);
    for (BOOL found = search != nullptr; found; found = FreeImage_FindNextMetadata(search, &tag)) {
        const char* keyword = FreeImage_GetTagKey(tag);
        const auto* text = static_cast<const char*>(FreeImage_GetTagValue(tag));
        if (keyword != nullptr && text != nullptr && FreeImage_GetTagType(tag) == FIDT_ASCII &&
            !isBlockInDisguise(keyword)) {
            const std::string_view value(text, FreeImage_GetTagLength(tag));
            block.append(keyword).append(1, '\0').append(value.substr(0, value.find('\0'))).append(1, '\0');
        }
    }
    FreeImage_FindCloseMetadata(search);
    return block;
}

/// Takes what is before the next zero byte off a text.
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

void completeFrom(FIBITMAP* bitmap, Metadata& metadata) {
    const FIICCPROFILE* profile = FreeImage_GetICCProfile(bitmap);
    if (profile != nullptr && profile->data != nullptr && profile->size > 0) {
        const BYTE* bytes = static_cast<const BYTE*>(profile->data);
        metadata.icc.assign(bytes, bytes + profile->size);
    }
    metadata.comments = commentsOf(bitmap);
}

void completeResolution(FIBITMAP* bitmap, const SourceMetadata& source) {
    constexpr unsigned DEFAULT = 2835; // 72 dots per inch, for files without a resolution that FreeImage reads
    if (source.dotsPerMeterX > 0 && FreeImage_GetDotsPerMeterX(bitmap) == DEFAULT &&
        FreeImage_GetDotsPerMeterY(bitmap) == DEFAULT) {
        FreeImage_SetDotsPerMeterX(bitmap, source.dotsPerMeterX);
        FreeImage_SetDotsPerMeterY(bitmap, source.dotsPerMeterY);
    }
}

void carryOver(const std::string& name, FREE_IMAGE_FORMAT format, FIBITMAP* bitmap, Form form, const Picture& original,
               const Metadata& metadata) {
    FreeImage_SetDotsPerMeterX(bitmap, FreeImage_GetDotsPerMeterX(original.bitmap.get()));
    FreeImage_SetDotsPerMeterY(bitmap, FreeImage_GetDotsPerMeterY(original.bitmap.get()));
    for (const auto& [keyword, text] : commentsIn(metadata.comments)) {
        setComment(bitmap, keyword, text);
    }
    if (metadata.icc.empty()) {
        return;
    }
    if (!isProfile(metadata.icc)) {
        warn(name, "the colour profile of the source is damaged and is left out");
        return;
    }
    if (!FreeImage_FIFSupportsICCProfiles(format)) {
        warn(name, "this format cannot hold a colour profile, that of the source is left out");
        return;
    }
    if (!profileFits(metadata.icc, original, form)) {
        warn(name, "the colour profile of the source does not fit this file and is left out");
        return;
    }
    std::vector<BYTE> profile = metadata.icc;
    FreeImage_CreateICCProfile(bitmap, profile.data(), static_cast<long>(profile.size()));
}

} // namespace zqx::pictures
