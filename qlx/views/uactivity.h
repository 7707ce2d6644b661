// CActivity: what the application's activity hooks are told.
#pragma once

#include <string>

#include "basekit/cmn/cmn_types.h"

struct QLX_ScratchText;

/// Something that takes its time: a verb and the name of what it is done to, as "performing Cut".
/// Lives on the stack of whoever is busy. Most programs never look, so the text is put together
/// when it is first asked for. User-interface thread.
class QLX_API CActivity {
  public:
    /// The verb brings the blank after it. Both outlive the activity and stay as they are.
    CActivity(const char* verb, const std::string& name) noexcept : mVerb(verb), mName(&name) {}
    CActivity(const char* verb, std::string&& name) = delete;
    ~CActivity() {
        if (mText)
            Release();
    }
    CActivity(const CActivity&) = delete;
    CActivity& operator=(const CActivity&) = delete;

    /// Verb and name. Good as long as the activity.
    [[nodiscard]] const std::string& GetText() const;
    [[nodiscard]] const std::string& GetName() const noexcept { return *mName; }

  private:
    void Release() noexcept;

    const char* mVerb;                        // not owned
    const std::string* mName;                 // not owned
    mutable QLX_ScratchText* mText = nullptr; // owned; null until it is asked for
};
