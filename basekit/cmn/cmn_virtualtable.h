// Cmn_VirtualTable: whether a class has taken over a virtual operation of its base, asked without
// calling the operation. Roads along which most objects answer like the base use it to do the
// base's work in one go. Not for hosts.
#pragma once

#include <cstdint>
#include <cstring>

#if defined(__GXX_ABI_VERSION) && !defined(_MSC_VER) && (defined(__x86_64__) || defined(__i386__))
/// Whether the layout of the tables is known: that of the Itanium C++ ABI, where an object begins
/// with the address of its class's table, and a pointer to a virtual member holds the distance of
/// its entry from there plus 1. Elsewhere every operation counts as taken over.
inline constexpr bool kCmn_KnowsVirtualTables = true;
#else
inline constexpr bool kCmn_KnowsVirtualTables = false;
#endif

/// The virtual operations of a class. Equal tables are of one class; one class may have several, as
/// it has while its objects are being built.
class Cmn_VirtualTable {
  public:
    constexpr Cmn_VirtualTable() = default;
    template <class Object>
    explicit Cmn_VirtualTable(const Object& object) noexcept {
        if constexpr (kCmn_KnowsVirtualTables)
            std::memcpy(&mEntries, static_cast<const void*>(&object), sizeof mEntries);
    }

    /// Whether both classes run the same code for all of these operations, which are given as
    /// pointers to members of a common base. A false answer may be wrong.
    template <auto... Operations>
    [[nodiscard]] bool Shares(const Cmn_VirtualTable& other) const noexcept {
        if constexpr (kCmn_KnowsVirtualTables)
            return ((Entry<Operations>() == other.Entry<Operations>()) && ...);
        else
            return false;
    }

    [[nodiscard]] friend bool operator==(const Cmn_VirtualTable& a,
                                         const Cmn_VirtualTable& b) noexcept {
        return kCmn_KnowsVirtualTables && a.mEntries == b.mEntries;
    }

  private:
    template <auto Operation>
    [[nodiscard]] const void* Entry() const noexcept {
        const auto operation = Operation;
        std::uintptr_t distance;
        std::memcpy(&distance, &operation, sizeof distance);
        const void* entry;
        std::memcpy(&entry, mEntries + (distance - 1), sizeof entry);
        return entry;
    }

    const char* mEntries = nullptr; // not owned
};
