// The file dialog that the framework draws.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "qlx/views/qlx_filedialog.h"
#include "qlx/views/udialog.h"

class TButton;
class TEditText;
class TPopup;
class TTextList;

/// Shows one folder at a time: folders first, then the files of the chosen type, by name. Return or
/// a double click on a folder goes into it, Backspace or Up goes out of it, typing goes to a name.
/// Names that begin with a dot are not shown. A folder that cannot be read is shown empty, with the
/// reason. Ends with kConfirm or kCancelButton.
class QLX_API TFileDialog : public TDialog {
  public:
    QLX_DECLARE_CLASS(TFileDialog);
    enum : std::uint32_t {
        kConfirm = Cmn_FourChar("ok  "),
        kCancelButton = Cmn_FourChar("cncl"),
        kUp = Cmn_FourChar("up  "),
        kNewFolder = Cmn_FourChar("nfol"),
        kList = Cmn_FourChar("list"),
        kName = Cmn_FourChar("name"),
        kType = Cmn_FourChar("type"),
        kFolder = Cmn_FourChar("fold"), ///< the folder's path
    };

    TFileDialog();
    ~TFileDialog() override;

    void IFileDialog(const QLX_FileDialogSettings& settings);
    /// Shows another folder.
    void GoTo(const Sys_FileLoc& folder);
    [[nodiscard]] const Sys_FileLoc& GetFolder() const { return mFolder; }
    /// What would be chosen now.
    [[nodiscard]] std::vector<Sys_FileLoc> GetChosen();
    /// Makes a folder in the one that is shown and goes into it; an alert says what went wrong.
    void MakeFolder(const std::string& name);

    void DoEvent(std::int32_t number, TEventHandler* source, TEvent* event) override;
    void DoKeyEvent(TToolboxEvent* event) override;

  private:
    struct Entry {
        std::string mName;
        bool mIsFolder;
    };
    using Handle = std::weak_ptr<TFileDialog*>;
    [[nodiscard]] static TFileDialog* GetOpen(const Handle& handle);
    void Build();
    void ReadFolder();
    void ListChanged();
    void Confirm();
    void ConfirmSaving(const Sys_FileLoc& replaced);
    void AskToReplace(const Sys_FileLoc& loc);
    void AskForNewFolder();
    [[nodiscard]] const Sys_FileType* GetType();
    [[nodiscard]] std::string GetSaveName();
    [[nodiscard]] bool IsListed(const Entry& entry);

    QLX_FileDialogSettings mSettings;
    Sys_FileLoc mFolder;
    std::vector<Entry> mEntries;
    std::shared_ptr<TFileDialog*> mHandle; // gone with the dialog
    // Subviews.
    TTextList* mList = nullptr;
    TEditText* mNameField = nullptr; // only when saving
    TPopup* mTypePopup = nullptr;    // only with more than one type
    TButton* mConfirm = nullptr;
};
