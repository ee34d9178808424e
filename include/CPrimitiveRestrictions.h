// The facets of one simple-typed member: pattern, lengths, bounds and digit counts.
#ifndef KX_CPRIMITIVERESTRICTIONS_H
#define KX_CPRIMITIVERESTRICTIONS_H

#include <string>

#include "KxConfig.h"

namespace KxXmlLib16 {

// A record built once by generated code and never changed. A length or digit facet is unset when
// negative, a text facet when empty. The bounds are lexical forms, parsed by the checks with the
// member's own item type (see CXmlObjectHelper). The pattern is an XSD regular expression in the
// local code page.
class KX_EXPORT CPrimitiveRestrictions {
public:
    // Every facet unset.
    CPrimitiveRestrictions();
    // The ten facets in field order; a null pointer is an empty (unset) text.
    CPrimitiveRestrictions(const char* pattern, long long minLength, long long maxLength,
                           const char* minInclusive, const char* maxInclusive,
                           const char* minExclusive, const char* maxExclusive, long long length,
                           long long totalDigits, long long fractionDigits);
    CPrimitiveRestrictions(const CPrimitiveRestrictions& other);
    CPrimitiveRestrictions& operator=(const CPrimitiveRestrictions& other);
    virtual ~CPrimitiveRestrictions();

    const std::string& GetPattern() const;
    long long GetMinLength() const;
    long long GetMaxLength() const;
    const std::string& GetMinInclusive() const;
    const std::string& GetMaxInclusive() const;
    const std::string& GetMinExclusive() const;
    const std::string& GetMaxExclusive() const;
    long long GetLength() const;
    long long GetTotalDigits() const;
    long long GetFractionDigits() const;
    // True when at least one facet is set; a value can fail the checks only then.
    bool HasFacets() const;

private:
    std::string m_pattern;
    long long m_minLength;
    long long m_maxLength;
    std::string m_minInclusive;
    std::string m_maxInclusive;
    std::string m_minExclusive;
    std::string m_maxExclusive;
    long long m_length;
    long long m_totalDigits;
    long long m_fractionDigits;
};

}  // namespace KxXmlLib16

#endif
