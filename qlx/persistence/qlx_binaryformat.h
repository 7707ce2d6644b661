// The compiled form of view descriptions: many in one store, read without a parser.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "basekit/sys/sys_store.h"
#include "qlx/persistence/qlx_persistence.h"

/// Descriptions by name in a store. The bytes are in docs/formats.md. User-interface thread.
class QLX_API QLX_BinaryViewFormat {
  public:
    static constexpr std::uint32_t kStreamType = 256;
    static constexpr int kMaximumDepth = 512;

    /// The store is not owned.
    explicit QLX_BinaryViewFormat(Sys_Store* store);
    ~QLX_BinaryViewFormat();
    QLX_BinaryViewFormat(const QLX_BinaryViewFormat&) = delete;
    QLX_BinaryViewFormat& operator=(const QLX_BinaryViewFormat&) = delete;

    /// Appends a dictionary and a stream for each memento, and commits. What the store has already
    /// stays readable; a name that it has means the new one from here on.
    void WriteMementos(const std::map<std::string, QLX_ViewMemento*>& mementos);
    /// Throws std::runtime_error when the dictionary cannot be read.
    [[nodiscard]] bool HasKeyNamed(const std::string& name);
    /// All names, in order.
    [[nodiscard]] std::vector<std::string> GetNames();
    /// How many bytes the description of that name takes in the store; 0 when there is none.
    [[nodiscard]] std::uint64_t GetPackedSize(const std::string& name);
    /// The description of that name, which the caller owns: trimmed for the current language when
    /// trim is set, frozen, with the default filter current. An unknown name reports an alert,
    /// raises the assertion "iter != mIndex->end()" and answers null. Throws std::runtime_error for
    /// a stream that cannot be read.
    [[nodiscard]] QLX_ViewMemento* ReadMemento(const std::string& name, bool trim);

    /// The bytes of one description: the container tree, then the string tables.
    [[nodiscard]] static std::string EncodeMemento(const QLX_ViewMemento& memento);
    /// Throws std::runtime_error ("name: at byte N: reason"). Not frozen, no filter current.
    [[nodiscard]] static std::unique_ptr<QLX_ViewMemento> DecodeMemento(std::string_view bytes,
                                                                        const std::string& name);

  private:
    struct Location {
        std::int32_t mKey;
        std::size_t mStream; // its place in the store
    };
    using Index = std::map<std::string, Location>;
    void ReadIndex();

    Sys_Store* mStore;             // not owned
    std::unique_ptr<Index> mIndex; // read on first use
};
