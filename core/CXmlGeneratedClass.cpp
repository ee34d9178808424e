// The generated-class engine: writes and reads a generated class by walking its static records.
#include "CXmlGeneratedClass.h"

#include <strings.h>

#include <algorithm>

#include <vector>

#include "CAttributeCol.h"
#include "CAttributeInfo.h"
#include "CElementInfo.h"
#include "CKxException.h"
#include "CNamespaceAliasMap.h"
#include "CParentElementInfo.h"
#include "CSerializationContext.h"
#include "CXmlElement.h"
#include "CXmlWriter.h"
#include "FormatString.h"
#include "INillable.h"

namespace KxXmlLib16 {

using namespace KxXmlLib16Data;

namespace {
bool SameNoCase(const std::string& a, const char* b) { return strcasecmp(a.c_str(), b) == 0; }

// Items are appended to a collection as they are read, so a document read into an object that
// was read before (or whose last read failed midway) would add to the earlier items: the
// object's collections are emptied first, and the document's items replace them.
void EmptyCollections(CXmlGeneratedClass& object) {
    for (CElementInfo** info = object.GetClassElementInfo(); info && *info; ++info) {
        CElementInfo* record = *info;
        if (!record->IsCollection()) continue;
        KxVariant value;
        object.InvokeProperty(record->GetMemberId(), true, value);
        if (!value.IsValid() || value.IsNil()) continue;
        // The getter raised the count for this caller: the smart pointer takes that reference.
        CXmlCollectionBase* raw = value.GetXmlCollection();
        if (raw == nullptr) continue;
        const CSmartPtr<CXmlCollectionBase> collection(raw);
        raw->Release();
        if (collection->GetCount() > 0) collection->Clear();
    }
}
}  // namespace

CXmlGeneratedClass::CXmlGeneratedClass() = default;
CXmlGeneratedClass::CXmlGeneratedClass(const CXmlGeneratedClass& other) = default;
CXmlGeneratedClass::~CXmlGeneratedClass() = default;

std::string CXmlGeneratedClass::GetNamespace() const { return GetClassInfo()->GetNamespace(); }
std::string CXmlGeneratedClass::GetTargetNamespace() const {
    return GetClassInfo()->GetNamespace();
}

int CXmlGeneratedClass::GetClassElementInfoCount() const {
    int count = 0;
    for (CElementInfo** info = GetClassElementInfo(); info && *info; ++info) ++count;
    return count;
}

bool CXmlGeneratedClass::IsElementInList(const CSerializationContext& ctx,
                                         CXmlElement* element) const {
    for (CElementInfo** info = GetClassElementInfo(); info && *info; ++info)
        if ((*info)->IsThisElement(ctx, element)) return true;
    return false;
}

bool CXmlGeneratedClass::DoesElementContainOptionalElements() const {
    for (CElementInfo** info = GetClassElementInfo(); info && *info; ++info)
        if ((*info)->IsOptionalChoiceBranch(this)) return true;
    return false;
}

void CXmlGeneratedClass::ReadProperty(int memberId, KxVariant& value) const {
    // Getting a member does not change the object.
    const_cast<CXmlGeneratedClass*>(this)->InvokeProperty(memberId, true, value);
}

void CXmlGeneratedClass::CleanMetaData(CParentElementInfo*& parentInfo,
                                       CElementInfo**& elementInfos,
                                       CAttributeInfo**& attributeInfos) {
    delete parentInfo;
    for (CElementInfo** info = elementInfos; info && *info; ++info) delete *info;
    for (CAttributeInfo** info = attributeInfos; info && *info; ++info) delete *info;
    delete[] elementInfos;
    delete[] attributeInfos;
    parentInfo = nullptr;
    elementInfos = nullptr;
    attributeInfos = nullptr;
}

// ---- writing -----------------------------------------------------------------------------------

void CXmlGeneratedClass::ToXml_Int(CXmlWriter* writer, bool isRoot, const char* ns,
                                   const CSerializationContext& ctx, bool isNested) const {
    try {
        const CParentElementInfo* info = GetClassInfo();
        const bool ownElement = info->GetElementType() == XmlElementType_Element;
        if (isRoot) {
            for (const std::string& pi : ctx.GetProcessingInstructions()) writer->WritePI(pi);
            const CNamespaceAliasMap& aliases = ctx.GetNamespaceAliases();
            for (int i = 0; i < aliases.GetNamespaceCount(); ++i) {
                const std::string uri = aliases.GetNamespaceAt(i);
                const std::string alias = aliases.GetAliasFromNamespace(uri.c_str());
                // An empty alias names the default namespace ("xmlns:" is not XML).
                if (alias.empty())
                    writer->SetDefaultNamespace(uri);
                else
                    writer->AddNamespace(alias, uri);
            }
            if (!ctx.GetDefaultNamespaceURI().empty())
                writer->SetDefaultNamespace(ctx.GetDefaultNamespaceURI());
        }
        if (ownElement) writer->WriteStartElement(GetElementName(), ns ? ns : "");
        if (isRoot) {
            // The getter hands over one reference: keep it in a smart pointer and drop the extra.
            CAttributeCol* raw = ctx.GetAdditionalRootAttributes();
            CSmartPtr<CAttributeCol> extra(raw);
            raw->Release();
            if (extra->GetCount() > 0) extra->ToXml_Int(writer, false, "", ctx, false);
        }
        if (ownElement && info->HasTypeAttribute() && ctx.GetWriteTypeAttribute() &&
            GetElementName() != info->GetElementName())
        {
            KxVariant asString;
            asString.SetString("");
            writer->WriteAttributeType(info->GetElementName(), info->GetNamespace(),
                                       asString.GetItemType());
        }
        // A content-only class's attributes reach the parent's start tag through the
        // parent's records (PseudoChildAttributeToXml), before the parent's content begins.
        if (ownElement || isRoot) AttributesToXml_Int(writer, ctx);
        if (isRoot && !ctx.GetInLineSchema().empty())
            writer->WriteInlineSchema(ctx.GetInLineSchema());
        const INillable* nillable = dynamic_cast<const INillable*>(this);
        const bool nil = nillable && nillable->IsNil();
        if (ownElement && nil) writer->WriteAttributeNil();
        // A nil element has no content (reading skips it the same way).
        if (!nil) switch (info->GetGroupType()) {
        case XmlElementGroupType_Sequence: ProcessElementSeqToXml(writer, ctx); break;
        case XmlElementGroupType_Choice: ProcessElementChoiceToXml(writer, ctx, isNested); break;
        case XmlElementGroupType_All: ProcessElementAllToXml(writer, ctx); break;
        default: throw CKxException("Unknown XML Group Type");
        }
        if (!nil && info->GetTextMemberId() != -1 && info->GetTextItemType() != 0) {
            KxVariant text;
            ReadProperty(info->GetTextMemberId(), text);
            if (text.IsNil()) {
                writer->WriteAttributeNil();
            } else if (text.IsValid()) {
                const std::string& format = info->GetTextFormat();
                writer->WriteString(text.ToString(format.empty() ? nullptr : format.c_str()),
                                    info->GetTextItemType(), false);
            }
        }
        if (ownElement) writer->WriteEndElement();
    } catch (const CKxException& e) {
        throw CKxValidationException(
            FormatString("Failed to convert the element [%s] to XML", GetElementName().c_str()),
            "", e);
    }
}

void CXmlGeneratedClass::AttributesToXml_Int(CXmlWriter* writer,
                                             const CSerializationContext& ctx) const {
    ProcessAttributesToXml(writer, ctx);
}

void CXmlGeneratedClass::ProcessAttributesToXml(CXmlWriter* writer,
                                                const CSerializationContext& ctx) const {
    try {
        for (CElementInfo** info = GetClassElementInfo(); info && *info; ++info)
            (*info)->PseudoChildAttributeToXml(ctx, this, writer);
        for (CAttributeInfo** info = GetClassAttributeInfo(); info && *info; ++info)
            (*info)->AttributeToXml(ctx, this, writer);
    } catch (const CKxException& e) {
        throw CKxValidationException("Failed to convert attributes to XML", "", e);
    }
}

void CXmlGeneratedClass::ProcessElementSeqToXml(CXmlWriter* writer,
                                                const CSerializationContext& ctx) const {
    for (CElementInfo** info = GetClassElementInfo(); info && *info; ++info)
        (*info)->ElementToXml(ctx, this, writer);
}

void CXmlGeneratedClass::ProcessElementAllToXml(CXmlWriter* writer,
                                                const CSerializationContext& ctx) const {
    // An all group is written in schema order.
    ProcessElementSeqToXml(writer, ctx);
}

void CXmlGeneratedClass::ProcessElementChoiceToXml(CXmlWriter* writer,
                                                   const CSerializationContext& ctx,
                                                   bool isNested) const {
    for (CElementInfo** info = GetClassElementInfo(); info && *info; ++info)
        if ((*info)->ElementToXml(ctx, this, writer)) return;
    if (!DoesElementContainOptionalElements() && !isNested && !ctx.GetIgnoreMissingChoice())
        throw CKxValidationException(
            "This element is a choice, and as such must have at one (and only one) valid item, "
            "currently there are none set",
            "");
}

// ---- reading -----------------------------------------------------------------------------------

CXmlElement* CXmlGeneratedClass::FromXml_Int(CXmlElement* element, CXmlElement* firstChild,
                                             const CSerializationContext& ctx, bool isNested) {
    try {
        OnPreRead();
        EmptyCollections(*this);
        const CParentElementInfo* info = GetClassInfo();
        if (info->GetElementType() == XmlElementType_Element)
            SetElementName(element->GetLocalName().c_str());
        // A content-only class reads its attributes from its parent's element, whose other
        // attributes (and nil mark) belong to the parent: it is never strict there.
        const bool ownElement = info->GetElementType() == XmlElementType_Element;
        ProcessAttributesFromXml(ctx, element, ownElement && info->IsStrictAttributes());
        const INillable* nillable = dynamic_cast<const INillable*>(this);
        if (nillable && nillable->IsNil()) return firstChild;
        CXmlElement* next = nullptr;
        switch (info->GetGroupType()) {
        case XmlElementGroupType_Sequence:
            next = ProcessElementSeqFromXml(ctx, element, firstChild, isNested);
            break;
        case XmlElementGroupType_Choice:
            next = ProcessElementChoiceFromXml(ctx, element, firstChild, isNested);
            break;
        case XmlElementGroupType_All:
            next = ProcessElementAllFromXml(ctx, element, firstChild, isNested);
            break;
        default: throw CKxException("Unknown Group Type");
        }
        if (info->GetTextMemberId() != -1 && info->GetTextItemType() != 0) {
            KxVariant text;
            if (info->IsTextRawString())
                text.SetString(element->GetText());
            else
                text.FromString(element->GetText(), info->GetTextItemType(),
                                static_cast<CWhitespaceUtils::WhitespaceRule>(0));
            InvokeProperty(info->GetTextMemberId(), false, text);
        }
        return next;
    } catch (const CKxException& e) {
        // The innermost failing element fixes the path; outer levels pass it on unchanged.
        if (!e.GetPath().empty()) throw CKxException(e);
        throw CKxValidationException("Failed to process the element.", element->GetXPath(), e);
    }
}

void CXmlGeneratedClass::ProcessAttributesFromXml(const CSerializationContext& ctx,
                                                  CXmlElement* element, bool strict) {
    // Called once per element read: the records are walked in place and the found flags
    // live on the stack for any ordinary number of attributes.
    CAttributeInfo** records = GetClassAttributeInfo();
    size_t count = 0;
    while (records && records[count]) ++count;
    char stackFound[32];
    std::vector<char> heapFound;
    char* found = stackFound;
    if (count > sizeof stackFound) {
        heapFound.resize(count);
        found = heapFound.data();
    }
    std::fill(found, found + count, 0);
    INillable* nillable = dynamic_cast<INillable*>(this);
    for (CXmlAttribute* attribute : element->GetAttributes()) {
        if (attribute->IsNamespaceAttribute()) continue;
        if (attribute->IsNilAttribute()) {
            if (GetClassInfo()->GetElementType() != XmlElementType_Element) continue;
            if (!nillable)
                throw CKxValidationException(
                    "Invalid use of 'nil' attribute in non-nillable element.", element->GetXPath());
            const std::string& value = attribute->GetValue();
            if (SameNoCase(value, "true") || value == "1")
                nillable->SetNil(true);
            else if (SameNoCase(value, "false") || value == "0")
                nillable->SetNil(false);
            else
                throw CKxValidationException(
                    FormatString("Unexpected Value [%s] for 'nil' Attribute found.", value.c_str()),
                    attribute->GetXPath());
            continue;
        }
        bool accepted = false;
        for (size_t i = 0; i < count && !accepted; ++i) {
            if (records[i]->AttributeFromXml(ctx, this, attribute)) {
                found[i] = 1;
                accepted = true;
            }
        }
        if (!accepted && strict && !ctx.GetIgnoreUnknownAttributes() &&
            !IsContentOnlyChildAttribute(ctx, attribute))
            throw CKxValidationException("Unexpected Attribute found.", attribute->GetXPath());
    }
    for (size_t i = 0; i < count; ++i) records[i]->Validate(ctx, found[i] != 0);
}

bool CXmlGeneratedClass::IsContentOnlyChildAttribute(const CSerializationContext& ctx,
                                                     CXmlAttribute* attribute) const {
    for (CElementInfo** info = GetClassElementInfo(); info && *info; ++info)
        if ((*info)->ClaimsParentAttribute(ctx, this, attribute)) return true;
    return false;
}

CXmlElement* CXmlGeneratedClass::HandleLeftovers(const CSerializationContext& ctx,
                                                 CXmlElement* parent, CXmlElement* cursor,
                                                 bool isNested) const {
    if (isNested || !cursor) return cursor;
    if (!ctx.GetIgnoreUnknownElements())
        throw CKxValidationException(
            FormatString("Failed read all the elements held within the element [%s]. The "
                         "unexpected element [%s] remains un processed",
                         parent->GetLocalName().c_str(), cursor->GetLocalName().c_str()),
            parent->GetXPath());
    return nullptr;
}

CXmlElement* CXmlGeneratedClass::ProcessElementSeqFromXml(const CSerializationContext& ctx,
                                                          CXmlElement* parent,
                                                          CXmlElement* firstChild,
                                                          bool isNested) {
    const XmlElementType elementType = GetClassInfo()->GetElementType();
    const std::string& ns = GetClassInfo()->GetNamespace();
    CXmlElement* cursor = firstChild;
    for (CElementInfo** info = GetClassElementInfo(); info && *info; ++info) {
        while (!(*info)->ElementFromXml(ctx, this, parent, &cursor, ns.c_str(), elementType)) {
            if (!ctx.GetIgnoreUnknownElements()) return cursor;
            if (!cursor) return cursor;
            cursor = cursor->GetNextSiblingElement();
        }
    }
    return HandleLeftovers(ctx, parent, cursor, isNested);
}

CXmlElement* CXmlGeneratedClass::ProcessElementAllFromXml(const CSerializationContext& ctx,
                                                          CXmlElement* parent,
                                                          CXmlElement* firstChild,
                                                          bool isNested) {
    const XmlElementType elementType = GetClassInfo()->GetElementType();
    const std::string& ns = GetClassInfo()->GetNamespace();
    std::vector<CElementInfo*> records;
    for (CElementInfo** info = GetClassElementInfo(); info && *info; ++info)
        records.push_back(*info);
    std::vector<char> matched(records.size(), 0);
    CXmlElement* cursor = firstChild;
    bool progressed = true;
    while (cursor && progressed) {
        progressed = false;
        for (size_t i = 0; i < records.size() && cursor; ++i) {
            if (matched[i]) continue;
            CXmlElement* before = cursor;
            if (records[i]->ElementFromXml(ctx, this, parent, &cursor, ns.c_str(), elementType))
                matched[i] = 1;
            if (cursor != before) progressed = true;
        }
    }
    for (size_t i = 0; i < records.size(); ++i) {
        // A repeated member's presence is its collection's count, checked as it reads.
        if (dynamic_cast<const CElementInfoAllCol*>(records[i])) continue;
        if (!records[i]->Validate(ctx, this, matched[i] != 0, true)) return firstChild;
    }
    return HandleLeftovers(ctx, parent, cursor, isNested);
}

CXmlElement* CXmlGeneratedClass::ProcessElementChoiceFromXml(const CSerializationContext& ctx,
                                                             CXmlElement* parent,
                                                             CXmlElement* firstChild,
                                                             bool isNested) {
    const XmlElementType elementType = GetClassInfo()->GetElementType();
    const std::string& ns = GetClassInfo()->GetNamespace();
    CXmlElement* cursor = firstChild;
    bool read = false;
    while (cursor && !read) {
        for (CElementInfo** info = GetClassElementInfo(); info && *info && !read; ++info)
            read = (*info)->ElementFromXml(ctx, this, parent, &cursor, ns.c_str(), elementType);
        if (read || isNested || !ctx.GetIgnoreUnknownElements()) break;
        cursor = cursor->GetNextSiblingElement();
    }
    if (!read) {
        if (isNested) return cursor;
        if (!DoesElementContainOptionalElements() && !ctx.GetIgnoreMissingChoice())
            throw CKxValidationException(
                FormatString("No child elements within the element [%s] were populated. The "
                             "element represents a choice, so one and only one element should be "
                             "populated. The element contained no sutable child elements",
                             parent->GetLocalName().c_str()),
                parent->GetXPath());
    }
    return HandleLeftovers(ctx, parent, cursor, isNested);
}

}  // namespace KxXmlLib16
