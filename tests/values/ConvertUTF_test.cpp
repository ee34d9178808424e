#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

using Bytes = std::vector<unsigned char>;
using Units16 = std::vector<unsigned short>;
using Units32 = std::vector<unsigned int>;

Bytes B(const std::string& text) { return Bytes(text.begin(), text.end()); }

// Each converter into a target of `room` units; the result holds what was written.
template <typename In, typename Out, typename Fn>
std::vector<Out> Convert(Fn convert, const std::vector<In>& in, size_t room) {
    std::vector<Out> out(room);
    out.resize(convert(in.data(), in.data() + in.size(), out.data(), out.data() + room));
    return out;
}
Units16 To16(const Bytes& in, size_t room) {
    return Convert<unsigned char, unsigned short>(ConvertUTF8toUTF16, in, room);
}
Bytes To8(const Units16& in, size_t room) {
    return Convert<unsigned short, unsigned char>(ConvertUTF16toUTF8, in, room);
}
Bytes To8(const Units32& in, size_t room) {
    return Convert<unsigned int, unsigned char>(ConvertUTF32toUTF8, in, room);
}

}  // namespace

TEST(ConvertUTF, Utf8MeasuresZeroWhenInvalidAnywhere) {
    struct Case { std::string in; unsigned long utf16, utf32; } const cases[] = {
        {"A", 1, 1}, {"h\xC3\xA9", 2, 2}, {"\xE2\x82\xAC", 1, 1}, {"\xF0\x9F\x98\x80", 2, 1},
        {"\xF4\x8F\xBF\xBF", 2, 1}, {"", 0, 0},
        {"\xC0\xAF", 0, 0},              // overlong slash
        {"ab\xE0\x80\xAF", 0, 0},        // overlong three-byte form
        {"\xED\xA0\x80", 0, 0},          // surrogate
        {"\xF4\x90\x80\x80", 0, 0},      // above U+10FFFF
        {"\xF8\x88\x80\x80\x80", 0, 0},  // five-byte form
        {"a\xC3", 0, 0}, {"\xE2\x82", 0, 0},  // truncated
        {"\x80z", 0, 0}, {"\xC3\x28", 0, 0}, {"ok\xFF", 0, 0},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(::testing::PrintToString(row.in));
        const Bytes in = B(row.in);
        const unsigned char* end = in.data() + in.size();
        EXPECT_EQ(row.utf16, ConvertUTF8toUTF16(in.data(), end, nullptr, nullptr));
        EXPECT_EQ(row.utf32, ConvertUTF8toUTF32(in.data(), end, nullptr, nullptr));
    }
}

TEST(ConvertUTF, ConvertingStopsAtAnInvalidSequenceOrWhenTheTargetIsFull) {
    struct Case { std::string in; size_t room; Units16 out; } const cases[] = {
        {"ab\xC0\xAF" "cd", 16, {'a', 'b'}}, {"a\xE2\x82", 16, {'a'}},
        {"\xC3\xA9\xED\xA0\x80x", 16, {0xE9}},
        {"\xF0\x9F\x98\x80", 1, {}},  // a surrogate pair is not split
        {"a\xF0\x9F\x98\x80", 2, {'a'}}, {"a\xF0\x9F\x98\x80", 3, {'a', 0xD83D, 0xDE00}},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(::testing::PrintToString(row.in));
        EXPECT_EQ(row.out, To16(B(row.in), row.room));
    }
    EXPECT_EQ(B("a"), To8(Units32{'a', 0x20AC}, 3));
    EXPECT_EQ(B("\xC3\xA9"), To8(Units16{0xE9, 0xD83D, 0xDE00}, 5));
}

TEST(ConvertUTF, Utf16RejectsLoneAndReversedSurrogates) {
    const Units16 lone = {'x', 'y', 0xD800};  // measured 0, converted up to just before it
    EXPECT_EQ(0u, ConvertUTF16toUTF8(lone.data(), lone.data() + 3, nullptr, nullptr));
    EXPECT_EQ(B("xy"), To8(lone, 16));
    for (const Units16& bad : {Units16{0xDC00, 0xD800}, Units16{0xD800, 'a'}, Units16{0xDFFF}}) {
        EXPECT_EQ(0u, ConvertUTF16toUTF8(bad.data(), bad.data() + bad.size(), nullptr, nullptr));
        EXPECT_EQ(0u, ConvertUTF16toUTF32(bad.data(), bad.data() + bad.size(), nullptr, nullptr));
        EXPECT_EQ(Bytes(), To8(bad, 16));
    }
    // The converting call of UTF-16 to UTF-32 reports 0 but writes the text.
    const Units16 in = {'a', 0xD83D, 0xDE00, 0xE9};
    Units32 out(3);
    EXPECT_EQ(3u, ConvertUTF16toUTF32(in.data(), in.data() + 4, nullptr, nullptr));
    EXPECT_EQ(0u, ConvertUTF16toUTF32(in.data(), in.data() + 4, out.data(), out.data() + 3));
    EXPECT_EQ((Units32{'a', 0x1F600, 0xE9}), out);
}

TEST(ConvertUTF, Utf32RejectsSurrogatesAndReplacesBeyondTheRangeInUtf8) {
    struct Case {
        Units32 in;
        unsigned long utf8, utf16;
        std::string bytes;  // converted to UTF-8
    } const cases[] = {
        {{0x41, 0x7FF, 0x800}, 6, 3, "A\xDF\xBF\xE0\xA0\x80"},
        {{0xFFFF, 0x10000}, 7, 3, "\xEF\xBF\xBF\xF0\x90\x80\x80"},
        {{0x10FFFF}, 4, 2, "\xF4\x8F\xBF\xBF"}, {{0x110000}, 3, 0, "\xEF\xBF\xBD"},
        {{'a', 0xFFFFFFFF}, 4, 0, "a\xEF\xBF\xBD"}, {{'a', 0xD800}, 0, 0, "a"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(::testing::PrintToString(row.bytes));
        const unsigned int* begin = row.in.data();
        const unsigned int* end = begin + row.in.size();
        EXPECT_EQ(row.utf8, ConvertUTF32toUTF8(begin, end, nullptr, nullptr));
        EXPECT_EQ(row.utf16, ConvertUTF32toUTF16(begin, end, nullptr, nullptr));
        EXPECT_EQ(B(row.bytes), To8(row.in, 16));
    }
    const Units32 in = {0x10000, 0x1F600, 0x10FFFF, 0x110000, 'z'};
    Units16 out(16);
    out.resize(ConvertUTF32toUTF16(in.data(), in.data() + 5, out.data(), out.data() + 16));
    EXPECT_EQ((Units16{0xD800, 0xDC00, 0xD83D, 0xDE00, 0xDBFF, 0xDFFF}), out);
}

TEST(ConvertUTF, LegalityFollowsTheLeadByte) {
    const std::pair<Bytes, bool> cases[] = {
        {{0x41}, true}, {{0x80}, false}, {{0xC2, 0x80}, true}, {{0xC1, 0xBF}, false},
        {{0xC3, 0xC3}, false}, {{0xDF, 0x7F}, false}, {{0xE0, 0xA0, 0x80}, true},
        {{0xE0, 0x9F, 0xBF}, false}, {{0xED, 0x9F, 0xBF}, true}, {{0xED, 0xA0, 0x80}, false},
        {{0xF0, 0x90, 0x80, 0x80}, true}, {{0xF0, 0x8F, 0xBF, 0xBF}, false},
        {{0xF4, 0x8F, 0xBF, 0xBF}, true}, {{0xF4, 0x90, 0x80, 0x80}, false},
        {{0xF5, 0x80, 0x80, 0x80}, false}, {{0xF8, 0x88, 0x80, 0x80, 0x80}, false}, {{}, false},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(::testing::PrintToString(row.first));
        const Bytes& in = row.first;
        EXPECT_EQ(row.second, IsLegalUTF8(in.data(), static_cast<int>(in.size())));
        EXPECT_EQ(row.second, IsLegalUTF8Sequence(in.data(), in.data() + in.size()));
    }
    // The length must be the lead byte's; the sequence test reads only that many bytes.
    const Bytes ascii = {0x41, 0x80}, euro = B("\xE2\x82\xAC");
    EXPECT_FALSE(IsLegalUTF8(ascii.data(), 2));
    EXPECT_TRUE(IsLegalUTF8Sequence(ascii.data(), ascii.data() + 2));
    EXPECT_FALSE(IsLegalUTF8Sequence(euro.data(), euro.data() + 2));
}

// Random valid code points through every converter: measured and written counts agree and the
// text comes back unchanged.
TEST(ConvertUTF, RandomTextsRoundTripThroughAllEncodings) {
    std::mt19937 random(5);
    for (int n = 0; n < 300; ++n) {
        Units32 text(random() % 40);
        for (auto& c : text) {
            do c = random() % 4 == 0 ? random() % 0x80 : random() % 0x110000;
            while (c >= 0xD800 && c <= 0xDFFF);
        }
        const unsigned int* b32 = text.data();
        const unsigned int* e32 = b32 + text.size();
        const Bytes utf8 = To8(text, ConvertUTF32toUTF8(b32, e32, nullptr, nullptr));
        const Units16 utf16 = To16(utf8, ConvertUTF32toUTF16(b32, e32, nullptr, nullptr));
        const unsigned short* e16 = utf16.data() + utf16.size();
        ASSERT_EQ(utf16.size(), ConvertUTF8toUTF16(utf8.data(), utf8.data() + utf8.size(),
                                                   nullptr, nullptr));
        EXPECT_EQ(utf8, To8(utf16, utf8.size()));
        EXPECT_EQ(text, (Convert<unsigned char, unsigned int>(ConvertUTF8toUTF32, utf8,
                                                               text.size())));
        Units32 back(text.size());
        ASSERT_EQ(text.size(), ConvertUTF16toUTF32(utf16.data(), e16, nullptr, nullptr));
        ConvertUTF16toUTF32(utf16.data(), e16, back.data(), back.data() + back.size());
        EXPECT_EQ(text, back);
    }
}

TEST(ConvertUTF, WideWrappersUseUnalignedUtf16Buffers) {
    const std::wstring text = L"a\u00E9\u20AC\U0001F600";
    unsigned char storage[32] = {};
    unsigned char* unaligned = storage + 1;
    EXPECT_EQ(5u, UnicodeToUTF16(text.data(), text.size(), nullptr, 0));
    ASSERT_EQ(5u, UnicodeToUTF16(text.data(), text.size(), unaligned, 5));
    unsigned short second;
    std::memcpy(&second, unaligned + 2, 2);
    EXPECT_EQ(0xE9, second);
    EXPECT_EQ(4u, UTF16ToUnicode(unaligned, 5, nullptr, 0));
    wchar_t back[4] = {};
    EXPECT_EQ(0u, UTF16ToUnicode(unaligned, 5, back, 4));
    EXPECT_EQ(text, std::wstring(back, 4));

    unsigned char utf8[16];
    ASSERT_EQ(10u, UnicodeToUTF8(text.data(), text.size(), nullptr, 0));
    ASSERT_EQ(10u, UnicodeToUTF8(text.data(), text.size(), utf8, sizeof utf8));
    EXPECT_EQ(4u, UTF8ToUnicode(utf8, 10, nullptr, 0));
    EXPECT_EQ(4u, UTF8ToUnicode(utf8, 10, back, 4));
    EXPECT_EQ(text, std::wstring(back, 4));
}

TEST(ConvertUTF, DetectsCharactersBeyondAscii) {
    EXPECT_FALSE(DoesUnicodeStrContainAnyUTF8CharsLargerThanOneByte(L"abc\x7F", 4));
    EXPECT_TRUE(DoesUnicodeStrContainAnyUTF8CharsLargerThanOneByte(L"\x80" L"bc", 3));
    EXPECT_FALSE(DoesUnicodeStrContainAnyUTF8CharsLargerThanOneByte(L"ab\u00E9", 2));
    const unsigned char text[] = "ab\xC3\xA9\x7F";
    EXPECT_TRUE(DoesUTF8StrContainAnyCharsLargerThanOneByte(text, 3));
    EXPECT_FALSE(DoesUTF8StrContainAnyCharsLargerThanOneByte(text, 2));
    EXPECT_FALSE(DoesUTF8StrContainAnyCharsLargerThanOneByte(text, 0));
}
