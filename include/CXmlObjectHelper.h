// Static helpers of the serialization engine, grouped by concern.
#ifndef KX_CXMLOBJECTHELPER_H
#define KX_CXMLOBJECTHELPER_H

#include <string>

#include "KxConfig.h"
#include "KxTypes.h"

namespace KxXmlLib16 {

class CBigInteger;
class CBinaryData;
class CDateTime;
class CDateTimeSpan;
class CDecimal;
class CPrimitiveRestrictions;
class CSerializationContext;
class CXmlElement;
class KxVariant;

class KX_EXPORT CXmlObjectHelper {
public:
    CXmlObjectHelper() = delete;

    // ---- Facet checks ----------------------------------------------------------------------
    //
    // Each check tests a member's value against the facets set in its record and throws plain
    // CKxException on the first violation; an unset facet is not tested and nothing is changed.
    // `name` is the member's element or attribute name, quoted in the message. Bounds are parsed
    // at every call with the parser of the member's item type under the collapse whitespace
    // rule, so a bound that does not parse throws that parser's CKxInvalidValueException.
    //
    // Integer types, year, month and day: the four bounds (minInclusive, maxInclusive,
    // minExclusive, maxExclusive, in that order), then for the integer types totalDigits against
    // the length of the formatted value, a minus sign counting as a digit. Message
    // "Invalid Value for %s [%d]" with the decimal value (values beyond int are written in full).
    static void CheckRestrictionFori1(const char* name, char value,
                                      const CPrimitiveRestrictions& restrictions);
    static void CheckRestrictionFori2(const char* name, short value,
                                      const CPrimitiveRestrictions& restrictions);
    static void CheckRestrictionFori4(const char* name, long value,
                                      const CPrimitiveRestrictions& restrictions);
    static void CheckRestrictionFori8(const char* name, long long value,
                                      const CPrimitiveRestrictions& restrictions);
    static void CheckRestrictionForui1(const char* name, unsigned char value,
                                       const CPrimitiveRestrictions& restrictions);
    static void CheckRestrictionForui2(const char* name, unsigned short value,
                                       const CPrimitiveRestrictions& restrictions);
    static void CheckRestrictionForui4(const char* name, unsigned long value,
                                       const CPrimitiveRestrictions& restrictions);
    static void CheckRestrictionForui8(const char* name, unsigned long long value,
                                       const CPrimitiveRestrictions& restrictions);
    static void CheckRestrictionForyear(const char* name, unsigned short value,
                                        const CPrimitiveRestrictions& restrictions);
    static void CheckRestrictionFormonth(const char* name, unsigned char value,
                                         const CPrimitiveRestrictions& restrictions);
    static void CheckRestrictionForday(const char* name, unsigned char value,
                                       const CPrimitiveRestrictions& restrictions);

    // The four bounds; message "Invalid Value for %s [%f]".
    static void CheckRestrictionForr4(const char* name, float value,
                                      const CPrimitiveRestrictions& restrictions);
    static void CheckRestrictionForr8(const char* name, double value,
                                      const CPrimitiveRestrictions& restrictions);

    // No facet applies: never throws.
    static void CheckRestrictionForboolean(const char* name, bool value,
                                           const CPrimitiveRestrictions& restrictions);

    // The checks below throw "Invalid Value for %s [%s]." with the value's lexical form.
    //
    // string: minLength, maxLength and length on the byte count of the UTF-8 text, then the
    // pattern (taken from the local code page to UTF-8, matched with TestRegEx). A pattern that
    // does not compile throws "%s\nInvalid Value for %s [%s]." with TestRegEx's full message.
    static void CheckRestrictionForstring(const char* name, std::string value,
                                          const CPrimitiveRestrictions& restrictions);
    // minLength, maxLength and length on the byte count; the message shows hex or base64 text.
    static void CheckRestrictionForhexBinary(const char* name, const CBinaryData& value,
                                             const CPrimitiveRestrictions& restrictions);
    static void CheckRestrictionForbase64Binary(const char* name, const CBinaryData& value,
                                                const CPrimitiveRestrictions& restrictions);
    // The four bounds by CompareTo; an indeterminate comparison never fails a facet. Date bounds
    // are read with the parser of the checked kind (monthYear is the gYearMonth form).
    static void CheckRestrictionForduration(const char* name, const CDateTimeSpan& value,
                                            const CPrimitiveRestrictions& restrictions);
    static void CheckRestrictionFordate(const char* name, const CDateTime& value,
                                        const CPrimitiveRestrictions& restrictions);
    static void CheckRestrictionFordatetime(const char* name, const CDateTime& value,
                                            const CPrimitiveRestrictions& restrictions);
    static void CheckRestrictionFortime(const char* name, const CDateTime& value,
                                        const CPrimitiveRestrictions& restrictions);
    static void CheckRestrictionFormonthDay(const char* name, const CDateTime& value,
                                            const CPrimitiveRestrictions& restrictions);
    static void CheckRestrictionForyearMonth(const char* name, const CDateTime& value,
                                             const CPrimitiveRestrictions& restrictions);
    static void CheckRestrictionFormonthYear(const char* name, const CDateTime& value,
                                             const CPrimitiveRestrictions& restrictions);
    // The four bounds, then totalDigits against the length of the value's text (sign included).
    static void CheckRestrictionForinteger(const char* name, const CBigInteger& value,
                                           const CPrimitiveRestrictions& restrictions);
    // The four bounds, then totalDigits against integer-part plus fraction-part length, then
    // fractionDigits against the fraction-part length.
    static void CheckRestrictionFordecimal(const char* name, const CDecimal& value,
                                           const CPrimitiveRestrictions& restrictions);

    // Reads the value with the variant getter of `type` and runs the matching check. A variant
    // without a value (nil or invalid), and the types that have no facets (invalid, char,
    // object, collection, unknown numbers), are not checked.
    static void CheckRestriction(const char* name, const KxVariant& value, ItemType type,
                                 const CPrimitiveRestrictions& restrictions);

    // Digit counts for the digit facets: 0 when the absolute integer part is zero, else its
    // number of digits; the number of fraction digits, trailing zeros not counted.
    static int GetDecimalIntegerPartLen(const CDecimal& value);
    static int GetDecimalFractionPartLen(const CDecimal& value);

    // ---- Namespace tests -------------------------------------------------------------------
    //
    // Whether `namespaceUri` satisfies a wildcard's namespace constraint: "##any"; "##other"
    // (any namespace but the target namespace; equal empty strings fail); "##local" (the empty
    // namespace); "##targetNamespace" (the target namespace, empty included); or a URI, which
    // accepts the empty namespace and the constraint text itself. Of a blank-separated list
    // only the first token is tested in full; after it, the empty namespace alone still passes.
    // Never throws.
    static bool IsNamespaceValid(const std::string& namespaceUri, const std::string& constraint,
                                 const std::string& targetNamespace);
    // True when IsNamespaceValid is; otherwise throws CKxInvalidNamespaceException
    // "Invalid namespace [%s]. The namespace must be one of [%s] where the target namespace is
    // [%s]." (namespace, constraint, target namespace; empty path).
    static bool TestNamespace(const std::string& namespaceUri, const std::string& constraint,
                              const std::string& targetNamespace);
    // Whether the element's local name is `name` and, unless the context ignores namespaces
    // (IgnoreNamespaces, or a schema without namespaces), its namespace URI is `namespaceUri`.
    // Byte-wise, case-sensitive; a null element never matches. Never throws.
    static bool DoesElementNameMatch(const CSerializationContext& ctx, const CXmlElement* element,
                                     const std::string& name, const std::string& namespaceUri);
};

}  // namespace KxXmlLib16

#endif
