// Fast Infoset documents into the XML tree, in one pass over the bytes without recursion.
#include "fastinfoset/CFastInfosetReader.h"

#include <langinfo.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "CEncoder.h"
#include "CFastInfosetContext.h"
#include "CFastInfosetWriter.h"
#include "CKxException.h"
#include "CSerializationContext.h"
#include "CXmlDocument.h"
#include "FormatString.h"
#include "fastinfoset/CFIDecoder.h"

namespace KxXmlLib16 {

namespace {

// The only XML declarations a Fast Infoset document may start with, octet for octet.
const char* const kDeclarations[] = {
    "<?xml encoding='finf'?>",
    "<?xml version='1.0' encoding='finf'?>",
    "<?xml version='1.1' encoding='finf'?>",
    "<?xml encoding='finf' standalone='no'?>",
    "<?xml encoding='finf' standalone='yes'?>",
    "<?xml version='1.0' encoding='finf' standalone='no'?>",
    "<?xml version='1.1' encoding='finf' standalone='no'?>",
    "<?xml version='1.0' encoding='finf' standalone='yes'?>",
    "<?xml version='1.1' encoding='finf' standalone='yes'?>",
};

// Identification (E0 00) followed by version 1 (00 01).
const unsigned char kIdentification[] = {0xE0, 0x00, 0x00, 0x01};

const char kCDATAStart[] = "<![CDATA[";
const char kCDATAEnd[] = "]]>";

const unsigned char kTerminator = 0xF0;
const unsigned char kDoubleTerminator = 0xFF;
const unsigned char kProcessingInstruction = 0xE1;
const unsigned char kComment = 0xE2;

bool StartsWith(const unsigned char* data, unsigned long length, const void* prefix,
                unsigned long prefixLength) {
    return length >= prefixLength && std::memcmp(data, prefix, prefixLength) == 0;
}

// Length of the XML declaration the bytes start with, or 0.
unsigned long DeclarationLength(const unsigned char* data, unsigned long length) {
    for (const char* declaration : kDeclarations) {
        const unsigned long declarationLength = std::strlen(declaration);
        if (StartsWith(data, length, declaration, declarationLength)) return declarationLength;
    }
    return 0;
}

// The XML reader hands out UTF-8 unchanged when the local code page is UTF-8 (or conversions
// are off); otherwise it converts to the local code page. Fast Infoset text follows suit.
bool NeedsConversion() {
    if (IsASCIIOnly()) return false;
    const char* codeset = nl_langinfo(CODESET);
    return codeset == nullptr ||
           (std::strcmp(codeset, "UTF-8") != 0 && std::strcmp(codeset, "utf8") != 0);
}

// One document's decoding: the header, then the items of the document and its elements.
class CDocumentDecoder {
public:
    CDocumentDecoder(const unsigned char* data, unsigned long length, unsigned long start,
                     CXmlDocument& doc, const CFastInfosetContext& settings)
        : m_in(data, length, start, NeedsConversion()),
          m_doc(doc),
          m_settings(settings),
          m_namespaces(doc.GetSchemaType() != SchemaType_NoNamespace),
          m_keepCDATA(!doc.GetContext().GetStripCDATA()),
          m_depth(0),
          m_rootSeen(false) {}

    void Run() {
        Header();
        Items();
        if (!m_in.AtEnd()) CFIDecoder::FailAt(m_in.Offset(), "data after the end of the document");
    }

private:
    void Header();
    void InitialVocabulary();
    void Items();
    void Element(unsigned char first);
    void NamespaceAttributes();
    void Attributes(CXmlElement* element);
    void Chunk(unsigned char first);
    void ProcessingInstruction();
    void Comment();
    void DocumentType(unsigned char first);
    // "p:local" or "local", the name of the XML reader without namespace processing.
    std::string_view PlainName(std::string_view prefix, std::string_view local);

    CFIDecoder m_in;
    CXmlDocument& m_doc;
    const CFastInfosetContext& m_settings;
    bool m_namespaces;
    bool m_keepCDATA;
    // Open elements.
    size_t m_depth;
    bool m_rootSeen;
    // Without namespace processing, namespace attributes become attributes of the element that
    // follows them.
    std::vector<std::pair<std::string_view, std::string_view>> m_pendingDeclarations;
    std::string m_name;
};

void CDocumentDecoder::Header() {
    const unsigned char presence = m_in.Next();
    if ((presence & 0x80) != 0) m_in.Fail("non-zero padding bit in the header");
    if ((presence & 0x40) != 0) {
        // Additional data: pairs of identifier and octets, meaningless to this reader.
        for (unsigned long count = m_in.ItemCount(); count > 0; --count) {
            m_in.OctetString();
            const unsigned char first = m_in.Next();
            if ((first & 0x80) != 0) m_in.Fail("invalid additional data");
            m_in.Take(m_in.LengthOnBit2(first));
        }
    }
    if ((presence & 0x20) != 0) InitialVocabulary();
    if ((presence & 0x10) != 0) {
        // Notations: name, then the system and public identifiers their flags announce.
        for (unsigned char item = m_in.Next(); item != kTerminator; item = m_in.Next()) {
            if ((item & 0xFC) != 0xC0) {
                m_in.Fail(FormatString("invalid notation octet 0x%02X", item));
            }
            m_in.IdentifyingString(m_in.m_otherNCNames, "other NCName");
            if ((item & 0x02) != 0) m_in.IdentifyingString(m_in.m_otherURIs, "other URI");
            if ((item & 0x01) != 0) m_in.IdentifyingString(m_in.m_otherURIs, "other URI");
        }
    }
    if ((presence & 0x08) != 0) {
        // Unparsed entities: name, system identifier, optional public identifier, notation.
        for (unsigned char item = m_in.Next(); item != kTerminator; item = m_in.Next()) {
            if ((item & 0xFE) != 0xD0) {
                m_in.Fail(FormatString("invalid unparsed entity octet 0x%02X", item));
            }
            m_in.IdentifyingString(m_in.m_otherNCNames, "other NCName");
            m_in.IdentifyingString(m_in.m_otherURIs, "other URI");
            if ((item & 0x01) != 0) m_in.IdentifyingString(m_in.m_otherURIs, "other URI");
            m_in.IdentifyingString(m_in.m_otherNCNames, "other NCName");
        }
    }
    // The character encoding scheme is informational: every string says its own format.
    if ((presence & 0x04) != 0) m_in.OctetString();
    if ((presence & 0x02) != 0 && m_in.Next() > 1) m_in.Fail("invalid standalone octet");
    if ((presence & 0x01) != 0) m_in.NonIdentifyingString(m_in.m_otherStrings, "other string");
}

void CDocumentDecoder::InitialVocabulary() {
    const unsigned char flags1 = m_in.Next();
    if ((flags1 & 0xE0) != 0) m_in.Fail("non-zero padding in the initial vocabulary");
    const unsigned char flags2 = m_in.Next();
    if ((flags1 & 0x10) != 0) {
        const std::string_view uri = m_in.OctetString();
        std::string expected = m_settings.GetExternalVocabularyURI();
        if (expected.empty()) expected = CFastInfosetWriter::DefaultExternalVocabularyURI;
        if (uri != expected) {
            throw CKxException(
                FormatString("Fast Infoset document needs the external vocabulary [%s]",
                             std::string(uri).c_str()));
        }
        m_in.LoadVocabulary(m_settings.GetVocabulary());
    }
    if ((flags1 & 0x08) != 0) {
        m_in.Fail("restricted alphabets defined by the document are not supported");
    }
    if ((flags1 & 0x04) != 0) {
        // Application algorithms get indexes this reader refuses anyway when data uses them.
        for (unsigned long count = m_in.ItemCount(); count > 0; --count) m_in.OctetString();
    }
    auto strings = [this](CFIDecoder::StringTable& table) {
        for (unsigned long count = m_in.ItemCount(); count > 0; --count) {
            CFIDecoder::AddString(table, m_in.OctetString());
        }
    };
    auto values = [this](CFIDecoder::StringTable& table) {
        for (unsigned long count = m_in.ItemCount(); count > 0; --count) {
            m_in.NonIdentifyingString(table, "initial vocabulary value", true);
        }
    };
    auto names = [this](CFIDecoder::QNameTable& table) {
        for (unsigned long count = m_in.ItemCount(); count > 0; --count) {
            const unsigned char parts = m_in.Next();
            if ((parts & 0xFC) != 0 || parts == 0x02) m_in.Fail("invalid name surrogate octet");
            CFIQName name;
            auto index = [this]() {
                const unsigned char first = m_in.Next();
                if ((first & 0x80) != 0) m_in.Fail("invalid name surrogate index");
                return m_in.IndexOnBit2(first);
            };
            if ((parts & 0x02) != 0) {
                name.prefix = m_in.StringAt(m_in.m_prefixes, index(), "prefix");
            }
            if ((parts & 0x01) != 0) {
                name.ns = m_in.StringAt(m_in.m_namespaces, index(), "namespace name");
            }
            name.local = m_in.StringAt(m_in.m_localNames, index(), "local name");
            CFIDecoder::AddQName(table, name);
        }
    };
    if ((flags1 & 0x02) != 0) strings(m_in.m_prefixes);
    if ((flags1 & 0x01) != 0) strings(m_in.m_namespaces);
    if ((flags2 & 0x80) != 0) strings(m_in.m_localNames);
    if ((flags2 & 0x40) != 0) strings(m_in.m_otherNCNames);
    if ((flags2 & 0x20) != 0) strings(m_in.m_otherURIs);
    if ((flags2 & 0x10) != 0) values(m_in.m_attributeValues);
    if ((flags2 & 0x08) != 0) values(m_in.m_chunks);
    if ((flags2 & 0x04) != 0) values(m_in.m_otherStrings);
    if ((flags2 & 0x02) != 0) names(m_in.m_elementNames);
    if ((flags2 & 0x01) != 0) names(m_in.m_attributeNames);
}

void CDocumentDecoder::Items() {
    bool doctypeAllowed = true;
    for (;;) {
        const unsigned char first = m_in.Next();
        if (first < 0x80) {
            if (m_depth == 0 && m_rootSeen) m_in.Fail("second document element");
            doctypeAllowed = false;
            Element(first);
        } else if (first == kProcessingInstruction) {
            ProcessingInstruction();
        } else if (first == kComment) {
            Comment();
        } else if (first == kTerminator || first == kDoubleTerminator) {
            const size_t ends = first == kTerminator ? 1 : 2;
            // The list that ends after the innermost open element is the document's.
            if (ends > m_depth + 1) m_in.Fail("terminator without an open list");
            if (ends > m_depth) {
                for (; m_depth > 0; --m_depth) m_doc.EndElement();
                if (!m_rootSeen) m_in.Fail("document without an element");
                return;
            }
            for (size_t i = 0; i < ends; ++i, --m_depth) m_doc.EndElement();
        } else if (m_depth > 0 && first < 0xC0) {
            Chunk(first);
        } else if (m_depth == 0 && (first & 0xFC) == 0xC4 && doctypeAllowed) {
            doctypeAllowed = false;
            DocumentType(first);
        } else if (m_depth > 0 && (first & 0xFC) == 0xC8) {
            m_in.Fail("unexpanded entity reference");
        } else {
            m_in.Fail(FormatString("invalid item octet 0x%02X", first));
        }
    }
}

void CDocumentDecoder::Element(unsigned char first) {
    const bool hasAttributes = (first & 0x40) != 0;
    unsigned char nameOctet = first;
    m_pendingDeclarations.clear();
    if ((first & 0x3F) == 0x38) {
        NamespaceAttributes();
        nameOctet = m_in.Next();
        if ((nameOctet & 0xC0) != 0) {
            m_in.Fail(FormatString("invalid element octet 0x%02X", nameOctet));
        }
    }
    const unsigned bits = nameOctet & 0x3Fu;
    CFIQName literal;
    const CFIQName* name = &literal;
    if (bits <= 0x30) {
        name = &m_in.QNameAt(m_in.m_elementNames, m_in.IndexOnBit3(nameOctet), "element name");
    } else if (bits == 0x3C || bits == 0x3D || bits == 0x3F) {
        if (bits == 0x3F) literal.prefix = m_in.IdentifyingString(m_in.m_prefixes, "prefix");
        if ((bits & 0x01) != 0) {
            literal.ns = m_in.IdentifyingString(m_in.m_namespaces, "namespace name");
        }
        literal.local = m_in.IdentifyingString(m_in.m_localNames, "local name");
        CFIDecoder::AddQName(m_in.m_elementNames, literal);
    } else {
        m_in.Fail(FormatString("invalid element octet 0x%02X", nameOctet));
    }
    CXmlElement* element;
    if (m_namespaces) {
        element = m_rootSeen ? m_doc.AddChildElement(name->ns, name->local)
                             : m_doc.AddDocElement(name->ns, name->local);
    } else {
        const std::string_view plain = PlainName(name->prefix, name->local);
        element = m_rootSeen ? m_doc.AddChildElement(std::string_view(), plain)
                             : m_doc.AddDocElement(std::string_view(), plain);
        for (const auto& declaration : m_pendingDeclarations) {
            const std::string_view attribute = declaration.first.empty()
                                                   ? std::string_view("xmlns")
                                                   : PlainName("xmlns", declaration.first);
            m_doc.AddElementAttribute(element, attribute, declaration.second, std::string_view());
        }
    }
    m_rootSeen = true;
    ++m_depth;
    if (hasAttributes) Attributes(element);
}

void CDocumentDecoder::NamespaceAttributes() {
    for (unsigned char item = m_in.Next(); item != kTerminator; item = m_in.Next()) {
        if ((item & 0xFC) != 0xCC) {
            m_in.Fail(FormatString("invalid namespace attribute octet 0x%02X", item));
        }
        if (item == 0xCE) m_in.Fail("prefix without a namespace name");
        std::string_view prefix;
        std::string_view ns;
        if ((item & 0x02) != 0) prefix = m_in.IdentifyingString(m_in.m_prefixes, "prefix");
        if ((item & 0x01) != 0) ns = m_in.IdentifyingString(m_in.m_namespaces, "namespace name");
        if (m_namespaces) {
            m_doc.AddNamespaceBinding(prefix, ns);
        } else {
            m_pendingDeclarations.emplace_back(prefix, ns);
        }
    }
}

void CDocumentDecoder::Attributes(CXmlElement* element) {
    for (;;) {
        const unsigned char first = m_in.Next();
        if (first == kTerminator) return;
        if (first == kDoubleTerminator) {
            // The attribute list and the element end together.
            m_doc.EndElement();
            --m_depth;
            return;
        }
        CFIQName literal;
        const CFIQName* name = &literal;
        if (first < 0x70) {
            name = &m_in.QNameAt(m_in.m_attributeNames, m_in.IndexOnBit2(first), "attribute name");
        } else if (first == 0x78 || first == 0x79 || first == 0x7B) {
            if (first == 0x7B) literal.prefix = m_in.IdentifyingString(m_in.m_prefixes, "prefix");
            if ((first & 0x01) != 0) {
                literal.ns = m_in.IdentifyingString(m_in.m_namespaces, "namespace name");
            }
            literal.local = m_in.IdentifyingString(m_in.m_localNames, "local name");
            CFIDecoder::AddQName(m_in.m_attributeNames, literal);
        } else {
            m_in.Fail(FormatString("invalid attribute octet 0x%02X", first));
        }
        const std::string_view value =
            m_in.NonIdentifyingString(m_in.m_attributeValues, "attribute value");
        if (m_namespaces) {
            m_doc.AddElementAttribute(element, name->local, value, name->ns);
        } else {
            m_doc.AddElementAttribute(element, PlainName(name->prefix, name->local), value,
                                      std::string_view());
        }
    }
}

void CDocumentDecoder::Chunk(unsigned char first) {
    bool cdata = false;
    const std::string_view text = m_in.CharacterChunk(first, cdata);
    CXmlElement* element = m_doc.GetCurrentElement();
    if (cdata && m_keepCDATA) m_doc.AppendTextExcludingCR(element, kCDATAStart);
    m_doc.AppendTextExcludingCR(element, text.data(), text.size());
    if (cdata && m_keepCDATA) m_doc.AppendTextExcludingCR(element, kCDATAEnd);
}

void CDocumentDecoder::ProcessingInstruction() {
    m_in.IdentifyingString(m_in.m_otherNCNames, "other NCName");
    m_in.NonIdentifyingString(m_in.m_otherStrings, "other string");
}

void CDocumentDecoder::Comment() {
    m_in.NonIdentifyingString(m_in.m_otherStrings, "other string");
}

void CDocumentDecoder::DocumentType(unsigned char first) {
    // Only the identifiers are carried, and the tree keeps neither: they just fill the tables.
    if ((first & 0x02) != 0) m_in.IdentifyingString(m_in.m_otherURIs, "other URI");
    if ((first & 0x01) != 0) m_in.IdentifyingString(m_in.m_otherURIs, "other URI");
    for (unsigned char item = m_in.Next(); item != kTerminator; item = m_in.Next()) {
        if (item != kProcessingInstruction) {
            m_in.Fail(FormatString("invalid document type item octet 0x%02X", item));
        }
        ProcessingInstruction();
    }
}

std::string_view CDocumentDecoder::PlainName(std::string_view prefix, std::string_view local) {
    if (prefix.empty()) return local;
    m_name.assign(prefix.data(), prefix.size());
    m_name += ':';
    m_name.append(local.data(), local.size());
    return m_name;
}

}  // namespace

bool CFastInfosetReader::HasHeader(const unsigned char* data, unsigned long length) {
    if (data == nullptr) return false;
    const unsigned long offset = DeclarationLength(data, length);
    return StartsWith(data + offset, length - offset, kIdentification, sizeof kIdentification);
}

bool CFastInfosetReader::Parse(const unsigned char* data, unsigned long length, CXmlDocument& doc,
                               const CFastInfosetContext& settings) {
    if (!HasHeader(data, length)) return false;
    const unsigned long start = DeclarationLength(data, length) + sizeof kIdentification;
    CDocumentDecoder decoder(data, length, start, doc, settings);
    decoder.Run();
    return true;
}

}  // namespace KxXmlLib16
