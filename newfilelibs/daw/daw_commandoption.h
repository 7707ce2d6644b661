// Options of named commands: variants that are switched by holding modifiers while a command is
// invoked.
#pragma once

#include <string>
#include <vector>

#include "basekit/cmn/cmn_refcount.h"
#include "newfilelibs/daw/daw_eventmodifiers.h"
#include "newfilelibs/daw/daw_keyboardstate.h"
#include "newfilelibs/daw/daw_types.h"

/// One option of one command. Its state is the default unless exactly the required modifiers and
/// none of the excluded ones are held, which flips it. Does not change once made; shared by count.
class QLX_API DAW_CommandOption : public Cmn_RefCountObject {
  public:
    /// The key is the one that modifier kind 0 (the option's own key) stands for.
    [[nodiscard]] static Cmn_RefCountPtr<DAW_CommandOption>
    New(std::int32_t ownerCommandID, const std::string& name,
        std::vector<DAW_EModifierKind> required, bool defaultState, DAW_EKeyCode key,
        ECommandNameAppendMode mode, std::vector<DAW_EModifierKind> excluded);
    /// With one required kind.
    [[nodiscard]] static Cmn_RefCountPtr<DAW_CommandOption>
    New(std::int32_t ownerCommandID, const std::string& name, DAW_EModifierKind required,
        bool defaultState, DAW_EKeyCode key, ECommandNameAppendMode mode,
        std::vector<DAW_EModifierKind> excluded);

    ~DAW_CommandOption() override;

    [[nodiscard]] std::int32_t GetOwnerCommandID() const { return mOwnerCommandID; }
    [[nodiscard]] const std::string& GetOptionName() const { return mOptionName; }
    [[nodiscard]] const std::vector<DAW_EModifierKind>& GetRequiredModifierKinds() const {
        return mRequired;
    }
    [[nodiscard]] bool GetDefaultState() const { return mDefaultState; }
    [[nodiscard]] DAW_EKeyCode GetKeyCode() const { return mKeyCode; }
    [[nodiscard]] ECommandNameAppendMode GetCommandNameAppendMode() const {
        return mCommandNameAppendMode;
    }
    [[nodiscard]] const std::vector<DAW_EModifierKind>& GetExcludedModifierKinds() const {
        return mExcluded;
    }

    /// Only a modifier that is pressed (state 1) counts as held. Without modifiers none is held,
    /// without a keyboard state no key is.
    [[nodiscard]] bool GetOptionState(Cmn_AliasedRefCountPtr<DAW_EventModifiers> modifiers,
                                      Cmn_RefCountPtr<DAW_KeyboardState> keyboard) const;

    /// The required modifiers as pressed, everything else as not pressed, the focus as either. The
    /// option's own key and the excluded kinds do not show in it.
    [[nodiscard]] Cmn_AliasedRefCountPtr<DAW_EventModifiers> BuildModifiersFromOption() const;

    /// A command's name with this option's name added as the append mode says.
    [[nodiscard]] std::string AppendToCommandName(const std::string& commandName) const;

  private:
    DAW_CommandOption() = default;

    std::int32_t mOwnerCommandID = 0;
    std::string mOptionName;
    std::vector<DAW_EModifierKind> mRequired;
    bool mDefaultState = false;
    DAW_EKeyCode mKeyCode = kDAW_Key_None;
    ECommandNameAppendMode mCommandNameAppendMode = kCommandNameAppend_None;
    std::vector<DAW_EModifierKind> mExcluded;
};
