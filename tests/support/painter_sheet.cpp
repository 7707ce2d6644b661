#include "tests/support/painter_sheet.h"

#include <cmath>
#include <functional>

#include "newfilelibs/cmn/cmn_polygon.h"
#include "qlx/foundation/qlx_region.h"
#include "qlx/imaging/qlx_font.h"
#include "qlx/imaging/qlx_image.h"
#include "qlx/imaging/qlx_path.h"
#include "qlx/imaging/qlx_statesavers.h"

namespace {

constexpr CRGBColor kInk(0x2020, 0x4040, 0x8080);
constexpr CRGBColor kRed(0xD0D0, 0x3030, 0x3030);
constexpr CRGBColor kGreen(0x3030, 0x9090, 0x4040);
constexpr CRGBColor kPaper(65535, 65535, 65535);
constexpr CRGBColor kGray(0xC0C0, 0xC0C0, 0xC0C0);

/// A small picture with transparent, half transparent and opaque pixels.
QLX_Image::Ptr Sample(int size) {
    const QLX_Image::Ptr image = QLX_Image::Create(size, size);
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            const std::uint32_t alpha = x < size / 3 ? 255 : y < size / 2 ? 128 : 0;
            const std::uint32_t red = alpha * std::uint32_t(x) / std::uint32_t(size);
            const std::uint32_t blue = alpha * std::uint32_t(y) / std::uint32_t(size);
            image->GetWritablePixels()[y * size + x] =
                alpha << 24 | red << 16 | alpha / 3 << 8 | blue;
        }
    image->PixelsChanged();
    return image;
}

/// A button's face whose parts can be told apart: corners, edges, middle, a unit's border.
QLX_Image::Ptr Button(int scale) {
    const int size = 24 * scale, corner = 6 * scale;
    const QLX_Image::Ptr image = QLX_Image::Create(size, size);
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            const bool inCornerX = x < corner || x >= size - corner;
            const bool inCornerY = y < corner || y >= size - corner;
            const int outer = std::min({x, y, size - 1 - x, size - 1 - y});
            std::uint32_t pixel = inCornerX && inCornerY   ? 0xFFD08040
                                  : inCornerX || inCornerY ? 0xFFA0C0E0
                                                           : 0xFFE8F0F8;
            if (outer < scale)
                pixel = 0xFF204080;
            if (inCornerX && inCornerY && outer == 0 &&
                std::min(x, size - 1 - x) + std::min(y, size - 1 - y) < 3 * scale)
                pixel = 0;
            image->GetWritablePixels()[y * size + x] = pixel;
        }
    image->PixelsChanged();
    return image;
}

constexpr const char* kModeNames[kPenMode_Count] = {
    "copy",    "or",    "xor", "bic",      "not copy", "not or",  "not xor",
    "not bic", "blend", "add", "subtract", "maximum",  "minimum", "transparent"};
constexpr const char* kPatternNames[kPenPattern_Count] = {
    "solid",    "dark gray", "gray",  "light gray", "empty", "horizontal",
    "vertical", "diagonal",  "cross", "dash",       "dots"};

class Sheet {
  public:
    Sheet(const QLX_Painter::Ptr& painter, unsigned parts) : p(painter), mParts(parts) {
        mImage = Sample(24);
        mImage->SetDouble(Sample(48));
        mButton = Button(1);
        mButton->SetDouble(Button(2));
    }

    void Draw() {
        p->SetBackgroundColor(kPaper);
        p->EraseRect({0, 0, kPainterSheetWidth, kPainterSheetHeight});
        for (const auto section : {&Sheet::Shapes, &Sheet::Pens, &Sheet::Modes, &Sheet::Patterns}) {
            if (Has(kSheet_Shapes))
                (this->*section)();
        }
        if (Has(kSheet_Texts))
            Texts();
        for (const auto section : {&Sheet::Images, &Sheet::Family, &Sheet::Savers}) {
            if (Has(kSheet_Shapes))
                (this->*section)();
        }
        if (Has(kSheet_Canvases))
            Canvases();
    }

  private:
    using Cell = Cmn_Rect<int>;

    [[nodiscard]] bool Has(unsigned part) const noexcept { return (mParts & part) != 0; }

    void Caption(const char* text) {
        mX = 10;
        mY += mRow;
        mRow = 0;
        p->SetForegroundColor(CRGBColor());
        p->SetFont(QLX_FontMap::RetrieveFont(kFont_InterfaceSmall, kFontSelect_Bold));
        p->MoveTo(float(mX), float(mY + 12), QLX_Painter::kResolution_Logical);
        if (Has(kSheet_Texts))
            p->DrawString(text);
        mY += 17;
    }
    /// The next place in the row.
    Cell Next(int width, int height) {
        if (mX + width > kPainterSheetWidth - 10) {
            mX = 10;
            mY += mRow;
            mRow = 0;
        }
        const Cell cell(mX, mY, mX + width, mY + height);
        mX += width + 8;
        mRow = std::max(mRow, height + 8);
        return cell;
    }

    /// What a cell shows, under it.
    void Label(const Cell& c, const char* text) {
        if (!Has(kSheet_Texts))
            return;
        const QLX_StPaintState state(p);
        p->SetForegroundColor(CRGBColor(0x5050, 0x5050, 0x5050));
        p->SetFont(QLX_FontMap::RetrieveFont(kFont_InterfaceSmall, kFontSelect_Plain));
        p->MoveTo(float(c.left), float(c.bottom - 2), QLX_Painter::kResolution_Logical);
        p->DrawString(text);
    }

    void Shapes() {
        Caption("Fills, frames, erasing, polygons, paths, regions");
        p->SetForegroundColor(kInk);
        p->SetBackgroundColor(kGray);
        p->FillRect(Next(40, 30));
        p->FillRoundRect(Next(40, 30), 8, 8, true, false);
        p->FillRoundRect(Next(40, 30), 8, 12, false, true);
        p->FillOval(Next(40, 30), true);
        p->FillOval(Next(40, 30), false);
        p->DrawRect(Next(40, 30));
        p->DrawRoundRect(Next(40, 30), 8, 8, true, false);
        p->DrawRoundRect(Next(40, 30), 8, 8, true, true);
        p->DrawOval(Next(40, 30));
        p->DrawArc(Next(40, 30), 0, 230, true);
        p->DrawArc(Next(40, 30), 90, -120, false);
        p->EraseRect(Next(40, 30));
        p->EraseRoundRect(Next(40, 30), 8, 8, true);
        const Cell star = Next(40, 30);
        const auto points = [](const Cell& c) {
            return Cmn_Polygon<int>{{c.left + 20, c.top},
                                    {c.left + 32, c.bottom},
                                    {c.left, c.top + 11},
                                    {c.right, c.top + 11},
                                    {c.left + 8, c.bottom}};
        };
        p->FillPolygon(points(star));
        p->DrawPolygon(points(Next(40, 30)), true, true);
        p->DrawPolygon(points(Next(40, 30)), false, false);
        const Cell area = Next(40, 30);
        const QLX_Region ring(QLX_Region(area).Difference(
            QLX_Region({area.left + 8, area.top + 8, area.right - 14, area.bottom - 6})));
        p->FillRegion(ring);
        const Cell second = Next(40, 30);
        p->DrawRegion(QLX_Region(ring.Offset(second.left - area.left, second.top - area.top)));
        const Cell third = Next(40, 30);
        p->EraseRegion(QLX_Region(ring.Offset(third.left - area.left, third.top - area.top)));
        p->FillPath(Leaf(Next(40, 30)));
        p->SetPenSize(3, 3);
        p->DrawPath(Leaf(Next(40, 30)), true, QLX_Painter::kLineJoin_Miter);
        p->DrawPath(Leaf(Next(40, 30)), true, QLX_Painter::kLineJoin_Round);
        p->DrawPath(Leaf(Next(40, 30)), false, QLX_Painter::kLineJoin_Bevel);
        p->NormalizePen();
    }

    QLX_Painter::PathPtr Leaf(const Cell& c) {
        const QLX_Painter::PathPtr path = p->CreateNewPath();
        path->MoveTo(float(c.left), float(c.bottom));
        path->CurveTo(float(c.left), float(c.top), float(c.left + 20), float(c.top), float(c.right),
                      float(c.top + 4));
        path->LineTo(float(c.left + 20), float(c.bottom));
        path->Close();
        return path;
    }

    void Pens() {
        Caption("Lines and pen sizes, alpha, invert, highlight, blends");
        p->SetForegroundColor(kInk);
        for (const short size : {1, 2, 3, 5}) {
            const Cell c = Next(40, 30);
            p->SetPenSize(size, size);
            p->MoveTo(float(c.left), float(c.top), QLX_Painter::kResolution_Logical);
            p->LineTo(float(c.right - 5), float(c.top), true, QLX_Painter::kResolution_Logical, 0);
            p->LineOfLength(0, 20, true, QLX_Painter::kResolution_Logical);
            p->LineTo(float(c.left), float(c.top + 4), true, QLX_Painter::kResolution_Logical, 0);
        }
        p->SetPenSize(4, 2);
        p->DrawRect(Next(40, 30));
        p->NormalizePen();
        for (const float alpha : {0.25F, 0.5F, 1.0F}) {
            const Cell c = Next(40, 30);
            p->SetForegroundColor(kRed);
            p->FillRect({c.left, c.top + 8, c.right, c.top + 16});
            p->SetForegroundColor(kInk);
            p->SetAlpha(alpha);
            p->FillRect({c.left + 8, c.top, c.left + 24, c.bottom});
            p->SetAlpha(1);
        }
        const auto two = [&] {
            const Cell c = Next(40, 30);
            p->SetForegroundColor(kRed);
            p->FillRect({c.left, c.top + 10, c.right, c.bottom});
            return c;
        };
        Cell c = two();
        p->InvertRect({c.left + 6, c.top, c.left + 20, c.bottom});
        p->InvertRegion(QLX_Region({c.left + 14, c.top, c.left + 30, c.bottom}));
        p->SetBackgroundColor(kPaper);
        c = two();
        p->SetHighlightColor(CRGBColor(0xB3B3, 0xD7D7, 0xFFFF));
        p->HighlightRect({c.left + 6, c.top, c.left + 20, c.bottom}, nullptr);
        p->HighlightRegion(QLX_Region({c.left + 22, c.top, c.left + 36, c.bottom}), &kGreen);
        for (int mode = 0; mode < QLX_Painter::kBlend_Count; ++mode) {
            c = two();
            CRGBColor color = kGreen;
            color.SetAlpha(0x9000);
            p->BlendRect({c.left + 6, c.top, c.left + 20, c.bottom}, color,
                         QLX_Painter::EBlendMode(mode));
            p->BlendRegion(QLX_Region({c.left + 22, c.top, c.left + 36, c.bottom}), color,
                           QLX_Painter::EBlendMode(mode));
        }
    }

    void Modes() {
        Caption("Pen modes copy to transparent, fills above, text and images below");
        for (int mode = 0; mode < kPenMode_Count; ++mode) {
            const Cell c = Next(58, 76);
            Label(c, kModeNames[mode]);
            p->SetForegroundColor(kGray);
            p->FillRect({c.left, c.top, c.left + 21, c.top + 62});
            p->SetForegroundColor(CRGBColor(0xA0A0, 0x6060, 0x2020));
            p->FillRect({c.left, c.top + 6, c.left + 42, c.top + 12});
            p->SetForegroundColor(kInk);
            p->SetPenMode(EPenMode(mode));
            p->FillRect({c.left + 4, c.top + 2, c.left + 38, c.top + 16});
            p->SetTextMode(EPenMode(mode));
            p->SetFont(QLX_FontMap::RetrieveFont(kFont_Interface, kFontSelect_Bold));
            p->MoveTo(float(c.left + 2), float(c.top + 30), QLX_Painter::kResolution_Logical);
            if (Has(kSheet_Texts))
                p->DrawString("Text");
            p->DrawImage(mImage, {c.left + 8, c.top + 36, c.left + 32, c.top + 60}, EPenMode(mode));
            p->SetPenMode(kPenMode_Copy);
            p->SetTextMode(kPenMode_Copy);
        }
    }

    void Patterns() {
        Caption("Patterns in copy, or and transparent mode; frames and lines with them");
        p->SetForegroundColor(kInk);
        p->SetBackgroundColor(CRGBColor(0xFFFF, 0xF0F0, 0xC0C0));
        for (int pattern = 0; pattern < kPenPattern_Count; ++pattern) {
            const Cell c = Next(58, 54);
            Label(c, kPatternNames[pattern]);
            p->SetPenPattern(EPenPattern(pattern));
            p->FillRect({c.left, c.top, c.left + 24, c.top + 24});
            p->SetPenMode(kPenMode_Transparent);
            p->FillOval({c.left + 28, c.top, c.left + 52, c.top + 24}, true);
            p->SetPenMode(kPenMode_Copy);
            p->SetPenSize(3, 3);
            p->DrawRect({c.left, c.top + 28, c.left + 52, c.top + 40});
            p->NormalizePen();
        }
        p->SetBackgroundColor(kPaper);
    }

    void Box(const Cell& c, const char* text, QLX_Painter::EJustification justification, bool wrap,
             bool ellipsis, bool erase = false) {
        p->SetForegroundColor(kGray);
        p->DrawRect({c.left - 1, c.top - 1, c.right + 1, c.bottom + 1});
        p->SetForegroundColor(CRGBColor());
        (void)p->DrawTextBox(c, text, justification, wrap, ellipsis, true, erase);
    }

    void Texts() {
        Caption("Text: boxes, justification, ellipsis, scripts, fonts");
        p->SetFont(QLX_FontMap::RetrieveFont(kFont_Interface, kFontSelect_Plain));
        constexpr const char* kProse =
            "The quick brown fox jumps over the lazy dog, and then the waveform is drawn again.";
        Box(Next(130, 62), kProse, QLX_Painter::kJustify_Left, true, false);
        Box(Next(130, 62), kProse, QLX_Painter::kJustify_Center, true, true);
        Box(Next(130, 62), kProse, QLX_Painter::kJustify_Right, true, true);
        Box(Next(130, 62), kProse, QLX_Painter::kJustify_Full, true, false);
        Box(Next(130, 62), "one line\nand another that is far too long\r\nlast",
            QLX_Painter::kJustify_Left, false, true, true);
        Box(Next(130, 47),
            "\xE6\x99\x82\xE9\x96\x93\xE3\x82\xB3\xE3\x83\xBC\xE3\x83\x89\xE3\x81\xAE\xE5\x85\xA5"
            "\xE5\x8A\x9B\xE6\xAC\x84\xE3\x81\xA7\xE3\x81\x99\xE3\x80\x82\xE9\x96\x8B\xE5\xA7\x8B"
            "\xE3\x80\x81\xE7\xB5\x82\xE4\xBA\x86\xE3\x80\x81\xE9\x95\xB7\xE3\x81\x95\xE3\x80\x82",
            QLX_Painter::kJustify_Left, true, false);
        Box(Next(130, 47),
            "\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D 123 \xD9\x85\xD8\xB1\xD8\xAD\xD8\xA8\xD8\xA7",
            QLX_Painter::kJustify_Right, true, false);
        Box(Next(130, 47),
            "Gr\xC3\xB6\xC3\x9F"
            "e, d\xC3\xA9"
            "but, e\xCC\x81, \xFF bad \xC3(",
            QLX_Painter::kJustify_Left, true, false);
        Cell c = Next(130, 20);
        p->DrawSingleLineTextBox(c, "A single line that is cut", true, nullptr);
        c = Next(130, 47);
        p->DrawRect(c);
        p->DrawStringJustified(c, "left top", QLX_Painter::kJustify_Left, QLX_Painter::kJustify_Top,
                               QLX_Painter::kResolution_Logical);
        p->DrawStringJustified(c, "center", QLX_Painter::kJustify_Center,
                               QLX_Painter::kJustify_Middle, QLX_Painter::kResolution_Logical);
        p->DrawStringJustified(c, "right bottom", QLX_Painter::kJustify_Right,
                               QLX_Painter::kJustify_Bottom, QLX_Painter::kResolution_Logical);
        const std::pair<int, int> fonts[] = {
            {kFont_Interface, kFontSelect_Plain},     {kFont_Interface, kFontSelect_Bold},
            {kFont_Interface, kFontSelect_Italic},    {kFont_Interface, kFontSelect_BoldItalic},
            {kFont_Interface, kFontSelect_Underline}, {kFont_InterfaceSmall, kFontSelect_Plain},
            {kFont_Counter, kFontSelect_Plain},       {kFont_CounterLarge, kFontSelect_Plain}};
        for (const auto& [number, style] : fonts) {
            const Cell place = Next(number == kFont_CounterLarge ? 180 : 78, 26);
            p->SetFont(QLX_FontMap::RetrieveFont(number, style));
            p->MoveTo(float(place.left), float(place.top + 20), QLX_Painter::kResolution_Logical);
            p->DrawString("01:23:45");
            p->DrawChar(';');
        }
    }

    void Images() {
        Caption("Images: natural, stretched, portion, icon, nine parts, rows");
        Cell c = Next(24, 24);
        p->DrawImage(mImage, c, kPenMode_Copy);
        p->DrawImage(mImage, Next(60, 40), kPenMode_Copy);
        p->DrawImagePortion(mImage, {4, 4, 16, 16}, Next(24, 24), kPenMode_Copy,
                            QLX_Painter::kResolution_Logical);
        QLX_Icon icon(mImage);
        p->DrawIcon(icon, Next(40, 40));
        p->DrawImage(mButton, Next(24, 24), kPenMode_Copy);
        const QLX_StOriginState origin(p);
        c = Next(90, 40);
        p->SetWindowOrigin({-c.left, -c.top});
        p->OptimizedDrawBackgroundImage(mButton, 90, 40, 6, QLX_Painter::kResolution_Logical);
        p->SetWindowOrigin({0, 0});
        c = Next(120, 30);
        const int xs[] = {c.left, c.left + 30, c.left + 60, c.left + 90};
        const Cell within(c.left + 4, c.top + 2, c.right - 12, c.bottom);
        p->OptimizedDrawImage(mImage, 4, xs, c.top, &within, QLX_Painter::kResolution_Logical,
                              nullptr);
        c = Next(90, 40);
        const QLX_Painter::ImagePtr small = Sample(12);
        const Cmn_PolyVector<QLX_Painter::ImagePtr> images{mImage, small};
        const int which[] = {0, 1, 1}, left[] = {c.left, c.left + 30, c.left + 50},
                  top[] = {c.top, c.top, c.top + 10};
        p->OptimizedDrawImages(images, 3, which, left, top, QLX_Painter::kResolution_Logical);
        c = Next(24, 24);
        p->OptimizedDrawImage(mImage, {0, 0, 24, 24}, c, nullptr, QLX_Painter::kResolution_Logical);
        c = Next(32, 16);
        std::uint32_t pixels[32];
        for (std::uint32_t i = 0; i < 32; ++i)
            pixels[i] = 0xFF000000 | i * 8 << 16 | (31 - i) * 8;
        p->OptimizedCopyPixelsFromOffscreen({0, 0, 8, 4}, pixels, {0, 0, 8, 4}, c, true);
    }

    void Family() {
        Caption("The optimized family: waveform, outline, line sets, fills");
        int minima[120], maxima[120];
        for (int i = 0; i < 120; ++i) {
            const double swing = 18 * std::sin(i * 0.21) * std::sin(i * 0.027);
            minima[i] = int(-std::fabs(swing)) - i % 3;
            maxima[i] = int(std::fabs(swing)) + i % 2;
        }
        Cell c = Next(120, 44);
        p->OptimizedWaveformFill(c.left, 120, minima, maxima, c.top + 22, c.top, c.bottom, kInk,
                                 nullptr, kInk, 1, QLX_Painter::kResolution_Logical);
        c = Next(120, 44);
        p->OptimizedWaveformOutline(c.left, 120, minima, c.top + 30, true, c.top, c.bottom, kRed,
                                    nullptr, kRed, 1, QLX_Painter::kResolution_Logical);
        c = Next(60, 44);
        const int places[] = {2, 12, 22, 40}, starts[] = {0, 4, 8, 12}, ends[] = {44, 40, 30, 44},
                  widths[] = {1, 2, 3, 8}, indexes[] = {0, 1, 0, 1};
        const CRGBColor two[] = {kRed, kGreen};
        int xs[4], ys[4], tops[4], bottoms[4], lefts[4], rights[4];
        for (int i = 0; i < 4; ++i) {
            xs[i] = c.left + places[i];
            tops[i] = c.top + starts[i];
            bottoms[i] = c.top + ends[i];
        }
        p->OptimizedVerticalLines(4, xs, tops, bottoms, widths,
                                  Cmn_PolyVector<CRGBColor>::Borrow(two, 2),
                                  QLX_Painter::kAlphaBlend_Over, QLX_Painter::kResolution_Logical);
        c = Next(60, 44);
        for (int i = 0; i < 4; ++i) {
            ys[i] = c.top + places[i];
            lefts[i] = c.left + starts[i];
            rights[i] = c.left + ends[i];
        }
        p->OptimizedHorizontalLines(
            4, ys, lefts, rights, nullptr, Cmn_PolyVector<CRGBColor>::Repeat(kInk, 4),
            QLX_Painter::kAlphaBlend_Over, QLX_Painter::kResolution_Logical);
        c = Next(60, 44);
        p->OptimizedIdenticalVerticalLines(4, places, indexes, two, c.top, c.bottom, 2,
                                           QLX_Painter::kAlphaBlend_Add,
                                           QLX_Painter::kResolution_Logical, c.left);
        for (int i = 0; i < 4; ++i)
            ys[i] = c.top + places[i];
        p->OptimizedIdenticalHorizontalLines(4, ys, nullptr, two, c.left, c.right, 1,
                                             QLX_Painter::kResolution_Logical);
        c = Next(60, 44);
        CRGBColor half = kGreen;
        half.SetAlpha(0x8000);
        p->OptimizedFillRect(c, half, QLX_Painter::kAlphaBlend_Over,
                             QLX_Painter::kResolution_Logical, nullptr, kInk,
                             QLX_Painter::kAlphaBlend_Over);
        p->OptimizedFillRoundRect({c.left + 6, c.top + 6, c.right - 6, c.bottom - 6}, 9, kInk,
                                  QLX_Painter::kAlphaBlend_Over, QLX_Painter::kResolution_Logical,
                                  nullptr, kInk, QLX_Painter::kAlphaBlend_Over);
        p->OptimizedVerticalLine(c.left + 10, c.top, c.bottom, kRed,
                                 QLX_Painter::kResolution_Logical);
        p->OptimizedHorizontalLine(c.left, c.right, c.top + 10, kRed,
                                   QLX_Painter::kResolution_Logical);
        c = Next(60, 44);
        const QLX_StOriginState origin(p);
        p->SetWindowOrigin({-c.left, -c.top}); // device pixels count from the local origin
        p->OptimizedFillRoundRect({0, 0, 60, 44}, 12, half, QLX_Painter::kAlphaBlend_Ignore,
                                  QLX_Painter::kResolution_Device, nullptr, half,
                                  QLX_Painter::kAlphaBlend_Over);
        p->OptimizedVerticalLine(5, 0, 44, kRed, QLX_Painter::kResolution_Device);
    }

    void Savers() {
        Caption("Savers: pen and colours (before, within, after), copies, clip, origin; canvases");
        Cell c = Next(80, 44);
        p->SetForegroundColor(kInk);
        p->DrawRect({c.left, c.top, c.left + 24, c.bottom});
        {
            const QLX_StPenState pen(p);
            const QLX_StColorState colors(p);
            p->SetForegroundColor(kRed);
            p->SetPenSize(4, 2);
            p->SetPenPattern(kPenPattern_Gray);
            p->DrawRect({c.left + 28, c.top, c.left + 52, c.bottom});
        }
        p->DrawRect({c.left + 56, c.top, c.right, c.bottom});
        c = Next(80, 44);
        {
            QLX_StColorState saved(p);
            p->SetForegroundColor(kGreen);
            const QLX_StColorState green(p);
            p->SetForegroundColor(kRed);
            p->FillRect({c.left, c.top, c.left + 24, c.bottom});
            { const QLX_StColorState copy(green); } // puts green back
            saved.Release();
            p->FillRect({c.left + 28, c.top, c.left + 52, c.bottom});
        }
        p->FillRect({c.left + 56, c.top, c.right, c.bottom}); // still green: the first was released
        c = Next(60, 44);
        p->SetForegroundColor(kInk);
        {
            QLX_StClipRgnState clip(p, Cell(c.left, c.top, c.right - 10, c.bottom - 4));
            clip.DiffWithCurrent(Cell(c.left + 10, c.top + 10, c.left + 30, c.top + 30));
            clip.DiffWithCurrent(QLX_Region({c.left + 34, c.top + 4, c.left + 40, c.bottom}));
            p->FillRect(c);
            p->SetForegroundColor(kRed);
            p->FillOval({c.left - 10, c.top - 10, c.right, c.bottom}, true);
        }
        c = Next(60, 44);
        {
            const QLX_StPaintState paint(p);
            QLX_StOriginState origin(p);
            p->SetWindowOrigin({-c.left, -c.top});
            p->SetForeground(kThemeColor_MeterLow);
            p->FillRect({0, 0, 30, 44});
            p->SetBackground(kThemeColor_MeterHigh);
            p->EraseRect({30, 0, 60, 44});
        }
    }

    void Canvases() {
        Cell c = Next(60, 44);
        {
            QLX_Painter::Ptr redirected = p;
            const StOffscreenPainter offscreen(redirected, c);
            redirected->SetForegroundColor(kGreen);
            redirected->FillOval(c, true);
        }
        c = Next(60, 44);
        const QLX_Painter::Ptr canvas = p->CreateOffscreenPainter(c, true, false);
        if (!canvas)
            return;
        canvas->SetForegroundColor(kRed);
        canvas->FillOval({c.left + 4, c.top + 4, c.right - 4, c.bottom - 4}, true);
        p->CopyCanvas(canvas, c, c, kPenMode_Copy, nullptr, {0, 0});
        const Cell to = Next(90, 44);
        const QLX_Region mask({0, 0, 60, 44});
        p->CopyCanvas(canvas, c, to, kPenMode_Xor, &mask, {to.left, to.top});
        const Cell scrolled = Next(60, 44);
        p->SetForegroundColor(kInk);
        p->DrawOval(scrolled);
        QLX_Region toRepaint;
        p->ScrollCanvas(scrolled, 10, 6, toRepaint);
        p->SetForegroundColor(kGray);
        p->FillRegion(toRepaint);
        const QLX_Painter::ImagePtr image = p->CreateImage(canvas);
        p->DrawImage(image, Next(30, 22), kPenMode_Copy);
        p->SaveIntoImage(image, 1);
    }

    QLX_Painter::Ptr p;
    unsigned mParts;
    QLX_Image::Ptr mImage;
    QLX_Image::Ptr mButton;
    int mX = 10;
    int mY = 4;
    int mRow = 0;
};

} // namespace

void DrawPainterSheet(const QLX_Painter::Ptr& painter, unsigned parts) {
    Sheet(painter, parts).Draw();
}
