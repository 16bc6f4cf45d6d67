// One picture through the pipeline: load, adjust, encode, store.
#pragma once

#include <string>

#include <zqx/img/ImageProcessingPipeline.h>
#include <zqx/tools/PictureRecord.h>

#include "zqx/pictures/Reader.h"
#include "zqx/pictures/Writer.h"
#include "zqx/pictures/files/OutputFile.h"

namespace zqx::tools {

/// What is done to every picture of a run.
struct ApplySettings {
    img::ImageProcessingPipeline pipeline;
    pictures::ReadOptions loading;
    pictures::WriteOptions encoding;
    pictures::OutputFile::Existing existing = pictures::OutputFile::Existing::REPLACE;
};

/// The files of one picture.
struct ApplyFiles {
    std::string input;
    std::string output;
    std::string comparison; ///< left half before, right half after; or empty
};

/// Adjusts one picture. All of its outputs appear, or none does.
/// @throws Error naming the file, FileExists when an output that is to be kept has appeared
ApplyResult applyToPicture(const ApplyFiles& files, const ApplySettings& settings);

} // namespace zqx::tools
