// The facet record of a simple-typed member.
#include "CPrimitiveRestrictions.h"

namespace KxXmlLib16 {

namespace {

std::string TextOrEmpty(const char* text) {
    return text != nullptr ? std::string(text) : std::string();
}

}  // namespace

CPrimitiveRestrictions::CPrimitiveRestrictions()
    : m_minLength(-1), m_maxLength(-1), m_length(-1), m_totalDigits(-1), m_fractionDigits(-1) {}

CPrimitiveRestrictions::CPrimitiveRestrictions(const char* pattern, long long minLength,
                                               long long maxLength, const char* minInclusive,
                                               const char* maxInclusive, const char* minExclusive,
                                               const char* maxExclusive, long long length,
                                               long long totalDigits, long long fractionDigits)
    : m_pattern(TextOrEmpty(pattern)),
      m_minLength(minLength),
      m_maxLength(maxLength),
      m_minInclusive(TextOrEmpty(minInclusive)),
      m_maxInclusive(TextOrEmpty(maxInclusive)),
      m_minExclusive(TextOrEmpty(minExclusive)),
      m_maxExclusive(TextOrEmpty(maxExclusive)),
      m_length(length),
      m_totalDigits(totalDigits),
      m_fractionDigits(fractionDigits) {}

CPrimitiveRestrictions::CPrimitiveRestrictions(const CPrimitiveRestrictions& other) = default;

CPrimitiveRestrictions& CPrimitiveRestrictions::operator=(const CPrimitiveRestrictions& other) =
    default;

CPrimitiveRestrictions::~CPrimitiveRestrictions() = default;

const std::string& CPrimitiveRestrictions::GetPattern() const { return m_pattern; }
long long CPrimitiveRestrictions::GetMinLength() const { return m_minLength; }
long long CPrimitiveRestrictions::GetMaxLength() const { return m_maxLength; }
const std::string& CPrimitiveRestrictions::GetMinInclusive() const { return m_minInclusive; }
const std::string& CPrimitiveRestrictions::GetMaxInclusive() const { return m_maxInclusive; }
const std::string& CPrimitiveRestrictions::GetMinExclusive() const { return m_minExclusive; }
const std::string& CPrimitiveRestrictions::GetMaxExclusive() const { return m_maxExclusive; }
long long CPrimitiveRestrictions::GetLength() const { return m_length; }
long long CPrimitiveRestrictions::GetTotalDigits() const { return m_totalDigits; }
long long CPrimitiveRestrictions::GetFractionDigits() const { return m_fractionDigits; }

bool CPrimitiveRestrictions::HasFacets() const {
    return !m_pattern.empty() || m_minLength >= 0 || m_maxLength >= 0 ||
           !m_minInclusive.empty() || !m_maxInclusive.empty() || !m_minExclusive.empty() ||
           !m_maxExclusive.empty() || m_length >= 0 || m_totalDigits >= 0 ||
           m_fractionDigits >= 0;
}

}  // namespace KxXmlLib16
