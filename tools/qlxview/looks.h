// Looks: the combinations of layout, language, theme and scale in which a description is shown, and
// the options that choose them.
#pragma once

#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "description.h"
#include "qlx/imaging/qlx_themecolor.h"
#include "qlx/persistence/qlx_language.h"

struct Look {
    std::string mLayout; ///< "" is the common one
    QLX_Language::ELanguage mLanguage = QLX_Language::English;
    bool mWidest = false; ///< every text is the widest of all languages; mLanguage is English
    EThemeVariant mTheme = kTheme_Light;
    int mScale = 120; ///< 120ths

    /// "Default", "Compact", ...
    [[nodiscard]] std::string GetLayoutName() const;
    /// "ENU", "DEU", ..., "widest"
    [[nodiscard]] std::string GetLanguageName() const;
    [[nodiscard]] std::string GetThemeName() const;
    /// "Compact, DEU, dark, 1.25x"
    [[nodiscard]] std::string GetLabel() const;
};

/// "1.25"
[[nodiscard]] std::string ScaleText(int scale);

/// What the command line says; an empty list means the first of each, "all" all there are.
struct LookOptions {
    std::vector<std::string> mLayouts;
    std::vector<std::string> mLanguages;
    std::vector<std::string> mThemes;
    std::vector<double> mScales;

    void AddTo(CLI::App& command, bool themes = true);
};

/// "" first, the others by name.
[[nodiscard]] std::vector<std::string> FindLayouts(const Description& description);
/// English, and those that have a string table or values of their own.
[[nodiscard]] std::vector<QLX_Language::ELanguage> FindLanguages(const Description& description);

/// The combinations that the options choose, languages varying last. Throws std::runtime_error for
/// a layout, language, theme or scale that there is not.
[[nodiscard]] std::vector<Look> ChooseLooks(const Description& description,
                                            const LookOptions& options);

/// The filter of one layout ("" or "Default" is the common one) and one language, a code such as
/// "DEU" or "" for English. Throws as ChooseLooks does.
[[nodiscard]] QLX_PropertyFilter ChooseFilter(const Description& description,
                                              const std::string& layout,
                                              const std::string& language);

/// How many of them make a row of a contact sheet: the languages, else a square of all.
[[nodiscard]] int CountColumns(const std::vector<Look>& looks);

/// Replaces every text of a description by the widest that any language has for it, as English: for
/// finding boxes that are too small for some language, before its texts are final. Texts are
/// measured in the standard interface font, lists line by line.
void TakeWidestTexts(Description& description);
