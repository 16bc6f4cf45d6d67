// Keeps the pictures that are worked on at once within an amount of memory.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace zqx::tools {

/// Lets pictures in, in the order in which they came, as long as what they need together stays within a limit.
class MemoryGate {
public:
    explicit MemoryGate(std::uint64_t limit) : mLimit(limit) {}

    /// A picture's share, given back at its end.
    class Share {
    public:
        Share(MemoryGate& gate, std::uint64_t bytes) : mGate(gate), mBytes(bytes) {}
        Share(const Share&) = delete;
        Share& operator=(const Share&) = delete;
        ~Share() { mGate.release(mBytes); }

    private:
        MemoryGate& mGate;
        std::uint64_t mBytes;
    };

    std::uint64_t limit() const { return mLimit; }

    /// Waits until there is room.
    /// @throws Error naming the file when the limit is too small for this picture alone
    Share admit(const std::string& name, std::uint64_t bytes);

private:
    void release(std::uint64_t bytes);

    std::mutex mMutex;
    std::condition_variable mChange;
    const std::uint64_t mLimit;
    std::uint64_t mUsed = 0;
    std::uint64_t mNextTicket = 0; // for whoever comes next
    std::uint64_t mServing = 0;    // who is let in next, so that a large picture is not passed by small ones for ever
};

/// What making pictures of a picture takes, by its header and their formats: an estimate, rather too much than too
/// little.
/// @param outputs names of the files to be written, one after the other
std::uint64_t memoryNeed(const std::string& input, const std::vector<std::string>& outputs);

/// Half of the memory that this process could have at all.
std::uint64_t defaultMemoryLimit();

} // namespace zqx::tools
