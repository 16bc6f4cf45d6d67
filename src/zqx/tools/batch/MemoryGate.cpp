// The gate, and how much a picture needs.
#include "zqx/tools/batch/MemoryGate.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <limits>
#include <optional>

#include "zqx/pictures/FileFormat.h"
#include "zqx/pictures/bytes/PictureHeader.h"
#include "zqx/pictures/files/Error.h"
#include "zqx/pictures/files/InputFile.h"
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

/// Decoders, encoders and their tables, however small the picture.
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

/// The limit of the container that the process may run in.
std::uint64_t containerMemory() {
    std::uint64_t limit = 0;
    if (std::ifstream("/sys/fs/cgroup/memory.max") >> limit) { // "max" where there is none
        return limit;
    }
    return std::numeric_limits<std::uint64_t>::max();
}

/// Bytes of one channel of one pixel in a rendered picture, and in all that its encoder keeps beside that.
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

/// The bytes that are alive at once for one channel of one pixel, when they are most.
std::uint64_t bytesPerSample(const PictureHeader& header, const std::vector<std::string>& outputs) {
    const std::uint64_t stored = (header.bitsPerChannel + 7) / 8;
    const std::uint64_t working = stored > 1 ? sizeof(float) : 1;
    std::uint64_t most = stored + 2 * working; // decoded, converted, and handed over by another process
    for (const std::string& output : outputs) {
        const EncodingNeed need = encodingNeed(output, working);
        // The source is given up before the last output is encoded, and not before.
        const std::uint64_t kept = outputs.size() > 1 ? working + need.rendered : 0;
        most = std::max({most, working + need.rendered + kept, need.rendered + need.encoder + kept});
    }
    return most;
}

/// Where the header says nothing: photographs of eight bits have about forty bytes in memory for each in a small file,
/// those that a camera left raw for about one.
std::uint64_t needByFileSize(const std::string& name) {
    constexpr std::uint64_t COMPRESSED = 48;
    constexpr std::uint64_t RAW = 16;
    std::error_code failure;
    const std::uint64_t size = std::filesystem::file_size(toPath(name), failure);
    if (failure) {
        return 0; // loading tells what is wrong
    }
    return size * (formatOfName(name) == FileFormat::RAW ? RAW : COMPRESSED);
}

} // namespace

MemoryGate::Share MemoryGate::admit(const std::string& name, std::uint64_t bytes) {
    if (bytes > mLimit) {
        throw Error(name, "needs about " + text::roundedSize(bytes) + " of memory, more than the " +
                              text::roundedSize(mLimit) + " allowed; --max-memory raises that");
    }
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

std::uint64_t memoryNeed(const std::string& input, const std::vector<std::string>& outputs) {
    const bool raw = formatOfName(input) == FileFormat::RAW; // their headers describe a small preview
    const std::optional<PictureHeader> header = raw ? std::nullopt : readPictureHeader(input);
    if (!header) {
        return BASE_NEED + needByFileSize(input);
    }
    const std::uint64_t pixels = header->width * header->height;
    const std::uint64_t perPixel = header->channels * bytesPerSample(*header, outputs);
    return pixels > std::numeric_limits<std::uint64_t>::max() / 2 / perPixel ? std::numeric_limits<std::uint64_t>::max()
                                                                             : BASE_NEED + pixels * perPixel;
}

std::uint64_t defaultMemoryLimit() {
    constexpr std::uint64_t UNKNOWN = std::uint64_t{4} << 30;
    const std::uint64_t physical = physicalMemory();
    return (physical == 0 ? UNKNOWN : std::min(physical, containerMemory())) / 2;
}

} // namespace zqx::tools
