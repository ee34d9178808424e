// The octet-level encodings of the Fast Infoset writer: integers, lengths, identifying and
// non-identifying strings, qualified names and encoded values.
#include <cstring>

#include "CFastInfosetBinaryData.h"
#include "CFastInfosetWriter.h"
#include "CKxException.h"
#include "FormatString.h"

namespace KxXmlLib16 {

namespace {

const char kNumericAlphabet[] = "0123456789-+.e";
const char kDateTimeAlphabet[] = "0123456789-:TZ";

enum ValueFormat { Format_Utf8 = 0, Format_RestrictedAlphabet = 2, Format_Algorithm = 3 };

void AppendBigEndian(CBinaryStream& stream, unsigned long value, int octets) {
    for (int shift = (octets - 1) * 8; shift >= 0; shift -= 8) {
        stream.Append(static_cast<unsigned char>((value >> shift) & 0xFF));
    }
}

// Length of a literal starting on the fifth bit of the octet whose high bits are `high`.
void LengthBit5(CBinaryStream& stream, unsigned char high, unsigned long length) {
    if (length <= 8) {
        stream.Append(static_cast<unsigned char>(high | (length - 1)));
    } else if (length <= 264) {
        stream.Append(static_cast<unsigned char>(high | 0x08));
        stream.Append(static_cast<unsigned char>(length - 9));
    } else {
        stream.Append(static_cast<unsigned char>(high | 0x0C));
        AppendBigEndian(stream, length - 265, 4);
    }
}

// Length of a literal starting on the seventh bit.
void LengthBit7(CBinaryStream& stream, unsigned char high, unsigned long length) {
    if (length <= 2) {
        stream.Append(static_cast<unsigned char>(high | (length - 1)));
    } else if (length <= 258) {
        stream.Append(static_cast<unsigned char>(high | 0x02));
        stream.Append(static_cast<unsigned char>(length - 3));
    } else {
        stream.Append(static_cast<unsigned char>(high | 0x03));
        AppendBigEndian(stream, length - 259, 4);
    }
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Integers and identifying strings

void CFastInfosetWriter::Integer1To2pw20Bit2(unsigned long value, unsigned char high) {
    if (value <= 64) {
        m_stream.Append(static_cast<unsigned char>(high | (value - 1)));
    } else if (value <= 8256) {
        value -= 65;
        m_stream.Append(static_cast<unsigned char>(high | 0x40 | (value >> 8)));
        m_stream.Append(static_cast<unsigned char>(value & 0xFF));
    } else {
        value -= 8257;
        m_stream.Append(static_cast<unsigned char>(high | 0x60 | (value >> 16)));
        AppendBigEndian(m_stream, value & 0xFFFF, 2);
    }
}

void CFastInfosetWriter::Integer1To2pw20Bit3(unsigned long value, unsigned char high) {
    if (value <= 32) {
        m_stream.Append(static_cast<unsigned char>(high | (value - 1)));
    } else if (value <= 2080) {
        value -= 33;
        m_stream.Append(static_cast<unsigned char>(high | 0x20 | (value >> 8)));
        m_stream.Append(static_cast<unsigned char>(value & 0xFF));
    } else if (value <= 526368) {
        value -= 2081;
        m_stream.Append(static_cast<unsigned char>(high | 0x28 | (value >> 16)));
        AppendBigEndian(m_stream, value & 0xFFFF, 2);
    } else {
        m_stream.Append(static_cast<unsigned char>(high | 0x30));
        AppendBigEndian(m_stream, value - 526369, 3);
    }
}

void CFastInfosetWriter::Integer1To2pw20Bit4(unsigned long value) {
    const unsigned char high = 0xA0;
    if (value <= 16) {
        m_stream.Append(static_cast<unsigned char>(high | (value - 1)));
    } else if (value <= 1040) {
        value -= 17;
        m_stream.Append(static_cast<unsigned char>(high | 0x10 | (value >> 8)));
        m_stream.Append(static_cast<unsigned char>(value & 0xFF));
    } else if (value <= 263184) {
        value -= 1041;
        m_stream.Append(static_cast<unsigned char>(high | 0x14 | (value >> 16)));
        AppendBigEndian(m_stream, value & 0xFFFF, 2);
    } else {
        m_stream.Append(static_cast<unsigned char>(high | 0x18));
        AppendBigEndian(m_stream, value - 263185, 3);
    }
}

void CFastInfosetWriter::NonEmptyOctetUTF8StringBit2(const std::string& text) {
    const unsigned long length = text.size();
    if (length <= 64) {
        m_stream.Append(static_cast<unsigned char>(length - 1));
    } else if (length <= 320) {
        m_stream.Append(0x40);
        m_stream.Append(static_cast<unsigned char>(length - 65));
    } else {
        m_stream.Append(0x60);
        AppendBigEndian(m_stream, length - 321, 4);
    }
    m_stream.Append(reinterpret_cast<const unsigned char*>(text.data()), length);
}

void CFastInfosetWriter::IdentifyingString(const std::string& text, bool isPrefix) {
    unsigned long index = 0;
    const bool found = isPrefix ? m_vocabulary.FindPrefixNameIndex(text, index)
                                : m_vocabulary.FindNamespaceNameIndex(text, index);
    if (found) {
        Integer1To2pw20Bit2(index, 0x80);
        return;
    }
    NonEmptyOctetUTF8StringBit2(text);
    if (isPrefix) {
        m_vocabulary.AddPrefixName(text);
    } else {
        m_vocabulary.AddNamespaceName(text);
    }
}

// ---------------------------------------------------------------------------------------------
// Qualified names

void CFastInfosetWriter::QualifiedNameOrIndexBit3(const std::string& prefix,
                                                  const std::string& ns, const std::string& name,
                                                  bool hasAttributes) {
    const unsigned char high = hasAttributes ? 0x40 : 0x00;
    unsigned long index = 0;
    if (m_vocabulary.FindElementNameIndex(prefix, ns, name, index)) {
        Integer1To2pw20Bit3(index, high);
        return;
    }
    m_stream.Append(static_cast<unsigned char>(high | 0x3C | (prefix.empty() ? 0 : 0x02) |
                                               (ns.empty() ? 0 : 0x01)));
    if (!prefix.empty()) {
        IdentifyingString(prefix, true);
    }
    if (!ns.empty()) {
        IdentifyingString(ns, false);
    }
    if (m_vocabulary.FindLocalNameIndex(name, index)) {
        Integer1To2pw20Bit2(index, 0x80);
    } else {
        NonEmptyOctetUTF8StringBit2(name);
    }
    m_vocabulary.AddElement(prefix, ns, name);
}

void CFastInfosetWriter::QualifiedNameOrIndexBit2(const std::string& prefix,
                                                  const std::string& ns,
                                                  const std::string& name) {
    unsigned long index = 0;
    if (m_vocabulary.FindAttributeNameIndex(prefix, ns, name, index)) {
        Integer1To2pw20Bit2(index, 0x00);
        return;
    }
    m_stream.Append(static_cast<unsigned char>(0x78 | (prefix.empty() ? 0 : 0x02) |
                                               (ns.empty() ? 0 : 0x01)));
    if (!prefix.empty()) {
        IdentifyingString(prefix, true);
    }
    if (!ns.empty()) {
        IdentifyingString(ns, false);
    }
    if (m_vocabulary.FindLocalNameIndex(name, index)) {
        Integer1To2pw20Bit2(index, 0x80);
    } else {
        NonEmptyOctetUTF8StringBit2(name);
    }
    m_vocabulary.AddAttribute(prefix, ns, name);
}

// ---------------------------------------------------------------------------------------------
// Values

int CFastInfosetWriter::EncodeValue(const std::string& value, ItemType type, bool chunk,
                                    unsigned long& index, CBinaryData& data) const {
    const CFastInfosetContext::EncodingEntry& entry = m_context.GetEncoding(type);
    index = entry.second;
    switch (entry.first) {
        case CFastInfosetContext::ECS_Utf8:
            if (m_context.GetDefaultStringEncoding() != 0) {
                throw CKxException(
                    "Failed to write FastInfoset. Unsupported Feature UTF16BE in "
                    "EncodedCharacterStringBit5.");
            }
            data.SetBuffer(reinterpret_cast<const unsigned char*>(value.data()), value.size());
            return Format_Utf8;
        case CFastInfosetContext::ECS_RestrictedAlphabet:
            if (index == 1) {
                AppendRestrictedAlphabetString(data, kNumericAlphabet, value);
            } else if (index == 2) {
                AppendRestrictedAlphabetString(data, kDateTimeAlphabet, value);
            } else {
                throw CKxException(FormatString(
                    "Failed to write FastInfoset. Invalid Restricted Alphabet value [%d]",
                    static_cast<int>(index)));
            }
            return Format_RestrictedAlphabet;
        case CFastInfosetContext::ECS_EncodingAlgorithm: {
            if (index < CFastInfosetBinaryData::EA_Hexadecimal ||
                index > CFastInfosetBinaryData::EA_Cdata) {
                throw CKxException(FormatString(
                    "Failed to write FastInfoset. Invalid Encoding Algorithm value [%d]",
                    static_cast<int>(index)));
            }
            CFastInfosetBinaryData encoded;
            encoded.SetAsEncodedString(index, value.c_str());
            data = encoded;
            return Format_Algorithm;
        }
        default:
            throw CKxException(chunk ? "Failed to write FastInfoset. Unknown encoding in "
                                       "EncodedCharacterStringBit5."
                                     : "Failed to write FastInfoset. Unknown encoding in "
                                       "EncodedCharacterStringBit7.");
    }
}

void CFastInfosetWriter::NonIdentifyingStringOrIndexBit1(const std::string& value,
                                                         ItemType type) {
    if (value.empty()) {
        m_stream.Append(0xFF);
        return;
    }
    // A full table takes no more entries, so the value is not offered to it.
    const bool addable =
        value.size() < m_context.GetAttributeMaxAddLength() &&
        m_vocabulary.GetAttributeValuesTable().size() < CFIVocabulary::MaxTableSize;
    unsigned long index = 0;
    if (addable && m_vocabulary.FindAttributeValueIndex(value, index)) {
        Integer1To2pw20Bit2(index, 0x80);
        return;
    }
    CBinaryData data;
    const int format = EncodeValue(value, type, false, index, data);
    const unsigned char add = addable ? 0x40 : 0x00;
    if (format == Format_Utf8) {
        LengthBit5(m_stream, add, data.GetLength());
    } else {
        const unsigned long field = index - 1;
        m_stream.Append(static_cast<unsigned char>(add | (format << 4) | (field >> 4)));
        LengthBit5(m_stream, static_cast<unsigned char>((field & 0x0F) << 4), data.GetLength());
    }
    m_stream.Append(data);
    if (addable) {
        m_vocabulary.AddAttributeValue(value);
    }
}

void CFastInfosetWriter::NonIdentifyingStringOrIndexBit3(const std::string& value,
                                                         ItemType type) {
    const bool addable =
        value.size() < m_context.GetElementMaxAddLength() &&
        m_vocabulary.GetCharacterChunksTable().size() < CFIVocabulary::MaxTableSize;
    unsigned long index = 0;
    if (addable && m_vocabulary.FindElementValueIndex(value, index)) {
        Integer1To2pw20Bit4(index);
        return;
    }
    CBinaryData data;
    const int format = EncodeValue(value, type, true, index, data);
    const unsigned char high = static_cast<unsigned char>(0x80 | (addable ? 0x10 : 0x00));
    if (format == Format_Utf8) {
        LengthBit7(m_stream, high, data.GetLength());
    } else {
        const unsigned long field = index - 1;
        m_stream.Append(static_cast<unsigned char>(high | (format << 2) | (field >> 6)));
        LengthBit7(m_stream, static_cast<unsigned char>((field & 0x3F) << 2), data.GetLength());
    }
    m_stream.Append(data);
    if (addable) {
        m_vocabulary.AddElementValue(value);
    }
}

void CFastInfosetWriter::AppendRestrictedAlphabetString(CBinaryData& out,
                                                        const std::string& alphabet,
                                                        const std::string& text) {
    const unsigned long size = alphabet.size();
    if (size < 2 || size > 1048576UL) {
        throw CKxException(
            "Failed to write FastInfoset. Invalid Restricted Alphabet. Alphabet must contain "
            "between 2 and 2^20 characters.");
    }
    int width = 3;
    while ((1UL << width) <= size) {
        ++width;
    }
    if (width != 4 && width != 8) {
        throw CKxException(
            "Failed to write FastInfoset. Unsupported Feature in AppendRestrictedAlphabetString.");
    }
    std::string packed;
    packed.reserve(width == 4 ? (text.size() + 1) / 2 : text.size());
    bool half = false;
    for (char c : text) {
        const std::string::size_type code = alphabet.find(c);
        if (code == std::string::npos) {
            throw CKxException(
                "Failed to write FastInfoset. Invalid character not found for Restricted "
                "Alphabet.");
        }
        if (width == 8) {
            packed.push_back(static_cast<char>(code));
        } else if (half) {
            packed.back() = static_cast<char>(static_cast<unsigned char>(packed.back()) | code);
            half = false;
        } else {
            packed.push_back(static_cast<char>(code << 4));
            half = true;
        }
    }
    if (half) {
        packed.back() = static_cast<char>(static_cast<unsigned char>(packed.back()) | 0x0F);
    }
    out.SetBuffer(reinterpret_cast<const unsigned char*>(packed.data()), packed.size());
}

}  // namespace KxXmlLib16
