// The XML document: loading entry points, the builder operations the readers call, and the
// prefix map.
#include "CXmlDocument.h"

#include <sys/stat.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "CEncoder.h"
#include "CJsonTextReader.h"
#include "CKxException.h"
#include "CKxZip.h"
#include "CSerializationContext.h"
#include "FormatString.h"
#include "fastinfoset/CFastInfosetReader.h"
#include "xml/CExpatReader.h"
#include "xml/CXmlNodePool.h"

namespace KxXmlLib16 {

namespace {

const std::string& EmptyString() {
    static const std::string empty;
    return empty;
}

std::string_view ViewOf(const char* text) {
    return text == nullptr ? std::string_view() : std::string_view(text);
}

// "<message start>[path] Error [<n>]": the stream's error indicator goes in as a number, never
// through a printf conversion.
std::string FileErrorMessage(const char* what, const char* path, int error) {
    return FormatString("%s [%s] Error [", what, path) + std::to_string(error) + "]";
}

// Closes the file before the exception leaves, as callers expect.
[[noreturn]] void ThrowFileError(std::FILE* file, const char* what, const char* path) {
    const std::string message = FileErrorMessage(what, path, std::ferror(file));
    std::fclose(file);
    throw CKxException(message);
}

// Opens a file for reading and gives its length; only a regular file has a length to read
// up to (a directory opens, but has none).
std::FILE* OpenRegularFile(const char* name, unsigned long& length) {
    std::FILE* file = std::fopen(name, "rt");
    if (file == nullptr) throw CKxException(FormatString("Failed to open the file [%s].", name));
    struct stat status;
    if (fstat(fileno(file), &status) != 0 || !S_ISREG(status.st_mode) || status.st_size < 0) {
        ThrowFileError(file, "Failed to get the size of the file", name);
    }
    length = static_cast<unsigned long>(status.st_size);
    return file;
}

std::unique_ptr<unsigned char[]> CopyBytes(const unsigned char* data, unsigned long length) {
    std::unique_ptr<unsigned char[]> copy(new unsigned char[length]);
    std::memcpy(copy.get(), data, length);
    return copy;
}

// A wide text as UTF-16 little-endian bytes after the mark FF FE: the low 16 bits of each
// character.
std::unique_ptr<unsigned char[]> ToUtf16Le(const wchar_t* text, size_t count,
                                           unsigned long& length) {
    length = static_cast<unsigned long>(2 * (count + 1));
    std::unique_ptr<unsigned char[]> bytes(new unsigned char[length]);
    bytes[0] = 0xFF;
    bytes[1] = 0xFE;
    for (size_t i = 0; i < count; ++i) {
        const unsigned long unit = static_cast<unsigned long>(text[i]) & 0xFFFF;
        bytes[2 + 2 * i] = static_cast<unsigned char>(unit & 0xFF);
        bytes[3 + 2 * i] = static_cast<unsigned char>(unit >> 8);
    }
    return bytes;
}

// JSON bytes as the library's narrow text: inflated if compressed, a UTF-8 byte-order mark
// skipped, converted from UTF-8 to the local code page.
std::string JsonTextFromBytes(const unsigned char* data, unsigned long length) {
    std::unique_ptr<unsigned char[]> inflated;
    if (CKxZip::IsCompressed(data, length)) {
        unsigned char* bytes = CopyBytes(data, length).release();
        unsigned long size = length;
        CKxZip::Decompress(&bytes, &size);
        inflated.reset(bytes);
        data = bytes;
        length = size;
    }
    if (length >= 3 && data[0] == 0xEF && data[1] == 0xBB && data[2] == 0xBF) {
        data += 3;
        length -= 3;
    }
    return CEncoder::Utf8ToLocalCodePage(data, static_cast<int>(length));
}

}  // namespace

CXmlDocument::CXmlDocument()
    : CXmlDocument(ElementFilter(), CSerializationContext::m_defaultContext) {}

CXmlDocument::CXmlDocument(const CSerializationContext& context)
    : CXmlDocument(ElementFilter(), context) {}

CXmlDocument::CXmlDocument(ElementFilter filter)
    : CXmlDocument(std::move(filter), CSerializationContext::m_defaultContext) {}

CXmlDocument::CXmlDocument(ElementFilter filter, const CSerializationContext& context)
    : CInstanceMonitor("CXmlDocument"),
      m_pool(nullptr),
      m_input(nullptr),
      m_inputLength(0),
      m_schemaType(SchemaType_Default),
      m_filter(std::move(filter)),
      m_context(&context) {
    Init();
}

CXmlDocument::~CXmlDocument() { CXmlDocument::Cleanup(); }

void CXmlDocument::Init() {
    m_documentElement.reset();
    ReleaseInput();
    m_schemaType = m_context->GetSchemaType();
}

void CXmlDocument::Cleanup() {
    m_elementStack.clear();
    // The tree's memory goes back to the pool without a reference count operation per node.
    CXmlElement::DeleteTree(m_documentElement.release(), false, m_pool);
    // Elements the caller detached and still holds keep the pool alive until deleted.
    if (m_pool != nullptr) {
        m_pool->ReleaseDocument();
        m_pool = nullptr;
    }
    m_prefixMap.clear();
    ReleaseInput();
}

void CXmlDocument::LoadXml(const char* text) {
    Cleanup();
    if (text == nullptr || *text == '\0') throw CKxException("XML String is empty!");
    BorrowInput(reinterpret_cast<const unsigned char*>(text),
                static_cast<unsigned long>(std::strlen(text)));
    ParseText();
}

void CXmlDocument::LoadXml(const wchar_t* text) {
    Cleanup();
    if (text == nullptr || *text == L'\0') throw CKxException("XML String is empty!");
    unsigned long length = 0;
    std::unique_ptr<unsigned char[]> bytes = ToUtf16Le(text, std::wcslen(text), length);
    SetInput(bytes.release(), length);
    ParseText();
}

void CXmlDocument::Load(const char* path) {
    Cleanup();
    LoadFile(path);
}

void CXmlDocument::LoadXmlStream(const unsigned char* data, unsigned long length) {
    Cleanup();
    if (data == nullptr || length == 0) throw CKxException("XML Stream is empty!");
    BorrowInput(data, length);
    Parse();
}

void CXmlDocument::LoadJson(const char* text) {
    Cleanup();
    if (text == nullptr || *text == '\0') throw CKxException("JSON String is empty!");
    ParseJson(text);
}

void CXmlDocument::LoadJson(const wchar_t* text) {
    Cleanup();
    if (text == nullptr || *text == L'\0') throw CKxException("JSON String is empty!");
    const CBinaryData utf8 = CEncoder::UnicodeToUtf8Binary(text);
    ParseJson(CEncoder::Utf8ToLocalCodePage(utf8.GetData(), static_cast<int>(utf8.GetLength())));
}

void CXmlDocument::LoadJsonFile(const char* path) {
    Cleanup();
    ReadFile(path);
    const std::string json = JsonTextFromBytes(m_input, m_inputLength);
    ReleaseInput();
    ParseJson(json);
}

void CXmlDocument::LoadJsonStream(const unsigned char* data, unsigned long length) {
    Cleanup();
    if (data == nullptr || length == 0) throw CKxException("JSON Stream is empty!");
    ParseJson(JsonTextFromBytes(data, length));
}

void CXmlDocument::ParseJson(const std::string& json) {
    // JSON reaches the tree as XML text, so it is read exactly as XML input is.
    const CBinaryData xml = CJsonTextReader::ConvertJsonToXml(json, *m_context);
    BorrowInput(xml.GetData(), xml.GetLength());
    ParseText();
}

CXmlElement* CXmlDocument::GetDocumentElement() const { return m_documentElement.get(); }

const std::string& CXmlDocument::LookupNamespaceFromAlias(const char* prefix) const {
    const auto found = m_prefixMap.find(ViewOf(prefix));
    return found == m_prefixMap.end() ? EmptyString() : found->second;
}

const std::string& CXmlDocument::LookupAliasFromNamespace(const char* ns) const {
    const std::string_view wanted = ViewOf(ns);
    for (const auto& binding : m_prefixMap) {
        if (binding.second == wanted) return binding.first;
    }
    return EmptyString();
}

const CXmlDocument::PrefixMap& CXmlDocument::GetPrefixMap() const { return m_prefixMap; }

const CSerializationContext& CXmlDocument::GetContext() const { return *m_context; }

SchemaType CXmlDocument::GetSchemaType() const { return m_schemaType; }

CXmlElement* CXmlDocument::AddDocElement(const char* ns, const char* name) {
    return AddDocElement(ViewOf(ns), ViewOf(name));
}

CXmlElement* CXmlDocument::AddDocElement(std::string_view ns, std::string_view name) {
    if (m_documentElement) {
        throw CKxInvalidStateException("The document already has a document element.");
    }
    if (m_pool == nullptr) m_pool = CXmlNodePool::Create();
    std::unique_ptr<CXmlElement> root(new (m_pool) CXmlElement(
        this, nullptr, m_pool->Intern(name), m_pool->InternNamespace(ns)));
    m_elementStack.reserve(16);
    m_elementStack.push_back(root.get());
    m_documentElement = std::move(root);
    return m_documentElement.get();
}

CXmlElement* CXmlDocument::AddChildElement(const char* ns, const char* name) {
    return AddChildElement(ViewOf(ns), ViewOf(name));
}

CXmlElement* CXmlDocument::AddChildElement(std::string_view ns, std::string_view name) {
    if (m_elementStack.empty()) {
        throw CKxInvalidStateException("There is no open element to add a child element to.");
    }
    // The engine binds and writes the tree recursively: a bound on the depth keeps hostile
    // documents from exhausting the stack (with room to spare under the sanitizers).
    if (m_elementStack.size() >= kMaxDepth) {
        throw CKxException(FormatString("The document nests elements deeper than %d levels.",
                                        static_cast<int>(kMaxDepth)));
    }
    // Room on the stack first, so that a failure cannot leave a child that is not open.
    if (m_elementStack.size() == m_elementStack.capacity()) {
        m_elementStack.reserve(2 * m_elementStack.capacity());
    }
    CXmlElement* child = m_elementStack.back()->AppendChild(m_pool, m_pool->Intern(name),
                                                            m_pool->InternNamespace(ns));
    m_elementStack.push_back(child);
    return child;
}

CXmlAttribute* CXmlDocument::AddElementAttribute(CXmlElement* element, const char* name,
                                                 const char* value, const char* ns) {
    return AddElementAttribute(element, ViewOf(name), ViewOf(value), ViewOf(ns));
}

CXmlAttribute* CXmlDocument::AddElementAttribute(CXmlElement* element, std::string_view name,
                                                 std::string_view value, std::string_view ns) {
    if (element == nullptr) return nullptr;
    return element->AddAttribute(name, value, ns);
}

void CXmlDocument::AddNamespaceBinding(std::string_view prefix, std::string_view ns) {
    const auto found = m_prefixMap.find(prefix);
    if (found != m_prefixMap.end()) {
        found->second.assign(ns);
    } else {
        m_prefixMap.emplace(std::string(prefix), std::string(ns));
    }
}

void CXmlDocument::AppendTextExcludingCR(CXmlElement* element, const char* text, size_t length) {
    if (element == nullptr || text == nullptr) return;
    // The text ends at its first NUL; the runs between carriage returns are copied, each CR
    // dropped.
    const void* nul = std::memchr(text, '\0', length);
    const char* run = text;
    const char* const end = nul == nullptr ? text + length : static_cast<const char*>(nul);
    while (run < end) {
        const void* cr = std::memchr(run, '\r', static_cast<size_t>(end - run));
        const char* const runEnd = cr == nullptr ? end : static_cast<const char*>(cr);
        if (runEnd > run) {
            element->AppendText(std::string_view(run, static_cast<size_t>(runEnd - run)));
        }
        run = runEnd + 1;
    }
}

void CXmlDocument::AppendTextExcludingCR(CXmlElement* element, const char* text) {
    if (text != nullptr) AppendTextExcludingCR(element, text, std::strlen(text));
}

void CXmlDocument::EndElement() {
    if (m_elementStack.empty()) return;
    CXmlElement* const element = m_elementStack.back();
    m_elementStack.pop_back();
    if (!m_filter || !m_filter(element)) return;
    // Dropped elements give their memory back to the pool, keeping memory flat.
    CXmlElement* const dropped = m_elementStack.empty()
                                     ? m_documentElement.release()
                                     : m_elementStack.back()->RemoveLastChildElement();
    CXmlElement::DeleteTree(dropped, false, m_pool);
}

CXmlElement* CXmlDocument::GetCurrentElement() const {
    return m_elementStack.empty() ? nullptr : m_elementStack.back();
}

void CXmlDocument::SetInput(unsigned char* data, unsigned long length) {
    m_ownedInput.reset(data);
    m_input = data;
    m_inputLength = length;
}

void CXmlDocument::BorrowInput(const unsigned char* data, unsigned long length) {
    m_ownedInput.reset();
    m_input = data;
    m_inputLength = length;
}

void CXmlDocument::ReleaseInput() {
    m_ownedInput.reset();
    m_input = nullptr;
    m_inputLength = 0;
}

void CXmlDocument::ReadFile(const char* path) {
    const char* const name = path == nullptr ? "" : path;
    unsigned long length = 0;
    std::FILE* file = OpenRegularFile(name, length);
    std::unique_ptr<unsigned char[]> bytes(new unsigned char[length == 0 ? 1 : length]);
    const size_t read = std::fread(bytes.get(), 1, length, file);
    if (read == 0 || read < length) {
        ThrowFileError(file, "Failed to read the contents of the file", name);
    }
    std::fclose(file);
    SetInput(bytes.release(), length);
}

void CXmlDocument::LoadFile(const char* path) {
    const char* const name = path == nullptr ? "" : path;
    unsigned long length = 0;
    std::FILE* file = OpenRegularFile(name, length);
    const char* const readFailure = "Failed to read the contents of the file";
    // The first piece tells the format; a file of one piece is simply parsed whole.
    const unsigned long kPiece = 1ul << 20;
    const unsigned long head = length < kPiece ? length : kPiece;
    std::unique_ptr<unsigned char[]> bytes(new unsigned char[head == 0 ? 1 : head]);
    size_t got = std::fread(bytes.get(), 1, head, file);
    if (got == 0 || got < head) ThrowFileError(file, readFailure, name);
    if (head == length || CKxZip::IsCompressed(bytes.get(), head) ||
        CFastInfosetReader::HasHeader(bytes.get(), head)) {
        if (head < length) {
            // Decompression and the Fast Infoset reader need every byte at once.
            std::unique_ptr<unsigned char[]> whole(new unsigned char[length]);
            std::memcpy(whole.get(), bytes.get(), head);
            bytes = std::move(whole);
            got = std::fread(bytes.get() + head, 1, length - head, file);
            if (got < length - head) ThrowFileError(file, readFailure, name);
        }
        std::fclose(file);
        SetInput(bytes.release(), length);
        Parse();
        return;
    }

    // Plain XML text goes to expat one piece at a time, so that a large file is never held
    // whole: with an element filter that drops what it has seen, memory stays flat.
    struct Reading {
        CXmlDocument& document;
        std::FILE* file;
        ~Reading() {
            document.ReleaseInput();
            if (file != nullptr) std::fclose(file);
        }
    } reading{*this, file};
    CExpatReader reader(*this);
    reader.CreateParser();
    unsigned long total = 0;
    while (got != 0) {
        total += got;
        BorrowInput(bytes.get(), got);
        reader.Parse(false);
        got = std::fread(bytes.get(), 1, kPiece, file);
    }
    if (std::ferror(file) != 0 || total < length) {
        reading.file = nullptr;
        ThrowFileError(file, readFailure, name);
    }
    BorrowInput(bytes.get(), 0);
    reader.Parse(true);
}

void CXmlDocument::Parse() {
    // The input is dropped once the tree is built (or the parse failed).
    struct InputRelease {
        CXmlDocument& document;
        ~InputRelease() { document.ReleaseInput(); }
    } release{*this};

    if (CKxZip::IsCompressed(m_input, m_inputLength)) {
        // Decompression replaces an array-new buffer: borrowed bytes are copied first.
        if (!m_ownedInput) SetInput(CopyBytes(m_input, m_inputLength).release(), m_inputLength);
        unsigned char* data = m_ownedInput.get();
        unsigned long length = m_inputLength;
        CKxZip::Decompress(&data, &length);
        if (data != m_ownedInput.get()) {
            // Decompress has freed the old bytes already.
            m_ownedInput.release();
            SetInput(data, length);
        }
    }
    // The Fast Infoset settings are created on first use: only ask for them for Fast Infoset.
    if (CFastInfosetReader::HasHeader(m_input, m_inputLength) &&
        CFastInfosetReader::Parse(m_input, m_inputLength, *this, *m_context->GetFIContext())) {
        return;
    }
    ParseText();
}

void CXmlDocument::ParseText() {
    struct InputRelease {
        CXmlDocument& document;
        ~InputRelease() { document.ReleaseInput(); }
    } release{*this};
    CExpatReader reader(*this);
    reader.CreateParser();
    reader.Parse(true);
}

}  // namespace KxXmlLib16
