// Views from descriptions: what is made, what is said about what is not, and re-reading under a
// living window.
#include "qlx/views/uviewserver.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "basekit/cmn/cmn_types.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/uadorner.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/ubehavior.h"
#include "qlx/views/ucontrol.h"
#include "qlx/views/udebugdump.h"
#include "qlx/views/uedittext.h"
#include "qlx/views/uinspector.h"
#include "qlx/views/ulayout.h"
#include "qlx/views/uviewplaceholder.h"
#include "qlx/views/uwindow.h"
#include "tests/support/probe_view.h"

namespace {

using Lines = std::vector<std::string>;

constexpr std::uint32_t ID(const char (&text)[5]) { return Cmn_FourChar(text); }

std::string Wrap(const std::string& inside) {
    return "<container name=\"d\"><viewhierarchy name=\"d\">" + inside +
           "</viewhierarchy></container>";
}

std::string View(const std::string& className, const std::string& id, const std::string& frame,
                 const std::string& inside = "") {
    return "<view class=\"" + className + "\" Identifier=\"" + id +
           "\"><property name=\"Frame\" type=\"rect\" value=\"" + frame + "\"/>" + inside +
           "</view>";
}

std::string Property(const std::string& name, const std::string& type, const std::string& value) {
    return "<property name=\"" + name + "\" type=\"" + type + "\" value=\"" + value + "\"/>";
}

class ViewServer : public testing::Test {
  protected:
    ViewServer() {
        ClassDesc::InitUClassDesc();
        (void)TViewServer::Get()->TakeProblems();
    }

    Lines Problems() {
        Lines lines;
        for (const TViewServerProblem& problem : TViewServer::Get()->TakeProblems())
            lines.push_back(problem.mPath + ": " + problem.mReason + ": " + problem.mClassName);
        return lines;
    }

    QLX_TestDriver mDriver;
};

TEST_F(ViewServer, ADescriptionBecomesAWindow) {
    TWindow& window = mDriver.OpenWindow(ReadDescription("windows/probe.xml"));
    EXPECT_EQ(window.GetTitle(), "QLX probe");
    EXPECT_EQ(window.GetSize(), VPoint(320, 180));
    TView& left = mDriver.Find(ID("left"));
    EXPECT_EQ(left.GetFrame(), VRect(10, 10, 150, 170));
    EXPECT_EQ(left.CountAdorners(), 2);
    EXPECT_EQ(mDriver.Find(ID("prob")).GetCursor(), kCursor_Cross);
    EXPECT_NE(window.GetDrawingEnvironment(), nullptr);
    // One mistake: reported with its place, and the rest stands where it belongs.
    EXPECT_EQ(Problems(), (Lines{"viewhierarchy/view/view[3]: unknown class: TNotThereAtAll"}));
    auto& missing = mDriver.FindAs<TPlaceholderView>(ID("miss"));
    EXPECT_EQ(missing.GetMissingClass(), "TNotThereAtAll");
    EXPECT_EQ(missing.GetFrame(), VRect(160, 100, 310, 170));
    EXPECT_EQ(mDriver.Find(ID("insd")).GetSuperView(), &missing);
    EXPECT_NE(mDriver.GetDrawing(ID("miss")).find("TNotThereAtAll"), std::string::npos);
    // And it is used as a user would.
    mDriver.Click(ID("prob"));
    mDriver.Type("Ab1");
    EXPECT_EQ(mDriver.FindAs<TProbeView>(ID("prob")).GetText(), "Ab1");
    EXPECT_EQ(mDriver.GetConsumer(), "TProbeView 'prob'");
    mDriver.ResizeWindow(400, 180);
    EXPECT_EQ(missing.GetFrame(), VRect(160, 100, 390, 170));
}

TEST_F(ViewServer, MistakesAreSaidWithTheirPlace) {
    const std::string xml = Wrap(View("TWindow", "w   ", "0 0 50 50",
                                      View("TBehavior", "b   ", "0 0 5 5") +
                                          "<view Identifier=\"none\"/>"
                                          "<adorner class=\"TView\" Identifier=\"a   \"/>"
                                          "<state class=\"TFillAdorner\"/>"
                                          "<behavior class=\"TNoBehavior\" Identifier=\"x   \"/>" +
                                          View("TView", "c   ", "0 0 5 5",
                                               Property("Cursor", "string", "finger") +
                                                   Property("LayoutLeft", "string", "sideways"))));
    TWindow* window = TViewServer::Get()->NewWindow(DescriptionFromText(xml));
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->CountSubViews(), 3);
    Lines problems = Problems();
    std::sort(problems.begin(), problems.end());
    EXPECT_EQ(
        problems,
        (Lines{"viewhierarchy/view/adorner: not an adorner: TView",
               "viewhierarchy/view/behavior: unknown class: TNoBehavior",
               "viewhierarchy/view/state: not a state: TFillAdorner",
               "viewhierarchy/view/view[1]: not a view: TBehavior",
               "viewhierarchy/view/view[2]: no class named: ",
               "viewhierarchy/view/view[3]: Cursor is no pointer shape: \"finger\": TView",
               "viewhierarchy/view/view[3]: LayoutLeft is no edge rule: \"sideways\": TView"}));
    window->Free();
    EXPECT_EQ(
        TViewServer::Get()->NewWindow(DescriptionFromText(Wrap(View("TView", "v   ", "0 0 5 5")))),
        nullptr);
    EXPECT_EQ(TViewServer::Get()->NewWindow(DescriptionFromText(Wrap(""))), nullptr);
    EXPECT_EQ(Problems().size(), 2U);
}

TEST_F(ViewServer, StatesSwitchWhatTheyName) {
    const std::string states =
        "<adorner class=\"TFillAdorner\" Identifier=\"fill\">" +
        Property("Enabled", "bool", "false") + "</adorner>" + "<state class=\"TViewState\">" +
        Property("Name", "string", "busy") + Property("Enabled", "bool", "false") +
        Property("EnabledAdorners", "string", "fill") + Property("ToolTip", "string", "wait") +
        "<drawingenvironment class=\"TDrawingEnvironment\"/></state>" +
        "<state class=\"TViewState\">" + Property("Name", "string", "idle") +
        Property("Enabled", "bool", "true") + Property("DisabledAdorners", "string", "fill") +
        "</state>";
    TView* view = TViewServer::Get()->NewViewHierarchy(
        DescriptionFromText(Wrap(View("TView", "v   ", "0 0 5 5", states))));
    EXPECT_EQ(Problems(), Lines{});
    EXPECT_FALSE(view->SetState("nonsense"));
    EXPECT_TRUE(view->SetState("busy"));
    EXPECT_FALSE(view->IsEnabled());
    EXPECT_TRUE(view->GetAdornerWithIdentifier(ID("fill"))->IsEnabled());
    EXPECT_NE(view->GetDrawingEnvironment(), nullptr);
    auto* copy = static_cast<TView*>(view->Clone());
    EXPECT_TRUE(view->SetState("idle"));
    EXPECT_TRUE(view->IsEnabled());
    EXPECT_FALSE(view->GetAdornerWithIdentifier(ID("fill"))->IsEnabled());
    EXPECT_EQ(view->GetState(), "idle");
    EXPECT_FALSE(copy->IsEnabled());
    EXPECT_TRUE(copy->SetState("idle"));
    copy->Free();
    view->Free();
}

// Re-reading

std::string Living(const std::string& inside, const std::string& frame = "0 0 100 200") {
    return Wrap(View("TWindow", "wind", frame, inside));
}

TEST_F(ViewServer, RereadingKeepsWhatStillStands) {
    TWindow& window = mDriver.OpenWindow(DescriptionFromText(
        Living(View("TProbeView", "keep", "0 0 50 50", View("TProbeView", "deep", "0 0 9 9")) +
               View("TProbeView", "gone", "0 50 50 100") + View("TView", "othr", "50 0 90 50"))));
    TView* keep = &mDriver.Find(ID("keep"));
    TView* deep = &mDriver.Find(ID("deep"));
    TView* other = &mDriver.Find(ID("othr"));
    auto* byCode = new TView;
    byCode->IView(&window, {0, 0, 1, 1});
    mDriver.Click(ID("keep"));
    mDriver.Type("kept");
    keep->SetLocalOrigin({3, 3}, true);
    keep->AddBehavior(new TBehavior);
    mDriver.ResizeWindow(400, 100);

    TViewServer::Get()->ReReadHierarchy(
        &window, DescriptionFromText(Living(View("TProbeView", "new ", "0 0 5 5") +
                                            View("TView", "othr", "60 0 90 50") +
                                            View("TProbeView", "keep", "10 10 60 60",
                                                 Property("LayoutRight", "string", "far") +
                                                     View("TProbeView", "deep", "0 0 19 19")))));
    EXPECT_EQ(Problems(), Lines{});
    EXPECT_EQ(&mDriver.Find(ID("keep")), keep);
    EXPECT_EQ(&mDriver.Find(ID("deep")), deep);
    EXPECT_EQ(&mDriver.Find(ID("othr")), other);
    EXPECT_THROW((void)mDriver.Find(ID("gone")), QLX_TestDriverError);
    EXPECT_EQ(gApplication->GetTarget(), keep);
    EXPECT_EQ(static_cast<TProbeView*>(keep)->GetText(), "kept");
    EXPECT_EQ(keep->GetLocalOffset(), VPoint(-3, -3));
    EXPECT_NE(keep->GetFirstBehavior(), nullptr) << "what code added stays";
    EXPECT_EQ(window.GetSize(), VPoint(400, 100)) << "the user's size stays";
    EXPECT_EQ(keep->GetFrame(), VRect(10, 10, 260, 60)) << "and the layout follows it";
    EXPECT_EQ(deep->GetFrame(), VRect(0, 0, 19, 19));
    // The description's order, and what code added in front.
    EXPECT_EQ(window.GetSubView(1), &mDriver.Find(ID("new ")));
    EXPECT_EQ(window.GetSubView(2), other);
    EXPECT_EQ(window.GetSubView(3), keep);
    EXPECT_EQ(window.GetSubView(4), byCode);
}

TEST_F(ViewServer, RereadingKeepsWhatTheUserDidToControls) {
    const auto describe = [](const std::string& text, const std::string& value) {
        return Living(View("TEditText", "edit", "0 0 20 90", Property("Text", "string", text)) +
                      View("TEditText", "none", "20 0 40 90", Property("Text", "string", text)) +
                      View("TSlider", "slid", "40 0 60 90", Property("Value", "int32", value)) +
                      View("TCheckBox", "chck", "60 0 80 90", Property("Value", "int32", value)));
    };
    TWindow& window = mDriver.OpenWindow(DescriptionFromText(describe("as described", "0")));
    mDriver.Click(ID("none"));
    mDriver.Chord("Ctrl+A");
    mDriver.Key(kDAW_Key_Delete);
    mDriver.Click(ID("edit"));
    mDriver.Chord("Ctrl+A");
    mDriver.Type("mine");
    mDriver.FindAs<TControl>(ID("slid")).SetValue(7, /*redraw*/ true);
    mDriver.FindAs<TControl>(ID("chck")).SetValue(1, /*redraw*/ true);
    TViewServer::Get()->ReReadHierarchy(&window, DescriptionFromText(describe("new", "3")));
    EXPECT_EQ(Problems(), Lines{});
    EXPECT_EQ(mDriver.FindAs<TEditText>(ID("edit")).GetText(), "mine");
    EXPECT_EQ(mDriver.FindAs<TEditText>(ID("none")).GetText(), "") << "emptied on purpose";
    EXPECT_EQ(mDriver.FindAs<TControl>(ID("slid")).GetValue(), 7);
    EXPECT_EQ(mDriver.FindAs<TControl>(ID("chck")).GetValue(), 1);
    mDriver.Type("!");
    EXPECT_EQ(mDriver.FindAs<TEditText>(ID("edit")).GetText(), "mine!") << "focus and caret too";
}

TEST_F(ViewServer, RereadingAChangedClassMakesANewView) {
    TWindow& window =
        mDriver.OpenWindow(DescriptionFromText(Living(View("TView", "view", "0 0 50 50"))));
    mDriver.MoveTo(ID("view"));
    TViewServer::Get()->ReReadHierarchy(
        &window, DescriptionFromText(Living(View("TProbeView", "view", "0 0 50 50"))));
    EXPECT_EQ(mDriver.Find(ID("view")).GetClassDescDynamic()->GetClassName(), "TProbeView");
    EXPECT_EQ(window.CountSubViews(), 1);
    // One that makes no sense changes nothing.
    TViewServer::Get()->ReReadHierarchy(&window, DescriptionFromText(Wrap("")));
    TViewServer::Get()->ReReadHierarchy(
        &window, DescriptionFromText(Wrap(View("TView", "wind", "0 0 9 9"))));
    EXPECT_EQ(window.CountSubViews(), 1);
    EXPECT_EQ(Problems().size(), 2U);
}

// Dumps and the inspector

TEST_F(ViewServer, TheInspectorSaysWhatIsUnderThePointer) {
    TInspector::Enable('I', kQLX_Modifier_Command);
    TWindow& window = mDriver.OpenWindow(ReadDescription("windows/probe.xml"));
    mDriver.MoveTo(ID("two "));
    EXPECT_EQ(TInspector::GetInspected(), nullptr);
    mDriver.Chord("Ctrl+I");
    EXPECT_EQ(TInspector::GetInspected(), &mDriver.Find(ID("two ")));
    const std::string text = TInspector::Describe(TInspector::GetInspected());
    EXPECT_EQ(text.substr(0, text.find("properties:")),
              "TProbeView 'two ' frame VRect(160, 10, 310, 90)\n"
              "handlers:\n"
              "  TProbeView 'two '\n"
              "  TWindow 'wind'\n"
              "  TApplication '    '\n");
    EXPECT_NE(text.find("\n  Frame rect = 10 160 90 310 [common]\n"), std::string::npos);
    mDriver.MoveTo(ID("prob"));
    EXPECT_EQ(TInspector::GetInspected(), &mDriver.Find(ID("prob")));
    mDriver.Find(ID("left")).Free();
    EXPECT_EQ(TInspector::GetInspected(), nullptr) << "forgotten before its memory goes";
    mDriver.WaitForIdle();
    EXPECT_EQ(TInspector::GetInspected(), &window) << "the pointer is over it now";
    mDriver.Chord("Ctrl+Shift+I");
    EXPECT_TRUE(window.IsPaintFlashing());
    mDriver.Find(ID("two ")).ForceRedraw();
    mDriver.Step(1);
    EXPECT_FALSE(window.NeedsDrawing()) << "flashing comes to rest";
    mDriver.Chord("Ctrl+I");
    EXPECT_EQ(TInspector::GetWindow(), nullptr);
    TInspector::Disable();
    (void)Problems();
}

TEST_F(ViewServer, PropertiesAreDumpedWithTheFilterThatStoresThem) {
    const auto compact = QLX_PropertyFilter::MakeFilter("Compact", QLX_Language::English);
    const auto german = QLX_PropertyFilter::MakeFilter("Compact", QLX_Language::German);
    QLX_RawPropertyContainer container("view");
    container.SetInt32Property("Level", 1, QLX_PropertyFilter::RootFilter());
    container.SetInt32Property("Level", 2, compact);
    container.SetInt32Property("Other", 3, QLX_PropertyFilter::RootFilter());
    container.SetBoolProperty("Wide", true, german);
    EXPECT_EQ(QLX_DumpProperties(&container), "") << "no filter is current";
    container.SetCurrentFilter(german);
    EXPECT_EQ(QLX_DumpProperties(&container), "Level int32 = 2 [Layout=Compact]\n"
                                              "Other int32 = 3 [common]\n"
                                              "Wide bool = true [Language=DEU Layout=Compact]\n");
}

TEST_F(ViewServer, DumpsShowTrees) {
    TView* view = TViewServer::Get()->NewViewHierarchy(DescriptionFromText(
        Wrap(View("TView", "root", "0 0 50 60",
                  View("TView", "hide", "1 2 3 4", Property("Shown", "bool", "false"))))));
    EXPECT_EQ(QLX_DumpViews(view), "TView 'root' frame VRect(0, 0, 60, 50)\n"
                                   "  TView 'hide' frame VRect(2, 1, 4, 3) hidden\n");
    EXPECT_EQ(QLX_DumpViewsAsGraph(view), "digraph views {\n"
                                          "  n0 [label=\"TView 'root'\"];\n"
                                          "  n0 -> n1;\n"
                                          "  n1 [label=\"TView 'hide'\"];\n"
                                          "}\n");
    view->Free();
}

} // namespace
