// CXmlNodePool: the memory of a document's elements. Internal to the library.
#ifndef KX_CXMLNODEPOOL_H
#define KX_CXMLNODEPOOL_H

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace KxXmlLib16 {

// Hands out element memory from large blocks, so that building a tree does not call malloc per
// element and freeing it does not call free per element. Every allocation is preceded by a
// header naming its pool (null for memory from the global heap), which lets CXmlElement's
// operator delete tell the two apart.
//
// The pool also holds one copy of each name (local names and namespace URIs) that its nodes
// share, so that a node stores a pointer instead of a string.
//
// The pool counts one reference for its document and one per live node: a node that was
// detached from the tree and outlives the document's cleanup keeps the blocks and the names
// alive, and the last release frees them. The document's thread takes references in batches,
// so that building and freeing a tree costs an atomic operation per batch, not per node.
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
    // Drops the document's reference; the pool goes once no node is left either.
    void ReleaseDocument();

    // The pool's copy of a name, valid as long as the pool: the same text always gives the
    // same copy. Like Allocate, for the thread that builds the tree.
    const std::string* Intern(std::string_view name);
    // Intern for namespace URIs: a document uses few, mostly one after another, so the last
    // one is checked first.
    const std::string* InternNamespace(std::string_view ns);
    // The empty name, shared by every pool.
    static const std::string* EmptyName();

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
    // Drops `count` references; the last one frees the pool.
    void Release(long count);
    // The name table twice as large.
    void GrowNames();
    // A copy of the name in the pool's name storage (not looked up, not indexed).
    const std::string* StoreName(std::string_view name);

    std::vector<Block> m_blocks;
    unsigned char* m_next;
    size_t m_left;
    // Recycled objects by size (elements and attributes), linked through their first bytes.
    struct FreeList {
        size_t size;
        void* head;
    };
    FreeList m_recycled[2];
    // The document's reference, the live nodes' and the unused part of the current batch.
    std::atomic<long> m_references;
    // References taken but not handed out yet (touched by the document's thread only).
    long m_credit;

    // Names: the texts, in chunks that never move, and an open-addressing hash table of
    // pointers to them, a power of two in size and at most half full. The table is bounded
    // (in size and in the length of a search), so that a document of endless distinct or
    // colliding names costs a copy per node, as unshared names would, and never a long search.
    // The first table and the first chunk are part of the pool, so that a small document's
    // names cost no allocation of their own.
    struct NameSlot {
        size_t hash;
        const std::string* name;
    };
    static const size_t kFirstSlots = 16;
    static const size_t kFirstNames = 8;
    NameSlot m_firstSlots[kFirstSlots];
    std::string m_firstNames[kFirstNames];
    NameSlot* m_slots;
    size_t m_slotCount;
    std::unique_ptr<NameSlot[]> m_grownSlots;
    // The chunk being filled, and the chunks allocated after the first.
    std::string* m_chunk;
    size_t m_chunkUsed;
    size_t m_chunkSize;
    std::vector<std::unique_ptr<std::string[]>> m_nameChunks;
    size_t m_nameCount;
    const std::string* m_lastNamespace;
};

}  // namespace KxXmlLib16

#endif
