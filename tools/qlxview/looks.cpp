#include "looks.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <set>
#include <stdexcept>

#include "qlx/imaging/qlx_font.h"

namespace {
constexpr const char* kThemeNames[] = {"light", "dark", "light-contrast", "dark-contrast"};
constexpr const char* kWidest = "widest";
constexpr const char* kAll = "all";

template <class Function>
void ForEachContainer(QLX_RawPropertyContainer& container, const Function& function) {
    function(container);
    for (auto* child = container.GetFirstChild(); child; child = child->GetNextSibling())
        ForEachContainer(*child, function);
}

std::set<std::string> FindAttributes(const Description& description, const std::string& name) {
    std::set<std::string> values;
    ForEachContainer(*description.GetRoot(), [&](const QLX_RawPropertyContainer& container) {
        for (const auto& [filter, set] : container.GetFilterPropertyMap())
            if (!set.IsEmpty())
                values.insert(filter[name]);
    });
    return values;
}

bool IsAll(const std::vector<std::string>& values) {
    return std::find(values.begin(), values.end(), kAll) != values.end();
}

[[noreturn]] void Refuse(const Description& description, const std::string& what,
                         const std::string& value, const std::vector<std::string>& known) {
    std::string text =
        description.GetPath() + ": there is no " + what + " \"" + value + "\"; there are:";
    for (const std::string& name : known)
        text += " " + name;
    throw std::runtime_error(text);
}

[[noreturn]] void RefuseLayout(const Description& description, const std::string& value,
                               std::vector<std::string> known) {
    known[0] = "Default";
    Refuse(description, "layout", value, known);
}

std::vector<std::string> GetLanguageCodes() {
    std::vector<std::string> codes;
    codes.reserve(QLX_Language::kLanguageCount);
    for (int i = 0; i < QLX_Language::kLanguageCount; ++i)
        codes.push_back(QLX_Language::GetFileCode(static_cast<QLX_Language::ELanguage>(i)));
    return codes;
}

std::vector<std::string> ChooseLayouts(const Description& description,
                                       const std::vector<std::string>& wanted) {
    const std::vector<std::string> known = FindLayouts(description);
    if (wanted.empty())
        return {""};
    if (IsAll(wanted))
        return known;
    std::vector<std::string> chosen;
    for (const std::string& name : wanted) {
        const std::string layout = name == "Default" ? std::string() : name;
        if (std::find(known.begin(), known.end(), layout) == known.end())
            RefuseLayout(description, name, known);
        chosen.push_back(layout);
    }
    return chosen;
}

/// Layout and theme are left as they are.
std::vector<Look> ChooseLanguages(const Description& description,
                                  const std::vector<std::string>& wanted) {
    const auto known = FindLanguages(description);
    std::vector<Look> chosen;
    const auto add = [&chosen](QLX_Language::ELanguage language, bool widest) {
        Look look;
        look.mLanguage = language;
        look.mWidest = widest;
        chosen.push_back(look);
    };
    if (IsAll(wanted))
        for (const QLX_Language::ELanguage language : known)
            add(language, false);
    for (const std::string& name : wanted) {
        QLX_Language::ELanguage language = QLX_Language::English;
        if (name == kAll)
            continue;
        if (name != kWidest && (!QLX_Language::FindLanguage(name, language) || name.empty())) {
            std::vector<std::string> names = GetLanguageCodes();
            names.push_back(kWidest);
            Refuse(description, "language", name, names);
        }
        add(language, name == kWidest);
    }
    if (chosen.empty())
        add(QLX_Language::English, false);
    return chosen;
}

std::vector<EThemeVariant> ChooseThemes(const Description& description,
                                        const std::vector<std::string>& wanted) {
    std::vector<EThemeVariant> chosen;
    for (int theme = 0; theme < kTheme_VariantCount; ++theme)
        if (IsAll(wanted))
            chosen.push_back(static_cast<EThemeVariant>(theme));
    for (const std::string& name : wanted) {
        if (name == kAll)
            continue;
        const auto found = std::find(std::begin(kThemeNames), std::end(kThemeNames), name);
        if (found == std::end(kThemeNames))
            Refuse(description, "theme", name, {std::begin(kThemeNames), std::end(kThemeNames)});
        chosen.push_back(static_cast<EThemeVariant>(found - std::begin(kThemeNames)));
    }
    if (chosen.empty())
        chosen.push_back(kTheme_Light);
    return chosen;
}

std::vector<std::string> Lines(const std::string& text) {
    std::vector<std::string> lines;
    for (std::size_t from = 0; from <= text.size();) {
        const std::size_t to = std::min(text.find('\n', from), text.size());
        lines.push_back(text.substr(from, to - from));
        from = to + 1;
    }
    return lines;
}

/// Line by line, the wider of the two.
std::string Wider(const std::string& a, const std::string& b) {
    const QLX_Font font = QLX_FontMap::RetrieveFont(kFont_Interface, kFontSelect_Plain);
    std::vector<std::string> lines = Lines(a);
    const std::vector<std::string> others = Lines(b);
    lines.resize(std::max(lines.size(), others.size()));
    std::string text;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        QLX_TextMeasure& measure = QLX_TextMeasure::Get();
        const bool other = i < others.size() && measure.MeasureWidth(font, others[i]) >
                                                    measure.MeasureWidth(font, lines[i]);
        text += (i == 0 ? "" : "\n") + (other ? others[i] : lines[i]);
    }
    return text;
}

/// Texts that stand in the description itself for one language take part as English ones.
void WidenOwnTexts(QLX_RawPropertyContainer& container) {
    struct Text {
        QLX_PropertyFilter mFilter;
        std::string mName;
        std::string mText;
    };
    std::vector<Text> texts;
    for (const auto& [filter, set] : container.GetFilterPropertyMap())
        for (std::size_t i = 0; i < set.GetCount() && !filter["Language"].empty(); ++i)
            if (set.GetAt(i).mType == qlx_PropType_String)
                texts.push_back(
                    {filter, std::string(set.GetAt(i).mName), std::string(set.GetAt(i).mText)});
    for (const Text& text : texts) {
        const QLX_PropertyFilter english(std::map<std::string, std::string>{
            {"Layout", text.mFilter["Layout"]}, {"Language", ""}});
        std::string present;
        container.SetCurrentFilter(english);
        if (container.GetStringProperty(text.mName, present))
            container.SetStringProperty(text.mName, Wider(present, text.mText), english);
    }
}
} // namespace

std::string Look::GetLayoutName() const { return mLayout.empty() ? "Default" : mLayout; }

std::string Look::GetLanguageName() const {
    return mWidest ? kWidest : QLX_Language::GetFileCode(mLanguage);
}

std::string Look::GetThemeName() const { return kThemeNames[mTheme]; }

std::string Look::GetLabel() const {
    return GetLayoutName() + ", " + GetLanguageName() + ", " + GetThemeName() + ", " +
           ScaleText(mScale) + "x";
}

std::string ScaleText(int scale) {
    char text[24];
    std::snprintf(text, sizeof text, "%g", std::round(scale / 1.2) / 100);
    return text;
}

void LookOptions::AddTo(CLI::App& command, bool themes) {
    command.add_option("--layout", mLayouts, "Default, or a layout of the description, or all")
        ->delimiter(',')
        ->allow_extra_args(false);
    command
        .add_option("--language", mLanguages,
                    "ENU, DEU, ..., all, or widest (each text the widest of all languages)")
        ->delimiter(',')
        ->allow_extra_args(false);
    if (themes)
        command
            .add_option("--theme", mThemes, "light, dark, light-contrast, dark-contrast, or all")
            ->delimiter(',')
            ->allow_extra_args(false);
    command.add_option("--scale", mScales, "Device pixels for a logical one, 1 to 3")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CLI::Range(1.0, 3.0));
}

std::vector<std::string> FindLayouts(const Description& description) {
    std::set<std::string> layouts = FindAttributes(description, "Layout");
    layouts.erase("Default"); // nobody can select it
    layouts.insert("");
    return {layouts.begin(), layouts.end()};
}

std::vector<QLX_Language::ELanguage> FindLanguages(const Description& description) {
    std::set<QLX_Language::ELanguage> languages{QLX_Language::English};
    for (const auto& [language, table] : description.GetMemento().GetStringTables())
        languages.insert(language);
    for (const std::string& code : FindAttributes(description, "Language")) {
        QLX_Language::ELanguage language = QLX_Language::English;
        if (QLX_Language::FindLanguage(code, language))
            languages.insert(language);
    }
    return {languages.begin(), languages.end()};
}

QLX_PropertyFilter ChooseFilter(const Description& description, const std::string& layout,
                                const std::string& language) {
    QLX_Language::ELanguage chosen = QLX_Language::English;
    if (!QLX_Language::FindLanguage(language, chosen))
        Refuse(description, "language", language, GetLanguageCodes());
    // "all" stands for several in a list of looks; here it is a name like another.
    const std::vector<std::string> known = FindLayouts(description);
    const std::string name = layout == "Default" ? std::string() : layout;
    if (std::find(known.begin(), known.end(), name) == known.end())
        RefuseLayout(description, layout, known);
    return QLX_PropertyFilter::MakeFilter(name, chosen);
}

std::vector<Look> ChooseLooks(const Description& description, const LookOptions& options) {
    const auto layouts = ChooseLayouts(description, options.mLayouts);
    const auto languages = ChooseLanguages(description, options.mLanguages);
    const auto themes = ChooseThemes(description, options.mThemes);
    const auto scales = options.mScales.empty() ? std::vector<double>{1} : options.mScales;
    std::vector<Look> looks;
    for (const std::string& layout : layouts)
        for (const EThemeVariant theme : themes)
            for (const double scale : scales)
                for (Look look : languages) {
                    look.mLayout = layout;
                    look.mTheme = theme;
                    look.mScale = static_cast<int>(std::lround(scale * 120));
                    looks.push_back(look);
                }
    return looks;
}

int CountColumns(const std::vector<Look>& looks) {
    std::size_t count = 0;
    while (count < looks.size() && looks[count].mLayout == looks[0].mLayout &&
           looks[count].mTheme == looks[0].mTheme && looks[count].mScale == looks[0].mScale)
        ++count;
    if (count < 2)
        count = static_cast<std::size_t>(std::ceil(std::sqrt(static_cast<double>(looks.size()))));
    return static_cast<int>(count);
}

void TakeWidestTexts(Description& description) {
    QLX_ViewMemento::StringTables& tables = description.GetMemento().GetStringTables();
    QLX_StringTable widest;
    for (const auto& [language, table] : tables)
        for (const auto& [key, entry] : table) {
            QLX_StringTableEntry& into = widest[key];
            into.mLocalized = Wider(into.mLocalized, entry.mLocalized);
        }
    tables[QLX_Language::English] = std::move(widest);
    ForEachContainer(*description.GetRoot(), WidenOwnTexts);
}
