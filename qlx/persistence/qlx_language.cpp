#include "qlx/persistence/qlx_language.h"

#include "basekit/cmn/cmn_assert.h"
#include "qlx/persistence/qlx_propertyfilter.h"

namespace {
QLX_Language::ELanguage gCurrentLanguage = QLX_Language::English;

constexpr const char* kCodes[QLX_Language::kLanguageCount] = {"",    "JPN", "KOR", "CHS", "CHT",
                                                              "FRA", "ITA", "DEU", "ESP"};
constexpr const char* kEnglishFileCode = "ENU";
} // namespace

void QLX_Language::SetCurrentLanguage(ELanguage language) {
    if (language == gCurrentLanguage)
        return;
    gCurrentLanguage = language;
    QLX_PropertyFilter::UpdateDefaultFilter();
}

QLX_Language::ELanguage QLX_Language::GetCurrentLanguage() { return gCurrentLanguage; }

std::string QLX_Language::EnumToString(ELanguage language) {
    return language >= 0 && language < kLanguageCount ? kCodes[language] : "";
}

bool QLX_Language::FindLanguage(const std::string& code, ELanguage& language) {
    if (code == kEnglishFileCode) {
        language = English;
        return true;
    }
    for (int i = 0; i < kLanguageCount; ++i) {
        if (code == kCodes[i]) {
            language = static_cast<ELanguage>(i);
            return true;
        }
    }
    return false;
}

QLX_Language::ELanguage QLX_Language::StringToEnum(const std::string& code) {
    ELanguage language = English;
    if (!FindLanguage(code, language))
        CMN_ASSERT(false && "Invalid language");
    return language;
}

std::string QLX_Language::GetFileCode(ELanguage language) {
    return language == English ? kEnglishFileCode : EnumToString(language);
}

StCurrentLanguage::StCurrentLanguage(QLX_Language::ELanguage language)
    : mPrevious(QLX_Language::GetCurrentLanguage()) {
    QLX_Language::SetCurrentLanguage(language);
}

StCurrentLanguage::~StCurrentLanguage() { QLX_Language::SetCurrentLanguage(mPrevious); }
