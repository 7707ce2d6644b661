// Texts: glyph masks of the cache laid down one after the other. The pen moves in quarters of a
// pixel across; baselines fall on whole pixels.

#include <algorithm>
#include <cmath>

#include "qlx/imaging/cairo/qlx_cairoclip.h"
#include "qlx/imaging/cairo/qlx_glyphcache.h"
#include "qlx/imaging/cairo/qlx_pangotext.h"
#include "qlx/imaging/qlx_utf8.h"

namespace {

// Whole pixel and quarter of a place on the line, which is above -2^28.
struct PenPlace {
    int pixel;
    int quarter;
    explicit PenPlace(double x) noexcept {
        // Made positive for a moment: truncating is what processors do at once.
        constexpr double kUp = 1 << 30;
        const auto quarters =
            std::int64_t(std::min(x, 1e8) * QLX_SizedFont::kQuarters + (kUp + 0.5)) - (1 << 30);
        pixel = int(quarters >> 2);
        quarter = int(quarters & 3);
    }
};
static_assert(QLX_SizedFont::kQuarters == 4);

// No glyph reaches as many pixels from its place: the largest that are rendered are of half the
// size. Those that are farther off the clip are not even rendered, or a long text of many
// characters would fill the memory with what nobody sees.
constexpr int kFar = 4096;

} // namespace

bool QLX_PainterCairo::IsFarAcross(int x) const noexcept {
    return x < mClip.bounds.left - kFar || x > mClip.bounds.right + kFar;
}

void QLX_PainterCairo::PrepareFont() {
    const unsigned generation = QLX_GlyphCache::GetGeneration();
    if (mAtSize && mPreparedFont == mFont && mFontGeneration == generation)
        return;
    mPreparedFont = mFont;
    mAtSize = &QLX_GlyphCache::GetAtSize(
        mFont, Cmn_ClampTo<int>(std::int64_t{mFont.GetSize64ths()} * mScale.Get120ths() /
                                QLX_DeviceScale::kUnit));
    mFontGeneration = QLX_GlyphCache::GetGeneration();
}

void QLX_PainterCairo::DrawGlyph(const QLX_GlyphMask& mask, int x, int y,
                                 const Cmn_Rect<int>& limit, const QLX_SpanPaint& paint) {
    if (!mask.bytes)
        return;
    const int left = x + mask.left, top = y + mask.top;
    const Cmn_Rect<int> box(left, top, left + mask.width, top + mask.height);
    const QLX_Surface& surface = mCanvas->GetSurface();
    const auto lay = [&](const Cmn_Rect<int>& part) {
        QLX_MaskSpans(surface, part,
                      mask.bytes + std::ptrdiff_t(part.top - top) * mask.pitch + (part.left - left),
                      mask.pitch, paint, /*paddedMask*/ part.right == box.right);
    };
    if (limit.Contains(box) && mClip.rects.size() == 1 && mClip.bounds.Contains(box))
        lay(box);
    else
        ForClipped(box & limit, lay);
}

// Texts of printable ASCII, which is most of what an interface shows. Returns false, having drawn
// nothing, for others.
bool QLX_PainterCairo::DrawAsciiLine(std::string_view text, double& x, int baseline,
                                     const Cmn_Rect<int>& limit, const QLX_SpanPaint& paint) {
    if (!mAtSize->IsAsciiLine(text))
        return false;
    const double pixels = double(mFont.GetSize()) * mScale.GetFactor();
    QLX_MaskLayer layer(mCanvas->GetSurface(), paint);
    // Glyphs wholly inside are laid down as they are; empty where there is more than one rectangle.
    const Cmn_Rect<int> inside = mClip.rects.size() == 1 ? limit & mClip.bounds : Cmn_Rect<int>();
    double place = x;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        const PenPlace pen(place);
        place += double(mAtSize->GetAscii(byte).advance) * pixels;
        if (IsFarAcross(pen.pixel))
            continue;
        const QLX_GlyphMask& mask = mAtSize->GetAsciiMask(byte, pen.quarter);
        if (!mask.bytes)
            continue;
        const int left = pen.pixel + mask.left, top = baseline + mask.top;
        const Cmn_Rect<int> box(left, top, left + mask.width, top + mask.height);
        if (box.left >= inside.left && box.top >= inside.top && box.right <= inside.right &&
            box.bottom <= inside.bottom)
            layer.Lay(box, mask.bytes, mask.pitch);
        else
            DrawGlyph(mask, pen.pixel, baseline, limit, paint);
    }
    x = place;
    return true;
}

// Returns false, having drawn nothing, when the text needs general layout.
bool QLX_PainterCairo::DrawSimpleLine(std::string_view text, double& x, int baseline,
                                      const Cmn_Rect<int>& limit, const QLX_SpanPaint& paint) {
    QLX_FontFaces& faces = mAtSize->GetFaces();
    for (std::size_t place = 0; place < text.size();)
        if (!faces.GetCharacter(QLX_NextCodePoint(text, place)).simple)
            return false;
    const double pixels = double(mFont.GetSize()) * mScale.GetFactor();
    for (std::size_t place = 0; place < text.size();) {
        const QLX_FontCharacter& character = faces.GetCharacter(QLX_NextCodePoint(text, place));
        const PenPlace pen(x);
        x += double(character.advance) * pixels;
        if (IsFarAcross(pen.pixel) || character.source.face < 0)
            continue;
        DrawGlyph(mAtSize->GetSized().GetGlyph(character.source, pen.quarter), pen.pixel, baseline,
                  limit, paint);
    }
    return true;
}

void QLX_PainterCairo::DrawShaped(const QLX_ShapedText& text, double x, int baseline,
                                  const Cmn_Rect<int>& limit, const QLX_SpanPaint& paint) {
    const double factor = mScale.GetFactor();
    for (const QLX_ShapedText::Glyph& glyph : text.glyphs) {
        const PenPlace pen(x + double(glyph.x) * factor);
        const int down = int(std::lround(double(glyph.y) * factor));
        if (IsFarAcross(pen.pixel))
            continue;
        DrawGlyph(mAtSize->GetSized().GetGlyph(glyph.source, pen.quarter), pen.pixel,
                  baseline + down, limit, paint);
    }
}

double QLX_PainterCairo::DrawTextLine(std::string_view text, double x, int baseline,
                                      const Cmn_Rect<int>& limit) {
    if (text.empty() || mCanvas->IsGone())
        return 0;
    PrepareFont();
    (void)Clip();
    // Far off the canvas nothing shows, and places beyond are not worth their arithmetic.
    baseline = std::clamp(baseline, -(1 << 24), 1 << 24);
    x = std::clamp(x, -double(1 << 24), double(1 << 24));
    const QLX_SpanPaint paint = TextPaint();
    const double begin = x;
    const bool isFar = baseline < mClip.bounds.top - kFar || baseline > mClip.bounds.bottom + kFar;
    if (isFar)
        x += double(QLX_TextMeasure::Get().MeasureWidth(mFont, text)) * mScale.GetFactor();
    else if (!DrawAsciiLine(text, x, baseline, limit, paint) &&
             !DrawSimpleLine(text, x, baseline, limit, paint)) {
        const QLX_ShapedText& shaped = QLX_ShapeText(mFont, text);
        DrawShaped(shaped, x, baseline, limit, paint);
        x += double(shaped.width) * mScale.GetFactor();
    }
    if (mFont.IsUnderlined() && !isFar) {
        const double pixels = double(mFont.GetSize()) * mScale.GetFactor();
        const int top =
            baseline +
            std::max(1,
                     int(std::lround(double(mAtSize->GetFaces().GetUnderlineOffset()) * pixels)));
        const int thick = std::max(
            1, int(std::lround(double(mAtSize->GetFaces().GetUnderlineThickness()) * pixels)));
        Fill(Cmn_Rect<int>(int(std::floor(begin + 0.5)), top, int(std::floor(x + 0.5)),
                           top + thick) &
                 limit,
             paint);
    }
    return x - begin;
}
