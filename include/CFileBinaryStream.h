// A finished byte buffer written to a file in one go, after a byte-order mark for UTF-16.
#ifndef KX_CFILEBINARYSTREAM_H
#define KX_CFILEBINARYSTREAM_H

#include <string>

#include "CBinaryData.h"
#include "CBinaryStream.h"
#include "KxConfig.h"
#include "KxTypes.h"

namespace KxXmlLib16 {

class KX_EXPORT CFileBinaryStream : public CBinaryStream {
public:
    // An empty stream for the file `path` (null as ""); `encoding` decides the byte-order mark.
    CFileBinaryStream(const char* path, XmlEncoding encoding);
    // The same, starting with the bytes of `data` (shared until either side changes them).
    CFileBinaryStream(const char* path, XmlEncoding encoding, const CBinaryData& data);
    ~CFileBinaryStream() override;

    // Creates (truncates) the file and writes FF FE for XmlEncoding_UTF16 and
    // XmlEncoding_UTF16Undeclared, then the bytes. Throws CKxException
    // "Failed to write data to the file [%s]." with the path when the file cannot be opened,
    // when nothing could be written (an empty buffer included), or when the bytes do not all
    // reach the file; the file is closed first and, when it is a regular file, removed, so that
    // no truncated document is left behind.
    void ToFile();

    const std::string& GetPath() const;
    XmlEncoding GetEncoding() const;

private:
    std::string m_path;
    XmlEncoding m_encoding;
};

}  // namespace KxXmlLib16

#endif
