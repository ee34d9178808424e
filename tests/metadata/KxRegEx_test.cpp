#include <gtest/gtest.h>

#include <clocale>
#include <string>
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

// A pattern with values it must match and values it must not.
struct MatchCase { const char* pattern; std::vector<const char*> matching;
                   std::vector<const char*> refused; };

void RunMatchTable(const std::vector<MatchCase>& cases) {
    for (const MatchCase& row : cases) {
        for (const auto& [values, expected] : {std::make_pair(&row.matching, true),
                                               std::make_pair(&row.refused, false)}) {
            for (const char* value : *values) {
                SCOPED_TRACE(std::string("pattern ") + row.pattern + " value " + value);
                EXPECT_EQ(expected, TestRegEx(row.pattern, value));
            }
        }
    }
}

}  // namespace

TEST(KxRegEx, MatchesTheWholeValueWithXsdEscapes) {
    RunMatchTable({
        {"a|b", {"b"}, {"ab"}},  // the alternation is anchored as a whole
        {"[0-9]{3}", {}, {"1234"}},
        {"abc", {}, {"abc\n"}},  // '$' would accept a final newline; the end must be exact
        {"", {""}, {}}, {"(a)(b)(c)(d)(e)(f)", {"abcdef"}, {}},
        {"\\i\\c*", {"x:1", "_a.b-c"}, {"1x"}}, {"\\I", {}, {":"}}, {"\\C", {}, {"-"}},
        {"\\\\i", {"\\i"}, {"a"}},       // backslash backslash i: a backslash, then the letter i
        {"\\\\\\i", {"\\x"}, {"\\1"}},  // escaped backslash, then \i
        {"[\\\\]", {"\\"}, {}},
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
    // First and last code points of each block, and the neighbours outside it.
    RunMatchTable({
        {"\\p{IsBasicLatin}+", {"Az~\x7F"}, {"\xC2\x80"}},                    // U+0080
        {"\\p{IsLatin-1Supplement}", {"\xC2\x80", "\xC3\xBF"}, {"A", "\xC4\x80"}},
        {"\\p{IsLatinExtended-A}", {"\xC4\x80", "\xC5\xBF"}, {"\xC6\x80"}},   // U+0100-017F
        {"\\p{IsLatinExtended-B}", {"\xC6\x80", "\xC9\x8F"}, {"\xC9\x90", "\xC5\xBF", "x"}},
        {"\\P{IsBasicLatin}", {"\xC3\xA9"}, {"e"}},
        {"[\\p{IsBasicLatin}\\p{IsLatin-1Supplement}]+", {"caf\xC3\xA9"}, {"\xC4\x80"}},
        {"[^\\p{IsBasicLatin}]", {"\xC3\xA9"}, {}},
        {"\\\\p{IsBasicLatin}", {"\\p{IsBasicLatin}"}, {}},  // escaped backslash: literal text
    });
}

TEST(KxRegEx, CharacterClassesWithSubtractionAndNameEscapes) {
    RunMatchTable({
        {"[\\i\\-]+", {"a-b"}, {"a1"}}, {"[0-9\\i]+", {"a1:"}, {"a."}},
        {"[^\\i0]", {"1"}, {"0", "x"}}, {"[\\C^]", {"^"}, {"a"}}, {"[]a]", {"]"}, {}},
        {"[a-z-[aeiou]]+", {"bcd"}, {"bad"}}, {"[a-z-[aeiou]]", {}, {"B"}},
        {"[a-c-[b]]", {"c"}, {"b"}}, {"[\\w-[\\d-[5]]]", {"a", "5", "_"}, {"3"}},
        {"[^a-z-[0-9]]", {"A"}, {"5", "a"}},
        {"[\\i-[:]][\\c-[:]]*", {"abc", "_x-1.2"}, {"a:b", ":a", "1a"}},  // NCName
        {"[a-z-[a-z]]", {}, {"a"}}, {"x[0-9-[13579]]{2}y", {"x24y"}, {"x23y"}},
    });
}

TEST(KxRegEx, UncompilablePatternThrowsNamingTheValue) {
    struct Case { const char* pattern; const char* value; const char* message; } cases[] = {
        {"a(b", "VAL", "Invalid Regular Expression: VAL Error: 'missing closing parenthesis'"},
        {"[abc", "x",
         "Invalid Regular Expression: x Error: 'missing terminating ] for character class'"},
        {"a{2,1}", "aa",
         "Invalid Regular Expression: aa Error: 'numbers out of order in {} quantifier'"},
        // A trailing backslash escapes the closing parenthesis of the anchoring.
        {"\\", "v", "Invalid Regular Expression: v Error: 'missing closing parenthesis'"},
        {"a\xFF", "a",
         "Invalid Regular Expression: a Error: 'UTF-8 error: illegal byte (0xfe or 0xff)'"},
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
    // Truncated, overlong and surrogate sequences.
    RunMatchTable({
        {".*", {"ok"}, {"\xFF", "\xC0\x80", "\xED\xA0\x80"}}, {"a.*", {}, {"a\xC3"}},
        {"[\\s\\S]*", {}, {"ok\x80"}},
    });
}

TEST(KxRegEx, ValueGoesThroughTheLocalCodePage) {
    {
        KxTest::ScopedLocale locale(LC_CTYPE, "C.UTF-8");
        if (!locale.Ok()) GTEST_SKIP() << "no C.UTF-8 locale";
        EXPECT_TRUE(TestRegEx("caf\xC3\xA9", "caf\xC3\xA9"));
        EXPECT_TRUE(TestRegEx("a\\?b", "a\xFF" "b"));  // an undecodable byte becomes '?'
    }
    // The value ends at its first zero byte.
    EXPECT_TRUE(TestRegEx("ab", std::string("ab\0cd", 5)));
}
