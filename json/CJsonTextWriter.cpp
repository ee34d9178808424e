#include "CJsonTextWriter.h"

#include <cstring>

#include "CKxException.h"
#include "FormatString.h"
#include "io/CTextAppender.h"

namespace KxXmlLib16 {

namespace {

const char kXsiNamespace[] = "http://www.w3.org/2001/XMLSchema-instance";
constexpr unsigned int kFlushThreshold = 4096;
// One bit per item type written without quotes: the integers, float, double (3 to 12),
// boolean (24), decimal (25) and integer (26).
constexpr unsigned long kUnquotedTypes = 0x7001FF8UL;
const char kHexDigits[] = "0123456789ABCDEF";

// Bytes that end a run of text copied as it is: every control character for the lenient
// escaping, plus the quotation mark and the backslash for the standard one; both stop at the
// terminating NUL.
struct SpecialBytes {
    bool lenient[256];
    bool standard[256];
};

constexpr SpecialBytes MakeSpecialBytes() {
    SpecialBytes table{};
    for (int c = 0; c < 0x20; ++c) {
        table.lenient[c] = true;
        table.standard[c] = true;
    }
    table.standard[static_cast<unsigned char>('"')] = true;
    table.standard[static_cast<unsigned char>('\\')] = true;
    return table;
}

constexpr SpecialBytes kSpecialBytes = MakeSpecialBytes();

bool IsUnquotedType(ItemType type) {
    const int n = static_cast<int>(type);
    return n >= 0 && n < 27 && ((kUnquotedTypes >> n) & 1UL) != 0;
}

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// The number grammar of JSON: -?(0|[1-9][0-9]*)(\.[0-9]+)?([eE][+-]?[0-9]+)?
bool IsJsonNumber(const char* p) {
    if (*p == '-') ++p;
    if (*p == '0') {
        ++p;
    } else if (IsDigit(*p)) {
        while (IsDigit(*p)) ++p;
    } else {
        return false;
    }
    if (*p == '.') {
        ++p;
        if (!IsDigit(*p)) return false;
        while (IsDigit(*p)) ++p;
    }
    if (*p == 'e' || *p == 'E') {
        ++p;
        if (*p == '+' || *p == '-') ++p;
        if (!IsDigit(*p)) return false;
        while (IsDigit(*p)) ++p;
    }
    return *p == '\0';
}


}  // namespace

CJsonTextWriter::CJsonTextWriter(CTextStream& stream)
    : CXmlWriter("CJsonTextWriter"),
      m_indentChars("\t"),
      m_endOfLine("\n"),
      m_eolType(EOLType_LF),
      m_supportRoundtrip(RoundTrip_Full),
      m_format(true),
      m_stream(stream),
      m_bareElement(false),
      m_textPending(false),
      m_pendingType(ItemType_string),
      m_standardEscaping(false),
      m_rootWritten(false),
      m_openElements(0),
      m_out(std::make_unique<CTextAppender>(stream)) {}

CJsonTextWriter::~CJsonTextWriter() = default;

void CJsonTextWriter::Open() {
    CXmlWriter::Open();
    m_stream.Open();
}

void CJsonTextWriter::Close() {
    m_stream.Close();
    CXmlWriter::Close();
}

// ---------------------------------------------------------------------------------------------
// Text assembly

inline void CJsonTextWriter::Put(char c) { m_out->Put(c); }

inline void CJsonTextWriter::Put(const char* text, size_t length) { m_out->Put(text, length); }

inline void CJsonTextWriter::Put(const std::string& text) { m_out->Put(text); }

inline void CJsonTextWriter::PutText(const std::string& text) {
    // Copied while looking for the NUL, instead of measuring the text first and copying it
    // after: the size bounds the copy, the terminator of c_str() ends it.
    m_out->Reserve(text.size());
    const char* from = text.c_str();
    char* out = m_out->End();
    while (*from != '\0') *out++ = *from++;
    m_out->SetEnd(out);
}

void CJsonTextWriter::FlushIfFull() {
    if (m_stream.GetLength() >= kFlushThreshold) m_stream.Flush();
}

inline void CJsonTextWriter::LineBreak() {
    if (m_format) Put(m_endOfLine);
}

void CJsonTextWriter::Indent(int level) {
    if (!m_format || level <= 0) return;
    const size_t n = static_cast<size_t>(level);
    if (m_indents.empty()) m_indents.emplace_back();
    while (m_indents.size() <= n) m_indents.push_back(m_indents.back() + m_indentChars);
    Put(m_indents[n]);
}

void CJsonTextWriter::Key(const std::string& key) {
    Put('"');
    PutText(key);
    Put("\": ", 3);
}

// The key "prefix:name" (or "name" without a prefix), written in pieces rather than joined
// first. Like any caller text, the key ends at its first NUL.
void CJsonTextWriter::PrefixedKey(const std::string* prefix, const std::string& name) {
    if (prefix == nullptr) {
        Key(name);
        return;
    }
    Put('"');
    const size_t start = m_out->GetLength();
    PutText(*prefix);
    if (m_out->GetLength() - start == prefix->size()) {
        Put(':');
        PutText(name);
    }
    Put("\": ", 3);
}

void CJsonTextWriter::Pair(const std::string& key, const std::string& value) {
    Key(key);
    Put('"');
    if (m_standardEscaping) {
        PutStandardEscaped(value);
    } else {
        PutText(value);
    }
    Put('"');
}

inline void CJsonTextWriter::PutUnicodeEscape(unsigned char c) {
    m_out->Reserve(6);
    char* out = m_out->End();
    out[0] = '\\';
    out[1] = 'u';
    out[2] = '0';
    out[3] = '0';
    out[4] = kHexDigits[c >> 4];
    out[5] = kHexDigits[c & 0x0F];
    m_out->SetEnd(out + 6);
}

// Both escapings copy plain bytes in one loop that also finds the next special byte. Before
// each run, room for the rest of the text is reserved: a run never holds more.
void CJsonTextWriter::PutLenientEscaped(const std::string& text) {
    const unsigned char* p = reinterpret_cast<const unsigned char*>(text.c_str());
    const unsigned char* const end = p + text.size();
    for (;;) {
        m_out->Reserve(static_cast<size_t>(end - p));
        char* out = m_out->End();
        while (!kSpecialBytes.lenient[*p]) *out++ = static_cast<char>(*p++);
        m_out->SetEnd(out);
        const unsigned char c = *p;
        switch (c) {
            case 0:
                return;
            case 0x0A:
                if (m_eolType == EOLType_CRLF) {
                    Put("\r\n", 2);
                } else if (m_eolType == EOLType_LF) {
                    Put('\n');
                } else {
                    throw CKxException("Invalid EOL type.");
                }
                break;
            case 0x0D:  // dropped: line ends are rebuilt from the line feed alone
                break;
            case 0x08:
            case 0x09:
            case 0x0C:
                Put(static_cast<char>(c));
                break;
            default:
                PutUnicodeEscape(c);
                break;
        }
        ++p;
    }
}

void CJsonTextWriter::PutStandardEscaped(const std::string& text) {
    const unsigned char* p = reinterpret_cast<const unsigned char*>(text.c_str());
    const unsigned char* const end = p + text.size();
    for (;;) {
        m_out->Reserve(static_cast<size_t>(end - p));
        char* out = m_out->End();
        while (!kSpecialBytes.standard[*p]) *out++ = static_cast<char>(*p++);
        m_out->SetEnd(out);
        const unsigned char c = *p;
        if (c == 0) return;
        if (c == '"' || c == '\\') {
            const char pair[] = {'\\', static_cast<char>(c)};
            Put(pair, 2);
        } else {
            PutUnicodeEscape(c);
        }
        ++p;
    }
}

void CJsonTextWriter::PutEscaped(const std::string& text) {
    if (m_standardEscaping) {
        PutStandardEscaped(text);
    } else {
        PutLenientEscaped(text);
    }
}

void CJsonTextWriter::WriteValue(const std::string& value, ItemType type) {
    const char* text = value.c_str();
    bool unquoted = IsUnquotedType(type);
    if (unquoted && m_standardEscaping) {
        // Standard JSON has no INF, NaN, "+1" or ".5": such lexical forms travel as strings.
        unquoted = type == ItemType_boolean
                       ? std::strcmp(text, "true") == 0 || std::strcmp(text, "false") == 0
                       : IsJsonNumber(text);
    }
    if (unquoted) {
        PutText(value);
        return;
    }
    m_out->Reserve(value.size() + 2);
    Put('"');
    PutEscaped(value);
    Put('"');
}

// ---------------------------------------------------------------------------------------------
// Objects and arrays

CJsonTextWriter::Frame& CJsonTextWriter::CurrentFrame() { return m_frames[m_openElements - 1]; }

CJsonTextWriter::Frame& CJsonTextWriter::ParentFrame() { return m_frames[m_openElements - 2]; }

CXmlWriter::CXmlWriterContext& CJsonTextWriter::RequireContext(const char* message) const {
    CXmlWriterContext* context = GetCurrentContext();
    if (context == nullptr) throw CKxException(message);
    return *context;
}

void CJsonTextWriter::ShiftIndent(CXmlWriterContext& context, int delta) {
    for (CXmlWriterContext* c = &context; c != nullptr; c = c->GetParent()) {
        if (delta > 0 || c->GetDepth() > 1) c->SetDepth(c->GetDepth() + delta);
    }
}

bool CJsonTextWriter::EnclosingStartsArray(const CXmlWriterContext& context) const {
    const CXmlWriterContext* parent = context.GetParent();
    return parent != nullptr && parent->GetContextState() == ContextState_CollectionStart;
}

// `context` is the current element, the first item of its parent's collection, about to
// receive its first content.
void CJsonTextWriter::OpenArray(CXmlWriterContext& context) {
    CXmlWriterContext* parent = context.GetParent();
    Put('[');
    parent->SetContextState(ContextState_InCollection);
    Frame& frame = ParentFrame();
    frame.arrayOpen = true;
    frame.itemName = context.GetName();
    frame.itemNamespace = context.GetNamespace();
    if (m_format) {
        ShiftIndent(context, 1);
        LineBreak();
        Indent(context.GetDepth());
    }
}

void CJsonTextWriter::CloseArray(CXmlWriterContext& context) {
    // A CollectionStart set over CollectionEnd announces the next collection: keep it.
    if (context.GetContextState() != ContextState_CollectionStart) {
        context.SetContextState(ContextState_None);
    }
    CurrentFrame().arrayOpen = false;
    if (m_format) {
        LineBreak();
        Indent(context.GetDepth());
        ShiftIndent(context, -1);
    }
    Put(']');
}

// Anything written into an element after its collection ends first closes that collection's
// array; otherwise the newcomer would land inside it.
void CJsonTextWriter::CloseFinishedArray(CXmlWriterContext& context) {
    if (CurrentFrame().arrayOpen) {
        if (context.GetContextState() != ContextState_InCollection) CloseArray(context);
    } else if (context.GetContextState() == ContextState_CollectionEnd) {
        context.SetContextState(ContextState_None);
    }
}

// Prepares the current element for one more member: opens its object (and its parent's array
// when it is a collection's first item) or separates the member from the previous one.
void CJsonTextWriter::OpeningBrackets() {
    CXmlWriterContext& context = *GetCurrentContext();
    if (m_bareElement) {
        if (EnclosingStartsArray(context)) OpenArray(context);
        Put('{');
        if (m_textPending) {
            // Text came first (mixed content): it becomes the object's text member.
            LineBreak();
            Indent(context.GetDepth() + 1);
            PutTextKey();
            WritePendingValue();
            Put(',');
        }
    } else {
        CloseFinishedArray(context);
        Put(',');
    }
    LineBreak();
}

// ---------------------------------------------------------------------------------------------
// Document-level output

void CJsonTextWriter::WriteStartDocument() {
    const CTextAppender::Scope scope(*m_out);
    Put('{');
    LineBreak();
    m_out->Commit();
    FlushIfFull();
}

void CJsonTextWriter::WriteEndDocument() {
    const CTextAppender::Scope scope(*m_out);
    LineBreak();
    Put('}');
    m_out->Commit();
}

void CJsonTextWriter::WriteComment(const std::string& text) {
    const CTextAppender::Scope scope(*m_out);
    Put("/* ", 3);
    PutLenientEscaped(text);
    Put(" */", 3);
    Put(m_endOfLine);
    m_out->Commit();
    FlushIfFull();
}

void CJsonTextWriter::WritePI(const std::string&) {}

void CJsonTextWriter::WriteInlineSchema(const std::string&) {}

void CJsonTextWriter::WriteAttributeNil() {}

// ---------------------------------------------------------------------------------------------
// Elements, text and attributes

// True when `ns` is the default namespace of `context` or of an enclosing element: a namespace
// that an element in no namespace has since undeclared.
static bool WasDefaultNamespace(const CXmlWriter::CXmlWriterContext* context,
                                const std::string& ns) {
    for (; context != nullptr; context = context->GetParent()) {
        if (context->GetDefaultNamespace() == ns) return true;
    }
    return false;
}

void CJsonTextWriter::WriteStartElement(const std::string& name, const std::string& ns) {
    CXmlWriterContext* parent = GetCurrentContext();
    const bool isRoot = parent == nullptr;
    const bool full = m_supportRoundtrip == RoundTrip_Full;
    const CTextAppender::Scope scope(*m_out);
    if (!isRoot && parent->GetContextState() == ContextState_InCollection) {
        // An item named otherwise (a substitute of an abstract item type) would lose its name
        // inside the array: it ends the array and starts one of its own.
        const Frame& frame = CurrentFrame();
        if (name != frame.itemName || ns != frame.itemNamespace) {
            parent->SetContextState(ContextState_CollectionStart);
        }
    }
    const bool writeKey = isRoot || parent->GetContextState() != ContextState_InCollection;
    const std::string* prefix = nullptr;
    bool bindFresh = false;
    if (!isRoot) {
        // A child shares its parent's scope, so the lookup can be made before anything is
        // written or opened.
        if (full && !ns.empty() && ns != parent->GetDefaultNamespace()) {
            prefix = parent->FindNamespacePrefix(ns);
            if (prefix == nullptr) {
                // A default namespace undeclared above gets a prefix here, as the XML text
                // writer does; every item of an array declares it, being an element of its own.
                bindFresh = WasDefaultNamespace(parent, ns);
                if (!bindFresh && writeKey) {
                    throw CKxException(FormatString("Unknown Namespace: %s.", name.c_str()));
                }
            }
        }
        OpeningBrackets();
    } else if (m_rootWritten) {
        Put(',');
        LineBreak();
    }

    CXmlWriterContext& context = *PushContext(name, ns);
    if (m_frames.size() <= m_openElements) m_frames.emplace_back();
    m_frames[m_openElements++].arrayOpen = false;
    if (isRoot) context.SetDepth(1);
    m_textPending = false;
    m_bareElement = true;
    Indent(context.GetDepth());

    if (!full) {
        if (writeKey) Key(name);
    } else {
        if (isRoot && !ns.empty() && ns != context.GetDefaultNamespace()) {
            prefix = context.FindNamespacePrefix(ns);
            bindFresh = prefix == nullptr;
        }
        std::string freshPrefix;
        if (bindFresh) {
            freshPrefix = GetUniquePrefix(context.GetNamespaceMap());
            context.SetNamespaceMapValue(ns, freshPrefix);
            prefix = &freshPrefix;
        }
        if (writeKey) PrefixedKey(prefix, name);
        // Each declaration may be the element's first content: OpeningBrackets then opens its
        // object (and the parent's array, which deepens this element).
        if (bindFresh) {
            OpeningBrackets();
            Indent(context.GetDepth() + 1);
            Pair("@xmlns:" + freshPrefix, ns);
            m_bareElement = false;
        }
        if (isRoot) {
            const std::string& defaultNamespace = CXmlWriter::GetDefaultNamespace();
            if (!defaultNamespace.empty()) {
                OpeningBrackets();
                Indent(context.GetDepth() + 1);
                Pair("@xmlns", defaultNamespace);
                m_bareElement = false;
            }
            for (const NamespaceMap::value_type& entry : CXmlWriter::GetNamespaceMap()) {
                if (entry.first == XML_NAMESPACE) continue;
                OpeningBrackets();
                Indent(context.GetDepth() + 1);
                Pair("@xmlns:" + entry.second, entry.first);
                m_bareElement = false;
            }
        } else if (ns.empty() && !context.GetDefaultNamespace().empty()) {
            // Without this declaration the element would read back in the default namespace.
            // Every array item is an element of its own, so each one declares it.
            OpeningBrackets();
            Indent(context.GetDepth() + 1);
            Pair("@xmlns", "");
            m_bareElement = false;
            context.SetDefaultNamespace("");
        }
    }
    m_rootWritten = true;
    m_out->Commit();
    FlushIfFull();
}

void CJsonTextWriter::WriteString(const std::string& text, ItemType type, bool) {
    CXmlWriterContext& context = RequireContext("There is no open Element for the text.");
    const CTextAppender::Scope scope(*m_out);
    if (m_bareElement) {
        // Held back until the element ends or gets other content: only then is it known
        // whether the text is the element's value or a member of its object. Adjacent texts
        // join, as they do in XML.
        // The held text is kept whole and read up to its first NUL when written out, so a
        // text joined to it is appended at that NUL.
        if (!m_textPending) {
            m_pendingText.assign(text);
        } else {
            m_pendingText.resize(std::strlen(m_pendingText.c_str()));
            m_pendingText.append(text);
        }
        m_pendingType = type;
        m_textPending = true;
        return;
    }
    CloseFinishedArray(context);
    Put(',');
    LineBreak();
    Indent(context.GetDepth() + 1);
    PutTextKey();
    WriteValue(text, type);
    m_out->Commit();
}

void CJsonTextWriter::PutTextKey() {
    if (m_supportRoundtrip == RoundTrip_None) {
        Put("\"\": ", 4);
    } else {
        Put("\"#text\": ", 9);
    }
}

void CJsonTextWriter::WritePendingValue() {
    WriteValue(m_pendingText, m_pendingType);
    m_textPending = false;
}

void CJsonTextWriter::WriteEndElement() {
    CXmlWriterContext& context = RequireContext("There is no open Element to end.");
    const CTextAppender::Scope scope(*m_out);
    if (CurrentFrame().arrayOpen) {
        context.SetContextState(ContextState_CollectionEnd);
        CloseArray(context);
    } else if (context.GetContextState() == ContextState_CollectionEnd) {
        context.SetContextState(ContextState_None);
    }
    if (m_bareElement) {
        const CXmlWriterContext* parent = context.GetParent();
        if (parent != nullptr && parent->GetContextState() == ContextState_InCollection) {
            // A text-only or empty item inside an array opened by an earlier item is written
            // as an object: the reader puts only the first plain value of an array into an
            // element, and a null there would end the enclosing element instead.
            Put('{');
            if (m_textPending) {
                LineBreak();
                Indent(context.GetDepth() + 1);
                PutTextKey();
                WritePendingValue();
                LineBreak();
                Indent(context.GetDepth());
            }
            Put('}');
        } else if (m_textPending) {
            // A text-only first item opens no array: like repeated simple elements, it is a
            // keyed value, and a later item with content opens the array under its own key.
            WritePendingValue();
        } else {
            // An element with nothing in it still needs a value to be JSON; null reads back
            // as an empty element.
            Put("null", 4);
        }
    } else {
        LineBreak();
        Indent(context.GetDepth());
        Put('}');
    }
    PopContext();
    --m_openElements;
    m_bareElement = false;
    m_textPending = false;
    m_out->Commit();
}

void CJsonTextWriter::WriteAttributeString(const std::string& name, const std::string& ns,
                                           const std::string& value, ItemType type) {
    CXmlWriterContext& context = RequireContext("There is no open Element for the attribute.");
    const std::string* prefix = nullptr;
    if (!ns.empty() && m_supportRoundtrip == RoundTrip_Full) {
        prefix = context.FindNamespacePrefix(ns);
        if (prefix == nullptr) {
            throw CKxException(FormatString("Unknown Namespace: %s.", name.c_str()));
        }
    }
    std::string key;
    const CTextAppender::Scope scope(*m_out);
    if (m_supportRoundtrip != RoundTrip_None) key += '@';
    if (prefix != nullptr) key.append(*prefix).append(1, ':');
    key += name;
    OpeningBrackets();
    Indent(context.GetDepth() + 1);
    Key(key);
    WriteValue(value, type);
    m_bareElement = false;
    m_out->Commit();
}

void CJsonTextWriter::WriteAttributeType(const std::string& typeName, const std::string& typeNs,
                                         ItemType type) {
    if (m_supportRoundtrip != RoundTrip_Full) return;
    CXmlWriterContext& context = RequireContext("There is no open Element for the attribute.");
    std::string reference;
    if (typeNs.empty() || typeNs == context.GetDefaultNamespace()) {
        reference = typeName;
    } else {
        const std::string* prefix = context.FindNamespacePrefix(typeNs);
        if (prefix == nullptr) {
            throw CKxException(FormatString("Unknown Namespace: %s.", typeName.c_str()));
        }
        reference.append(*prefix).append(1, ':').append(typeName);
    }
    WriteAttributeString("type", kXsiNamespace, reference, type);
}

// ---------------------------------------------------------------------------------------------
// Settings

bool CJsonTextWriter::GetFormat() const { return m_format; }
void CJsonTextWriter::SetFormat(bool format) { m_format = format; }

const std::string& CJsonTextWriter::GetIndentChars() const { return m_indentChars; }
void CJsonTextWriter::SetIndentChars(const char* chars) {
    m_indentChars = chars != nullptr ? chars : "";
    m_indents.clear();
}

EOLType CJsonTextWriter::GetEOLType() const { return m_eolType; }
void CJsonTextWriter::SetEOLType(EOLType type) {
    m_endOfLine = EndOfLineFor(type);
    m_eolType = type;
}

JsonRoundTrip CJsonTextWriter::GetSupportRoundtrip() const { return m_supportRoundtrip; }
void CJsonTextWriter::SetSupportRoundtrip(JsonRoundTrip mode) { m_supportRoundtrip = mode; }

bool CJsonTextWriter::GetStandardEscaping() const { return m_standardEscaping; }
void CJsonTextWriter::SetStandardEscaping(bool standard) { m_standardEscaping = standard; }

}  // namespace KxXmlLib16
