#include "tests/support/picture_compare.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

namespace {

[[nodiscard]] int Difference(std::uint32_t a, std::uint32_t b) {
    int worst = 0;
    for (int shift = 0; shift < 32; shift += 8)
        worst = std::max(worst, std::abs(int(a >> shift & 255) - int(b >> shift & 255)));
    return worst;
}

[[nodiscard]] std::uint32_t Magnified(std::uint32_t a, std::uint32_t b) {
    std::uint32_t out = 0xFF000000;
    for (int shift = 0; shift < 24; shift += 8)
        out |= std::uint32_t(
                   std::min(255, 8 * std::abs(int(a >> shift & 255) - int(b >> shift & 255))))
               << shift;
    if (Difference(a, b) != 0)
        out |= 0x00400000; // even the smallest difference shows
    return out;
}

// Expected, actual and difference beside each other.
[[nodiscard]] std::string WriteSideBySide(const QLX_Image& actual, const QLX_Image& expected,
                                          const std::string& name) {
    const int width = std::max(actual.GetWidth(), expected.GetWidth());
    const int height = std::max(actual.GetHeight(), expected.GetHeight());
    const QLX_Image::Ptr sheet = QLX_Image::Create(3 * width + 16, height);
    for (int y = 0; y < height; ++y) {
        std::uint32_t* row = sheet->GetWritablePixels() + std::size_t(y) * sheet->GetWidth();
        for (int x = 0; x < width; ++x) {
            row[x] = expected.GetPixel(x, y);
            row[x + width + 8] = actual.GetPixel(x, y);
            row[x + 2 * (width + 8)] = Magnified(actual.GetPixel(x, y), expected.GetPixel(x, y));
        }
    }
    sheet->PixelsChanged();
    const std::string path = std::string(QLX_TEST_OUTPUT) + "/" + name + "-difference.png";
    sheet->ToPNGFile(path);
    return path;
}

} // namespace

::testing::AssertionResult SamePictures(const QLX_Image& actual, const QLX_Image& expected,
                                        const std::string& name, int tolerance) {
    int worst = 0, count = 0, firstX = 0, firstY = 0;
    const bool sameSize =
        actual.GetWidth() == expected.GetWidth() && actual.GetHeight() == expected.GetHeight();
    for (int y = 0; sameSize && y < actual.GetHeight(); ++y)
        for (int x = 0; x < actual.GetWidth(); ++x) {
            const int difference = Difference(actual.GetPixel(x, y), expected.GetPixel(x, y));
            if (difference > tolerance && count++ == 0) {
                firstX = x;
                firstY = y;
            }
            worst = std::max(worst, difference);
        }
    if (sameSize && count == 0)
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure()
           << name << ": " << count << " pixels differ, the first at (" << firstX << ", " << firstY
           << "), by up to " << worst << "; sizes " << actual.GetWidth() << "x"
           << actual.GetHeight() << " and " << expected.GetWidth() << "x" << expected.GetHeight()
           << "; see " << WriteSideBySide(actual, expected, name);
}

::testing::AssertionResult MatchesGolden(const QLX_Image& actual, const std::string& name,
                                         int tolerance) {
    const std::string path = std::string(QLX_TEST_GOLDEN) + "/" + name + ".png";
    if (std::getenv("QLX_UPDATE_GOLDEN")) {
        actual.ToPNGFile(path);
        return ::testing::AssertionSuccess() << "kept as " << path;
    }
    try {
        const QLX_Image::Ptr expected = QLX_Image::FromPNGFile(path);
        return SamePictures(actual, *expected, name, tolerance);
    } catch (const std::runtime_error& error) {
        return ::testing::AssertionFailure() << error.what();
    }
}
