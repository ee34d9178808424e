// Whitespace facet: one pass over the input into a buffer of its length (a result is never
// longer than its input), nothing allocated per character.
#include "CWhitespaceUtils.h"

#include <cstring>

#include "CKxException.h"

namespace KxXmlLib16 {

namespace {

inline bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

// Carriage-return line-feed pairs and lone carriage returns become `lineEnd`; with `replaceAll`,
// tab and line feed become a blank too.
std::string NormaliseLineEnds(const char* text, size_t length, char lineEnd, bool replaceAll) {
    std::string result(length, '\0');
    char* out = &result[0];
    char* const start = out;
    for (size_t i = 0; i < length; ++i) {
        const char c = text[i];
        if (c == '\r') {
            if (i + 1 < length && text[i + 1] == '\n') ++i;
            *out++ = lineEnd;
        } else if (replaceAll && (c == '\t' || c == '\n')) {
            *out++ = ' ';
        } else {
            *out++ = c;
        }
    }
    result.resize(static_cast<size_t>(out - start));
    return result;
}

bool HasCarriageReturn(const char* text, size_t length) {
    return length != 0 && std::memchr(text, '\r', length) != nullptr;
}

bool HasReplaceable(const std::string& text) {
    for (char c : text)
        if (c == '\t' || c == '\n' || c == '\r') return true;
    return false;
}

// Collapse leaves a text unchanged when no whitespace leads or trails, every inner whitespace
// character is a single blank.
bool NeedsCollapse(const std::string& text) {
    if (text.empty()) return false;
    if (IsSpace(text.front()) || IsSpace(text.back())) return true;
    bool previousBlank = false;
    for (char c : text) {
        if (c == '\t' || c == '\n' || c == '\r') return true;
        const bool blank = c == ' ';
        if (blank && previousBlank) return true;
        previousBlank = blank;
    }
    return false;
}

}  // namespace

std::string CWhitespaceUtils::ApplyRule(WhitespaceRule rule, const std::string& text) {
    switch (rule) {
    case WhitespaceRule_None: return text;
    case WhitespaceRule_Preserve: return Preserve(text);
    case WhitespaceRule_Replace: return Replace(text);
    case WhitespaceRule_Collapse: return Collapse(text);
    }
    throw CKxException("Unknown WhitespaceRule");
}

std::string CWhitespaceUtils::Preserve(const std::string& text) {
    if (!HasCarriageReturn(text.data(), text.size())) return text;
    return NormaliseLineEnds(text.data(), text.size(), '\n', false);
}

std::string CWhitespaceUtils::Preserve(const char* text, int length) {
    if (text == nullptr || length <= 0) return std::string();
    const size_t size = static_cast<size_t>(length);
    if (!HasCarriageReturn(text, size)) return std::string(text, size);
    return NormaliseLineEnds(text, size, '\n', false);
}

std::string CWhitespaceUtils::Replace(const std::string& text) {
    if (!HasReplaceable(text)) return text;
    return NormaliseLineEnds(text.data(), text.size(), ' ', true);
}

std::string CWhitespaceUtils::Collapse(const std::string& text) {
    if (!NeedsCollapse(text)) return text;
    std::string result(text.size(), '\0');
    char* out = &result[0];
    char* const start = out;
    bool lastWasSpace = true;  // drops leading whitespace
    for (char c : text) {
        if (!IsSpace(c)) {
            *out++ = c;
            lastWasSpace = false;
        } else if (!lastWasSpace) {
            *out++ = ' ';
            lastWasSpace = true;
        }
    }
    if (out != start && lastWasSpace) --out;
    result.resize(static_cast<size_t>(out - start));
    return result;
}

bool CWhitespaceUtils::IsWhiteSpace(char c) { return IsSpace(c); }

bool CWhitespaceUtils::ChangesText(WhitespaceRule rule, const std::string& text) {
    switch (rule) {
    case WhitespaceRule_None: return false;
    case WhitespaceRule_Preserve: return HasCarriageReturn(text.data(), text.size());
    case WhitespaceRule_Replace: return HasReplaceable(text);
    case WhitespaceRule_Collapse: return NeedsCollapse(text);
    }
    return true;
}

}  // namespace KxXmlLib16
