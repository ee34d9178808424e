#include "CTextStream.h"

#include <cstring>
#include <memory>
#include <vector>

#include "CEncoder.h"
#include "CKxException.h"
#include "ConvertUTF.h"

namespace KxXmlLib16 {

namespace {

// Local-code-page text as UTF-16 little-endian bytes, surrogate pairs above the BMP.
CBinaryData ToUtf16(const char* text) {
    const CBinaryData wide = CEncoder::LocalCodePageToUnicodeBinary(text);
    const unsigned long count = wide.GetLength() / sizeof(wchar_t);
    if (count == 0) {
        return CBinaryData();
    }
    std::vector<wchar_t> characters(count);
    std::memcpy(characters.data(), wide.GetData(), count * sizeof(wchar_t));
    // Code points UTF-16 cannot carry become '?', as the encoder does for unconvertible bytes.
    for (wchar_t& c : characters) {
        const unsigned long code = static_cast<unsigned long>(c);
        if ((code >= 0xD800 && code <= 0xDFFF) || code > 0x10FFFF) {
            c = L'?';
        }
    }
    const unsigned long units = UnicodeToUTF16(characters.data(), count, nullptr, 0);
    unsigned char* bytes = new unsigned char[units * 2];
    const unsigned long written = UnicodeToUTF16(characters.data(), count, bytes, units);
#if defined(__BYTE_ORDER__) && __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__
    for (unsigned long i = 0; i < written; ++i) {
        const unsigned char high = bytes[2 * i];
        bytes[2 * i] = bytes[2 * i + 1];
        bytes[2 * i + 1] = high;
    }
#endif
    return CBinaryData(bytes, written * 2, true);
}

// The text as UTF-8. Most text is left as it is by the conversion: it is then copied once,
// straight out of the buffer's blocks, into the result.
CBinaryData Utf8Bytes(CStringBuffer& buffer) {
    const size_t length = buffer.GetLength();
    if (length != 0) {
        std::unique_ptr<unsigned char[]> bytes(new unsigned char[length + 1]);
        char* text = reinterpret_cast<char*>(bytes.get());
        buffer.CopyTo(text);
        text[length] = '\0';
        // A NUL ends the text for the conversion: such text takes the general way.
        if (std::memchr(text, '\0', length) == nullptr &&
            CEncoder::IsUtf8Unchanged(text, length)) {
            CBinaryData result(bytes.get(), static_cast<unsigned long>(length), true);
            bytes.release();
            return result;
        }
        return CEncoder::LocalCodePageToUtf8Binary(text);
    }
    return CEncoder::LocalCodePageToUtf8Binary(buffer.GetText());
}

}  // namespace

CTextStream::CTextStream() : CTextStream("CTextStream", XmlEncoding_Unset) {}

CTextStream::CTextStream(XmlEncoding encoding) : CTextStream("CTextStream", encoding) {}

CTextStream::CTextStream(const char* className, XmlEncoding encoding)
    : CInstanceMonitor(className), m_encoding(encoding) {}

CTextStream::~CTextStream() = default;

void CTextStream::Open() { m_buffer.Empty(); }

void CTextStream::Close() {}

void CTextStream::Flush() {}

void CTextStream::Append(char c) { m_buffer.Append(c); }

void CTextStream::Append(const char* text) { m_buffer.Append(text); }

void CTextStream::Append(const std::string& text) { m_buffer.Append(text); }

void CTextStream::Append(const char* text, size_t length) { m_buffer.Append(text, length); }

char* CTextStream::PrepareAppend(size_t pending, size_t length, size_t& room) {
    return m_buffer.PrepareAppend(pending, length, room);
}

void CTextStream::CommitAppend(size_t length) { m_buffer.CommitAppend(length); }

const char* CTextStream::GetText() const { return m_buffer.GetText(); }

unsigned int CTextStream::GetLength() const { return m_buffer.GetLength(); }

XmlEncoding CTextStream::GetEncoding() const { return m_encoding; }

CBinaryData CTextStream::GetEncodedStream() const {
    switch (m_encoding) {
        case XmlEncoding_UTF8:
            return Utf8Bytes(m_buffer);
        case XmlEncoding_UTF16:
        case XmlEncoding_UTF16Undeclared:
            return ToUtf16(GetText());
        default:
            throw CKxException("Unknown Encoding, select UTF-8 (contact our support team)");
    }
}

}  // namespace KxXmlLib16
