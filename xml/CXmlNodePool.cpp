// Block allocation of the elements of a document.
#include "xml/CXmlNodePool.h"

#include <sys/mman.h>

#include <cstdint>
#include <new>

// Under AddressSanitizer, pool memory that holds no live object is poisoned, so that a use of a
// freed or recycled node is reported as it would be for heap memory.
#if defined(__SANITIZE_ADDRESS__)
#define KX_POOL_ASAN 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define KX_POOL_ASAN 1
#endif
#endif
#if defined(KX_POOL_ASAN)
#include <sanitizer/asan_interface.h>
#define KX_POISON(address, size) ASAN_POISON_MEMORY_REGION(address, size)
#define KX_UNPOISON(address, size) ASAN_UNPOISON_MEMORY_REGION(address, size)
#else
#define KX_POISON(address, size) ((void)(address), (void)(size))
#define KX_UNPOISON(address, size) ((void)(address), (void)(size))
#endif

namespace KxXmlLib16 {

namespace {

// Blocks start small, so that a small document costs little, and double up to huge-page size.
// Large trees then sit in transparent huge pages: one page fault per 2 MB instead of one per
// 4 KB, and fewer TLB misses when they are walked.
const size_t kFirstBlockSize = 4 * 1024;
const size_t kHugePageSize = 2 * 1024 * 1024;
const size_t kAlignment = alignof(CXmlNodePool::Header);

size_t RoundUp(size_t size) { return (size + kAlignment - 1) & ~(kAlignment - 1); }

CXmlNodePool::Header* HeaderOf(void* object) {
    return reinterpret_cast<CXmlNodePool::Header*>(static_cast<unsigned char*>(object) -
                                                   sizeof(CXmlNodePool::Header));
}

}  // namespace

CXmlNodePool::CXmlNodePool()
    : m_next(nullptr), m_left(0), m_recycled{{0, nullptr}, {0, nullptr}}, m_references(1) {}

CXmlNodePool::~CXmlNodePool() {
    for (const Block& block : m_blocks) {
        KX_UNPOISON(block.data, block.size);
        if (block.mapped) {
            munmap(block.data, block.size);
        } else {
            delete[] block.data;
        }
    }
}

CXmlNodePool* CXmlNodePool::Create() { return new CXmlNodePool(); }

void CXmlNodePool::AddBlock(size_t minimum) {
    size_t size = m_blocks.empty() ? kFirstBlockSize : m_blocks.back().size * 2;
    if (size > kHugePageSize) size = kHugePageSize;
    if (size < minimum) size = minimum;
    m_blocks.reserve(m_blocks.size() + 1);
    Block block{nullptr, size, false};
    if (size == kHugePageSize) {
        // Map twice the size and keep the aligned half: huge pages need 2 MB alignment.
        void* mapped =
            mmap(nullptr, 2 * size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (mapped != MAP_FAILED) {
            const uintptr_t start = reinterpret_cast<uintptr_t>(mapped);
            const uintptr_t aligned = (start + size - 1) & ~(uintptr_t{size} - 1);
            if (aligned > start) munmap(mapped, aligned - start);
            if (aligned + size < start + 2 * size) {
                munmap(reinterpret_cast<void*>(aligned + size), start + 2 * size - aligned - size);
            }
            block.data = reinterpret_cast<unsigned char*>(aligned);
            block.mapped = true;
#ifdef MADV_HUGEPAGE
            madvise(block.data, size, MADV_HUGEPAGE);
#endif
        }
    }
    if (block.data == nullptr) block.data = new unsigned char[size];
    KX_POISON(block.data, size);
    m_blocks.push_back(block);
    m_next = block.data;
    m_left = size;
}

void* CXmlNodePool::Allocate(size_t size) {
    for (FreeList& list : m_recycled) {
        if (list.size == size && list.head != nullptr) {
            void* object = list.head;
            KX_UNPOISON(object, size);
            list.head = *static_cast<void**>(object);
            m_references.fetch_add(1, std::memory_order_relaxed);
            return object;
        }
    }
    const size_t needed = sizeof(Header) + RoundUp(size);
    if (needed > m_left) AddBlock(needed);
    KX_UNPOISON(m_next, needed);
    Header* header = new (m_next) Header{this};
    m_next += needed;
    m_left -= needed;
    m_references.fetch_add(1, std::memory_order_relaxed);
    return header + 1;
}

void CXmlNodePool::Recycle(void* object, size_t size) {
    // A free list per object size, taken by the first sizes recycled; objects of any further
    // size are not reused.
    for (FreeList& list : m_recycled) {
        if (list.size == 0) list.size = size;
        if (list.size == size) {
            *static_cast<void**>(object) = list.head;
            list.head = object;
            KX_POISON(object, size);
            break;
        }
    }
    Release();
}

CXmlNodePool* CXmlNodePool::PoolOf(void* object) { return HeaderOf(object)->pool; }

void CXmlNodePool::Release() {
    if (m_references.fetch_sub(1, std::memory_order_acq_rel) == 1) delete this;
}

void* CXmlNodePool::AllocateFromHeap(size_t size) {
    Header* header = new (::operator new(sizeof(Header) + size)) Header{nullptr};
    return header + 1;
}

void CXmlNodePool::Free(void* object, size_t size) {
    if (object == nullptr) return;
    Header* header = HeaderOf(object);
    if (header->pool != nullptr) {
        CXmlNodePool* pool = header->pool;
        KX_POISON(header, sizeof(Header) + size);
        pool->Release();
    } else {
        ::operator delete(header);
    }
}

}  // namespace KxXmlLib16
