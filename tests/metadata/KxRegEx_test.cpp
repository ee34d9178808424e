#include <gtest/gtest.h>

#include <atomic>
#include <clocale>
#include <string>
#include <thread>
#include <vector>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

// Bytes pass the local-code-page step unchanged while it lives.
class AsciiOnlyScope {
public:
    AsciiOnlyScope() { ASCIIOnly(true); }
    ~AsciiOnlyScope() { ASCIIOnly(false); }
};

struct MatchCase {
    const char* pattern;
    const char* value;
    bool matches;
};

void RunMatchTable(const std::vector<MatchCase>& cases) {
    for (const MatchCase& row : cases) {
        SCOPED_TRACE(std::string("pattern ") + row.pattern + " value " + row.value);
        EXPECT_EQ(row.matches, TestRegEx(row.pattern, row.value));
    }
}

}  // namespace

TEST(KxRegEx, MatchesTheWholeValueWithXsdEscapes) {
    RunMatchTable({
        {"a|b", "b", true},
        {"a|b", "ab", false},  // the alternation is anchored as a whole
        {"[0-9]{3}", "1234", false},
        {"abc", "abc\n", false},  // '$' would accept a final newline; the end must be exact
        {"", "", true},
        {"(a)(b)(c)(d)(e)(f)", "abcdef", true},
        {"\\i\\c*", "x:1", true},
        {"\\i\\c*", "1x", false},
        {"\\i\\c*", "_a.b-c", true},
        {"\\I", ":", false},
        {"\\C", "-", false},
        {"\\\\i", "\\i", true},  // backslash backslash i: a backslash, then the letter i
        {"\\\\i", "a", false},
        {"\\\\\\i", "\\x", true},  // escaped backslash, then \i
        {"\\\\\\i", "\\1", false},
        {"[\\\\]", "\\", true},
    });
}

TEST(KxRegEx, NameEscapesAndTheirComplementsSplitEveryCharacter) {
    KxTest::ScopedLocale locale(LC_CTYPE, "C.UTF-8");
    if (!locale.Ok()) GTEST_SKIP() << "no C.UTF-8 locale";
    std::vector<std::string> characters = {"\xC3\xA9", "\xC3\x9F", "\xD0\x96", "\xE4\xB8\xAD",
                                           "\xF0\x9F\x98\x80"};
    for (char c : std::string("aZq09:.-_ \t\n!@[\\^`{~/*+$"))
        characters.push_back(std::string(1, c));
    std::string nameStarts, nameChars;
    for (const std::string& c : characters) {
        SCOPED_TRACE(c);
        if (TestRegEx("\\i", c)) nameStarts += c;
        if (TestRegEx("\\c", c)) nameChars += c;
        EXPECT_NE(TestRegEx("\\i", c), TestRegEx("\\I", c));
        EXPECT_NE(TestRegEx("\\c", c), TestRegEx("\\C", c));
        // Inside classes the same sets hold.
        EXPECT_EQ(TestRegEx("\\i", c), TestRegEx("[\\i]", c));
        EXPECT_EQ(TestRegEx("\\I", c), TestRegEx("[^\\i]", c));
        EXPECT_EQ(TestRegEx("\\c", c), TestRegEx("[\\c]", c));
        EXPECT_EQ(TestRegEx("\\C", c), TestRegEx("[^\\c]", c));
    }
    EXPECT_EQ("aZq:_", nameStarts);  // \w and \d are ASCII-only
    EXPECT_EQ("aZq09:.-_", nameChars);
}

TEST(KxRegEx, LatinBlocksCoverTheirCodePoints) {
    KxTest::ScopedLocale locale(LC_CTYPE, "C.UTF-8");
    if (!locale.Ok()) GTEST_SKIP() << "no C.UTF-8 locale";
    RunMatchTable({
        {"\\p{IsBasicLatin}+", "Az~\x7F", true},
        {"\\p{IsBasicLatin}", "\xC2\x80", false},        // U+0080
        {"\\p{IsLatin-1Supplement}", "\xC2\x80", true},  // U+0080
        {"\\p{IsLatin-1Supplement}", "\xC3\xBF", true},  // U+00FF
        {"\\p{IsLatin-1Supplement}", "A", false},
        {"\\p{IsLatin-1Supplement}", "\xC4\x80", false},  // U+0100
        {"\\p{IsLatinExtended-A}", "\xC4\x80", true},     // U+0100
        {"\\p{IsLatinExtended-A}", "\xC5\xBF", true},     // U+017F
        {"\\p{IsLatinExtended-A}", "\xC6\x80", false},    // U+0180
        {"\\p{IsLatinExtended-B}", "\xC6\x80", true},     // U+0180
        {"\\p{IsLatinExtended-B}", "\xC9\x8F", true},     // U+024F
        {"\\p{IsLatinExtended-B}", "\xC9\x90", false},    // U+0250
        {"\\p{IsLatinExtended-B}", "\xC5\xBF", false},    // U+017F
        {"\\p{IsLatinExtended-B}", "x", false},
        {"\\P{IsBasicLatin}", "\xC3\xA9", true},
        {"\\P{IsBasicLatin}", "e", false},
        {"[\\p{IsBasicLatin}\\p{IsLatin-1Supplement}]+", "caf\xC3\xA9", true},
        {"[\\p{IsBasicLatin}\\p{IsLatin-1Supplement}]+", "\xC4\x80", false},
        {"[^\\p{IsBasicLatin}]", "\xC3\xA9", true},
        {"\\\\p{IsBasicLatin}", "\\p{IsBasicLatin}", true},  // escaped backslash: literal text
    });
}

TEST(KxRegEx, CharacterClassesWithSubtractionAndNameEscapes) {
    RunMatchTable({
        {"[\\i\\-]+", "a-b", true},
        {"[\\i\\-]+", "a1", false},
        {"[0-9\\i]+", "a1:", true},
        {"[0-9\\i]+", "a.", false},
        {"[^\\i0]", "1", true},
        {"[^\\i0]", "0", false},
        {"[^\\i0]", "x", false},
        {"[\\C^]", "^", true},
        {"[\\C^]", "a", false},
        {"[]a]", "]", true},
        {"[a-z-[aeiou]]+", "bcd", true},
        {"[a-z-[aeiou]]+", "bad", false},
        {"[a-z-[aeiou]]", "B", false},
        {"[a-c-[b]]", "c", true},
        {"[a-c-[b]]", "b", false},
        {"[\\w-[\\d-[5]]]", "a", true},
        {"[\\w-[\\d-[5]]]", "5", true},
        {"[\\w-[\\d-[5]]]", "3", false},
        {"[\\w-[\\d-[5]]]", "_", true},
        {"[^a-z-[0-9]]", "A", true},
        {"[^a-z-[0-9]]", "5", false},
        {"[^a-z-[0-9]]", "a", false},
        {"[\\i-[:]][\\c-[:]]*", "abc", true},  // NCName
        {"[\\i-[:]][\\c-[:]]*", "_x-1.2", true},
        {"[\\i-[:]][\\c-[:]]*", "a:b", false},
        {"[\\i-[:]][\\c-[:]]*", ":a", false},
        {"[\\i-[:]][\\c-[:]]*", "1a", false},
        {"[a-z-[a-z]]", "a", false},
        {"x[0-9-[13579]]{2}y", "x24y", true},
        {"x[0-9-[13579]]{2}y", "x23y", false},
    });
}

TEST(KxRegEx, UncompilablePatternThrowsNamingTheValue) {
    struct Case {
        const char* pattern;
        const char* value;
        const char* message;
    } cases[] = {
        {"a(b", "VAL", "Invalid Regular Expression: VAL Error: 'missing closing parenthesis'"},
        {"[abc", "x",
         "Invalid Regular Expression: x Error: 'missing terminating ] for character "
         "class'"},
        {"a{2,1}", "aa",
         "Invalid Regular Expression: aa Error: 'numbers out of order in {} "
         "quantifier'"},
        // A trailing backslash escapes the closing parenthesis of the anchoring.
        {"\\", "v", "Invalid Regular Expression: v Error: 'missing closing parenthesis'"},
        {"a\xFF", "a",
         "Invalid Regular Expression: a Error: 'UTF-8 error: illegal byte (0xfe or "
         "0xff)'"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.pattern);
        // Twice: a failed compilation is reported on every call.
        for (int attempt = 0; attempt < 2; ++attempt)
            KxTest::ExpectKxError<CKxException>([&] { TestRegEx(row.pattern, row.value); },
                                                row.message);
    }
}

TEST(KxRegEx, InvalidUtf8ValueDoesNotMatch) {
    AsciiOnlyScope bytesUnchanged;
    RunMatchTable({
        {".*", "\xFF", false},
        {"a.*", "a\xC3", false},        // truncated sequence
        {".*", "\xC0\x80", false},      // overlong form
        {".*", "\xED\xA0\x80", false},  // surrogate
        {"[\\s\\S]*", "ok\x80", false},
        {".*", "ok", true},
    });
}

TEST(KxRegEx, ValueGoesThroughTheLocalCodePage) {
    {
        KxTest::ScopedLocale locale(LC_CTYPE, "C.UTF-8");
        if (!locale.Ok()) GTEST_SKIP() << "no C.UTF-8 locale";
        EXPECT_TRUE(TestRegEx("caf\xC3\xA9", "caf\xC3\xA9"));
        EXPECT_TRUE(TestRegEx("a\\?b",
                              "a\xFF"
                              "b"));  // an undecodable byte becomes '?'
    }
    // The value ends at its first zero byte.
    EXPECT_TRUE(TestRegEx("ab", std::string("ab\0cd", 5)));
}

TEST(KxRegEx, ManyPatternsFromManyThreadsGiveTheSameAnswers) {
    // More distinct patterns than a cache would hold, asked repeatedly from several threads.
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([t, &wrong] {
            for (int n = 0; n < 1200; ++n) {
                const std::string digits = std::to_string((n * 7 + t) % 600);
                const std::string pattern = "[A-Z]{2}" + digits + "(x|y)*";
                if (!TestRegEx(pattern, "AB" + digits + "xyx")) ++wrong;
                if (TestRegEx(pattern, "AB" + digits + "z")) ++wrong;
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(0, wrong.load());
}
