// Any bytes as a play script: looked through without a window, each mistake with its place.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "qlx/platform/testing/qlx_playscript.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    for (const std::string& mistake : QLX_PlayScript::Check(text, "fuzz.play")) {
        int line = 0;
        if (std::sscanf(mistake.c_str(), "fuzz.play:%d", &line) != 1 || line < 1) {
            std::fprintf(stderr, "a mistake without a place: %s\n", mistake.c_str());
            std::abort();
        }
    }
    return 0;
}
