// Rows of pixels are laid down many at a time. Whatever the width, the place and the processor, the
// result has to be that of laying down every pixel by itself.
#include <gtest/gtest.h>

#include <array>
#include <random>
#include <vector>

#include "qlx/imaging/qlx_spans.h"

namespace {

constexpr int kWidth = 80;
constexpr int kHeight = 3;

/// Canvas pixels of any kind, premultiplied where there is alpha.
class Canvas {
  public:
    Canvas(std::mt19937& random, bool hasAlpha)
        : mSurface{mPixels.data(), kWidth, kHeight, kWidth, hasAlpha} {
        for (std::uint32_t& pixel : mPixels)
            pixel = Premultiplied(random, hasAlpha);
    }
    Canvas(const Canvas& other)
        : mPixels(other.mPixels), mSurface{mPixels.data(), kWidth, kHeight, kWidth,
                                           other.mSurface.hasAlpha} {}
    Canvas& operator=(const Canvas&) = delete;

    static std::uint32_t Premultiplied(std::mt19937& random, bool hasAlpha) {
        static constexpr std::array<unsigned, 4> kUsual{0, 255, 255, 128};
        const unsigned alpha = !hasAlpha           ? 255
                               : random() % 2 != 0 ? kUsual[random() % 4]
                                                   : random() % 256;
        std::uint32_t pixel = alpha << 24;
        for (int shift = 0; shift < 24; shift += 8)
            pixel |= std::uint32_t(random() % (alpha + 1)) << shift;
        return pixel;
    }
    const QLX_Surface& Get() const { return mSurface; }
    bool operator==(const Canvas& other) const { return mPixels == other.mPixels; }
    std::uint32_t At(int x, int y) const { return *mSurface.At(x, y); }

  private:
    std::array<std::uint32_t, std::size_t{kWidth} * kHeight> mPixels{};
    QLX_Surface mSurface;
};

/// Calls one(rect) for the rectangle in one canvas and for each of its pixels in another; both have
/// to come out the same.
template <class Operation>
void ExpectWholeIsItsPixels(const Canvas& begin, const Cmn_Rect<int>& rect, Operation operation) {
    Canvas whole(begin), single(begin);
    operation(whole.Get(), rect);
    for (int y = rect.top; y < rect.bottom; ++y)
        for (int x = rect.left; x < rect.right; ++x)
            operation(single.Get(), Cmn_Rect<int>(x, y, x + 1, y + 1));
    ASSERT_TRUE(whole == single) << rect.left << ' ' << rect.right;
    Canvas outside(whole); // with the rectangle as it was, nothing has changed
    for (int y = rect.top; y < rect.bottom; ++y)
        for (int x = rect.left; x < rect.right; ++x)
            *outside.Get().At(x, y) = begin.At(x, y);
    ASSERT_TRUE(outside == begin) << "outside of " << rect.left << ' ' << rect.right;
}

Cmn_Rect<int> SomeRect(std::mt19937& random) {
    const int left = int(random() % 24);
    const int width = 1 + int(random() % (kWidth - left));
    const int top = int(random() % kHeight);
    return {left, top, left + width, std::min(kHeight, top + 1 + int(random() % 2))};
}

QLX_SpanPaint SomePaint(std::mt19937& random, EPenMode mode) {
    static constexpr std::array<unsigned, 5> kAlphas{255, 255, 0, 128, 1};
    QLX_SpanPaint paint;
    paint.mode = mode;
    paint.color = random() | 0xFF000000;
    paint.alpha = random() % 3 == 0 ? random() % 256 : kAlphas[random() % 5];
    if (random() % 3 == 0) {
        paint.pattern = QLX_GetPatternCell(EPenPattern(random() % kPenPattern_Count));
        paint.background = random() | 0xFF000000;
        paint.backgroundAlpha = kAlphas[random() % 5];
        paint.cell = 1 + int(random() % 3);
        paint.phaseX = int(random() % 20) - 10;
        paint.phaseY = int(random() % 20) - 10;
    }
    return paint;
}

} // namespace

TEST(SpanLaws, FillsAreTheirPixelsInEveryMode) {
    std::mt19937 random(1);
    for (int mode = 0; mode < kPenMode_Count; ++mode)
        for (int turn = 0; turn < 60; ++turn) {
            SCOPED_TRACE(::testing::Message() << "mode " << mode << " turn " << turn);
            const Canvas canvas(random, turn % 2 != 0);
            const QLX_SpanPaint paint = SomePaint(random, EPenMode(mode));
            ExpectWholeIsItsPixels(canvas, SomeRect(random),
                                   [&](const QLX_Surface& surface, const Cmn_Rect<int>& rect) {
                                       QLX_FillSpans(surface, rect, paint);
                                   });
        }
}

TEST(SpanLaws, CopiesAreTheirPixelsInEveryMode) {
    std::mt19937 random(3);
    for (int mode = 0; mode < kPenMode_Count; ++mode)
        for (int turn = 0; turn < 60; ++turn) {
            SCOPED_TRACE(::testing::Message() << "mode " << mode << " turn " << turn);
            const bool opaque = turn % 3 == 0;
            const Canvas canvas(random, turn % 2 != 0), source(random, !opaque);
            const unsigned alpha = turn % 4 == 0 ? random() % 256 : 255;
            const std::uint32_t background = random() & 0xFFFFFF;
            ExpectWholeIsItsPixels(canvas, SomeRect(random),
                                   [&](const QLX_Surface& surface, const Cmn_Rect<int>& rect) {
                                       QLX_CopySpans(surface, rect,
                                                     source.Get().At(rect.left, rect.top), kWidth,
                                                     EPenMode(mode), alpha, opaque, background);
                                   });
        }
}

TEST(SpanLaws, ExchangesInversionsAndBlendsAreTheirPixels) {
    std::mt19937 random(4);
    for (int turn = 0; turn < 200; ++turn) {
        SCOPED_TRACE(turn);
        const Canvas canvas(random, turn % 2 != 0);
        const Cmn_Rect<int> rect = SomeRect(random);
        const std::uint32_t color = random() & 0xFFFFFF;
        const unsigned alpha = random() % 256;
        ExpectWholeIsItsPixels(canvas, rect, [](const QLX_Surface& s, const Cmn_Rect<int>& r) {
            QLX_InvertSpans(s, r);
        });
        ExpectWholeIsItsPixels(canvas, rect, [&](const QLX_Surface& s, const Cmn_Rect<int>& r) {
            QLX_ExchangeSpans(s, r, canvas.At(3, 1) & 0xFFFFFF, color);
        });
        for (int mode = 0; mode < 3; ++mode)
            ExpectWholeIsItsPixels(canvas, rect, [&](const QLX_Surface& s, const Cmn_Rect<int>& r) {
                QLX_BlendSpans(s, r, color, alpha, QLX_Painter::EBlendMode(mode));
            });
    }
}

TEST(SpanLaws, ColumnsAreTheirRectangles) {
    std::mt19937 random(6);
    for (int turn = 0; turn < 200; ++turn) {
        const Canvas canvas(random, turn % 2 != 0);
        Canvas columns(canvas), rectangles(canvas);
        QLX_SpanPaint paint = SomePaint(random, turn % 3 == 0 ? kPenMode_Add : kPenMode_Copy);
        paint.pattern = nullptr;
        const int width = 1 + int(random() % 3), count = kWidth / width;
        std::vector<int> tops(std::size_t(count) + 1), bottoms(tops.size());
        for (std::size_t i = 0; i < tops.size(); ++i) {
            tops[i] = int(random() % (kHeight + 2)) - 1;
            bottoms[i] = int(random() % (kHeight + 2)) - 1;
        }
        const Cmn_Rect<int> limit = SomeRect(random);
        std::vector<int> scratch(4 * ((std::size_t(count) + 31) / 32));
        QLX_FillColumns(columns.Get(), limit, 0, count, tops.data(), bottoms.data(), width, paint,
                        scratch.data());
        for (int i = 0; i < count; ++i) {
            const Cmn_Rect<int> column = Cmn_Rect<int>(i * width, tops[std::size_t(i)],
                                                       (i + 1) * width, bottoms[std::size_t(i)]) &
                                         limit;
            if (!column.Empty())
                QLX_FillSpans(rectangles.Get(), column, paint);
        }
        ASSERT_TRUE(columns == rectangles) << turn;
    }
}

// What grows is bilinear, what shrinks the mean; a flat picture stays flat and nothing beyond the
// part is looked at.
TEST(SpanLaws, ScalingLooksAtNothingBeyondThePart) {
    std::mt19937 random(7);
    for (int turn = 0; turn < 300; ++turn) {
        std::vector<std::uint32_t> picture(std::size_t{kWidth} * 20, 0xFFFF0000);
        const Cmn_Rect<int> part(3 + int(random() % 10), 2 + int(random() % 5),
                                 14 + int(random() % 40), 8 + int(random() % 10));
        for (int y = part.top; y < part.bottom; ++y)
            for (int x = part.left; x < part.right; ++x)
                picture[std::size_t(y) * kWidth + std::size_t(x)] = 0xFF204060;
        const Cmn_Rect<int> destination(-5, -7, 1 + int(random() % 90), 1 + int(random() % 30));
        const Cmn_Rect<int> wanted = destination & Cmn_Rect<int>(0, 0, 40, 20);
        if (wanted.Empty())
            continue;
        std::vector<std::uint32_t> out(std::size_t(wanted.GetWidth()) *
                                       std::size_t(wanted.GetHeight()));
        QLX_ScalePixels(picture.data(), kWidth, part, destination, wanted, out.data(),
                        wanted.GetWidth());
        for (const std::uint32_t pixel : out)
            ASSERT_EQ(pixel, 0xFF204060u) << turn;
    }
}
