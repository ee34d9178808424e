// Tests of CDecimal: strict parsing, default and rounded texts, scaling, arithmetic, narrowing.
#include <cfloat>
#include <climits>
#include <cmath>
#include <random>
#include <sstream>
#include <string>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using KxTest::ExpectKxError;
using KxTest::ExpectOrdering;
using KxTest::Int128ToString;
using namespace KxXmlLib16;

namespace {

// The decimal unscaled / 10^scale, built through the text parser.
CDecimal Scaled(__int128 unscaled, unsigned scale) {
    std::string digits = Int128ToString(unscaled < 0 ? -unscaled : unscaled);
    if (digits.size() <= scale) digits.insert(0, scale - digits.size() + 1, '0');
    if (scale > 0) digits.insert(digits.size() - scale, ".");
    return CDecimal((unscaled < 0 ? "-" : "") + digits);
}

__int128 Pow10(unsigned n) {
    __int128 result = 1;
    while (n-- > 0) result *= 10;
    return result;
}

}  // namespace

TEST(CDecimal, ParsesEveryLexicalFormAndWritesTheCanonicalText) {
    struct Case { const char* in; const char* out; int integerDigits; int fractionDigits;
                  unsigned divider; };
    const Case cases[] = {
        {"0", "0", 0, 0, 0}, {"-0.0", "0", 0, 0, 1}, {"0.000", "0", 0, 0, 3}, {"5.", "5", 1, 0, 0},
        {"+1.5", "1.5", 1, 1, 1}, {"-.5", "-0.5", 0, 1, 1}, {"-007.0100", "-7.01", 1, 2, 4},
        {"100.00", "100", 3, 0, 2}, {"-0.0001", "-0.0001", 0, 4, 4},
        {"12345678901234567890.12345678901234567890", "12345678901234567890.1234567890123456789", 20,
         19, 20},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.in);
        const CDecimal value(row.in);
        EXPECT_EQ(row.out, value.ToString());
        EXPECT_EQ(row.integerDigits, value.GetIntegerDigitCount());
        EXPECT_EQ(row.fractionDigits, value.GetFractionDigitCount());
        EXPECT_EQ(row.divider, value.GetFractionalDivider());
        EXPECT_EQ(row.out, CDecimal(std::string(row.in)).ToString());
        // The canonical text reads back as the same value and the same text.
        EXPECT_EQ(value, CDecimal(value.ToString()));
        EXPECT_EQ(row.out, CDecimal(value.ToString()).ToString());
    }
}

TEST(CDecimal, RejectsAnythingButTheLexicalFormAndKeepsTheValue) {
    // Empty or sign/point only, exponent, spaces, doubled sign or point, other digits and
    // separators, words, a sign after the point or at the end, a non-ASCII digit.
    const char* texts[] = {"", "-", "+.", "1e5", " 1", "1 2", "+-1", "1.2.3", "0x10", "1,5",
                           "NaN", "1.-2", "1-", "١", "1.5\n"};
    for (const char* text : texts) {
        SCOPED_TRACE(text);
        CDecimal value("2.5");
        ExpectKxError<CKxInvalidValueException>(
            [&] { value.Parse(text); },
            std::string("The value [") + text + "] is not a valid decimal");
        EXPECT_EQ("2.5", value.ToString());  // a failed parse keeps the value
    }
    ExpectKxError<CKxInvalidValueException>([] { CDecimal value(static_cast<const char*>(nullptr)); },
                                            "The value [] is not a valid decimal");
    CDecimal value("2.5");
    value.Parse("-.25");
    EXPECT_EQ("-0.25", value.ToString());
}

TEST(CDecimal, FormatsAGivenNumberOfFractionDigitsRoundingHalfAwayFromZero) {
    struct Case { const char* in; int digits; const char* out; };
    const Case cases[] = {
        {"-2.345", 2, "-2.35"},  {"2.3449", 2, "2.34"},  {"-9.995", 2, "-10.00"},
        {"0.5", 0, "1"},         {"-0.4", 0, "0"},      {"-0.004", 2, "0.00"},
        {"0.049", 1, "0.0"},     {"1.5", 4, "1.5000"},  {"7", 2, "7.00"},
        {"-7", -3, "-7"},        {"2.5", -1, "3"},      {"-0.0", 1, "0.0"},
        {"999.9999", 3, "1000.000"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(std::string(row.in) + " with " + std::to_string(row.digits));
        EXPECT_EQ(row.out, CDecimal(row.in).ToString(row.digits));
    }
}

TEST(CDecimal, ChangingTheDividerPadsOrTruncatesTowardZero) {
    struct Case { const char* in; unsigned divider; const char* out; int fractionDigits; };
    const Case cases[] = {
        {"-1.29", 1, "-1.2", 1}, {"-1.99", 0, "-1", 0}, {"-0.9", 0, "0", 0},
        {"0.001", 2, "0", 0},    {"1.5", 3, "1.5", 1},  {"0", 5, "0", 0},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(std::string(row.in) + " to " + std::to_string(row.divider));
        CDecimal value(row.in);
        value.ChangeFractionalDivider(row.divider);
        EXPECT_EQ(row.out, value.ToString());
        EXPECT_EQ(row.divider, value.GetFractionalDivider());
        EXPECT_EQ(row.fractionDigits, value.GetFractionDigitCount());
        // A raised divider shows in the fixed form, with the zeros it appended.
        EXPECT_EQ(value.ToString(static_cast<int>(row.divider)),
                  CDecimal(row.out).ToString(static_cast<int>(row.divider)));
    }
    CDecimal padded("1.5");
    padded.ChangeFractionalDivider(3);
    EXPECT_EQ("1500", padded.GetUnscaledValue().ToString());
}

TEST(CDecimal, ComparesByValue) {
    struct Case {
        const char* a;
        const char* b;
        int expected;  // sign of a - b
    };
    const Case cases[] = {
        {"1.50", "1.5", 0},   {"0.0", "-0.00", 0},   {"-0.1", "-0.09", -1},
        {"0.001", "0", 1},    {"10", "10.001", -1},  {"123.45", "123.5", -1},
        {"99999999999999999999.9", "100000000000000000000", -1},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(std::string(row.a) + " vs " + row.b);
        const CDecimal a(row.a);
        const CDecimal b(row.b);
        EXPECT_EQ(row.expected, CDecimal::Compare(a, b));
        EXPECT_EQ(-row.expected, CDecimal::Compare(b, a));
        ExpectOrdering(a, b, row.expected);
    }
}

// Results that cancel to zero, the compound operators and the division precision rules; the
// random comparison below covers ordinary sums, differences and products.
TEST(CDecimal, ArithmeticOnTexts) {
    struct Case { const char* a; char op; const char* b; const char* out; };
    const Case cases[] = {
        {"-1.5", '+', "1.5", "0"},      {"-1", '-', "-1", "0"},
        {"-0", '*', "5", "0"},          {"-7.5", '/', "2.5", "-3"},
        {"1", '/', "3", "0.3333333333333333333333333333"},
        {"-2", '/', "3", "-0.6666666666666666666666666666"}, {"1", '/', "-0.001", "-1000"},
        // The dividend's or divisor's own divider (trailing zeros included) raises the
        // precision beyond 28 fraction digits; below the last kept digit the quotient is 0.
        {"1.000000000000000000000000000000", '/', "3", "0.333333333333333333333333333333"},
        {"-2", '/', "3.000000000000000000000000000000", "-0.666666666666666666666666666666"},
        {"0.000000000000000000000000000000010", '/', "3",
         "0.000000000000000000000000000000003"},
        {"1", '/', "30000000000000000000000000000000", "0"},
        {"1", '/', "300000000000000000000000000000000", "0"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(std::string(row.a) + " " + row.op + " " + row.b);
        const CDecimal a(row.a);
        const CDecimal b(row.b);
        CDecimal compound(a);
        CDecimal result;
        switch (row.op) {
            case '+': result = a + b; compound += b; break;
            case '-': result = a - b; compound -= b; break;
            case '*': result = a * b; compound *= b; break;
            default: result = a / b; compound /= b; break;
        }
        EXPECT_EQ(row.out, result.ToString());
        EXPECT_EQ(row.out, compound.ToString());
    }
}

TEST(CDecimal, ArithmeticMatchesInt128) {
    std::mt19937_64 rng(99);
    for (int i = 0; i < 3000; ++i) {
        const unsigned sa = static_cast<unsigned>(rng() % 5);
        const unsigned sb = static_cast<unsigned>(rng() % 5);
        const long long ua = static_cast<long long>(rng()) >> (14 + rng() % 48);
        long long ub = static_cast<long long>(rng()) >> (14 + rng() % 48);
        if (ub == 0) ub = 3;
        const CDecimal a = Scaled(ua, sa);
        const CDecimal b = Scaled(ub, sb);
        SCOPED_TRACE(a.ToString() + " op " + b.ToString());
        const unsigned s = sa > sb ? sa : sb;
        const __int128 wa = static_cast<__int128>(ua) * Pow10(s - sa);
        const __int128 wb = static_cast<__int128>(ub) * Pow10(s - sb);
        EXPECT_EQ(Scaled(wa + wb, s).ToString(), (a + b).ToString());
        EXPECT_EQ(Scaled(wa - wb, s).ToString(), (a - b).ToString());
        EXPECT_EQ(Scaled(static_cast<__int128>(ua) * ub, sa + sb).ToString(), (a * b).ToString());
        ExpectOrdering(a, b, wa < wb ? -1 : wa > wb ? 1 : 0);
        // Quotient at 28 fraction digits: ua * 10^(sb + 28 - sa) / ub, truncated; a dividend
        // below 10^6 and a power at most 10^32 keep it inside __int128.
        if (ua > -1000000 && ua < 1000000) {
            const __int128 q = static_cast<__int128>(ua) * Pow10(sb + 28 - sa) / ub;
            EXPECT_EQ(Scaled(q, 28).ToString(), (a / b).ToString());
        }
    }
}

TEST(CDecimal, QuotientIsWithinOneUnitOfItsLastDigit) {
    std::mt19937_64 rng(5);
    const CDecimal unit("0.0000000000000000000000000001");  // 10^-28
    for (int i = 0; i < 100; ++i) {
        std::string ta = std::to_string(rng() % 1000000007) + "." + std::to_string(rng() % 1000);
        std::string tb = std::to_string(1 + rng() % 99991) + "." + std::to_string(rng() % 100000);
        if (rng() & 1) ta = "-" + ta;
        const CDecimal a(ta);
        const CDecimal b(tb);
        SCOPED_TRACE(ta + " / " + tb);
        const CDecimal q = a / b;
        EXPECT_LE(q.GetFractionDigitCount(), 28);
        // Truncation toward zero: |q * b| <= |a| < |(|q| + unit) * b|.
        const CDecimal absA = a.IsNegative() ? -a : a;
        const CDecimal absQ = q.IsNegative() ? -q : q;
        EXPECT_LE(absQ * b, absA);
        EXPECT_LT(absA, (absQ + unit) * b);
        EXPECT_EQ(a.IsNegative(), q.IsNegative());
    }
}

TEST(CDecimal, DivisionByZeroOverflows) {
    const CDecimal one(1);
    ExpectKxError<CKxOverFlowException>([&] { (void)(one / CDecimal("-0.00")); },
                                        "ERROR: Division by zero in operator/.");
    ExpectKxError<CKxOverFlowException>([&] { CDecimal v(one); v /= CDecimal(); },
                                        "ERROR: Division by zero in operator/.");
}

TEST(CDecimal, NarrowsToIntegersTruncatingTowardZero) {
    struct Case { const char* in; long long out; };
    const Case cases[] = {
        {"12.7", 12}, {"-12.7", -12}, {"-0.99", 0}, {"0", 0}, {"9223372036854775807.9", LLONG_MAX},
        {"-9223372036854775808.99", LLONG_MIN}, {"0000000000000000000000042.000", 42},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.in);
        EXPECT_EQ(row.out, CDecimal(row.in).ToLongLong());
        EXPECT_EQ(static_cast<long>(row.out), CDecimal(row.in).ToLong());
    }
    const char* outside[] = {"9223372036854775808", "-9223372036854775809.5",
                             "123456789012345678901234567890"};
    for (const char* text : outside) {
        SCOPED_TRACE(text);
        ExpectKxError<CKxOverFlowException>(
            [&] { CDecimal(text).ToLongLong(); },
            std::string("The value [") + text + "] is out of the range of a long long");
        ExpectKxError<CKxOverFlowException>(
            [&] { CDecimal(text).ToLong(); },
            std::string("The value [") + text + "] is out of the range of a long");
    }
}

TEST(CDecimal, NarrowsToTheNearestDouble) {
    struct Case { const char* in; double out; };
    const Case cases[] = {
        {"0.1", 0.1}, {"-2.25", -2.25}, {"0.30000000000000004", 0.30000000000000004},
        {"123456789012345678901234567890", 123456789012345678901234567890.0},
        {"-0.000000000000000000000000000001", -1e-30},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.in);
        EXPECT_EQ(row.out, CDecimal(row.in).ToDouble());
    }
    const CDecimal largest(DBL_MAX);
    EXPECT_EQ(DBL_MAX, largest.ToDouble());
    EXPECT_EQ(309, largest.GetIntegerDigitCount());

    const std::string huge = "1" + std::string(309, '0');
    ExpectKxError<CKxOverFlowException>(
        [&] { CDecimal(huge).ToDouble(); },
        "The value [" + huge + "] is out of the range of a double");
    ExpectKxError<CKxOverFlowException>(
        [&] { CDecimal("-" + huge).ToDouble(); },
        "The value [-" + huge + "] is out of the range of a double");

    // Too small for a double: a zero of the value's sign, not an error.
    const std::string tiny = "0." + std::string(400, '0') + "1";
    EXPECT_EQ(0.0, CDecimal(tiny).ToDouble());
    EXPECT_TRUE(std::signbit(CDecimal("-" + tiny).ToDouble()));
}

TEST(CDecimal, ConvertsFromDoubleThroughTheShortestText) {
    struct Case { double in; const char* out; };
    const Case cases[] = {
        {0.1, "0.1"},  {-2.5, "-2.5"}, {1e21, "1000000000000000000000"},
        {0.0, "0"},    {-0.0, "0"},    {1e-7, "0.0000001"}, {123.456, "123.456"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.out);
        EXPECT_EQ(row.out, CDecimal(row.in).ToString());
    }
    const CDecimal smallest(4.9406564584124654e-324);
    EXPECT_EQ(324, smallest.GetFractionDigitCount());
    EXPECT_EQ(4.9406564584124654e-324, smallest.ToDouble());

    std::mt19937_64 rng(11);
    std::uniform_real_distribution<double> mantissa(-1.0, 1.0);
    for (int i = 0; i < 500; ++i) {
        const double value = std::ldexp(mantissa(rng), static_cast<int>(rng() % 400) - 200);
        SCOPED_TRACE(value);
        EXPECT_EQ(value, CDecimal(value).ToDouble());
    }
    ExpectKxError<CKxInvalidValueException>([] { CDecimal value(std::nan("")); },
                                            "The value [nan] is not a valid decimal");
    ExpectKxError<CKxInvalidValueException>([] { CDecimal value(-HUGE_VAL); },
                                            "The value [-inf] is not a valid decimal");
}

TEST(CDecimal, ConvertsToAndFromBigIntegers) {
    const CBigInteger big("-123456789012345678901234567890");
    const CDecimal exact(big);
    EXPECT_EQ("-123456789012345678901234567890", exact.ToString());
    EXPECT_EQ(0u, exact.GetFractionalDivider());
    EXPECT_EQ(big, CBigInteger(exact));

    EXPECT_EQ("-17", CDecimal("-17.999").GetIntegerPart().ToString());
    EXPECT_EQ("0", CDecimal("0.999").GetIntegerPart().ToString());
}

TEST(CDecimal, MixedOperandsPickTheDecimalOperators) {
    const CDecimal half("0.5");
    const CBigInteger two(2);
    EXPECT_EQ("2.5", (half + two).ToString());
    EXPECT_EQ("1.5", (two - half).ToString());
    EXPECT_EQ("1", (half * 2).ToString());
    EXPECT_TRUE(half < 1);
    EXPECT_TRUE(two > half);
    EXPECT_TRUE(CDecimal("2.0") == two);
    EXPECT_EQ("-0.5", (-half).ToString());
    EXPECT_TRUE((-half).IsNegative());
    EXPECT_FALSE(CDecimal("-0.0").IsNegative());
    EXPECT_EQ("9007199254740993", CDecimal(9007199254740993LL).ToString());
    EXPECT_EQ("18446744073709551615", CDecimal(ULLONG_MAX).ToString());
    std::ostringstream os;
    os << CDecimal("-001.250");
    EXPECT_EQ("-1.25", os.str());
}

TEST(CDecimal, BuildsFromUnscaledDigitsAndRejectsEmbeddedNul) {
    const CDecimal value(CBigInteger(-150), 2);
    EXPECT_EQ("-1.5", value.ToString());
    EXPECT_EQ(2u, value.GetFractionalDivider());
    EXPECT_EQ(CDecimal("-1.50"), value);
    // The whole string is the text: a NUL inside it is an invalid character.
    ExpectKxError<CKxInvalidValueException>([] { CDecimal v(std::string("12\0" "3", 4)); },
                                            "The value [12] is not a valid decimal");
}
