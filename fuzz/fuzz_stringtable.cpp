// Any bytes as a string table: an error with a place, or a table that the writer and reader agree
// on.
#include <cstdlib>
#include <stdexcept>

#include "qlx/persistence/qlx_stringtable.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    QLX_StringTable table;
    try {
        table = QLX_ReadStringTable(text, "fuzz.str");
    } catch (const std::runtime_error&) {
        return 0;
    }
    const std::string written = QLX_WriteStringTable(table, "fuzz", LineEndings::Windows);
    if (QLX_ReadStringTable(written, "again.str") != table)
        std::abort();
    return 0;
}
