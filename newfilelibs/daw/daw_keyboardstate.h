// Which keys are held down, for command options that ask for a further key.
#pragma once

#include <vector>

#include "basekit/cmn/cmn_refcount.h"
#include "newfilelibs/daw/daw_types.h"

/// The set of keys that are down. Shared by count. The key-binding layer keeps one up to date from
/// key downs and key ups; a host with a source of its own overrides KeyIsDown.
class QLX_API DAW_KeyboardState : public Cmn_RefCountObject {
  public:
    /// No key is down.
    [[nodiscard]] static Cmn_RefCountPtr<DAW_KeyboardState> New();
    [[nodiscard]] static Cmn_RefCountPtr<DAW_KeyboardState> New(const DAW_KeyboardState& other);

    ~DAW_KeyboardState() override;

    // Slot order is part of the binary interface: append, never move.
    virtual bool KeyIsDown(DAW_EKeyCode keyCode) const;

    void SetKeyDown(DAW_EKeyCode keyCode, bool down);
    void ReleaseAllKeys();

    /// The held keys, lowest code first.
    [[nodiscard]] const std::vector<DAW_EKeyCode>& GetKeysDown() const { return mKeysDown; }

  protected:
    DAW_KeyboardState() = default;
    DAW_KeyboardState(const DAW_KeyboardState&) = default;

  private:
    std::vector<DAW_EKeyCode> mKeysDown; // sorted, each key once
};
