// Lexical conversions. Integers and floats are the hot paths of every read and write: the
// processed text is the caller's string itself whenever the whitespace rule leaves it unchanged,
// output goes through fixed stack buffers, and nothing depends on the process locale.
#include "CConversions.h"

#include <algorithm>
#include <cerrno>
#include <cfloat>
#include <charconv>
#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <locale.h>

#include "CBigInteger.h"
#include "CBinaryData.h"
#include "CDateTime.h"
#include "CDateTimeSpan.h"
#include "CDecimal.h"
#include "CKxException.h"
#include "FormatString.h"

namespace KxXmlLib16 {

namespace {

// The "C" locale, created once, for the C library conversions: a process locale with a comma
// decimal point must not change what is read or written.
locale_t CLocale() {
    static const locale_t c = newlocale(LC_ALL_MASK, "C", static_cast<locale_t>(nullptr));
    return c;
}

// Switches the calling thread to the "C" locale for its lifetime.
class CLocaleScope {
public:
    CLocaleScope() : m_previous(CLocale() ? uselocale(CLocale()) : nullptr) {}
    ~CLocaleScope() {
        if (m_previous) uselocale(m_previous);
    }
    CLocaleScope(const CLocaleScope&) = delete;
    CLocaleScope& operator=(const CLocaleScope&) = delete;

private:
    locale_t m_previous;
};

// The processed text: `text` itself when the rule leaves it unchanged (no copy), otherwise the
// rule's result, kept in `storage`.
const std::string& Process(const std::string& text, CWhitespaceUtils::WhitespaceRule rule,
                           std::string& storage) {
    if (!CWhitespaceUtils::ChangesText(rule, text)) return text;
    storage = CWhitespaceUtils::ApplyRule(rule, text);
    return storage;
}

[[noreturn]] void ThrowNotConverted(const std::string& text, const char* type) {
    throw CKxInvalidValueException(
        FormatString("The value [%s] can not be converted to a %s", text.c_str(), type));
}

[[noreturn]] void ThrowTooLarge(const std::string& text, const char* type) {
    throw CKxInvalidValueException(
        FormatString("The value [%s] is to large to fit in a %s", text.c_str(), type));
}

// Optional sign and at most 18 digits, the whole text: the value cannot overflow 64 bits, and
// strtol would give the same result. Anything else is left to the C library.
bool ParseShortDecimal(const std::string& text, bool& negative, unsigned long long& magnitude) {
    const char* p = text.data();
    const char* const end = p + text.size();
    negative = false;
    if (p != end && (*p == '+' || *p == '-')) negative = *p++ == '-';
    if (end - p == 0 || end - p > 18) return false;
    unsigned long long value = 0;
    for (; p != end; ++p) {
        const unsigned digit = static_cast<unsigned char>(*p) - static_cast<unsigned>('0');
        if (digit > 9) return false;
        value = value * 10 + digit;
    }
    magnitude = value;
    return true;
}

bool IsKnownRule(CWhitespaceUtils::WhitespaceRule rule) {
    return rule >= CWhitespaceUtils::WhitespaceRule_None &&
           rule <= CWhitespaceUtils::WhitespaceRule_Collapse;
}

// The C library parse of one of the four integer widths, with its leniencies (leading blanks,
// sign, unsigned wrap of a minus) and the two messages.
template <typename T, typename Parse>
[[gnu::noinline]] T ParseIntegerSlow(const std::string& text,
                                     CWhitespaceUtils::WhitespaceRule rule, const char* type,
                                     Parse parse) {
    std::string storage;
    const std::string& processed = Process(text, rule, storage);
    if (processed.empty()) ThrowNotConverted(processed, type);
    const char* const begin = processed.c_str();
    char* end = nullptr;
    errno = 0;
    const T value = parse(begin, &end);
    if (errno == ERANGE) ThrowTooLarge(processed, type);
    if (end != begin + processed.size() && *end != '\0') ThrowNotConverted(processed, type);
    return value;
}

template <typename T, typename Parse>
inline T ParseInteger(const std::string& text, CWhitespaceUtils::WhitespaceRule rule,
                      const char* type, Parse parse) {
    // Sign and digits only: no rule changes such a text, and the result is the C library's
    // (unsigned types wrap a minus as it does; for signed ones the magnitude fits).
    bool negative;
    unsigned long long magnitude;
    if (IsKnownRule(rule) && ParseShortDecimal(text, negative, magnitude))
        return negative ? static_cast<T>(0 - magnitude) : static_cast<T>(magnitude);
    return ParseIntegerSlow<T>(text, rule, type, parse);
}

// Decimal text of an integer in a stack buffer of `Size` bytes (the terminator's byte unused).
template <size_t Size, typename T>
std::string IntegerText(T value) {
    char buffer[Size];
    const auto result = std::to_chars(buffer, buffer + Size - 1, value);
    return std::string(buffer, result.ptr);
}

// True when `format` holds exactly one conversion, and that one takes a double (f, e, g, a in
// either case, with flags, width, precision and an optional 'l'); "%%" is allowed anywhere.
bool IsDoubleFormat(const char* format) {
    int conversions = 0;
    for (const char* p = format; *p != '\0'; ++p) {
        if (*p != '%') continue;
        ++p;
        if (*p == '%') continue;
        while (*p != '\0' && std::strchr("-+ #0", *p) != nullptr) ++p;
        while (*p >= '0' && *p <= '9') ++p;
        if (*p == '.') {
            ++p;
            while (*p >= '0' && *p <= '9') ++p;
        }
        if (*p == 'l') ++p;
        if (*p == '\0' || std::strchr("fFeEgGaA", *p) == nullptr) return false;
        ++conversions;
    }
    return conversions == 1;
}

// Shared by r4 and r8: NaN and the infinities by name, other values with the caller's format or
// the default precision in general notation (identical to printf "%.<precision>g").
template <size_t Size>
std::string FloatText(double value, double largest, const std::string& format, int precision) {
    if (std::isnan(value)) return "NaN";
    if (value < -largest) return "-INF";
    if (value > largest) return "INF";
    char buffer[Size];
    // A format that does not take exactly one double is never passed to printf.
    if (!format.empty() && IsDoubleFormat(format.c_str())) {
        int length;
        {
            CLocaleScope cLocale;
            length = std::snprintf(buffer, Size, format.c_str(), value);
        }
        if (length >= 0)
            return std::string(buffer, std::min(static_cast<size_t>(length), Size - 1));
    }
    const auto result =
        std::to_chars(buffer, buffer + Size - 1, value, std::chars_format::general, precision);
    return std::string(buffer, result.ptr);
}

double CStrtod(const char* begin, char** end) {
    return CLocale() ? strtod_l(begin, end, CLocale()) : std::strtod(begin, end);
}

// Shared by r4 and r8: the special spellings, then strtod in the "C" locale.
[[gnu::noinline]] double ParseFloatSlow(const std::string& text,
                                        CWhitespaceUtils::WhitespaceRule rule,
                                        const char* type) {
    std::string storage;
    const std::string& processed = Process(text, rule, storage);
    if (processed.empty()) ThrowNotConverted(processed, type);
    if (processed == "NaN" || processed == "1.#QNAN" || processed == "-NAN")
        return std::numeric_limits<double>::quiet_NaN();
    if (processed == "-INF") return -std::numeric_limits<double>::infinity();
    if (processed == "INF") return std::numeric_limits<double>::infinity();
    const char* const begin = processed.c_str();
    char* end = nullptr;
    const double value = CStrtod(begin, &end);
    if (end != begin + processed.size() && *end != '\0') ThrowNotConverted(processed, type);
    return value;
}

inline double ParseFloat(const std::string& text, CWhitespaceUtils::WhitespaceRule rule,
                         const char* type) {
    // When strtod takes the whole text, any whitespace in it lies in the leading run that strtod
    // skips, so whatever the rule makes of that run the result is the same. NaN spellings go the
    // long way for their fixed result.
    if (IsKnownRule(rule) && !text.empty()) {
        const char* const begin = text.c_str();
        char* end = nullptr;
        const double value = CStrtod(begin, &end);
        if (end == begin + text.size() && !std::isnan(value)) return value;
    }
    return ParseFloatSlow(text, rule, type);
}

bool EqualsIgnoringCase(const std::string& text, const char* word) {
    const size_t length = std::strlen(word);
    if (text.size() != length) return false;
    for (size_t i = 0; i < length; ++i) {
        char c = text[i];
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
        if (c != word[i]) return false;
    }
    return true;
}

// printf "%02u": at least two digits.
std::string TwoDigits(unsigned char value) {
    std::string text = IntegerText<10>(static_cast<unsigned>(value));
    if (text.size() < 2) text.insert(text.begin(), '0');
    return text;
}

CDateTime ParseDateKind(const std::string& text, CWhitespaceUtils::WhitespaceRule rule,
                        CDateTime::DateTimeType kind) {
    std::string storage;
    CDateTime value(kind);
    value.ParseDate(Process(text, rule, storage).c_str());
    return value;
}

}  // namespace

// --- binary ---

std::string CConversions::hexBinaryToString(const CBinaryData& value) {
    return value.GetAsHexString();
}

CBinaryData CConversions::hexBinaryFromString(const std::string& text, WhitespaceRule rule) {
    std::string storage;
    CBinaryData value;
    value.SetAsHexString(Process(text, rule, storage).c_str());
    return value;
}

std::string CConversions::base64BinaryToString(const CBinaryData& value) {
    return value.GetAsBase64();
}

CBinaryData CConversions::base64BinaryFromString(const std::string& text, WhitespaceRule rule) {
    std::string storage;
    CBinaryData value;
    value.SetAsBase64(Process(text, rule, storage).c_str());
    return value;
}

// --- signed integers ---

std::string CConversions::i1ToString(char value) {
    return IntegerText<32>(static_cast<int>(static_cast<signed char>(value)));
}

char CConversions::i1FromString(const std::string& text, WhitespaceRule rule) {
    const long value = i4FromString(text, rule);
    if (value < -128 || value > 127) ThrowTooLarge(text, "i1");
    return static_cast<char>(value);
}

std::string CConversions::i2ToString(short value) { return IntegerText<32>(value); }

short CConversions::i2FromString(const std::string& text, WhitespaceRule rule) {
    const long value = i4FromString(text, rule);
    if (value < -32768 || value > 32767) ThrowTooLarge(text, "i2");
    return static_cast<short>(value);
}

std::string CConversions::i4ToString(long value) { return IntegerText<32>(value); }

long CConversions::i4FromString(const std::string& text, WhitespaceRule rule) {
    return ParseInteger<long>(text, rule, "i4", [](const char* begin, char** end) {
        return CLocale() ? strtol_l(begin, end, 10, CLocale()) : std::strtol(begin, end, 10);
    });
}

std::string CConversions::i8ToString(long long value) { return IntegerText<96>(value); }

long long CConversions::i8FromString(const std::string& text, WhitespaceRule rule) {
    return ParseInteger<long long>(text, rule, "i8", [](const char* begin, char** end) {
        return CLocale() ? strtoll_l(begin, end, 10, CLocale()) : std::strtoll(begin, end, 10);
    });
}

// --- unsigned integers ---

std::string CConversions::ui1ToString(unsigned char value) {
    return IntegerText<32>(static_cast<unsigned>(value));
}

unsigned char CConversions::ui1FromString(const std::string& text, WhitespaceRule rule) {
    const unsigned long value = ui4FromString(text, rule);
    if (value > 255) ThrowTooLarge(text, "ui1");
    return static_cast<unsigned char>(value);
}

std::string CConversions::ui2ToString(unsigned short value) { return IntegerText<32>(value); }

unsigned short CConversions::ui2FromString(const std::string& text, WhitespaceRule rule) {
    const unsigned long value = ui4FromString(text, rule);
    if (value > 65535) ThrowTooLarge(text, "ui2");
    return static_cast<unsigned short>(value);
}

std::string CConversions::ui4ToString(unsigned long value) { return IntegerText<32>(value); }

unsigned long CConversions::ui4FromString(const std::string& text, WhitespaceRule rule) {
    return ParseInteger<unsigned long>(text, rule, "ui4", [](const char* begin, char** end) {
        return CLocale() ? strtoul_l(begin, end, 10, CLocale()) : std::strtoul(begin, end, 10);
    });
}

std::string CConversions::ui8ToString(unsigned long long value) { return IntegerText<96>(value); }

unsigned long long CConversions::ui8FromString(const std::string& text, WhitespaceRule rule) {
    return ParseInteger<unsigned long long>(text, rule, "ui8", [](const char* begin, char** end) {
        return CLocale() ? strtoull_l(begin, end, 10, CLocale()) : std::strtoull(begin, end, 10);
    });
}

// --- floats ---

std::string CConversions::r4ToString(float value) { return r4ToString(value, std::string()); }

std::string CConversions::r4ToString(float value, const std::string& format) {
    return FloatText<32>(value, FLT_MAX, format, 7);
}

float CConversions::r4FromString(const std::string& text, WhitespaceRule rule) {
    const double value = ParseFloat(text, rule, "r4");
    // No range check: beyond the float range the narrowing gives an infinity.
    return std::isnan(value) ? std::numeric_limits<float>::quiet_NaN() : static_cast<float>(value);
}

std::string CConversions::r8ToString(double value) { return r8ToString(value, std::string()); }

std::string CConversions::r8ToString(double value, const std::string& format) {
    return FloatText<48>(value, DBL_MAX, format, 16);
}

double CConversions::r8FromString(const std::string& text, WhitespaceRule rule) {
    return ParseFloat(text, rule, "r8");
}

// --- duration, dates and times ---

std::string CConversions::durationToString(const CDateTimeSpan& value) { return value.ToString(); }

CDateTimeSpan CConversions::durationFromString(const std::string& text, WhitespaceRule rule) {
    std::string storage;
    CDateTimeSpan value;
    value.ParseXSDDuration(Process(text, rule, storage).c_str());
    return value;
}

std::string CConversions::yearMonthToString(const CDateTime& value) { return value.Format("s"); }

CDateTime CConversions::yearMonthFromString(const std::string& text, WhitespaceRule rule) {
    return ParseDateKind(text, rule, CDateTime::dt_gYearMonth);
}

std::string CConversions::monthDayToString(const CDateTime& value) { return value.Format("s"); }

CDateTime CConversions::monthDayFromString(const std::string& text, WhitespaceRule rule) {
    return ParseDateKind(text, rule, CDateTime::dt_gMonthDay);
}

std::string CConversions::dateToString(const CDateTime& value) { return value.Format("s"); }

CDateTime CConversions::dateFromString(const std::string& text, WhitespaceRule rule) {
    return ParseDateKind(text, rule, CDateTime::dt_date);
}

std::string CConversions::datetimeToString(const CDateTime& value) { return value.Format("s"); }

CDateTime CConversions::datetimeFromString(const std::string& text, WhitespaceRule rule) {
    std::string storage;
    CDateTime value(CDateTime::dt_dateTime);
    value.ParseDateTime(Process(text, rule, storage).c_str());
    return value;
}

std::string CConversions::timeToString(const CDateTime& value) { return value.Format("s"); }

CDateTime CConversions::timeFromString(const std::string& text, WhitespaceRule rule) {
    std::string storage;
    CDateTime value(CDateTime::dt_time);
    value.ParseTime(Process(text, rule, storage).c_str());
    return value;
}

// --- bare year, month, day ---

std::string CConversions::yearToString(unsigned short value) { return IntegerText<10>(value); }

unsigned short CConversions::yearFromString(const std::string& text, WhitespaceRule rule) {
    return static_cast<unsigned short>(ParseDateKind(text, rule, CDateTime::dt_gYear).GetYear());
}

std::string CConversions::monthToString(unsigned char value) {
    return "--" + TwoDigits(value);
}

unsigned char CConversions::monthFromString(const std::string& text, WhitespaceRule rule) {
    return static_cast<unsigned char>(ParseDateKind(text, rule, CDateTime::dt_gMonth).GetMonth());
}

std::string CConversions::dayToString(unsigned char value) {
    return "---" + TwoDigits(value);
}

unsigned char CConversions::dayFromString(const std::string& text, WhitespaceRule rule) {
    return static_cast<unsigned char>(ParseDateKind(text, rule, CDateTime::dt_gDay).GetDay());
}

// --- char, string, boolean ---

std::string CConversions::charToString(char value) {
    return value == '\0' ? std::string() : std::string(1, value);
}

char CConversions::charFromString(const std::string& text, WhitespaceRule rule) {
    std::string storage;
    const std::string& processed = Process(text, rule, storage);
    if (processed.size() != 1)
        throw CKxInvalidValueException(FormatString(
            "The value [%s] can not be a char as it is either empty of greater than 1 char long",
            processed.c_str()));
    return processed[0];
}

std::string CConversions::stringToString(const std::string& value) { return value; }

std::string CConversions::stringFromString(const std::string& text, WhitespaceRule rule) {
    return CWhitespaceUtils::ApplyRule(rule, text);
}

std::string CConversions::booleanToString(bool value) { return value ? "true" : "false"; }

bool CConversions::booleanFromString(const std::string& text, WhitespaceRule rule) {
    std::string storage;
    const std::string& processed = Process(text, rule, storage);
    if (EqualsIgnoringCase(processed, "true") || processed == "1") return true;
    if (EqualsIgnoringCase(processed, "false") || processed == "0") return false;
    throw CKxInvalidValueException(
        FormatString("A Boolean Value read from an XML document was invalid [%s]. Valid values "
                     "are 'true', 'false', '1', or '0'",
                     text.c_str()));
}

// --- decimal, integer ---

std::string CConversions::decimalToString(const CDecimal& value) {
    return decimalToString(value, std::string());
}

std::string CConversions::decimalToString(const CDecimal& value, const std::string& format) {
    if (format.empty()) return value.ToString();
    const long digits = CLocale() ? strtol_l(format.c_str(), nullptr, 10, CLocale())
                                  : std::strtol(format.c_str(), nullptr, 10);
    const long clamped = digits > INT_MAX ? INT_MAX : digits < INT_MIN ? INT_MIN : digits;
    return value.ToString(static_cast<int>(clamped));
}

CDecimal CConversions::decimalFromString(const std::string& text, WhitespaceRule rule) {
    std::string storage;
    return CDecimal(Process(text, rule, storage));
}

std::string CConversions::integerToString(const CBigInteger& value) { return value.ToString(); }

CBigInteger CConversions::integerFromString(const std::string& text, WhitespaceRule rule) {
    std::string storage;
    return CBigInteger(Process(text, rule, storage));
}

}  // namespace KxXmlLib16
