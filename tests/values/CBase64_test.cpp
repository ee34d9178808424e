#include <cstring>
#include <string>
#include <vector>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using KxXmlLib16::CBase64;

namespace {

std::string Encode(const std::string& bytes) {
    return CBase64().Encode(reinterpret_cast<const unsigned char*>(bytes.data()),
                            static_cast<int>(bytes.size()));
}

// Decodes into a buffer of the documented size, with a guard byte past its end.
std::string Decode(const std::string& text) {
    std::vector<unsigned char> out(text.size() + 2, 0xEE);
    const int count = CBase64().Decode(text.c_str(), out.data());
    EXPECT_EQ(0xEE, out[text.size() + 1]) << "wrote past the buffer";
    return std::string(reinterpret_cast<const char*>(out.data()), static_cast<size_t>(count));
}

}  // namespace

TEST(CBase64, TakesBitsMostSignificantFirst) {
    struct Case { std::string bytes; const char* text; };
    const Case cases[] = {
        {std::string(1, '\0'), "AA=="}, {"\xFF\xFF", "//8="}, {"\xFB\xEF\xBE", "++++"},
        {"\x80", "gA=="}, {std::string("\x00\x10\x83", 3), "ABCD"}, {"foobar", "Zm9vYmFy"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(row.text, Encode(row.bytes));
        EXPECT_EQ(row.bytes, Decode(row.text));
    }
}

TEST(CBase64, NothingInGivesNothingOut) {
    CBase64 coder;
    unsigned char out[4] = {0xEE, 0xEE, 0xEE, 0xEE};
    EXPECT_EQ("", coder.Encode(nullptr, 3));
    EXPECT_EQ("", coder.Encode(out, 0));
    EXPECT_EQ(0, coder.Decode(nullptr, out));
    EXPECT_EQ(0, coder.Decode("", out));
    EXPECT_EQ(0, coder.Decode("TWFu", nullptr));
    EXPECT_EQ(0xEE, out[0]);
}

TEST(CBase64, DecodeLooksCharactersUpByTheirLowSevenBits) {
    // 0xD4 is 'T' + 128, 0xA0 is space + 128, 0xAA is '*' + 128.
    EXPECT_EQ("Man", Decode("\xD4WFu"));
    EXPECT_EQ("Man", Decode("TW\xA0" "Fu"));
    EXPECT_EQ("", Decode("TW\xAA" "Fu"));
}

TEST(CBase64, NoStateCarriesOverBetweenCalls) {
    CBase64 coder;
    const unsigned char one[] = {'a'};
    EXPECT_EQ("YQ==", coder.Encode(one, 1));
    EXPECT_EQ("YQ==", coder.Encode(one, 1));
    unsigned char out[16];
    EXPECT_EQ(1, coder.Decode("YQ", out));  // leaves 4 bits over
    EXPECT_EQ(0, coder.Decode("T!", out));  // stops half-way
    EXPECT_EQ(3, coder.Decode("TWFu", out));
    EXPECT_EQ(0, std::memcmp(out, "Man", 3));
}

TEST(CBase64, EveryByteValueRoundTripsAtEveryPadding) {
    std::string bytes;
    for (int i = 0; i < 256; ++i) {
        bytes.push_back(static_cast<char>(i));
    }
    for (size_t offset = 0; offset < 3; ++offset) {
        SCOPED_TRACE(offset);
        const std::string slice = bytes.substr(offset);
        const std::string text = Encode(slice);
        const size_t padding = (3 - slice.size() % 3) % 3;
        EXPECT_EQ(padding == 0 ? std::string::npos : text.size() - padding, text.find('='));
        EXPECT_EQ(slice, Decode(text));
    }
}
