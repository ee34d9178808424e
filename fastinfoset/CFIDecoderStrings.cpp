// String decoding of the Fast Infoset reader: literals and indexes, UTF-8 and UTF-16, the
// built-in restricted alphabets and encoding algorithms.
#include <climits>
#include <cstring>

#include "CEncoder.h"
#include "CFastInfosetBinaryData.h"
#include "CKxException.h"
#include "ConvertUTF.h"
#include "FormatString.h"
#include "fastinfoset/CFIDecoder.h"

namespace KxXmlLib16 {

namespace {

const char kNumericAlphabet[] = "0123456789-+.e ";
const char kDateTimeAlphabet[] = "0123456789-:TZ ";
const unsigned kAlphabetPadding = 15;
const unsigned long kCdataAlgorithm = CFastInfosetBinaryData::EA_Cdata;
const unsigned long kFirstApplicationAlgorithm = 32;

// True when a byte of the word is a control character (below 0x20) or has its high bit set:
// such words are looked at byte by byte.
bool NeedsCloserLook(unsigned long long word) {
    const unsigned long long high = 0x8080808080808080ull;
    if ((word & high) != 0) return true;
    // With every high bit clear, adding 0x60 to a byte sets its high bit exactly when the
    // byte is 0x20 or more, and never carries into the next byte.
    return ((word + 0x6060606060606060ull) & high) != high;
}

bool IsAllowedControl(unsigned char byte) {
    return byte == '\t' || byte == '\n' || byte == '\r';
}

void AppendUtf8(std::string& out, unsigned long code) {
    if (code < 0x80) {
        out += static_cast<char>(code);
    } else if (code < 0x800) {
        out += static_cast<char>(0xC0 | (code >> 6));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        out += static_cast<char>(0xE0 | (code >> 12));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (code >> 18));
        out += static_cast<char>(0x80 | ((code >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((code >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (code & 0x3F));
    }
}

}  // namespace

std::string_view CFIDecoder::IdentifyingString(StringTable& table, const char* tableName) {
    const unsigned char first = Next();
    if ((first & 0x80) != 0) return StringAt(table, IndexOnBit2(first), tableName);
    const uint64_t length = LengthOnBit2(first);
    m_stringStart = m_pos;
    const unsigned char* bytes = Take(length);
    const std::string_view text =
        Finish(std::string_view(reinterpret_cast<const char*>(bytes), static_cast<size_t>(length)),
               m_stringStart, true, true);
    AddString(table, text);
    return text;
}

std::string_view CFIDecoder::OctetString() {
    const unsigned char first = Next();
    if ((first & 0x80) != 0) Fail(FormatString("invalid octet string octet 0x%02X", first));
    const uint64_t length = LengthOnBit2(first);
    m_stringStart = m_pos;
    const unsigned char* bytes = Take(length);
    return Finish(
        std::string_view(reinterpret_cast<const char*>(bytes), static_cast<size_t>(length)),
        m_stringStart, true, true);
}

std::string_view CFIDecoder::NonIdentifyingString(StringTable& table, const char* tableName,
                                                  bool initial) {
    const unsigned char first = Next();
    if (initial && (first & 0xC0) != 0)
        Fail(FormatString("invalid %s octet 0x%02X", tableName, first));
    if ((first & 0x80) != 0) {
        // All seven index bits set stands for the empty string, which no table holds.
        if (first == 0xFF) return std::string_view();
        return StringAt(table, IndexOnBit2(first), tableName);
    }
    const bool add = initial || (first & 0x40) != 0;
    const unsigned format = (first >> 4) & 0x03u;
    unsigned long encoding = 0;
    uint64_t length = 0;
    if (format < 2) {
        length = LengthOnBit5(first);
    } else {
        const unsigned char second = Next();
        encoding = (((first & 0x0Fu) << 4) | (second >> 4)) + 1;
        length = LengthOnBit5(second);
    }
    bool cdata = false;
    const std::string_view text = Decode(format, encoding, length, add, cdata);
    if (add) AddString(table, text);
    return text;
}

std::string_view CFIDecoder::CharacterChunk(unsigned char first, bool& cdata) {
    cdata = false;
    if ((first & 0x20) != 0) {
        return StringAt(m_chunks, IndexOnBit4(first), "character chunk");
    }
    const bool add = (first & 0x10) != 0;
    const unsigned format = (first >> 2) & 0x03u;
    unsigned long encoding = 0;
    uint64_t length = 0;
    if (format < 2) {
        length = LengthOnBit7(first);
    } else {
        const unsigned char second = Next();
        encoding = (((first & 0x03u) << 6) | (second >> 2)) + 1;
        length = LengthOnBit7(second);
    }
    const std::string_view text = Decode(format, encoding, length, add, cdata);
    if (add) AddString(m_chunks, text);
    return text;
}

std::string_view CFIDecoder::Decode(unsigned format, unsigned long table, uint64_t length,
                                    bool keep, bool& cdata) {
    m_stringStart = m_pos;
    const unsigned char* bytes = Take(length);
    const size_t size = static_cast<size_t>(length);
    switch (format) {
        case 0:
            return Finish(std::string_view(reinterpret_cast<const char*>(bytes), size),
                          m_stringStart, true, keep);
        case 1:
            return Finish(DecodeUtf16(bytes, size), m_stringStart, false, keep);
        case 2:
            return Finish(DecodeAlphabet(table, bytes, size), m_stringStart, false, keep);
        default: {
            const std::string_view text = DecodeAlgorithm(table, bytes, size, cdata);
            // CDATA text is the input's own UTF-8; the other algorithms' text is decoded.
            return Finish(text, m_stringStart, cdata, keep);
        }
    }
}

std::string_view CFIDecoder::DecodeUtf16(const unsigned char* bytes, size_t length) {
    if (length % 2 != 0) FailAt(m_stringStart, "odd UTF-16 length");
    m_decoded.clear();
    m_decoded.reserve(length + length / 2);
    for (size_t i = 0; i < length; i += 2) {
        unsigned long code = (static_cast<unsigned long>(bytes[i]) << 8) | bytes[i + 1];
        if (code >= 0xDC00 && code <= 0xDFFF) FailAt(m_stringStart, "invalid UTF-16");
        if (code >= 0xD800 && code <= 0xDBFF) {
            if (i + 3 >= length) FailAt(m_stringStart, "invalid UTF-16");
            const unsigned long low =
                (static_cast<unsigned long>(bytes[i + 2]) << 8) | bytes[i + 3];
            if (low < 0xDC00 || low > 0xDFFF) FailAt(m_stringStart, "invalid UTF-16");
            code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
            i += 2;
        }
        AppendUtf8(m_decoded, code);
    }
    return m_decoded;
}

std::string_view CFIDecoder::DecodeAlphabet(unsigned long alphabet, const unsigned char* bytes,
                                            size_t length) {
    const char* characters = alphabet == 1   ? kNumericAlphabet
                             : alphabet == 2 ? kDateTimeAlphabet
                                             : nullptr;
    if (characters == nullptr) {
        FailAt(m_stringStart, FormatString("unknown restricted alphabet %lu", alphabet));
    }
    m_decoded.clear();
    m_decoded.reserve(2 * length);
    for (size_t i = 0; i < length; ++i) {
        const unsigned high = bytes[i] >> 4;
        const unsigned low = bytes[i] & 0x0Fu;
        // Only the final half octet may be the padding code.
        if (high == kAlphabetPadding || (low == kAlphabetPadding && i + 1 != length)) {
            FailAt(m_stringStart, "invalid restricted alphabet code");
        }
        m_decoded += characters[high];
        if (low != kAlphabetPadding) m_decoded += characters[low];
    }
    return m_decoded;
}

std::string_view CFIDecoder::DecodeAlgorithm(unsigned long algorithm, const unsigned char* bytes,
                                             size_t length, bool& cdata) {
    if (algorithm == kCdataAlgorithm) {
        cdata = true;
        return std::string_view(reinterpret_cast<const char*>(bytes), length);
    }
    if (algorithm > kCdataAlgorithm) {
        FailAt(m_stringStart, FormatString(algorithm < kFirstApplicationAlgorithm
                                               ? "reserved encoding algorithm %lu"
                                               : "unknown encoding algorithm %lu",
                                           algorithm));
    }
    try {
        const CFastInfosetBinaryData data(bytes, static_cast<unsigned long>(length), false);
        m_decoded = data.GetAsString(algorithm);
    } catch (const CKxException& error) {
        FailAt(m_stringStart, FormatString("encoding algorithm %lu data rejected (%s)", algorithm,
                                           error.GetMessage().c_str()));
    }
    return m_decoded;
}

std::string_view CFIDecoder::Finish(std::string_view utf8, size_t at, bool stable, bool keep) {
    const unsigned char* const begin = reinterpret_cast<const unsigned char*>(utf8.data());
    const unsigned char* const end = begin + utf8.size();
    bool ascii = true;
    const unsigned char* p = begin;
    while (p < end) {
        if (end - p >= 8) {
            unsigned long long word;
            std::memcpy(&word, p, sizeof word);
            if (!NeedsCloserLook(word)) {
                p += 8;
                continue;
            }
        }
        if (*p < 0x20) {
            if (!IsAllowedControl(*p)) FailAt(at, "character not allowed in XML");
            ++p;
        } else if (*p < 0x80) {
            ++p;
        } else {
            if (!IsLegalUTF8Sequence(p, end)) FailAt(at, "invalid UTF-8");
            ascii = false;
            p += *p >= 0xF0 ? 4 : *p >= 0xE0 ? 3 : 2;
        }
    }
    if (!m_localCodePage || ascii) {
        if (stable || !keep) return utf8;
        m_arena.emplace_back(utf8);
        return m_arena.back();
    }
    if (utf8.size() > static_cast<size_t>(INT_MAX)) FailAt(at, "string too long");
    std::string converted = CEncoder::Utf8ToLocalCodePage(begin, static_cast<int>(utf8.size()));
    if (!keep) {
        m_converted = std::move(converted);
        return m_converted;
    }
    m_arena.push_back(std::move(converted));
    return m_arena.back();
}

}  // namespace KxXmlLib16
