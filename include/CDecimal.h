// CDecimal: the arbitrary-precision decimal of the library (XSD decimal).
#ifndef KX_CDECIMAL_H
#define KX_CDECIMAL_H

#include <iosfwd>
#include <string>

#include "CBigInteger.h"
#include "KxConfig.h"

namespace KxXmlLib16 {

// A decimal number of any size and precision, kept as a CBigInteger of digits (the unscaled
// value) and a count of fraction digits, the fractional divider: the value is
// unscaled / 10^divider. The divider keeps what the text or the arithmetic gave ("1.50" has
// divider 2); comparisons, digit counts and the default text go by the value, so 1.50 == 1.5.
//
// All text conversions are locale-independent.
class KX_EXPORT CDecimal {
public:
    // Zero.
    CDecimal();
    // Exact values of the built-in integers.
    CDecimal(int value);
    CDecimal(unsigned int value);
    CDecimal(long value);
    CDecimal(unsigned long value);
    CDecimal(long long value);
    CDecimal(unsigned long long value);
    // The shortest decimal text that reads back as the same double (std::to_chars, fixed
    // notation), then parsed: CDecimal(0.1) is 0.1, CDecimal(1e21) is 1000000000000000000000.
    // NaN and the infinities throw CKxInvalidValueException "The value [%s] is not a valid
    // decimal" ("nan", "inf", "-inf").
    CDecimal(double value);
    // Parses the XSD decimal lexical form: an optional "+" or "-", digits, an optional "." and
    // fraction digits, at least one digit in all ("+1.5", ".5", "5.", "-0", "007.100"). No
    // exponent, no blank anywhere (the caller has already applied the whitespace rule). Anything
    // else throws CKxInvalidValueException "The value [%s] is not a valid decimal". A null
    // pointer reads as the empty text.
    explicit CDecimal(const char* text);
    explicit CDecimal(const std::string& text);
    // The integer, with divider 0.
    CDecimal(const CBigInteger& value);
    // unscaled / 10^fractionalDivider ("CDecimal(CBigInteger(150), 2)" is 1.50).
    CDecimal(CBigInteger unscaled, unsigned fractionalDivider);
    CDecimal(const CDecimal& other);
    CDecimal(CDecimal&& other) noexcept;
    CDecimal& operator=(const CDecimal& other);
    CDecimal& operator=(CDecimal&& other) noexcept;
    virtual ~CDecimal();

    // Replaces the value by the parsed text; throws as the text constructor. On failure the
    // value is left unchanged.
    void Parse(const char* text);

    // The default text: no exponent, no "+", no superfluous leading zeros, no trailing fraction
    // zeros, no point when there is no fraction; zero of either sign is "0" ("1.50" -> "1.5",
    // "-0.0" -> "0", "007" -> "7", ".5" -> "0.5").
    std::string ToString() const;
    // Exactly `fractionDigits` fraction digits, rounding half away from zero ("2.345" with 2 is
    // "2.35", "-2.345" is "-2.35"); 0 (or a negative count) writes no point. A value that rounds
    // to zero is written without a sign ("-0.001" with 2 is "0.00").
    std::string ToString(int fractionDigits) const;

    // Changes the number of fraction digits kept: raising it appends zero digits, lowering it
    // drops digits, truncating toward zero ("-1.29" to 1 is "-1.2").
    void ChangeFractionalDivider(unsigned n);
    unsigned GetFractionalDivider() const { return m_divider; }

    // The unscaled digits (value times 10^divider), for code that needs the digit store.
    const CBigInteger& GetUnscaledValue() const { return m_value; }

    // The integer part, truncated toward zero.
    CBigInteger GetIntegerPart() const;

    // Narrowing. The integer forms truncate the fraction toward zero. A value outside the
    // target's range throws CKxOverFlowException "The value [%s] is out of the range of a
    // double" / "... of a long long" / "... of a long" with the default text. ToDouble rounds to
    // the nearest double; a value too small for a double gives a zero of the value's sign.
    double ToDouble() const;
    long long ToLongLong() const;
    long ToLong() const;

    // Digit counts of the value, for the digit facets. The integer count is 0 when the absolute
    // integer part is zero, else its number of digits ("123.4" -> 3, "0.5" -> 0). The fraction
    // count ignores trailing zeros ("1.50" -> 1, "2.0" -> 0).
    int GetIntegerDigitCount() const;
    int GetFractionDigitCount() const;

    // True for a value below zero (a negative zero is not negative).
    bool IsNegative() const;
    bool IsZero() const;

    CDecimal operator-() const;
    // + - * are exact (the sum's divider is the larger of the two, the product's their sum).
    // Division: the quotient is truncated toward zero at max(28, divider of either operand)
    // fraction digits, then trailing zero fraction digits are dropped. A zero divisor throws
    // CKxOverFlowException "ERROR: Division by zero in operator/.".
    CDecimal& operator+=(const CDecimal& other);
    CDecimal& operator-=(const CDecimal& other);
    CDecimal& operator*=(const CDecimal& other);
    CDecimal& operator/=(const CDecimal& other);

    // The least number of fraction digits a quotient carries.
    static const unsigned DIVISION_FRACTION_DIGITS = 28;

    // -1, 0 or 1 as a is below, equal to or above b, by value.
    static int Compare(const CDecimal& a, const CDecimal& b);

private:
    CBigInteger m_value;  // unscaled digits with their sign
    unsigned m_divider;   // number of fraction digits in m_value
};

// Comparisons by value: 1.50 == 1.5, -0 == 0.
KX_EXPORT bool operator==(const CDecimal& a, const CDecimal& b);
KX_EXPORT bool operator!=(const CDecimal& a, const CDecimal& b);
KX_EXPORT bool operator<(const CDecimal& a, const CDecimal& b);
KX_EXPORT bool operator>(const CDecimal& a, const CDecimal& b);
KX_EXPORT bool operator<=(const CDecimal& a, const CDecimal& b);
KX_EXPORT bool operator>=(const CDecimal& a, const CDecimal& b);

// Arithmetic, as the compound forms.
KX_EXPORT CDecimal operator+(const CDecimal& a, const CDecimal& b);
KX_EXPORT CDecimal operator-(const CDecimal& a, const CDecimal& b);
KX_EXPORT CDecimal operator*(const CDecimal& a, const CDecimal& b);
KX_EXPORT CDecimal operator/(const CDecimal& a, const CDecimal& b);

// Writes the default text (so test failures show the value).
KX_EXPORT std::ostream& operator<<(std::ostream& os, const CDecimal& value);

}  // namespace KxXmlLib16

#endif
