// Named commands: one object for every action that a user can reach by menu or key, and the
// registry under whose numbers and persisted names they are found.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "basekit/cmn/cmn_refcount.h"
#include "newfilelibs/daw/daw_eventmodifiers.h"
#include "newfilelibs/daw/daw_keyboardstate.h"
#include "newfilelibs/daw/daw_types.h"

/// An action with a name. The host derives a class for each of its commands, overrides DoCommandX
/// and owns the objects; the registry and key bindings only refer to them. User-interface thread.
class QLX_API DAW_Command {
  public:
    /// The name is shown to the user; the unique persisted name is what bindings and settings
    /// store, so it never changes once released.
    DAW_Command(std::int32_t commandID, const std::string& name,
                const std::string& uniquePersistedName,
                DAW_ECommandType type = kDAW_CommandType_Action, std::int32_t category = 0,
                const std::vector<EDAW_CommandTag>& tags = {},
                bool allowedInCustomKeyBindingsWindow = true);
    DAW_Command(const DAW_Command&) = delete;
    DAW_Command& operator=(const DAW_Command&) = delete;

    // Slot order is part of the binary interface: append, never move.

    /// Takes itself out of the registry, if it is there.
    virtual ~DAW_Command();
    /// Whether the command may run. The argument is for overrides; this class ignores it.
    virtual bool IsEnabled(bool argument) const;
    /// Runs the command by calling DoCommandX. Both references are released on return, also when
    /// the command throws. Either may be null.
    virtual void DoCommand(Cmn_AliasedRefCountPtr<DAW_EventModifiers> modifiers,
                           Cmn_RefCountPtr<DAW_KeyboardState> keyboard);
    /// Called before DoCommand when a key that is bound to the command goes down; does nothing
    /// here.
    virtual void DoCommandStart(Cmn_AliasedRefCountPtr<DAW_EventModifiers> modifiers,
                                Cmn_RefCountPtr<DAW_KeyboardState> keyboard);
    /// Called when that key goes up again; does nothing here.
    virtual void DoCommandEnd(Cmn_AliasedRefCountPtr<DAW_EventModifiers> modifiers,
                              Cmn_RefCountPtr<DAW_KeyboardState> keyboard);

    void SetEnabled(bool enabled) { mEnabled = enabled; }
    [[nodiscard]] const std::string& GetName() const { return mName; }
    [[nodiscard]] std::int32_t GetCommandID() const { return mCommandID; }
    [[nodiscard]] const std::string& GetUniquePersistedName() const { return mUniquePersistedName; }
    [[nodiscard]] DAW_ECommandType GetCommandType() const { return mCommandType; }
    [[nodiscard]] std::int32_t GetCommandCategory() const { return mCommandCategory; }
    [[nodiscard]] const std::vector<EDAW_CommandTag>& GetTags() const { return mTags; }
    [[nodiscard]] bool GetAllowedInCustomKeyBindingsWindow() const {
        return mAllowedInCustomKeyBindingsWindow;
    }

    /// The state of one of this command's registered options. Inside DoCommand it is the state that
    /// the modifiers and keys of that invocation give; outside, the option's default. False when
    /// there is no such option.
    [[nodiscard]] bool GetOptionState(const std::string& optionName) const;

    /// A tag as readable text; raises the assertion and answers an empty text for None and for what
    /// is no tag.
    [[nodiscard]] static std::string TagToString(EDAW_CommandTag tag);

  protected:
    /// What the command does; nothing here.
    virtual void DoCommandX();

  private:
    // The order of the fields is part of the binary interface.
    bool mEnabled = true;
    std::string mName;
    std::int32_t mCommandID;
    std::string mUniquePersistedName;
    DAW_ECommandType mCommandType;
    std::int32_t mCommandCategory;
    std::vector<EDAW_CommandTag> mTags;
    bool mAllowedInCustomKeyBindingsWindow;
};

/// All named commands of the process by identifier. Owns none of them. User-interface thread.
class QLX_API DAW_CommandRegistry {
  public:
    using CommandMap = std::map<std::int32_t, DAW_Command*>;
    using NotificationCallback = void (*)(DAW_Command*);

    /// Enters a command; an earlier one with the same identifier is replaced. Then the notification
    /// callback is called. Null is reported by assertion and ignored.
    static void RegisterCommand(DAW_Command* command);
    static void RemoveRegisteredCommand(std::int32_t commandID);
    /// Removes the command, unless another one has taken its place meanwhile.
    static void RemoveRegisteredCommand(DAW_Command* command);
    static void RemoveRegisteredCommands();

    /// Null when there is none. Of several with one name, the lowest identifier wins.
    [[nodiscard]] static DAW_Command* FindCommandByID(std::int32_t commandID);
    [[nodiscard]] static DAW_Command* FindCommandByName(const std::string& name);
    [[nodiscard]] static DAW_Command* FindCommandByUniquePersistedName(const std::string& name);

    [[nodiscard]] static const CommandMap& GetCommandMap();
    /// Called after each registration; null for none.
    static void SetRegistrationNotificationCallback(NotificationCallback callback);

  private:
    static CommandMap sCommandMap;
    static NotificationCallback sNotificationCallback;
};
