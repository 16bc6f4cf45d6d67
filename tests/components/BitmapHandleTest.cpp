// Bitmaps exchanged with the system's graphics interface by handle.
#include <gdi/Gdi.h>

#include "components/support/Bitmaps.h"
#include "components/support/ComponentTest.h"
#include "components/support/Interposed.h"

#include <zqx/img/FreeImage.h>

namespace {

using namespace test;

/// Frees the system's bitmap at the end.
class Handle {
public:
    Handle() = default;
    ~Handle() {
        if (mHandle != nullptr) {
            gdi::DeleteObject(mHandle);
        }
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;

    void** receive() { return &mHandle; }
    void* get() const { return mHandle; }

private:
    void* mHandle = nullptr;
};

class BitmapHandleTest : public ComponentTest {};

} // namespace

TEST_F(BitmapHandleTest, HandleHasTheBitmapsSizeAndBytes) {
    const Bitmap bitmap = painted(3, 2);
    Handle handle;
    ASSERT_EQ(bitmap->convertToHBitmap(handle.receive()), 0U);
    gdi::BITMAP description = {};
    ASSERT_NE(gdi::GetObjectA(handle.get(), sizeof description, &description), 0);
    EXPECT_EQ(description.bmWidth, 3);
    EXPECT_EQ(description.bmHeight, 2);
    EXPECT_EQ(description.bmBitsPixel, 24);
    const auto* bits = static_cast<const unsigned char*>(description.bmBits);
    EXPECT_EQ(std::vector<int>(bits, bits + 24), bytesOfLine(*bitmap, 0, 24)) << "both lines with their padding";
    EXPECT_TRUE(records().empty());
}

TEST_F(BitmapHandleTest, PixelsSurviveTheWayThereAndBack) {
    for (const int depth : {24, 32}) {
        Handle handle;
        ASSERT_EQ(painted(5, 3, depth)->convertToHBitmap(handle.receive()), 0U);
        const Bitmap back = painted(2, 2);
        EXPECT_EQ(back->convertFromHBitmap(handle.get()), 0U);
        EXPECT_EQ(getDepth(*back), depth);
        EXPECT_TRUE(isPainted(*back, 5, 3));
    }
}

TEST_F(BitmapHandleTest, PaletteAndColourCountSurviveTheWayThereAndBack) {
    const tov::TovRef original(zqx::img::FreeImage::create());
    original->allocate(FIT_BITMAP, 3, 2, 8);
    FreeImage_GetPalette(original->getBitmap())[7] = {1, 2, 3, 0};
    getLine(*original, 1)[2] = 7;
    Handle handle;
    ASSERT_EQ(original->convertToHBitmap(handle.receive()), 0U);

    const tov::TovRef back(zqx::img::FreeImage::create());
    ASSERT_EQ(back->convertFromHBitmap(handle.get()), 0U);
    EXPECT_EQ(FreeImage_GetColorsUsed(back->getBitmap()), 256U);
    EXPECT_EQ(FreeImage_GetInfoHeader(back->getBitmap())->biClrImportant, 256U);
    const RGBQUAD entry = FreeImage_GetPalette(back->getBitmap())[7];
    EXPECT_EQ(entry.rgbBlue, 1);
    EXPECT_EQ(entry.rgbRed, 3);
    EXPECT_EQ(bytesOfLine(*back, 1, 3), (std::vector<int>{0, 0, 7}));
}

TEST_F(BitmapHandleTest, TrueColourHasNoColourCount) {
    Handle handle;
    ASSERT_EQ(painted(2, 2)->convertToHBitmap(handle.receive()), 0U);
    const tov::TovRef back(zqx::img::FreeImage::create());
    ASSERT_EQ(back->convertFromHBitmap(handle.get()), 0U);
    EXPECT_EQ(FreeImage_GetColorsUsed(back->getBitmap()), 0U);
}

TEST_F(BitmapHandleTest, NullHandleKeepsTheBitmap) {
    const Bitmap bitmap = painted(2, 2);
    EXPECT_EQ(bitmap->convertFromHBitmap(nullptr), 0x80070057U);
    EXPECT_TRUE(isPainted(*bitmap, 2, 2));
}

TEST_F(BitmapHandleTest, StaleHandleFailsAndLeavesTheObjectWithoutItsBitmap) {
    void* handle = nullptr;
    ASSERT_EQ(painted(2, 2)->convertToHBitmap(&handle), 0U);
    ASSERT_NE(gdi::DeleteObject(handle), 0);
    const Bitmap bitmap = painted(3, 3);
    EXPECT_EQ(bitmap->convertFromHBitmap(handle), 0x80004005U);
    int width = 0;
    EXPECT_FALSE(bitmap->getWidth(&width) == 0U && width == 3);
}

#if defined(ZQX_CAN_INTERPOSE)

TEST_F(BitmapHandleTest, BitsThatCannotBeHadLeaveTheAllocatedBitmap) {
    Handle handle;
    ASSERT_EQ(painted(5, 3)->convertToHBitmap(handle.receive()), 0U);
    const Bitmap bitmap = painted(2, 2);
    {
        const FaultScope fault(Fault::GET_BITS);
        EXPECT_EQ(bitmap->convertFromHBitmap(handle.get()), 0x80004005U);
    }
    EXPECT_EQ(readWidth(*bitmap), 5);
    EXPECT_EQ(readHeight(*bitmap), 3);
    EXPECT_EQ(logTexts(), Texts{endText(0x80004005)});
}

#endif

TEST_F(BitmapHandleTest, NullOutPointerIsCheckedBeforeTheBitmap) {
    EXPECT_EQ(newBitmap()->convertToHBitmap(nullptr), 0x80070057U);
    void* handle = this;
    EXPECT_EQ(newBitmap()->convertToHBitmap(&handle), 0x80000100U);
    EXPECT_EQ(handle, this);
}

TEST_F(BitmapHandleTest, BitmapThatTheSystemRefusesGivesANullHandleAndSuccess) {
    void* handle = this;
    EXPECT_EQ(allocated(FIT_RGBF, 2, 2, 96)->convertToHBitmap(&handle), 0U);
    EXPECT_EQ(handle, nullptr);
    EXPECT_TRUE(records().empty());
}
