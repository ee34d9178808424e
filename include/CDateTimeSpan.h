// CDateTimeSpan: the value of an XSD duration, kept as seven separate counters and a sign.
#ifndef KX_CDATETIMESPAN_H
#define KX_CDATETIMESPAN_H

#include <iosfwd>
#include <string>

#include "KxConfig.h"

namespace KxXmlLib16 {

// A duration as written: years, months, days, hours, minutes, seconds and a fraction of a
// second split into milli-, micro- and nanoseconds, plus a sign. Components are never carried
// into one another (90 minutes stay 90 minutes, 13 months stay 13 months). A cleared value has
// every field zero and a positive sign.
class KX_EXPORT CDateTimeSpan {
public:
    // Cleared.
    CDateTimeSpan();
    CDateTimeSpan(const CDateTimeSpan& other);
    // Each of these sets the named fields and clears the others, the sign included.
    CDateTimeSpan(unsigned short years, unsigned long months, unsigned long days,
                  unsigned long hours, unsigned long long minutes, unsigned long long seconds,
                  unsigned short milliSeconds, unsigned short microSeconds,
                  unsigned short nanoSeconds);
    CDateTimeSpan(unsigned short years, unsigned long months, unsigned long days,
                  unsigned long hours, unsigned long long minutes, unsigned long long seconds);
    CDateTimeSpan(unsigned long hours, unsigned long long minutes, unsigned long long seconds);
    virtual ~CDateTimeSpan();

    CDateTimeSpan& operator=(const CDateTimeSpan& other);

    // Clear, then set the named fields (same argument lists as the constructors).
    void SetDateTimeSpan(unsigned short years, unsigned long months, unsigned long days,
                         unsigned long hours, unsigned long long minutes,
                         unsigned long long seconds, unsigned short milliSeconds,
                         unsigned short microSeconds, unsigned short nanoSeconds);
    void SetDateTimeSpan(unsigned short years, unsigned long months, unsigned long days,
                         unsigned long hours, unsigned long long minutes,
                         unsigned long long seconds);
    void SetDateTimeSpan(unsigned long hours, unsigned long long minutes,
                         unsigned long long seconds);
    // Every field zero, sign positive.
    void Clear();

    unsigned short GetYears() const;
    void SetYears(unsigned short years);
    unsigned long GetMonths() const;
    void SetMonths(unsigned long months);
    unsigned long GetDays() const;
    void SetDays(unsigned long days);
    unsigned long GetHours() const;
    void SetHours(unsigned long hours);
    unsigned long long GetMinutes() const;
    void SetMinutes(unsigned long long minutes);
    unsigned long long GetSeconds() const;
    void SetSeconds(unsigned long long seconds);
    unsigned short GetMilliSeconds() const;
    void SetMilliSeconds(unsigned short milliSeconds);
    unsigned short GetMicroSeconds() const;
    void SetMicroSeconds(unsigned short microSeconds);
    unsigned short GetNanoSeconds() const;
    void SetNanoSeconds(unsigned short nanoSeconds);
    bool IsNegative() const;

    // Flips the sign in place.
    void Negate();
    // A copy whose sign is negative, whatever the sign of this value (a negative value stays
    // negative).
    CDateTimeSpan GetAsNegative() const;

    // The XSD lexical form, e.g. "P1Y2M3DT4H5M6.789S", "-P1D", "PT0.00025S". A value with every
    // field zero is written "P" (which the parser does not accept back). Never throws.
    std::string ToString() const;

    // Clears the value and reads it from the XSD duration text. Throws CKxInvalidValueException:
    // "Invalid XSD Duration (Null String)", "Invalid XSD Duration (Empty String)",
    // "Invalid XSD Duration [%s] Fraction part too long" (more than nine fraction digits) and
    // "Invalid XSD Duration [%s] expected [-]P[nY][nM][nD][T[nH][nM][nS.ff]]" for any other
    // fault. On failure the value keeps what was read before the fault.
    void ParseXSDDuration(const char* text);

    // The XSD order of durations, found by adding both to four reference date-times:
    // 0 equal, 1 this is less, 2 this is greater, 3 indeterminate (e.g. P1M against P30D).
    // Sums out of the date-time range count as indeterminate.
    int CompareTo(const CDateTimeSpan& other) const;
    bool operator==(const CDateTimeSpan& other) const;  // CompareTo is 0
    bool operator!=(const CDateTimeSpan& other) const;  // CompareTo is not 0
    bool operator<(const CDateTimeSpan& other) const;   // CompareTo is 1
    bool operator>(const CDateTimeSpan& other) const;   // CompareTo is 2

private:
    unsigned short m_years;
    unsigned long m_months;
    unsigned long m_days;
    unsigned long m_hours;
    unsigned long long m_minutes;
    unsigned long long m_seconds;
    unsigned short m_milliSeconds;
    unsigned short m_microSeconds;
    unsigned short m_nanoSeconds;
    bool m_negative;
};

// Writes ToString() (for test diagnostics and logging).
KX_EXPORT std::ostream& operator<<(std::ostream& out, const CDateTimeSpan& value);

}  // namespace KxXmlLib16

#endif
