// A text stream whose text goes to a file as it is produced, encoded chunk by chunk.
#ifndef KX_CFILETEXTSTREAM_H
#define KX_CFILETEXTSTREAM_H

#include <cstdio>
#include <string>

#include "CBinaryData.h"
#include "CTextStream.h"
#include "KxConfig.h"
#include "KxTypes.h"

namespace KxXmlLib16 {

class KX_EXPORT CFileTextStream : public CTextStream {
public:
    // A closed stream that will write `path` (null as "") in `encoding`.
    CFileTextStream(const char* path, XmlEncoding encoding);
    // Closes the file if it is still open; buffered text that was not flushed is dropped.
    ~CFileTextStream() override;

    // Empties the buffer and creates (truncates) the file, writing FF FE first for the UTF-16
    // encodings. A file already open is closed first, unflushed. Throws CKxException
    // "Failed to write data to the file [%s]." with the path when the file cannot be opened or
    // the mark cannot be written.
    void Open() override;
    // Flushes, then closes the file. Throws as Flush, or CKxException
    // "Failed to write data to the file [%s]." when closing reports a write error.
    void Close() override;
    // Encodes the buffered text (see GetEncodedStream), writes it to the file and empties the
    // buffer; nothing happens when the buffer is empty. When the bytes cannot be written (or no
    // file is open) the file is closed and CKxException "Failed to write data to the file" is
    // thrown; the text stays in the buffer. Encoding errors are thrown as by GetEncodedStream.
    void Flush() override;

    const std::string& GetPath() const;

private:
    void CloseFile();

    std::string m_path;
    CBinaryData m_pending;
    std::FILE* m_file;
};

}  // namespace KxXmlLib16

#endif
