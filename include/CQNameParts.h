// CQNameParts: a qualified name of the Fast Infoset element and attribute name tables, held as
// indexes into the prefix, namespace-name and local-name tables.
#ifndef KX_CQNAMEPARTS_H
#define KX_CQNAMEPARTS_H

#include <ostream>

#include "KxConfig.h"

namespace KxXmlLib16 {

// Three 1-based table indexes; 0 means the part is absent (no prefix, no namespace).
class KX_EXPORT CQNameParts {
public:
    // All three indexes 0.
    CQNameParts();
    CQNameParts(unsigned long prefixIndex, unsigned long namespaceIndex,
                unsigned long localNameIndex);

    unsigned long GetPrefixIndex() const;
    unsigned long GetNamespaceIndex() const;
    unsigned long GetLocalNameIndex() const;

    // Equal when all three indexes are equal.
    bool operator==(const CQNameParts& other) const;
    bool operator!=(const CQNameParts& other) const;

private:
    unsigned long m_prefixIndex;
    unsigned long m_namespaceIndex;
    unsigned long m_localNameIndex;
};

// Prints "(prefix, namespace, local)" so failing comparisons show the indexes.
KX_EXPORT std::ostream& operator<<(std::ostream& out, const CQNameParts& parts);

}  // namespace KxXmlLib16

#endif
