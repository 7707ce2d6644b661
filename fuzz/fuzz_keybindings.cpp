// Key-binding files: any bytes are read without harm and written again as they were.

#include <cstdio>
#include <cstdlib>

#include "tests/support/key_binding_laws.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const std::string broken =
        BrokenKeyBindingLaw(std::string_view(reinterpret_cast<const char*>(data), size));
    if (!broken.empty()) {
        std::fprintf(stderr, "%s\n", broken.c_str());
        std::abort();
    }
    return 0;
}
