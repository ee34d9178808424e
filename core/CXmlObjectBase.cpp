#include "CXmlObjectBase.h"

#include <atomic>
#include <map>
#include <memory>
#include <string>
#include <utility>

#include "CAttributeCol.h"
#include "CElement.h"
#include "CElementCol.h"
#include "CFastInfosetWriter.h"
#include "CFileBinaryStream.h"
#include "CFileTextStream.h"
#include "CJsonContext.h"
#include "CJsonTextWriter.h"
#include "CKxException.h"
#include "CKxZip.h"
#include "CTextStream.h"
#include "CXmlDocument.h"
#include "CXmlElement.h"
#include "CXmlObjectHelper.h"
#include "CXmlTextWriter.h"
#include "FormatString.h"
#include "INillable.h"
#include "io/CDeflateTextStream.h"

namespace KxXmlLib16 {

// The interfaces' destructors live here so that their type information is emitted once, in the
// library, and dynamic_cast to them works across the library boundary.
IEventSink::~IEventSink() = default;
INillable::~INillable() = default;

namespace {

std::atomic<bool> g_asyncToXmlFile{false};

std::string Str(const char* text) {
    return text ? std::string(text) : std::string();
}

void RefuseZlibForFiles(CompressionType compression) {
    if (compression == CompressionType_ZLib) {
        throw CKxException("ZLIB Compression only available for To Stream methods.");
    }
}

// Opens the writer and applies the options every XML output shares.
void SetUpWriter(CXmlTextWriter& writer, bool formatted, EOLType eol,
                 const CSerializationContext& ctx) {
    writer.Open();
    writer.SetFormat(formatted);
    writer.SetIndentChars(ctx.GetIndentChars().c_str());
    writer.SetEOLType(eol);
    writer.SetWriteDefaultElementValues(ctx.GetWriteDefaultElementValues());
}

// Writes the whole document of `object` into `stream` (which the writer opens and closes).
void WriteXmlDocument(const CXmlObjectBase& object, CTextStream& stream, bool includeHeader,
                      bool formatted, EOLType eol, const CSerializationContext& ctx) {
    CXmlTextWriter writer(stream);
    SetUpWriter(writer, formatted, eol, ctx);
    if (includeHeader) writer.WriteStartDocument();
    const std::string ns = object.GetNamespace();
    object.ToXml_Int(&writer, true, ns.c_str(), ctx, false);
    writer.Close();
}

// Writes the whole JSON document of `object` into `stream`, with the JSON options of `ctx`.
void WriteJsonDocument(const CXmlObjectBase& object, CTextStream& stream, bool formatted,
                       EOLType eol, const CSerializationContext& ctx) {
    CJsonTextWriter writer(stream);
    writer.Open();
    writer.SetFormat(formatted);
    writer.SetIndentChars(ctx.GetIndentChars().c_str());
    writer.SetEOLType(eol);
    const CJsonContext* json = ctx.GetJsonContext();
    writer.SetSupportRoundtrip(json->GetSupportRoundtrip());
    writer.SetStandardEscaping(json->GetStandardEscaping());
    writer.WriteStartDocument();
    const std::string ns = object.GetNamespace();
    object.ToXml_Int(&writer, true, ns.c_str(), ctx, false);
    writer.WriteEndDocument();
    writer.Close();
}

// Writes the whole Fast Infoset document of `object` into `stream`, with the Fast Infoset
// options of `ctx`.
void WriteFastInfosetDocument(const CXmlObjectBase& object, CBinaryStream& stream,
                              FInfoDecl declaration, const CSerializationContext& ctx) {
    CFastInfosetWriter writer(stream, *ctx.GetFIContext());
    writer.Open();
    writer.WriteStartDocument(declaration);
    const std::string ns = object.GetNamespace();
    object.ToXml_Int(&writer, true, ns.c_str(), ctx, false);
    writer.WriteEndDocument();
    writer.Close();
}

// Writes `bytes` to `path`; the byte-order mark belongs to uncompressed text only: in front of
// compressed bytes it would keep every reader from recognising the compression.
void WriteDocumentFile(const char* path, XmlEncoding encoding, CompressionType compression,
                       const CBinaryData& bytes) {
    const XmlEncoding fileEncoding =
        compression == CompressionType_None ? encoding : XmlEncoding_UTF8;
    CFileBinaryStream(path, fileEncoding, bytes).ToFile();
}

// Compressed UTF-8 text is deflated while it is written, so the whole text is never held.
bool DeflatesAsItWrites(XmlEncoding encoding, CompressionType compression) {
    return encoding == XmlEncoding_UTF8 &&
           (compression == CompressionType_GZip || compression == CompressionType_ZLib);
}

// A text stream whose text becomes one std::string: the blocks the writer fills are kept as
// they are and copied once, into a string of the final size, when the text is taken (growing a
// string as the text comes would copy it again at every doubling).
class CStringTextStream : public CTextStream {
public:
    CStringTextStream() : CTextStream("CStringTextStream", XmlEncoding_UTF8) {}
    std::string TakeText() {
        std::string text;
        m_buffer.AppendTo(text);
        m_buffer.Clear();
        return text;
    }
};

void ThrowAlreadySet(const char* format, const std::string& current) {
    throw CKxInvalidStateException(FormatString(format, current.c_str()));
}

const char* const kAlreadySetBracketed =
    "The Property [%s] is already set. Only one element within this class bay be set at a time";
const char* const kAlreadySetPlain =
    "The Property %s is already set. Only one element within this class bay be set at a time";

// The context a JSON text is read with: JSON written without namespaces (any mode but the full
// round trip) cannot be checked against them, so a copy with namespace checking off is used.
class JsonReadingContext {
public:
    explicit JsonReadingContext(const CSerializationContext& ctx) : m_context(&ctx) {
        if (ctx.GetJsonContext()->GetSupportRoundtrip() != RoundTrip_Full) {
            m_copy.reset(new CSerializationContext(ctx));
            m_copy->SetIgnoreNamespaces(true);
            m_context = m_copy.get();
        }
    }
    const CSerializationContext& Get() const { return *m_context; }

private:
    const CSerializationContext* m_context;
    std::unique_ptr<CSerializationContext> m_copy;
};

}  // namespace

void AsyncToXmlFile(bool on) {
    g_asyncToXmlFile.store(on);
}
bool GetAsyncToXmlFile() {
    return g_asyncToXmlFile.load();
}
void AsyncFromXmlFile(bool) {}

// ---- Construction and reference count ----------------------------------------------------

CXmlObjectBase::CXmlObjectBase() : m_refCount(0) {}

CXmlObjectBase::CXmlObjectBase(const CXmlObjectBase& other)
    : m_elementName(other.m_elementName), m_refCount(0) {}

CXmlObjectBase& CXmlObjectBase::operator=(const CXmlObjectBase& other) {
    m_elementName = other.m_elementName;
    return *this;
}

CXmlObjectBase::~CXmlObjectBase() = default;

void CXmlObjectBase::OnEvent(CXmlObjectBase*, IEventSink::MsgType, void*) {}

long long CXmlObjectBase::AddRef() {
    CKXLock lock(m_refLock);
    return ++m_refCount;
}

long long CXmlObjectBase::Release() {
    long long remaining;
    {
        CKXLock lock(m_refLock);
        remaining = --m_refCount;
    }
    // The lock is left before the object (and the mutex inside it) is destroyed.
    if (remaining == 0) delete this;
    return remaining;
}

long long CXmlObjectBase::GetRefCount() const {
    CKXLock lock(m_refLock);
    return m_refCount;
}

const std::string& CXmlObjectBase::GetElementName() const {
    return m_elementName;
}

void CXmlObjectBase::SetElementName(const char* name) {
    m_elementName = name ? name : "";
}

CXmlObjectBase* CXmlObjectBase::GetBase() {
    return this;
}
const CXmlObjectBase* CXmlObjectBase::GetBase() const {
    return this;
}

// ---- Writing -----------------------------------------------------------------------------

void CXmlObjectBase::ToXmlFile(const char* path, bool includeHeader, bool formatted,
                               XmlEncoding encoding, EOLType eol, const CSerializationContext& ctx,
                               CompressionType compression) const {
    RefuseZlibForFiles(compression);
    if (GetAsyncToXmlFile() && compression == CompressionType_None) {
        CFileTextStream stream(path, encoding);
        WriteXmlDocument(*this, stream, includeHeader, formatted, eol, ctx);
        return;
    }
    const CBinaryData bytes =
        ToXmlStream(includeHeader, formatted, encoding, eol, ctx, compression);
    // The byte-order mark belongs to uncompressed text only: in front of compressed bytes it
    // would keep every reader from recognising the compression.
    const XmlEncoding fileEncoding =
        compression == CompressionType_None ? encoding : XmlEncoding_UTF8;
    CFileBinaryStream(path, fileEncoding, bytes).ToFile();
}

void CXmlObjectBase::ToFastInfosetFile(const char* path, FInfoDecl declaration,
                                       const CSerializationContext& ctx,
                                       CompressionType compression) const {
    RefuseZlibForFiles(compression);
    const CBinaryData bytes = ToFastInfosetStream(declaration, ctx, compression);
    // Binary output: no byte-order mark whatever the text encodings say.
    WriteDocumentFile(path, XmlEncoding_UTF8, compression, bytes);
}

void CXmlObjectBase::ToJsonFile(const char* path, bool formatted, XmlEncoding encoding,
                                EOLType eol, const CSerializationContext& ctx,
                                CompressionType compression) const {
    RefuseZlibForFiles(compression);
    if (GetAsyncToXmlFile() && compression == CompressionType_None) {
        CFileTextStream stream(path, encoding);
        WriteJsonDocument(*this, stream, formatted, eol, ctx);
        return;
    }
    const CBinaryData bytes = ToJsonStream(formatted, encoding, eol, ctx, compression);
    WriteDocumentFile(path, encoding, compression, bytes);
}

std::string CXmlObjectBase::ToXml(bool includeHeader, bool formatted, EOLType eol,
                                  const CSerializationContext& ctx) const {
    CStringTextStream stream;
    WriteXmlDocument(*this, stream, includeHeader, formatted, eol, ctx);
    return stream.TakeText();
}

std::string CXmlObjectBase::ToJson(bool formatted, EOLType eol,
                                   const CSerializationContext& ctx) const {
    CStringTextStream stream;
    WriteJsonDocument(*this, stream, formatted, eol, ctx);
    return stream.TakeText();
}

CBinaryData CXmlObjectBase::ToXmlStream(bool includeHeader, bool formatted, XmlEncoding encoding,
                                        EOLType eol, const CSerializationContext& ctx,
                                        CompressionType compression) const {
    if (DeflatesAsItWrites(encoding, compression)) {
        CDeflateTextStream stream(compression);
        WriteXmlDocument(*this, stream, includeHeader, formatted, eol, ctx);
        return stream.Finish();
    }
    CTextStream stream(encoding);
    WriteXmlDocument(*this, stream, includeHeader, formatted, eol, ctx);
    CBinaryData bytes = stream.GetEncodedStream();
    if (compression != CompressionType_None) CKxZip::CompressData(bytes, compression);
    return bytes;
}

CBinaryData CXmlObjectBase::ToFastInfosetStream(FInfoDecl declaration,
                                                const CSerializationContext& ctx,
                                                CompressionType compression) const {
    CBinaryStream stream;
    WriteFastInfosetDocument(*this, stream, declaration, ctx);
    CBinaryData bytes = stream.GetBinaryStream();
    if (compression != CompressionType_None) CKxZip::CompressData(bytes, compression);
    return bytes;
}

CBinaryData CXmlObjectBase::ToJsonStream(bool formatted, XmlEncoding encoding, EOLType eol,
                                         const CSerializationContext& ctx,
                                         CompressionType compression) const {
    if (DeflatesAsItWrites(encoding, compression)) {
        CDeflateTextStream stream(compression);
        WriteJsonDocument(*this, stream, formatted, eol, ctx);
        return stream.Finish();
    }
    CTextStream stream(encoding);
    WriteJsonDocument(*this, stream, formatted, eol, ctx);
    CBinaryData bytes = stream.GetEncodedStream();
    if (compression != CompressionType_None) CKxZip::CompressData(bytes, compression);
    return bytes;
}

// ---- Reading -----------------------------------------------------------------------------
//
// Each document lives on the stack, so it is freed however the read ends.

void CXmlObjectBase::ReadElement(const CXmlElement* element, const CSerializationContext& ctx) {
    if (!element) throw CKxInvalidParamException("The element to read from is NULL");
    // The engine treats the tree as read-only; the hook takes a plain pointer all the same.
    CXmlElement* root = const_cast<CXmlElement*>(element);
    FromXml_Int(root, root->GetFirstElement(), ctx, false);
}

void CXmlObjectBase::FromXmlFile(const char* path, const CSerializationContext& ctx) {
    CXmlDocument document(ctx);
    document.Load(path);
    ReadElement(document.GetDocumentElement(), ctx);
}

void CXmlObjectBase::FromJsonFile(const char* path, const CSerializationContext& ctx) {
    const JsonReadingContext reading(ctx);
    CXmlDocument document(reading.Get());
    document.LoadJsonFile(path);
    ReadElement(document.GetDocumentElement(), reading.Get());
}

void CXmlObjectBase::FromXml(const char* text, const CSerializationContext& ctx) {
    CXmlDocument document(ctx);
    document.LoadXml(text);
    ReadElement(document.GetDocumentElement(), ctx);
}

void CXmlObjectBase::FromXml(const wchar_t* text, const CSerializationContext& ctx) {
    CXmlDocument document(ctx);
    document.LoadXml(text);
    ReadElement(document.GetDocumentElement(), ctx);
}

void CXmlObjectBase::FromJson(const char* text, const CSerializationContext& ctx) {
    const JsonReadingContext reading(ctx);
    CXmlDocument document(reading.Get());
    document.LoadJson(text);
    ReadElement(document.GetDocumentElement(), reading.Get());
}

void CXmlObjectBase::FromJson(const wchar_t* text, const CSerializationContext& ctx) {
    const JsonReadingContext reading(ctx);
    CXmlDocument document(reading.Get());
    document.LoadJson(text);
    ReadElement(document.GetDocumentElement(), reading.Get());
}

void CXmlObjectBase::FromXmlStream(const unsigned char* data, unsigned long length,
                                   const CSerializationContext& ctx) {
    CXmlDocument document(ctx);
    document.LoadXmlStream(data, length);
    ReadElement(document.GetDocumentElement(), ctx);
}

void CXmlObjectBase::FromXmlStream(const CBinaryData& data, const CSerializationContext& ctx) {
    FromXmlStream(data.GetData(), data.GetLength(), ctx);
}

void CXmlObjectBase::FromJsonStream(const unsigned char* data, unsigned long length,
                                    const CSerializationContext& ctx) {
    const JsonReadingContext reading(ctx);
    CXmlDocument document(reading.Get());
    document.LoadJsonStream(data, length);
    ReadElement(document.GetDocumentElement(), reading.Get());
}

void CXmlObjectBase::FromJsonStream(const CBinaryData& data, const CSerializationContext& ctx) {
    FromJsonStream(data.GetData(), data.GetLength(), ctx);
}

void CXmlObjectBase::FromXmlElement(const CXmlElement* element, const CSerializationContext& ctx) {
    ReadElement(element, ctx);
}

namespace {

// Copies an untyped element into the open element of `document`, children included. An
// xsi:type goes back as an attribute whose prefix is bound in the document (t0, t1, ... per
// namespace), so that the reader resolves it as it would in parsed input.
void CopyUntyped(const CElement& source, CXmlDocument& document, CXmlElement* target,
                 std::map<std::string, std::string>& typePrefixes) {
    if (!source.GetTypeName().empty()) {
        std::string qname = source.GetTypeName();
        if (!source.GetTypeNamespace().empty()) {
            auto found = typePrefixes.find(source.GetTypeNamespace());
            if (found == typePrefixes.end()) {
                const std::string prefix = FormatString("t%d", static_cast<int>(typePrefixes.size()));
                document.AddNamespaceBinding(prefix, source.GetTypeNamespace());
                found = typePrefixes.emplace(source.GetTypeNamespace(), prefix).first;
            }
            qname = found->second + ":" + qname;
        }
        document.AddElementAttribute(target, "type", qname.c_str(),
                                     "http://www.w3.org/2001/XMLSchema-instance");
    }
    for (const CSmartPtr<CAttribute>& attribute : *source.GetAttributes()) {
        if (!attribute) continue;
        document.AddElementAttribute(target, attribute->GetName().c_str(),
                                     attribute->GetValue().c_str(),
                                     attribute->GetNamespace().c_str());
    }
    target->AppendText(source.GetText());
    CSmartPtr<CElementCol> children = source.GetChildren();
    for (CXmlCollection::CNode* node = children->GetHead(); node; node = node->m_next) {
        const CElement* child = dynamic_cast<const CElement*>(node->m_item);
        if (!child) continue;
        CXmlElement* element =
            document.AddChildElement(child->GetNamespace().c_str(), child->GetName().c_str());
        CopyUntyped(*child, document, element, typePrefixes);
        document.EndElement();
    }
}

}  // namespace

void CXmlObjectBase::FromXmlElement(const CElement* element, const CSerializationContext& ctx) {
    if (!element) throw CKxInvalidParamException("The element to read from is NULL");
    // The engine reads trees, so the untyped element is rebuilt as one (no text round trip).
    CXmlDocument document(ctx);
    CXmlElement* root =
        document.AddDocElement(element->GetNamespace().c_str(), element->GetName().c_str());
    std::map<std::string, std::string> typePrefixes;
    CopyUntyped(*element, document, root, typePrefixes);
    document.EndElement();
    ReadElement(document.GetDocumentElement(), ctx);
}

// ---- Hooks and forwarders ----------------------------------------------------------------

void CXmlObjectBase::AttributesToXml_Int(CXmlWriter*, const CSerializationContext&) const {}

void CXmlObjectBase::ToXml_Int(const CXmlObjectBase* object, CXmlWriter* writer, bool isRoot,
                               const char* ns, const CSerializationContext& ctx, bool isNested) {
    object->ToXml_Int(writer, isRoot, ns, ctx, isNested);
}

CXmlElement* CXmlObjectBase::FromXml_Int(CXmlObjectBase* object, CXmlElement* element,
                                         CXmlElement* firstChild,
                                         const CSerializationContext& ctx) {
    return object->FromXml_Int(element, firstChild, ctx, false);
}

void CXmlObjectBase::AttributesToXml_Int(const CXmlObjectBase* object, CXmlWriter* writer,
                                         const CSerializationContext& ctx) {
    object->AttributesToXml_Int(writer, ctx);
}

// ---- Collection events -------------------------------------------------------------------

void CXmlObjectBase::FireOnCollectionChangeEvent(IEventSink* sink, CXmlObjectBase* collection) {
    if (sink) sink->OnEvent(collection, IEventSink::MsgType_CollectionChange, nullptr);
}

void CXmlObjectBase::FireOnCollectionAddEvent(IEventSink* sink, CXmlObjectBase* collection,
                                              void* item) {
    if (sink) sink->OnEvent(collection, IEventSink::MsgType_CollectionAdd, item);
}

void CXmlObjectBase::FireOnCollectionAddCompleteEvent(IEventSink* sink, CXmlObjectBase* collection,
                                                      void* item) {
    if (sink) sink->OnEvent(collection, IEventSink::MsgType_CollectionAddComplete, item);
}

void CXmlObjectBase::FireOnCollectionRemoveEvent(IEventSink* sink, CXmlObjectBase* collection,
                                                 int index) {
    if (sink) sink->OnEvent(collection, IEventSink::MsgType_CollectionRemove, &index);
}

void CXmlObjectBase::FireOnCollectionRemoveCompleteEvent(IEventSink* sink,
                                                         CXmlObjectBase* collection, int index) {
    if (sink) sink->OnEvent(collection, IEventSink::MsgType_CollectionRemoveComplete, &index);
}

// ---- Choice bookkeeping ------------------------------------------------------------------

void CXmlObjectBase::Choice_SelectElement(const char* name, const void* value,
                                          std::string& current) {
    const std::string branch = Str(name);
    if (current == branch) {
        if (!value) current.clear();
    } else if (current.empty()) {
        current = branch;
    } else if (value) {
        ThrowAlreadySet(kAlreadySetBracketed, current);
    }
}

void CXmlObjectBase::Choice_SetElementValid(bool valid, const char* name, std::string& current) {
    if (!valid) {
        current.clear();
        return;
    }
    const std::string branch = Str(name);
    if (current.empty()) {
        current = branch;
    } else if (current != branch) {
        ThrowAlreadySet(kAlreadySetPlain, current);
    }
}

void CXmlObjectBase::Choice_CollectionChanged(const char* name, int count, std::string& current) {
    const std::string branch = Str(name);
    if (current == branch) {
        if (count == 0) current.clear();
    } else if (current.empty()) {
        if (count > 0) current = branch;
    } else if (count != 0) {
        ThrowAlreadySet(kAlreadySetBracketed, current);
    }
}

void CXmlObjectBase::Choice_Read_Collection(const char* name, int count, std::string& current) {
    const std::string branch = Str(name);
    if (count > 0) {
        current = branch;
    } else if (current == branch) {
        current.clear();
    }
}

// ---- Checks ------------------------------------------------------------------------------

void CXmlObjectBase::Throw_IfPropertyIsNull(const void* value, const char* name) {
    if (!value) {
        throw CKxInvalidParamException(
            FormatString("The Property [%s] is mandatory, it may node be NULL", Str(name).c_str()));
    }
}

void CXmlObjectBase::Throw_IfElementNameDiffers(const CXmlObjectBase* value, const char* name) {
    const std::string required = Str(name);
    if (value && value->GetElementName() != required) {
        throw CKxInvalidParamException(FormatString(
            "This property requires an element with the name %s the element being set has the "
            "element name %s",
            required.c_str(), value->GetElementName().c_str()));
    }
}

// ---- Namespace tests ---------------------------------------------------------------------

bool CXmlObjectBase::TestNamespace(const char* namespaceUri, const char* constraint,
                                   const char* targetNamespace) {
    return CXmlObjectHelper::TestNamespace(Str(namespaceUri), Str(constraint),
                                           Str(targetNamespace));
}

bool CXmlObjectBase::IsNamespaceValid(const char* namespaceUri, const char* constraint,
                                      const char* targetNamespace) {
    return CXmlObjectHelper::IsNamespaceValid(Str(namespaceUri), Str(constraint),
                                              Str(targetNamespace));
}

bool CXmlObjectBase::DoesElementNameMatch(const CSerializationContext& ctx,
                                          const CXmlElement* element, const char* name,
                                          const char* namespaceUri) {
    return CXmlObjectHelper::DoesElementNameMatch(ctx, element, Str(name), Str(namespaceUri));
}

}  // namespace KxXmlLib16
