// The Windows side of sys_file.
#include "basekit/sys/sys_file.h"
#include "basekit/sys/sys_fileplatform.h"

#include <algorithm>

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

namespace {
std::wstring Wide(const std::string& text) {
    const int length =
        MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(std::max(length, 0)), L'\0');
    MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), wide.data(),
                        length);
    return wide;
}

std::string Narrow(const std::wstring& text) {
    const int length = WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()),
                                           nullptr, 0, nullptr, nullptr);
    std::string narrow(static_cast<std::size_t>(std::max(length, 0)), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), narrow.data(),
                        length, nullptr, nullptr);
    return narrow;
}

[[noreturn]] void Fail(const std::string& path, DWORD error) {
    wchar_t text[512];
    DWORD length = FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                  nullptr, error, 0, text, 512, nullptr);
    while (length > 0 && (text[length - 1] == L'\r' || text[length - 1] == L'\n' ||
                          text[length - 1] == L'.' || text[length - 1] == L' '))
        --length;
    const std::string reason = Narrow(std::wstring(text, length));
    throw Sys_FileError(path, reason.empty() ? "error " + std::to_string(error) : reason);
}

/// One call moves at most this much.
constexpr std::size_t kLargestBlock = 1u << 30;

class WindowsBackend : public Sys_FileBackend {
  public:
    WindowsBackend(std::string path, HANDLE handle) : mPath(std::move(path)), mHandle(handle) {}
    ~WindowsBackend() override { CloseHandle(mHandle); }

    std::size_t ReadAt(std::uint64_t offset, void* bytes, std::size_t size) override {
        std::size_t done = 0;
        while (done < size) {
            OVERLAPPED where = At(offset + done);
            DWORD count = 0;
            const DWORD wanted = static_cast<DWORD>(std::min(size - done, kLargestBlock));
            if (!ReadFile(mHandle, static_cast<char*>(bytes) + done, wanted, &count, &where)) {
                if (GetLastError() == ERROR_HANDLE_EOF || GetLastError() == ERROR_BROKEN_PIPE)
                    break;
                Fail(mPath, GetLastError());
            }
            if (count == 0)
                break;
            done += count;
        }
        return done;
    }

    void WriteAt(std::uint64_t offset, const void* bytes, std::size_t size) override {
        std::size_t done = 0;
        while (done < size) {
            OVERLAPPED where = At(offset + done);
            DWORD count = 0;
            const DWORD wanted = static_cast<DWORD>(std::min(size - done, kLargestBlock));
            if (!WriteFile(mHandle, static_cast<const char*>(bytes) + done, wanted, &count, &where))
                Fail(mPath, GetLastError());
            done += count;
        }
    }

    std::uint64_t GetSize() override {
        LARGE_INTEGER size;
        return GetFileSizeEx(mHandle, &size) ? static_cast<std::uint64_t>(size.QuadPart) : 0;
    }

    void Flush() override {
        // A console has nothing to flush.
        if (!FlushFileBuffers(mHandle) && GetFileType(mHandle) == FILE_TYPE_DISK)
            Fail(mPath, GetLastError());
    }

  private:
    static OVERLAPPED At(std::uint64_t offset) {
        OVERLAPPED where{};
        where.Offset = static_cast<DWORD>(offset);
        where.OffsetHigh = static_cast<DWORD>(offset >> 32);
        return where;
    }

    std::string mPath;
    HANDLE mHandle;
};

class WindowsFileSystem : public Sys_FileSystem {
  public:
    std::unique_ptr<Sys_FileBackend> Open(const std::string& path, Sys_FileMode mode) override {
        DWORD access = GENERIC_READ;
        if (mode == Sys_FileMode::Stream)
            access = GENERIC_WRITE;
        else if (mode != Sys_FileMode::Read)
            access |= GENERIC_WRITE;
        const DWORD disposition = mode == Sys_FileMode::Create ? CREATE_NEW : OPEN_EXISTING;
        // Who reads does not mind a writer, as elsewhere; who writes wants no second one.
        const DWORD share = mode == Sys_FileMode::Read
                                ? FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE
                                : FILE_SHARE_READ;
        const HANDLE handle = CreateFileW(Wide(path).c_str(), access, share, nullptr, disposition,
                                          FILE_ATTRIBUTE_NORMAL, nullptr);
        if (handle == INVALID_HANDLE_VALUE)
            Fail(path, GetLastError());
        return std::make_unique<WindowsBackend>(path, handle);
    }

    void Replace(const std::string& from, const std::string& to) override {
        if (!MoveFileExW(Wide(from).c_str(), Wide(to).c_str(),
                         MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH))
            Fail(to, GetLastError());
    }

    void Remove(const std::string& path) override {
        if (!DeleteFileW(Wide(path).c_str()) && GetLastError() != ERROR_FILE_NOT_FOUND)
            Fail(path, GetLastError());
    }

    std::string Resolve(const std::string& path) override { return path; }
    // Access lists are inherited from the folder, which both files share.
    void CopyAccess(const std::string&, const std::string&) override {}
};
} // namespace

Sys_FileSystem& Sys_FileSystem::Native() {
    static WindowsFileSystem fileSystem;
    return fileSystem;
}

Sys_PathKind Sys_GetPathKind(const std::string& path) {
    const DWORD attributes = GetFileAttributesW(Wide(path).c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES)
        return Sys_PathKind::Nothing;
    return attributes & FILE_ATTRIBUTE_DIRECTORY ? Sys_PathKind::Folder : Sys_PathKind::File;
}

bool Sys_IsStream(const std::string& path) {
    const HANDLE handle =
        CreateFileW(Wide(path).c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (handle == INVALID_HANDLE_VALUE)
        return false;
    const DWORD type = GetFileType(handle);
    CloseHandle(handle);
    return type == FILE_TYPE_CHAR || type == FILE_TYPE_PIPE;
}

std::string Sys_GetProgramPath() {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return Narrow(path);
}

unsigned long Sys_GetProcessID() { return GetCurrentProcessId(); }

void Sys_NormalizeSeparators(std::string& path) {
    std::replace(path.begin(), path.end(), '\\', '/');
}

bool Sys_IsRootPath(const std::string& path) {
    return path == "/" || (path.size() == 3 && path[1] == ':' && path[2] == '/');
}
