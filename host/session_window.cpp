#include "host/session_window.h"

#include <algorithm>
#include <cmath>

#include "app/misc/unumericentrytext.h"
#include "basekit/sys/sys_clock.h"
#include "basekit/sys/sys_file.h"
#include "host/rulerview.h"
#include "mediakit/time/time_barbeattick.h"
#include "mediakit/time/time_smpte.h"
#include "newfilelibs/daw/daw_types.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/platform/testing/qlx_preview.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/ubuttons.h"
#include "qlx/views/uedittext.h"
#include "qlx/views/uevent.h"
#include "qlx/views/umenubar.h"
#include "qlx/views/umenumanager.h"
#include "qlx/views/umeterview.h"
#include "qlx/views/upopup.h"
#include "qlx/views/usliders.h"
#include "qlx/views/ustatictext.h"
#include "qlx/views/utextlist.h"
#include "qlx/views/uviewserver.h"
#include "qlx/views/uwaveformview.h"

QLX_DEFINE_CLASS(TSessionWindow, TWindow)

namespace {

constexpr const char* kLayouts[] = {"", "Compact", "Large"};
constexpr QLX_Language::ELanguage kLanguages[] = {QLX_Language::English, QLX_Language::French,
                                                  QLX_Language::German, QLX_Language::Japanese};
constexpr std::int32_t kRates[] = {44100, 48000, 88200, 96000, 176400, 192000};
constexpr std::int32_t kFrameTicks = 1; // idle time while playing: every sixtieth of a second
constexpr double kFollowMargin = 0.05;

int LayoutNumber(const std::string& layout) {
    const auto found = std::find(std::begin(kLayouts), std::end(kLayouts), layout);
    return found == std::end(kLayouts) ? 0 : static_cast<int>(found - std::begin(kLayouts));
}

int LanguageNumber(QLX_Language::ELanguage language) {
    const auto found = std::find(std::begin(kLanguages), std::end(kLanguages), language);
    return found == std::end(kLanguages) ? 0 : static_cast<int>(found - std::begin(kLanguages));
}

float AmplitudeOf(std::int32_t gainTenths) {
    if (gainTenths <= SessionModel::kLeastGain)
        return 0;
    return static_cast<float>(std::pow(10.0, gainTenths / 200.0));
}

} // namespace

TSessionWindow::TSessionWindow() = default;
TSessionWindow::~TSessionWindow() = default;

void TSessionWindow::Free() {
    TNumericEntryText::RegisterCaptureTimeCallback(nullptr);
    if (mLabels)
        mLabels->Free();
    mLabels = nullptr;
    mPeaks.reset();
    mExampleKeys.reset();
    TWindow::Free();
}

template <class T>
T* TSessionWindow::FindAs(std::uint32_t identifier) {
    return QLX_ObjectCast<T>(FindSubView(identifier, /*deep*/ true));
}

TNumericEntryText* TSessionWindow::Field(std::uint32_t identifier) {
    return FindAs<TNumericEntryText>(identifier);
}

std::string TSessionWindow::GetText(const std::string& key) const {
    const std::string text =
        mMemento ? mMemento->GetLocalizedStringProperty(QLX_Language::GetCurrentLanguage(), key)
                 : std::string();
    return text.empty() ? key : text;
}

// Set-up

void TSessionWindow::ISession(SessionAudio audio, const MementoPtr& memento,
                              const SessionLook& look) {
    mAudio = std::move(audio);
    mMemento = memento;
    mModel.AddDependent(this);
    mModel.SetFrameCount(mAudio.mReader->GetFrameCount());
    mPeaks =
        std::make_shared<Audio_PeakPyramid>(mAudio.mReader, mAudio.mCachePath, mAudio.mFingerprint);
    mLabels = new TNumericEntryText;
    Time_Session::SetSampleRate(mAudio.mSamplesPerSecond);
    mTransport.SetLimits(mModel.GetFrameCount(), mAudio.mSamplesPerSecond);
    mModel.SetNudge(mAudio.mSamplesPerSecond / 10);
    mModel.SetGrid(mAudio.mSamplesPerSecond);
    SessionState state = mModel.GetState();
    state.mTrackName = mAudio.mName;
    mModel.SetState(state, kSession_Track);
    TNumericEntryText::RegisterCaptureTimeCallback(&CapturePosition);
    WireViews();
    SetLook(look);
    if (TWaveformView* waveform = FindAs<TWaveformView>(Cmn_FourChar("wave")))
        waveform->ZoomToFit();
}

void TSessionWindow::WireViews() {
    for (const std::uint32_t identifier :
         {Cmn_FourChar("main"), Cmn_FourChar("scnd"), Cmn_FourChar("star"), Cmn_FourChar("endt"),
          Cmn_FourChar("leng"), Cmn_FourChar("nudg"), Cmn_FourChar("grid"), Cmn_FourChar("volu"),
          Cmn_FourChar("pan "), Cmn_FourChar("temp"), Cmn_FourChar("mnum"), Cmn_FourChar("mden"),
          Cmn_FourChar("offs")})
        if (TNumericEntryText* field = Field(identifier))
            field->SetCallback(&FieldCallback, this);
    if (TNumericEntryText* secondary = Field(Cmn_FourChar("scnd")))
        secondary->SetIsSecondaryCounter(true);
    if (TNumericEntryText* volume = Field(Cmn_FourChar("volu")))
        volume->SetMinMaxFloatValues(-120, 12);
    for (const auto& [identifier, value] : {std::pair(Cmn_FourChar("temp"), 120),
                                            {Cmn_FourChar("mnum"), 4},
                                            {Cmn_FourChar("mden"), 4},
                                            {Cmn_FourChar("offs"), 0}})
        if (TNumericEntryText* field = Field(identifier))
            field->SetTextFromIntegerValue(value);
    auto* waveform = FindAs<TWaveformView>(Cmn_FourChar("wave"));
    auto* ruler = FindAs<TRulerView>(Cmn_FourChar("rulr"));
    if (waveform) {
        waveform->SetAudio(mPeaks, mModel.GetFrameCount(), mAudio.mReader->GetChannelCount());
        waveform->SetSelectionCallback([this](int phase, std::int64_t from, std::int64_t to) {
            WaveformSelected(phase, from, to);
        });
        waveform->SetScaleCallback([this] {
            if (TRulerView* followed = FindAs<TRulerView>(Cmn_FourChar("rulr")))
                followed->ForceRedraw();
        });
    }
    if (ruler) {
        ruler->SetSamplesPerSecond(mAudio.mSamplesPerSecond);
        ruler->Follow(
            waveform, [this](std::int64_t frame) { return LabelOf(frame); },
            [this](std::int64_t frame) { LocateFrame(frame); });
    }
    if (TMeterView* meter = FindAs<TMeterView>(Cmn_FourChar("metr")))
        meter->SetChannels(mAudio.mReader->GetChannelCount(), /*redraw*/ false);
}

void TSessionWindow::MakeMenus() {
    TMenuManager::RemoveAllMenus();
    const auto item = [this](const char* key, std::int32_t command, DAW_EKeyCode code,
                             std::uint32_t modifiers) {
        return TMenuItem::NewCommand(command, GetText(key), {code, modifiers});
    };
    constexpr std::uint32_t kCommand = 8; // the Ctrl key's bit in an event
    const auto letter = [](char c) { return static_cast<DAW_EKeyCode>(c); };
    auto file = std::make_unique<TMenu>(GetText("menu.file"));
    file->AppendItem(item("quit", kSessionCommand_Quit, letter('Q'), kCommand));
    auto edit = std::make_unique<TMenu>(GetText("menu.edit"));
    edit->AppendItem(item("undo", kCommand_Undo, letter('Z'), kCommand));
    edit->AppendItem(TMenuItem::NewSeparator());
    edit->AppendItem(item("selectall", kSessionCommand_SelectAll, letter('A'), kCommand));
    edit->AppendItem(item("nudgeback", kSessionCommand_NudgeBack, kDAW_Key_None, 0));
    edit->AppendItem(item("nudgeforward", kSessionCommand_NudgeForward, kDAW_Key_None, 0));
    auto transport = std::make_unique<TMenu>(GetText("menu.transport"));
    transport->AppendItem(item("play", kSessionCommand_Play, kDAW_Key_None, 0));
    transport->AppendItem(item("stop", kSessionCommand_Stop, kDAW_Key_None, 0));
    transport->AppendItem(item("rtz", kSessionCommand_ToStart, kDAW_Key_None, 0));
    auto view = std::make_unique<TMenu>(GetText("menu.view"));
    view->AppendItem(item("zoomin", kSessionCommand_ZoomIn, kDAW_Key_None, 0));
    view->AppendItem(item("zoomout", kSessionCommand_ZoomOut, kDAW_Key_None, 0));
    view->AppendItem(item("zoomfit", kSessionCommand_ZoomFit, kDAW_Key_None, 0));
    for (auto* menu : {&file, &edit, &transport, &view})
        TMenuManager::AppendMenu(std::move(*menu));
}

void TSessionWindow::SetLook(const SessionLook& look) {
    mLook = look;
    const StDispatch dispatch;
    QLX_Theme::SetVariant(static_cast<EThemeVariant>(look.mTheme));
    QLX_Language::SetCurrentLanguage(look.mLanguage);
    mMemento->GetRoot()->SetCurrentFilter(
        QLX_PropertyFilter::MakeFilter(look.mLayout, look.mLanguage));
    TakeSizeOfLayout();
    TViewServer::Get()->ReReadHierarchy(this, mMemento);
    for (auto [identifier, value] : {std::pair(Cmn_FourChar("layo"), LayoutNumber(look.mLayout)),
                                     {Cmn_FourChar("lang"), LanguageNumber(look.mLanguage)},
                                     {Cmn_FourChar("them"), look.mTheme}})
        if (auto* popup = QLX_ObjectCast<TPopup>(FindSubView(identifier, /*deep*/ true)))
            popup->SetValue(value, /*redraw*/ true);
    MakeMenus();
    ApplyFormats();
    ShowModel();
    mShownPosition = -1;
    ShowPosition();
    ForceRedraw();
}

// A layout brings its size. The same layout in another language keeps the user's.
void TSessionWindow::TakeSizeOfLayout() {
    if (mLook.mLayout == mShownLayout)
        return;
    mShownLayout = mLook.mLayout;
    const auto windows = mMemento->GetRoot()->GetChildren("view");
    VPoint size;
    if (!windows.empty() && windows.front()->GetPointProperty("Size", size))
        SetFrame(VRect(VPoint(0, 0), size), /*redraw*/ true, /*layOut*/ true);
}

void TSessionWindow::ApplyFormats() {
    const TPopup* main = FindAs<TPopup>(Cmn_FourChar("fmt1"));
    const TPopup* secondary = FindAs<TPopup>(Cmn_FourChar("fmt2"));
    if (main)
        TNumericEntryText::SetDefaultTimeFormat(static_cast<ETimeFormat>(main->GetValue()));
    if (secondary)
        TNumericEntryText::SetSecondaryDefaultTimeFormat(
            static_cast<ETimeFormat>(secondary->GetValue()));
    ShowModel();
    mShownPosition = -1;
    ShowPosition();
    if (TRulerView* ruler = FindAs<TRulerView>(Cmn_FourChar("rulr")))
        ruler->ForceRedraw();
}

void TSessionWindow::ApplyRates() {
    if (const TPopup* rate = FindAs<TPopup>(Cmn_FourChar("rate")))
        Time_Session::SetSampleRate(kRates[rate->GetValue()]);
    ETimeCodeFormat format = Time_Session::GetTimeCodeFormat();
    if (const TPopup* timeCode = FindAs<TPopup>(Cmn_FourChar("tcrt")))
        if (Time_FindFormat(timeCode->GetValueText().c_str(), format))
            Time_Session::SetTimeCodeFormat(format);
    mTransport.SetLimits(mModel.GetFrameCount(), Time_Session::GetSampleRate());
    if (TRulerView* ruler = FindAs<TRulerView>(Cmn_FourChar("rulr")))
        ruler->SetSamplesPerSecond(Time_Session::GetSampleRate());
    ApplyFormats();
}

void TSessionWindow::WaitForPeaks() {
    if (mPeaks)
        mPeaks->WaitUntilComplete();
    if (TWaveformView* waveform = FindAs<TWaveformView>(Cmn_FourChar("wave")))
        waveform->PeaksGrew();
}

// Showing

std::string TSessionWindow::LabelOf(std::int64_t frame) {
    if (!mLabels)
        return {};
    mLabels->SetTextFromSample(Time_Sample(frame), /*redraw*/ false);
    return mLabels->GetText();
}

void TSessionWindow::ShowModel() {
    const SessionState& state = mModel.GetState();
    const auto showTime = [](TNumericEntryText* field, std::int64_t samples) {
        if (field)
            field->SetTextFromSample(Time_Sample(samples), /*redraw*/ true);
    };
    showTime(Field(Cmn_FourChar("star")), state.mStart);
    showTime(Field(Cmn_FourChar("endt")), state.mEnd);
    showTime(Field(Cmn_FourChar("leng")), state.mEnd - state.mStart);
    showTime(Field(Cmn_FourChar("nudg")), mModel.GetNudge());
    showTime(Field(Cmn_FourChar("grid")), mModel.GetGrid());
    if (TNumericEntryText* volume = Field(Cmn_FourChar("volu")))
        volume->SetTextFromIntegerValue(state.mGain);
    if (TNumericEntryText* pan = Field(Cmn_FourChar("pan ")))
        pan->SetTextFromIntegerValue(state.mPan);
    if (TSlider* slider = FindAs<TSlider>(Cmn_FourChar("vsld")))
        slider->SetValue(state.mGain, /*redraw*/ true);
    if (TKnob* knob = FindAs<TKnob>(Cmn_FourChar("pknb")))
        knob->SetValue(state.mPan, /*redraw*/ true);
    TEditText* name = FindAs<TEditText>(Cmn_FourChar("trkn"));
    if (name && !name->IsTarget() && name->GetText() != state.mTrackName)
        name->SetText(state.mTrackName, /*redraw*/ true);
    if (TWaveformView* waveform = FindAs<TWaveformView>(Cmn_FourChar("wave"))) {
        waveform->SetSelection(state.mStart, state.mEnd);
        waveform->SetGain(AmplitudeOf(state.mGain), /*redraw*/ true);
    }
}

void TSessionWindow::ShowPosition() {
    const std::int64_t position = mTransport.GetPosition();
    if (position == mShownPosition)
        return;
    mShownPosition = position;
    for (TNumericEntryText* counter : {Field(Cmn_FourChar("main")), Field(Cmn_FourChar("scnd"))})
        if (counter)
            counter->SetTextFromSample(Time_Sample(position), /*redraw*/ true);
    TWaveformView* waveform = FindAs<TWaveformView>(Cmn_FourChar("wave"));
    if (!waveform)
        return;
    waveform->SetCursorFrame(position);
    const TCheckBox* follow = FindAs<TCheckBox>(Cmn_FourChar("foll"));
    if (mTransport.IsPlaying() && follow && follow->GetValue() != 0) {
        const VCoordinate margin =
            static_cast<VCoordinate>(static_cast<double>(waveform->GetSize().h) * kFollowMargin);
        if (waveform->PlaceOf(position) >= waveform->GetExtent().Right() - margin)
            waveform->ScrollToColumn(waveform->GetScale().ColumnOfFrame(position) - margin);
    }
}

void TSessionWindow::ShowHistory(const std::string& line) {
    mHistory.push_back(line);
    if (TTextList* list = FindAs<TTextList>(Cmn_FourChar("hist")))
        list->SetRows(static_cast<std::int64_t>(mHistory.size()), [this](std::int64_t row) {
            return mHistory[mHistory.size() - 1 - static_cast<std::size_t>(row)];
        });
}

// Changes

template <class Command>
void TSessionWindow::Do(std::int32_t number, const SessionState& after, int change,
                        const char* name) {
    const SessionState before = mDragging ? mBeforeDrag : mModel.GetState();
    mDragging = false;
    if (after == before) {
        ShowModel(); // what the user typed is shown as it was taken
        return;
    }
    auto* command = new Command;
    command->ISessionCommand(number, this, &mModel, before, after, change, GetText(name));
    PostCommand(command);
    ShowHistory(GetText(name));
}

void TSessionWindow::FieldCallback(void* context, CNumericEntryCallbackInfo& info, int) {
    static_cast<TSessionWindow*>(context)->FieldChanged(info);
}

void TSessionWindow::FieldChanged(CNumericEntryCallbackInfo& info) {
    const std::int64_t value = info.GetData().mValue;
    SessionState state = mModel.GetState();
    switch (info.GetField()->GetIdentifier()) {
    case Cmn_FourChar("main"):
    case Cmn_FourChar("scnd"):
        return LocateFrame(value);
    case Cmn_FourChar("star"):
        return Do<SetSelectionCommand>(kSessionCommand_SetSelection, mModel.WithStart(value),
                                       kSession_Selection, "setselection");
    case Cmn_FourChar("endt"):
        return Do<SetSelectionCommand>(kSessionCommand_SetSelection, mModel.WithEnd(value),
                                       kSession_Selection, "setselection");
    case Cmn_FourChar("leng"):
        return Do<SetSelectionCommand>(kSessionCommand_SetSelection, mModel.WithLength(value),
                                       kSession_Selection, "setselection");
    case Cmn_FourChar("nudg"):
        return mModel.SetNudge(value);
    case Cmn_FourChar("grid"):
        return mModel.SetGrid(value);
    case Cmn_FourChar("volu"):
        state.mGain = Cmn_ClampTo<std::int32_t>(value);
        return Do<ChangeGainCommand>(kSessionCommand_ChangeGain, state, kSession_Track,
                                     "changegain");
    case Cmn_FourChar("pan "):
        state.mPan = Cmn_ClampTo<std::int32_t>(value);
        return Do<ChangeGainCommand>(kSessionCommand_ChangeGain, state, kSession_Track,
                                     "changegain");
    case Cmn_FourChar("temp"):
        mTempo = Cmn_ClampTo<std::int32_t>(std::clamp<std::int64_t>(value, 1, 999));
        return ApplyTimeline();
    case Cmn_FourChar("mnum"):
        mMeterNumerator = Cmn_ClampTo<std::int32_t>(value);
        return ApplyTimeline();
    case Cmn_FourChar("mden"):
        mMeterDenominator = Cmn_ClampTo<std::int32_t>(value);
        return ApplyTimeline();
    case Cmn_FourChar("offs"):
        Time_Session::SetFrameOffset(value); // the time code of the session's first frame
        return ApplyTimeline();
    default:
        return;
    }
}

// Tempo and meter hold for the whole session.
void TSessionWindow::ApplyTimeline() {
    Time_SessionTempoMap().SetTempo(Time_TickLength(), mTempo * 1000);
    const Time_Meter meter{mMeterNumerator, mMeterDenominator};
    if (meter.IsValid())
        Time_SessionMeterMap().SetMeter(1, meter);
    ApplyFormats();
}

// What "=" puts into a field.
Time_SMPTE TSessionWindow::CapturePosition() {
    Time_SMPTE now;
    for (TWindow* each : TWindow::GetWindows())
        if (auto* session = QLX_ObjectCast<TSessionWindow>(each))
            now.SetFromTotalSamples(Time_SampleLength(session->mTransport.GetPosition()),
                                    Time_Session::GetSampleRate(), /*withSubframes*/ true);
    now.SetFromTotalSubframes(now.GetTotalSubframes() + Time_Session::GetFrameOffset() * 100);
    return now;
}

void TSessionWindow::WaveformSelected(int phase, std::int64_t from, std::int64_t to) {
    if (!mDragging) {
        mBeforeDrag = mModel.GetState();
        mDragging = true;
    }
    if (phase == kTrack_Cancel) {
        mDragging = false;
        return mModel.SetState(mBeforeDrag, kSession_Selection);
    }
    const SessionState state = mModel.WithSelection(mModel.Snap(from), mModel.Snap(to));
    if (phase != kTrack_End)
        return mModel.SetState(state, kSession_Selection);
    Do<SetSelectionCommand>(kSessionCommand_SetSelection, state, kSession_Selection,
                            "setselection");
    if (!mTransport.IsPlaying())
        LocateFrame(state.mStart);
}

void TSessionWindow::ControlChanged(std::int32_t number, TView* source) {
    auto* control = QLX_ObjectCast<TControl>(source);
    if (!control)
        return;
    SessionState state = mModel.GetState();
    const bool settled = number == kControlEvent_ValueChanged;
    switch (control->GetIdentifier()) {
    case Cmn_FourChar("vsld"):
    case Cmn_FourChar("pknb"):
        if (!mDragging) {
            mBeforeDrag = state;
            mDragging = true;
        }
        (control->GetIdentifier() == Cmn_FourChar("vsld") ? state.mGain : state.mPan) =
            control->GetValue();
        if (settled)
            return Do<ChangeGainCommand>(kSessionCommand_ChangeGain, state, kSession_Track,
                                         "changegain");
        mDragging = number != kControlEvent_Cancelled;
        return mModel.SetState(state, kSession_Track);
    case Cmn_FourChar("trkn"):
        if (settled) {
            state.mTrackName = static_cast<TEditText*>(control)->GetText();
            Do<RenameTrackCommand>(kSessionCommand_RenameTrack, state, kSession_Track,
                                   "renametrack");
        }
        return;
    case Cmn_FourChar("snap"):
        return mModel.SetSnapsToGrid(control->GetValue() != 0);
    case Cmn_FourChar("fmt1"):
    case Cmn_FourChar("fmt2"):
        return ApplyFormats();
    case Cmn_FourChar("rate"):
    case Cmn_FourChar("tcrt"):
        return ApplyRates();
    case Cmn_FourChar("layo"):
    case Cmn_FourChar("lang"):
    case Cmn_FourChar("them"): {
        SessionLook look = mLook;
        if (const TPopup* layout = FindAs<TPopup>(Cmn_FourChar("layo")))
            look.mLayout = kLayouts[layout->GetValue()];
        if (const TPopup* language = FindAs<TPopup>(Cmn_FourChar("lang")))
            look.mLanguage = kLanguages[language->GetValue()];
        if (const TPopup* theme = FindAs<TPopup>(Cmn_FourChar("them")))
            look.mTheme = theme->GetValue();
        return SetLook(look);
    }
    default:
        return;
    }
}

void TSessionWindow::ShowAsExample(const MementoPtr& memento, const std::string& folder) {
    SessionLook look;
    look.mLayout = memento->GetRoot()->GetCurrentFilter()["Layout"];
    look.mLanguage = QLX_Language::GetCurrentLanguage();
    look.mTheme = QLX_Theme::GetVariant();
    if (mPeaks) {
        mMemento = memento;
        SetLook(look);
    } else {
        ISession(MakeGeneratedAudio(), memento, look);
        mExampleKeys = std::make_unique<SessionKeys>(*this);
        const Sys_FileLoc bindings(folder + "/session.keys");
        if (bindings.Exists())
            mExampleKeys->ReadFile(bindings.GetPath());
    }
    WaitForPeaks();
}

void TSessionWindow::DoEvent(std::int32_t number, TEventHandler* source, TEvent* event) {
    if (number == kEvent_Preview) {
        const auto* preview = static_cast<TPreviewEvent*>(event);
        return ShowAsExample(preview->GetMemento(), preview->GetFolder());
    }
    const bool fromControl = number >= kControlEvent_ValueChanged &&
                             number <= kControlEvent_Cancelled && number != kControlEvent_Pressed;
    if (fromControl && !QLX_ObjectCast<TNumericEntryText>(source))
        ControlChanged(number, QLX_ObjectCast<TView>(source));
    else
        TWindow::DoEvent(number, source, event);
}

void TSessionWindow::DoUpdate(int change, TObject* changedObject, TObject* changedBy,
                              TDependencySpace* space) {
    if (changedObject == &mModel)
        ShowModel();
    else
        TWindow::DoUpdate(change, changedObject, changedBy, space);
}

void TSessionWindow::Nudge(int direction, bool byGrid) {
    const std::int64_t distance = byGrid ? mModel.GetGrid() : mModel.GetNudge();
    Do<NudgeCommand>(kSessionCommand_NudgeForward, mModel.Moved(direction * distance),
                     kSession_Selection, direction > 0 ? "nudgeforward" : "nudgeback");
}

// Transport

void TSessionWindow::Play() {
    mTransport.Play();
    mMeteredTo = mTransport.GetPosition();
    SetIdleFreq(kFrameTicks);
}

void TSessionWindow::Stop() {
    mTransport.Stop();
    SetIdleFreq(kNoIdle);
    ShowPosition();
}

void TSessionWindow::LocateFrame(std::int64_t frame) {
    mTransport.Locate(std::min(frame, mModel.GetFrameCount()));
    mMeteredTo = mTransport.GetPosition();
    ShowPosition();
}

bool TSessionWindow::DoIdle(IdlePhase phase) {
    if (phase != kIdlePhase_Continue || !mTransport.IsPlaying())
        return TWindow::DoIdle(phase);
    ShowPosition();
    TMeterView* meter = FindAs<TMeterView>(Cmn_FourChar("metr"));
    const std::int64_t position = mTransport.GetPosition();
    if (meter && mPeaks && position > mMeteredTo) {
        const Audio_ColumnScale scale{position - mMeteredTo, 1};
        const float gain = AmplitudeOf(mModel.GetState().mGain);
        for (int channel = 0; channel < meter->GetChannels(); ++channel) {
            Audio_Peak peak;
            if (mPeaks->GetColumns(channel, scale, mMeteredTo / scale.mFrames, 1, &peak) == 1)
                meter->Feed(channel, gain * std::max(-peak.mMinimum, peak.mMaximum),
                            gain * peak.mRMS);
        }
    }
    mMeteredTo = position;
    if (!mTransport.IsPlaying())
        SetIdleFreq(kNoIdle);
    return TWindow::DoIdle(phase);
}

// Commands and keys

void TSessionWindow::DoMenuCommand(std::int32_t command) {
    TWaveformView* waveform = FindAs<TWaveformView>(Cmn_FourChar("wave"));
    const VCoordinate middle = waveform ? waveform->GetSize().h / 2 : 0;
    switch (command) {
    case kSessionCommand_Play:
        return Play();
    case kSessionCommand_Stop:
        return Stop();
    case kSessionCommand_ToStart:
        return LocateFrame(0);
    case kSessionCommand_SelectAll:
        return Do<SetSelectionCommand>(kSessionCommand_SetSelection,
                                       mModel.WithSelection(0, mModel.GetFrameCount()),
                                       kSession_Selection, "setselection");
    case kSessionCommand_NudgeBack:
        return Nudge(-1, /*byGrid*/ false);
    case kSessionCommand_NudgeForward:
        return Nudge(1, /*byGrid*/ false);
    case kSessionCommand_ZoomIn:
        return waveform ? waveform->Zoom(1, middle) : void();
    case kSessionCommand_ZoomOut:
        return waveform ? waveform->Zoom(-1, middle) : void();
    case kSessionCommand_ZoomFit:
        return waveform ? waveform->ZoomToFit() : void();
    case kSessionCommand_Quit:
        return CloseRequested();
    default:
        TWindow::DoMenuCommand(command);
    }
}

void TSessionWindow::DoSetupMenus() {
    TWindow::DoSetupMenus();
    for (const std::int32_t command :
         {kSessionCommand_Play, kSessionCommand_Stop, kSessionCommand_ToStart,
          kSessionCommand_SelectAll, kSessionCommand_NudgeBack, kSessionCommand_NudgeForward,
          kSessionCommand_ZoomIn, kSessionCommand_ZoomOut, kSessionCommand_ZoomFit,
          kSessionCommand_Quit})
        if (TMenuItem* item = TMenuManager::FindItem(command))
            item->SetEnabled(true);
}

void TSessionWindow::DoKeyEvent(TToolboxEvent* event) {
    TMenuBar* menuBar = FindAs<TMenuBar>(Cmn_FourChar("menu"));
    if (!menuBar || !menuBar->HandleMenuKey(event))
        TWindow::DoKeyEvent(event);
}

void TSessionWindow::DoCommandKeyEvent(TToolboxEvent* event) {
    TMenuBar* menuBar = FindAs<TMenuBar>(Cmn_FourChar("menu"));
    if (!menuBar || !menuBar->HandleMenuKey(event))
        TWindow::DoCommandKeyEvent(event);
}
