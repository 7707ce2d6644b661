// A key stroke as the key-binding layer sees it.
#pragma once

#include <string>

#include "basekit/cmn/cmn_refcount.h"
#include "newfilelibs/daw/daw_types.h"

/// One key going down or up, with the text it types. Does not change once made; shared by count.
class QLX_API DAW_KeyEvent : public Cmn_RefCountObject {
  public:
    /// The text is UTF-8 and may be empty.
    [[nodiscard]] static Cmn_RefCountPtr<DAW_KeyEvent> New(DAW_EKeyCode keyCode,
                                                           DAW_EAutoKey autoKey,
                                                           const std::string& text,
                                                           DAW_EKeyState keyState);
    [[nodiscard]] static Cmn_RefCountPtr<DAW_KeyEvent> New(const std::string& text,
                                                           DAW_EAutoKey autoKey,
                                                           DAW_EKeyCode keyCode,
                                                           DAW_EKeyState keyState);
    [[nodiscard]] static Cmn_RefCountPtr<DAW_KeyEvent> New(const DAW_KeyEvent& other);

    ~DAW_KeyEvent() override;

    // Slot order is part of the binary interface: append, never move.
    virtual DAW_EKeyCode GetKeyCode() const;
    virtual std::string GetText() const;
    virtual DAW_EAutoKey IsAutoKey() const;
    virtual DAW_EKeyState GetKeyState() const;

  protected:
    DAW_KeyEvent(DAW_EKeyCode keyCode, DAW_EAutoKey autoKey, const std::string& text,
                 DAW_EKeyState keyState);

  private:
    DAW_EKeyCode mKeyCode;
    DAW_EAutoKey mAutoKey;
    std::string mText;
    DAW_EKeyState mKeyState;
};
