// Languages, filters and containers: what a look-up sees after a selection.
#include "qlx/persistence/qlx_persistence.h"

#include <gtest/gtest.h>

#include "tests/support/assertion_catcher.h"

namespace {
using Texts = std::vector<std::string>;
const QLX_PropertyFilter& Root() { return QLX_PropertyFilter::RootFilter(); }
QLX_PropertyFilter Filter(const std::string& layout, QLX_Language::ELanguage language) {
    return QLX_PropertyFilter::MakeFilter(layout, language);
}
std::string Look(const QLX_RawPropertyContainer& container, const std::string& name) {
    std::string value = "-";
    container.GetStringProperty(name, value);
    return value;
}

TEST(Language, CodesAreExact) {
    for (int i = 0; i < QLX_Language::kLanguageCount; ++i) {
        const auto language = static_cast<QLX_Language::ELanguage>(i);
        EXPECT_EQ(QLX_Language::StringToEnum(QLX_Language::EnumToString(language)), language);
    }
    EXPECT_EQ(QLX_Language::EnumToString(QLX_Language::English), "");
    EXPECT_EQ(QLX_Language::StringToEnum("ENU"), QLX_Language::English);
    AssertionCatcher catcher;
    EXPECT_EQ(QLX_Language::StringToEnum("fra"), QLX_Language::English);
    EXPECT_EQ(catcher.TakeTexts(), Texts{"false && \"Invalid language\""});
}

TEST(Filter, DefaultFollowsTheLanguageAndOlderFiltersDoNot) {
    StCurrentLanguage french(QLX_Language::French);
    const QLX_PropertyFilter made;
    EXPECT_EQ(QLX_PropertyFilter::DefaultFilter()["Language"], "FRA");
    {
        StCurrentLanguage german(QLX_Language::German);
        EXPECT_EQ(QLX_PropertyFilter::DefaultFilter()["Language"], "DEU");
        EXPECT_EQ(made["Language"], "FRA");
    }
    EXPECT_EQ(QLX_PropertyFilter::DefaultFilter(), made);
}

TEST(Filter, ParentsDropTheLanguageFirst) {
    QLX_PropertyFilter filter = Filter("Compact", QLX_Language::French);
    EXPECT_EQ(filter.ToString(), "Layout=Compact Language=FRA");
    filter = filter.GetParent();
    EXPECT_EQ(filter, Filter("Compact", QLX_Language::English));
    filter = filter.GetParent();
    EXPECT_EQ(filter, Root());
    EXPECT_FALSE(filter.HasParent());
    AssertionCatcher catcher;
    EXPECT_EQ(filter.GetParent(), QLX_PropertyFilter::DefaultFilter());
    EXPECT_EQ(QLX_PropertyFilter(std::map<std::string, std::string>{{"Skin", "dark"}})["Skin"],
              "dark");
    EXPECT_EQ(catcher.TakeTexts(),
              (Texts{"HasParent()", "mAttrMap.size() == FILTER_HIERARCHY_SIZE"}));
}

TEST(Filter, AWriteThroughAReferenceStaysInItsFilter) {
    QLX_PropertyFilter filter = Filter("A", QLX_Language::English);
    const QLX_PropertyFilter before = filter;
    std::string& layout = filter["Layout"];
    const QLX_PropertyFilter after = filter; // copied while the reference is out
    layout = "B";
    EXPECT_EQ(before["Layout"], "A");
    EXPECT_EQ(after["Layout"], "A");
    EXPECT_EQ(std::as_const(filter)["Layout"], "B");
}

TEST(Container, SeesTheChainOfItsFilterAndNothingElse) {
    QLX_RawPropertyContainer container("view");
    container.SetStringProperty("p", "A", Root());
    container.SetStringProperty("p", "B", Filter("", QLX_Language::French));
    container.SetStringProperty("p", "C", Filter("L", QLX_Language::English));
    container.SetStringProperty("q", "A", Root());
    container.SetStringProperty("q", "B", Filter("", QLX_Language::French));
    const struct {
        QLX_PropertyFilter mFilter;
        const char* mP;
        const char* mQ;
    } rows[] = {
        {Root(), "A", "A"},
        {Filter("", QLX_Language::French), "B", "B"},
        {Filter("L", QLX_Language::English), "C", "A"},
        {Filter("L", QLX_Language::French), "C", "A"}, // common French is not in this chain
        {Filter("Default", QLX_Language::French), "B", "B"},
        {Filter("Other", QLX_Language::German), "A", "A"},
    };
    for (const auto& row : rows) {
        container.SetCurrentFilter(row.mFilter);
        EXPECT_EQ(Look(container, "p") + Look(container, "q"), std::string(row.mP) + row.mQ)
            << row.mFilter.ToString();
    }
}

TEST(Container, RebuildsOnAnotherSelectionUntilItIsFrozen) {
    QLX_RawPropertyContainer container("view");
    container.SetStringProperty("p", "old", Root());
    container.SetCurrentFilter(Root());
    container.SetStringProperty("p", "new", Root());
    container.SetCurrentFilter(Root()); // the same again: nothing happens
    EXPECT_EQ(Look(container, "p"), "old");
    container.SetCurrentFilter(Filter("L", QLX_Language::English));
    EXPECT_EQ(Look(container, "p"), "new");
    container.SetCurrentFilter(Root());
    EXPECT_EQ(Look(container, "p"), "new");
    container.FreezeProperties();
    AssertionCatcher catcher;
    container.SetStringProperty("p", "late", Root());
    EXPECT_EQ(catcher.TakeTexts(), Texts{"!mPropertiesFrozen"});
    container.SetCurrentFilter(Filter("L", QLX_Language::English));
    EXPECT_EQ(Look(container, "p"), "new"); // cached
    container.SetCurrentFilter(Filter("Unseen", QLX_Language::English));
    EXPECT_EQ(Look(container, "p"), "late");
}

TEST(Container, LookingUpBeforeASelectionIsAContractViolation) {
    const QLX_RawPropertyContainer container("view");
    AssertionCatcher catcher;
    EXPECT_EQ(Look(container, "p"), "-");
    EXPECT_EQ(catcher.TakeTexts(), Texts{"mHasCurrentSet"});
}

TEST(Container, TextGoesThroughTheVirtualSetters) {
    class Counting : public QLX_RawPropertyContainer {
      public:
        void SetInt32Property(const std::string& name, std::int32_t value,
                              const QLX_PropertyFilter& filter) override {
            ++mCount;
            QLX_RawPropertyContainer::SetInt32Property(name, value + 1, filter);
        }
        int mCount = 0;
    } container;
    container.SetProperty("n", "int32", "41", Root());
    container.SetCurrentFilter(Root());
    std::int32_t value = 0;
    EXPECT_TRUE(container.GetInt32Property("n", value));
    EXPECT_EQ(value, 42);
    EXPECT_EQ(container.mCount, 1);
    AssertionCatcher catcher;
    container.SetProperty("n", "integer", "1", Root());
    EXPECT_EQ(catcher.TakeTexts(),
              (Texts{"it != sStringToTypeMap.end()", "!\"Invalid property type!\""}));
    EXPECT_EQ(container.GetFilterPropertyMap().at(Root()).GetCount(), 1u);
}

TEST(Container, OnlyTheHierarchysRootMarksItsFilters) {
    QLX_RawPropertyContainer root("viewhierarchy");
    root.AddChild(std::make_unique<QLX_RawPropertyContainer>("view"));
    root.FreezeProperties();
    root.SetCurrentFilter(Filter("L", QLX_Language::French)); // no assertion, though it stores
    EXPECT_EQ(root.GetFilterPropertyMap().count(Filter("L", QLX_Language::French)), 1u);
    EXPECT_TRUE(root.GetFirstChild()->GetFilterPropertyMap().empty());
    EXPECT_EQ(root.GetFilterValues(), (std::set<std::string>{"FRA", "L"}));
    root.SetCurrentFilter(QLX_PropertyFilter::DefaultFilter());
    EXPECT_EQ(root.GetFilterPropertyMap().size(), 1u);
}

TEST(Container, CopyingAFilterIsLiteral) {
    QLX_RawPropertyContainer root("viewhierarchy");
    auto child = std::make_unique<QLX_RawPropertyContainer>("view");
    child->SetStringProperty("p", "A", Root());
    child->SetStringProperty("gone", "x", Filter("L", QLX_Language::English));
    root.AddChild(std::move(child));
    root.CopyFilterProperties(Root(), Filter("L", QLX_Language::English));
    auto& sets = root.GetFirstChild()->GetFilterPropertyMap();
    EXPECT_EQ(sets.at(Filter("L", QLX_Language::English)), sets.at(Root()));
    // The copy replaces the marker that adding the filter left in the root, as it replaces the
    // rest.
    EXPECT_TRUE(root.GetFilterPropertyMap().at(Filter("L", QLX_Language::English)).IsEmpty());
}

TEST(Container, TrimmingKeepsEnglishAndTheCurrentLanguage) {
    StCurrentLanguage german(QLX_Language::German);
    QLX_RawPropertyContainer container("view");
    for (const auto& filter :
         {Root(), Filter("L", QLX_Language::English), Filter("", QLX_Language::German),
          Filter("L", QLX_Language::French), Filter("", QLX_Language::French)})
        container.SetStringProperty("p", "v", filter);
    container.SetCurrentFilter(QLX_PropertyFilter::DefaultFilter());
    container.TrimForLanguage();
    EXPECT_EQ(container.GetFilterPropertyMap().size(), 3u);
    EXPECT_EQ(container.GetFilterPropertyMap().count(Filter("L", QLX_Language::English)), 1u);
    StCurrentLanguage french(QLX_Language::French);
    container.FreezeProperties();
    AssertionCatcher catcher;
    container.TrimForLanguage();
    EXPECT_EQ(catcher.TakeTexts(),
              (Texts{"!mPropertiesFrozen", "language == mCurrentFilter.GetLanguage()"}));
}

TEST(Container, GroupsChildrenByNameInTheOrderOfAdding) {
    QLX_RawPropertyContainer root("viewhierarchy");
    for (const char* name : {"view", "behavior", "view", "adorner", "behavior"}) {
        auto child = std::make_unique<QLX_RawPropertyContainer>(name);
        child->SetInt32Property("n", static_cast<int>(root.CountChildren()), Root());
        root.AddChild(std::move(child));
    }
    root.SetCurrentFilter(Root());
    std::string order;
    for (const auto* child = root.GetFirstChild(); child; child = child->GetNextSibling()) {
        std::int32_t number = 0;
        child->GetInt32Property("n", number);
        order += child->GetName().substr(0, 1) + std::to_string(number) + " ";
    }
    EXPECT_EQ(order, "a3 b1 b4 v0 v2 ");
    EXPECT_EQ(root.GetChildren("view").at(1)->GetPath(), "viewhierarchy/view[2]");
    const auto removed = root.RemoveChild(root.GetChildren("behavior").at(0));
    EXPECT_EQ(root.CountChildren(), 4u);
    EXPECT_EQ(removed->GetParent(), nullptr);
}

TEST(Container, ADeepTreeIsDestroyedAndSelectedWithoutRecursion) {
    auto root = std::make_unique<QLX_RawPropertyContainer>("viewhierarchy");
    QLX_RawPropertyContainer* deepest = root.get();
    for (int i = 0; i < 300'000; ++i) {
        auto child = std::make_unique<QLX_RawPropertyContainer>("view");
        QLX_RawPropertyContainer* const next = child.get();
        deepest->AddChild(std::move(child));
        deepest = next;
    }
    deepest->SetStringProperty("p", "deep", Root());
    root->SetCurrentFilter(Filter("L", QLX_Language::English));
    EXPECT_EQ(Look(*deepest, "p"), "deep");
    root.reset();
}

TEST(Container, AListenerHearsTypeDefaultAndValue) {
    struct Listener : QLX_PropertyReadListener {
        void PropertyRead(const QLX_PropertyRead& read) override {
            mHeard.push_back(std::string(read.mName) + " " + QLX_PropertyTypeToString(read.mType) +
                             (read.mFound ? " found " : " default ") + read.mText);
        }
        Texts mHeard;
    } listener;
    QLX_RawPropertyContainer container("view");
    container.SetInt32Property("Size", 12, Root());
    container.SetCurrentFilter(Root());
    QLX_PropertyReadListener::SetListener(&listener);
    std::int32_t size = 9;
    std::int64_t wide = 9;
    bool shown = true;
    VRect frame(1, 2, 3, 4);
    container.GetInt32Property("Size", size);
    container.GetInt32Property("Absent", wide);
    container.GetBoolProperty("Shown", shown);
    container.GetRectProperty("Frame", frame);
    EXPECT_EQ(QLX_PropertyReadListener::SetListener(nullptr), &listener);
    container.GetInt32Property("Size", size);
    EXPECT_EQ(listener.mHeard, (Texts{"Size int32 found 12", "Absent int32 default 9",
                                      "Shown bool default true", "Frame rect default 2 1 4 3"}));
}
} // namespace
