// CJsonTextWriter: writes the writer calls as JSON text to a CTextStream. There is no JSON object
// model: each call is mapped as it comes, with the element contexts of CXmlWriter.
#ifndef KX_CJSONTEXTWRITER_H
#define KX_CJSONTEXTWRITER_H

#include <memory>
#include <string>
#include <vector>

#include "CTextStream.h"
#include "CXmlWriter.h"
#include "KxConfig.h"
#include "KxTypes.h"

namespace KxXmlLib16 {

class CTextAppender;

// The mapping: the document is one object; an element is a key ("prefix:name" in full round
// trip), holding an object of its attributes ("@name"), namespace declarations ("@xmlns",
// "@xmlns:prefix"), children and text ("#text"), or just its value when it holds text only, or
// null when it holds nothing. The items of a collection the engine frames with the context
// states CollectionStart and CollectionEnd become one array (items under another name, such as
// substitutes of an abstract type, start an array of their own), closed as soon as anything
// else is written into the element; repeated elements without that framing become repeated
// keys. A framed item that holds only text or nothing opens no array (it is a repeated key
// too); inside an array opened by an earlier item it becomes {"#text": value} or {}, so that
// every array member reads back as an element. Values of numeric and boolean item types are
// written unquoted.
// Misuse throws CKxException; text already appended stays in the stream.
class KX_EXPORT CJsonTextWriter : public CXmlWriter {
public:
    // Writes to `stream`, which is not owned and must outlive the writer. Defaults: formatted,
    // tab indentation, line feed line endings, RoundTrip_Full, lenient escaping.
    explicit CJsonTextWriter(CTextStream& stream);
    ~CJsonTextWriter() override;

    // Opens the stream (which empties it).
    void Open() override;
    // Closes the stream, then throws CKxException "An Element has not been closed." if an
    // element is still open.
    void Close() override;
    // "/* ", the escaped text, " */" and a line ending (also when not formatting).
    void WriteComment(const std::string& text) override;
    // Processing instructions, inline schemas and nil marks have no JSON form: no-ops.
    void WritePI(const std::string& text) override;
    void WriteInlineSchema(const std::string& text) override;
    void WriteAttributeNil() override;
    // Writes the element's key. In full round trip a namespace other than the default one is
    // written with its bound prefix; the root element binds a fresh prefix (AA, AB, ...) to an
    // unbound namespace and declares it together with the writer's default namespace and map;
    // an element in no namespace under a default namespace declares "@xmlns": "". Throws
    // CKxException "Unknown Namespace: <local name>." for a non-root element in an unbound
    // namespace.
    void WriteStartElement(const std::string& name, const std::string& ns) override;
    // Writes the element's text: as its value when the element holds nothing else yet,
    // otherwise under "#text" ("" in RoundTrip_None). `isDefaultValue` is ignored: JSON always
    // carries the value. Throws CKxException "There is no open Element for the text." when
    // no element is open.
    void WriteString(const std::string& text, ItemType type, bool isDefaultValue) override;
    // Ends the current element, closing its open array and object, or writing null when it
    // received nothing. Throws CKxException "There is no open Element to end." when no element
    // is open.
    void WriteEndElement() override;
    // Writes "@name" ("name" in RoundTrip_None; "@prefix:name" in full round trip for a
    // namespaced attribute). Throws CKxException "Unknown Namespace: <name>." when the
    // namespace has no prefix in scope, and "There is no open Element for the attribute."
    // when no element is open.
    void WriteAttributeString(const std::string& name, const std::string& ns,
                              const std::string& value, ItemType type) override;
    // Full round trip only (nothing otherwise): writes xsi:type through WriteAttributeString,
    // so the instance namespace needs a prefix in scope. Throws CKxException
    // "Unknown Namespace: <typeName>." when `typeNs` has no prefix in scope.
    void WriteAttributeType(const std::string& typeName, const std::string& typeNs,
                            ItemType type) override;

    // "{" and a line break; "}" after a line break.
    void WriteStartDocument();
    void WriteEndDocument();

    // Indentation and line breaks on (true) or off.
    bool GetFormat() const;
    void SetFormat(bool format);
    // Null is taken as "".
    const std::string& GetIndentChars() const;
    void SetIndentChars(const char* chars);
    EOLType GetEOLType() const;
    // EOLType_CRLF ends lines with "\r\n", EOLType_LF with "\n". Throws CKxException
    // "Invalid EOL type." for any other value, leaving the writer unchanged.
    void SetEOLType(EOLType type);
    JsonRoundTrip GetSupportRoundtrip() const;
    void SetSupportRoundtrip(JsonRoundTrip mode);
    // Off (the default): the lenient escaping, which leaves quotation marks and backslashes as
    // they are. On: JSON escaping, and numbers JSON cannot hold are quoted.
    bool GetStandardEscaping() const;
    void SetStandardEscaping(bool standard);

private:
    void OpeningBrackets();
    void OpenArray(CXmlWriterContext& context);
    void CloseArray(CXmlWriterContext& context);
    void CloseFinishedArray(CXmlWriterContext& context);
    bool EnclosingStartsArray(const CXmlWriterContext& context) const;
    void ShiftIndent(CXmlWriterContext& context, int delta);
    CXmlWriterContext& RequireContext(const char* message) const;

    // Output assembly: each operation writes straight into room the stream prepares (m_out)
    // and commits it whole, so it reaches the stream as one piece without a staging copy.
    void Put(char c);
    void Put(const char* text, size_t length);
    void Put(const std::string& text);
    // Caller text: like the stream's own Append, up to its first NUL.
    void PutText(const std::string& text);
    void LineBreak();
    void Indent(int level);
    void Key(const std::string& key);
    void PrefixedKey(const std::string* prefix, const std::string& name);
    void Pair(const std::string& key, const std::string& value);
    void WriteValue(const std::string& value, ItemType type);
    void PutTextKey();
    void WritePendingValue();
    void PutEscaped(const std::string& text);
    // The escapings, each stopping at the first NUL of `text`.
    void PutStandardEscaped(const std::string& text);
    void PutLenientEscaped(const std::string& text);
    // "\u00" and two hexadecimal digits.
    void PutUnicodeEscape(unsigned char c);
    void FlushIfFull();

    std::string m_indentChars;
    std::string m_endOfLine;
    EOLType m_eolType;
    JsonRoundTrip m_supportRoundtrip;
    bool m_format;
    CTextStream& m_stream;
    // The current element has its key but nothing inside it yet.
    bool m_bareElement;
    // The current element (still bare) has received text, held in m_pendingText.
    bool m_textPending;
    std::string m_pendingText;
    ItemType m_pendingType;
    bool m_standardEscaping;
    bool m_rootWritten;
    // What the writer keeps per open element besides its context: whether an array of one
    // of its collections is still open (the engine may set CollectionStart for the next
    // collection over CollectionEnd, so the context state alone cannot tell), and the name and
    // namespace of that array's items.
    struct Frame {
        bool arrayOpen = false;
        std::string itemName;
        std::string itemNamespace;
    };
    Frame& CurrentFrame();
    Frame& ParentFrame();
    // m_frames[0 .. m_openElements - 1] belong to the open elements; frames past the end are
    // kept so that their strings keep their capacity.
    std::vector<Frame> m_frames;
    size_t m_openElements;
    // m_indents[n] holds the indent characters repeated n times.
    std::vector<std::string> m_indents;
    // The output of the operation under way; an operation that fails commits nothing.
    std::unique_ptr<CTextAppender> m_out;
};

}  // namespace KxXmlLib16

#endif
