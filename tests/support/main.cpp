#include <gtest/gtest.h>

#include <filesystem>

#include "tests/support/assertion_catcher.h"

// Fontconfig keeps the address of a pattern's values as a distance from the pattern, where the leak
// check cannot see that they are still in use. D-Bus, which SDL asks about the desktop, keeps its
// connection as long as the process lives.
extern "C" [[gnu::visibility("default")]] const char* __lsan_default_suppressions() {
    return "leak:libfontconfig\nleak:libdbus-1\n";
}

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    AssertionCatcher::Install();
    // Paths in tests are relative to the source folder, so that compiled tests are the same in
    // every checkout and a compiler cache can share them.
    std::filesystem::current_path(QLX_ROOT);
    return RUN_ALL_TESTS();
}
