#include <cstring>
#include <random>
#include <string>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using KxXmlLib16::CBinaryData;
using KxXmlLib16::CKxException;
using KxTest::ExpectKxError;

namespace {

CBinaryData FromString(const std::string& bytes) {
    return CBinaryData(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size(), false);
}

std::string ToString(const CBinaryData& value) {
    return value.GetLength() == 0
               ? std::string()
               : std::string(reinterpret_cast<const char*>(value.GetData()), value.GetLength());
}

// An array-new buffer of exactly the given bytes, for the adopting constructor.
unsigned char* NewBuffer(const std::string& bytes) {
    unsigned char* buffer = new unsigned char[bytes.size()];
    std::memcpy(buffer, bytes.data(), bytes.size());
    return buffer;
}

}  // namespace

TEST(CBinaryData, HexTextDecodesEitherCaseOrThrowsAndLeavesTheValueEmpty) {
    struct Case {
        const char* text;
        std::string bytes;  // expected bytes, or
        const char* error;  // expected message
    };
    const Case cases[] = {
        {"", "", nullptr}, {"0aFf", "\x0A\xFF", nullptr},
        {"00DEadBEef", std::string("\0\xDE\xAD\xBE\xEF", 5), nullptr},
        {"abc", "", "Invalid length in hex string"}, {"0G", "", "Invalid char in hex string [G]"},
        {" 0", "", "Invalid char in hex string [ ]"},
        {"0a0x", "", "Invalid char in hex string [x]"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.text);
        CBinaryData value("previous");
        if (row.error != nullptr) {
            ExpectKxError<CKxException>([&] { value.SetAsHexString(row.text); }, row.error);
        } else {
            value.SetAsHexString(row.text);
        }
        EXPECT_EQ(row.bytes, ToString(value));
    }
    EXPECT_EQ("0AFF", FromString("\x0A\xFF").GetAsHexString());
    EXPECT_EQ("", CBinaryData::GetAsHexString(nullptr, 5));
}

TEST(CBinaryData, Base64IsPaddedAndDecodedLeniently) {
    struct Case {
        std::string bytes;
        const char* text;
        bool encodes;  // bytes give exactly this text
    };
    const Case cases[] = {
        {"", "", true}, {"M", "TQ==", true}, {"Ma", "TWE=", true}, {"Man", "TWFu", true},
        {"Man", "T W\r\nF\tu", false},  // blanks are skipped
        {"Man", "TW=Fu", false},        // so is '=' wherever it stands
        {"Ma", "TWE", false},           // leftover bits are dropped
        {"", "TW*Fu", false},           // any other character gives nothing
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.text);
        if (row.encodes) {
            EXPECT_EQ(row.text, FromString(row.bytes).GetAsBase64());
        }
        CBinaryData decoded("previous");
        decoded.SetAsBase64(row.text);
        EXPECT_EQ(row.bytes, ToString(decoded));
    }
}

TEST(CBinaryData, CopiesAreIndependentOnceWritten) {
    const CBinaryData original("abc");

    CBinaryData appended(original);
    EXPECT_EQ(original.GetData(), appended.GetData());  // shared until written
    appended.Append("def");

    CBinaryData indexed;
    indexed = original;
    indexed[1] = 'X';

    CBinaryData released(original);
    unsigned char* bytes = released.ReleaseData();
    EXPECT_NE(original.GetData(), bytes);
    EXPECT_EQ(0, std::memcmp(bytes, "abc", 3));
    delete[] bytes;

    EXPECT_EQ("abc", ToString(original));
    EXPECT_EQ("abcdef", ToString(appended));
    EXPECT_EQ("aXc", ToString(indexed));
    EXPECT_EQ(nullptr, released.GetData());
    EXPECT_EQ(nullptr, CBinaryData().ReleaseData());
}

TEST(CBinaryData, IndexEqualToTheLengthPassesAndStaysInsideMemory) {
    // An adopted buffer has no byte past its data; AddressSanitizer checks the access.
    CBinaryData adopted(NewBuffer("ab"), 2, true);
    EXPECT_EQ(0, static_cast<const CBinaryData&>(adopted)[2]);
    adopted[2] = 'z';
    EXPECT_EQ("ab", ToString(adopted));

    struct Case { CBinaryData value; unsigned long index; };
    const Case cases[] = {{CBinaryData("ab"), 3}, {CBinaryData("ab"), 100}, {CBinaryData(), 0}};
    for (const Case& row : cases) {
        SCOPED_TRACE(row.index);
        const std::string message = "Index Out of range [" + std::to_string(row.index) + "]";
        CBinaryData value(row.value);
        ExpectKxError<CKxException>([&] { value[row.index]; }, message);
        ExpectKxError<CKxException>([&] { row.value[row.index]; }, message);
    }
}

TEST(CBinaryData, EqualityComparesLengthAndBytes) {
    struct Case { CBinaryData left; CBinaryData right; bool equal; };
    const Case cases[] = {
        {CBinaryData(), CBinaryData(), true},
        {CBinaryData(), FromString(std::string(1, '\0')), false},
        {CBinaryData("a"), CBinaryData("a"), true}, {CBinaryData("a"), CBinaryData("b"), false},
        {CBinaryData("ab"), CBinaryData("a"), false},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(::testing::Message() << row.left << " vs " << row.right);
        EXPECT_EQ(row.equal, row.left == row.right);
        EXPECT_EQ(!row.equal, row.left != row.right);
    }
}

TEST(CBinaryData, AppendOverloadsAddTheirBytesEvenFromThemselves) {
    CBinaryData value;
    value.Append(static_cast<const unsigned char*>(nullptr), 0);
    EXPECT_EQ(nullptr, value.GetData());
    value.Append('a');
    value.Append(static_cast<unsigned char>(0xFF));
    value.Append("bc");
    value.Append(std::string("de\0ignored", 10));
    value.Append(CBinaryData());
    value.Append(CBinaryData("f"));
    EXPECT_EQ("a\xFF" "bcdef", ToString(value));

    // An adopted buffer has no spare room: these appends grow it while reading the old array.
    CBinaryData whole(NewBuffer("0123"), 4, true);
    whole.Append(whole);
    EXPECT_EQ("01230123", ToString(whole));
    CBinaryData part(NewBuffer("0123"), 4, true);
    part.Append(part.GetData() + 1, 2);
    EXPECT_EQ("012312", ToString(part));

    // Adopting nothing still takes the buffer (LeakSanitizer reports it otherwise).
    EXPECT_EQ(0u, CBinaryData(new unsigned char[4], 0, true).GetLength());
}

TEST(CBinaryData, ManyAppendsMatchAStringBuiltAlongside) {
    std::mt19937 random(42);
    CBinaryData value;
    std::string expected;
    for (int i = 0; i < 3000; ++i) {
        std::string chunk(random() % 40, '\0');
        for (char& c : chunk) {
            c = static_cast<char>(random());
        }
        value.Append(reinterpret_cast<const unsigned char*>(chunk.data()), chunk.size());
        expected += chunk;
        if (i % 500 == 0) {
            const CBinaryData snapshot(value);  // the next append must copy
            value.Append('!');
            expected += '!';
            EXPECT_EQ(snapshot.GetLength() + 1, value.GetLength());
        }
    }
    EXPECT_EQ(expected, ToString(value));
}
