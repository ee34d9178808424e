#include <gtest/gtest.h>

#include <clocale>
#include <cstring>
#include <stdexcept>
#include <string>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

std::string Text(const CBinaryData& data) {
    return std::string(reinterpret_cast<const char*>(data.GetData()), data.GetLength());
}

std::wstring Wide(const CBinaryData& data) {
    std::wstring text(data.GetLength() / sizeof(wchar_t), L'\0');
    if (!text.empty()) std::memcpy(&text[0], data.GetData(), data.GetLength());
    return text;
}

}  // namespace

TEST(CEncoder, Utf8ToLocalCodePageInAUtf8LocaleKeepsTheText) {
    KxTest::ScopedLocale locale(LC_CTYPE, "C.UTF-8");
    ASSERT_TRUE(locale.Ok());
    for (const char* text : {"plain", "h\xC3\xA9llo \xE2\x82\xAC \xF0\x9F\x98\x80", ""}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(text, CEncoder::Utf8ToLocalCodePage(text));
        wchar_t wideSmall[2];  // too small: heap buffers are used instead
        char narrowSmall[2];
        EXPECT_EQ(text, CEncoder::Utf8ToLocalCodePage(text, wideSmall, 2, narrowSmall, 2));
        wchar_t wide[64];
        char narrow[64];
        std::memset(narrow, 'x', sizeof narrow);
        EXPECT_EQ(text, CEncoder::Utf8ToLocalCodePage(text, wide, 64, narrow, 64));
        EXPECT_STREQ(text, narrow);
        std::memset(narrow, 'x', sizeof narrow);
        EXPECT_EQ(text, CEncoder::Utf8ToLocalCodePage(text, nullptr, 0, narrow, 64));
        EXPECT_STREQ(text, narrow);
    }
    EXPECT_EQ("ab", CEncoder::Utf8ToLocalCodePage("ab\xC0\xAF" "cd"));  // ends at invalid UTF-8
}

TEST(CEncoder, UnrepresentableCharactersBecomeQuestionMarks) {
    KxTest::ScopedLocale locale(LC_CTYPE, "C");
    ASSERT_TRUE(locale.Ok());
    EXPECT_EQ("h?llo ?", CEncoder::Utf8ToLocalCodePage("h\xC3\xA9llo \xE2\x82\xAC"));
    const unsigned char bytes[] = {'a', 0xF0, 0x9F, 0x98, 0x80, 'b', 'c'};
    EXPECT_EQ("a?b", CEncoder::Utf8ToLocalCodePage(bytes, 6));
    // Valid UTF-8 is not passed through unless the locale's charset is UTF-8.
    EXPECT_EQ("h??", Text(CEncoder::LocalCodePageToUtf8Binary("h\xC3\xA9")));
    EXPECT_EQ("plain", Text(CEncoder::LocalCodePageToUtf8Binary("plain")));
}

TEST(CEncoder, LocalCodePageDecodingReplacesInvalidBytesAndContinues) {
    KxTest::ScopedLocale locale(LC_CTYPE, "C.UTF-8");
    ASSERT_TRUE(locale.Ok());
    struct Case { const char* in; std::wstring wide; const char* utf8; } const cases[] = {
        {"h\xC3\xA9", L"h\u00E9", "h\xC3\xA9"},
        {"a\xFF" "b", L"a?b", "a?b"},
        {"\xE2\x82" "x\xE2\x82\xAC", L"??x\u20AC", "??x\xE2\x82\xAC"},
        {"\xF0\x9F\x98\x80", L"\U0001F600", "\xF0\x9F\x98\x80"},
        {"", L"", ""},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.in);
        EXPECT_EQ(row.wide, Wide(CEncoder::LocalCodePageToUnicodeBinary(row.in)));
        EXPECT_EQ(row.utf8, Text(CEncoder::LocalCodePageToUtf8Binary(row.in)));
    }
}

TEST(CEncoder, AsciiOnlyCopiesBytesBothWays) {
    KxTest::ScopedLocale locale(LC_CTYPE, "C");
    ASSERT_TRUE(locale.Ok());
    const char* text = "h\xC3\xA9 \xFF";
    EXPECT_FALSE(IsASCIIOnly());
    ASCIIOnly(true);
    EXPECT_TRUE(IsASCIIOnly());
    const std::string narrow = CEncoder::Utf8ToLocalCodePage(text);
    const std::string utf8 = Text(CEncoder::LocalCodePageToUtf8Binary(text));
    ASCIIOnly(false);
    EXPECT_EQ(text, narrow);
    EXPECT_EQ(text, utf8);
    EXPECT_EQ("h? ?", CEncoder::Utf8ToLocalCodePage("h\xC3\xA9 \xC3\xA9"));
}

TEST(CEncoder, UnicodeToUtf8BinaryEncodesEveryPlane) {
    EXPECT_EQ("abc", Text(CEncoder::UnicodeToUtf8Binary(L"abc")));
    EXPECT_EQ("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80",
              Text(CEncoder::UnicodeToUtf8Binary(L"a\u00E9\u20AC\U0001F600")));
    EXPECT_EQ(0u, CEncoder::UnicodeToUtf8Binary(L"").GetLength());
}

TEST(CEncoder, Utf16ToLocalCodePageIsNotSupported) {
    const unsigned char data[] = {'a', 0};
    EXPECT_THROW(CEncoder::Utf16ToLocalCodePage(data, 2), std::logic_error);
}
