// The untyped (wildcard) member records: the element under the cursor belongs to the member
// when its namespace passes the wildcard's constraint; its whole subtree becomes a CElement.
#include "CElementInfoUntpd.h"

#include "CElement.h"
#include "CElementCol.h"
#include "CKxException.h"
#include "CSerializationContext.h"
#include "CXmlCollection.h"
#include "CXmlElement.h"
#include "CXmlGeneratedClass.h"
#include "FormatString.h"
#include "KxVariant.h"

namespace KxXmlLib16Data {

using namespace KxXmlLib16;

namespace {

std::string Str(const char* text) { return text ? std::string(text) : std::string(); }

// The wildcard of one record, as the reading helpers need it.
struct Wildcard {
    const std::string& constraint;
    const std::string& targetNamespace;

    // A wildcard has no name to match, so IgnoreNamespaces lets any element through.
    bool Admits(const CSerializationContext& ctx, const CXmlElement* element) const {
        return element && (ctx.GetIgnoreNamespaces() ||
                           CElementCol::IsElementNamespaceAdmitted(element->GetNamespaceURI(),
                                                                   constraint, targetNamespace));
    }
    // Optional members also take an element in the wildcard's default namespace (worked out
    // from the parent's namespace): an "##other" wildcard whose target namespace was left
    // empty then still treats unqualified elements under a qualified parent as foreign.
    bool AdmitsOptional(const CSerializationContext& ctx, const CXmlElement* element,
                        const char* parentNamespace) const {
        if (Admits(ctx, element)) return true;
        return element && element->GetNamespaceURI() ==
                              CElementInfo::GetAnyDefaultNamespace(constraint.c_str(),
                                                                   parentNamespace,
                                                                   targetNamespace.c_str());
    }
};

// Reads the element under the cursor into a new CElement, stores it in the member and moves
// the cursor to the next sibling.
void ReadElement(const CElementInfo& info, const CSerializationContext& ctx,
                 CXmlGeneratedClass* object, CXmlElement** cursor) {
    CXmlElement* element = *cursor;
    CSmartPtr<CElement> value(
        new CElement(element->GetLocalName().c_str(), element->GetNamespaceURI().c_str()));
    value->FromXml_Int(element, element->GetFirstElement(), ctx, false);
    KxVariant variant;
    variant.SetXmlObject(value);
    info.InvokePropertySet(object, variant, *element);
    *cursor = element->GetNextSiblingElement();
}

// Writes the member's element; answers whether the member held one.
bool WriteElement(const CElementInfo& info, const CSerializationContext& ctx,
                  const CXmlGeneratedClass* object, CXmlWriter* writer) {
    KxVariant value;
    info.ReadProperty(object, value);
    if (!value.IsValid() || value.IsNil()) return false;
    CXmlObjectBase* raw = value.GetXmlObject();
    if (!raw) return false;
    CSmartPtr<CXmlObjectBase> element(raw);
    raw->Release();
    element->ToXml_Int(writer, false, element->GetNamespace().c_str(), ctx, false);
    return true;
}

[[noreturn]] void ThrowMandatory(const CElementInfo& info) {
    throw CKxInvalidParamException(FormatString(
        "The Property [%s] is mandatory, it may not be NULL", info.GetElementName().c_str()));
}

// Reads the run of admitted elements from the cursor into the member's collection; returns the
// first element not taken.
CXmlElement* ReadRun(const CElementInfo& info, const Wildcard& wildcard,
                     const CSerializationContext& ctx, CXmlCollectionBase* collection,
                     CXmlElement* cursor) {
    CXmlCollection* items = dynamic_cast<CXmlCollection*>(collection);
    if (!items)
        throw CKxInvalidStateException(FormatString(
            "The Property [%s] is mandatory, it may not be NULL", info.GetElementName().c_str()));
    items->OnPreRead();
    while (wildcard.Admits(ctx, cursor)) {
        CSmartPtr<CElement> item(
            new CElement(cursor->GetLocalName().c_str(), cursor->GetNamespaceURI().c_str()));
        item->FromXml_Int(cursor, cursor->GetFirstElement(), ctx, false);
        items->AppendItem(item);
        cursor = cursor->GetNextSiblingElement();
    }
    return cursor;
}

}  // namespace

#define KX_UNTPD_CTOR_DEF(Class, Base)                                                         \
    Class::Class(const char* name, const char* namespaceUri, int memberId,                     \
                 const char* namespaceConstraint, const char* targetNamespace)                 \
        : Base(name, namespaceUri, memberId),                                                  \
          m_constraint(Str(namespaceConstraint)),                                              \
          m_targetNamespace(Str(targetNamespace)) {}

KX_UNTPD_CTOR_DEF(CElementInfoSeqUntpdMnd, CElementInfo)
KX_UNTPD_CTOR_DEF(CElementInfoSeqUntpdOpt, CElementInfo)
KX_UNTPD_CTOR_DEF(CElementInfoSeqUntpdCol, CElementInfoSeqCol)
KX_UNTPD_CTOR_DEF(CElementInfoChoiceUntpdOpt, CElementInfo)
KX_UNTPD_CTOR_DEF(CElementInfoChoiceUntpdCol, CElementInfoChoiceCol)
KX_UNTPD_CTOR_DEF(CElementInfoAllUntpdMnd, CElementInfo)
KX_UNTPD_CTOR_DEF(CElementInfoAllUntpdOpt, CElementInfo)
KX_UNTPD_CTOR_DEF(CElementInfoAllUntpdCol, CElementInfoAllCol)

// ---- writing -----------------------------------------------------------------------------------

#define KX_UNTPD_TO_XML(Class)                                                                 \
    bool Class::ElementToXml(const CSerializationContext& ctx, const CXmlGeneratedClass* object, \
                             CXmlWriter* writer) const

KX_UNTPD_TO_XML(CElementInfoSeqUntpdMnd) {
    if (!WriteElement(*this, ctx, object, writer)) ThrowMandatory(*this);
    return true;
}
KX_UNTPD_TO_XML(CElementInfoSeqUntpdOpt) { return WriteElement(*this, ctx, object, writer); }
KX_UNTPD_TO_XML(CElementInfoChoiceUntpdOpt) { return WriteElement(*this, ctx, object, writer); }
KX_UNTPD_TO_XML(CElementInfoAllUntpdMnd) {
    if (!WriteElement(*this, ctx, object, writer)) ThrowMandatory(*this);
    return true;
}
KX_UNTPD_TO_XML(CElementInfoAllUntpdOpt) { return WriteElement(*this, ctx, object, writer); }

// ---- reading -----------------------------------------------------------------------------------

#define KX_UNTPD_FROM_XML_DEF(Class)                                                           \
    bool Class::ElementFromXml(const CSerializationContext& ctx, CXmlGeneratedClass* object,   \
                               CXmlElement* parent, CXmlElement** cursor,                      \
                               const char* parentNamespace, XmlElementType elementType)

// Like the mandatory primitive members, except that any admitted element will do. An element
// the constraint excludes is reported as a namespace error; with nothing left the message
// names the constraint (the namespaces the member would have taken).
KX_UNTPD_FROM_XML_DEF(CElementInfoSeqUntpdMnd) {
    (void)parentNamespace;
    const Wildcard wildcard{m_constraint, m_targetNamespace};
    for (;;) {
        if (wildcard.Admits(ctx, *cursor)) {
            ReadElement(*this, ctx, object, cursor);
            return true;
        }
        if (elementType != 0) {
            // A content-only class: the element may be someone else's.
            if (!ctx.GetIgnoreUnknownElements() || !*cursor) return false;
        } else {
            if (ctx.GetIgnoreMissingMandatoryElements()) return true;
            if (!*cursor)
                throw CKxValidationException(
                    FormatString("Failed to find the required element from namespace [%s].",
                                 m_constraint.c_str()),
                    parent->GetXPath());
            if (!ctx.GetIgnoreUnknownElements())
                throw CKxInvalidNamespaceException(
                    FormatString("Invalid namespace [%s]. The namespace must be one of [%s] "
                                 "where the target namespace is [%s].",
                                 (*cursor)->GetNamespaceURI().c_str(), m_constraint.c_str(),
                                 m_targetNamespace.c_str()),
                    "");
        }
        *cursor = (*cursor)->GetNextSiblingElement();
    }
}

KX_UNTPD_FROM_XML_DEF(CElementInfoSeqUntpdOpt) {
    (void)parent, (void)elementType;
    const Wildcard wildcard{m_constraint, m_targetNamespace};
    if (wildcard.AdmitsOptional(ctx, *cursor, parentNamespace))
        ReadElement(*this, ctx, object, cursor);
    return true;
}

KX_UNTPD_FROM_XML_DEF(CElementInfoChoiceUntpdOpt) {
    (void)parent, (void)elementType;
    const Wildcard wildcard{m_constraint, m_targetNamespace};
    if (!wildcard.AdmitsOptional(ctx, *cursor, parentNamespace)) return false;
    ReadElement(*this, ctx, object, cursor);
    return true;
}

bool CElementInfoChoiceUntpdOpt::IsOptionalChoiceBranch(const CXmlGeneratedClass*) const {
    return true;
}

KX_UNTPD_FROM_XML_DEF(CElementInfoAllUntpdMnd) {
    (void)parent, (void)parentNamespace, (void)elementType;
    const Wildcard wildcard{m_constraint, m_targetNamespace};
    if (!wildcard.Admits(ctx, *cursor)) return false;
    ReadElement(*this, ctx, object, cursor);
    return true;
}

KX_UNTPD_FROM_XML_DEF(CElementInfoAllUntpdOpt) {
    (void)parent, (void)elementType;
    const Wildcard wildcard{m_constraint, m_targetNamespace};
    if (!wildcard.AdmitsOptional(ctx, *cursor, parentNamespace)) return false;
    ReadElement(*this, ctx, object, cursor);
    return true;
}

KX_UNTPD_FROM_XML_DEF(CElementInfoSeqUntpdCol) {
    (void)parentNamespace;
    (void)parent;
    const Wildcard wildcard{m_constraint, m_targetNamespace};
    CSmartPtr<CXmlCollectionBase> collection = GetCollection(object);
    *cursor = ReadRun(*this, wildcard, ctx, collection, *cursor);
    if (elementType != 0) return collection->IsValidCount(ctx);
    collection->ValidateCount(ctx);
    return true;
}

KX_UNTPD_FROM_XML_DEF(CElementInfoChoiceUntpdCol) {
    (void)parentNamespace;
    (void)parent;
    const Wildcard wildcard{m_constraint, m_targetNamespace};
    CSmartPtr<CXmlCollectionBase> collection = GetCollection(object);
    CXmlElement* next = ReadRun(*this, wildcard, ctx, collection, *cursor);
    if (next == *cursor) return false;
    if (elementType != 0 && !collection->IsValidCount(ctx)) return false;
    *cursor = next;
    if (elementType == 0) collection->ValidateCount(ctx);
    return true;
}

// ---- all-group presence ------------------------------------------------------------------------

bool CElementInfoAllUntpdMnd::Validate(const CSerializationContext&, const CXmlGeneratedClass*,
                                       bool found, bool required) const {
    if (required && !found)
        throw CKxValidationException(FormatString("Failed to find the mandatory element [%s].",
                                                  GetElementName().c_str()),
                                     "");
    return found;
}

bool CElementInfoAllUntpdOpt::Validate(const CSerializationContext&, const CXmlGeneratedClass*,
                                       bool, bool) const {
    return true;
}

}  // namespace KxXmlLib16Data
