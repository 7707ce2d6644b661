// The session window: what the description's views do with the session.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/audio_file.h"
#include "host/session_api.h"
#include "host/session_commands.h"
#include "host/session_model.h"
#include "host/transport.h"
#include "qlx/persistence/qlx_language.h"
#include "qlx/views/uwindow.h"

class CNumericEntryCallbackInfo;
class CKeyBindings;
class DAW_Command;
class SessionKeys;
class TNumericEntryText;
class Time_SMPTE;
class TWaveformView;

/// How the window is shown first.
struct SessionLook {
    std::string mLayout; ///< "", "Compact", "Large"
    QLX_Language::ELanguage mLanguage = QLX_Language::English;
    int mTheme = 1; ///< EThemeVariant
};

/// Made by the description. It owns the session's model and wires the views, found by identifier,
/// to it: fields and controls announce, commands change the model, the model's changes come back
/// and are shown.
class SESSION_API TSessionWindow : public TWindow {
  public:
    QLX_DECLARE_CLASS(TSessionWindow);
    TSessionWindow();
    ~TSessionWindow() override;

    /// After the views are made. The memento stays the source of layouts and languages.
    void ISession(SessionAudio audio, const MementoPtr& memento, const SessionLook& look);
    /// Selects layout and language and reads the description's values again: what the user did
    /// stays.
    void SetLook(const SessionLook& look);
    /// As tools show the window: with a generated signal and the key bindings of the folder, in the
    /// look that is current.
    void ShowAsExample(const MementoPtr& memento, const std::string& folder);
    [[nodiscard]] SessionModel& GetModel() { return mModel; }
    [[nodiscard]] Transport& GetTransport() { return mTransport; }
    /// A text of the string tables in the current language.
    [[nodiscard]] std::string GetText(const std::string& key) const;
    /// Waits for the waveform; for pictures.
    void WaitForPeaks();

    void Play();
    void Stop();
    void LocateFrame(std::int64_t frame);
    /// By the nudge value, or by the grid.
    void Nudge(int direction, bool byGrid);

    void DoMenuCommand(std::int32_t command) override;
    void DoSetupMenus() override;
    void DoEvent(std::int32_t number, TEventHandler* source, TEvent* event) override;
    void DoKeyEvent(TToolboxEvent* event) override;
    void DoCommandKeyEvent(TToolboxEvent* event) override;
    bool DoIdle(IdlePhase phase) override;
    void DoUpdate(int change, TObject* changedObject, TObject* changedBy,
                  TDependencySpace* space) override;
    void Free() override;

  private:
    template <class T>
    T* FindAs(std::uint32_t identifier);
    [[nodiscard]] TNumericEntryText* Field(std::uint32_t identifier);

    static void FieldCallback(void* context, CNumericEntryCallbackInfo& info, int key);
    void FieldChanged(CNumericEntryCallbackInfo& info);
    void ControlChanged(std::int32_t number, TView* source);
    void WaveformSelected(int phase, std::int64_t from, std::int64_t to);
    template <class Command>
    void Do(std::int32_t number, const SessionState& after, int change, const char* name);

    void WireViews();
    void MakeMenus();
    void TakeSizeOfLayout();
    void ApplyFormats();
    void ApplyRates();
    void ApplyTimeline();
    static Time_SMPTE CapturePosition();
    void ShowModel();
    void ShowPosition();
    void ShowHistory(const std::string& line);
    [[nodiscard]] std::string LabelOf(std::int64_t frame);

    SessionModel mModel;
    Transport mTransport;
    SessionAudio mAudio;
    std::shared_ptr<Audio_PeakPyramid> mPeaks;
    MementoPtr mMemento; // counted
    SessionLook mLook;
    std::string mShownLayout; // the size of the window is this one's, or the user's
    SessionState mBeforeDrag; // what undo goes back to when a drag has ended
    bool mDragging = false;
    std::int32_t mTempo = 120; // quarter notes a minute
    std::int32_t mMeterNumerator = 4;
    std::int32_t mMeterDenominator = 4;
    std::unique_ptr<SessionKeys> mExampleKeys;
    TNumericEntryText* mLabels = nullptr; // owned; in no window: it turns frames into texts
    std::vector<std::string> mHistory;
    std::int64_t mShownPosition = -1;
    std::int64_t mMeteredTo = 0;
};

/// The session's named commands and key bindings; owned by the program.
class SESSION_API SessionKeys {
  public:
    explicit SessionKeys(TSessionWindow& window);
    ~SessionKeys();
    SessionKeys(const SessionKeys&) = delete;
    SessionKeys& operator=(const SessionKeys&) = delete;
    /// Lines that cannot be used are written to the trace with file and line.
    void ReadFile(const std::string& path);

  private:
    std::vector<std::unique_ptr<DAW_Command>> mCommands;
    std::unique_ptr<CKeyBindings> mBindings;
};
