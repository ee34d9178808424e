#include "CXmlTextWriter.h"

#include <cstring>

#include "CKxException.h"
#include "io/CTextAppender.h"

namespace KxXmlLib16 {

namespace {

const char kXsiNamespace[] = "http://www.w3.org/2001/XMLSchema-instance";
const char kCDataStart[] = "<![CDATA[";
constexpr unsigned int kFlushThreshold = 4096;
// Texts up to this length are gathered with the surrounding markup; longer ones that need no
// escaping are handed to the stream directly.
constexpr size_t kLongText = 256;

// The characters escaping replaces or drops, and the terminating NUL: bit 1 marks them in
// element text, bit 2 in attribute values. Values are mostly short, where a table lookup per
// character beats strcspn's setup.
struct SpecialTable {
    unsigned char marks[256];
    constexpr SpecialTable() : marks() {
        const char both[] = {'\0', '&', '<', '>', '\n', '\r'};
        for (const char c : both) {
            marks[static_cast<unsigned char>(c)] = 3;
        }
        marks[static_cast<unsigned char>('"')] = 2;
    }
};
constexpr SpecialTable kSpecials;

// Length of the run of `text` that needs no escaping.
inline size_t PlainRun(const char* text, bool inAttribute) {
    const unsigned char mask = inAttribute ? 2 : 1;
    const unsigned char* p = reinterpret_cast<const unsigned char*>(text);
    while ((kSpecials.marks[*p] & mask) == 0) {
        ++p;
    }
    return static_cast<size_t>(p - reinterpret_cast<const unsigned char*>(text));
}

inline bool StartsWith(const std::string& text, const char* prefix, size_t prefixLength) {
    return text.compare(0, prefixLength, prefix, prefixLength) == 0;
}

}  // namespace

CXmlTextWriter::CXmlTextWriter(CTextStream& stream)
    : CXmlWriter("CXmlTextWriter"),
      m_writeDefaultElementValues(false),
      m_indentChars("\t"),
      m_endOfLine("\n"),
      m_eolType(EOLType_LF),
      m_format(true),
      m_stream(stream),
      m_elementStarted(false),
      m_out(std::make_unique<CTextAppender>(stream)) {}

CXmlTextWriter::~CXmlTextWriter() = default;

void CXmlTextWriter::Open() {
    CXmlWriter::Open();
    m_stream.Open();
}

void CXmlTextWriter::Close() {
    m_stream.Close();
    CXmlWriter::Close();
}

// ---------------------------------------------------------------------------------------------
// Markup assembly

inline void CXmlTextWriter::Put(char c) { m_out->Put(c); }

inline void CXmlTextWriter::Put(const char* text, size_t length) { m_out->Put(text, length); }

inline void CXmlTextWriter::Put(const std::string& text) { m_out->Put(text); }

inline void CXmlTextWriter::PutText(const std::string& text) {
    Put(text.c_str(), std::strlen(text.c_str()));
}

void CXmlTextWriter::FlushIfFull() {
    if (m_stream.GetLength() >= kFlushThreshold) {
        m_stream.Flush();
    }
}

void CXmlTextWriter::AddIndent(int depth) {
    if (depth <= 0) {
        return;
    }
    const size_t level = static_cast<size_t>(depth);
    if (m_indents.empty()) {
        m_indents.emplace_back();
    }
    while (m_indents.size() <= level) {
        m_indents.push_back(m_indents.back() + m_indentChars);
    }
    Put(m_indents[level]);
}

void CXmlTextWriter::AddQualifiedName(const std::string* prefix, const std::string& name) {
    if (prefix != nullptr) {
        Put(*prefix);
        Put(':');
    }
    Put(name);
}

void CXmlTextWriter::AddNamespaceDeclaration(const std::string& prefix, const std::string& ns) {
    Put(" xmlns:", 7);
    Put(prefix);
    Put("=\"", 2);
    Put(ns);
    Put('"');
}

std::string CXmlTextWriter::BindUniquePrefix(CXmlWriterContext& context,
                                             const std::string& ns) {
    std::string prefix = GetUniquePrefix(context.GetNamespaceMap());
    context.SetNamespaceMapValue(ns, prefix);
    return prefix;
}

void CXmlTextWriter::PutEscaped(const char* text, bool inAttribute) {
    for (;;) {
        const size_t run = PlainRun(text, inAttribute);
        Put(text, run);
        text += run;
        switch (*text) {
            case '\0':
                return;
            case '&':
                Put("&amp;", 5);
                break;
            case '<':
                Put("&lt;", 4);
                break;
            case '>':
                Put("&gt;", 4);
                break;
            case '"':
                Put("&quot;", 6);
                break;
            case '\n':
                if (inAttribute) {
                    Put("&#xA;", 5);
                } else {
                    Put(m_endOfLine);
                }
                break;
            default:  // '\r' is dropped: line ends are rewritten from the line feed alone
                break;
        }
        ++text;
    }
}

void CXmlTextWriter::PadAndAppend(const std::string& text, bool inAttribute) {
    const char* begin = text.c_str();
    const size_t plainLength =
        PlainRun(begin, inAttribute);
    const bool plain = begin[plainLength] == '\0';
    if (plain && plainLength > kLongText) {
        // A long text that needs no escaping goes to the stream without a copy.
        m_out->Commit();
        m_stream.Append(begin, plainLength);
    } else if (plain) {
        Put(begin, plainLength);
    } else {
        PutEscaped(begin, inAttribute);
    }
}

void CXmlTextWriter::CloseParentElm() {
    CXmlWriterContext* context = GetCurrentContext();
    if (context == nullptr) {
        return;
    }
    context->IncrementChildCount();
    if (context->IsStartTagOpen()) {
        context->SetStartTagOpen(false);
        Put('>');
        if (m_format) {
            Put(m_endOfLine);
        }
    }
}

// ---------------------------------------------------------------------------------------------
// Document-level output

void CXmlTextWriter::WriteStartDocument() {
    const CTextAppender::Scope scope(*m_out);
    Put("<?xml version=\"1.0\"", 19);
    switch (m_stream.GetEncoding()) {
        case XmlEncoding_UTF8:
            Put(" encoding=\"UTF-8\"", 17);
            break;
        case XmlEncoding_UTF16:
            Put(" encoding=\"UTF-16\"", 18);
            break;
        default:
            break;
    }
    Put("?>", 2);
    Put(m_endOfLine);
    m_out->Commit();
    FlushIfFull();
}

void CXmlTextWriter::WriteHeaderDirective(const std::string& text) {
    const CTextAppender::Scope scope(*m_out);
    if (m_elementStarted) {
        throw CKxException("Headed directives must appear before an Element has been added.");
    }
    PutText(text);
    Put(m_endOfLine);
    m_out->Commit();
    FlushIfFull();
}

void CXmlTextWriter::WritePI(const std::string& text) {
    const CTextAppender::Scope scope(*m_out);
    PutText(text);
    Put(m_endOfLine);
    Put(m_endOfLine);
    m_out->Commit();
    FlushIfFull();
}

void CXmlTextWriter::WriteComment(const std::string& text) {
    const CTextAppender::Scope scope(*m_out);
    Put("<!--", 4);
    PadAndAppend(text, false);
    Put("-->", 3);
    Put(m_endOfLine);
    m_out->Commit();
    FlushIfFull();
}

void CXmlTextWriter::WriteInlineSchema(const std::string& text) {
    const CTextAppender::Scope scope(*m_out);
    Put(' ');
    Put(m_endOfLine);
    PutText(text);
    Put(m_endOfLine);
    m_out->Commit();
    FlushIfFull();
}

void CXmlTextWriter::WriteRawElement(const std::string& text) {
    const CTextAppender::Scope scope(*m_out);
    PutText(text);
    if (m_format) {
        Put(m_endOfLine);
    }
    m_out->Commit();
}

// ---------------------------------------------------------------------------------------------
// Elements, text and attributes

void CXmlTextWriter::WriteStartElement(const std::string& name, const std::string& ns) {
    const CTextAppender::Scope scope(*m_out);
    CloseParentElm();
    CXmlWriterContext& context = *PushContext(name, ns);
    context.SetStartTagOpen(true);
    m_elementStarted = true;

    if (m_format) {
        AddIndent(context.GetDepth());
    }
    const bool isRoot = context.GetParent() == nullptr;
    // A default namespace in scope would capture an element written by its bare name, so an
    // element in no namespace takes the default away again, for itself and its content. The
    // root undoes it by not declaring the writer's default namespace at all.
    const bool undeclareDefault = ns.empty() && !context.GetDefaultNamespace().empty();
    if (undeclareDefault) {
        context.SetDefaultNamespace(std::string());
    }
    Put('<');
    if (ns.empty() || ns == context.GetDefaultNamespace()) {
        Put(name);
        if (undeclareDefault && !isRoot) {
            Put(" xmlns=\"\"", 9);
        }
        context.RememberNamePrefix(nullptr);
    } else if (const std::string* prefix = context.FindNamespacePrefix(ns)) {
        AddQualifiedName(prefix, name);
        context.RememberNamePrefix(prefix);
    } else {
        const std::string fresh = BindUniquePrefix(context, ns);
        AddQualifiedName(&fresh, name);
        AddNamespaceDeclaration(fresh, ns);
        context.RememberNamePrefix(context.FindNamespacePrefix(ns));
    }

    if (isRoot) {
        // Only the root declares the bindings made on the writer before the document began.
        const std::string& defaultNamespace = CXmlWriter::GetDefaultNamespace();
        if (!defaultNamespace.empty() && !undeclareDefault) {
            Put(" xmlns=\"", 8);
            Put(defaultNamespace);
            Put('"');
        }
        for (const NamespaceMap::value_type& entry : CXmlWriter::GetNamespaceMap()) {
            if (!StartsWith(entry.first, XML_NAMESPACE.c_str(), XML_NAMESPACE.size())) {
                AddNamespaceDeclaration(entry.second, entry.first);
            }
        }
    }
    m_out->Commit();
    FlushIfFull();
}

void CXmlTextWriter::WriteString(const std::string& text, ItemType /*type*/,
                                 bool isDefaultValue) {
    const CTextAppender::Scope scope(*m_out);
    // Nothing at all for an empty text, so the element can still end as an empty-element tag.
    if (text.empty() || (isDefaultValue && !m_writeDefaultElementValues)) {
        return;
    }
    CXmlWriterContext* context = GetCurrentContext();
    if (context != nullptr && context->IsStartTagOpen()) {
        Put('>');
        context->SetStartTagOpen(false);
    }
    if (text[0] == '<' && StartsWith(text, kCDataStart, sizeof kCDataStart - 1)) {
        m_out->Commit();
        m_stream.Append(text);
    } else {
        PadAndAppend(text, false);
        m_out->Commit();
    }
    FlushIfFull();
}

void CXmlTextWriter::WriteEndElement() {
    const CTextAppender::Scope scope(*m_out);
    CXmlWriterContext* context = GetCurrentContext();
    if (context == nullptr) {
        throw CKxException("There is no open Element to end.");
    }
    if (context->IsStartTagOpen()) {
        Put("/>", 2);
    } else {
        if (m_format && context->GetChildCount() > 0) {
            AddIndent(context->GetDepth());
        }
        Put("</", 2);
        const std::string& ns = context->GetNamespace();
        const std::string* prefix = nullptr;
        // The scope may have changed since the start tag; the end tag follows the bindings now
        // in force. While they are those of the start tag, its prefix is still the answer.
        if (!context->RecallNamePrefix(prefix) && !ns.empty() &&
            ns != context->GetDefaultNamespace()) {
            static const std::string unbound;
            prefix = context->FindNamespacePrefix(ns);
            if (prefix == nullptr) {
                prefix = &unbound;
            }
        }
        AddQualifiedName(prefix, context->GetName());
        Put('>');
    }
    if (m_format) {
        Put(m_endOfLine);
    }
    m_out->Commit();
    PopContext();
    FlushIfFull();
}

void CXmlTextWriter::WriteAttributeString(const std::string& name, const std::string& ns,
                                          const std::string& value, ItemType /*type*/) {
    const CTextAppender::Scope scope(*m_out);
    CXmlWriterContext* context = GetCurrentContext();
    if (context == nullptr || !context->IsStartTagOpen()) {
        throw CKxException("Attributes must be added before elements");
    }
    Put(' ');
    if (!ns.empty()) {
        const std::string* prefix = context->FindNamespacePrefix(ns);
        std::string fresh;
        if (prefix == nullptr) {
            fresh = BindUniquePrefix(*context, ns);
            prefix = &fresh;
            Put("xmlns:", 6);
            Put(fresh);
            Put("=\"", 2);
            Put(ns);
            Put("\" ", 2);
        }
        Put(*prefix);
        Put(':');
    }
    Put(name);
    Put("=\"", 2);
    PutEscaped(value.c_str(), true);
    Put('"');
    m_out->Commit();
    FlushIfFull();
}

void CXmlTextWriter::WriteAttributeType(const std::string& typeName, const std::string& typeNs,
                                        ItemType type) {
    const CTextAppender::Scope scope(*m_out);
    CXmlWriterContext* context = GetCurrentContext();
    if (context == nullptr || !context->IsStartTagOpen()) {
        throw CKxException("Attributes must be added before elements");
    }
    std::string value;
    if (!typeNs.empty() && typeNs != context->GetDefaultNamespace()) {
        const std::string* prefix = context->FindNamespacePrefix(typeNs);
        std::string fresh;
        if (prefix == nullptr) {
            fresh = BindUniquePrefix(*context, typeNs);
            prefix = &fresh;
            // The declaration ends with a space and the attribute starts with one: the two
            // spaces between them are part of the output format.
            AddNamespaceDeclaration(fresh, typeNs);
            Put(' ');
        }
        value.reserve(prefix->size() + 1 + typeName.size());
        value.append(*prefix).append(1, ':').append(typeName);
    } else {
        value = typeName;
    }
    m_out->Commit();
    WriteAttributeString("type", kXsiNamespace, value, type);
}

void CXmlTextWriter::WriteAttributeNil() {
    CXmlWriterContext* context = GetCurrentContext();
    if (context == nullptr || !context->IsStartTagOpen()) {
        throw CKxException("Attributes must be added before elements");
    }
    WriteAttributeString("nil", kXsiNamespace, "true", ItemType_boolean);
}

// ---------------------------------------------------------------------------------------------
// Settings

bool CXmlTextWriter::GetFormat() const { return m_format; }

void CXmlTextWriter::SetFormat(bool format) { m_format = format; }

EOLType CXmlTextWriter::GetEOLType() const { return m_eolType; }

void CXmlTextWriter::SetEOLType(EOLType type) {
    m_endOfLine = EndOfLineFor(type);
    m_eolType = type;
}

const std::string& CXmlTextWriter::GetIndentChars() const { return m_indentChars; }

void CXmlTextWriter::SetIndentChars(const char* chars) {
    m_indentChars = chars != nullptr ? chars : "";
    m_indents.clear();
}

bool CXmlTextWriter::GetWriteDefaultElementValues() const { return m_writeDefaultElementValues; }

void CXmlTextWriter::SetWriteDefaultElementValues(bool write) {
    m_writeDefaultElementValues = write;
}

}  // namespace KxXmlLib16
