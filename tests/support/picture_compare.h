// Pictures against the ones that were looked at and kept.
#pragma once

#include <gtest/gtest.h>

#include <string>

#include "qlx/imaging/qlx_image.h"

/// Compares a picture with tests/golden/NAME.png: no channel of any pixel may differ by more than
/// tolerance. When one does, expected, actual and difference (times 8) are written side by side as
/// one PNG into the build folder, and the message says where. With QLX_UPDATE_GOLDEN set in the
/// environment the picture is kept instead.
[[nodiscard]] ::testing::AssertionResult MatchesGolden(const QLX_Image& actual,
                                                       const std::string& name, int tolerance = 0);

/// The same for two pictures at hand; name is the failure picture's.
[[nodiscard]] ::testing::AssertionResult SamePictures(const QLX_Image& actual,
                                                      const QLX_Image& expected,
                                                      const std::string& name, int tolerance = 0);
