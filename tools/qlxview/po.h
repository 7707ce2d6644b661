// Translations in gettext's PO format, which translators' own tools read and write.
// Source of the format: the GNU gettext manual, "The Format of PO Files".
#pragma once

#include <string>
#include <string_view>
#include <vector>

struct POEntry {
    std::string mContext;  ///< msgctxt: the string table's key
    std::string mSource;   ///< msgid: the English text
    std::string mText;     ///< msgstr
    std::string mPrevious; ///< "#| msgid": the English text that was translated
    bool mHasPrevious = false;
    bool mFuzzy = false;              ///< the translation is to be looked at again
    std::vector<std::string> mNotes;  ///< "#. " lines: comments for the translator
    std::vector<std::string> mPlaces; ///< "#: " references
    int mLine = 0;                    ///< where it was read
};

/// A whole file for one language, which is a locale's name ("de", "zh_CN").
[[nodiscard]] std::string WritePO(const std::vector<POEntry>& entries, const std::string& language,
                                  const std::string& project);

/// All entries but the header and obsolete ones. Throws std::runtime_error ("file:line: reason").
[[nodiscard]] std::vector<POEntry> ReadPO(std::string_view text, const std::string& file);
