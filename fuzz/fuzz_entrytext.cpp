// Bytes as a user at a numeric entry field: the first chooses the format, each pair after it is a
// deed.
#include <cstdio>
#include <cstdlib>

#include "tests/support/entry_monkey.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    if (size < 3)
        return 0;
    constexpr std::size_t shapes = sizeof cEntryShapes / sizeof cEntryShapes[0];
    EntryMonkey monkey(cEntryShapes[data[0] % shapes]);
    for (std::size_t at = 1; at + 1 < size && at < 4096; at += 2) {
        monkey.Do(data[at], data[at + 1]);
        const std::string complaint = monkey.Complaint();
        if (!complaint.empty()) {
            std::fprintf(stderr, "%s at byte %zu\n", complaint.c_str(), at);
            std::abort();
        }
    }
    // The second half of the bytes once more, as a paste.
    monkey.GetField()->PasteText(
        std::string(reinterpret_cast<const char*>(data) + size / 2, size - size / 2));
    if (!monkey.Complaint().empty())
        std::abort();
    return 0;
}
