// Knowledge of single tags. Numbers and names are those of TIFF 6.0, TIFF/EP, DNG 1.6, Exif 2.32 and XMP part 2.
#include "zqx/pictures/metadata/exiv2/ExifTags.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <span>
#include <string_view>

#include "zqx/pictures/metadata/Orientation.h"

namespace zqx::pictures {

namespace {

constexpr std::string_view MAIN_GROUP = "Image";
constexpr std::string_view CAMERA_GROUP = "Photo";

enum MainTag : std::uint16_t {
    ORIENTATION = 0x0112,
    X_RESOLUTION = 0x011A,
    Y_RESOLUTION = 0x011B,
    RESOLUTION_UNIT = 0x0128,
};

enum CameraTag : std::uint16_t {
    EXIF_VERSION = 0x9000,
    COMPONENTS_CONFIGURATION = 0x9101,
    COMPRESSED_BITS_PER_PIXEL = 0x9102,
    SUBJECT_AREA = 0x9214,
    FLASHPIX_VERSION = 0xA000,
    COLOR_SPACE = 0xA001,
    PIXEL_X_DIMENSION = 0xA002,
    PIXEL_Y_DIMENSION = 0xA003,
    SUBJECT_LOCATION = 0xA214,
};

struct TagRange {
    std::uint16_t first;
    std::uint16_t last;
};

/// Tags of a file's main directory that say how its samples are stored, or that point to something else in it.
constexpr TagRange STRUCTURE[] = {
    {0x00FE, 0x010A}, // sub-file type, size, bits, compression, photometric interpretation, cells, fill order
    {0x0111, 0x0111}, // strip offsets
    {0x0115, 0x0119}, // samples per pixel, rows per strip, strip sizes, sample range
    {0x011C, 0x011C}, // planar configuration
    {0x0120, 0x0125}, // free space, grey response, fax options
    {0x012D, 0x012D}, // transfer function
    {0x013D, 0x013D}, // predictor
    {0x0140, 0x015B}, // colour map, tiles, sub-directories, inks, sample formats, clip paths, JPEG tables
    {0x0190, 0x0193}, // global parameters of fax files
    {0x0200, 0x0214}, // JPEG data of old, YCbCr, reference black and white
    {0x022F, 0x022F}, // strip row counts
    {0x02BC, 0x02BC}, // XMP
    {0x80E3, 0x80E6}, // matteing, depth, tile depth
    {0x828D, 0x828F}, // colour filter array
    {0x83BB, 0x83BB}, // IPTC
    {0x8568, 0x8568}, // IPTC of another maker
    {0x8649, 0x8649}, // Photoshop's image resources
    {0x8769, 0x8769}, // offset of the camera directory, which is made anew
    {0x8773, 0x8773}, // ICC profile
    {0x87AC, 0x87AC}, // image layer
    {0x8825, 0x8825}, // offset of the GPS directory, which is made anew
    {0x9216, 0x9217}, // TIFF/EP standard, sensing method
    {0x935C, 0x935C}, // Photoshop's layers
    {0xA005, 0xA005}, // offset of the interoperability directory
    {0xBC01, 0xBCFF}, // JPEG XR
    {0xC44F, 0xC44F}, // annotations of a scanner program
    {0xC612, 0xC7FF}, // DNG, and with it how raw samples become colours
    {0xCD2D, 0xCD4B}, // DNG 1.6 and later
};

bool isWithin(std::span<const TagRange> ranges, std::uint16_t tag) {
    return std::ranges::any_of(ranges, [tag](TagRange range) { return tag >= range.first && tag <= range.last; });
}

bool isIn(const Exiv2::Exifdatum& tag, std::string_view group) {
    return tag.groupName() == group;
}

bool startsWithAny(std::string_view text, std::span<const std::string_view> beginnings) {
    return std::ranges::any_of(beginnings, [text](std::string_view begin) { return text.starts_with(begin); });
}

/// Directories of other pictures in the same file: thumbnails, previews, raw samples.
bool isOfAnotherPicture(const Exiv2::Exifdatum& tag) {
    static constexpr std::string_view GROUPS[] = {"Thumbnail", "SubImage",     "SubThumb", "Image2",
                                                  "Image3",    "PanasonicRaw", "MpfInfo"};
    return startsWithAny(tag.groupName(), GROUPS);
}

bool isStructure(const Exiv2::Exifdatum& tag) {
    return isOfAnotherPicture(tag) || (isIn(tag, MAIN_GROUP) && isWithin(STRUCTURE, tag.tag())) ||
           (isIn(tag, CAMERA_GROUP) && tag.tag() == COMPRESSED_BITS_PER_PIXEL);
}

/// Places in the picture, counted in pixels of the stored one.
bool isPlace(const Exiv2::Exifdatum& tag) {
    return isIn(tag, CAMERA_GROUP) && (tag.tag() == SUBJECT_AREA || tag.tag() == SUBJECT_LOCATION);
}

template <typename Condition>
void eraseIf(Exiv2::ExifData& tags, Condition condition) {
    for (auto tag = tags.begin(); tag != tags.end();) {
        tag = condition(*tag) ? tags.erase(tag) : std::next(tag);
    }
}

Exiv2::ExifData::iterator find(Exiv2::ExifData& tags, std::string_view group, std::uint16_t number) {
    return std::find_if(tags.begin(), tags.end(),
                        [&](const Exiv2::Exifdatum& tag) { return tag.tag() == number && isIn(tag, group); });
}

Exiv2::ExifData::const_iterator find(const Exiv2::ExifData& tags, std::string_view group, std::uint16_t number) {
    return std::find_if(tags.begin(), tags.end(),
                        [&](const Exiv2::Exifdatum& tag) { return tag.tag() == number && isIn(tag, group); });
}

double getFraction(const Exiv2::Exifdatum& tag) {
    if (tag.count() == 0) {
        return 0.0;
    }
    const Exiv2::Rational value = tag.toRational();
    return value.second != 0 ? static_cast<double>(value.first) / value.second : 0.0;
}

void exchangeResolutions(Exiv2::ExifData& tags) {
    const auto x = find(tags, MAIN_GROUP, X_RESOLUTION);
    const auto y = find(tags, MAIN_GROUP, Y_RESOLUTION);
    if (x == tags.end() || y == tags.end()) {
        return;
    }
    const auto former = x->getValue();
    x->setValue(&y->value());
    y->setValue(former.get());
}

bool isResolution(const Exiv2::Exifdatum& tag) {
    return isIn(tag, MAIN_GROUP) &&
           (tag.tag() == X_RESOLUTION || tag.tag() == Y_RESOLUTION || tag.tag() == RESOLUTION_UNIT);
}

bool isOrientation(const Exiv2::Exifdatum& tag) {
    return isIn(tag, MAIN_GROUP) && tag.tag() == ORIENTATION;
}

bool tellsSomething(const Exiv2::Exifdatum& tag) {
    if (isOrientation(tag) || isResolution(tag) || isStructure(tag)) {
        return false;
    }
    static constexpr std::uint16_t FORMALITIES[] = {EXIF_VERSION, COMPONENTS_CONFIGURATION, FLASHPIX_VERSION,
                                                    COLOR_SPACE,  PIXEL_X_DIMENSION,        PIXEL_Y_DIMENSION};
    return !isIn(tag, CAMERA_GROUP) || std::ranges::find(FORMALITIES, tag.tag()) == std::end(FORMALITIES);
}

/// Properties that describe the file, show the picture before, or refer to what lay behind it in the same file.
bool isStructure(std::string_view property) {
    static constexpr std::string_view BEGINNINGS[] = {
        "Xmp.tiff.ImageWidth",
        "Xmp.tiff.ImageLength",
        "Xmp.tiff.BitsPerSample",
        "Xmp.tiff.Compression",
        "Xmp.tiff.PhotometricInterpretation",
        "Xmp.tiff.SamplesPerPixel",
        "Xmp.tiff.PlanarConfiguration",
        "Xmp.tiff.YCbCr",
        "Xmp.tiff.NativeDigest",
        "Xmp.exif.NativeDigest",
        "Xmp.exif.CompressedBitsPerPixel",
        "Xmp.exif.PixelXDimension",
        "Xmp.exif.PixelYDimension",
        "Xmp.xmp.Thumbnails",
        "Xmp.xmpNote.HasExtendedXMP",
        "Xmp.GCamera.MicroVideo",
        "Xmp.GCamera.MotionPhoto",
        "Xmp.Container.",
        "Xmp.GContainer.",
        "Xmp.hdrgm.",
    };
    return startsWithAny(property, BEGINNINGS);
}

} // namespace

int getOrientation(const Exiv2::ExifData& tags) {
    const auto tag = find(tags, MAIN_GROUP, ORIENTATION);
    return tag != tags.end() ? static_cast<int>(getNumber(*tag)) : UPRIGHT;
}

std::optional<Resolution> getResolution(const Exiv2::ExifData& tags) {
    constexpr double INCHES_PER_METRE = 1.0 / 0.0254;
    constexpr double CENTIMETRES_PER_METRE = 100.0;
    constexpr long long UNIT_NONE = 1;
    constexpr long long UNIT_CENTIMETRE = 3;
    const auto x = find(tags, MAIN_GROUP, X_RESOLUTION);
    const auto y = find(tags, MAIN_GROUP, Y_RESOLUTION);
    const auto unit = find(tags, MAIN_GROUP, RESOLUTION_UNIT);
    const long long unitNumber = unit != tags.end() ? getNumber(*unit) : 2; // inches, unless said otherwise
    if (x == tags.end() || y == tags.end() || unitNumber == UNIT_NONE) {
        return std::nullopt;
    }
    const double scale = unitNumber == UNIT_CENTIMETRE ? CENTIMETRES_PER_METRE : INCHES_PER_METRE;
    const double dotsX = getFraction(*x) * scale;
    const double dotsY = getFraction(*y) * scale;
    constexpr double LARGEST = 1e8;
    if (!(dotsX >= 1.0 && dotsX <= LARGEST && dotsY >= 1.0 && dotsY <= LARGEST)) {
        return std::nullopt;
    }
    return Resolution{static_cast<unsigned>(std::lround(dotsX)), static_cast<unsigned>(std::lround(dotsY))};
}

void keepDescription(Exiv2::ExifData& tags, int orientation) {
    eraseIf(tags, [orientation](const Exiv2::Exifdatum& tag) {
        return isStructure(tag) || (orientation != UPRIGHT && isPlace(tag));
    });
    if (exchangesSides(orientation)) {
        exchangeResolutions(tags);
    }
    if (const auto tag = find(tags, MAIN_GROUP, ORIENTATION); tag != tags.end()) {
        *tag = static_cast<std::uint16_t>(UPRIGHT); // a value that was none is better not passed on either
    }
}

void keepDescription(Exiv2::XmpData& properties, int orientation) {
    Exiv2::XmpData kept;
    for (const Exiv2::Xmpdatum& property : properties) {
        if (!isStructure(property.key())) {
            kept.add(property);
        }
    }
    properties = kept;
    const auto tag = properties.findKey(Exiv2::XmpKey("Xmp.tiff.Orientation"));
    if (orientation != UPRIGHT && tag != properties.end()) {
        tag->setValue(std::to_string(UPRIGHT));
    }
}

bool tellSomething(const Exiv2::ExifData& tags) {
    return std::any_of(tags.begin(), tags.end(), tellsSomething);
}

void setSize(Exiv2::ExifData& tags, unsigned width, unsigned height) {
    for (const auto& [number, size] : {std::pair(PIXEL_X_DIMENSION, width), std::pair(PIXEL_Y_DIMENSION, height)}) {
        if (const auto tag = find(tags, CAMERA_GROUP, number); tag != tags.end()) {
            *tag = static_cast<std::uint32_t>(size);
        }
    }
}

void addToTiff(Exiv2::ExifData& file, const Exiv2::ExifData& tags) {
    const auto isTaken = [](const Exiv2::Exifdatum& tag) { return !isOrientation(tag) && !isResolution(tag); };
    for (const Exiv2::Exifdatum& tag : tags) {
        if (isTaken(tag) && isIn(tag, MAIN_GROUP)) {
            eraseIf(file, [&](const Exiv2::Exifdatum& old) { return old.tag() == tag.tag() && isIn(old, MAIN_GROUP); });
        }
    }
    for (const Exiv2::Exifdatum& tag : tags) {
        if (isTaken(tag)) {
            file.add(tag);
        }
    }
}

} // namespace zqx::pictures
