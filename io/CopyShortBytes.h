// Copying of the short pieces the text writers put together. Internal to the library.
#ifndef KX_COPYSHORTBYTES_H
#define KX_COPYSHORTBYTES_H

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace KxXmlLib16 {

// Copies `length` bytes. Most pieces of markup are short (names, prefixes, keys, indents, line
// ends): up to 16 bytes they are copied inline with two overlapping loads and stores, where a
// call to memcpy would cost more than the copy itself.
inline void CopyShortBytes(char* to, const char* from, size_t length) {
    if (length > 16) {
        std::memcpy(to, from, length);
    } else if (length >= 8) {
        std::uint64_t head;
        std::uint64_t tail;
        std::memcpy(&head, from, 8);
        std::memcpy(&tail, from + length - 8, 8);
        std::memcpy(to, &head, 8);
        std::memcpy(to + length - 8, &tail, 8);
    } else if (length >= 4) {
        std::uint32_t head;
        std::uint32_t tail;
        std::memcpy(&head, from, 4);
        std::memcpy(&tail, from + length - 4, 4);
        std::memcpy(to, &head, 4);
        std::memcpy(to + length - 4, &tail, 4);
    } else {
        for (size_t i = 0; i < length; ++i) to[i] = from[i];
    }
}

}  // namespace KxXmlLib16

#endif
