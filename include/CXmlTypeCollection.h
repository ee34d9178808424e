// CXmlTypeCollection: base of the typed collections of simple values.
#ifndef KX_CXMLTYPECOLLECTION_H
#define KX_CXMLTYPECOLLECTION_H

#include <string>

#include "CPrimitiveRestrictions.h"
#include "CWhitespaceUtils.h"
#include "CXmlCollectionBase.h"
#include "KxConfig.h"
#include "KxTypes.h"

namespace KxXmlLib16 {

// Adds the item type, the item facets, a format string and a whitespace rule, and reads its
// items from a run of sibling elements.
class KX_EXPORT CXmlTypeCollection : public CXmlCollectionBase {
public:
    // The facets follow in the order of the CPrimitiveRestrictions fields; null texts are
    // empty.
    CXmlTypeCollection(ItemType itemType, const char* elementName, const char* namespaceUri,
                       int minOccurs, int maxOccurs, const char* pattern, long long minLength,
                       long long maxLength, const char* minInclusive, const char* maxInclusive,
                       const char* minExclusive, const char* maxExclusive, long long length,
                       long long totalDigits, long long fractionDigits,
                       CWhitespaceUtils::WhitespaceRule whitespaceRule, const char* format);
    CXmlTypeCollection(const CXmlTypeCollection& other);
    ~CXmlTypeCollection() override;

    // Parses one item from its lexical form and appends it (the concrete collection's parse
    // and facet errors propagate).
    virtual void AddFromString(std::string text) = 0;

    // From `firstChild` on, hands the text of every sibling element that matches the
    // collection's element name and namespace to AddFromString; returns the first element that
    // does not match, or null.
    CXmlElement* FromXml_Int(CXmlElement* element, CXmlElement* firstChild,
                             const CSerializationContext& ctx, bool isNested) override;

    ItemType GetItemType() const;
    const CPrimitiveRestrictions& GetRestrictions() const;
    const std::string& GetFormat() const;
    CWhitespaceUtils::WhitespaceRule GetWhitespaceRule() const;

protected:
    CPrimitiveRestrictions m_restrictions;
    ItemType m_itemType;
    std::string m_format;
    CWhitespaceUtils::WhitespaceRule m_whitespaceRule;
};

}  // namespace KxXmlLib16

#endif
