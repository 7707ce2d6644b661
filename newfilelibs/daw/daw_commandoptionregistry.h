// The options of all named commands, by owner and name.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "basekit/cmn/cmn_refcount.h"
#include "newfilelibs/daw/daw_commandoption.h"

/// What identifies an option.
struct CommandOptionRegistryKey {
    std::int32_t ownerCommandID = 0;
    std::string optionName;
};

/// By owner identifier, then by name, bytewise.
struct QLX_API DAW_KeyOptionCompare {
    bool operator()(const CommandOptionRegistryKey& a, const CommandOptionRegistryKey& b) const;
};

/// Holds one reference to each registered option. User-interface thread.
class QLX_API DAW_CommandOptionRegistry {
  public:
    using CommandOptionMap = std::map<CommandOptionRegistryKey, Cmn_RefCountPtr<DAW_CommandOption>,
                                      DAW_KeyOptionCompare>;
    using NotificationCallback = void (*)(const DAW_CommandOption*);

    /// Enters an option; an earlier one of the same owner and name is replaced. Then the
    /// notification callback is called. Null is reported by assertion and ignored.
    static void RegisterCommandOption(Cmn_RefCountPtr<DAW_CommandOption> option);
    /// Null when there is none.
    [[nodiscard]] static Cmn_RefCountPtr<DAW_CommandOption>
    FindByOwnerCommandIDAndName(std::int32_t ownerCommandID, std::string name);
    /// Appends the options of a command to out, in the order of the map; out is not cleared first.
    static void FindAllOptionsForCommand(std::int32_t ownerCommandID,
                                         std::vector<Cmn_RefCountPtr<DAW_CommandOption>>& out);
    /// The map itself; a host that takes options back erases them here.
    [[nodiscard]] static CommandOptionMap& GetCommandOptionMap();
    /// Called after each registration; null for none.
    static void SetRegistrationNotificationCallback(NotificationCallback callback);

  private:
    static CommandOptionMap sCommandOptionMap;
    static NotificationCallback sNotificationCallback;
};
