// The class and abstract-class member records: a child object created through the schema's
// factory, written and read by its own engine.
#include "CElementInfoCls.h"

#include <strings.h>

#include "CAttributeInfo.h"
#include "CKxException.h"
#include "CSerializationContext.h"
#include "CXmlCollection.h"
#include "CXmlElement.h"
#include "CXmlGeneratedClass.h"
#include "CXmlWriter.h"
#include "FormatString.h"
#include "INillable.h"
#include "KxVariant.h"

namespace KxXmlLib16Data {

using namespace KxXmlLib16;

namespace {

// The object a variant refers to; the reference the getter adds goes to the smart pointer.
CSmartPtr<CXmlObjectBase> TakeObject(const KxVariant& value) {
    if (!value.IsValid() || value.IsNil()) return nullptr;
    CXmlObjectBase* raw = value.GetXmlObject();
    CSmartPtr<CXmlObjectBase> object(raw);
    if (raw) raw->Release();
    return object;
}

[[noreturn]] void ThrowNoSubstitution(const CElementInfo& info, const CXmlElement& element) {
    throw CKxValidationException(FormatString("Failed to find a suitable substitution element "
                                              "for [%s].",
                                              info.GetElementName().c_str()),
                                 element.GetXPath());
}

// Whether the element carries xsi:nil with a true value ("true" or "1", any case).
bool HasNilTrue(const CXmlElement& element) {
    for (const CXmlAttribute* attribute : element.GetAttributes()) {
        if (!attribute->IsNilAttribute()) continue;
        const std::string& value = attribute->GetValue();
        return strcasecmp(value.c_str(), "true") == 0 || value == "1";
    }
    return false;
}

// A child for an abstract member, or null when the element is not one of its substitutes. An
// element of another name than the member's belongs to it only when the factory picked a
// class for that very name (a substitution-group member); an element of the member's own name
// is taken whatever class the factory picked for it (its xsi:type).
CSmartPtr<CXmlObjectBase> CreateSubstitute(const CChildClassInfo& child, CXmlElement* element,
                                           bool named) {
    if (!child.m_createFromElement) return nullptr;
    CSmartPtr<CXmlObjectBase> created = child.m_createFromElement(element);
    if (created && !named && created->GetElementName() != element->GetLocalName())
        return nullptr;
    return created;
}

// A new child of the declared class, named after the member.
CSmartPtr<CXmlObjectBase> CreateDeclared(const CElementInfo& info, const CChildClassInfo& child) {
    CSmartPtr<CXmlObjectBase> created =
        child.m_createByClass ? child.m_createByClass(child.m_classId, info.GetElementName().c_str())
                              : nullptr;
    if (!created)
        throw CKxException(FormatString("The class factory created no object for the element "
                                        "[%s] (class id %d).",
                                        info.GetElementName().c_str(), child.m_classId));
    return created;
}

void StoreChild(const CElementInfo& info, CXmlGeneratedClass* object,
                CXmlObjectBase* child, const CXmlElement& element) {
    KxVariant value;
    value.SetXmlObject(child);
    info.InvokePropertySet(object, value, element);
}

// Inside a content-only sequence a mandatory simple member that is missing only declines (the
// parent may own the element), so once the group has been read its mandatory simple members
// must hold a value.
void CheckGroupComplete(const CSerializationContext& ctx, CXmlObjectBase* target,
                        const CXmlElement& parent) {
    const CXmlGeneratedClass* group = dynamic_cast<const CXmlGeneratedClass*>(target);
    if (!group || ctx.GetIgnoreMissingMandatoryElements() ||
        group->GetClassInfo()->GetGroupType() != XmlElementGroupType_Sequence)
        return;
    for (CElementInfo** record = group->GetClassElementInfo(); record && *record; ++record) {
        if (!dynamic_cast<const CElementInfoSeqPrimMnd*>(*record) &&
            !dynamic_cast<const CElementInfoSeqEnumMnd*>(*record))
            continue;
        KxVariant value;
        (*record)->ReadProperty(group, value);
        if (!value.IsValid() && !value.IsNil())
            throw CKxValidationException(
                FormatString("Failed to find the required child element [%s].",
                             (*record)->GetElementName().c_str()),
                parent.GetXPath());
    }
}

// A content-only child reads from the cursor inside the parent's element. Answers whether it
// consumed anything; the cursor moves past what it read. A mandatory child must be complete;
// an optional one only when it consumed something.
bool ReadGroup(const CElementInfo& info, CXmlObjectBase* target, bool store, bool mandatory,
               const CSerializationContext& ctx, CXmlGeneratedClass* object,
               CXmlElement* parent, CXmlElement** cursor) {
    CXmlElement* next = target->FromXml_Int(parent, *cursor, ctx, true);
    if (mandatory || next != *cursor) CheckGroupComplete(ctx, target, *parent);
    if (next == *cursor) return false;
    if (store) StoreChild(info, object, target, *parent);
    *cursor = next;
    return true;
}

// Reads `element` into the member: into the held child (declared class) or a new one.
void ReadElementInto(const CElementInfo& info, const CChildClassInfo& child,
                     CSmartPtr<CXmlObjectBase> target, const CSerializationContext& ctx,
                     CXmlGeneratedClass* object, CXmlElement* element) {
    if (child.m_nillable && HasNilTrue(*element) &&
        !dynamic_cast<INillable*>(target.Ptr()))
    {
        // A nillable member of a class that cannot be nil itself: the member becomes nil.
        KxVariant nil;
        nil.SetNil();
        info.InvokePropertySet(object, nil, *element);
        return;
    }
    target->FromXml_Int(element, element->GetFirstElement(), ctx, false);
    StoreChild(info, object, target, *element);
}

}  // namespace

// ---- shared operations -------------------------------------------------------------------------

bool CElementInfoClsOps::WriteChild(const CElementInfo& info, const CSerializationContext& ctx,
                                    const CXmlGeneratedClass* object, CXmlWriter* writer) {
    KxVariant value;
    info.ReadProperty(object, value);
    if (value.IsNil()) {
        writer->WriteStartElement(info.GetElementName(), info.GetNamespace());
        writer->WriteAttributeNil();
        writer->WriteEndElement();
        return true;
    }
    // `value` holds a reference to the child for the whole call, so the child is used through
    // a plain pointer: each count change takes the object's lock.
    CXmlObjectBase* child = value.IsValid() ? value.GetXmlObject() : nullptr;
    if (!child) return false;
    child->Release();
    // A substituted child (another element name) is written in its own class's namespace.
    if (child->GetElementName() == info.GetElementName()) {
        child->ToXml_Int(writer, false, info.GetNamespace().c_str(), ctx, false);
    } else {
        const std::string ns = child->GetNamespace();
        child->ToXml_Int(writer, false, ns.c_str(), ctx, false);
    }
    return true;
}

void CElementInfoClsOps::WritePseudoChildAttributes(const CElementInfo& info,
                                                    const CChildClassInfo& child,
                                                    const CSerializationContext& ctx,
                                                    const CXmlGeneratedClass* object,
                                                    CXmlWriter* writer) {
    if (child.m_childType == XmlElementType_Element) return;
    KxVariant value;
    info.ReadProperty(object, value);
    CSmartPtr<CXmlObjectBase> held = TakeObject(value);
    if (!held) return;
    if (const CXmlCollection* items = dynamic_cast<const CXmlCollection*>(held.Ptr())) {
        for (const CXmlCollection::CNode* node = items->GetHead(); node; node = node->m_next)
            node->m_item->AttributesToXml_Int(writer, ctx);
        return;
    }
    held->AttributesToXml_Int(writer, ctx);
}

bool CElementInfoClsOps::Matches(const CElementInfo& info, const CChildClassInfo& child,
                                 const CSerializationContext& ctx, CXmlElement* element) {
    if (!element) return false;
    if (info.IsThisElement(ctx, element)) return true;
    return !child.m_createByClass && CreateSubstitute(child, element, false);
}

bool CElementInfoClsOps::ReadNew(const CElementInfo& info, const CChildClassInfo& child,
                                 const CSerializationContext& ctx, CXmlGeneratedClass* object,
                                 CXmlElement* parent, CXmlElement** cursor) {
    if (child.m_childType != XmlElementType_Element)
        return ReadGroup(info, CreateDeclared(info, child), true, false, ctx, object, parent,
                         cursor);
    CXmlElement* element = *cursor;
    if (!element) return false;
    const bool named = info.IsThisElement(ctx, element);
    CSmartPtr<CXmlObjectBase> created;
    if (child.m_createByClass) {
        if (!named) return false;
        created = CreateDeclared(info, child);
    } else {
        created = CreateSubstitute(child, element, named);
        if (!created) {
            if (named) ThrowNoSubstitution(info, *element);
            return false;
        }
    }
    ReadElementInto(info, child, created, ctx, object, element);
    *cursor = element->GetNextSiblingElement();
    return true;
}

bool CElementInfoClsOps::ReadMandatory(const CElementInfo& info, const CChildClassInfo& child,
                                       const CSerializationContext& ctx,
                                       CXmlGeneratedClass* object, CXmlElement* parent,
                                       CXmlElement** cursor, XmlElementType elementType) {
    if (child.m_childType != XmlElementType_Element) {
        KxVariant value;
        info.InvokePropertyGet(object, value);
        CSmartPtr<CXmlObjectBase> held = TakeObject(value);
        const bool store = !held;
        if (!held) held = CreateDeclared(info, child);
        // A content-only child may legitimately consume nothing (all its content optional).
        ReadGroup(info, held, store, true, ctx, object, parent, cursor);
        return true;
    }
    for (;;) {
        CXmlElement* element = *cursor;
        if (element) {
            const bool named = info.IsThisElement(ctx, element);
            CSmartPtr<CXmlObjectBase> target;
            if (child.m_createByClass) {
                if (named) {
                    KxVariant value;
                    info.InvokePropertyGet(object, value);
                    target = TakeObject(value);
                    if (!target) target = CreateDeclared(info, child);
                }
            } else {
                target = CreateSubstitute(child, element, named);
                if (!target && named) ThrowNoSubstitution(info, *element);
            }
            if (target) {
                ReadElementInto(info, child, target, ctx, object, element);
                *cursor = element->GetNextSiblingElement();
                return true;
            }
        }
        if (elementType != XmlElementType_Element) {
            if (!ctx.GetIgnoreUnknownElements() || !element) return false;
        } else {
            if (ctx.GetIgnoreMissingMandatoryElements()) return true;
            if (!ctx.GetIgnoreUnknownElements() || !element)
                throw CKxValidationException(
                    FormatString("Failed to find the required child element [%s].",
                                 info.GetElementName().c_str()),
                    parent ? parent->GetXPath() : std::string());
        }
        *cursor = element->GetNextSiblingElement();
    }
}

bool CElementInfoClsOps::ChildClaimsAttribute(const CElementInfo& info,
                                              const CChildClassInfo& child,
                                              const CSerializationContext& ctx,
                                              const CXmlGeneratedClass* object,
                                              CXmlAttribute* attribute) {
    if (child.m_childType == XmlElementType_Element) return false;
    KxVariant value;
    info.ReadProperty(object, value);
    CSmartPtr<CXmlObjectBase> held = TakeObject(value);
    // An optional content-only child is created only once its content is read: ask a fresh
    // instance of the declared class for its attribute records.
    if (!held && child.m_createByClass) held = child.m_createByClass(child.m_classId, "");
    const CXmlGeneratedClass* generated = dynamic_cast<const CXmlGeneratedClass*>(held.Ptr());
    if (!generated) {
        const CXmlCollection* items = dynamic_cast<const CXmlCollection*>(held.Ptr());
        generated = items && items->GetHead()
                        ? dynamic_cast<const CXmlGeneratedClass*>(items->GetHead()->m_item)
                        : nullptr;
    }
    if (!generated) return false;
    for (CAttributeInfo** record = generated->GetClassAttributeInfo(); record && *record;
         ++record)
        if ((*record)->IsThisAttribute(ctx, attribute)) return true;
    return false;
}

// ---- constructors ------------------------------------------------------------------------------

#define KX_CLS_OPT_DEF(Class)                                                                  \
    Class::Class(const char* name, const char* namespaceUri, int memberId,                     \
                 XmlElementType childType, CreateByClassFunc create, int classId)              \
        : CElementInfo(name, namespaceUri, memberId),                                          \
          m_child{childType, create, nullptr, classId, false} {}
#define KX_CLS_MND_DEF(Class)                                                                  \
    Class::Class(const char* name, const char* namespaceUri, int memberId,                     \
                 XmlElementType childType, CreateByClassFunc create, int classId,              \
                 bool nillable)                                                                \
        : CElementInfo(name, namespaceUri, memberId),                                          \
          m_child{childType, create, nullptr, classId, nillable} {}
#define KX_ABS_OPT_DEF(Class)                                                                  \
    Class::Class(const char* name, const char* namespaceUri, int memberId,                     \
                 XmlElementType childType, CreateFromElementFunc create)                       \
        : CElementInfo(name, namespaceUri, memberId),                                          \
          m_child{childType, nullptr, create, -1, false} {}
#define KX_ABS_MND_DEF(Class)                                                                  \
    Class::Class(const char* name, const char* namespaceUri, int memberId,                     \
                 XmlElementType childType, CreateFromElementFunc create, int baseClassId)      \
        : CElementInfo(name, namespaceUri, memberId),                                          \
          m_child{childType, nullptr, create, baseClassId, false} {}
#define KX_COL_DEF(Class, Base)                                                                \
    Class::Class(const char* name, const char* namespaceUri, int memberId,                     \
                 XmlElementType childType)                                                     \
        : Base(name, namespaceUri, memberId), m_child{childType, nullptr, nullptr, -1, false} {} \
    void Class::PseudoChildAttributeToXml(const CSerializationContext& ctx,                    \
                                          const CXmlGeneratedClass* object,                    \
                                          CXmlWriter* writer) const {                          \
        CElementInfoClsOps::WritePseudoChildAttributes(*this, m_child, ctx, object, writer);   \
    }                                                                                          \
    bool Class::ClaimsParentAttribute(const CSerializationContext& ctx,                        \
                                      const CXmlGeneratedClass* object,                        \
                                      CXmlAttribute* attribute) const {                        \
        return CElementInfoClsOps::ChildClaimsAttribute(*this, m_child, ctx, object, attribute); \
    }

KX_CLS_MND_DEF(CElementInfoSeqClsMnd)
KX_CLS_OPT_DEF(CElementInfoSeqClsOpt)
KX_ABS_MND_DEF(CElementInfoSeqAbsClsMnd)
KX_ABS_OPT_DEF(CElementInfoSeqAbsClsOpt)
KX_CLS_OPT_DEF(CElementInfoChoiceClsOpt)
KX_ABS_OPT_DEF(CElementInfoChoiceAbsClsOpt)
KX_CLS_MND_DEF(CElementInfoAllClsMnd)
KX_CLS_OPT_DEF(CElementInfoAllClsOpt)
KX_ABS_MND_DEF(CElementInfoAllAbsClsMnd)
KX_ABS_OPT_DEF(CElementInfoAllAbsClsOpt)
KX_COL_DEF(CElementInfoSeqClsCol, CElementInfoSeqCol)
KX_COL_DEF(CElementInfoSeqAbsClsCol, CElementInfoSeqCol)
KX_COL_DEF(CElementInfoChoiceClsCol, CElementInfoChoiceCol)
KX_COL_DEF(CElementInfoChoiceAbsClsCol, CElementInfoChoiceCol)
KX_COL_DEF(CElementInfoAllClsCol, CElementInfoAllCol)
KX_COL_DEF(CElementInfoAllAbsClsCol, CElementInfoAllCol)

// ---- writing -----------------------------------------------------------------------------------

#define KX_CLS_TO_XML(Class, Mandatory)                                                        \
    bool Class::ElementToXml(const CSerializationContext& ctx, const CXmlGeneratedClass* object, \
                             CXmlWriter* writer) const {                                       \
        if (CElementInfoClsOps::WriteChild(*this, ctx, object, writer)) return true;           \
        if (Mandatory)                                                                         \
            throw CKxInvalidParamException(                                                    \
                FormatString("The Property [%s] is mandatory, it may not be NULL",             \
                             GetElementName().c_str()));                                       \
        return false;                                                                          \
    }                                                                                          \
    void Class::PseudoChildAttributeToXml(const CSerializationContext& ctx,                    \
                                          const CXmlGeneratedClass* object,                    \
                                          CXmlWriter* writer) const {                          \
        CElementInfoClsOps::WritePseudoChildAttributes(*this, m_child, ctx, object, writer);   \
    }                                                                                          \
    bool Class::ClaimsParentAttribute(const CSerializationContext& ctx,                        \
                                      const CXmlGeneratedClass* object,                        \
                                      CXmlAttribute* attribute) const {                        \
        return CElementInfoClsOps::ChildClaimsAttribute(*this, m_child, ctx, object, attribute); \
    }

KX_CLS_TO_XML(CElementInfoSeqClsMnd, true)
KX_CLS_TO_XML(CElementInfoSeqClsOpt, false)
KX_CLS_TO_XML(CElementInfoSeqAbsClsMnd, true)
KX_CLS_TO_XML(CElementInfoSeqAbsClsOpt, false)
KX_CLS_TO_XML(CElementInfoChoiceClsOpt, false)
KX_CLS_TO_XML(CElementInfoChoiceAbsClsOpt, false)
KX_CLS_TO_XML(CElementInfoAllClsMnd, true)
KX_CLS_TO_XML(CElementInfoAllClsOpt, false)
KX_CLS_TO_XML(CElementInfoAllAbsClsMnd, true)
KX_CLS_TO_XML(CElementInfoAllAbsClsOpt, false)

// ---- reading -----------------------------------------------------------------------------------

#define KX_CLS_FROM_XML(Class)                                                                 \
    bool Class::ElementFromXml(const CSerializationContext& ctx, CXmlGeneratedClass* object,   \
                               CXmlElement* parent, CXmlElement** cursor, const char*,         \
                               XmlElementType elementType)

// Mandatory sequence members search forward like the primitive ones.
KX_CLS_FROM_XML(CElementInfoSeqClsMnd) {
    return CElementInfoClsOps::ReadMandatory(*this, m_child, ctx, object, parent, cursor,
                                             elementType);
}
KX_CLS_FROM_XML(CElementInfoSeqAbsClsMnd) {
    return CElementInfoClsOps::ReadMandatory(*this, m_child, ctx, object, parent, cursor,
                                             elementType);
}
// An absent optional member never stops the sequence.
KX_CLS_FROM_XML(CElementInfoSeqClsOpt) {
    (void)elementType;
    CElementInfoClsOps::ReadNew(*this, m_child, ctx, object, parent, cursor);
    return true;
}
KX_CLS_FROM_XML(CElementInfoSeqAbsClsOpt) {
    (void)elementType;
    CElementInfoClsOps::ReadNew(*this, m_child, ctx, object, parent, cursor);
    return true;
}
// Choice branches and all-group members answer whether the element was theirs.
KX_CLS_FROM_XML(CElementInfoChoiceClsOpt) {
    (void)elementType;
    return CElementInfoClsOps::ReadNew(*this, m_child, ctx, object, parent, cursor);
}
KX_CLS_FROM_XML(CElementInfoChoiceAbsClsOpt) {
    (void)elementType;
    return CElementInfoClsOps::ReadNew(*this, m_child, ctx, object, parent, cursor);
}
KX_CLS_FROM_XML(CElementInfoAllClsOpt) {
    (void)elementType;
    return CElementInfoClsOps::ReadNew(*this, m_child, ctx, object, parent, cursor);
}
KX_CLS_FROM_XML(CElementInfoAllAbsClsOpt) {
    (void)elementType;
    return CElementInfoClsOps::ReadNew(*this, m_child, ctx, object, parent, cursor);
}
// Mandatory all-group members read into the held child when their element comes; a missing
// one is reported by Validate once the whole group is read.
KX_CLS_FROM_XML(CElementInfoAllClsMnd) {
    if (!CElementInfoClsOps::Matches(*this, m_child, ctx, *cursor)) return false;
    return CElementInfoClsOps::ReadMandatory(*this, m_child, ctx, object, parent, cursor,
                                             elementType);
}
KX_CLS_FROM_XML(CElementInfoAllAbsClsMnd) {
    if (!CElementInfoClsOps::Matches(*this, m_child, ctx, *cursor)) return false;
    return CElementInfoClsOps::ReadMandatory(*this, m_child, ctx, object, parent, cursor,
                                             elementType);
}

bool CElementInfoChoiceClsOpt::IsOptionalChoiceBranch(const CXmlGeneratedClass*) const {
    return true;
}
bool CElementInfoChoiceAbsClsOpt::IsOptionalChoiceBranch(const CXmlGeneratedClass*) const {
    return true;
}

#define KX_CLS_VALIDATE_DEF(Class, Mandatory)                                                  \
    bool Class::Validate(const CSerializationContext&, const CXmlGeneratedClass*, bool found,  \
                         bool required) const {                                                \
        if (!(Mandatory)) return true;                                                         \
        if (required && !found)                                                                \
            throw CKxValidationException(FormatString("Failed to find the mandatory element "  \
                                                      "[%s].",                                 \
                                                      GetElementName().c_str()),               \
                                         "");                                                  \
        return found;                                                                          \
    }
KX_CLS_VALIDATE_DEF(CElementInfoAllClsMnd, true)
KX_CLS_VALIDATE_DEF(CElementInfoAllClsOpt, false)
KX_CLS_VALIDATE_DEF(CElementInfoAllAbsClsMnd, true)
KX_CLS_VALIDATE_DEF(CElementInfoAllAbsClsOpt, false)

}  // namespace KxXmlLib16Data
