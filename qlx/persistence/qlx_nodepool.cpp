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
#include <sanitizer/lsan_interface.h>
#define LSAN_REGISTER_ROOT_REGION(start, size) __lsan_register_root_region(start, size)
#define LSAN_UNREGISTER_ROOT_REGION(start, size) __lsan_unregister_root_region(start, size)
#else
#define ASAN_POISON_MEMORY_REGION(start, size) (static_cast<void>(start), static_cast<void>(size))
#define ASAN_UNPOISON_MEMORY_REGION(start, size) (static_cast<void>(start), static_cast<void>(size))
#define LSAN_REGISTER_ROOT_REGION(start, size) static_cast<void>(0)
#define LSAN_UNREGISTER_ROOT_REGION(start, size) static_cast<void>(0)
#endif

namespace {
constexpr std::size_t kFirstSlab = 4096;
constexpr std::size_t kLargestSlab = 256 * 1024;  // but for large pages
constexpr std::size_t kLargestShared = 32 * 1024; // of the pieces that share a slab with others
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

/// With one user.
QLX_NodePool::Slab* QLX_NodePool::NewSlab(std::size_t size) {
    const bool isPage = size == kSys_LargePage;
    void* const start = isPage ? Sys_AllocateLargePages(size) : ::operator new(size);
    if (isPage)
        LSAN_REGISTER_ROOT_REGION(start, size);
    return new (start) Slab{1, size};
}

void QLX_NodePool::Release(Slab* slab) noexcept {
    if (!slab || --slab->mUsers != 0)
        return;
    const std::size_t size = slab->mSize;
    ASAN_UNPOISON_MEMORY_REGION(slab, size);
    if (size != kSys_LargePage) {
        ::operator delete(slab);
        return;
    }
    LSAN_UNREGISTER_ROOT_REGION(slab, size);
    Sys_FreeLargePages(slab, size);
}

QLX_NodePool::~QLX_NodePool() { Release(mSlab); }

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

/// Twice what was taken so far, so that few slabs hold a large tree and no small one wastes much.
std::size_t QLX_NodePool::NextSlabSize() const {
    if (mTaken >= kLargestSlab && mExpected >= mTaken + kSys_LargePage)
        return kSys_LargePage;
    return std::clamp(mTaken + kFirstSlab, kFirstSlab, kLargestSlab);
}

void* QLX_NodePool::AllocateFromNew(std::size_t size) {
    const std::size_t taken = WithPrefix(size);
    if (taken > kLargestShared) {
        // Large pieces have slabs of their own: the one that is being filled goes on.
        Slab* const own = NewSlab(sizeof(Slab) + taken);
        char* const piece = reinterpret_cast<char*>(own + 1);
        *reinterpret_cast<Slab**>(piece) = own;
        return piece + sizeof(void*);
    }
    const std::size_t slabSize = std::max(NextSlabSize(), sizeof(Slab) + taken);
    Slab* const slab = NewSlab(slabSize);
    Release(mSlab);
    mSlab = slab;
    mTaken += slabSize;
    mNext = reinterpret_cast<char*>(slab + 1);
    mEnd = reinterpret_cast<char*>(slab) + slabSize;
    ASAN_POISON_MEMORY_REGION(mNext, static_cast<std::size_t>(mEnd - mNext));
    return Allocate(size);
}

void QLX_NodePool::Free(void* piece, [[maybe_unused]] std::size_t size) noexcept {
    ASAN_POISON_MEMORY_REGION(piece, size);
    Release(static_cast<Slab**>(piece)[-1]);
}

QLX_PooledContainer::QLX_PooledContainer(const std::string& name)
    : QLX_RawPropertyContainer(name) {}
QLX_PooledContainer::~QLX_PooledContainer() = default;
