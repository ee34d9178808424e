#include "CFileTextStream.h"

#include "CKxException.h"
#include "FormatString.h"

namespace KxXmlLib16 {

CFileTextStream::CFileTextStream(const char* path, XmlEncoding encoding)
    : CTextStream("CFileTextStream", encoding),
      m_path(path != nullptr ? path : ""),
      m_file(nullptr) {}

CFileTextStream::~CFileTextStream() {
    if (m_file != nullptr) {
        std::fclose(m_file);
    }
}

const std::string& CFileTextStream::GetPath() const { return m_path; }

void CFileTextStream::CloseFile() {
    if (m_file != nullptr) {
        std::fclose(m_file);
        m_file = nullptr;
    }
}

void CFileTextStream::Open() {
    m_buffer.Empty();
    m_pending.Clear();
    CloseFile();
    const std::string message =
        FormatString("Failed to write data to the file [%s].", m_path.c_str());
    m_file = std::fopen(m_path.c_str(), "wt");
    if (m_file == nullptr) {
        throw CKxException(message);
    }
    if (m_encoding == XmlEncoding_UTF16 || m_encoding == XmlEncoding_UTF16Undeclared) {
        static const unsigned char mark[2] = {0xFF, 0xFE};
        if (std::fwrite(mark, 1, sizeof mark, m_file) == 0) {
            CloseFile();
            throw CKxException(message);
        }
    }
}

void CFileTextStream::Flush() {
    if (m_buffer.GetLength() == 0) {
        return;
    }
    m_pending = GetEncodedStream();
    const unsigned long length = m_pending.GetLength();
    bool written = m_file != nullptr;
    if (written && length != 0) {
        // Each flush carries at least a few kilobytes, so pushing them through stdio's buffer
        // at once costs little and reports a full disk here, while the text is still held.
        written = std::fwrite(m_pending.GetData(), 1, length, m_file) == length &&
                  std::fflush(m_file) == 0;
    }
    m_pending.Clear();
    if (!written) {
        CloseFile();
        throw CKxException("Failed to write data to the file");
    }
    m_buffer.Empty();
}

void CFileTextStream::Close() {
    Flush();
    if (m_file != nullptr) {
        const int result = std::fclose(m_file);
        m_file = nullptr;
        if (result != 0) {
            throw CKxException(
                FormatString("Failed to write data to the file [%s].", m_path.c_str()));
        }
    }
}

}  // namespace KxXmlLib16
