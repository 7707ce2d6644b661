// The keyboard side of CKeyBindings: from a key stroke to the command.

#include <algorithm>
#include <limits>

#include "basekit/cmn/cmn_trace.h"
#include "newfilelibs/daw/daw_command.h"
#include "newfilelibs/daw/daw_keyboardstate.h"
#include "newfilelibs/daw/daw_keyevent.h"
#include "newfilelibs/daw/daw_keynames.h"
#include "qlx/views/ueventhandler.h"
#include "qlx/views/ukeybindingpattern.h"
#include "qlx/views/ukeybindings.h"

namespace {

/// The classes whose instances are typed into. Small, and read once a bound plain key.
std::vector<std::string>& TextFieldClasses() {
    static std::vector<std::string> classes = {"TEditText", "TNumericEntryText"};
    return classes;
}

bool IsTextField(const TEventHandler* handler) {
    const std::vector<std::string>& classes = TextFieldClasses();
    for (const ClassDesc* d = handler->GetClassDescDynamic(); d; d = d->GetBaseClass(1))
        if (std::find(classes.begin(), classes.end(), d->GetClassName()) != classes.end())
            return true;
    return false;
}

bool Matches(const DAW_EventModifiers& pattern, const DAW_EventModifiers& event) {
    const CKeyPatternStates wanted(pattern), held(event);
    for (int i = 0; i < 5; ++i)
        if (wanted.states[i] != 2 && wanted.states[i] != held.states[i])
            return false;
    return !event.LeftButtonIsDown() && !event.MiddleButtonIsDown() && !event.RightButtonIsDown();
}

} // namespace

const CKeyBinding* CKeyBindings::Find(DAW_EKeyCode keyCode, const DAW_EventModifiers& modifiers,
                                      TEventHandler* target) const {
    const auto entry = mByKeyCode.find(keyCode);
    if (entry == mByKeyCode.end())
        return nullptr;
    const CKeyBinding* best = nullptr;
    int bestDepth = 0;
    for (const std::size_t index : entry->second) {
        const CKeyBinding& binding = mBindings[index];
        if (!Matches(*binding.mPattern, modifiers))
            continue;
        // How many handlers lie between the target and the context; one that holds everywhere lies
        // behind them all.
        int depth = 0;
        TEventHandler* handler = target;
        if (binding.mContext == CKeyBinding::kEverywhere)
            depth = std::numeric_limits<int>::max();
        else
            for (; handler && handler->GetIdentifier() != binding.mContext; ++depth)
                handler = handler->GetNextHandler();
        if (!handler && binding.mContext != CKeyBinding::kEverywhere)
            continue;
        const bool wins =
            !best || depth < bestDepth ||
            (depth == bestDepth && CKeyPatternStates(*binding.mPattern).CountOpen() <
                                       CKeyPatternStates(*best->mPattern).CountOpen());
        if (wins && DAW_CommandRegistry::FindCommandByUniquePersistedName(binding.mCommandName)) {
            best = &binding;
            bestDepth = depth;
        }
    }
    return best;
}

const CKeyBinding* CKeyBindings::FindOf(const std::string& commandName,
                                        TEventHandler* target) const {
    const CKeyBinding* best = nullptr;
    for (const CKeyBinding& binding : mBindings) {
        const bool isEverywhere = binding.mContext == CKeyBinding::kEverywhere;
        if (binding.mCommandName != commandName || (best && !isEverywhere))
            continue;
        // The stroke as it is shown: what may be held or not is not held.
        const DAW_EventModifiers& pattern = *binding.mPattern;
        const auto held = [](int state) { return state == 1 ? 1 : 0; };
        const auto stroke = DAW_EventModifiers::New(
            static_cast<DAW_EMenuCommandKeyState>(held(pattern.GetMenuCommandKeyState())),
            static_cast<DAW_EAlternateKeyState>(held(pattern.GetAlternateKeyState())),
            static_cast<DAW_EMetaKeyState>(held(pattern.GetMetaKeyState())),
            static_cast<DAW_EShiftKeyState>(held(pattern.GetShiftKeyState())),
            kDAW_LeftButton_NotPressed, kDAW_MiddleButton_NotPressed, kDAW_RightButton_NotPressed,
            /*scrollDirectionInverted*/ false,
            pattern.UsedByCustomKeyCommandsOnly_TargetsKeyboardFocusMode());
        const CKeyBinding* performed = Find(binding.mKeyCode, *stroke, target);
        if (!performed || performed->mCommandName != commandName)
            continue;
        best = &binding;
        if (isEverywhere)
            break;
    }
    return best;
}

bool CKeyBindings::TargetComesFirst(TEventHandler* target, const DAW_EventModifiers& modifiers) {
    const bool isPlain = !modifiers.MenuCommandKeyIsDown() && !modifiers.AlternateKeyIsDown() &&
                         !modifiers.MetaKeyIsDown();
    return isPlain && target && IsTextField(target);
}

void CKeyBindings::AddTextFieldClass(const std::string& className) {
    std::vector<std::string>& classes = TextFieldClasses();
    if (std::find(classes.begin(), classes.end(), className) == classes.end())
        classes.push_back(className);
}

bool CKeyBindings::Concerns(DAW_EKeyCode keyCode) const {
    return mByKeyCode.contains(keyCode) ||
           std::any_of(mHeld.begin(), mHeld.end(),
                       [keyCode](const Held& held) { return held.mKeyCode == keyCode; });
}

bool CKeyBindings::DeliverKeyDown(const DAW_KeyEvent& key,
                                  const Cmn_AliasedRefCountPtr<DAW_EventModifiers>& modifiers,
                                  const Cmn_RefCountPtr<DAW_KeyboardState>& keyboard,
                                  TEventHandler* target,
                                  const std::function<bool()>& sendToTarget) {
    const CKeyBinding* const found = Find(key.GetKeyCode(), *modifiers, target);
    if (!found)
        return sendToTarget();
    // The name is copied: whoever gets the key may change the bindings, or end the target.
    const std::string commandName = found->mCommandName;
    if (TargetComesFirst(target, *modifiers))
        return sendToTarget() || Perform(commandName, key, modifiers, keyboard);
    return Perform(commandName, key, modifiers, keyboard) || sendToTarget();
}

bool CKeyBindings::Perform(const std::string& commandName, const DAW_KeyEvent& key,
                           const Cmn_AliasedRefCountPtr<DAW_EventModifiers>& modifiers,
                           const Cmn_RefCountPtr<DAW_KeyboardState>& keyboard) {
    const auto find = [&commandName] {
        return DAW_CommandRegistry::FindCommandByUniquePersistedName(commandName);
    };
    DAW_Command* command = find();
    if (!command || !command->IsEnabled(/*argument*/ false))
        return false;
    const auto isHeldForIt = [&](const Held& held) {
        return held.mKeyCode == key.GetKeyCode() && held.mCommand == command &&
               held.mCommandName == commandName;
    };
    const bool isRepeated =
        key.IsAutoKey() == kDAW_AutoKey_Yes && std::any_of(mHeld.begin(), mHeld.end(), isHeldForIt);
    Cmn_Trace(kTrace_CommandKeys, "Key %s performs %s", DAW_KeyCodeToName(key.GetKeyCode()).c_str(),
              commandName.c_str());
    if (!isRepeated) {
        // What the key performed before ends first, should its going up have been missed. Any of
        // these calls may take the command away, so each is followed by a look whether it is still
        // there.
        EndHeld(key.GetKeyCode(), modifiers, keyboard);
        if (find() != command)
            return true;
        mHeld.push_back({key.GetKeyCode(), commandName, command});
        command->DoCommandStart(modifiers, keyboard);
        if (find() != command)
            return true;
    }
    command->DoCommand(modifiers, keyboard);
    return true;
}

bool CKeyBindings::EndHeld(DAW_EKeyCode keyCode,
                           const Cmn_AliasedRefCountPtr<DAW_EventModifiers>& modifiers,
                           const Cmn_RefCountPtr<DAW_KeyboardState>& keyboard) {
    const auto isKey = [keyCode](const Held& held) { return held.mKeyCode == keyCode; };
    const auto place = std::find_if(mHeld.begin(), mHeld.end(), isKey);
    if (place == mHeld.end())
        return false;
    const Held held = *place;
    mHeld.erase(place);
    DAW_Command* const command =
        DAW_CommandRegistry::FindCommandByUniquePersistedName(held.mCommandName);
    if (!command || command != held.mCommand)
        return false;
    command->DoCommandEnd(modifiers, keyboard);
    return true;
}

bool CKeyBindings::DeliverKeyUp(const DAW_KeyEvent& key,
                                const Cmn_AliasedRefCountPtr<DAW_EventModifiers>& modifiers,
                                const Cmn_RefCountPtr<DAW_KeyboardState>& keyboard) {
    return EndHeld(key.GetKeyCode(), modifiers, keyboard);
}

void CKeyBindings::ReleaseAllKeys() {
    const auto modifiers = DAW_EventModifiers::New(
        kDAW_MenuCommandKey_NotPressed, kDAW_AlternateKey_NotPressed, kDAW_MetaKey_NotPressed,
        kDAW_ShiftKey_NotPressed, kDAW_LeftButton_NotPressed, kDAW_MiddleButton_NotPressed,
        kDAW_RightButton_NotPressed, /*scrollDirectionInverted*/ false, kDAW_KeyboardFocus_Either);
    const auto keyboard = DAW_KeyboardState::New();
    while (!mHeld.empty())
        EndHeld(mHeld.back().mKeyCode, modifiers, keyboard);
}
