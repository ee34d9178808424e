// A text buffer made of a chain of fixed-size blocks: appending never moves what is already
// written; the blocks are joined once, when the whole text is asked for.
#ifndef KX_CSTRINGBUFFER_H
#define KX_CSTRINGBUFFER_H

#include <memory>
#include <string>
#include <vector>

#include "CInstanceMonitor.h"
#include "KxConfig.h"

namespace KxXmlLib16 {

class KX_EXPORT CStringBuffer : public CInstanceMonitor {
public:
    // Blocks of 4095 characters (4096 bytes with the terminating NUL).
    CStringBuffer();
    // Blocks of allocationSize - 1 characters, so each block takes allocationSize bytes; sizes
    // below 2 give blocks of one character.
    explicit CStringBuffer(unsigned int allocationSize);
    virtual ~CStringBuffer();
    CStringBuffer(const CStringBuffer&) = delete;
    CStringBuffer& operator=(const CStringBuffer&) = delete;

    // Append a NUL-terminated text (null appends nothing), a std::string up to its first NUL,
    // or one character.
    void Append(const char* text);
    void Append(const std::string& text);
    void Append(char c);
    // Append exactly `length` characters from `text` (NUL characters included).
    void Append(const char* text, size_t length);

    // In-place appending, for a producer that builds its text piece by piece: returns room for
    // `length` characters at the end of the text, whose first `pending` characters are those
    // the producer wrote at the pointer of its previous call (they move with the room when it
    // has to move); `room` receives the space available there. Nothing written becomes part
    // of the text until CommitAppend; any other change to the buffer voids the pointer.
    char* PrepareAppend(size_t pending, size_t length, size_t& room);
    // Makes the first `length` characters written at the prepared room part of the text.
    void CommitAppend(size_t length);

    // Clear(), then Append(text).
    void SetText(const char* text);

    // The whole text, NUL-terminated, never null. Several blocks are first joined into one;
    // the pointer is valid until the buffer next changes.
    const char* GetText();
    // Number of characters in the buffer.
    unsigned int GetLength() const;
    // Appends the whole text to `out` block by block, without joining the blocks first.
    void AppendTo(std::string& out) const;
    // Copies the whole text (GetLength() characters, no terminator) to `out` the same way.
    void CopyTo(char* out) const;

    // Makes the buffer empty, keeping the storage when it is a single block.
    void Empty();
    // Frees every block and makes the buffer empty.
    void Clear();

private:
    // Starts a block of `capacity` characters (at least the configured block size).
    void AddNewBlock(size_t capacity = 0);

    std::vector<std::unique_ptr<char[]>> m_blocks;
    // The characters used in each block; the last entry is brought up to date only when a
    // further block is started (m_currentUsed counts the current block).
    std::vector<unsigned int> m_blockSizes;
    unsigned int m_blockSize;
    unsigned int m_currentCapacity;
    unsigned int m_currentUsed;
    char* m_currentBlock;
    unsigned int m_totalLength;
};

}  // namespace KxXmlLib16

#endif
