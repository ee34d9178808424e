// A lock around one POSIX mutex. The same thread may enter it again while holding it (the
// binary-data holder releases itself while locked); each Enter needs a matching Leave.
#ifndef KX_CKXCRITICALSECTION_H
#define KX_CKXCRITICALSECTION_H

#include <pthread.h>

#include "KxConfig.h"

namespace KxXmlLib16 {

class KX_EXPORT CKXCriticalSection {
public:
    CKXCriticalSection();
    ~CKXCriticalSection();
    CKXCriticalSection(const CKXCriticalSection&) = delete;
    CKXCriticalSection& operator=(const CKXCriticalSection&) = delete;

    void Enter();
    void Leave();

private:
    pthread_mutex_t m_mutex;
};

// Scoped Enter/Leave.
class KX_EXPORT CKXLock {
public:
    explicit CKXLock(CKXCriticalSection& section) : m_section(section) { m_section.Enter(); }
    ~CKXLock() { m_section.Leave(); }
    CKXLock(const CKXLock&) = delete;
    CKXLock& operator=(const CKXLock&) = delete;

private:
    CKXCriticalSection& m_section;
};

}  // namespace KxXmlLib16

#endif
