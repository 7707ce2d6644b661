// Memory for the containers and property sets of one description while it is read. Not for hosts.
#pragma once

#include <cstddef>
#include <string>

#include "qlx/persistence/qlx_persistence.h"

/// Hands out memory piece after piece from slabs, which grow with what was asked for. A reader
/// makes one for the tree that it builds: the pieces lie in the order in which they are met later
/// on, with eight bytes between them, and neither asking nor giving back searches a free list.
///
/// A slab goes with the last of its pieces and not before, so memory that a part of a tree gives
/// back is not used again while the rest of the slab is in use. The pieces outlive the pool. Pool
/// and pieces belong to one thread.
class QLX_NodePool {
  public:
    QLX_NodePool() noexcept = default;
    ~QLX_NodePool();
    QLX_NodePool(const QLX_NodePool&) = delete;
    QLX_NodePool& operator=(const QLX_NodePool&) = delete;

    /// How much is likely to be asked for in all. Up to that a pool takes large pages, of which the
    /// last one would be wasted in part if it came to less.
    void Expect(std::size_t size) { mExpected = size; }

    /// Aligned to eight bytes.
    [[nodiscard]] void* Allocate(std::size_t size);
    /// Takes what any pool allocated, with the size that was asked for.
    static void Free(void* piece, std::size_t size) noexcept;

  private:
    struct Slab;
    [[nodiscard]] static Slab* NewSlab(std::size_t size);
    static void Release(Slab* slab) noexcept;
    [[nodiscard]] std::size_t NextSlabSize() const;
    [[nodiscard]] void* AllocateFromNew(std::size_t size);

    Slab* mSlab = nullptr; // held by the pool as by each of its pieces
    char* mNext = nullptr;
    char* mEnd = nullptr;
    std::size_t mTaken = 0; // the sizes of all slabs for pieces that share them
    std::size_t mExpected = 0;
};

/// A plain container in a pool's memory.
class QLX_PooledContainer final : public QLX_RawPropertyContainer {
  public:
    explicit QLX_PooledContainer(const std::string& name);
    ~QLX_PooledContainer() override;
    static void* operator new(std::size_t size, QLX_NodePool& pool) { return pool.Allocate(size); }
    static void operator delete(void* piece, QLX_NodePool&) noexcept {
        QLX_NodePool::Free(piece, sizeof(QLX_PooledContainer));
    }
    static void operator delete(void* piece) noexcept {
        QLX_NodePool::Free(piece, sizeof(QLX_PooledContainer));
    }
};
