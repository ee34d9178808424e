#include "CBase64.h"

#include <cstring>

namespace KxXmlLib16 {

const char CBase64::m_sBase64Alphabet[65] =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
const unsigned char CBase64::m_nMask[9] = {0, 1, 3, 7, 15, 31, 63, 127, 255};

namespace {

constexpr signed char kInvalid = -2;
constexpr signed char kSkip = -1;

// Character to 6-bit value: -2 for characters outside the alphabet, -1 for those skipped.
struct DecodeTable {
    signed char value[256];

    DecodeTable() {
        for (signed char& v : value) {
            v = kInvalid;
        }
        for (int i = 0; i < 64; ++i) {
            const unsigned char c = static_cast<unsigned char>(CBase64::m_sBase64Alphabet[i]);
            value[c] = static_cast<signed char>(i);
            value[c + 128] = static_cast<signed char>(i);
        }
        for (unsigned char c : {'=', ' ', '\t', '\r', '\n'}) {
            value[c] = kSkip;
        }
    }
};

const DecodeTable& GetDecodeTable() {
    static const DecodeTable table;
    return table;
}

}  // namespace

CBase64::CBase64() : m_source(nullptr), m_sourceLength(0), m_bitCount(0), m_accumulator(0) {}

CBase64::~CBase64() = default;

void CBase64::Reset(const unsigned char* source, int length) {
    m_source = source;
    m_sourceLength = length;
    m_bitCount = 0;
    m_accumulator = 0;
}

std::string CBase64::Encode(const unsigned char* data, int length) {
    if (data == nullptr || length <= 0) {
        return std::string();
    }
    const size_t bits = static_cast<size_t>(length) * 8;
    const size_t characters = (bits + 5) / 6;
    std::string text((characters + 3) / 4 * 4, '=');

    Reset(data, length);
    int position = 0;
    size_t out = 0;
    for (;;) {
        int got = 0;
        const unsigned int value = Read(6, &got, position);
        if (got == 0) {
            break;
        }
        text[out++] = m_sBase64Alphabet[value];
    }
    Reset(nullptr, 0);
    return text;
}

int CBase64::Decode(const char* text, unsigned char* out) {
    if (text == nullptr || *text == '\0' || out == nullptr) {
        return 0;
    }
    const size_t length = std::strlen(text);
    std::memset(out, 0, length + 1);

    const DecodeTable& table = GetDecodeTable();
    Reset(nullptr, 0);
    int position = 0;
    for (size_t i = 0; i < length; ++i) {
        const signed char value = table.value[static_cast<unsigned char>(text[i]) & 0x7F];
        if (value == kSkip) {
            continue;
        }
        if (value == kInvalid) {
            Reset(nullptr, 0);
            return 0;
        }
        Write(static_cast<unsigned int>(value), 6, out, position);
    }
    Reset(nullptr, 0);
    return position;
}

unsigned int CBase64::Read(int bits, int* got, int& position) {
    while (m_bitCount < bits && position < m_sourceLength) {
        m_accumulator = (m_accumulator << 8) | m_source[position++];
        m_bitCount += 8;
    }
    unsigned int value;
    if (m_bitCount >= bits) {
        m_bitCount -= bits;
        value = static_cast<unsigned int>(m_accumulator >> m_bitCount) & m_nMask[bits];
        *got = bits;
    } else {
        // The source is exhausted: pad what is left with zero bits on the right.
        value = (static_cast<unsigned int>(m_accumulator) & m_nMask[m_bitCount])
                << (bits - m_bitCount);
        *got = m_bitCount;
        m_bitCount = 0;
    }
    m_accumulator &= m_nMask[m_bitCount];
    return value;
}

void CBase64::Write(unsigned int value, int bits, unsigned char* out, int& position) {
    m_accumulator = (m_accumulator << bits) | (value & m_nMask[bits]);
    m_bitCount += bits;
    while (m_bitCount >= 8) {
        m_bitCount -= 8;
        out[position++] = static_cast<unsigned char>(m_accumulator >> m_bitCount);
    }
    m_accumulator &= m_nMask[m_bitCount];
}

}  // namespace KxXmlLib16
