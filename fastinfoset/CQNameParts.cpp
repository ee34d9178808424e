#include "CQNameParts.h"

namespace KxXmlLib16 {

CQNameParts::CQNameParts() : m_prefixIndex(0), m_namespaceIndex(0), m_localNameIndex(0) {}

CQNameParts::CQNameParts(unsigned long prefixIndex, unsigned long namespaceIndex,
                         unsigned long localNameIndex)
    : m_prefixIndex(prefixIndex),
      m_namespaceIndex(namespaceIndex),
      m_localNameIndex(localNameIndex) {}

unsigned long CQNameParts::GetPrefixIndex() const { return m_prefixIndex; }

unsigned long CQNameParts::GetNamespaceIndex() const { return m_namespaceIndex; }

unsigned long CQNameParts::GetLocalNameIndex() const { return m_localNameIndex; }

bool CQNameParts::operator==(const CQNameParts& other) const {
    return m_prefixIndex == other.m_prefixIndex && m_namespaceIndex == other.m_namespaceIndex &&
           m_localNameIndex == other.m_localNameIndex;
}

bool CQNameParts::operator!=(const CQNameParts& other) const { return !(*this == other); }

std::ostream& operator<<(std::ostream& out, const CQNameParts& parts) {
    return out << '(' << parts.GetPrefixIndex() << ", " << parts.GetNamespaceIndex() << ", "
               << parts.GetLocalNameIndex() << ')';
}

}  // namespace KxXmlLib16
