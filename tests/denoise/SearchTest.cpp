// Where OpenImageDenoise is looked for, which version wins, and what is said when none will do. Where the libraries lie
// is arranged in CMakeLists.txt, suite by suite.
#include <dlfcn.h>

#include "StandInTest.h"

namespace {

using zqx::img::denoiseImage;
using zqx::img::DenoisingFilter;

#if defined(__APPLE__)
constexpr const char* VERSION_1 = "libOpenImageDenoise.1.dylib";
constexpr const char* VERSION_2 = "libOpenImageDenoise.2.dylib";
#else
constexpr const char* VERSION_1 = "libOpenImageDenoise.so.1";
constexpr const char* VERSION_2 = "libOpenImageDenoise.so.2";
#endif

class DenoiserSearch : public StandInTest {
protected:
    DenoiserSearch() { pictures.giveTo(filter); }

    /// The stand-ins tell their version by the names of their setters.
    void expectRunWith(const std::string& setter) {
        EXPECT_TRUE(filter.execute()) << filter.getErrorMessage();
        bool isCalled = false;
        for (const std::string& call : calls()) {
            isCalled = isCalled || call.starts_with(setter + "(");
        }
        EXPECT_TRUE(isCalled);
        EXPECT_EQ(Pictures::DENOISED, pictures.output.floats[0]);
    }
    void expectVersion1() { expectRunWith("oidnSetFilter1i"); }
    void expectVersion2() { expectRunWith("oidnSetFilterInt"); }

    /// @param reason a part of what is said in brackets about the libraries tried
    void expectNone(const std::string& reason) {
        EXPECT_FALSE(filter.execute());
        const std::string& message = filter.getErrorMessage();
        EXPECT_TRUE(message.starts_with("Denoising needs OpenImageDenoise, version 1 or 2: install it, or put its "
                                        "libraries beside this one ("))
            << message;
        EXPECT_TRUE(message.ends_with(").")) << message;
        EXPECT_NE(std::string::npos, message.find(reason)) << message;
        EXPECT_EQ(Calls(), calls());
    }

    Pictures pictures;
    DenoisingFilter filter;
};

// A folder for each situation: a fixture's name says what lies where.
class WithVersion1And2 : public DenoiserSearch {};
class WithUnloadableFiles : public DenoiserSearch {};
class WithNothing : public DenoiserSearch {};
class WithIncompleteVersion1 : public DenoiserSearch {};
class WithIncompleteVersion2 : public DenoiserSearch {};
class WithIncompleteVersion1AndVersion2 : public DenoiserSearch {};
class WithUnloadableVersion1AndVersion2 : public DenoiserSearch {};
class WithVersion1Beside : public DenoiserSearch {};
class WithVersion2Beside : public DenoiserSearch {};
class WithVersion1BesideAndVersion2 : public DenoiserSearch {};
class WithVersion1BesideAndIncompleteVersion1 : public DenoiserSearch {};
class WithIncompleteVersion1Beside : public DenoiserSearch {};
class WithIncompleteVersion1BesideAndVersion2 : public DenoiserSearch {};

TEST_F(WithVersion1And2, Version1IsUsed) {
    expectVersion1();
}

TEST_F(WithIncompleteVersion1, ItIsNotUsedAtAll) {
    expectNone(std::string(VERSION_1) + ": lacks functions of the interface");
}

TEST_F(WithIncompleteVersion2, ItIsNotUsedAtAll) {
    expectNone(std::string(VERSION_2) + ": lacks functions of the interface");
}

TEST_F(WithIncompleteVersion1AndVersion2, Version2IsUsed) {
    expectVersion2();
}

TEST_F(WithUnloadableVersion1AndVersion2, Version2IsUsed) {
    expectVersion2();
}

TEST_F(WithVersion1Beside, ItIsUsed) {
    expectVersion1();
}

TEST_F(WithVersion2Beside, ItIsUsed) {
    expectVersion2();
}

TEST_F(WithVersion1BesideAndVersion2, Version1IsUsed) {
    expectVersion1();
}

TEST_F(WithVersion1BesideAndIncompleteVersion1, TheOneBesideIsUsed) {
    expectVersion1();
}

TEST_F(WithIncompleteVersion1Beside, ItIsNotUsedAtAll) {
    expectNone(std::string(VERSION_1) + ": lacks functions of the interface");
}

TEST_F(WithIncompleteVersion1BesideAndVersion2, Version2IsUsed) {
    expectVersion2();
}

TEST_F(WithUnloadableFiles, FirstRunSaysWhatToInstallAndLaterOnesThatThereIsNone) {
    expectNone(VERSION_1);
    EXPECT_NE(std::string::npos, filter.getErrorMessage().find(VERSION_2)) << filter.getErrorMessage();
    EXPECT_FALSE(filter.execute());
    EXPECT_EQ("Denoiser not available.", filter.getErrorMessage());
    EXPECT_EQ(-1, pictures.output.floats[0]) << "the output changed";
}

TEST_F(WithUnloadableFiles, ArraysStayAsTheyAre) {
    std::vector<float> color(8, 4);
    std::vector<float> others(6, 1);
    std::string error;
    EXPECT_FALSE(denoiseImage(color.data(), others.data(), others.data(), 2, 1, false, error));
    EXPECT_TRUE(error.starts_with("Denoising needs OpenImageDenoise")) << error;
    EXPECT_FALSE(denoiseImage(color.data(), others.data(), others.data(), 2, 1, false, error));
    EXPECT_EQ("Denoiser not available.", error);
    EXPECT_EQ(std::vector<float>(8, 4), color);
}

TEST_F(WithNothing, FirstRunSaysWhatToInstallAndLaterOnesThatThereIsNone) {
    if (dlopen(VERSION_1, RTLD_LAZY) != nullptr || dlopen(VERSION_2, RTLD_LAZY) != nullptr) {
        GTEST_SKIP() << "OpenImageDenoise is installed on this machine";
    }
    expectNone(VERSION_1);
    EXPECT_FALSE(filter.execute());
    EXPECT_EQ("Denoiser not available.", filter.getErrorMessage());
}

} // namespace
