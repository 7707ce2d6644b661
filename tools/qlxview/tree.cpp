// qlxview tree: a description as a readable outline, as stored or merged for one layout and
// language.
#include <cstdio>

#include "command.h"
#include "description.h"
#include "looks.h"

namespace {
struct Options {
    std::string mFile;
    std::string mLayout;
    std::string mLanguage;
    bool mMerged = false;
    bool mElementsOnly = false;
};

void PrintSet(const QLX_PropertySet& set, const std::string& indent, const std::string& suffix,
              const QLX_ViewMemento& memento, QLX_Language::ELanguage language) {
    std::map<std::pair<std::string, int>, QLX_PropertyView> sorted;
    for (std::size_t i = 0; i < set.GetCount(); ++i)
        sorted[{std::string(set.GetAt(i).mName), set.GetAt(i).mType}] = set.GetAt(i);
    for (const auto& [key, view] : sorted) {
        std::string text = ValueText(view);
        if (view.mType == qlx_PropType_String || view.mType == qlx_PropType_String_Key)
            text.insert(0, 1, '"').append("\"");
        if (view.mType == qlx_PropType_String_Key) {
            const std::string localized =
                memento.GetLocalizedStringProperty(language, std::string(view.mText));
            if (!localized.empty())
                text += " = \"" + localized + "\"";
        }
        std::printf("%s%s (%s): %s%s\n", indent.c_str(), key.first.c_str(),
                    QLX_PropertyTypeToString(view.mType).c_str(), text.c_str(), suffix.c_str());
    }
}

void PrintElement(const QLX_RawPropertyContainer& container, int depth, const Options& options,
                  const Description& description, QLX_Language::ELanguage language) {
    const std::string indent(static_cast<std::size_t>(depth) * 2, ' ');
    std::printf("%s%s\n", indent.c_str(), ElementLabel(container).c_str());
    if (!options.mElementsOnly) {
        const std::string inner = indent + "    ";
        if (options.mMerged)
            PrintSet(container.GetCurrentSet(), inner, "", description.GetMemento(), language);
        else
            for (const auto& [filter, set] : container.GetFilterPropertyMap())
                PrintSet(set, inner, FilterLabel(filter), description.GetMemento(),
                         filter.GetLanguage());
    }
    for (const auto* child = container.GetFirstChild(); child; child = child->GetNextSibling())
        PrintElement(*child, depth + 1, options, description, language);
}

void AddTreeCommand(CLI::App& app, const char* name) {
    CLI::App* const command = app.add_subcommand(name, "Shows a description as a readable outline");
    const auto options = std::make_shared<Options>();
    command->add_option("FILE", options->mFile, "An XML source")->required();
    CLI::Option* const layout =
        command->add_option("--layout", options->mLayout, "Merge for this layout (or Default)");
    CLI::Option* const language = command->add_option(
        "--language", options->mLanguage, "Merge for this language: ENU, JPN, DEU, ...");
    command->add_flag("--elements", options->mElementsOnly, "Leave the properties out");
    command->footer("Without a layout and a language it shows every value with its filter.\n"
                    "Example: qlxview tree --layout Compact --language DEU views/Transport.xml");
    command->callback([=] {
        const auto description = LoadDescription(options->mFile);
        if (!description) {
            gExitStatus = kExitFailed;
            return;
        }
        options->mMerged = layout->count() > 0 || language->count() > 0;
        const QLX_PropertyFilter filter =
            ChooseFilter(*description, options->mLayout, options->mLanguage);
        if (options->mMerged)
            description->GetRoot()->SetCurrentFilter(filter);
        PrintElement(*description->GetRoot(), 0, *options, *description, filter.GetLanguage());
    });
}
const ToolCommand gTree(30, "tree", AddTreeCommand);
} // namespace
