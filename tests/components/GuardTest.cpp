// Exceptions, processor faults and shortage of memory inside component methods: they become a result code and records.
// Compiled with exceptions from any access.
#include <cstdint>
#include <stdexcept>

#include <qutil/Error.h>
#include <qutil/SehTranslator.h>
#include <zqx/img/FreeImage.h>
#include <zqx/img/ImageProcessingPipeline.h>

#include "components/support/Allocations.h"
#include "components/support/Bitmaps.h"
#include "components/support/ComponentTest.h"
#include "components/support/FakeStreams.h"

namespace {

using namespace test;

/// Volatile: the compiler must not know that it leads nowhere.
int* volatile gNowhere = nullptr;
volatile int gSink = 0;

/// A way to fail, and what the record of it says.
struct Thrower {
    const char* name;
    void (*raise)();
    std::string text;
};

const Thrower STANDARD = {"Standard", [] { throw std::runtime_error("a standard one"); }, "a standard one"};
const Thrower ERROR_OBJECT = {"ErrorObject", [] { throw new qutil::Error("an error object"); }, "an error object"};
const Thrower ANYTHING = {"Anything", [] { throw 42; }, "Unhandled exception"};
const Thrower FAULT = {"Fault", [] { gSink = *gNowhere; }, "Processor fault"};

/// A plain image that fails to scale.
class ThrowingImage : public zqx::img::Image {
public:
    explicit ThrowingImage(void (*raise)()) : Image(2, 2, Image::SRGB8, 1), mRaise(raise) {}

    std::shared_ptr<Image> scale(std::size_t, std::size_t) override {
        mRaise();
        return nullptr;
    }

private:
    void (*mRaise)();
};

class GuardTest : public ComponentTest, public testing::WithParamInterface<Thrower> {
protected:
    void SetUp() override {
        if (std::string(GetParam().name) == "Fault" && !qutil::SehTranslator::isEffective()) {
            GTEST_SKIP() << "faults are not translated in this build";
        }
    }

    /// The exception's record, then that of the method's end.
    void expectReported(const std::string& file, const std::string& method) {
        ASSERT_EQ(records().size(), 2U);
        const qutil::LogRecord& fatal = records()[0];
        EXPECT_EQ(fatal.category, "unknown");
        EXPECT_EQ(fatal.file, file);
        EXPECT_GT(fatal.line, 0);
        EXPECT_EQ(fatal.level, 0);
        EXPECT_EQ(fatal.text.find(GetParam().text), 0U) << fatal.text;
        const qutil::LogRecord& end = records()[1];
        EXPECT_EQ(end.file, file);
        EXPECT_EQ(end.line, fatal.line);
        EXPECT_EQ(end.level, 2);
        EXPECT_EQ(end.text, endText(0x8000FFFF));
        EXPECT_NE(end.function.find(method), std::string::npos) << end.function;
    }
};

INSTANTIATE_TEST_SUITE_P(Exceptions, GuardTest, testing::Values(STANDARD, ERROR_OBJECT, ANYTHING, FAULT),
                         [](const auto& tested) { return tested.param.name; });

/// Pointers of a host that lead nowhere, into functions of C.
class BadPointerTest : public ComponentTest {
protected:
    void SetUp() override {
        if (!qutil::SehTranslator::isEffective()) {
            GTEST_SKIP() << "faults are not translated in this build";
        }
    }

    static constexpr std::uintptr_t NOWHERE = 64;
};

class MemoryGuardTest : public ComponentTest {
protected:
    /// Calls a method again and again, each time with another allocation failing, until it needs no more.
    template <typename Call>
    static void expectEveryFailureIsUnexpected(const Call& call) {
        for (int after = 0; after < 1000; ++after) {
            tov::Result result = 0;
            bool happened = false;
            {
                const AllocationFailure failure(after);
                result = call();
                happened = failure.hasHappened();
            }
            if (!happened) {
                EXPECT_GT(after, 0) << "it allocates nothing";
                EXPECT_EQ(result, 0U);
                return;
            }
            EXPECT_EQ(result, 0x8000FFFFU) << "allocation " << after;
        }
        FAIL() << "it never comes to an end";
    }
};

} // namespace

TEST_P(GuardTest, SizeQueryOfAStreamThatThrowsIsUnexpected) {
    const Bitmap bitmap = painted(2, 2);
    const auto stream = FakeInputStream::create({});
    stream->onSize = [](std::uint32_t*) {
        GetParam().raise();
        return tov::SUCCESS;
    };
    EXPECT_EQ(bitmap->loadFromStream(-1, stream.get(), 0), 0x8000FFFFU);
    expectReported("src/zqx/img/FreeImage", "zqx::img::FreeImage::loadFromStream(");
    EXPECT_TRUE(isPainted(*bitmap, 2, 2)) << "nothing has been unloaded yet";
    EXPECT_EQ(getReferences(*stream), 1U);
}

TEST_P(GuardTest, ReadOfAStreamThatThrowsIsUnexpected) {
    const Bitmap bitmap = painted(2, 2);
    const auto stream = FakeInputStream::create({1, 2, 3});
    stream->onRead = [](std::uint32_t, unsigned char**) {
        GetParam().raise();
        return tov::SUCCESS;
    };
    EXPECT_EQ(bitmap->loadFromStream(-1, stream.get(), 0), 0x8000FFFFU);
    expectReported("src/zqx/img/FreeImage", "zqx::img::FreeImage::loadFromStream(");
    EXPECT_TRUE(isPainted(*bitmap, 2, 2));
}

TEST_P(GuardTest, WriteToAStreamThatThrowsIsUnexpected) {
    const Bitmap bitmap = painted(2, 2);
    const auto stream = FakeOutputStream::create();
    stream->onWrite = [] {
        GetParam().raise();
        return tov::SUCCESS;
    };
    EXPECT_EQ(bitmap->saveToStream(stream.get(), FIF_PNG, 0), 0x8000FFFFU);
    expectReported("src/zqx/img/FreeImage", "zqx::img::FreeImage::saveToStream(");
    EXPECT_TRUE(isPainted(*bitmap, 2, 2));
}

TEST_P(GuardTest, ScalingThatThrowsIsUnexpectedAndTheSourceIsRestored) {
    const tov::TovRef pipeline(zqx::img::ImageProcessingPipeline::create());
    pipeline->setInputImage(std::make_shared<ThrowingImage>(GetParam().raise));
    IFreeImage* out = nullptr;
    EXPECT_EQ(pipeline->executePreview(1, 1, &out), 0x8000FFFFU);
    EXPECT_EQ(out, nullptr);
    expectReported("src/zqx/img/ImageProcessingPipeline", "zqx::img::ImageProcessingPipeline::executePreview(");
    Bitmap full;
    EXPECT_EQ(pipeline->execute(full.receive()), 0U);
    EXPECT_EQ(readWidth(*full), 2);
}

TEST_F(BadPointerTest, FaultInACopyFromTheHostsMemoryIsUnexpected) {
    const Bitmap bitmap = allocated(FIT_RGBAF, 64, 2, 128);
    EXPECT_EQ(bitmap->setScanlineF(0, {256, reinterpret_cast<float*>(NOWHERE)}), 0x8000FFFFU);
}

TEST_F(BadPointerTest, FaultOverTheHostsTextIsUnexpected) {
    const Bitmap bitmap = painted(2, 2);
    EXPECT_EQ(bitmap->setMetaData(reinterpret_cast<const char*>(NOWHERE)), 0x8000FFFFU);
}

TEST_F(MemoryGuardTest, ReadingTheDefaultsWithoutMemory) {
    const Pipeline pipeline = newPipeline();
    zqx::img::EColorGradingParams params{};
    expectEveryFailureIsUnexpected([&] { return pipeline->getDefaultColorGradingParams(&params); });
}

TEST_F(MemoryGuardTest, SettingTheGradingWithoutMemoryChangesNothing) {
    const Pipeline pipeline = newPipeline();
    zqx::img::EColorGradingParams params{};
    ASSERT_EQ(pipeline->getDefaultColorGradingParams(&params), 0U);
    params.exposure = 2.0F;
    {
        const AllocationFailure failure(0);
        EXPECT_EQ(pipeline->setColorGradingParams(params), 0x8000FFFFU);
    }
    zqx::img::EColorGradingParams present{};
    ASSERT_EQ(pipeline->getColorGradingParams(&present), 0U);
    EXPECT_EQ(present.exposure, 0.0F);
    expectEveryFailureIsUnexpected([&] { return pipeline->setColorGradingParams(params); });
}

TEST_F(MemoryGuardTest, SettingTheInputWithoutMemoryKeepsTheOldOne) {
    const Pipeline pipeline = newPipeline();
    const Bitmap first = painted(3, 2);
    const Bitmap second = painted(2, 2);
    ASSERT_EQ(pipeline->setInputImage(first.get()), 0U);
    {
        const AllocationFailure failure(0);
        EXPECT_EQ(pipeline->setInputImage(second.get()), 0x8000FFFFU);
    }
    EXPECT_EQ(getReferences(*first), 2U);
    EXPECT_EQ(getReferences(*second), 1U);
    expectEveryFailureIsUnexpected([&] { return pipeline->setInputImage(second.get()); });
}

TEST_F(MemoryGuardTest, ExecutingWithoutMemoryWritesNothing) {
    for (const float sharpness : {0.0F, 1.0F, -0.5F}) {
        const Pipeline pipeline = newPipeline();
        ASSERT_EQ(pipeline->setInputImage(painted(6, 5).get()), 0U);
        pipeline->setSharpness(sharpness);
        expectEveryFailureIsUnexpected([&] {
            IFreeImage* out = nullptr;
            const tov::Result result = pipeline->execute(&out);
            EXPECT_EQ(out == nullptr, tov::failed(result));
            if (out != nullptr) {
                out->release();
            }
            return result;
        });
    }
}

TEST_F(MemoryGuardTest, TransformsWithoutMemoryWriteNothing) {
    const Bitmap bitmap = painted(6, 5);
    const std::vector<tov::Result (*)(IFreeImage&, IFreeImage**)> transforms = {
        [](IFreeImage& b, IFreeImage** out) { return b.convertTo32Bits(out); },
        [](IFreeImage& b, IFreeImage** out) { return b.copy(0, 0, 2, 2, out); },
        [](IFreeImage& b, IFreeImage** out) { return b.convertToStandardType(out, 1); },
        [](IFreeImage& b, IFreeImage** out) { return b.convertToType(out, FIT_BITMAP, 1); },
    };
    for (const auto transform : transforms) {
        expectEveryFailureIsUnexpected([&] {
            IFreeImage* out = nullptr;
            const tov::Result result = transform(*bitmap, &out);
            EXPECT_EQ(out == nullptr, tov::failed(result));
            if (out != nullptr) {
                out->release();
            }
            return result;
        });
    }
}

TEST_F(MemoryGuardTest, FactoriesWithoutMemoryMakeNothing) {
    for (const char* clsid : {BITMAP_CLASS, PIPELINE_CLASS}) {
        const Factory factory = getFactory(clsid);
        expectEveryFailureIsUnexpected([&] {
            void* component = nullptr;
            const tov::Result result = factory->createInstance(nullptr, tov::IUnknown::IID, &component);
            EXPECT_EQ(component == nullptr, tov::failed(result));
            if (component != nullptr) {
                static_cast<tov::IUnknown*>(component)->release();
            }
            return result;
        });
        expectEveryFailureIsUnexpected([&] {
            void* made = nullptr;
            const tov::Result result = dsoGetObjectFactory(clsid, tov::IObjectFactory::IID, &made);
            EXPECT_EQ(made == nullptr, tov::failed(result));
            if (made != nullptr) {
                static_cast<tov::IUnknown*>(made)->release();
            }
            return result;
        });
    }
}

TEST_F(MemoryGuardTest, LastingShortageDoesNotLetAnExceptionOutOfTheGuard) {
    const Pipeline pipeline = newPipeline();
    ASSERT_EQ(pipeline->setInputImage(painted(2, 2).get()), 0U);
    IFreeImage* out = nullptr;
    tov::Result result = 0;
    bool escaped = false;
    {
        const AllocationFailure failure(0, AllocationFailure::LASTING);
        try {
            result = pipeline->execute(&out);
        } catch (const std::bad_alloc&) {
            escaped = true;
        }
    }
    EXPECT_FALSE(escaped) << "the record of the failure needs memory, too";
    EXPECT_EQ(result, 0x8000FFFFU);
    EXPECT_EQ(out, nullptr);
}

TEST_F(MemoryGuardTest, LastingShortageDoesNotLetAnExceptionOutOfAnArgumentCheck) {
    const Bitmap bitmap = newBitmap();
    tov::Result result = 0;
    bool escaped = false;
    {
        const AllocationFailure failure(0, AllocationFailure::LASTING);
        try {
            result = bitmap->getWidth(nullptr);
        } catch (const std::bad_alloc&) {
            escaped = true;
        }
    }
    EXPECT_FALSE(escaped);
    EXPECT_EQ(result, 0x80070057U);
}
