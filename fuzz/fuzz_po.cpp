// Any bytes as a translator's PO file: an error with a line, or entries that are the same when they
// are written and read again.
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

#include "tools/qlxview/po.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    std::vector<POEntry> entries;
    try {
        entries = ReadPO(std::string_view(reinterpret_cast<const char*>(data), size), "fuzz.po");
    } catch (const std::runtime_error& error) {
        int line = 0;
        if (std::sscanf(error.what(), "fuzz.po:%d", &line) != 1) {
            std::fprintf(stderr, "an error without a line: %s\n", error.what());
            std::abort();
        }
        return 0;
    }
    const std::vector<POEntry> again = ReadPO(WritePO(entries, "de", "fuzz"), "again.po");
    bool same = again.size() == entries.size();
    for (std::size_t i = 0; same && i < again.size(); ++i)
        same = again[i].mContext == entries[i].mContext && again[i].mSource == entries[i].mSource &&
               again[i].mText == entries[i].mText && again[i].mFuzzy == entries[i].mFuzzy;
    if (!same) {
        std::fprintf(stderr, "the entries changed when they were written and read\n");
        std::abort();
    }
    return 0;
}
