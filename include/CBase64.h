// Base64 (standard alphabet, padded, no line breaks) over a small bit-stream coder.
#ifndef KX_CBASE64_H
#define KX_CBASE64_H

#include <string>

#include "KxConfig.h"

namespace KxXmlLib16 {

class KX_EXPORT CBase64 {
public:
    CBase64();
    virtual ~CBase64();
    CBase64(const CBase64&) = default;
    CBase64& operator=(const CBase64&) = default;

    // Base64 text of `length` bytes, padded with '=' to a multiple of 4; "" for null data or a
    // length of 0 or less. Never throws.
    std::string Encode(const unsigned char* data, int length);

    // Decodes `text` into `out`, which must have room for strlen(text) + 1 bytes (all of them
    // are zeroed first). Spaces, tabs, CR, LF and '=' are skipped wherever they stand; a
    // character is looked up by its low 7 bits; any character outside the alphabet makes the
    // result 0. Trailing bits that do not make a whole byte are dropped. Returns the number of
    // bytes written; 0 for a null or empty text or a null buffer. Never throws.
    int Decode(const char* text, unsigned char* out);

    // The 64 characters of the standard alphabet (RFC 4648), NUL-terminated.
    static const char m_sBase64Alphabet[65];
    // Masks of the low n bits, n = 0 to 8.
    static const unsigned char m_nMask[9];

protected:
    // Takes the next `bits` (1 to 8) bits of the source set by Encode, most significant first,
    // starting at byte `position` (advanced as bytes are consumed). *got receives the number of
    // bits actually available (0 at the end); a short group is filled with zero bits on the
    // right.
    unsigned int Read(int bits, int* got, int& position);
    // Adds the low `bits` bits of `value` to the accumulator and writes every complete byte to
    // out[position++].
    void Write(unsigned int value, int bits, unsigned char* out, int& position);

private:
    void Reset(const unsigned char* source, int length);

    const unsigned char* m_source;
    int m_sourceLength;
    int m_bitCount;
    unsigned long long m_accumulator;
};

}  // namespace KxXmlLib16

#endif
