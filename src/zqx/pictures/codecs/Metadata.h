// What of a source's metadata holds true for a file that is made of it.
#pragma once

#include <string>

#include "zqx/pictures/FileFormat.h"
#include "zqx/pictures/MetadataCodec.h"

namespace zqx::pictures {

/// Adds what the decoder found to what was read from the file itself: comments, the colour profile where it found one,
/// which is not so for PNG, and the resolution, unless only the Exif tags tell it.
void completeMetadata(FileMetadata& source, const Metadata& decoded);

/// The metadata that the encoder of a file is to put into it. Warns of what is left behind.
/// @param name the file to be written
/// @param layout of that file
/// @param stored of the source file
/// @param metadata what is wanted of the source's
Metadata metadataFor(const std::string& name, FileFormat format, SampleLayout layout, SampleLayout stored,
                     Metadata metadata);

} // namespace zqx::pictures
