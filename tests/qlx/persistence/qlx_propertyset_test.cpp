// Sets: against maps of maps under a long random run, their two written forms, shared memory.
#include "qlx/persistence/qlx_propertyset.h"

#include <gtest/gtest.h>

#include <map>
#include <random>
#include <string>
#include <unordered_map>
#include <utility>

#include "basekit/sys/sys_typedstream.h"
#include "qlx/persistence/qlx_propertyblock.h"
#include "tests/support/allocation_counter.h"
#include "tests/support/assertion_catcher.h"

namespace {
QLX_PropertySet MakeMixed() {
    QLX_PropertySet set;
    set.SetStringProperty("x", "text & \"quotes\"");
    set.SetInt32Property("x", -7);
    set.SetRectProperty("Frame", VRect(2, 1, 4, 3));
    set.SetBoolProperty("Enabled", true);
    set.SetInt64Property("Length", std::int64_t{1} << 40);
    set.SetIDTypeProperty("Target", 0x6D757465); // 'mute'
    set.SetStringKeyProperty("Title", "KEY");
    set.SetColorProperty("Color", CRGBColor(255, 128, 0));
    set.SetPointProperty("Size", VPoint(30, 20));
    return set;
}

TEST(PropertySet, BehavesAsAMapForEachType) {
    // Few names and many steps, so that values are replaced, removed and found again; names of
    // every length up to 40, so that each way of hashing and comparing is taken.
    std::mt19937 random(20240517);
    const auto below = [&random](unsigned limit) { return random() % limit; };
    QLX_PropertySet set;
    std::map<std::string, std::int32_t> numbers;
    std::map<std::string, std::string> texts;
    for (int step = 0; step < 12'000; ++step) {
        const unsigned length = below(41);
        std::string name(length, 'a');
        for (char& c : name)
            c = static_cast<char>('a' + (length > 3 ? below(2) : below(26)));
        if (length > 6)
            name = name.substr(0, length - 2) + std::to_string(below(10));
        const QLX_PropertySet before = set; // shares until the change below
        switch (below(7)) {
        case 0:
        case 1:
            set.SetInt32Property(name, step);
            numbers[name] = step;
            break;
        case 2:
        case 3:
            texts[name] = std::string(below(30), 'v') + std::to_string(step);
            set.SetStringProperty(name, texts[name]);
            break;
        case 4:
            EXPECT_EQ(set.RemoveProperty(qlx_PropType_Int32, name), numbers.erase(name) == 1);
            break;
        case 5:
            EXPECT_EQ(set.RemoveProperty(qlx_PropType_String, name), texts.erase(name) == 1);
            break;
        default: {
            std::int32_t number = 0;
            std::string text;
            EXPECT_EQ(set.GetInt32Property(name, number), numbers.count(name) == 1);
            EXPECT_EQ(set.GetStringProperty(name, text), texts.count(name) == 1);
        }
        }
        if (step % 1000 == 0) {
            ASSERT_EQ(set.GetCount(), numbers.size() + texts.size()) << "step " << step;
            for (const auto& [key, value] : numbers) {
                std::int32_t number = 0;
                ASSERT_TRUE(set.GetInt32Property(key, number)) << key;
                ASSERT_EQ(number, value) << key;
            }
            for (const auto& [key, value] : texts) {
                std::string text;
                ASSERT_TRUE(set.GetStringProperty(key, text)) << key;
                ASSERT_EQ(text, value) << key;
            }
            ASSERT_EQ(set.CopyCompact(), set);
        }
    }
}

TEST(PropertySet, LooksUpByTypeAndNameOnly) {
    const QLX_PropertySet set = MakeMixed();
    std::int32_t narrow = 0;
    std::int64_t wide = 5;
    std::string text;
    EXPECT_TRUE(set.GetInt32Property("x", narrow) && narrow == -7);
    EXPECT_TRUE(set.GetStringProperty("x", text) && text == "text & \"quotes\"");
    EXPECT_TRUE(set.GetInt32Property("x", wide) && wide == -7);
    wide = 5;
    EXPECT_FALSE(set.GetInt32Property("Length", wide)); // never the int64 values
    EXPECT_FALSE(set.GetInt64Property("x", wide));
    EXPECT_FALSE(set.GetStringKeyProperty("x", text));
    EXPECT_EQ(wide, 5);
}

// Two names that belong into the same cell of any index, of a size that is read in pieces of so
// many bytes.
std::pair<std::string, std::string> NamesOfOneCell(std::size_t width) {
    std::mt19937 random(20250309);
    std::unordered_map<std::uint32_t, std::string> seen;
    while (true) {
        std::string name(width == 4 ? 7 : 12, ' ');
        for (char& c : name)
            c = static_cast<char>('a' + random() % 26);
        const std::uint64_t hash = QLX_PropertyBytes::HashOf(
            qlx_PropType_Int32, QLX_PropertyBytes::EndsOf(name.data(), name.size()));
        const auto [place, isNew] = seen.try_emplace(static_cast<std::uint32_t>(hash >> 36), name);
        if (!isNew && place->second != name)
            return {place->second, name};
    }
}

TEST(PropertySet, NamesWithOneHashAreToldApart) {
    for (const std::size_t width : {4u, 8u}) {
        const auto [first, second] = NamesOfOneCell(width);
        SCOPED_TRACE(first + " and " + second);
        for (const int others : {0, 20, 300, 20000}) { // every width of an index's cells
            for (const bool hasSecond : {false, true}) {
                SCOPED_TRACE(testing::Message() << others << hasSecond);
                QLX_PropertySet set;
                set.SetInt32Property(first, 1);
                if (hasSecond)
                    set.SetInt32Property(second, 2);
                for (int i = 0; i < others; ++i)
                    set.SetInt32Property("other" + std::to_string(i), 100 + i);
                std::int32_t value = 0;
                EXPECT_TRUE(set.GetInt32Property(first, value));
                EXPECT_EQ(value, 1);
                EXPECT_EQ(set.GetInt32Property(second, value), hasSecond);
                EXPECT_EQ(value, hasSecond ? 2 : 1);
                EXPECT_EQ(set.HasProperty(qlx_PropType_Int32, second), hasSecond);
                for (int i = 0; i < others; ++i) {
                    ASSERT_TRUE(set.GetInt32Property("other" + std::to_string(i), value));
                    ASSERT_EQ(value, 100 + i);
                }
            }
        }
    }
}

// Names whose plain hashes are all the same, as a hostile file has them: what a character adds to
// the first half, one in the second takes away.
TEST(PropertySet, NamesMadeToCollideAreAllFound) {
    std::vector<std::string> names;
    for (int i = 0; i < 20000; ++i) {
        std::string name = "AAAAAAAAzzzzzzzz";
        for (int digit = 0, rest = i; digit < 8; ++digit, rest /= 5) {
            name[std::size_t(digit)] = static_cast<char>('A' + 8 * (rest % 5));
            name[std::size_t(digit) + 8] = static_cast<char>('z' - rest % 5);
        }
        names.push_back(name);
    }
    const auto hashOf = [](const std::string& name) {
        return QLX_PropertyBytes::HashOf(qlx_PropType_Int32,
                                         QLX_PropertyBytes::EndsOf(name.data(), name.size()));
    };
    ASSERT_EQ(hashOf(names.front()), hashOf(names.back()));
    QLX_PropertySet set;
    for (std::size_t i = 0; i < names.size(); ++i)
        set.SetInt32Property(names[i], static_cast<std::int32_t>(i));
    ASSERT_TRUE(set.RemoveProperty(qlx_PropType_Int32, names[7]));
    QLX_PropertySet copy = set;
    copy.SetInt32Property("another", 1);
    for (const QLX_PropertySet* each : {&std::as_const(set), &std::as_const(copy)})
        for (std::size_t i = 0; i < names.size(); ++i) {
            std::int32_t value = -1;
            ASSERT_EQ(each->GetInt32Property(names[i], value), i != 7);
            ASSERT_EQ(value, i == 7 ? -1 : static_cast<std::int32_t>(i));
        }
    EXPECT_EQ(copy.GetCount(), names.size());
}

TEST(PropertySet, ALookUpAllocatesNothing) {
    const QLX_PropertySet set = MakeMixed();
    bool flag = false;
    VRect rect;
    const AllocationCounter counter;
    EXPECT_TRUE(set.GetBoolProperty("Enabled", flag));
    EXPECT_TRUE(set.GetRectProperty("Frame", rect));
    EXPECT_FALSE(set.GetBoolProperty("A name longer than any small string buffer holds", flag));
    EXPECT_EQ(counter.GetCount(), 0u);
}

TEST(PropertySet, ACopySharesUntilOneChanges) {
    QLX_PropertySet set = MakeMixed();
    QLX_PropertySet copy = set;
    EXPECT_TRUE(copy.SharesMemoryWith(set));
    copy.SetBoolProperty("Enabled", false);
    EXPECT_FALSE(copy.SharesMemoryWith(set));
    bool flag = false;
    EXPECT_TRUE(set.GetBoolProperty("Enabled", flag) && flag);
    // A value may come from the very set that it is stored into.
    QLX_PropertyView view;
    ASSERT_TRUE(set.Find(qlx_PropType_String, "x", view));
    for (int i = 0; i < 100; ++i) {
        ASSERT_TRUE(set.Find(qlx_PropType_String, "x", view));
        set.SetStringProperty("copy" + std::to_string(i), view.mText);
    }
    std::string text;
    EXPECT_TRUE(set.GetStringProperty("copy99", text) && text == "text & \"quotes\"");
}

TEST(PropertySet, MergingOverwritesAndKeepsTheRest) {
    QLX_PropertySet base = MakeMixed();
    QLX_PropertySet over;
    over.SetInt32Property("x", 1);
    over.SetStringProperty("new", "n");
    base.Merge(over);
    std::int32_t number = 0;
    EXPECT_TRUE(base.GetInt32Property("x", number) && number == 1);
    EXPECT_EQ(base.GetCount(), MakeMixed().GetCount() + 1);
    QLX_PropertySet empty;
    empty.Merge(over);
    EXPECT_TRUE(empty.SharesMemoryWith(over));
}

TEST(PropertySet, SortedXMLDependsOnContentsOnly) {
    const char* const expected =
        "\t<property name=\"Color\" type=\"rgbcolor\" value=\"0xff 0x80 0x0\" L=\"1\"/>\r\n"
        "\t<property name=\"Enabled\" type=\"bool\" value=\"true\" L=\"1\"/>\r\n"
        "\t<property name=\"Frame\" type=\"rect\" value=\"1 2 3 4\" L=\"1\"/>\r\n"
        "\t<property name=\"Length\" type=\"int64\" value=\"1099511627776\" L=\"1\"/>\r\n"
        "\t<property name=\"Size\" type=\"point\" value=\"20 30\" L=\"1\"/>\r\n"
        "\t<property name=\"Target\" type=\"idtype\" value=\"mute\" L=\"1\"/>\r\n"
        "\t<property name=\"x\" type=\"int32\" value=\"-7\" L=\"1\"/>\r\n"
        "\t<property name=\"x\" type=\"string\" value=\"text &amp; &quot;quotes&quot;\" "
        "L=\"1\"/>\r\n";
    QLX_PropertySet::SetSortedXMLMode(true);
    EXPECT_EQ(MakeMixed().ToXML(" L=\"1\"", 1, "\r\n", {"Title"}), expected);
    QLX_PropertySet backwards;
    const QLX_PropertySet mixed = MakeMixed();
    for (std::size_t i = mixed.GetCount(); i-- > 0;)
        backwards.SetProperty(mixed.GetAt(i));
    EXPECT_EQ(backwards.ToXML(" L=\"1\"", 1, "\r\n", {"Title"}), expected);
    QLX_PropertySet::SetSortedXMLMode(false);
    EXPECT_EQ(backwards.ToXML("", 0, "\n", {}).rfind("<property name=\"Enabled\" type=\"", 0), 0u);
}

TEST(PropertySet, StreamsNineSectionsInTheirOrder) {
    Sys_TypedOutStream empty;
    QLX_PropertySet().StreamOut(empty);
    Sys_TypedInStream sections(empty.GetBytes());
    for (const std::int32_t expected : {1, 2, 9, 3, 4, 5, 6, 7, 8}) {
        std::int32_t type = 0, count = 1;
        EXPECT_TRUE(sections.ReadInt32(type) && sections.ReadInt32(count));
        EXPECT_EQ(type, expected);
        EXPECT_EQ(count, 0);
    }
    EXPECT_EQ(sections.GetRemaining(), 0u);
    for (const bool swap : {false, true}) {
        Sys_TypedOutStream out(swap);
        MakeMixed().StreamOut(out);
        Sys_TypedInStream in(out.GetBytes(), swap);
        QLX_PropertySet read;
        read.StreamIn(in);
        EXPECT_EQ(read, MakeMixed());
        EXPECT_FALSE(in.HasFailed());
    }
}

TEST(PropertySet, ABrokenStreamEndsWhereItBreaks) {
    Sys_TypedOutStream out;
    MakeMixed().StreamOut(out);
    for (std::size_t size = 0; size < out.GetBytes().size(); ++size) {
        Sys_TypedInStream in(out.GetBytes().data(), size);
        QLX_PropertySet read;
        read.StreamIn(in);
        EXPECT_TRUE(in.HasFailed()) << size;
        EXPECT_LE(read.GetCount(), MakeMixed().GetCount());
    }
    Sys_TypedOutStream lying;
    lying.WriteInt32(4); // not the first section's type
    lying.WriteInt32(0x7FFFFFFF);
    lying.WriteString("b");
    lying.WriteBool(true);
    AssertionCatcher catcher;
    Sys_TypedInStream in(lying.GetBytes());
    QLX_PropertySet read;
    read.StreamIn(in);
    EXPECT_EQ(catcher.TakeTexts(), std::vector<std::string>{"typeInStream == type"});
    bool flag = false;
    EXPECT_TRUE(read.GetBoolProperty("b", flag) && flag); // read as if right
    EXPECT_EQ(read.GetCount(), 1u);
}
} // namespace
