// The packed form: whole descriptions back, several writes in one store, broken bytes.
#include "qlx/persistence/qlx_binaryformat.h"

#include <gtest/gtest.h>

#include <stdexcept>

#include "basekit/cmn/cmn_alert.h"
#include "mediakit/ff/ff_document.h"
#include "qlx/persistence/qlx_sourceformat.h"
#include "tests/support/assertion_catcher.h"

namespace {
std::unique_ptr<QLX_ViewMemento> MakeMemento(const std::string& name) {
    auto* const root = new QLX_RawPropertyContainer("viewhierarchy");
    root->SetStringProperty("name", name, QLX_PropertyFilter::RootFilter());
    auto view = std::make_unique<QLX_RawPropertyContainer>("view");
    const auto compact = QLX_PropertyFilter::MakeFilter("Compact", QLX_Language::German);
    for (const auto& filter : {QLX_PropertyFilter::RootFilter(), compact}) {
        view->SetBoolProperty("bool", true, filter);
        view->SetInt32Property("int32", -1, filter);
        view->SetInt64Property("int64", INT64_MIN, filter);
        view->SetIDTypeProperty("idtype", 0xFFFFFFFFu, filter);
        view->SetStringProperty(std::string(300, 'n'), "a long name", filter);
        view->SetStringKeyProperty("key", "KEY", filter);
        view->SetColorProperty("color", CRGBColor(1, 2, 3, 4), filter);
        view->SetPointProperty("point", VPoint(INT64_MAX, -5), filter);
        view->SetRectProperty("rect", VRect(1, -2, 3, INT64_MIN), filter);
    }
    root->AddChild(std::move(view));
    root->AddChild(std::make_unique<QLX_RawPropertyContainer>("behavior"));
    auto memento = std::make_unique<QLX_ViewMemento>(root, name);
    memento->GetStringTables()[QLX_Language::English]["KEY"] = {"", "Mute"};
    memento->GetStringTables()[QLX_Language::German]["KEY"] = {"Mute", "Stumm"};
    memento->GetStringTables()[QLX_Language::French]["KEY"] = {"Mute", "Muet"};
    return memento;
}

void ExpectSameTree(const QLX_RawPropertyContainer& a, const QLX_RawPropertyContainer& b) {
    EXPECT_EQ(a.GetName(), b.GetName());
    EXPECT_EQ(a.GetFilterPropertyMap(), b.GetFilterPropertyMap());
    const auto* mine = a.GetFirstChild();
    const auto* theirs = b.GetFirstChild();
    for (; mine && theirs; mine = mine->GetNextSibling(), theirs = theirs->GetNextSibling())
        ExpectSameTree(*mine, *theirs);
    EXPECT_TRUE(!mine && !theirs);
}

std::unique_ptr<FF_Document> MakeStore() {
    return std::make_unique<FF_Document>(std::make_unique<Sys_File>("memory", ""));
}

TEST(BinaryFormat, GivesBackTreeAndStrings) {
    const auto memento = MakeMemento("Mix");
    const auto read =
        QLX_BinaryViewFormat::DecodeMemento(QLX_BinaryViewFormat::EncodeMemento(*memento), "Mix");
    ExpectSameTree(*read->GetRoot(), *memento->GetRoot());
    EXPECT_EQ(read->GetStringTables(), memento->GetStringTables());
}

TEST(BinaryFormat, ReadsByNameFrozenAndTrimmed) {
    const auto store = MakeStore();
    const auto mix = MakeMemento("Mix");
    const auto edit = MakeMemento("Edit");
    QLX_BinaryViewFormat format(store.get());
    format.WriteMementos({{"Mix", mix.get()}, {"Edit", edit.get()}});
    EXPECT_EQ(format.GetNames(), (std::vector<std::string>{"Edit", "Mix"}));
    StCurrentLanguage german(QLX_Language::German);
    const std::unique_ptr<QLX_ViewMemento> read(format.ReadMemento("Mix", /*trim*/ true));
    EXPECT_TRUE(read->GetRoot()->IsFrozen());
    EXPECT_EQ(read->GetRoot()->GetCurrentFilter(), QLX_PropertyFilter::DefaultFilter());
    EXPECT_EQ(read->GetStringTables().count(QLX_Language::French), 0u);
    QLX_RawPropertyContainer* const view = read->GetRoot()->GetChildren("view").at(0);
    EXPECT_EQ(read->GetLocalizedStringProperty(view, "key"), "Stumm");
    EXPECT_EQ(read->GetLocalizedStringProperty(view, "bool"), "");
}

TEST(BinaryFormat, LaterWritesAddAndReplace) {
    const auto store = MakeStore();
    QLX_BinaryViewFormat format(store.get());
    const auto first = MakeMemento("Mix");
    format.WriteMementos({{"Mix", first.get()}, {"Dictionary", first.get()}});
    const auto second = MakeMemento("Mix");
    second->GetRoot()->SetInt32Property("new", 1, QLX_PropertyFilter::RootFilter());
    format.WriteMementos({{"Mix", second.get()}});
    EXPECT_EQ(format.GetNames(), (std::vector<std::string>{"Dictionary", "Mix"}));
    const std::unique_ptr<QLX_ViewMemento> read(format.ReadMemento("Mix", /*trim*/ false));
    ExpectSameTree(*read->GetRoot(), *second->GetRoot());
}

TEST(BinaryFormat, AnUnknownNameIsAlertedAndAsserted) {
    static std::string alert;
    const Cmn_AlertHandler previous = Cmn_SetAlertHandler([](const char* text) { alert = text; });
    const auto store = MakeStore();
    AssertionCatcher catcher;
    EXPECT_EQ(QLX_BinaryViewFormat(store.get()).ReadMemento("None", false), nullptr);
    Cmn_SetAlertHandler(previous);
    EXPECT_EQ(alert, "There is no view description named \"None\".");
    EXPECT_EQ(catcher.TakeTexts(), std::vector<std::string>{"iter != mIndex->end()"});
}

TEST(BinaryFormat, BrokenBytesAreAnErrorOrAnotherDescription) {
    const std::string bytes = QLX_BinaryViewFormat::EncodeMemento(*MakeMemento("Mix"));
    for (std::size_t size = 0; size < bytes.size(); ++size)
        EXPECT_THROW((void)QLX_BinaryViewFormat::DecodeMemento(bytes.substr(0, size), "Mix"),
                     std::runtime_error)
            << size;
    // Without the store's checksum in front a flipped bit may mean another value; never a crash.
    AssertionCatcher catcher;
    for (std::size_t bit = 0; bit < bytes.size() * 8; ++bit) {
        std::string flipped = bytes;
        flipped[bit / 8] = static_cast<char>(flipped[bit / 8] ^ (1 << bit % 8));
        try {
            (void)QLX_BinaryViewFormat::DecodeMemento(flipped, "Mix");
        } catch (const std::runtime_error&) {
        }
    }
}

TEST(BinaryFormat, CountsThatLieAndDepthAreRefused) {
    const std::string head("\1\1\1a\1\0",
                           6); // version, the pool "a", one filter without attributes
    AssertionCatcher catcher;  // about that filter
    std::string deep = head;
    for (int i = 0; i < 100'000; ++i)
        deep += std::string("\1\0\1", 3);
    for (const std::string& bytes :
         {deep, std::string("\1\xFF\xFF\xFF\xFF\x0F", 6),
          head + std::string("\1\1\0\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\1", 13)})
        EXPECT_THROW((void)QLX_BinaryViewFormat::DecodeMemento(bytes, "x"), std::runtime_error);
}
} // namespace
