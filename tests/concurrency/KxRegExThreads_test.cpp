// Pattern checks from several threads at once: compiled patterns are kept in one cache that
// all threads share, and entries are evicted while other threads may still match with them.
#include <string>

#include <gtest/gtest.h>

#include "KxXmlLib16.h"
#include "ThreadTestSupport.h"

using namespace KxXmlLib16;
using KxThreadTest::kThreads;
using KxThreadTest::RunTogether;

TEST(KxRegEx, PatternsCheckedOnEightThreadsWhileTheCacheTurnsOver) {
    struct Case {
        const char* pattern;
        const char* matching;
        const char* failing;
    };
    static const Case cases[] = {
        {"[A-Z]{3}-\\d{4}", "ABC-1234", "ABC-123"},
        {"\\d+(\\.\\d{1,2})?", "12.50", "12.505"},
        {"[a-z]+@[a-z]+\\.(com|org)", "anna@example.org", "anna@example.net"},
        {"(ab|cd)*x", "abcdabx", "abcx"},
        {"[^\\s]+", "no-blanks", "a blank"},
    };
    const int caseCount = static_cast<int>(sizeof(cases) / sizeof(cases[0]));
    // Enough distinct patterns over all threads to fill the cache several times.
    const int rounds = 150;

    RunTogether(kThreads, [&](int thread) -> std::string {
        for (int i = 0; i < rounds; ++i) {
            const Case& row = cases[(thread + i) % caseCount];
            if (!TestRegEx(row.pattern, row.matching)) return std::string(row.pattern) + " missed";
            if (TestRegEx(row.pattern, row.failing)) return std::string(row.pattern) + " matched";
            const std::string own = "t" + std::to_string(thread) + "r" + std::to_string(i);
            if (!TestRegEx(own + "[0-9]+", own + "42")) return own + " missed its digits";
            if (TestRegEx(own + "[0-9]+", own + "4x")) return own + " matched a letter";
            try {
                TestRegEx("([a-z", own);
                return "an unclosed group compiled";
            } catch (const CKxException& e) {
                const std::string start = "Invalid Regular Expression: " + own + " Error: '";
                if (e.GetMessage().compare(0, start.size(), start) != 0)
                    return "unexpected message: " + e.GetMessage();
            }
        }
        return "";
    });
}
