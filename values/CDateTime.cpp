#include "CDateTime.h"

#include <charconv>
#include <climits>
#include <ostream>

#include "CDateTimeSpan.h"
#include "CKxException.h"
#include "FormatString.h"
#include "KxFraction.h"

namespace KxXmlLib16 {

namespace {

// Instants are counted in nanoseconds; the widest sum (a duration of 2^64 days) needs ~111 bits.
__extension__ typedef __int128 Int128;

constexpr long long kNanosPerSecond = 1000000000LL;
constexpr long long kSecondsPerDay = 86400;
constexpr long long kNanosPerMinute = 60 * kNanosPerSecond;
constexpr long long kNanosPerDay = kSecondsPerDay * kNanosPerSecond;
constexpr long long kDaysPer400Years = 146097;
constexpr int kMaxZoneMinutes = 14 * 60;
// Fields a kind does not have hold these; 1972 is a leap year, so --02-29 is a valid gMonthDay.
constexpr int kReferenceYear = 1972;

const char* const kTypeNames[] = {"",           "dt_dateTime", "dt_date",  "dt_gYearMonth",
                                  "dt_gYear",   "dt_time",     "dt_gDay",  "dt_gMonth",
                                  "dt_gMonthDay"};
const char* const kXsdNames[] = {"",        "xs:dateTime", "xs:date",  "xs:gYearMonth",
                                 "xs:gYear", "xs:time",     "xs:gDay",  "xs:gMonth",
                                 "xs:gMonthDay"};

bool IsValidKind(int kind) {
    return kind >= CDateTime::dt_dateTime && kind <= CDateTime::dt_gMonthDay;
}
bool KindHasYear(CDateTime::DateTimeType kind) {
    return kind == CDateTime::dt_dateTime || kind == CDateTime::dt_date ||
           kind == CDateTime::dt_gYearMonth || kind == CDateTime::dt_gYear;
}
bool KindHasMonth(CDateTime::DateTimeType kind) {
    return kind == CDateTime::dt_dateTime || kind == CDateTime::dt_date ||
           kind == CDateTime::dt_gYearMonth || kind == CDateTime::dt_gMonth ||
           kind == CDateTime::dt_gMonthDay;
}
bool KindHasDay(CDateTime::DateTimeType kind) {
    return kind == CDateTime::dt_dateTime || kind == CDateTime::dt_date ||
           kind == CDateTime::dt_gDay || kind == CDateTime::dt_gMonthDay;
}
bool KindHasTime(CDateTime::DateTimeType kind) {
    return kind == CDateTime::dt_dateTime || kind == CDateTime::dt_time;
}

// Calendar arithmetic works on astronomical years (1 BC is year 0, 2 BC is -1...), in which the
// proleptic Gregorian leap rule holds unchanged; the lexical years skip 0.
long long ToAstronomical(long long year) {
    return year < 0 ? year + 1 : year;
}
long long FromAstronomical(long long year) {
    return year <= 0 ? year - 1 : year;
}
bool FitsInt(long long year) {
    return year >= INT_MIN && year <= INT_MAX;
}

bool IsLeap(long long astroYear) {
    return (astroYear % 4 == 0 && astroYear % 100 != 0) || astroYear % 400 == 0;
}

unsigned DaysInMonth(long long astroYear, unsigned month) {
    static const unsigned char kDays[12] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && IsLeap(astroYear) ? 29u : kDays[month - 1];
}

// Days since 1970-01-01 of a proleptic Gregorian date (astronomical year).
long long DaysFromCivil(long long year, unsigned month, unsigned day) {
    year -= month <= 2 ? 1 : 0;
    const long long era = (year >= 0 ? year : year - 399) / 400;
    const long long yearOfEra = year - era * 400;
    const long long dayOfYear = (153 * (month > 2 ? month - 3 : month + 9) + 2) / 5 + day - 1;
    const long long dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + dayOfEra - 719468;
}

void CivilFromDays(long long days, long long& year, unsigned& month, unsigned& day) {
    days += 719468;
    const long long era = (days >= 0 ? days : days - 146096) / 146097;
    const long long dayOfEra = days - era * 146097;
    const long long yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const long long dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const long long mp = (5 * dayOfYear + 2) / 153;
    day = static_cast<unsigned>(dayOfYear - (153 * mp + 2) / 5 + 1);
    month = static_cast<unsigned>(mp < 10 ? mp + 3 : mp - 9);
    year = yearOfEra + era * 400 + (month <= 2 ? 1 : 0);
}

Int128 FloorDiv(Int128 a, Int128 b) {
    Int128 q = a / b;
    if ((a % b != 0) && ((a < 0) != (b < 0))) {
        --q;
    }
    return q;
}

Int128 FloorMod(Int128 a, Int128 b) {
    return a - FloorDiv(a, b) * b;
}

// The value of every field as the parser or the fields constructor sees it, before checking.
struct Fields {
    long long year = 1;
    unsigned month = 1;
    unsigned day = 1;
    unsigned hour = 0;
    unsigned minute = 0;
    unsigned second = 0;
    unsigned milliSeconds = 0;
    unsigned microSeconds = 0;
    unsigned nanoSeconds = 0;
    bool hasZone = false;
    int zone = 0;
};

// Checks the fields that the kind has. Returns the name of the first field out of range and its
// value, or null when all are valid.
const char* FindBadField(CDateTime::DateTimeType kind, const Fields& f, long long& badValue) {
    const bool hasYear = KindHasYear(kind);
    if (hasYear && (f.year == 0 || !FitsInt(f.year))) {
        badValue = f.year;
        return "year";
    }
    if (KindHasMonth(kind) && (f.month < 1 || f.month > 12)) {
        badValue = f.month;
        return "month";
    }
    if (KindHasDay(kind)) {
        unsigned maxDay = 31;
        if (KindHasMonth(kind)) {
            maxDay = DaysInMonth(hasYear ? ToAstronomical(f.year) : kReferenceYear, f.month);
        }
        if (f.day < 1 || f.day > maxDay) {
            badValue = f.day;
            return "day";
        }
    }
    if (KindHasTime(kind)) {
        const bool zeroRest = f.minute == 0 && f.second == 0 && f.milliSeconds == 0 &&
                              f.microSeconds == 0 && f.nanoSeconds == 0;
        // 24:00:00 is the end of the day, allowed only as exactly that instant.
        if (f.hour > 24 || (f.hour == 24 && !zeroRest)) {
            badValue = f.hour;
            return "hour";
        }
        const struct {
            const char* name;
            unsigned value;
            unsigned max;
        } limits[] = {{"minute", f.minute, 59},
                      {"second", f.second, 59},
                      {"millisecond", f.milliSeconds, 999},
                      {"microsecond", f.microSeconds, 999},
                      {"nanosecond", f.nanoSeconds, 999}};
        for (const auto& limit : limits) {
            if (limit.value > limit.max) {
                badValue = limit.value;
                return limit.name;
            }
        }
    }
    return nullptr;
}

// Character scanning helpers for the lexical forms: each advances `p` only over what it accepts.
bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool Expect(const char*& p, char c) {
    if (*p != c) {
        return false;
    }
    ++p;
    return true;
}

bool ReadTwoDigits(const char*& p, unsigned& value) {
    if (!IsDigit(p[0]) || !IsDigit(p[1])) {
        return false;
    }
    value = static_cast<unsigned>((p[0] - '0') * 10 + (p[1] - '0'));
    p += 2;
    return true;
}

// [-]yyyy: four digits or more, no leading zero beyond four, the value within int; year 0 is
// left to the field check.
bool ReadYear(const char*& p, long long& year) {
    const bool negative = Expect(p, '-');
    const char* start = p;
    unsigned long long magnitude = 0;
    while (IsDigit(*p)) {
        if (p - start == 10) {
            return false;
        }
        magnitude = magnitude * 10 + static_cast<unsigned>(*p - '0');
        ++p;
    }
    const long long count = p - start;
    if (count < 4 || (count > 4 && *start == '0')) {
        return false;
    }
    year = negative ? -static_cast<long long>(magnitude) : static_cast<long long>(magnitude);
    return FitsInt(year);
}

// hh:mm:ss[.f+]; fraction digits beyond the ninth are dropped.
bool ReadTime(const char*& p, Fields& f) {
    if (!ReadTwoDigits(p, f.hour) || !Expect(p, ':') || !ReadTwoDigits(p, f.minute) ||
        !Expect(p, ':') || !ReadTwoDigits(p, f.second)) {
        return false;
    }
    if (!Expect(p, '.')) {
        return true;
    }
    if (!IsDigit(*p)) {
        return false;
    }
    unsigned nanos = 0;
    int count = 0;
    for (; IsDigit(*p); ++p, ++count) {
        if (count < 9) {
            nanos = nanos * 10 + static_cast<unsigned>(*p - '0');
        }
    }
    for (; count < 9; ++count) {
        nanos *= 10;
    }
    f.milliSeconds = nanos / 1000000;
    f.microSeconds = nanos / 1000 % 1000;
    f.nanoSeconds = nanos % 1000;
    return true;
}

// An optional zone, Z or (+|-)hh:mm up to 14:00, then the end of the text.
bool ReadZoneAndEnd(const char*& p, Fields& f) {
    if (*p == '\0') {
        return true;
    }
    f.hasZone = true;
    if (Expect(p, 'Z')) {
        return *p == '\0';
    }
    const char sign = *p;
    if (sign != '+' && sign != '-') {
        return false;
    }
    ++p;
    unsigned hours = 0;
    unsigned minutes = 0;
    if (!ReadTwoDigits(p, hours) || !Expect(p, ':') || !ReadTwoDigits(p, minutes) ||
        *p != '\0' || minutes > 59) {
        return false;
    }
    const int total = static_cast<int>(hours * 60 + minutes);
    if (total > kMaxZoneMinutes) {
        return false;
    }
    f.zone = sign == '-' ? -total : total;
    return true;
}

bool ReadDateForm(CDateTime::DateTimeType kind, const char*& p, Fields& f) {
    switch (kind) {
    case CDateTime::dt_date:
        return ReadYear(p, f.year) && Expect(p, '-') && ReadTwoDigits(p, f.month) &&
               Expect(p, '-') && ReadTwoDigits(p, f.day);
    case CDateTime::dt_gYearMonth:
        return ReadYear(p, f.year) && Expect(p, '-') && ReadTwoDigits(p, f.month);
    case CDateTime::dt_gYear:
        return ReadYear(p, f.year);
    case CDateTime::dt_gMonth:
        if (!Expect(p, '-') || !Expect(p, '-') || !ReadTwoDigits(p, f.month)) {
            return false;
        }
        // The older --mm-- form is still written by some producers.
        if (p[0] == '-' && p[1] == '-') {
            p += 2;
        }
        return true;
    case CDateTime::dt_gDay:
        return Expect(p, '-') && Expect(p, '-') && Expect(p, '-') && ReadTwoDigits(p, f.day);
    case CDateTime::dt_gMonthDay:
        return Expect(p, '-') && Expect(p, '-') && ReadTwoDigits(p, f.month) && Expect(p, '-') &&
               ReadTwoDigits(p, f.day);
    default:
        return false;
    }
}

char* WriteTwoDigits(char* out, unsigned value) {
    *out++ = static_cast<char>('0' + value / 10);
    *out++ = static_cast<char>('0' + value % 10);
    return out;
}

// At least four digits, a leading "-" for years before 0001.
char* WriteYear(char* out, int year) {
    unsigned long long magnitude = static_cast<unsigned long long>(year < 0 ? -1LL * year : year);
    if (year < 0) {
        *out++ = '-';
    }
    for (unsigned long long limit = 1000; limit > 1 && magnitude < limit; limit /= 10) {
        *out++ = '0';
    }
    return std::to_chars(out, out + 12, magnitude).ptr;
}

}  // namespace

CDateTime::CDateTime() : CDateTime(dt_dateTime) {}

CDateTime::CDateTime(DateTimeType kind)
    : m_type(kind),
      m_year(1),
      m_month(1),
      m_day(1),
      m_hour(0),
      m_minute(0),
      m_second(0),
      m_hasTimeZone(false),
      m_timeZoneOffset(0),
      m_milliSeconds(0),
      m_microSeconds(0),
      m_nanoSeconds(0) {
    if (!IsValidKind(kind)) {
        throw CKxInvalidParamException(
            FormatString("The date-time type [%d] is not valid", static_cast<int>(kind)));
    }
    if (!KindHasYear(kind)) {
        m_year = kReferenceYear;
    }
}

CDateTime::CDateTime(DateTimeType kind, int year, unsigned month, unsigned day, unsigned hour,
                     unsigned minute, unsigned second, unsigned short milliSeconds,
                     unsigned short microSeconds, unsigned short nanoSeconds)
    : CDateTime(kind) {
    Fields f;
    f.year = year;
    f.month = month;
    f.day = day;
    f.hour = hour;
    f.minute = minute;
    f.second = second;
    f.milliSeconds = milliSeconds;
    f.microSeconds = microSeconds;
    f.nanoSeconds = nanoSeconds;
    long long badValue = 0;
    const char* bad = FindBadField(kind, f, badValue);
    if (bad == nullptr && !Assign(kind, f.year, f.month, f.day, f.hour, f.minute, f.second,
                                  f.milliSeconds * 1000000u + f.microSeconds * 1000u +
                                      f.nanoSeconds)) {
        bad = "year";
        badValue = f.year + 1;  // only 24:00:00 at the end of the last year gets here
    }
    if (bad != nullptr) {
        throw CKxInvalidValueException(
            FormatString("The field [%s] value [%lld] is out of range for a value of type %s",
                         bad, badValue, kTypeNames[kind]));
    }
}

CDateTime::CDateTime(const CDateTime& other) = default;

CDateTime& CDateTime::operator=(const CDateTime& other) = default;

CDateTime::~CDateTime() = default;

bool CDateTime::Assign(DateTimeType kind, long long year, unsigned month, unsigned day,
                       unsigned hour, unsigned minute, unsigned second, unsigned fraction) {
    if (!KindHasYear(kind)) year = kReferenceYear;
    if (!KindHasMonth(kind)) month = 1;
    if (!KindHasDay(kind)) day = 1;
    if (!KindHasTime(kind)) hour = minute = second = fraction = 0;
    if (hour == 24) {
        // The end of a day is the first instant of the next; a time has no day to carry into.
        hour = 0;
        if (kind == dt_dateTime) {
            long long astro = 0;
            CivilFromDays(DaysFromCivil(ToAstronomical(year), month, day) + 1, astro, month,
                          day);
            year = FromAstronomical(astro);
            if (!FitsInt(year)) {
                return false;
            }
        }
    }
    m_type = kind;
    m_year = static_cast<int>(year);
    m_month = static_cast<unsigned char>(month);
    m_day = static_cast<unsigned char>(day);
    m_hour = static_cast<unsigned char>(hour);
    m_minute = static_cast<unsigned char>(minute);
    m_second = static_cast<unsigned char>(second);
    m_milliSeconds = static_cast<unsigned short>(fraction / 1000000);
    m_microSeconds = static_cast<unsigned short>(fraction / 1000 % 1000);
    m_nanoSeconds = static_cast<unsigned short>(fraction % 1000);
    return true;
}

void CDateTime::ParseAs(DateTimeType kind, const char* text) {
    const char* p = text != nullptr ? text : "";
    Fields f;
    bool ok;
    if (kind == dt_dateTime) {
        ok = ReadYear(p, f.year) && Expect(p, '-') && ReadTwoDigits(p, f.month) &&
             Expect(p, '-') && ReadTwoDigits(p, f.day) && Expect(p, 'T') && ReadTime(p, f);
    } else if (kind == dt_time) {
        ok = ReadTime(p, f);
    } else {
        ok = ReadDateForm(kind, p, f);
    }
    long long badValue = 0;
    ok = ok && ReadZoneAndEnd(p, f) && FindBadField(kind, f, badValue) == nullptr;
    CDateTime result(*this);
    if (ok) {
        ok = result.Assign(kind, f.year, f.month, f.day, f.hour, f.minute, f.second,
                           f.milliSeconds * 1000000u + f.microSeconds * 1000u + f.nanoSeconds);
    }
    if (!ok) {
        throw CKxInvalidValueException(FormatString("The value [%s] is not a valid %s",
                                                    text != nullptr ? text : "",
                                                    kXsdNames[kind]));
    }
    result.m_hasTimeZone = f.hasZone;
    result.m_timeZoneOffset = static_cast<short>(f.zone);
    *this = result;
}

void CDateTime::ParseDateTime(const char* text) {
    ParseAs(dt_dateTime, text);
}

void CDateTime::ParseDate(const char* text) {
    ParseAs(m_type == dt_dateTime || m_type == dt_time ? dt_date : m_type, text);
}

void CDateTime::ParseTime(const char* text) {
    ParseAs(dt_time, text);
}

std::string CDateTime::Format(const char* format) const {
    if (format == nullptr || format[0] != 's' || format[1] != '\0') {
        throw CKxInvalidParamException(
            FormatString("The date-time format [%s] is not supported; the only format is \"s\"",
                         format != nullptr ? format : ""));
    }
    // Longest: an 11-character year, "-mm-ddThh:mm:ss", the fraction and "+hh:mm".
    char buffer[12 + 15 + KxDetail::kMaxFractionText + 6 + 1];
    char* out = buffer;
    if (KindHasYear(m_type)) {
        out = WriteYear(out, m_year);
    }
    switch (m_type) {
    case dt_dateTime:
    case dt_date:
        *out++ = '-';
        out = WriteTwoDigits(out, m_month);
        *out++ = '-';
        out = WriteTwoDigits(out, m_day);
        break;
    case dt_gYearMonth:
        *out++ = '-';
        out = WriteTwoDigits(out, m_month);
        break;
    case dt_gDay:
        *out++ = '-';
        *out++ = '-';
        *out++ = '-';
        out = WriteTwoDigits(out, m_day);
        break;
    case dt_gMonth:
    case dt_gMonthDay:
        *out++ = '-';
        *out++ = '-';
        out = WriteTwoDigits(out, m_month);
        if (m_type == dt_gMonthDay) {
            *out++ = '-';
            out = WriteTwoDigits(out, m_day);
        }
        break;
    default:
        break;
    }
    if (KindHasTime(m_type)) {
        if (m_type == dt_dateTime) {
            *out++ = 'T';
        }
        out = WriteTwoDigits(out, m_hour);
        *out++ = ':';
        out = WriteTwoDigits(out, m_minute);
        *out++ = ':';
        out = WriteTwoDigits(out, m_second);
        out = KxDetail::WriteFraction(out, m_milliSeconds, m_microSeconds, m_nanoSeconds);
    }
    if (m_hasTimeZone) {
        if (m_timeZoneOffset == 0) {
            *out++ = 'Z';
        } else {
            const unsigned minutes =
                static_cast<unsigned>(m_timeZoneOffset < 0 ? -m_timeZoneOffset : m_timeZoneOffset);
            *out++ = m_timeZoneOffset < 0 ? '-' : '+';
            out = WriteTwoDigits(out, minutes / 60);
            *out++ = ':';
            out = WriteTwoDigits(out, minutes % 60);
        }
    }
    return std::string(buffer, out);
}

CDateTime::DateTimeType CDateTime::GetType() const {
    return m_type;
}

void CDateTime::RequireField(bool present, const char* name) const {
    if (!present) {
        throw CKxInvalidStateException(FormatString(
            "The field [%s] is not part of a value of type %s", name, kTypeNames[m_type]));
    }
}

int CDateTime::GetYear() const {
    RequireField(KindHasYear(m_type), "year");
    return m_year;
}

unsigned CDateTime::GetMonth() const {
    RequireField(KindHasMonth(m_type), "month");
    return m_month;
}

unsigned CDateTime::GetDay() const {
    RequireField(KindHasDay(m_type), "day");
    return m_day;
}

unsigned CDateTime::GetHour() const {
    RequireField(KindHasTime(m_type), "hour");
    return m_hour;
}

unsigned CDateTime::GetMinute() const {
    RequireField(KindHasTime(m_type), "minute");
    return m_minute;
}

unsigned CDateTime::GetSecond() const {
    RequireField(KindHasTime(m_type), "second");
    return m_second;
}

unsigned short CDateTime::GetMilliSeconds() const {
    RequireField(KindHasTime(m_type), "millisecond");
    return m_milliSeconds;
}

unsigned short CDateTime::GetMicroSeconds() const {
    RequireField(KindHasTime(m_type), "microsecond");
    return m_microSeconds;
}

unsigned short CDateTime::GetNanoSeconds() const {
    RequireField(KindHasTime(m_type), "nanosecond");
    return m_nanoSeconds;
}

bool CDateTime::HasTimeZone() const {
    return m_hasTimeZone;
}

int CDateTime::GetTimeZoneOffset() const {
    return m_hasTimeZone ? m_timeZoneOffset : 0;
}

void CDateTime::SetTimeZone(int offsetMinutes) {
    if (offsetMinutes < -kMaxZoneMinutes || offsetMinutes > kMaxZoneMinutes) {
        throw CKxInvalidParamException(FormatString(
            "The time zone offset [%d] is out of range (-840 to 840 minutes)", offsetMinutes));
    }
    m_hasTimeZone = true;
    m_timeZoneOffset = static_cast<short>(offsetMinutes);
}

void CDateTime::ClearTimeZone() {
    m_hasTimeZone = false;
    m_timeZoneOffset = 0;
}

void CDateTime::Add(const CDateTimeSpan& span) {
    const auto outOfRange = [&] {
        return CKxInvalidValueException(
            FormatString("Adding the duration [%s] to [%s] gives a year out of range",
                         span.ToString().c_str(), Format("s").c_str()));
    };
    const bool hasYear = KindHasYear(m_type);
    const int sign = span.IsNegative() ? -1 : 1;

    // Months and years first; the month counts from 0 so that the carry is a floor division.
    const Int128 monthIndex =
        static_cast<Int128>(m_month) - 1 + sign * static_cast<Int128>(span.GetMonths());
    const unsigned month = static_cast<unsigned>(FloorMod(monthIndex, 12)) + 1;
    Int128 astroYear = ToAstronomical(m_year) + sign * static_cast<Int128>(span.GetYears()) +
                       FloorDiv(monthIndex, 12);
    if (!hasYear) {
        // The calendar repeats every 400 years, so a value without a year never overflows.
        astroYear = kReferenceYear + FloorMod(astroYear - kReferenceYear, 400);
    }
    // Every component moves the same way, so a year past int here cannot come back.
    const Int128 kYearLimit = static_cast<Int128>(INT_MAX) + 1;
    if (astroYear < -kYearLimit || astroYear > kYearLimit) {
        throw outOfRange();
    }
    const long long year = static_cast<long long>(astroYear);

    // The day is pinned to the end of the new month; then days, hours, minutes, seconds and the
    // fraction, with their carries, are one addition of nanoseconds to the local instant.
    unsigned day = m_day;
    if (day > DaysInMonth(year, month)) {
        day = DaysInMonth(year, month);
    }
    const Int128 spanNanos = (static_cast<Int128>(span.GetDays()) * kSecondsPerDay +
                              static_cast<Int128>(span.GetHours()) * 3600 +
                              static_cast<Int128>(span.GetMinutes()) * 60 + span.GetSeconds()) *
                                 kNanosPerSecond +
                             span.GetMilliSeconds() * 1000000LL +
                             span.GetMicroSeconds() * 1000LL + span.GetNanoSeconds();
    const Int128 startNanos =
        static_cast<Int128>(DaysFromCivil(year, month, day)) * kNanosPerDay +
        static_cast<Int128>(m_hour * 3600 + m_minute * 60 + m_second) * kNanosPerSecond +
        m_milliSeconds * 1000000LL + m_microSeconds * 1000LL + m_nanoSeconds;
    const Int128 total = startNanos + sign * spanNanos;
    Int128 days = FloorDiv(total, kNanosPerDay);
    if (!hasYear) {
        const Int128 referenceDay = DaysFromCivil(kReferenceYear, 1, 1);
        days = referenceDay + FloorMod(days - referenceDay, kDaysPer400Years);
    }
    // The int years span about 800 thousand million days; keep the calendar code in long long.
    const Int128 kDayLimit = static_cast<Int128>(1000000000000LL);
    if (days < -kDayLimit || days > kDayLimit) {
        throw outOfRange();
    }
    long long newAstroYear = 0;
    unsigned newMonth = 0;
    unsigned newDay = 0;
    CivilFromDays(static_cast<long long>(days), newAstroYear, newMonth, newDay);
    const long long newYear = FromAstronomical(newAstroYear);
    if (hasYear && !FitsInt(newYear)) {
        throw outOfRange();
    }
    const long long nanosOfDay = static_cast<long long>(FloorMod(total, kNanosPerDay));
    const long long secondsOfDay = nanosOfDay / kNanosPerSecond;
    Assign(m_type, newYear, newMonth, newDay, static_cast<unsigned>(secondsOfDay / 3600),
           static_cast<unsigned>(secondsOfDay / 60 % 60), static_cast<unsigned>(secondsOfDay % 60),
           static_cast<unsigned>(nanosOfDay % kNanosPerSecond));
}

CDateTime CDateTime::operator+(const CDateTimeSpan& span) const {
    CDateTime result(*this);
    result.Add(span);
    return result;
}

int CDateTime::CompareTo(const CDateTime& other) const {
    if (m_type != other.m_type) {
        return 3;
    }
    // Local instants; the fields a kind lacks hold the same reference values on both sides.
    auto localNanos = [](const CDateTime& v) {
        const long long days = DaysFromCivil(ToAstronomical(v.m_year), v.m_month, v.m_day);
        return (static_cast<Int128>(days) * kSecondsPerDay + v.m_hour * 3600 + v.m_minute * 60 +
                v.m_second) *
                   kNanosPerSecond +
               v.m_milliSeconds * 1000000LL + v.m_microSeconds * 1000LL + v.m_nanoSeconds;
    };
    Int128 mine = localNanos(*this);
    Int128 theirs = localNanos(other);
    if (m_hasTimeZone) mine -= static_cast<Int128>(m_timeZoneOffset) * kNanosPerMinute;
    if (other.m_hasTimeZone) theirs -= static_cast<Int128>(other.m_timeZoneOffset) * kNanosPerMinute;
    // An unzoned value stands for any instant within 14 hours of its fields read as UTC.
    const Int128 slack = static_cast<Int128>(kMaxZoneMinutes) * kNanosPerMinute;
    Int128 mineLow = mine, mineHigh = mine, theirsLow = theirs, theirsHigh = theirs;
    if (m_hasTimeZone != other.m_hasTimeZone) {
        if (m_hasTimeZone) {
            theirsLow -= slack;
            theirsHigh += slack;
        } else {
            mineLow -= slack;
            mineHigh += slack;
        }
    }
    if (mineHigh < theirsLow) return 1;
    if (mineLow > theirsHigh) return 2;
    return m_hasTimeZone == other.m_hasTimeZone ? 0 : 3;
}

bool CDateTime::operator==(const CDateTime& other) const { return CompareTo(other) == 0; }
bool CDateTime::operator!=(const CDateTime& other) const { return CompareTo(other) != 0; }
bool CDateTime::operator<(const CDateTime& other) const { return CompareTo(other) == 1; }
bool CDateTime::operator>(const CDateTime& other) const { return CompareTo(other) == 2; }

std::ostream& operator<<(std::ostream& out, const CDateTime& value) {
    return out << value.Format("s");
}

}  // namespace KxXmlLib16
