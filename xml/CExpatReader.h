// CExpatReader: builds a CXmlDocument from XML text with expat. Internal to the library.
#ifndef KX_CEXPATREADER_H
#define KX_CEXPATREADER_H

#include <exception>
#include <memory>
#include <string>
#include <string_view>

#include "CInstanceMonitor.h"

struct XML_ParserStruct;

namespace KxXmlLib16 {

class CXmlDocument;

// Turns expat's callbacks into the document's builder operations, converting names and text
// from UTF-8 to the library's narrow text. External entities are never fetched, and expat's
// protection against entity-expansion bombs is on.
class CExpatReader : public CInstanceMonitor {
public:
    explicit CExpatReader(CXmlDocument& doc);
    CExpatReader(const CExpatReader&) = delete;
    CExpatReader& operator=(const CExpatReader&) = delete;
    virtual ~CExpatReader();

    // Sets up the conversion buffers and a parser with the handlers: with namespace
    // processing ("uri|local" names) unless the document's schema type is SchemaType_NoNamespace,
    // and with the CDATA handlers only when the context does not strip CDATA markers.
    void CreateParser();
    // Feeds the document's whole input to expat. Throws CKxException "<expat's error text> at
    // line <n>" at the first well-formedness error; the document keeps what was built so far.
    void Parse(bool isFinal);
    // Frees the conversion buffers.
    void Cleanup();

private:
    static void FnStartElement(void* userData, const char* name, const char** attributes);
    static void FnEndElement(void* userData, const char* name);
    static void FnText(void* userData, const char* text, int length);
    static void FnStartCDATA(void* userData);
    static void FnEndCDATA(void* userData);
    static void FnStartNamespace(void* userData, const char* prefix, const char* uri);
    static void FnEndNamespace(void* userData, const char* prefix);

    // The narrow form of `length` UTF-8 bytes: a view of the input itself when no conversion is
    // needed (ASCII text, a UTF-8 code page, or the ASCIIOnly switch), otherwise of `buffer`,
    // valid until the buffer is used again.
    std::string_view Convert(const char* utf8, size_t length, std::string& buffer) const;
    // Splits "uri|local" at the first "|" (with namespace processing only).
    void SplitName(std::string_view name, std::string_view& ns, std::string_view& local) const;
    void FreeParser();
    // Adds a piece of character data, without its carriage returns, to the gathered text.
    void GatherText(const char* text, size_t length);
    // Makes room for `length` bytes of gathered text in all.
    void ReserveText(size_t length);
    // Appends the gathered text to the innermost open element: called at every tag, so the
    // text goes where it would have gone piece by piece.
    void FlushText();
    // Runs a callback's work; an exception (from an element filter, or out of memory) must not
    // cross expat's C frames: it stops the parser and is rethrown once XML_Parse has returned.
    template <typename Work>
    static void Guard(void* userData, Work&& work);

    CXmlDocument& m_document;
    XML_ParserStruct* m_parser;
    bool m_namespaces;
    // True when the local code page is UTF-8 (or ASCIIOnly is set): valid UTF-8 is then used
    // as it is.
    bool m_utf8CodePage;
    // Conversion buffers, reused for every callback: names, and attribute values.
    std::string m_nameBuffer;
    std::string m_valueBuffer;
    // Character data not yet appended: expat delivers text in small pieces (line ends, entity
    // references and buffer ends each start a new one), and the element takes them in one go.
    // They are gathered in m_text: the reader's own first buffer, or a larger one when needed.
    static const size_t kFirstTextSize = 256;
    char* m_text;
    size_t m_textLength;
    size_t m_textCapacity;
    std::unique_ptr<char[]> m_grownText;
    char m_firstText[kFirstTextSize];
    std::exception_ptr m_pending;
};

}  // namespace KxXmlLib16

#endif
