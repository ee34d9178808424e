// Character encoders between UTF-8, wide characters and the local code page (LC_CTYPE).
#include "CEncoder.h"

#include <atomic>
#include <climits>
#include <cstring>
#include <cwchar>
#include <langinfo.h>
#include <memory>
#include <stdexcept>
#include <vector>

#include "ConvertUTF.h"

namespace KxXmlLib16 {

namespace {

// Atomic only so that a late write is not a data race; relaxed order is all it needs.
std::atomic<bool> g_asciiOnly{false};

const size_t kInvalid = static_cast<size_t>(-1);
const size_t kIncomplete = static_cast<size_t>(-2);

// A buffer supplied by the caller when it holds `needed` elements, else one on the heap.
template <typename T>
class ScratchBuffer {
public:
    ScratchBuffer(T* callerBuffer, unsigned long callerSize, size_t needed, size_t heapSize) {
        if (callerBuffer != nullptr && callerSize >= needed) {
            m_data = callerBuffer;
        } else {
            m_heap.reset(new T[heapSize]);
            m_data = m_heap.get();
        }
    }
    T* Get() const { return m_data; }

private:
    std::unique_ptr<T[]> m_heap;
    T* m_data;
};

// Wide characters of a NUL-terminated local-code-page text; undecodable bytes become '?' one by
// one.
std::vector<wchar_t> DecodeLocalCodePage(const char* text) {
    std::vector<wchar_t> wide;
    if (text == nullptr) return wide;
    const size_t length = std::strlen(text);
    wide.resize(length + 1);
    std::mbstate_t state{};
    size_t count = 0;
    size_t position = 0;
    while (position < length) {
        wchar_t c = 0;
        const size_t used = std::mbrtowc(&c, text + position, length - position, &state);
        if (used == kInvalid || used == kIncomplete) {
            c = L'?';
            state = std::mbstate_t{};
            position += 1;
        } else {
            position += used == 0 ? 1 : used;
        }
        wide[count++] = c;
    }
    wide.resize(count);
    return wide;
}

// The first byte at or after `p` that is not ASCII (or `end`), eight bytes at a time.
const unsigned char* SkipAscii(const unsigned char* p, const unsigned char* end) {
    unsigned long long word;
    while (end - p >= 8) {
        std::memcpy(&word, p, sizeof word);
        if ((word & 0x8080808080808080ull) != 0) break;
        p += 8;
    }
    while (p != end && *p < 0x80) ++p;
    return p;
}

// True when decoding `text` in the current locale and encoding it as UTF-8 gives the same bytes:
// ASCII text in any locale (every locale's charset is ASCII-compatible), and valid UTF-8 when
// the locale's charset is UTF-8. Lets the common cases skip the per-character conversion.
bool IsUnchangedByUtf8RoundTrip(const char* text, size_t length) {
    const unsigned char* const end = reinterpret_cast<const unsigned char*>(text) + length;
    const unsigned char* p = SkipAscii(reinterpret_cast<const unsigned char*>(text), end);
    if (p == end) return true;
    if (std::strcmp(nl_langinfo(CODESET), "UTF-8") != 0) return false;
    while (p != end) {
        if (!IsLegalUTF8Sequence(p, end)) return false;
        p = SkipAscii(p + (*p >= 0xF0 ? 4 : *p >= 0xE0 ? 3 : 2), end);
    }
    return true;
}

CBinaryData WideToUtf8(const wchar_t* text, size_t count) {
    if (count == 0) return CBinaryData();
    const bool multiByte = count > INT_MAX ||
                           DoesUnicodeStrContainAnyUTF8CharsLargerThanOneByte(
                               text, static_cast<int>(count));
    const unsigned long size = multiByte ? UnicodeToUTF8(text, count, nullptr, 0) : count;
    if (size == 0) return CBinaryData();
    std::unique_ptr<unsigned char[]> bytes(new unsigned char[size]);
    const unsigned long written = UnicodeToUTF8(text, count, bytes.get(), size);
    CBinaryData result(bytes.get(), written, true);
    bytes.release();
    return result;
}

}  // namespace

void ASCIIOnly(bool asciiOnly) { g_asciiOnly.store(asciiOnly, std::memory_order_relaxed); }

bool IsASCIIOnly() { return g_asciiOnly.load(std::memory_order_relaxed); }

std::string CEncoder::Utf8ToLocalCodePage(const unsigned char* utf8, int length,
                                          wchar_t* wideBuffer, unsigned long wideSize,
                                          char* narrowBuffer, unsigned long narrowSize) {
    if (utf8 == nullptr || length <= 0) {
        if (narrowBuffer != nullptr && narrowSize > 0) narrowBuffer[0] = '\0';
        return std::string();
    }
    const size_t byteCount = static_cast<size_t>(length);
    if (IsASCIIOnly()) return std::string(reinterpret_cast<const char*>(utf8), byteCount);
    // Text that converts to itself (ASCII, or valid UTF-8 under a UTF-8 code page) skips the
    // two passes of wcrtomb per character; it still lands in a caller's narrow buffer that is
    // large enough, as the conversion would have put it there.
    if (wideBuffer == nullptr &&
        IsUnchangedByUtf8RoundTrip(reinterpret_cast<const char*>(utf8), byteCount)) {
        if (narrowBuffer != nullptr && narrowSize >= byteCount + 1) {
            std::memcpy(narrowBuffer, utf8, byteCount);
            narrowBuffer[byteCount] = '\0';
        }
        return std::string(reinterpret_cast<const char*>(utf8), byteCount);
    }

    ScratchBuffer<wchar_t> wide(wideBuffer, wideSize, byteCount + 1, byteCount + 1);
    size_t wideCount;
    if (DoesUTF8StrContainAnyCharsLargerThanOneByte(utf8, byteCount)) {
        // The measuring call gives the length of the valid text; converting stops at the first
        // invalid sequence, so take what it wrote when the text is not valid throughout.
        wideCount = UTF8ToUnicode(utf8, byteCount, wide.Get(), byteCount + 1);
    } else {
        for (size_t i = 0; i < byteCount; ++i) wide.Get()[i] = static_cast<wchar_t>(utf8[i]);
        wideCount = byteCount;
    }

    char scratch[MB_LEN_MAX];
    std::mbstate_t state{};
    size_t measured = 0;
    for (size_t i = 0; i < wideCount; ++i) {
        const size_t used = std::wcrtomb(scratch, wide.Get()[i], &state);
        if (used == kInvalid) {
            state = std::mbstate_t{};
            measured += 1;
        } else {
            measured += used;
        }
    }

    ScratchBuffer<char> narrow(narrowBuffer, narrowSize, measured + 1, measured + 2);
    char* out = narrow.Get();
    state = std::mbstate_t{};
    size_t written = 0;
    for (size_t i = 0; i < wideCount; ++i) {
        const size_t used = std::wcrtomb(out + written, wide.Get()[i], &state);
        if (used == kInvalid) {
            state = std::mbstate_t{};
            out[written++] = '?';
        } else {
            written += used;
        }
    }
    out[written] = '\0';
    return std::string(out, written);
}

std::string CEncoder::Utf8ToLocalCodePage(const char* utf8, wchar_t* wideBuffer,
                                          unsigned long wideSize, char* narrowBuffer,
                                          unsigned long narrowSize) {
    const size_t length = utf8 == nullptr ? 0 : std::strlen(utf8);
    return Utf8ToLocalCodePage(reinterpret_cast<const unsigned char*>(utf8),
                               length > INT_MAX ? INT_MAX : static_cast<int>(length), wideBuffer,
                               wideSize, narrowBuffer, narrowSize);
}

std::string CEncoder::Utf8ToLocalCodePage(const unsigned char* utf8, int length) {
    return Utf8ToLocalCodePage(utf8, length, nullptr, 0, nullptr, 0);
}

std::string CEncoder::Utf8ToLocalCodePage(const char* utf8) {
    return Utf8ToLocalCodePage(utf8, nullptr, 0, nullptr, 0);
}

CBinaryData CEncoder::LocalCodePageToUnicodeBinary(const char* text) {
    const std::vector<wchar_t> wide = DecodeLocalCodePage(text);
    if (wide.empty()) return CBinaryData();
    return CBinaryData(reinterpret_cast<const unsigned char*>(wide.data()),
                       static_cast<unsigned long>(wide.size() * sizeof(wchar_t)), false);
}

CBinaryData CEncoder::LocalCodePageToUtf8Binary(const char* text) {
    if (IsASCIIOnly()) return CBinaryData(text);
    if (text != nullptr && IsUnchangedByUtf8RoundTrip(text, std::strlen(text)))
        return CBinaryData(text);
    const std::vector<wchar_t> wide = DecodeLocalCodePage(text);
    return WideToUtf8(wide.data(), wide.size());
}

bool CEncoder::IsUtf8Unchanged(const char* text, size_t length) {
    return IsASCIIOnly() || IsUnchangedByUtf8RoundTrip(text, length);
}

CBinaryData CEncoder::UnicodeToUtf8Binary(const wchar_t* text) {
    if (text == nullptr) return CBinaryData();
    return WideToUtf8(text, std::wcslen(text));
}

std::string CEncoder::Utf16ToLocalCodePage(const unsigned char*, int) {
    // Never supported: fails as building a std::string from a null pointer does.
    throw std::logic_error("basic_string: construction from null is not valid");
}

}  // namespace KxXmlLib16
