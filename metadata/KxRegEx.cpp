// XSD pattern facets over PCRE2: the XSD-only constructs are rewritten into PCRE2 syntax, the
// result is anchored as a whole and matched against the complete value.
#define PCRE2_CODE_UNIT_WIDTH 8
#include "KxRegEx.h"

#include <pcre2.h>

#include <cstring>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include "CBinaryData.h"
#include "CEncoder.h"
#include "CKxException.h"
#include "FormatString.h"

namespace KxXmlLib16 {

namespace {

// Stands in for an escaped backslash while the escapes are rewritten, so that "\\i" stays a
// backslash followed by the letter i.
const char kEscapedBackslash = '\x01';

// The name-character escapes, each matching exactly one character. \w and \d are ASCII-only in
// PCRE2 without UCP, so \i is [A-Za-z_:] and \c is [A-Za-z0-9_.:-]; the complements are exact:
// "not (a word character other than a digit, or a colon)" is "not a word character and not a
// colon, or a digit".
const char kNameStart[] = "([^\\W\\d]|:)";        // \i
const char kNotNameStart[] = "([^\\w:]|\\d)";     // \I
const char kNameChar[] = "(\\w|\\.|-|:)";         // \c
const char kNotNameChar[] = "([^\\w\\.\\-\\:])";  // \C

struct Block {
    const char* name;   // as written between the braces of \p{...}
    const char* range;  // class items of the block
};

const Block kBlocks[] = {
    {"IsBasicLatin", "\\x{0}-\\x{7F}"},
    {"IsLatin-1Supplement", "\\x{80}-\\x{FF}"},
    {"IsLatinExtended-A", "\\x{100}-\\x{17F}"},
    {"IsLatinExtended-B", "\\x{180}-\\x{24F}"},
};

// The block named by "\p{" or "\P{" at `at`, with the length of the whole escape; null when
// the text there is not one of the translated blocks.
const Block* FindBlock(const std::string& text, size_t at, size_t& escapeLength) {
    if (at + 2 >= text.size() || text[at + 2] != '{') return nullptr;
    for (const Block& block : kBlocks) {
        const size_t nameLength = std::strlen(block.name);
        if (text.compare(at + 3, nameLength, block.name) == 0 &&
            at + 3 + nameLength < text.size() && text[at + 3 + nameLength] == '}') {
            escapeLength = nameLength + 4;
            return &block;
        }
    }
    return nullptr;
}

const char* NameEscape(char letter) {
    switch (letter) {
        case 'i': return kNameStart;
        case 'I': return kNotNameStart;
        case 'c': return kNameChar;
        case 'C': return kNotNameChar;
        default: return nullptr;
    }
}

// One XSD character class as parsed: PCRE2 class items, the name escapes it contains (each an
// expression matching one character), and an optional subtracted class.
struct CharClass {
    bool negated = false;
    std::string items;
    std::vector<std::string> escapes;
    std::unique_ptr<CharClass> subtracted;
    bool needsRewrite = false;  // false: PCRE2 reads the original text the same way
};

// Parses the class whose '[' is at `at`; on success `end` is just past its ']'. False for a
// class that is not closed; the caller then leaves the text to PCRE2 to report.
bool ParseClass(const std::string& text, size_t at, CharClass& cls, size_t& end) {
    size_t i = at + 1;
    if (i < text.size() && text[i] == '^') {
        cls.negated = true;
        ++i;
    }
    const size_t first = i;
    while (i < text.size()) {
        const char c = text[i];
        if (c == ']' && i != first) {
            end = i + 1;
            return true;
        }
        if (c == ']') {  // first in the class: a literal, as PCRE2 reads it
            cls.items += "\\]";
            ++i;
        } else if (c == '-' && i + 1 < text.size() && text[i + 1] == '[') {
            cls.subtracted.reset(new CharClass());
            size_t inner = 0;
            if (!ParseClass(text, i + 1, *cls.subtracted, inner)) return false;
            if (inner >= text.size() || text[inner] != ']') return false;
            cls.needsRewrite = true;
            end = inner + 1;
            return true;
        } else if (c == '\\' && i + 1 < text.size()) {
            size_t escapeLength = 0;
            const char* nameEscape = NameEscape(text[i + 1]);
            const char escapeLetter = text[i + 1];
            const Block* block = (escapeLetter == 'p' || escapeLetter == 'P')
                                     ? FindBlock(text, i, escapeLength)
                                     : nullptr;
            if (nameEscape != nullptr) {
                cls.escapes.push_back(nameEscape);
                cls.needsRewrite = true;
                i += 2;
            } else if (block != nullptr && escapeLetter == 'p') {
                cls.items += block->range;
                cls.needsRewrite = true;
                i += escapeLength;
            } else if (block != nullptr) {
                cls.escapes.push_back(std::string("[^") + block->range + "]");
                cls.needsRewrite = true;
                i += escapeLength;
            } else {
                cls.items.append(text, i, 2);
                i += 2;
            }
        } else {
            cls.items += c;
            ++i;
        }
    }
    return false;
}

std::string Join(const std::vector<std::string>& parts) {
    std::string joined;
    for (const std::string& part : parts) {
        if (!joined.empty()) joined += '|';
        joined += part;
    }
    return joined;
}

// A PCRE2 expression matching exactly the characters of the class.
std::string EmitClass(const CharClass& cls) {
    // A leading '^' in the items would turn the rebuilt class into a negated one.
    const std::string items =
        (!cls.items.empty() && cls.items[0] == '^') ? "\\" + cls.items : cls.items;
    std::string base;
    if (cls.negated) {
        base = items.empty() ? std::string("[\\s\\S]") : "[^" + items + "]";
        if (!cls.escapes.empty()) base = "(?:(?!" + Join(cls.escapes) + ")" + base + ")";
    } else {
        std::vector<std::string> choices;
        if (!items.empty()) choices.push_back("[" + items + "]");
        choices.insert(choices.end(), cls.escapes.begin(), cls.escapes.end());
        if (choices.empty())
            base = "(?!)";  // nothing left: matches no character
        else if (choices.size() == 1)
            base = choices[0];
        else
            base = "(?:" + Join(choices) + ")";
    }
    if (!cls.subtracted) return base;
    return "(?:(?!" + EmitClass(*cls.subtracted) + ")" + base + ")";
}

// Rewrites the XSD-only constructs of a pattern whose escaped backslashes are already protected.
// Outside classes: \i \I \c \C as the name expressions and the blocks as bracketed ranges, every
// occurrence; a character class is rebuilt only when it holds one of those or a subtraction.
std::string RewriteEscapes(const std::string& text) {
    std::string out;
    out.reserve(text.size() * 2);
    size_t i = 0;
    while (i < text.size()) {
        const char c = text[i];
        if (c == '\\' && i + 1 < text.size()) {
            size_t escapeLength = 0;
            const char* nameEscape = NameEscape(text[i + 1]);
            const char escapeLetter = text[i + 1];
            const Block* block = (escapeLetter == 'p' || escapeLetter == 'P')
                                     ? FindBlock(text, i, escapeLength)
                                     : nullptr;
            if (nameEscape != nullptr) {
                out += nameEscape;
                i += 2;
            } else if (block != nullptr) {
                out += escapeLetter == 'p' ? "[" : "[^";
                out += block->range;
                out += ']';
                i += escapeLength;
            } else {
                out.append(text, i, 2);
                i += 2;
            }
        } else if (c == '[') {
            CharClass cls;
            size_t end = 0;
            if (!ParseClass(text, i, cls, end)) {
                out.append(text, i, std::string::npos);
                break;
            }
            if (cls.needsRewrite)
                out += EmitClass(cls);
            else
                out.append(text, i, end - i);
            i = end;
        } else {
            out += c;
            ++i;
        }
    }
    return out;
}

std::string ReplaceAll(const std::string& text, const std::string& from, const std::string& to) {
    std::string out;
    out.reserve(text.size());
    size_t start = 0;
    for (size_t found = text.find(from); found != std::string::npos;
         found = text.find(from, start)) {
        out.append(text, start, found - start);
        out += to;
        start = found + from.size();
    }
    out.append(text, start, std::string::npos);
    return out;
}

// The PCRE2 pattern for an XSD pattern: escapes rewritten, anchored as a whole.
std::string TranslatePattern(const std::string& pattern) {
    const std::string protectedText =
        ReplaceAll(pattern, "\\\\", std::string(1, kEscapedBackslash));
    const std::string rewritten =
        ReplaceAll(RewriteEscapes(protectedText), std::string(1, kEscapedBackslash), "\\\\");
    return "^(" + rewritten + ")$";
}

struct CodeDeleter {
    void operator()(pcre2_code* code) const { pcre2_code_free(code); }
};
struct MatchDataDeleter {
    void operator()(pcre2_match_data* data) const { pcre2_match_data_free(data); }
};

using CodePtr = std::unique_ptr<pcre2_code, CodeDeleter>;
using MatchDataPtr = std::unique_ptr<pcre2_match_data, MatchDataDeleter>;

// A compiled pattern is read-only once built, so threads may match with it at the same time,
// each with match data of its own.
struct CompiledPattern {
    CodePtr code;
    uint32_t captureCount = 0;
};

using CompiledPatternPtr = std::shared_ptr<const CompiledPattern>;

// Compiles the translated pattern in UTF mode; the message names the value being tested.
CompiledPatternPtr Compile(const std::string& translated, const std::string& value) {
    int errorCode = 0;
    PCRE2_SIZE errorOffset = 0;
    auto compiled = std::make_shared<CompiledPattern>();
    compiled->code.reset(pcre2_compile(reinterpret_cast<PCRE2_SPTR>(translated.c_str()),
                                       PCRE2_ZERO_TERMINATED, PCRE2_UTF, &errorCode, &errorOffset,
                                       nullptr));
    if (!compiled->code) {
        PCRE2_UCHAR errorText[256];
        if (pcre2_get_error_message(errorCode, errorText, sizeof(errorText)) < 0) errorText[0] = 0;
        throw CKxException(FormatString("Invalid Regular Expression: %s Error: '%s'", value.c_str(),
                                        reinterpret_cast<char*>(errorText)));
    }
    pcre2_pattern_info(compiled->code.get(), PCRE2_INFO_CAPTURECOUNT, &compiled->captureCount);
    return compiled;
}

// Compiling costs about ten matches of a short value, and schemas use few distinct patterns,
// so compiled patterns are kept, keyed by the XSD pattern text (the translation is a pure
// function of it). Only successful compilations are kept: a bad pattern is reported on every
// call, each time naming that call's value. Bounded; when full, the oldest entry goes. Entries
// are shared, so one evicted while another thread still matches with it stays alive until that
// match ends.
class PatternCache {
public:
    static const size_t kCapacity = 256;

    CompiledPatternPtr Find(const std::string& pattern) {
        std::lock_guard<std::mutex> lock(m_mutex);
        const auto found = m_entries.find(pattern);
        return found != m_entries.end() ? found->second : CompiledPatternPtr();
    }

    void Insert(const std::string& pattern, const CompiledPatternPtr& compiled) {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_entries.emplace(pattern, compiled).second) return;  // another thread was first
        m_order.push_back(pattern);
        if (m_order.size() > kCapacity) {
            m_entries.erase(m_order.front());
            m_order.pop_front();
        }
    }

private:
    std::mutex m_mutex;
    std::unordered_map<std::string, CompiledPatternPtr> m_entries;
    std::deque<std::string> m_order;  // insertion order, oldest first
};

// Never destroyed: a thread may still test a pattern while the process exits.
PatternCache& Cache() {
    static PatternCache* cache = new PatternCache();
    return *cache;
}

CompiledPatternPtr CompiledFor(const std::string& pattern, const std::string& value) {
    CompiledPatternPtr compiled = Cache().Find(pattern);
    if (!compiled) {
        compiled = Compile(TranslatePattern(pattern), value);
        Cache().Insert(pattern, compiled);
    }
    return compiled;
}

// Match data of the calling thread, with room for the whole match and every capture (the
// offset vector of n + 1 pairs). Kept between calls: a match reuses its memory.
pcre2_match_data* ThreadMatchData(uint32_t captureCount) {
    thread_local MatchDataPtr matchData;
    if (!matchData || pcre2_get_ovector_count(matchData.get()) < captureCount + 1)
        matchData.reset(pcre2_match_data_create(captureCount + 1, nullptr));
    return matchData.get();
}

}  // namespace

bool TestRegEx(std::string pattern, std::string value) {
    const CompiledPatternPtr compiled = CompiledFor(pattern, value);
    pcre2_match_data* matchData = ThreadMatchData(compiled->captureCount);
    if (matchData == nullptr) return false;

    const CBinaryData subject = CEncoder::LocalCodePageToUtf8Binary(value.c_str());
    const char* bytes =
        subject.GetData() != nullptr ? reinterpret_cast<const char*>(subject.GetData()) : "";
    const size_t length = ::strnlen(bytes, subject.GetLength());

    // A negative answer is no match, a subject that is not valid UTF-8, or a resource limit:
    // none of them is a match.
    const int result = pcre2_match(compiled->code.get(), reinterpret_cast<PCRE2_SPTR>(bytes),
                                   length, 0, PCRE2_ANCHORED, matchData, nullptr);
    if (result < 0) return false;
    const PCRE2_SIZE* offsets = pcre2_get_ovector_pointer(matchData);
    return offsets[0] == 0 && offsets[1] == length;
}

}  // namespace KxXmlLib16
