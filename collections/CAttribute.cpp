#include "CAttribute.h"

#include "CKxException.h"
#include "CXmlWriter.h"

namespace KxXmlLib16 {

CAttribute::CAttribute(const char* name, const char* value, const char* namespaceUri)
    : m_name(name ? name : ""),
      m_value(value ? value : ""),
      m_namespaceUri(namespaceUri ? namespaceUri : "") {}

CAttribute::CAttribute(const CAttribute& other) = default;
CAttribute::~CAttribute() = default;

CAttribute* CAttribute::Clone() const { return new CAttribute(*this); }

const std::string& CAttribute::GetName() const { return m_name; }
const std::string& CAttribute::GetValue() const { return m_value; }
std::string CAttribute::GetNamespace() const { return m_namespaceUri; }
std::string CAttribute::GetTargetNamespace() const { return m_namespaceUri; }

void CAttribute::ToXml_Int(CXmlWriter* writer, bool, const char*, const CSerializationContext&,
                           bool) const {
    writer->WriteAttributeString(m_name, m_namespaceUri, m_value, ItemType_string);
}

CXmlElement* CAttribute::FromXml_Int(CXmlElement*, CXmlElement*, const CSerializationContext&,
                                     bool) {
    throw CKxException("This should be done by the collection");
}

}  // namespace KxXmlLib16
