#include <clocale>
#include <string>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;
using KxTest::ExpectKxError;

namespace {

// Octets given as hex text, e.g. "0001FFFE".
CFastInfosetBinaryData FromHex(const char* hex) {
    CBinaryData bytes;
    bytes.SetAsHexString(hex);
    return CFastInfosetBinaryData(bytes);
}

// The octets after encoding `text`, as hex; starts from a buffer that already holds bytes, so a
// missing clear shows up.
std::string EncodeToHex(unsigned long algorithm, const char* text) {
    CFastInfosetBinaryData data("stale");
    data.SetAsEncodedString(algorithm, text);
    return data.GetAsHexString();
}

std::string Trace(unsigned long algorithm, const char* text) {
    return "algorithm " + std::to_string(algorithm) + " [" + (text ? text : "(null)") + "]";
}

// One value or list: its text and its octets as hex.
struct TextAndOctets {
    unsigned long algorithm;
    const char* text;
    const char* octets;
};

}  // namespace

TEST(CFastInfosetBinaryData, SingleValuesEncodeBigEndianAndDecodeBack) {
    using Case = TextAndOctets;
    const Case cases[] = {
        {1, "01ABCD", "01ABCD"}, {1, "", ""}, {2, "AQIDBA==", "01020304"}, {3, "1", "0001"},
        {3, "-2", "FFFE"}, {3, "32767", "7FFF"}, {3, "-32768", "8000"}, {4, "1", "00000001"},
        {4, "-2", "FFFFFFFE"}, {4, "16909060", "01020304"}, {4, "2147483647", "7FFFFFFF"},
        {4, "-2147483648", "80000000"}, {5, "1", "0000000000000001"}, {5, "-2", "FFFFFFFFFFFFFFFE"},
        {5, "72623859790382856", "0102030405060708"},
        {5, "9223372036854775807", "7FFFFFFFFFFFFFFF"},
        {5, "-9223372036854775808", "8000000000000000"}, {6, "true", "38"}, {6, "false", "30"},
        {7, "1.5", "3FC00000"}, {7, "-0.25", "BE800000"}, {7, "0.15625", "3E200000"},
        {7, "INF", "7F800000"}, {7, "NaN", "7FC00000"}, {8, "1.5", "3FF8000000000000"},
        {8, "0.1", "3FB999999999999A"}, {8, "1e+300", "7E37E43C8800759C"},
        {8, "-INF", "FFF0000000000000"},
        {9, "0123456789ABCDEFFEDCBA9876543210", "0123456789ABCDEFFEDCBA9876543210"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(Trace(row.algorithm, row.text));
        EXPECT_EQ(row.octets, EncodeToHex(row.algorithm, row.text));
        EXPECT_EQ(row.text, FromHex(row.octets).GetAsString(row.algorithm));
    }
}

TEST(CFastInfosetBinaryData, EncodingParsesTheLexicalFormLikeTheConversions) {
    using Case = TextAndOctets;
    const Case cases[] = {
        {1, "01abcd", "01ABCD"},
        {1, nullptr, ""},
        {2, "AQ ID\nBA==", "01020304"},  // blanks and padding are skipped
        {3, " 258\t", "0102"},         // numbers collapse their whitespace
        {3, "+7", "0007"}, {4, "\n-2 ", "FFFFFFFE"}, {6, "1", "38"}, {6, "TRUE", "38"},
        {6, " false ", "30"}, {7, "-0", "80000000"},
        {7, "1e39", "7F800000"},  // out of single range: infinity, no error
        {9, "0123456789abcdeffedcba9876543210", "0123456789ABCDEFFEDCBA9876543210"},
        {10, "x<y", "783C79"},
        {10, "", ""},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(Trace(row.algorithm, row.text));
        EXPECT_EQ(row.octets, EncodeToHex(row.algorithm, row.text));
    }
}

TEST(CFastInfosetBinaryData, DecodingJoinsSeveralValuesWithOneSpace) {
    using Case = TextAndOctets;
    const Case cases[] = {
        {3, "1 -2", "0001FFFE"}, {3, "32767 -32768 0", "7FFF80000000"}, {3, "", ""},
        {4, "1 -2", "00000001FFFFFFFE"}, {5, "1 -2", "0000000000000001FFFFFFFFFFFFFFFE"},
        {7, "1.5 -0.25", "3FC00000BE800000"}, {7, "NaN INF -0", "7FC000007F80000080000000"},
        {8, "1.5 0.1", "3FF80000000000003FB999999999999A"},
        {9, "0123456789ABCDEFFEDCBA9876543210 FFEEDDCCBBAA99887766554433221100",
         "0123456789ABCDEFFEDCBA9876543210FFEEDDCCBBAA99887766554433221100"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(Trace(row.algorithm, row.octets));
        EXPECT_EQ(row.text, FromHex(row.octets).GetAsString(row.algorithm));
    }
}

TEST(CFastInfosetBinaryData, BooleansAreBitsAfterTheUnusedBitCount) {
    // The first octet's high nibble counts the unused low bits of the last octet; the values are
    // the first octet's low nibble, then whole octets.
    struct Case {
        const char* octets;
        const char* text;
    };
    const Case cases[] = {
        {"38", "true"}, {"30", "false"}, {"1A", "true false true"},
        {"00", "false false false false"}, {"0F", "true true true true"}, {"2C", "true true"},
        {"4AA0", "true false true false true false true false"},
        {"7F80", "true true true true true"},
        {"0581", "false true false true true false false false false false false true"},
        {"7F00FF80", "true true true true false false false false false false false false true "
                     "true true true true true true true true"},
        {"", ""},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.octets);
        EXPECT_EQ(row.text, FromHex(row.octets).GetAsString(6));
    }
}

TEST(CFastInfosetBinaryData, DecodingRejectsPartialValuesAndUnknownAlgorithms) {
    struct Case {
        unsigned long algorithm;
        const char* octets;
        const char* message;
    };
    const Case cases[] = {
        {3, "010203", "Invalid value for SHORT byte encoding."},
        {4, "010203", "Invalid value for INT byte encoding."},
        {4, "0102030405", "Invalid value for INT byte encoding."},
        {5, "01020304", "Invalid value for LONG byte encoding."},
        {7, "3FC000", "Invalid value for FLOAT byte encoding."},
        {8, "3FF80000", "Invalid value for DOUBLE byte encoding."},
        {9, "0123456789ABCDEFFEDCBA98765432", "Invalid value for UUID byte encoding."},
        {9, "0123456789ABCDEFFEDCBA987654321000", "Invalid value for UUID byte encoding."},
        {0, "01", "Unknown byte encoding."}, {10, "783C79", "Unknown byte encoding."},
        {11, "01", "Unknown byte encoding."}, {256, "", "Unknown byte encoding."},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(Trace(row.algorithm, row.octets));
        const CFastInfosetBinaryData data = FromHex(row.octets);
        ExpectKxError<CKxException>([&] { data.GetAsString(row.algorithm); }, row.message);
    }
}

TEST(CFastInfosetBinaryData, EncodingFailuresPassTheParserMessageAndLeaveTheBufferEmpty) {
    enum Thrown { Plain, InvalidValue };
    struct Case {
        unsigned long algorithm;
        const char* text;
        Thrown thrown;
        const char* message;
    };
    const Case cases[] = {
        {0, "1", Plain, "Unknown byte encoding."},
        {1, "ABC", Plain, "Invalid length in hex string"},
        {1, "0G", Plain, "Invalid char in hex string [G]"},
        {9, "01234567-89ab-cdef-fedc-ba9876543210", Plain, "Invalid char in hex string [-]"},
        {3, "32768", InvalidValue, "The value [32768] is to large to fit in a i2"},
        {3, "abc", InvalidValue, "The value [abc] can not be converted to a i4"},
        {3, nullptr, InvalidValue, "The value [] can not be converted to a i4"},
        {4, "2147483648", InvalidValue, "The value [2147483648] is to large to fit in a i4"},
        {4, "-2147483649", InvalidValue, "The value [-2147483649] is to large to fit in a i4"},
        {5, "9223372036854775808", InvalidValue,
         "The value [9223372036854775808] is to large to fit in a i8"},
        {6, "yes", InvalidValue,
         "A Boolean Value read from an XML document was invalid [yes]. Valid values are "
         "'true', 'false', '1', or '0'"},
        {7, "x", InvalidValue, "The value [x] can not be converted to a r4"},
        {8, "", InvalidValue, "The value [] can not be converted to a r8"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(Trace(row.algorithm, row.text));
        CFastInfosetBinaryData data("stale");
        auto encode = [&] { data.SetAsEncodedString(row.algorithm, row.text); };
        if (row.thrown == Plain) {
            ExpectKxError<CKxException>(encode, row.message);
        } else {
            ExpectKxError<CKxInvalidValueException>(encode, row.message);
        }
        EXPECT_EQ(0u, data.GetLength());
    }
}

TEST(CFastInfosetBinaryData, CdataTakesLocalCodePageTextAsUtf8) {
    KxTest::ScopedLocale locale(LC_CTYPE, "C.UTF-8");
    if (!locale.Ok()) GTEST_SKIP() << "no C.UTF-8 locale";
    CFastInfosetBinaryData data;
    data.SetAsEncodedString(10, "caf\xC3\xA9 <&>");
    EXPECT_EQ("636166C3A9203C263E", data.GetAsHexString());

    KxTest::ScopedLocale latin1(LC_CTYPE, "en_US.ISO-8859-1");
    if (!latin1.Ok()) return;
    data.SetAsEncodedString(10, "caf\xE9");
    EXPECT_EQ("636166C3A9", data.GetAsHexString());
}

TEST(CFastInfosetBinaryData, EncodingIntoACopyLeavesTheOriginalBytes) {
    const CBinaryData original("abc");
    CFastInfosetBinaryData copy(original);
    EXPECT_EQ("616263", copy.GetAsString(1));
    copy.SetAsEncodedString(4, "-2");
    EXPECT_EQ("FFFFFFFE", copy.GetAsHexString());
    EXPECT_EQ("616263", original.GetAsHexString());

    const unsigned char octets[] = {0x00, 0x01, 0xFF, 0xFE};
    const CFastInfosetBinaryData fromBytes(octets, sizeof octets, false);
    EXPECT_EQ("1 -2", fromBytes.GetAsString(3));
    EXPECT_EQ("131070", fromBytes.GetAsString(4)) << "0001FFFE read as one int";
}
