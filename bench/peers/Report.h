// The table of all rows, for people and for programs.
#pragma once

#include <string>
#include <vector>

#include "peers/Measure.h"
#include "peers/Work.h"

namespace bench {

struct Row {
    std::string name;
    std::string peerName;
    double requiredRatio = 0.0;
    double copyLimit = 0.0;
    /// How many times the library is faster than the peer, per pixel.
    double ratio = 0.0;
    /// The same of processor time.
    double cpuRatio = 0.0;
    /// How many times as long as the plain copy the library takes.
    double timesCopy = 0.0;
    /// The ratio on each of the forced instruction sets.
    std::vector<double> forcedRatios;
    Measurement measurement;

    bool missesRatio() const { return ratio < requiredRatio; }
    bool missesCopyLimit() const { return copyLimit > 0.0 && timesCopy > copyLimit; }
};

Row pickRow(const WorkEntry& entry, const Work& work, const Measurement& measurement);

std::string asMarkdown(const std::vector<Row>& rows, const std::vector<std::string>& simdTargets);
std::string asJson(const std::vector<Row>& rows, const std::vector<std::string>& simdTargets,
                   const Conditions& conditions, int repetitions);

} // namespace bench
