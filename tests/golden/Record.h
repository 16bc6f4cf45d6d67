// What the library makes of known pictures, remembered as one hash per kind of work.
#pragma once

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <vector>

#include "support/Sha256.h"

namespace golden {

/// Hashes by the names of works.
using Hashes = std::map<std::string, std::string>;

/// Collects the hashes of one subject.
class Record {
public:
    explicit Record(std::string subject) : mSubject(std::move(subject)) {}

    /// Calls work(add), which hands all that it makes to add(bytes), and keeps the hash of it under a name without
    /// blanks.
    template <typename Work>
    void keep(const std::string& name, Work work) {
        zqx::img::test::Sha256 hash;
        work([&](const std::vector<std::uint8_t>& bytes) { hash.add(bytes); });
        mHashes[mSubject + "/" + name] = hash.hexadecimal();
    }

    const Hashes& hashes() const { return mHashes; }

private:
    std::string mSubject;
    Hashes mHashes;
};

struct Subject {
    const char* name;
    void (*record)(Record& record);
};

/// Everything that is remembered.
std::span<const Subject> subjects();

/// Does all work of a subject on the instruction set that is in force.
/// @param threads that loops over rows are spread over
Hashes recordOn(const Subject& subject, int threads);

/// The hashes that the results have to have.
Hashes expectedHashes();

/// All works and their hashes as hashes.txt has them.
std::string getText(const Hashes& hashes);

// One file each.
void recordConversions(Record& record);
void recordTurns(Record& record);
void recordInversions(Record& record);
void recordAlpha(Record& record);
void recordGradings(Record& record);
void recordTables(Record& record);
void recordBlurs(Record& record);
void recordSharpenings(Record& record);
void recordTiles(Record& record);
void recordPipelines(Record& record);
void recordColors(Record& record);

} // namespace golden
