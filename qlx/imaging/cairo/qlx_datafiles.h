// Where the library's own data files are.
#pragma once

#include <string>

#include "basekit/cmn/cmn_types.h"

/// The path of a file of the library's data folder, looked for in $QLX_DATA_DIR, in share/qlx
/// beside the folder that the library was installed in, and in data/ of the source folder that it
/// was built in; "" when it is in none.
[[nodiscard]] QLX_API std::string QLX_FindDataFile(const std::string& name);
