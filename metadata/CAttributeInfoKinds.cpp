// The three attribute record kinds: simple-typed, enumerated and anyAttribute wildcard.
#include "CAttributeCol.h"
#include "CAttributeInfo.h"
#include "CKxException.h"
#include "CSmartPtr.h"
#include "CSerializationContext.h"
#include "CXmlElement.h"
#include "CXmlGeneratedClass.h"
#include "CXmlObjectHelper.h"
#include "CXmlWriter.h"
#include "FormatString.h"
#include "KxVariant.h"

namespace KxXmlLib16Data {

using namespace KxXmlLib16;

namespace {

std::string OrEmpty(const char* text) { return text ? std::string(text) : std::string(); }

void ThrowIfMissing(const CAttributeInfo& info, bool found) {
    if (!info.IsOptional() && !found) {
        throw CKxValidationException(
            FormatString("Failed to find the required Attribute [%s].",
                         info.GetAttributeName().c_str()),
            "");
    }
}

// Steps shared by the simple-typed and enumerated kinds: an optional member that is unset, or
// equal to its default when the context asks to leave defaults out, is not written.
bool SkipUnset(const CAttributeInfo& info, const KxVariant& value) {
    return info.IsOptional() && !value.IsValid();
}

bool SkipDefault(const CAttributeInfo& info, const CSerializationContext& ctx,
                 const std::string& text) {
    return info.IsOptional() && !info.GetDefaultValue().empty() &&
           ctx.GetNoOptionalAttributeDefaultOutput() && text == info.GetDefaultValue();
}

// The collection the variant holds (null when it holds none). The variant's getter hands out a
// reference of its own, which the smart pointer takes over.
CSmartPtr<CXmlCollectionBase> CollectionOf(const KxVariant& value) {
    CXmlCollectionBase* raw = value.GetXmlCollection();
    CSmartPtr<CXmlCollectionBase> collection(raw);
    if (raw != nullptr) raw->Release();
    return collection;
}

}  // namespace

// ---- CAttributeInfoPrimitive ----------------------------------------------------------------

CAttributeInfoPrimitive::CAttributeInfoPrimitive(
    const char* name, const char* namespaceUri, int memberId, bool optional, ItemType type,
    const char* format, CWhitespaceUtils::WhitespaceRule whitespace,
    const CPrimitiveRestrictions& restrictions, const char* defaultValue)
    : CAttributeInfo(name, namespaceUri, memberId, optional, defaultValue),
      m_restrictions(restrictions),
      m_type(type),
      m_format(OrEmpty(format)),
      m_whitespace(whitespace) {}

CAttributeInfoPrimitive::~CAttributeInfoPrimitive() = default;

ItemType CAttributeInfoPrimitive::GetItemType() const { return m_type; }
const std::string& CAttributeInfoPrimitive::GetFormat() const { return m_format; }
CWhitespaceUtils::WhitespaceRule CAttributeInfoPrimitive::GetWhitespaceRule() const {
    return m_whitespace;
}
const CPrimitiveRestrictions& CAttributeInfoPrimitive::GetRestrictions() const {
    return m_restrictions;
}

void CAttributeInfoPrimitive::AttributeToXml(const CSerializationContext& ctx,
                                             const CXmlGeneratedClass* object,
                                             CXmlWriter* writer) const {
    KxVariant value;
    ReadProperty(object, value);
    if (SkipUnset(*this, value)) return;
    std::string scratch;
    const std::string& text =
        value.ToText(m_format.empty() ? nullptr : m_format.c_str(), scratch);
    if (SkipDefault(*this, ctx, text)) return;
    CXmlObjectHelper::CheckRestriction(GetAttributeName().c_str(), value, m_type, m_restrictions);
    writer->WriteAttributeString(GetAttributeName(), GetNamespace(), text, value.GetItemType());
}

bool CAttributeInfoPrimitive::AttributeFromXml(const CSerializationContext& /*ctx*/,
                                               CXmlGeneratedClass* object,
                                               CXmlAttribute* attribute) {
    // Exact match on purpose: simple-typed attributes never honour IgnoreNamespaces.
    if (attribute == nullptr || attribute->GetLocalName() != GetAttributeName() ||
        attribute->GetNamespaceURI() != GetNamespace()) {
        return false;
    }
    KxVariant value;
    value.FromString(attribute->GetValue(), m_type, m_whitespace);
    InvokePropertySet(object, value, *attribute);
    return true;
}

void CAttributeInfoPrimitive::Validate(const CSerializationContext& /*ctx*/, bool found) const {
    ThrowIfMissing(*this, found);
}

// ---- CAttributeInfoEnum ---------------------------------------------------------------------

CAttributeInfoEnum::CAttributeInfoEnum(const char* name, const char* namespaceUri, int memberId,
                                       bool optional, EnumToString enumToString,
                                       StringToEnum stringToEnum, const char* defaultValue)
    : CAttributeInfo(name, namespaceUri, memberId, optional, defaultValue),
      m_enumToString(enumToString),
      m_stringToEnum(stringToEnum) {}

CAttributeInfoEnum::~CAttributeInfoEnum() = default;

void CAttributeInfoEnum::AttributeToXml(const CSerializationContext& ctx,
                                        const CXmlGeneratedClass* object,
                                        CXmlWriter* writer) const {
    KxVariant value;
    ReadProperty(object, value);
    if (SkipUnset(*this, value)) return;
    const std::string text = OrEmpty(m_enumToString(static_cast<int>(value.GetI4())));
    if (SkipDefault(*this, ctx, text)) return;
    writer->WriteAttributeString(GetAttributeName(), GetNamespace(), text, ItemType_string);
}

bool CAttributeInfoEnum::AttributeFromXml(const CSerializationContext& ctx,
                                          CXmlGeneratedClass* object, CXmlAttribute* attribute) {
    if (!IsThisAttribute(ctx, attribute)) return false;
    KxVariant value;
    value.SetI4(m_stringToEnum(attribute->GetValue().c_str()));
    InvokePropertySet(object, value, *attribute);
    return true;
}

void CAttributeInfoEnum::Validate(const CSerializationContext& /*ctx*/, bool found) const {
    ThrowIfMissing(*this, found);
}

// ---- CAttributeInfoAny ----------------------------------------------------------------------

CAttributeInfoAny::CAttributeInfoAny(const char* name, const char* namespaceUri, int memberId,
                                     bool optional, const char* namespaceConstraint,
                                     const char* targetNamespace, const char* defaultValue)
    : CAttributeInfo(name, namespaceUri, memberId, optional, defaultValue),
      m_constraint(OrEmpty(namespaceConstraint)),
      m_targetNamespace(OrEmpty(targetNamespace)) {}

CAttributeInfoAny::~CAttributeInfoAny() = default;

const std::string& CAttributeInfoAny::GetNamespaceConstraint() const { return m_constraint; }
const std::string& CAttributeInfoAny::GetRuleTargetNamespace() const { return m_targetNamespace; }

void CAttributeInfoAny::AttributeToXml(const CSerializationContext& ctx,
                                       const CXmlGeneratedClass* object,
                                       CXmlWriter* writer) const {
    KxVariant value;
    ReadProperty(object, value);
    const CSmartPtr<CXmlCollectionBase> collection = CollectionOf(value);
    // An unset wildcard member has nothing to write.
    if (collection == nullptr) return;
    const std::string ns = GetTargetNamespace(object);
    ToXml_Int(collection, writer, false, ns.c_str(), ctx);
}

bool CAttributeInfoAny::AttributeFromXml(const CSerializationContext& /*ctx*/,
                                         CXmlGeneratedClass* object, CXmlAttribute* attribute) {
    if (attribute == nullptr ||
        !IsNamespaceValid(attribute->GetNamespaceURI(), m_constraint, m_targetNamespace)) {
        return false;
    }
    KxVariant value;
    InvokePropertyGet(object, value);
    const CSmartPtr<CXmlCollectionBase> held = CollectionOf(value);
    auto* collection = dynamic_cast<CAttributeCol*>(held.Ptr());
    if (collection == nullptr) {
        throw CKxException(
            "Serialization Data Error : The collection should be a CAttributeCol, it was not!");
    }
    collection->Add(attribute->GetLocalName().c_str(), attribute->GetValue().c_str(),
                    attribute->GetNamespaceURI().c_str());
    return true;
}

void CAttributeInfoAny::Validate(const CSerializationContext& /*ctx*/, bool /*found*/) const {}

}  // namespace KxXmlLib16Data
