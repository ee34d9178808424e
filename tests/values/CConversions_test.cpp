#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

using Rule = CWhitespaceUtils::WhitespaceRule;
constexpr Rule kNone = CWhitespaceUtils::WhitespaceRule_None;
constexpr Rule kPreserve = CWhitespaceUtils::WhitespaceRule_Preserve;
constexpr Rule kCollapse = CWhitespaceUtils::WhitespaceRule_Collapse;

using RoundTrip = std::function<std::string(const std::string&, Rule)>;

#define KX_ROUND_TRIP(type)                                                                   \
    {                                                                                         \
#type, [](const std::string& text, Rule rule) {                                       \
            return CConversions::type##ToString(CConversions::type##FromString(text, rule)); \
        }                                                                                     \
    }

// Each item type's parser followed by its formatter.
const std::map<std::string, RoundTrip>& RoundTrips() {
    static const std::map<std::string, RoundTrip> table = {
        KX_ROUND_TRIP(hexBinary), KX_ROUND_TRIP(base64Binary), KX_ROUND_TRIP(i1),
        KX_ROUND_TRIP(i2),        KX_ROUND_TRIP(i4),           KX_ROUND_TRIP(i8),
        KX_ROUND_TRIP(ui1),       KX_ROUND_TRIP(ui2),          KX_ROUND_TRIP(ui4),
        KX_ROUND_TRIP(ui8),       KX_ROUND_TRIP(r4),           KX_ROUND_TRIP(r8),
        KX_ROUND_TRIP(duration),  KX_ROUND_TRIP(yearMonth),    KX_ROUND_TRIP(monthDay),
        KX_ROUND_TRIP(year),      KX_ROUND_TRIP(month),        KX_ROUND_TRIP(day),
        KX_ROUND_TRIP(date),      KX_ROUND_TRIP(datetime),     KX_ROUND_TRIP(time),
        KX_ROUND_TRIP(char),      KX_ROUND_TRIP(string),       KX_ROUND_TRIP(boolean),
        KX_ROUND_TRIP(decimal),   KX_ROUND_TRIP(integer),
    };
    return table;
}

#undef KX_ROUND_TRIP

// The messages, word for word.
std::string NotConverted(const std::string& value, const char* type) {
    return "The value [" + value + "] can not be converted to a " + type;
}
std::string TooLarge(const std::string& value, const char* type) {
    return "The value [" + value + "] is to large to fit in a " + type;
}
std::string BadBoolean(const std::string& value) {
    return "A Boolean Value read from an XML document was invalid [" + value +
           "]. Valid values are 'true', 'false', '1', or '0'";
}
std::string BadChar(const std::string& value) {
    return "The value [" + value +
           "] can not be a char as it is either empty of greater than 1 char long";
}

struct Case {
    const char* type;
    std::string in;
    Rule rule;
    const char* out;    // written back; null when parsing fails
    std::string error;  // the CKxInvalidValueException message when parsing fails
};

void RunCases(const std::vector<Case>& cases) {
    for (const Case& row : cases) {
        SCOPED_TRACE(::testing::Message() << row.type << " [" << row.in << "] rule " << row.rule);
        const RoundTrip& roundTrip = RoundTrips().at(row.type);
        if (row.out != nullptr)
            EXPECT_EQ(row.out, roundTrip(row.in, row.rule));
        else
            KxTest::ExpectKxError<CKxInvalidValueException>([&] { roundTrip(row.in, row.rule); },
                                                            row.error);
    }
}

}  // namespace

TEST(CConversions, IntegersParseTheCLibraryWayWithTheirLeniencies) {
    RunCases({
        {"i4", " \t ", kCollapse, nullptr, NotConverted("", "i4")},
        {"i4", " 42 ", kCollapse, "42", ""},
        {"i4", " 42", kPreserve, "42", ""},  // the C library skips the leading blank
        {"i4", " 42 ", kPreserve, nullptr, NotConverted(" 42 ", "i4")},
        {"i4", "+7", kNone, "7", ""}, {"i4", "-0", kNone, "0", ""},
        {"i4", "000000000000000000000042", kNone, "42", ""},
        {"i4", "2147483648", kNone, "2147483648", ""},  // 64-bit carrier, no int range test
        {"i4", "-9223372036854775808", kNone, "-9223372036854775808", ""},
        {"i4", "9223372036854775808", kNone, nullptr, TooLarge("9223372036854775808", "i4")},
        {"i4", "-9223372036854775809", kNone, nullptr, TooLarge("-9223372036854775809", "i4")},
        {"i4", "12abc", kNone, nullptr, NotConverted("12abc", "i4")},
        {"i4", "-", kNone, nullptr, NotConverted("-", "i4")},
        {"i4", "1  2", kCollapse, nullptr, NotConverted("1 2", "i4")},
        {"i4", std::string("12\0x", 4), kNone, "12", ""},  // the end test stops at a NUL
        {"i8", "99999999999999999999", kNone, nullptr, TooLarge("99999999999999999999", "i8")},
        {"ui4", "4294967296", kNone, "4294967296", ""},
        {"ui4", "-1", kNone, "18446744073709551615", ""},  // wraps without error
        {"ui4", "-18446744073709551615", kNone, "1", ""},
        {"ui4", "18446744073709551616", kNone, nullptr, TooLarge("18446744073709551616", "ui4")},
        {"ui8", "", kNone, nullptr, NotConverted("", "ui8")},
        {"ui8", "-18446744073709551616", kNone, nullptr, TooLarge("-18446744073709551616", "ui8")},
        // Narrow types: the wide parse and its messages first, then the range, whose message
        // quotes the text as passed in.
        {"i1", "-128", kNone, "-128", ""}, {"i1", "128", kNone, nullptr, TooLarge("128", "i1")},
        {"i1", "-129", kNone, nullptr, TooLarge("-129", "i1")},
        {"i1", " 128 ", kCollapse, nullptr, TooLarge(" 128 ", "i1")},
        {"i1", " x ", kCollapse, nullptr, NotConverted("x", "i4")},
        {"i2", "-32768", kNone, "-32768", ""},
        {"i2", "32768", kNone, nullptr, TooLarge("32768", "i2")},
        {"ui1", "255", kNone, "255", ""}, {"ui1", "256", kNone, nullptr, TooLarge("256", "ui1")},
        {"ui1", "-1", kNone, nullptr, TooLarge("-1", "ui1")},
        {"ui1", "", kNone, nullptr, NotConverted("", "ui4")}, {"ui2", "65535", kNone, "65535", ""},
        {"ui2", "\t65536", kCollapse, nullptr, TooLarge("\t65536", "ui2")},
    });
    EXPECT_EQ("-128", CConversions::i1ToString(static_cast<char>(-128)));
    EXPECT_EQ("-9223372036854775808",
              CConversions::i8ToString(std::numeric_limits<long long>::min()));
    EXPECT_EQ("18446744073709551615",
              CConversions::ui4ToString(std::numeric_limits<unsigned long>::max()));
}

TEST(CConversions, FloatsReadTheSpecialSpellingsAndWriteOnlyNaNAndINF) {
    // Ordinary values are compared with the C library in DefaultFloatTextIsPrintfGeneralFormat.
    RunCases({
        {"r8", "", kNone, nullptr, NotConverted("", "r8")},
        {"r8", "1.#QNAN", kNone, "NaN", ""}, {"r8", "-NAN", kNone, "NaN", ""},
        {"r8", " inf ", kCollapse, "INF", ""},
        {"r8", "1e400", kNone, "INF", ""},  // strtod's range error is ignored
        {"r8", "0x10", kNone, "16", ""}, {"r8", "1,5", kNone, nullptr, NotConverted("1,5", "r8")},
        {"r8", " 1 ", kPreserve, nullptr, NotConverted(" 1 ", "r8")},
        {"r8", "\t1.5", kNone, "1.5", ""},  // the C library skips leading whitespace
        {"r8", "\f-INF", kNone, "-INF", ""}, {"r4", "-3.4e39", kNone, "-INF", ""},
        {"r4", "abc", kNone, nullptr, NotConverted("abc", "r4")},
    });
    const float nan4 = CConversions::r4FromString("-NAN", kNone);
    unsigned bits;
    std::memcpy(&bits, &nan4, sizeof bits);
    EXPECT_EQ(0x7FC00000u, bits);
    EXPECT_EQ("3.402823e+38", CConversions::r4ToString(std::numeric_limits<float>::max()));
    EXPECT_EQ("1.797693134862316e+308",
              CConversions::r8ToString(std::numeric_limits<double>::max()));
}

TEST(CConversions, FloatFormatsArePrintfFormatsCutToTheBuffer) {
    struct Case { double value; const char* format; std::string out; } const cases[] = {
        {3.14159, "%.2f", "3.14"}, {1.0, "%e", "1.000000e+00"}, {0.5, "[%8.3f]", "[   0.500]"},
        {1.0, "%.60f", "1." + std::string(45, '0')},  // 47 characters: a 48-byte buffer
        {std::nan(""), "%.2f", "NaN"}, {-HUGE_VAL, "%.2f", "-INF"},
        {0.1, "%s", "0.1"},  // not a format for one double: the default is used
        {0.1, "%f %f", "0.1"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.format);
        EXPECT_EQ(row.out, CConversions::r8ToString(row.value, row.format));
    }
    EXPECT_EQ("0." + std::string(29, '0'), CConversions::r4ToString(0.0f, "%.40f"));
}

TEST(CConversions, DefaultFloatTextIsPrintfGeneralFormat) {
    std::mt19937_64 random(9);
    for (int n = 0; n < 20000; ++n) {
        double value;
        const unsigned long long bits = random();
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isfinite(value)) continue;
        char expected[64];
        std::snprintf(expected, sizeof expected, "%.16g", value);
        ASSERT_EQ(expected, CConversions::r8ToString(value));
        ASSERT_EQ(std::strtod(expected, nullptr), CConversions::r8FromString(expected, kNone));
        const float single = static_cast<float>(value);
        if (!std::isfinite(single)) continue;
        std::snprintf(expected, sizeof expected, "%.7g", static_cast<double>(single));
        ASSERT_EQ(expected, CConversions::r4ToString(single));
    }
}

TEST(CConversions, BooleanCharStringAndBareDatePartsFollowTheirRules) {
    RunCases({
        {"boolean", "tRuE", kNone, "true", ""}, {"boolean", "1", kNone, "true", ""},
        {"boolean", " FaLsE\n", kCollapse, "false", ""}, {"boolean", "0", kNone, "false", ""},
        {"boolean", " yes ", kCollapse, nullptr, BadBoolean(" yes ")},
        {"boolean", "01", kNone, nullptr, BadBoolean("01")},
        {"char", " a ", kCollapse, "a", ""}, {"char", "", kNone, nullptr, BadChar("")},
        {"char", " ab\t", kCollapse, nullptr, BadChar("ab")},
        {"char", "\xC3\xA9", kNone, nullptr, BadChar("\xC3\xA9")},
        {"string", " a \t b\r\n", kCollapse, "a b", ""},
        {"string", " a \t b\r\n", kNone, " a \t b\r\n", ""},
        {"year", "0005", kNone, "5", ""}, {"year", "2024Z", kNone, "2024", ""},
        {"month", " --12+01:00 ", kCollapse, "--12", ""}, {"day", "---05", kNone, "---05", ""},
    });
    EXPECT_EQ("", CConversions::charToString('\0'));
    EXPECT_EQ("999", CConversions::yearToString(999));
    EXPECT_EQ("--07", CConversions::monthToString(7));
}

TEST(CConversions, StructuredTypesGetTheProcessedText) {
    RunCases({
        {"date", " 2024-02-29 ", kCollapse, "2024-02-29", ""},
        {"datetime", "2024-02-29T13:05:09Z", kNone, "2024-02-29T13:05:09Z", ""},
        {"time", "13:05:09", kNone, "13:05:09", ""}, {"yearMonth", "2024-02", kNone, "2024-02", ""},
        {"monthDay", "--12-25", kNone, "--12-25", ""},
        {"duration", "\tP1Y2MT3S ", kCollapse, "P1Y2MT3S", ""},
        {"decimal", " 007.100 ", kCollapse, "7.1", ""},
        {"integer", "\n-00123", kCollapse, "-123", ""},
        {"hexBinary", " 0a1B ", kCollapse, "0A1B", ""}, {"base64Binary", "AQID", kNone, "AQID", ""},
        {"date", " 2024-13-01 ", kCollapse, nullptr,
         "The value [2024-13-01] is not a valid xs:date"},
        {"datetime", " x ", kCollapse, nullptr, "The value [x] is not a valid xs:dateTime"},
    });
    const CDecimal value("2.345");
    EXPECT_EQ("2.345", CConversions::decimalToString(value));
    EXPECT_EQ("2.3450", CConversions::decimalToString(value, "4 digits"));  // read by strtol
    EXPECT_EQ("2", CConversions::decimalToString(value, "x"));
    KxTest::ExpectKxError<CKxException>(
        [] { CConversions::i4FromString("1", static_cast<Rule>(4)); }, "Unknown WhitespaceRule");
}

// A process locale with a decimal comma must not change the text of floats either way.
TEST(CConversions, FloatsIgnoreACommaDecimalPointLocale) {
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "fr_FR.utf8", "de_DE",
                             "fr_FR", "nl_NL.UTF-8", "ru_RU.UTF-8"}) {
        KxTest::ScopedLocale locale(LC_ALL, name);
        if (!locale.Ok() || std::strcmp(std::localeconv()->decimal_point, ",") != 0) continue;
        EXPECT_EQ("0.5", CConversions::r8ToString(0.5));
        EXPECT_EQ("0.50", CConversions::r8ToString(0.5, "%.2f"));
        EXPECT_EQ("1.25", CConversions::r4ToString(1.25f));
        EXPECT_EQ(0.5, CConversions::r8FromString("0.5", kNone));
        KxTest::ExpectKxError<CKxInvalidValueException>(
            [] { CConversions::r8FromString("0,5", kNone); }, NotConverted("0,5", "r8"));
        return;
    }
    GTEST_SKIP() << "no locale with a decimal comma is installed";
}
