// Cursor, integer and length encodings, and the vocabulary tables of the Fast Infoset reader.
#include "fastinfoset/CFIDecoder.h"

#include "CFIVocabulary.h"
#include "CKxException.h"
#include "FormatString.h"

namespace KxXmlLib16 {

namespace {

const unsigned long kMaxIndex = CFIVocabulary::MaxTableSize;
// Text produced by table references may exceed the input this many times (plus a fixed
// allowance) before the document is refused as an expansion attack.
const uint64_t kReferenceFactor = 64;
const uint64_t kReferenceAllowance = 64ull * 1024 * 1024;

}  // namespace

CFIDecoder::CFIDecoder(const unsigned char* data, size_t length, size_t start, bool localCodePage)
    : m_data(data),
      m_length(length),
      m_pos(start),
      m_lastRead(start),
      m_stringStart(start),
      m_localCodePage(localCodePage),
      m_referencedBytes(0),
      m_referenceLimit(kReferenceAllowance + kReferenceFactor * static_cast<uint64_t>(length)) {
    m_prefixes.push_back("xml");
    m_namespaces.push_back(CFIVocabulary::XmlNamespace);
}

void CFIDecoder::FailAt(size_t offset, const std::string& what) {
    throw CKxException(FormatString("Invalid Fast Infoset document: %s at offset %lu", what.c_str(),
                                    static_cast<unsigned long>(offset)));
}

void CFIDecoder::Fail(const std::string& what) const {
    FailAt(m_lastRead, what);
}

unsigned char CFIDecoder::Next() {
    if (m_pos >= m_length) FailAt(m_pos, "unexpected end of data");
    m_lastRead = m_pos;
    return m_data[m_pos++];
}

const unsigned char* CFIDecoder::Take(uint64_t count) {
    if (count > m_length - m_pos) FailAt(m_pos, "unexpected end of data");
    const unsigned char* start = m_data + m_pos;
    m_pos += static_cast<size_t>(count);
    return start;
}

unsigned long CFIDecoder::IndexOnBit2(unsigned char first) {
    if ((first & 0x40) == 0) return (first & 0x3Fu) + 1;
    if ((first & 0x60) == 0x40) return (((first & 0x1Fu) << 8) | Next()) + 65;
    if ((first & 0x70) == 0x60) {
        unsigned long value = (first & 0x0Fu) << 16;
        value |= static_cast<unsigned long>(Next()) << 8;
        value = (value | Next()) + 8257;
        if (value > kMaxIndex) Fail(FormatString("index %lu beyond 2^20", value));
        return value;
    }
    Fail(FormatString("invalid index octet 0x%02X", first));
}

unsigned long CFIDecoder::IndexOnBit3(unsigned char first) {
    const unsigned bits = first & 0x3Fu;
    if ((bits & 0x20) == 0) return (bits & 0x1Fu) + 1;
    if ((bits & 0x38) == 0x20) return (((bits & 0x07u) << 8) | Next()) + 33;
    if ((bits & 0x38) == 0x28) {
        unsigned long value = (bits & 0x07u) << 16;
        value |= static_cast<unsigned long>(Next()) << 8;
        return (value | Next()) + 2081;
    }
    // 110000 then four zero bits and 20 bits.
    const unsigned char high = Next();
    if ((high & 0xF0) != 0) Fail("non-zero padding in an element name index");
    unsigned long value = static_cast<unsigned long>(high) << 16;
    value |= static_cast<unsigned long>(Next()) << 8;
    value = (value | Next()) + 526369;
    if (value > kMaxIndex) Fail(FormatString("index %lu beyond 2^20", value));
    return value;
}

unsigned long CFIDecoder::IndexOnBit4(unsigned char first) {
    const unsigned bits = first & 0x1Fu;
    if ((bits & 0x10) == 0) return (bits & 0x0Fu) + 1;
    if ((bits & 0x1C) == 0x10) return (((bits & 0x03u) << 8) | Next()) + 17;
    if ((bits & 0x1C) == 0x14) {
        unsigned long value = (bits & 0x03u) << 16;
        value |= static_cast<unsigned long>(Next()) << 8;
        return (value | Next()) + 1041;
    }
    if (bits != 0x18) Fail(FormatString("invalid character chunk octet 0x%02X", first));
    const unsigned char high = Next();
    if ((high & 0xF0) != 0) Fail("non-zero padding in a character chunk index");
    unsigned long value = static_cast<unsigned long>(high) << 16;
    value |= static_cast<unsigned long>(Next()) << 8;
    value = (value | Next()) + 263185;
    if (value > kMaxIndex) Fail(FormatString("index %lu beyond 2^20", value));
    return value;
}

namespace {

uint64_t FourOctets(CFIDecoder& decoder) {
    uint64_t value = 0;
    for (int i = 0; i < 4; ++i) value = (value << 8) | decoder.Next();
    return value;
}

}  // namespace

uint64_t CFIDecoder::LengthOnBit2(unsigned char first) {
    if ((first & 0x40) == 0) return (first & 0x3Fu) + 1;
    if (first == 0x40) return Next() + 65u;
    if (first == 0x60) return FourOctets(*this) + 321;
    Fail(FormatString("invalid length octet 0x%02X", first));
}

uint64_t CFIDecoder::LengthOnBit5(unsigned char first) {
    const unsigned bits = first & 0x0Fu;
    if ((bits & 0x08) == 0) return bits + 1;
    if (bits == 0x08) return Next() + 9u;
    if (bits == 0x0C) return FourOctets(*this) + 265;
    Fail(FormatString("invalid length octet 0x%02X", first));
}

uint64_t CFIDecoder::LengthOnBit7(unsigned char first) {
    const unsigned bits = first & 0x03u;
    if (bits < 2) return bits + 1;
    if (bits == 2) return Next() + 3u;
    return FourOctets(*this) + 259;
}

unsigned long CFIDecoder::ItemCount() {
    const unsigned char first = Next();
    if ((first & 0x80) == 0) return first + 1u;
    if ((first & 0xF0) != 0x80) Fail(FormatString("invalid item count octet 0x%02X", first));
    unsigned long value = (first & 0x0Fu) << 16;
    value |= static_cast<unsigned long>(Next()) << 8;
    value = (value | Next()) + 129;
    if (value > kMaxIndex) Fail(FormatString("item count %lu beyond 2^20", value));
    return value;
}

std::string_view CFIDecoder::StringAt(const StringTable& table, unsigned long index,
                                      const char* tableName) {
    if (index == 0 || index > table.size()) {
        Fail(FormatString("%s index %lu beyond the table (%lu entries)", tableName, index,
                          static_cast<unsigned long>(table.size())));
    }
    ChargeReference(table[index - 1].size());
    return table[index - 1];
}

const CFIQName& CFIDecoder::QNameAt(const QNameTable& table, unsigned long index,
                                    const char* tableName) {
    if (index == 0 || index > table.size()) {
        Fail(FormatString("%s index %lu beyond the table (%lu entries)", tableName, index,
                          static_cast<unsigned long>(table.size())));
    }
    const CFIQName& name = table[index - 1];
    ChargeReference(name.prefix.size() + name.ns.size() + name.local.size());
    return name;
}

void CFIDecoder::AddString(StringTable& table, std::string_view text) {
    if (table.size() < kMaxIndex) table.push_back(text);
}

void CFIDecoder::AddQName(QNameTable& table, const CFIQName& name) {
    if (table.size() < kMaxIndex) table.push_back(name);
}

void CFIDecoder::ChargeReference(size_t length) {
    m_referencedBytes += length;
    if (m_referencedBytes > m_referenceLimit) Fail("indexed text expands beyond the size limit");
}

void CFIDecoder::LoadVocabulary(const CFIVocabulary& vocabulary) {
    // The vocabulary holds the built-in entries itself: it replaces the tables.
    auto strings = [](const CFIVocabulary::CFIStringTable& from, StringTable& to) {
        to.clear();
        to.reserve(from.size());
        for (const std::string& text : from) to.push_back(text);
    };
    strings(vocabulary.GetPrefixNamesTable(), m_prefixes);
    strings(vocabulary.GetNamespaceNamesTable(), m_namespaces);
    strings(vocabulary.GetLocalNamesTable(), m_localNames);
    strings(vocabulary.GetAttributeValuesTable(), m_attributeValues);
    strings(vocabulary.GetCharacterChunksTable(), m_chunks);
    // A record whose parts are not in the tables is a broken vocabulary: it names nothing.
    auto names = [this](const CFIVocabulary::CFIQNameTable& from, QNameTable& to) {
        to.clear();
        to.reserve(from.size());
        for (const CQNameParts& parts : from) {
            CFIQName name;
            const unsigned long prefix = parts.GetPrefixIndex();
            const unsigned long ns = parts.GetNamespaceIndex();
            const unsigned long local = parts.GetLocalNameIndex();
            if (prefix > m_prefixes.size() || ns > m_namespaces.size() || local == 0 ||
                local > m_localNames.size()) {
                FailAt(0, "external vocabulary name outside its tables");
            }
            if (prefix != 0) name.prefix = m_prefixes[prefix - 1];
            if (ns != 0) name.ns = m_namespaces[ns - 1];
            name.local = m_localNames[local - 1];
            to.push_back(name);
        }
    };
    names(vocabulary.GetElementNamesTable(), m_elementNames);
    names(vocabulary.GetAttributeNamesTable(), m_attributeNames);
}

}  // namespace KxXmlLib16
