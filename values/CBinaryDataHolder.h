// The shared storage behind CBinaryData values: the bytes, their reference count and the lock
// that guards both.
#ifndef KX_CBINARYDATAHOLDER_H
#define KX_CBINARYDATAHOLDER_H

#include <atomic>

#include "CBinaryData.h"
#include "CKXCriticalSection.h"

namespace KxXmlLib16 {

class CBinaryData::CDataHolder {
public:
    // Takes ownership of an array-new buffer of `length` bytes (capacity = length).
    static CDataHolder* Adopt(unsigned char* data, unsigned long length);
    // Copies `length` bytes into a new buffer with room to grow (see CopyCapacity).
    static CDataHolder* Copy(const unsigned char* data, unsigned long length);

    CDataHolder(const CDataHolder&) = delete;
    CDataHolder& operator=(const CDataHolder&) = delete;

    void AddRef();
    // Drops one reference; the last one destroys the holder. With keepData the bytes are left
    // to the caller instead of being freed, and a holder that is still shared throws
    // CKxException "Failed to release data. [RefCount=%d]" (keeping the caller's reference).
    void Release(bool keepData);

    // True when no other value shares this holder. Only the one value that holds it could then
    // add a sharer, so its owner may read and write the bytes without taking the lock.
    bool IsExclusive() const { return m_refCount.load(std::memory_order_acquire) < 2; }

    unsigned char* GetData() const { return m_data; }
    unsigned long GetLength() const { return m_length; }
    // Stands for the position just past the data, which an adopted buffer does not have.
    unsigned char& GetSpareByte() { return m_spare; }

    // Appends n bytes without locking when the holder is unshared and has room for them;
    // returns false (doing nothing) otherwise.
    bool TryAppendInPlace(const unsigned char* bytes, unsigned long n);
    // Appends n bytes; `bytes` may point into this holder's own buffer. Throws CKxException
    // "Failed to append. [RefCount=%d]" when the holder is shared.
    void Append(const unsigned char* bytes, unsigned long n);

    // This holder when it is not shared; otherwise a new unshared copy of the bytes, this
    // holder losing the caller's reference.
    CDataHolder* GetExclusiveCopy();

private:
    CDataHolder(unsigned char* data, unsigned long length, unsigned long capacity);
    ~CDataHolder();

    // Room given to a copying holder: twice the length as a 32-bit int, at least 8192, and
    // never less than the length itself (for lengths where the doubling overflows).
    static unsigned long CopyCapacity(unsigned long length);

    unsigned char* m_data;
    unsigned long m_length;
    unsigned long m_capacity;
    // Changed only under m_lock; atomic so that IsExclusive may read it without the lock.
    std::atomic<long> m_refCount;
    CKXCriticalSection m_lock;
    unsigned char m_spare;
};

}  // namespace KxXmlLib16

#endif
