#include "CFileBinaryStream.h"

#include <sys/stat.h>

#include <cstdio>

#include "CKxException.h"
#include "FormatString.h"

namespace KxXmlLib16 {

namespace {

// Removes a file whose bytes did not all reach it, so that a failed write leaves no truncated
// document behind. Only a regular file is removed, never a device such as /dev/full that was
// named as the path.
void Discard(bool regular, const std::string& path) {
    if (regular) std::remove(path.c_str());
}

bool IsRegularFile(std::FILE* file) {
    struct stat status;
    return fstat(fileno(file), &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace

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
    const bool regular = IsRegularFile(file);
    if (m_encoding == XmlEncoding_UTF16 || m_encoding == XmlEncoding_UTF16Undeclared) {
        static const unsigned char mark[2] = {0xFF, 0xFE};
        if (std::fwrite(mark, 1, sizeof mark, file) == 0) {
            std::fclose(file);
            Discard(regular, m_path);
            throw CKxException(message);
        }
    }
    const unsigned long length = m_data.GetLength();
    const size_t written = length != 0 ? std::fwrite(m_data.GetData(), 1, length, file) : 0;
    // A short write, or buffered bytes that cannot be flushed (a full disk), fail as well.
    const bool failed = written == 0 || written != length || std::ferror(file) != 0;
    if (std::fclose(file) != 0 || failed) {
        Discard(regular, m_path);
        throw CKxException(message);
    }
}

}  // namespace KxXmlLib16
