#include "FormatString.h"

#include <cstdio>

namespace KxXmlLib16 {

std::string FormatV(const char* format, va_list args) {
    va_list measure;
    va_copy(measure, args);
    const int needed = std::vsnprintf(nullptr, 0, format, measure);
    va_end(measure);
    if (needed <= 0) return std::string();
    std::string text(static_cast<size_t>(needed), '\0');
    // vsnprintf writes the terminating NUL into the string's own terminator slot.
    std::vsnprintf(&text[0], text.size() + 1, format, args);
    return text;
}

std::string FormatString(const char* format, ...) {
    va_list args;
    va_start(args, format);
    std::string text = FormatV(format, args);
    va_end(args);
    return text;
}

}  // namespace KxXmlLib16
