// Any bytes as a theme: an error with a place that changes nothing, or a theme whose own text reads
// back to the same colours.
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

#include "qlx/imaging/qlx_themecolor.h"

namespace {
[[noreturn]] void Complain(const char* what) {
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    QLX_Theme::Reset();
    const std::string before = QLX_Theme::AsText();
    try {
        QLX_Theme::LoadText(std::string_view(reinterpret_cast<const char*>(data), size), "fuzz");
    } catch (const std::runtime_error& error) {
        if (std::string(error.what()).rfind("fuzz:", 0) != 0)
            Complain("the error does not say where");
        if (QLX_Theme::AsText() != before)
            Complain("a theme that cannot be read changed something");
        return 0;
    }
    const std::string text = QLX_Theme::AsText();
    QLX_Theme::LoadText(text, "again");
    if (QLX_Theme::AsText() != text)
        Complain("the theme changed when it was written and read");
    return 0;
}
