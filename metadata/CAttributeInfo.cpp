// The attribute record base: matching, property access and the static forwarders.
#include "CAttributeInfo.h"

#include "CKxException.h"
#include "CSerializationContext.h"
#include "CXmlElement.h"
#include "CXmlGeneratedClass.h"
#include "CXmlObjectHelper.h"
#include "FormatString.h"
#include "KxVariant.h"

namespace KxXmlLib16Data {

using namespace KxXmlLib16;

namespace {
std::string OrEmpty(const char* text) { return text ? std::string(text) : std::string(); }
}  // namespace

CAttributeInfo::CAttributeInfo(const char* name, const char* namespaceUri, int memberId,
                               bool optional, const char* defaultValue)
    : m_name(OrEmpty(name)),
      m_namespace(OrEmpty(namespaceUri)),
      m_memberId(memberId),
      m_optional(optional),
      m_defaultValue(OrEmpty(defaultValue)) {}

CAttributeInfo::~CAttributeInfo() = default;

const std::string& CAttributeInfo::GetAttributeName() const { return m_name; }
const std::string& CAttributeInfo::GetNamespace() const { return m_namespace; }
int CAttributeInfo::GetMemberId() const { return m_memberId; }
bool CAttributeInfo::IsOptional() const { return m_optional; }
const std::string& CAttributeInfo::GetDefaultValue() const { return m_defaultValue; }

bool CAttributeInfo::IsThisAttribute(const CSerializationContext& ctx,
                                     CXmlAttribute* attribute) const {
    if (attribute == nullptr || attribute->GetLocalName() != m_name) return false;
    if (ctx.GetIgnoreNamespaces()) return true;
    return attribute->GetNamespaceURI() == m_namespace;
}

void CAttributeInfo::InvokePropertyGet(CXmlGeneratedClass* object, KxVariant& value) const {
    try {
        object->InvokeProperty(m_memberId, true, value);
    } catch (const CKxException& e) {
        throw CKxValidationException(
            FormatString("Failed to get the property value for [%s].", m_name.c_str()), "", e);
    }
}

void CAttributeInfo::InvokePropertySet(CXmlGeneratedClass* object, KxVariant& value,
                                       const CXmlAttribute& attribute) const {
    try {
        object->InvokeProperty(m_memberId, false, value);
    } catch (const CKxException& e) {
        throw CKxValidationException(
            FormatString("Failed to set the property value [%s].", attribute.GetValue().c_str()),
            attribute.GetXPath(), e);
    }
}

void CAttributeInfo::ReadProperty(const CXmlGeneratedClass* object, KxVariant& value) const {
    // The generated accessor has a single non-const entry point; a get leaves the object as it is.
    InvokePropertyGet(const_cast<CXmlGeneratedClass*>(object), value);
}

bool CAttributeInfo::TestNamespace(const std::string& ns, const std::string& constraint,
                                   const std::string& targetNamespace) {
    return CXmlObjectHelper::TestNamespace(ns, constraint, targetNamespace);
}

bool CAttributeInfo::IsNamespaceValid(const std::string& ns, const std::string& constraint,
                                      const std::string& targetNamespace) {
    return CXmlObjectHelper::IsNamespaceValid(ns, constraint, targetNamespace);
}

std::string CAttributeInfo::GetTargetNamespace(const CXmlObjectBase* object) {
    return object->GetTargetNamespace();
}

void CAttributeInfo::ToXml_Int(const CXmlObjectBase* child, CXmlWriter* writer, bool isRoot,
                               const char* ns, const CSerializationContext& ctx) {
    child->ToXml_Int(writer, isRoot, ns, ctx, false);
}

}  // namespace KxXmlLib16Data
