// Compressed UTF-8 output deflated piece by piece as the writer flushes.
#include "io/CDeflateTextStream.h"

#include <langinfo.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "CEncoder.h"
#include "CKxException.h"
#include "CKxZip.h"
#include "ConvertUTF.h"
#include "FormatString.h"
#include "io/DeflateSetup.h"

namespace KxXmlLib16 {

namespace {

// deflate writes into this window; what it produced is appended to the output.
const size_t kOutputWindow = 16384;
// zlib counts input in 32-bit unsigned ints.
const size_t kLargestPiece = 1u << 30;

// Eight bytes of ASCII without a NUL.
bool PlainWord(const unsigned char* p) {
    unsigned long long word;
    std::memcpy(&word, p, sizeof word);
    const unsigned long long highBits = 0x8080808080808080ull;
    const unsigned long long hasZero = (word - 0x0101010101010101ull) & ~word & highBits;
    return ((word & highBits) | hasZero) == 0;
}

}  // namespace

CDeflateTextStream::CDeflateTextStream(CompressionType compression)
    : CTextStream("CDeflateTextStream", XmlEncoding_UTF8),
      m_compression(compression),
      m_zlib(),
      m_deflating(false),
      m_finished(false),
      m_utf8CodePage(false),
      m_consumed(0) {
    Open();
}

CDeflateTextStream::~CDeflateTextStream() {
    if (m_deflating) deflateEnd(&m_zlib);
}

void CDeflateTextStream::Open() {
    CTextStream::Open();
    // A stream that has taken nothing yet is ready as it is.
    if (m_deflating && !m_finished && m_consumed == 0) return;
    if (m_deflating) deflateEnd(&m_zlib);
    m_deflating = false;
    m_finished = false;
    m_consumed = 0;
    m_output.Clear();
    m_gathered.clear();
    std::memset(&m_zlib, 0, sizeof m_zlib);
    const int result = StartDeflate(&m_zlib, m_compression);
    if (result != Z_OK) {
        throw CKxException(FormatString("Failed to compress data. [Error Code: %d]", result));
    }
    m_deflating = true;
    const char* codeset = nl_langinfo(CODESET);
    m_utf8CodePage = codeset != nullptr && std::strcmp(codeset, "UTF-8") == 0;
}

void CDeflateTextStream::Close() { Flush(); }

void CDeflateTextStream::Deflate(const char* text, size_t length, int flush) {
    unsigned char window[kOutputWindow];
    do {
        const size_t piece = std::min(length, kLargestPiece);
        m_zlib.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text));
        m_zlib.avail_in = static_cast<uInt>(piece);
        text += piece;
        length -= piece;
        const int pieceFlush = length == 0 ? flush : Z_NO_FLUSH;
        int result;
        do {
            m_zlib.next_out = window;
            m_zlib.avail_out = static_cast<uInt>(sizeof window);
            result = deflate(&m_zlib, pieceFlush);
            m_output.Append(window, static_cast<unsigned long>(sizeof window - m_zlib.avail_out));
        } while (m_zlib.avail_out == 0 || (pieceFlush == Z_FINISH && result == Z_OK));
        m_consumed += static_cast<unsigned long>(piece);
    } while (length != 0);
}

bool CDeflateTextStream::PassesThrough(const char* text, size_t length) const {
    const bool anyByte = IsASCIIOnly();
    const unsigned char* p = reinterpret_cast<const unsigned char*>(text);
    const unsigned char* const end = p + length;
    while (p != end) {
        while (end - p >= 8 && PlainWord(p)) p += 8;
        if (p == end) break;
        const unsigned char c = *p;
        if (c == 0) return false;
        if (c < 0x80 || anyByte) {
            ++p;
            continue;
        }
        // The writers flush after whole texts, so a sequence cut at the end is not valid text.
        if (!m_utf8CodePage || !IsLegalUTF8Sequence(p, end)) return false;
        p += c >= 0xF0 ? 4 : c >= 0xE0 ? 3 : 2;
    }
    return true;
}

void CDeflateTextStream::Flush() {
    const size_t length = m_buffer.GetLength();
    if (length == 0) return;
    const char* text = m_buffer.GetText();
    if (m_deflating && PassesThrough(text, length)) {
        Deflate(text, length, Z_NO_FLUSH);
    } else {
        if (m_deflating) Gather();
        m_gathered.append(text, length);
    }
    m_buffer.Empty();
}

void CDeflateTextStream::Gather() {
    m_gathered.clear();
    if (m_consumed != 0) {
        if (!m_finished) Deflate("", 0, Z_FINISH);
        unsigned long length = m_output.GetLength();
        std::unique_ptr<unsigned char[]> bytes(new unsigned char[length]);
        std::memcpy(bytes.get(), m_output.GetData(), length);
        unsigned char* data = bytes.release();
        CKxZip::Decompress(&data, &length);
        bytes.reset(data);
        m_gathered.assign(reinterpret_cast<const char*>(data), length);
    }
    m_output.Clear();
    deflateEnd(&m_zlib);
    m_deflating = false;
}

CBinaryData CDeflateTextStream::Finish() {
    Flush();
    if (m_deflating) {
        if (m_consumed == 0) return CBinaryData();
        Deflate("", 0, Z_FINISH);
        m_finished = true;
        // Output larger than the text is refused, with the message of the general way.
        if (m_output.GetLength() <= m_consumed) return m_output;
    }
    if (m_deflating) Gather();
    CBinaryData bytes = CEncoder::LocalCodePageToUtf8Binary(m_gathered.c_str());
    CKxZip::CompressData(bytes, m_compression);
    return bytes;
}

}  // namespace KxXmlLib16
