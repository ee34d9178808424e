// Facet checks of simple-typed members: bounds, lengths, digits and patterns.
#include "CXmlObjectHelper.h"

#include <climits>
#include <string>
#include <utility>

#include "CBigInteger.h"
#include "CBinaryData.h"
#include "CConversions.h"
#include "CDateTime.h"
#include "CDateTimeSpan.h"
#include "CDecimal.h"
#include "CEncoder.h"
#include "CKxException.h"
#include "CPrimitiveRestrictions.h"
#include "FormatString.h"
#include "KxRegEx.h"
#include "KxVariant.h"

namespace KxXmlLib16 {

namespace {

const CWhitespaceUtils::WhitespaceRule kBoundRule = CWhitespaceUtils::WhitespaceRule_Collapse;

const char* SafeName(const char* name) { return name != nullptr ? name : ""; }

// "Invalid Value for %s [%d]": printf's %d takes an int, so a value beyond int is written in
// full with the same shape rather than truncated.
[[noreturn]] void ThrowInvalidInteger(const char* name, long long value) {
    if (value >= INT_MIN && value <= INT_MAX)
        throw CKxException(
            FormatString("Invalid Value for %s [%d]", SafeName(name), static_cast<int>(value)));
    throw CKxException(
        FormatString("Invalid Value for %s [%s]", SafeName(name), std::to_string(value).c_str()));
}

[[noreturn]] void ThrowInvalidInteger(const char* name, unsigned long long value) {
    if (value <= static_cast<unsigned long long>(INT_MAX))
        throw CKxException(
            FormatString("Invalid Value for %s [%d]", SafeName(name), static_cast<int>(value)));
    throw CKxException(
        FormatString("Invalid Value for %s [%s]", SafeName(name), std::to_string(value).c_str()));
}

[[noreturn]] void ThrowInvalidReal(const char* name, double value) {
    throw CKxException(FormatString("Invalid Value for %s [%f]", SafeName(name), value));
}

[[noreturn]] void ThrowInvalidText(const char* name, const std::string& lexical) {
    throw CKxException(FormatString("Invalid Value for %s [%s].", SafeName(name), lexical.c_str()));
}

// The four bounds of a totally ordered type, in their fixed order; `fail` throws.
template <typename T, typename Parse, typename Fail>
void CheckOrderedBounds(const T& value, const CPrimitiveRestrictions& restrictions, Parse parse,
                        Fail fail) {
    if (!restrictions.GetMinInclusive().empty() && parse(restrictions.GetMinInclusive()) > value)
        fail();
    if (!restrictions.GetMaxInclusive().empty() && value > parse(restrictions.GetMaxInclusive()))
        fail();
    if (!restrictions.GetMinExclusive().empty() && value <= parse(restrictions.GetMinExclusive()))
        fail();
    if (!restrictions.GetMaxExclusive().empty() && value >= parse(restrictions.GetMaxExclusive()))
        fail();
}

// The four bounds of a partially ordered type (CompareTo answers 0 equal, 1 less, 2 greater,
// 3 indeterminate); an indeterminate answer never fails a facet.
template <typename T, typename Parse, typename Fail>
void CheckPartialBounds(const T& value, const CPrimitiveRestrictions& restrictions, Parse parse,
                        Fail fail) {
    const int kEqual = 0, kLess = 1, kGreater = 2;
    if (!restrictions.GetMinInclusive().empty() &&
        value.CompareTo(parse(restrictions.GetMinInclusive())) == kLess)
        fail();
    if (!restrictions.GetMaxInclusive().empty() &&
        value.CompareTo(parse(restrictions.GetMaxInclusive())) == kGreater)
        fail();
    if (!restrictions.GetMinExclusive().empty()) {
        const int order = value.CompareTo(parse(restrictions.GetMinExclusive()));
        if (order == kEqual || order == kLess) fail();
    }
    if (!restrictions.GetMaxExclusive().empty()) {
        const int order = value.CompareTo(parse(restrictions.GetMaxExclusive()));
        if (order == kEqual || order == kGreater) fail();
    }
}

// Bounds, then totalDigits on the formatted text (sign included), for the fixed-width integers.
template <typename T, typename Wide>
void CheckFixedInteger(const char* name, T value, const CPrimitiveRestrictions& restrictions,
                       T (*parse)(const std::string&, CWhitespaceUtils::WhitespaceRule),
                       std::string (*format)(T)) {
    const auto fail = [&] { ThrowInvalidInteger(name, static_cast<Wide>(value)); };
    CheckOrderedBounds(
        value, restrictions, [&](const std::string& text) { return parse(text, kBoundRule); },
        fail);
    const long long totalDigits = restrictions.GetTotalDigits();
    if (totalDigits >= 0 && static_cast<long long>(format(value).size()) > totalDigits) fail();
}

// Bounds only: year, month and day.
template <typename T>
void CheckBareNumber(const char* name, T value, const CPrimitiveRestrictions& restrictions,
                     T (*parse)(const std::string&, CWhitespaceUtils::WhitespaceRule)) {
    CheckOrderedBounds(
        value, restrictions, [&](const std::string& text) { return parse(text, kBoundRule); },
        [&] { ThrowInvalidInteger(name, static_cast<long long>(value)); });
}

template <typename T>
void CheckReal(const char* name, T value, const CPrimitiveRestrictions& restrictions,
               T (*parse)(const std::string&, CWhitespaceUtils::WhitespaceRule)) {
    CheckOrderedBounds(
        value, restrictions, [&](const std::string& text) { return parse(text, kBoundRule); },
        [&] { ThrowInvalidReal(name, static_cast<double>(value)); });
}

// minLength, maxLength and length against a byte count.
template <typename Fail>
void CheckLengths(unsigned long long length, const CPrimitiveRestrictions& restrictions,
                  Fail fail) {
    const long long minLength = restrictions.GetMinLength();
    const long long maxLength = restrictions.GetMaxLength();
    const long long exactLength = restrictions.GetLength();
    if (minLength >= 0 && static_cast<unsigned long long>(minLength) > length) fail();
    if (maxLength >= 0 && static_cast<unsigned long long>(maxLength) < length) fail();
    if (exactLength >= 0 && static_cast<unsigned long long>(exactLength) != length) fail();
}

void CheckDateKind(const char* name, const CDateTime& value,
                   const CPrimitiveRestrictions& restrictions,
                   CDateTime (*parse)(const std::string&, CWhitespaceUtils::WhitespaceRule),
                   std::string (*format)(const CDateTime&)) {
    CheckPartialBounds(
        value, restrictions, [&](const std::string& text) { return parse(text, kBoundRule); },
        [&] { ThrowInvalidText(name, format(value)); });
}

}  // namespace

void CXmlObjectHelper::CheckRestrictionFori1(const char* name, char value,
                                             const CPrimitiveRestrictions& restrictions) {
    CheckFixedInteger<char, long long>(name, value, restrictions, &CConversions::i1FromString,
                                       &CConversions::i1ToString);
}

void CXmlObjectHelper::CheckRestrictionFori2(const char* name, short value,
                                             const CPrimitiveRestrictions& restrictions) {
    CheckFixedInteger<short, long long>(name, value, restrictions, &CConversions::i2FromString,
                                        &CConversions::i2ToString);
}

void CXmlObjectHelper::CheckRestrictionFori4(const char* name, long value,
                                             const CPrimitiveRestrictions& restrictions) {
    CheckFixedInteger<long, long long>(name, value, restrictions, &CConversions::i4FromString,
                                       &CConversions::i4ToString);
}

void CXmlObjectHelper::CheckRestrictionFori8(const char* name, long long value,
                                             const CPrimitiveRestrictions& restrictions) {
    CheckFixedInteger<long long, long long>(name, value, restrictions, &CConversions::i8FromString,
                                            &CConversions::i8ToString);
}

void CXmlObjectHelper::CheckRestrictionForui1(const char* name, unsigned char value,
                                              const CPrimitiveRestrictions& restrictions) {
    CheckFixedInteger<unsigned char, unsigned long long>(
        name, value, restrictions, &CConversions::ui1FromString, &CConversions::ui1ToString);
}

void CXmlObjectHelper::CheckRestrictionForui2(const char* name, unsigned short value,
                                              const CPrimitiveRestrictions& restrictions) {
    CheckFixedInteger<unsigned short, unsigned long long>(
        name, value, restrictions, &CConversions::ui2FromString, &CConversions::ui2ToString);
}

void CXmlObjectHelper::CheckRestrictionForui4(const char* name, unsigned long value,
                                              const CPrimitiveRestrictions& restrictions) {
    CheckFixedInteger<unsigned long, unsigned long long>(
        name, value, restrictions, &CConversions::ui4FromString, &CConversions::ui4ToString);
}

void CXmlObjectHelper::CheckRestrictionForui8(const char* name, unsigned long long value,
                                              const CPrimitiveRestrictions& restrictions) {
    CheckFixedInteger<unsigned long long, unsigned long long>(
        name, value, restrictions, &CConversions::ui8FromString, &CConversions::ui8ToString);
}

void CXmlObjectHelper::CheckRestrictionForyear(const char* name, unsigned short value,
                                               const CPrimitiveRestrictions& restrictions) {
    CheckBareNumber<unsigned short>(name, value, restrictions, &CConversions::yearFromString);
}

void CXmlObjectHelper::CheckRestrictionFormonth(const char* name, unsigned char value,
                                                const CPrimitiveRestrictions& restrictions) {
    CheckBareNumber<unsigned char>(name, value, restrictions, &CConversions::monthFromString);
}

void CXmlObjectHelper::CheckRestrictionForday(const char* name, unsigned char value,
                                              const CPrimitiveRestrictions& restrictions) {
    CheckBareNumber<unsigned char>(name, value, restrictions, &CConversions::dayFromString);
}

void CXmlObjectHelper::CheckRestrictionForr4(const char* name, float value,
                                             const CPrimitiveRestrictions& restrictions) {
    CheckReal<float>(name, value, restrictions, &CConversions::r4FromString);
}

void CXmlObjectHelper::CheckRestrictionForr8(const char* name, double value,
                                             const CPrimitiveRestrictions& restrictions) {
    CheckReal<double>(name, value, restrictions, &CConversions::r8FromString);
}

void CXmlObjectHelper::CheckRestrictionForboolean(const char*, bool,
                                                  const CPrimitiveRestrictions&) {}

void CXmlObjectHelper::CheckRestrictionForstring(const char* name, std::string value,
                                                 const CPrimitiveRestrictions& restrictions) {
    const auto fail = [&] { ThrowInvalidText(name, value); };
    CheckLengths(value.size(), restrictions, fail);
    if (restrictions.GetPattern().empty()) return;

    const CBinaryData utf8 = CEncoder::LocalCodePageToUtf8Binary(restrictions.GetPattern().c_str());
    std::string pattern =
        utf8.GetData() != nullptr
            ? std::string(reinterpret_cast<const char*>(utf8.GetData()), utf8.GetLength())
            : std::string();
    bool matches = false;
    try {
        matches = TestRegEx(std::move(pattern), value);
    } catch (const CKxException& e) {
        throw CKxException(FormatString("%s\nInvalid Value for %s [%s].",
                                        e.GetFullMessage().c_str(), SafeName(name), value.c_str()));
    }
    if (!matches) fail();
}

void CXmlObjectHelper::CheckRestrictionForhexBinary(const char* name, const CBinaryData& value,
                                                    const CPrimitiveRestrictions& restrictions) {
    CheckLengths(value.GetLength(), restrictions,
                 [&] { ThrowInvalidText(name, CConversions::hexBinaryToString(value)); });
}

void CXmlObjectHelper::CheckRestrictionForbase64Binary(const char* name, const CBinaryData& value,
                                                       const CPrimitiveRestrictions& restrictions) {
    CheckLengths(value.GetLength(), restrictions,
                 [&] { ThrowInvalidText(name, CConversions::base64BinaryToString(value)); });
}

void CXmlObjectHelper::CheckRestrictionForduration(const char* name, const CDateTimeSpan& value,
                                                   const CPrimitiveRestrictions& restrictions) {
    CheckPartialBounds(
        value, restrictions,
        [](const std::string& text) { return CConversions::durationFromString(text, kBoundRule); },
        [&] { ThrowInvalidText(name, CConversions::durationToString(value)); });
}

void CXmlObjectHelper::CheckRestrictionFordate(const char* name, const CDateTime& value,
                                               const CPrimitiveRestrictions& restrictions) {
    CheckDateKind(name, value, restrictions, &CConversions::dateFromString,
                  &CConversions::dateToString);
}

void CXmlObjectHelper::CheckRestrictionFordatetime(const char* name, const CDateTime& value,
                                                   const CPrimitiveRestrictions& restrictions) {
    CheckDateKind(name, value, restrictions, &CConversions::datetimeFromString,
                  &CConversions::datetimeToString);
}

void CXmlObjectHelper::CheckRestrictionFortime(const char* name, const CDateTime& value,
                                               const CPrimitiveRestrictions& restrictions) {
    CheckDateKind(name, value, restrictions, &CConversions::timeFromString,
                  &CConversions::timeToString);
}

void CXmlObjectHelper::CheckRestrictionFormonthDay(const char* name, const CDateTime& value,
                                                   const CPrimitiveRestrictions& restrictions) {
    CheckDateKind(name, value, restrictions, &CConversions::monthDayFromString,
                  &CConversions::monthDayToString);
}

void CXmlObjectHelper::CheckRestrictionForyearMonth(const char* name, const CDateTime& value,
                                                    const CPrimitiveRestrictions& restrictions) {
    CheckDateKind(name, value, restrictions, &CConversions::yearMonthFromString,
                  &CConversions::yearMonthToString);
}

void CXmlObjectHelper::CheckRestrictionFormonthYear(const char* name, const CDateTime& value,
                                                    const CPrimitiveRestrictions& restrictions) {
    CheckDateKind(name, value, restrictions, &CConversions::yearMonthFromString,
                  &CConversions::yearMonthToString);
}

void CXmlObjectHelper::CheckRestrictionForinteger(const char* name, const CBigInteger& value,
                                                  const CPrimitiveRestrictions& restrictions) {
    const std::string text = CConversions::integerToString(value);
    const auto fail = [&] { ThrowInvalidText(name, text); };
    CheckOrderedBounds(
        value, restrictions,
        [](const std::string& bound) { return CConversions::integerFromString(bound, kBoundRule); },
        fail);
    const long long totalDigits = restrictions.GetTotalDigits();
    if (totalDigits >= 0 && static_cast<long long>(text.size()) > totalDigits) fail();
}

void CXmlObjectHelper::CheckRestrictionFordecimal(const char* name, const CDecimal& value,
                                                  const CPrimitiveRestrictions& restrictions) {
    const auto fail = [&] { ThrowInvalidText(name, CConversions::decimalToString(value)); };
    CheckOrderedBounds(
        value, restrictions,
        [](const std::string& bound) { return CConversions::decimalFromString(bound, kBoundRule); },
        fail);
    const long long fractionLength = GetDecimalFractionPartLen(value);
    const long long totalDigits = restrictions.GetTotalDigits();
    if (totalDigits >= 0 && GetDecimalIntegerPartLen(value) + fractionLength > totalDigits) fail();
    const long long fractionDigits = restrictions.GetFractionDigits();
    if (fractionDigits >= 0 && fractionLength > fractionDigits) fail();
}

void CXmlObjectHelper::CheckRestriction(const char* name, const KxVariant& value, ItemType type,
                                        const CPrimitiveRestrictions& restrictions) {
    // A nil or invalid variant holds no value to test. Without facets no check can fail, so
    // the value is not even copied out of the variant (the common case on every write).
    if (value.IsNil() || value.GetItemType() == ItemType_Invalid || !restrictions.HasFacets())
        return;
    switch (type) {
        case ItemType_hexBinary:
            return CheckRestrictionForhexBinary(name, value.GetHexBinary(), restrictions);
        case ItemType_base64Binary:
            return CheckRestrictionForbase64Binary(name, value.GetBase64Binary(), restrictions);
        case ItemType_i1: return CheckRestrictionFori1(name, value.GetI1(), restrictions);
        case ItemType_i2: return CheckRestrictionFori2(name, value.GetI2(), restrictions);
        case ItemType_i4: return CheckRestrictionFori4(name, value.GetI4(), restrictions);
        case ItemType_i8: return CheckRestrictionFori8(name, value.GetI8(), restrictions);
        case ItemType_ui1: return CheckRestrictionForui1(name, value.GetUI1(), restrictions);
        case ItemType_ui2: return CheckRestrictionForui2(name, value.GetUI2(), restrictions);
        case ItemType_ui4: return CheckRestrictionForui4(name, value.GetUI4(), restrictions);
        case ItemType_ui8: return CheckRestrictionForui8(name, value.GetUI8(), restrictions);
        case ItemType_r4: return CheckRestrictionForr4(name, value.GetR4(), restrictions);
        case ItemType_r8: return CheckRestrictionForr8(name, value.GetR8(), restrictions);
        case ItemType_duration:
            return CheckRestrictionForduration(name, value.GetDuration(), restrictions);
        case ItemType_yearMonth:
            return CheckRestrictionForyearMonth(name, value.GetYearMonth(), restrictions);
        case ItemType_monthDay:
            return CheckRestrictionFormonthDay(name, value.GetMonthDay(), restrictions);
        case ItemType_year: return CheckRestrictionForyear(name, value.GetYear(), restrictions);
        case ItemType_month: return CheckRestrictionFormonth(name, value.GetMonth(), restrictions);
        case ItemType_day: return CheckRestrictionForday(name, value.GetDay(), restrictions);
        case ItemType_date: return CheckRestrictionFordate(name, value.GetDate(), restrictions);
        case ItemType_datetime:
            return CheckRestrictionFordatetime(name, value.GetDateTime(), restrictions);
        case ItemType_time: return CheckRestrictionFortime(name, value.GetTime(), restrictions);
        case ItemType_string:
            return CheckRestrictionForstring(name, value.GetString(), restrictions);
        case ItemType_boolean:
            return CheckRestrictionForboolean(name, value.GetBoolean(), restrictions);
        case ItemType_decimal:
            return CheckRestrictionFordecimal(name, value.GetDecimal(), restrictions);
        case ItemType_integer:
            return CheckRestrictionForinteger(name, value.GetInteger(), restrictions);
        default:
            // char, object, collection and unknown numbers have no facets.
            return;
    }
}

int CXmlObjectHelper::GetDecimalIntegerPartLen(const CDecimal& value) {
    return value.GetIntegerDigitCount();
}

int CXmlObjectHelper::GetDecimalFractionPartLen(const CDecimal& value) {
    return value.GetFractionDigitCount();
}

}  // namespace KxXmlLib16
