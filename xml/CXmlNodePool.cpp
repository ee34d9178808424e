// Block allocation of the elements of a document.
#include "xml/CXmlNodePool.h"

#include <sys/mman.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
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

// References are taken from the shared count this many at a time.
const long kReferenceBatch = 4096;
// At most this many names are shared, and a search looks at this many slots at most.
const size_t kMaxSharedNames = 4096;
const size_t kMaxProbes = 16;
const size_t kMaxNameChunk = 1024;

size_t RoundUp(size_t size) { return (size + kAlignment - 1) & ~(kAlignment - 1); }

CXmlNodePool::Header* HeaderOf(void* object) {
    return reinterpret_cast<CXmlNodePool::Header*>(static_cast<unsigned char*>(object) -
                                                   sizeof(CXmlNodePool::Header));
}

// A multiplicative hash taking eight bytes at a time (names are short, and namespace URIs are
// hashed whenever they change).
size_t HashOf(std::string_view text) {
    const uint64_t kMultiplier = 0x9E3779B97F4A7C15ull;
    uint64_t hash = text.size();
    const char* p = text.data();
    size_t left = text.size();
    for (; left >= 8; left -= 8, p += 8) {
        uint64_t word;
        std::memcpy(&word, p, 8);
        hash = (hash ^ word) * kMultiplier;
        hash ^= hash >> 29;
    }
    if (left != 0) {
        // The last bytes through loads that may overlap ones already taken: no byte loop.
        uint64_t word;
        if (text.size() >= 8) {
            std::memcpy(&word, text.data() + text.size() - 8, 8);
        } else if (left >= 4) {
            uint32_t head;
            uint32_t tail;
            std::memcpy(&head, p, 4);
            std::memcpy(&tail, p + left - 4, 4);
            word = (uint64_t{head} << 32) | tail;
        } else {
            const unsigned char* bytes = reinterpret_cast<const unsigned char*>(p);
            word = bytes[0] | (uint64_t{bytes[left / 2]} << 8) | (uint64_t{bytes[left - 1]} << 16);
        }
        hash = (hash ^ word) * kMultiplier;
        hash ^= hash >> 29;
    }
    return static_cast<size_t>(hash);
}

bool SameText(const std::string& name, std::string_view text) {
    return name.size() == text.size() && std::memcmp(name.data(), text.data(), text.size()) == 0;
}

}  // namespace

CXmlNodePool::CXmlNodePool()
    : m_next(nullptr),
      m_left(0),
      m_recycled{{0, nullptr}, {0, nullptr}},
      m_references(1),
      m_credit(0),
      m_firstSlots(),
      m_slots(m_firstSlots),
      m_slotCount(kFirstSlots),
      m_chunk(m_firstNames),
      m_chunkUsed(0),
      m_chunkSize(kFirstNames),
      m_nameCount(0),
      m_lastNamespace(nullptr) {}

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
    if (m_credit == 0) {
        m_references.fetch_add(kReferenceBatch, std::memory_order_relaxed);
        m_credit = kReferenceBatch;
    }
    for (FreeList& list : m_recycled) {
        if (list.size == size && list.head != nullptr) {
            void* object = list.head;
            KX_UNPOISON(object, size);
            list.head = *static_cast<void**>(object);
            --m_credit;
            return object;
        }
    }
    const size_t needed = sizeof(Header) + RoundUp(size);
    if (needed > m_left) AddBlock(needed);
    KX_UNPOISON(m_next, needed);
    Header* header = new (m_next) Header{this};
    m_next += needed;
    m_left -= needed;
    --m_credit;
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
    // The document holds its reference while it recycles: the object's goes back to the batch.
    ++m_credit;
}

CXmlNodePool* CXmlNodePool::PoolOf(void* object) { return HeaderOf(object)->pool; }

void CXmlNodePool::ReleaseDocument() {
    const long unused = m_credit;
    m_credit = 0;
    Release(1 + unused);
}

void CXmlNodePool::Release(long count) {
    if (m_references.fetch_sub(count, std::memory_order_acq_rel) == count) delete this;
}

const std::string* CXmlNodePool::EmptyName() {
    static const std::string empty;
    return &empty;
}

const std::string* CXmlNodePool::Intern(std::string_view name) {
    if (name.empty()) return EmptyName();
    const size_t hash = HashOf(name);
    const size_t mask = m_slotCount - 1;
    size_t i = hash & mask;
    for (size_t probe = 0; probe < kMaxProbes; ++probe, i = (i + 1) & mask) {
        NameSlot& slot = m_slots[i];
        if (slot.name == nullptr) {
            if (m_nameCount == kMaxSharedNames) break;
            const std::string* stored = StoreName(name);
            slot = NameSlot{hash, stored};
            if (2 * ++m_nameCount > m_slotCount) GrowNames();
            return stored;
        }
        if (slot.hash == hash && SameText(*slot.name, name)) return slot.name;
    }
    return StoreName(name);
}

const std::string* CXmlNodePool::StoreName(std::string_view name) {
    if (m_chunkUsed == m_chunkSize) {
        const size_t size = std::min(2 * m_chunkSize, kMaxNameChunk);
        m_nameChunks.reserve(m_nameChunks.size() + 1);
        m_nameChunks.emplace_back(new std::string[size]);
        m_chunk = m_nameChunks.back().get();
        m_chunkSize = size;
        m_chunkUsed = 0;
    }
    std::string& stored = m_chunk[m_chunkUsed];
    stored.assign(name.data(), name.size());
    ++m_chunkUsed;
    return &stored;
}

const std::string* CXmlNodePool::InternNamespace(std::string_view ns) {
    if (ns.empty()) return EmptyName();
    if (m_lastNamespace == nullptr || !SameText(*m_lastNamespace, ns)) m_lastNamespace = Intern(ns);
    return m_lastNamespace;
}

void CXmlNodePool::GrowNames() {
    const size_t count = 2 * m_slotCount;
    std::unique_ptr<NameSlot[]> slots(new NameSlot[count]());
    const size_t mask = count - 1;
    for (size_t j = 0; j < m_slotCount; ++j) {
        const NameSlot& slot = m_slots[j];
        if (slot.name == nullptr) continue;
        size_t i = slot.hash & mask;
        while (slots[i].name != nullptr) i = (i + 1) & mask;
        slots[i] = slot;
    }
    m_grownSlots = std::move(slots);
    m_slots = m_grownSlots.get();
    m_slotCount = count;
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
        pool->Release(1);
    } else {
        ::operator delete(header);
    }
}

}  // namespace KxXmlLib16
