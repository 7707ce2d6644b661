#include "newfilelibs/daw/daw_command.h"

#include "basekit/cmn/cmn_assert.h"
#include "newfilelibs/daw/daw_commandoption.h"
#include "newfilelibs/daw/daw_commandoptionregistry.h"

namespace {

constexpr const char* kSource = "newfilelibs/daw/daw_command";

constexpr const char* kTagTexts[kDAW_CommandTag_Count] = {
    "",      "File",   "Edit",     "View",       "Window",   "Transport", "Record",  "Playback",
    "Loop",  "Select", "Navigate", "Zoom",       "Tools",    "Grid",      "Marker",  "Tempo",
    "Track", "Clip",   "Fade",     "Automation", "Mixer",    "Routing",   "Plug-in", "MIDI",
    "Video", "Import", "Export",   "Controller", "Settings", "Help"};

/// A DoCommand that is running, innermost first.
struct Invocation {
    const DAW_Command* mCommand;                                  // not owned
    const Cmn_AliasedRefCountPtr<DAW_EventModifiers>& mModifiers; // held by DoCommand's caller
    const Cmn_RefCountPtr<DAW_KeyboardState>& mKeyboard;
    Invocation* mOuter; // not owned
};

constinit Invocation* sInnermost = nullptr;

/// Makes an invocation known while DoCommandX runs, on every way out.
class StInvocation {
  public:
    StInvocation(const DAW_Command* command,
                 const Cmn_AliasedRefCountPtr<DAW_EventModifiers>& modifiers,
                 const Cmn_RefCountPtr<DAW_KeyboardState>& keyboard)
        : mInvocation{command, modifiers, keyboard, sInnermost} {
        sInnermost = &mInvocation;
    }
    ~StInvocation() { sInnermost = mInvocation.mOuter; }
    StInvocation(const StInvocation&) = delete;
    StInvocation& operator=(const StInvocation&) = delete;

  private:
    Invocation mInvocation;
};

} // namespace

DAW_Command::DAW_Command(std::int32_t commandID, const std::string& name,
                         const std::string& uniquePersistedName, DAW_ECommandType type,
                         std::int32_t category, const std::vector<EDAW_CommandTag>& tags,
                         bool allowedInCustomKeyBindingsWindow)
    : mName(name), mCommandID(commandID), mUniquePersistedName(uniquePersistedName),
      mCommandType(type), mCommandCategory(category), mTags(tags),
      mAllowedInCustomKeyBindingsWindow(allowedInCustomKeyBindingsWindow) {}

DAW_Command::~DAW_Command() { DAW_CommandRegistry::RemoveRegisteredCommand(this); }

bool DAW_Command::IsEnabled(bool) const { return mEnabled; }

void DAW_Command::DoCommand(Cmn_AliasedRefCountPtr<DAW_EventModifiers> modifiers,
                            Cmn_RefCountPtr<DAW_KeyboardState> keyboard) {
    StInvocation running(this, modifiers, keyboard);
    DoCommandX();
}

void DAW_Command::DoCommandStart(Cmn_AliasedRefCountPtr<DAW_EventModifiers>,
                                 Cmn_RefCountPtr<DAW_KeyboardState>) {}

void DAW_Command::DoCommandEnd(Cmn_AliasedRefCountPtr<DAW_EventModifiers>,
                               Cmn_RefCountPtr<DAW_KeyboardState>) {}

void DAW_Command::DoCommandX() {}

bool DAW_Command::GetOptionState(const std::string& optionName) const {
    const Cmn_RefCountPtr<DAW_CommandOption> option =
        DAW_CommandOptionRegistry::FindByOwnerCommandIDAndName(mCommandID, optionName);
    if (!option)
        return false;
    for (const Invocation* i = sInnermost; i; i = i->mOuter)
        if (i->mCommand == this && i->mModifiers)
            return option->GetOptionState(i->mModifiers, i->mKeyboard);
    return option->GetDefaultState();
}

std::string DAW_Command::TagToString(EDAW_CommandTag tag) {
    if (tag <= kDAW_CommandTag_None || tag >= kDAW_CommandTag_Count) {
        Cmn_Assert("tag > kDAW_CommandTag_None && tag < kDAW_CommandTag_Count", kSource, __LINE__);
        return std::string();
    }
    return kTagTexts[tag];
}

DAW_CommandRegistry::CommandMap DAW_CommandRegistry::sCommandMap;
constinit DAW_CommandRegistry::NotificationCallback DAW_CommandRegistry::sNotificationCallback =
    nullptr;

void DAW_CommandRegistry::RegisterCommand(DAW_Command* command) {
    if (!command) {
        Cmn_Assert("command", kSource, __LINE__);
        return;
    }
    sCommandMap[command->GetCommandID()] = command;
    if (sNotificationCallback)
        sNotificationCallback(command);
}

void DAW_CommandRegistry::RemoveRegisteredCommand(std::int32_t commandID) {
    sCommandMap.erase(commandID);
}

void DAW_CommandRegistry::RemoveRegisteredCommand(DAW_Command* command) {
    if (!command)
        return;
    const auto entry = sCommandMap.find(command->GetCommandID());
    if (entry != sCommandMap.end() && entry->second == command)
        sCommandMap.erase(entry);
}

void DAW_CommandRegistry::RemoveRegisteredCommands() { sCommandMap.clear(); }

DAW_Command* DAW_CommandRegistry::FindCommandByID(std::int32_t commandID) {
    const auto entry = sCommandMap.find(commandID);
    return entry == sCommandMap.end() ? nullptr : entry->second;
}

DAW_Command* DAW_CommandRegistry::FindCommandByName(const std::string& name) {
    for (const auto& [id, command] : sCommandMap)
        if (command->GetName() == name)
            return command;
    return nullptr;
}

DAW_Command* DAW_CommandRegistry::FindCommandByUniquePersistedName(const std::string& name) {
    for (const auto& [id, command] : sCommandMap)
        if (command->GetUniquePersistedName() == name)
            return command;
    return nullptr;
}

const DAW_CommandRegistry::CommandMap& DAW_CommandRegistry::GetCommandMap() { return sCommandMap; }

void DAW_CommandRegistry::SetRegistrationNotificationCallback(NotificationCallback callback) {
    sNotificationCallback = callback;
}
