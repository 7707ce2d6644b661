#include "basekit/sys/sys_file.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <utility>

#include "basekit/sys/sys_fileplatform.h"

namespace {
constexpr std::size_t kReadBufferSize = 64 * 1024;

char LowerASCII(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

/// Where the last part of a path begins.
std::size_t NameStart(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? 0 : slash + 1;
}

/// Where the extension's dot stands; npos when there is none.
std::size_t ExtensionDot(const std::string& path) {
    const std::size_t start = NameStart(path);
    const std::size_t dot = path.rfind('.');
    return dot == std::string::npos || dot <= start ? std::string::npos : dot;
}

class MemoryBackend : public Sys_FileBackend {
  public:
    explicit MemoryBackend(std::string contents) : mContents(std::move(contents)) {}
    std::size_t ReadAt(std::uint64_t offset, void* bytes, std::size_t size) override {
        if (offset >= mContents.size())
            return 0;
        const std::size_t count = std::min<std::uint64_t>(size, mContents.size() - offset);
        std::memcpy(bytes, mContents.data() + offset, count);
        return count;
    }
    void WriteAt(std::uint64_t offset, const void* bytes, std::size_t size) override {
        if (offset + size > mContents.size())
            mContents.resize(offset + size);
        if (size)
            std::memcpy(mContents.data() + offset, bytes, size);
    }
    std::uint64_t GetSize() override { return mContents.size(); }
    void Flush() override {}

  private:
    std::string mContents;
};
} // namespace

Sys_FileError::Sys_FileError(const std::string& path, const std::string& reason)
    : std::runtime_error(path + ": " + reason), mPath(path), mReason(reason) {}
Sys_FileError::~Sys_FileError() = default;

Sys_FileLoc::Sys_FileLoc(std::string path) : mPath(std::move(path)) {
    Sys_NormalizeSeparators(mPath);
    while (mPath.size() > 1 && mPath.back() == '/' && !Sys_IsRootPath(mPath))
        mPath.pop_back();
}

std::string Sys_FileLoc::GetName() const { return mPath.substr(NameStart(mPath)); }

std::string Sys_FileLoc::GetStem() const {
    const std::size_t start = NameStart(mPath);
    const std::size_t dot = ExtensionDot(mPath);
    return dot == std::string::npos ? mPath.substr(start) : mPath.substr(start, dot - start);
}

std::string Sys_FileLoc::GetExtension() const {
    const std::size_t dot = ExtensionDot(mPath);
    return dot == std::string::npos ? std::string() : mPath.substr(dot + 1);
}

Sys_FileLoc Sys_FileLoc::GetParent() const {
    if (Sys_IsRootPath(mPath))
        return *this;
    const std::size_t start = NameStart(mPath);
    if (start == 0)
        return Sys_FileLoc(".");
    return Sys_FileLoc(mPath.substr(0, start));
}

Sys_FileLoc Sys_FileLoc::GetChild(std::string_view name) const {
    if (mPath.empty())
        return Sys_FileLoc(std::string(name));
    std::string path = mPath;
    if (path.back() != '/')
        path += '/';
    path += name;
    return Sys_FileLoc(std::move(path));
}

Sys_FileLoc Sys_FileLoc::GetSibling(std::string_view name) const {
    return Sys_FileLoc(mPath.substr(0, NameStart(mPath)) + std::string(name));
}

bool Sys_FileLoc::Exists() const { return Sys_GetPathKind(mPath) != Sys_PathKind::Nothing; }
bool Sys_FileLoc::IsFile() const { return Sys_GetPathKind(mPath) == Sys_PathKind::File; }
bool Sys_FileLoc::IsStream() const { return Sys_IsStream(mPath); }
bool Sys_FileLoc::IsFolder() const { return Sys_GetPathKind(mPath) == Sys_PathKind::Folder; }

Sys_FileLoc Sys_FileLoc::ApplicationFolder() {
    return Sys_FileLoc(Sys_GetProgramPath()).GetParent();
}

Sys_FileType::Sys_FileType(std::string name, std::string extension)
    : mName(std::move(name)), mExtension(std::move(extension)) {}

bool Sys_FileType::Matches(const Sys_FileLoc& loc) const {
    const std::string extension = loc.GetExtension();
    return std::equal(extension.begin(), extension.end(), mExtension.begin(), mExtension.end(),
                      [](char a, char b) { return LowerASCII(a) == LowerASCII(b); });
}

const Sys_FileType& Sys_FileType::XML() {
    static const Sys_FileType type("XML File", "xml");
    return type;
}

const char* Sys_LineEndText(LineEndings endings) {
    switch (endings) {
    case LineEndings::Windows:
        return "\r\n";
    case LineEndings::Mac:
        return "\r";
    case LineEndings::Unix:
        break;
    }
    return "\n";
}

LineEndings Sys_DetectLineEndings(std::string_view text) {
    const std::size_t end = text.find_first_of("\r\n");
    if (end == std::string_view::npos || text[end] == '\n')
        return LineEndings::Unix;
    return end + 1 < text.size() && text[end + 1] == '\n' ? LineEndings::Windows : LineEndings::Mac;
}

Sys_FileBackend::~Sys_FileBackend() = default;
Sys_FileSystem::~Sys_FileSystem() = default;

Sys_File::Sys_File(const Sys_FileLoc& loc, Sys_FileMode mode, Sys_FileSystem& fileSystem)
    : mLoc(loc), mBackend(fileSystem.Open(loc.GetPath(), mode)) {}
Sys_File::Sys_File(std::string name, std::string contents)
    : mLoc(std::move(name)), mBackend(std::make_unique<MemoryBackend>(std::move(contents))) {}
Sys_File::~Sys_File() = default;

std::uint64_t Sys_File::GetSize() const { return mBackend->GetSize(); }

std::size_t Sys_File::Read(void* bytes, std::size_t size) {
    char* out = static_cast<char*>(bytes);
    std::size_t done = 0;
    while (done < size) {
        if (mPosition >= mBufferStart && mPosition - mBufferStart < mBufferFill) {
            const std::size_t from = static_cast<std::size_t>(mPosition - mBufferStart);
            const std::size_t count = std::min(size - done, mBufferFill - from);
            std::memcpy(out + done, mBuffer.get() + from, count);
            done += count;
            mPosition += count;
            continue;
        }
        if (size - done >= kReadBufferSize) {
            const std::size_t count = mBackend->ReadAt(mPosition, out + done, size - done);
            mPosition += count;
            return done + count;
        }
        if (!mBuffer)
            mBuffer = std::make_unique<char[]>(kReadBufferSize);
        mBufferStart = mPosition;
        mBufferFill = 0; // holds if the read throws
        mBufferFill = mBackend->ReadAt(mPosition, mBuffer.get(), kReadBufferSize);
        if (mBufferFill == 0)
            break;
    }
    return done;
}

void Sys_File::Write(const void* bytes, std::size_t size) {
    mBufferFill = 0;
    mBackend->WriteAt(mPosition, bytes, size);
    mPosition += size;
}

void Sys_File::Flush() { mBackend->Flush(); }

std::string Sys_File::ReadAll(const Sys_FileLoc& loc) {
    Sys_File file(loc, Sys_FileMode::Read);
    std::string contents(static_cast<std::size_t>(file.GetSize()), '\0');
    contents.resize(file.Read(contents.data(), contents.size()));
    // What answers no size (a pipe) or has grown meanwhile is read on to its end.
    char block[4096];
    while (const std::size_t count = file.Read(block, sizeof block))
        contents.append(block, count);
    return contents;
}

Sys_SafeWriter::Sys_SafeWriter(const Sys_FileLoc& loc, Sys_FileSystem& fileSystem)
    : mLoc(loc), mFileSystem(fileSystem) {
    try {
        if (Sys_IsStream(loc.GetPath())) {
            mFile = mFileSystem.Open(loc.GetPath(), Sys_FileMode::Stream);
            return;
        }
        mTarget = mFileSystem.Resolve(loc.GetPath());
        if (Sys_GetPathKind(mTarget) == Sys_PathKind::Folder)
            throw Sys_FileError(mTarget, "is a folder");
        OpenTemporary();
        // Before anything is in it: what only some may read is never open to all.
        if (Sys_GetPathKind(mTarget) == Sys_PathKind::File)
            mFileSystem.CopyAccess(mTarget, mTemporary);
    } catch (const Sys_FileError& error) {
        if (mFile)
            RemoveTemporary();
        Fail(error);
    }
}

void Sys_SafeWriter::OpenTemporary() {
    static std::atomic<unsigned> counter{0}; // two writers of one process never share a name
    // A number that a killed process of the same id left behind is passed over.
    for (int attempt = 0;; ++attempt) {
        const std::string name =
            ".qlx-" + std::to_string(Sys_GetProcessID()) + "-" + std::to_string(++counter);
        mTemporary = Sys_FileLoc(mTarget).GetSibling(name + ".tmp").GetPath();
        if (attempt < 100 && Sys_GetPathKind(mTemporary) != Sys_PathKind::Nothing)
            continue;
        mFile = mFileSystem.Open(mTemporary, Sys_FileMode::Create);
        return;
    }
}

Sys_SafeWriter::~Sys_SafeWriter() {
    if (mFile)
        RemoveTemporary();
}

void Sys_SafeWriter::RemoveTemporary() noexcept {
    mFile.reset();
    if (mTemporary.empty())
        return;
    try {
        mFileSystem.Remove(mTemporary);
    } catch (const Sys_FileError&) {
        // The error that led here was told; the left-over has a name of its own.
    }
}

void Sys_SafeWriter::Write(std::string_view bytes) {
    try {
        mFile->WriteAt(mWritten, bytes.data(), bytes.size());
        mWritten += bytes.size();
    } catch (const Sys_FileError& error) {
        Fail(error);
    }
}

void Sys_SafeWriter::Commit() {
    try {
        mFile->Flush();
        // Closed before the rename: Windows moves no open file.
        mFile.reset();
        if (!mTemporary.empty())
            mFileSystem.Replace(mTemporary, mTarget);
    } catch (const Sys_FileError& error) {
        RemoveTemporary();
        Fail(error);
    }
}

void Sys_SafeWriter::Replace(const Sys_FileLoc& loc, std::string_view bytes,
                             Sys_FileSystem& fileSystem) {
    Sys_SafeWriter writer(loc, fileSystem);
    writer.Write(bytes);
    writer.Commit();
}

void Sys_SafeWriter::Fail(const Sys_FileError& error) const {
    throw Sys_FileError(mLoc.GetPath(), "not written: " + error.GetReason());
}
