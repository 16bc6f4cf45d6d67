// The handful of Exif tags that "info" tells.
#include "zqx/pictures/metadata/exiv2/ExifSummary.h"

#include <utility>

#include "zqx/pictures/metadata/exiv2/Exiv2Library.h"
#include "zqx/text/Cleaning.h"

namespace zqx::pictures {

namespace {

/// Text from a file may hold controls that a terminal would obey, and any number of trailing blanks.
std::string cleaned(const std::string& value) {
    return text::withoutTrailingSpaces(text::inOneLine(value));
}

using Finder = Exiv2::ExifData::const_iterator (*)(const Exiv2::ExifData&);

Exiv2::ExifData::const_iterator timeTaken(const Exiv2::ExifData& tags) {
    return tags.findKey(Exiv2::ExifKey("Exif.Photo.DateTimeOriginal"));
}

} // namespace

ExifSummary summarizeByExiv2(const std::vector<unsigned char>& block) {
    static constexpr struct {
        const char* label;
        const char* key;
        Finder find;
    } FIELDS[] = {{"camera make", "cameraMake", Exiv2::make},
                  {"camera model", "cameraModel", Exiv2::model},
                  {"lens", "lens", Exiv2::lensName},
                  {"taken", "taken", timeTaken},
                  {"exposure time", "exposureTime", Exiv2::exposureTime},
                  {"f-number", "fNumber", Exiv2::fNumber},
                  {"ISO speed", "isoSpeed", Exiv2::isoSpeed},
                  {"focal length", "focalLength", Exiv2::focalLength}};
    prepareExiv2();
    const Exiv2::ExifData tags = decodeExif(block).tags;
    ExifSummary summary;
    for (const auto& [label, key, find] : FIELDS) {
        if (const auto tag = find(tags); tag != tags.end()) {
            if (std::string value = cleaned(tag->print(&tags)); !value.empty()) {
                summary.fields.push_back({label, key, std::move(value)});
            }
        }
    }
    const auto hasTag = [&](const char* key) { return tags.findKey(Exiv2::ExifKey(key)) != tags.end(); };
    summary.hasPosition = hasTag("Exif.GPSInfo.GPSLatitude") && hasTag("Exif.GPSInfo.GPSLongitude");
    return summary;
}

} // namespace zqx::pictures
