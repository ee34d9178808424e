#include "CJsonTextWriter.h"

#include <cstring>

#include "CKxException.h"
#include "FormatString.h"

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
// terminating NUL. A table lookup per byte is cheaper than strcspn's set test.
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

// The length of the leading run of `text` that holds none of the `special` bytes.
size_t PlainRun(const char* text, const bool* special) {
    const unsigned char* p = reinterpret_cast<const unsigned char*>(text);
    while (!special[*p]) ++p;
    return static_cast<size_t>(p - reinterpret_cast<const unsigned char*>(text));
}

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
      m_openElements(0) {}

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

void CJsonTextWriter::Emit() {
    if (m_out.empty()) return;
    m_stream.Append(m_out.data(), m_out.size());
    m_out.clear();
}

void CJsonTextWriter::FlushIfFull() {
    if (m_stream.GetLength() >= kFlushThreshold) m_stream.Flush();
}

void CJsonTextWriter::LineBreak() {
    if (m_format) m_out += m_endOfLine;
}

void CJsonTextWriter::Indent(int level) {
    if (!m_format || level <= 0) return;
    const size_t n = static_cast<size_t>(level);
    if (m_indents.empty()) m_indents.emplace_back();
    while (m_indents.size() <= n) m_indents.push_back(m_indents.back() + m_indentChars);
    m_out += m_indents[n];
}

void CJsonTextWriter::PutText(const std::string& text) {
    // Like the stream itself, caller text ends at its first NUL.
    m_out.append(text.c_str(), std::strlen(text.c_str()));
}

void CJsonTextWriter::Key(const std::string& key) {
    m_out += '"';
    PutText(key);
    m_out += "\": ";
}

void CJsonTextWriter::Pair(const std::string& key, const std::string& value) {
    Key(key);
    m_out += '"';
    if (m_standardEscaping) {
        PutStandardEscaped(value.c_str());
    } else {
        PutText(value);
    }
    m_out += '"';
}

void CJsonTextWriter::PutLenientEscaped(const char* text) {
    for (;;) {
        const size_t run = PlainRun(text, kSpecialBytes.lenient);
        m_out.append(text, run);
        text += run;
        const unsigned char c = static_cast<unsigned char>(*text);
        switch (c) {
            case 0:
                return;
            case 0x0A:
                if (m_eolType == EOLType_CRLF) {
                    m_out += "\r\n";
                } else if (m_eolType == EOLType_LF) {
                    m_out += '\n';
                } else {
                    throw CKxException("Invalid EOL type.");
                }
                break;
            case 0x0D:  // dropped: line ends are rebuilt from the line feed alone
                break;
            case 0x08:
            case 0x09:
            case 0x0C:
                m_out += static_cast<char>(c);
                break;
            default:
                m_out += "\\u00";
                m_out += kHexDigits[c >> 4];
                m_out += kHexDigits[c & 0x0F];
                break;
        }
        ++text;
    }
}

void CJsonTextWriter::PutStandardEscaped(const char* text) {
    for (;;) {
        const size_t run = PlainRun(text, kSpecialBytes.standard);
        m_out.append(text, run);
        text += run;
        const unsigned char c = static_cast<unsigned char>(*text);
        if (c == 0) return;
        if (c == '"' || c == '\\') {
            m_out += '\\';
            m_out += static_cast<char>(c);
        } else {
            m_out += "\\u00";
            m_out += kHexDigits[c >> 4];
            m_out += kHexDigits[c & 0x0F];
        }
        ++text;
    }
}

void CJsonTextWriter::PutEscaped(const char* text) {
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
        m_out.append(text, std::strlen(text));
        return;
    }
    m_out += '"';
    PutEscaped(text);
    m_out += '"';
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
    m_out += '[';
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
    m_out += ']';
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
        m_out += '{';
        if (m_textPending) {
            // Text came first (mixed content): it becomes the object's text member.
            LineBreak();
            Indent(context.GetDepth() + 1);
            PutTextKey();
            WritePendingValue();
            m_out += ',';
        }
    } else {
        CloseFinishedArray(context);
        m_out += ',';
    }
    LineBreak();
}

// ---------------------------------------------------------------------------------------------
// Document-level output

void CJsonTextWriter::WriteStartDocument() {
    m_out += '{';
    LineBreak();
    Emit();
    FlushIfFull();
}

void CJsonTextWriter::WriteEndDocument() {
    LineBreak();
    m_out += '}';
    Emit();
}

void CJsonTextWriter::WriteComment(const std::string& text) {
    m_out += "/* ";
    PutLenientEscaped(text.c_str());
    m_out += " */";
    m_out += m_endOfLine;
    Emit();
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
        m_out += ',';
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
        if (writeKey) Key(prefix != nullptr ? *prefix + ":" + name : name);
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
    Emit();
    FlushIfFull();
}

void CJsonTextWriter::WriteString(const std::string& text, ItemType type, bool) {
    CXmlWriterContext& context = RequireContext("There is no open Element for the text.");
    if (m_bareElement) {
        // Held back until the element ends or gets other content: only then is it known
        // whether the text is the element's value or a member of its object. Adjacent texts
        // join, as they do in XML.
        if (!m_textPending) m_pendingText.clear();
        m_pendingText.append(text.c_str(), std::strlen(text.c_str()));
        m_pendingType = type;
        m_textPending = true;
        return;
    }
    CloseFinishedArray(context);
    m_out += ',';
    LineBreak();
    Indent(context.GetDepth() + 1);
    PutTextKey();
    WriteValue(text, type);
    Emit();
}

void CJsonTextWriter::PutTextKey() {
    m_out += m_supportRoundtrip == RoundTrip_None ? "\"\": " : "\"#text\": ";
}

void CJsonTextWriter::WritePendingValue() {
    WriteValue(m_pendingText, m_pendingType);
    m_textPending = false;
}

void CJsonTextWriter::WriteEndElement() {
    CXmlWriterContext& context = RequireContext("There is no open Element to end.");
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
            m_out += '{';
            if (m_textPending) {
                LineBreak();
                Indent(context.GetDepth() + 1);
                PutTextKey();
                WritePendingValue();
                LineBreak();
                Indent(context.GetDepth());
            }
            m_out += '}';
        } else if (m_textPending) {
            // A text-only first item opens no array: like repeated simple elements, it is a
            // keyed value, and a later item with content opens the array under its own key.
            WritePendingValue();
        } else {
            // An element with nothing in it still needs a value to be JSON; null reads back
            // as an empty element.
            m_out += "null";
        }
    } else {
        LineBreak();
        Indent(context.GetDepth());
        m_out += '}';
    }
    PopContext();
    --m_openElements;
    m_bareElement = false;
    m_textPending = false;
    Emit();
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
    if (m_supportRoundtrip != RoundTrip_None) key += '@';
    if (prefix != nullptr) key.append(*prefix).append(1, ':');
    key += name;
    OpeningBrackets();
    Indent(context.GetDepth() + 1);
    Key(key);
    WriteValue(value, type);
    m_bareElement = false;
    Emit();
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
