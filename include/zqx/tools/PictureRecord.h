/// @file
/// What became of the pictures of a run, for people and for programs.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <zqx/tools/Export.h>
#include <zqx/tools/InputList.h>

namespace zqx::tools {

/// Seconds spent on one picture.
/// @ingroup tools
struct StageTimes {
    double decode = 0.0; ///< reading the file
    double adjust = 0.0; ///< the pipeline
    double encode = 0.0; ///< making the new file in memory
    double store = 0.0;  ///< putting it on the disk

    /// All of them together.
    double total() const { return decode + adjust + encode + store; }
};

/// A picture that was written.
/// @ingroup tools
struct ApplyResult {
    unsigned width = 0;  ///< in pixels
    unsigned height = 0; ///< in pixels
    std::string depth;   ///< of the output, in words
    StageTimes seconds;  ///< spent on it
};

/// What became of one picture.
/// @ingroup tools
struct PictureRecord {
    /// How it ended, or that it would be written where nothing is.
    enum class Status {
        WRITTEN, ///< its output is there
        SKIPPED, ///< left as it is
        FAILED,  ///< could not be done
        PLANNED, ///< would be written
    };

    std::string input;                   ///< name of the file that is read
    std::string output;                  ///< name of the file that is written; may be empty for a failure
    Status status = Status::FAILED;      ///< how it ended
    std::string reason{};                ///< of skipping and failing; for a planned picture "would replace", or empty
    std::vector<std::string> warnings{}; ///< each a whole line
    ApplyResult result{};                ///< of a written picture
};

/// How many pictures of a run ended in which way.
/// @ingroup tools
struct RunTotals {
    std::size_t written = 0;      ///< pictures whose output is there now
    std::size_t failed = 0;       ///< pictures that could not be done
    std::size_t skipped = 0;      ///< pictures left as they are
    std::size_t planned = 0;      ///< pictures that would be written
    ExtensionCounts unreadable{}; ///< files that were no part of the run

    /// Adds one picture. @param status how it ended
    ZQX_TOOLS_EXPORT void count(PictureRecord::Status status);
    /// Pictures counted so far.
    std::size_t all() const { return written + failed + skipped + planned; }
};

/// One line of JSON without its end. Bytes of names that are no UTF-8 become U+FFFD.
/// @ingroup tools
ZQX_TOOLS_EXPORT std::string toJson(const PictureRecord& record);

/// The same of a whole run: an object with the member "summary".
/// @ingroup tools
ZQX_TOOLS_EXPORT std::string toJson(const RunTotals& totals, double seconds, bool interrupted);

/// "4000 x 3000, 8-bit colour, decode 0.081, ..." for a written picture.
/// @ingroup tools
ZQX_TOOLS_EXPORT std::string describe(const ApplyResult& result);

/// "198 written, 2 failed, 0 skipped in 12.3 s (16.1 pictures/s)".
/// @ingroup tools
ZQX_TOOLS_EXPORT std::string describe(const RunTotals& totals, double seconds);

} // namespace zqx::tools
