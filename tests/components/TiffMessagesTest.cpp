// What the TIFF library says while a component loads: nothing on its thread, everything on others.
#include <qutil/Streams.h>

#include "components/support/Bitmaps.h"
#include "components/support/ComponentTest.h"
#include "components/support/FakeStreams.h"
#include "components/support/Interposed.h"

#if defined(ZQX_CAN_INTERPOSE)

#include <thread>

#include <dlfcn.h>

#include "support/ErrorOutput.h"

namespace {

using namespace test;
using zqx::img::test::ErrorOutput;

/// Of the TIFF library, which is there wherever FreeImage uses the system's.
using Warn = void (*)(const char* module, const char* format, ...);

Warn warner() {
    return reinterpret_cast<Warn>(dlsym(RTLD_DEFAULT, "TIFFWarning"));
}

Bytes somePng() {
    const auto stream = FakeOutputStream::create();
    EXPECT_EQ(painted(2, 2)->saveToStream(stream.get(), FIF_PNG, 0), 0U);
    return stream->writes.front();
}

class TiffMessagesTest : public ComponentTest {
protected:
    void SetUp() override {
        if (warner() == nullptr) {
            GTEST_SKIP() << "FreeImage has a TIFF library of its own";
        }
    }

    /// What reaches the error output when the function runs inside a load.
    static std::string writtenDuringLoad(const std::function<void()>& function) {
        const auto stream = FakeInputStream::create(somePng());
        const DuringLoad during(function);
        const ErrorOutput errors;
        EXPECT_EQ(newBitmap()->loadFromStream(FIF_PNG, stream.get(), 0), 0U);
        return errors.text();
    }
};

} // namespace

TEST_F(TiffMessagesTest, LoadingThreadIsSilent) {
    EXPECT_EQ(writtenDuringLoad([] { warner()("ours", "%s", "words"); }), "");
}

TEST_F(TiffMessagesTest, OtherThreadsAreHeard) {
    const std::string written =
        writtenDuringLoad([] { std::thread([] { warner()("theirs", "%s", "words"); }).join(); });
    EXPECT_NE(written.find("theirs: Warning, words"), std::string::npos) << written;
}

TEST_F(TiffMessagesTest, LoadThatEndsDoesNotEndTheSilenceOfAnother) {
    const std::string written = writtenDuringLoad([] {
        static thread_local bool isInner = false;
        if (isInner) {
            return;
        }
        std::thread([] {
            isInner = true;
            newBitmap()->loadFromStream(FIF_PNG, FakeInputStream::create(somePng()).get(), 0);
        }).join();
        warner()("ours", "%s", "words");
    });
    EXPECT_EQ(written, "");
}

TEST_F(TiffMessagesTest, AfterwardsEverythingIsHeardAgain) {
    writtenDuringLoad([] {});
    const ErrorOutput errors;
    warner()("theirs", "%s", "words");
    EXPECT_NE(errors.text().find("words"), std::string::npos);
}

#endif
