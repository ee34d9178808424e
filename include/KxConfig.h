// Build configuration shared by every public header: the export macro and feature switches.
#ifndef KX_CONFIG_H
#define KX_CONFIG_H

// The library is built with hidden visibility; public classes and functions carry KX_EXPORT.
#if defined(KX_BUILDING_LIBRARY)
#define KX_EXPORT __attribute__((visibility("default")))
#else
#define KX_EXPORT
#endif

#define KX_VERSION_MAJOR 16
#define KX_VERSION_MINOR 0
#define KX_VERSION_PATCH 0

// printf-style format checking for the message builders.
#if defined(__GNUC__)
#define KX_PRINTF_FORMAT(fmt, args) __attribute__((format(printf, fmt, args)))
#else
#define KX_PRINTF_FORMAT(fmt, args)
#endif

#endif
