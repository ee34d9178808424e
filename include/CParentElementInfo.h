// CParentElementInfo: the static record that describes a generated class itself (content model,
// own element, attribute strictness, text content).
#ifndef KX_CPARENTELEMENTINFO_H
#define KX_CPARENTELEMENTINFO_H

#include <string>

#include "KxConfig.h"
#include "KxTypes.h"

namespace KxXmlLib16Data {

// Content model of a generated class.
enum XmlElementGroupType : int {
    XmlElementGroupType_Sequence = 0,
    XmlElementGroupType_Choice = 1,
    XmlElementGroupType_All = 2
};

// 0: the class is an element of its own; any other value: its content lives in the parent's
// element.
enum XmlElementType : int {
    XmlElementType_Element = 0,
    XmlElementType_Group = 1
};

// One per generated class (static lifetime, immutable, shared between threads without locks).
// Null string pointers are stored as empty strings.
class KX_EXPORT CParentElementInfo {
public:
    CParentElementInfo(XmlElementGroupType groupType, XmlElementType elementType,
                       const char* elementName, const char* namespaceUri, bool strictAttributes,
                       bool typeAttribute, int textMemberId, KxXmlLib16::ItemType textItemType,
                       const char* textFormat, bool textIsRawString);
    CParentElementInfo(const CParentElementInfo&) = delete;
    CParentElementInfo& operator=(const CParentElementInfo&) = delete;
    virtual ~CParentElementInfo();

    XmlElementGroupType GetGroupType() const { return m_groupType; }
    XmlElementType GetElementType() const { return m_elementType; }
    const std::string& GetElementName() const { return m_elementName; }
    const std::string& GetNamespace() const { return m_namespace; }
    bool IsStrictAttributes() const { return m_strictAttributes; }
    bool HasTypeAttribute() const { return m_typeAttribute; }
    int GetTextMemberId() const { return m_textMemberId; }
    KxXmlLib16::ItemType GetTextItemType() const { return m_textItemType; }
    const std::string& GetTextFormat() const { return m_textFormat; }
    bool IsTextRawString() const { return m_textIsRawString; }

private:
    XmlElementGroupType m_groupType;
    XmlElementType m_elementType;
    std::string m_elementName;
    std::string m_namespace;
    bool m_strictAttributes;
    bool m_typeAttribute;
    int m_textMemberId;
    KxXmlLib16::ItemType m_textItemType;
    std::string m_textFormat;
    bool m_textIsRawString;
};

}  // namespace KxXmlLib16Data

#endif
