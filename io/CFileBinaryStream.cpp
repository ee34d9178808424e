#include "CFileBinaryStream.h"

#include <cstdio>

#include "CKxException.h"
#include "FormatString.h"

namespace KxXmlLib16 {

CFileBinaryStream::CFileBinaryStream(const char* path, XmlEncoding encoding)
    : CBinaryStream("CFileBinaryStream"),
      m_path(path != nullptr ? path : ""),
      m_encoding(encoding) {}

CFileBinaryStream::CFileBinaryStream(const char* path, XmlEncoding encoding,
                                     const CBinaryData& data)
    : CBinaryStream("CFileBinaryStream", data),
      m_path(path != nullptr ? path : ""),
      m_encoding(encoding) {}

CFileBinaryStream::~CFileBinaryStream() = default;

const std::string& CFileBinaryStream::GetPath() const { return m_path; }

XmlEncoding CFileBinaryStream::GetEncoding() const { return m_encoding; }

void CFileBinaryStream::ToFile() {
    const std::string message =
        FormatString("Failed to write data to the file [%s].", m_path.c_str());
    std::FILE* file = std::fopen(m_path.c_str(), "wt");
    if (file == nullptr) {
        throw CKxException(message);
    }
    if (m_encoding == XmlEncoding_UTF16 || m_encoding == XmlEncoding_UTF16Undeclared) {
        static const unsigned char mark[2] = {0xFF, 0xFE};
        if (std::fwrite(mark, 1, sizeof mark, file) == 0) {
            std::fclose(file);
            throw CKxException(message);
        }
    }
    const unsigned long length = m_data.GetLength();
    const size_t written = length != 0 ? std::fwrite(m_data.GetData(), 1, length, file) : 0;
    if (written == 0) {
        std::fclose(file);
        throw CKxException(message);
    }
    // A short write, or buffered bytes that cannot be flushed (a full disk), fail as well.
    const bool failed = written != length || std::ferror(file) != 0;
    if (std::fclose(file) != 0 || failed) {
        throw CKxException(message);
    }
}

}  // namespace KxXmlLib16
