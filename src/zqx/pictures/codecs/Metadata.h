// Selects the metadata of a source that is still valid for a file written from it.
#pragma once

#include <string>

#include "zqx/pictures/FileFormat.h"
#include "zqx/pictures/MetadataCodec.h"

namespace zqx::pictures {

/// Adds what the decoder found to the metadata that was read from the file directly: comments, the colour profile if it
/// found one (for PNG it does not), and the resolution, unless only Exif gives one.
void completeMetadata(FileMetadata& source, const Metadata& decoded);

/// The metadata to be written to a file. Warns about what is left out.
/// @param name the file to be written
/// @param layout of that file
/// @param stored layout of the source file
/// @param metadata of the source, as far as it is wanted
Metadata metadataFor(const std::string& name, FileFormat format, SampleLayout layout, SampleLayout stored,
                     Metadata metadata);

} // namespace zqx::pictures
