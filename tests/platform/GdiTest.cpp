// The graphics calls, where the platform library provides them itself, by the contracts seen on the real system.
#include <gdi/Gdi.h>

#include <gtest/gtest.h>

#if !defined(_WIN32)

#include <array>
#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

namespace {

/// A header with room for a palette, laid out as the bitmap library does.
struct Info {
    std::uint32_t size = 40;
    std::int32_t width = 0;
    std::int32_t height = 0;
    std::uint16_t planes = 1;
    std::uint16_t bitsPerPixel = 0;
    std::uint32_t compression = 0;
    std::uint32_t imageSize = 0;
    std::int32_t horizontalResolution = 2835;
    std::int32_t verticalResolution = 2835;
    std::uint32_t coloursUsed = 0;
    std::uint32_t coloursImportant = 0;
    std::array<std::uint32_t, 256> palette = {};

    Info(int w, int h, int bits)
        : width(w), height(h), bitsPerPixel(static_cast<std::uint16_t>(bits)), coloursUsed(bits == 8 ? 256 : 0) {}
};

std::size_t computePitch(const Info& info) {
    return (static_cast<std::size_t>(info.width) * info.bitsPerPixel / 8 + 3) / 4 * 4;
}

/// A bitmap that is deleted with the test, its bits filled with 1, 2, 3 and so on.
class Section {
public:
    explicit Section(const Info& info) {
        void* bits = nullptr;
        mHandle = gdi::CreateDIBSection(nullptr, &info, gdi::RGB_COLORS, &bits, nullptr, 0);
        mBits = static_cast<unsigned char*>(bits);
        const std::size_t bytes = computePitch(info) * static_cast<std::size_t>(info.height);
        for (std::size_t i = 0; i < bytes; ++i) {
            mBits[i] = static_cast<unsigned char>(i + 1);
        }
    }
    ~Section() { gdi::DeleteObject(mHandle); }
    Section(const Section&) = delete;
    Section& operator=(const Section&) = delete;

    gdi::HBITMAP handle() const { return mHandle; }
    unsigned char* bits() const { return mBits; }

private:
    gdi::HBITMAP mHandle = nullptr;
    unsigned char* mBits = nullptr;
};

class Gdi : public testing::Test {
protected:
    Gdi() : mContext(gdi::GetDC(nullptr)) {}
    ~Gdi() override { gdi::ReleaseDC(nullptr, mContext); }

    /// All lines of a bitmap, as the header wants them; empty on failure.
    std::vector<unsigned char> getLines(gdi::HBITMAP bitmap, Info& info) const {
        std::vector<unsigned char> lines(computePitch(info) * static_cast<std::size_t>(info.height), 0xEE);
        const int copied = gdi::GetDIBits(mContext, bitmap, 0, static_cast<unsigned int>(info.height), lines.data(),
                                          &info, gdi::RGB_COLORS);
        return copied == info.height ? lines : std::vector<unsigned char>();
    }

    gdi::HDC mContext;
};

gdi::HBITMAP badHandle() {
    static int notABitmap = 0;
    return reinterpret_cast<gdi::HBITMAP>(&notABitmap);
}

using Bytes = std::vector<unsigned char>;

} // namespace

TEST_F(Gdi, ContextsAreReleasedOnce) {
    const gdi::HDC context = gdi::GetDC(nullptr);
    EXPECT_NE(context, nullptr);
    EXPECT_EQ(gdi::ReleaseDC(nullptr, context), 1);
    EXPECT_EQ(gdi::ReleaseDC(nullptr, context), 0);
    EXPECT_EQ(gdi::ReleaseDC(nullptr, nullptr), 0);
}

TEST_F(Gdi, ThereAreNoWindows) {
    int window = 0;
    EXPECT_EQ(gdi::GetDC(&window), nullptr);
}

TEST_F(Gdi, GetObjectDescribesABitmap) {
    const Section section(Info(3, 2, 24));
    gdi::BITMAP record = {};
    EXPECT_EQ(gdi::GetObjectA(section.handle(), sizeof record, &record), static_cast<int>(sizeof record));
    EXPECT_EQ(record.bmType, 0);
    EXPECT_EQ(record.bmWidth, 3);
    EXPECT_EQ(record.bmHeight, 2);
    EXPECT_EQ(record.bmWidthBytes, 12);
    EXPECT_EQ(record.bmPlanes, 1);
    EXPECT_EQ(record.bmBitsPixel, 24);
    EXPECT_EQ(record.bmBits, section.bits());
}

TEST_F(Gdi, GetObjectTellsTheSizeNeeded) {
    const Section section(Info(3, 2, 24));
    gdi::BITMAP record = {};
    EXPECT_EQ(gdi::GetObjectA(section.handle(), 0, nullptr), static_cast<int>(sizeof record));
    EXPECT_EQ(gdi::GetObjectA(section.handle(), sizeof record - 1, &record), 0);
}

TEST_F(Gdi, BadHandlesGiveZero) {
    gdi::BITMAP record = {};
    Info info(1, 1, 24);
    for (const gdi::HBITMAP handle : {gdi::HBITMAP(nullptr), badHandle()}) {
        EXPECT_EQ(gdi::GetObjectA(handle, sizeof record, &record), 0);
        EXPECT_TRUE(getLines(handle, info).empty());
        EXPECT_EQ(gdi::DeleteObject(handle), 0);
    }
}

TEST_F(Gdi, DeletedBitmapsAreGone) {
    Info info(1, 1, 32);
    const gdi::HBITMAP bitmap = gdi::CreateDIBSection(mContext, &info, gdi::RGB_COLORS, nullptr, nullptr, 0);
    ASSERT_NE(bitmap, nullptr);
    EXPECT_EQ(gdi::DeleteObject(bitmap), 1);
    EXPECT_EQ(gdi::DeleteObject(bitmap), 0);
    gdi::BITMAP record = {};
    EXPECT_EQ(gdi::GetObjectA(bitmap, sizeof record, &record), 0);
}

TEST_F(Gdi, NewSectionIsZeroAndWritable) {
    const Info info(5, 3, 24);
    void* bits = nullptr;
    const gdi::HBITMAP bitmap = gdi::CreateDIBSection(mContext, &info, gdi::RGB_COLORS, &bits, nullptr, 0);
    ASSERT_NE(bits, nullptr);
    EXPECT_EQ(Bytes(static_cast<unsigned char*>(bits), static_cast<unsigned char*>(bits) + 48), Bytes(48, 0));
    std::memset(bits, 7, 48);
    Info same(5, 3, 24);
    EXPECT_EQ(getLines(bitmap, same), Bytes(48, 7));
    gdi::DeleteObject(bitmap);
}

TEST_F(Gdi, UnknownHeadersGiveNoSectionAndNoBits) {
    Info top(2, 2, 24);
    top.height = -2;
    Info fields(2, 2, 32);
    fields.compression = 3;
    Info core(2, 2, 24);
    core.size = 12;
    for (const Info& info : {Info(2, 2, 96), Info(2, 2, 16), Info(0, 2, 24), Info(2, 0, 24), Info(70'000, 70'000, 24),
                             top, fields, core}) {
        void* bits = &bits;
        EXPECT_EQ(gdi::CreateDIBSection(mContext, &info, gdi::RGB_COLORS, &bits, nullptr, 0), nullptr);
        EXPECT_EQ(bits, nullptr);
    }
}

TEST_F(Gdi, SectionsNeedAHeaderAndNoFile) {
    const Info info(2, 2, 24);
    int file = 0;
    void* bits = &bits;
    EXPECT_EQ(gdi::CreateDIBSection(mContext, nullptr, gdi::RGB_COLORS, &bits, nullptr, 0), nullptr);
    EXPECT_EQ(bits, nullptr);
    EXPECT_EQ(gdi::CreateDIBSection(mContext, &info, 1, &bits, nullptr, 0), nullptr);
    EXPECT_EQ(gdi::CreateDIBSection(mContext, &info, gdi::RGB_COLORS, &bits, &file, 0), nullptr);
}

TEST_F(Gdi, SameDepthCopiesAllBytes) {
    for (const int bits : {24, 32}) {
        const Section section(Info(3, 2, bits));
        Info info(3, 2, bits);
        EXPECT_EQ(getLines(section.handle(), info), Bytes(section.bits(), section.bits() + 24));
    }
}

TEST_F(Gdi, WideningTo32BitsGivesAlphaZero) {
    const Section section(Info(1, 2, 24));
    Info info(1, 2, 32);
    EXPECT_EQ(getLines(section.handle(), info), (Bytes{1, 2, 3, 0, 5, 6, 7, 0}));
}

TEST_F(Gdi, NarrowingTo24BitsDropsAlpha) {
    const Section section(Info(1, 2, 32));
    Info info(1, 2, 24);
    const Bytes lines = getLines(section.handle(), info);
    ASSERT_EQ(lines.size(), 8U);
    EXPECT_EQ(Bytes(lines.begin(), lines.begin() + 3), (Bytes{1, 2, 3}));
    EXPECT_EQ(Bytes(lines.begin() + 4, lines.begin() + 7), (Bytes{5, 6, 7}));
}

TEST_F(Gdi, PaletteTravelsWithEightBits) {
    Info source(4, 1, 8);
    for (std::uint32_t i = 0; i < 256; ++i) {
        source.palette[i] = i * 0x10203U & 0xFFFFFFU;
    }
    const Section section(source);
    Info info(4, 1, 8);
    EXPECT_EQ(getLines(section.handle(), info), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(info.palette, source.palette);
}

TEST_F(Gdi, ShortPaletteIsFilledUpWithBlack) {
    Info source(4, 1, 8);
    source.coloursUsed = 2;
    source.palette.fill(0x00FFFFFF);
    const Section section(source);
    Info info(4, 1, 8);
    getLines(section.handle(), info);
    EXPECT_EQ(info.palette[1], 0x00FFFFFFU);
    EXPECT_EQ(info.palette[2], 0U);
}

TEST_F(Gdi, PaletteColoursWidenTo24And32Bits) {
    Info source(1, 1, 8);
    source.palette[1] = 0x00112233; // red 11, green 22, blue 33
    const Section section(source);
    Info to24(1, 1, 24);
    const Bytes narrow = getLines(section.handle(), to24);
    EXPECT_EQ(Bytes(narrow.begin(), narrow.begin() + 3), (Bytes{0x33, 0x22, 0x11}));
    Info to32(1, 1, 32);
    EXPECT_EQ(getLines(section.handle(), to32), (Bytes{0x33, 0x22, 0x11, 0}));
}

TEST_F(Gdi, ColoursAreNotReducedToAPalette) {
    const Section section(Info(1, 1, 24));
    Info info(1, 1, 8);
    EXPECT_TRUE(getLines(section.handle(), info).empty());
    EXPECT_EQ(info.coloursUsed, 256U);
}

TEST_F(Gdi, ColourCountsBecomeZero) {
    const Section section(Info(4, 1, 8));
    Info info(4, 1, 8);
    info.coloursImportant = 256;
    getLines(section.handle(), info);
    EXPECT_EQ(info.coloursUsed, 0U);
    EXPECT_EQ(info.coloursImportant, 0U);
    EXPECT_EQ(info.horizontalResolution, 2835);
}

TEST_F(Gdi, LinesCountFromTheBottomAndEndAtTheTop) {
    const Section section(Info(1, 4, 32));
    Info info(1, 4, 32);
    Bytes lines(16, 0xEE);
    EXPECT_EQ(gdi::GetDIBits(mContext, section.handle(), 1, 2, lines.data(), &info, gdi::RGB_COLORS), 2);
    EXPECT_EQ(lines, (Bytes{5, 6, 7, 8, 9, 10, 11, 12, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE}));
    EXPECT_EQ(gdi::GetDIBits(mContext, section.handle(), 3, 9, lines.data(), &info, gdi::RGB_COLORS), 1);
    EXPECT_EQ(gdi::GetDIBits(mContext, section.handle(), 4, 1, lines.data(), &info, gdi::RGB_COLORS), 0);
}

TEST_F(Gdi, WrongArgumentsCopyNothing) {
    const Section section(Info(2, 2, 24));
    Info info(2, 2, 24);
    Info wider(3, 2, 24);
    Bytes lines(64, 0xEE);
    EXPECT_EQ(gdi::GetDIBits(nullptr, section.handle(), 0, 2, lines.data(), &info, gdi::RGB_COLORS), 0);
    EXPECT_EQ(gdi::GetDIBits(mContext, section.handle(), 0, 2, nullptr, &info, gdi::RGB_COLORS), 0);
    EXPECT_EQ(gdi::GetDIBits(mContext, section.handle(), 0, 2, lines.data(), nullptr, gdi::RGB_COLORS), 0);
    EXPECT_EQ(gdi::GetDIBits(mContext, section.handle(), 0, 2, lines.data(), &info, 1), 0);
    EXPECT_EQ(gdi::GetDIBits(mContext, section.handle(), 0, 2, lines.data(), &wider, gdi::RGB_COLORS), 0);
    EXPECT_EQ(lines, Bytes(64, 0xEE));
}

TEST_F(Gdi, ManyThreadsMakeAndDeleteBitmaps) {
    std::vector<std::thread> threads;
    std::vector<int> good(4, 0);
    for (std::size_t t = 0; t < good.size(); ++t) {
        threads.emplace_back([t, &good] {
            for (int i = 0; i < 200; ++i) {
                const Section section(Info(3, 3, 24));
                gdi::BITMAP record = {};
                good[t] += gdi::GetObjectA(section.handle(), sizeof record, &record) != 0 ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(good, std::vector<int>(4, 200));
}

#endif
