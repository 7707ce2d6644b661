#include "qlx/views/ufiledialog.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <system_error>
#include <utility>

#include "newfilelibs/daw/daw_types.h"
#include "qlx/views/ubuttons.h"
#include "qlx/views/uedittext.h"
#include "qlx/views/uevent.h"
#include "qlx/views/upopup.h"
#include "qlx/views/uscrollbar.h"
#include "qlx/views/ustatictext.h"
#include "qlx/views/utextlist.h"

QLX_DEFINE_CLASS(TFileDialog, TDialog)

namespace {

namespace fs = std::filesystem;

// Logical pixels.
constexpr int kWidth = 560;
constexpr int kMargin = 16;
constexpr int kGap = 8;
constexpr int kRow = 28;
constexpr int kListHeight = 280;
constexpr int kButtonWidth = 96;
constexpr std::size_t kMostEntries = 1000000; // of one folder; more are not shown

fs::path AsPath(const std::string& text) {
    return fs::path(std::u8string(text.begin(), text.end()));
}

std::string AsText(const fs::path& path) {
    const std::u8string text = path.u8string();
    return std::string(text.begin(), text.end());
}

unsigned char Lower(char c) {
    return static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c + 'a' - 'A' : c);
}

bool ComesBefore(const std::string& a, const std::string& b) {
    const auto apart = std::mismatch(a.begin(), a.end(), b.begin(), b.end(),
                                     [](char x, char y) { return Lower(x) == Lower(y); });
    if (apart.first == a.end() && apart.second == b.end())
        return a < b; // the same but for the case
    return apart.second != b.end() &&
           (apart.first == a.end() || Lower(*apart.first) < Lower(*apart.second));
}

/// A name, and nothing that leads elsewhere.
bool IsPlainName(const std::string& name) {
    return !name.empty() && name != "." && name != ".." &&
           name.find_first_of(std::string_view("/\\\0", 3)) == std::string::npos;
}

template <class T>
T* Add(TView* around, std::uint32_t identifier, const VRect& frame) {
    auto* view = new T;
    view->SetIdentifier(identifier);
    view->IView(around, frame);
    return view;
}

TButton* AddButton(TView* around, std::uint32_t identifier, const std::string& title, int right,
                   int top) {
    auto* button =
        Add<TButton>(around, identifier, VRect(right - kButtonWidth, top, right, top + kRow));
    button->SetTitle(title, /*redraw*/ false);
    return button;
}

/// The dialogs that are drawn by the framework.
class DrawnFileDialogs : public QLX_FileDialogs {
  public:
    bool Run(const QLX_FileDialogSettings& settings, std::vector<Sys_FileLoc>& chosen) override {
        const TView::StDispatch dispatch; // the dialog is read when it has ended
        auto* dialog = new TFileDialog;
        dialog->IFileDialog(settings);
        const bool confirmed = dialog->RunModal() == TFileDialog::kConfirm;
        if (confirmed)
            chosen = dialog->GetChosen();
        dialog->Free();
        return confirmed;
    }
};

DrawnFileDialogs sDrawn;
QLX_FileDialogs* sInstalled = nullptr;

} // namespace

QLX_FileDialogs::~QLX_FileDialogs() = default;

QLX_FileDialogs& QLX_FileDialogs::Get() { return sInstalled ? *sInstalled : sDrawn; }

QLX_FileDialogs& QLX_FileDialogs::GetDrawn() { return sDrawn; }

QLX_FileDialogs* QLX_FileDialogs::Install(QLX_FileDialogs* dialogs) {
    return std::exchange(sInstalled, dialogs);
}

TFileDialog::TFileDialog() : mHandle(std::make_shared<TFileDialog*>(this)) {}
TFileDialog::~TFileDialog() = default;

// Questions are asked without waiting, and whoever opened the dialog may free it under them.
TFileDialog* TFileDialog::GetOpen(const Handle& handle) {
    const auto dialog = handle.lock();
    return dialog && (*dialog)->IsModal() ? *dialog : nullptr;
}

void TFileDialog::IFileDialog(const QLX_FileDialogSettings& settings) {
    mSettings = settings;
    Build();
    std::error_code error;
    Sys_FileLoc folder = settings.mFolder;
    if (!folder.IsFolder())
        folder = Sys_FileLoc(AsText(fs::current_path(error)));
    GoTo(folder);
}

void TFileDialog::Build() {
    const QLX_DialogTexts& texts = QLX_DialogTexts::Get();
    const int right = kWidth - kMargin;
    int top = kMargin;
    auto* path = Add<TStaticText>(this, kFolder,
                                  VRect(kMargin, top, right - kButtonWidth - kGap, top + kRow));
    path->SetControlFont(kFont_Interface, kFontSelect_Bold);
    AddButton(this, kUp, texts.mFolderUp, right, top);
    top += kRow + kGap;

    auto* scroller =
        Add<TScroller>(this, kNoIdentifier, VRect(kMargin, top, right, top + kListHeight));
    mList = Add<TTextList>(scroller, kList, VRect(0, 0, right - kMargin, kListHeight));
    mList->SetMultiple(mSettings.mMultiple && mSettings.mKind == EFileDialogKind::kOpen);
    top += kListHeight + kGap;

    if (mSettings.mKind == EFileDialogKind::kSave) {
        auto* label =
            Add<TStaticText>(this, kNoIdentifier, VRect(kMargin, top, kMargin + 64, top + kRow));
        label->SetText(texts.mFileName, /*redraw*/ false);
        mNameField =
            Add<TEditText>(this, kName, VRect(kMargin + 64 + kGap, top, right, top + kRow));
        mNameField->SetText(mSettings.mName, /*redraw*/ false);
        mNameField->SelectAll();
        mNameField->SetAccessibleName(texts.mFileName);
        top += kRow + kGap;
    }
    top += kGap;
    const std::size_t types = mSettings.mTypes.size();
    if (types + mSettings.mAllFiles > 1 && mSettings.mKind != EFileDialogKind::kFolder) {
        std::vector<std::string> names;
        for (const Sys_FileType& type : mSettings.mTypes)
            names.push_back(type.GetName() + " (*." + type.GetExtension() + ")");
        if (mSettings.mAllFiles)
            names.push_back(texts.mAllFiles);
        mTypePopup = Add<TPopup>(this, kType, VRect(kMargin, top, kMargin + 180, top + kRow));
        mTypePopup->SetChoices(names, /*redraw*/ false);
    }
    mConfirm = AddButton(this, kConfirm,
                         mSettings.mKind == EFileDialogKind::kSave   ? texts.mSave
                         : mSettings.mKind == EFileDialogKind::kOpen ? texts.mOpen
                                                                     : texts.mChoose,
                         right, top);
    mConfirm->SetRole(TButton::kRole_Default, /*redraw*/ false);
    AddButton(this, kCancelButton, texts.mCancel, right - kButtonWidth - kGap, top)
        ->SetRole(TButton::kRole_Cancel, /*redraw*/ false);
    if (mSettings.mKind != EFileDialogKind::kOpen && !mTypePopup) {
        auto* button =
            Add<TButton>(this, kNewFolder, VRect(kMargin, top, kMargin + 120, top + kRow));
        button->SetTitle(texts.mNewFolder, /*redraw*/ false);
    }
    IWindow(mSettings.mTitle, VPoint(kWidth, top + kRow + kMargin));
    SetInitialTarget(mNameField ? kName : kList);
}

// The folder

const Sys_FileType* TFileDialog::GetType() {
    const std::size_t type = mTypePopup ? static_cast<std::size_t>(mTypePopup->GetValue()) : 0;
    return type < mSettings.mTypes.size() ? &mSettings.mTypes[type] : nullptr;
}

bool TFileDialog::IsListed(const Entry& entry) {
    if (entry.mName.empty() || entry.mName.front() == '.')
        return false;
    const Sys_FileType* type = GetType();
    return entry.mIsFolder || (mSettings.mKind != EFileDialogKind::kFolder &&
                               (!type || type->Matches(Sys_FileLoc(entry.mName))));
}

void TFileDialog::GoTo(const Sys_FileLoc& folder) {
    mFolder = folder;
    ReadFolder();
}

void TFileDialog::ReadFolder() {
    mEntries.clear();
    std::error_code error;
    fs::directory_iterator each(AsPath(mFolder.GetPath()), error);
    for (; !error && each != fs::directory_iterator() && mEntries.size() < kMostEntries;
         each.increment(error)) {
        std::error_code ignored; // a link that leads nowhere is shown as a file
        Entry entry{AsText(each->path().filename()), each->is_directory(ignored)};
        if (IsListed(entry))
            mEntries.push_back(std::move(entry));
    }
    std::sort(mEntries.begin(), mEntries.end(), [](const Entry& a, const Entry& b) {
        return a.mIsFolder != b.mIsFolder ? a.mIsFolder : ComesBefore(a.mName, b.mName);
    });
    auto* path = QLX_ObjectCast<TStaticText>(FindSubView(kFolder, /*deep*/ true));
    path->SetText(error ? mFolder.GetPath() + ": " + error.message() : mFolder.GetPath(),
                  /*redraw*/ true);
    mList->SetSelection({}, /*redraw*/ false);
    mList->SetRows(static_cast<std::int64_t>(mEntries.size()), [this](std::int64_t row) {
        const Entry& entry = mEntries[static_cast<std::size_t>(row)];
        return entry.mIsFolder ? entry.mName + "/" : entry.mName;
    });
    if (!mEntries.empty())
        mList->GoToRow(0, /*extend*/ false);
    ListChanged();
}

void TFileDialog::ListChanged() {
    const std::int64_t row = mList->GetFocusRow();
    const bool onFile = row >= 0 && row < mList->GetRowCount() &&
                        !mEntries[static_cast<std::size_t>(row)].mIsFolder;
    if (mNameField && onFile && mList->IsTarget())
        mNameField->SetText(mEntries[static_cast<std::size_t>(row)].mName, /*redraw*/ true);
    mConfirm->SetEnable(mSettings.mKind != EFileDialogKind::kOpen || row >= 0);
}

// What was chosen

std::string TFileDialog::GetSaveName() {
    std::string name = mNameField ? mNameField->GetText() : std::string();
    const Sys_FileType* type = GetType();
    if (IsPlainName(name) && type && Sys_FileLoc(name).GetExtension().empty())
        name += "." + type->GetExtension();
    return name;
}

std::vector<Sys_FileLoc> TFileDialog::GetChosen() {
    if (mSettings.mKind == EFileDialogKind::kSave)
        return {mFolder.GetChild(GetSaveName())};
    std::vector<Sys_FileLoc> chosen;
    const bool wantsFolder = mSettings.mKind == EFileDialogKind::kFolder;
    for (const auto& range : mList->GetSelection().GetRanges())
        for (std::int64_t row = range.mFirst; row < range.mEnd; ++row) {
            const Entry& entry = mEntries[static_cast<std::size_t>(row)];
            if (entry.mIsFolder == wantsFolder)
                chosen.push_back(mFolder.GetChild(entry.mName));
        }
    if (wantsFolder && chosen.empty())
        chosen.push_back(mFolder);
    return chosen;
}

void TFileDialog::Confirm() {
    const std::int64_t row = mList->GetFocusRow();
    const bool onFolder =
        row >= 0 && row < mList->GetRowCount() && mEntries[static_cast<std::size_t>(row)].mIsFolder;
    const bool atList = !mNameField || mList->IsTarget();
    if (onFolder && atList && mSettings.mKind != EFileDialogKind::kFolder &&
        mList->GetSelection().Count() <= 1)
        return GoTo(mFolder.GetChild(mEntries[static_cast<std::size_t>(row)].mName));
    if (mSettings.mKind == EFileDialogKind::kSave)
        return ConfirmSaving(Sys_FileLoc());
    if (mSettings.mKind == EFileDialogKind::kFolder || !GetChosen().empty())
        EndWith(kConfirm);
}

// What the user agreed to replace counts for that one file and that one answer.
void TFileDialog::ConfirmSaving(const Sys_FileLoc& replaced) {
    const std::string name = GetSaveName();
    const Sys_FileLoc loc = mFolder.GetChild(name);
    if (!IsPlainName(name)) {
        if (mNameField)
            mNameField->ValidationFailed(1);
        return;
    }
    if (loc.IsFolder())
        return GoTo(loc); // the name of a folder leads into it
    if (loc.Exists() && loc.GetPath() != replaced.GetPath())
        return AskToReplace(loc);
    EndWith(kConfirm);
}

void TFileDialog::AskToReplace(const Sys_FileLoc& loc) {
    const QLX_DialogTexts& texts = QLX_DialogTexts::Get();
    std::string question = texts.mReplaceQuestion;
    if (const std::size_t place = question.find('%'); place != std::string::npos)
        question.replace(place, 1, loc.GetName());
    TAlert::Show(kAlert_Caution, question, texts.mReplaceDetails, {texts.mReplace, texts.mCancel},
                 [loc, handle = std::weak_ptr(mHandle)](int button) {
                     TFileDialog* const dialog = GetOpen(handle);
                     if (dialog && button == 0)
                         dialog->ConfirmSaving(loc);
                 });
}

void TFileDialog::MakeFolder(const std::string& name) {
    std::error_code error;
    const Sys_FileLoc loc = mFolder.GetChild(name);
    if (!IsPlainName(name) || loc.Exists())
        error = std::make_error_code(IsPlainName(name) ? std::errc::file_exists
                                                       : std::errc::invalid_argument);
    else
        fs::create_directory(AsPath(loc.GetPath()), error);
    if (error)
        TAlert::Show(kAlert_Stop, name, error.message(), {}, {});
    else
        GoTo(loc);
}

void TFileDialog::AskForNewFolder() {
    auto* question = new TTextEntryDialog;
    question->ITextEntryDialog(QLX_DialogTexts::Get().mNewFolder, QLX_DialogTexts::Get().mFileName,
                               "", 255);
    question->SetTextValidator(IsPlainName);
    question->SetFreeOnClose(true);
    const bool opened =
        question->OpenModal([question, handle = std::weak_ptr(mHandle)](std::uint32_t button) {
            TFileDialog* const dialog = GetOpen(handle);
            if (dialog && button == TTextEntryDialog::kOK)
                dialog->MakeFolder(question->GetText());
        });
    if (!opened)
        question->Free();
}

// Events

void TFileDialog::DoEvent(std::int32_t number, TEventHandler* source, TEvent* event) {
    if (source == mList && number == kControlEvent_ValueChanged)
        return ListChanged();
    if (source == mTypePopup && number == kControlEvent_ValueChanged)
        return ReadFolder();
    if (source == mNameField)
        return;
    if (number != kControlEvent_Pressed)
        return TDialog::DoEvent(number, source, event);
    if (source == mConfirm || source == mList)
        return Confirm();
    if (source && source->GetIdentifier() == kUp)
        return GoTo(mFolder.GetParent());
    if (source && source->GetIdentifier() == kNewFolder)
        return AskForNewFolder();
    TDialog::DoEvent(number, source, event);
}

void TFileDialog::DoKeyEvent(TToolboxEvent* event) {
    if (event->mKeyCode == kDAW_Key_Backspace && mList->IsTarget())
        return GoTo(mFolder.GetParent());
    TDialog::DoKeyEvent(event);
}
