// The concrete element records: occurrence and content-model rules around the shared bodies.
#include "CElementInfo.h"

#include "CKxException.h"
#include "CSerializationContext.h"
#include "CXmlCollectionBase.h"
#include "CXmlElement.h"
#include "CXmlGeneratedClass.h"
#include "FormatString.h"
#include "KxVariant.h"

namespace KxXmlLib16Data {

using namespace KxXmlLib16;

namespace {

}  // namespace

CSmartPtr<CXmlCollectionBase> CElementInfo::GetCollection(CXmlGeneratedClass* object) const {
    const CElementInfo& info = *this;
    KxVariant value;
    info.InvokePropertyGet(object, value);
    CSmartPtr<CXmlCollectionBase> collection = TakeCollection(value);
    if (!collection)
        throw CKxInvalidStateException(FormatString(
            "The Property [%s] is mandatory, it may not be NULL", info.GetElementName().c_str()));
    return collection;
}

namespace {

[[noreturn]] void ThrowMandatory(const CElementInfo& info) {
    throw CKxInvalidParamException(FormatString(
        "The Property [%s] is mandatory, it may not be NULL", info.GetElementName().c_str()));
}

bool ValidateMandatory(const CElementInfo& info, bool found, bool required) {
    if (required && !found)
        throw CKxValidationException(
            FormatString("Failed to find the mandatory element [%s].",
                         info.GetElementName().c_str()),
            "");
    return found;
}

}  // namespace

#define KX_PRIM_CTOR_DEF(Class)                                                                \
    Class::Class(const char* name, const char* namespaceUri, int memberId, bool nillable,      \
                 ItemType type, const char* format, CWhitespaceUtils::WhitespaceRule whitespace, \
                 const CPrimitiveRestrictions& restrictions, const char* defaultValue)         \
        : CElementInfo(name, namespaceUri, memberId, nillable, type, format, whitespace,       \
                       restrictions, defaultValue) {}
#define KX_ENUM_CTOR_DEF(Class)                                                                \
    Class::Class(const char* name, const char* namespaceUri, int memberId, bool nillable,      \
                 EnumToString enumToString, StringToEnum stringToEnum, const char* defaultValue) \
        : CElementInfo(name, namespaceUri, memberId, nillable, enumToString, stringToEnum,     \
                       defaultValue) {}

KX_PRIM_CTOR_DEF(CElementInfoSeqPrimMnd)
KX_ENUM_CTOR_DEF(CElementInfoSeqEnumMnd)
KX_PRIM_CTOR_DEF(CElementInfoSeqPrimOpt)
KX_ENUM_CTOR_DEF(CElementInfoSeqEnumOpt)
KX_PRIM_CTOR_DEF(CElementInfoChoicePrimOpt)
KX_ENUM_CTOR_DEF(CElementInfoChoiceEnumOpt)
KX_PRIM_CTOR_DEF(CElementInfoAllPrimMnd)
KX_ENUM_CTOR_DEF(CElementInfoAllEnumMnd)
KX_PRIM_CTOR_DEF(CElementInfoAllPrimOpt)
KX_ENUM_CTOR_DEF(CElementInfoAllEnumOpt)

// ---- sequence --------------------------------------------------------------------------------

#define KX_MND_TO_XML(Class, Body)                                                             \
    bool Class::ElementToXml(const CSerializationContext& ctx, const CXmlGeneratedClass* object, \
                             CXmlWriter* writer) const {                                       \
        if (!(Body)) ThrowMandatory(*this);                                                    \
        return true;                                                                           \
    }
#define KX_OPT_TO_XML(Class, Body)                                                             \
    bool Class::ElementToXml(const CSerializationContext& ctx, const CXmlGeneratedClass* object, \
                             CXmlWriter* writer) const {                                       \
        return Body;                                                                           \
    }
#define KX_PRIM_BODY ElementToXmlPrim(ctx, object, writer)
#define KX_ENUM_BODY ElementToXmlEnum(ctx, object, writer, GetEnumToString())

KX_MND_TO_XML(CElementInfoSeqPrimMnd, KX_PRIM_BODY)
KX_MND_TO_XML(CElementInfoSeqEnumMnd, KX_ENUM_BODY)
KX_OPT_TO_XML(CElementInfoSeqPrimOpt, KX_PRIM_BODY)
KX_OPT_TO_XML(CElementInfoSeqEnumOpt, KX_ENUM_BODY)
KX_OPT_TO_XML(CElementInfoChoicePrimOpt, KX_PRIM_BODY)
KX_OPT_TO_XML(CElementInfoChoiceEnumOpt, KX_ENUM_BODY)
KX_MND_TO_XML(CElementInfoAllPrimMnd, KX_PRIM_BODY)
KX_MND_TO_XML(CElementInfoAllEnumMnd, KX_ENUM_BODY)
KX_OPT_TO_XML(CElementInfoAllPrimOpt, KX_PRIM_BODY)
KX_OPT_TO_XML(CElementInfoAllEnumOpt, KX_ENUM_BODY)

#define KX_FROM_XML(Class)                                                                     \
    bool Class::ElementFromXml(const CSerializationContext& ctx, CXmlGeneratedClass* object,   \
                               CXmlElement* parent, CXmlElement** cursor, const char*,         \
                               XmlElementType elementType)

// Mandatory sequence members search forward (see ElementFromXmlMandatory).
KX_FROM_XML(CElementInfoSeqPrimMnd) {
    return ElementFromXmlMandatory(ctx, object, parent, cursor, elementType, false);
}
KX_FROM_XML(CElementInfoSeqEnumMnd) {
    return ElementFromXmlMandatory(ctx, object, parent, cursor, elementType, true);
}

// Optional sequence members read their element when it is there and never stop the sequence.
KX_FROM_XML(CElementInfoSeqPrimOpt) {
    (void)parent, (void)elementType;
    if (IsThisElement(ctx, *cursor)) ElementFromXmlPrim(ctx, object, cursor);
    return true;
}
KX_FROM_XML(CElementInfoSeqEnumOpt) {
    (void)parent, (void)elementType;
    if (IsThisElement(ctx, *cursor)) ElementFromXmlEnum(ctx, object, cursor);
    return true;
}

// Choice branches and all-group members answer whether the element was theirs.
#define KX_MATCH_FROM_XML(Class, Reader)                                                       \
    KX_FROM_XML(Class) {                                                                       \
        (void)parent, (void)elementType;                                                       \
        if (!IsThisElement(ctx, *cursor)) return false;                                        \
        Reader(ctx, object, cursor);                                                           \
        return true;                                                                           \
    }
KX_MATCH_FROM_XML(CElementInfoChoicePrimOpt, ElementFromXmlPrim)
KX_MATCH_FROM_XML(CElementInfoChoiceEnumOpt, ElementFromXmlEnum)
KX_MATCH_FROM_XML(CElementInfoAllPrimMnd, ElementFromXmlPrim)
KX_MATCH_FROM_XML(CElementInfoAllEnumMnd, ElementFromXmlEnum)
KX_MATCH_FROM_XML(CElementInfoAllPrimOpt, ElementFromXmlPrim)
KX_MATCH_FROM_XML(CElementInfoAllEnumOpt, ElementFromXmlEnum)

bool CElementInfoChoicePrimOpt::IsOptionalChoiceBranch(const CXmlGeneratedClass*) const {
    return true;
}
bool CElementInfoChoiceEnumOpt::IsOptionalChoiceBranch(const CXmlGeneratedClass*) const {
    return true;
}

#define KX_VALIDATE(Class)                                                                     \
    bool Class::Validate(const CSerializationContext&, const CXmlGeneratedClass*, bool found,  \
                         bool required) const
KX_VALIDATE(CElementInfoAllPrimMnd) { return ValidateMandatory(*this, found, required); }
KX_VALIDATE(CElementInfoAllEnumMnd) { return ValidateMandatory(*this, found, required); }
KX_VALIDATE(CElementInfoAllPrimOpt) { return (void)found, (void)required, true; }
KX_VALIDATE(CElementInfoAllEnumOpt) { return (void)found, (void)required, true; }

// ---- collections -----------------------------------------------------------------------------

CElementInfoSeqCol::CElementInfoSeqCol(const char* name, const char* namespaceUri, int memberId)
    : CElementInfo(name, namespaceUri, memberId) {}
CElementInfoChoiceCol::CElementInfoChoiceCol(const char* name, const char* namespaceUri,
                                             int memberId)
    : CElementInfo(name, namespaceUri, memberId) {}
CElementInfoAllCol::CElementInfoAllCol(const char* name, const char* namespaceUri, int memberId)
    : CElementInfo(name, namespaceUri, memberId) {}
CElementInfoAllEnumCol::CElementInfoAllEnumCol(const char* name, const char* namespaceUri,
                                               int memberId)
    : CElementInfo(name, namespaceUri, memberId) {}

bool CElementInfoSeqCol::ElementToXml(const CSerializationContext& ctx,
                                      const CXmlGeneratedClass* object, CXmlWriter* writer) const {
    if (!ctx.GetIgnoreInvalidCollectionCounts())
        GetCollection(const_cast<CXmlGeneratedClass*>(object))->ValidateCount(ctx);
    return ElementToXmlCol(ctx, object, writer);
}
bool CElementInfoAllCol::ElementToXml(const CSerializationContext& ctx,
                                      const CXmlGeneratedClass* object, CXmlWriter* writer) const {
    if (!ctx.GetIgnoreInvalidCollectionCounts())
        GetCollection(const_cast<CXmlGeneratedClass*>(object))->ValidateCount(ctx);
    return ElementToXmlCol(ctx, object, writer);
}
bool CElementInfoChoiceCol::ElementToXml(const CSerializationContext& ctx,
                                         const CXmlGeneratedClass* object,
                                         CXmlWriter* writer) const {
    return ElementToXmlCol(ctx, object, writer);
}

KX_FROM_XML(CElementInfoSeqCol) {
    CSmartPtr<CXmlCollectionBase> collection = GetCollection(object);
    *cursor = FromXml_Int(collection, parent, *cursor, ctx, false);
    if (elementType != 0) return collection->IsValidCount(ctx);
    collection->ValidateCount(ctx);
    return true;
}

KX_FROM_XML(CElementInfoChoiceCol) {
    CSmartPtr<CXmlCollectionBase> collection = GetCollection(object);
    CXmlElement* next = FromXml_Int(collection, parent, *cursor, ctx, false);
    if (next == *cursor) return false;
    if (elementType != 0 && !collection->IsValidCount(ctx)) return false;
    *cursor = next;
    if (elementType == 0) collection->ValidateCount(ctx);
    return true;
}

bool CElementInfoChoiceCol::IsOptionalChoiceBranch(const CXmlGeneratedClass* object) const {
    // The branch may be absent when its collection accepts being empty.
    KxVariant value;
    ReadProperty(object, value);
    CSmartPtr<CXmlCollectionBase> collection = TakeCollection(value);
    return collection && collection->GetCount() == 0 &&
           collection->IsValidCount(CSerializationContext());
}

KX_FROM_XML(CElementInfoAllCol) {
    (void)elementType;
    *cursor = FromXml_Int(GetCollection(object), parent, *cursor, ctx, false);
    return false;
}

}  // namespace KxXmlLib16Data
