#include "newfilelibs/daw/daw_commandoptionregistry.h"

#include "basekit/cmn/cmn_assert.h"

namespace {

constexpr const char* kSource = "newfilelibs/daw/daw_commandoptionregistry";
// The line under which empty entries have always been reported; logs are searched for it.
constexpr int kEmptyEntryLine = 70;

} // namespace

DAW_CommandOptionRegistry::CommandOptionMap DAW_CommandOptionRegistry::sCommandOptionMap;
constinit DAW_CommandOptionRegistry::NotificationCallback
    DAW_CommandOptionRegistry::sNotificationCallback = nullptr;

bool DAW_KeyOptionCompare::operator()(const CommandOptionRegistryKey& a,
                                      const CommandOptionRegistryKey& b) const {
    if (a.ownerCommandID != b.ownerCommandID)
        return a.ownerCommandID < b.ownerCommandID;
    return a.optionName < b.optionName;
}

void DAW_CommandOptionRegistry::RegisterCommandOption(Cmn_RefCountPtr<DAW_CommandOption> option) {
    if (!option) {
        Cmn_Assert("option", kSource, __LINE__);
        return;
    }
    sCommandOptionMap[{option->GetOwnerCommandID(), option->GetOptionName()}] = option;
    if (sNotificationCallback)
        sNotificationCallback(option.Get());
}

Cmn_RefCountPtr<DAW_CommandOption>
DAW_CommandOptionRegistry::FindByOwnerCommandIDAndName(std::int32_t ownerCommandID,
                                                       std::string name) {
    const auto entry = sCommandOptionMap.find({ownerCommandID, std::move(name)});
    return entry == sCommandOptionMap.end() ? nullptr : entry->second;
}

void DAW_CommandOptionRegistry::FindAllOptionsForCommand(
    std::int32_t ownerCommandID, std::vector<Cmn_RefCountPtr<DAW_CommandOption>>& out) {
    for (const auto& [key, option] : sCommandOptionMap) {
        if (!option)
            Cmn_Assert("option", kSource, kEmptyEntryLine);
        else if (option->GetOwnerCommandID() == ownerCommandID)
            out.push_back(option);
    }
}

DAW_CommandOptionRegistry::CommandOptionMap& DAW_CommandOptionRegistry::GetCommandOptionMap() {
    return sCommandOptionMap;
}

void DAW_CommandOptionRegistry::SetRegistrationNotificationCallback(NotificationCallback callback) {
    sNotificationCallback = callback;
}
