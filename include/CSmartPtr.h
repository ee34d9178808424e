// CSmartPtr: an intrusive pointer over AddRef/Release of bindable objects.
#ifndef KX_CSMARTPTR_H
#define KX_CSMARTPTR_H

#include <cstddef>

#include "KxConfig.h"

namespace KxXmlLib16 {

// Holds one reference: construction from T* and copying raise the count, destruction and
// reassignment lower it.
template <typename T>
class CSmartPtr {
public:
    CSmartPtr() : m_ptr(nullptr) {}
    CSmartPtr(std::nullptr_t) : m_ptr(nullptr) {}
    CSmartPtr(T* ptr) : m_ptr(ptr) { Acquire(); }
    CSmartPtr(const CSmartPtr& other) : m_ptr(other.m_ptr) { Acquire(); }
    template <typename U>
    CSmartPtr(const CSmartPtr<U>& other) : m_ptr(other.Ptr()) { Acquire(); }
    CSmartPtr(CSmartPtr&& other) noexcept : m_ptr(other.m_ptr) { other.m_ptr = nullptr; }
    ~CSmartPtr() { Drop(); }

    CSmartPtr& operator=(const CSmartPtr& other) { return Reset(other.m_ptr); }
    CSmartPtr& operator=(T* ptr) { return Reset(ptr); }
    CSmartPtr& operator=(CSmartPtr&& other) noexcept {
        if (this != &other) {
            Drop();
            m_ptr = other.m_ptr;
            other.m_ptr = nullptr;
        }
        return *this;
    }

    T* Ptr() const { return m_ptr; }
    T* operator->() const { return m_ptr; }
    T& operator*() const { return *m_ptr; }
    operator T*() const { return m_ptr; }
    bool operator==(std::nullptr_t) const { return m_ptr == nullptr; }
    bool operator!=(std::nullptr_t) const { return m_ptr != nullptr; }

private:
    // Raises the new pointer's count before lowering the old one, so self-assignment is safe.
    CSmartPtr& Reset(T* ptr) {
        if (ptr) ptr->AddRef();
        T* old = m_ptr;
        m_ptr = ptr;
        if (old) old->Release();
        return *this;
    }
    void Acquire() {
        if (m_ptr) m_ptr->AddRef();
    }
    void Drop() {
        if (m_ptr) m_ptr->Release();
        m_ptr = nullptr;
    }

    T* m_ptr;
};

}  // namespace KxXmlLib16

#endif
