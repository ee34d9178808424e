// CAttribute: one untyped attribute (name, value, namespace URI) kept as plain text.
#ifndef KX_CATTRIBUTE_H
#define KX_CATTRIBUTE_H

#include <string>

#include "CXmlObjectBase.h"
#include "KxConfig.h"

namespace KxXmlLib16 {

// An item of a CAttributeCol (an anyAttribute wildcard). Reference counted like every
// bindable object; null pointers are taken as empty strings.
class KX_EXPORT CAttribute : public CXmlObjectBase {
public:
    CAttribute(const char* name, const char* value, const char* namespaceUri);
    CAttribute(const CAttribute& other);
    ~CAttribute() override;

    // A new attribute with the same three strings and a reference count of 0.
    CAttribute* Clone() const override;

    const std::string& GetName() const;
    const std::string& GetValue() const;
    // Both return the attribute's namespace URI.
    std::string GetNamespace() const override;
    std::string GetTargetNamespace() const override;

    // Writes the attribute into the writer's open start tag with the string item type; the
    // other arguments are not used.
    void ToXml_Int(CXmlWriter* writer, bool isRoot, const char* ns,
                   const CSerializationContext& ctx, bool isNested) const override;
    // Attributes are read by their collection: always throws CKxException "This should be done
    // by the collection".
    CXmlElement* FromXml_Int(CXmlElement* element, CXmlElement* firstChild,
                             const CSerializationContext& ctx, bool isNested) override;

private:
    std::string m_name;
    std::string m_value;
    std::string m_namespaceUri;
};

}  // namespace KxXmlLib16

#endif
