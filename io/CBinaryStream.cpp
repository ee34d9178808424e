#include "CBinaryStream.h"

namespace KxXmlLib16 {

CBinaryStream::CBinaryStream() : CInstanceMonitor("CBinaryStream") {}

CBinaryStream::CBinaryStream(const char* className) : CInstanceMonitor(className) {}

CBinaryStream::CBinaryStream(const CBinaryData& data)
    : CInstanceMonitor("CBinaryStream"), m_data(data) {}

CBinaryStream::CBinaryStream(const char* className, const CBinaryData& data)
    : CInstanceMonitor(className), m_data(data) {}

CBinaryStream::~CBinaryStream() = default;

void CBinaryStream::Append(unsigned char byte) { m_data.Append(byte); }

void CBinaryStream::Append(const CBinaryData& data) { m_data.Append(data); }

void CBinaryStream::Append(const unsigned char* data, unsigned long length) {
    m_data.Append(data, length);
}

CBinaryData CBinaryStream::GetBinaryStream() const { return m_data; }

}  // namespace KxXmlLib16
