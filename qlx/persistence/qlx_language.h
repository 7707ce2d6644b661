// The language that the user interface speaks.
#pragma once

#include <string>

#include "basekit/cmn/cmn_types.h"

/// The process-wide current language. User-interface thread.
class QLX_API QLX_Language {
  public:
    enum ELanguage : std::int32_t {
        English = 0, ///< the base language: its code is empty
        Japanese = 1,
        Korean = 2,
        SimplifiedChinese = 3,
        TraditionalChinese = 4,
        French = 5,
        Italian = 6,
        German = 7,
        Spanish = 8,
    };
    static constexpr int kLanguageCount = 9;

    /// A change brings the default property filter up to date; containers keep what they selected.
    static void SetCurrentLanguage(ELanguage language);
    [[nodiscard]] static ELanguage GetCurrentLanguage();
    /// The three-letter code; empty for English.
    [[nodiscard]] static std::string EnumToString(ELanguage language);
    /// The language of a code, letter case included; an empty text and "ENU" are English. Any other
    /// text raises an assertion and is English.
    [[nodiscard]] static ELanguage StringToEnum(const std::string& code);
    /// As StringToEnum, but answers false for an unknown code instead of the assertion.
    [[nodiscard]] static bool FindLanguage(const std::string& code, ELanguage& language);
    /// The code that stands in file names: "ENU" for English.
    [[nodiscard]] static std::string GetFileCode(ELanguage language);
};

/// Makes a language current and brings back the previous one. Descriptions are read with English
/// current, because attributes of start tags are stored under the default filter:
///     StCurrentLanguage english(QLX_Language::English);
class QLX_API StCurrentLanguage {
  public:
    explicit StCurrentLanguage(QLX_Language::ELanguage language);
    ~StCurrentLanguage();
    StCurrentLanguage(const StCurrentLanguage&) = delete;
    StCurrentLanguage& operator=(const StCurrentLanguage&) = delete;

  private:
    QLX_Language::ELanguage mPrevious;
};
