// A store of byte streams, each found by its type and key. What it is kept in is the store's
// matter.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "basekit/cmn/cmn_types.h"

/// What a store tells about one of its streams.
struct Sys_StoreEntry {
    std::uint32_t mType = 0;
    std::int32_t mKey = 0; ///< chosen by who appends; of two with one type and key the later counts
    std::string mName;     ///< may be empty
    std::uint64_t mSize = 0;
};

/// Streams are appended and made lasting together; nothing is changed in place. One thread at a
/// time.
class QLX_API Sys_Store {
  public:
    virtual ~Sys_Store();
    /// The committed streams in the order of appending.
    [[nodiscard]] virtual std::vector<Sys_StoreEntry> GetEntries() const = 0;
    /// The bytes of the entry at that place of GetEntries. Throws std::runtime_error when they are
    /// damaged.
    [[nodiscard]] virtual std::string ReadStream(std::size_t index) = 0;
    /// Adds a stream, which GetEntries shows after Commit.
    virtual void AppendStream(std::uint32_t type, std::int32_t key, const std::string& name,
                              std::string_view bytes) = 0;
    /// Makes everything appended lasting, at once or not at all.
    virtual void Commit() = 0;
};
