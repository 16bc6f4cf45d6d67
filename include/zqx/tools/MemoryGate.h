/// @file
/// Keeps the pictures that are worked on at once within an amount of memory.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

#include <zqx/pictures/HeaderInfo.h>
#include <zqx/tools/Export.h>

namespace zqx::tools {

/// Lets pictures in, in the order in which they came, as long as what they need together stays within a limit.
/// May be used by any number of threads.
/// @ingroup tools
class ZQX_TOOLS_EXPORT MemoryGate {
public:
    /// @param limit in bytes
    explicit MemoryGate(std::uint64_t limit) : mLimit(limit) {}

    /// A picture's share, given back at its end. The gate has to live longer.
    class Share {
    public:
        /// @param gate that let the picture in @param bytes it takes
        Share(MemoryGate& gate, std::uint64_t bytes) : mGate(gate), mBytes(bytes) {}
        Share(const Share&) = delete;
        Share& operator=(const Share&) = delete;
        ~Share() { mGate.release(mBytes); }

    private:
        MemoryGate& mGate;
        std::uint64_t mBytes;
    };

    /// Bytes that all pictures may take together.
    std::uint64_t limit() const { return mLimit; }

    /// Waits until there is room.
    /// @param name of the file, for the message
    /// @param bytes that the picture takes
    /// @throws pictures::Error when the limit is too small for this picture alone
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

/// A picture file that is going to be decoded.
/// @ingroup tools
struct MemoryInput {
    std::string name;            ///< of the file, for messages
    pictures::HeaderInfo header; ///< what it claims to hold
    std::uint64_t fileBytes = 0; ///< its size, which has to do where the header does not tell the picture's
};

/// What making pictures of a picture takes, by its header and their formats: an estimate, rather too much than too
/// little.
/// @param input the picture
/// @param outputs names of the files to be written, one after the other
/// @return bytes
/// @ingroup tools
ZQX_TOOLS_EXPORT std::uint64_t memoryNeed(const MemoryInput& input, const std::vector<std::string>& outputs);

/// What a command keeps in memory at the same time.
/// @ingroup tools
struct MemoryDemand {
    std::vector<MemoryInput> inputs;        ///< pictures that are decoded
    std::vector<std::string> outputs;       ///< picture files that are made of the first one
    std::uint64_t workingBytesPerPixel = 0; ///< beside the decoded pictures, for each pixel of the first one
};

/// Refuses work that would take more memory than allowed, before any picture is decoded.
/// @param demand what is in memory at once
/// @param limit in bytes; 0 for defaultMemoryLimit()
/// @throws pictures::Error naming the first input, how much is needed and how much is allowed
/// @ingroup tools
ZQX_TOOLS_EXPORT void requireMemory(const MemoryDemand& demand, std::uint64_t limit);

/// Half of the memory that this process could have at all, in bytes.
/// @ingroup tools
ZQX_TOOLS_EXPORT std::uint64_t defaultMemoryLimit();

} // namespace zqx::tools
