// Growing the room of an in-place append.
#include "io/CTextAppender.h"

#include <algorithm>

namespace KxXmlLib16 {

void CTextAppender::Grow(size_t extra) {
    // Moving to a new block copies what the operation wrote so far: the room at least doubles,
    // so a long escaped text is not copied over and over.
    m_room = m_stream.PrepareAppend(m_length, std::max(m_length + extra, 2 * m_length), m_capacity);
}

}  // namespace KxXmlLib16
