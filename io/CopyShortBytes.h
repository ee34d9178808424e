// Copying of the short pieces the text writers put together. Internal to the library.
#ifndef KX_COPYSHORTBYTES_H
#define KX_COPYSHORTBYTES_H

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace KxXmlLib16 {

// Copies `length` bytes, sizeof(Word) to twice that many, as two words that may overlap.
template <typename Word>
inline void CopyHeadAndTail(char* to, const char* from, size_t length) {
    Word head;
    Word tail;
    std::memcpy(&head, from, sizeof head);
    std::memcpy(&tail, from + length - sizeof tail, sizeof tail);
    std::memcpy(to, &head, sizeof head);
    std::memcpy(to + length - sizeof tail, &tail, sizeof tail);
}

// Copies `length` bytes. Most pieces of markup are short (names, prefixes, keys, indents, line
// ends): up to 16 bytes they are copied inline with two overlapping loads and stores, where a
// call to memcpy would cost more than the copy itself.
inline void CopyShortBytes(char* to, const char* from, size_t length) {
    if (length > 16) {
        std::memcpy(to, from, length);
    } else if (length >= 8) {
        CopyHeadAndTail<std::uint64_t>(to, from, length);
    } else if (length >= 4) {
        CopyHeadAndTail<std::uint32_t>(to, from, length);
    } else {
        for (size_t i = 0; i < length; ++i) to[i] = from[i];
    }
}

}  // namespace KxXmlLib16

#endif
