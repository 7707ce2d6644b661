// What check finds, and the forms in which it is told.
#pragma once

#include <string>
#include <vector>

struct Finding {
    std::string mFile;
    int mLine = 0;
    int mColumn = 0;
    bool mError = false; ///< else a warning
    std::string mRule;   ///< a short name, the same for all findings of a kind
    std::string mText;
};

/// What check finds in one description and its string tables, by file and place.
[[nodiscard]] std::vector<Finding> CheckDescription(const std::string& path);

/// "file:line:column: error: text [rule]", a line each.
[[nodiscard]] std::string FindingsAsText(const std::vector<Finding>& findings);
/// An array of objects.
[[nodiscard]] std::string FindingsAsJSON(const std::vector<Finding>& findings);
/// SARIF 2.1.0 (OASIS), one run.
[[nodiscard]] std::string FindingsAsSARIF(const std::vector<Finding>& findings);

/// The text as JSON writes it, quotes included.
[[nodiscard]] std::string QuotedJSON(const std::string& text);
