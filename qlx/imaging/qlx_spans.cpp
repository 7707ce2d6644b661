#include "qlx/imaging/qlx_spans.h"

#include <algorithm>
#include <cstring>

#include "basekit/sys/sys_processor.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace {

constexpr std::uint32_t kColorMask = 0x00FFFFFF;
constexpr std::uint32_t kAlphaMask = 0xFF000000;

// x / 255, rounded, for x up to 255 * 255.
[[nodiscard]] constexpr unsigned Divide255(unsigned x) noexcept {
    x += 128;
    return (x + (x >> 8)) >> 8;
}

// All four bytes of a pixel times a weight of 0 to 255, rounded: two bytes to a multiplication.
[[nodiscard]] constexpr std::uint32_t Weighed(std::uint32_t pixel, unsigned weight) noexcept {
    std::uint32_t low = (pixel & 0x00FF00FF) * weight + 0x00800080;
    std::uint32_t high = (pixel >> 8 & 0x00FF00FF) * weight + 0x00800080;
    low = (low + (low >> 8 & 0x00FF00FF)) >> 8 & 0x00FF00FF;
    high = (high + (high >> 8 & 0x00FF00FF)) & 0xFF00FF00;
    return low | high;
}

// a by weight and b by the rest, added and rounded once, in all four bytes. The weight is stretched
// to 0 to 256, so that shifting divides and full weight is exact; a lane holds at most 255 * 256 +
// 128.
[[nodiscard]] constexpr std::uint32_t Mixed(std::uint32_t a, std::uint32_t b,
                                            unsigned weight) noexcept {
    weight += weight >> 7;
    const unsigned rest = 256 - weight;
    const std::uint32_t low = (a & 0x00FF00FF) * weight + (b & 0x00FF00FF) * rest + 0x00800080;
    const std::uint32_t high =
        (a >> 8 & 0x00FF00FF) * weight + (b >> 8 & 0x00FF00FF) * rest + 0x00800080;
    return (low >> 8 & 0x00FF00FF) | (high & 0xFF00FF00);
}

template <class Operation>
[[nodiscard]] std::uint32_t PerChannel(std::uint32_t a, std::uint32_t b,
                                       Operation operation) noexcept {
    std::uint32_t out = 0;
    for (int shift = 0; shift < 24; shift += 8)
        out |= std::uint32_t(operation(int(a >> shift & 255), int(b >> shift & 255))) << shift;
    return out;
}

// The colour that a mode makes of destination and source, both 0xRRGGBB.
[[nodiscard]] std::uint32_t Combined(EPenMode mode, std::uint32_t d, std::uint32_t s) noexcept {
    switch (mode) {
    case kPenMode_Or:
        return d | s;
    case kPenMode_Xor:
        return d ^ s;
    case kPenMode_Bic:
        return d & ~s;
    case kPenMode_NotCopy:
        return ~s & kColorMask;
    case kPenMode_NotOr:
        return (d | ~s) & kColorMask;
    case kPenMode_NotXor:
        return (d ^ ~s) & kColorMask;
    case kPenMode_NotBic:
        return d & s;
    case kPenMode_Blend:
        return PerChannel(d, s, [](int a, int b) { return (a + b + 1) / 2; });
    case kPenMode_Add:
        return PerChannel(d, s, [](int a, int b) { return std::min(255, a + b); });
    case kPenMode_Subtract:
        return PerChannel(d, s, [](int a, int b) { return std::max(0, a - b); });
    case kPenMode_Maximum:
        return PerChannel(d, s, [](int a, int b) { return std::max(a, b); });
    case kPenMode_Minimum:
        return PerChannel(d, s, [](int a, int b) { return std::min(a, b); });
    default:
        return s;
    }
}

// Whether a mode lays its source over what is there, so that transparent canvases gain alpha. The
// others only change colours that are there already.
[[nodiscard]] constexpr bool Covers(EPenMode mode) noexcept {
    return mode == kPenMode_Copy || mode == kPenMode_NotCopy || mode == kPenMode_Transparent ||
           mode == kPenMode_Blend;
}

// Colour bytes held to the alpha beside them.
[[nodiscard]] std::uint32_t HeldToAlpha(std::uint32_t pixel) noexcept {
    const std::uint32_t alpha = pixel >> 24;
    const auto held = [&](int shift) { return std::min(pixel >> shift & 255, alpha) << shift; };
    return (pixel & kAlphaMask) | held(16) | held(8) | held(0);
}

// One pixel in any mode: the source colour s (0xRRGGBB) laid down by weight.
[[nodiscard]] std::uint32_t Laid(EPenMode mode, std::uint32_t d, std::uint32_t s, unsigned weight,
                                 bool hasAlpha) noexcept {
    const std::uint32_t color = Combined(mode, d & kColorMask, s & kColorMask);
    if (!hasAlpha)
        return Mixed(kAlphaMask | color, kAlphaMask | d, weight);
    if (Covers(mode))
        return Mixed(kAlphaMask | color, d, weight);
    return HeldToAlpha((d & kAlphaMask) | Mixed(color, d & kColorMask, weight));
}

// Rows of one colour

void StoreRow(std::uint32_t* p, int count, std::uint32_t value) noexcept {
#if defined(__SSE2__)
    if (count >= 4) {
        const __m128i wide = _mm_set1_epi32(int(value));
        std::uint32_t* end = p + count;
        for (; p + 16 <= end; p += 16) {
            _mm_storeu_si128(reinterpret_cast<__m128i*>(p), wide);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(p + 4), wide);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(p + 8), wide);
            _mm_storeu_si128(reinterpret_cast<__m128i*>(p + 12), wide);
        }
        for (; p + 4 <= end; p += 4)
            _mm_storeu_si128(reinterpret_cast<__m128i*>(p), wide);
        if (p != end) // the last ones again, together with some already stored
            _mm_storeu_si128(reinterpret_cast<__m128i*>(end - 4), wide);
        return;
    }
#endif
    for (int i = 0; i < count; ++i)
        p[i] = value;
}

#if defined(__SSE2__)
// Eight 16-bit lanes x / 255, rounded.
[[nodiscard]] inline __m128i Divide255(__m128i x) noexcept {
    x = _mm_add_epi16(x, _mm_set1_epi16(128));
    return _mm_srli_epi16(_mm_add_epi16(x, _mm_srli_epi16(x, 8)), 8);
}
#endif

// d = source + d * rest / 255, with source premultiplied; order says which bytes of d count (alpha
// or not).
void OverRow(std::uint32_t* p, int count, std::uint32_t source, unsigned rest) noexcept {
    int i = 0;
#if defined(__SSE2__)
    const __m128i zero = _mm_setzero_si128();
    const __m128i wide = _mm_set1_epi32(int(source));
    const __m128i weight = _mm_set1_epi16(short(rest));
    for (; i + 4 <= count; i += 4) {
        __m128i d = _mm_loadu_si128(reinterpret_cast<__m128i*>(p + i));
        const __m128i low = Divide255(_mm_mullo_epi16(_mm_unpacklo_epi8(d, zero), weight));
        const __m128i high = Divide255(_mm_mullo_epi16(_mm_unpackhi_epi8(d, zero), weight));
        d = _mm_add_epi8(_mm_packus_epi16(low, high), wide);
        _mm_storeu_si128(reinterpret_cast<__m128i*>(p + i), d);
    }
#endif
    for (; i < count; ++i)
        p[i] = source + Weighed(p[i], rest);
}

void FillRow(std::uint32_t* p, int count, const QLX_SpanPaint& paint, bool hasAlpha) noexcept {
    if (paint.mode == kPenMode_Copy || paint.mode == kPenMode_Transparent) {
        if (paint.alpha == 255)
            StoreRow(p, count, paint.color);
        else if (hasAlpha)
            OverRow(p, count, Weighed(paint.color, paint.alpha), 255 - paint.alpha);
        else
            for (int i = 0; i < count; i += 64) { // the unused byte may hold anything: set it first
                const int part = std::min(64, count - i);
                for (int k = 0; k < part; ++k)
                    p[i + k] |= kAlphaMask;
                OverRow(p + i, part, Weighed(paint.color, paint.alpha), 255 - paint.alpha);
            }
        return;
    }
    if (paint.mode == kPenMode_Xor && paint.alpha == 255 && !hasAlpha) {
        const std::uint32_t flip = paint.color & kColorMask;
        for (int i = 0; i < count; ++i)
            p[i] = (p[i] ^ flip) | kAlphaMask;
        return;
    }
    for (int i = 0; i < count; ++i)
        p[i] = Laid(paint.mode, p[i], paint.color, paint.alpha, hasAlpha);
}

// One pixel of a patterned paint at a place of the window.
[[nodiscard]] std::uint32_t Patterned(std::uint32_t d, int x, int y, const QLX_SpanPaint& paint,
                                      unsigned coverage, bool hasAlpha) noexcept {
    const bool set =
        !paint.pattern ||
        (paint.pattern->rows[y / paint.cell & 7] >> (7 - (x / paint.cell & 7)) & 1) != 0;
    if (set)
        return Laid(paint.mode, d, paint.color, Divide255(paint.alpha * coverage), hasAlpha);
    if (paint.mode == kPenMode_Copy || paint.mode == kPenMode_NotCopy)
        return Laid(paint.mode, d, paint.background, Divide255(paint.backgroundAlpha * coverage),
                    hasAlpha);
    return d;
}

// Places of the window may be negative; the pattern repeats every 8 cells, so a whole number of
// them is added.
[[nodiscard]] int PatternPlace(int place, int cell) noexcept {
    const int period = 8 * cell;
    const int rest = place % period;
    return rest < 0 ? rest + period : rest;
}

void FillPatternedRow(std::uint32_t* p, int x, int y, int count, const QLX_SpanPaint& paint,
                      bool hasAlpha) noexcept {
    const int period = 8 * paint.cell;
    int px = PatternPlace(x, paint.cell);
    for (int i = 0; i < count; ++i) {
        p[i] = Patterned(p[i], px, y, paint, 255, hasAlpha);
        if (++px == period)
            px = 0;
    }
}

// Masks

// Covers one pixel with an opaque or half transparent colour by coverage, in mode Copy.
[[nodiscard]] inline std::uint32_t Covered(std::uint32_t d, std::uint32_t color, unsigned weight,
                                           bool hasAlpha) noexcept {
    if (!hasAlpha)
        d |= kAlphaMask;
    return Mixed(color, d, weight);
}

void CoverRow(std::uint32_t* p, const std::uint8_t* mask, int count, const QLX_SpanPaint& paint,
              bool hasAlpha) noexcept {
    for (int i = 0; i < count; ++i) {
        const unsigned weight = Divide255(mask[i] * paint.alpha);
        if (weight == 255)
            p[i] = paint.color;
        else if (weight != 0)
            p[i] = Covered(p[i], paint.color, weight, hasAlpha);
    }
}

#if defined(__SSE2__)
// Covers rows of one colour four and eight pixels at once, equal to Covered in every byte: d * 256
// + 128 + (color - d) * weight, shifted. The difference may be negative, but the sum fits a lane,
// so what wraps on the way unwraps.
class WideCover {
  public:
    WideCover(const QLX_SpanPaint& paint, bool hasAlpha) noexcept
        : mColor(_mm_set1_epi32(int(paint.color))),
          mColorLanes(_mm_unpacklo_epi8(mColor, _mm_setzero_si128())),
          mOpaque(hasAlpha ? _mm_setzero_si128() : _mm_set1_epi32(int(kAlphaMask))),
          mAlpha(_mm_set1_epi16(short(paint.alpha))), mWhole(paint.alpha == 255) {}

    void Four(std::uint32_t* p, const std::uint8_t* mask) const noexcept {
        std::int32_t four;
        std::memcpy(&four, mask, 4);
        if (four == 0)
            return;
        if (four == -1 && mWhole) {
            _mm_storeu_si128(reinterpret_cast<__m128i*>(p), mColor);
            return;
        }
        const __m128i weights = Weights(_mm_cvtsi32_si128(four));
        Lay(p, _mm_unpacklo_epi16(weights, weights));
    }
    void Eight(std::uint32_t* p, const std::uint8_t* mask) const noexcept {
        std::int64_t eight;
        std::memcpy(&eight, mask, 8);
        if (eight == 0)
            return;
        const __m128i weights = Weights(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(mask)));
        Lay(p, _mm_unpacklo_epi16(weights, weights));
        Lay(p + 4, _mm_unpackhi_epi16(weights, weights));
    }

  private:
    // Eight coverages as weights of 0 to 256.
    [[nodiscard]] __m128i Weights(__m128i coverages) const noexcept {
        __m128i weights = _mm_unpacklo_epi8(coverages, _mm_setzero_si128());
        if (!mWhole)
            weights = Divide255(_mm_mullo_epi16(weights, mAlpha));
        return _mm_add_epi16(weights, _mm_srli_epi16(weights, 7));
    }
    // weights: those of four pixels, each twice.
    void Lay(std::uint32_t* p, __m128i weights) const noexcept {
        const __m128i zero = _mm_setzero_si128();
        const __m128i half = _mm_set1_epi8(char(0x80));
        const __m128i d =
            _mm_or_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)), mOpaque);
        const __m128i lowDifference = _mm_sub_epi16(mColorLanes, _mm_unpacklo_epi8(d, zero));
        const __m128i highDifference = _mm_sub_epi16(mColorLanes, _mm_unpackhi_epi8(d, zero));
        const __m128i low =
            _mm_add_epi16(_mm_unpacklo_epi8(half, d),
                          _mm_mullo_epi16(lowDifference, _mm_unpacklo_epi32(weights, weights)));
        const __m128i high =
            _mm_add_epi16(_mm_unpackhi_epi8(half, d),
                          _mm_mullo_epi16(highDifference, _mm_unpackhi_epi32(weights, weights)));
        _mm_storeu_si128(reinterpret_cast<__m128i*>(p),
                         _mm_packus_epi16(_mm_srli_epi16(low, 8), _mm_srli_epi16(high, 8)));
    }

    __m128i mColor, mColorLanes, mOpaque, mAlpha;
    bool mWhole;
};

// Glyphs are 4 to 16 pixels wide, so rows are short and many: what they share is made once.
void CoverRowsNarrow(const QLX_Surface& surface, const Cmn_Rect<int>& rect,
                     const std::uint8_t* mask, int maskRow, int taken,
                     const QLX_SpanPaint& paint) noexcept {
    const WideCover cover(paint, surface.hasAlpha);
    std::uint32_t* row = surface.At(rect.left, rect.top);
    const std::ptrdiff_t next = surface.rowPixels;
    int rows = rect.bottom - rect.top;
    if (taken == 8) {
        for (; rows > 0; --rows, row += next, mask += maskRow)
            cover.Eight(row, mask);
        return;
    }
    if (taken == 4) {
        for (; rows > 0; --rows, row += next, mask += maskRow)
            cover.Four(row, mask);
        return;
    }
    for (; rows > 0; --rows, row += next, mask += maskRow) {
        int i = 0;
        for (; i + 4 <= taken; i += 4)
            cover.Four(row + i, mask + i);
        if (i < taken)
            CoverRow(row + i, mask + i, taken - i, paint, surface.hasAlpha);
    }
}
#else
void CoverRowsNarrow(const QLX_Surface& surface, const Cmn_Rect<int>& rect,
                     const std::uint8_t* mask, int maskRow, int taken,
                     const QLX_SpanPaint& paint) noexcept {
    for (int y = rect.top; y < rect.bottom; ++y, mask += maskRow)
        CoverRow(surface.At(rect.left, y), mask, taken, paint, surface.hasAlpha);
}
#endif

#if defined(QLX_AVX2_ROWS)
bool sWide = Sys_HasAVX2();

void CoverRows(const QLX_Surface& surface, const Cmn_Rect<int>& rect, const std::uint8_t* mask,
               int maskRow, int taken, const QLX_SpanPaint& paint) noexcept {
    if (!sWide) {
        CoverRowsNarrow(surface, rect, mask, maskRow, taken, paint);
        return;
    }
    const int fours = taken & ~3;
    if (fours != 0)
        QLX_LayMaskRowsAVX2({surface.At(rect.left, rect.top), surface.rowPixels, mask, maskRow,
                             fours, rect.bottom - rect.top, paint.color, paint.alpha,
                             surface.hasAlpha});
    if (fours != taken)
        CoverRowsNarrow(surface, {rect.left + fours, rect.top, rect.right, rect.bottom},
                        mask + fours, maskRow, taken - fours, paint);
}
#else
void CoverRows(const QLX_Surface& surface, const Cmn_Rect<int>& rect, const std::uint8_t* mask,
               int maskRow, int taken, const QLX_SpanPaint& paint) noexcept {
    CoverRowsNarrow(surface, rect, mask, maskRow, taken, paint);
}
#endif

} // namespace

QLX_MaskLayer::QLX_MaskLayer(const QLX_Surface& surface, const QLX_SpanPaint& paint) noexcept
    : mSurface(surface),
      mPaint(paint), mRows{nullptr,     surface.rowPixels, nullptr,         0, 0, 0,
                           paint.color, paint.alpha,       surface.hasAlpha} {
#if defined(QLX_AVX2_ROWS)
    if (sWide && !paint.pattern &&
        (paint.mode == kPenMode_Copy || paint.mode == kPenMode_Transparent))
        mLayRows = QLX_LayMaskRowsAVX2;
#endif
}

bool QLX_UseWideSpans([[maybe_unused]] bool use) noexcept {
#if defined(QLX_AVX2_ROWS)
    const bool before = sWide;
    sWide = use && Sys_HasAVX2();
    return before;
#else
    return false;
#endif
}

const QLX_PatternCell* QLX_GetPatternCell(EPenPattern pattern) noexcept {
    static constexpr QLX_PatternCell kCells[kPenPattern_Count] = {
        {{0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}},
        {{0xDD, 0x77, 0xDD, 0x77, 0xDD, 0x77, 0xDD, 0x77}},
        {{0xAA, 0x55, 0xAA, 0x55, 0xAA, 0x55, 0xAA, 0x55}},
        {{0x88, 0x22, 0x88, 0x22, 0x88, 0x22, 0x88, 0x22}},
        {{0, 0, 0, 0, 0, 0, 0, 0}},
        {{0xFF, 0xFF, 0, 0, 0xFF, 0xFF, 0, 0}},
        {{0xCC, 0xCC, 0xCC, 0xCC, 0xCC, 0xCC, 0xCC, 0xCC}},
        {{0x33, 0x66, 0xCC, 0x99, 0x33, 0x66, 0xCC, 0x99}},
        {{0xFF, 0x88, 0x88, 0x88, 0xFF, 0x88, 0x88, 0x88}},
        {{0xF0, 0xF0, 0xF0, 0xF0, 0x0F, 0x0F, 0x0F, 0x0F}},
        {{0x88, 0, 0, 0, 0x88, 0, 0, 0}},
    };
    if (pattern <= kPenPattern_Solid || pattern >= kPenPattern_Count)
        return nullptr;
    return &kCells[pattern];
}

namespace {

void FillGeneral(const QLX_Surface& surface, const Cmn_Rect<int>& rect,
                 const QLX_SpanPaint& paint) noexcept {
    const int count = rect.right - rect.left;
    for (int y = rect.top; y < rect.bottom; ++y) {
        std::uint32_t* row = surface.At(rect.left, y);
        if (paint.pattern)
            FillPatternedRow(row, rect.left + paint.phaseX,
                             PatternPlace(y + paint.phaseY, paint.cell), count, paint,
                             surface.hasAlpha);
        else
            FillRow(row, count, paint, surface.hasAlpha);
    }
}

} // namespace

// Opaque rectangles are what most drawing is made of, and many are narrow: bars and the sides of
// frames. The last pixels of a row are stored together with some that were stored already, so that
// no row has a loop for what is left over.
void QLX_FillOpaque(std::uint32_t* row, std::ptrdiff_t rowPixels, int count, int rows,
                    std::uint32_t color) noexcept {
#if defined(__SSE2__)
    const __m128i wide = _mm_set1_epi32(int(color));
    const auto store = [&](std::uint32_t* place) {
        _mm_storeu_si128(reinterpret_cast<__m128i*>(place), wide);
    };
    if (count > 16) {
        for (; rows > 0; --rows, row += rowPixels) {
            std::uint32_t* const last = row + count - 16;
            for (std::uint32_t* p = row; p < last; p += 16) {
                store(p);
                store(p + 4);
                store(p + 8);
                store(p + 12);
            }
            store(last);
            store(last + 4);
            store(last + 8);
            store(last + 12);
        }
        return;
    }
    if (count > 8) {
        for (; rows > 0; --rows, row += rowPixels) {
            store(row);
            store(row + 4);
            store(row + count - 8);
            store(row + count - 4);
        }
        return;
    }
    if (count >= 4) {
        for (; rows > 0; --rows, row += rowPixels) {
            store(row);
            store(row + count - 4);
        }
        return;
    }
    if (count == 1) {
        for (; rows > 0; --rows, row += rowPixels)
            *row = color;
        return;
    }
#endif
    for (; rows > 0; --rows, row += rowPixels)
        for (int i = 0; i < count; ++i)
            row[i] = color;
}

void QLX_FillSpans(const QLX_Surface& surface, const Cmn_Rect<int>& rect,
                   const QLX_SpanPaint& paint) noexcept {
    if (paint.mode == kPenMode_Copy && paint.alpha == 255 && !paint.pattern)
        QLX_FillOpaque(surface.At(rect.left, rect.top), surface.rowPixels, rect.right - rect.left,
                       rect.bottom - rect.top, paint.color);
    else
        FillGeneral(surface, rect, paint);
}

void QLX_MaskSpans(const QLX_Surface& surface, const Cmn_Rect<int>& rect, const std::uint8_t* mask,
                   int maskRow, const QLX_SpanPaint& paint, bool paddedMask) noexcept {
    const int count = rect.right - rect.left;
    // The zero bytes behind a padded row leave pixels as they are, as long as the surface has them.
    const int wide = (count + 3) & ~3;
    const int taken = paddedMask && rect.left + wide <= surface.width ? wide : count;
    if (!paint.pattern && (paint.mode == kPenMode_Copy || paint.mode == kPenMode_Transparent)) {
        CoverRows(surface, rect, mask, maskRow, taken, paint);
        return;
    }
    const int period = 8 * paint.cell;
    for (int y = rect.top; y < rect.bottom; ++y, mask += maskRow) {
        std::uint32_t* row = surface.At(rect.left, y);
        const int py = PatternPlace(y + paint.phaseY, paint.cell);
        int px = PatternPlace(rect.left + paint.phaseX, paint.cell);
        for (int i = 0; i < count; ++i) {
            if (mask[i] != 0)
                row[i] = Patterned(row[i], px, py, paint, mask[i], surface.hasAlpha);
            if (++px == period)
                px = 0;
        }
    }
}

namespace {

void CopyRow(std::uint32_t* p, const std::uint32_t* s, int count, unsigned alpha, bool opaque,
             bool hasAlpha) noexcept {
    if (opaque && alpha == 255) {
        std::memmove(p, s, std::size_t(count) * sizeof *p);
        return;
    }
    for (int i = 0; i < count; ++i) {
        const std::uint32_t source = alpha == 255 ? s[i] : Weighed(s[i], alpha);
        const unsigned sourceAlpha = source >> 24;
        if (sourceAlpha == 255)
            p[i] = source;
        else if (source != 0)
            p[i] = source + Weighed(hasAlpha ? p[i] : p[i] | kAlphaMask, 255 - sourceAlpha);
    }
}

// The straight colour of a premultiplied pixel, 0xRRGGBB.
[[nodiscard]] std::uint32_t Straight(std::uint32_t pixel) noexcept {
    const unsigned alpha = pixel >> 24;
    if (alpha == 255)
        return pixel & kColorMask;
    const auto straight = [&](int shift) {
        return std::min(255U, ((pixel >> shift & 255) * 255 + alpha / 2) / alpha) << shift;
    };
    return straight(16) | straight(8) | straight(0);
}

} // namespace

void QLX_CopySpans(const QLX_Surface& surface, const Cmn_Rect<int>& rect,
                   const std::uint32_t* source, int sourceRow, EPenMode mode, unsigned alpha,
                   bool sourceOpaque, std::uint32_t background) noexcept {
    const int count = rect.right - rect.left;
    for (int y = rect.top; y < rect.bottom; ++y, source += sourceRow) {
        std::uint32_t* row = surface.At(rect.left, y);
        if (mode == kPenMode_Copy) {
            CopyRow(row, source, count, alpha, sourceOpaque, surface.hasAlpha);
            continue;
        }
        for (int i = 0; i < count; ++i) {
            const std::uint32_t pixel = sourceOpaque ? source[i] | kAlphaMask : source[i];
            if (pixel >> 24 == 0)
                continue;
            const std::uint32_t color = Straight(pixel);
            if (mode == kPenMode_Transparent && color == (background & kColorMask))
                continue;
            row[i] = Laid(mode, row[i], color, Divide255((pixel >> 24) * alpha), surface.hasAlpha);
        }
    }
}

void QLX_InvertSpans(const QLX_Surface& surface, const Cmn_Rect<int>& rect) noexcept {
    const int count = rect.right - rect.left;
    for (int y = rect.top; y < rect.bottom; ++y) {
        std::uint32_t* row = surface.At(rect.left, y);
        int i = 0;
        if (surface.hasAlpha) { // within the alpha, so that the pixel stays premultiplied
            for (; i < count; ++i) {
                const std::uint32_t all = (row[i] >> 24) * 0x010101;
                row[i] = (row[i] & kAlphaMask) | (all - (row[i] & kColorMask));
            }
            continue;
        }
#if defined(__SSE2__)
        const __m128i flip = _mm_set1_epi32(int(kColorMask));
        for (; i + 4 <= count; i += 4) {
            auto* place = reinterpret_cast<__m128i*>(row + i);
            _mm_storeu_si128(place, _mm_xor_si128(_mm_loadu_si128(place), flip));
        }
#endif
        for (; i < count; ++i)
            row[i] ^= kColorMask;
    }
}

void QLX_ExchangeSpans(const QLX_Surface& surface, const Cmn_Rect<int>& rect, std::uint32_t a,
                       std::uint32_t b) noexcept {
    a &= kColorMask;
    b &= kColorMask;
    for (int y = rect.top; y < rect.bottom; ++y) {
        std::uint32_t* row = surface.At(rect.left, y);
        for (int i = 0; i < rect.right - rect.left; ++i) {
            if (surface.hasAlpha && row[i] >> 24 != 255)
                continue;
            const std::uint32_t color = row[i] & kColorMask;
            if (color == a)
                row[i] = (row[i] & kAlphaMask) | b;
            else if (color == b)
                row[i] = (row[i] & kAlphaMask) | a;
        }
    }
}

namespace {

// Blends multiply the products of channels, as the compositing standard's separable modes do.
[[nodiscard]] std::uint32_t Blended(QLX_Painter::EBlendMode mode, std::uint32_t d,
                                    std::uint32_t s) noexcept {
    switch (mode) {
    case QLX_Painter::kBlend_Multiply:
        return PerChannel(d, s, [](int a, int b) { return Divide255(unsigned(a * b)); });
    case QLX_Painter::kBlend_Screen:
        return PerChannel(
            d, s, [](int a, int b) { return 255 - Divide255(unsigned((255 - a) * (255 - b))); });
    case QLX_Painter::kBlend_Darken:
        return PerChannel(d, s, [](int a, int b) { return std::min(a, b); });
    case QLX_Painter::kBlend_Lighten:
        return PerChannel(d, s, [](int a, int b) { return std::max(a, b); });
    default:
        return s & kColorMask;
    }
}

} // namespace

void QLX_BlendSpans(const QLX_Surface& surface, const Cmn_Rect<int>& rect, std::uint32_t color,
                    unsigned alpha, QLX_Painter::EBlendMode mode) noexcept {
    if (mode == QLX_Painter::kBlend_Normal) {
        QLX_SpanPaint paint;
        paint.color = color | kAlphaMask;
        paint.alpha = alpha;
        QLX_FillSpans(surface, rect, paint);
        return;
    }
    for (int y = rect.top; y < rect.bottom; ++y) {
        std::uint32_t* row = surface.At(rect.left, y);
        for (int i = 0; i < rect.right - rect.left; ++i)
            row[i] =
                Laid(kPenMode_Copy, row[i], Blended(mode, row[i] & kColorMask, color & kColorMask),
                     alpha, surface.hasAlpha);
    }
}

namespace {

#if defined(__SSE2__)
// One row of 32 columns, a pixel each, of which any may be covered: the pixel stays or is the
// colour, four at once.
void FillTileRow(std::uint32_t* p, const int* tops, const int* bottoms, int y,
                 __m128i color) noexcept {
    const __m128i row = _mm_set1_epi32(y);
    for (int i = 0; i < 32; i += 4) {
        const __m128i top = _mm_loadu_si128(reinterpret_cast<const __m128i*>(tops + i));
        const __m128i bottom = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bottoms + i));
        // covered: not top > y, and bottom > y
        const __m128i covered =
            _mm_andnot_si128(_mm_cmpgt_epi32(top, row), _mm_cmpgt_epi32(bottom, row));
        auto* place = reinterpret_cast<__m128i*>(p + i);
        const __m128i kept = _mm_andnot_si128(covered, _mm_loadu_si128(place));
        _mm_storeu_si128(place, _mm_or_si128(kept, _mm_and_si128(covered, color)));
    }
}
#endif

} // namespace

// Memory is written row by row, which is what it is fast at. Columns are grouped into tiles; for
// each tile the rows that all its columns cover and the rows that any covers are known beforehand,
// so most of a row is found to be full or empty a tile at a time and only tiles on the outline are
// looked at column by column.
void QLX_FillColumns(const QLX_Surface& surface, const Cmn_Rect<int>& rect, int x, int count,
                     const int* tops, const int* bottoms, int columnWidth,
                     const QLX_SpanPaint& paint, int* scratch) noexcept {
    constexpr int kTile = 32;
    const int tiles = (count + kTile - 1) / kTile;
    int* anyTop = scratch;
    int* anyBottom = scratch + tiles;
    int* allTop = scratch + 2 * tiles;
    int* allBottom = scratch + 3 * tiles;
    int first = rect.bottom, last = rect.top;
    for (int t = 0; t < tiles; ++t) {
        anyTop[t] = allBottom[t] = rect.bottom;
        anyBottom[t] = allTop[t] = rect.top;
        for (int i = t * kTile; i < std::min(count, (t + 1) * kTile); ++i) {
            const bool empty = tops[i] >= bottoms[i];
            if (!empty) {
                anyTop[t] = std::min(anyTop[t], tops[i]);
                anyBottom[t] = std::max(anyBottom[t], bottoms[i]);
            }
            allTop[t] = std::max(allTop[t], empty ? rect.bottom : tops[i]);
            allBottom[t] = std::min(allBottom[t], empty ? rect.top : bottoms[i]);
        }
        first = std::min(first, anyTop[t]);
        last = std::max(last, anyBottom[t]);
    }
    const auto flush = [&](int from, int to, int y) {
        const int left = std::max<std::int64_t>(rect.left, x + std::int64_t{from} * columnWidth);
        const int right = std::min<std::int64_t>(rect.right, x + std::int64_t{to} * columnWidth);
        if (left < right)
            FillRow(surface.At(left, y), right - left, paint, surface.hasAlpha);
    };
#if defined(__SSE2__)
    const bool simple = columnWidth == 1 && paint.mode == kPenMode_Copy && paint.alpha == 255;
    const __m128i color = _mm_set1_epi32(int(paint.color));
#endif
    for (int y = std::max(first, rect.top); y < std::min(last, rect.bottom); ++y) {
        int runBegin = -1; // the column where the run that is still open began
        for (int t = 0; t < tiles; ++t) {
            const int begin = t * kTile, end = std::min(count, begin + kTile);
            if (y >= allTop[t] && y < allBottom[t]) {
                if (runBegin < 0)
                    runBegin = begin;
                continue;
            }
            if (y < anyTop[t] || y >= anyBottom[t]) {
                if (runBegin >= 0)
                    flush(runBegin, begin, y);
                runBegin = -1;
                continue;
            }
#if defined(__SSE2__)
            const std::int64_t tileLeft = x + std::int64_t{begin};
            if (simple && end - begin == kTile && tileLeft >= rect.left &&
                tileLeft + kTile <= rect.right) {
                if (runBegin >= 0)
                    flush(runBegin, begin, y);
                runBegin = -1;
                FillTileRow(surface.At(int(tileLeft), y), tops + begin, bottoms + begin, y, color);
                continue;
            }
#endif
            for (int i = begin; i < end; ++i) {
                if (y >= tops[i] && y < bottoms[i]) {
                    if (runBegin < 0)
                        runBegin = i;
                } else if (runBegin >= 0) {
                    flush(runBegin, i, y);
                    runBegin = -1;
                }
            }
        }
        if (runBegin >= 0)
            flush(runBegin, count, y);
    }
}

namespace {

// Where along one axis a destination pixel looks, in 1/65536ths of a source pixel. Sources are at
// most 2^14 long and destinations less than 2^32, so that nothing leaves 63 bits.
struct Axis {
    int begin; // of the part
    std::int64_t length, destination;
    [[nodiscard]] bool Shrinks() const noexcept { return length > destination; }
    /// Of a pixel's edge, in halves of destination pixels.
    [[nodiscard]] std::int64_t At(std::int64_t halves) const noexcept {
        return (halves * length << 15) / destination;
    }
};

struct Sum {
    std::uint64_t channel[4] = {};
    void Add(std::uint32_t pixel, std::uint64_t weight) noexcept {
        for (int i = 0; i < 4; ++i)
            channel[i] += (pixel >> (8 * i) & 255) * weight;
    }
    [[nodiscard]] std::uint32_t Mean(std::uint64_t total) const noexcept {
        std::uint32_t pixel = 0;
        for (int i = 0; i < 4; ++i)
            pixel |= std::uint32_t(std::min<std::uint64_t>(255, (channel[i] + total / 2) / total))
                     << (8 * i);
        return pixel;
    }
};

// The weights of the source pixels that one destination pixel sees along an axis: from, from + 1,
// ... up to count.
struct Reach {
    int from = 0, count = 1;
    std::int64_t firstWeight = 65536, lastWeight = 0; // those between weigh 65536

    Reach(const Axis& axis, std::int64_t place) noexcept {
        if (axis.Shrinks()) {
            const std::int64_t begin = axis.At(2 * place), end = axis.At(2 * place + 2);
            from = int(begin >> 16);
            const int last = int(std::min<std::int64_t>((end - 1) >> 16, axis.length - 1));
            count = last - from + 1;
            firstWeight = count == 1 ? end - begin : 65536 - (begin & 65535);
            lastWeight = end - (std::int64_t{last} << 16);
            lastWeight = std::min<std::int64_t>(lastWeight, 65536);
        } else { // between the two nearest pixels' middles
            const std::int64_t middle = axis.At(2 * place + 1) - 32768;
            const std::int64_t held =
                std::clamp<std::int64_t>(middle, 0, std::int64_t{axis.length - 1} << 16);
            from = int(held >> 16);
            lastWeight = held & 65535;
            firstWeight = 65536 - lastWeight;
            count = lastWeight ? 2 : 1;
        }
        from += axis.begin;
    }
    [[nodiscard]] std::int64_t Weight(int i) const noexcept {
        return i == 0 ? firstWeight : i == count - 1 ? lastWeight : 65536;
    }
    [[nodiscard]] std::uint64_t Total() const noexcept {
        std::uint64_t total = 0;
        for (int i = 0; i < count; ++i)
            total += std::uint64_t(Weight(i));
        return total;
    }
};

} // namespace

void QLX_ScalePixels(const std::uint32_t* picture, int pictureRow, const Cmn_Rect<int>& part,
                     const Cmn_Rect<int>& destination, const Cmn_Rect<int>& wanted,
                     std::uint32_t* out, int outRow) noexcept {
    const Axis across{part.left, part.GetWidth(),
                      std::int64_t{destination.right} - destination.left};
    const Axis down{part.top, part.GetHeight(), std::int64_t{destination.bottom} - destination.top};
    for (int y = wanted.top; y < wanted.bottom; ++y, out += outRow) {
        const Reach rows(down, std::int64_t{y} - destination.top);
        const std::uint64_t rowTotal = rows.Total();
        for (int x = wanted.left; x < wanted.right; ++x) {
            const Reach columns(across, std::int64_t{x} - destination.left);
            Sum sum;
            for (int r = 0; r < rows.count; ++r) {
                const std::uint32_t* source =
                    picture + std::ptrdiff_t(rows.from + r) * pictureRow + columns.from;
                for (int c = 0; c < columns.count; ++c)
                    sum.Add(source[c],
                            std::uint64_t(rows.Weight(r)) * std::uint64_t(columns.Weight(c)) >> 8);
            }
            out[x - wanted.left] = sum.Mean(rowTotal * columns.Total() >> 8);
        }
    }
}
