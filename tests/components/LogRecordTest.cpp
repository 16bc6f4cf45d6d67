// What component methods log: which record, with what in it, and when none.
#include <zqx/img/FreeImage.h>
#include <zqx/img/ImageProcessingPipeline.h>

#include "components/support/Bitmaps.h"
#include "components/support/ComponentTest.h"
#include "components/support/FakeStreams.h"
#include "components/support/SourceLines.h"

namespace {

using namespace test;

const std::vector<std::string> BITMAP_SOURCES = {"FreeImage.cpp", "FreeImagePixels.cpp", "FreeImageTransforms.cpp"};
const std::vector<std::string> PIPELINE_SOURCES = {"ImageProcessingPipeline.cpp"};

/// A call that fails, and the parameter it names.
template <typename Interface>
struct NullCall {
    std::string method;
    std::string parameter;
    tov::Result (*call)(Interface&);
};

class LogRecordTest : public ComponentTest {
protected:
    /// The one record there is, field by field.
    void expectOneRecord(const std::string& file, const std::string& method, const std::string& text) {
        ASSERT_EQ(records().size(), 1U) << method;
        const qutil::LogRecord& record = records().front();
        EXPECT_EQ(record.category, "unknown") << method;
        EXPECT_EQ(record.file, file) << method;
        EXPECT_EQ(record.level, 2) << method;
        EXPECT_EQ(record.text, text) << method;
        EXPECT_NE(record.function.find(method + "("), std::string::npos) << record.function;
        EXPECT_GT(record.line, 0) << method;
    }

    template <typename Interface>
    void expectNamed(Interface& component, const std::string& file, const std::string& className,
                     const std::vector<std::string>& sources, const std::vector<NullCall<Interface>>& calls) {
        for (const NullCall<Interface>& each : calls) {
            clearLog();
            EXPECT_EQ(each.call(component), 0x80070057U) << each.method;
            const std::string method = className + "::" + each.method;
            expectOneRecord(file, "zqx::img::" + method, each.parameter);
            EXPECT_TRUE(isLineFrom(method + "(", records().front().line, sources)) << method;
        }
    }
};

} // namespace

TEST_F(LogRecordTest, BitmapNamesItsNullPointers) {
    using Call = NullCall<IFreeImage>;
    const std::vector<Call> calls = {
        {"load", "path", [](IFreeImage& b) { return b.load(-1, nullptr, 0); }},
        {"loadFromStream", "pStream", [](IFreeImage& b) { return b.loadFromStream(-1, nullptr, 0); }},
        {"getWidth", "pWidth", [](IFreeImage& b) { return b.getWidth(nullptr); }},
        {"getHeight", "pHeight", [](IFreeImage& b) { return b.getHeight(nullptr); }},
        {"getBitsPerPixel", "pBitsPerPixel", [](IFreeImage& b) { return b.getBitsPerPixel(nullptr); }},
        {"getDataType", "pType", [](IFreeImage& b) { return b.getDataType(nullptr); }},
        {"getPitch", "pPitch", [](IFreeImage& b) { return b.getPitch(nullptr); }},
        {"getScanline", "pLine", [](IFreeImage& b) { return b.getScanline(0, nullptr); }},
        {"rotate", "pOut", [](IFreeImage& b) { return b.rotate(90.0, nullptr); }},
        {"rescale", "pOut", [](IFreeImage& b) { return b.rescale(1, 1, 0, nullptr); }},
        {"copy", "pOut", [](IFreeImage& b) { return b.copy(0, 0, 1, 1, nullptr); }},
        {"paste", "pSource", [](IFreeImage& b) { return b.paste(nullptr, 0, 0, 256); }},
        {"composite", "pOut", [](IFreeImage& b) { return b.composite(nullptr); }},
        {"compositeBackgroundImage", "pOut",
         [](IFreeImage& b) { return b.compositeBackgroundImage(nullptr, nullptr); }},
        {"compositeBackgroundImage", "pBackground",
         [](IFreeImage& b) {
             IFreeImage* out = nullptr;
             return b.compositeBackgroundImage(nullptr, &out);
         }},
        {"compositeBackgroundColor", "pOut", [](IFreeImage& b) { return b.compositeBackgroundColor({}, nullptr); }},
        {"convertFromHBitmap", "pHandle", [](IFreeImage& b) { return b.convertFromHBitmap(nullptr); }},
        {"convertToHBitmap", "pHandle", [](IFreeImage& b) { return b.convertToHBitmap(nullptr); }},
        {"convertTo24Bits", "pOut", [](IFreeImage& b) { return b.convertTo24Bits(nullptr); }},
        {"convertTo32Bits", "pOut", [](IFreeImage& b) { return b.convertTo32Bits(nullptr); }},
        {"getPalette", "pPalette", [](IFreeImage& b) { return b.getPalette(nullptr); }},
        {"getColorType", "pType", [](IFreeImage& b) { return b.getColorType(nullptr); }},
    };
    expectNamed(*painted(2, 2), "src/zqx/img/FreeImage", "FreeImage", BITMAP_SOURCES, calls);
}

TEST_F(LogRecordTest, PipelineNamesItsNullPointers) {
    using Call = NullCall<IImageProcessingPipeline>;
    const std::vector<Call> calls = {
        {"getInversionEnabled", "pEnabled", [](IImageProcessingPipeline& p) { return p.getInversionEnabled(nullptr); }},
        {"getColorGradingParams", "pParams",
         [](IImageProcessingPipeline& p) { return p.getColorGradingParams(nullptr); }},
        {"getColorGradingParams", "pParams",
         [](IImageProcessingPipeline& p) { return p.getDefaultColorGradingParams(nullptr); }},
        {"getSharpness", "pStrength", [](IImageProcessingPipeline& p) { return p.getSharpness(nullptr); }},
        {"getFlipHorizontal", "pFlipHorizontal",
         [](IImageProcessingPipeline& p) { return p.getFlipHorizontal(nullptr); }},
        {"getFlipVertical", "pFlipVertical", [](IImageProcessingPipeline& p) { return p.getFlipVertical(nullptr); }},
        {"getActiveStages", "pStageFlags", [](IImageProcessingPipeline& p) { return p.getActiveStages(nullptr); }},
        {"execute", "pOutImage", [](IImageProcessingPipeline& p) { return p.execute(nullptr); }},
        {"executePreview", "pPreviewImage",
         [](IImageProcessingPipeline& p) { return p.executePreview(1, 1, nullptr); }},
    };
    const Pipeline pipeline = newPipeline();
    ASSERT_EQ(pipeline->setInputImage(painted(2, 2).get()), 0U);
    expectNamed(*pipeline, "src/zqx/img/ImageProcessingPipeline", "ImageProcessingPipeline", PIPELINE_SOURCES, calls);
}

TEST_F(LogRecordTest, AdapterNamesItsNullPointers) {
    const tov::TovRef bitmap(zqx::img::FreeImage::create());
    bitmap->queryInterface(tov::IUnknown::IID, nullptr);
    expectOneRecord("include/qutil/InterfaceAdapter", "queryInterface", "pIfc");
    clearLog();
    bitmap->getClassName(nullptr);
    expectOneRecord("include/qutil/InterfaceAdapter", "getClassName", "pName");
}

TEST_F(LogRecordTest, FunctionIsTheFullSignature) {
    newPipeline()->getSharpness(nullptr);
    newBitmap()->getWidth(nullptr);
    ASSERT_EQ(records().size(), 2U);
    const std::string getSharpness = records()[0].function;
    const std::string getWidth = records()[1].function;
    EXPECT_NE(getSharpness.find("zqx::img::ImageProcessingPipeline::getSharpness(float"), std::string::npos);
    EXPECT_NE(getWidth.find("zqx::img::FreeImage::getWidth(int"), std::string::npos);
    EXPECT_EQ(getSharpness.back(), ')');
    EXPECT_GT(getSharpness.find("zqx::img"), 0U) << "the return type comes first: " << getSharpness;
}

TEST_F(LogRecordTest, MissingSourceIsNamedByMember) {
    const Pipeline pipeline = newPipeline();
    IFreeImage* out = nullptr;
    EXPECT_EQ(pipeline->execute(&out), 0x80000100U);
    expectOneRecord("src/zqx/img/ImageProcessingPipeline", "zqx::img::ImageProcessingPipeline::execute", "mSrcImage");
    clearLog();
    EXPECT_EQ(pipeline->executePreview(1, 1, &out), 0x80000100U);
    expectOneRecord("src/zqx/img/ImageProcessingPipeline", "zqx::img::ImageProcessingPipeline::executePreview",
                    "mSrcImage.get()");
}

TEST_F(LogRecordTest, FailingBitmapMethodsEndWithTheirResult) {
    using Call = NullCall<IFreeImage>;
    const std::vector<Call> calls = {
        {"saveToStream", "", [](IFreeImage& b) { return b.saveToStream(FakeOutputStream::create().get(), 13, 0); }},
        {"getWidth", "",
         [](IFreeImage& b) {
             int n = 0;
             return b.getWidth(&n);
         }},
        {"getHeight", "",
         [](IFreeImage& b) {
             int n = 0;
             return b.getHeight(&n);
         }},
        {"getBitsPerPixel", "",
         [](IFreeImage& b) {
             int n = 0;
             return b.getBitsPerPixel(&n);
         }},
        {"getDataType", "",
         [](IFreeImage& b) {
             int n = 0;
             return b.getDataType(&n);
         }},
        {"getPitch", "", [](IFreeImage& b) { return b.getPitch(nullptr); }},
        {"getScanline", "", [](IFreeImage& b) { return b.getScanline(0, nullptr); }},
        {"setScanlineF", "",
         [](IFreeImage& b) {
             return b.setScanlineF(0, {0, nullptr});
         }},
        {"rotate", "",
         [](IFreeImage& b) {
             IFreeImage* o = nullptr;
             return b.rotate(1.0, &o);
         }},
        {"rescale", "",
         [](IFreeImage& b) {
             IFreeImage* o = nullptr;
             return b.rescale(1, 1, 0, &o);
         }},
        {"copy", "",
         [](IFreeImage& b) {
             IFreeImage* o = nullptr;
             return b.copy(0, 0, 1, 1, &o);
         }},
        {"paste", "", [](IFreeImage& b) { return b.paste(&b, 0, 0, 256); }},
        {"composite", "",
         [](IFreeImage& b) {
             IFreeImage* o = nullptr;
             return b.composite(&o);
         }},
        {"compositeBackgroundImage", "",
         [](IFreeImage& b) {
             IFreeImage* o = nullptr;
             return b.compositeBackgroundImage(nullptr, &o);
         }},
        {"compositeBackgroundColor", "",
         [](IFreeImage& b) {
             IFreeImage* o = nullptr;
             return b.compositeBackgroundColor({}, &o);
         }},
        {"convertToHBitmap", "",
         [](IFreeImage& b) {
             void* h = nullptr;
             return b.convertToHBitmap(&h);
         }},
        {"getHash", "", [](IFreeImage& b) { return b.getHash(nullptr); }},
        {"convertTo24Bits", "",
         [](IFreeImage& b) {
             IFreeImage* o = nullptr;
             return b.convertTo24Bits(&o);
         }},
        {"convertTo32Bits", "",
         [](IFreeImage& b) {
             IFreeImage* o = nullptr;
             return b.convertTo32Bits(&o);
         }},
        {"getPalette", "",
         [](IFreeImage& b) {
             tov::Sequence<qutil::EColor3f> p{};
             return b.getPalette(&p);
         }},
        {"getColorType", "",
         [](IFreeImage& b) {
             zqx::qfreeimage::ColorType t{};
             return b.getColorType(&t);
         }},
        {"preMultiplyWithAlpha", "", [](IFreeImage& b) { return b.preMultiplyWithAlpha(); }},
        {"getTransparentIndex", "", [](IFreeImage& b) { return b.getTransparentIndex(nullptr); }},
        {"convertToStandardType", "", [](IFreeImage& b) { return b.convertToStandardType(nullptr, 1); }},
        {"convertToType", "", [](IFreeImage& b) { return b.convertToType(nullptr, 1, 1); }},
    };
    const Bitmap bitmap = newBitmap();
    for (const Call& each : calls) {
        clearLog();
        EXPECT_EQ(each.call(*bitmap), 0x80000100U) << each.method;
        expectOneRecord("src/zqx/img/FreeImage", "zqx::img::FreeImage::" + each.method, endText(0x80000100));
        EXPECT_TRUE(isLineFrom("FreeImage::" + each.method + "(", records().front().line, BITMAP_SOURCES))
            << each.method;
    }
}

TEST_F(LogRecordTest, OtherFailingResultsAreGivenInWordsToo) {
    const Bitmap bitmap = newBitmap();
    EXPECT_EQ(bitmap->rescale(0, 1, 0, nullptr), 0x80070057U);
    EXPECT_EQ(bitmap->allocate(FIT_UNKNOWN, 1, 1, 8), 0x80004005U);
    EXPECT_EQ(bitmap->setMetaData("x"), 0x80004005U);
    EXPECT_EQ(painted(1, 1)->preMultiplyWithAlpha(), 0x80004005U);
    EXPECT_EQ(allocated(FIT_BITMAP, 1, 1, 8)->setScanlineF(0, {0, nullptr}), 0x80000101U);
    EXPECT_EQ(logTexts(), (Texts{endText(0x80070057), endText(0x80004005), endText(0x80004005), endText(0x80004005),
                                 endText(0x80000101)}));
}

TEST_F(LogRecordTest, SinglePixelsAndSavingAreNotLogged) {
    const TemporaryDirectory directory;
    const Bitmap empty = newBitmap();
    const Bitmap grey = allocated(FIT_BITMAP, 1, 1, 8);
    Pixel pixel{};
    qutil::EColor4f color{};
    for (IFreeImage* bitmap : {empty.get(), grey.get()}) {
        bitmap->getPixelF(0, 0, &pixel.r, &pixel.g, &pixel.b, &pixel.a);
        bitmap->setPixelF(0, 0, 0.0F, 0.0F, 0.0F, 0.0F);
        bitmap->sampleF(0.5F, 0.5F, 1, &pixel.r, &pixel.g, &pixel.b, &pixel.a);
        bitmap->getPixelColor(0, 0, &color);
        bitmap->save(FIF_PNG, nullptr, 0);
        bitmap->save(-1, directory.file("none").c_str(), 0);
        bitmap->saveToStream(nullptr, FIF_PNG, 0);
    }
    EXPECT_EQ(logTexts(), Texts{});
}

TEST_F(LogRecordTest, NothingIsLoggedAtReportingLevelOne) {
    qutil::Log::setReportingLevel(1);
    const Bitmap bitmap = newBitmap();
    const Pipeline pipeline = newPipeline();
    IFreeImage* out = nullptr;
    EXPECT_EQ(bitmap->queryInterface(tov::IUnknown::IID, nullptr), 0x80070057U);
    EXPECT_EQ(bitmap->load(-1, nullptr, 0), 0x80070057U);
    EXPECT_EQ(bitmap->load(-1, "no such file", 0), 0x80004005U);
    EXPECT_EQ(bitmap->rotate(1.0, &out), 0x80000100U);
    EXPECT_EQ(pipeline->execute(&out), 0x80000100U);
    EXPECT_EQ(pipeline->executePreview(1, 1, &out), 0x80000100U);
    EXPECT_EQ(pipeline->getSharpness(nullptr), 0x80070057U);
    EXPECT_EQ(pipeline->getColorGradingParams(nullptr), 0x80070057U);
    EXPECT_EQ(logTexts(), Texts{});
}

TEST_F(LogRecordTest, ExceptionsAreReportedAtAnyLevelButTheEndIsNot) {
    qutil::Log::setReportingLevel(1);
    EXPECT_EQ(newPipeline()->setInputImage(nullptr), 0x8000FFFFU);
    ASSERT_EQ(records().size(), 1U);
    EXPECT_EQ(records().front().level, 0);
}

TEST_F(LogRecordTest, HigherReportingLevelsLogTheSame) {
    qutil::Log::setReportingLevel(5);
    newPipeline()->getSharpness(nullptr);
    expectOneRecord("src/zqx/img/ImageProcessingPipeline", "getSharpness", "pStrength");
}

TEST_F(LogRecordTest, SuccessLogsNothing) {
    const Bitmap bitmap = painted(4, 4, 32);
    const Pipeline pipeline = newPipeline();
    Bitmap out;
    EXPECT_EQ(bitmap->rotate(90.0, out.receive()), 0U);
    EXPECT_EQ(bitmap->rescale(2, 2, 5, out.receive()), 0U);
    EXPECT_EQ(bitmap->setMetaData("<x/>"), 0U);
    EXPECT_EQ(pipeline->setInputImage(bitmap.get()), 0U);
    EXPECT_EQ(pipeline->setSharpness(0.5F), 0U);
    EXPECT_EQ(pipeline->execute(out.receive()), 0U);
    EXPECT_EQ(pipeline->executePreview(2, 2, out.receive()), 0U);
    tov::Sequence<qutil::EColor3f> palette{};
    EXPECT_EQ(bitmap->getPalette(&palette), 1U) << "a remark, not a failure";
    EXPECT_EQ(logTexts(), Texts{});
    EXPECT_TRUE(assertions().empty());
}
