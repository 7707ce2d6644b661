// Pixels laid down in rows against the plainest loop that says what they should be.

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>
#include <vector>

#include "basekit/sys/sys_processor.h"
#include "qlx/imaging/qlx_spans.h"
#include "tests/support/seeds.h"

namespace {

using Rect = Cmn_Rect<int>;

struct Canvas {
    std::vector<std::uint32_t> memory;
    QLX_Surface surface;
    Canvas(int width, int height, bool hasAlpha, std::mt19937& random)
        : memory(std::size_t(width + 3) * std::size_t(height)) {
        for (std::uint32_t& pixel : memory)
            pixel = Pixel(random, hasAlpha);
        surface = {memory.data(), width, height, width + 3, hasAlpha};
    }
    // Premultiplied where there is alpha; else the top byte is nobody's business.
    static std::uint32_t Pixel(std::mt19937& random, bool hasAlpha) {
        std::uint32_t pixel = random();
        if (!hasAlpha)
            return pixel;
        const std::uint32_t alpha = pixel >> 24;
        for (int shift = 0; shift < 24; shift += 8)
            if ((pixel >> shift & 255) > alpha)
                pixel = (pixel & ~(255U << shift)) | alpha << shift;
        return pixel;
    }
};

// One byte of what the header promises: color by weight of 0 to 256 over what is there.
std::uint32_t LaidOver(std::uint32_t d, std::uint32_t color, unsigned coverage, unsigned alpha,
                       bool hasAlpha) {
    const unsigned share = (coverage * alpha * 2 + 255) / 510; // / 255, rounded
    const unsigned weight = share + (share >= 128 ? 1 : 0);
    if (weight == 0)
        return d;
    if (!hasAlpha)
        d |= 0xFF000000;
    std::uint32_t out = 0;
    for (int shift = 0; shift < 32; shift += 8)
        out |= (((d >> shift & 255) * (256 - weight) + (color >> shift & 255) * weight + 128) >> 8)
               << shift;
    return out;
}

// Where the top byte does not count, a pixel that is laid over by nothing may have it set.
std::uint32_t Counted(std::uint32_t pixel, bool hasAlpha) {
    return hasAlpha ? pixel : pixel | 0xFF000000;
}

std::string Difference(const std::vector<std::uint32_t>& is,
                       const std::vector<std::uint32_t>& should, bool hasAlpha, int row) {
    for (std::size_t i = 0; i < is.size(); ++i)
        if (Counted(is[i], hasAlpha) != Counted(should[i], hasAlpha)) {
            std::ostringstream out;
            out << "at " << i % std::size_t(row) << ", " << i / std::size_t(row) << ": " << std::hex
                << is[i] << " instead of " << should[i];
            return out.str();
        }
    return "";
}

class WideSpans {
  public:
    explicit WideSpans(bool use) : mBefore(QLX_UseWideSpans(use)) {}
    ~WideSpans() { QLX_UseWideSpans(mBefore); }
    WideSpans(const WideSpans&) = delete;
    WideSpans& operator=(const WideSpans&) = delete;

  private:
    bool mBefore;
};

TEST(Spans, OpaqueRowsAreStoredExactlyAtEveryWidthAndPlace) {
    std::mt19937 random(1);
    for (int width = 1; width <= 75; ++width)
        for (const int left : {0, 1, 2, 3, 5, 8}) {
            Canvas canvas(90, 4, false, random);
            std::vector<std::uint32_t> should = canvas.memory;
            for (int y = 1; y < 3; ++y)
                for (int x = left; x < left + width; ++x)
                    should[std::size_t(y * canvas.surface.rowPixels + x)] = 0xFF123456;
            QLX_SpanPaint paint;
            paint.color = 0xFF123456;
            QLX_FillSpans(canvas.surface, Rect(left, 1, left + width, 3), paint);
            ASSERT_EQ(canvas.memory, should) << width << " pixels from " << left;
        }
}

struct MaskCase {
    int width, left, surfaceWidth;
    unsigned alpha;
    bool hasAlpha, padded;
    friend std::ostream& operator<<(std::ostream& out, const MaskCase& c) {
        return out << c.width << " pixels from " << c.left << " of " << c.surfaceWidth << ", alpha "
                   << c.alpha << (c.hasAlpha ? ", with alpha" : "") << (c.padded ? ", padded" : "");
    }
};

std::string BrokenMask(const MaskCase& c, unsigned seed) {
    std::mt19937 random(seed);
    constexpr int kRows = 5;
    Canvas canvas(c.surfaceWidth, kRows, c.hasAlpha, random);
    const int pitch = (c.width + 3) / 4 * 4;
    // Exactly as many bytes as may be read, so that a sanitizer sees one more.
    std::vector<std::uint8_t> mask(std::size_t(c.padded ? pitch : c.width) * kRows);
    const int row = int(mask.size()) / kRows;
    for (int y = 0; y < kRows; ++y)
        for (int x = 0; x < c.width; ++x) {
            const unsigned kind = random() % 4; // empty and full ones have ways of their own
            mask[std::size_t(y * row + x)] = std::uint8_t(kind == 0   ? 0
                                                          : kind == 1 ? 255
                                                                      : random());
        }
    if (seed % 3 == 0)
        std::fill(mask.begin(), mask.begin() + c.width, std::uint8_t(seed % 2 ? 255 : 0));
    QLX_SpanPaint paint;
    paint.color = random() | 0xFF000000;
    paint.alpha = c.alpha;
    std::vector<std::uint32_t> should = canvas.memory;
    for (int y = 0; y < kRows; ++y)
        for (int x = 0; x < c.width; ++x) {
            std::uint32_t& pixel = should[std::size_t(y * canvas.surface.rowPixels + c.left + x)];
            pixel =
                LaidOver(pixel, paint.color, mask[std::size_t(y * row + x)], c.alpha, c.hasAlpha);
        }
    QLX_MaskSpans(canvas.surface, Rect(c.left, 0, c.left + c.width, kRows), mask.data(), row, paint,
                  c.padded);
    return Difference(canvas.memory, should, c.hasAlpha, canvas.surface.rowPixels);
}

TEST(Spans, MasksAreLaidDownByteForByteWithAnyInstructions) {
    for (const bool wide : {false, true}) {
        const WideSpans use(wide);
        unsigned seed = 0;
        for (int width = 1; width <= 27; ++width)
            for (const unsigned alpha : {255U, 254U, 128U, 127U, 1U, 0U})
                for (const bool hasAlpha : {false, true})
                    for (const bool padded : {false, true})
                        for (const int beyond : {0, 1, 2, 3, 9}) {
                            const MaskCase c{width, int(seed % 6), width + int(seed % 6) + beyond,
                                             alpha, hasAlpha,      padded};
                            ASSERT_EQ(BrokenMask(c, ++seed), "")
                                << c << (wide ? ", wide" : "") << ", seed " << seed;
                        }
    }
}

TEST(Spans, WideInstructionsAreUsedWhereTheProcessorHasThem) {
    const WideSpans use(true);
    const bool used = QLX_UseWideSpans(true);
    if (used) {
        EXPECT_TRUE(Sys_HasAVX2());
    }
    EXPECT_EQ(QLX_UseWideSpans(false), used);
    EXPECT_FALSE(QLX_UseWideSpans(true));
}

// Each mode's colour of one pixel, a byte at a time.
unsigned CombinedByte(EPenMode mode, unsigned d, unsigned s) {
    switch (mode) {
    case kPenMode_Or:
        return d | s;
    case kPenMode_Xor:
        return d ^ s;
    case kPenMode_Bic:
        return d & ~s & 255;
    case kPenMode_NotCopy:
        return 255 - s;
    case kPenMode_NotOr:
        return d | (255 - s);
    case kPenMode_NotXor:
        return d ^ (255 - s);
    case kPenMode_NotBic:
        return d & s;
    case kPenMode_Blend:
        return (d + s + 1) / 2;
    case kPenMode_Add:
        return std::min(255U, d + s);
    case kPenMode_Subtract:
        return d > s ? d - s : 0;
    case kPenMode_Maximum:
        return std::max(d, s);
    case kPenMode_Minimum:
        return std::min(d, s);
    default:
        return s;
    }
}

TEST(Spans, EveryModeOnAnOpaqueSurfaceIsWhatItsNameSays) {
    std::mt19937 random(7);
    for (int number = 0; number < kPenMode_Count; ++number) {
        const auto mode = EPenMode(number);
        Canvas canvas(40, 3, false, random);
        QLX_SpanPaint paint;
        paint.color = random() | 0xFF000000;
        paint.mode = mode;
        std::vector<std::uint32_t> should = canvas.memory;
        for (int y = 0; y < 3; ++y)
            for (int x = 1; x < 38; ++x) {
                std::uint32_t& pixel = should[std::size_t(y * canvas.surface.rowPixels + x)];
                std::uint32_t out = 0xFF000000;
                for (int shift = 0; shift < 24; shift += 8)
                    out |= CombinedByte(mode, pixel >> shift & 255, paint.color >> shift & 255)
                           << shift;
                pixel = out;
            }
        QLX_FillSpans(canvas.surface, Rect(1, 0, 38, 3), paint);
        EXPECT_EQ(Difference(canvas.memory, should, false, canvas.surface.rowPixels), "")
            << "mode " << number;
    }
}

TEST(Spans, PremultipliedPixelsStayPremultiplied) {
    for (unsigned seed = 1; seed <= SeedsToTry(300); ++seed) {
        std::mt19937 random(seed);
        Canvas canvas(24, 2, true, random);
        QLX_SpanPaint paint;
        paint.color = random() | 0xFF000000;
        paint.background = random() | 0xFF000000;
        paint.alpha = random() % 256;
        paint.backgroundAlpha = random() % 256;
        paint.mode = EPenMode(random() % kPenMode_Count);
        paint.pattern = QLX_GetPatternCell(EPenPattern(random() % kPenPattern_Count));
        paint.cell = 1 + int(random() % 3);
        const Rect all(0, 0, 24, 2);
        std::vector<std::uint8_t> mask(48);
        for (std::uint8_t& coverage : mask)
            coverage = std::uint8_t(random());
        switch (random() % 4) {
        case 0:
            QLX_FillSpans(canvas.surface, all, paint);
            break;
        case 1:
            QLX_MaskSpans(canvas.surface, all, mask.data(), 24, paint, false);
            break;
        case 2:
            QLX_InvertSpans(canvas.surface, all);
            break;
        default:
            QLX_BlendSpans(canvas.surface, all, paint.color, paint.alpha,
                           QLX_Painter::EBlendMode(random() % 5));
        }
        for (const std::uint32_t pixel : canvas.memory)
            for (int shift = 0; shift < 24; shift += 8)
                ASSERT_LE(pixel >> shift & 255, pixel >> 24) << "seed " << seed;
    }
}

TEST(Spans, ColumnsAreFilledRowByRowAsTheyWouldBeOneByOne) {
    for (unsigned seed = 1; seed <= SeedsToTry(200); ++seed) {
        std::mt19937 random(seed);
        constexpr int kWide = 150, kHigh = 24;
        Canvas canvas(kWide, kHigh, seed % 2 == 0, random);
        const Rect rect(int(random() % 20), int(random() % 5), kWide - int(random() % 20),
                        kHigh - int(random() % 5));
        const int count = 1 + int(random() % 140), columnWidth = 1 + int(random() % 3);
        const int x = int(random() % 60) - 30;
        std::vector<int> tops, bottoms;
        for (int i = 0; i < count; ++i) {
            tops.push_back(int(random() % 40) - 8);
            bottoms.push_back(random() % 6 == 0 ? -1000 : tops.back() + int(random() % 30));
        }
        QLX_SpanPaint paint;
        paint.color = random() | 0xFF000000;
        paint.alpha = seed % 3 == 0 ? 100 : 255;
        std::vector<std::uint32_t> should = canvas.memory;
        for (int i = 0; i < count; ++i)
            for (int y = rect.top; y < rect.bottom; ++y)
                for (int column = x + i * columnWidth; column < x + (i + 1) * columnWidth; ++column)
                    if (y >= tops[std::size_t(i)] && y < bottoms[std::size_t(i)] &&
                        column >= rect.left && column < rect.right) {
                        Canvas one(1, 1, canvas.surface.hasAlpha, random);
                        std::uint32_t& pixel =
                            should[std::size_t(y * canvas.surface.rowPixels + column)];
                        *one.surface.pixels = pixel;
                        QLX_FillSpans(one.surface, Rect(0, 0, 1, 1), paint);
                        pixel = *one.surface.pixels;
                    }
        std::vector<int> scratch(std::size_t(4 * ((count + 31) / 32)));
        QLX_FillColumns(canvas.surface, rect, x, count, tops.data(), bottoms.data(), columnWidth,
                        paint, scratch.data());
        ASSERT_EQ(canvas.memory, should) << "seed " << seed;
    }
}

TEST(Spans, StretchedPicturesLookAtTheirPartOnly) {
    for (unsigned seed = 1; seed <= SeedsToTry(300); ++seed) {
        std::mt19937 random(seed);
        const int width = 1 + int(random() % 12), height = 1 + int(random() % 12);
        // One colour within the part, another around it that must not bleed in.
        const Rect part(3, 2, 3 + width, 2 + height);
        std::vector<std::uint32_t> picture(20 * 20, 0xFFFF00FF);
        for (int y = part.top; y < part.bottom; ++y)
            for (int x = part.left; x < part.right; ++x)
                picture[std::size_t(y * 20 + x)] = 0xFF204060;
        const int left = int(random() % 50) - 25, top = int(random() % 50) - 25;
        const Rect to(left, top, left + 1 + int(random() % 40), top + 1 + int(random() % 40));
        std::vector<std::uint32_t> out(std::size_t(to.GetWidth()) * std::size_t(to.GetHeight()));
        QLX_ScalePixels(picture.data(), 20, part, to, to, out.data(), to.GetWidth());
        for (const std::uint32_t pixel : out)
            ASSERT_EQ(pixel, 0xFF204060) << "seed " << seed;
        // A piece alone is what it is in the whole.
        std::generate(picture.begin(), picture.end(), [&] { return Canvas::Pixel(random, true); });
        QLX_ScalePixels(picture.data(), 20, part, to, to, out.data(), to.GetWidth());
        const Rect piece(to.left + to.GetWidth() / 3, to.top + to.GetHeight() / 4, to.right,
                         to.bottom);
        std::vector<std::uint32_t> again(std::size_t(piece.GetWidth()) *
                                         std::size_t(piece.GetHeight()));
        QLX_ScalePixels(picture.data(), 20, part, to, piece, again.data(), piece.GetWidth());
        for (int y = piece.top; y < piece.bottom; ++y)
            for (int x = piece.left; x < piece.right; ++x)
                ASSERT_EQ(again[std::size_t((y - piece.top) * piece.GetWidth() + x - piece.left)],
                          out[std::size_t((y - to.top) * to.GetWidth() + x - to.left)])
                    << "seed " << seed;
        // At its own size a picture stays as it is.
        const Rect same(left, top, left + width, top + height);
        std::vector<std::uint32_t> copy(std::size_t(width) * std::size_t(height));
        QLX_ScalePixels(picture.data(), 20, part, same, same, copy.data(), width);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                ASSERT_EQ(copy[std::size_t(y * width + x)],
                          picture[std::size_t((y + 2) * 20 + x + 3)])
                    << "seed " << seed;
    }
}

TEST(Spans, CopiesWeighAlphaTwiceAndLeaveTheBackgroundOut) {
    std::mt19937 random(3);
    const struct {
        const char* why;
        std::uint32_t there, source;
        EPenMode mode;
        unsigned alpha;
        bool opaque;
        std::uint32_t is;
    } rows[] = {
        {"opaque over anything", 0xFF102030, 0xFF405060, kPenMode_Copy, 255, false, 0xFF405060},
        {"nothing over anything", 0xFF102030, 0x00000000, kPenMode_Copy, 255, false, 0xFF102030},
        {"half of white over black", 0xFF000000, 0x80808080, kPenMode_Copy, 255, false, 0xFF808080},
        {"half of an opaque one", 0xFF000000, 0xFFFFFFFF, kPenMode_Copy, 128, false, 0xFF808080},
        {"alpha that does not count", 0xFF000000, 0x00405060, kPenMode_Copy, 255, true, 0x00405060},
        {"the background colour", 0xFF102030, 0xFFFFFFFF, kPenMode_Transparent, 255, false,
         0xFF102030},
        {"another colour", 0xFF102030, 0xFF010203, kPenMode_Transparent, 255, false, 0xFF010203},
        {"inverted", 0xFF102030, 0xFF0000FF, kPenMode_NotCopy, 255, false, 0xFFFFFF00},
        {"added", 0xFF102030, 0xFFF00101, kPenMode_Add, 255, false, 0xFFFF2131},
    };
    for (const auto& row : rows) {
        Canvas canvas(5, 1, false, random);
        std::fill(canvas.memory.begin(), canvas.memory.end(), row.there);
        const std::vector<std::uint32_t> source(3, row.source);
        QLX_CopySpans(canvas.surface, Rect(1, 0, 4, 1), source.data(), 3, row.mode, row.alpha,
                      row.opaque, 0xFFFFFFFF);
        for (int x = 0; x < 5; ++x)
            EXPECT_EQ(Counted(canvas.memory[std::size_t(x)], false),
                      Counted(x >= 1 && x < 4 ? row.is : row.there, false))
                << row.why << ", pixel " << x;
    }
}

} // namespace
