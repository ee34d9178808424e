// CElementCol: a collection of untyped elements (repeated xs:any, or an element's children).
#ifndef KX_CELEMENTCOL_H
#define KX_CELEMENTCOL_H

#include "CElement.h"
#include "CSmartPtr.h"
#include "CXmlCollection.h"
#include "KxConfig.h"

namespace KxXmlLib16 {

// Items are CElement objects; while reading, an element is an item when its namespace passes
// the collection's constraint (IsElementNamespaceAdmitted; CreateItem gives null otherwise),
// so the items are the run of consecutive such elements.
class KX_EXPORT CElementCol : public CXmlCollection {
public:
    // 0 .. unbounded items; `namespaceConstraint` and `targetNamespace` say which namespaces
    // the items may come from (see CXmlObjectHelper::IsNamespaceValid); "##any" admits all.
    CElementCol(const char* namespaceConstraint = "##any", const char* targetNamespace = "",
                int minOccurs = 0, int maxOccurs = -1);
    // A deep copy with reference count 0.
    CElementCol* Clone() const override;

    // The item at `index` (throws as CXmlCollection::GetNodeAtIndex).
    CSmartPtr<CElement> GetItem(int index) const;
    // Appends a new element and returns it. Throws CKxInvalidNamespaceException "Invalid
    // namespace [%s]. The namespace must be one of [%s] where the target namespace is [%s]."
    // for a namespace the constraint excludes.
    CSmartPtr<CElement> Add(const char* name, const char* namespaceUri);

    // A new, empty CElement named after `element` when its namespace passes the constraint;
    // null otherwise (and for null).
    CSmartPtr<CXmlObjectBase> CreateItem(CXmlElement* element) override;

    // Whether an element from `namespaceUri` may be taken by a wildcard with `constraint`:
    // CXmlObjectHelper::IsNamespaceValid, corrected for lists of URIs the way schemas mean
    // them: an unqualified element needs a "##" token that admits it (a plain URI does not),
    // and a qualified one also passes when it equals any URI of the list. Never throws.
    static bool IsElementNamespaceAdmitted(const std::string& namespaceUri,
                                           const std::string& constraint,
                                           const std::string& targetNamespace);

    const std::string& GetNamespaceConstraint() const;
    const std::string& GetTargetNamespaceOfAny() const;

private:
    std::string m_constraint;
    std::string m_targetNamespace;
};

}  // namespace KxXmlLib16

#endif
