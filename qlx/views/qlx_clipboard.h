// The clipboard, as views see it: a text in, a text out.
#pragma once

#include <string>

#include "basekit/cmn/cmn_types.h"

/// The wall between views and the system's clipboard. User-interface thread.
class QLX_API QLX_Clipboard {
  public:
    virtual ~QLX_Clipboard();
    /// UTF-8. False, and the text untouched, when the clipboard holds no text.
    virtual bool GetText(std::string& text) = 0;
    virtual void SetText(const std::string& text) = 0;

    /// The one in use; one that only this process sees until a platform installs its own.
    [[nodiscard]] static QLX_Clipboard& Get();
    /// Not owned; null brings back the one of the process. Returns the previous one, null for that.
    static QLX_Clipboard* Install(QLX_Clipboard* clipboard);
};
