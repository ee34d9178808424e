// XML text to the XML tree through expat.
#include "xml/CExpatReader.h"

#include <langinfo.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <cwchar>
#include <new>

// Declares expat's entity-amplification limits, which exist only in builds with DTD support.
#if defined(KX_HAVE_EXPAT_AMPLIFICATION_LIMIT) && !defined(XML_DTD)
#define XML_DTD
#endif
#include <expat.h>

#include "CEncoder.h"
#include "CKxException.h"
#include "CSerializationContext.h"
#include "CXmlDocument.h"
#include "ConvertUTF.h"
#include "FormatString.h"

namespace KxXmlLib16 {

namespace {

const char kNamespaceSeparator = '|';
const size_t kInitialBufferSize = 1024;
const char kCDATAStart[] = "<![CDATA[";
const char kCDATAEnd[] = "]]>";

#if defined(KX_HAVE_EXPAT_AMPLIFICATION_LIMIT)
// Entity expansion may make the document at most this many times larger than its bytes, once
// this much has been expanded (expat's own defaults, set here so that they hold whatever the
// build's defaults are).
const float kMaximumAmplification = 100.0f;
const unsigned long long kAmplificationThreshold = 8ull * 1024 * 1024;
#endif

bool IsAscii(const char* text, size_t length) {
    const unsigned char* bytes = reinterpret_cast<const unsigned char*>(text);
    size_t i = 0;
    // Eight bytes at a time: one test of their high bits.
    for (; i + 8 <= length; i += 8) {
        unsigned long long word;
        std::memcpy(&word, bytes + i, sizeof word);
        if ((word & 0x8080808080808080ull) != 0) return false;
    }
    for (; i < length; ++i) {
        if (bytes[i] >= 0x80) return false;
    }
    return true;
}

// True when every multi-byte sequence is well-formed UTF-8 (expat only hands out such text;
// checked so that a UTF-8 code page gives exactly what the general conversion would).
bool IsValidUtf8(const char* text, size_t length) {
    const unsigned char* bytes = reinterpret_cast<const unsigned char*>(text);
    const unsigned char* end = bytes + length;
    for (const unsigned char* p = bytes; p < end;) {
        if (*p < 0x80) {
            ++p;
            continue;
        }
        if (!IsLegalUTF8Sequence(p, end)) return false;
        p += *p >= 0xF0 ? 4 : *p >= 0xE0 ? 3 : 2;
    }
    return true;
}

// Decodes one well-formed UTF-8 sequence (see IsLegalUTF8Sequence) and advances past it.
wchar_t DecodeUtf8(const unsigned char*& p) {
    const unsigned char lead = *p++;
    if (lead < 0x80) return lead;
    int trail = lead >= 0xF0 ? 3 : lead >= 0xE0 ? 2 : 1;
    unsigned long code = lead & (0x3F >> trail);
    while (trail-- > 0) code = (code << 6) | (*p++ & 0x3F);
    return static_cast<wchar_t>(code);
}

bool CodePageIsUtf8() {
    if (IsASCIIOnly()) return true;
    const char* codeset = nl_langinfo(CODESET);
    return codeset != nullptr &&
           (std::strcmp(codeset, "UTF-8") == 0 || std::strcmp(codeset, "utf8") == 0);
}

CExpatReader* ReaderOf(void* userData) { return static_cast<CExpatReader*>(userData); }

}  // namespace

template <typename Work>
void CExpatReader::Guard(void* userData, Work&& work) {
    CExpatReader* reader = ReaderOf(userData);
    // expat may deliver a few more callbacks after being stopped: they are ignored.
    if (reader->m_pending) return;
    try {
        work(*reader);
    } catch (...) {
        reader->m_pending = std::current_exception();
        XML_StopParser(reader->m_parser, XML_FALSE);
    }
}

CExpatReader::CExpatReader(CXmlDocument& doc)
    : CInstanceMonitor("CExpatReader"),
      m_document(doc),
      m_parser(nullptr),
      m_namespaces(true),
      m_utf8CodePage(false),
      m_text(m_firstText),
      m_textLength(0),
      m_textCapacity(kFirstTextSize) {}

CExpatReader::~CExpatReader() { FreeParser(); }

void CExpatReader::CreateParser() {
    FreeParser();
    m_nameBuffer.reserve(kInitialBufferSize);
    m_valueBuffer.reserve(kInitialBufferSize);
    m_utf8CodePage = CodePageIsUtf8();
    m_namespaces = m_document.GetSchemaType() != SchemaType_NoNamespace;
    m_parser =
        m_namespaces ? XML_ParserCreateNS(nullptr, kNamespaceSeparator) : XML_ParserCreate(nullptr);
    if (m_parser == nullptr) throw std::bad_alloc();

    XML_SetUserData(m_parser, this);
    XML_SetElementHandler(m_parser, FnStartElement, FnEndElement);
    XML_SetNamespaceDeclHandler(m_parser, FnStartNamespace, FnEndNamespace);
    XML_SetCharacterDataHandler(m_parser, FnText);
    if (!m_document.GetContext().GetStripCDATA()) {
        XML_SetCdataSectionHandler(m_parser, FnStartCDATA, FnEndCDATA);
    }
    // No external entity handler is set and parameter entities stay off (expat's defaults):
    // external entities are never fetched or read.
    XML_SetParamEntityParsing(m_parser, XML_PARAM_ENTITY_PARSING_NEVER);
#if defined(KX_HAVE_EXPAT_AMPLIFICATION_LIMIT)
    XML_SetBillionLaughsAttackProtectionMaximumAmplification(m_parser, kMaximumAmplification);
    XML_SetBillionLaughsAttackProtectionActivationThreshold(m_parser, kAmplificationThreshold);
#endif
}

void CExpatReader::Parse(bool isFinal) {
    if (m_parser == nullptr) CreateParser();
    const char* data = reinterpret_cast<const char*>(m_document.m_input);
    unsigned long remaining = m_document.m_inputLength;
    // XML_Parse counts bytes in an int: larger inputs go in pieces.
    enum XML_Status status = XML_STATUS_OK;
    do {
        const int piece =
            remaining > static_cast<unsigned long>(INT_MAX) ? INT_MAX : static_cast<int>(remaining);
        remaining -= static_cast<unsigned long>(piece);
        status = XML_Parse(m_parser, data, piece, isFinal && remaining == 0);
        data += piece;
    } while (status == XML_STATUS_OK && remaining != 0);

    if (m_pending || status != XML_STATUS_OK) {
        // The element keeps the text read before the failure.
        try {
            FlushText();
        } catch (...) {
            if (!m_pending) m_pending = std::current_exception();
        }
    }
    if (m_pending) {
        std::exception_ptr pending = m_pending;
        m_pending = nullptr;
        Cleanup();
        FreeParser();
        std::rethrow_exception(pending);
    }
    if (status != XML_STATUS_OK) {
        const std::string message =
            FormatString("%s at line %d", XML_ErrorString(XML_GetErrorCode(m_parser)),
                         static_cast<int>(XML_GetCurrentLineNumber(m_parser)));
        Cleanup();
        FreeParser();
        throw CKxException(message);
    }
    if (isFinal) FreeParser();
}

void CExpatReader::Cleanup() {
    std::string().swap(m_nameBuffer);
    std::string().swap(m_valueBuffer);
    m_grownText.reset();
    m_text = m_firstText;
    m_textLength = 0;
    m_textCapacity = kFirstTextSize;
}

void CExpatReader::FreeParser() {
    if (m_parser == nullptr) return;
    XML_ParserFree(m_parser);
    m_parser = nullptr;
}

std::string_view CExpatReader::Convert(const char* utf8, size_t length, std::string& buffer) const {
    if (IsAscii(utf8, length) || (m_utf8CodePage && IsValidUtf8(utf8, length))) {
        return std::string_view(utf8, length);
    }
    if (!IsValidUtf8(utf8, length) || IsASCIIOnly()) {
        buffer = CEncoder::Utf8ToLocalCodePage(reinterpret_cast<const unsigned char*>(utf8),
                                               static_cast<int>(length));
        return buffer;
    }
    // Well-formed UTF-8 into the local code page, character by character as the general
    // conversion does ('?' for what the code page cannot represent), into the reused buffer.
    buffer.resize(length * MB_CUR_MAX);
    const unsigned char* p = reinterpret_cast<const unsigned char*>(utf8);
    const unsigned char* const end = p + length;
    std::mbstate_t state{};
    size_t written = 0;
    while (p < end) {
        const size_t used = std::wcrtomb(&buffer[written], DecodeUtf8(p), &state);
        if (used == static_cast<size_t>(-1)) {
            state = std::mbstate_t{};
            buffer[written++] = '?';
        } else {
            written += used;
        }
    }
    buffer.resize(written);
    return buffer;
}

void CExpatReader::ReserveText(size_t length) {
    if (length <= m_textCapacity) return;
    const size_t capacity = std::max(length, 2 * m_textCapacity);
    std::unique_ptr<char[]> text(new char[capacity]);
    if (m_textLength != 0) std::memcpy(text.get(), m_text, m_textLength);
    m_grownText = std::move(text);
    m_text = m_grownText.get();
    m_textCapacity = capacity;
}

void CExpatReader::GatherText(const char* text, size_t length) {
    // ASCII text needs no conversion: one pass copies it, drops the carriage returns and
    // notices any byte that is not ASCII.
    ReserveText(m_textLength + length);
    char* const start = m_text + m_textLength;
    char* out = start;
    unsigned char high = 0;
    for (size_t i = 0; i < length; ++i) {
        const char c = text[i];
        high |= static_cast<unsigned char>(c);
        *out = c;
        out += c != '\r';
    }
    if ((high & 0x80) == 0) {
        m_textLength += static_cast<size_t>(out - start);
        return;
    }
    const std::string_view converted = Convert(text, length, m_valueBuffer);
    ReserveText(m_textLength + converted.size());
    out = m_text + m_textLength;
    for (const char c : converted) {
        *out = c;
        out += c != '\r';
    }
    m_textLength = static_cast<size_t>(out - m_text);
}

void CExpatReader::FlushText() {
    if (m_textLength == 0) return;
    const size_t length = m_textLength;
    m_textLength = 0;
    CXmlElement* element = m_document.GetCurrentElement();
    if (element != nullptr) element->AppendText(std::string_view(m_text, length));
}

void CExpatReader::SplitName(std::string_view name, std::string_view& ns,
                             std::string_view& local) const {
    const size_t bar = m_namespaces ? name.find(kNamespaceSeparator) : std::string_view::npos;
    if (bar == std::string_view::npos) {
        ns = std::string_view();
        local = name;
    } else {
        ns = name.substr(0, bar);
        local = name.substr(bar + 1);
    }
}

void CExpatReader::FnStartElement(void* userData, const char* name, const char** attributes) {
    Guard(userData, [name, attributes](CExpatReader& reader) {
        reader.FlushText();
        CXmlDocument& document = reader.m_document;
        std::string_view ns;
        std::string_view local;
        reader.SplitName(reader.Convert(name, std::strlen(name), reader.m_nameBuffer), ns, local);
        CXmlElement* element = document.GetDocumentElement() == nullptr
                                   ? document.AddDocElement(ns, local)
                                   : document.AddChildElement(ns, local);
        if (attributes[0] != nullptr) {
            size_t count = 0;
            while (attributes[2 * count] != nullptr) ++count;
            element->ReserveAttributes(count);
        }
        for (const char** pair = attributes; pair[0] != nullptr; pair += 2) {
            reader.SplitName(reader.Convert(pair[0], std::strlen(pair[0]), reader.m_nameBuffer), ns,
                             local);
            const std::string_view value =
                reader.Convert(pair[1], std::strlen(pair[1]), reader.m_valueBuffer);
            document.AddElementAttribute(element, local, value, ns);
        }
    });
}

void CExpatReader::FnEndElement(void* userData, const char*) {
    Guard(userData, [](CExpatReader& reader) {
        reader.FlushText();
        reader.m_document.EndElement();
    });
}

void CExpatReader::FnText(void* userData, const char* text, int length) {
    // XML text cannot hold a NUL character: only carriage returns need looking for.
    Guard(userData, [text, length](CExpatReader& reader) {
        reader.GatherText(text, static_cast<size_t>(length));
    });
}

void CExpatReader::FnStartCDATA(void* userData) {
    Guard(userData, [](CExpatReader& reader) {
        reader.GatherText(kCDATAStart, sizeof kCDATAStart - 1);
    });
}

void CExpatReader::FnEndCDATA(void* userData) {
    Guard(userData, [](CExpatReader& reader) {
        reader.GatherText(kCDATAEnd, sizeof kCDATAEnd - 1);
    });
}

void CExpatReader::FnStartNamespace(void* userData, const char* prefix, const char* uri) {
    Guard(userData, [prefix, uri](CExpatReader& reader) {
        // The default namespace has no prefix; xmlns="" binds it to no namespace.
        const char* const p = prefix == nullptr ? "" : prefix;
        const char* const u = uri == nullptr ? "" : uri;
        const std::string_view convertedPrefix =
            reader.Convert(p, std::strlen(p), reader.m_nameBuffer);
        const std::string_view convertedUri =
            reader.Convert(u, std::strlen(u), reader.m_valueBuffer);
        reader.m_document.AddNamespaceBinding(convertedPrefix, convertedUri);
    });
}

void CExpatReader::FnEndNamespace(void*, const char*) {
    // The prefix map is document-wide: bindings stay until the document is cleaned up.
}

}  // namespace KxXmlLib16
