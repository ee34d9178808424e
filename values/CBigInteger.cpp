// CBigInteger: base-10 digit arithmetic, parsing and formatting.
#include "CBigInteger.h"

#include <climits>
#include <cmath>
#include <cstring>
#include <ostream>
#include <utility>

#include "CDecimal.h"
#include "CKxException.h"
#include "FormatString.h"

namespace KxXmlLib16 {

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Magnitude of a signed value, safe for the most negative one.
unsigned long long Magnitude(long long value) {
    return value < 0 ? 0ULL - static_cast<unsigned long long>(value)
                     : static_cast<unsigned long long>(value);
}

// digits *= factor, in place, for a factor small enough that digit * factor + carry fits.
void MultiplySmallInPlace(std::vector<char>& digits, unsigned long long factor) {
    unsigned long long carry = 0;
    for (char& d : digits) {
        unsigned long long v = static_cast<unsigned long long>(d) * factor + carry;
        d = static_cast<char>(v % 10);
        carry = v / 10;
    }
    while (carry != 0) {
        digits.push_back(static_cast<char>(carry % 10));
        carry /= 10;
    }
}

// a -= b in place; a must not be smaller than b.
void SubtractInPlace(std::vector<char>& a, const std::vector<char>& b) {
    int borrow = 0;
    const size_t nb = b.size();
    for (size_t i = 0; i < a.size(); ++i) {
        int v = a[i] - borrow - (i < nb ? b[i] : 0);
        borrow = v < 0 ? 1 : 0;
        a[i] = static_cast<char>(v + 10 * borrow);
        if (borrow == 0 && i + 1 >= nb) break;  // nothing left to subtract or borrow
    }
    CBigInteger::Clean(a);
}

// Three-way comparison by value, every zero equal to every other.
int CompareValues(const CBigInteger& a, const CBigInteger& b) {
    const int sa = a.IsZero() ? 0 : a.GetSign();
    const int sb = b.IsZero() ? 0 : b.GetSign();
    if (sa != sb) return sa < sb ? -1 : 1;
    if (sa == 0) return 0;
    const int magnitude = CBigInteger::Compare(a.GetDigits(), b.GetDigits());
    return sa > 0 ? magnitude : -magnitude;
}

// Narrows the magnitude to unsigned long long; false when it has more than 19 digits.
bool MagnitudeToULL(const std::vector<char>& digits, unsigned long long& out) {
    const int top = CBigInteger::Position(digits);
    out = 0;
    if (top >= 19) return false;
    for (int i = top; i >= 0; --i) out = out * 10 + static_cast<unsigned long long>(digits[i]);
    return true;
}

}  // namespace

const CBigInteger CBigInteger::MIN_LONGLONG(LLONG_MIN);
const CBigInteger CBigInteger::MAX_LONGLONG(LLONG_MAX);

CBigInteger::CBigInteger() : m_sign(1), m_digits(1, 0) {}

CBigInteger::CBigInteger(int value) : CBigInteger(static_cast<long long>(value)) {}

CBigInteger::CBigInteger(unsigned int value) : m_sign(1) { Build(value, m_digits); }

CBigInteger::CBigInteger(long value) : CBigInteger(static_cast<long long>(value)) {}

CBigInteger::CBigInteger(unsigned long value) : m_sign(1) { BuildDWORDLONG(value, m_digits); }

CBigInteger::CBigInteger(long long value) : m_sign(value < 0 ? -1 : 1) {
    BuildDWORDLONG(Magnitude(value), m_digits);
}

CBigInteger::CBigInteger(unsigned long long value) : m_sign(1) {
    BuildDWORDLONG(value, m_digits);
}

CBigInteger::CBigInteger(double value) : m_sign(std::signbit(value) ? -1 : 1) {
    BuildDouble(value, m_digits);
}

CBigInteger::CBigInteger(const char* text) : m_sign(1) { Parse(text); }

CBigInteger::CBigInteger(const std::string& text) : m_sign(1) { Parse(text.c_str()); }

CBigInteger::CBigInteger(const CDecimal& value) : CBigInteger(value.GetIntegerPart()) {}

CBigInteger::CBigInteger(const CBigInteger& other) = default;

CBigInteger::CBigInteger(CBigInteger&& other) noexcept
    : m_sign(other.m_sign), m_digits(std::move(other.m_digits)) {
    other.m_sign = 1;  // the emptied store reads as zero
}

CBigInteger::CBigInteger(int sign, std::vector<char>&& digits)
    : m_sign(sign < 0 ? -1 : 1), m_digits(std::move(digits)) {}

CBigInteger& CBigInteger::operator=(const CBigInteger& other) = default;

CBigInteger& CBigInteger::operator=(CBigInteger&& other) noexcept {
    if (this != &other) {
        m_sign = other.m_sign;
        m_digits.swap(other.m_digits);
    }
    return *this;
}

CBigInteger::~CBigInteger() = default;

CBigInteger CBigInteger::FromDigits(int sign, std::vector<char> digits) {
    Clean(digits);
    return CBigInteger(sign, std::move(digits));
}

void CBigInteger::Parse(const char* text) {
    if (text == nullptr) text = "";
    const size_t length = std::strlen(text);
    for (size_t i = 0; i < length; ++i) {
        const char c = text[i];
        if (!IsDigit(c) && c != '\t' && c != '\n' && c != '\r' && c != ' ' && c != '+' &&
            c != '-') {
            // Anything else (a point, an exponent...) goes through the decimal parser, whose
            // errors are the caller's; the fraction is truncated toward zero.
            *this = CDecimal(text).GetIntegerPart();
            return;
        }
    }
    size_t begin = 0;
    size_t end = length;
    while (begin < end && text[begin] == ' ') ++begin;
    while (end > begin && text[end - 1] == ' ') --end;
    int sign = 1;
    if (begin < end && text[begin] == '-') {
        sign = -1;
        ++begin;
    }
    // Digits are taken from the end backwards; whatever precedes the first non-digit is
    // ignored on purpose ("+5" is 5, "12+34" is 34).
    std::vector<char> digits;
    digits.reserve(end - begin);
    for (size_t i = end; i > begin && IsDigit(text[i - 1]); --i) {
        digits.push_back(static_cast<char>(text[i - 1] - '0'));
    }
    Clean(digits);
    m_sign = sign;
    m_digits.swap(digits);
}

bool CBigInteger::IsZero() const { return Position(m_digits) < 0; }

void CBigInteger::AppendTo(std::string& out) const {
    const int top = Position(m_digits);
    if (top < 0) {
        out.push_back('0');
        return;
    }
    out.reserve(out.size() + static_cast<size_t>(top) + 2);
    if (m_sign < 0) out.push_back('-');
    for (int i = top; i >= 0; --i) out.push_back(static_cast<char>('0' + m_digits[i]));
}

std::string CBigInteger::ToString() const {
    std::string out;
    AppendTo(out);
    return out;
}

CBigInteger CBigInteger::operator-() const { return GetNegative(); }

void CBigInteger::Negate() { m_sign = -m_sign; }

void CBigInteger::Abs() { m_sign = 1; }

CBigInteger CBigInteger::GetAbs() const {
    CBigInteger result(*this);
    result.Abs();
    return result;
}

CBigInteger CBigInteger::GetNegative() const {
    CBigInteger result(*this);
    result.Negate();
    return result;
}

CBigInteger& CBigInteger::operator+=(const CBigInteger& other) {
    if (m_sign == other.m_sign) {
        Add(m_digits, other.m_digits, m_digits);
    } else if (Compare(m_digits, other.m_digits) >= 0) {
        Subtract(m_digits, other.m_digits, m_digits);
    } else {
        Subtract(other.m_digits, m_digits, m_digits);
        m_sign = other.m_sign;
    }
    return *this;
}

CBigInteger& CBigInteger::operator-=(const CBigInteger& other) {
    if (this == &other) {
        *this = CBigInteger();
        return *this;
    }
    if (m_sign != other.m_sign) {
        Add(m_digits, other.m_digits, m_digits);
    } else if (Compare(m_digits, other.m_digits) >= 0) {
        Subtract(m_digits, other.m_digits, m_digits);
    } else {
        Subtract(other.m_digits, m_digits, m_digits);
        m_sign = -other.m_sign;
    }
    return *this;
}

CBigInteger& CBigInteger::operator*=(const CBigInteger& other) {
    Multiply(m_digits, other.m_digits, m_digits);
    m_sign *= other.m_sign;
    return *this;
}

namespace {

// Quotient and remainder of signed values: truncation toward zero, remainder with the
// dividend's sign. A zero divisor throws `message`.
void DivideSigned(const CBigInteger& a, const CBigInteger& b, CBigInteger* quotient,
                  CBigInteger* remainder, const char* message) {
    if (b.IsZero()) throw CKxInvalidValueException(FormatString("%s", message));
    std::vector<char> q;
    std::vector<char> r;
    CBigInteger::Divide(a.GetDigits(), b.GetDigits(), q, r);
    if (quotient != nullptr) *quotient = CBigInteger::FromDigits(a.GetSign() * b.GetSign(), std::move(q));
    if (remainder != nullptr) *remainder = CBigInteger::FromDigits(a.GetSign(), std::move(r));
}

}  // namespace

CBigInteger& CBigInteger::operator/=(const CBigInteger& other) {
    DivideSigned(*this, other, this, nullptr, "ERROR: Overflow in operator /=.");
    return *this;
}

CBigInteger& CBigInteger::operator%=(const CBigInteger& other) {
    DivideSigned(*this, other, nullptr, this, "ERROR: Overflow in operator%=.");
    return *this;
}

CBigInteger CBigInteger::Pow10(unsigned n) {
    std::vector<char> digits(static_cast<size_t>(n) + 1, 0);
    digits.back() = 1;
    return FromDigits(1, std::move(digits));
}

CBigInteger CBigInteger::SquareRoot() const {
    if (m_sign < 0 && !IsZero()) {
        throw CKxInvalidValueException("ERROR: Negative Number in function SquareRoot().");
    }
    if (IsZero()) return CBigInteger();
    // 10^ceil(n/2) is not below the root of an n-digit value; Newton's iteration from above
    // decreases strictly until it reaches the floor of the root.
    const unsigned length = static_cast<unsigned>(Position(m_digits)) + 1;
    CBigInteger x = Pow10((length + 1) / 2);
    const CBigInteger value = GetAbs();
    for (;;) {
        CBigInteger next = (value / x + x) / 2;
        if (!(next < x)) break;
        x = std::move(next);
    }
    return x;
}

CBigInteger::operator long long() const {
    unsigned long long magnitude = 0;
    const bool negative = m_sign < 0;
    const unsigned long long limit = negative ? 0x8000000000000000ULL : 0x7FFFFFFFFFFFFFFFULL;
    if (!MagnitudeToULL(m_digits, magnitude) || magnitude > limit) {
        throw CKxInvalidValueException("ERROR: Value out of bound of LONGLONG.");
    }
    if (!negative) return static_cast<long long>(magnitude);
    return magnitude == 0x8000000000000000ULL ? LLONG_MIN : -static_cast<long long>(magnitude);
}

CBigInteger::operator int() const {
    unsigned long long magnitude = 0;
    const bool negative = m_sign < 0;
    const unsigned long long limit = negative ? 2147483648ULL : 2147483647ULL;
    if (!MagnitudeToULL(m_digits, magnitude) || magnitude > limit) {
        throw CKxInvalidValueException("ERROR: Value out of bound of int.");
    }
    const long long value =
        negative ? -static_cast<long long>(magnitude) : static_cast<long long>(magnitude);
    return static_cast<int>(value);
}

// ---- Magnitude helpers ----

int CBigInteger::Compare(const std::vector<char>& a, const std::vector<char>& b) {
    const int ta = Position(a);
    const int tb = Position(b);
    if (ta != tb) return ta < tb ? -1 : 1;
    for (int i = ta; i >= 0; --i) {
        if (a[i] != b[i]) return a[i] < b[i] ? -1 : 1;
    }
    return 0;
}

void CBigInteger::Add(const std::vector<char>& a, const std::vector<char>& b,
                      std::vector<char>& result) {
    const std::vector<char>& longer = a.size() >= b.size() ? a : b;
    const std::vector<char>& shorter = a.size() >= b.size() ? b : a;
    std::vector<char> sum;
    sum.reserve(longer.size() + 1);
    int carry = 0;
    for (size_t i = 0; i < longer.size(); ++i) {
        int v = longer[i] + (i < shorter.size() ? shorter[i] : 0) + carry;
        carry = v >= 10 ? 1 : 0;
        sum.push_back(static_cast<char>(v - 10 * carry));
    }
    if (carry != 0) sum.push_back(1);
    Clean(sum);
    result.swap(sum);
}

void CBigInteger::Subtract(const std::vector<char>& a, const std::vector<char>& b,
                           std::vector<char>& result) {
    if (Compare(a, b) < 0) {
        throw CKxInvalidParamException("ERROR: Negative result in function Subtract().");
    }
    std::vector<char> difference(a);
    SubtractInPlace(difference, b);
    result.swap(difference);
}

void CBigInteger::Multiply(const std::vector<char>& a, const std::vector<char>& b,
                           std::vector<char>& result) {
    const int ta = Position(a);
    const int tb = Position(b);
    if (ta < 0 || tb < 0) {
        result.assign(1, 0);
        return;
    }
    const size_t na = static_cast<size_t>(ta) + 1;
    const size_t nb = static_cast<size_t>(tb) + 1;
    // Column sums first, carries once at the end; a column holds at most 81 * min(na, nb).
    std::vector<unsigned long long> columns(na + nb, 0);
    for (size_t i = 0; i < na; ++i) {
        if (a[i] == 0) continue;
        for (size_t j = 0; j < nb; ++j) {
            columns[i + j] += static_cast<unsigned long long>(a[i] * b[j]);
        }
    }
    std::vector<char> product;
    product.reserve(na + nb + 1);
    unsigned long long carry = 0;
    for (unsigned long long column : columns) {
        const unsigned long long v = column + carry;
        product.push_back(static_cast<char>(v % 10));
        carry = v / 10;
    }
    while (carry != 0) {
        product.push_back(static_cast<char>(carry % 10));
        carry /= 10;
    }
    Clean(product);
    result.swap(product);
}

void CBigInteger::Multiply(const std::vector<char>& a, char digit, std::vector<char>& result) {
    std::vector<char> product(a);
    MultiplySmallInPlace(product, static_cast<unsigned long long>(digit));
    Clean(product);
    result.swap(product);
}

void CBigInteger::Divide(const std::vector<char>& dividend, const std::vector<char>& divisor,
                         std::vector<char>& quotient, std::vector<char>& remainder) {
    const int td = Position(divisor);
    if (td < 0) throw CKxInvalidValueException("ERROR: Overflow in operator/.");
    const int top = Position(dividend);
    if (top < 0) {
        quotient.assign(1, 0);
        remainder.assign(1, 0);
        return;
    }
    if (Compare(dividend, divisor) < 0) {
        remainder.assign(dividend.begin(), dividend.begin() + top + 1);
        quotient.assign(1, 0);
        return;
    }
    std::vector<char> cleanDivisor(divisor.begin(), divisor.begin() + td + 1);
    // Schoolbook long division: bring down one digit at a time, count the subtractions.
    std::vector<char> q(static_cast<size_t>(top) + 1, 0);
    std::vector<char> r;
    r.reserve(cleanDivisor.size() + 1);
    r.push_back(0);
    for (int i = top; i >= 0; --i) {
        if (r.size() == 1 && r[0] == 0) {
            r[0] = dividend[i];
        } else {
            r.insert(r.begin(), dividend[i]);
        }
        char count = 0;
        while (Compare(r, cleanDivisor) >= 0) {
            SubtractInPlace(r, cleanDivisor);
            ++count;
        }
        q[i] = count;
    }
    Clean(q);
    quotient.swap(q);
    remainder.swap(r);
}

void CBigInteger::ShiftLeft(std::vector<char>& digits, unsigned n) {
    if (n == 0 || Position(digits) < 0) {
        Clean(digits);
        return;
    }
    digits.insert(digits.begin(), n, 0);
}

void CBigInteger::Build(const char* text, std::vector<char>& digits) {
    digits.clear();
    if (text != nullptr) {
        const size_t length = std::strlen(text);
        digits.reserve(length);
        for (size_t i = length; i > 0 && IsDigit(text[i - 1]); --i) {
            digits.push_back(static_cast<char>(text[i - 1] - '0'));
        }
    }
    Clean(digits);
}

void CBigInteger::Build(unsigned int value, std::vector<char>& digits) {
    BuildDWORDLONG(value, digits);
}

void CBigInteger::BuildDWORDLONG(unsigned long long value, std::vector<char>& digits) {
    digits.clear();
    digits.reserve(20);
    do {
        digits.push_back(static_cast<char>(value % 10));
        value /= 10;
    } while (value != 0);
}

void CBigInteger::BuildDouble(double value, std::vector<char>& digits) {
    if (!std::isfinite(value)) {
        const char* text = std::isnan(value) ? "nan" : (value > 0 ? "inf" : "-inf");
        throw CKxInvalidValueException(
            FormatString("The value [%s] can not be converted to an integer", text));
    }
    const double magnitude = std::trunc(std::fabs(value));
    if (magnitude < 18446744073709551616.0) {
        BuildDWORDLONG(static_cast<unsigned long long>(magnitude), digits);
        return;
    }
    // Beyond 2^64 the double is an exact 53-bit mantissa times a power of two: build the
    // mantissa, then double it in steps of 2^32 (repeated division by ten would round).
    int exponent = 0;
    const double fraction = std::frexp(magnitude, &exponent);
    const unsigned long long mantissa =
        static_cast<unsigned long long>(std::ldexp(fraction, 53));
    BuildDWORDLONG(mantissa, digits);
    digits.reserve(static_cast<size_t>(exponent) * 30 / 100 + 2);
    int shift = exponent - 53;
    while (shift > 0) {
        const int step = shift > 32 ? 32 : shift;
        MultiplySmallInPlace(digits, 1ULL << step);
        shift -= step;
    }
}

void CBigInteger::Clean(std::vector<char>& digits) {
    size_t size = digits.size();
    while (size > 1 && digits[size - 1] == 0) --size;
    digits.resize(size);
    if (digits.empty()) digits.push_back(0);
}

int CBigInteger::Position(const std::vector<char>& digits) {
    for (size_t i = digits.size(); i > 0; --i) {
        if (digits[i - 1] != 0) return static_cast<int>(i - 1);
    }
    return -1;
}

// ---- Free operators ----

bool operator==(const CBigInteger& a, const CBigInteger& b) { return CompareValues(a, b) == 0; }
bool operator!=(const CBigInteger& a, const CBigInteger& b) { return CompareValues(a, b) != 0; }
bool operator<(const CBigInteger& a, const CBigInteger& b) { return CompareValues(a, b) < 0; }
bool operator>(const CBigInteger& a, const CBigInteger& b) { return CompareValues(a, b) > 0; }
bool operator<=(const CBigInteger& a, const CBigInteger& b) { return CompareValues(a, b) <= 0; }
bool operator>=(const CBigInteger& a, const CBigInteger& b) { return CompareValues(a, b) >= 0; }

CBigInteger operator+(const CBigInteger& a, const CBigInteger& b) {
    CBigInteger result(a);
    result += b;
    return result;
}

CBigInteger operator-(const CBigInteger& a, const CBigInteger& b) {
    CBigInteger result(a);
    result -= b;
    return result;
}

CBigInteger operator*(const CBigInteger& a, const CBigInteger& b) {
    CBigInteger result(a);
    result *= b;
    return result;
}

CBigInteger operator/(const CBigInteger& a, const CBigInteger& b) {
    CBigInteger quotient;
    DivideSigned(a, b, &quotient, nullptr, "ERROR: Overflow in operator/.");
    return quotient;
}

CBigInteger operator%(const CBigInteger& a, const CBigInteger& b) {
    CBigInteger remainder;
    DivideSigned(a, b, nullptr, &remainder, "ERROR: Overflow in operator%.");
    return remainder;
}

std::ostream& operator<<(std::ostream& os, const CBigInteger& value) {
    return os << value.ToString();
}

}  // namespace KxXmlLib16
