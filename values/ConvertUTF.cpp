// UTF-8, UTF-16 and UTF-32 conversions. Every converter is one loop over a decoder of the source
// encoding and an encoder of the target encoding; code units are loaded and stored with memcpy so
// that byte buffers of any alignment (and wchar_t arrays) can be read without aliasing trouble.
#include "ConvertUTF.h"

#include <cstdint>
#include <cstring>

namespace KxXmlLib16 {

namespace {

constexpr uint32_t kReplacementChar = 0xFFFD;
constexpr uint32_t kMaxCodePoint = 0x10FFFF;
constexpr uint32_t kSurrogateHighStart = 0xD800;
constexpr uint32_t kSurrogateHighEnd = 0xDBFF;
constexpr uint32_t kSurrogateLowStart = 0xDC00;
constexpr uint32_t kSurrogateLowEnd = 0xDFFF;

// Sequence length announced by a UTF-8 lead byte. Stray trailing bytes count as length 1 and are
// then rejected by the legality test, as are the five- and six-byte leads.
inline int SequenceLength(unsigned char lead) {
    if (lead < 0xC0) return 1;
    if (lead < 0xE0) return 2;
    if (lead < 0xF0) return 3;
    if (lead < 0xF8) return 4;
    if (lead < 0xFC) return 5;
    return 6;
}

// What the assembled bytes of a sequence carry beyond the code point: the lead-byte marks and
// the 0x80 of every trailing byte.
constexpr uint32_t kUtf8Offsets[5] = {0, 0x00000000, 0x00003080, 0x000E2080, 0x03C82080};

bool IsSurrogate(uint32_t c) { return c >= kSurrogateHighStart && c <= kSurrogateLowEnd; }

template <typename Unit>
uint32_t Load(const unsigned char* p) {
    Unit unit;
    std::memcpy(&unit, p, sizeof unit);
    return static_cast<uint32_t>(unit);
}

template <typename Unit>
void Store(unsigned char* p, uint32_t value) {
    const Unit unit = static_cast<Unit>(value);
    std::memcpy(p, &unit, sizeof unit);
}

// Decoders: Done() at the end of the source; Next() reads one code point, false when the source
// holds an invalid or truncated unit there.
class Utf8Source {
public:
    Utf8Source(const unsigned char* begin, const unsigned char* end) : m_p(begin), m_end(end) {}
    bool Done() const { return m_p >= m_end; }
    bool Next(uint32_t& c) {
        const int length = SequenceLength(*m_p);
        if (length > m_end - m_p || !IsLegalUTF8(m_p, length)) return false;
        c = 0;
        for (int i = 0; i < length; ++i) c = (c << 6) + *m_p++;
        c -= kUtf8Offsets[length];
        return true;
    }

private:
    const unsigned char* m_p;
    const unsigned char* m_end;
};

class Utf16Source {
public:
    Utf16Source(const unsigned char* begin, unsigned long units)
        : m_p(begin), m_end(begin + units * 2) {}
    bool Done() const { return m_p >= m_end; }
    bool Next(uint32_t& c) {
        c = Load<uint16_t>(m_p);
        if (c >= kSurrogateHighStart && c <= kSurrogateHighEnd) {
            if (m_end - m_p < 4) return false;
            const uint32_t low = Load<uint16_t>(m_p + 2);
            if (low < kSurrogateLowStart || low > kSurrogateLowEnd) return false;
            c = ((c - kSurrogateHighStart) << 10) + (low - kSurrogateLowStart) + 0x10000;
            m_p += 4;
            return true;
        }
        if (c >= kSurrogateLowStart && c <= kSurrogateLowEnd) return false;
        m_p += 2;
        return true;
    }

private:
    const unsigned char* m_p;
    const unsigned char* m_end;
};

// Code points above U+10FFFF pass through; the encoder decides what becomes of them.
template <typename Unit>
class Utf32Source {
public:
    Utf32Source(const unsigned char* begin, unsigned long units)
        : m_p(begin), m_end(begin + units * sizeof(Unit)) {}
    bool Done() const { return m_p >= m_end; }
    bool Next(uint32_t& c) {
        c = Load<Unit>(m_p);
        if (IsSurrogate(c)) return false;
        m_p += sizeof(Unit);
        return true;
    }

private:
    const unsigned char* m_p;
    const unsigned char* m_end;
};

// Encoders: Units() is the number of target units of a code point (0: not encodable); Put()
// stores them.
struct Utf8Target {
    static constexpr unsigned kUnitSize = 1;
    static unsigned Units(uint32_t c) {
        if (c < 0x80) return 1;
        if (c < 0x800) return 2;
        if (c < 0x10000) return 3;
        if (c <= kMaxCodePoint) return 4;
        return 3;  // written as U+FFFD
    }
    static void Put(unsigned char* p, uint32_t c, unsigned units) {
        static const unsigned char kLeadMarks[5] = {0x00, 0x00, 0xC0, 0xE0, 0xF0};
        if (c > kMaxCodePoint) c = kReplacementChar;
        for (unsigned i = units - 1; i > 0; --i) {
            p[i] = static_cast<unsigned char>((c & 0x3F) | 0x80);
            c >>= 6;
        }
        p[0] = static_cast<unsigned char>(c | kLeadMarks[units]);
    }
};

struct Utf16Target {
    static constexpr unsigned kUnitSize = 2;
    static unsigned Units(uint32_t c) {
        if (c < 0x10000) return 1;
        return c <= kMaxCodePoint ? 2 : 0;
    }
    static void Put(unsigned char* p, uint32_t c, unsigned units) {
        if (units == 1) {
            Store<uint16_t>(p, c);
            return;
        }
        c -= 0x10000;
        Store<uint16_t>(p, kSurrogateHighStart + (c >> 10));
        Store<uint16_t>(p + 2, kSurrogateLowStart + (c & 0x3FF));
    }
};

template <typename Unit>
struct Utf32Target {
    static constexpr unsigned kUnitSize = sizeof(Unit);
    static unsigned Units(uint32_t) { return 1; }
    static void Put(unsigned char* p, uint32_t c, unsigned) { Store<Unit>(p, c); }
};

// Measures (target null) or converts; see the header for the contract.
template <typename Target, typename Source>
unsigned long Run(Source source, unsigned char* target, unsigned long targetUnits) {
    const bool measuring = target == nullptr;
    unsigned long written = 0;
    while (!source.Done()) {
        uint32_t c;
        if (!source.Next(c)) return measuring ? 0 : written;
        const unsigned units = Target::Units(c);
        if (units == 0) return measuring ? 0 : written;
        if (!measuring) {
            if (targetUnits - written < units) return written;
            Target::Put(target + written * Target::kUnitSize, c, units);
        }
        written += units;
    }
    return written;
}

// Number of units between two pointers, 0 for a null or reversed range.
template <typename T>
unsigned long Span(const T* begin, const T* end) {
    return begin != nullptr && end > begin ? static_cast<unsigned long>(end - begin) : 0;
}

template <typename T>
const unsigned char* Bytes(const T* p) {
    return reinterpret_cast<const unsigned char*>(p);
}

template <typename T>
unsigned char* Bytes(T* p) {
    return reinterpret_cast<unsigned char*>(p);
}

}  // namespace

unsigned long ConvertUTF8toUTF16(const unsigned char* sourceBegin, const unsigned char* sourceEnd,
                                 unsigned short* targetBegin, unsigned short* targetEnd) {
    return Run<Utf16Target>(Utf8Source(sourceBegin, sourceBegin + Span(sourceBegin, sourceEnd)),
                            Bytes(targetBegin), Span(targetBegin, targetEnd));
}

unsigned long ConvertUTF8toUTF32(const unsigned char* sourceBegin, const unsigned char* sourceEnd,
                                 unsigned int* targetBegin, unsigned int* targetEnd) {
    return Run<Utf32Target<unsigned int>>(
        Utf8Source(sourceBegin, sourceBegin + Span(sourceBegin, sourceEnd)), Bytes(targetBegin),
        Span(targetBegin, targetEnd));
}

unsigned long ConvertUTF16toUTF8(const unsigned short* sourceBegin,
                                 const unsigned short* sourceEnd, unsigned char* targetBegin,
                                 unsigned char* targetEnd) {
    return Run<Utf8Target>(Utf16Source(Bytes(sourceBegin), Span(sourceBegin, sourceEnd)),
                           targetBegin, Span(targetBegin, targetEnd));
}

unsigned long ConvertUTF16toUTF32(const unsigned short* sourceBegin,
                                  const unsigned short* sourceEnd, unsigned int* targetBegin,
                                  unsigned int* targetEnd) {
    const unsigned long written = Run<Utf32Target<unsigned int>>(
        Utf16Source(Bytes(sourceBegin), Span(sourceBegin, sourceEnd)), Bytes(targetBegin),
        Span(targetBegin, targetEnd));
    // Converting calls report 0 on purpose: callers take the length from the measuring call.
    return targetBegin == nullptr ? written : 0;
}

unsigned long ConvertUTF32toUTF8(const unsigned int* sourceBegin, const unsigned int* sourceEnd,
                                 unsigned char* targetBegin, unsigned char* targetEnd) {
    return Run<Utf8Target>(
        Utf32Source<unsigned int>(Bytes(sourceBegin), Span(sourceBegin, sourceEnd)), targetBegin,
        Span(targetBegin, targetEnd));
}

unsigned long ConvertUTF32toUTF16(const unsigned int* sourceBegin, const unsigned int* sourceEnd,
                                  unsigned short* targetBegin, unsigned short* targetEnd) {
    return Run<Utf16Target>(
        Utf32Source<unsigned int>(Bytes(sourceBegin), Span(sourceBegin, sourceEnd)),
        Bytes(targetBegin), Span(targetBegin, targetEnd));
}

bool IsLegalUTF8(const unsigned char* source, int length) {
    if (source == nullptr || length < 1 || length > 4) return false;
    const unsigned char lead = source[0];
    if ((lead >= 0x80 && lead < 0xC2) || lead > 0xF4) return false;
    // The length must be the one the lead byte announces.
    if (SequenceLength(lead) != length) return false;
    for (int i = 1; i < length; ++i)
        if (source[i] < 0x80 || source[i] > 0xBF) return false;
    if (length == 1) return true;
    const unsigned char second = source[1];
    switch (lead) {
    case 0xE0: return second >= 0xA0;  // overlong three-byte form
    case 0xED: return second < 0xA0;   // surrogates
    case 0xF0: return second >= 0x90;  // overlong four-byte form
    case 0xF4: return second < 0x90;   // above U+10FFFF
    default: return true;
    }
}

bool IsLegalUTF8Sequence(const unsigned char* begin, const unsigned char* end) {
    if (begin == nullptr || end <= begin) return false;
    const int length = SequenceLength(*begin);
    if (length > end - begin) return false;
    return IsLegalUTF8(begin, length);
}

unsigned long UnicodeToUTF8(const wchar_t* source, unsigned long count, unsigned char* target,
                            unsigned long targetCount) {
    if (source == nullptr) count = 0;
    return Run<Utf8Target>(Utf32Source<wchar_t>(Bytes(source), count), target,
                           target ? targetCount : 0);
}

unsigned long UTF8ToUnicode(const unsigned char* source, unsigned long count, wchar_t* target,
                            unsigned long targetCount) {
    if (source == nullptr) count = 0;
    return Run<Utf32Target<wchar_t>>(Utf8Source(source, source + count), Bytes(target),
                                     target ? targetCount : 0);
}

unsigned long UnicodeToUTF16(const wchar_t* source, unsigned long count, unsigned char* target,
                             unsigned long targetUnits) {
    if (source == nullptr) count = 0;
    return Run<Utf16Target>(Utf32Source<wchar_t>(Bytes(source), count), target,
                            target ? targetUnits : 0);
}

unsigned long UTF16ToUnicode(const unsigned char* source, unsigned long units, wchar_t* target,
                             unsigned long targetCount) {
    if (source == nullptr) units = 0;
    const unsigned long written = Run<Utf32Target<wchar_t>>(
        Utf16Source(source, units), Bytes(target), target ? targetCount : 0);
    return target == nullptr ? written : 0;
}

bool DoesUnicodeStrContainAnyUTF8CharsLargerThanOneByte(const wchar_t* text, int count) {
    if (text == nullptr) return false;
    for (int i = count - 1; i >= 0; --i)
        if (static_cast<uint32_t>(text[i]) > 127) return true;
    return false;
}

bool DoesUTF8StrContainAnyCharsLargerThanOneByte(const unsigned char* text, unsigned long count) {
    if (text == nullptr) return false;
    for (unsigned long i = 0; i < count; ++i)
        if (text[i] > 127) return true;
    return false;
}

}  // namespace KxXmlLib16
