// Decoding state of one Fast Infoset document: a bounds-checked cursor over the input bytes, the
// vocabulary tables the document fills as it goes, and the decoders of the integer, length and
// string encodings. Internal to the library.
#ifndef KX_CFIDECODER_H
#define KX_CFIDECODER_H

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace KxXmlLib16 {

class CFIVocabulary;

// A qualified name of the element or attribute name table, as views of its three parts.
struct CFIQName {
    std::string_view prefix;
    std::string_view ns;
    std::string_view local;
};

class CFIDecoder {
public:
    // A string table: views into the input bytes, into the arena or into an external
    // vocabulary, all valid for the whole parse.
    typedef std::vector<std::string_view> StringTable;
    typedef std::vector<CFIQName> QNameTable;

    // Decodes data[start, length). `localCodePage` false means strings are handed out as UTF-8;
    // true converts them to the local code page as the XML reader does.
    CFIDecoder(const unsigned char* data, size_t length, size_t start, bool localCodePage);

    // Offset of the next byte, and whether every byte has been read.
    size_t Offset() const { return m_pos; }
    bool AtEnd() const { return m_pos == m_length; }

    // Throws CKxException "Invalid Fast Infoset document: <what> at offset <offset>".
    [[noreturn]] static void FailAt(size_t offset, const std::string& what);
    // The same at the offset of the last byte read (or of the next one, before any read).
    [[noreturn]] void Fail(const std::string& what) const;

    // Next byte; "unexpected end of data" when there is none.
    unsigned char Next();
    // Start of the next `count` bytes, skipped; checked against the bytes left first.
    const unsigned char* Take(uint64_t count);

    // Integer encodings; `first` is the byte already read that holds the leading bits.
    unsigned long IndexOnBit2(unsigned char first);  // 1..2^20
    unsigned long IndexOnBit3(unsigned char first);  // element name index
    unsigned long IndexOnBit4(unsigned char first);  // character chunk index
    uint64_t LengthOnBit2(unsigned char first);      // 1..2^32
    uint64_t LengthOnBit5(unsigned char first);
    uint64_t LengthOnBit7(unsigned char first);
    unsigned long ItemCount();  // 1..2^20, from the next byte

    // An identifying string or index into `table` (a literal is always added).
    std::string_view IdentifyingString(StringTable& table, const char* tableName);
    // A UTF-8 octet string with its length on bit 2 of the next byte (bit 1 must be 0).
    std::string_view OctetString();
    // A non-identifying string or index into `table`, starting with the next byte. An
    // `initial` entry of the initial vocabulary must be a literal without the add-to-table bit,
    // and is added all the same.
    std::string_view NonIdentifyingString(StringTable& table, const char* tableName,
                                          bool initial = false);
    // A character chunk whose first byte (10xxxxxx) is `first`; sets `cdata` when the text
    // came from the CDATA algorithm.
    std::string_view CharacterChunk(unsigned char first, bool& cdata);

    // Entry `index` of a table, failing for 0 or past the end. The text a reference yields
    // counts against the expansion limit.
    std::string_view StringAt(const StringTable& table, unsigned long index,
                              const char* tableName);
    const CFIQName& QNameAt(const QNameTable& table, unsigned long index, const char* tableName);
    // Appends unless the table already holds the largest encodable number of entries.
    static void AddString(StringTable& table, std::string_view text);
    static void AddQName(QNameTable& table, const CFIQName& name);

    // Starts every table from an external vocabulary (which must outlive the parse).
    void LoadVocabulary(const CFIVocabulary& vocabulary);

    // The tables, each starting with its built-in entries.
    StringTable m_prefixes;
    StringTable m_namespaces;
    StringTable m_localNames;
    StringTable m_otherNCNames;
    StringTable m_otherURIs;
    StringTable m_attributeValues;
    StringTable m_chunks;
    StringTable m_otherStrings;
    QNameTable m_elementNames;
    QNameTable m_attributeNames;

private:
    // The text of `length` encoded bytes in one of the four formats (format bits 0..3, `table`
    // the 1-based alphabet or algorithm index); `keep` when it must outlive the next string.
    std::string_view Decode(unsigned format, unsigned long table, uint64_t length, bool keep,
                            bool& cdata);
    std::string_view DecodeUtf16(const unsigned char* bytes, size_t length);
    std::string_view DecodeAlphabet(unsigned long alphabet, const unsigned char* bytes,
                                    size_t length);
    std::string_view DecodeAlgorithm(unsigned long algorithm, const unsigned char* bytes,
                                     size_t length, bool& cdata);
    // Checks UTF-8 that starts at offset `at`, then converts it as configured. `stable` when
    // the bytes outlive the parse (they are in the input); `keep` as in Decode.
    std::string_view Finish(std::string_view utf8, size_t at, bool stable, bool keep);
    // Counts text produced by table references against the expansion limit.
    void ChargeReference(size_t length);

    const unsigned char* m_data;
    size_t m_length;
    size_t m_pos;
    size_t m_lastRead;
    // Offset of the encoded string being decoded, for its errors.
    size_t m_stringStart;
    bool m_localCodePage;
    uint64_t m_referencedBytes;
    uint64_t m_referenceLimit;
    // Stable storage for converted strings that enter a table.
    std::deque<std::string> m_arena;
    // Reused buffers for strings used once: decoded UTF-8, then its converted form.
    std::string m_decoded;
    std::string m_converted;
};

}  // namespace KxXmlLib16

#endif
