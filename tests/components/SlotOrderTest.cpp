// The order of the interfaces' slots, which separately built hosts rely on. A slot is known by the method that its log
// record names, or by what it does.
#include "components/support/Slots.h"

#include <filesystem>
#include <functional>

#include <zqx/img/FreeImage.h>
#include <zqx/img/ImageProcessingPipeline.h>

#include "components/support/Bitmaps.h"
#include "components/support/ComponentTest.h"
#include "components/support/FakeStreams.h"

#if defined(ZQX_KNOWS_SLOTS)

namespace {

using namespace test;

constexpr std::nullptr_t NONE = nullptr;

/// A method that logs when it is called on a new component with nothing but zeros.
struct LoggingSlot {
    std::size_t slot;
    std::string method;
    std::function<void(void*, std::size_t)> call;
};

template <typename... Args>
std::function<void(void*, std::size_t)> with(Args... args) {
    return [=](void* object, std::size_t slot) { callSlot(object, slot, args...); };
}

class SlotOrderTest : public ComponentTest {
protected:
    void expectNamed(void* object, const char* className, const std::vector<LoggingSlot>& slots) {
        for (const LoggingSlot& each : slots) {
            clearLog();
            each.call(object, each.slot);
            ASSERT_FALSE(records().empty()) << "slot " << each.slot;
            EXPECT_NE(records().back().function.find(className + ("::" + each.method) + "("), std::string::npos)
                << "slot " << each.slot << " is " << records().back().function;
        }
    }

    static void expectCommonSlots(void* object, const char* iid) {
        void* plain = object;
        EXPECT_EQ(callSlot(object, 0, static_cast<const void*>(iid), &plain), 0x80004002U);
        EXPECT_EQ(plain, nullptr);
        EXPECT_EQ(callSlot(object, 1), 2U);
        EXPECT_EQ(callSlot(object, 4), 3U);
        EXPECT_EQ(callSlot(object, 2), 2U);
        EXPECT_EQ(callSlot(object, 5), 1U);
        void* found = nullptr;
        EXPECT_EQ(callSlot(object, 3, iid, &found), 0U);
        EXPECT_EQ(found, object);
        EXPECT_EQ(callSlot(object, 5), 1U);
        EXPECT_STREQ(callSlot<const char*>(object, 6), iid);
    }
};

} // namespace

TEST_F(SlotOrderTest, EveryComponentStartsWithTheCommonSlots) {
    expectCommonSlots(newBitmap().get(), IFreeImage::IID);
    expectCommonSlots(newPipeline().get(), IImageProcessingPipeline::IID);
    expectCommonSlots(getFactory(BITMAP_CLASS).get(), tov::IObjectFactory::IID);
    expectCommonSlots(getFactory(PIPELINE_CLASS).get(), tov::IObjectFactory::IID);
}

TEST_F(SlotOrderTest, BitmapMethodsThatLogAreInTheirSlots) {
    const tov::Sequence<float> noValues{0, nullptr};
    const qutil::EColor4f color{};
    const Bitmap bitmap = newBitmap();
    expectNamed(bitmap.get(), "FreeImage",
                {{7, "load", with(0, NONE, 0)},
                 {8, "loadFromStream", with(0, NONE, 0)},
                 {11, "allocate", with(0, 0, 0, 0)},
                 {13, "getWidth", with(NONE)},
                 {14, "getHeight", with(NONE)},
                 {15, "getBitsPerPixel", with(NONE)},
                 {16, "getDataType", with(NONE)},
                 {19, "rotate", with(0.0, NONE)},
                 {20, "rescale", with(0, 0, 0, NONE)},
                 {21, "getScanline", with(0, NONE)},
                 {23, "setScanlineF", with(0, &noValues)},
                 {24, "copy", with(0, 0, 0, 0, NONE)},
                 {25, "paste", with(NONE, 0, 0, 0)},
                 {26, "setMetaData", with(NONE)},
                 {27, "compositeBackgroundImage", with(NONE, NONE)},
                 {28, "composite", with(NONE)},
                 {29, "compositeBackgroundColor", with(&color, NONE)},
                 {30, "convertFromHBitmap", with(NONE)},
                 {31, "convertToHBitmap", with(NONE)},
                 {32, "getHash", with(NONE)},
                 {33, "convertTo24Bits", with(NONE)},
                 {34, "convertTo32Bits", with(NONE)},
                 {35, "getPalette", with(NONE)},
                 {36, "getColorType", with(NONE)},
                 {37, "preMultiplyWithAlpha", with()},
                 {38, "getTransparentIndex", with(NONE)},
                 {40, "convertToStandardType", with(NONE, 0)},
                 {41, "convertToType", with(NONE, 0, 0)},
                 {42, "getPitch", with(NONE)}});
}

TEST_F(SlotOrderTest, BitmapSavesInSlots9And10) {
    const TemporaryDirectory directory;
    const std::string path = directory.file("slot.png");
    const Bitmap bitmap = painted(2, 2);
    EXPECT_EQ(callSlot(bitmap.get(), 9, static_cast<int>(FIF_PNG), path.c_str(), 0), 0U);
    EXPECT_TRUE(std::filesystem::exists(path));
    const auto stream = FakeOutputStream::create();
    EXPECT_EQ(callSlot(bitmap.get(), 10, static_cast<tov::IOutputStream*>(stream.get()), static_cast<int>(FIF_PNG), 0),
              0U);
    EXPECT_EQ(stream->writes.size(), 1U);
}

TEST_F(SlotOrderTest, BitmapUnloadsInSlot12) {
    const Bitmap bitmap = painted(2, 2);
    EXPECT_EQ(callSlot(bitmap.get(), 12), 0U);
    EXPECT_TRUE(isEmpty(*bitmap));
}

TEST_F(SlotOrderTest, BitmapReadsAndWritesPixelsInSlots17And18) {
    const Bitmap bitmap = allocated(FIT_RGBAF, 2, 2, 128);
    EXPECT_EQ(callSlot(bitmap.get(), 18, 1, 0, 0.1F, 0.2F, 0.3F, 0.4F), 0U);
    float r = 0.0F;
    float g = 0.0F;
    float b = 0.0F;
    float a = 0.0F;
    EXPECT_EQ(callSlot(bitmap.get(), 17, 1, 0, &r, &g, &b, &a), 0U);
    EXPECT_EQ((Pixel{r, g, b, a}), (Pixel{0.1F, 0.2F, 0.3F, 0.4F}));
}

TEST_F(SlotOrderTest, BitmapSamplesInSlot22) {
    const Bitmap bitmap = painted(2, 2);
    Pixel pixel{};
    EXPECT_EQ(callSlot(bitmap.get(), 22, 0.9F, 0.1F, 0, &pixel.r, &pixel.g, &pixel.b, &pixel.a), 0U);
    EXPECT_EQ(pixel, colorAt(1, 0));
}

TEST_F(SlotOrderTest, BitmapReadsColorsInSlot39) {
    const Bitmap bitmap = painted(2, 2);
    qutil::EColor4f color{};
    EXPECT_EQ(callSlot(bitmap.get(), 39, 1, 1, &color), 0U);
    EXPECT_EQ(color.r, 15.0F);
    EXPECT_EQ(color.g, 60.0F);
    EXPECT_EQ(color.b, 200.0F);
}

TEST_F(SlotOrderTest, BitmapIsDestroyedInTheSlotAfterItsMethods) {
    auto* bitmap = new zqx::img::FreeImage;
    bitmap->allocate(FIT_BITMAP, 4, 4, 24);
    // Two slots stand for a destructor; the second one also frees the object, or leak detection would complain.
    callSlot<void>(static_cast<IFreeImage*>(bitmap), 44);
}

TEST_F(SlotOrderTest, PipelineMethodsThatLogAreInTheirSlots) {
    const Pipeline pipeline = newPipeline();
    expectNamed(pipeline.get(), "ImageProcessingPipeline",
                {{7, "setInputImage", with(NONE)},
                 {8, "getInversionEnabled", with(NONE)},
                 {10, "getColorGradingParams", with(NONE)},
                 {12, "getColorGradingParams", with(NONE)},
                 {13, "getSharpness", with(NONE)},
                 {15, "getFlipHorizontal", with(NONE)},
                 {17, "getFlipVertical", with(NONE)},
                 {19, "getActiveStages", with(NONE)},
                 {21, "execute", with(NONE)},
                 {22, "executePreview", with(0U, 0U, NONE)}});
}

TEST_F(SlotOrderTest, PipelineSettersAreInTheirSlots) {
    const Pipeline pipeline = newPipeline();
    for (const std::size_t slot : {9U, 16U, 18U, 20U}) {
        EXPECT_EQ(callSlot(pipeline.get(), slot, static_cast<int>(slot)), 0U);
        for (const std::size_t getter : {8U, 15U, 17U, 19U}) {
            int value = -1;
            callSlot(pipeline.get(), getter, &value);
            const int expected = getter == 19U ? (slot == 20U ? 20 : 65535) : (getter < slot ? 1 : 0);
            EXPECT_EQ(value, expected) << "slot " << slot << ", read by slot " << getter;
        }
    }
    EXPECT_EQ(callSlot(pipeline.get(), 14, -0.25F), 0U);
    float sharpness = 0.0F;
    EXPECT_EQ(callSlot(pipeline.get(), 13, &sharpness), 0U);
    EXPECT_EQ(sharpness, -0.25F);
}

TEST_F(SlotOrderTest, PipelineGradingIsInSlots10To12) {
    using zqx::img::EColorGradingParams;
    const Pipeline pipeline = newPipeline();
    EColorGradingParams params{};
    ASSERT_EQ(callSlot(pipeline.get(), 12, &params), 0U);
    params.exposure = 1.5F;
    EXPECT_EQ(callSlot(pipeline.get(), 11, static_cast<const EColorGradingParams*>(&params)), 0U);
    EColorGradingParams present{};
    EColorGradingParams defaults{};
    EXPECT_EQ(callSlot(pipeline.get(), 10, &present), 0U);
    EXPECT_EQ(callSlot(pipeline.get(), 12, &defaults), 0U);
    EXPECT_EQ(present.exposure, 1.5F);
    EXPECT_EQ(defaults.exposure, 0.0F);
}

TEST_F(SlotOrderTest, FactoriesCreateInSlot7AndLockInSlot8) {
    for (const char* clsid : {BITMAP_CLASS, PIPELINE_CLASS}) {
        const Factory factory = getFactory(clsid);
        void* component = nullptr;
        EXPECT_EQ(callSlot(factory.get(), 7, NONE, tov::IUnknown::IID, &component), 0U);
        EXPECT_EQ(static_cast<tov::IUnknown*>(component)->release(), 0U);
        EXPECT_EQ(callSlot(factory.get(), 8, 1), 0U);
    }
}

TEST_F(SlotOrderTest, FactoriesAreDestroyedInTheSlotsAfterTheirMethods) {
    for (const char* clsid : {BITMAP_CLASS, PIPELINE_CLASS}) {
        // Leak detection tells if it is not destroyed.
        callSlot<void>(getFactory(clsid).detach(), 10);
    }
}

TEST_F(SlotOrderTest, PipelineFactoryCreatesAnObjectWithoutReferencesAfterItsDestructor) {
    const Factory factory = getFactory(PIPELINE_CLASS);
    auto* pipeline = callSlot<zqx::img::ImageProcessingPipeline*>(factory.get(), 11);
    ASSERT_NE(pipeline, nullptr);
    EXPECT_EQ(pipeline->addRef(), 1U);
    int stages = 0;
    EXPECT_EQ(pipeline->getActiveStages(&stages), 0U);
    EXPECT_EQ(stages, 65535);
    EXPECT_EQ(pipeline->release(), 0U);
}

#endif
