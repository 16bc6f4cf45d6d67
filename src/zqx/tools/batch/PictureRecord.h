// What became of one picture of a run, for people and for programs.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "zqx/tools/batch/ApplyPicture.h"

namespace zqx::tools {

struct PictureRecord {
    enum class Status { WRITTEN, SKIPPED, FAILED, PLANNED };

    std::string input;
    std::string output;
    Status status = Status::FAILED;
    std::string reason{}; ///< of skipping and failing; for a planned picture "would replace", or empty
    std::vector<std::string> warnings{};
    ApplyResult result{}; ///< of a written picture
};

struct RunTotals {
    std::size_t written = 0;
    std::size_t failed = 0;
    std::size_t skipped = 0;
    std::size_t planned = 0;

    void count(PictureRecord::Status status);
    std::size_t all() const { return written + failed + skipped + planned; }
};

/// One line of JSON without its end. Bytes of names that are no UTF-8 become U+FFFD.
std::string toJson(const PictureRecord& record);
std::string toJson(const RunTotals& totals, double seconds, bool interrupted);

/// "4000 x 3000, 8-bit colour, decode 0.081, ..." for a written picture.
std::string describe(const ApplyResult& result);

/// "198 written, 2 failed, 0 skipped in 12.3 s (16.1 pictures/s)".
std::string describe(const RunTotals& totals, double seconds);

} // namespace zqx::tools
