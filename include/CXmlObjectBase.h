// CXmlObjectBase: root of every bindable object (generated classes, collections, untyped
// elements). This part carries the reference count and the element name.
#ifndef KX_CXMLOBJECTBASE_H
#define KX_CXMLOBJECTBASE_H

#include <string>

#include "CKXCriticalSection.h"
#include "KxConfig.h"

namespace KxXmlLib16 {

class KX_EXPORT CXmlObjectBase {
public:
    // A new object has reference count 0: the first CSmartPtr (or AddRef) takes it to 1.
    CXmlObjectBase();
    // Copies the element name; the copy starts with its own count of 0 and its own lock.
    CXmlObjectBase(const CXmlObjectBase& other);
    // Assigns the element name only; counts and locks stay with their objects.
    CXmlObjectBase& operator=(const CXmlObjectBase& other);
    virtual ~CXmlObjectBase();

    // A deep copy whose reference count is 0 (wrap it in a CSmartPtr).
    virtual CXmlObjectBase* Clone() const = 0;

    // Raises the count under the object's lock; returns the new count.
    long long AddRef();
    // Lowers the count under the object's lock; at 0 the object destroys itself through its
    // virtual destructor. Returns the new count.
    long long Release();
    // The current count (for diagnostics and tests).
    long long GetRefCount() const;

    // The name under which the object is written and, after reading, the one it was read from.
    const std::string& GetElementName() const;
    void SetElementName(const char* name);

private:
    std::string m_elementName;
    mutable CKXCriticalSection m_refLock;
    long long m_refCount;
};

}  // namespace KxXmlLib16

#endif
