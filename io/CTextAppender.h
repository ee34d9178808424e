// CTextAppender: a text writer's output, written in place at the end of a text stream.
// Internal to the library.
#ifndef KX_CTEXTAPPENDER_H
#define KX_CTEXTAPPENDER_H

#include <cstddef>
#include <string>

#include "CTextStream.h"
#include "io/CopyShortBytes.h"

namespace KxXmlLib16 {

// Each operation of a text writer (a start tag, a value, an end tag) writes its characters
// straight into room the stream prepares at the end of its text (CTextStream::PrepareAppend)
// and commits them whole, so that they reach the stream as one piece without being copied
// there. Between operations the appender holds no room: any other change to the stream would
// void the pointer.
class CTextAppender {
public:
    explicit CTextAppender(CTextStream& stream) : m_stream(stream) {}
    CTextAppender(const CTextAppender&) = delete;
    CTextAppender& operator=(const CTextAppender&) = delete;

    // Makes room for `extra` more characters after those written.
    void Reserve(size_t extra) {
        if (m_length + extra > m_capacity) Grow(extra);
    }
    void Put(char c) {
        Reserve(1);
        m_room[m_length++] = c;
    }
    void Put(const char* text, size_t length) {
        Reserve(length);
        CopyShortBytes(m_room + m_length, text, length);
        m_length += length;
    }
    void Put(const std::string& text) { Put(text.data(), text.size()); }

    // For loops that write after a Reserve: where the next character goes, and the new end
    // once they have written (within the reserved room).
    char* End() { return m_room + m_length; }
    void SetEnd(char* end) { m_length = static_cast<size_t>(end - m_room); }
    // The number of characters the operation has written.
    size_t GetLength() const { return m_length; }

    // Makes what the operation wrote part of the stream's text and lets go of the room.
    void Commit() {
        if (m_length != 0) m_stream.CommitAppend(m_length);
        Discard();
    }
    // Lets go of the room without committing: what the operation wrote is dropped.
    void Discard() {
        m_room = nullptr;
        m_length = 0;
        m_capacity = 0;
    }

    // Discards on every way out of an operation, so that no pointer into the stream outlives
    // it (after a Commit there is nothing left to drop).
    class Scope {
    public:
        explicit Scope(CTextAppender& appender) : m_appender(appender) {}
        ~Scope() { m_appender.Discard(); }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        CTextAppender& m_appender;
    };

private:
    // Out of line, so that the test in Reserve stays small enough to inline everywhere.
    void Grow(size_t extra);

    CTextStream& m_stream;
    char* m_room = nullptr;
    size_t m_length = 0;
    size_t m_capacity = 0;
};

}  // namespace KxXmlLib16

#endif
