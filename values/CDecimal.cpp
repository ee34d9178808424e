// CDecimal: parsing, formatting, scaling and arithmetic of arbitrary-precision decimals.
#include "CDecimal.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstring>
#include <ostream>
#include <system_error>
#include <utility>
#include <vector>

#include "CKxException.h"
#include "FormatString.h"

namespace KxXmlLib16 {

namespace {

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

[[noreturn]] void ThrowInvalidText(const char* text, size_t length) {
    const std::string copy(text, length);
    throw CKxInvalidValueException(
        FormatString("The value [%s] is not a valid decimal", copy.c_str()));
}

// Writes a magnitude (digits least significant first, `count` of them, no leading zeros
// needed) scaled by 10^-divider, with exactly `fractionOut` fraction digits taken from the top
// of the fraction: fewer than `divider` drops the lowest ones (the caller has made sure they are
// zeros or has rounded), more pads with zeros.
void AppendFixed(std::string& out, bool negative, const char* digits, size_t count,
                 unsigned divider, unsigned fractionOut) {
    while (count > 0 && digits[count - 1] == 0) --count;  // ignore leading zeros
    out.reserve(out.size() + (count > divider ? count - divider : 1) + fractionOut + 2);
    // The sign only when a non-zero digit is printed: a zero is never "-0".
    bool nonZeroPrinted = false;
    const long long lowest = static_cast<long long>(divider) - fractionOut;
    for (long long pos = static_cast<long long>(count) - 1; pos >= 0 && pos >= lowest; --pos) {
        if (digits[pos] != 0) {
            nonZeroPrinted = true;
            break;
        }
    }
    if (negative && nonZeroPrinted) out.push_back('-');
    if (count > divider) {
        for (size_t pos = count; pos > divider; --pos) {
            out.push_back(static_cast<char>('0' + digits[pos - 1]));
        }
    } else {
        out.push_back('0');
    }
    if (fractionOut == 0) return;
    out.push_back('.');
    for (long long pos = static_cast<long long>(divider) - 1; pos >= lowest; --pos) {
        const char d = (pos >= 0 && pos < static_cast<long long>(count)) ? digits[pos] : 0;
        out.push_back(static_cast<char>('0' + d));
    }
}

// Parses the XSD decimal lexical form of text[0, length) into its unscaled digits and divider.
CDecimal ParseDecimal(const char* text, size_t length) {
    size_t i = 0;
    int sign = 1;
    if (i < length && (text[i] == '+' || text[i] == '-')) {
        sign = text[i] == '-' ? -1 : 1;
        ++i;
    }
    const size_t integerBegin = i;
    while (i < length && IsDigit(text[i])) ++i;
    const size_t integerEnd = i;
    size_t fractionBegin = i;
    size_t fractionEnd = i;
    if (i < length && text[i] == '.') {
        fractionBegin = ++i;
        while (i < length && IsDigit(text[i])) ++i;
        fractionEnd = i;
    }
    if (i != length || (integerEnd - integerBegin) + (fractionEnd - fractionBegin) == 0) {
        ThrowInvalidText(text, length);
    }
    // Leading integer zeros carry nothing; skipping them keeps the store clean from the start.
    size_t firstSignificant = integerBegin;
    while (firstSignificant < integerEnd && text[firstSignificant] == '0') ++firstSignificant;
    std::vector<char> digits;
    digits.reserve((fractionEnd - fractionBegin) + (integerEnd - firstSignificant) + 1);
    for (size_t k = fractionEnd; k > fractionBegin; --k) {
        digits.push_back(static_cast<char>(text[k - 1] - '0'));
    }
    for (size_t k = integerEnd; k > firstSignificant; --k) {
        digits.push_back(static_cast<char>(text[k - 1] - '0'));
    }
    return CDecimal(CBigInteger::FromDigits(sign, std::move(digits)),
                    static_cast<unsigned>(fractionEnd - fractionBegin));
}

// The shortest text that reads back as the same double, in fixed notation, parsed.
CDecimal DecimalFromDouble(double value) {
    if (!std::isfinite(value)) {
        const char* text = std::isnan(value) ? "nan" : (value > 0 ? "inf" : "-inf");
        ThrowInvalidText(text, std::strlen(text));
    }
    // At most 309 integer digits, or "0." and 324 fraction digits for the smallest subnormal,
    // plus the sign.
    char buffer[400];
    const std::to_chars_result result =
        std::to_chars(buffer, buffer + sizeof(buffer), value, std::chars_format::fixed);
    return ParseDecimal(buffer, static_cast<size_t>(result.ptr - buffer));
}

}  // namespace

CDecimal::CDecimal() : m_value(), m_divider(0) {}
CDecimal::CDecimal(int value) : m_value(value), m_divider(0) {}
CDecimal::CDecimal(unsigned int value) : m_value(value), m_divider(0) {}
CDecimal::CDecimal(long value) : m_value(value), m_divider(0) {}
CDecimal::CDecimal(unsigned long value) : m_value(value), m_divider(0) {}
CDecimal::CDecimal(long long value) : m_value(value), m_divider(0) {}
CDecimal::CDecimal(unsigned long long value) : m_value(value), m_divider(0) {}

CDecimal::CDecimal(double value) : CDecimal(DecimalFromDouble(value)) {}

CDecimal::CDecimal(const char* text)
    : CDecimal(ParseDecimal(text == nullptr ? "" : text, text == nullptr ? 0 : std::strlen(text))) {}

CDecimal::CDecimal(const std::string& text) : CDecimal(ParseDecimal(text.data(), text.size())) {}

CDecimal::CDecimal(const CBigInteger& value) : m_value(value), m_divider(0) {}

CDecimal::CDecimal(CBigInteger unscaled, unsigned fractionalDivider)
    : m_value(std::move(unscaled)), m_divider(fractionalDivider) {}

CDecimal::CDecimal(const CDecimal& other) = default;

CDecimal::CDecimal(CDecimal&& other) noexcept
    : m_value(std::move(other.m_value)), m_divider(other.m_divider) {
    other.m_divider = 0;
}

CDecimal& CDecimal::operator=(const CDecimal& other) = default;

CDecimal& CDecimal::operator=(CDecimal&& other) noexcept {
    m_value = std::move(other.m_value);
    m_divider = other.m_divider;
    return *this;
}

CDecimal::~CDecimal() = default;

void CDecimal::Parse(const char* text) {
    if (text == nullptr) text = "";
    *this = ParseDecimal(text, std::strlen(text));
}

std::string CDecimal::ToString() const {
    if (m_value.IsZero()) return "0";
    const std::vector<char>& digits = m_value.GetDigits();
    unsigned trailingZeros = 0;
    while (trailingZeros < m_divider && trailingZeros < digits.size() &&
           digits[trailingZeros] == 0) {
        ++trailingZeros;
    }
    std::string out;
    AppendFixed(out, m_value.GetSign() < 0, digits.data(), digits.size(), m_divider,
                m_divider - trailingZeros);
    return out;
}

std::string CDecimal::ToString(int fractionDigits) const {
    const unsigned wanted = fractionDigits < 0 ? 0U : static_cast<unsigned>(fractionDigits);
    const std::vector<char>& digits = m_value.GetDigits();
    const bool negative = m_value.GetSign() < 0;
    std::string out;
    if (wanted >= m_divider) {
        AppendFixed(out, negative, digits.data(), digits.size(), m_divider, wanted);
        return out;
    }
    // Keep the digits above the dropped ones and round half away from zero on the first
    // dropped digit (the sign is applied afterwards, so rounding the magnitude up is right).
    const size_t dropped = m_divider - wanted;
    std::vector<char> kept;
    if (dropped < digits.size()) kept.assign(digits.begin() + dropped, digits.end());
    const char firstDropped = dropped - 1 < digits.size() ? digits[dropped - 1] : 0;
    if (firstDropped >= 5) {
        size_t k = 0;
        for (; k < kept.size() && kept[k] == 9; ++k) kept[k] = 0;
        if (k == kept.size()) {
            kept.push_back(1);
        } else {
            ++kept[k];
        }
    }
    AppendFixed(out, negative, kept.data(), kept.size(), wanted, wanted);
    return out;
}

void CDecimal::ChangeFractionalDivider(unsigned n) {
    if (n > m_divider) {
        CBigInteger::ShiftLeft(m_value.m_digits, n - m_divider);
    } else if (n < m_divider) {
        // Dropping the low digits of the magnitude truncates toward zero whatever the sign.
        std::vector<char>& digits = m_value.m_digits;
        const size_t dropped = m_divider - n;
        digits.erase(digits.begin(), digits.begin() + std::min(dropped, digits.size()));
        CBigInteger::Clean(digits);
    }
    m_divider = n;
}

CBigInteger CDecimal::GetIntegerPart() const {
    const std::vector<char>& digits = m_value.GetDigits();
    if (digits.size() <= m_divider) return CBigInteger();
    return CBigInteger::FromDigits(m_value.GetSign(),
                                   std::vector<char>(digits.begin() + m_divider, digits.end()));
}

namespace {

// The truncated integer part of an unscaled magnitude as unsigned long long; false when it has
// more than 19 digits (and so cannot fit a long long).
bool IntegerPartToULL(const std::vector<char>& digits, unsigned divider,
                      unsigned long long& out) {
    out = 0;
    const int top = CBigInteger::Position(digits);
    if (top < static_cast<long long>(divider)) return true;
    if (top - static_cast<long long>(divider) >= 19) return false;
    for (long long pos = top; pos >= static_cast<long long>(divider); --pos) {
        out = out * 10 + static_cast<unsigned long long>(digits[pos]);
    }
    return true;
}

}  // namespace

double CDecimal::ToDouble() const {
    const std::string text = ToString();
    double value = 0.0;
    const std::from_chars_result result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec == std::errc::result_out_of_range) {
        // Too small is a zero of the value's sign; too large does not fit.
        if (GetIntegerDigitCount() == 0) return IsNegative() ? -0.0 : 0.0;
        throw CKxOverFlowException(
            FormatString("The value [%s] is out of the range of a double", text.c_str()));
    }
    if (std::isinf(value)) {
        throw CKxOverFlowException(
            FormatString("The value [%s] is out of the range of a double", text.c_str()));
    }
    return value;
}

long long CDecimal::ToLongLong() const {
    unsigned long long magnitude = 0;
    const bool negative = m_value.GetSign() < 0;
    const unsigned long long limit = negative ? 0x8000000000000000ULL : 0x7FFFFFFFFFFFFFFFULL;
    if (!IntegerPartToULL(m_value.GetDigits(), m_divider, magnitude) || magnitude > limit) {
        throw CKxOverFlowException(FormatString("The value [%s] is out of the range of a long long",
                                                ToString().c_str()));
    }
    if (!negative) return static_cast<long long>(magnitude);
    return magnitude == 0x8000000000000000ULL ? LLONG_MIN : -static_cast<long long>(magnitude);
}

long CDecimal::ToLong() const {
    long long value = 0;
    bool fits = true;
    try {
        value = ToLongLong();
    } catch (const CKxOverFlowException&) {
        fits = false;
    }
    if (!fits || value < LONG_MIN || value > LONG_MAX) {
        throw CKxOverFlowException(
            FormatString("The value [%s] is out of the range of a long", ToString().c_str()));
    }
    return static_cast<long>(value);
}

int CDecimal::GetIntegerDigitCount() const {
    const int length = CBigInteger::Position(m_value.GetDigits()) + 1;
    return length > static_cast<long long>(m_divider) ? length - static_cast<int>(m_divider) : 0;
}

int CDecimal::GetFractionDigitCount() const {
    const std::vector<char>& digits = m_value.GetDigits();
    if (m_value.IsZero()) return 0;
    unsigned trailingZeros = 0;
    while (trailingZeros < m_divider && digits[trailingZeros] == 0) ++trailingZeros;
    return static_cast<int>(m_divider - trailingZeros);
}

bool CDecimal::IsNegative() const { return m_value.GetSign() < 0 && !m_value.IsZero(); }

bool CDecimal::IsZero() const { return m_value.IsZero(); }

CDecimal CDecimal::operator-() const {
    CDecimal result(*this);
    result.m_value.Negate();
    return result;
}

CDecimal& CDecimal::operator+=(const CDecimal& other) {
    if (m_divider < other.m_divider) {
        ChangeFractionalDivider(other.m_divider);
        m_value += other.m_value;
    } else if (m_divider > other.m_divider) {
        CDecimal aligned(other);
        aligned.ChangeFractionalDivider(m_divider);
        m_value += aligned.m_value;
    } else {
        m_value += other.m_value;
    }
    return *this;
}

CDecimal& CDecimal::operator-=(const CDecimal& other) {
    return *this += -other;
}

CDecimal& CDecimal::operator*=(const CDecimal& other) {
    const unsigned divider = m_divider + other.m_divider;
    m_value *= other.m_value;
    m_divider = divider;
    return *this;
}

CDecimal& CDecimal::operator/=(const CDecimal& other) {
    if (other.IsZero()) throw CKxOverFlowException("ERROR: Division by zero in operator/.");
    unsigned precision = DIVISION_FRACTION_DIGITS;
    if (m_divider > precision) precision = m_divider;
    if (other.m_divider > precision) precision = other.m_divider;
    // (A / 10^a) / (B / 10^b) * 10^p == A * 10^(b + p - a) / B, and p >= a.
    CBigInteger numerator(m_value);
    CBigInteger::ShiftLeft(numerator.m_digits, other.m_divider + precision - m_divider);
    m_value = numerator / other.m_value;
    m_divider = precision;
    // Drop the trailing zeros the fixed precision produced; the value is unchanged.
    std::vector<char>& digits = m_value.m_digits;
    size_t zeros = 0;
    if (m_value.IsZero()) {
        zeros = m_divider;
        digits.assign(1, 0);
    } else {
        while (zeros < m_divider && digits[zeros] == 0) ++zeros;
        digits.erase(digits.begin(), digits.begin() + zeros);
    }
    m_divider -= static_cast<unsigned>(zeros);
    return *this;
}

int CDecimal::Compare(const CDecimal& a, const CDecimal& b) {
    const int sa = a.IsZero() ? 0 : a.m_value.GetSign();
    const int sb = b.IsZero() ? 0 : b.m_value.GetSign();
    if (sa != sb) return sa < sb ? -1 : 1;
    if (sa == 0) return 0;
    // Compare the magnitudes as if both had the larger divider, without building them.
    const std::vector<char>& da = a.m_value.GetDigits();
    const std::vector<char>& db = b.m_value.GetDigits();
    const unsigned divider = a.m_divider > b.m_divider ? a.m_divider : b.m_divider;
    const long long shiftA = divider - a.m_divider;
    const long long shiftB = divider - b.m_divider;
    const long long lengthA = CBigInteger::Position(da) + 1 + shiftA;
    const long long lengthB = CBigInteger::Position(db) + 1 + shiftB;
    int magnitude = 0;
    if (lengthA != lengthB) {
        magnitude = lengthA < lengthB ? -1 : 1;
    } else {
        for (long long pos = lengthA - 1; pos >= 0; --pos) {
            const char ca = pos >= shiftA ? da[pos - shiftA] : 0;
            const char cb = pos >= shiftB ? db[pos - shiftB] : 0;
            if (ca != cb) {
                magnitude = ca < cb ? -1 : 1;
                break;
            }
        }
    }
    return sa > 0 ? magnitude : -magnitude;
}

bool operator==(const CDecimal& a, const CDecimal& b) { return CDecimal::Compare(a, b) == 0; }
bool operator!=(const CDecimal& a, const CDecimal& b) { return CDecimal::Compare(a, b) != 0; }
bool operator<(const CDecimal& a, const CDecimal& b) { return CDecimal::Compare(a, b) < 0; }
bool operator>(const CDecimal& a, const CDecimal& b) { return CDecimal::Compare(a, b) > 0; }
bool operator<=(const CDecimal& a, const CDecimal& b) { return CDecimal::Compare(a, b) <= 0; }
bool operator>=(const CDecimal& a, const CDecimal& b) { return CDecimal::Compare(a, b) >= 0; }

CDecimal operator+(const CDecimal& a, const CDecimal& b) {
    CDecimal result(a);
    result += b;
    return result;
}

CDecimal operator-(const CDecimal& a, const CDecimal& b) {
    CDecimal result(a);
    result -= b;
    return result;
}

CDecimal operator*(const CDecimal& a, const CDecimal& b) {
    CDecimal result(a);
    result *= b;
    return result;
}

CDecimal operator/(const CDecimal& a, const CDecimal& b) {
    CDecimal result(a);
    result /= b;
    return result;
}

std::ostream& operator<<(std::ostream& os, const CDecimal& value) {
    return os << value.ToString();
}

}  // namespace KxXmlLib16
