/// @file
/// Reports on the pictures of a run, for people and for programs.
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
    double adjust = 0.0; ///< running the pipeline
    double encode = 0.0; ///< encoding the new file in memory
    double store = 0.0;  ///< writing it to the disk

    /// The sum of all stages.
    double total() const { return decode + adjust + encode + store; }
};

/// What is known of a picture that was written.
/// @ingroup tools
struct ApplyResult {
    unsigned width = 0;  ///< in pixels
    unsigned height = 0; ///< in pixels
    std::string depth;   ///< sample layout of the output, in words
    StageTimes seconds;  ///< time spent
};

/// The outcome for one picture.
/// @ingroup tools
struct PictureRecord {
    /// The kinds of outcome.
    enum class Status {
        WRITTEN, ///< the output was written
        SKIPPED, ///< nothing was to be done
        FAILED,  ///< an error occurred
        PLANNED, ///< would be written, in a rehearsal
    };

    std::string input;              ///< file that was read
    std::string output;             ///< file that was to be written; may be empty after a failure
    Status status = Status::FAILED; ///< kind of outcome
    std::string reason{};           ///< why it was skipped or failed; for a planned picture "would replace" or empty
    std::vector<std::string> warnings{}; ///< complete lines
    ApplyResult result{};                ///< for a written picture
};

/// The number of pictures of a run for each outcome.
/// @ingroup tools
struct RunTotals {
    std::size_t written = 0;      ///< outputs that were written
    std::size_t failed = 0;       ///< pictures with errors
    std::size_t skipped = 0;      ///< pictures with nothing to be done
    std::size_t planned = 0;      ///< pictures that would be written, in a rehearsal
    ExtensionCounts unreadable{}; ///< files left out because their format cannot be read

    /// Counts one picture. @param status its outcome
    ZQX_TOOLS_EXPORT void count(PictureRecord::Status status);
    /// The number of pictures counted so far.
    std::size_t all() const { return written + failed + skipped + planned; }
};

/// A record as one line of JSON, without a line break. Bytes of names that are not UTF-8 become U+FFFD.
/// @ingroup tools
ZQX_TOOLS_EXPORT std::string toJson(const PictureRecord& record);

/// The summary of a run as one line of JSON: an object with the member "summary".
/// @ingroup tools
ZQX_TOOLS_EXPORT std::string toJson(const RunTotals& totals, double seconds, bool interrupted);

/// A written picture in words: "4000 x 3000, 8-bit colour, decode 0.081, ...".
/// @ingroup tools
ZQX_TOOLS_EXPORT std::string describe(const ApplyResult& result);

/// A run in words: "198 written, 2 failed, 0 skipped in 12.3 s (16.1 pictures/s)".
/// @ingroup tools
ZQX_TOOLS_EXPORT std::string describe(const RunTotals& totals, double seconds);

} // namespace zqx::tools
