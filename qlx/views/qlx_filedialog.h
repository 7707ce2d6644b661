// The wall to file dialogs: what is asked, and who asks it. A platform with dialogs of its own
// installs them; elsewhere the framework draws one.
#pragma once

#include <string>
#include <vector>

#include "basekit/sys/sys_file.h"

enum class EFileDialogKind : std::int32_t {
    kOpen = 0,  ///< a file that exists, or several
    kSave = 1,  ///< a file to be written, after a question when it exists
    kFolder = 2 ///< a folder that exists
};

/// One question for files.
struct QLX_API QLX_FileDialogSettings {
    EFileDialogKind mKind = EFileDialogKind::kOpen;
    std::string mTitle; ///< UTF-8
    /// Where it begins; empty or gone: the folder that the program runs in.
    Sys_FileLoc mFolder;
    std::string mName; ///< proposed for saving
    /// What is offered to choose from, the first one at first; empty for all files. With
    /// mAllFiles "all files" comes last. A name to save under gets the type's extension when it has
    /// none.
    std::vector<Sys_FileType> mTypes;
    bool mAllFiles = false;
    bool mMultiple = false; ///< several files may be opened at once
};

/// Who shows file dialogs. User-interface thread.
class QLX_API QLX_FileDialogs {
  public:
    virtual ~QLX_FileDialogs();
    /// Asks, modally, while the loop goes on. False, and chosen untouched, when the user gave up.
    virtual bool Run(const QLX_FileDialogSettings& settings, std::vector<Sys_FileLoc>& chosen) = 0;

    /// Those in use: the platform's, or the ones that the framework draws.
    [[nodiscard]] static QLX_FileDialogs& Get();
    /// Those that the framework draws, whatever is installed.
    [[nodiscard]] static QLX_FileDialogs& GetDrawn();
    /// Not owned; null brings back the framework's. Returns the previous ones, null for the
    /// framework's.
    static QLX_FileDialogs* Install(QLX_FileDialogs* dialogs);
};
