// How far tests with random users and random values go.
#pragma once

#include <cstdlib>

/// Seeds to try: a few in every run, and a hundred times as many when QLX_LONG_TESTS is set, as
/// ./dev test --long does.
[[nodiscard]] inline unsigned SeedsToTry(unsigned usual) {
    return std::getenv("QLX_LONG_TESTS") ? usual * 100 : usual;
}
