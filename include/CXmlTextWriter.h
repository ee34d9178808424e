// CXmlTextWriter: writes the writer calls as XML text to a CTextStream, with optional
// indentation, a chosen line ending and XML escaping.
#ifndef KX_CXMLTEXTWRITER_H
#define KX_CXMLTEXTWRITER_H

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "CTextStream.h"
#include "CXmlWriter.h"
#include "KxConfig.h"
#include "KxTypes.h"

namespace KxXmlLib16 {

class CTextAppender;

// Text is appended to the stream as it is produced; whenever an operation leaves 4096 or more
// characters buffered, the stream's Flush() is called. Misuse throws CKxException; text
// already appended stays in the stream.
class KX_EXPORT CXmlTextWriter : public CXmlWriter {
public:
    // Writes to `stream`, which is not owned and must outlive the writer. Defaults: formatted,
    // tab indentation, line feed line endings, default element values skipped.
    explicit CXmlTextWriter(CTextStream& stream);
    ~CXmlTextWriter() override;

    // Opens the stream (which empties it).
    void Open() override;
    // Closes the stream (flushing it), then throws CKxException "An Element has not been
    // closed." if an element is still open.
    void Close() override;
    // "<!--", the escaped text, "-->" and a line ending (also when not formatting). Does not
    // close an open start tag.
    void WriteComment(const std::string& text) override;
    // The text unchanged, then two line endings.
    void WritePI(const std::string& text) override;
    // A space, a line ending, the schema text unescaped and a line ending. Does not close an
    // open start tag.
    void WriteInlineSchema(const std::string& text) override;
    // Opens an element. A namespace other than the effective default one is written with its
    // bound prefix; an unbound one gets a fresh prefix (AA, AB, ...) declared on this element.
    // The root element also declares the writer's default namespace and map. An element in
    // no namespace while a default namespace is in effect is written with xmlns="" (the root
    // instead leaves the writer's default namespace undeclared); inside it the default
    // namespace is empty.
    void WriteStartElement(const std::string& name, const std::string& ns) override;
    // Writes element text, escaped unless it begins with "<![CDATA[". An empty text, or a
    // default value while default values are not written, writes nothing.
    void WriteString(const std::string& text, ItemType type, bool isDefaultValue) override;
    // Ends the current element ("/>" when it has no content). Throws CKxException
    // "There is no open Element to end." when no element is open.
    void WriteEndElement() override;
    // Writes an attribute of the current element; an unbound namespace gets a fresh prefix
    // declared just before it. Throws CKxException "Attributes must be added before elements"
    // once the start tag is closed (or when no element is open).
    void WriteAttributeString(const std::string& name, const std::string& ns,
                              const std::string& value, ItemType type) override;
    // Writes xsi:type with the value `typeName`, prefixed unless `typeNs` is empty or the
    // effective default namespace. Throws as WriteAttributeString.
    void WriteAttributeType(const std::string& typeName, const std::string& typeNs,
                            ItemType type) override;
    // Writes xsi:nil="true". Throws as WriteAttributeString.
    void WriteAttributeNil() override;

    // The XML declaration, naming the encoding for UTF-8 and declared UTF-16, and a line
    // ending (also when not formatting).
    void WriteStartDocument();
    // Appends `text` and a line ending. Throws CKxException "Headed directives must appear
    // before an Element has been added." once an element has been started.
    void WriteHeaderDirective(const std::string& text);
    // Appends `text` unescaped, and a line ending when formatting. Neither closes an open
    // start tag nor flushes the stream.
    void WriteRawElement(const std::string& text);

    // Indentation and line breaks on (true) or off.
    bool GetFormat() const;
    void SetFormat(bool format);
    EOLType GetEOLType() const;
    // EOLType_CRLF ends lines with "\r\n", EOLType_LF with "\n". Throws CKxException
    // "Invalid EOL type." for any other value, leaving the writer unchanged.
    void SetEOLType(EOLType type);
    // The characters written once per level of indentation.
    const std::string& GetIndentChars() const;
    // Null is taken as "".
    void SetIndentChars(const char* chars);
    bool GetWriteDefaultElementValues() const;
    void SetWriteDefaultElementValues(bool write);

private:
    // Markup helpers: they write each operation's markup in place at the end of the stream's
    // text (m_out), which commits it in one piece when the operation is complete.
    void CloseParentElm();
    void AddIndent(int depth);
    // `prefix`, ':' and `name`, or `name` alone when `prefix` is null.
    void AddQualifiedName(const std::string* prefix, const std::string& name);
    // ` xmlns:prefix="ns"`.
    void AddNamespaceDeclaration(const std::string& prefix, const std::string& ns);
    void Put(char c);
    void Put(const char* text, size_t length);
    void Put(const std::string& text);
    // Free text given by the caller: like the stream's own Append, up to its first NUL.
    void PutText(const std::string& text);

    // Appends `text` escaped for element content or, with `inAttribute`, an attribute value.
    void PadAndAppend(const std::string& text, bool inAttribute);
    // The escaping itself, added to the markup; stops at the first NUL.
    void PutEscaped(const char* text, bool inAttribute);
    // Binds a fresh prefix to `ns` in the context's scope and returns it.
    static std::string BindUniquePrefix(CXmlWriterContext& context, const std::string& ns);
    void FlushIfFull();

    bool m_writeDefaultElementValues;
    std::string m_indentChars;
    std::string m_endOfLine;
    EOLType m_eolType;
    bool m_format;
    CTextStream& m_stream;
    // Set by the first WriteStartElement; header directives are refused from then on.
    bool m_elementStarted;
    // m_indents[d] holds the indent characters repeated d times, built as deeper levels appear.
    std::vector<std::string> m_indents;
    // The markup of the operation under way, written straight into the room the stream
    // prepares and committed whole, so each operation reaches the stream as one piece
    // without being copied there. An operation that fails commits nothing.
    std::unique_ptr<CTextAppender> m_out;
};

}  // namespace KxXmlLib16

#endif
