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

void CStringBuffer::AddNewBlock() {
    // One byte more than the capacity, zero-filled, so a lone block is always NUL-terminated.
    std::unique_ptr<char[]> block(new char[m_blockSize + 1]());
    m_blockSizes.reserve(m_blockSizes.size() + 1);
    m_blocks.push_back(std::move(block));
    m_blockSizes.push_back(m_blockSize);
    m_currentBlock = m_blocks.back().get();
    m_currentCapacity = m_blockSize;
    m_currentUsed = 0;
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
        return m_blocks.front().get();
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

void CStringBuffer::Empty() {
    if (m_blocks.size() == 1) {
        std::memset(m_currentBlock, 0, m_currentCapacity + 1);
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
