// The component runtime: registry, comparisons, memory.
#include <tov/Runtime.h>

#include <cstdint>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

constexpr const char* CLASS = "6a3f5c1e-0000-4000-8000-00000000000a";
constexpr unsigned int MODULE = 901;
constexpr unsigned int OTHER_MODULE = 902;

/// Leaves nothing registered behind.
class Registry : public testing::Test {
protected:
    void TearDown() override {
        tov::tovUnregisterDSO(CLASS, MODULE, 0);
        tov::tovUnregisterDSO(CLASS, OTHER_MODULE, 0);
    }
};

} // namespace

TEST_F(Registry, RegisteredClassIsFoundUntilItIsUnregistered) {
    EXPECT_EQ(tov::tovFindDSO(CLASS), 0U);
    EXPECT_EQ(tov::tovRegisterDSO(CLASS, MODULE, 0), tov::SUCCESS);
    EXPECT_EQ(tov::tovFindDSO(CLASS), MODULE);
    EXPECT_EQ(tov::tovUnregisterDSO(CLASS, MODULE, 0), tov::SUCCESS);
    EXPECT_EQ(tov::tovFindDSO(CLASS), 0U);
}

TEST_F(Registry, ClassIdentifiersIgnoreCase) {
    EXPECT_EQ(tov::tovRegisterDSO(CLASS, MODULE, 0), tov::SUCCESS);
    EXPECT_EQ(tov::tovFindDSO("6A3F5C1E-0000-4000-8000-00000000000A"), MODULE);
}

TEST_F(Registry, ClassOfAnotherModuleIsRefused) {
    EXPECT_EQ(tov::tovRegisterDSO(CLASS, MODULE, 0), tov::SUCCESS);
    EXPECT_EQ(tov::tovRegisterDSO(CLASS, OTHER_MODULE, 0), tov::FAILURE);
    EXPECT_EQ(tov::tovUnregisterDSO(CLASS, OTHER_MODULE, 0), tov::FAILURE);
    EXPECT_EQ(tov::tovFindDSO(CLASS), MODULE);
}

TEST_F(Registry, RegisteringTwiceCountsOnce) {
    EXPECT_EQ(tov::tovRegisterDSO(CLASS, MODULE, 0), tov::SUCCESS);
    EXPECT_EQ(tov::tovRegisterDSO(CLASS, MODULE, 7), tov::SUCCESS);
    EXPECT_EQ(tov::tovUnregisterDSO(CLASS, MODULE, 0), tov::SUCCESS);
    EXPECT_EQ(tov::tovUnregisterDSO(CLASS, MODULE, 0), tov::FAILURE);
}

TEST_F(Registry, NullClassAndModuleZeroAreInvalid) {
    EXPECT_EQ(tov::tovRegisterDSO(nullptr, MODULE, 0), tov::INVALID_ARGUMENT);
    EXPECT_EQ(tov::tovRegisterDSO(CLASS, 0, 0), tov::INVALID_ARGUMENT);
    EXPECT_EQ(tov::tovUnregisterDSO(nullptr, MODULE, 0), tov::INVALID_ARGUMENT);
    EXPECT_EQ(tov::tovUnregisterDSO(CLASS, 0, 0), tov::INVALID_ARGUMENT);
    EXPECT_EQ(tov::tovFindDSO(nullptr), 0U);
}

TEST_F(Registry, ManyThreadsRegisterTheirOwnClasses) {
    constexpr unsigned int THREADS = 8;
    std::vector<std::thread> threads;
    std::vector<int> failures(THREADS, 0);
    for (unsigned int t = 0; t < THREADS; ++t) {
        threads.emplace_back([t, &failures] {
            for (int i = 0; i < 200; ++i) {
                const std::string name = "class-" + std::to_string(t) + "-" + std::to_string(i);
                const bool registered = tov::tovRegisterDSO(name.c_str(), 1000 + t, 0) == tov::SUCCESS;
                const bool found = tov::tovFindDSO(name.c_str()) == 1000 + t;
                const bool gone = tov::tovUnregisterDSO(name.c_str(), 1000 + t, 0) == tov::SUCCESS;
                failures[t] += registered && found && gone ? 0 : 1;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(failures, std::vector<int>(THREADS, 0));
}

TEST(Identifiers, ClassesCompareWithoutCase) {
    EXPECT_EQ(tov::tovCompareCLSID("abc-DEF", "ABC-def"), 0);
    EXPECT_NE(tov::tovCompareCLSID("abc", "abcd"), 0);
    EXPECT_NE(tov::tovCompareCLSID("abcd", "abc"), 0);
    EXPECT_NE(tov::tovCompareCLSID("", "a"), 0);
    EXPECT_EQ(tov::tovCompareCLSID("", ""), 0);
}

TEST(Identifiers, OnlyLettersLoseTheirCase) {
    EXPECT_NE(tov::tovCompareCLSID("@", "`"), 0);
    EXPECT_NE(tov::tovCompareCLSID("[", "{"), 0);
    EXPECT_EQ(tov::tovCompareCLSID("AZ", "az"), 0);
}

TEST(Identifiers, InterfacesCompareExactly) {
    EXPECT_EQ(tov::tovCompareIID("IDL:a:1.0", "IDL:a:1.0"), 0);
    EXPECT_NE(tov::tovCompareIID("IDL:a:1.0", "IDL:A:1.0"), 0);
}

TEST(Identifiers, NullEqualsOnlyNull) {
    for (const auto compare : {tov::tovCompareCLSID, tov::tovCompareIID}) {
        EXPECT_EQ(compare(nullptr, nullptr), 0);
        EXPECT_LT(compare(nullptr, ""), 0);
        EXPECT_GT(compare("", nullptr), 0);
    }
}

TEST(Memory, CallocGivesZeros) {
    auto* bytes = static_cast<unsigned char*>(tov::tovCalloc(100, 3));
    ASSERT_NE(bytes, nullptr);
    for (int i = 0; i < 300; ++i) {
        EXPECT_EQ(bytes[i], 0);
    }
    tov::tovFree(bytes);
}

TEST(Memory, CallocOfNothingIsNotNull) {
    void* nothing = tov::tovCalloc(0, 0);
    EXPECT_NE(nothing, nullptr);
    tov::tovFree(nothing);
}

TEST(Memory, CallocRefusesAnOverflowingProduct) {
    // Kept from the optimiser, which knows better than to ask for that much.
    volatile std::size_t half = std::numeric_limits<std::size_t>::max() / 2;
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    GTEST_SKIP() << "the sanitizer ends the process instead";
#endif
    EXPECT_EQ(tov::tovCalloc(half, 4), nullptr);
}

TEST(Memory, StrDupCopies) {
    const char text[] = "a text";
    char* copy = tov::tovStrDup(text);
    EXPECT_STREQ(copy, "a text");
    EXPECT_NE(copy, text);
    tov::tovFree(copy);
    EXPECT_EQ(tov::tovStrDup(nullptr), nullptr);
}

TEST(Memory, FreeTakesNull) {
    tov::tovFree(nullptr);
}
