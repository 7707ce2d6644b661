#include "tests/support/gallery.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <stdexcept>

#include "app/misc/unumericentrytext.h"
#include "basekit/cmn/cmn_string.h"
#include "mediakit/audio/peak_pyramid.h"
#include "newfilelibs/daw/daw_types.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/persistence/qlx_sourceformat.h"
#include "qlx/views/qlx_keyboard.h"
#include "qlx/views/ubuttons.h"
#include "qlx/views/uedittext.h"
#include "qlx/views/umenumanager.h"
#include "qlx/views/umeterview.h"
#include "qlx/views/upopup.h"
#include "qlx/views/usliders.h"
#include "qlx/views/utabs.h"
#include "qlx/views/utextlist.h"
#include "qlx/views/uviewserver.h"
#include "qlx/views/uwaveformview.h"
#include "qlx/views/uwindow.h"

namespace {

constexpr std::int64_t kFrames = 48000;

/// A plucked note: loud at first, then dying away.
class Note : public Audio_SampleReader {
  public:
    std::int64_t GetFrameCount() const override { return kFrames; }
    int GetChannelCount() const override { return 1; }
    bool Read(std::int64_t start, std::int32_t count, float* samples) override {
        for (std::int32_t i = 0; i < count; ++i) {
            const double time = static_cast<double>(start + i) / kFrames;
            const double swell = 0.55 + 0.45 * std::cos(time * 40);
            samples[i] =
                static_cast<float>(0.9 * std::exp(-3 * time) * swell * std::sin(time * 2764.6));
        }
        return true;
    }
};

template <class T>
T& Find(TWindow& window, std::uint32_t identifier) {
    if (T* view = QLX_ObjectCast<T>(window.FindSubView(identifier, /*deep*/ true)))
        return *view;
    throw std::runtime_error("the gallery has no " + T::fgClassDesc.GetClassName());
}

TMenuKey Key(int code, std::uint32_t modifiers) {
    return {static_cast<DAW_EKeyCode>(code), modifiers};
}

TMenuItem* AddCommand(TMenu& menu, std::int32_t command, const char* text, TMenuKey key = {}) {
    TMenuItem* item = menu.AppendItem(TMenuItem::NewCommand(command, text, key));
    item->SetAlwaysEnabled(true);
    return item;
}

} // namespace

TWindow* MakeGallery(const std::string& folder) {
    QLX_SourceViewFormat format(Sys_FileLoc(folder + "/gallery.xml"));
    const Cmn_AliasedRefCountPtr<QLX_ViewMemento> memento(format.ReadMemento(nullptr));
    memento->GetRoot()->SetCurrentFilter(QLX_PropertyFilter::DefaultFilter());
    TWindow* window = TViewServer::Get()->NewWindow(memento);
    std::string problems;
    for (const TViewServerProblem& problem : TViewServer::Get()->TakeProblems())
        problems += problem.AsString() + "\n";
    if (!window || !problems.empty())
        throw std::runtime_error("the gallery's description: " + problems);

    auto& meter = Find<TMeterView>(*window, Cmn_FourChar("metr"));
    meter.Feed(0, 0.5f, 0.2f);
    meter.Feed(1, 1.0f, 0.35f);
    auto peaks = std::make_shared<Audio_PeakPyramid>(std::make_shared<Note>(), "", 0);
    peaks->WaitUntilComplete();
    auto& waveform = Find<TWaveformView>(*window, Cmn_FourChar("wave"));
    waveform.SetAudio(peaks, kFrames, 1);
    waveform.ZoomToFit();
    waveform.SetSelection(kFrames / 4, kFrames / 2);
    waveform.SetCursorFrame(kFrames / 4);
    QLX_RowSelection rows;
    rows.Add(1, 3);
    rows.Add(4, 5);
    Find<TTextList>(*window, Cmn_FourChar("lst1")).SetSelection(rows, /*redraw*/ false);
    rows.Set(1, 2);
    Find<TTextList>(*window, Cmn_FourChar("lst2")).SetSelection(rows, /*redraw*/ false);
    for (const std::uint32_t field :
         {Cmn_FourChar("num0"), Cmn_FourChar("num1"), Cmn_FourChar("num3")})
        Find<TNumericEntryText>(*window, field).SetTextFromIntegerValue(120);
    auto& focused = Find<TNumericEntryText>(*window, Cmn_FourChar("num1"));
    const std::string value = focused.GetText();
    focused.SetSelection(static_cast<short>(value.find('|') + 1),
                         static_cast<short>(value.rfind('|')));
    return window;
}

void SetGalleryMenus() {
    TMenuManager::RemoveAllMenus();
    auto file = std::make_unique<TMenu>("&File");
    AddCommand(*file, 2001, "&New Session", Key('N', kQLX_Modifier_Command));
    AddCommand(*file, 2002, "&Open...", Key('O', kQLX_Modifier_Command));
    auto recent = std::make_unique<TMenu>("Open &Recent");
    AddCommand(*recent, 2003, "Ballad");
    AddCommand(*recent, 2004, "Shuffle");
    file->AppendItem(TMenuItem::NewSubmenu(std::move(recent)));
    file->AppendItem(TMenuItem::NewSeparator());
    AddCommand(*file, 2005, "&Save", Key('S', kQLX_Modifier_Command));
    AddCommand(*file, 2006, "Save &As...", Key('S', kQLX_Modifier_Command | kQLX_Modifier_Shift));
    auto view = std::make_unique<TMenu>("&View");
    auto follow = TMenuItem::NewCommand(2010, "&Follow Playback", Key(kDAW_Key_F1 + 4, 0));
    TMenuItem* following = view->AppendItem(std::move(follow));
    following->SetAlwaysEnabled(true);
    following->SetCheckState(TMenuItem::kChecked);
    AddCommand(*view, 2011, "&Grid")->SetCheckState(TMenuItem::kMixed);
    view->AppendItem(TMenuItem::NewCommand(2012, "&Video")); // nobody enables it
    TMenuManager::AppendMenu(std::move(file));
    TMenuManager::AppendMenu(std::move(view));
}

namespace {

/// The keys that change a control and, where it matters for what follows, bring it back.
std::vector<std::string> KeysFor(TView* view) {
    if (QLX_ObjectCast<TNumericEntryText>(view) || QLX_ObjectCast<TEditText>(view))
        return {"7"};
    if (QLX_ObjectCast<TButtonBase>(view))
        return {"Space"};
    if (QLX_ObjectCast<TPopup>(view) || QLX_ObjectCast<TTextList>(view))
        return {"Down"};
    if (QLX_ObjectCast<TTabs>(view))
        return {"Right", "Left"};
    return {"Up", "Right"};
}

/// What the user sees of a control, as far as keys change it.
std::string StateOf(TView* view) {
    if (auto* field = QLX_ObjectCast<TNumericEntryText>(view))
        return field->GetText();
    auto* control = QLX_ObjectCast<TControl>(view);
    return control ? control->GetValueText() : std::string();
}

std::string NameOf(TView* view) {
    return view->GetClassDescDynamic()->GetClassName() + " '" +
           Cmn_IDToString(view->GetIdentifier()) + "'";
}

} // namespace

GalleryWalk WalkGallery(TWindow& window, const std::function<void(const std::string& key)>& press) {
    GalleryWalk walk;
    window.SetWindowTarget(nullptr);
    press("Tab");
    TView* const first = QLX_ObjectCast<TView>(window.GetWindowTarget());
    for (TView* view = first; view;) {
        ++walk.mVisited;
        int heard = 0;
        if (auto* control = QLX_ObjectCast<TControl>(view))
            control->SetChangeCallback([&heard](TControl&, std::int32_t) { ++heard; });
        const std::string before = StateOf(view);
        bool changed = false;
        for (const std::string& key : KeysFor(view)) {
            press(key);
            changed = changed || heard > 0 || StateOf(view) != before;
        }
        if (auto* control = QLX_ObjectCast<TControl>(view))
            control->SetChangeCallback({});
        // A radio button that is chosen stays so; the waveform only scrolls.
        const bool mayStay = QLX_ObjectCast<TRadio>(view) || QLX_ObjectCast<TWaveformView>(view);
        if (!changed && !mayStay)
            walk.mProblems.push_back(NameOf(view) + " does not answer to its key");
        const std::vector<TView*> order = window.GetTabViews();
        const auto place = std::find(order.begin(), order.end(), view);
        TView* next = place == order.end()       ? nullptr
                      : place + 1 == order.end() ? order.front()
                                                 : *(place + 1);
        press("Tab");
        view = QLX_ObjectCast<TView>(window.GetWindowTarget());
        if (!view || view != next)
            walk.mProblems.push_back("Tab goes to " + (view ? NameOf(view) : "nothing") +
                                     " and not to " + (next ? NameOf(next) : "nothing"));
        if (view == first || walk.mVisited > 500)
            break;
    }
    if (walk.mVisited < static_cast<int>(window.GetTabViews().size()))
        walk.mProblems.push_back("some controls were not met");
    return walk;
}
