// Conversions between UTF-8, wide-character text and the local code page (the multibyte
// encoding of the process's current C locale, LC_CTYPE).
#ifndef KX_CENCODER_H
#define KX_CENCODER_H

#include <string>

#include "CBinaryData.h"
#include "KxConfig.h"

namespace KxXmlLib16 {

// Process-wide switch, false by default: when set, the local-code-page conversions copy bytes
// unchanged. Read without locking: set it once at start-up.
KX_EXPORT void ASCIIOnly(bool asciiOnly);
// The current state of the ASCIIOnly switch.
KX_EXPORT bool IsASCIIOnly();

// Static conversions; none throws library exceptions.
class KX_EXPORT CEncoder {
public:
    CEncoder() = delete;

    // UTF-8 text of `length` bytes to the local code page. Characters the locale cannot
    // represent become '?'. The caller's buffers are used when large enough (wideSize wide
    // characters, narrowSize bytes); otherwise heap buffers are used. With ASCIIOnly set the
    // bytes are returned unchanged. Empty input gives "" (and a zero byte in narrowBuffer).
    static std::string Utf8ToLocalCodePage(const unsigned char* utf8, int length,
                                           wchar_t* wideBuffer, unsigned long wideSize,
                                           char* narrowBuffer, unsigned long narrowSize);
    // As above for a NUL-terminated text.
    static std::string Utf8ToLocalCodePage(const char* utf8, wchar_t* wideBuffer,
                                           unsigned long wideSize, char* narrowBuffer,
                                           unsigned long narrowSize);
    // As above without caller buffers.
    static std::string Utf8ToLocalCodePage(const unsigned char* utf8, int length);
    static std::string Utf8ToLocalCodePage(const char* utf8);

    // A NUL-terminated local-code-page text as wide characters (4 bytes each, no terminator).
    // A byte sequence that does not convert becomes '?' and decoding resumes at the next byte.
    static CBinaryData LocalCodePageToUnicodeBinary(const char* text);
    // The same text as UTF-8 bytes; with ASCIIOnly set, the bytes unchanged.
    static CBinaryData LocalCodePageToUtf8Binary(const char* text);
    // True when LocalCodePageToUtf8Binary leaves the `length` bytes of `text` (which hold no
    // NUL) as they are: ASCII text in any locale, valid UTF-8 in a UTF-8 locale. Callers that
    // already hold the bytes can then use them without converting.
    static bool IsUtf8Unchanged(const char* text, size_t length);
    // A NUL-terminated wide text as UTF-8 bytes; empty for an empty text.
    static CBinaryData UnicodeToUtf8Binary(const wchar_t* text);

    // Not supported: always throws std::logic_error.
    static std::string Utf16ToLocalCodePage(const unsigned char* data, int length);
};

}  // namespace KxXmlLib16

#endif
