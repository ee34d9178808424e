// CElementCol: a collection of untyped elements, limited to the namespaces a wildcard admits.
#include "CElementCol.h"

#include <memory>
#include <sstream>

#include "CKxException.h"
#include "CXmlElement.h"
#include "FormatString.h"
#include "CXmlObjectHelper.h"

namespace KxXmlLib16 {

namespace {
std::string Str(const char* text) { return text ? std::string(text) : std::string(); }
}  // namespace

CElementCol::CElementCol(const char* namespaceConstraint, const char* targetNamespace,
                         int minOccurs, int maxOccurs)
    : CXmlCollection("", "", minOccurs, maxOccurs),
      m_constraint(Str(namespaceConstraint)),
      m_targetNamespace(Str(targetNamespace)) {}

CElementCol* CElementCol::Clone() const {
    std::unique_ptr<CElementCol> copy(new CElementCol(m_constraint.c_str(),
                                                      m_targetNamespace.c_str(), GetMinOccurs(),
                                                      GetMaxOccurs()));
    copy->SetElementName(GetElementName().c_str());
    for (CNode* node = GetHead(); node; node = node->m_next) {
        if (auto* element = dynamic_cast<const CElement*>(node->m_item))
            copy->AppendItem(element->Clone());
    }
    return copy.release();
}

CSmartPtr<CElement> CElementCol::GetItem(int index) const {
    return CSmartPtr<CElement>(dynamic_cast<CElement*>(GetNodeAtIndex(index)->m_item));
}

CSmartPtr<CElement> CElementCol::Add(const char* name, const char* namespaceUri) {
    if (!IsElementNamespaceAdmitted(Str(namespaceUri), m_constraint, m_targetNamespace))
        throw CKxInvalidNamespaceException(
            FormatString("Invalid namespace [%s]. The namespace must be one of [%s] where the "
                         "target namespace is [%s].",
                         Str(namespaceUri).c_str(), m_constraint.c_str(),
                         m_targetNamespace.c_str()),
            "");
    CSmartPtr<CElement> element(new CElement(name, namespaceUri));
    AppendItem(element);
    return element;
}

CSmartPtr<CXmlObjectBase> CElementCol::CreateItem(CXmlElement* element) {
    if (!element ||
        !IsElementNamespaceAdmitted(element->GetNamespaceURI(), m_constraint, m_targetNamespace))
        return nullptr;
    return CSmartPtr<CXmlObjectBase>(
        new CElement(element->GetLocalName().c_str(), element->GetNamespaceURI().c_str()));
}

bool CElementCol::IsElementNamespaceAdmitted(const std::string& namespaceUri,
                                             const std::string& constraint,
                                             const std::string& targetNamespace) {
    bool hashToken = false;
    bool listed = false;
    std::istringstream tokens(constraint);
    for (std::string token; tokens >> token;) {
        if (token.compare(0, 2, "##") == 0)
            hashToken = true;
        else if (token == namespaceUri)
            listed = true;
    }
    if (namespaceUri.empty() && !hashToken) return false;
    return listed || CXmlObjectHelper::IsNamespaceValid(namespaceUri, constraint, targetNamespace);
}

const std::string& CElementCol::GetNamespaceConstraint() const { return m_constraint; }
const std::string& CElementCol::GetTargetNamespaceOfAny() const { return m_targetNamespace; }

}  // namespace KxXmlLib16
