#include "CKXCriticalSection.h"

namespace KxXmlLib16 {

CKXCriticalSection::CKXCriticalSection() {
    // Recursive, so that a holder that releases itself while locked does not deadlock.
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&m_mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

CKXCriticalSection::~CKXCriticalSection() { pthread_mutex_destroy(&m_mutex); }

void CKXCriticalSection::Enter() { pthread_mutex_lock(&m_mutex); }

void CKXCriticalSection::Leave() { pthread_mutex_unlock(&m_mutex); }

}  // namespace KxXmlLib16
