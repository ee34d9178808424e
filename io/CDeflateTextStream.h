// CDeflateTextStream: compressed UTF-8 output, deflated as it is written. Internal to the library.
#ifndef KX_CDEFLATETEXTSTREAM_H
#define KX_CDEFLATETEXTSTREAM_H

#include <zlib.h>

#include <string>

#include "CBinaryData.h"
#include "CTextStream.h"
#include "KxTypes.h"

namespace KxXmlLib16 {

// A text stream whose every flush deflates the buffered text at once, while it is still in the
// cache, so that the whole text is never held: Finish gives exactly the bytes that encoding the
// whole text as UTF-8 and compressing it with CKxZip::CompressData would give.
//
// Deflating as it goes needs the text to be its own UTF-8: ASCII, or valid UTF-8 under a UTF-8
// code page. The first piece that is not (or that holds a NUL, where the whole-text conversion
// stops) turns the stream back into the general way: what was deflated is inflated again, and
// the text is gathered, converted and compressed at the end.
class CDeflateTextStream : public CTextStream {
public:
    // `compression` is CompressionType_GZip or CompressionType_ZLib.
    explicit CDeflateTextStream(CompressionType compression);
    ~CDeflateTextStream() override;
    CDeflateTextStream(const CDeflateTextStream&) = delete;
    CDeflateTextStream& operator=(const CDeflateTextStream&) = delete;

    void Open() override;
    void Close() override;
    void Flush() override;

    // The compressed bytes of all the text; throws as CKxZip::CompressData does. The stream is
    // done afterwards.
    CBinaryData Finish();

private:
    void Deflate(const char* text, size_t length, int flush);
    // Leaves deflating: the text so far goes back into m_gathered.
    void Gather();
    // True when the text is its own UTF-8 and holds no NUL, so it can go to deflate as it is.
    bool PassesThrough(const char* text, size_t length) const;

    CompressionType m_compression;
    z_stream m_zlib;
    bool m_deflating;
    // Set once deflate has written the end of the stream.
    bool m_finished;
    bool m_utf8CodePage;
    // Bytes given to deflate, and the compressed bytes it gave back.
    unsigned long m_consumed;
    CBinaryData m_output;
    // The text, once it no longer passes through.
    std::string m_gathered;
};

}  // namespace KxXmlLib16

#endif
