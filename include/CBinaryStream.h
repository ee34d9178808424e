// Binary output collected in memory in a CBinaryData.
#ifndef KX_CBINARYSTREAM_H
#define KX_CBINARYSTREAM_H

#include "CBinaryData.h"
#include "CInstanceMonitor.h"
#include "KxConfig.h"

namespace KxXmlLib16 {

class KX_EXPORT CBinaryStream : public CInstanceMonitor {
public:
    // An empty stream.
    CBinaryStream();
    // `className` names the derived class for the instance monitor.
    explicit CBinaryStream(const char* className);
    // A stream that starts with the bytes of `data`, shared until either side changes them.
    explicit CBinaryStream(const CBinaryData& data);
    CBinaryStream(const char* className, const CBinaryData& data);
    virtual ~CBinaryStream();

    // Append one byte, the bytes of a value, or `length` bytes (amortised linear).
    void Append(unsigned char byte);
    void Append(const CBinaryData& data);
    void Append(const unsigned char* data, unsigned long length);

    // A copy (sharing the bytes) of everything appended so far.
    CBinaryData GetBinaryStream() const;

protected:
    CBinaryData m_data;
};

}  // namespace KxXmlLib16

#endif
