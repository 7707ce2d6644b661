#include "newfilelibs/daw/daw_keyevent.h"

DAW_KeyEvent::DAW_KeyEvent(DAW_EKeyCode keyCode, DAW_EAutoKey autoKey, const std::string& text,
                           DAW_EKeyState keyState)
    : mKeyCode(keyCode), mAutoKey(autoKey), mText(text), mKeyState(keyState) {}

DAW_KeyEvent::~DAW_KeyEvent() = default;

Cmn_RefCountPtr<DAW_KeyEvent> DAW_KeyEvent::New(DAW_EKeyCode keyCode, DAW_EAutoKey autoKey,
                                                const std::string& text, DAW_EKeyState keyState) {
    return Cmn_RefCountPtr<DAW_KeyEvent>(new DAW_KeyEvent(keyCode, autoKey, text, keyState));
}

Cmn_RefCountPtr<DAW_KeyEvent> DAW_KeyEvent::New(const std::string& text, DAW_EAutoKey autoKey,
                                                DAW_EKeyCode keyCode, DAW_EKeyState keyState) {
    return New(keyCode, autoKey, text, keyState);
}

Cmn_RefCountPtr<DAW_KeyEvent> DAW_KeyEvent::New(const DAW_KeyEvent& other) {
    return New(other.GetKeyCode(), other.IsAutoKey(), other.GetText(), other.GetKeyState());
}

DAW_EKeyCode DAW_KeyEvent::GetKeyCode() const { return mKeyCode; }

std::string DAW_KeyEvent::GetText() const { return mText; }

DAW_EAutoKey DAW_KeyEvent::IsAutoKey() const { return mAutoKey; }

DAW_EKeyState DAW_KeyEvent::GetKeyState() const { return mKeyState; }
