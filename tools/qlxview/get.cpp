// qlxview get: one value, as a window with a layout and a language sees it.
#include <cstdio>

#include "basekit/cmn/cmn_string.h"
#include "command.h"
#include "description.h"
#include "looks.h"

namespace {
struct Options {
    std::string mFile;
    std::string mElement;
    std::string mProperty;
    std::string mLayout;
    std::string mLanguage;
    bool mLocalized = false;
};

/// The element of that path ("viewhierarchy/view[2]/behavior"), or the first one with an identifier
/// ("@mute"); null when there is none.
const QLX_RawPropertyContainer* FindElement(const QLX_RawPropertyContainer& container,
                                            const std::string& wanted) {
    if (wanted.empty() || wanted[0] != '@')
        return container.FindByPath(wanted);
    std::uint32_t identifier = 0;
    if (container.GetCurrentSet().GetIDTypeProperty("Identifier", identifier) &&
        identifier == Cmn_StringToID(std::string_view(wanted).substr(1)))
        return &container;
    for (const auto* child = container.GetFirstChild(); child; child = child->GetNextSibling())
        if (const QLX_RawPropertyContainer* const found = FindElement(*child, wanted))
            return found;
    return nullptr;
}

void Get(const Options& options) {
    const auto description = LoadDescription(options.mFile);
    if (!description) {
        gExitStatus = kExitFailed;
        return;
    }
    const QLX_PropertyFilter filter =
        ChooseFilter(*description, options.mLayout, options.mLanguage);
    description->GetRoot()->SetCurrentFilter(filter);
    const auto* const element = FindElement(*description->GetRoot(), options.mElement);
    if (!element) {
        std::fprintf(stderr, "%s: there is no element %s\n", options.mFile.c_str(),
                     options.mElement.c_str());
        gExitStatus = kExitFound;
        return;
    }
    bool found = false;
    const QLX_PropertySet& set = element->GetCurrentSet();
    for (std::size_t i = 0; i < set.GetCount(); ++i) {
        const QLX_PropertyView view = set.GetAt(i);
        if (view.mName != options.mProperty)
            continue;
        std::string text = ValueText(view);
        if (options.mLocalized && view.mType == qlx_PropType_String_Key)
            text = description->GetMemento().GetLocalizedStringProperty(filter.GetLanguage(), text);
        std::printf("%s\n", text.c_str());
        found = true;
    }
    if (!found) {
        std::fprintf(stderr, "%s: %s has no property %s there\n", options.mFile.c_str(),
                     options.mElement.c_str(), options.mProperty.c_str());
        gExitStatus = kExitFound;
    }
}

void AddGetCommand(CLI::App& app, const char* name) {
    CLI::App* const command =
        app.add_subcommand(name, "Prints one value as a layout and a language see it");
    const auto options = std::make_shared<Options>();
    command->add_option("FILE", options->mFile, "An XML source")->required();
    command->add_option("ELEMENT", options->mElement, "A path, or @ and an identifier")->required();
    command->add_option("PROPERTY", options->mProperty, "Its name")->required();
    command->add_option("--layout", options->mLayout, "The layout; without it the common one");
    command->add_option("--language", options->mLanguage, "ENU, JPN, DEU, ...; without it English");
    command->add_flag("--localized", options->mLocalized, "The text of a string key, not the key");
    command->footer("A name that stands under several types gives a line each.\n"
                    "Example: qlxview get views/MixerStrip.xml @fadr Frame --layout Compact");
    command->callback([options] { Get(*options); });
}
const ToolCommand gGet(40, "get", AddGetCommand);
} // namespace
