// Reading and writing descriptions: through text in memory, and through files.
#include "qlx/persistence/qlx_sourceformat.h"

#include <gtest/gtest.h>

#include <random>

#include "tests/support/assertion_catcher.h"

namespace {
std::unique_ptr<QLX_RawPropertyContainer> Read(const std::string& text,
                                               std::vector<QLX_SourceProblem>* problems = nullptr,
                                               QLX_RawPropertyContainerFactory* factory = nullptr) {
    Sys_File file("test.xml", text);
    QLX_XMLParser parser(&file, factory);
    std::unique_ptr<QLX_RawPropertyContainer> root(parser.Parse());
    if (problems)
        *problems = parser.GetProblems();
    return root;
}

const char* const kSmall =
    R"(<container name="Mix">
	<viewhierarchy name="Mix" resid="128">
		<property name="Filter" type="string" value="Filter" Layout="Compact"/>
		<behavior class="TDrag" Identifier="drag">
		</behavior> <!-- -->
		<view class="TButton" Identifier="mute">
			<property name="Enabled" type="bool" value="true"/>
			<property name="Frame" type="rect" value="1 2 3 4"/>
			<property name="Title" type="stringidx" value="MUTE"/>
			<property name="Frame" type="rect" value="5 6 7 8" Layout="Compact"/>
		</view> <!-- -->
	</viewhierarchy> <!--Mix -->
</container>)";

TEST(SourceFormat, WritesWhatItReads) {
    const auto wrapper = Read(kSmall);
    ASSERT_TRUE(wrapper);
    EXPECT_EQ(wrapper->GetName(), "container");
    ASSERT_EQ(wrapper->CountChildren(), 1u);
    EXPECT_EQ(QLX_SourceViewFormat::WriteToText(*wrapper->GetFirstChild(), LineEndings::Unix),
              kSmall);
}

TEST(SourceFormat, SelectsLayoutAndLanguage) {
    const auto wrapper = Read(kSmall);
    QLX_RawPropertyContainer* const root = wrapper->GetFirstChild();
    QLX_RawPropertyContainer* const button = root->GetChildren("view").at(0);
    VRect frame;
    root->SetCurrentFilter(QLX_PropertyFilter::MakeFilter("Default"));
    EXPECT_TRUE(button->GetRectProperty("Frame", frame));
    EXPECT_EQ(frame, VRect(2, 1, 4, 3));
    StCurrentLanguage french(QLX_Language::French);
    root->SetCurrentFilter(QLX_PropertyFilter::MakeFilter("Compact"));
    EXPECT_TRUE(button->GetRectProperty("Frame", frame));
    EXPECT_EQ(frame, VRect(6, 5, 8, 7));
    bool enabled = false;
    EXPECT_TRUE(button->GetBoolProperty("Enabled", enabled) && enabled);
}

TEST(SourceFormat, ReadsUnderFrenchWithEnglishForTheFile) {
    StCurrentLanguage french(QLX_Language::French);
    std::unique_ptr<QLX_RawPropertyContainer> wrapper;
    {
        StCurrentLanguage english(QLX_Language::English);
        wrapper = Read(
            R"(<container name=""><viewhierarchy name="W"><view class="TView" Identifier="main">
            <property name="p" type="string" value="common"/>
            <property name="p" type="string" value="compact French" Layout="Compact" Language="FRA"/>
            <property name="q" type="string" value="compact" Layout="Compact"/>
            <property name="r" type="string" value="English" Language="ENU"/>
            </view></viewhierarchy></container>)");
    }
    QLX_RawPropertyContainer* const root = wrapper->GetFirstChild();
    root->SetCurrentFilter(QLX_PropertyFilter::MakeFilter("Compact"));
    std::string text[4];
    const QLX_RawPropertyContainer* const view = root->GetFirstChild();
    EXPECT_TRUE(view->GetStringProperty("p", text[0]) && view->GetStringProperty("q", text[1]) &&
                view->GetStringProperty("class", text[2]) && view->GetStringProperty("r", text[3]));
    EXPECT_EQ(text[0], "compact French");
    EXPECT_EQ(text[1], "compact");
    EXPECT_EQ(text[2], "TView");
    EXPECT_EQ(text[3], "English"); // ENU is the empty language
}

TEST(SourceFormat, KeepsTheRestWhereOnePropertyIsBad) {
    std::vector<QLX_SourceProblem> problems;
    AssertionCatcher catcher;
    const auto root = Read("<property name='o' type='bool' value='true'/>", &problems);
    EXPECT_FALSE(root);
    const auto wrapper = Read("<c>\n <property name='a' type='bool'/>\n"
                              " <property name='b' type='colour' value='1'/>\n"
                              " <property name='c' type='int32' value='3' Skin='dark'/>\n"
                              " <property name='d' type='int32' value='4'/>\n</c>",
                              &problems);
    ASSERT_TRUE(wrapper);
    std::vector<std::string> texts;
    for (const QLX_SourceProblem& problem : problems)
        texts.push_back(problem.ToString());
    EXPECT_EQ(texts,
              (std::vector<std::string>{
                  "test.xml:2:2: a property without \"value\" is not kept: a",
                  "test.xml:3:2: the property \"b\" has the unknown type \"colour\" and is "
                  "not kept",
                  "test.xml:4:2: the attribute \"Skin\" is no filter's; no look-up sees it"}));
    EXPECT_EQ(
        catcher.TakeTexts(),
        (std::vector<std::string>{"it != sStringToTypeMap.end()", "!\"Invalid property type!\"",
                                  "mAttrMap.size() == FILTER_HIERARCHY_SIZE"}));
    wrapper->SetCurrentFilter(QLX_PropertyFilter::RootFilter());
    std::int32_t value = 0;
    EXPECT_TRUE(wrapper->GetInt32Property("d", value));
    // The foreign attribute is written back.
    EXPECT_NE(QLX_SourceViewFormat::WriteToText(*wrapper, LineEndings::Unix)
                  .find("value=\"3\" Skin=\"dark\"/>"),
              std::string::npos);
}

TEST(SourceFormat, EscapesWhateverCouldBreakTheFile) {
    const std::string hard = "<&>\"'\t\r\n--> \xC3\xA4 \xE6\x97\xA5";
    QLX_RawPropertyContainer root("viewhierarchy");
    const auto& filter = QLX_PropertyFilter::RootFilter();
    root.SetStringProperty("name", hard, filter);
    root.SetStringProperty(hard, hard, QLX_PropertyFilter::MakeFilter(hard));
    const std::string text = QLX_SourceViewFormat::WriteToText(root, LineEndings::Windows);
    const auto wrapper = Read(text);
    ASSERT_TRUE(wrapper) << text;
    EXPECT_EQ(wrapper->GetFirstChild()->GetFilterPropertyMap(), root.GetFilterPropertyMap());
    EXPECT_EQ(QLX_SourceViewFormat::WriteToText(*wrapper->GetFirstChild(), LineEndings::Windows),
              text);
}

TEST(SourceFormat, RefusesWhatHasNoWrittenForm) {
    for (const char* bad : {"\x01", "\xFF", "\xED\xA0\x80", "\xEF\xBF\xBF"}) {
        QLX_RawPropertyContainer root("viewhierarchy");
        root.SetStringProperty("p", bad, QLX_PropertyFilter::RootFilter());
        EXPECT_THROW((void)QLX_SourceViewFormat::WriteToText(root, LineEndings::Unix),
                     std::runtime_error);
    }
    const QLX_RawPropertyContainer noName("not a tag");
    EXPECT_THROW((void)QLX_SourceViewFormat::WriteToText(noName, LineEndings::Unix),
                 std::runtime_error);
}

TEST(SourceFormat, AnEmptyRequiredAttributeStaysOne) {
    const char* const text = "<container name=\"\">\n\t<viewhierarchy>\n"
                             "\t\t<view class=\"\" Identifier=\"\">\n\t\t</view> <!-- -->\n"
                             "\t</viewhierarchy> <!-- -->\n</container>";
    const auto wrapper = Read(text);
    EXPECT_EQ(QLX_SourceViewFormat::WriteToText(*wrapper->GetFirstChild(), LineEndings::Unix),
              text);
}

TEST(SourceFormat, TellsWhatAnAttributeHides) {
    const auto wrapper =
        Read("<container name=''><viewhierarchy><view class='TView' Identifier='main'>"
             "<property name='class' type='string' value='TWide' Layout='Wide'/>"
             "</view></viewhierarchy></container>");
    EXPECT_EQ(QLX_SourceViewFormat::FindUnwritable(*wrapper->GetFirstChild()),
              (std::vector<std::string>{
                  "container/viewhierarchy/view: class (string, Layout=Wide Language=)"}));
    std::list<std::string> messages;
    wrapper->VerifyWellKnownProperties(messages);
    EXPECT_TRUE(messages.size() == 1 &&
                messages.front().find(" missing or no value.") != std::string::npos)
        << "the wrapper has no name";
}

TEST(SourceFormat, TruncationAnywhereIsAnErrorAndNothingElse) {
    const std::string text = kSmall;
    for (std::size_t size = 0; size < text.size(); ++size) {
        std::vector<QLX_SourceProblem> problems;
        EXPECT_FALSE(Read(text.substr(0, size), &problems)) << size;
        ASSERT_FALSE(problems.empty()) << size;
        EXPECT_EQ(problems.back().mSeverity, QLX_SourceProblem::kError);
    }
}

TEST(SourceFormat, HostileFilesEndInAnError) {
    std::string deep;
    for (int i = 0; i < 1'000'000; ++i)
        deep += "<a>";
    std::string bomb = "<!DOCTYPE c [<!ENTITY a0 'aaaaaaaaaaaaaaaaaaaa'>";
    for (int i = 1; i < 12; ++i) {
        bomb += "<!ENTITY a" + std::to_string(i) + " '";
        for (int n = 0; n < 12; ++n)
            bomb += "&a" + std::to_string(i - 1) + ";";
        bomb += "'>";
    }
    bomb += "]><c x='&a11;'/>";
    const struct {
        const char* mWhy;
        std::string mText;
    } rows[] = {
        {"a million nested elements", deep},
        {"entities that multiply", bomb},
        {"a NUL byte", std::string("<c>\0</c>", 8)},
        {"bytes that are no UTF-8", "<c a='\xFF'/>"},
        {"UTF-16 cut in the middle", std::string("\xFF\xFE<\0c\0/", 7)},
        {"an encoding that nobody knows", "<?xml version='1.0' encoding='x-none'?><c/>"},
        {"an attribute that stands twice", "<c a='1' a='2'/>"},
        {"two roots", "<a/><b/>"},
        {"nothing", ""},
    };
    for (const auto& row : rows) {
        std::vector<QLX_SourceProblem> problems;
        EXPECT_FALSE(Read(row.mText, &problems)) << row.mWhy;
        EXPECT_FALSE(problems.empty()) << row.mWhy;
    }
}

TEST(SourceFormat, DepthIsASetting) {
    Sys_File file("deep.xml", "<a><b><c/></b></a>");
    QLX_XMLParser parser(&file, nullptr);
    parser.SetMaximumDepth(2);
    EXPECT_EQ(parser.Parse(), nullptr);
    EXPECT_EQ(parser.GetProblems().front().ToString(),
              "deep.xml:1:7: elements are nested more than 2 deep");
}

TEST(SourceFormat, AFactorysContainersSeeEveryStore) {
    struct Container : QLX_RawPropertyContainer {
        using QLX_RawPropertyContainer::QLX_RawPropertyContainer;
        void SetStringProperty(const std::string& name, const std::string& value,
                               const QLX_PropertyFilter& filter) override {
            QLX_RawPropertyContainer::SetStringProperty(name, value + "!", filter);
        }
    };
    struct Factory : QLX_RawPropertyContainerFactory {
        QLX_RawPropertyContainer* MakeContainer(const std::string& name) override {
            return new Container(name);
        }
    } factory;
    const auto root =
        Read("<c a='1'><property name='b' type='string' value='2'/></c>", nullptr, &factory);
    root->SetCurrentFilter(QLX_PropertyFilter::RootFilter());
    std::string a, b;
    EXPECT_TRUE(root->GetStringProperty("a", a) && root->GetStringProperty("b", b));
    EXPECT_EQ(a + b, "1!2!");
}

/// A container with so many properties, of names, types and filters that come again and again.
std::string RandomContainer(std::mt19937& random, unsigned count, unsigned names) {
    const auto below = [&random](unsigned limit) { return random() % limit; };
    static const char* const types[] = {"bool",     "int32", "idtype", "string", "stringidx",
                                        "rgbcolor", "point", "rect",   "int64"};
    static const char* const values[] = {"true", "-12", "mute", "", "0x12 0xFFF 0x0", "7 -8 9 10"};
    static const char* const filters[] = {"", " Layout='Compact'", " Language='DEU'",
                                          " Language='FRA' Layout='Compact'"};
    std::string text = "<c class='T'>";
    for (unsigned i = 0; i < count; ++i) {
        const unsigned name = below(names);
        text += "<property name='" + std::string(name % 23, 'n') + std::to_string(name) +
                "' type='" + types[below(9)] + "' value='" + values[below(6)] + "'" +
                filters[below(8) % 5 % 4] + "/>";
    }
    return text + "</c>";
}

TEST(SourceFormat, SetsMadeAtOnceAreThoseThatSettersMake) {
    struct Container : QLX_RawPropertyContainer { // of a class of its own: its setters are called
        using QLX_RawPropertyContainer::QLX_RawPropertyContainer;
    };
    struct Factory : QLX_RawPropertyContainerFactory {
        QLX_RawPropertyContainer* MakeContainer(const std::string& name) override {
            return new Container(name);
        }
    } factory;
    std::mt19937 random(20241122);
    // Around the sizes at which a set's index changes, with hardly any name twice and with many.
    for (const unsigned count : {1u, 2u, 3u, 8u, 9u, 40u, 128u, 129u, 700u, 17'000u}) {
        for (const unsigned names : {5u, 100'000u}) {
            const std::string text = RandomContainer(random, count, names);
            const auto made = Read(text);
            const auto stored = Read(text, nullptr, &factory);
            ASSERT_TRUE(made && stored);
            ASSERT_EQ(made->GetFilterPropertyMap(), stored->GetFilterPropertyMap()) << text;
            for (const auto& [filter, set] : stored->GetFilterPropertyMap()) {
                const QLX_PropertySet& mine = made->GetFilterPropertyMap().at(filter);
                for (std::size_t i = 0; i < set.GetCount(); ++i)
                    ASSERT_EQ(mine.GetAt(i).mName, set.GetAt(i).mName) << "the order";
            }
        }
    }
}

TEST(SourceFormat, ALongValueIsReadInLinearTime) {
    // Larger than any block; the parser would scan a token anew with each block that it spans.
    const std::string value(3'000'000, 'v');
    const auto root = Read("<c><property name='p' type='string' value='" + value + "'/></c>");
    root->SetCurrentFilter(QLX_PropertyFilter::RootFilter());
    std::string read;
    EXPECT_TRUE(root->GetStringProperty("p", read));
    EXPECT_EQ(read, value);
}

/// A file that does not know its size, as a pipe: it is read in blocks.
class SizelessSystem : public Sys_FileSystem {
  public:
    explicit SizelessSystem(std::string text) : mText(std::move(text)) {}
    std::unique_ptr<Sys_FileBackend> Open(const std::string&, Sys_FileMode) override {
        struct Backend : Sys_FileBackend {
            explicit Backend(const std::string& text) : mText(text) {}
            std::size_t ReadAt(std::uint64_t offset, void* bytes, std::size_t size) override {
                const std::size_t at = std::min(static_cast<std::size_t>(offset), mText.size());
                return mText.copy(static_cast<char*>(bytes), size, at);
            }
            void WriteAt(std::uint64_t, const void*, std::size_t) override {}
            std::uint64_t GetSize() override { return 0; }
            void Flush() override {}
            const std::string& mText;
        };
        return std::make_unique<Backend>(mText);
    }
    void Replace(const std::string&, const std::string&) override {}
    void Remove(const std::string&) override {}
    std::string Resolve(const std::string& path) override { return path; }
    void CopyAccess(const std::string&, const std::string&) override {}

  private:
    std::string mText;
};

TEST(SourceFormat, BlocksGiveWhatTheWholeFileGives) {
    // Around the block size, where the end falls into a block, and a value that spans many.
    for (const std::size_t length : {1, 960, 961, 962, 963, 964, 965, 2000, 500'000}) {
        std::string text = "<c><property name='p' type='string' value='";
        text += std::string(length, 'v') + "'/><d><e/></d></c>";
        SizelessSystem system(text);
        Sys_File file(Sys_FileLoc("pipe.xml"), Sys_FileMode::Read, system);
        const std::unique_ptr<QLX_RawPropertyContainer> blocks(
            QLX_XMLParser(&file, nullptr).Parse());
        const auto whole = Read(text);
        ASSERT_TRUE(blocks && whole) << length;
        EXPECT_EQ(QLX_SourceViewFormat::WriteToText(*blocks, LineEndings::Unix),
                  QLX_SourceViewFormat::WriteToText(*whole, LineEndings::Unix));
    }
    SizelessSystem cut("<c><d/>" + std::string(3000, ' '));
    Sys_File file(Sys_FileLoc("pipe.xml"), Sys_FileMode::Read, cut);
    QLX_XMLParser parser(&file, nullptr);
    EXPECT_EQ(parser.Parse(), nullptr);
    EXPECT_EQ(parser.GetProblems().front().ToString(), "pipe.xml:1:3008: no element found");
}

TEST(SourceFormat, ElementsInsidePropertiesStayInPlace) {
    const auto root = Read("<a><property name='p' type='bool' value='true'><b><property/></b>"
                           "</property><c/></a>");
    ASSERT_TRUE(root);
    std::vector<std::string> names;
    for (const QLX_RawPropertyContainer* child : root->GetChildren())
        names.push_back(child->GetName());
    EXPECT_EQ(names, (std::vector<std::string>{"b", "c"}));
}

TEST(SourceFormat, WellKnownPropertiesAreTheTable) {
    bool required = false;
    EXPECT_TRUE(QLX_SourceViewFormat::IsWellKnownProperty("view", "Identifier", required) &&
                required);
    EXPECT_TRUE(QLX_SourceViewFormat::IsWellKnownProperty("view", "IDX", required) && !required);
    EXPECT_FALSE(QLX_SourceViewFormat::IsWellKnownProperty("view", "name", required));
    EXPECT_EQ(QLX_SourceViewFormat::GetWellKnownProperties().at("view").size(), 4u);
}

TEST(SourceFormat, ErrorsOfADescriptionAreThrownByName) {
    const std::string folder = QLX_TEST_OUTPUT;
    const auto messageOf = [&](const std::string& text) {
        const Sys_FileLoc loc(folder + "/bad.xml");
        Sys_SafeWriter::Replace(loc, text);
        try {
            delete QLX_SourceViewFormat(loc).ReadMemento(nullptr);
        } catch (const std::runtime_error& error) {
            return std::string(error.what());
        }
        return std::string();
    };
    EXPECT_EQ(messageOf("<a>"), "Malformed XML file: no container returned");
    EXPECT_EQ(messageOf("<a/>"), "Malformed source: nothing in container");
    EXPECT_EQ(messageOf("<a><view/></a>"), "Malformed source: nothing in container");
    EXPECT_EQ(messageOf("<a><viewhierarchy/></a>"), "");
    QLX_SourceViewFormat missing(Sys_FileLoc(folder + "/missing.xml"));
    EXPECT_THROW((void)missing.ReadMemento(nullptr), std::runtime_error);
    EXPECT_EQ(missing.GetProblems().front().mFile, folder + "/missing.xml");
}
} // namespace
