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
    : CXmlCollection("", CollectionNamespace(Str(namespaceUri), Str(constraint)).c_str(), 0, -1),
      m_constraint(Str(constraint)),
      m_targetNamespace(Str(targetNamespace)) {}

CAttributeCol::~CAttributeCol() = default;

CAttributeCol* CAttributeCol::Clone() const {
    std::unique_ptr<CAttributeCol> copy(
        new CAttributeCol(m_namespace.c_str(), m_constraint.c_str(), m_targetNamespace.c_str()));
    copy->SetElementName(GetElementName().c_str());
    for (CNode* node = GetHead(); node; node = node->m_next) {
        if (auto* attribute = dynamic_cast<const CAttribute*>(node->m_item)) {
            copy->Add(attribute->Clone());
        }
    }
    return copy.release();
}

CSmartPtr<CAttribute> CAttributeCol::Add(const char* name, const char* value,
                                         const char* namespaceUri) {
    CXmlObjectHelper::TestNamespace(Str(namespaceUri), m_constraint, m_targetNamespace);
    CSmartPtr<CAttribute> attribute(new CAttribute(name, value, namespaceUri));
    AppendItem(attribute);
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
    AppendItem(attribute);
}

CSmartPtr<CAttribute> CAttributeCol::Item(int index) const {
    return dynamic_cast<CAttribute*>(GetNodeAtIndex(index)->m_item);
}

CAttributeCol::const_iterator CAttributeCol::begin() const { return const_iterator(GetHead()); }
CAttributeCol::const_iterator CAttributeCol::end() const { return const_iterator(nullptr); }

CAttributeCol::const_iterator::const_iterator(const CNode* node) : m_node(node) {}

CSmartPtr<CAttribute> CAttributeCol::const_iterator::operator*() const {
    return dynamic_cast<CAttribute*>(m_node->m_item);
}

CAttributeCol::const_iterator& CAttributeCol::const_iterator::operator++() {
    m_node = m_node->m_next;
    return *this;
}

CAttributeCol::const_iterator CAttributeCol::const_iterator::operator++(int) {
    const_iterator before = *this;
    m_node = m_node->m_next;
    return before;
}

bool CAttributeCol::const_iterator::operator==(const const_iterator& other) const {
    return m_node == other.m_node;
}

bool CAttributeCol::const_iterator::operator!=(const const_iterator& other) const {
    return m_node != other.m_node;
}

std::string CAttributeCol::GetNamespace() const { return m_namespace; }
std::string CAttributeCol::GetTargetNamespace() const { return m_targetNamespace; }

void CAttributeCol::ToXml_Int(CXmlWriter* writer, bool, const char* ns,
                              const CSerializationContext& ctx, bool) const {
    for (CNode* node = GetHead(); node; node = node->m_next) {
        node->m_item->ToXml_Int(writer, false, ns, ctx, false);
    }
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
