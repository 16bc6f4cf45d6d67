// Pixels travel row by row from the top, what is beside them in blocks.
#include "zqx/pictures/isolation/PictureTransfer.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <limits>
#include <new>
#include <span>
#include <string_view>
#include <system_error>
#include <type_traits>

#include <unistd.h>

#include "zqx/text/Cleaning.h"
#include "zqx/text/Utf8.h"

namespace zqx::pictures {

namespace {

/// Changes with the layout and with the version, so that programs of two installations do not talk past each other.
constexpr char MAGIC[sizeof TransferHeader::magic] = "zqx 3 " ZQX_IMG_VERSION;

enum class Block : std::uint32_t {
    ICC,
    EXIF,
    IPTC,
    XMP,
    COMMENTS,
    WARNING,
    FAILURE,
    SAMPLES,
    COLOR,
    EXIF_LABEL, ///< begins a field of the summary, which the next two complete
    EXIF_KEY,
    EXIF_VALUE,
};

constexpr std::uint64_t MAX_BLOCK_BYTES = std::uint64_t{256} << 20U;
constexpr std::size_t MAX_TEXT = 4096;
constexpr std::size_t MAX_WARNINGS = 64;
constexpr std::size_t MAX_FIELDS = 64;

/// The members of Metadata and the blocks that carry them.
template <typename M, typename F>
void forEachMember(M& metadata, F function) {
    function(Block::ICC, metadata.icc);
    function(Block::EXIF, metadata.exif);
    function(Block::IPTC, metadata.iptc);
    function(Block::XMP, metadata.xmp);
    function(Block::COMMENTS, metadata.comments);
}

// Writing.

class ByteWriter {
public:
    template <typename T>
    requires std::is_arithmetic_v<T>
    void number(T value) {
        char bytes[sizeof value];
        std::memcpy(bytes, &value, sizeof value);
        mBytes.append(bytes, sizeof value);
    }

    void bytes(const void* data, std::size_t count) {
        number(static_cast<std::uint64_t>(count));
        mBytes.append(static_cast<const char*>(data), count);
    }
    void block(Block kind, const void* data, std::size_t count) {
        number(static_cast<std::uint32_t>(kind));
        bytes(data, count);
    }
    void block(Block kind, std::string_view text) { block(kind, text.data(), text.size()); }

    const std::string& content() const { return mBytes; }

private:
    std::string mBytes;
};

void writeAt(int descriptor, std::uint64_t place, const void* data, std::size_t count) {
    const char* bytes = static_cast<const char*>(data);
    while (count > 0) {
        const ssize_t written = pwrite(descriptor, bytes, count, static_cast<off_t>(place));
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            throw std::system_error(written < 0 ? errno : EIO, std::generic_category());
        }
        bytes += written;
        place += static_cast<std::uint64_t>(written);
        count -= static_cast<std::size_t>(written);
    }
}

/// Rows begin at multiples of four bytes.
std::uint64_t rowBytes(SampleLayout layout, std::uint64_t width) {
    const auto pixelBits =
        static_cast<std::uint64_t>(channelCount(layout)) * static_cast<unsigned>(bitsPerChannel(layout));
    return (width * pixelBits / 8 + 3) / 4 * 4;
}

/// At once where rows lie as they travel, else row by row.
void writePixels(int descriptor, const img::Image& image, std::uint64_t rowBytes) {
    if (image.getByteRowStride() == rowBytes) {
        writeAt(descriptor, TRANSFER_PIXELS, image.getDataPtr(),
                static_cast<std::size_t>(rowBytes) * image.getHeight());
        return;
    }
    std::vector<std::byte> row(static_cast<std::size_t>(rowBytes));
    for (std::size_t y = 0; y < image.getHeight(); ++y) {
        std::memcpy(row.data(), image.getRowPtr(y), image.getWidth() * image.getBytePixelStride());
        writeAt(descriptor, TRANSFER_PIXELS + y * rowBytes, row.data(), row.size());
    }
}

TransferHeader getHeader(const Transfer& transfer) {
    TransferHeader header{};
    std::memcpy(header.magic, MAGIC, sizeof MAGIC);
    header.format = static_cast<std::uint32_t>(transfer.format);
    header.outcome = static_cast<std::uint32_t>(transfer.outcome);
    header.confined = transfer.confined ? 1 : 0;
    if (transfer.facts) {
        const PictureFacts& facts = *transfer.facts;
        header.width = facts.pixels.width;
        header.height = facts.pixels.height;
        header.bitsPerPixel = facts.pixels.bitsPerPixel;
        header.transparent = facts.pixels.transparent ? 1 : 0;
        header.orientation = static_cast<std::uint32_t>(facts.metadata.orientation);
        header.dotsPerMeterX = facts.metadata.blocks.resolution.x;
        header.dotsPerMeterY = facts.metadata.blocks.resolution.y;
        header.hasPosition = facts.exif.hasPosition ? 1 : 0;
    }
    if (transfer.picture) {
        const Picture& picture = *transfer.picture;
        header.layout = static_cast<std::uint32_t>(picture.pixels.layout());
        header.stored = static_cast<std::uint32_t>(picture.stored);
        header.width = picture.width();
        header.height = picture.height();
        header.dotsPerMeterX = picture.metadata.resolution.x;
        header.dotsPerMeterY = picture.metadata.resolution.y;
        header.alpha = static_cast<std::uint32_t>(picture.alpha);
        header.pixelBytes = rowBytes(picture.pixels.layout(), header.width) * header.height;
    }
    return header;
}

/// The metadata that travel with a picture or with facts; null where neither does.
template <typename T>
auto getMetadata(T& transfer) {
    return transfer.picture ? &transfer.picture->metadata : transfer.facts ? &transfer.facts->metadata.blocks : nullptr;
}

void writeFacts(const PictureFacts& facts, ByteWriter& blocks) {
    blocks.block(Block::SAMPLES, facts.pixels.samples);
    blocks.block(Block::COLOR, facts.pixels.color);
    for (const auto& [label, key, value] : facts.exif.fields) {
        blocks.block(Block::EXIF_LABEL, label);
        blocks.block(Block::EXIF_KEY, key);
        blocks.block(Block::EXIF_VALUE, value);
    }
}

std::string getBlocks(const Transfer& transfer) {
    ByteWriter blocks;
    for (const std::string& warning : transfer.warnings) {
        blocks.block(Block::WARNING, warning);
    }
    if (transfer.outcome == Outcome::FAILURE) {
        blocks.block(Block::FAILURE, transfer.failure);
    }
    if (const Metadata* metadata = getMetadata(transfer)) {
        forEachMember(*metadata, [&](Block kind, const auto& bytes) {
            if (!bytes.empty()) {
                blocks.block(kind, bytes.data(), bytes.size());
            }
        });
    }
    if (transfer.facts) {
        writeFacts(*transfer.facts, blocks);
    }
    return blocks.content();
}

// Reading.

[[noreturn]] void refuse(const char* reason) {
    throw BadTransfer(reason);
}

/// Bytes that are consumed from the front.
class ByteReader {
public:
    explicit ByteReader(std::span<const std::byte> bytes) : mBytes(bytes) {}

    bool isAtEnd() const { return mBytes.empty(); }

    std::uint32_t number() { return getNumber<std::uint32_t>(); }

    std::span<const std::byte> bytes() {
        const auto count = getNumber<std::uint64_t>();
        if (count > mBytes.size()) {
            refuse("a block ends behind the end");
        }
        return take(static_cast<std::size_t>(count));
    }

private:
    std::span<const std::byte> take(std::size_t count) {
        const std::span<const std::byte> taken = mBytes.first(count);
        mBytes = mBytes.subspan(count);
        return taken;
    }

    template <typename T>
    T getNumber() {
        if (mBytes.size() < sizeof(T)) {
            refuse("a number ends behind the end");
        }
        T value{};
        std::memcpy(&value, take(sizeof value).data(), sizeof value);
        return value;
    }

    std::span<const std::byte> mBytes;
};

SampleLayout layoutNumbered(std::uint32_t number) {
    if (number >= SAMPLE_LAYOUT_COUNT) {
        refuse("there is no such sample layout");
    }
    return static_cast<SampleLayout>(number);
}

/// A terminal must not obey what a file makes another process say.
std::string harmlessText(std::span<const std::byte> bytes) {
    return text::inOneLine(text::prefix({reinterpret_cast<const char*>(bytes.data()), bytes.size()}, MAX_TEXT));
}

bool readMember(Block kind, std::span<const std::byte> bytes, Metadata& metadata) {
    bool known = false;
    forEachMember(metadata, [&](Block memberKind, auto& member) {
        if (memberKind == kind) {
            using Value = std::remove_reference_t<decltype(member[0])>;
            const auto* values = reinterpret_cast<const Value*>(bytes.data());
            member.assign(values, values + bytes.size());
            known = true;
        }
    });
    return known;
}

/// False where a block is no fact, or does not belong where it is.
bool readFact(Block kind, std::span<const std::byte> bytes, PictureFacts& facts) {
    std::vector<ExifField>& fields = facts.exif.fields;
    if (kind == Block::EXIF_LABEL) {
        if (fields.size() == MAX_FIELDS) {
            return false;
        }
        fields.emplace_back();
    }
    const bool hasField = !fields.empty();
    switch (kind) {
    case Block::SAMPLES: facts.pixels.samples = harmlessText(bytes); return true;
    case Block::COLOR: facts.pixels.color = harmlessText(bytes); return true;
    case Block::EXIF_LABEL: fields.back().label = harmlessText(bytes); return true;
    case Block::EXIF_KEY: return hasField && (fields.back().key = harmlessText(bytes), true);
    case Block::EXIF_VALUE: return hasField && (fields.back().value = harmlessText(bytes), true);
    default: return false;
    }
}

void readBlock(Block kind, std::span<const std::byte> bytes, Transfer& transfer) {
    Metadata* metadata = getMetadata(transfer);
    if (kind == Block::WARNING && transfer.warnings.size() < MAX_WARNINGS) {
        transfer.warnings.push_back(harmlessText(bytes));
    } else if (kind == Block::FAILURE && transfer.outcome == Outcome::FAILURE) {
        transfer.failure = harmlessText(bytes);
    } else if (!(metadata != nullptr && readMember(kind, bytes, *metadata)) &&
               !(transfer.facts && readFact(kind, bytes, *transfer.facts))) {
        refuse("a block does not belong there");
    }
}

/// Pixels where they are.
PixelBuffer getPixels(const TransferHeader& header, const std::shared_ptr<std::byte>& memory) {
    const SampleLayout layout = layoutNumbered(header.layout);
    if (workingLayout(layout) != layout) {
        refuse("pictures are not worked with in this sample layout");
    }
    constexpr std::uint32_t MAX_SIDE = std::numeric_limits<int>::max() / 128;
    if (header.width == 0 || header.height == 0 || header.width > MAX_SIDE || header.height > MAX_SIDE) {
        refuse("a picture has no such size");
    }
    const std::uint64_t stride = rowBytes(layout, header.width);
    if (header.pixelBytes != stride * header.height) {
        refuse("the pixels are not those of the size");
    }
    const img::Image view(memory.get() + TRANSFER_PIXELS, header.width, header.height, workingFormat(layout),
                          static_cast<std::size_t>(stride));
    return {view, memory};
}

Picture getPicture(const TransferHeader& header, const std::shared_ptr<std::byte>& memory) {
    Picture picture;
    picture.pixels = getPixels(header, memory);
    picture.stored = layoutNumbered(header.stored);
    if (header.alpha > static_cast<std::uint32_t>(AlphaKind::UNPREMULTIPLIED)) {
        refuse("there is no such alpha");
    }
    picture.alpha = static_cast<AlphaKind>(header.alpha);
    picture.metadata.resolution = {header.dotsPerMeterX, header.dotsPerMeterY};
    return picture;
}

PictureFacts getFacts(const TransferHeader& header) {
    constexpr std::uint32_t LAST_ORIENTATION = 8;
    if (header.orientation < 1 || header.orientation > LAST_ORIENTATION) {
        refuse("there is no such orientation");
    }
    PictureFacts facts;
    facts.format = static_cast<FileFormat>(header.format);
    facts.pixels.width = header.width;
    facts.pixels.height = header.height;
    facts.pixels.bitsPerPixel = header.bitsPerPixel;
    facts.pixels.transparent = header.transparent != 0;
    facts.metadata.orientation = static_cast<int>(header.orientation);
    facts.metadata.blocks.resolution = {header.dotsPerMeterX, header.dotsPerMeterY};
    facts.exif.hasPosition = header.hasPosition != 0;
    return facts;
}

TransferHeader checkedHeader(const std::byte* memory, std::size_t size) {
    TransferHeader header{};
    if (size < sizeof header) {
        refuse("there is too little of it");
    }
    std::memcpy(&header, memory, sizeof header);
    if (std::memcmp(header.magic, MAGIC, sizeof header.magic) != 0) {
        refuse("it is of another version");
    }
    if (header.outcome > static_cast<std::uint32_t>(Outcome::UNCONFINED)) {
        refuse("there is no such outcome");
    }
    if (header.format > static_cast<std::uint32_t>(FileFormat::UNKNOWN)) {
        refuse("there is no such format");
    }
    return header;
}

/// Between the pixels and the end of the memory.
std::span<const std::byte> getBlocks(const TransferHeader& header, const std::byte* memory, std::size_t size) {
    const std::uint64_t room = size > TRANSFER_PIXELS ? size - TRANSFER_PIXELS : 0;
    if (header.pixelBytes > room || header.blockBytes > room - header.pixelBytes) {
        refuse("it ends behind the end");
    }
    if (header.blockBytes > MAX_BLOCK_BYTES) {
        refuse("there is too much beside the pixels");
    }
    if (header.blockBytes == 0) {
        return {};
    }
    return {memory + TRANSFER_PIXELS + header.pixelBytes, static_cast<std::size_t>(header.blockBytes)};
}

} // namespace

void TransferWriter::announce(FileFormat format, bool confined) const {
    Transfer transfer;
    transfer.format = format;
    transfer.confined = confined;
    const TransferHeader header = getHeader(transfer);
    writeAt(mDescriptor, 0, &header, sizeof header);
}

void TransferWriter::write(const Transfer& transfer) const {
    TransferHeader header = getHeader(transfer);
    const std::string blocks = getBlocks(transfer);
    header.blockBytes = blocks.size();
    if (transfer.picture) {
        writePixels(mDescriptor, transfer.picture->image(), header.pixelBytes / header.height);
    }
    writeAt(mDescriptor, TRANSFER_PIXELS + header.pixelBytes, blocks.data(), blocks.size());
    writeAt(mDescriptor, 0, &header, sizeof header);
}

Transfer readTransfer(const std::shared_ptr<std::byte>& memory, std::size_t size) {
    const TransferHeader header = checkedHeader(memory.get(), size);
    Transfer transfer;
    transfer.outcome = static_cast<Outcome>(header.outcome);
    transfer.format = static_cast<FileFormat>(header.format);
    transfer.confined = header.confined != 0;
    if (transfer.outcome == Outcome::NONE) {
        return transfer;
    }
    const std::span<const std::byte> bytes = getBlocks(header, memory.get(), size);
    if (transfer.outcome == Outcome::PICTURE) {
        transfer.picture = getPicture(header, memory);
    }
    if (transfer.outcome == Outcome::FACTS) {
        if (transfer.format == FileFormat::UNKNOWN) {
            refuse("facts are of a format");
        }
        transfer.facts = getFacts(header);
    }
    for (ByteReader blocks(bytes); !blocks.isAtEnd();) {
        const auto kind = static_cast<Block>(blocks.number());
        readBlock(kind, blocks.bytes(), transfer);
    }
    return transfer;
}

} // namespace zqx::pictures
