// Replacing files as the disk has them: access rights, links, devices, and what is left behind.
#include "basekit/sys/sys_file.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

namespace {
namespace fs = std::filesystem;

std::string Fresh(const std::string& name) {
    const std::string folder = std::string(QLX_TEST_OUTPUT) + "/" + name;
    fs::remove_all(folder);
    fs::create_directories(folder);
    return folder;
}

struct stat StatusOf(const std::string& path) {
    struct stat status {};
    EXPECT_EQ(stat(path.c_str(), &status), 0) << path;
    return status;
}

std::size_t CountFiles(const std::string& folder) {
    return static_cast<std::size_t>(
        std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

/// The reason why a text could not replace the file; empty when it did.
std::string ReasonAgainst(const std::string& path, const std::string& text = "new") {
    try {
        Sys_SafeWriter::Replace(Sys_FileLoc(path), text);
    } catch (const Sys_FileError& error) {
        EXPECT_EQ(error.GetPath(), path);
        return error.GetReason();
    }
    return {};
}

TEST(SafeWriterPosix, KeepsTheAccessRights) {
    const std::string folder = Fresh("sys_file_access");
    for (const mode_t mode : {0600, 0640, 0444, 0755}) {
        const std::string path = folder + "/" + std::to_string(mode);
        Sys_SafeWriter::Replace(Sys_FileLoc(path), "old");
        ASSERT_EQ(chmod(path.c_str(), mode), 0);
        EXPECT_EQ(ReasonAgainst(path), "");
        EXPECT_EQ(StatusOf(path).st_mode & 07777, mode);
        EXPECT_EQ(Sys_File::ReadAll(Sys_FileLoc(path)), "new");
    }
    if (geteuid() == 0) { // only root may give files away
        const std::string path = folder + "/owned";
        Sys_SafeWriter::Replace(Sys_FileLoc(path), "old");
        ASSERT_EQ(chown(path.c_str(), 1234, 5678), 0);
        EXPECT_EQ(ReasonAgainst(path), "");
        EXPECT_EQ(StatusOf(path).st_uid, 1234u);
        EXPECT_EQ(StatusOf(path).st_gid, 5678u);
    }
}

TEST(SafeWriterPosix, NobodyElseReadsAPrivateFileWhileItIsWritten) {
    const std::string folder = Fresh("sys_file_private");
    const std::string path = folder + "/secret";
    Sys_SafeWriter::Replace(Sys_FileLoc(path), "old");
    ASSERT_EQ(chmod(path.c_str(), 0600), 0);
    Sys_SafeWriter writer{Sys_FileLoc(path)};
    writer.Write("half");
    for (const auto& entry : fs::directory_iterator(folder))
        EXPECT_EQ(StatusOf(entry.path()).st_mode & 077, 0u) << entry.path();
    EXPECT_EQ(CountFiles(folder), 2u);
}

TEST(SafeWriterPosix, FollowsLinks) {
    const std::string folder = Fresh("sys_file_links");
    fs::create_directory(folder + "/there");
    Sys_SafeWriter::Replace(Sys_FileLoc(folder + "/there/old"), "old");
    fs::create_symlink("there/old", folder + "/link");
    fs::create_symlink("link", folder + "/link to link");
    fs::create_symlink("there/new", folder + "/to nothing yet");
    fs::create_symlink("circle", folder + "/circle");
    EXPECT_EQ(ReasonAgainst(folder + "/link to link"), "");
    EXPECT_EQ(Sys_File::ReadAll(Sys_FileLoc(folder + "/there/old")), "new");
    EXPECT_EQ(ReasonAgainst(folder + "/to nothing yet"), "");
    EXPECT_EQ(Sys_File::ReadAll(Sys_FileLoc(folder + "/there/new")), "new");
    EXPECT_EQ(ReasonAgainst(folder + "/circle"), "not written: Too many levels of symbolic links");
    for (const char* link : {"/link", "/link to link", "/to nothing yet", "/circle"})
        EXPECT_TRUE(fs::is_symlink(folder + link)) << link;
    EXPECT_EQ(CountFiles(folder), 5u);
}

TEST(SafeWriterPosix, WritesIntoDevicesAndPipesInsteadOfReplacingThem) {
    const std::string folder = Fresh("sys_file_streams");
    // Devices of its own, as root may make them: a mistake shall not cost the machine one.
    const std::string full = folder + "/full";
    const bool mayMake = mknod(full.c_str(), S_IFCHR | 0600, makedev(1, 7)) == 0;
    const int opened = mayMake ? open(full.c_str(), O_WRONLY) : -1;
    if (opened >= 0) {
        close(opened);
        EXPECT_EQ(ReasonAgainst(full), "not written: No space left on device");
        EXPECT_TRUE(S_ISCHR(StatusOf(full).st_mode));
    }
    fs::remove(full);
    const std::string pipe = folder + "/pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const int reader = open(pipe.c_str(), O_RDONLY | O_NONBLOCK);
    ASSERT_GE(reader, 0);
    EXPECT_EQ(ReasonAgainst(pipe, "through the pipe"), "");
    char text[64] = {};
    EXPECT_EQ(read(reader, text, sizeof text), 16);
    close(reader);
    EXPECT_STREQ(text, "through the pipe");
    EXPECT_TRUE(S_ISFIFO(StatusOf(pipe).st_mode));
    EXPECT_EQ(CountFiles(folder), 1u);
}

TEST(SafeWriterPosix, AFullDiskLeavesTheOldFileAndNothingElse) {
    const std::string folder = Fresh("sys_file_full");
    const std::string path = folder + "/file";
    Sys_SafeWriter::Replace(Sys_FileLoc(path), "old");
    // The limit on a file's size is what fills up here: the system itself refuses the byte.
    struct rlimit before {};
    getrlimit(RLIMIT_FSIZE, &before);
    struct rlimit small = before;
    small.rlim_cur = 100;
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    const std::string reason = ReasonAgainst(path, std::string(1000, 'n'));
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(reason, "not written: File too large");
    EXPECT_EQ(Sys_File::ReadAll(Sys_FileLoc(path)), "old");
    EXPECT_EQ(CountFiles(folder), 1u);
}

TEST(SafeWriterPosix, NamesWhatIsWrongWithThePlace) {
    const std::string folder = Fresh("sys_file_places");
    Sys_SafeWriter::Replace(Sys_FileLoc(folder + "/file"), "old");
    const struct {
        std::string mPath;
        const char* mReason;
    } rows[] = {
        {folder, "not written: is a folder"},
        {folder + "/none/file", "not written: No such file or directory"},
        {folder + "/file/inside", "not written: Not a directory"},
        {folder + "/" + std::string(300, 'n'), "not written: File name too long"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(ReasonAgainst(row.mPath), row.mReason) << row.mPath;
    EXPECT_EQ(CountFiles(folder), 1u);
}
} // namespace
