// The POSIX side of sys_file.
#include "basekit/sys/sys_file.h"
#include "basekit/sys/sys_fileplatform.h"

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {
[[noreturn]] void Fail(const std::string& path, int error) {
    throw Sys_FileError(path, std::strerror(error));
}

class PosixBackend : public Sys_FileBackend {
  public:
    PosixBackend(std::string path, int descriptor)
        : mPath(std::move(path)), mDescriptor(descriptor) {}
    ~PosixBackend() override { close(mDescriptor); }

    std::size_t ReadAt(std::uint64_t offset, void* bytes, std::size_t size) override {
        std::size_t done = 0;
        while (done < size) {
            const ssize_t count =
                ReadSome(offset + done, static_cast<char*>(bytes) + done, size - done);
            if (count == 0)
                break;
            if (count > 0)
                done += static_cast<std::size_t>(count);
            else if (errno != EINTR)
                Fail(mPath, errno);
        }
        return done;
    }

    void WriteAt(std::uint64_t offset, const void* bytes, std::size_t size) override {
        std::size_t done = 0;
        while (done < size) {
            const ssize_t count =
                WriteSome(offset + done, static_cast<const char*>(bytes) + done, size - done);
            if (count >= 0)
                done += static_cast<std::size_t>(count);
            else if (errno != EINTR)
                Fail(mPath, errno);
        }
    }

    std::uint64_t GetSize() override {
        struct stat status;
        if (fstat(mDescriptor, &status) != 0)
            Fail(mPath, errno);
        return S_ISREG(status.st_mode) ? static_cast<std::uint64_t>(status.st_size) : 0;
    }

    void Flush() override {
        // Some file systems cannot synchronise; they have nothing more to promise.
        if (fsync(mDescriptor) != 0 && errno != EINVAL && errno != EROFS)
            Fail(mPath, errno);
    }

  private:
    ssize_t ReadSome(std::uint64_t offset, char* bytes, std::size_t size) {
        const ssize_t count = pread(mDescriptor, bytes, size, static_cast<off_t>(offset));
        // A pipe has no offsets; it is read as it comes.
        return count < 0 && errno == ESPIPE ? read(mDescriptor, bytes, size) : count;
    }

    ssize_t WriteSome(std::uint64_t offset, const char* bytes, std::size_t size) {
        const ssize_t count = pwrite(mDescriptor, bytes, size, static_cast<off_t>(offset));
        return count < 0 && errno == ESPIPE ? write(mDescriptor, bytes, size) : count;
    }

    std::string mPath;
    int mDescriptor;
};

class PosixFileSystem : public Sys_FileSystem {
  public:
    std::unique_ptr<Sys_FileBackend> Open(const std::string& path, Sys_FileMode mode) override {
        int flags = O_RDONLY;
        if (mode == Sys_FileMode::Update)
            flags = O_RDWR;
        else if (mode == Sys_FileMode::Create)
            flags = O_RDWR | O_CREAT | O_EXCL;
        else if (mode == Sys_FileMode::Stream)
            flags = O_WRONLY;
        const int descriptor = open(path.c_str(), flags | O_CLOEXEC, 0666);
        if (descriptor < 0)
            Fail(path, errno);
        auto backend = std::make_unique<PosixBackend>(path, descriptor);
        struct stat status;
        if (fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode))
            Fail(path, EISDIR);
        return backend;
    }

    void Replace(const std::string& from, const std::string& to) override {
        if (rename(from.c_str(), to.c_str()) != 0)
            Fail(to, errno);
        // The new name is safe only once the folder is. Where a folder cannot be opened or
        // synchronised the rename stands all the same.
        const std::string folder = Sys_FileLoc(to).GetParent().GetPath();
        const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (descriptor >= 0) {
            fsync(descriptor);
            close(descriptor);
        }
    }

    void Remove(const std::string& path) override {
        if (unlink(path.c_str()) != 0 && errno != ENOENT)
            Fail(path, errno);
    }

    std::string Resolve(const std::string& path) override {
        constexpr int kMostLinks = 40;
        std::string at = path;
        for (int links = 0; links < kMostLinks; ++links) {
            char text[PATH_MAX];
            if (realpath(at.c_str(), text))
                return text;
            // A link to what is not there yet: that is what will be made.
            const ssize_t length = readlink(at.c_str(), text, sizeof text);
            if (length <= 0)
                return at;
            const std::string target(text, static_cast<std::size_t>(length));
            at = target[0] == '/' ? target : Sys_FileLoc(at).GetSibling(target).GetPath();
        }
        Fail(path, ELOOP);
    }

    void CopyAccess(const std::string& from, const std::string& to) override {
        struct stat status;
        if (stat(from.c_str(), &status) != 0)
            return;
        mode_t mode = status.st_mode & 0777;
        if (chown(to.c_str(), status.st_uid, status.st_gid) != 0 &&
            chown(to.c_str(), static_cast<uid_t>(-1), status.st_gid) != 0) {
            // Another group: it gets what everybody has, not what the old one had.
            mode = (mode & 0707) | (mode & 07) << 3;
        }
        (void)chmod(to.c_str(), mode);
    }
};
} // namespace

Sys_FileSystem& Sys_FileSystem::Native() {
    static PosixFileSystem fileSystem;
    return fileSystem;
}

Sys_PathKind Sys_GetPathKind(const std::string& path) {
    struct stat status;
    if (stat(path.c_str(), &status) != 0)
        return Sys_PathKind::Nothing;
    return S_ISDIR(status.st_mode) ? Sys_PathKind::Folder : Sys_PathKind::File;
}

bool Sys_IsStream(const std::string& path) {
    struct stat status;
    return stat(path.c_str(), &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode);
}

std::string Sys_GetProgramPath() {
    char path[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
    return length > 0 ? std::string(path, static_cast<std::size_t>(length))
                      : std::string("./program");
}

unsigned long Sys_GetProcessID() { return static_cast<unsigned long>(getpid()); }

void Sys_NormalizeSeparators(std::string&) {}

bool Sys_IsRootPath(const std::string& path) { return path == "/"; }
