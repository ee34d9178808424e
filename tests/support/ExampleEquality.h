// Object factories and equality checks for round-trip tests of the sample bindings in
// examples/: a case names the class to read into and how to compare the object read back.
#ifndef KX_TESTS_EXAMPLEEQUALITY_H
#define KX_TESTS_EXAMPLEEQUALITY_H

#include <functional>

#include "FlatBindings.h"
#include "KxXmlLib16.h"
#include "TestSchemaBindings.h"

namespace KxExampleTest {

using namespace KxXmlLib16;

using Factory = std::function<CSmartPtr<CXmlObjectBase>()>;
using Equality = std::function<bool(const CXmlObjectBase&, const CXmlObjectBase&)>;

template <typename T>
Factory Make() {
    return [] { return CSmartPtr<CXmlObjectBase>(new T()); };
}

// Both objects are of class T and equal by T's operator==.
template <typename T>
Equality ByOperator() {
    return [](const CXmlObjectBase& a, const CXmlObjectBase& b) {
        const T* x = dynamic_cast<const T*>(&a);
        const T* y = dynamic_cast<const T*>(&b);
        return x != nullptr && y != nullptr && *x == *y;
    };
}

template <typename T>
inline bool SameChild(const CSmartPtr<T>& a, const CSmartPtr<T>& b) {
    if (a == nullptr || b == nullptr) return a == b;
    return *a == *b;
}

// Field-by-field equality of the classes that have no operator==.
inline bool SameBranchFields(const KxTestSchema::CBranch& x, const KxTestSchema::CBranch& y) {
    return SameChild(x.m_part, y.m_part);
}
inline bool SameBranch(const CXmlObjectBase& a, const CXmlObjectBase& b) {
    return SameBranchFields(dynamic_cast<const KxTestSchema::CBranch&>(a),
                            dynamic_cast<const KxTestSchema::CBranch&>(b));
}
inline bool SameTree(const CXmlObjectBase& a, const CXmlObjectBase& b) {
    const auto& x = dynamic_cast<const KxTestSchema::CTree&>(a);
    const auto& y = dynamic_cast<const KxTestSchema::CTree&>(b);
    if (x.m_branch == nullptr || y.m_branch == nullptr) return x.m_branch == y.m_branch;
    return SameBranchFields(*x.m_branch, *y.m_branch);
}
inline bool SameBox(const CXmlObjectBase& a, const CXmlObjectBase& b) {
    const auto& x = dynamic_cast<const KxTestSchema::CBox&>(a);
    const auto& y = dynamic_cast<const KxTestSchema::CBox&>(b);
    return x.m_name == y.m_name && x.m_hasName == y.m_hasName && x.m_id == y.m_id &&
           x.m_hasId == y.m_hasId && x.m_comment == y.m_comment &&
           x.m_hasComment == y.m_hasComment && SameChild(x.m_dimensions, y.m_dimensions) &&
           SameChild(x.m_localPart, y.m_localPart);
}
inline bool SameNilHolder(const CXmlObjectBase& a, const CXmlObjectBase& b) {
    const auto& x = dynamic_cast<const KxTestSchema::CNilHolder&>(a);
    const auto& y = dynamic_cast<const KxTestSchema::CNilHolder&>(b);
    return SameChild(x.m_maybe, y.m_maybe) && x.m_plainNil == y.m_plainNil &&
           SameChild(x.m_plain, y.m_plain);
}
inline bool SameFlatLine(const CXmlObjectBase& a, const CXmlObjectBase& b) {
    const auto& x = dynamic_cast<const KxExamples::CLine&>(a);
    const auto& y = dynamic_cast<const KxExamples::CLine&>(b);
    if (x.m_tags->GetCount() != y.m_tags->GetCount()) return false;
    for (int i = 0; i < x.m_tags->GetCount(); ++i)
        if (x.m_tags->Item(i) != y.m_tags->Item(i)) return false;
    return x.m_sku == y.m_sku && x.m_hasSku == y.m_hasSku && x.m_quantity == y.m_quantity &&
           x.m_hasQuantity == y.m_hasQuantity && x.m_quantityNil == y.m_quantityNil &&
           x.m_note == y.m_note && x.m_hasNote == y.m_hasNote && x.m_id == y.m_id &&
           x.m_hasId == y.m_hasId;
}
inline bool SameFlatPayment(const CXmlObjectBase& a, const CXmlObjectBase& b) {
    const auto& x = dynamic_cast<const KxExamples::CPayment&>(a);
    const auto& y = dynamic_cast<const KxExamples::CPayment&>(b);
    return x.m_card == y.m_card && x.m_hasCard == y.m_hasCard && x.m_invoice == y.m_invoice &&
           x.m_hasInvoice == y.m_hasInvoice;
}
inline bool SameFlatAddress(const CXmlObjectBase& a, const CXmlObjectBase& b) {
    const auto& x = dynamic_cast<const KxExamples::CAddress&>(a);
    const auto& y = dynamic_cast<const KxExamples::CAddress&>(b);
    return x.m_street == y.m_street && x.m_city == y.m_city && x.m_country == y.m_country &&
           x.m_hasStreet == y.m_hasStreet && x.m_hasCity == y.m_hasCity &&
           x.m_hasCountry == y.m_hasCountry;
}
// The wildcard classes hold untyped trees, compared through the XML they write.
inline bool ByXmlOnly(const CXmlObjectBase&, const CXmlObjectBase&) { return true; }

}  // namespace KxExampleTest

#endif
