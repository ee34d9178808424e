#include "CFastInfosetWriter.h"

#include "CEncoder.h"
#include "CFastInfosetBinaryData.h"
#include "CKxException.h"
#include "FormatString.h"

namespace KxXmlLib16 {

namespace {

const char kXsiNamespace[] = "http://www.w3.org/2001/XMLSchema-instance";
const char* const kDeclarations[] = {
    "<?xml encoding='finf'?>",
    "<?xml encoding='finf' standalone='yes'?>",
    "<?xml encoding='finf' standalone='no'?>",
    "<?xml version='1.0' encoding='finf'?>",
    "<?xml version='1.0' encoding='finf' standalone='yes'?>",
    "<?xml version='1.0' encoding='finf' standalone='no'?>",
    "<?xml version='1.1' encoding='finf'?>",
    "<?xml version='1.1' encoding='finf' standalone='yes'?>",
    "<?xml version='1.1' encoding='finf' standalone='no'?>"};

const unsigned char kTerminator = 0xF0;
const unsigned char kDoubleTerminator = 0xFF;

}  // namespace

const char* const CFastInfosetWriter::DefaultExternalVocabularyURI =
    "urn:kxxmllib16:fastinfoset:vocabulary";

CFastInfosetWriter::CFastInfosetWriter(CBinaryStream& stream, CFastInfosetContext& context)
    : CXmlWriter("CFastInfosetWriter"),
      m_stream(stream),
      m_context(context),
      m_vocabulary(context.GetUseGeneratedVocabulary() ? context.GetVocabulary()
                                                       : CFIVocabulary()),
      m_terminatorPending(false) {}

CFastInfosetWriter::~CFastInfosetWriter() {}

const CFIVocabulary& CFastInfosetWriter::GetVocabulary() const { return m_vocabulary; }

// ---------------------------------------------------------------------------------------------
// Document

void CFastInfosetWriter::WriteStartDocument(FInfoDecl declaration) {
    if (declaration >= FInfoDecl_1 && declaration <= FInfoDecl_9) {
        m_stream.Append(CEncoder::LocalCodePageToUtf8Binary(kDeclarations[declaration - 1]));
    }
    static const unsigned char header[] = {0xE0, 0x00, 0x00, 0x01};
    m_stream.Append(header, sizeof header);
    if (!m_context.GetUseGeneratedVocabulary()) {
        m_stream.Append(0x00);
        return;
    }
    static const unsigned char externalOnly[] = {0x20, 0x10, 0x00};
    m_stream.Append(externalOnly, sizeof externalOnly);
    std::string uri = m_context.GetExternalVocabularyURI();
    if (uri.empty()) {
        uri = DefaultExternalVocabularyURI;
    }
    NonEmptyOctetUTF8StringBit2(uri);
}

void CFastInfosetWriter::WriteEndDocument() {
    CompletePendingStart();
    m_stream.Append(m_terminatorPending ? kDoubleTerminator : kTerminator);
    m_terminatorPending = false;
}

void CFastInfosetWriter::WriteComment(const std::string&) {}

void CFastInfosetWriter::WritePI(const std::string&) {}

void CFastInfosetWriter::WriteInlineSchema(const std::string&) {}

// ---------------------------------------------------------------------------------------------
// Elements

void CFastInfosetWriter::WriteStartElement(const std::string& name, const std::string& ns) {
    CompletePendingStart();
    WritePendingTerminator();
    if (CXmlWriterContext* parent = GetCurrentContext()) {
        parent->IncrementChildCount();
    }
    CXmlWriterContext& context = *PushContext(name, ns);
    context.SetStartTagOpen(true);
    m_pendingPrefix.clear();
    m_pendingDeclarations.clear();
    m_pendingAttributes.clear();

    const bool isRoot = context.GetParent() == nullptr;
    // A default namespace in scope would capture an element in no namespace, so the element
    // takes it away again (the root simply does not declare it).
    const bool undeclareDefault = ns.empty() && !context.GetDefaultNamespace().empty();
    if (undeclareDefault) {
        context.SetDefaultNamespace(std::string());
        if (!isRoot) {
            m_pendingDeclarations.push_back({false, std::string(), std::string()});
        }
    }
    if (isRoot) {
        // The bindings made on the writer before the document began are declared on the root;
        // the built-in binding of "xml" needs no declaration.
        const std::string& defaultNamespace = CXmlWriter::GetDefaultNamespace();
        if (!defaultNamespace.empty() && !undeclareDefault) {
            m_pendingDeclarations.push_back({false, std::string(), defaultNamespace});
        }
        for (const NamespaceMap::value_type& entry : CXmlWriter::GetNamespaceMap()) {
            if (entry.first != XML_NAMESPACE) {
                m_pendingDeclarations.push_back({true, entry.second, entry.first});
            }
        }
    }
    if (ns.empty() || ns == context.GetDefaultNamespace()) {
        return;
    }
    if (const std::string* prefix = context.FindNamespacePrefix(ns)) {
        m_pendingPrefix = *prefix;
        return;
    }
    m_pendingPrefix = GetUniquePrefix(context.GetNamespaceMap());
    context.SetNamespaceMapValue(ns, m_pendingPrefix);
    m_pendingDeclarations.push_back({true, m_pendingPrefix, ns});
}

void CFastInfosetWriter::CompletePendingStart() {
    CXmlWriterContext* context = GetCurrentContext();
    if (context == nullptr || !context->IsStartTagOpen()) {
        return;
    }
    context->SetStartTagOpen(false);
    const bool hasAttributes = !m_pendingAttributes.empty();
    if (!m_pendingDeclarations.empty()) {
        m_stream.Append(static_cast<unsigned char>(hasAttributes ? 0x78 : 0x38));
        for (const NamespaceDeclaration& declaration : m_pendingDeclarations) {
            m_stream.Append(static_cast<unsigned char>(
                0xCC | (declaration.hasPrefix ? 0x02 : 0) | (declaration.ns.empty() ? 0 : 0x01)));
            if (declaration.hasPrefix) {
                IdentifyingString(declaration.prefix, true);
            }
            if (!declaration.ns.empty()) {
                IdentifyingString(declaration.ns, false);
            }
        }
        // This list never pairs with another terminator: the element's name follows.
        m_stream.Append(kTerminator);
    }
    QualifiedNameOrIndexBit3(m_pendingPrefix, context->GetNamespace(), context->GetName(),
                             hasAttributes && m_pendingDeclarations.empty());
    if (!hasAttributes) {
        return;
    }
    for (const PendingAttribute& attribute : m_pendingAttributes) {
        QualifiedNameOrIndexBit2(attribute.prefix, attribute.ns, attribute.name);
        NonIdentifyingStringOrIndexBit1(attribute.value, attribute.type);
    }
    m_pendingAttributes.clear();
    // Content or the element's end follows, either of which would close the list anyway.
    m_stream.Append(kTerminator);
}

void CFastInfosetWriter::WritePendingTerminator() {
    if (m_terminatorPending) {
        m_stream.Append(kTerminator);
        m_terminatorPending = false;
    }
}

void CFastInfosetWriter::EndList() {
    if (m_terminatorPending) {
        m_stream.Append(kDoubleTerminator);
        m_terminatorPending = false;
    } else {
        m_terminatorPending = true;
    }
}

void CFastInfosetWriter::WriteEndElement() {
    if (GetCurrentContext() == nullptr) {
        return;
    }
    CompletePendingStart();
    EndList();
    PopContext();
}

void CFastInfosetWriter::WriteString(const std::string& text, ItemType type, bool) {
    CompletePendingStart();
    if (text.empty()) {
        return;
    }
    // Text after a child element belongs to the parent only once the child's end is written.
    WritePendingTerminator();
    NonIdentifyingStringOrIndexBit3(text, type);
}

// ---------------------------------------------------------------------------------------------
// Attributes

void CFastInfosetWriter::RequireOpenStart() {
    CXmlWriterContext* context = GetCurrentContext();
    if (context == nullptr || !context->IsStartTagOpen()) {
        throw CKxException("Attributes must be added before elements");
    }
}

std::string CFastInfosetWriter::PrefixForAttribute(CXmlWriterContext& context,
                                                   const std::string& ns) {
    if (ns.empty()) {
        return std::string();
    }
    if (const std::string* prefix = context.FindNamespacePrefix(ns)) {
        return *prefix;
    }
    // Attributes never take the default namespace, so a namespace bound only as the default
    // (or not at all) gets a prefix of its own, declared on this element.
    std::string fresh = GetUniquePrefix(context.GetNamespaceMap());
    context.SetNamespaceMapValue(ns, fresh);
    m_pendingDeclarations.push_back({true, fresh, ns});
    return fresh;
}

void CFastInfosetWriter::AddAttribute(const std::string& name, const std::string& ns,
                                      const std::string& value, ItemType type) {
    CXmlWriterContext& context = *GetCurrentContext();
    std::string prefix = PrefixForAttribute(context, ns);
    m_pendingAttributes.push_back({prefix, ns, name, value, type});
}

void CFastInfosetWriter::WriteAttributeString(const std::string& name, const std::string& ns,
                                              const std::string& value, ItemType type) {
    RequireOpenStart();
    AddAttribute(name, ns, value, type);
}

void CFastInfosetWriter::WriteAttributeType(const std::string& typeName,
                                            const std::string& typeNs, ItemType type) {
    RequireOpenStart();
    CXmlWriterContext& context = *GetCurrentContext();
    std::string value = typeName;
    if (!typeNs.empty() && typeNs != context.GetDefaultNamespace()) {
        value = PrefixForAttribute(context, typeNs) + ":" + typeName;
    }
    AddAttribute("type", kXsiNamespace, value, type);
}

void CFastInfosetWriter::WriteAttributeNil() {
    RequireOpenStart();
    AddAttribute("nil", kXsiNamespace, "true", ItemType_boolean);
}

}  // namespace KxXmlLib16
