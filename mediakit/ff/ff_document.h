// A container file: byte streams with a type, a key and a name, listed in a table of contents.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "basekit/sys/sys_file.h"
#include "basekit/sys/sys_store.h"

/// A document only grows: streams and a new table of contents are written behind what is there, and
/// the footer of the new table comes last. A write that breaks off at any byte leaves the previous
/// table the last one whose footer and checksum are right, and opening finds it. Every stream has a
/// checksum of its own. The byte layout is in docs/formats.md.
class QLX_API FF_Document : public Sys_Store {
  public:
    /// A new file; it is an error when there is one already. Commits an empty table of contents.
    [[nodiscard]] static std::unique_ptr<FF_Document>
    Create(const Sys_FileLoc& loc, Sys_FileSystem& fileSystem = Sys_FileSystem::Native());
    /// An existing file; mode is Read or Update. Throws std::runtime_error ("file: reason") when it
    /// is no document or has no table of contents that can be read, Sys_FileError when it cannot be
    /// opened.
    [[nodiscard]] static std::unique_ptr<FF_Document>
    Open(const Sys_FileLoc& loc, Sys_FileMode mode,
         Sys_FileSystem& fileSystem = Sys_FileSystem::Native());
    /// Over an open file: an empty one becomes a new document, any other is opened.
    explicit FF_Document(std::unique_ptr<Sys_File> file);
    ~FF_Document() override;

    [[nodiscard]] std::vector<Sys_StoreEntry> GetEntries() const override;
    [[nodiscard]] std::string ReadStream(std::size_t index) override;
    void AppendStream(std::uint32_t type, std::int32_t key, const std::string& name,
                      std::string_view bytes) override;
    void Commit() override;

    /// How often a table of contents was committed, counting from 1.
    [[nodiscard]] std::uint32_t GetGeneration() const { return mGeneration; }
    /// Whether there are bytes behind the last good table: a write broke off. They stay where they
    /// are, unused.
    [[nodiscard]] bool WasTorn() const { return mTorn; }

  private:
    struct Stream {
        Sys_StoreEntry mEntry;
        std::uint64_t mOffset = 0;
        std::uint32_t mChecksum = 0;
    };

    void StartNew();
    void ReadLastTable();
    bool ReadTableAt(std::uint64_t footerOffset, std::string_view footerBytes);
    [[nodiscard]] bool ParseTable(std::string_view table, std::uint64_t end,
                                  std::vector<Stream>& streams) const;
    void WriteAtEnd(std::string_view bytes);
    void PadEnd();
    [[noreturn]] void Fail(const std::string& reason) const;

    std::unique_ptr<Sys_File> mFile;
    std::vector<Stream> mStreams;  // committed
    std::vector<Stream> mAppended; // written, not yet in a table
    std::uint64_t mEnd = 0;        // where the next bytes go
    std::uint32_t mGeneration = 0;
    bool mTorn = false;
    std::uint64_t mTableBudget = 0; // bytes of tables that opening may still look at
};
