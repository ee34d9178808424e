// XSD pattern facets: matching a whole value against an XSD regular expression.
#ifndef KX_KXREGEX_H
#define KX_KXREGEX_H

#include <string>

#include "KxConfig.h"

namespace KxXmlLib16 {

// True when the whole value matches the XSD pattern (both UTF-8; the value is taken through the
// local code page first, up to its first zero byte). The XSD escapes \i \I \c \C, the blocks
// \p{IsBasicLatin}, \p{IsLatin-1Supplement}, \p{IsLatinExtended-A}, \p{IsLatinExtended-B} (and
// their \P complements) and character-class subtraction ("[a-z-[aeiou]]") are translated; the
// rest is handed to PCRE2 in UTF mode, anchored at both ends. \w and \d are ASCII-only. A value
// that is not valid UTF-8 does not match. Throws CKxException
// "Invalid Regular Expression: %s Error: '%s'" (the value, then PCRE2's error text) when the
// pattern does not compile. Safe to call from any thread.
KX_EXPORT bool TestRegEx(std::string pattern, std::string value);

}  // namespace KxXmlLib16

#endif
