// In-memory gzip and zlib compression of whole buffers (deflate through zlib).
#ifndef KX_CKXZIP_H
#define KX_CKXZIP_H

#include "CBinaryData.h"
#include "CInstanceMonitor.h"
#include "KxConfig.h"
#include "KxTypes.h"

namespace KxXmlLib16 {

// Compresses serialised output and inflates compressed input. It has no state: every operation
// is static, and an instance exists only for code that wants one.
class KX_EXPORT CKxZip : public CInstanceMonitor {
public:
    CKxZip();
    virtual ~CKxZip();

    // Compresses *length bytes at *data in place with the fastest deflate level:
    // CompressionType_GZip adds the gzip wrapper, CompressionType_ZLib the zlib wrapper; any
    // other type returns at once, leaving everything unchanged. The output may be no larger than
    // the input, so short or incompressible data fails. On success *data (which must come from
    // array new) is freed and replaced by a new array-new buffer holding the compressed bytes,
    // and *length by their count. Throws CKxException "Failed to compress data. [Error Code: %d]"
    // with zlib's result code, leaving *data and *length unchanged.
    static void Compress(unsigned char** data, unsigned long* length, CompressionType type);

    // Inflates gzip or zlib data (the wrapper is recognised from the header) in place. On success
    // *data (which must come from array new) is freed and replaced by a new array-new buffer
    // with the decompressed bytes, and *length by their count. Input that is not a complete
    // compressed stream (plain data, a cut or corrupt stream) is left unchanged; nothing is
    // reported and nothing is thrown.
    static void Decompress(unsigned char** data, unsigned long* length);

    // Compresses the bytes of `data` as Compress does; an empty value is left alone. Throws as
    // Compress, and `data` then keeps its bytes.
    static void CompressData(CBinaryData& data, CompressionType type);

    // True when the bytes start with a gzip header or a valid zlib header, the inputs that
    // Decompress attempts to inflate.
    static bool IsCompressed(const unsigned char* data, unsigned long length);
};

}  // namespace KxXmlLib16

#endif
