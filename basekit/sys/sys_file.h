// Files: where they are, what they are, reading and writing them, and replacing one so that a full
// disk or a killed process leaves the old contents whole.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "basekit/cmn/cmn_types.h"

/// What went wrong with a file: what() reads "path: reason". Thrown by everything below that opens,
/// reads or writes.
class QLX_API Sys_FileError : public std::runtime_error {
  public:
    Sys_FileError(const std::string& path, const std::string& reason);
    ~Sys_FileError() override;
    [[nodiscard]] const std::string& GetPath() const noexcept { return mPath; }
    [[nodiscard]] const std::string& GetReason() const noexcept { return mReason; }

  private:
    std::string mPath;
    std::string mReason;
};

/// The place of a file or folder: a path in UTF-8 whose parts are separated by '/' (on Windows '\'
/// is read as one too). A value; nothing of it touches the disk but the questions that say so.
class QLX_API Sys_FileLoc {
  public:
    Sys_FileLoc() = default;
    explicit Sys_FileLoc(std::string path);

    [[nodiscard]] const std::string& GetPath() const noexcept { return mPath; }
    [[nodiscard]] bool IsEmpty() const noexcept { return mPath.empty(); }
    /// The last part, extension included.
    [[nodiscard]] std::string GetName() const;
    /// The last part without its last extension; a leading dot begins no extension.
    [[nodiscard]] std::string GetStem() const;
    /// What follows the last dot of the last part, without the dot; empty when there is none.
    [[nodiscard]] std::string GetExtension() const;
    /// The folder that holds this; "." for a bare name, the root for the root.
    [[nodiscard]] Sys_FileLoc GetParent() const;
    /// Something inside this folder.
    [[nodiscard]] Sys_FileLoc GetChild(std::string_view name) const;
    /// Something beside this.
    [[nodiscard]] Sys_FileLoc GetSibling(std::string_view name) const;

    /// Look at the disk; false when it cannot be told.
    [[nodiscard]] bool Exists() const;
    [[nodiscard]] bool IsFile() const;
    [[nodiscard]] bool IsFolder() const;
    /// A device or a pipe, which IsFile counts as a file.
    [[nodiscard]] bool IsStream() const;

    /// The folder of the running program.
    [[nodiscard]] static Sys_FileLoc ApplicationFolder();

    friend bool operator==(const Sys_FileLoc& a, const Sys_FileLoc& b) noexcept {
        return a.mPath == b.mPath;
    }
    friend bool operator!=(const Sys_FileLoc& a, const Sys_FileLoc& b) noexcept {
        return a.mPath != b.mPath;
    }
    friend bool operator<(const Sys_FileLoc& a, const Sys_FileLoc& b) noexcept {
        return a.mPath < b.mPath;
    }

  private:
    std::string mPath;
};

/// A kind of file: its name for people and its extension without the dot.
class QLX_API Sys_FileType {
  public:
    Sys_FileType(std::string name, std::string extension);
    [[nodiscard]] const std::string& GetName() const noexcept { return mName; }
    [[nodiscard]] const std::string& GetExtension() const noexcept { return mExtension; }
    /// Whether the location's extension is this type's, ASCII letter case aside.
    [[nodiscard]] bool Matches(const Sys_FileLoc& loc) const;
    /// "XML File", extension "xml".
    [[nodiscard]] static const Sys_FileType& XML();

    friend bool operator==(const Sys_FileType& a, const Sys_FileType& b) noexcept {
        return a.mName == b.mName && a.mExtension == b.mExtension;
    }

  private:
    std::string mName;
    std::string mExtension;
};

/// How the lines of a text file end.
enum class LineEndings {
    Unix,    ///< line feed
    Windows, ///< carriage return, line feed
    Mac,     ///< carriage return
};

/// The bytes of one line end.
[[nodiscard]] QLX_API const char* Sys_LineEndText(LineEndings endings);
/// The line end that the text's first line has; Unix when there is none.
[[nodiscard]] QLX_API LineEndings Sys_DetectLineEndings(std::string_view text);

enum class Sys_FileMode {
    Read,   ///< an existing file, from its start
    Update, ///< an existing file, for reading and writing
    Create, ///< a new file; it is an error when there is one already
    Stream, ///< an existing device or pipe, for writing one byte after the other
};

/// The operations of an open file that a side provides. Failures throw Sys_FileError.
class QLX_API Sys_FileBackend {
  public:
    virtual ~Sys_FileBackend();
    /// Reads up to size bytes at offset; fewer only at the file's end.
    virtual std::size_t ReadAt(std::uint64_t offset, void* bytes, std::size_t size) = 0;
    /// Writes all of size bytes at offset, or throws.
    virtual void WriteAt(std::uint64_t offset, const void* bytes, std::size_t size) = 0;
    virtual std::uint64_t GetSize() = 0;
    /// Returns once everything written is on the disk.
    virtual void Flush() = 0;
};

/// The wall to the disk: one side a platform, further ones in tests that let an operation fail.
/// Sides hold no state, so one may be used from any thread.
class QLX_API Sys_FileSystem {
  public:
    virtual ~Sys_FileSystem();
    virtual std::unique_ptr<Sys_FileBackend> Open(const std::string& path, Sys_FileMode mode) = 0;
    /// Gives a file a new name in the same folder, replacing in one step what has that name.
    virtual void Replace(const std::string& from, const std::string& to) = 0;
    /// Removes a file; that there is none is no error.
    virtual void Remove(const std::string& path) = 0;
    /// Where writing to path really leads: symbolic links are followed as far as they exist.
    virtual std::string Resolve(const std::string& path) = 0;
    /// Gives one file the access rights and the owner of another, as far as the platform has them
    /// and the process may; where it may not, the file ends up open to fewer people, never to more.
    virtual void CopyAccess(const std::string& from, const std::string& to) = 0;

    /// The side of the platform that is built for.
    [[nodiscard]] static Sys_FileSystem& Native();
};

/// An open file with a position. Reads go through a small buffer; writes do not. Closed by its
/// destructor. One thread at a time.
class QLX_API Sys_File {
  public:
    /// Opens the file, or throws Sys_FileError.
    Sys_File(const Sys_FileLoc& loc, Sys_FileMode mode,
             Sys_FileSystem& fileSystem = Sys_FileSystem::Native());
    /// A file that lies in memory; name stands in messages.
    Sys_File(std::string name, std::string contents);
    ~Sys_File();
    Sys_File(const Sys_File&) = delete;
    Sys_File& operator=(const Sys_File&) = delete;

    [[nodiscard]] const Sys_FileLoc& GetLoc() const noexcept { return mLoc; }
    [[nodiscard]] std::uint64_t GetSize() const;
    [[nodiscard]] std::uint64_t GetPosition() const noexcept { return mPosition; }
    void SetPosition(std::uint64_t position) noexcept { mPosition = position; }

    /// Reads up to size bytes and moves the position; fewer only at the end.
    std::size_t Read(void* bytes, std::size_t size);
    /// Writes all bytes at the position and moves it.
    void Write(const void* bytes, std::size_t size);
    void Write(std::string_view text) { Write(text.data(), text.size()); }
    /// Returns once everything written is on the disk.
    void Flush();

    /// The whole contents of a file.
    [[nodiscard]] static std::string ReadAll(const Sys_FileLoc& loc);

  private:
    Sys_FileLoc mLoc;
    std::unique_ptr<Sys_FileBackend> mBackend;
    std::uint64_t mPosition = 0;
    std::unique_ptr<char[]> mBuffer;
    std::uint64_t mBufferStart = 0; // the file offset of the buffer's first byte
    std::size_t mBufferFill = 0;
};

/// Replaces a file in one step: what is written goes into a new file beside it, which takes its
/// name only when Commit has brought every byte to the disk. Until then, and whenever anything
/// fails, the old file is untouched. A symbolic link stays one: the file it leads to is replaced.
/// The new file gets the old one's access rights before the first byte is in it. A process that is
/// killed leaves at most a file whose name begins with ".qlx-" and ends with ".tmp" behind. Devices
/// and pipes are not replaced: what is written goes straight into them.
class QLX_API Sys_SafeWriter {
  public:
    explicit Sys_SafeWriter(const Sys_FileLoc& loc,
                            Sys_FileSystem& fileSystem = Sys_FileSystem::Native());
    /// Without Commit the new file is removed again.
    ~Sys_SafeWriter();
    Sys_SafeWriter(const Sys_SafeWriter&) = delete;
    Sys_SafeWriter& operator=(const Sys_SafeWriter&) = delete;

    /// Throws Sys_FileError, which names the file that was to be replaced.
    void Write(std::string_view bytes);
    void Commit();

    /// All of it: makes, writes and commits.
    static void Replace(const Sys_FileLoc& loc, std::string_view bytes,
                        Sys_FileSystem& fileSystem = Sys_FileSystem::Native());

  private:
    void OpenTemporary();
    void RemoveTemporary() noexcept;
    [[noreturn]] void Fail(const Sys_FileError& error) const;

    Sys_FileLoc mLoc;
    Sys_FileSystem& mFileSystem;
    std::string mTarget;
    std::string mTemporary; // empty when the target is a stream
    std::unique_ptr<Sys_FileBackend> mFile;
    std::uint64_t mWritten = 0;
};
