#include <climits>
#include <sstream>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;
using KxTest::ExpectKxError;

namespace {

using Kind = CDateTime::DateTimeType;
constexpr Kind DT = CDateTime::dt_dateTime, DATE = CDateTime::dt_date,
               YM = CDateTime::dt_gYearMonth, YEAR = CDateTime::dt_gYear,
               TIME = CDateTime::dt_time, DAY = CDateTime::dt_gDay, MONTH = CDateTime::dt_gMonth,
               MD = CDateTime::dt_gMonthDay;

// Reads the text with the parser that the conversions use for the kind.
CDateTime Parse(Kind kind, const char* text) {
    CDateTime value(kind);
    if (kind == DT) {
        value.ParseDateTime(text);
    } else if (kind == TIME) {
        value.ParseTime(text);
    } else {
        value.ParseDate(text);
    }
    return value;
}

const char* XsdName(Kind kind) {
    static const char* names[] = {"",         "xs:dateTime", "xs:date", "xs:gYearMonth",
                                  "xs:gYear", "xs:time",     "xs:gDay", "xs:gMonth",
                                  "xs:gMonthDay"};
    return names[kind];
}

CDateTimeSpan Span(const char* text) {
    CDateTimeSpan span;
    span.ParseXSDDuration(text);
    return span;
}

// N marks a field the kind does not have: its getter must refuse.
constexpr long long N = LLONG_MIN;

template <typename Getter>
void ExpectField(long long expected, Getter get) {
    if (expected == N) {
        EXPECT_THROW(get(), CKxInvalidStateException);
    } else {
        EXPECT_EQ(expected, static_cast<long long>(get()));
    }
}

}  // namespace

TEST(CDateTime, ParsesEachKindAndWritesItsCanonicalForm) {
    struct Case {
        Kind kind;
        const char* text;
        long long year, month, day, hour, minute, second, nanos;
        int zone;  // minutes, or -9999 for none
        const char* written;  // null: the text itself
    } cases[] = {
        {DT, "2024-02-29T13:05:09.5Z", 2024, 2, 29, 13, 5, 9, 500000000, 0, nullptr},
        {DT, "2001-10-26T19:32:52-14:00", 2001, 10, 26, 19, 32, 52, 0, -840, nullptr},
        {DT, "2001-10-26T19:32:52-00:00", 2001, 10, 26, 19, 32, 52, 0, 0, "2001-10-26T19:32:52Z"},
        {DT, "2001-10-26T21:32:52.123456789", 2001, 10, 26, 21, 32, 52, 123456789, -9999, nullptr},
        {DT, "2001-10-26T21:32:52.0000000019", 2001, 10, 26, 21, 32, 52, 1, -9999,
         "2001-10-26T21:32:52.000000001"},
        {DT, "2001-10-26T21:32:52.000", 2001, 10, 26, 21, 32, 52, 0, -9999, "2001-10-26T21:32:52"},
        {DT, "-0044-03-15T12:00:00", -44, 3, 15, 12, 0, 0, 0, -9999, nullptr},
        {DT, "12345-01-01T00:00:00Z", 12345, 1, 1, 0, 0, 0, 0, 0, nullptr},
        {DT, "2147483647-01-01T00:00:00", INT_MAX, 1, 1, 0, 0, 0, 0, -9999, nullptr},
        {DT, "-2147483648-01-01T00:00:00", INT_MIN, 1, 1, 0, 0, 0, 0, -9999, nullptr},
        {DT, "1999-12-31T24:00:00", 2000, 1, 1, 0, 0, 0, 0, -9999, "2000-01-01T00:00:00"},
        {DT, "-0001-12-31T24:00:00", 1, 1, 1, 0, 0, 0, 0, -9999, "0001-01-01T00:00:00"},
        {DATE, "2000-02-29+05:30", 2000, 2, 29, N, N, N, N, 330, nullptr},
        {DATE, "-0001-02-29", -1, 2, 29, N, N, N, N, -9999, nullptr},  // 1 BC: leap
        {YM, "-0044-12Z", -44, 12, N, N, N, N, N, 0, nullptr},
        {YEAR, "0001+14:00", 1, N, N, N, N, N, N, 840, nullptr},
        {TIME, "24:00:00", N, N, N, 0, 0, 0, 0, -9999, "00:00:00"},
        {TIME, "23:59:59.999999999-05:00", N, N, N, 23, 59, 59, 999999999, -300, nullptr},
        {DAY, "---31Z", N, N, 31, N, N, N, N, 0, nullptr},
        {MONTH, "--12--", N, 12, N, N, N, N, N, -9999, "--12"},
        {MONTH, "--05-05:00", N, 5, N, N, N, N, N, -300, nullptr},
        {MD, "--02-29+01:00", N, 2, 29, N, N, N, N, 60, nullptr},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        CDateTime v = Parse(c.kind, c.text);
        EXPECT_EQ(c.kind, v.GetType());
        ExpectField(c.year, [&] { return v.GetYear(); });
        ExpectField(c.month, [&] { return v.GetMonth(); });
        ExpectField(c.day, [&] { return v.GetDay(); });
        ExpectField(c.hour, [&] { return v.GetHour(); });
        ExpectField(c.minute, [&] { return v.GetMinute(); });
        ExpectField(c.second, [&] { return v.GetSecond(); });
        if (c.nanos == N) {
            EXPECT_THROW(v.GetNanoSeconds(), CKxInvalidStateException);
        } else {
            EXPECT_EQ(c.nanos, v.GetMilliSeconds() * 1000000LL + v.GetMicroSeconds() * 1000LL +
                                   v.GetNanoSeconds());
        }
        EXPECT_EQ(c.zone != -9999, v.HasTimeZone());
        EXPECT_EQ(c.zone == -9999 ? 0 : c.zone, v.GetTimeZoneOffset());
        const char* written = c.written ? c.written : c.text;
        EXPECT_EQ(written, v.Format("s"));
        EXPECT_EQ(0, Parse(c.kind, written).CompareTo(v));  // the written text reads back
    }
}

TEST(CDateTime, RejectsInvalidTextsOfEachKind) {
    // One or two rows per kind of fault: day beyond its month (leap rules), field out of range,
    // 24:00 other than midnight, year zero or beyond 32 bits, wrong digit counts, missing or
    // empty parts, wrong letters or separators, zone out of range or malformed, surrounding
    // spaces, sign misuse and trailing text; then each other kind's own form.
    struct Case { Kind kind; const char* text; } cases[] = {
        {DT, "1900-02-29T00:00:00"}, {DT, "2001-04-31T00:00:00"}, {DT, "2001-13-01T00:00:00"},
        {DT, "2001-01-00T00:00:00"}, {DT, "2001-01-01T24:00:01"}, {DT, "2001-01-01T24:00:00.1"},
        {DT, "2001-01-01T23:59:60"}, {DT, "-0000-01-01T00:00:00"}, {DT, "01-01-01T00:00:00"},
        {DT, "02001-01-01T00:00:00"}, {DT, "2001-01-01T00:00"}, {DT, "2001-01-01T00:00:00."},
        {DT, "2001-01-01T00:00:00+14:01"}, {DT, "2001-01-01T00:00:00+0500"},
        {DT, " 2001-01-01T00:00:00"}, {DT, "2001-01-01t00:00:00"}, {DT, "2001-01-01T00:00:00z"},
        {DT, "+2001-01-01T00:00:00"}, {DT, ""}, {DT, "-2147483649-01-01T00:00:00"},
        {DT, "2147483647-12-31T24:00:00"}, {DT, "2001-01-01T00:00:00+01:00Z"},
        {DT, "2001-01-01T00:00:00ZZ"}, {DT, "2001-01-01T00:00:00+05:60"}, {TIME, "25:00:00"},
        {DATE, "2001-02-29"}, {DATE, "2001-01-01T00:00:00"}, {DATE, "2001-01"},
        {DATE, "2001-01-01-"}, {YM, "2001-13"}, {YM, "2001"}, {YEAR, "0000"}, {YEAR, "999"},
        {YEAR, "-"}, {YEAR, "20x4"}, {TIME, "24:30:00"}, {TIME, "12:60:00"}, {TIME, "1:00:00"},
        {TIME, "12:00:00+14:30"}, {TIME, "T12:00:00"}, {DAY, "---32"}, {DAY, "--01"},
        {DAY, "---01-"}, {MONTH, "--00"}, {MONTH, "-01"}, {MONTH, "--01---"}, {MD, "--02-30"},
        {MD, "--1-01"}, {MD, "--01"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        ExpectKxError<CKxInvalidValueException>(
            [&] { Parse(c.kind, c.text); },
            FormatString("The value [%s] is not a valid %s", c.text, XsdName(c.kind)));
    }
    ExpectKxError<CKxInvalidValueException>([] { Parse(DATE, nullptr); },
                                            "The value [] is not a valid xs:date");
}

TEST(CDateTime, ParsersSetTheKindTheyReadAndKeepTheValueOnFailure) {
    CDateTime value;
    value.ParseDate("2020-05-06");  // a dateTime or time reads the date form
    EXPECT_EQ(DATE, value.GetType());
    value.ParseTime("10:00:00");
    EXPECT_EQ(TIME, value.GetType());
    value.ParseDate("2020-05-07");
    EXPECT_EQ(DATE, value.GetType());
    value.ParseDateTime("2020-05-06T10:00:00");
    EXPECT_EQ(DT, value.GetType());
    CDateTime month(MONTH);
    EXPECT_THROW(month.ParseDate("2020-05-06"), CKxInvalidValueException);
    month.ParseDate("--05");
    EXPECT_EQ(MONTH, month.GetType());
    // A failed parse leaves the value as it was.
    value = Parse(DT, "2001-10-26T21:32:52+02:00");
    EXPECT_THROW(value.ParseDateTime("2001-10-26T21:32:60Z"), CKxInvalidValueException);
    EXPECT_THROW(value.ParseTime("12:00:00+15:00"), CKxInvalidValueException);
    EXPECT_EQ(DT, value.GetType());
    EXPECT_EQ("2001-10-26T21:32:52+02:00", value.Format("s"));
}

TEST(CDateTime, DefaultValuesOfEachKindWriteAndStream) {
    EXPECT_EQ("0001-01-01T00:00:00", CDateTime().Format("s"));
    EXPECT_EQ(DT, CDateTime().GetType());
    EXPECT_FALSE(CDateTime().HasTimeZone());
    struct Case {
        Kind kind;
        const char* written;
    } cases[] = {{DATE, "0001-01-01"}, {YM, "0001-01"}, {YEAR, "0001"},   {TIME, "00:00:00"},
                 {DAY, "---01"},       {MONTH, "--01"}, {MD, "--01-01"}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.written);
        EXPECT_EQ(c.written, CDateTime(c.kind).Format("s"));
    }
    ExpectKxError<CKxInvalidParamException>([] { CDateTime(static_cast<Kind>(9)); },
                                            "The date-time type [9] is not valid");
    std::ostringstream out;
    out << CDateTime(MD);
    EXPECT_EQ("--01-01", out.str());
}

TEST(CDateTime, FieldConstructorValidatesTheFieldsOfItsKind) {
    EXPECT_EQ("2024-02-29T13:05:09.000000007",
              CDateTime(DT, 2024, 2, 29, 13, 5, 9, 0, 0, 7).Format("s"));
    EXPECT_EQ("2000-01-01T00:00:00", CDateTime(DT, 1999, 12, 31, 24, 0, 0).Format("s"));
    EXPECT_EQ("12:00:00", CDateTime(TIME, 0, 0, 0, 12, 0, 0).Format("s"));  // no date part
    EXPECT_EQ("--02-29", CDateTime(MD, 0, 2, 29, 99, 99, 99).Format("s"));
    // The refused field, its value as the message quotes it, and the kind's name.
    struct Case { Kind kind; int year; unsigned month, day, hour, minute, second, ms;
                  const char* field; const char* value; const char* type; } cases[] = {
        {DATE, 2001, 2, 29, 0, 0, 0, 0, "day", "29", "dt_date"},
        {DT, 2001, 13, 1, 0, 0, 0, 0, "month", "13", "dt_dateTime"},
        {TIME, 1, 1, 1, 24, 0, 0, 1, "hour", "24", "dt_time"},
        {DT, 0, 1, 1, 0, 0, 0, 0, "year", "0", "dt_dateTime"},
        {DT, 2001, 1, 1, 0, 0, 0, 1000, "millisecond", "1000", "dt_dateTime"},
        {DT, INT_MAX, 12, 31, 24, 0, 0, 0, "year", "2147483648", "dt_dateTime"},
        {MD, 0, 2, 30, 0, 0, 0, 0, "day", "30", "dt_gMonthDay"},
        {DAY, 0, 0, 32, 0, 0, 0, 0, "day", "32", "dt_gDay"},
    };
    for (const Case& c : cases) {
        const std::string message =
            FormatString("The field [%s] value [%s] is out of range for a value of type %s",
                         c.field, c.value, c.type);
        SCOPED_TRACE(message);
        ExpectKxError<CKxInvalidValueException>(
            [&] {
                CDateTime(c.kind, c.year, c.month, c.day, c.hour, c.minute, c.second,
                          static_cast<unsigned short>(c.ms));
            },
            message);
    }
}

TEST(CDateTime, GettersRefuseFieldsTheKindDoesNotHave) {
    ExpectKxError<CKxInvalidStateException>(
        [] { CDateTime(DATE).GetHour(); },
        "The field [hour] is not part of a value of type dt_date");
    ExpectKxError<CKxInvalidStateException>(
        [] { CDateTime(DAY).GetMilliSeconds(); },
        "The field [millisecond] is not part of a value of type dt_gDay");
}

TEST(CDateTime, FormatOtherThanSAndZoneSettersAreChecked) {
    for (const char* format : {"", "S", "yyyy-MM-dd", "s "}) {
        SCOPED_TRACE(format);
        ExpectKxError<CKxInvalidParamException>(
            [&] { CDateTime().Format(format); },
            FormatString("The date-time format [%s] is not supported; the only format is \"s\"",
                         format));
    }
    EXPECT_THROW(CDateTime().Format(nullptr), CKxInvalidParamException);
    CDateTime value(DT, 2020, 1, 2, 3, 4, 5);
    ExpectKxError<CKxInvalidParamException>(
        [&] { value.SetTimeZone(841); },
        "The time zone offset [841] is out of range (-840 to 840 minutes)");
    value.SetTimeZone(-90);
    EXPECT_EQ("2020-01-02T03:04:05-01:30", value.Format("s"));
    value.ClearTimeZone();
    EXPECT_FALSE(value.HasTimeZone());
    EXPECT_EQ("2020-01-02T03:04:05", value.Format("s"));
}

TEST(CDateTime, ComparesByTheXsdOrderRelation) {
    struct Case { Kind kind; const char* a; const char* b; int result; } cases[] = {
        {DT, "2000-01-01T12:00:00Z", "2000-01-01T13:00:00+01:00", 0},
        {DT, "2000-01-01T12:00:00Z", "2000-01-01T12:00:00.000000001Z", 1},
        {DT, "2000-01-01T12:00:00", "2000-01-01T11:59:59", 2},
        {DT, "-0001-12-31T00:00:00", "0001-01-01T00:00:00", 1},
        // One side zoned: determinate only beyond 14 hours.
        {DT, "2000-01-15T00:00:00", "2000-02-15T00:00:00Z", 1},
        {DT, "2000-01-01T12:00:00", "1999-12-31T23:00:00Z", 3},
        {DT, "2000-01-01T12:00:00Z", "2000-01-01T12:00:00", 3},
        {DT, "2000-01-01T12:00:00", "2000-01-02T02:00:00Z", 3},
        {DT, "2000-01-01T12:00:00", "2000-01-02T02:00:00.000000001Z", 1},
        {DT, "2000-01-02T02:00:00.000000001Z", "2000-01-01T12:00:00", 2},
        {DT, "2000-01-01T12:00:00", "1999-12-31T22:59:59+01:00", 2},
        {DATE, "2000-01-01", "2000-01-02", 1}, {DATE, "2000-01-02+13:00", "2000-01-01Z", 2},
        {DATE, "2000-01-01-12:00", "2000-01-02+12:00", 0},
        // Times share one reference date, so the zone can move them across midnight.
        {TIME, "13:20:00-05:00", "18:20:00Z", 0}, {TIME, "23:00:00-05:00", "04:00:00Z", 2},
        {TIME, "24:00:00", "00:00:00", 0}, {MD, "--12-25", "--12-26", 1},
        {MD, "--02-29", "--03-01", 1}, {DAY, "---15", "---15", 0}, {DAY, "---15Z", "---15", 3},
        {MONTH, "--02", "--01", 2}, {YEAR, "-0001", "0001", 1}, {YM, "2000-02", "2000-01", 2},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.a) + " vs " + c.b);
        const CDateTime a = Parse(c.kind, c.a);
        const CDateTime b = Parse(c.kind, c.b);
        EXPECT_EQ(c.result, a.CompareTo(b));
        EXPECT_EQ(c.result == 0, a == b);
        EXPECT_EQ(c.result != 0, a != b);
        EXPECT_EQ(c.result == 1, a < b);
        EXPECT_EQ(c.result == 2, a > b);
    }
    EXPECT_EQ(3, Parse(DATE, "2000-01-01").CompareTo(Parse(DT, "2000-01-01T00:00:00")));
}

TEST(CDateTime, AddsDurationsAsXsdDoes) {
    struct Case { Kind kind; const char* start; const char* duration;
                  const char* result; } cases[] = {
        {DT, "2000-01-12T12:13:14Z", "P1Y3M5DT7H10M3.3S", "2001-04-17T19:23:17.3Z"},
        {YM, "2000-01", "-P3M", "1999-10"}, {DATE, "2000-01-12", "PT33H", "2000-01-13"},
        {DATE, "2000-01-31", "P1M", "2000-02-29"}, {DATE, "1900-01-31", "P1M", "1900-02-28"},
        {DATE, "2000-03-31", "-P1M", "2000-02-29"}, {DATE, "2000-01-01", "P146097D", "2400-01-01"},
        {DT, "1999-12-31T23:59:59.999999999", "PT0.000000001S", "2000-01-01T00:00:00"},
        {DT, "2000-01-01T00:00:00+05:00", "-PT1S", "1999-12-31T23:59:59+05:00"},
        {DT, "2000-01-15T00:00:00", "P13M", "2001-02-15T00:00:00"},
        {DT, "2000-01-01T00:00:00", "P65535Y", "67535-01-01T00:00:00"},
        {DT, "0001-01-01T00:00:00", "-P1D", "-0001-12-31T00:00:00"},
        {DATE, "1900-02-28", "P1D", "1900-03-01"}, {DATE, "-0001-02-28", "P1D", "-0001-02-29"},
        {YEAR, "0001", "-P1Y", "-0001"}, {TIME, "23:00:00Z", "PT2H", "01:00:00Z"},
        {TIME, "00:30:00", "-PT1H", "23:30:00"}, {TIME, "12:00:00", "P2147483647DT1H", "13:00:00"},
        {MD, "--02-28", "P1D", "--02-29"}, {DAY, "---31", "P1D", "---01"},
        {MONTH, "--12", "P1M", "--01"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.start) + " + " + c.duration);
        const CDateTime start = Parse(c.kind, c.start);
        EXPECT_EQ(c.result, (start + Span(c.duration)).Format("s"));
        EXPECT_EQ(c.start, start.Format("s"));  // operator+ leaves its operand alone
    }
}

TEST(CDateTime, AdditionDoesNotCommute) {
    CDateTime a = Parse(DATE, "2000-03-30");
    a.Add(Span("P1D"));
    a.Add(Span("P1M"));
    EXPECT_EQ("2000-04-30", a.Format("s"));
    CDateTime b = Parse(DATE, "2000-03-30");
    b.Add(Span("P1M"));
    b.Add(Span("P1D"));
    EXPECT_EQ("2000-05-01", b.Format("s"));
}

TEST(CDateTime, AdditionOutOfTheYearRangeThrowsAndKeepsTheValue) {
    CDateTime value = Parse(DT, "2147483647-12-31T00:00:00");
    ExpectKxError<CKxInvalidValueException>(
        [&] { value.Add(Span("P1D")); },
        "Adding the duration [P1D] to [2147483647-12-31T00:00:00] gives a year out of range");
    EXPECT_EQ("2147483647-12-31T00:00:00", value.Format("s"));
    CDateTimeSpan huge;
    huge.SetDays(ULONG_MAX);
    EXPECT_THROW(Parse(DATE, "2000-01-01") + huge, CKxInvalidValueException);
    EXPECT_THROW(Parse(DATE, "2000-01-01") + huge.GetAsNegative(), CKxInvalidValueException);
}
