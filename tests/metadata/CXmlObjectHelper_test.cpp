#include <gtest/gtest.h>

#include <clocale>
#include <string>
#include <vector>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

// Restrictions with one facet set: ">=" minInclusive, "<=" maxInclusive, ">" minExclusive,
// "<" maxExclusive, "digits", "fraction", "minLength", "maxLength", "length", "pattern".
CPrimitiveRestrictions F(const std::string& facet, const char* arg) {
    const auto text = [&](const char* name) { return facet == name ? arg : nullptr; };
    const auto number = [&](const char* name) { return facet == name ? std::stoll(arg) : -1; };
    return CPrimitiveRestrictions(text("pattern"), number("minLength"), number("maxLength"),
                                  text(">="), text("<="), text(">"), text("<"), number("length"),
                                  number("digits"), number("fraction"));
}

// Checks the lexical value, read as `type`, through the variant dispatcher.
void Check(ItemType type, const char* value, const CPrimitiveRestrictions& restrictions) {
    KxVariant variant;
    variant.FromString(value, type, CWhitespaceUtils::WhitespaceRule_None);
    CXmlObjectHelper::CheckRestriction("m", variant, type, restrictions);
}

struct Case {
    ItemType type;
    const char* value;
    CPrimitiveRestrictions restrictions;
    const char* message;  // null: the value passes
};

void RunTable(const std::vector<Case>& cases) {
    for (const Case& row : cases) {
        SCOPED_TRACE(std::to_string(row.type) + " " + row.value);
        const auto call = [&] { Check(row.type, row.value, row.restrictions); };
        if (row.message == nullptr)
            EXPECT_NO_THROW(call());
        else
            KxTest::ExpectKxError<CKxException>(call, row.message);
        EXPECT_NO_THROW(Check(row.type, row.value, CPrimitiveRestrictions()));  // all unset
    }
}

}  // namespace

TEST(CXmlObjectHelper, EveryIntegerTypeTestsTheBoundsInTheirOwnSense) {
    // Each facet with a value just inside and one just outside; bounds are collapsed before
    // they are parsed.
    struct Bound { const char* facet; const char* limit; const char* passes; const char* fails; };
    const Bound bounds[] = {{">=", "10", "10", "9"}, {"<=", " 10 ", "10", "11"},
                            {">", "10", "11", "10"},  {"<", "10", "9", "10"},
                            {"digits", "2", "99", "100"}};
    for (ItemType type : {ItemType_i1, ItemType_i2, ItemType_i4, ItemType_i8, ItemType_ui1,
                          ItemType_ui2, ItemType_ui4, ItemType_ui8}) {
        for (const Bound& b : bounds) {
            const std::string message = std::string("Invalid Value for m [") + b.fails + "]";
            RunTable({{type, b.passes, F(b.facet, b.limit), nullptr},
                      {type, b.fails, F(b.facet, b.limit), message.c_str()}});
        }
    }
}

TEST(CXmlObjectHelper, NumericFacets) {
    RunTable({
        // totalDigits counts the minus sign of the formatted value.
        {ItemType_i4, "-9", F("digits", "2"), nullptr},
        {ItemType_i4, "-99", F("digits", "2"), "Invalid Value for m [-99]"},
        {ItemType_integer, "-9", F("digits", "2"), nullptr},
        {ItemType_integer, "-99", F("digits", "2"), "Invalid Value for m [-99]."},
        // Values beyond int are written in full, in the same shape.
        {ItemType_i8, "2147483648", F("<=", "0"), "Invalid Value for m [2147483648]"},
        {ItemType_i4, "-2147483648", F(">=", "0"), "Invalid Value for m [-2147483648]"},
        {ItemType_i8, "-9223372036854775808", F(">=", "0"),
         "Invalid Value for m [-9223372036854775808]"},
        {ItemType_ui8, "18446744073709551615", F("<=", "0"),
         "Invalid Value for m [18446744073709551615]"},
        {ItemType_year, "1999", F(">=", "2000"), "Invalid Value for m [1999]"},
        {ItemType_month, "--06", F("<", "--06"), "Invalid Value for m [6]"},
        {ItemType_day, "---11", F(">", "---10"), nullptr},
        {ItemType_r4, "1.25", F(">=", "1.5"), "Invalid Value for m [1.250000]"},
        {ItemType_r8, "2.5", F("<", "2.5"), "Invalid Value for m [2.500000]"},
        {ItemType_r8, "1e308", F("<=", "INF"), nullptr},
        {ItemType_integer, "99999999999999999999", F(">=", "100000000000000000000"),
         "Invalid Value for m [99999999999999999999]."},
        {ItemType_decimal, "1.50", F(">", "1.5"), "Invalid Value for m [1.5]."},
        {ItemType_decimal, "1.500", F("<=", "1.5"), nullptr},
        {ItemType_decimal, "123.45", F("digits", "5"), nullptr},
        {ItemType_decimal, "123.45", F("digits", "4"), "Invalid Value for m [123.45]."},
        {ItemType_decimal, "-0.1234", F("digits", "4"), nullptr},  // zero integer part: 0 digits
        {ItemType_decimal, "1.999", F("fraction", "2"), "Invalid Value for m [1.999]."},
        {ItemType_decimal, "1.500", F("fraction", "1"), nullptr},
    });
    struct {
        const char* text;
        int integerLength, fractionLength;
    } digits[] = {{"123.4", 3, 1}, {"0.5", 0, 1}, {"-0.05", 0, 2}, {"1.50", 1, 1}, {"100", 3, 0}};
    for (const auto& row : digits) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(row.integerLength,
                  CXmlObjectHelper::GetDecimalIntegerPartLen(CDecimal(row.text)));
        EXPECT_EQ(row.fractionLength,
                  CXmlObjectHelper::GetDecimalFractionPartLen(CDecimal(row.text)));
    }
}

TEST(CXmlObjectHelper, DateAndDurationBoundsNeverFailOnIndeterminateComparisons) {
    RunTable({
        {ItemType_date, "1999-12-31", F(">=", "2000-01-01"), "Invalid Value for m [1999-12-31]."},
        {ItemType_date, "2000-01-01", F(">=", "2000-01-01"), nullptr},
        // Unzoned against zoned within 14 hours: indeterminate, which passes.
        {ItemType_date, "1999-12-31", F(">=", "2000-01-01+12:00"), nullptr},
        {ItemType_date, "2000-01-01+05:00", F(">", "2000-01-01+05:00"),
         "Invalid Value for m [2000-01-01+05:00]."},
        {ItemType_date, "2000-01-01", F("<", "2000-01-01Z"), nullptr},
        {ItemType_datetime, "2020-06-01T12:00:01Z", F("<=", "2020-06-01T12:00:00Z"),
         "Invalid Value for m [2020-06-01T12:00:01Z]."},
        {ItemType_time, "08:00:00", F(">", "08:00:00"), "Invalid Value for m [08:00:00]."},
        {ItemType_yearMonth, "2024-03", F("<", "2024-03"), "Invalid Value for m [2024-03]."},
        {ItemType_monthDay, "--02-28", F(">=", "--02-29"), "Invalid Value for m [--02-28]."},
        {ItemType_duration, "P30D", F("<=", "P1M"), nullptr},
        {ItemType_duration, "P32D", F("<=", "P1M"), "Invalid Value for m [P32D]."},
        {ItemType_duration, "PT60M", F(">", "PT1H"), "Invalid Value for m [PT60M]."},
    });
    CDateTime yearMonth(CDateTime::dt_gYearMonth);
    yearMonth.ParseDate("2024-03");
    EXPECT_NO_THROW(
        CXmlObjectHelper::CheckRestrictionFormonthYear("m", yearMonth, F("<=", "2024-03")));
    KxTest::ExpectKxError<CKxException>(
        [&] { CXmlObjectHelper::CheckRestrictionFormonthYear("m", yearMonth, F("<", "2024-03")); },
        "Invalid Value for m [2024-03].");
}

TEST(CXmlObjectHelper, LengthsAndPatterns) {
    RunTable({
        {ItemType_hexBinary, "AB", F("minLength", "2"), "Invalid Value for m [AB]."},
        {ItemType_hexBinary, "AB0102", F("maxLength", "2"), "Invalid Value for m [AB0102]."},
        {ItemType_base64Binary, "qw==", F("length", "3"), "Invalid Value for m [qw==]."},
        {ItemType_base64Binary, "AQID", F("length", "3"), nullptr},
        {ItemType_string, "\xC3\xA9\xC3\xA9", F("maxLength", "3"),  // 2 characters, 4 bytes
         "Invalid Value for m [\xC3\xA9\xC3\xA9]."},
        {ItemType_string, "a", F("minLength", "2"), "Invalid Value for m [a]."},
        {ItemType_string, "", F("length", "0"), nullptr},
        {ItemType_string, "AB1234", F("pattern", "[A-Z]{2}[0-9]{4}"), nullptr},
        {ItemType_string, "AB123", F("pattern", "[A-Z]{2}[0-9]{4}"),
         "Invalid Value for m [AB123]."},
        {ItemType_string, "x", F("pattern", "a(b"),
         "Invalid Regular Expression: x Error: 'missing closing parenthesis'\n"
         "Invalid Value for m [x]."},
        {ItemType_boolean, "true", F("pattern", "false"), nullptr},
        {ItemType_char, "x", F("maxLength", "0"), nullptr},  // no facets for char
    });
    // Lengths come before the pattern.
    const CPrimitiveRestrictions both("a(b", -1, 1, nullptr, nullptr, nullptr, nullptr, -1, -1, -1);
    KxTest::ExpectKxError<CKxException>([&] { Check(ItemType_string, "xy", both); },
                                        "Invalid Value for m [xy].");
    // The pattern is taken from the local code page.
    const std::string previous = std::setlocale(LC_CTYPE, nullptr);
    if (std::setlocale(LC_CTYPE, "C.UTF-8") != nullptr) {
        EXPECT_NO_THROW(Check(ItemType_string, "caf\xC3\xA9", F("pattern", "caf\xC3\xA9")));
        std::setlocale(LC_CTYPE, previous.c_str());
    }
}

TEST(CXmlObjectHelper, BoundsAreTestedInOrderAndABadBoundThrowsTheParserError) {
    const CPrimitiveRestrictions r(nullptr, -1, -1, "10", "zz", nullptr, nullptr, -1, -1, -1);
    KxTest::ExpectKxError<CKxException>([&] { Check(ItemType_i4, "5", r); },
                                        "Invalid Value for m [5]");
    KxTest::ExpectKxError<CKxInvalidValueException>([&] { Check(ItemType_i4, "15", r); },
                                                    "The value [zz] can not be converted to a i4");
}

TEST(CXmlObjectHelper, VariantsWithoutAValueAreNotChecked) {
    KxVariant nil, invalid;
    nil.SetString("abc");
    nil.SetNil();
    EXPECT_NO_THROW(
        CXmlObjectHelper::CheckRestriction("m", nil, ItemType_string, F("length", "1")));
    EXPECT_NO_THROW(CXmlObjectHelper::CheckRestriction("m", invalid, ItemType_i4, F("<", "-1")));
}
