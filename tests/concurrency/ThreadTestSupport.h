// Running one body on several threads at once, and reporting what went wrong on them.
#ifndef KX_TESTS_THREADTESTSUPPORT_H
#define KX_TESTS_THREADTESTSUPPORT_H

#include <gtest/gtest.h>

#include <atomic>
#include <exception>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "KxXmlLib16.h"

namespace KxThreadTest {

// The thread count of every stress test: more threads than cores, so that they interleave.
const int kThreads = 8;

// Runs body(threadIndex) on `threads` threads released together (all of them are started
// before any begins, so the bodies overlap as much as the machine allows). A body reports a
// fault by returning a non-empty text or by throwing; the first fault of each thread becomes
// a test failure naming the thread.
inline void RunTogether(int threads, const std::function<std::string(int)>& body) {
    std::atomic<int> waiting{threads};
    std::vector<std::string> faults(threads);
    std::vector<std::thread> pool;
    pool.reserve(threads);
    for (int t = 0; t < threads; ++t) {
        pool.emplace_back([&, t] {
            waiting.fetch_sub(1);
            while (waiting.load() > 0) std::this_thread::yield();
            try {
                faults[t] = body(t);
            } catch (const KxXmlLib16::CKxException& e) {
                faults[t] = "CKxException: " + e.GetMessage();
            } catch (const std::exception& e) {
                faults[t] = std::string("std::exception: ") + e.what();
            }
        });
    }
    for (std::thread& thread : pool) thread.join();
    for (int t = 0; t < threads; ++t) {
        EXPECT_EQ("", faults[t]) << "thread " << t;
    }
}

}  // namespace KxThreadTest

#endif
