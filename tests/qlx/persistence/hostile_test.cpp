// Descriptions and packed files that were made to do harm: each ends in an error with its place, or
// in a tree, in time and memory that go with its size.
#include <gtest/gtest.h>

#include <algorithm>

#include "basekit/sys/sys_typedstream.h"
#include "mediakit/ff/ff_checksum.h"
#include "mediakit/ff/ff_document.h"
#include "qlx/persistence/qlx_binaryformat.h"
#include "qlx/persistence/qlx_sourceformat.h"
#include "tests/support/allocation_counter.h"
#include "tests/support/assertion_catcher.h"

namespace {
std::unique_ptr<QLX_RawPropertyContainer> Read(const std::string& text,
                                               std::vector<std::string>* problems = nullptr) {
    Sys_File file("bad.xml", text);
    QLX_XMLParser parser(&file, nullptr);
    std::unique_ptr<QLX_RawPropertyContainer> root(parser.Parse());
    for (const QLX_SourceProblem& problem : parser.GetProblems())
        if (problems)
            problems->push_back(problem.ToString());
    return root;
}

std::string Times(std::size_t count, const std::string& text) {
    std::string out;
    out.reserve(count * text.size());
    for (std::size_t i = 0; i < count; ++i)
        out += text;
    return out;
}

TEST(HostileSource, OtherFilesAreNotOpened) {
    const struct {
        const char* mText;
        const char* mProblem; // null: it is read, since nothing of the other file is used
        bool mIsRead;
    } rows[] = {
        {"<!DOCTYPE c [<!ENTITY x SYSTEM 'file:///etc/passwd'>]>\n<c>&x;</c>",
         "bad.xml:2:4: an entity lies outside the file: file:///etc/passwd", false},
        {"<!DOCTYPE c [<!ENTITY x SYSTEM 'file:///etc/passwd'>]>\n<c a='&x;'/>",
         "bad.xml:2:7: reference to external entity in attribute", false},
        {"<!DOCTYPE c SYSTEM 'http://127.0.0.1/c.dtd'>\n<c/>", nullptr, true},
        {"<!DOCTYPE c SYSTEM 'c.dtd'>\n<c>&later;</c>",
         "bad.xml:2:4: the entity \"later\" is not known here", true},
        {"<!DOCTYPE c [<!ENTITY % p SYSTEM '/etc/passwd'> %p;]>\n<c>&x;</c>",
         "bad.xml:2:4: the entity \"x\" is not known here", true},
        {"<c>&x;</c>", "bad.xml:1:4: undefined entity", false},
        {"<!DOCTYPE c [<!ENTITY a '&b;'><!ENTITY b '&a;'>]><c a='&a;'/>",
         "bad.xml:1:50: recursive entity reference", false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.mText);
        std::vector<std::string> problems;
        EXPECT_EQ(Read(row.mText, &problems) != nullptr, row.mIsRead);
        EXPECT_TRUE(row.mProblem ? std::count(problems.begin(), problems.end(), row.mProblem) == 1
                                 : problems.empty())
            << testing::PrintToString(problems);
    }
}

TEST(HostileSource, NumbersBeyondEveryRangeAreHeldAtItsEnd) {
    const auto root = Read("<c><property name='i' type='int32' value='99999999999999999999'/>"
                           "<property name='l' type='int64' value='-99999999999999999999'/>"
                           "<property name='r' type='rect' value='-3000000000 1e9 0x10 7'/>"
                           "<property name='k' type='rgbcolor' value='0xFFFFFFFFFF 0x 1'/></c>");
    ASSERT_TRUE(root);
    root->SetCurrentFilter(QLX_PropertyFilter::RootFilter());
    std::int32_t narrow = 0;
    std::int64_t wide = 0;
    VRect rect;
    CRGBColor color;
    EXPECT_TRUE(root->GetInt32Property("i", narrow) && root->GetInt64Property("l", wide) &&
                root->GetRectProperty("r", rect) && root->GetColorProperty("k", color));
    EXPECT_EQ(narrow, INT32_MAX);
    EXPECT_EQ(wide, INT64_MIN);
    EXPECT_EQ(rect, VRect(/*left*/ 1, /*top*/ INT32_MIN, /*right*/ 0, /*bottom*/ 0));
    EXPECT_EQ(color, CRGBColor(0xFFFF, 0, 0));
}

TEST(HostileSource, ProblemsAreCountedAfterTheFirstThousand) {
    std::vector<std::string> problems;
    EXPECT_TRUE(Read("<c>" + Times(5000, "<property/>") + "</c>", &problems));
    ASSERT_EQ(problems.size(), 1001u);
    EXPECT_EQ(problems.back(), "bad.xml: 4000 further problems");
}

/// A tree that is as wide, or whose names are as long, as a file can make it.
TEST(HostileSource, PathsOfManySiblingsTakeOneWalk) {
    constexpr std::size_t kCount = 50'000;
    const auto root = Read("<c>" + Times(kCount, "<view/>") + "<view a='1'/><last/></c>");
    ASSERT_TRUE(root);
    // Were each path to count its siblings, this would be more than a billion steps.
    std::list<std::string> messages;
    EXPECT_EQ(root->VerifyWellKnownProperties(messages, 10), 2 * (kCount + 1));
    EXPECT_EQ(messages.size(), 10u);
    std::size_t number = 0;
    for (const auto* child = root->GetFirstChild(); child; child = child->GetNextSibling()) {
        const std::string path = child->GetPath();
        if (child->GetName() == "view")
            ASSERT_EQ(path, "c/view[" + std::to_string(++number) + "]");
        else
            ASSERT_EQ(path, "c/last");
    }
    EXPECT_EQ(root->FindByPath("c/view[50001]")->GetNextSibling(), nullptr);
}

TEST(HostileSource, PathsOfLongNamesAreCutToTheirEnd) {
    const std::string name(30'000, 'n');
    const auto root = Read("<c><" + name + "><view/></" + name + "></c>");
    ASSERT_TRUE(root);
    const std::string path = root->GetFirstChild()->GetFirstChild()->GetPath();
    EXPECT_EQ(path.size(), QLX_RawPropertyContainer::kLongestPath + 3);
    EXPECT_EQ(path.substr(0, 5), "...nn");
    EXPECT_EQ(path.substr(path.size() - 6), "n/view");
}

TEST(ContainerPath, LeadsBackToItsContainer) {
    const auto root = Read("<a><b/><b><c/></b><b><c/><c/></b><d><b/></d></a>");
    std::vector<const QLX_RawPropertyContainer*> all{root.get()};
    std::vector<std::string> paths;
    for (std::size_t i = 0; i < all.size(); ++i) {
        for (const auto* child = all[i]->GetFirstChild(); child; child = child->GetNextSibling())
            all.push_back(child);
        paths.push_back(all[i]->GetPath());
        EXPECT_EQ(root->FindByPath(paths.back()), all[i]) << paths.back();
    }
    EXPECT_EQ(paths, (std::vector<std::string>{"a", "a/b[1]", "a/b[2]", "a/b[3]", "a/d", "a/b[2]/c",
                                               "a/b[3]/c[1]", "a/b[3]/c[2]", "a/d/b"}));
    for (const char* none : {"", "b", "a/b[4]", "a/b[0]", "a/b[x]", "a/b[", "a/d/b/c",
                             "a/b[99999999999999999999]", "/a"})
        EXPECT_EQ(root->FindByPath(none), nullptr) << none;
    // Numbers follow what becomes of the children.
    const auto removed = root->RemoveChild(root->GetFirstChild());
    EXPECT_EQ(all[2]->GetPath(), "a/b[1]");
    root->AddChild(std::make_unique<QLX_RawPropertyContainer>("b"));
    EXPECT_EQ(root->FindByPath("a/b[3]")->GetPath(), "a/b[3]");
}

/// Memory: what a tree takes may outlive the tree, and is asked for in large pieces.
TEST(TreeMemory, PartsOutliveTheirTree) {
    auto root = Read("<a><b><property name='p' type='string' value='kept'/></b><b/><c x='1'/></a>");
    std::unique_ptr<QLX_RawPropertyContainer> part = root->RemoveChild(root->GetFirstChild());
    QLX_PropertySet copy = root->GetChildren("c").at(0)->GetFilterPropertyMap().begin()->second;
    root.reset();
    part->SetInt32Property("more", 7, QLX_PropertyFilter::RootFilter());
    part->AddChild(std::make_unique<QLX_RawPropertyContainer>("late"));
    part->SetCurrentFilter(QLX_PropertyFilter::RootFilter());
    std::string text;
    EXPECT_TRUE(part->GetStringProperty("p", text) && text == "kept");
    EXPECT_TRUE(copy.GetStringProperty("x", text) && text == "1");
    copy.SetStringProperty("y", std::string(1000, 'y'));
    EXPECT_EQ(copy.GetCount(), 2u);
}

TEST(TreeMemory, ContainersAndSetsAreNotAllocatedOneByOne) {
    if (!AllocationCounter::CountsTheLibrary())
        GTEST_SKIP() << "the library's allocations are not counted here";
    const std::string text =
        "<c>" + Times(1000, "<v a='1'><property name='p' type='int32' value='1'/></v>") + "</c>";
    std::unique_ptr<QLX_RawPropertyContainer> root;
    const AllocationCounter counter;
    root = Read(text);
    // A node of the filter map each, and what is the same for every tree.
    EXPECT_LT(counter.GetCount(), 1200u);
}

TEST(TreeMemory, LargeSetsHavePiecesOfTheirOwn) {
    std::string text = "<c>";
    for (int i = 0; i < 5000; ++i)
        text += "<property name='p" + std::to_string(i) + "' type='int32' value='" +
                std::to_string(i) + "'/>";
    const auto root = Read(text + "<d><property name='q' type='string' value='" +
                           std::string(300'000, 'q') + "'/></d></c>");
    root->SetCurrentFilter(QLX_PropertyFilter::RootFilter());
    std::int32_t value = 0;
    for (int i = 0; i < 5000; ++i)
        EXPECT_TRUE(root->GetInt32Property("p" + std::to_string(i), value) && value == i);
    std::string long_;
    EXPECT_TRUE(root->GetFirstChild()->GetStringProperty("q", long_));
    EXPECT_EQ(long_.size(), 300'000u);
}

TEST(TreeMemory, LargeTreesAreTakenDownInAnyOrder) {
    // Of several large pages, with what lies outside them: a long text, a set of another filter.
    const auto root = Read("<c>" +
                           Times(20'000, "<v a='1'><property name='p' type='string' value='" +
                                             std::string(200, 'p') +
                                             "'/><property name='p' type='string' value=''"
                                             " Layout='Compact'/></v>") +
                           "</c>");
    ASSERT_TRUE(root);
    EXPECT_EQ(root->CountChildren(), 20'000u);
    std::unique_ptr<QLX_RawPropertyContainer> kept;
    while (QLX_RawPropertyContainer* const child = root->GetFirstChild())
        kept = root->RemoveChild(child);
    kept->SetCurrentFilter(QLX_PropertyFilter::RootFilter());
    std::string text;
    EXPECT_TRUE(kept->GetStringProperty("p", text) && text.size() == 200);
}

/// Counts the bytes that are read.
class CountingSystem : public Sys_FileSystem {
  public:
    explicit CountingSystem(std::string text) : mText(std::move(text)) {}
    std::unique_ptr<Sys_FileBackend> Open(const std::string&, Sys_FileMode) override {
        struct Backend : Sys_FileBackend {
            explicit Backend(CountingSystem& system) : mSystem(system) {}
            std::size_t ReadAt(std::uint64_t offset, void* bytes, std::size_t size) override {
                const std::size_t at =
                    std::min(static_cast<std::size_t>(offset), mSystem.mText.size());
                const std::size_t count = mSystem.mText.copy(static_cast<char*>(bytes), size, at);
                mSystem.mRead += count;
                return count;
            }
            void WriteAt(std::uint64_t, const void*, std::size_t) override {}
            std::uint64_t GetSize() override { return mSystem.mText.size(); }
            void Flush() override {}
            CountingSystem& mSystem;
        };
        return std::make_unique<Backend>(*this);
    }
    void Replace(const std::string&, const std::string&) override {}
    void Remove(const std::string&) override {}
    std::string Resolve(const std::string& path) override { return path; }
    void CopyAccess(const std::string&, const std::string&) override {}

    std::size_t mRead = 0;

  private:
    std::string mText;
};

std::string MemoryDocument(const std::function<void(FF_Document&)>& fill) {
    auto made = std::make_unique<Sys_File>("memory", std::string());
    Sys_File& file = *made;
    FF_Document document(std::move(made));
    fill(document);
    std::string bytes(static_cast<std::size_t>(file.GetSize()), '\0');
    file.SetPosition(0);
    bytes.resize(file.Read(bytes.data(), bytes.size()));
    return bytes;
}

TEST(HostilePack, FootersThatLieAreNotAllFollowed) {
    std::string bytes = MemoryDocument([](FF_Document&) {});
    const std::string footer = bytes.substr(bytes.size() - 48); // its own size, a multiple of 16
    // Each is right in itself and names all before it as its table, with a sum that is wrong.
    for (int i = 0; i < 4000; ++i) {
        Sys_TypedOutStream out;
        out.WriteBytes(footer.data(), 8);
        out.WriteUInt64(bytes.size());
        out.WriteUInt64(32);
        out.WriteUInt64(bytes.size() - 32);
        out.WriteUInt32(0);
        out.WriteUInt32(1);
        out.WriteUInt32(0);
        std::string made = out.GetBytes();
        Sys_TypedOutStream sum;
        sum.WriteUInt32(FF_Checksum(made));
        bytes += made + sum.GetBytes();
        bytes.resize((bytes.size() + 15) / 16 * 16, '\0');
    }
    CountingSystem system(bytes);
    try {
        (void)FF_Document::Open(Sys_FileLoc("bad.qlxpack"), Sys_FileMode::Read, system);
    } catch (const std::runtime_error&) {
    }
    EXPECT_LT(system.mRead, 10 * bytes.size());
}

std::string Refusal(const std::string& bytes) {
    AssertionCatcher catcher;
    try {
        FF_Document document(std::make_unique<Sys_File>("bad.qlxpack", bytes));
        QLX_BinaryViewFormat format(&document);
        for (const std::string& name : format.GetNames())
            delete format.ReadMemento(name, /*trim*/ true);
    } catch (const std::runtime_error& error) {
        return error.what();
    }
    return {};
}

TEST(HostilePack, DictionariesThatLieAreRefused) {
    const auto dictionary = [](std::initializer_list<std::pair<const char*, int>> entries,
                               int count) {
        return MemoryDocument([&](FF_Document& document) {
            Sys_TypedOutStream out;
            out.WriteInt32(count);
            for (const auto& [name, key] : entries) {
                out.WriteString(name);
                out.WriteInt32(key);
            }
            document.AppendStream(QLX_BinaryViewFormat::kStreamType, 1, "Dictionary",
                                  out.GetBytes());
            document.AppendStream(QLX_BinaryViewFormat::kStreamType, 2, "", "\1");
            document.Commit();
        });
    };
    const struct {
        const char* mWhy;
        std::string mBytes;
        const char* mReason;
    } rows[] = {
        {"one stream for two names", dictionary({{"A", 2}, {"B", 2}}, 2),
         "the dictionary names the key 2 twice"},
        {"a key that no stream has", dictionary({{"A", 9}}, 1),
         "the dictionary names \"A\" with the key 9, which no stream has"},
        {"2^31 - 1 names", dictionary({{"A", 2}}, INT32_MAX), "the dictionary is damaged"},
        {"less than no names", dictionary({}, -1), "the dictionary is damaged"},
        {"more behind the names", dictionary({{"A", 2}}, 0), "the dictionary is damaged"},
        {"a stream that ends at once", dictionary({{"A", 2}}, 1), "A: at byte 1: "},
    };
    for (const auto& row : rows)
        EXPECT_NE(Refusal(row.mBytes).find(row.mReason), std::string::npos)
            << row.mWhy << ": " << Refusal(row.mBytes);
}

TEST(HostilePack, FiltersAreShort) {
    QLX_RawPropertyContainer* const root = new QLX_RawPropertyContainer("viewhierarchy");
    const QLX_ViewMemento memento(root, "Long");
    root->SetBoolProperty("p", true, QLX_PropertyFilter::MakeFilter(std::string(4000, 'L')));
    const std::string bytes = QLX_BinaryViewFormat::EncodeMemento(memento);
    EXPECT_TRUE(QLX_BinaryViewFormat::DecodeMemento(bytes, "Long"));
    root->SetBoolProperty("p", true, QLX_PropertyFilter::MakeFilter(std::string(5000, 'L')));
    EXPECT_THROW((void)QLX_BinaryViewFormat::EncodeMemento(memento), std::runtime_error);
    // The same bytes with a text in the filter that is longer than any writer's.
    std::string longer = bytes;
    const std::size_t at = longer.find(std::string(4000, 'L'));
    ASSERT_NE(at, std::string::npos);
    longer.replace(at - 2, 4002, std::string("\x88\x27", 2) + std::string(5000, 'L'));
    EXPECT_THROW((void)QLX_BinaryViewFormat::DecodeMemento(longer, "Long"), std::runtime_error);
}
} // namespace
