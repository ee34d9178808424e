#include "CXmlTypeCollection.h"

#include "CXmlElement.h"
#include "CXmlObjectHelper.h"

namespace KxXmlLib16 {

CXmlTypeCollection::CXmlTypeCollection(
    ItemType itemType, const char* elementName, const char* namespaceUri, int minOccurs,
    int maxOccurs, const char* pattern, long long minLength, long long maxLength,
    const char* minInclusive, const char* maxInclusive, const char* minExclusive,
    const char* maxExclusive, long long length, long long totalDigits, long long fractionDigits,
    CWhitespaceUtils::WhitespaceRule whitespaceRule, const char* format)
    : CXmlCollectionBase(elementName, namespaceUri, minOccurs, maxOccurs),
      m_restrictions(pattern, minLength, maxLength, minInclusive, maxInclusive, minExclusive,
                     maxExclusive, length, totalDigits, fractionDigits),
      m_itemType(itemType), m_format(format ? format : ""), m_whitespaceRule(whitespaceRule) {}

CXmlTypeCollection::CXmlTypeCollection(const CXmlTypeCollection& other) = default;
CXmlTypeCollection::~CXmlTypeCollection() = default;

CXmlElement* CXmlTypeCollection::FromXml_Int(CXmlElement*, CXmlElement* firstChild,
                                             const CSerializationContext& ctx, bool) {
    for (CXmlElement* cursor = firstChild; cursor; cursor = cursor->GetNextSiblingElement()) {
        if (!CXmlObjectHelper::DoesElementNameMatch(ctx, cursor, GetElementName(), m_namespace)) {
            return cursor;
        }
        AddFromString(cursor->GetText());
    }
    return nullptr;
}

ItemType CXmlTypeCollection::GetItemType() const { return m_itemType; }
const CPrimitiveRestrictions& CXmlTypeCollection::GetRestrictions() const {
    return m_restrictions;
}
const std::string& CXmlTypeCollection::GetFormat() const { return m_format; }
CWhitespaceUtils::WhitespaceRule CXmlTypeCollection::GetWhitespaceRule() const {
    return m_whitespaceRule;
}

}  // namespace KxXmlLib16
