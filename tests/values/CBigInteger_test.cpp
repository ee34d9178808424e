// Tests of CBigInteger: lenient parsing, formatting, arithmetic against __int128, narrowing.
#include <climits>
#include <functional>
#include <cmath>
#include <random>
#include <sstream>
#include <string>
#include <vector>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using KxTest::ExpectKxError;
using KxTest::ExpectOrdering;
using KxTest::Int128ToString;
using namespace KxXmlLib16;

namespace {

// A random number of `digits` decimal digits (first one non-zero), with a random sign.
std::string RandomDigits(std::mt19937_64& rng, int digits, bool allowNegative) {
    std::string out;
    if (allowNegative && (rng() & 1)) out.push_back('-');
    out.push_back(static_cast<char>('1' + rng() % 9));
    for (int i = 1; i < digits; ++i) out.push_back(static_cast<char>('0' + rng() % 10));
    return out;
}

}  // namespace

TEST(CBigInteger, ParsesTextsLenientlyAsDocumented) {
    struct Case { const char* in; const char* out; };
    const Case cases[] = {
        {"-0", "0"}, {"  -123  ", "-123"}, {"000123", "123"}, {"+5", "5"}, {"1 2", "2"},
        {"12+34", "34"}, {"12-", "0"}, {"", "0"}, {"   ", "0"}, {"\t7", "7"}, {"  -  12", "-12"},
        {"123456789012345678901234567890", "123456789012345678901234567890"},
        {"-98765432109876543210987654321098765432", "-98765432109876543210987654321098765432"},
        // Any other character sends the text through the decimal parser, truncating.
        {"-12.7", "-12"}, {"-0.5", "0"}, {"+1.5", "1"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.in);
        EXPECT_EQ(row.out, CBigInteger(row.in).ToString());
        EXPECT_EQ(row.out, CBigInteger(std::string(row.in)).ToString());
    }
    EXPECT_EQ("0", CBigInteger(static_cast<const char*>(nullptr)).ToString());
}

TEST(CBigInteger, TextWithOtherCharactersFailsWithTheDecimalMessage) {
    const char* texts[] = {"1e5", " 12.7", "abc", "1.2.3"};
    for (const char* text : texts) {
        SCOPED_TRACE(text);
        ExpectKxError<CKxInvalidValueException>(
            [&] { CBigInteger value(text); },
            std::string("The value [") + text + "] is not a valid decimal");
    }
}

TEST(CBigInteger, BuiltInIntegersConvertExactly) {
    EXPECT_EQ("-9223372036854775808", CBigInteger(LLONG_MIN).ToString());
    EXPECT_EQ("9223372036854775807", CBigInteger(LLONG_MAX).ToString());
    EXPECT_EQ("18446744073709551615", CBigInteger(ULLONG_MAX).ToString());
    EXPECT_EQ("-2147483648", CBigInteger(INT_MIN).ToString());
    EXPECT_EQ("4294967295", CBigInteger(UINT_MAX).ToString());
    EXPECT_EQ("-9223372036854775808", CBigInteger(LONG_MIN).ToString());
    EXPECT_EQ("18446744073709551615", CBigInteger(ULONG_MAX).ToString());
    EXPECT_EQ("0", CBigInteger().ToString());
    EXPECT_EQ(CBigInteger::MIN_LONGLONG, CBigInteger(LLONG_MIN));
    EXPECT_EQ(CBigInteger::MAX_LONGLONG, CBigInteger(LLONG_MAX));
}

TEST(CBigInteger, DoubleGivesItsExactIntegerPart) {
    struct Case { double in; const char* out; };
    const Case cases[] = {
        {-0.9, "0"}, {-2.9, "-2"}, {-1.5e19, "-15000000000000000000"},
        {std::ldexp(1.0, 100), "1267650600228229401496703205376"},
        {-std::ldexp(1.0, 200),
         "-1606938044258990275541962092341162602522202993782792835301376"},
        {std::ldexp(3.0, 70), "3541774862152233910272"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.out);
        EXPECT_EQ(row.out, CBigInteger(row.in).ToString());
    }
    ExpectKxError<CKxInvalidValueException>([] { CBigInteger value(std::nan("")); },
                                            "The value [nan] can not be converted to an integer");
    ExpectKxError<CKxInvalidValueException>([] { CBigInteger value(-HUGE_VAL); },
                                            "The value [-inf] can not be converted to an integer");
}

TEST(CBigInteger, DecimalIsTruncatedTowardZero) {
    EXPECT_EQ("-12", CBigInteger(CDecimal("-12.99")).ToString());
    EXPECT_EQ("0", CBigInteger(CDecimal("-0.99")).ToString());
    EXPECT_EQ("100000000000000000000000", CBigInteger(CDecimal("100000000000000000000000.5")).ToString());
}

TEST(CBigInteger, ComparesBySignAndMagnitude) {
    struct Case {
        const char* a;
        const char* b;
        int expected;  // sign of a - b
    };
    const Case cases[] = {
        {"0", "-0", 0},   {"-4", "-5", 1},  {"-1", "0", -1},  {"10", "9", 1},
        {"-10", "-9", -1}, {"123456789012345678901", "123456789012345678902", -1},
        {"99999999999999999999", "100000000000000000000", -1},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(std::string(row.a) + " vs " + row.b);
        const CBigInteger a(row.a);
        const CBigInteger b(row.b);
        ExpectOrdering(a, b, row.expected);
    }
}

TEST(CBigInteger, DivisionTruncatesTowardZero) {
    struct Case { long long a; long long b; const char* quotient; const char* remainder; };
    const Case cases[] = {
        {-7, 2, "-3", "-1"}, {7, -2, "-3", "1"}, {-7, -2, "3", "-1"}, {-3, 7, "0", "-3"},
        {LLONG_MIN, -1, "9223372036854775808", "0"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(std::to_string(row.a) + " / " + std::to_string(row.b));
        EXPECT_EQ(row.quotient, (CBigInteger(row.a) / CBigInteger(row.b)).ToString());
        EXPECT_EQ(row.remainder, (CBigInteger(row.a) % CBigInteger(row.b)).ToString());
        CBigInteger q(row.a);
        q /= CBigInteger(row.b);
        EXPECT_EQ(row.quotient, q.ToString());
        CBigInteger r(row.a);
        r %= CBigInteger(row.b);
        EXPECT_EQ(row.remainder, r.ToString());
    }
}

TEST(CBigInteger, DivisionByZeroThrowsPerOperator) {
    const CBigInteger ten(10);
    const CBigInteger zero("-0");
    ExpectKxError<CKxInvalidValueException>([&] { (void)(ten / zero); },
                                            "ERROR: Overflow in operator/.");
    ExpectKxError<CKxInvalidValueException>([&] { (void)(ten % zero); },
                                            "ERROR: Overflow in operator%.");
    ExpectKxError<CKxInvalidValueException>([&] { CBigInteger v(ten); v /= zero; },
                                            "ERROR: Overflow in operator /=.");
    ExpectKxError<CKxInvalidValueException>([&] { CBigInteger v(ten); v %= zero; },
                                            "ERROR: Overflow in operator%=.");
    std::vector<char> q;
    std::vector<char> r;
    ExpectKxError<CKxInvalidValueException>(
        [&] { CBigInteger::Divide(ten.GetDigits(), std::vector<char>(), q, r); },
        "ERROR: Overflow in operator/.");
}

TEST(CBigInteger, ArithmeticMatchesInt128) {
    std::mt19937_64 rng(20240611);
    for (int i = 0; i < 4000; ++i) {
        // Mix small and large magnitudes so carries, borrows and sign changes all occur.
        const int shiftA = static_cast<int>(rng() % 63);
        const int shiftB = static_cast<int>(rng() % 63);
        const long long a = static_cast<long long>(rng()) >> shiftA;
        long long b = static_cast<long long>(rng()) >> shiftB;
        if (b == 0) b = 1;
        SCOPED_TRACE(std::to_string(a) + " op " + std::to_string(b));
        const CBigInteger x(a);
        const CBigInteger y(b);
        const __int128 wa = a;
        const __int128 wb = b;
        EXPECT_EQ(Int128ToString(wa + wb), (x + y).ToString());
        EXPECT_EQ(Int128ToString(wa - wb), (x - y).ToString());
        EXPECT_EQ(Int128ToString(wa * wb), (x * y).ToString());
        EXPECT_EQ(Int128ToString(wa / wb), (x / y).ToString());
        EXPECT_EQ(Int128ToString(wa % wb), (x % y).ToString());
        ExpectOrdering(x, y, a < b ? -1 : a > b ? 1 : 0);
    }
}

TEST(CBigInteger, LargeDivisionInvertsMultiplication) {
    std::mt19937_64 rng(7);
    for (int i = 0; i < 200; ++i) {
        const CBigInteger a(RandomDigits(rng, 1 + static_cast<int>(rng() % 60), true));
        const CBigInteger b(RandomDigits(rng, 1 + static_cast<int>(rng() % 40), true));
        const CBigInteger r = CBigInteger(RandomDigits(rng, 1 + static_cast<int>(rng() % 40), false)) % b.GetAbs();
        // A remainder with the sign of a*b keeps n = a*b + r on the same side of zero as a*b,
        // so the truncated quotient is a again and the remainder is r.
        const CBigInteger signedR = a.GetSign() * b.GetSign() < 0 ? -r : r;
        const CBigInteger n = a * b + signedR;
        SCOPED_TRACE(n.ToString() + " / " + b.ToString());
        EXPECT_EQ(a, n / b);
        EXPECT_EQ(signedR, n % b);
        EXPECT_EQ(n, (n / b) * b + n % b);
    }
}

TEST(CBigInteger, SignHelpersFlipOrClearTheSign) {
    CBigInteger v(-42);
    EXPECT_EQ("42", (-v).ToString());
    EXPECT_EQ("42", v.GetAbs().ToString());
    EXPECT_EQ("42", v.GetNegative().ToString());
    EXPECT_EQ("-42", v.ToString());
    v.Negate();
    EXPECT_EQ("42", v.ToString());
    v.Negate();
    v.Abs();
    EXPECT_EQ("42", v.ToString());
    EXPECT_EQ("0", (-CBigInteger(0)).ToString());
}

TEST(CBigInteger, SquareRootIsTheFloorOfTheRoot) {
    struct Case { const char* in; const char* out; };
    const Case cases[] = {
        {"0", "0"}, {"3", "1"}, {"4", "2"}, {"99", "9"}, {"100", "10"}, {"-0", "0"},
        {"1000000000000000000000000000000", "1000000000000000"},
        {"999999999999999999999999999999", "999999999999999"},
    };
    for (const Case& row : cases) {
        SCOPED_TRACE(row.in);
        EXPECT_EQ(row.out, CBigInteger(row.in).SquareRoot().ToString());
    }
    std::mt19937_64 rng(3);
    for (int i = 0; i < 50; ++i) {
        const CBigInteger v(RandomDigits(rng, 1 + static_cast<int>(rng() % 50), false));
        const CBigInteger root = v.SquareRoot();
        SCOPED_TRACE(v.ToString());
        EXPECT_LE(root * root, v);
        EXPECT_GT((root + 1) * (root + 1), v);
    }
    ExpectKxError<CKxInvalidValueException>([] { CBigInteger(-1).SquareRoot(); },
                                            "ERROR: Negative Number in function SquareRoot().");
}

TEST(CBigInteger, NarrowingChecksTheTargetRange) {
    EXPECT_EQ(LLONG_MAX, static_cast<long long>(CBigInteger("9223372036854775807")));
    EXPECT_EQ(LLONG_MIN, static_cast<long long>(CBigInteger("-9223372036854775808")));
    EXPECT_EQ(INT_MAX, static_cast<int>(CBigInteger("2147483647")));
    EXPECT_EQ(INT_MIN, static_cast<int>(CBigInteger("-2147483648")));
    const char* tooLong[] = {"9223372036854775808", "-9223372036854775809",
                             "100000000000000000000"};
    for (const char* text : tooLong) {
        SCOPED_TRACE(text);
        ExpectKxError<CKxInvalidValueException>(
            [&] { (void)static_cast<long long>(CBigInteger(text)); },
            "ERROR: Value out of bound of LONGLONG.");
    }
    const char* tooInt[] = {"2147483648", "-2147483649"};
    for (const char* text : tooInt) {
        SCOPED_TRACE(text);
        ExpectKxError<CKxInvalidValueException>([&] { (void)static_cast<int>(CBigInteger(text)); },
                                                "ERROR: Value out of bound of int.");
    }
}

// Digit vectors hold the magnitude least significant digit first. Rows run in order and
// reuse their output vectors, so each builder must replace what was there.
TEST(CBigInteger, DigitHelpersWorkOnMagnitudes) {
    using D = std::vector<char>;
    D digits, product, quotient, remainder;
    struct Case { const char* name; std::function<D()> run; D expected; } cases[] = {
        {"Build text", [&] { CBigInteger::Build("00120", digits); return digits; }, {0, 2, 1}},
        {"Build skips non-digits", [&] { CBigInteger::Build("a-45", digits); return digits; },
         {5, 4}},
        {"Build unsigned", [&] { CBigInteger::Build(4096U, digits); return digits; },
         {6, 9, 0, 4}},
        {"BuildDWORDLONG", [&] { CBigInteger::BuildDWORDLONG(0, digits); return digits; }, {0}},
        {"BuildDouble", [&] { CBigInteger::BuildDouble(-123.7, digits); return digits; },
         {3, 2, 1}},
        {"ShiftLeft", [] { D d{3, 2, 1}; CBigInteger::ShiftLeft(d, 2); return d; },
         {0, 0, 3, 2, 1}},
        {"ShiftLeft of zero", [] { D d{0}; CBigInteger::ShiftLeft(d, 3); return d; }, {0}},
        {"Clean", [] { D d{4, 0, 0}; CBigInteger::Clean(d); return d; }, {4}},
        {"Clean of nothing", [] { D d; CBigInteger::Clean(d); return d; }, {0}},
        {"Multiply by a digit",  // 999 * 9 = 8991
         [&] { CBigInteger::Multiply(D{9, 9, 9}, static_cast<char>(9), product); return product; },
         {1, 9, 9, 8}},
        {"Multiply by zero",
         [&] { CBigInteger::Multiply(D{5, 2}, D{0}, product); return product; }, {0}},
        {"Subtract",  // 100 - 1
         [] { D d; CBigInteger::Subtract(D{0, 0, 1}, D{1}, d); return d; }, {9, 9}},
        {"Divide",  // 1357 = 12 * 113 + 1
         [&] { CBigInteger::Divide(D{7, 5, 3, 1}, D{2, 1}, quotient, remainder); return quotient; },
         {3, 1, 1}},
        {"Divide's remainder", [&] { return remainder; }, {1}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.expected, c.run());
    }
    EXPECT_EQ(-1, CBigInteger::Position(D()));
    EXPECT_EQ(2, CBigInteger::Position(D{0, 0, 7, 0}));
    EXPECT_EQ(0, CBigInteger::Compare(D(), D{0}));
    EXPECT_EQ(1, CBigInteger::Compare(D{0, 1}, D{9}));
    EXPECT_EQ(-1, CBigInteger::Compare(D{1, 2}, D{2, 2}));
    EXPECT_EQ("1", CBigInteger::Pow10(0).ToString());
    EXPECT_EQ("1" + std::string(40, '0'), CBigInteger::Pow10(40).ToString());
}

TEST(CBigInteger, MixedOperandsWithBuiltInsAndStreams) {
    CBigInteger v(41);
    EXPECT_EQ(CBigInteger(42), v + 1);
    EXPECT_EQ(CBigInteger(-40), 1 - v);
    EXPECT_TRUE(v * 2 == 82);
    EXPECT_TRUE(0 < v);
    v += 1;
    v *= v;
    EXPECT_EQ("1764", v.ToString());
    v -= v;
    EXPECT_EQ("0", v.ToString());
    std::ostringstream os;
    os << CBigInteger("-17");
    EXPECT_EQ("-17", os.str());
    std::string appended = "x=";
    CBigInteger(305).AppendTo(appended);
    EXPECT_EQ("x=305", appended);
}

TEST(CBigInteger, MovedFromValueReadsAsZero) {
    CBigInteger source("123456789012345678901234567890");
    const CBigInteger target(std::move(source));
    EXPECT_EQ("123456789012345678901234567890", target.ToString());
    EXPECT_TRUE(source.IsZero());  // NOLINT(bugprone-use-after-move): the state is documented
    EXPECT_EQ("0", source.ToString());
    EXPECT_EQ(target, source + target);
    source = CBigInteger(-4);
    EXPECT_EQ("-4", source.ToString());
}
