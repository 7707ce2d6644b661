// String-table files: the localised texts of one language by key.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "basekit/sys/sys_file.h"
#include "qlx/persistence/qlx_persistence.h"

struct QLX_SourceProblem;

/// What a tool wants to know of a file beside the table.
struct QLX_StringTableNotes {
    /// Line and column of each key, both from 1.
    std::map<std::string, std::pair<int, int>> mPlaces;
    /// The comment lines before each key, without line ends; under the empty key those before the
    /// closing brace. The heading is not among them.
    std::map<std::string, std::vector<std::string>> mComments;
};

/// The file's text: a heading comment with the description's name, "{", a line a key in key order
/// (tab, key, the source text in quotes when there is one, the localised text in quotes), "}".
///
/// Inside quotes a double quote has a backslash before it. A backslash stands for itself, except in
/// a run of backslashes right before a double quote or the text's end, where each is doubled; so
/// every text is read back as it was. Throws std::runtime_error naming a key that has no written
/// form (empty, with a tab or a line end, beginning with "//") and a text that is no UTF-8. With
/// notes, comments stand where they stood; those of keys that are gone go, too.
[[nodiscard]] QLX_API std::string QLX_WriteStringTable(const QLX_StringTable& table,
                                                       const std::string& name, LineEndings endings,
                                                       const QLX_StringTableNotes* notes = nullptr);

/// Reads what QLX_WriteStringTable wrote; texts may span lines, lines that begin with "//" and
/// blank lines may stand anywhere between keys. Throws std::runtime_error ("file:line:column:
/// reason") for anything else. Of a key that stands twice the last one counts; problems, when
/// given, tells. Notes, when given, are filled.
[[nodiscard]] QLX_API QLX_StringTable QLX_ReadStringTable(
    std::string_view text, const std::string& file,
    std::vector<QLX_SourceProblem>* problems = nullptr, QLX_StringTableNotes* notes = nullptr);

/// The heading's name; empty when there is none.
[[nodiscard]] QLX_API std::string QLX_GetStringTableName(std::string_view text);
