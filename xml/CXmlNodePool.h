// CXmlNodePool: the memory of a document's elements. Internal to the library.
#ifndef KX_CXMLNODEPOOL_H
#define KX_CXMLNODEPOOL_H

#include <atomic>
#include <cstddef>
#include <vector>

namespace KxXmlLib16 {

// Hands out element memory from large blocks, so that building a tree does not call malloc per
// element and freeing it does not call free per element. Every allocation is preceded by a
// header naming its pool (null for memory from the global heap), which lets CXmlElement's
// operator delete tell the two apart.
//
// The pool counts one reference for its document and one per live element: an element that was
// detached from the tree and outlives the document's cleanup keeps the blocks alive, and the
// last release frees them.
class CXmlNodePool {
public:
    // Room before each object for the header (objects need pointer alignment only).
    struct Header {
        CXmlNodePool* pool;
    };

    // A new pool holding the document's reference.
    static CXmlNodePool* Create();

    CXmlNodePool(const CXmlNodePool&) = delete;
    CXmlNodePool& operator=(const CXmlNodePool&) = delete;

    // Memory for an object of `size` bytes, after a header naming this pool; takes a reference.
    // Recycled memory of the same size is used first.
    void* Allocate(size_t size);
    // Takes back the memory of a destroyed object of `size` bytes for reuse and drops its
    // reference. Only the document's own thread may call it (it is not synchronised with
    // Allocate), which is why detached elements deleted by the caller are not recycled.
    void Recycle(void* object, size_t size);
    // The pool an object's memory came from (null for the heap).
    static CXmlNodePool* PoolOf(void* object);
    // Drops one reference (an element's, or the document's); the last one frees the pool.
    void Release();

    // Memory for an object of `size` bytes from the global heap, after a null header.
    static void* AllocateFromHeap(size_t size);
    // Frees memory from either source, given the object's address and size (0 if unknown).
    static void Free(void* object, size_t size);

private:
    // One block of object memory: from the heap while the pool is small, mapped with
    // transparent huge pages once it is large.
    struct Block {
        unsigned char* data;
        size_t size;
        bool mapped;
    };

    CXmlNodePool();
    ~CXmlNodePool();
    void AddBlock(size_t minimum);

    std::vector<Block> m_blocks;
    unsigned char* m_next;
    size_t m_left;
    // Recycled objects by size (elements and attributes), linked through their first bytes.
    struct FreeList {
        size_t size;
        void* head;
    };
    FreeList m_recycled[2];
    std::atomic<long> m_references;
};

}  // namespace KxXmlLib16

#endif
