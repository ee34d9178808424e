#include "CStringBuffer.h"

#include <algorithm>
#include <cstring>

namespace KxXmlLib16 {

namespace {
constexpr unsigned int kDefaultBlockSize = 4095;
}

CStringBuffer::CStringBuffer() : CStringBuffer(kDefaultBlockSize + 1) {}

CStringBuffer::CStringBuffer(unsigned int allocationSize)
    : CInstanceMonitor("CStringBuffer"),
      // A block must hold at least one character, or Append would never make progress.
      m_blockSize(allocationSize > 1 ? allocationSize - 1 : 1),
      m_currentCapacity(0),
      m_currentUsed(0),
      m_currentBlock(nullptr),
      m_totalLength(0) {}

CStringBuffer::~CStringBuffer() = default;

void CStringBuffer::AddNewBlock(size_t capacity) {
    const unsigned int size =
        capacity > m_blockSize ? static_cast<unsigned int>(capacity) : m_blockSize;
    // One byte more than the capacity, so a lone block can always be NUL-terminated in place
    // (GetText writes the NUL; nothing reads past the used characters).
    std::unique_ptr<char[]> block(new char[static_cast<size_t>(size) + 1]);
    // Both lists grow geometrically (reserving one more each time would copy them whole on
    // every block), and before anything changes, so a failure leaves them in step.
    if (m_blocks.size() == m_blocks.capacity()) {
        m_blocks.reserve(2 * m_blocks.size() + 16);
    }
    if (m_blockSizes.size() == m_blockSizes.capacity()) {
        m_blockSizes.reserve(2 * m_blockSizes.size() + 16);
    }
    // A block left with room to spare (see PrepareAppend) keeps only what it holds.
    if (!m_blockSizes.empty()) {
        m_blockSizes.back() = m_currentUsed;
    }
    m_blocks.push_back(std::move(block));
    m_blockSizes.push_back(size);
    m_currentBlock = m_blocks.back().get();
    m_currentCapacity = size;
    m_currentUsed = 0;
}

char* CStringBuffer::PrepareAppend(size_t pending, size_t length, size_t& room) {
    if (m_blocks.empty() || m_currentCapacity - m_currentUsed < length) {
        // The block left behind stays allocated, so the pending characters are copied from it.
        const char* previous = m_blocks.empty() ? nullptr : m_currentBlock + m_currentUsed;
        AddNewBlock(length);
        if (pending != 0) {
            std::memcpy(m_currentBlock, previous, pending);
        }
    }
    room = m_currentCapacity - m_currentUsed;
    return m_currentBlock + m_currentUsed;
}

void CStringBuffer::CommitAppend(size_t length) {
    m_currentUsed += static_cast<unsigned int>(length);
    m_totalLength += static_cast<unsigned int>(length);
}

void CStringBuffer::Append(const char* text, size_t length) {
    while (length > 0) {
        if (m_currentUsed == m_currentCapacity) {
            AddNewBlock();
        }
        const size_t chunk = std::min<size_t>(length, m_currentCapacity - m_currentUsed);
        std::memcpy(m_currentBlock + m_currentUsed, text, chunk);
        m_currentUsed += static_cast<unsigned int>(chunk);
        m_totalLength += static_cast<unsigned int>(chunk);
        text += chunk;
        length -= chunk;
    }
}

void CStringBuffer::Append(const char* text) {
    if (text != nullptr) {
        Append(text, std::strlen(text));
    }
}

void CStringBuffer::Append(const std::string& text) {
    Append(text.c_str(), std::strlen(text.c_str()));
}

void CStringBuffer::Append(char c) {
    if (m_currentUsed == m_currentCapacity) {
        AddNewBlock();
    }
    m_currentBlock[m_currentUsed++] = c;
    ++m_totalLength;
}

void CStringBuffer::SetText(const char* text) {
    Clear();
    Append(text);
}

const char* CStringBuffer::GetText() {
    static const char empty[] = "";
    if (m_blocks.empty()) {
        return empty;
    }
    if (m_blocks.size() == 1) {
        m_currentBlock[m_currentUsed] = '\0';
        return m_currentBlock;
    }
    std::unique_ptr<char[]> joined(new char[m_totalLength + 1]);
    char* out = joined.get();
    const size_t last = m_blocks.size() - 1;
    for (size_t i = 0; i < last; ++i) {
        std::memcpy(out, m_blocks[i].get(), m_blockSizes[i]);
        out += m_blockSizes[i];
    }
    std::memcpy(out, m_blocks[last].get(), m_currentUsed);
    out[m_currentUsed] = '\0';

    const unsigned int total = m_totalLength;
    Clear();
    // The joined text becomes the only block, full, so the next append starts a new block.
    m_blockSizes.push_back(total);
    m_blocks.push_back(std::move(joined));
    m_currentBlock = m_blocks.back().get();
    m_currentCapacity = total;
    m_currentUsed = total;
    m_totalLength = total;
    return m_currentBlock;
}

unsigned int CStringBuffer::GetLength() const { return m_totalLength; }

void CStringBuffer::AppendTo(std::string& out) const {
    if (m_blocks.empty()) {
        return;
    }
    out.reserve(out.size() + m_totalLength);
    const size_t last = m_blocks.size() - 1;
    for (size_t i = 0; i < last; ++i) {
        out.append(m_blocks[i].get(), m_blockSizes[i]);
    }
    out.append(m_currentBlock, m_currentUsed);
}

void CStringBuffer::CopyTo(char* out) const {
    if (m_blocks.empty()) {
        return;
    }
    const size_t last = m_blocks.size() - 1;
    for (size_t i = 0; i < last; ++i) {
        std::memcpy(out, m_blocks[i].get(), m_blockSizes[i]);
        out += m_blockSizes[i];
    }
    std::memcpy(out, m_currentBlock, m_currentUsed);
}

void CStringBuffer::Empty() {
    if (m_blocks.size() == 1) {
        m_currentBlock[0] = '\0';
        m_currentUsed = 0;
        m_totalLength = 0;
    } else {
        Clear();
    }
}

void CStringBuffer::Clear() {
    m_blocks.clear();
    m_blockSizes.clear();
    m_currentBlock = nullptr;
    m_currentCapacity = 0;
    m_currentUsed = 0;
    m_totalLength = 0;
}

}  // namespace KxXmlLib16
