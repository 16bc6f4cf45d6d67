// A decoded picture on its way from the process that decoded it: the writer's and the reader's side of shared memory.
// The reader takes the writer for an enemy, since the file that was decoded may have taken it over.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <vector>

#include "zqx/pictures/FileFormat.h"
#include "zqx/pictures/Picture.h"
#include "zqx/pictures/codecs/Describe.h"

namespace zqx::pictures {

/// What came of decoding.
enum class Outcome : std::uint32_t {
    NONE,
    PICTURE,
    FACTS,
    FAILURE,
    OUT_OF_MEMORY,
    UNCONFINED, ///< nothing was done, since the system cannot confine the process
};

/// What one process tells another about a picture file.
struct Transfer {
    Outcome outcome = Outcome::NONE;
    FileFormat format = FileFormat::UNKNOWN; ///< known before the outcome
    bool confined = false;                   ///< by the system, and not by limits alone
    std::optional<Picture> picture;          ///< of Outcome::PICTURE
    std::optional<PictureFacts> facts;       ///< of Outcome::FACTS
    std::string failure;                     ///< of Outcome::FAILURE, the whole line
    std::vector<std::string> warnings;       ///< whole lines
};

/// Writes to a file descriptor from its beginning. The outcome is written last, so that a death leaves none.
class TransferWriter {
public:
    explicit TransferWriter(int descriptor) : mDescriptor(descriptor) {}

    /// Tells the format and the confinement ahead of the rest.
    void announce(FileFormat format, bool confined) const;

    /// @throws std::system_error when there is no room
    void write(const Transfer& transfer) const;

private:
    int mDescriptor;
};

/// Thrown over memory that no honest writer leaves.
class BadTransfer : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads what was written. Pixels stay where they are: the picture keeps the memory alive.
/// @throws BadTransfer, and nothing worse whatever the bytes are
Transfer readTransfer(const std::shared_ptr<std::byte>& memory, std::size_t size);

/// The layout: this at the beginning, pixels, then blocks of a kind, a length and bytes.
struct TransferHeader {
    char magic[16] = {};
    std::uint32_t format = 0;
    std::uint32_t outcome = 0;
    std::uint32_t confined = 0; ///< 0 or 1
    std::uint32_t layout = 0;   ///< of the pixels
    std::uint32_t stored = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t dotsPerMeterX = 0;
    std::uint32_t dotsPerMeterY = 0;
    std::uint32_t alpha = 0;
    std::uint32_t bitsPerPixel = 0; ///< this and the next three are of facts
    std::uint32_t transparent = 0;  ///< 0 or 1
    std::uint32_t orientation = 0;
    std::uint32_t hasPosition = 0; ///< 0 or 1
    std::uint64_t pixelBytes = 0;
    std::uint64_t blockBytes = 0;
};
/// Where pixels begin: at the beginning of a page, whatever the system's pages are.
constexpr std::size_t TRANSFER_PIXELS = 65536;
static_assert(std::is_trivially_copyable_v<TransferHeader> && sizeof(TransferHeader) <= TRANSFER_PIXELS);

} // namespace zqx::pictures
