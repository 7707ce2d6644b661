// Dialogs: windows that ask something and end with the button that was pushed.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "qlx/views/uwindow.h"

class TButton;
class TControl;

/// What a dialog ends with when no button was pushed: it was closed by the program, or the loop
/// ended under it.
inline constexpr std::uint32_t kDialog_Closed = 0;

/// The framework's own words in dialogs, for hosts to put their language in. UTF-8.
struct QLX_API QLX_DialogTexts {
    std::string mOK = "OK";
    std::string mCancel = "Cancel";
    std::string mOpen = "Open";
    std::string mSave = "Save";
    std::string mChoose = "Choose";
    std::string mReplace = "Replace";
    std::string mNewFolder = "New Folder";
    std::string mFileName = "Name:";
    std::string mFolderUp = "Up";
    std::string mAllFiles = "All files";
    std::string mEmptyFolder = "Nothing to show here";
    /// "%" stands for the file's name.
    std::string mReplaceQuestion = "\"%\" exists already. Replace it?";
    std::string mReplaceDetails = "What it contains now will be lost.";

    /// The texts in use; to be changed in place. User-interface thread.
    [[nodiscard]] static QLX_DialogTexts& Get();
};

/// A dialog. Its default button is pushed by Return, its cancel button by Escape and by closing the
/// window; Tab goes through what wants to be the target, and the first of them is the target when
/// the dialog opens. Those two buttons and the closing ones (AddClosingButton) end the dialog with
/// their identifier. What is pushed ends the dialog only when the target lets go of the keyboard (a
/// field whose text is refused does not) and the validator agrees; the cancel button asks nobody.
///
/// While it is modal, input goes to it and to windows opened after it; everything else goes on.
/// Keys and commands that nothing in it takes end here.
///
/// Made by a description (class "TDialog") or by code. Ending closes it and does not free it,
/// unless SetFreeOnClose says so. It may be closed or freed at any time, also while it is tracked:
/// it ends with kDialog_Closed then. User-interface thread.
///
/// Properties beside TWindow's: "ClosingButtons" (string, identifiers separated by blanks),
/// "InitialTarget" (identifier of the view that is the target when the dialog opens).
class QLX_API TDialog : public TWindow {
  public:
    QLX_DECLARE_CLASS(TDialog);
    /// Hears what the dialog ended with, when it is closed and the others have their input back.
    using Completion = std::function<void(std::uint32_t button)>;
    /// Whether the dialog may end with a button.
    using Validator = std::function<bool(std::uint32_t button)>;

    TDialog();
    ~TDialog() override;

    /// Opens the dialog over the window that is active and returns at once. False, and no call,
    /// when it cannot be opened or is open already.
    bool OpenModal(Completion completion);
    /// Opens it and runs the loop until it has ended; timers and everything else go on. Answers the
    /// button. The dialog may be gone afterwards if it frees itself. Not to be called from Draw.
    std::uint32_t RunModal();
    [[nodiscard]] bool IsModal() const { return mModal; }

    /// Ends it as if the button had been pushed. False when the target or the validator refuses.
    bool EndWith(std::uint32_t button);
    /// As Escape: ends it with the cancel button, or with the only closing button there is. False
    /// when it has neither.
    bool Cancel();
    void AddClosingButton(std::uint32_t identifier);
    void SetValidator(Validator validator);
    /// The view that is the target when the dialog opens.
    void SetInitialTarget(std::uint32_t identifier) { mInitialTarget = identifier; }

    void DoEvent(std::int32_t number, TEventHandler* source, TEvent* event) override;
    void DoKeyEvent(TToolboxEvent* event) override;
    void DoCommandKeyEvent(TToolboxEvent* event) override;
    void CloseRequested() override;
    void GetAccessibleInfo(TAccessibleInfo& info) const override;
    void Free() override;
    void ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) override;

  private:
    [[nodiscard]] bool IsClosing(const TButton* button) const;
    void GatherClosing(TView* view, std::vector<TButton*>& buttons) const;
    void PlaceOver(const TWindow* owner);
    void ChooseInitialTarget();
    void Ended(std::uint32_t button);

    Completion mCompletion;
    Validator mValidator;
    std::vector<std::uint32_t> mClosing;
    std::uint32_t mInitialTarget = 0;
    TWindow* mOwner = nullptr; // not owned; compared with the open windows before use
    bool mModal = false;
};

/// What an alert is about; each has its mark.
enum EAlertKind : std::int32_t {
    kAlert_Note = 0,    ///< something to know
    kAlert_Caution = 1, ///< something to think over before going on
    kAlert_Stop = 2     ///< something that went wrong
};

/// A message with a mark and up to three buttons, the first one at the right end. Sized by its
/// texts.
class QLX_API TAlert : public TDialog {
  public:
    QLX_DECLARE_CLASS(TAlert);
    /// The identifiers of the buttons, in the order given.
    enum : std::uint32_t {
        kFirst = Cmn_FourChar("alr1"),
        kSecond = Cmn_FourChar("alr2"),
        kThird = Cmn_FourChar("alr3"),
    };
    static constexpr std::size_t kMostButtons = 3;

    TAlert();
    ~TAlert() override;

    /// Builds the alert once. No buttons: one with the text for OK; more than three: the rest is
    /// left out. The default and the cancel button count from 0, -1 for none; with one button
    /// Escape pushes it.
    void IAlert(EAlertKind kind, const std::string& message, const std::string& details,
                std::vector<std::string> buttons, int defaultButton, int cancelButton);
    [[nodiscard]] EAlertKind GetKind() const { return mKind; }

    /// Makes, runs and frees one. Answers which button it was, from 0; -1 when it was closed
    /// otherwise. With two or more buttons the last one is the cancel button.
    static int Run(EAlertKind kind, const std::string& message, const std::string& details = {},
                   std::vector<std::string> buttons = {});
    /// The same without waiting: the completion hears the button.
    static void Show(EAlertKind kind, const std::string& message, const std::string& details,
                     std::vector<std::string> buttons, std::function<void(int button)> completion);

    void GetAccessibleInfo(TAccessibleInfo& info) const override;

  private:
    static int IndexOf(std::uint32_t button);

    EAlertKind mKind = kAlert_Note;
    std::string mMessage;
};

/// Asks for one line of text.
class QLX_API TTextEntryDialog : public TDialog {
  public:
    QLX_DECLARE_CLASS(TTextEntryDialog);
    enum : std::uint32_t {
        kField = Cmn_FourChar("text"),
        kOK = Cmn_FourChar("ok  "),
        kCancelButton = Cmn_FourChar("cncl"),
    };

    TTextEntryDialog();
    ~TTextEntryDialog() override;

    void ITextEntryDialog(const std::string& title, const std::string& prompt,
                          const std::string& text, std::size_t maximumLength);
    /// OK is enabled only while the text may stand.
    void SetTextValidator(std::function<bool(const std::string& text)> validator);
    [[nodiscard]] std::string GetText();

    /// Makes, runs and frees one. False, and the text untouched, unless it ended with OK.
    static bool Run(const std::string& title, const std::string& prompt, std::string& text,
                    std::size_t maximumLength = 0,
                    std::function<bool(const std::string& text)> validator = {});

  private:
    void UpdateOK();
    std::function<bool(const std::string& text)> mTextValidator;
};
