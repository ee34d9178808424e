// Conversions between UTF-8, UTF-16 and UTF-32 (wide characters), and tests of UTF-8 text.
#ifndef KX_CONVERTUTF_H
#define KX_CONVERTUTF_H

#include <cstddef>

#include "KxConfig.h"

namespace KxXmlLib16 {

// The six converters share one contract. Each reads the code units in [sourceBegin, sourceEnd).
// - With a null targetBegin they only measure: the result is the number of target units the
//   whole source needs, or 0 when the source is empty or holds anything invalid anywhere (an
//   illegal or truncated UTF-8 sequence, a lone or reversed surrogate, a surrogate code point,
//   and for the UTF-16 targets a code point above U+10FFFF).
// - With a target they convert from the start and stop, without error, at the end of the source,
//   at a code point whose encoding does not fit whole in [targetBegin, targetEnd), or at an
//   invalid unit; the result is the number of target units written. ConvertUTF16toUTF32 returns
//   0 in this mode whatever it wrote: take the length from a measuring call.
// - ConvertUTF32toUTF8 writes (and measures) U+FFFD for a code point above U+10FFFF.
// None of them throws.
KX_EXPORT unsigned long ConvertUTF8toUTF16(const unsigned char* sourceBegin,
                                           const unsigned char* sourceEnd,
                                           unsigned short* targetBegin, unsigned short* targetEnd);
KX_EXPORT unsigned long ConvertUTF8toUTF32(const unsigned char* sourceBegin,
                                           const unsigned char* sourceEnd,
                                           unsigned int* targetBegin, unsigned int* targetEnd);
KX_EXPORT unsigned long ConvertUTF16toUTF8(const unsigned short* sourceBegin,
                                           const unsigned short* sourceEnd,
                                           unsigned char* targetBegin, unsigned char* targetEnd);
KX_EXPORT unsigned long ConvertUTF16toUTF32(const unsigned short* sourceBegin,
                                            const unsigned short* sourceEnd,
                                            unsigned int* targetBegin, unsigned int* targetEnd);
KX_EXPORT unsigned long ConvertUTF32toUTF8(const unsigned int* sourceBegin,
                                           const unsigned int* sourceEnd,
                                           unsigned char* targetBegin, unsigned char* targetEnd);
KX_EXPORT unsigned long ConvertUTF32toUTF16(const unsigned int* sourceBegin,
                                            const unsigned int* sourceEnd,
                                            unsigned short* targetBegin, unsigned short* targetEnd);

// True when the `length` bytes (1 to 4) form one well-formed UTF-8 sequence: no overlong form,
// no surrogate, nothing above U+10FFFF. Any other length is false.
KX_EXPORT bool IsLegalUTF8(const unsigned char* source, int length);
// Takes the sequence length from the lead byte at `begin`; false when the sequence runs past
// `end`, else IsLegalUTF8 of it.
KX_EXPORT bool IsLegalUTF8Sequence(const unsigned char* begin, const unsigned char* end);

// Wide strings (one 32-bit code point per wchar_t) to and from UTF-8, with counts in units of
// the respective type. A null target measures, as for the converters above.
KX_EXPORT unsigned long UnicodeToUTF8(const wchar_t* source, unsigned long count,
                                      unsigned char* target, unsigned long targetCount);
KX_EXPORT unsigned long UTF8ToUnicode(const unsigned char* source, unsigned long count,
                                      wchar_t* target, unsigned long targetCount);
// Wide strings to UTF-16 units in the machine's byte order, stored at `target`, which has room
// for `targetUnits` 16-bit units (it need not be aligned).
KX_EXPORT unsigned long UnicodeToUTF16(const wchar_t* source, unsigned long count,
                                       unsigned char* target, unsigned long targetUnits);
// `units` UTF-16 units in the machine's byte order (need not be aligned) to wide characters.
// Like ConvertUTF16toUTF32, returns 0 whenever a target is given.
KX_EXPORT unsigned long UTF16ToUnicode(const unsigned char* source, unsigned long units,
                                       wchar_t* target, unsigned long targetCount);

// True when any of the `count` wide characters is above 127.
KX_EXPORT bool DoesUnicodeStrContainAnyUTF8CharsLargerThanOneByte(const wchar_t* text, int count);
// True when any of the `count` bytes is above 127; false for a count of 0.
KX_EXPORT bool DoesUTF8StrContainAnyCharsLargerThanOneByte(const unsigned char* text,
                                                           unsigned long count);

}  // namespace KxXmlLib16

#endif
