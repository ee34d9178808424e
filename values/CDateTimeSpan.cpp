#include "CDateTimeSpan.h"

#include <charconv>
#include <cstdint>
#include <ostream>

#include "CDateTime.h"
#include "CKxException.h"
#include "FormatString.h"
#include "KxFraction.h"

namespace KxXmlLib16 {

namespace {

const char kGeneralError[] =
    "Invalid XSD Duration [%s] expected [-]P[nY][nM][nD][T[nH][nM][nS.ff]]";

// Parser stages: what the last designator read was.
enum Stage {
    Stage_Start = 0,
    Stage_Years = 1,
    Stage_Months = 2,
    Stage_Days = 3,
    Stage_T = 4,
    Stage_Hours = 5,
    Stage_Minutes = 6,
    Stage_Seconds = 7,
    Stage_Fraction = 8
};

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

template <typename T>
char* AppendNumber(char* out, T value, char designator) {
    out = std::to_chars(out, out + 24, value).ptr;
    *out++ = designator;
    return out;
}

}  // namespace

CDateTimeSpan::CDateTimeSpan() {
    Clear();
}

CDateTimeSpan::CDateTimeSpan(const CDateTimeSpan& other) = default;

CDateTimeSpan::CDateTimeSpan(unsigned short years, unsigned long months, unsigned long days,
                             unsigned long hours, unsigned long long minutes,
                             unsigned long long seconds, unsigned short milliSeconds,
                             unsigned short microSeconds, unsigned short nanoSeconds) {
    SetDateTimeSpan(years, months, days, hours, minutes, seconds, milliSeconds, microSeconds,
                    nanoSeconds);
}

CDateTimeSpan::CDateTimeSpan(unsigned short years, unsigned long months, unsigned long days,
                             unsigned long hours, unsigned long long minutes,
                             unsigned long long seconds) {
    SetDateTimeSpan(years, months, days, hours, minutes, seconds);
}

CDateTimeSpan::CDateTimeSpan(unsigned long hours, unsigned long long minutes,
                             unsigned long long seconds) {
    SetDateTimeSpan(hours, minutes, seconds);
}

CDateTimeSpan::~CDateTimeSpan() = default;

CDateTimeSpan& CDateTimeSpan::operator=(const CDateTimeSpan& other) = default;

void CDateTimeSpan::SetDateTimeSpan(unsigned short years, unsigned long months,
                                    unsigned long days, unsigned long hours,
                                    unsigned long long minutes, unsigned long long seconds,
                                    unsigned short milliSeconds, unsigned short microSeconds,
                                    unsigned short nanoSeconds) {
    Clear();
    m_years = years;
    m_months = months;
    m_days = days;
    m_hours = hours;
    m_minutes = minutes;
    m_seconds = seconds;
    m_milliSeconds = milliSeconds;
    m_microSeconds = microSeconds;
    m_nanoSeconds = nanoSeconds;
}

void CDateTimeSpan::SetDateTimeSpan(unsigned short years, unsigned long months,
                                    unsigned long days, unsigned long hours,
                                    unsigned long long minutes, unsigned long long seconds) {
    SetDateTimeSpan(years, months, days, hours, minutes, seconds, 0, 0, 0);
}

void CDateTimeSpan::SetDateTimeSpan(unsigned long hours, unsigned long long minutes,
                                    unsigned long long seconds) {
    SetDateTimeSpan(0, 0, 0, hours, minutes, seconds, 0, 0, 0);
}

void CDateTimeSpan::Clear() {
    m_years = 0;
    m_months = 0;
    m_days = 0;
    m_hours = 0;
    m_minutes = 0;
    m_seconds = 0;
    m_milliSeconds = 0;
    m_microSeconds = 0;
    m_nanoSeconds = 0;
    m_negative = false;
}

unsigned short CDateTimeSpan::GetYears() const { return m_years; }
void CDateTimeSpan::SetYears(unsigned short years) { m_years = years; }
unsigned long CDateTimeSpan::GetMonths() const { return m_months; }
void CDateTimeSpan::SetMonths(unsigned long months) { m_months = months; }
unsigned long CDateTimeSpan::GetDays() const { return m_days; }
void CDateTimeSpan::SetDays(unsigned long days) { m_days = days; }
unsigned long CDateTimeSpan::GetHours() const { return m_hours; }
void CDateTimeSpan::SetHours(unsigned long hours) { m_hours = hours; }
unsigned long long CDateTimeSpan::GetMinutes() const { return m_minutes; }
void CDateTimeSpan::SetMinutes(unsigned long long minutes) { m_minutes = minutes; }
unsigned long long CDateTimeSpan::GetSeconds() const { return m_seconds; }
void CDateTimeSpan::SetSeconds(unsigned long long seconds) { m_seconds = seconds; }
unsigned short CDateTimeSpan::GetMilliSeconds() const { return m_milliSeconds; }
void CDateTimeSpan::SetMilliSeconds(unsigned short value) { m_milliSeconds = value; }
unsigned short CDateTimeSpan::GetMicroSeconds() const { return m_microSeconds; }
void CDateTimeSpan::SetMicroSeconds(unsigned short value) { m_microSeconds = value; }
unsigned short CDateTimeSpan::GetNanoSeconds() const { return m_nanoSeconds; }
void CDateTimeSpan::SetNanoSeconds(unsigned short value) { m_nanoSeconds = value; }
bool CDateTimeSpan::IsNegative() const { return m_negative; }

void CDateTimeSpan::Negate() {
    m_negative = !m_negative;
}

CDateTimeSpan CDateTimeSpan::GetAsNegative() const {
    CDateTimeSpan copy(*this);
    copy.m_negative = true;
    return copy;
}

std::string CDateTimeSpan::ToString() const {
    // "-P", six numbers of up to 20 digits with designators, "T", the fraction and "S".
    char buffer[2 + 6 * 21 + 1 + KxDetail::kMaxFractionText + 1];
    char* out = buffer;
    if (m_negative) {
        *out++ = '-';
    }
    *out++ = 'P';
    if (m_years != 0) out = AppendNumber(out, m_years, 'Y');
    if (m_months != 0) out = AppendNumber(out, m_months, 'M');
    if (m_days != 0) out = AppendNumber(out, m_days, 'D');
    bool hasFraction = m_milliSeconds != 0 || m_microSeconds != 0 || m_nanoSeconds != 0;
    if (m_hours != 0 || m_minutes != 0 || m_seconds != 0 || hasFraction) {
        *out++ = 'T';
        if (m_hours != 0) out = AppendNumber(out, m_hours, 'H');
        if (m_minutes != 0) out = AppendNumber(out, m_minutes, 'M');
        if (m_seconds != 0 || hasFraction) {
            out = std::to_chars(out, out + 24, m_seconds).ptr;
            out = KxDetail::WriteFraction(out, m_milliSeconds, m_microSeconds, m_nanoSeconds);
            *out++ = 'S';
        }
    }
    return std::string(buffer, out);
}

void CDateTimeSpan::ParseXSDDuration(const char* text) {
    Clear();
    if (text == nullptr) {
        throw CKxInvalidValueException("Invalid XSD Duration (Null String)");
    }
    if (*text == '\0') {
        throw CKxInvalidValueException("Invalid XSD Duration (Empty String)");
    }
    const char* p = text;
    if (*p == '-') {
        m_negative = true;
        ++p;
    }
    if (*p != 'P') {
        throw CKxInvalidValueException(FormatString(kGeneralError, text));
    }
    ++p;

    Stage stage = Stage_Start;
    bool ok = true;
    while (ok && *p != '\0') {
        // The number wraps like a 32-bit signed integer; it is not checked for overflow.
        std::uint32_t digits = 0;
        while (IsDigit(*p)) {
            digits = digits * 10u + static_cast<std::uint32_t>(*p - '0');
            ++p;
        }
        const std::int32_t number = static_cast<std::int32_t>(digits);
        const char designator = *p;
        if (designator == '\0') {
            ok = false;  // a number without a designator
            break;
        }
        ++p;
        switch (designator) {
        case 'Y':
            // Accepted at any stage, even after the time part; it restarts at stage 1.
            m_years = static_cast<unsigned short>(number);
            stage = Stage_Years;
            break;
        case 'M':
            if (stage <= Stage_Years) {
                m_months = static_cast<unsigned long>(static_cast<long>(number));
                stage = Stage_Months;
            } else if (stage == Stage_T || stage == Stage_Hours) {
                m_minutes = static_cast<unsigned long long>(static_cast<long long>(number));
                stage = Stage_Minutes;
            } else {
                ok = false;
            }
            break;
        case 'D':
            if (stage <= Stage_Months) {
                m_days = static_cast<unsigned long>(static_cast<long>(number));
                stage = Stage_Days;
            } else {
                ok = false;
            }
            break;
        case 'T':
            // Digits written before T are dropped.
            if (stage <= Stage_Days) {
                stage = Stage_T;
            } else {
                ok = false;
            }
            break;
        case 'H':
            if (stage == Stage_T) {
                m_hours = static_cast<unsigned long>(static_cast<long>(number));
                stage = Stage_Hours;
            } else {
                ok = false;
            }
            break;
        case 'S':
        case '.':
            if (stage < Stage_T || stage > Stage_Minutes) {
                ok = false;
                break;
            }
            m_seconds = static_cast<unsigned long long>(static_cast<long long>(number));
            stage = Stage_Seconds;
            if (designator == '.') {
                int count = 0;
                for (; IsDigit(*p); ++p, ++count) {
                    const unsigned short digit = static_cast<unsigned short>(*p - '0');
                    static const unsigned short kScale[3] = {100, 10, 1};
                    if (count < 3) {
                        m_milliSeconds += digit * kScale[count];
                    } else if (count < 6) {
                        m_microSeconds += digit * kScale[count - 3];
                    } else if (count < 9) {
                        // Only the last of the digits 7 to 9 is kept, unscaled.
                        m_nanoSeconds = digit;
                    } else {
                        throw CKxInvalidValueException(
                            FormatString("Invalid XSD Duration [%s] Fraction part too long",
                                         text));
                    }
                }
                if (*p == 'S') {
                    ++p;
                    stage = Stage_Fraction;
                } else if (!(*p == '\0' && count == 0)) {
                    // Only a "." that ends the text may stand without its S.
                    ok = false;
                }
            }
            break;
        default:
            ok = false;
            break;
        }
    }
    if (!ok || stage == Stage_Start || stage == Stage_T) {
        throw CKxInvalidValueException(FormatString(kGeneralError, text));
    }
}

int CDateTimeSpan::CompareTo(const CDateTimeSpan& other) const {
    static const int kReferences[4][3] = {
        {1696, 9, 1}, {1697, 2, 1}, {1903, 3, 1}, {1903, 7, 1}};
    int common = -1;
    try {
        for (const auto& ref : kReferences) {
            CDateTime start(CDateTime::dt_dateTime, ref[0], static_cast<unsigned>(ref[1]),
                            static_cast<unsigned>(ref[2]), 0, 0, 0);
            start.SetTimeZone(0);
            const int result = (start + *this).CompareTo(start + other);
            if (result == 3 || (common != -1 && result != common)) {
                return 3;
            }
            common = result;
        }
    } catch (const CKxInvalidValueException&) {
        return 3;
    }
    return common;
}

bool CDateTimeSpan::operator==(const CDateTimeSpan& other) const { return CompareTo(other) == 0; }
bool CDateTimeSpan::operator!=(const CDateTimeSpan& other) const { return CompareTo(other) != 0; }
bool CDateTimeSpan::operator<(const CDateTimeSpan& other) const { return CompareTo(other) == 1; }
bool CDateTimeSpan::operator>(const CDateTimeSpan& other) const { return CompareTo(other) == 2; }

std::ostream& operator<<(std::ostream& out, const CDateTimeSpan& value) {
    return out << value.ToString();
}

}  // namespace KxXmlLib16
