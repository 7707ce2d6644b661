#include <gtest/gtest.h>

#include "tests/support/assertion_catcher.h"

int main(int argc, char** argv) {
    ::testing::InitGoogleTest(&argc, argv);
    AssertionCatcher::Install();
    return RUN_ALL_TESTS();
}
