#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <thread>
#include <vector>

#include "KxXmlLib16.h"

using namespace KxXmlLib16;

TEST(CKXCriticalSection, SameThreadMayEnterTwice) {
    // On a non-recursive mutex the second Enter would never return; the detached thread keeps
    // the test from hanging so that the time-out reports the failure.
    static CKXCriticalSection section;
    std::promise<void> done;
    std::future<void> finished = done.get_future();
    std::thread([&done] {
        section.Enter();
        section.Enter();
        section.Leave();
        section.Leave();
        done.set_value();
    }).detach();
    EXPECT_EQ(std::future_status::ready, finished.wait_for(std::chrono::seconds(10)));
}

TEST(CKXCriticalSection, SerialisesUpdatesFromManyThreads) {
    CKXCriticalSection section;
    long counter = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 8; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 20000; ++i) {
                CKXLock lock(section);
                ++counter;
            }
        });
    }
    for (auto& thread : threads) thread.join();
    EXPECT_EQ(8 * 20000, counter);
}
