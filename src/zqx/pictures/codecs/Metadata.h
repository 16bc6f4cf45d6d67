// What travels beside the pixels inside of bitmaps: colour profile, comments, resolution.
#pragma once

#include <string>
#include <vector>

#include "zqx/pictures/Picture.h"
#include "zqx/pictures/metadata/MetadataReader.h"

namespace zqx::pictures {

struct Comment {
    std::string keyword;
    std::string text;
};

/// The comments of a block as in Metadata.
std::vector<Comment> commentsIn(const std::string& block);

/// Adds what FreeImage found to what was read from the file itself: comments, and the colour profile where it has one,
/// which is not so for PNG.
void completeFrom(FIBITMAP* bitmap, Metadata& metadata);

/// Gives a bitmap the resolution of the Exif tags, where its decoder found no other.
void completeResolution(FIBITMAP* bitmap, const SourceMetadata& source);

/// Gives a bitmap that is about to be written the resolution of its source, and of its metadata what the encoders put
/// into the file, as far as it still holds true. Warns of what is left behind.
/// @param name the file to be written
/// @param metadata what is wanted of the original's
void carryOver(const std::string& name, FREE_IMAGE_FORMAT format, FIBITMAP* bitmap, Form form, const Picture& original,
               const Metadata& metadata);

} // namespace zqx::pictures
