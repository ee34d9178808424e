#include "CXmlObjectBase.h"

namespace KxXmlLib16 {

CXmlObjectBase::CXmlObjectBase() : m_refCount(0) {}

CXmlObjectBase::CXmlObjectBase(const CXmlObjectBase& other)
    : m_elementName(other.m_elementName), m_refCount(0) {}

CXmlObjectBase& CXmlObjectBase::operator=(const CXmlObjectBase& other) {
    m_elementName = other.m_elementName;
    return *this;
}

CXmlObjectBase::~CXmlObjectBase() = default;

long long CXmlObjectBase::AddRef() {
    CKXLock lock(m_refLock);
    return ++m_refCount;
}

long long CXmlObjectBase::Release() {
    long long remaining;
    {
        CKXLock lock(m_refLock);
        remaining = --m_refCount;
    }
    // The lock is left before the object (and the mutex inside it) is destroyed.
    if (remaining == 0) delete this;
    return remaining;
}

long long CXmlObjectBase::GetRefCount() const {
    CKXLock lock(m_refLock);
    return m_refCount;
}

const std::string& CXmlObjectBase::GetElementName() const { return m_elementName; }

void CXmlObjectBase::SetElementName(const char* name) { m_elementName = name ? name : ""; }

}  // namespace KxXmlLib16
