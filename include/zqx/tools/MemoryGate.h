/// @file
/// Limits on the memory of all pictures that are processed at the same time.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include <zqx/pictures/HeaderInfo.h>
#include <zqx/tools/Export.h>

namespace zqx::tools {

/// Admits pictures, first come, first served, as long as their total memory stays within a limit. May be used by any
/// number of threads.
/// @ingroup tools
class ZQX_TOOLS_EXPORT MemoryGate {
public:
    /// @param limit in bytes
    explicit MemoryGate(std::uint64_t limit) : mLimit(limit) {}

    /// The memory reserved for a picture, released by the destructor. The gate must outlive it.
    class Share {
    public:
        /// @param gate that admitted the picture @param bytes reserved for it
        Share(MemoryGate& gate, std::uint64_t bytes) : mGate(gate), mBytes(bytes) {}
        Share(const Share&) = delete;
        Share& operator=(const Share&) = delete;
        ~Share() { mGate.release(mBytes); }

    private:
        MemoryGate& mGate;
        std::uint64_t mBytes;
    };

    /// The limit for all pictures together, in bytes.
    std::uint64_t limit() const { return mLimit; }

    /// Waits until enough memory is free, and reserves it.
    /// @param name of the file, for error messages
    /// @param bytes that the picture needs
    /// @throws pictures::Error if the picture alone exceeds the limit
    Share admit(const std::string& name, std::uint64_t bytes);

private:
    void release(std::uint64_t bytes);

    std::mutex mMutex;
    std::condition_variable mChange;
    const std::uint64_t mLimit;
    std::uint64_t mUsed = 0;
    std::uint64_t mNextTicket = 0; // for the next caller
    std::uint64_t mServing = 0;    // who is admitted next, so that small pictures cannot overtake a large one for ever
};

/// A picture file that is to be decoded.
/// @ingroup tools
struct MemoryInput {
    std::string name;            ///< of the file, for messages
    pictures::HeaderInfo header; ///< what its header says
    std::uint64_t fileBytes = 0; ///< size of the file, for estimates if the header does not give the picture's size
};

/// Estimates the memory needed to decode a picture and write files from it, by its header and their formats. The
/// estimate errs on the high side.
/// @param input the picture
/// @param outputs names of the files to write, one after the other
/// @return bytes
/// @ingroup tools
ZQX_TOOLS_EXPORT std::uint64_t memoryNeed(const MemoryInput& input, const std::vector<std::string>& outputs);

/// What a task keeps in memory at the same time.
/// @ingroup tools
struct MemoryDemand {
    std::vector<MemoryInput> inputs;        ///< pictures that are decoded
    std::vector<std::string> outputs;       ///< picture files that are written from the first one
    std::uint64_t workingBytesPerPixel = 0; ///< in addition, for each pixel of the first picture
};

/// Refuses a task that would need more memory than allowed, before any picture is decoded.
/// @param demand what the task keeps in memory
/// @param limit in bytes; 0 for defaultMemoryLimit()
/// @throws pictures::Error naming the first picture, the memory needed and the limit
/// @ingroup tools
ZQX_TOOLS_EXPORT void requireMemory(const MemoryDemand& demand, std::uint64_t limit);

/// Half of the memory available to this process, in bytes: of the machine's, or of its container's limit.
/// @ingroup tools
ZQX_TOOLS_EXPORT std::uint64_t defaultMemoryLimit();

} // namespace zqx::tools
