// CDateTime: the value of the eight XSD date and time types (dateTime, date, gYearMonth, gYear,
// time, gDay, gMonth, gMonthDay).
#ifndef KX_CDATETIME_H
#define KX_CDATETIME_H

#include <iosfwd>
#include <string>

#include "KxConfig.h"

namespace KxXmlLib16 {

class CDateTimeSpan;

// One date, time or partial date of a given kind, with an optional time zone.
//
// Years are any int except 0 (there is no year 0000; -0001 is the year before 0001). For
// arithmetic, -0001 is treated as the proleptic Gregorian year 1 BC, a leap year, and so on
// (year -n is astronomical year 1-n). Fractions of a second are kept to the nanosecond as three
// counters (milli-, micro-, nanoseconds, each 0..999); the parsers ignore fraction digits beyond
// the ninth. The time zone is an offset in minutes east of UTC, -840..840 (-14:00..+14:00).
//
// Fields that a kind does not have (the year of a gMonthDay, the time of a date...) cannot be
// read; internally they hold the reference values 1972 (a leap year, so --02-29 exists), month 1,
// day 1 and 00:00:00, which is where addition and comparison take them from.
class KX_EXPORT CDateTime {
public:
    enum DateTimeType {
        dt_dateTime = 1,
        dt_date = 2,
        dt_gYearMonth = 3,
        dt_gYear = 4,
        dt_time = 5,
        dt_gDay = 6,
        dt_gMonth = 7,
        dt_gMonthDay = 8
    };

    // dt_dateTime 0001-01-01T00:00:00, no time zone.
    CDateTime();
    // The cleared value of the kind: year 0001, month 01, day 01, 00:00:00 for the fields the
    // kind has, no time zone. Throws CKxInvalidParamException
    // "The date-time type [%d] is not valid" for a number outside 1..8.
    explicit CDateTime(DateTimeType kind);
    // A value of the kind from its fields; fields the kind does not have are ignored. Hour 24
    // with zero minutes, seconds and fraction is the start of the next day (as in parsing).
    // Throws CKxInvalidValueException
    // "The field [%s] value [%lld] is out of range for a value of type %s" (field name, value,
    // kind name such as dt_date) for year 0, month 13, 2001-02-29, minute 60, a fraction counter
    // above 999 and the like; CKxInvalidParamException for a kind outside 1..8.
    CDateTime(DateTimeType kind, int year, unsigned month, unsigned day, unsigned hour,
              unsigned minute, unsigned second, unsigned short milliSeconds = 0,
              unsigned short microSeconds = 0, unsigned short nanoSeconds = 0);
    CDateTime(const CDateTime& other);
    CDateTime& operator=(const CDateTime& other);
    virtual ~CDateTime();

    // Reads the xs:dateTime form ([-]yyyy-mm-ddThh:mm:ss[.f+][zone]); the kind becomes
    // dt_dateTime. T24:00:00 (zero fraction) becomes 00:00:00 of the next day.
    // Throws CKxInvalidValueException "The value [%s] is not a valid xs:dateTime" (the whole
    // text; a null pointer reads as ""). On failure the value is unchanged.
    void ParseDateTime(const char* text);
    // Reads the form of this value's date kind and keeps the kind: xs:date [-]yyyy-mm-dd,
    // xs:gYearMonth [-]yyyy-mm, xs:gYear [-]yyyy, xs:gMonth --mm (the older --mm-- is accepted
    // too), xs:gDay ---dd, xs:gMonthDay --mm-dd, each with an optional zone. A value of kind
    // dt_dateTime or dt_time reads the xs:date form and becomes dt_date. Throws
    // CKxInvalidValueException "The value [%s] is not a valid xs:date" (xs:gYearMonth, xs:gYear,
    // xs:gMonth, xs:gDay, xs:gMonthDay). On failure the value is unchanged.
    void ParseDate(const char* text);
    // Reads the xs:time form (hh:mm:ss[.f+][zone]); the kind becomes dt_time; 24:00:00 becomes
    // 00:00:00. Throws CKxInvalidValueException "The value [%s] is not a valid xs:time".
    void ParseTime(const char* text);

    // With the format "s": the XSD lexical form of the kind, e.g. 2024-02-29T13:05:09.5Z,
    // 13:05:09, 2024-02, -0044, --05, ---07, --12-25. The fraction is written without trailing
    // zeros; a zero offset is written "Z", others as +hh:mm or -hh:mm. Any other format (null
    // included) throws CKxInvalidParamException
    // "The date-time format [%s] is not supported; the only format is \"s\"".
    std::string Format(const char* format) const;

    DateTimeType GetType() const;

    // Field getters. Reading a field that the kind does not have throws
    // CKxInvalidStateException "The field [%s] is not part of a value of type %s", e.g.
    // "The field [hour] is not part of a value of type dt_date". The fraction belongs to the
    // kinds with seconds (dt_dateTime, dt_time).
    int GetYear() const;
    unsigned GetMonth() const;
    unsigned GetDay() const;
    unsigned GetHour() const;
    unsigned GetMinute() const;
    unsigned GetSecond() const;
    unsigned short GetMilliSeconds() const;  // fraction digits 1 to 3
    unsigned short GetMicroSeconds() const;  // fraction digits 4 to 6
    unsigned short GetNanoSeconds() const;   // fraction digits 7 to 9

    bool HasTimeZone() const;
    // Minutes east of UTC (+01:00 is 60); 0 when there is no time zone.
    int GetTimeZoneOffset() const;
    // Gives the value a time zone without changing its fields (local time stays as it is).
    // Throws CKxInvalidParamException
    // "The time zone offset [%d] is out of range (-840 to 840 minutes)".
    void SetTimeZone(int offsetMinutes);
    // Removes the time zone; the fields stay as they are.
    void ClearTimeZone();

    // Adds the duration as XSD does: months and years first, the day pinned to the end of the
    // resulting month for the intermediate step, then seconds, minutes, hours and days with
    // carry. Fields the kind does not have take part with their reference values and are dropped
    // afterwards (2000-01 + -P3M = 1999-10, 2000-01-12 + PT33H = 2000-01-13). The zone is kept.
    // Throws CKxInvalidValueException
    // "Adding the duration [%s] to [%s] gives a year out of range" (the duration's and this
    // value's texts) when the resulting year does not fit in int. Counting passes from -0001 to
    // 0001 directly. The value is unchanged on failure.
    void Add(const CDateTimeSpan& span);
    CDateTime operator+(const CDateTimeSpan& span) const;

    // The XSD order: 0 equal, 1 this is less, 2 this is greater, 3 indeterminate. Both zoned:
    // the instants in UTC are compared. Neither zoned: the fields are compared. One zoned: the
    // answer is determinate only when the two differ by more than 14 hours. Values of different
    // kinds are incomparable (3). The partial kinds compare as date-times filled with the
    // reference fields.
    int CompareTo(const CDateTime& other) const;
    bool operator==(const CDateTime& other) const;  // CompareTo is 0
    bool operator!=(const CDateTime& other) const;  // CompareTo is not 0
    bool operator<(const CDateTime& other) const;   // CompareTo is 1
    bool operator>(const CDateTime& other) const;   // CompareTo is 2

private:
    // Stores the fields (lexical year) for the kind, resetting those it lacks to the reference
    // values and turning hour 24 into the next day. False when that day's year leaves int.
    bool Assign(DateTimeType kind, long long year, unsigned month, unsigned day, unsigned hour,
                unsigned minute, unsigned second, unsigned fractionNanos);
    void ParseAs(DateTimeType kind, const char* text);
    void RequireField(bool present, const char* name) const;

    DateTimeType m_type;
    int m_year;
    unsigned char m_month;
    unsigned char m_day;
    unsigned char m_hour;
    unsigned char m_minute;
    unsigned char m_second;
    bool m_hasTimeZone;
    short m_timeZoneOffset;
    unsigned short m_milliSeconds;
    unsigned short m_microSeconds;
    unsigned short m_nanoSeconds;
};

// Writes Format("s") (for test diagnostics and logging).
KX_EXPORT std::ostream& operator<<(std::ostream& out, const CDateTime& value);

}  // namespace KxXmlLib16

#endif
