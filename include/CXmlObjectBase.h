// CXmlObjectBase: root of every bindable object (generated classes, collections, untyped
// elements). It carries the reference count and the element name, and it is the public face of
// the library: the To... operations that write the object as XML text, JSON or Fast Infoset,
// and the From... operations that read it back. Each entry point sets up a writer or a document
// and hands over to the two hooks that subclasses implement, ToXml_Int and FromXml_Int.
#ifndef KX_CXMLOBJECTBASE_H
#define KX_CXMLOBJECTBASE_H

#include <string>

#include "CBinaryData.h"
#include "CKXCriticalSection.h"
#include "CSerializationContext.h"
#include "IEventSink.h"
#include "KxConfig.h"
#include "KxTypes.h"

namespace KxXmlLib16 {

class CElement;
class CXmlElement;
class CXmlWriter;

// The virtual operations are declared in a fixed order (the order of the object's slot table):
// event hook, Clone, the writing entry points, the reading entry points, the destructor, the two
// namespace getters, AttributesToXml_Int, ToXml_Int, FromXml_Int, then OnPreRead.
//
// Entry points propagate the exceptions of the writers, readers and FromXml_Int/ToXml_Int
// unchanged. Only the reference count is thread-safe; everything else is for one thread at a
// time per object.
class KX_EXPORT CXmlObjectBase {
public:
    // A new object has reference count 0: the first CSmartPtr (or AddRef) takes it to 1.
    CXmlObjectBase();
    // Copies the element name; the copy starts with its own count of 0 and its own lock.
    CXmlObjectBase(const CXmlObjectBase& other);
    // Assigns the element name only; counts and locks stay with their objects.
    CXmlObjectBase& operator=(const CXmlObjectBase& other);

    // Event hook: called with a collection's notifications when this object listens to one.
    // The base does nothing.
    virtual void OnEvent(CXmlObjectBase* source, IEventSink::MsgType type, void* data);

    // A deep copy whose reference count is 0 (wrap it in a CSmartPtr).
    virtual CXmlObjectBase* Clone() const = 0;

    // ---- Writing ---------------------------------------------------------------------------
    //
    // The XML forms write the XML declaration when `includeHeader` is set, indent with the
    // context's IndentChars when `formatted` is set, and end lines as `eol` says. The stream
    // forms return the bytes in `encoding` (UTF-16 little-endian without byte-order mark for
    // the UTF-16 encodings), compressed when `compression` is not CompressionType_None. The file
    // forms accept no compression or gzip and refuse CompressionType_ZLib with CKxException
    // "ZLIB Compression only available for To Stream methods." before creating anything.

    // Writes the document to `path`. Normally the whole document is built in memory first, so
    // that nothing is written when it fails; a UTF-16 file starts with FF FE unless it is
    // compressed (a mark in front of the compressed bytes would hide them from every reader).
    // With AsyncToXmlFile(true) and no compression the text goes to the file in chunks as it
    // is produced, and a failure leaves a partial file. Throws CKxException "Failed to write
    // data to the file [path]." when the file cannot be written.
    virtual void ToXmlFile(
        const char* path, bool includeHeader = true, bool formatted = true,
        XmlEncoding encoding = XmlEncoding_UTF8, EOLType eol = EOLType_LF,
        const CSerializationContext& ctx = CSerializationContext::m_defaultContext,
        CompressionType compression = CompressionType_None) const;
    // Fast Infoset document to `path` (as ToFastInfosetStream, never streamed). Refuses zlib
    // compression as ToXmlFile does; throws CKxException "Failed to write data to the file
    // [path]." when the file cannot be written.
    virtual void ToFastInfosetFile(
        const char* path, FInfoDecl declaration = FInfoDecl_None,
        const CSerializationContext& ctx = CSerializationContext::m_defaultContext,
        CompressionType compression = CompressionType_None) const;
    // JSON document to `path`, with the JSON options of the context's CJsonContext; otherwise
    // as ToXmlFile (zlib refused, streaming with AsyncToXmlFile(true), FF FE for UTF-16).
    // Throws the writer's CKxException "Unknown Namespace: %s." in full round trip for an
    // element or attribute whose namespace has no prefix in scope.
    virtual void ToJsonFile(
        const char* path, bool formatted = true, XmlEncoding encoding = XmlEncoding_UTF8,
        EOLType eol = EOLType_LF,
        const CSerializationContext& ctx = CSerializationContext::m_defaultContext,
        CompressionType compression = CompressionType_None) const;
    // The document as text (UTF-8; a header names UTF-8).
    virtual std::string ToXml(
        bool includeHeader = true, bool formatted = true, EOLType eol = EOLType_LF,
        const CSerializationContext& ctx = CSerializationContext::m_defaultContext) const;
    // JSON text (UTF-8), shaped by the context's CJsonContext (round-trip mode, escaping).
    virtual std::string ToJson(
        bool formatted = true, EOLType eol = EOLType_LF,
        const CSerializationContext& ctx = CSerializationContext::m_defaultContext) const;
    // The document as bytes. Compression of data that does not shrink throws CKxZip's
    // "Failed to compress data. [Error Code: %d]".
    virtual CBinaryData ToXmlStream(
        bool includeHeader = true, bool formatted = true, XmlEncoding encoding = XmlEncoding_UTF8,
        EOLType eol = EOLType_LF,
        const CSerializationContext& ctx = CSerializationContext::m_defaultContext,
        CompressionType compression = CompressionType_None) const;
    // The document as Fast Infoset bytes, with the options of the context's
    // CFastInfosetContext and the chosen XML declaration (none by default), compressed when
    // asked. Throws the Fast Infoset writer's CKxException value-encoding errors.
    virtual CBinaryData ToFastInfosetStream(
        FInfoDecl declaration = FInfoDecl_None,
        const CSerializationContext& ctx = CSerializationContext::m_defaultContext,
        CompressionType compression = CompressionType_None) const;
    // JSON as bytes of `encoding`, compressed when asked, as ToXmlStream.
    virtual CBinaryData ToJsonStream(
        bool formatted = true, XmlEncoding encoding = XmlEncoding_UTF8, EOLType eol = EOLType_LF,
        const CSerializationContext& ctx = CSerializationContext::m_defaultContext,
        CompressionType compression = CompressionType_None) const;

    // ---- Reading ---------------------------------------------------------------------------
    //
    // Each form loads the input into a CXmlDocument with the context, then calls
    // FromXml_Int(root, root's first child element, ctx, false); the document is freed on every
    // path. Files and byte streams may be plain XML text (UTF-8 or UTF-16), gzip- or
    // zlib-compressed, or Fast Infoset: the format is recognised from the bytes. Load failures
    // throw the document's CKxException ("XML String is empty!", "XML Stream is empty!",
    // "Failed to open the file [path]." ...), parse errors the reader's, and content errors
    // whatever FromXml_Int throws. A failure leaves the object partly filled.

    virtual void FromXmlFile(const char* path, const CSerializationContext& ctx =
                                                   CSerializationContext::m_defaultContext);
    // JSON input (UTF-8 in files and byte streams, which may be gzip or zlib data) is turned
    // into XML text with the JSON options of ctx and read like XML. Outside RoundTrip_Full the
    // JSON carries no namespaces, so it is read with namespace checking off. Throws as the XML
    // forms, plus "JSON String is empty!", "JSON Stream is empty!" and the JSON reader's
    // CKxValidationException ("... at line L, position P.", with the JSON path).
    virtual void FromJsonFile(const char* path, const CSerializationContext& ctx =
                                                    CSerializationContext::m_defaultContext);
    // XML text in a narrow (UTF-8) string; never decompressed.
    virtual void FromXml(const char* text, const CSerializationContext& ctx =
                                               CSerializationContext::m_defaultContext);
    // XML text in a wide string (characters of the Basic Multilingual Plane only).
    virtual void FromXml(const wchar_t* text, const CSerializationContext& ctx =
                                                  CSerializationContext::m_defaultContext);
    virtual void FromJson(const char* text, const CSerializationContext& ctx =
                                                CSerializationContext::m_defaultContext);
    virtual void FromJson(const wchar_t* text, const CSerializationContext& ctx =
                                                   CSerializationContext::m_defaultContext);
    virtual void FromXmlStream(
        const unsigned char* data, unsigned long length,
        const CSerializationContext& ctx = CSerializationContext::m_defaultContext);
    virtual void FromXmlStream(
        const CBinaryData& data,
        const CSerializationContext& ctx = CSerializationContext::m_defaultContext);
    virtual void FromJsonStream(
        const unsigned char* data, unsigned long length,
        const CSerializationContext& ctx = CSerializationContext::m_defaultContext);
    virtual void FromJsonStream(
        const CBinaryData& data,
        const CSerializationContext& ctx = CSerializationContext::m_defaultContext);
    // Reads the object from an element of a tree the caller holds (the tree is not changed).
    // Throws CKxInvalidParamException "The element to read from is NULL" for a null element.
    virtual void FromXmlElement(
        const CXmlElement* element,
        const CSerializationContext& ctx = CSerializationContext::m_defaultContext);
    // Reads the object from the subtree an untyped element holds, as if it had been parsed
    // (the element is not changed). Throws CKxInvalidParamException "The element to read from
    // is NULL" for a null element, otherwise whatever reading that tree throws.
    virtual void FromXmlElement(
        const CElement* element,
        const CSerializationContext& ctx = CSerializationContext::m_defaultContext);

    virtual ~CXmlObjectBase();

    // The namespace of the object's own element, and the namespace of its children.
    virtual std::string GetNamespace() const = 0;
    virtual std::string GetTargetNamespace() const = 0;

    // ---- Serialisation hooks ---------------------------------------------------------------

    // Writes the object's attributes into the start tag just written. The base writes nothing.
    virtual void AttributesToXml_Int(CXmlWriter* writer, const CSerializationContext& ctx) const;
    // Writes the object through `writer`. `isRoot` marks the document's root element (which
    // also carries the context's processing instructions, namespace declarations and extra
    // attributes); `ns` is the namespace of the object's element (the entry points pass
    // GetNamespace()); `isNested` marks content written inside an enclosing group.
    virtual void ToXml_Int(CXmlWriter* writer, bool isRoot, const char* ns,
                           const CSerializationContext& ctx, bool isNested) const = 0;
    // Fills the object from `element`, whose child elements are read starting at `firstChild`.
    // Implementations call OnPreRead() first (the entry points do not). Returns the first child
    // element that was not consumed, or null when all were.
    virtual CXmlElement* FromXml_Int(CXmlElement* element, CXmlElement* firstChild,
                                     const CSerializationContext& ctx, bool isNested) = 0;
    // Called by FromXml_Int before the object reads anything (to reset members, for example).
    // The base does nothing.
    virtual void OnPreRead() {}

    // Forwarders for code that holds a base pointer (none of them accepts a null object).
    static void ToXml_Int(const CXmlObjectBase* object, CXmlWriter* writer, bool isRoot,
                          const char* ns, const CSerializationContext& ctx, bool isNested);
    // isNested false.
    static CXmlElement* FromXml_Int(CXmlObjectBase* object, CXmlElement* element,
                                    CXmlElement* firstChild, const CSerializationContext& ctx);
    static void AttributesToXml_Int(const CXmlObjectBase* object, CXmlWriter* writer,
                                    const CSerializationContext& ctx);

    // ---- Reference count and name ----------------------------------------------------------

    // Raises the count under the object's lock; returns the new count.
    long long AddRef();
    // Lowers the count under the object's lock; at 0 the object destroys itself through its
    // virtual destructor. Returns the new count.
    long long Release();
    // The current count (for diagnostics and tests).
    long long GetRefCount() const;

    // The name under which the object is written and, after reading, the one it was read from.
    const std::string& GetElementName() const;
    void SetElementName(const char* name);

    // This object, as its base.
    CXmlObjectBase* GetBase();
    const CXmlObjectBase* GetBase() const;

    // ---- Collection events -----------------------------------------------------------------
    //
    // Each calls sink->OnEvent(collection, <message>, data) when `sink` is not null: the item
    // for the add messages, a pointer to `index` for the remove messages, null for a change.
    static void FireOnCollectionChangeEvent(IEventSink* sink, CXmlObjectBase* collection);
    static void FireOnCollectionAddEvent(IEventSink* sink, CXmlObjectBase* collection, void* item);
    static void FireOnCollectionAddCompleteEvent(IEventSink* sink, CXmlObjectBase* collection,
                                                 void* item);
    static void FireOnCollectionRemoveEvent(IEventSink* sink, CXmlObjectBase* collection,
                                            int index);
    static void FireOnCollectionRemoveCompleteEvent(IEventSink* sink, CXmlObjectBase* collection,
                                                    int index);

    // ---- Choice bookkeeping ----------------------------------------------------------------
    //
    // The setters of a choice class keep in `current` the name of the branch that is set (empty
    // when none); `name` is the branch being changed (null as ""). Where a helper throws, it
    // throws before changing `current`.

    // A branch is set to `value` (null clears it): an empty current becomes `name` (whatever
    // the value); another set branch makes a non-null value throw CKxInvalidStateException "The
    // Property [<current>] is already set. Only one element within this class bay be set at a
    // time"; a null value for the current branch empties current.
    static void Choice_SelectElement(const char* name, const void* value, std::string& current);
    // A branch is marked valid or not: false empties current; true keeps current when it names
    // this branch, takes `name` when current is empty, and otherwise throws
    // CKxInvalidStateException "The Property <current> is already set. Only one element within
    // this class bay be set at a time".
    static void Choice_SetElementValid(bool valid, const char* name, std::string& current);
    // A collection branch now holds `count` items: the current branch emptied to 0 items
    // empties current; an empty current with items takes `name`; items in a branch while
    // another is set throw as Choice_SelectElement.
    static void Choice_CollectionChanged(const char* name, int count, std::string& current);
    // A collection branch has just been read with `count` items: the document decides, so with
    // items the branch becomes current whatever was set before; with none, current is emptied
    // if it names this branch and kept otherwise. Never throws.
    static void Choice_Read_Collection(const char* name, int count, std::string& current);

    // ---- Checks used by generated setters --------------------------------------------------

    // Throws CKxInvalidParamException "The Property [<name>] is mandatory, it may node be NULL"
    // when `value` is null.
    static void Throw_IfPropertyIsNull(const void* value, const char* name);
    // Throws CKxInvalidParamException "This property requires an element with the name <name>
    // the element being set has the element name <value's name>" when the element name of
    // `value` is not `name`. A null value passes (see Throw_IfPropertyIsNull).
    static void Throw_IfElementNameDiffers(const CXmlObjectBase* value, const char* name);

    // ---- Namespace tests (CXmlObjectHelper's, with null pointers taken as "") --------------

    static bool TestNamespace(const char* namespaceUri, const char* constraint,
                              const char* targetNamespace);
    static bool IsNamespaceValid(const char* namespaceUri, const char* constraint,
                                 const char* targetNamespace);
    static bool DoesElementNameMatch(const CSerializationContext& ctx, const CXmlElement* element,
                                     const char* name, const char* namespaceUri);

private:
    // Reads the object from `element` and its children (FromXml_Int, isNested false).
    void ReadElement(const CXmlElement* element, const CSerializationContext& ctx);

    std::string m_elementName;
    mutable CKXCriticalSection m_refLock;
    long long m_refCount;
};

// Process-wide switches. AsyncToXmlFile(true) makes ToXmlFile stream uncompressed output to the
// file as it is produced instead of building it in memory first (false by default; the flag is
// atomic). AsyncFromXmlFile exists for compatibility and does nothing.
KX_EXPORT void AsyncToXmlFile(bool on);
KX_EXPORT bool GetAsyncToXmlFile();
KX_EXPORT void AsyncFromXmlFile(bool on);

}  // namespace KxXmlLib16

#endif
