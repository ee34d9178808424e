// libFuzzer target: the lexical parsers of the value layer. The first byte picks the parser
// and the whitespace rule, the rest is the text; for patterns, the text up to the first line
// feed is an XSD pattern and the rest the value tested against it (both kept short, so that
// PCRE2's match limit bounds the time). Rejections are CKxException; crashes, sanitizer
// reports, leaks and hangs are findings.
#include <cstddef>
#include <cstdint>
#include <string>

#include "KxXmlLib16.h"

using namespace KxXmlLib16;

namespace {

using Rule = CWhitespaceUtils::WhitespaceRule;

// Each parser, its result turned back into text where the value layer has that form.
void Parse(unsigned which, const std::string& text, Rule rule) {
    switch (which) {
        case 0: (void)CConversions::hexBinaryFromString(text, rule).GetLength(); break;
        case 1: (void)CConversions::base64BinaryFromString(text, rule).GetLength(); break;
        case 2: (void)CConversions::i1FromString(text, rule); break;
        case 3: (void)CConversions::i2FromString(text, rule); break;
        case 4: (void)CConversions::i4FromString(text, rule); break;
        case 5: (void)CConversions::i8FromString(text, rule); break;
        case 6: (void)CConversions::ui1FromString(text, rule); break;
        case 7: (void)CConversions::ui2FromString(text, rule); break;
        case 8: (void)CConversions::ui4FromString(text, rule); break;
        case 9: (void)CConversions::ui8FromString(text, rule); break;
        case 10: (void)CConversions::r4FromString(text, rule); break;
        case 11: (void)CConversions::r8FromString(text, rule); break;
        case 12: (void)CConversions::durationFromString(text, rule).ToString(); break;
        case 13: (void)CConversions::yearMonthFromString(text, rule).Format("s"); break;
        case 14: (void)CConversions::monthDayFromString(text, rule).Format("s"); break;
        case 15: (void)CConversions::dateFromString(text, rule).Format("s"); break;
        case 16: (void)CConversions::datetimeFromString(text, rule).Format("s"); break;
        case 17: (void)CConversions::timeFromString(text, rule).Format("s"); break;
        case 18: (void)CConversions::yearFromString(text, rule); break;
        case 19: (void)CConversions::monthFromString(text, rule); break;
        case 20: (void)CConversions::dayFromString(text, rule); break;
        case 21: (void)CConversions::charFromString(text, rule); break;
        case 22: (void)CConversions::stringFromString(text, rule); break;
        case 23: (void)CConversions::booleanFromString(text, rule); break;
        case 24: (void)CConversions::decimalFromString(text, rule).ToString(); break;
        case 25: (void)CConversions::integerFromString(text, rule).ToString(); break;
        case 26: {
            CDateTimeSpan span;
            span.ParseXSDDuration(text.c_str());
            break;
        }
        case 27: {
            CDateTime value;
            value.ParseDateTime(text.c_str());
            break;
        }
        case 28: {
            CBase64 base64;
            std::string out(text.size() + 1, '\0');
            (void)base64.Decode(text.c_str(), reinterpret_cast<unsigned char*>(&out[0]));
            break;
        }
        default: {
            const size_t split = text.find('\n');
            const std::string pattern = text.substr(0, split).substr(0, 64);
            const std::string value =
                split == std::string::npos ? std::string() : text.substr(split + 1, 64);
            (void)TestRegEx(pattern, value);
            break;
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size == 0) return 0;
    const unsigned which = data[0] % 30;
    const Rule rule = static_cast<Rule>((data[0] / 30) % 4);
    // Text up to the first NUL, as the C-string parsers see it.
    std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
    text.resize(std::char_traits<char>::length(text.c_str()));
    try {
        Parse(which, text, rule);
    } catch (const CKxException&) {
        // Rejected text: not a finding.
    }
    return 0;
}
