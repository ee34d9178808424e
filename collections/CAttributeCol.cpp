#include "CAttributeCol.h"

#include <memory>

#include "CKxException.h"
#include "CXmlElement.h"
#include "CXmlObjectHelper.h"
#include "FormatString.h"

namespace KxXmlLib16 {

namespace {

std::string Str(const char* text) { return text ? std::string(text) : std::string(); }

// The namespace of attributes added by name: a wildcard whose constraint starts with a plain
// URI gives them that URI unless the caller named one.
std::string CollectionNamespace(const std::string& namespaceUri, const std::string& constraint) {
    const std::string token = constraint.substr(0, constraint.find(' '));
    if (namespaceUri.empty() && token.size() >= 2 && token[0] != '#' && token[1] != '#') {
        return token;
    }
    return namespaceUri;
}

}  // namespace

CAttributeCol::CAttributeCol(const char* namespaceUri, const char* constraint,
                             const char* targetNamespace)
    : m_namespace(CollectionNamespace(Str(namespaceUri), Str(constraint))),
      m_constraint(Str(constraint)),
      m_targetNamespace(Str(targetNamespace)) {}

CAttributeCol::~CAttributeCol() = default;

CAttributeCol* CAttributeCol::Clone() const {
    std::unique_ptr<CAttributeCol> copy(
        new CAttributeCol(m_namespace.c_str(), m_constraint.c_str(), m_targetNamespace.c_str()));
    copy->SetElementName(GetElementName().c_str());
    for (const auto& item : m_items) copy->Add(item->Clone());
    return copy.release();
}

CSmartPtr<CAttribute> CAttributeCol::Add(const char* name, const char* value,
                                         const char* namespaceUri) {
    CXmlObjectHelper::TestNamespace(Str(namespaceUri), m_constraint, m_targetNamespace);
    CSmartPtr<CAttribute> attribute(new CAttribute(name, value, namespaceUri));
    m_items.push_back(attribute);
    return attribute;
}

CSmartPtr<CAttribute> CAttributeCol::Add(const char* name, const char* value) {
    return Add(name, value, m_namespace.c_str());
}

CSmartPtr<CAttribute> CAttributeCol::Add(const char* name) {
    return Add(name, "", m_namespace.c_str());
}

void CAttributeCol::Add(CAttribute* attribute) {
    if (!attribute) throw CKxInvalidParamException("Attribute is NULL");
    m_items.emplace_back(attribute);
}

void CAttributeCol::CheckIndex(int index) const {
    if (index < 0 || index >= GetCount()) {
        throw CKxInvalidParamException(
            FormatString("Index %d is out of range, use 0 - %d", index, GetCount()));
    }
}

CSmartPtr<CAttribute> CAttributeCol::Item(int index) const {
    CheckIndex(index);
    return m_items[static_cast<size_t>(index)];
}

void CAttributeCol::Remove(int index) {
    CheckIndex(index);
    m_items.erase(m_items.begin() + index);
}

void CAttributeCol::Clear() { m_items.clear(); }

int CAttributeCol::GetCount() const { return static_cast<int>(m_items.size()); }

CAttributeCol::const_iterator CAttributeCol::begin() const { return m_items.begin(); }
CAttributeCol::const_iterator CAttributeCol::end() const { return m_items.end(); }

std::string CAttributeCol::GetNamespace() const { return m_namespace; }
std::string CAttributeCol::GetTargetNamespace() const { return m_targetNamespace; }

void CAttributeCol::ToXml_Int(CXmlWriter* writer, bool, const char* ns,
                              const CSerializationContext& ctx, bool) const {
    for (const auto& item : m_items) item->ToXml_Int(writer, false, ns, ctx, false);
}

CXmlElement* CAttributeCol::FromXml_Int(CXmlElement* element, CXmlElement* firstChild,
                                        const CSerializationContext&, bool) {
    for (const CXmlAttribute* attribute : element->GetAttributes()) {
        if (!CXmlObjectHelper::IsNamespaceValid(attribute->GetNamespaceURI(), m_constraint,
                                                m_targetNamespace)) {
            throw CKxInvalidNamespaceException(
                FormatString("Invalid Attribute [%s]. The attributes namespace is Inappropriate.",
                             attribute->GetLocalName().c_str()),
                element->GetXPath());
        }
        Add(attribute->GetLocalName().c_str(), attribute->GetValue().c_str(),
            attribute->GetNamespaceURI().c_str());
    }
    return firstChild;
}
const std::string& CAttributeCol::GetNamespaceRule() const { return m_constraint; }
const std::string& CAttributeCol::GetRuleTargetNamespace() const { return m_targetNamespace; }

}  // namespace KxXmlLib16
