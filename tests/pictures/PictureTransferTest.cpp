// Pictures between processes: what arrives is what was sent, and what nobody honest would send does no harm.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <random>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include "zqx/pictures/isolation/PictureTransfer.h"

namespace zqx::pictures {

namespace {

using Bytes = std::vector<std::byte>;

constexpr unsigned WIDTH = 7; // rows end with padding
constexpr unsigned HEIGHT = 5;
constexpr std::uint32_t NO_OUTCOME = static_cast<std::uint32_t>(Outcome::UNCONFINED) + 1;

Picture examplePicture(SampleLayout layout = SampleLayout::RGB8) {
    Picture picture;
    picture.pixels = PixelBuffer(WIDTH, HEIGHT, layout);
    auto* bytes = static_cast<unsigned char*>(picture.image().getDataPtr());
    for (unsigned i = 0; i < picture.image().getByteRowStride() * HEIGHT; ++i) {
        bytes[i] = static_cast<unsigned char>(i % 64);
    }
    picture.stored = SampleLayout::RGB32F;
    picture.metadata.icc = {1, 2, 3};
    picture.metadata.exif = {4};
    picture.metadata.iptc = {5, 6};
    picture.metadata.xmp = "<x/>";
    picture.metadata.comments = std::string("Author\0Somebody\0", 16);
    picture.alpha = AlphaKind::PREMULTIPLIED;
    picture.metadata.resolution = {1234, 4321};
    return picture;
}

Transfer exampleTransfer(SampleLayout layout = SampleLayout::RGB8) {
    Transfer transfer;
    transfer.outcome = Outcome::PICTURE;
    transfer.format = FileFormat::TIFF;
    transfer.picture = examplePicture(layout);
    transfer.warnings = {"a.tif: one", "a.tif: two"};
    return transfer;
}

Transfer exampleFacts() {
    Transfer transfer;
    transfer.outcome = Outcome::FACTS;
    transfer.format = FileFormat::JPEG;
    PictureFacts& facts = transfer.facts.emplace();
    facts.format = FileFormat::JPEG;
    facts.pixels.width = 6000;
    facts.pixels.height = 4000;
    facts.pixels.bitsPerPixel = 24;
    facts.pixels.samples = "8-bit or less";
    facts.pixels.color = "RGB";
    facts.pixels.transparent = true;
    facts.metadata.orientation = 6;
    facts.metadata.blocks.exif = {4, 2};
    facts.metadata.blocks.xmp = "<x/>";
    facts.metadata.blocks.resolution = {1234, 4321};
    facts.exif.fields = {{"camera make", "cameraMake", "Tester"}, {"taken", "taken", "yesterday"}};
    facts.exif.hasPosition = true;
    return transfer;
}

Bytes written(const Transfer& transfer) {
    std::FILE* file = std::tmpfile();
    TransferWriter(fileno(file)).write(transfer);
    std::fseek(file, 0, SEEK_END);
    Bytes bytes(static_cast<std::size_t>(std::ftell(file)));
    std::rewind(file);
    EXPECT_EQ(std::fread(bytes.data(), 1, bytes.size(), file), bytes.size());
    std::fclose(file);
    return bytes;
}

/// Memory of exactly that size, so that sanitizers notice what goes beyond.
std::shared_ptr<std::byte> getMemory(const Bytes& bytes) {
    std::shared_ptr<std::byte> memory(static_cast<std::byte*>(std::malloc(std::max<std::size_t>(1, bytes.size()))),
                                      std::free);
    std::ranges::copy(bytes, memory.get());
    return memory;
}

Transfer received(const Bytes& bytes) {
    return readTransfer(getMemory(bytes), bytes.size());
}

TransferHeader getHeader(const Bytes& bytes) {
    TransferHeader header;
    std::memcpy(&header, bytes.data(), sizeof header);
    return header;
}

Bytes withHeader(Bytes bytes, const std::function<void(TransferHeader&)>& change) {
    TransferHeader header = getHeader(bytes);
    change(header);
    std::memcpy(bytes.data(), &header, sizeof header);
    return bytes;
}

/// Expects the example to be refused after a change of its header.
void expectRefusal(const std::function<void(TransferHeader&)>& change) {
    EXPECT_THROW(received(withHeader(written(exampleTransfer()), change)), BadTransfer);
}

Bytes withPatch(Bytes bytes, std::string_view before, std::string_view after) {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    const std::size_t place = text.find(before, TRANSFER_PIXELS);
    EXPECT_NE(place, std::string_view::npos);
    std::memcpy(bytes.data() + place, after.data(), after.size());
    return bytes;
}

} // namespace

TEST(PictureTransferTest, PictureArrivesAsItWas) {
    for (const SampleLayout layout : {SampleLayout::GRAY8, SampleLayout::RGB8, SampleLayout::RGBA8,
                                      SampleLayout::GRAY32F, SampleLayout::RGB32F, SampleLayout::RGBA32F}) {
        const Transfer sent = exampleTransfer(layout);
        const Transfer transfer = received(written(sent));
        ASSERT_EQ(transfer.outcome, Outcome::PICTURE);
        EXPECT_EQ(transfer.format, FileFormat::TIFF);
        EXPECT_EQ(transfer.warnings, (std::vector<std::string>{"a.tif: one", "a.tif: two"}));
        const Picture& picture = *transfer.picture;
        EXPECT_EQ(picture.pixels.layout(), layout);
        EXPECT_EQ(picture.stored, SampleLayout::RGB32F);
        EXPECT_EQ(picture.width(), WIDTH);
        EXPECT_EQ(picture.height(), HEIGHT);
        const img::Image& image = sent.picture->image();
        EXPECT_EQ(picture.image().getFormat(), image.getFormat());
        ASSERT_EQ(picture.image().getByteRowStride(), image.getByteRowStride());
        EXPECT_EQ(std::memcmp(picture.image().getDataPtr(), image.getDataPtr(), image.getByteRowStride() * HEIGHT), 0);
        EXPECT_EQ(picture.metadata.resolution, (Resolution{1234, 4321}));
    }
}

TEST(PictureTransferTest, RowsOfAnyStrideTravel) {
    auto wide = std::make_shared<img::Image>(WIDTH, HEIGHT, img::Image::SBGR8, 64);
    std::memset(wide->getDataPtr(), 7, wide->getByteRowStride() * HEIGHT);
    Transfer sent = exampleTransfer();
    sent.picture->pixels = PixelBuffer(wide);
    const Transfer transfer = received(written(sent));
    for (std::size_t y = 0; y < HEIGHT; ++y) {
        EXPECT_EQ(std::memcmp(transfer.picture->image().getRowPtr(y), wide->getRowPtr(y), 3 * WIDTH), 0) << y;
    }
}

TEST(PictureTransferTest, MetadataArrivesAsItWas) {
    const Transfer transfer = received(written(exampleTransfer()));
    const Metadata& metadata = transfer.picture->metadata;
    EXPECT_EQ(metadata.icc, (std::vector<unsigned char>{1, 2, 3}));
    EXPECT_EQ(metadata.exif, (std::vector<unsigned char>{4}));
    EXPECT_EQ(metadata.iptc, (std::vector<unsigned char>{5, 6}));
    EXPECT_EQ(metadata.xmp, "<x/>");
    EXPECT_EQ(metadata.comments, std::string("Author\0Somebody\0", 16));
    EXPECT_EQ(transfer.picture->alpha, AlphaKind::PREMULTIPLIED);
}

TEST(PictureTransferTest, PixelsAreNotCopiedAndKeepTheMemory) {
    const Bytes bytes = written(exampleTransfer());
    std::shared_ptr<std::byte> memory = getMemory(bytes);
    const std::weak_ptr<std::byte> watched = memory;
    Transfer transfer = readTransfer(memory, bytes.size());
    EXPECT_EQ(static_cast<std::byte*>(transfer.picture->image().getDataPtr()), memory.get() + TRANSFER_PIXELS);
    memory.reset();
    PixelBuffer pixels = std::move(transfer.picture->pixels);
    transfer = {};
    EXPECT_FALSE(watched.expired());
    pixels.reset();
    EXPECT_TRUE(watched.expired());
}

TEST(PictureTransferTest, FactsArriveAsTheyWere) {
    const Transfer transfer = received(written(exampleFacts()));
    ASSERT_EQ(transfer.outcome, Outcome::FACTS);
    EXPECT_FALSE(transfer.picture);
    const PictureFacts& facts = *transfer.facts;
    EXPECT_EQ(facts.format, FileFormat::JPEG);
    EXPECT_EQ(facts.pixels.width, 6000U);
    EXPECT_EQ(facts.pixels.height, 4000U);
    EXPECT_EQ(facts.pixels.bitsPerPixel, 24U);
    EXPECT_EQ(facts.pixels.samples, "8-bit or less");
    EXPECT_EQ(facts.pixels.color, "RGB");
    EXPECT_TRUE(facts.pixels.transparent);
    EXPECT_EQ(facts.metadata.orientation, 6);
    EXPECT_EQ(facts.metadata.blocks.exif, (std::vector<unsigned char>{4, 2}));
    EXPECT_EQ(facts.metadata.blocks.xmp, "<x/>");
    EXPECT_EQ(facts.metadata.blocks.resolution, (Resolution{1234, 4321}));
    ASSERT_EQ(facts.exif.fields.size(), 2U);
    EXPECT_EQ(facts.exif.fields[0].label, "camera make");
    EXPECT_EQ(facts.exif.fields[0].key, "cameraMake");
    EXPECT_EQ(facts.exif.fields[1].value, "yesterday");
    EXPECT_TRUE(facts.exif.hasPosition);
}

TEST(PictureTransferTest, FactsArriveWithoutControlCharacters) {
    Transfer transfer = exampleFacts();
    transfer.facts->pixels.color = "\x1B[31mred";
    transfer.facts->exif.fields[0].value = "a\nb";
    const Transfer read = received(written(transfer));
    EXPECT_EQ(read.facts->pixels.color, " [31mred");
    EXPECT_EQ(read.facts->exif.fields[0].value, "a b");
}

TEST(PictureTransferTest, FailureArrivesWithoutControlCharacters) {
    Transfer transfer;
    transfer.outcome = Outcome::FAILURE;
    transfer.failure = "a.tif: \x1B[31mred\n\x7F";
    transfer.warnings = {"a.tif: a\rb"};
    const Transfer read = received(written(transfer));
    EXPECT_EQ(read.outcome, Outcome::FAILURE);
    EXPECT_EQ(read.failure, "a.tif:  [31mred  ");
    EXPECT_EQ(read.warnings, std::vector<std::string>{"a.tif: a b"});
}

TEST(PictureTransferTest, TextIsCutToALength) {
    Transfer transfer;
    transfer.outcome = Outcome::FAILURE;
    transfer.failure = std::string(100'000, 'x');
    EXPECT_EQ(received(written(transfer)).failure, std::string(4096, 'x'));
}

TEST(PictureTransferTest, FormatIsKnownBeforeTheOutcome) {
    std::FILE* file = std::tmpfile();
    TransferWriter(fileno(file)).announce(FileFormat::PSD, true);
    Bytes bytes(sizeof(TransferHeader));
    std::rewind(file);
    ASSERT_EQ(std::fread(bytes.data(), 1, bytes.size(), file), bytes.size());
    std::fclose(file);
    EXPECT_EQ(received(bytes).format, FileFormat::PSD);
    EXPECT_TRUE(received(bytes).confined);
    EXPECT_EQ(received(bytes).outcome, Outcome::NONE);
}

TEST(PictureTransferTest, FullDiskIsNoticed) {
    const int full = open("/dev/full", O_WRONLY);
    if (full < 0) {
        GTEST_SKIP() << "there is no /dev/full";
    }
    EXPECT_THROW(TransferWriter(full).write(exampleTransfer()), std::system_error);
    close(full);
}

TEST(HostileTransferTest, EmptyAndShortMemory) {
    const Bytes bytes = written(exampleTransfer());
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, sizeof(TransferHeader) - 1, sizeof(TransferHeader),
                                   TRANSFER_PIXELS - 1, TRANSFER_PIXELS, TRANSFER_PIXELS + 1, bytes.size() - 1}) {
        EXPECT_THROW(received(Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size))), BadTransfer)
            << size;
    }
}

TEST(HostileTransferTest, ZerosAndNoise) {
    EXPECT_THROW(received(Bytes(100'000)), BadTransfer);
    EXPECT_THROW(received(Bytes(100'000, std::byte{0xFF})), BadTransfer);
}

TEST(HostileTransferTest, AnotherVersion) {
    expectRefusal([](TransferHeader& header) { ++header.magic[8]; });
    expectRefusal([](TransferHeader& header) { header.magic[15] = 'x'; });
}

TEST(HostileTransferTest, NumbersThatAreNoEnumerators) {
    expectRefusal([](TransferHeader& header) { header.outcome = NO_OUTCOME; });
    expectRefusal([](TransferHeader& header) { header.outcome = 0xFFFFFFFF; });
    expectRefusal([](TransferHeader& header) { header.format = FILE_FORMAT_COUNT + 1; });
    expectRefusal([](TransferHeader& header) { header.format = 0x80000000; });
    expectRefusal([](TransferHeader& header) { header.layout = SAMPLE_LAYOUT_COUNT; });
    expectRefusal([](TransferHeader& header) { header.layout = 0xFFFFFFFF; });
    expectRefusal([](TransferHeader& header) { header.stored = SAMPLE_LAYOUT_COUNT; });
    expectRefusal([](TransferHeader& header) { header.stored = 0xFFFFFFFF; });
}

TEST(HostileTransferTest, OutcomeThatIsNoneWithNothingBesideIt) {
    Transfer nothing;
    nothing.outcome = Outcome::OUT_OF_MEMORY;
    EXPECT_EQ(received(written(nothing)).outcome, Outcome::OUT_OF_MEMORY);
    EXPECT_THROW(received(withHeader(written(nothing), [](TransferHeader& header) { header.outcome = NO_OUTCOME; })),
                 BadTransfer);
}

TEST(HostileTransferTest, SizesThatAreNone) {
    expectRefusal([](TransferHeader& header) { header.width = 0; });
    expectRefusal([](TransferHeader& header) { header.height = 0; });
    expectRefusal([](TransferHeader& header) { header.width = header.height = 0; });
    expectRefusal([](TransferHeader& header) { header.width = header.height = header.pixelBytes = 0; });
    expectRefusal([](TransferHeader& header) { header.width = 0x80000000; });
    expectRefusal([](TransferHeader& header) { header.height = 0xFFFFFFFF; });
}

TEST(HostileTransferTest, PixelsThatAreNotThoseOfTheSize) {
    expectRefusal([](TransferHeader& header) { header.width += 2; });
    expectRefusal([](TransferHeader& header) { ++header.height; });
    expectRefusal([](TransferHeader& header) { --header.height; });
    expectRefusal([](TransferHeader& header) { header.layout = static_cast<std::uint32_t>(SampleLayout::RGBA32F); });
    expectRefusal([](TransferHeader& header) { header.pixelBytes += 4; });
}

TEST(HostileTransferTest, PixelsBehindTheEnd) {
    // The size and the number of bytes agree, the memory is too small.
    expectRefusal([](TransferHeader& header) {
        header.width = header.height = 60'000;
        header.pixelBytes = std::uint64_t{180'000} * 60'000;
    });
    expectRefusal([](TransferHeader& header) {
        header.height *= 2;
        header.pixelBytes *= 2;
    });
}

TEST(HostileTransferTest, SumsThatOverflow) {
    // 2^32 rows of 2^30 pixels would be 0 bytes in 64 bits.
    expectRefusal([](TransferHeader& header) {
        header.layout = static_cast<std::uint32_t>(SampleLayout::RGBA8);
        header.width = 0x40000000;
        header.height = 0xFFFFFFFF;
        header.pixelBytes = 0;
    });
    expectRefusal([](TransferHeader& header) { header.blockBytes = ~std::uint64_t{0}; });
    expectRefusal([](TransferHeader& header) { header.blockBytes = ~header.pixelBytes + 1; });
    expectRefusal([](TransferHeader& header) { header.pixelBytes = ~std::uint64_t{0}; });
}

TEST(HostileTransferTest, BlocksThatEndBehindTheEnd) {
    expectRefusal([](TransferHeader& header) { ++header.blockBytes; });
    expectRefusal([](TransferHeader& header) { --header.blockBytes; });
    const Bytes bytes = written(exampleTransfer());
    EXPECT_THROW(received(withPatch(bytes, {"\4\0\0\0\0\0\0\0<x/>", 12}, {"\5\0\0\0\0\0\0\0<x/>", 12})), BadTransfer);
    EXPECT_THROW(received(withPatch(bytes, {"\4\0\0\0\0\0\0\0<x/>", 12}, "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF")),
                 BadTransfer);
}

TEST(HostileTransferTest, BlocksThatDoNotBelongThere) {
    Transfer failure;
    failure.outcome = Outcome::FAILURE;
    failure.failure = "bad";
    const Bytes bytes = written(failure);
    EXPECT_THROW(received(withPatch(bytes, {"\6\0\0\0\3", 5}, {"\0\0\0\0\3", 5})), BadTransfer); // a profile of nothing
    EXPECT_THROW(received(withPatch(bytes, {"\6\0\0\0\3", 5}, {"\x0C\0\0\0\3", 5})), BadTransfer); // of no kind
    Transfer picture = exampleTransfer();
    picture.warnings.assign(1000, "again");
    EXPECT_THROW(received(written(picture)), BadTransfer);
}

TEST(HostileTransferTest, FactsThatAreNone) {
    const Bytes facts = written(exampleFacts());
    for (const std::uint32_t orientation : {0U, 9U, 0x80000000U}) {
        EXPECT_THROW(received(withHeader(facts, [&](TransferHeader& header) { header.orientation = orientation; })),
                     BadTransfer);
    }
    EXPECT_THROW(
        received(withHeader(
            facts, [](TransferHeader& header) { header.format = static_cast<std::uint32_t>(FileFormat::UNKNOWN); })),
        BadTransfer);
    Transfer many = exampleFacts();
    many.facts->exif.fields.assign(65, {"a", "b", "c"});
    EXPECT_THROW(received(written(many)), BadTransfer);
    // A value before any field.
    EXPECT_THROW(received(withPatch(facts, {"\x09\0\0\0", 4}, {"\x0B\0\0\0", 4})), BadTransfer);
    // Facts of a picture, and a picture's facts.
    EXPECT_THROW(received(withHeader(
                     written(exampleTransfer()),
                     [](TransferHeader& header) { header.outcome = static_cast<std::uint32_t>(Outcome::FACTS); })),
                 BadTransfer);
    EXPECT_THROW(
        received(withHeader(
            facts, [](TransferHeader& header) { header.outcome = static_cast<std::uint32_t>(Outcome::PICTURE); })),
        BadTransfer);
}

TEST(HostileTransferTest, NoSuchAlpha) {
    Bytes bytes = written(exampleTransfer());
    bytes[offsetof(TransferHeader, alpha)] = std::byte{3};
    EXPECT_THROW(received(bytes), BadTransfer);
}

TEST(HostileTransferTest, AnyChangedBytes) {
    const Bytes original = written(exampleTransfer());
    const std::size_t pixelEnd = TRANSFER_PIXELS + getHeader(original).pixelBytes;
    std::mt19937 random(20240607);
    int accepted = 0;
    for (int i = 0; i < 20'000; ++i) {
        Bytes bytes = original;
        for (unsigned change = 0; change <= random() % 3; ++change) {
            const bool inHeader = random() % 2 == 0;
            const std::size_t place =
                inHeader ? random() % sizeof(TransferHeader) : pixelEnd + random() % (original.size() - pixelEnd);
            bytes[place] = static_cast<std::byte>(random() % 4 == 0 ? 0xFF : random());
        }
        const std::shared_ptr<std::byte> memory = getMemory(bytes);
        try {
            const Transfer transfer = readTransfer(memory, bytes.size());
            ++accepted;
            if (transfer.picture) {
                const img::Image& image = transfer.picture->image();
                const auto* end = static_cast<const std::byte*>(image.getRowPtr(image.getHeight()));
                ASSERT_LE(end, memory.get() + bytes.size()) << i;
                ASSERT_LE(image.getWidth() * image.getBytePixelStride(), image.getByteRowStride()) << i;
            }
        } catch (const BadTransfer&) {
        }
    }
    EXPECT_GT(accepted, 100); // some changes are of no account, or these would be no tests
    EXPECT_LT(accepted, 19'900);
}

} // namespace zqx::pictures
