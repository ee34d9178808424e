// Lexical forms of every XSD item type of the library: formatting values to text and parsing
// text back, after the member's whitespace rule.
#ifndef KX_CCONVERSIONS_H
#define KX_CCONVERSIONS_H

#include <string>

#include "CWhitespaceUtils.h"
#include "KxConfig.h"

namespace KxXmlLib16 {

class CBigInteger;
class CBinaryData;
class CDateTime;
class CDateTimeSpan;
class CDecimal;

// Stateless: every operation is static. Each xxFromString applies the whitespace rule first
// (CWhitespaceUtils::ApplyRule, which throws CKxException for an unknown rule) and parses the
// result, the "processed text". Scalar parse failures throw CKxInvalidValueException; the
// structured types pass on their own exceptions. Formatting never throws.
class KX_EXPORT CConversions {
public:
    using WhitespaceRule = CWhitespaceUtils::WhitespaceRule;

    CConversions() = delete;

    // Hex text, upper case.
    static std::string hexBinaryToString(const CBinaryData& value);
    static CBinaryData hexBinaryFromString(const std::string& text, WhitespaceRule rule);
    // Base64 text.
    static std::string base64BinaryToString(const CBinaryData& value);
    static CBinaryData base64BinaryFromString(const std::string& text, WhitespaceRule rule);

    // Signed integers. i4 is carried in a 64-bit long and accepts the whole 64-bit range; only
    // i1 and i2 test a narrower range. Messages: "The value [%s] can not be converted to a i4",
    // "The value [%s] is to large to fit in a i4" (with the type's word); the narrow range
    // messages quote the text as passed in, before the whitespace rule.
    static std::string i1ToString(char value);
    static char i1FromString(const std::string& text, WhitespaceRule rule);
    static std::string i2ToString(short value);
    static short i2FromString(const std::string& text, WhitespaceRule rule);
    static std::string i4ToString(long value);
    static long i4FromString(const std::string& text, WhitespaceRule rule);
    static std::string i8ToString(long long value);
    static long long i8FromString(const std::string& text, WhitespaceRule rule);

    // Unsigned integers, as above. A leading minus wraps ("-1" gives the largest ui4/ui8).
    static std::string ui1ToString(unsigned char value);
    static unsigned char ui1FromString(const std::string& text, WhitespaceRule rule);
    static std::string ui2ToString(unsigned short value);
    static unsigned short ui2FromString(const std::string& text, WhitespaceRule rule);
    static std::string ui4ToString(unsigned long value);
    static unsigned long ui4FromString(const std::string& text, WhitespaceRule rule);
    static std::string ui8ToString(unsigned long long value);
    static unsigned long long ui8FromString(const std::string& text, WhitespaceRule rule);

    // Floats: NaN is written "NaN", infinities "INF" and "-INF"; other values with the printf
    // format given (one double argument) or, when it is empty, "%.7g" (r4) / "%.16g" (r8).
    // Parsing accepts "NaN", "1.#QNAN", "-NAN", "INF", "-INF" and whatever strtod accepts in the
    // "C" locale; message "The value [%s] can not be converted to a r4" (or r8). Out-of-range
    // r4 values become infinities without error.
    static std::string r4ToString(float value);
    static std::string r4ToString(float value, const std::string& format);
    static float r4FromString(const std::string& text, WhitespaceRule rule);
    static std::string r8ToString(double value);
    static std::string r8ToString(double value, const std::string& format);
    static double r8FromString(const std::string& text, WhitespaceRule rule);

    // XSD duration.
    static std::string durationToString(const CDateTimeSpan& value);
    static CDateTimeSpan durationFromString(const std::string& text, WhitespaceRule rule);

    // Dates and times: the five formatters write the XSD form of the value's own kind.
    static std::string yearMonthToString(const CDateTime& value);
    static CDateTime yearMonthFromString(const std::string& text, WhitespaceRule rule);
    static std::string monthDayToString(const CDateTime& value);
    static CDateTime monthDayFromString(const std::string& text, WhitespaceRule rule);
    static std::string dateToString(const CDateTime& value);
    static CDateTime dateFromString(const std::string& text, WhitespaceRule rule);
    static std::string datetimeToString(const CDateTime& value);
    static CDateTime datetimeFromString(const std::string& text, WhitespaceRule rule);
    static std::string timeToString(const CDateTime& value);
    static CDateTime timeFromString(const std::string& text, WhitespaceRule rule);

    // Bare gYear, gMonth and gDay numbers: written "%u", "--%02u" and "---%02u"; read with the
    // date parser, a time zone being accepted and dropped.
    static std::string yearToString(unsigned short value);
    static unsigned short yearFromString(const std::string& text, WhitespaceRule rule);
    static std::string monthToString(unsigned char value);
    static unsigned char monthFromString(const std::string& text, WhitespaceRule rule);
    static std::string dayToString(unsigned char value);
    static unsigned char dayFromString(const std::string& text, WhitespaceRule rule);

    // One byte; the byte 0 is written as "". Message: "The value [%s] can not be a char as it
    // is either empty of greater than 1 char long".
    static std::string charToString(char value);
    static char charFromString(const std::string& text, WhitespaceRule rule);

    // The text itself; parsing never fails.
    static std::string stringToString(const std::string& value);
    static std::string stringFromString(const std::string& text, WhitespaceRule rule);

    // "true"/"false"; parsing accepts true, false, 1, 0 in any letter case. Message: "A Boolean
    // Value read from an XML document was invalid [%s]. Valid values are 'true', 'false', '1',
    // or '0'" with the text as passed in.
    static std::string booleanToString(bool value);
    static bool booleanFromString(const std::string& text, WhitespaceRule rule);

    // Decimal: with a non-empty format, its leading decimal number is the count of fraction
    // digits to write.
    static std::string decimalToString(const CDecimal& value);
    static std::string decimalToString(const CDecimal& value, const std::string& format);
    static CDecimal decimalFromString(const std::string& text, WhitespaceRule rule);

    // Unbounded integer.
    static std::string integerToString(const CBigInteger& value);
    static CBigInteger integerFromString(const std::string& text, WhitespaceRule rule);
};

}  // namespace KxXmlLib16

#endif
