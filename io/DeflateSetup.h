// The deflate settings every compressed output of the library shares. Internal to the library.
#ifndef KX_DEFLATESETUP_H
#define KX_DEFLATESETUP_H

#include <zlib.h>

#include "KxTypes.h"

namespace KxXmlLib16 {

// deflateInit of a zeroed `stream` with the fastest level, a 32 KB window and the default
// memory, and the gzip wrapper for CompressionType_GZip or the zlib one otherwise; returns
// zlib's result code.
int StartDeflate(z_stream* stream, CompressionType type);

}  // namespace KxXmlLib16

#endif
