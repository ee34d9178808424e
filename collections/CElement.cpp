// CElement: an untyped element kept whole (name, namespace, text, attributes, children).
#include "CElement.h"

#include <cctype>

#include "CElementCol.h"
#include "CKxException.h"
#include "CNamespaceAliasMap.h"
#include "CSerializationContext.h"
#include "CXmlDocument.h"
#include "CXmlElement.h"
#include "CXmlWriter.h"
#include "KxVariant.h"

namespace KxXmlLib16 {

namespace {

const char* const kXmlnsNamespace = "http://www.w3.org/2000/xmlns/";
const char* const kXsiNamespace = "http://www.w3.org/2001/XMLSchema-instance";

std::string Str(const char* text) { return text ? std::string(text) : std::string(); }

// Namespace declarations are not content: the writer declares whatever the output needs.
bool IsDeclaration(const CXmlAttribute& attribute) {
    return attribute.GetNamespaceURI() == kXmlnsNamespace ||
           (attribute.GetNamespaceURI().empty() && attribute.GetLocalName() == "xmlns");
}

bool IsTypeAttribute(const CXmlAttribute& attribute) {
    return attribute.GetNamespaceURI() == kXsiNamespace && attribute.GetLocalName() == "type";
}

bool IsBlank(const std::string& text) {
    for (char c : text)
        if (!std::isspace(static_cast<unsigned char>(c))) return false;
    return true;
}

}  // namespace

CElement::CElement(const char* name, const char* namespaceUri)
    : m_name(Str(name)),
      m_namespace(Str(namespaceUri)),
      m_attributes(new CAttributeCol("", "##any", "")),
      m_children(new CElementCol("##any", "", 0, -1)) {
    SetElementName(m_name.c_str());
}

CElement::CElement(const CElement& other)
    : CXmlObjectBase(other),
      m_name(other.m_name),
      m_namespace(other.m_namespace),
      m_text(other.m_text),
      m_attributes(other.m_attributes->Clone()),
      m_children(other.m_children->Clone()),
      m_typeName(other.m_typeName),
      m_typeNamespace(other.m_typeNamespace) {
    SetElementName(m_name.c_str());
}

CElement::~CElement() = default;

CElement* CElement::Clone() const { return new CElement(*this); }

const std::string& CElement::GetName() const { return m_name; }
std::string CElement::GetNamespace() const { return m_namespace; }
std::string CElement::GetTargetNamespace() const { return m_namespace; }
const std::string& CElement::GetText() const { return m_text; }
void CElement::SetText(const char* text) { m_text = Str(text); }
CSmartPtr<CAttributeCol> CElement::GetAttributes() const { return m_attributes; }
CSmartPtr<CElementCol> CElement::GetChildren() const { return m_children; }

const std::string& CElement::GetTypeName() const { return m_typeName; }
const std::string& CElement::GetTypeNamespace() const { return m_typeNamespace; }
void CElement::SetType(const char* typeName, const char* typeNamespace) {
    m_typeName = Str(typeName);
    m_typeNamespace = m_typeName.empty() ? std::string() : Str(typeNamespace);
}

void CElement::ToXml_Int(CXmlWriter* writer, bool isRoot, const char*,
                         const CSerializationContext& ctx, bool) const {
    if (m_name.empty()) throw CKxInvalidStateException("The untyped element has no name");
    if (isRoot) {
        for (const std::string& pi : ctx.GetProcessingInstructions()) writer->WritePI(pi);
        const CNamespaceAliasMap& aliases = ctx.GetNamespaceAliases();
        for (int i = 0; i < aliases.GetNamespaceCount(); ++i) {
            const std::string uri = aliases.GetNamespaceAt(i);
            writer->AddNamespace(aliases.GetAliasFromNamespace(uri.c_str()), uri);
        }
        if (!ctx.GetDefaultNamespaceURI().empty())
            writer->SetDefaultNamespace(ctx.GetDefaultNamespaceURI());
    }
    writer->WriteStartElement(m_name, m_namespace);
    if (isRoot) {
        // The getter hands over one reference: keep it in a smart pointer and drop the extra.
        CAttributeCol* raw = ctx.GetAdditionalRootAttributes();
        CSmartPtr<CAttributeCol> extra(raw);
        raw->Release();
        if (extra->GetCount() > 0) extra->ToXml_Int(writer, false, "", ctx, false);
    }
    if (!m_typeName.empty()) {
        KxVariant asString;
        asString.SetString("");
        writer->WriteAttributeType(m_typeName, m_typeNamespace, asString.GetItemType());
    }
    m_attributes->ToXml_Int(writer, false, "", ctx, false);
    if (!m_text.empty()) {
        KxVariant asString;
        asString.SetString("");
        writer->WriteString(m_text, asString.GetItemType(), false);
    }
    for (CXmlCollection::CNode* node = m_children->GetHead(); node; node = node->m_next)
        node->m_item->ToXml_Int(writer, false, node->m_item->GetNamespace().c_str(), ctx, false);
    writer->WriteEndElement();
}

CXmlElement* CElement::FromXml_Int(CXmlElement* element, CXmlElement*,
                                   const CSerializationContext& ctx, bool) {
    OnPreRead();
    m_name = element->GetLocalName();
    m_namespace = element->GetNamespaceURI();
    SetElementName(m_name.c_str());
    m_typeName.clear();
    m_typeNamespace.clear();
    m_attributes->Clear();
    m_children->Clear();

    for (const CXmlAttribute* attribute : element->GetAttributes()) {
        if (IsDeclaration(*attribute)) continue;
        if (IsTypeAttribute(*attribute) && ReadType(*element, attribute->GetValue())) continue;
        m_attributes->Add(attribute->GetLocalName().c_str(), attribute->GetValue().c_str(),
                          attribute->GetNamespaceURI().c_str());
    }
    CXmlElement* child = element->GetFirstElement();
    // Character data between child elements is usually indentation; it is kept only when it
    // holds more than blanks (or when there are no children).
    m_text = child && IsBlank(element->GetText()) ? std::string() : element->GetText();
    for (; child; child = child->GetNextSiblingElement()) {
        CSmartPtr<CElement> item(
            new CElement(child->GetLocalName().c_str(), child->GetNamespaceURI().c_str()));
        item->FromXml_Int(child, child->GetFirstElement(), ctx, false);
        m_children->AppendItem(item);
    }
    return nullptr;
}

bool CElement::ReadType(const CXmlElement& element, const std::string& value) {
    // The prefix means something only in the input's bindings; keep the resolved name so the
    // writer can declare a prefix of its own. A prefix the document does not know leaves the
    // attribute as plain text.
    const CXmlDocument* document = element.GetDocument();
    if (!document) return false;
    const std::string::size_type colon = value.find(':');
    const std::string prefix = colon == std::string::npos ? std::string() : value.substr(0, colon);
    const std::string local = colon == std::string::npos ? value : value.substr(colon + 1);
    const std::string& ns = document->LookupNamespaceFromAlias(prefix.c_str());
    if (local.empty() || (!prefix.empty() && ns.empty())) return false;
    m_typeName = local;
    m_typeNamespace = ns;
    return true;
}

}  // namespace KxXmlLib16
