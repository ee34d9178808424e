// gzip and zlib compression over zlib's deflate and inflate.
#include "CKxZip.h"

#include <zlib.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <memory>

#include "CKxException.h"
#include "FormatString.h"
#include "io/DeflateSetup.h"

namespace KxXmlLib16 {

namespace {

// Window bits of a 32 KB window; adding 16 selects the gzip wrapper, adding 32 lets inflate
// recognise either wrapper from the header.
const int kWindowBits = 15;
const int kGzipWrapper = 16;
const int kDetectWrapper = 32;
const int kFastestLevel = 1;
const int kMemoryLevel = 8;
// Output window handed to each inflate call; the result grows only by what inflate produced.
const unsigned long kInflateWindow = 65536;

// zlib counts input and output in 32-bit unsigned ints; larger buffers go in pieces.
uInt Piece(unsigned long remaining) {
    return static_cast<uInt>(std::min<unsigned long>(remaining, UINT_MAX));
}

[[noreturn]] void ThrowCompressFailure(int code) {
    throw CKxException(FormatString("Failed to compress data. [Error Code: %d]", code));
}

// Ends a deflate or inflate stream however the scope is left.
class ZStream {
public:
    explicit ZStream(bool deflating) : m_deflating(deflating) {
        std::memset(&m_stream, 0, sizeof m_stream);
    }
    ZStream(const ZStream&) = delete;
    ZStream& operator=(const ZStream&) = delete;
    ~ZStream() {
        if (!m_started) return;
        if (m_deflating) {
            deflateEnd(&m_stream);
        } else {
            inflateEnd(&m_stream);
        }
    }
    z_stream* Get() { return &m_stream; }
    void Started() { m_started = true; }

private:
    z_stream m_stream;
    bool m_deflating;
    bool m_started = false;
};

// Feeds the next piece of input when zlib has used up the current one.
void RefillInput(z_stream* stream, const unsigned char* data, unsigned long length,
                 unsigned long& consumed) {
    if (stream->avail_in != 0 || consumed >= length) return;
    const uInt piece = Piece(length - consumed);
    stream->next_in = const_cast<Bytef*>(data + consumed);
    stream->avail_in = piece;
    consumed += piece;
}

}  // namespace

int StartDeflate(z_stream* stream, CompressionType type) {
    return type == CompressionType_GZip
               ? deflateInit2(stream, kFastestLevel, Z_DEFLATED, kWindowBits + kGzipWrapper,
                              kMemoryLevel, Z_DEFAULT_STRATEGY)
               : deflateInit(stream, kFastestLevel);
}

CKxZip::CKxZip() : CInstanceMonitor("CKxZip") {}

CKxZip::~CKxZip() = default;

void CKxZip::Compress(unsigned char** data, unsigned long* length, CompressionType type) {
    if (type != CompressionType_GZip && type != CompressionType_ZLib) return;
    if (data == nullptr || length == nullptr) return;

    const unsigned long inputLength = *length;
    const unsigned char* input = *data;
    // Exactly the input's size: data that does not shrink is refused, not expanded.
    std::unique_ptr<unsigned char[]> output(new unsigned char[inputLength == 0 ? 1 : inputLength]);

    ZStream zs(true);
    z_stream* stream = zs.Get();
    const int init = StartDeflate(stream, type);
    if (init != Z_OK) ThrowCompressFailure(init);
    zs.Started();

    stream->next_out = output.get();
    stream->avail_out = Piece(inputLength);
    unsigned long outputGiven = stream->avail_out;
    // Extends the output window when zlib's counter could not describe all of it at once.
    auto extendOutput = [&]() {
        if (stream->avail_out != 0 || outputGiven >= inputLength) return false;
        const uInt more = Piece(inputLength - outputGiven);
        stream->avail_out = more;
        outputGiven += more;
        return true;
    };

    // One deflate call without flushing and one to finish; buffers beyond zlib's 32-bit
    // counters take a call per piece.
    unsigned long consumed = 0;
    do {
        RefillInput(stream, input, inputLength, consumed);
        deflate(stream, Z_NO_FLUSH);
        extendOutput();
    } while ((stream->avail_in != 0 || consumed < inputLength) && stream->avail_out != 0);
    int result;
    do {
        result = deflate(stream, Z_FINISH);
    } while (result == Z_OK && extendOutput());
    if (result != Z_STREAM_END || consumed < inputLength) ThrowCompressFailure(result);

    const unsigned long compressedLength = static_cast<unsigned long>(stream->total_out);
    delete[] *data;
    *data = output.release();
    *length = compressedLength;
}

void CKxZip::Decompress(unsigned char** data, unsigned long* length) {
    if (data == nullptr || length == nullptr) return;
    const unsigned char* input = *data;
    const unsigned long inputLength = *length;
    // inflate would refuse these at the header anyway; this avoids setting up a stream.
    if (!IsCompressed(input, inputLength)) return;

    ZStream zs(false);
    z_stream* stream = zs.Get();
    if (inflateInit2(stream, kWindowBits + kDetectWrapper) != Z_OK) return;
    zs.Started();

    std::unique_ptr<unsigned char[]> window(new unsigned char[kInflateWindow]);
    CBinaryData result;
    unsigned long consumed = 0;
    int status = Z_OK;
    while (true) {
        RefillInput(stream, input, inputLength, consumed);
        stream->next_out = window.get();
        stream->avail_out = static_cast<uInt>(kInflateWindow);
        status = inflate(stream, Z_NO_FLUSH);
        result.Append(window.get(), kInflateWindow - stream->avail_out);
        // Z_BUF_ERROR (no progress possible: the stream was cut short), data errors and a
        // request for a preset dictionary all end the attempt.
        if (status != Z_OK) break;
    }
    if (status != Z_STREAM_END) return;

    const unsigned long outputLength = result.GetLength();
    unsigned char* output = result.ReleaseData();
    // An empty stream still gets a buffer of its own, so callers can tell success apart.
    if (output == nullptr) output = new unsigned char[1];
    delete[] *data;
    *data = output;
    *length = outputLength;
}

void CKxZip::CompressData(CBinaryData& data, CompressionType type) {
    if (data.GetLength() == 0) return;
    if (type != CompressionType_GZip && type != CompressionType_ZLib) return;
    unsigned long length = data.GetLength();
    unsigned char* bytes = data.ReleaseData();
    try {
        Compress(&bytes, &length, type);
    } catch (...) {
        data = CBinaryData(bytes, length, true);
        throw;
    }
    data = CBinaryData(bytes, length, true);
}

bool CKxZip::IsCompressed(const unsigned char* data, unsigned long length) {
    if (data == nullptr || length < 2) return false;
    if (data[0] == 0x1F && data[1] == 0x8B) return true;
    // RFC 1950: method 8 (deflate), a window of at most 32 KB, and a header that is a multiple
    // of 31.
    const unsigned header = (static_cast<unsigned>(data[0]) << 8) | data[1];
    return (data[0] & 0x0F) == Z_DEFLATED && (data[0] >> 4) <= 7 && header % 31 == 0;
}

}  // namespace KxXmlLib16
