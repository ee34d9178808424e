// CXmlDocument: owner of the XML tree that the readers build and the engine walks, the
// document-wide prefix map, and the loading entry points for text, files and byte streams.
#ifndef KX_CXMLDOCUMENT_H
#define KX_CXMLDOCUMENT_H

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "CInstanceMonitor.h"
#include "CXmlElement.h"
#include "KxConfig.h"
#include "KxTypes.h"

namespace KxXmlLib16 {

class CSerializationContext;
class CXmlNodePool;

class KX_EXPORT CXmlDocument : public CInstanceMonitor {
public:
    // Called with each element as soon as it is complete; returning true drops the element (it
    // is detached from its parent and deleted), which keeps memory flat for large documents.
    // An exception thrown by the filter stops the parse and leaves the Load... call unchanged.
    using ElementFilter = std::function<bool(CXmlElement*)>;
    // Prefix to namespace, ordered by prefix; looked up without building strings.
    using PrefixMap = std::map<std::string, std::string, std::less<>>;

    // Without a context the process-wide default context is used. The context is not copied:
    // it must outlive the document.
    CXmlDocument();
    explicit CXmlDocument(const CSerializationContext& context);
    explicit CXmlDocument(ElementFilter filter);
    CXmlDocument(ElementFilter filter, const CSerializationContext& context);
    CXmlDocument(const CXmlDocument&) = delete;
    CXmlDocument& operator=(const CXmlDocument&) = delete;
    virtual ~CXmlDocument();

    // Deletes the tree, frees the input bytes, empties the element stack and the prefix map.
    // Every Load... calls it first, so a document can be loaded again.
    virtual void Cleanup();

    // Parses XML text held in a narrow string (no decompression, no format detection). Throws
    // CKxException "XML String is empty!" for a null or empty text, and the reader's
    // "<expat's error text> at line <n>" for text that is not well-formed.
    void LoadXml(const char* text);
    // Parses a wide string as UTF-16 little-endian text (two bytes per character: the low 16
    // bits, so characters beyond the Basic Multilingual Plane are not supported). Throws as
    // LoadXml(const char*).
    void LoadXml(const wchar_t* text);
    // Reads the file and parses it as gzip- or zlib-compressed or plain input, Fast Infoset or
    // XML text, recognised from the bytes. Plain XML text is parsed a megabyte at a time as it
    // is read, so that with an element filter a large file is read in bounded memory;
    // compressed and Fast Infoset files are read whole first. Throws CKxException "Failed to open the
    // file [path].", "Failed to get the size of the file [path] Error [e]" (also for anything
    // that is not a regular file), "Failed to read the contents of the file [path] Error [e]"
    // (also for an empty file), e being the stream's error indicator, or the reader's errors.
    void Load(const char* path);
    // Parses the bytes as Load does; they are only read during the call (and copied only when
    // compressed). Throws CKxException "XML Stream is empty!" for no bytes, or the reader's
    // errors.
    void LoadXmlStream(const unsigned char* data, unsigned long length);

    // JSON input, turned into XML text by CJsonTextReader::ConvertJsonToXml with the
    // document's context, then parsed as XML. The file and stream forms also take gzip or zlib
    // data and skip a UTF-8 byte-order mark; their bytes are UTF-8. Throws CKxException "JSON
    // String is empty!" (the text forms), "JSON Stream is empty!" (no bytes) or, as Load, the
    // file errors; then the JSON reader's errors and those of the XML reader.
    void LoadJson(const char* text);
    void LoadJson(const wchar_t* text);
    void LoadJsonFile(const char* path);
    void LoadJsonStream(const unsigned char* data, unsigned long length);

    // The root element, or null before the first element is added.
    CXmlElement* GetDocumentElement() const;

    // The namespace bound to the prefix (the default namespace under ""), or an empty string.
    const std::string& LookupNamespaceFromAlias(const char* prefix) const;
    // The first prefix, in prefix order, bound to the namespace, or an empty string.
    const std::string& LookupAliasFromNamespace(const char* ns) const;
    // Every prefix seen in the input, with the namespace it was last bound to.
    const PrefixMap& GetPrefixMap() const;

    // The context of the parse and the schema type copied from it at construction.
    const CSerializationContext& GetContext() const;
    SchemaType GetSchemaType() const;

    // Builder operations, called by the readers in document order.
    //
    // Creates the root, pushes it on the element stack and returns it. Throws
    // CKxInvalidStateException when the document already has a root.
    CXmlElement* AddDocElement(const char* ns, const char* name);
    CXmlElement* AddDocElement(std::string_view ns, std::string_view name);
    // The deepest nesting of elements a document may have (the root is level 1).
    static constexpr size_t kMaxDepth = 5000;

    // Creates a child of the innermost open element, pushes it and returns it. Throws
    // CKxInvalidStateException when no element is open, and CKxException "The document nests
    // elements deeper than 5000 levels." when the child would be deeper than kMaxDepth.
    CXmlElement* AddChildElement(const char* ns, const char* name);
    CXmlElement* AddChildElement(std::string_view ns, std::string_view name);
    // Adds an attribute to the element (null pointers stand for empty strings).
    CXmlAttribute* AddElementAttribute(CXmlElement* element, const char* name, const char* value,
                                       const char* ns);
    CXmlAttribute* AddElementAttribute(CXmlElement* element, std::string_view name,
                                       std::string_view value, std::string_view ns);
    // Binds a prefix ("" for the default namespace) to a namespace for the whole document,
    // replacing an earlier binding of the same prefix.
    void AddNamespaceBinding(std::string_view prefix, std::string_view ns);
    // Appends character data to the element without its carriage returns, stopping at `length`
    // bytes or at a NUL, whichever comes first. The two-argument form stops at the NUL. A null
    // element or text does nothing.
    void AppendTextExcludingCR(CXmlElement* element, const char* text, size_t length);
    void AppendTextExcludingCR(CXmlElement* element, const char* text);
    // Closes the innermost open element and hands it to the element filter, which may drop it.
    // Does nothing when no element is open.
    void EndElement();
    // The innermost open element, or null.
    CXmlElement* GetCurrentElement() const;

protected:
    // Clears the root and the input bytes and copies the context's schema type.
    void Init();

private:
    friend class CExpatReader;
    friend class CXmlElement;

    // Takes ownership of an array-new buffer as the input bytes.
    void SetInput(unsigned char* data, unsigned long length);
    // Uses the caller's bytes as the input, without a copy, for the duration of one load.
    void BorrowInput(const unsigned char* data, unsigned long length);
    // Reads a whole file into the input bytes.
    void ReadFile(const char* path);
    // Load's body: plain XML text is parsed in pieces as it is read; other files are read whole
    // and handed to Parse.
    void LoadFile(const char* path);
    // Decompresses the input if it is compressed, then parses it as Fast Infoset or XML text.
    void Parse();
    // Parses the input bytes as XML text.
    void ParseText();
    // Converts the JSON text to XML text and parses that.
    void ParseJson(const std::string& json);
    // Frees the input bytes once a load is over.
    void ReleaseInput();

    // Memory of the elements built by this document (see xml/CXmlNodePool.h); created with
    // the root, released by Cleanup.
    CXmlNodePool* m_pool;
    std::unique_ptr<CXmlElement> m_documentElement;
    std::vector<CXmlElement*> m_elementStack;
    PrefixMap m_prefixMap;
    // The input bytes: owned (a file, decompressed data) or borrowed from the caller.
    std::unique_ptr<unsigned char[]> m_ownedInput;
    const unsigned char* m_input;
    unsigned long m_inputLength;
    SchemaType m_schemaType;
    ElementFilter m_filter;
    const CSerializationContext* m_context;
};

}  // namespace KxXmlLib16

#endif
