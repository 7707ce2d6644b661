// Locations, files, and replacing a file whatever goes wrong.
#include "basekit/sys/sys_file.h"

#include <gtest/gtest.h>

namespace {
TEST(FileLoc, TakesPathsApart) {
    const struct {
        const char* mPath;
        const char* mName;
        const char* mStem;
        const char* mExtension;
        const char* mParent;
    } rows[] = {
        {"/a/b/Mix.xml", "Mix.xml", "Mix", "xml", "/a/b"},
        {"Mix.DEU.str", "Mix.DEU.str", "Mix.DEU", "str", "."},
        {"/a.b/c", "c", "c", "", "/a.b"}, // a dot in a folder is no extension
        {"/a/.hidden", ".hidden", ".hidden", "", "/a"},
        {"/a/b/", "b", "b", "", "/a"}, // a slash at the end names the folder itself
        {"/", "", "", "", "/"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mPath);
        const Sys_FileLoc loc{row.mPath};
        EXPECT_EQ(loc.GetName(), row.mName);
        EXPECT_EQ(loc.GetStem(), row.mStem);
        EXPECT_EQ(loc.GetExtension(), row.mExtension);
        EXPECT_EQ(loc.GetParent().GetPath(), row.mParent);
    }
    EXPECT_EQ(Sys_FileLoc("/a/b.xml").GetSibling("c.str").GetPath(), "/a/c.str");
    EXPECT_EQ(Sys_FileLoc("/").GetChild("x").GetPath(), "/x");
}

TEST(File, ReadsAcrossItsBuffer) {
    std::string contents;
    for (int i = 0; i < 100'000; ++i)
        contents += static_cast<char>(i * 7);
    Sys_File file("memory", contents);
    std::string read;
    char block[1000];
    while (const std::size_t count = file.Read(block, sizeof block))
        read.append(block, count);
    EXPECT_EQ(read, contents);
    file.SetPosition(70'000);
    EXPECT_EQ(file.Read(block, 10), 10u);
    EXPECT_EQ(std::string(block, 10), contents.substr(70'000, 10));
}

TEST(LineEndings, FirstLineDecides) {
    EXPECT_EQ(Sys_DetectLineEndings("a\nb\r\n"), LineEndings::Unix);
    EXPECT_EQ(Sys_DetectLineEndings("a\r\nb\n"), LineEndings::Windows);
    EXPECT_EQ(Sys_DetectLineEndings("a\rb"), LineEndings::Mac);
    EXPECT_EQ(Sys_DetectLineEndings("none"), LineEndings::Unix);
}

/// The native file system until its n-th changing operation: that one fails, and if the process is
/// to have died there, so does everything after it.
class FailingFileSystem : public Sys_FileSystem {
  public:
    FailingFileSystem(int failAt, bool dead) : mLeft(failAt), mDead(dead) {}
    [[nodiscard]] bool HasFailed() const { return mLeft <= 0; }

    void Step(const std::string& path) {
        if (mLeft == 1 || (mDead && mLeft <= 0)) {
            mLeft = 0;
            throw Sys_FileError(path, "No space left on device");
        }
        if (mLeft > 0)
            --mLeft;
    }

    class Backend : public Sys_FileBackend {
      public:
        Backend(FailingFileSystem& system, std::string path,
                std::unique_ptr<Sys_FileBackend> backend)
            : mSystem(system), mPath(std::move(path)), mBackend(std::move(backend)) {}
        std::size_t ReadAt(std::uint64_t offset, void* bytes, std::size_t size) override {
            return mBackend->ReadAt(offset, bytes, size);
        }
        void WriteAt(std::uint64_t offset, const void* bytes, std::size_t size) override {
            try {
                mSystem.Step(mPath);
            } catch (...) {
                mBackend->WriteAt(offset, bytes, size / 2); // a disk fills up in the middle
                throw;
            }
            mBackend->WriteAt(offset, bytes, size);
        }
        std::uint64_t GetSize() override { return mBackend->GetSize(); }
        void Flush() override {
            mSystem.Step(mPath);
            mBackend->Flush();
        }

      private:
        FailingFileSystem& mSystem;
        std::string mPath;
        std::unique_ptr<Sys_FileBackend> mBackend;
    };

    std::unique_ptr<Sys_FileBackend> Open(const std::string& path, Sys_FileMode mode) override {
        if (mode == Sys_FileMode::Create)
            Step(path);
        return std::make_unique<Backend>(*this, path, Native().Open(path, mode));
    }
    void Replace(const std::string& from, const std::string& to) override {
        Step(to);
        Native().Replace(from, to);
    }
    void Remove(const std::string& path) override {
        if (!mDead)
            Native().Remove(path);
    }
    std::string Resolve(const std::string& path) override { return Native().Resolve(path); }
    void CopyAccess(const std::string& from, const std::string& to) override {
        Native().CopyAccess(from, to);
    }

  private:
    int mLeft;
    bool mDead;
};

class SafeWriter : public testing::TestWithParam<bool> {};

TEST_P(SafeWriter, LeavesTheOldFileWholeWhereverItFails) {
    const Sys_FileLoc loc(std::string(QLX_TEST_OUTPUT) + "/sys_file_safe.txt");
    const std::string oldText = "old contents";
    const std::string newText(10'000, 'n');
    int failures = 0;
    for (int failAt = 1;; ++failAt) {
        SCOPED_TRACE(failAt);
        Sys_SafeWriter::Replace(loc, oldText);
        FailingFileSystem system(failAt, /*dead*/ GetParam());
        try {
            Sys_SafeWriter::Replace(loc, newText, system);
            EXPECT_EQ(Sys_File::ReadAll(loc), newText);
            break;
        } catch (const Sys_FileError& error) {
            ++failures;
            EXPECT_EQ(Sys_File::ReadAll(loc), oldText);
            EXPECT_EQ(std::string(error.what()),
                      loc.GetPath() + ": not written: No space left on device");
        }
    }
    EXPECT_EQ(failures, 4); // making, writing, flushing, moving
    Sys_FileSystem::Native().Remove(loc.GetPath());
}
INSTANTIATE_TEST_SUITE_P(FullDiskOrKilled, SafeWriter, testing::Bool());

TEST(SafeWriterTarget, NamesWhatCannotBeReplaced) {
    try {
        Sys_SafeWriter::Replace(Sys_FileLoc(QLX_TEST_OUTPUT), "x");
        FAIL() << "a folder was replaced";
    } catch (const Sys_FileError& error) {
        EXPECT_EQ(error.GetReason(), "not written: is a folder");
    }
    EXPECT_THROW(Sys_SafeWriter::Replace(Sys_FileLoc("/no/such/folder/file"), "x"), Sys_FileError);
}
} // namespace
