// FreeImage's tags are untyped memory: nothing about them is trusted except the length that they state.
#include "zqx/pictures/codecs/freeimage/BitmapMetadata.h"

#include <memory>
#include <string_view>

namespace zqx::pictures {

namespace {

/// Some programs store Exif and IPTC in PNG comments as hexadecimal digits. These blocks are handled elsewhere.
bool isBlockInDisguise(std::string_view keyword) {
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

std::string getComments(FIBITMAP* bitmap) {
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

} // namespace

Metadata getMetadata(FIBITMAP* bitmap) {
    Metadata metadata;
    const FIICCPROFILE* profile = FreeImage_GetICCProfile(bitmap);
    if (profile != nullptr && profile->data != nullptr && profile->size > 0) {
        const BYTE* bytes = static_cast<const BYTE*>(profile->data);
        metadata.icc.assign(bytes, bytes + profile->size);
    }
    metadata.comments = getComments(bitmap);
    metadata.resolution = {FreeImage_GetDotsPerMeterX(bitmap), FreeImage_GetDotsPerMeterY(bitmap)};
    return metadata;
}

void attachMetadata(FIBITMAP* bitmap, const Metadata& metadata) {
    FreeImage_SetDotsPerMeterX(bitmap, metadata.resolution.x);
    FreeImage_SetDotsPerMeterY(bitmap, metadata.resolution.y);
    for (const auto& [keyword, text] : commentsIn(metadata.comments)) {
        setComment(bitmap, keyword, text);
    }
    if (!metadata.icc.empty()) {
        std::vector<BYTE> profile = metadata.icc; // FreeImage copies it, but its parameter is not const
        FreeImage_CreateICCProfile(bitmap, profile.data(), static_cast<long>(profile.size()));
    }
}

} // namespace zqx::pictures
