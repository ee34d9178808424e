// CJsonTextReader: a recursive-descent JSON parser that reports what it reads to a handler,
// and the conversion of a JSON text to XML text built on it.
#ifndef KX_CJSONTEXTREADER_H
#define KX_CJSONTEXTREADER_H

#include <cstddef>
#include <memory>
#include <string>

#include "CBinaryData.h"
#include "CInstanceMonitor.h"
#include "KxConfig.h"

namespace KxXmlLib16 {

class CJsonReaderDefaultHandler;
class CSerializationContext;
class IErrorPathProvider;
class IJsonReaderHandler;

// Syntax errors are thrown as CKxValidationException with a message naming the line and the
// position (in bytes, from 1) and, as path, the default handler's GetPath(). Line feeds are
// never delivered, also not inside strings and numbers: they only count lines.
class KX_EXPORT CJsonTextReader : public CInstanceMonitor {
public:
    // Reads `json`, which is not copied and must outlive the reader. Comments are not
    // accepted until SetAllowComments(true).
    explicit CJsonTextReader(const std::string& json);
    ~CJsonTextReader();
    CJsonTextReader(const CJsonTextReader&) = delete;
    CJsonTextReader& operator=(const CJsonTextReader&) = delete;

    // Installs the caller's handler (not owned; null swallows the events).
    void SetJsonReaderHandler(IJsonReaderHandler* handler);
    // The reader's own handler, which knows the path of the item being read.
    IErrorPathProvider* GetErrorPathProvider() const;

    // Maximum nesting of values (100 by default).
    int GetDepthLimit() const;
    void SetDepthLimit(int limit);
    // Whether "//" and "/* */" comments are skipped where whitespace is.
    bool GetAllowComments() const;
    void SetAllowComments(bool allow);
    // When not empty, the whole text is reported as the value of one member of this name
    // inside an object.
    const std::string& GetRootElementName() const;
    void SetRootElementName(const std::string& name);
    // Off: "\u" and four bytes give one character, the high hexadecimal digit of the first of
    // the four bytes (a lossy reading kept for compatibility). On: every JSON escape is
    // decoded, "\uXXXX" and surrogate pairs into UTF-8, and a bad escape is an error.
    bool GetStandardEscaping() const;
    void SetStandardEscaping(bool standard);

    // Parses the text from its start and issues the events. Only the first value is read;
    // an empty or all-whitespace text gives the document events alone. Throws
    // CKxValidationException for a syntax error, or whatever the handler throws.
    void Read();

    // The JSON text as UTF-8 XML text (with its declaration), using the JSON options of `ctx`.
    // Throws as Read() and CJsonReaderToXmlHandler, and CKxException from the XML writer.
    static CBinaryData ConvertJsonToXml(const std::string& json, const CSerializationContext& ctx);

private:
    // Makes the next byte the current character (with `skipWhitespace`, the next one that is
    // not whitespace, comments skipped when allowed). False at the end of the text.
    bool ReadNextChar(bool skipWhitespace);
    // Copies the next `count` bytes as they are; false (end of file) when fewer remain.
    bool ReadNextChars(char* buffer, size_t count);
    // The next byte that is not a line feed, counting lines and positions.
    bool ReadByte(char& c);
    // Called with "/" current and "/" or "*" next; false when the text ends in the comment.
    bool SkipLineComment();
    bool SkipBlockComment();
    void ReadValue(int depth);
    void ReadObject(int depth);
    void ReadArray(int depth);
    void ReadLiteral();
    void ReadStringValue(std::string& value);
    void ReadEscape(std::string& value);
    void ReadUnicodeEscape(std::string& value);
    // Four hexadecimal digits, for the standard escaping.
    unsigned ReadHexQuad();
    static void AppendUtf8(unsigned codePoint, std::string& value);
    void ReadNumberValue();
    // Adds the current digit and every digit after it to m_text.
    void ReadDigits();
    // Throws CKxValidationException with `message` and the current path.
    [[noreturn]] void Throw(const std::string& message);

    std::unique_ptr<CJsonReaderDefaultHandler> m_handler;
    int m_depthLimit;
    bool m_allowComments;
    bool m_standardEscaping;
    std::string m_rootElementName;
    const std::string& m_input;
    size_t m_position;
    char m_current;
    bool m_endOfFile;
    int m_line;
    int m_column;
    // The text of the number being read, kept to reuse its capacity.
    std::string m_text;
};

}  // namespace KxXmlLib16

#endif
