#include "qlx/persistence/qlx_nodepool.h"

#include <algorithm>
#include <new>

#include "basekit/sys/sys_pages.h"

// The sanitizer hears which pieces are in use, as it would of a malloc's.
#if defined(__has_feature)
#define QLX_CLANG_ASAN __has_feature(address_sanitizer)
#else
#define QLX_CLANG_ASAN 0
#endif
#if defined(__SANITIZE_ADDRESS__) || QLX_CLANG_ASAN
#include <sanitizer/asan_interface.h>
#else
#define ASAN_POISON_MEMORY_REGION(start, size) (static_cast<void>(start), static_cast<void>(size))
#define ASAN_UNPOISON_MEMORY_REGION(start, size) (static_cast<void>(start), static_cast<void>(size))
#endif

namespace {
constexpr std::size_t kFirstSlab = 4096;
constexpr std::size_t kLargestSlab = 256 * 1024;
} // namespace

/// Stands at a slab's start; before each piece stands the address of its slab.
struct QLX_NodePool::Slab {
    std::size_t mUsers; // its pieces, and the pool that fills it
    std::size_t mSize;
};

namespace {
/// What a piece takes of a slab.
std::size_t WithPrefix(std::size_t size) { return sizeof(void*) + (size + 7) / 8 * 8; }
} // namespace

QLX_NodePool::~QLX_NodePool() {
    if (mSlab && --mSlab->mUsers == 0)
        ::operator delete(mSlab);
}

void* QLX_NodePool::Allocate(std::size_t size) {
    const std::size_t taken = WithPrefix(size);
    if (static_cast<std::size_t>(mEnd - mNext) < taken)
        return AllocateFromNew(size);
    char* const piece = mNext;
    mNext += taken;
    ASAN_UNPOISON_MEMORY_REGION(piece, sizeof(void*) + size);
    *reinterpret_cast<Slab**>(piece) = mSlab;
    ++mSlab->mUsers;
    return piece + sizeof(void*);
}

void* QLX_NodePool::AllocateFromNew(std::size_t size) {
    const std::size_t taken = WithPrefix(size);
    if (taken > kLargestSlab / 8) {
        // Large pieces have slabs of their own: the one that is being filled goes on.
        Slab* const own = new (::operator new(sizeof(Slab) + taken)) Slab{1, taken};
        char* const piece = reinterpret_cast<char*>(own + 1);
        *reinterpret_cast<Slab**>(piece) = own;
        return piece + sizeof(void*);
    }
    const std::size_t wanted = mSlabSize ? std::min(mSlabSize * 2, kLargestSlab) : kFirstSlab;
    const std::size_t slabSize = std::max(wanted, sizeof(Slab) + taken);
    Slab* const slab = new (::operator new(slabSize)) Slab{1, slabSize};
    if (mSlab && --mSlab->mUsers == 0)
        ::operator delete(mSlab);
    if (slabSize == kLargestSlab) // one of many, likely
        Sys_PreparePages(slab, slabSize);
    mSlab = slab;
    mSlabSize = slabSize;
    mNext = reinterpret_cast<char*>(slab + 1);
    mEnd = reinterpret_cast<char*>(slab) + slabSize;
    ASAN_POISON_MEMORY_REGION(mNext, static_cast<std::size_t>(mEnd - mNext));
    return Allocate(size);
}

void QLX_NodePool::Free(void* piece, std::size_t size) noexcept {
    Slab* const slab = static_cast<Slab**>(piece)[-1];
    ASAN_POISON_MEMORY_REGION(piece, size);
    if (--slab->mUsers == 0) {
        ASAN_UNPOISON_MEMORY_REGION(slab, slab->mSize);
        ::operator delete(slab);
    }
}

QLX_PooledContainer::QLX_PooledContainer(const std::string& name)
    : QLX_RawPropertyContainer(name) {}
QLX_PooledContainer::~QLX_PooledContainer() = default;
