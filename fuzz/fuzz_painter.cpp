// Bytes played as painter calls on a small canvas: no write beyond it, nothing drawn once the
// target is gone, and a recording of the same calls reads back as it was printed.

#include <cstdio>
#include <cstdlib>

#include "basekit/cmn/cmn_assert.h"
#include "tests/support/painter_player.h"

// Fontconfig keeps a little for as long as the process lives.
extern "C" [[gnu::visibility("default")]] const char* __lsan_default_suppressions() {
    return "leak:libfontconfig\n";
}

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    Cmn_SetAssertionHandler([](const char*, const char*, int) {});
    const std::string broken =
        BrokenPainterLaw(std::string_view(reinterpret_cast<const char*>(data), size));
    if (!broken.empty()) {
        std::fprintf(stderr, "%s\n", broken.c_str());
        std::abort();
    }
    return 0;
}
