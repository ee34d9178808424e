#include "CJsonTextReader.h"

#include "CJsonContext.h"
#include "CJsonReaderDefaultHandler.h"
#include "CJsonReaderToXmlHandler.h"
#include "CKxException.h"
#include "CSerializationContext.h"
#include "CTextStream.h"
#include "CWhitespaceUtils.h"
#include "CXmlTextWriter.h"
#include "FormatString.h"

namespace KxXmlLib16 {

namespace {

const int kDefaultDepthLimit = 100;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

int HexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

}  // namespace

CJsonTextReader::CJsonTextReader(const std::string& json)
    : CInstanceMonitor("CJsonTextReader"),
      m_handler(new CJsonReaderDefaultHandler()),
      m_depthLimit(kDefaultDepthLimit),
      m_allowComments(false),
      m_standardEscaping(false),
      m_input(json),
      m_position(0),
      m_current('\0'),
      m_endOfFile(false),
      m_line(1),
      m_column(0) {}

CJsonTextReader::~CJsonTextReader() = default;

void CJsonTextReader::SetJsonReaderHandler(IJsonReaderHandler* handler) {
    m_handler->SetInnerHandler(handler);
}

IErrorPathProvider* CJsonTextReader::GetErrorPathProvider() const { return m_handler.get(); }

int CJsonTextReader::GetDepthLimit() const { return m_depthLimit; }
void CJsonTextReader::SetDepthLimit(int limit) { m_depthLimit = limit; }
bool CJsonTextReader::GetAllowComments() const { return m_allowComments; }
void CJsonTextReader::SetAllowComments(bool allow) { m_allowComments = allow; }
const std::string& CJsonTextReader::GetRootElementName() const { return m_rootElementName; }
void CJsonTextReader::SetRootElementName(const std::string& name) { m_rootElementName = name; }
bool CJsonTextReader::GetStandardEscaping() const { return m_standardEscaping; }
void CJsonTextReader::SetStandardEscaping(bool standard) { m_standardEscaping = standard; }

CBinaryData CJsonTextReader::ConvertJsonToXml(const std::string& json,
                                              const CSerializationContext& ctx) {
    const CJsonContext& options = *ctx.GetJsonContext();
    CTextStream stream(XmlEncoding_UTF8);
    CXmlTextWriter writer(stream);
    CJsonTextReader reader(json);
    CJsonReaderToXmlHandler handler(writer, options.GetSupportRoundtrip(),
                                    *reader.GetErrorPathProvider());
    reader.SetJsonReaderHandler(&handler);
    reader.SetAllowComments(options.GetAllowComments());
    reader.SetRootElementName(options.GetRootElementName());
    reader.SetStandardEscaping(options.GetStandardEscaping());
    reader.Read();
    writer.Close();
    return stream.GetEncodedStream();
}

void CJsonTextReader::Read() {
    m_position = 0;
    m_endOfFile = false;
    m_line = 1;
    m_column = 0;
    m_handler->ReadStartDocument();
    const bool rooted = !m_rootElementName.empty();
    if (rooted) {
        m_handler->ReadStartObject();
        m_handler->ReadName(m_rootElementName);
    }
    // Whatever follows the first complete value is not looked at.
    if (ReadNextChar(true)) ReadValue(0);
    if (rooted) m_handler->ReadEndObject();
    m_handler->ReadEndDocument();
}

bool CJsonTextReader::ReadByte(char& c) {
    while (m_position < m_input.size()) {
        c = m_input[m_position++];
        ++m_column;
        if (c != '\n') return true;
        // Line feeds only count lines; they are never delivered.
        ++m_line;
        m_column = 0;
    }
    m_endOfFile = true;
    return false;
}

bool CJsonTextReader::ReadNextChar(bool skipWhitespace) {
    char c = '\0';
    for (;;) {
        if (!ReadByte(c)) return false;
        if (!skipWhitespace) {
            m_current = c;
            return true;
        }
        if (CWhitespaceUtils::IsWhiteSpace(c)) continue;
        m_current = c;
        if (!m_allowComments || c != '/' || m_position >= m_input.size()) return true;
        // Comments are skipped in a loop, not by recursion, so a run of them costs no stack.
        const char next = m_input[m_position];
        if (next == '/') {
            if (!SkipLineComment()) return false;
        } else if (next == '*') {
            if (!SkipBlockComment()) return false;
        } else {
            return true;
        }
    }
}

bool CJsonTextReader::SkipLineComment() {
    // Everything up to and including the next line feed.
    while (m_position < m_input.size()) {
        const char c = m_input[m_position++];
        ++m_column;
        if (c == '\n') {
            ++m_line;
            m_column = 0;
            return true;
        }
    }
    m_endOfFile = true;
    return false;
}

bool CJsonTextReader::SkipBlockComment() {
    // The "*" of the opening "/*" is consumed first, so "/*/" does not close the comment.
    char c = '\0';
    if (!ReadByte(c)) return false;
    char previous = '\0';
    for (;;) {
        if (!ReadByte(c)) return false;
        if (previous == '*' && c == '/') return true;
        previous = c;
    }
}

bool CJsonTextReader::ReadNextChars(char* buffer, size_t count) {
    const size_t available = m_input.size() - m_position;
    const size_t copied = available < count ? available : count;
    m_input.copy(buffer, copied, m_position);
    m_position += copied;
    m_column += static_cast<int>(copied);
    if (copied < count) {
        m_endOfFile = true;
        return false;
    }
    if (count > 0) m_current = buffer[count - 1];
    return true;
}

void CJsonTextReader::Throw(const std::string& message) {
    throw CKxValidationException(message, m_handler->GetPath());
}

void CJsonTextReader::ReadValue(int depth) {
    if (depth + 1 > m_depthLimit) {
        Throw(FormatString("JSON exceeded depth limit at line %d, position %d.", m_line,
                           m_column));
    }
    switch (m_current) {
    case '{':
        ReadObject(depth);
        return;
    case '[':
        ReadArray(depth);
        return;
    case '"': {
        std::string value;
        ReadStringValue(value);
        m_handler->ReadString(value);
        return;
    }
    case 'n':
    case 't':
    case 'f':
        ReadLiteral();
        return;
    default:
        break;
    }
    if (m_current == '-' || IsDigit(m_current)) {
        ReadNumberValue();
        return;
    }
    Throw(FormatString("Expected Value '{', '[', '\"', '0-9', '-', 'true', 'false' or 'null', "
                       "found '%c' at line %d, position %d.",
                       m_current, m_line, m_column));
}

void CJsonTextReader::ReadObject(int depth) {
    m_handler->ReadStartObject();
    const auto throwEnd = [this]() {
        Throw(FormatString("Unexpected End of File. Expected Object terminator character '}' "
                           "at line %d, position %d.",
                           m_line, m_column));
    };
    if (!ReadNextChar(true)) {
        Throw(FormatString("Unexpected End of File. Expected Object terminator character '}}' "
                           "at line %d, position %d.",
                           m_line, m_column));
    }
    if (m_current == '}') {
        ReadNextChar(true);
        m_handler->ReadEndObject();
        return;
    }
    for (;;) {
        if (m_current != '"') {
            Throw(FormatString("Expected quotation mark character '\"' before Name, found '%c' "
                               "at line %d, position %d.",
                               m_current, m_line, m_column));
        }
        std::string name;
        ReadStringValue(name);
        m_handler->ReadName(name);
        if (m_endOfFile) {
            Throw(FormatString("Unexpected End of File. Expected Object Name/Value separator "
                               "character ':' at line %d, position %d.",
                               m_line, m_column));
        }
        if (m_current != ':') {
            Throw(FormatString("Expected Object Name/Value separator character ':', found '%c' "
                               "at line %d, position %d.",
                               m_current, m_line, m_column));
        }
        if (!ReadNextChar(true)) {
            Throw(FormatString("Unexpected End of File. Expected Object Value at line %d, "
                               "position %d.",
                               m_line, m_column));
        }
        ReadValue(depth + 1);
        if (m_endOfFile) throwEnd();
        if (m_current == '}') {
            ReadNextChar(true);
            break;
        }
        if (m_current != ',') {
            Throw(FormatString("Expected Object separator character ',', found '%c' at line %d, "
                               "position %d.",
                               m_current, m_line, m_column));
        }
        if (!ReadNextChar(true)) throwEnd();
    }
    m_handler->ReadEndObject();
}

void CJsonTextReader::ReadArray(int depth) {
    m_handler->ReadStartArray();
    const auto throwEnd = [this]() {
        Throw(FormatString("Unexpected End of File. Expected Array terminator character ']' at "
                           "line %d, position %d.",
                           m_line, m_column));
    };
    if (!ReadNextChar(true)) throwEnd();
    if (m_current == ']') {
        ReadNextChar(true);
        m_handler->ReadEndArray();
        return;
    }
    for (;;) {
        ReadValue(depth + 1);
        if (m_endOfFile) throwEnd();
        if (m_current == ']') {
            ReadNextChar(true);
            break;
        }
        if (m_current != ',') {
            Throw(FormatString("Expected Array separator character ',', found '%c' at line %d, "
                               "position %d.",
                               m_current, m_line, m_column));
        }
        if (!ReadNextChar(true)) throwEnd();
    }
    m_handler->ReadEndArray();
}

void CJsonTextReader::ReadLiteral() {
    const char first = m_current;
    const char* rest = first == 'n' ? "ull" : first == 't' ? "rue" : "alse";
    const char* shown = first == 'n' ? "NULL" : first == 't' ? "true" : "false";
    const size_t count = first == 'f' ? 4 : 3;
    char buffer[4];
    if (!ReadNextChars(buffer, count)) {
        Throw(FormatString("Unexpected End of File. Expected value '%s' at line %d, position %d.",
                           shown, m_line, m_column));
    }
    if (std::string(buffer, count) != rest) {
        Throw(FormatString("Expected '%s' at line %d, position %d.", shown, m_line, m_column));
    }
    ReadNextChar(true);
    if (first == 'n') {
        m_handler->ReadNull();
    } else {
        m_handler->ReadBool(first == 't');
    }
}

void CJsonTextReader::ReadStringValue(std::string& value) {
    value.clear();
    for (;;) {
        if (!ReadNextChar(false)) {
            Throw(FormatString("Unexpected End of File. Expected string value at line %d, "
                               "position %d.",
                               m_line, m_column));
        }
        if (m_current == '"') break;
        if (m_current == '\\') {
            ReadEscape(value);
        } else {
            value += m_current;
        }
    }
    ReadNextChar(true);
}

void CJsonTextReader::ReadEscape(std::string& value) {
    if (!ReadNextChar(false)) {
        Throw(FormatString("Unexpected End of File. Expected string value at line %d, "
                           "position %d.",
                           m_line, m_column));
    }
    switch (m_current) {
    case '"': value += '"'; return;
    case '\\': value += '\\'; return;
    case '/': value += '/'; return;
    case 'b': value += '\b'; return;
    case 'f': value += '\f'; return;
    case 'n': value += '\n'; return;
    case 'r': value += '\r'; return;
    case 't': value += '\t'; return;
    case 'u': ReadUnicodeEscape(value); return;
    default: break;
    }
    Throw(FormatString("Invalid Escape Character '%c' at line %d, position %d.", m_current,
                       m_line, m_column));
}

void CJsonTextReader::ReadUnicodeEscape(std::string& value) {
    if (!m_standardEscaping) {
        char buffer[4];
        if (!ReadNextChars(buffer, 4)) {
            Throw(FormatString("Unexpected End of File. Expected 4 hexadecimal digits'\\uxxxx' "
                               "at line %d, position %d.",
                               m_line, m_column));
        }
        // The compatible reading: the first character of the upper-case hexadecimal rendering
        // of the four bytes, whatever they are ("\u0041" gives '3').
        value += "0123456789ABCDEF"[static_cast<unsigned char>(buffer[0]) >> 4];
        return;
    }
    unsigned codePoint = ReadHexQuad();
    if (codePoint >= 0xDC00 && codePoint <= 0xDFFF) {
        Throw(FormatString("Invalid Unicode surrogate pair at line %d, position %d.", m_line,
                           m_column));
    }
    if (codePoint >= 0xD800 && codePoint <= 0xDBFF) {
        // A high surrogate must be followed at once by the escape of a low one.
        char marker[2];
        if (!ReadNextChars(marker, 2)) {
            Throw(FormatString("Unexpected End of File. Expected 4 hexadecimal digits'\\uxxxx' "
                               "at line %d, position %d.",
                               m_line, m_column));
        }
        if (marker[0] != '\\' || marker[1] != 'u') {
            Throw(FormatString("Invalid Unicode surrogate pair at line %d, position %d.", m_line,
                               m_column));
        }
        const unsigned low = ReadHexQuad();
        if (low < 0xDC00 || low > 0xDFFF) {
            Throw(FormatString("Invalid Unicode surrogate pair at line %d, position %d.", m_line,
                               m_column));
        }
        codePoint = 0x10000 + ((codePoint - 0xD800) << 10) + (low - 0xDC00);
    }
    AppendUtf8(codePoint, value);
}

unsigned CJsonTextReader::ReadHexQuad() {
    char buffer[4];
    if (!ReadNextChars(buffer, 4)) {
        Throw(FormatString("Unexpected End of File. Expected 4 hexadecimal digits'\\uxxxx' at "
                           "line %d, position %d.",
                           m_line, m_column));
    }
    unsigned result = 0;
    for (char c : buffer) {
        const int digit = HexValue(c);
        if (digit < 0) {
            Throw(FormatString("Expected 4 hexadecimal digits '\\u%.4s' at line %d, position %d.",
                               buffer, m_line, m_column));
        }
        result = result * 16 + static_cast<unsigned>(digit);
    }
    return result;
}

void CJsonTextReader::AppendUtf8(unsigned codePoint, std::string& value) {
    if (codePoint < 0x80) {
        value += static_cast<char>(codePoint);
    } else if (codePoint < 0x800) {
        value += static_cast<char>(0xC0 | (codePoint >> 6));
        value += static_cast<char>(0x80 | (codePoint & 0x3F));
    } else if (codePoint < 0x10000) {
        value += static_cast<char>(0xE0 | (codePoint >> 12));
        value += static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
        value += static_cast<char>(0x80 | (codePoint & 0x3F));
    } else {
        value += static_cast<char>(0xF0 | (codePoint >> 18));
        value += static_cast<char>(0x80 | ((codePoint >> 12) & 0x3F));
        value += static_cast<char>(0x80 | ((codePoint >> 6) & 0x3F));
        value += static_cast<char>(0x80 | (codePoint & 0x3F));
    }
}

void CJsonTextReader::ReadDigits() {
    do {
        m_text += m_current;
    } while (ReadNextChar(false) && IsDigit(m_current));
}

void CJsonTextReader::ReadNumberValue() {
    m_text.clear();
    const auto throwExpectedNumber = [this]() {
        Throw(FormatString("Unexpected End of File. Expected a number at line %d, position %d.",
                           m_line, m_column));
    };
    const auto throwExpectedDigit = [this]() {
        Throw(FormatString("Expected a digit '0' to '9', found '%c' at line %d, position %d.",
                           m_current, m_line, m_column));
    };
    if (m_current == '-') {
        m_text += '-';
        if (!ReadNextChar(false)) throwExpectedNumber();
    }
    if (m_current == '0') {
        // A leading zero ends the integer part: "01" is "0" followed by a stray "1".
        m_text += '0';
        ReadNextChar(false);
    } else if (IsDigit(m_current)) {
        ReadDigits();
    } else {
        throwExpectedDigit();
    }
    if (!m_endOfFile && m_current == '.') {
        m_text += '.';
        if (!ReadNextChar(false)) {
            Throw(FormatString("Unexpected End of File. Expected a digit '0' to '9' at line %d, "
                               "position %d.",
                               m_line, m_column));
        }
        if (!IsDigit(m_current)) throwExpectedDigit();
        ReadDigits();
    }
    if (!m_endOfFile && (m_current == 'e' || m_current == 'E')) {
        m_text += m_current;
        if (!ReadNextChar(false)) {
            Throw(FormatString("Unexpected End of File. Expected '+', '-' or a number at line %d, "
                               "position %d.",
                               m_line, m_column));
        }
        if (m_current == '+' || m_current == '-') {
            m_text += m_current;
            if (!ReadNextChar(false)) throwExpectedNumber();
        }
        if (!IsDigit(m_current)) {
            // The end-of-file wording also when a character is there, as callers expect.
            Throw(FormatString("Unexpected End of File. Expected a digit '0' to '9' at line %d, "
                               "position %d.",
                               m_line, m_column));
        }
        ReadDigits();
    }
    if (!m_endOfFile && CWhitespaceUtils::IsWhiteSpace(m_current)) ReadNextChar(true);
    m_handler->ReadNumber(m_text);
}

}  // namespace KxXmlLib16
