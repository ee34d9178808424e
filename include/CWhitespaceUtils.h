// The XSD whitespace facet (preserve, replace, collapse) applied to UTF-8 text.
#ifndef KX_CWHITESPACEUTILS_H
#define KX_CWHITESPACEUTILS_H

#include <string>

#include "KxConfig.h"

namespace KxXmlLib16 {

// Static operations; each returns a new string and never modifies its input. The whitespace
// characters are tab, line feed, carriage return and blank; bytes of multi-byte UTF-8
// sequences are never whitespace.
class KX_EXPORT CWhitespaceUtils {
public:
    enum WhitespaceRule {
        WhitespaceRule_None = 0,      // text used unchanged
        WhitespaceRule_Preserve = 1,  // line ends normalised to line feeds
        WhitespaceRule_Replace = 2,   // every whitespace character becomes a blank
        WhitespaceRule_Collapse = 3   // runs become one blank, leading/trailing removed
    };

    CWhitespaceUtils() = delete;

    // Dispatches on the rule (None returns a copy). Throws CKxException "Unknown WhitespaceRule"
    // for a rule outside 0 to 3.
    static std::string ApplyRule(WhitespaceRule rule, const std::string& text);

    // Carriage-return line-feed pairs and lone carriage returns become one line feed.
    static std::string Preserve(const std::string& text);
    // The same over the first `length` bytes of `text`.
    static std::string Preserve(const char* text, int length);
    // Tab, line feed and lone carriage return become a blank; a carriage-return line-feed pair
    // becomes one blank.
    static std::string Replace(const std::string& text);
    // Runs of whitespace become one blank; leading and trailing whitespace is removed.
    static std::string Collapse(const std::string& text);

    // True for tab, line feed, carriage return and blank.
    static bool IsWhiteSpace(char c);

    // True when ApplyRule(rule, text) would differ from `text`, and for an unknown rule (for
    // which ApplyRule throws). Lets callers skip building a copy in the common case.
    static bool ChangesText(WhitespaceRule rule, const std::string& text);
};

}  // namespace KxXmlLib16

#endif
