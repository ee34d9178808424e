// CBigInteger: the unbounded integer of the library (XSD integer), kept as base-10 digits.
#ifndef KX_CBIGINTEGER_H
#define KX_CBIGINTEGER_H

#include <iosfwd>
#include <string>
#include <vector>

#include "KxConfig.h"

namespace KxXmlLib16 {

class CDecimal;

// A signed integer of any size. The magnitude is held as decimal digits, one per element (the
// value 0..9, not a character code), least significant first, so reading and writing the text
// form needs no base conversion. After every operation the digits are cleaned: no zero digits at
// the most significant end, at least one digit kept. Zero may carry either sign; all zeros are
// equal and are written "0".
//
// The constructors from the built-in integers are implicit, so `big + 1` and `big == 0` work.
// The narrowing conversions to long long and int are `explicit`: implicit ones would make
// `big + 1` ambiguous (CBigInteger + CBigInteger against the built-in long long + int).
class KX_EXPORT CBigInteger {
public:
    // Zero.
    CBigInteger();
    // Exact values of the built-in integers.
    CBigInteger(int value);
    CBigInteger(unsigned int value);
    CBigInteger(long value);
    CBigInteger(unsigned long value);
    CBigInteger(long long value);
    CBigInteger(unsigned long long value);
    // The integer part of the double (truncated toward zero), exact; the sign is the double's.
    // Throws CKxInvalidValueException "The value [%s] can not be converted to an integer" for
    // NaN or an infinity.
    CBigInteger(double value);
    // Parses the text as Parse does (null reads as zero). Throws what CDecimal's parser throws
    // when the text takes the decimal path.
    explicit CBigInteger(const char* text);
    explicit CBigInteger(const std::string& text);
    // The decimal's integer part, truncated toward zero (lossy, hence explicit).
    explicit CBigInteger(const CDecimal& value);
    CBigInteger(const CBigInteger& other);
    // A moved-from value is zero (its digit store may be empty, which reads as zero).
    CBigInteger(CBigInteger&& other) noexcept;
    CBigInteger& operator=(const CBigInteger& other);
    CBigInteger& operator=(CBigInteger&& other) noexcept;
    virtual ~CBigInteger();

    // Builds a value from a sign (+1 or -1) and magnitude digits (least significant first);
    // the digits are cleaned. Used by CDecimal to hand over its digit store without copying.
    static CBigInteger FromDigits(int sign, std::vector<char> digits);

    // Replaces the value by the text's. A text made only of blanks (tab, LF, CR, space), "+",
    // "-" and digits is read leniently: blanks trimmed at both ends, an optional leading "-",
    // then digits read from the end backwards up to the first non-digit; everything before it is
    // ignored ("+5" is 5, "1 2" is 2, "12+34" is 34, "" is 0). Any other text is parsed as a
    // CDecimal and truncated toward zero ("12.7" is 12); the decimal's errors
    // (CKxInvalidValueException) propagate.
    void Parse(const char* text);

    // "-" for a negative non-zero value, then the digits; zero is "0"; never a "+".
    std::string ToString() const;
    // Appends ToString() to `out` (no temporary string).
    void AppendTo(std::string& out) const;

    // Read access to the digit store.
    int GetSign() const { return m_sign; }
    const std::vector<char>& GetDigits() const { return m_digits; }
    bool IsZero() const;

    // Sign handling: Negate and unary minus flip the sign, Abs makes it +1.
    CBigInteger operator-() const;
    void Negate();
    void Abs();
    CBigInteger GetAbs() const;
    CBigInteger GetNegative() const;

    // Arithmetic. Division truncates toward zero; the remainder has the dividend's sign
    // (-7 / 2 == -3, -7 % 2 == -1). A zero divisor throws CKxInvalidValueException
    // "ERROR: Overflow in operator/." (operator/), "ERROR: Overflow in operator%." (operator%),
    // "ERROR: Overflow in operator /=." (operator/=), "ERROR: Overflow in operator%=." (%=).
    CBigInteger& operator+=(const CBigInteger& other);
    CBigInteger& operator-=(const CBigInteger& other);
    CBigInteger& operator*=(const CBigInteger& other);
    CBigInteger& operator/=(const CBigInteger& other);
    CBigInteger& operator%=(const CBigInteger& other);

    // Ten to the power n.
    static CBigInteger Pow10(unsigned n);
    // The largest integer whose square does not exceed the value. Throws
    // CKxInvalidValueException "ERROR: Negative Number in function SquareRoot()." when negative.
    CBigInteger SquareRoot() const;

    // Narrowing. Throws CKxInvalidValueException "ERROR: Value out of bound of LONGLONG." or
    // "ERROR: Value out of bound of int." when the value does not fit.
    explicit operator long long() const;
    explicit operator int() const;

    // The range of long long, for the narrowing conversion.
    static const CBigInteger MIN_LONGLONG;
    static const CBigInteger MAX_LONGLONG;

    // ---- Helpers on magnitudes (digit vectors, least significant first) ----

    // -1, 0 or 1 as the magnitude a is below, equal to or above b. Both must be cleaned.
    static int Compare(const std::vector<char>& a, const std::vector<char>& b);
    // result = a + b.
    static void Add(const std::vector<char>& a, const std::vector<char>& b,
                    std::vector<char>& result);
    // result = a - b. A smaller than b throws CKxInvalidParamException
    // "ERROR: Negative result in function Subtract().".
    static void Subtract(const std::vector<char>& a, const std::vector<char>& b,
                         std::vector<char>& result);
    // result = a * b (schoolbook), and result = a * digit (digit 0..9).
    static void Multiply(const std::vector<char>& a, const std::vector<char>& b,
                         std::vector<char>& result);
    static void Multiply(const std::vector<char>& a, char digit, std::vector<char>& result);
    // Long division of magnitudes. A zero divisor throws CKxInvalidValueException
    // "ERROR: Overflow in operator/.". quotient and remainder may not alias the inputs.
    static void Divide(const std::vector<char>& dividend, const std::vector<char>& divisor,
                       std::vector<char>& quotient, std::vector<char>& remainder);
    // Inserts n zero digits at the least significant end (multiplies by ten to the n).
    static void ShiftLeft(std::vector<char>& digits, unsigned n);
    // Digits of a text: read from the last character backwards up to the first non-digit.
    static void Build(const char* text, std::vector<char>& digits);
    static void Build(unsigned int value, std::vector<char>& digits);
    static void BuildDWORDLONG(unsigned long long value, std::vector<char>& digits);
    // The magnitude of the double's integer part, exact. NaN or an infinity throws
    // CKxInvalidValueException "The value [%s] can not be converted to an integer".
    static void BuildDouble(double value, std::vector<char>& digits);
    // Removes zero digits at the most significant end, keeping at least one digit.
    static void Clean(std::vector<char>& digits);
    // Index of the most significant non-zero digit, -1 when the magnitude is zero.
    static int Position(const std::vector<char>& digits);

private:
    friend class CDecimal;  // works on the digit store in place (scaling, truncation)

    // Takes the digits as they are (the caller cleans them); no allocation of its own.
    CBigInteger(int sign, std::vector<char>&& digits);

    int m_sign;
    std::vector<char> m_digits;
};

// Comparisons by value (every zero equals every other zero).
KX_EXPORT bool operator==(const CBigInteger& a, const CBigInteger& b);
KX_EXPORT bool operator!=(const CBigInteger& a, const CBigInteger& b);
KX_EXPORT bool operator<(const CBigInteger& a, const CBigInteger& b);
KX_EXPORT bool operator>(const CBigInteger& a, const CBigInteger& b);
KX_EXPORT bool operator<=(const CBigInteger& a, const CBigInteger& b);
KX_EXPORT bool operator>=(const CBigInteger& a, const CBigInteger& b);

// Arithmetic; / and % throw as the compound forms above describe (with their own messages).
KX_EXPORT CBigInteger operator+(const CBigInteger& a, const CBigInteger& b);
KX_EXPORT CBigInteger operator-(const CBigInteger& a, const CBigInteger& b);
KX_EXPORT CBigInteger operator*(const CBigInteger& a, const CBigInteger& b);
KX_EXPORT CBigInteger operator/(const CBigInteger& a, const CBigInteger& b);
KX_EXPORT CBigInteger operator%(const CBigInteger& a, const CBigInteger& b);

// Writes ToString() (so test failures show the value).
KX_EXPORT std::ostream& operator<<(std::ostream& os, const CBigInteger& value);

}  // namespace KxXmlLib16

#endif
