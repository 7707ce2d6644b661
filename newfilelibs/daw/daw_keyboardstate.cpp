#include "newfilelibs/daw/daw_keyboardstate.h"

#include <algorithm>

Cmn_RefCountPtr<DAW_KeyboardState> DAW_KeyboardState::New() {
    return Cmn_RefCountPtr<DAW_KeyboardState>(new DAW_KeyboardState);
}

Cmn_RefCountPtr<DAW_KeyboardState> DAW_KeyboardState::New(const DAW_KeyboardState& other) {
    return Cmn_RefCountPtr<DAW_KeyboardState>(new DAW_KeyboardState(other));
}

DAW_KeyboardState::~DAW_KeyboardState() = default;

bool DAW_KeyboardState::KeyIsDown(DAW_EKeyCode keyCode) const {
    return std::binary_search(mKeysDown.begin(), mKeysDown.end(), keyCode);
}

void DAW_KeyboardState::SetKeyDown(DAW_EKeyCode keyCode, bool down) {
    const auto place = std::lower_bound(mKeysDown.begin(), mKeysDown.end(), keyCode);
    const bool isDown = place != mKeysDown.end() && *place == keyCode;
    if (down && !isDown)
        mKeysDown.insert(place, keyCode);
    else if (!down && isDown)
        mKeysDown.erase(place);
}

void DAW_KeyboardState::ReleaseAllKeys() { mKeysDown.clear(); }
