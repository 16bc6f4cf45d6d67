// The colour profile and the descriptive metadata of a picture on their way into a file.
#include "Metadata.h"

#include <algorithm>
#include <cstring>
#include <span>

#include "Error.h"

namespace zqx::img::app {

namespace {

constexpr WORD UPRIGHT = 1;

/// Finds the orientation entry of the first directory of an Exif block ("Exif", two zeros, then a TIFF header; see Exif
/// 2.3, 4.6) and sets it upright. A block that is not understood is left as it is.
void markUpright(std::span<BYTE> exif) {
    constexpr std::size_t HEADER = 6;
    constexpr std::size_t ENTRY_SIZE = 12;
    constexpr unsigned ORIENTATION_TAG = 0x0112;
    if (exif.size() < HEADER + 8 || std::memcmp(exif.data(), "Exif\0\0", HEADER) != 0) {
        return;
    }
    const std::span<BYTE> tiff = exif.subspan(HEADER);
    const bool bigEndian = tiff[0] == 'M';
    const auto number = [&](std::size_t offset, std::size_t size) {
        std::size_t value = 0;
        for (std::size_t i = 0; i < size; ++i) {
            value = value << 8 | tiff[offset + (bigEndian ? i : size - 1 - i)];
        }
        return value;
    };
    const std::size_t directory = number(4, 4);
    if (directory > tiff.size() - 2) {
        return;
    }
    const std::size_t entries = std::min(number(directory, 2), (tiff.size() - directory - 2) / ENTRY_SIZE);
    for (std::size_t entry = directory + 2; entry < directory + 2 + entries * ENTRY_SIZE; entry += ENTRY_SIZE) {
        if (number(entry, 2) == ORIENTATION_TAG) {
            tiff[entry + 8] = bigEndian ? 0 : UPRIGHT;
            tiff[entry + 9] = bigEndian ? UPRIGHT : 0;
        }
    }
}

/// Tells all metadata of a bitmap that it is upright now: turned twice it would be wrong again.
void markUpright(FIBITMAP* bitmap) {
    FITAG* tag = nullptr;
    if (FreeImage_GetMetadata(FIMD_EXIF_MAIN, bitmap, "Orientation", &tag) && FreeImage_GetTagType(tag) == FIDT_SHORT &&
        FreeImage_GetTagCount(tag) == 1) {
        FreeImage_SetTagValue(tag, &UPRIGHT);
    }
    if (FreeImage_GetMetadata(FIMD_EXIF_RAW, bitmap, "ExifRaw", &tag)) {
        const auto* bytes = static_cast<const BYTE*>(FreeImage_GetTagValue(tag));
        std::vector<BYTE> block(bytes, bytes + FreeImage_GetTagLength(tag));
        markUpright(block);
        FreeImage_SetTagValue(tag, block.data());
    }
}

/// Profiles describe one colour space and one encoding of it; on other pixels they do harm.
bool profileFits(const Picture& original, Form form) {
    constexpr std::size_t SIGNATURE_OFFSET = 16;
    constexpr std::size_t HEADER_SIZE = 128;
    const std::vector<BYTE>& profile = original.metadata.icc;
    return profile.size() >= HEADER_SIZE && isFloat(form) == isFloat(original.stored) &&
           std::memcmp(profile.data() + SIGNATURE_OFFSET, hasColor(form) ? "RGB " : "GRAY", 4) == 0;
}

} // namespace

std::vector<BYTE> iccProfileOf(FIBITMAP* bitmap) {
    const FIICCPROFILE* profile = FreeImage_GetICCProfile(bitmap);
    if (profile == nullptr || profile->data == nullptr) {
        return {};
    }
    const BYTE* bytes = static_cast<const BYTE*>(profile->data);
    return {bytes, bytes + profile->size};
}

void carryOver(const std::string& name, FREE_IMAGE_FORMAT format, FIBITMAP* bitmap, Form form,
               const Picture& original) {
    FreeImage_CloneMetadata(bitmap, original.bitmap.get()); // the resolution comes with it
    if (original.turnedUpright) {
        markUpright(bitmap);
    }
    if (original.metadata.icc.empty()) {
        return;
    }
    if (!FreeImage_FIFSupportsICCProfiles(format) || !profileFits(original, form)) {
        warn(name, "the colour profile of the source does not fit this file and is left out");
        return;
    }
    std::vector<BYTE> profile = original.metadata.icc;
    FreeImage_CreateICCProfile(bitmap, profile.data(), static_cast<long>(profile.size()));
}

} // namespace zqx::img::app
