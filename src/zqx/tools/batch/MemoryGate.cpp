// Admission of pictures, and estimates of the memory that they need.
#include <zqx/tools/MemoryGate.h>

#include <algorithm>
#include <fstream>
#include <limits>

#include "zqx/pictures/FileFormat.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/text/Amounts.h"

#if defined(_WIN32)
#define NOMINMAX
#include <windows.h>
#else
#include <unistd.h>
#endif

namespace zqx::tools {

using namespace pictures;

namespace {

/// For decoders, encoders and their tables, however small the picture.
constexpr std::uint64_t BASE_NEED = std::uint64_t{8} << 20;

std::uint64_t physicalMemory() {
#if defined(_WIN32)
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof status;
    return GlobalMemoryStatusEx(&status) ? status.ullTotalPhys : 0;
#else
    const auto pages = sysconf(_SC_PHYS_PAGES);
    const auto size = sysconf(_SC_PAGESIZE);
    return pages > 0 && size > 0 ? static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(size) : 0;
#endif
}

/// The memory limit of the container, if the process runs in one.
std::uint64_t containerMemory() {
    std::uint64_t limit = 0;
    if (std::ifstream("/sys/fs/cgroup/memory.max") >> limit) { // the file says "max" if there is no limit
        return limit;
    }
    return std::numeric_limits<std::uint64_t>::max();
}

/// Bytes per sample in the rendered picture, and in everything that the encoder needs in addition.
struct EncodingNeed {
    std::uint64_t rendered;
    std::uint64_t encoder;
};

EncodingNeed encodingNeed(const std::string& output, std::uint64_t working) {
    switch (formatOfName(output)) {
    case FileFormat::EXR:
    case FileFormat::HDR:
    case FileFormat::PFM: return {sizeof(float), 2 * sizeof(float)};
    case FileFormat::JP2:
    case FileFormat::J2K: return {working, 2 * sizeof(std::int32_t)}; // samples and wavelet coefficients
    default: return {working, 2 * working};                           // its own copy, and the file
    }
}

/// The peak number of bytes per sample.
std::uint64_t bytesPerSample(const HeaderInfo& header, const std::vector<std::string>& outputs) {
    const std::uint64_t stored = (header.bitsPerChannel + 7) / 8;
    const std::uint64_t working = stored > 1 ? sizeof(float) : 1;
    std::uint64_t most = stored + 2 * working; // decoded, converted, and transferred from another process
    for (const std::string& output : outputs) {
        const EncodingNeed need = encodingNeed(output, working);
        // The source is released just before the last output is encoded.
        const std::uint64_t kept = outputs.size() > 1 ? working + need.rendered : 0;
        most = std::max({most, working + need.rendered + kept, need.rendered + need.encoder + kept});
    }
    return most;
}

// Headers may claim anything: sums and products saturate instead of overflowing.
constexpr std::uint64_t MOST = std::numeric_limits<std::uint64_t>::max();

std::uint64_t addedUp(std::uint64_t a, std::uint64_t b) {
    return a > MOST - b ? MOST : a + b;
}

std::uint64_t multiplied(std::uint64_t a, std::uint64_t b) {
    return b != 0 && a > MOST / b ? MOST : a * b;
}

void refuseBeyond(const std::string& name, std::uint64_t need, std::uint64_t limit) {
    if (need > limit) {
        throw Error(name, "needs about " + text::roundedSize(need) + " of memory, more than the " +
                              text::roundedSize(limit) + " allowed; --max-memory raises this limit");
    }
}

/// An estimate for files whose header does not give the size: an 8-bit photograph needs about forty times the size of
/// its compressed file, a camera raw file has about one pixel per byte.
std::uint64_t estimateByFileSize(const MemoryInput& input) {
    constexpr std::uint64_t COMPRESSED = 48;
    constexpr std::uint64_t RAW = 16;
    return multiplied(input.fileBytes, input.header.format == FileFormat::RAW ? RAW : COMPRESSED);
}

} // namespace

MemoryGate::Share MemoryGate::admit(const std::string& name, std::uint64_t bytes) {
    refuseBeyond(name, bytes, mLimit);
    std::unique_lock lock(mMutex);
    const std::uint64_t ticket = mNextTicket++;
    mChange.wait(lock, [&] { return ticket == mServing && bytes <= mLimit - mUsed; });
    mUsed += bytes;
    ++mServing;
    mChange.notify_all();
    return {*this, bytes};
}

void MemoryGate::release(std::uint64_t bytes) {
    const std::lock_guard lock(mMutex);
    mUsed -= bytes;
    mChange.notify_all();
}

std::uint64_t memoryNeed(const MemoryInput& input, const std::vector<std::string>& outputs) {
    const HeaderInfo& header = input.header;
    if (!header.hasSize()) {
        return addedUp(BASE_NEED, estimateByFileSize(input));
    }
    const std::uint64_t perPixel = multiplied(header.channels, bytesPerSample(header, outputs));
    return addedUp(BASE_NEED, multiplied(header.pixels(), perPixel));
}

void requireMemory(const MemoryDemand& demand, std::uint64_t limit) {
    if (demand.inputs.empty()) {
        return;
    }
    const MemoryInput& first = demand.inputs.front();
    std::uint64_t need = multiplied(first.header.pixels(), demand.workingBytesPerPixel);
    for (const MemoryInput& input : demand.inputs) {
        need = addedUp(need, memoryNeed(input, &input == &first ? demand.outputs : std::vector<std::string>()));
    }
    refuseBeyond(first.name, need, limit == 0 ? defaultMemoryLimit() : limit);
}

std::uint64_t defaultMemoryLimit() {
    constexpr std::uint64_t UNKNOWN = std::uint64_t{4} << 30;
    const std::uint64_t physical = physicalMemory();
    return (physical == 0 ? UNKNOWN : std::min(physical, containerMemory())) / 2;
}

} // namespace zqx::tools
