// printf-style message building, used for every message the library throws.
#ifndef KX_FORMATSTRING_H
#define KX_FORMATSTRING_H

#include <cstdarg>
#include <string>

#include "KxConfig.h"

namespace KxXmlLib16 {

// Formats like vsnprintf into a string of exactly the needed length, however long.
KX_EXPORT std::string FormatString(const char* format, ...) KX_PRINTF_FORMAT(1, 2);
KX_EXPORT std::string FormatV(const char* format, va_list args);

}  // namespace KxXmlLib16

#endif
