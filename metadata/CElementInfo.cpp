// The base element record and the class record: shared write and read bodies of the members.
#include "CElementInfo.h"

#include <strings.h>

#include "CKxException.h"
#include "CParentElementInfo.h"
#include "CSerializationContext.h"
#include "CXmlCollection.h"
#include "CXmlCollectionBase.h"
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
bool SameNoCase(const std::string& a, const char* b) { return strcasecmp(a.c_str(), b) == 0; }
}  // namespace

CParentElementInfo::CParentElementInfo(XmlElementGroupType groupType, XmlElementType elementType,
                                       const char* elementName, const char* namespaceUri,
                                       bool strictAttributes, bool typeAttribute,
                                       int textMemberId, ItemType textItemType,
                                       const char* textFormat, bool textIsRawString)
    : m_groupType(groupType), m_elementType(elementType), m_elementName(OrEmpty(elementName)),
      m_namespace(OrEmpty(namespaceUri)), m_strictAttributes(strictAttributes),
      m_typeAttribute(typeAttribute), m_textMemberId(textMemberId),
      m_textItemType(textItemType), m_textFormat(OrEmpty(textFormat)),
      m_textIsRawString(textIsRawString) {}

CParentElementInfo::~CParentElementInfo() = default;

CElementInfo::CElementInfo(const char* name, const char* namespaceUri, int memberId)
    : m_name(OrEmpty(name)), m_namespace(OrEmpty(namespaceUri)), m_memberId(memberId),
      m_itemType(static_cast<ItemType>(0)), m_whitespace(static_cast<CWhitespaceUtils::WhitespaceRule>(0)),
      m_nillable(false), m_enumToString(nullptr), m_stringToEnum(nullptr), m_primitive(false) {}

CElementInfo::CElementInfo(const char* name, const char* namespaceUri, int memberId,
                           bool nillable, ItemType type, const char* format,
                           CWhitespaceUtils::WhitespaceRule whitespace,
                           const CPrimitiveRestrictions& restrictions, const char* defaultValue)
    : m_name(OrEmpty(name)), m_namespace(OrEmpty(namespaceUri)), m_memberId(memberId),
      m_restrictions(restrictions), m_itemType(type), m_format(OrEmpty(format)),
      m_whitespace(whitespace), m_defaultValue(OrEmpty(defaultValue)), m_nillable(nillable),
      m_enumToString(nullptr), m_stringToEnum(nullptr), m_primitive(true) {}

CElementInfo::CElementInfo(const char* name, const char* namespaceUri, int memberId,
                           bool nillable, EnumToString enumToString, StringToEnum stringToEnum,
                           const char* defaultValue)
    : m_name(OrEmpty(name)), m_namespace(OrEmpty(namespaceUri)), m_memberId(memberId),
      m_itemType(static_cast<ItemType>(0)), m_whitespace(static_cast<CWhitespaceUtils::WhitespaceRule>(0)),
      m_defaultValue(OrEmpty(defaultValue)), m_nillable(nillable), m_enumToString(enumToString),
      m_stringToEnum(stringToEnum), m_primitive(false) {}

CElementInfo::~CElementInfo() = default;

bool CElementInfo::Validate(const CSerializationContext&, const CXmlGeneratedClass*, bool,
                            bool) const {
    throw CKxException("Not implemented, should never be called");
}

void CElementInfo::PseudoChildAttributeToXml(const CSerializationContext&,
                                             const CXmlGeneratedClass*, CXmlWriter*) const {}

bool CElementInfo::IsOptionalChoiceBranch(const CXmlGeneratedClass*) const { return false; }

bool CElementInfo::ClaimsParentAttribute(const CSerializationContext&, const CXmlGeneratedClass*,
                                         CXmlAttribute*) const {
    return false;
}

bool CElementInfo::IsThisElement(const CSerializationContext& ctx,
                                 const CXmlElement* element) const {
    if (!element || element->GetLocalName() != m_name) return false;
    return ctx.GetIgnoreNamespaces() || element->GetNamespaceURI() == m_namespace;
}

std::string CElementInfo::GetAnyDefaultNamespace(const char* namespaceConstraint,
                                                 const char* defaultNamespace,
                                                 const char* targetNamespace) {
    const std::string constraint = OrEmpty(namespaceConstraint);
    if (constraint == "##any") return OrEmpty(defaultNamespace);
    if (constraint == "##other")
        return OrEmpty(defaultNamespace).empty() ? "DefaultNamespace" : "";
    if (constraint == "##local") return "";
    if (constraint == "##targetNamespace") return OrEmpty(targetNamespace);
    if (constraint.size() > 2 && constraint.compare(0, 2, "##") == 0) {
        const std::string first = constraint.substr(0, constraint.find(' '));
        if (first != constraint)
            return GetAnyDefaultNamespace(first.c_str(), defaultNamespace, targetNamespace);
    }
    return "";
}

void CElementInfo::CheckRestriction(const KxVariant& value) const {
    if (!m_primitive)
        throw CKxException(std::string("Cannot CheckRestriction for type: ") + value.GetType());
    CXmlObjectHelper::CheckRestriction(m_name.c_str(), value, m_itemType, m_restrictions);
}

void CElementInfo::InvokePropertyGet(CXmlGeneratedClass* object, KxVariant& value) const {
    try {
        object->InvokeProperty(m_memberId, true, value);
    } catch (const CKxException& e) {
        throw CKxValidationException(
            FormatString("Failed to get the property value for [%s].", m_name.c_str()), "", e);
    }
}

void CElementInfo::InvokePropertySet(CXmlGeneratedClass* object, KxVariant& value,
                                     const CXmlElement& element) const {
    try {
        object->InvokeProperty(m_memberId, false, value);
    } catch (const CKxException& e) {
        throw CKxValidationException("Failed to set the property value.", element.GetXPath(), e);
    }
}

void CElementInfo::ReadProperty(const CXmlGeneratedClass* object, KxVariant& value) const {
    // Getting a member does not change the object.
    InvokePropertyGet(const_cast<CXmlGeneratedClass*>(object), value);
}

bool CElementInfo::ElementToXmlPrim(const CSerializationContext&, const CXmlGeneratedClass* object,
                                    CXmlWriter* writer) const {
    KxVariant value;
    ReadProperty(object, value);
    if (value.IsNil()) {
        writer->WriteStartElement(m_name, m_namespace);
        writer->WriteAttributeNil();
        writer->WriteEndElement();
        return true;
    }
    if (!value.IsValid()) return false;
    std::string scratch;
    const std::string& text =
        value.ToText(m_format.empty() ? nullptr : m_format.c_str(), scratch);
    const bool isDefault = !m_defaultValue.empty() && text == m_defaultValue;
    // A value equal to the default is deliberately not facet-checked.
    if (!isDefault) CheckRestriction(value);
    writer->WriteStartElement(m_name, m_namespace);
    writer->WriteString(text, isDefault ? value.GetItemType() : m_itemType, isDefault);
    writer->WriteEndElement();
    return true;
}

bool CElementInfo::ElementToXmlEnum(const CSerializationContext&, const CXmlGeneratedClass* object,
                                    CXmlWriter* writer, EnumToString enumToString) const {
    KxVariant value;
    ReadProperty(object, value);
    if (value.IsNil()) {
        writer->WriteStartElement(m_name, m_namespace);
        writer->WriteAttributeNil();
        writer->WriteEndElement();
        return true;
    }
    if (!value.IsValid()) return false;
    const char* literal = enumToString ? enumToString(static_cast<int>(value.GetI4())) : nullptr;
    const std::string text = OrEmpty(literal);
    const bool isDefault = !m_defaultValue.empty() && text == m_defaultValue;
    KxVariant asString;
    asString.SetString("");
    writer->WriteStartElement(m_name, m_namespace);
    writer->WriteString(text, asString.GetItemType(), isDefault);
    writer->WriteEndElement();
    return true;
}

bool CElementInfo::ElementToXmlCol(const CSerializationContext& ctx,
                                   const CXmlGeneratedClass* object, CXmlWriter* writer) const {
    KxVariant value;
    ReadProperty(object, value);
    // `value` holds a reference to the collection for the whole call, so it is used through a
    // plain pointer: each count change takes the object's lock.
    CXmlCollectionBase* collection =
        value.IsValid() && !value.IsNil() ? value.GetXmlCollection() : nullptr;
    if (!collection) return false;
    collection->Release();
    if (collection->GetCount() < 1) return false;
    // Only collections of objects are framed (the JSON writer makes them one array); typed
    // collections of simple values are written as repeated elements.
    const bool framed = dynamic_cast<const CXmlCollection*>(collection) != nullptr;
    if (framed) writer->SetContextState(CXmlWriter::ContextState_CollectionStart);
    collection->ToXml_Int(writer, false, m_namespace.c_str(), ctx, false);
    if (framed) writer->SetContextState(CXmlWriter::ContextState_CollectionEnd);
    return true;
}

bool CElementInfo::ReadNilMark(const CSerializationContext& ctx, const CXmlElement& element) const {
    bool nil = false;
    for (CXmlAttribute* attribute : element.GetAttributes()) {
        if (attribute->IsNilAttribute()) {
            const std::string& text = attribute->GetValue();
            if (SameNoCase(text, "false") || text == "0") {
                nil = false;
            } else if (!m_nillable) {
                throw CKxValidationException(
                    "Invalid use of 'nil' attribute in non-nillable element.", element.GetXPath());
            } else if (SameNoCase(text, "true") || text == "1") {
                nil = true;
            } else {
                throw CKxValidationException(
                    FormatString("Unexpected Value [%s] for 'nil' Attribute found.", text.c_str()),
                    attribute->GetXPath());
            }
        } else if (!ctx.GetIgnoreUnknownAttributes()) {
            throw CKxValidationException("Unexpected Attribute found.", attribute->GetXPath());
        }
    }
    return nil;
}

void CElementInfo::ElementFromXmlPrim(const CSerializationContext& ctx,
                                      CXmlGeneratedClass* object, CXmlElement** cursor) const {
    CXmlElement* element = *cursor;
    if (!ReadNilMark(ctx, *element)) {
        const std::string& text = element->GetText();
        KxVariant value;
        value.FromString(text.empty() && !m_defaultValue.empty() ? m_defaultValue : text,
                         m_itemType, m_whitespace);
        InvokePropertySet(object, value, *element);
    }
    *cursor = element->GetNextSiblingElement();
}

void CElementInfo::ElementFromXmlEnum(const CSerializationContext& ctx,
                                      CXmlGeneratedClass* object, CXmlElement** cursor) const {
    CXmlElement* element = *cursor;
    if (!ReadNilMark(ctx, *element)) {
        const std::string& text = element->GetText();
        const std::string& literal =
            text.empty() && !m_defaultValue.empty() ? m_defaultValue : text;
        KxVariant value;
        value.SetI4(m_stringToEnum ? m_stringToEnum(literal.c_str()) : 0);
        InvokePropertySet(object, value, *element);
    }
    *cursor = element->GetNextSiblingElement();
}

bool CElementInfo::ElementFromXmlMandatory(const CSerializationContext& ctx,
                                           CXmlGeneratedClass* object, CXmlElement* parent,
                                           CXmlElement** cursor, XmlElementType elementType,
                                           bool isEnum) const {
    for (;;) {
        if (IsThisElement(ctx, *cursor)) {
            if (isEnum)
                ElementFromXmlEnum(ctx, object, cursor);
            else
                ElementFromXmlPrim(ctx, object, cursor);
            return true;
        }
        if (elementType != 0) {
            // Content-only class: another record or the parent may claim the element.
            if (!ctx.GetIgnoreUnknownElements() || !*cursor) return false;
        } else {
            if (ctx.GetIgnoreMissingMandatoryElements()) return true;
            if (!ctx.GetIgnoreUnknownElements() || !*cursor)
                throw CKxValidationException(
                    FormatString("Failed to find the required child element [%s].",
                                 m_name.c_str()),
                    parent ? parent->GetXPath() : std::string());
        }
        *cursor = (*cursor)->GetNextSiblingElement();
    }
}

bool CElementInfo::IsCollection() const {
    signed char known = m_isCollection.load(std::memory_order_relaxed);
    if (known < 0) {
        known = dynamic_cast<const CElementInfoSeqCol*>(this) != nullptr ||
                        dynamic_cast<const CElementInfoChoiceCol*>(this) != nullptr ||
                        dynamic_cast<const CElementInfoAllCol*>(this) != nullptr
                    ? 1
                    : 0;
        m_isCollection.store(known, std::memory_order_relaxed);
    }
    return known == 1;
}

CSmartPtr<CXmlCollectionBase> CElementInfo::TakeCollection(const KxVariant& value) {
    if (!value.IsValid() || value.IsNil()) return nullptr;
    CXmlCollectionBase* raw = value.GetXmlCollection();
    CSmartPtr<CXmlCollectionBase> collection(raw);
    if (raw) raw->Release();
    return collection;
}

CXmlElement* CElementInfo::FromXml_Int(CXmlObjectBase* child, CXmlElement* parent,
                                       CXmlElement* current, const CSerializationContext& ctx,
                                       bool isNested) {
    return child->FromXml_Int(parent, current, ctx, isNested);
}

void CElementInfo::AttributesToXml_Int(const CXmlObjectBase* child, CXmlWriter* writer,
                                       const CSerializationContext& ctx) const {
    child->AttributesToXml_Int(writer, ctx);
}

}  // namespace KxXmlLib16Data
