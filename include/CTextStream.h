// Text output held in memory, turned into the bytes of its character encoding on request.
#ifndef KX_CTEXTSTREAM_H
#define KX_CTEXTSTREAM_H

#include <string>

#include "CBinaryData.h"
#include "CInstanceMonitor.h"
#include "CStringBuffer.h"
#include "KxConfig.h"
#include "KxTypes.h"

namespace KxXmlLib16 {

class KX_EXPORT CTextStream : public CInstanceMonitor {
public:
    // An empty stream with encoding XmlEncoding_Unset.
    CTextStream();
    explicit CTextStream(XmlEncoding encoding);
    // `className` names the derived class for the instance monitor.
    CTextStream(const char* className, XmlEncoding encoding);
    virtual ~CTextStream();
    CTextStream(const CTextStream&) = delete;
    CTextStream& operator=(const CTextStream&) = delete;

    // Starts a new output: empties the buffer.
    virtual void Open();
    // Ends the output; nothing to do for a stream in memory.
    virtual void Close();
    // Passes buffered text on; nothing to do for a stream in memory.
    virtual void Flush();

    // Append one character, a NUL-terminated text, or a std::string up to its first NUL.
    void Append(char c);
    void Append(const char* text);
    void Append(const std::string& text);
    // Append exactly `length` characters from `text`, without looking for a NUL.
    void Append(const char* text, size_t length);

    // In-place appending for writers (see CStringBuffer::PrepareAppend): room for `length`
    // characters at the end of the text, the first `pending` of them carried over from the
    // previous call; `room` receives the space available. The text grows only by
    // CommitAppend; any other change to the stream voids the pointer.
    char* PrepareAppend(size_t pending, size_t length, size_t& room);
    void CommitAppend(size_t length);

    // The buffered text, NUL-terminated; valid until the stream next changes.
    const char* GetText() const;
    unsigned int GetLength() const;
    XmlEncoding GetEncoding() const;

    // The buffered text (in the local code page) as bytes of the stream's encoding: UTF-8 for
    // XmlEncoding_UTF8, UTF-16 little-endian without byte-order mark for XmlEncoding_UTF16 and
    // XmlEncoding_UTF16Undeclared. Throws CKxException
    // "Unknown Encoding, select UTF-8 (contact our support team)" for any other encoding.
    CBinaryData GetEncodedStream() const;

protected:
    // Joining the blocks for GetText changes the buffer's layout, not its text.
    mutable CStringBuffer m_buffer;
    XmlEncoding m_encoding;
};

}  // namespace KxXmlLib16

#endif
