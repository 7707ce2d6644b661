#include "qlx/views/qlx_clipboard.h"

namespace {

class ProcessClipboard : public QLX_Clipboard {
  public:
    bool GetText(std::string& text) override {
        if (!mHasText)
            return false;
        text = mText;
        return true;
    }
    void SetText(const std::string& text) override {
        mText = text;
        mHasText = true;
    }

  private:
    std::string mText;
    bool mHasText = false;
};

ProcessClipboard& GetProcessClipboard() {
    static ProcessClipboard clipboard;
    return clipboard;
}

QLX_Clipboard* sInstalled = nullptr;

} // namespace

QLX_Clipboard::~QLX_Clipboard() = default;

QLX_Clipboard& QLX_Clipboard::Get() { return sInstalled ? *sInstalled : GetProcessClipboard(); }

QLX_Clipboard* QLX_Clipboard::Install(QLX_Clipboard* clipboard) {
    QLX_Clipboard* const previous = sInstalled;
    sInstalled = clipboard;
    return previous;
}
