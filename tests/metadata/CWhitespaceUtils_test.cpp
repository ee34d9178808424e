#include <gtest/gtest.h>

#include <random>
#include <string>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

using Rule = CWhitespaceUtils::WhitespaceRule;
constexpr Rule kNone = CWhitespaceUtils::WhitespaceRule_None;
constexpr Rule kPreserve = CWhitespaceUtils::WhitespaceRule_Preserve;
constexpr Rule kReplace = CWhitespaceUtils::WhitespaceRule_Replace;
constexpr Rule kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

}  // namespace

TEST(CWhitespaceUtils, AppliesEachRule) {
    struct Case { Rule rule; std::string in; std::string out; } const cases[] = {
        {kNone, " a\r\n\tb ", " a\r\n\tb "}, {kPreserve, "a\r\nb", "a\nb"},
        {kPreserve, "a\r\r\nb\r", "a\n\nb\n"}, {kPreserve, "a\n\rb", "a\n\nb"},
        {kPreserve, " \t a \n", " \t a \n"},
        {kReplace, "a\r\nb", "a b"},  // one blank for the pair
        {kReplace, "a\tb\nc\rd", "a b c d"}, {kReplace, "\r\r\n", "  "},
        {kReplace, "  x  ", "  x  "}, {kCollapse, " \t  \t", ""}, {kCollapse, "", ""},
        {kCollapse, "  one \t\r\n two   three\n", "one two three"},
        {kCollapse, "a\fb \v c\x01", "a\fb \v c\x01"},  // other control characters are bytes
        {kCollapse, "\xC3\xA9 \t \xE2\x82\xAC", "\xC3\xA9 \xE2\x82\xAC"}, {kCollapse, " a", "a"},
        {kCollapse, "a ", "a"}, {kCollapse, "a b", "a b"},
        {kCollapse, std::string("a\0 \0b", 5), std::string("a\0 \0b", 5)},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(::testing::Message() << "rule " << row.rule << " [" << row.in << "]");
        EXPECT_EQ(row.out, CWhitespaceUtils::ApplyRule(row.rule, row.in));
        EXPECT_EQ(row.out != row.in, CWhitespaceUtils::ChangesText(row.rule, row.in));
    }
}

TEST(CWhitespaceUtils, PreserveOfABufferReadsOnlyTheGivenLength) {
    EXPECT_EQ("a\nb", CWhitespaceUtils::Preserve("a\r\nbXYZ", 4));
    EXPECT_EQ("a\n", CWhitespaceUtils::Preserve("a\r\nb", 2));  // the pair is cut: a lone CR
    EXPECT_EQ("xy", CWhitespaceUtils::Preserve("xyz", 2));
    EXPECT_EQ("", CWhitespaceUtils::Preserve(nullptr, 0));
}

TEST(CWhitespaceUtils, UnknownRuleFails) {
    for (int rule : {4, -1}) {
        KxTest::ExpectKxError<CKxException>(
            [&] { CWhitespaceUtils::ApplyRule(static_cast<Rule>(rule), "x"); },
            "Unknown WhitespaceRule");
        EXPECT_TRUE(CWhitespaceUtils::ChangesText(static_cast<Rule>(rule), "x"));
    }
}

TEST(CWhitespaceUtils, OnlyTheFourWhitespaceCharactersAreWhitespace) {
    for (int c = -128; c < 128; ++c)
        EXPECT_EQ(c == 9 || c == 10 || c == 13 || c == 32,
                  CWhitespaceUtils::IsWhiteSpace(static_cast<char>(c))) << c;
}

// Random texts over whitespace and letters keep the properties that define each rule, and
// ChangesText agrees with the result.
TEST(CWhitespaceUtils, RandomTextsKeepTheRulesInvariants) {
    const char alphabet[] = {' ', '\t', '\n', '\r', 'a', 'b'};
    std::mt19937 random(11);
    for (int n = 0; n < 5000; ++n) {
        std::string text(random() % 12, ' ');
        for (char& c : text) c = alphabet[random() % sizeof alphabet];
        SCOPED_TRACE(::testing::PrintToString(text));
        const std::string replaced = CWhitespaceUtils::Replace(text);
        const std::string collapsed = CWhitespaceUtils::Collapse(text);
        EXPECT_EQ(std::string::npos, CWhitespaceUtils::Preserve(text).find('\r'));
        EXPECT_EQ(std::string::npos, replaced.find_first_of("\t\n\r"));
        EXPECT_EQ(CWhitespaceUtils::Preserve(text).size(), replaced.size());
        EXPECT_EQ(std::string::npos, collapsed.find_first_of("\t\n\r"));
        EXPECT_EQ(std::string::npos, collapsed.find("  "));
        EXPECT_TRUE(collapsed.empty() || (collapsed.front() != ' ' && collapsed.back() != ' '));
        EXPECT_EQ(collapsed, CWhitespaceUtils::Collapse(replaced));
        for (Rule rule : {kNone, kPreserve, kReplace, kCollapse})
            EXPECT_EQ(CWhitespaceUtils::ApplyRule(rule, text) != text,
                      CWhitespaceUtils::ChangesText(rule, text));
    }
}
