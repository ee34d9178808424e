// A byte buffer whose copies share one reference-counted holder (copy on write), with hex and
// base64 text conversions.
#ifndef KX_CBINARYDATA_H
#define KX_CBINARYDATA_H

#include <iosfwd>
#include <string>

#include "KxConfig.h"

namespace KxXmlLib16 {

class KX_EXPORT CBinaryData {
public:
    // The shared, locked storage behind a value (defined privately).
    class CDataHolder;

    // An empty value.
    CBinaryData();
    // Shares the other value's bytes; nothing is copied until one of them is written.
    CBinaryData(const CBinaryData& other);
    // An empty value when length is 0. With adopt false the bytes are copied. With adopt true
    // the value takes ownership of `data`, which must come from array new and is released with
    // array delete; the const is cast away only in that case, and the caller must not touch the
    // buffer afterwards.
    CBinaryData(const unsigned char* data, unsigned long length, bool adopt);
    // Copies the raw bytes of a NUL-terminated text (without the NUL); null gives an empty value.
    explicit CBinaryData(const char* text);
    virtual ~CBinaryData();
    // Shares the other value's bytes.
    CBinaryData& operator=(const CBinaryData& other);

    // Drops this value's share of the bytes and becomes empty.
    void Clear();
    // Replaces the contents with a copy of `length` bytes (empty when length is 0).
    void SetBuffer(const unsigned char* data, unsigned long length);
    // Replaces the contents with a copy of the text's bytes (without the NUL).
    void SetBuffer(const char* text);

    // The bytes, or null when empty. Valid until the value changes.
    const unsigned char* GetData() const;
    // Number of bytes, 0 when empty.
    unsigned long GetLength() const;

    // Byte i. An index equal to the length is accepted: it refers to a spare byte past the data
    // (zero until written through it; it never becomes part of the data). Throws CKxException
    // "Index Out of range [%d]" for a larger index or an empty value. The non-const form takes a
    // private copy of shared bytes first.
    unsigned char& operator[](unsigned long i);
    const unsigned char& operator[](unsigned long i) const;

    // Append bytes (amortised linear). Appending nothing does nothing; shared bytes are copied
    // first so other sharers are unaffected. Texts are appended without their NUL; a
    // std::string only up to its first NUL.
    void Append(const unsigned char* data, unsigned long length);
    void Append(unsigned char byte);
    void Append(char byte);
    void Append(const char* text);
    void Append(const std::string& text);
    void Append(const CBinaryData& other);

    // Hands the bytes to the caller (free with delete[]) and leaves the value empty; null for an
    // empty value. Other sharers keep their own copy.
    unsigned char* ReleaseData();

    // Equal when both are empty, or both have the same length and bytes.
    bool operator==(const CBinaryData& other) const;
    bool operator!=(const CBinaryData& other) const;

    // Upper-case hex text, two characters per byte; "" when empty.
    std::string GetAsHexString() const;
    // The same over any buffer; "" for a null pointer.
    static std::string GetAsHexString(const unsigned char* data, unsigned long length);
    // Clears, then decodes hex text (case-insensitive, no blanks allowed). Throws CKxException
    // "Invalid length in hex string" or "Invalid char in hex string [%c]"; the value is then
    // empty.
    void SetAsHexString(const char* text);
    // Decodes hex text into a new array (free with delete[]) stored in *out; returns its length.
    // Throws as SetAsHexString (nothing is allocated then).
    static unsigned long ConvertToHexData(const char* text, unsigned char** out);

    // Base64 text (standard alphabet, padded, no line breaks); "" when empty.
    std::string GetAsBase64() const;
    // Clears, then decodes base64 text. Blanks and '=' are skipped anywhere; any other character
    // outside the alphabet makes the value empty. Never throws.
    void SetAsBase64(const char* text);

private:
    // Makes m_holder exclusive to this value (copying shared bytes) before a write.
    void MakeExclusive();

    CDataHolder* m_holder;
};

// Prints the hex text of the value (for test diagnostics).
KX_EXPORT std::ostream& operator<<(std::ostream& os, const CBinaryData& value);

}  // namespace KxXmlLib16

#endif
