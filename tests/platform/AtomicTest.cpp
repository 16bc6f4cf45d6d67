// Atomic counters.
#include <rhm/Atomic.h>

#include <thread>
#include <vector>

#include <gtest/gtest.h>

TEST(Atomic, ReturnsTheNewValue) {
    std::uint32_t count = 0;
    EXPECT_EQ(rhm::rhmAtomicIncrement(&count), 1U);
    EXPECT_EQ(rhm::rhmAtomicIncrement(&count), 2U);
    EXPECT_EQ(rhm::rhmAtomicDecrement(&count), 1U);
    EXPECT_EQ(rhm::rhmAtomicDecrement(&count), 0U);
    EXPECT_EQ(count, 0U);
}

TEST(Atomic, CountsOfManyThreadsAddUp) {
    std::uint32_t count = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&count] {
            for (int i = 0; i < 10'000; ++i) {
                rhm::rhmAtomicIncrement(&count);
                rhm::rhmAtomicIncrement(&count);
                rhm::rhmAtomicDecrement(&count);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(count, 40'000U);
}
