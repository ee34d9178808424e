#include <climits>
#include <sstream>

#include "KxTestSupport.h"
#include "KxXmlLib16.h"

using namespace KxXmlLib16;
using KxTest::ExpectKxError;

namespace {

CDateTimeSpan Span(const char* text) {
    CDateTimeSpan span;
    span.ParseXSDDuration(text);
    return span;
}

const char kGeneral[] = "Invalid XSD Duration [%s] expected [-]P[nY][nM][nD][T[nH][nM][nS.ff]]";

}  // namespace

TEST(CDateTimeSpan, ParsesFieldsAndWritesThemBack) {
    struct Case { const char* text; unsigned long long y, mo, d, h, mi, s, ms, us, ns;
                  bool negative; const char* written; } cases[] = {
        {"P1Y2M3DT4H5M6.789S", 1, 2, 3, 4, 5, 6, 789, 0, 0, false, "P1Y2M3DT4H5M6.789S"},
        {"-P1D", 0, 0, 1, 0, 0, 0, 0, 0, 0, true, "-P1D"},
        {"PT0.00025S", 0, 0, 0, 0, 0, 0, 0, 250, 0, false, "PT0.00025S"},
        // Only the last of the digits 7 to 9 is kept, unscaled.
        {"PT0.123456789S", 0, 0, 0, 0, 0, 0, 123, 456, 9, false, "PT0.123456009S"},
        {"P13M", 0, 13, 0, 0, 0, 0, 0, 0, 0, false, "P13M"},
        {"PY", 0, 0, 0, 0, 0, 0, 0, 0, 0, false, "P"},
        {"-PTS", 0, 0, 0, 0, 0, 0, 0, 0, 0, true, "-P"},
        {"PT1S2Y", 2, 0, 0, 0, 0, 1, 0, 0, 0, false, "P2YT1S"},
        {"P1Y2Y", 2, 0, 0, 0, 0, 0, 0, 0, 0, false, "P2Y"},
        {"P5T1H", 0, 0, 0, 1, 0, 0, 0, 0, 0, false, "PT1H"},
        {"PT1.", 0, 0, 0, 0, 0, 1, 0, 0, 0, false, "PT1S"},
        {"PT2.S", 0, 0, 0, 0, 0, 2, 0, 0, 0, false, "PT2S"},
        {"PT1H0.25S", 0, 0, 0, 1, 0, 0, 250, 0, 0, false, "PT1H0.25S"},
        // Numbers wrap as 32-bit signed integers; years keep 16 bits.
        {"P4294967297D", 0, 0, 1, 0, 0, 0, 0, 0, 0, false, "P1D"},
        {"P65537Y", 1, 0, 0, 0, 0, 0, 0, 0, 0, false, "P1Y"},
        {"P2147483648D", 0, 0, 18446744071562067968ULL, 0, 0, 0, 0, 0, 0, false,
         "P18446744071562067968D"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        CDateTimeSpan span = Span(c.text);
        EXPECT_EQ(c.y, span.GetYears());
        EXPECT_EQ(c.mo, span.GetMonths());
        EXPECT_EQ(c.d, span.GetDays());
        EXPECT_EQ(c.h, span.GetHours());
        EXPECT_EQ(c.mi, span.GetMinutes());
        EXPECT_EQ(c.s, span.GetSeconds());
        EXPECT_EQ(c.ms, span.GetMilliSeconds());
        EXPECT_EQ(c.us, span.GetMicroSeconds());
        EXPECT_EQ(c.ns, span.GetNanoSeconds());
        EXPECT_EQ(c.negative, span.IsNegative());
        EXPECT_EQ(c.written, span.ToString());
    }
}

TEST(CDateTimeSpan, RejectsMalformedTextsWithTheGeneralMessage) {
    // No field, a number without its letter, no P, signs in the wrong place, a date letter
    // after T, letters out of order or repeated, unknown letters, T with nothing after it, a
    // time letter before T or seconds twice, blanks and lower case.
    const char* texts[] = {"P",      "-P",     "P1",     "PT1.5",  "1Y",   "P-1Y", "+P1Y",
                           "-",      "PT1H1D", "P1D1M",  "PT1M1H", "PT1H1H", "PT1.5X", "P1DT",
                           "P1H",    "P1S",    "PT1.5S1S", "P T1H", "P1Y ",  "p1y"};
    for (const char* text : texts) {
        SCOPED_TRACE(text);
        ExpectKxError<CKxInvalidValueException>([&] { Span(text); },
                                                FormatString(kGeneral, text));
    }
}

TEST(CDateTimeSpan, RejectsNullEmptyAndOverlongFraction) {
    ExpectKxError<CKxInvalidValueException>([] { Span(nullptr); },
                                            "Invalid XSD Duration (Null String)");
    ExpectKxError<CKxInvalidValueException>([] { Span(""); },
                                            "Invalid XSD Duration (Empty String)");
    ExpectKxError<CKxInvalidValueException>(
        [] { Span("PT1.0000000001S"); },
        "Invalid XSD Duration [PT1.0000000001S] Fraction part too long");
}

TEST(CDateTimeSpan, FailedParseKeepsOnlyWhatItReadOfTheNewText) {
    CDateTimeSpan span(7, 7, 7, 7, 7, 7);
    EXPECT_THROW(span.ParseXSDDuration("P2M1H"), CKxInvalidValueException);
    EXPECT_EQ(0u, span.GetYears());
    EXPECT_EQ(2u, span.GetMonths());
    EXPECT_EQ(0u, span.GetHours());
}

TEST(CDateTimeSpan, WritesAndStreamsFieldsSetDirectly) {
    struct Case { CDateTimeSpan span; const char* written; } cases[] = {
        {CDateTimeSpan(2, 30, 0), "PT2H30M"}, {CDateTimeSpan(0, 0, 1, 0, 0, 5), "P1DT5S"},
        {CDateTimeSpan(0, 0, 0, 0, 0, 0, 1, 2, 0), "PT0.001002S"},
        {CDateTimeSpan(0, 0, 0, 0, 0, 0, 0, 0, 10), "PT0.00000001S"},
        {CDateTimeSpan(0, 0, 0, 0, 0, 3, 120, 0, 0), "PT3.12S"},
        // A counter above 999 just gives more digits.
        {CDateTimeSpan(0, 0, 0, 0, 0, 0, 1500, 0, 0), "PT0.15S"},
        {CDateTimeSpan().GetAsNegative(), "-P"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.written);
        EXPECT_EQ(c.written, c.span.ToString());
        std::ostringstream out;
        out << c.span;
        EXPECT_EQ(c.written, out.str());
    }
}

TEST(CDateTimeSpan, SettersClearTheOtherFieldsAndTheSign) {
    CDateTimeSpan span = Span("-P1Y2M3DT4H5M6.007008009S");
    span.SetDateTimeSpan(1, 2, 3);
    EXPECT_FALSE(span.IsNegative());
    EXPECT_EQ("PT1H2M3S", span.ToString());
    span.Negate();
    span.SetDateTimeSpan(1, 0, 0, 0, 0, 0);
    EXPECT_EQ("P1Y", span.ToString());
    span.SetMilliSeconds(5);
    span.SetDays(4);
    EXPECT_EQ("P1Y4DT0.005S", span.ToString());
    span.Clear();
    EXPECT_EQ("P", span.ToString());
}

TEST(CDateTimeSpan, NegateFlipsButGetAsNegativeNeverDoes) {
    CDateTimeSpan span = Span("-P1D");
    EXPECT_TRUE(span.GetAsNegative().IsNegative());
    span.Negate();
    EXPECT_FALSE(span.IsNegative());
    EXPECT_EQ("-P1D", span.GetAsNegative().ToString());
    EXPECT_FALSE(span.IsNegative());  // GetAsNegative works on a copy
}

TEST(CDateTimeSpan, ComparesByTheFourReferenceDates) {
    struct Case { const char* a; const char* b; int result; } cases[] = {
        {"P1Y", "P364D", 2}, {"P1Y", "P367D", 1}, {"P1Y", "P365D", 3}, {"P1D", "PT24H", 0},
        {"P1Y", "P12M", 0},  {"-P1D", "P1D", 1},  {"PT0.5S", "PT0.4S", 2}, {"P2M", "P62D", 3},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.a) + " vs " + c.b);
        EXPECT_EQ(c.result, Span(c.a).CompareTo(Span(c.b)));
        EXPECT_EQ(c.result == 0, Span(c.a) == Span(c.b));
        EXPECT_EQ(c.result != 0, Span(c.a) != Span(c.b));
        EXPECT_EQ(c.result == 1, Span(c.a) < Span(c.b));
        EXPECT_EQ(c.result == 2, Span(c.a) > Span(c.b));
    }
    // Sums out of range compare as indeterminate.
    CDateTimeSpan huge;
    huge.SetDays(ULONG_MAX);
    EXPECT_EQ(3, huge.CompareTo(Span("P1D")));
    EXPECT_EQ(3, Span("P1D").CompareTo(huge));
}
