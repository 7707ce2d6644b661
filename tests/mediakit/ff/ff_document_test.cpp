// The container file: streams come back, and whatever befell its end or its bytes is noticed.
#include "mediakit/ff/ff_document.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "mediakit/ff/ff_checksum.h"

namespace {
Sys_FileLoc TestLoc() { return Sys_FileLoc(std::string(QLX_TEST_OUTPUT) + "/ff_document.qlxdoc"); }

/// Two commits: "one" first, then "two" and a later "one".
std::string MakeDocument() {
    Sys_FileSystem::Native().Remove(TestLoc().GetPath());
    const auto document = FF_Document::Create(TestLoc());
    document->AppendStream(256, 1, "one", "first");
    document->Commit();
    document->AppendStream(256, 2, "two", std::string(1000, 't'));
    document->AppendStream(256, 1, "one", "again");
    document->Commit();
    return Sys_File::ReadAll(TestLoc());
}

std::unique_ptr<FF_Document> OpenBytes(const std::string& bytes) {
    return std::make_unique<FF_Document>(std::make_unique<Sys_File>("memory", bytes));
}

TEST(Checksum, MatchesItsStandard) {
    EXPECT_EQ(FF_Checksum("123456789"), 0xCBF43926u);
    EXPECT_EQ(FF_Checksum(""), 0u);
}

TEST(Document, KeepsStreamsAcrossCommits) {
    const auto document = OpenBytes(MakeDocument());
    ASSERT_EQ(document->GetEntries().size(), 3u);
    EXPECT_EQ(document->GetEntries()[1].mName, "two");
    EXPECT_EQ(document->ReadStream(0), "first");
    EXPECT_EQ(document->ReadStream(2), "again");
    EXPECT_FALSE(document->WasTorn());
    EXPECT_EQ(document->GetGeneration(), 3u); // the empty one, and two
}

TEST(Document, ATornWriteLeavesTheTableBefore) {
    const std::string whole = MakeDocument();
    std::size_t firstCommit = 0;
    for (std::size_t size = 0; size < whole.size(); ++size) {
        std::unique_ptr<FF_Document> document;
        try {
            if (size > 0)
                document = OpenBytes(whole.substr(0, size));
        } catch (const std::runtime_error&) {
        }
        if (!document) {
            // Before the very first table is complete there is nothing to go back to.
            EXPECT_EQ(firstCommit, 0u) << size;
            continue;
        }
        if (firstCommit == 0)
            firstCommit = size;
        const std::size_t count = document->GetEntries().size();
        EXPECT_TRUE(count == 0 || count == 1) << size;
        if (count == 1) {
            EXPECT_EQ(document->ReadStream(0), "first");
        }
        // And it can be written to again, behind what is torn.
        document->AppendStream(1, 9, "new", "news");
        document->Commit();
        EXPECT_EQ(document->ReadStream(count), "news");
    }
}

TEST(Document, AFlippedBitIsNoticedOrHarmless) {
    const std::string whole = MakeDocument();
    for (std::size_t at = 0; at < whole.size(); ++at) {
        std::string bytes = whole;
        bytes[at] = static_cast<char>(bytes[at] ^ (1 << (at % 8)));
        try {
            const auto document = OpenBytes(bytes);
            for (std::size_t i = 0; i < document->GetEntries().size(); ++i) {
                const std::string stream = document->ReadStream(i);
                EXPECT_TRUE(stream == "first" || stream == "again" ||
                            stream == std::string(1000, 't'))
                    << "at " << at;
            }
        } catch (const std::runtime_error& error) {
            EXPECT_NE(std::string(error.what()).find("memory: "), std::string::npos);
        }
    }
}

TEST(Document, SaysWhatIsNone) {
    EXPECT_THROW(OpenBytes("something else entirely, long enough to be a header"),
                 std::runtime_error);
    EXPECT_THROW(FF_Document::Create(TestLoc()), Sys_FileError); // it is there already
}
} // namespace
