// CElement: an untyped (xs:any) element held whole: name, namespace, text, attributes and
// child elements, so a foreign subtree survives a read and a write.
//
// What is kept of an element read from a tree: its local name and namespace URI, every
// attribute in document order with its namespace (xsi:nil and xsi:schemaLocation included),
// except namespace declarations, which the writer makes again for whatever it writes; an
// xsi:type attribute is kept resolved (GetTypeName / GetTypeNamespace) because its prefix only
// means something in the input. The tree holds one text per element: with mixed content all
// character data is joined and written back before the first child (formatted output then
// adds indentation to that text, so mixed content survives unformatted output only); character
// data made only of blanks is dropped from an element that has children (it is indentation).
#ifndef KX_CELEMENT_H
#define KX_CELEMENT_H

#include <string>

#include "CAttributeCol.h"
#include "CSmartPtr.h"
#include "CXmlObjectBase.h"
#include "KxConfig.h"

namespace KxXmlLib16 {

class CElementCol;

class KX_EXPORT CElement : public CXmlObjectBase {
public:
    // Null pointers are taken as empty strings.
    CElement(const char* name, const char* namespaceUri);
    CElement(const CElement& other);  // deep copy
    CElement& operator=(const CElement&) = delete;
    ~CElement() override;

    // A deep copy with reference count 0.
    CElement* Clone() const override;

    const std::string& GetName() const;
    std::string GetNamespace() const override;
    std::string GetTargetNamespace() const override;
    const std::string& GetText() const;
    void SetText(const char* text);
    // The element's attributes (any namespace) and child elements, held by the element.
    CSmartPtr<CAttributeCol> GetAttributes() const;
    CSmartPtr<CElementCol> GetChildren() const;
    // The xsi:type the element carries, resolved to local name and namespace ("" when none).
    // SetType with an empty or null name removes it.
    const std::string& GetTypeName() const;
    const std::string& GetTypeNamespace() const;
    void SetType(const char* typeName, const char* typeNamespace);

    // Writes the element under its own name and namespace (`ns` is not used), its xsi:type,
    // attributes, text and children; as the root it also writes the context's processing
    // instructions, namespace aliases and extra root attributes. Throws
    // CKxInvalidStateException "The untyped element has no name" for an empty name.
    void ToXml_Int(CXmlWriter* writer, bool isRoot, const char* ns,
                   const CSerializationContext& ctx, bool isNested) const override;
    // Replaces everything held by name, namespace, attributes, text and every child element of
    // `element` (whatever their namespace; `firstChild` is not used); returns null (it consumes
    // the whole content).
    CXmlElement* FromXml_Int(CXmlElement* element, CXmlElement* firstChild,
                             const CSerializationContext& ctx, bool isNested) override;

private:
    // Takes an xsi:type value; false when its prefix is unknown (it is then kept as text).
    bool ReadType(const CXmlElement& element, const std::string& value);

    std::string m_name;
    std::string m_namespace;
    std::string m_text;
    CSmartPtr<CAttributeCol> m_attributes;
    CSmartPtr<CElementCol> m_children;
    std::string m_typeName;
    std::string m_typeNamespace;
};

}  // namespace KxXmlLib16

#endif
