// What a recording becomes as SVG: patterns square by square, modes by the blend mode that gives
// the same pixels, and words for what does not.

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "qlx/imaging/qlx_image.h"
#include "qlx/imaging/qlx_recordingpainter.h"
#include "qlx/imaging/qlx_spans.h"

namespace {

using Painter = QLX_Painter::Ptr;

Painter NewRecorder(double scale = 1) {
    return Painter(new QLX_PainterRecording(100, 80, QLX_DeviceScale(scale)));
}
std::string SVGOf(const Painter& painter) {
    return static_cast<QLX_PainterRecording*>(painter.Get())->GetRecording().AsSVG();
}
int CountOf(const std::string& text, const std::string& part) {
    int count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1))
        ++count;
    return count;
}

// The squares that the path of a tile covers, by the "M x y h w v h h -w z" that it is written in.
void ReadTile(const std::string& svg, bool (&squares)[8][8]) {
    const std::size_t path = svg.find("<path shape-rendering", svg.find("<pattern"));
    if (path == std::string::npos || path > svg.find("</pattern>"))
        return;
    const std::size_t end = svg.find('"', svg.find(" d=\"", path) + 4);
    for (std::size_t at = svg.find('M', path); at < end; at = svg.find('M', at + 1)) {
        int x = 0, y = 0, width = 0;
        ASSERT_EQ(std::sscanf(svg.c_str() + at, "M%d %dh%dv1h-", &x, &y, &width), 3);
        for (int i = x; i < x + width; ++i)
            squares[y][i] = true;
    }
}

TEST(RecordingSVG, PatternsAreTheirCells) {
    for (int number = kPenPattern_DarkGray; number < kPenPattern_Count; ++number) {
        const Painter p = NewRecorder();
        p->SetPenPattern(EPenPattern(number));
        p->SetWindowOrigin({11, -3});
        p->FillRect({0, 0, 40, 40});
        const std::string svg = SVGOf(p);
        bool squares[8][8] = {};
        ReadTile(svg, squares);
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 8; ++x)
                EXPECT_EQ(squares[y][x],
                          (QLX_GetPatternCell(EPenPattern(number))->rows[y] >> (7 - x) & 1) != 0)
                    << "pattern " << number << " at " << x << ", " << y;
        EXPECT_NE(svg.find("x=\"3\" y=\"-3\" width=\"8\" height=\"8\""), std::string::npos)
            << "fixed to the window's corner: " << svg;
        EXPECT_EQ(CountOf(svg, "fill=\"#FFFFFF\""), 2) << "the canvas, and the unset squares";
        EXPECT_EQ(svg.find("<desc>"), std::string::npos);
    }
}

TEST(RecordingSVG, PatternsLeaveUnsetSquaresOutInOtherModesAndAreDefinedOnce) {
    const Painter p = NewRecorder(2);
    p->SetPenPattern(kPenPattern_Gray);
    p->SetPenMode(kPenMode_Maximum);
    p->FillRect({0, 0, 40, 40});
    p->DrawRect({0, 0, 40, 40});
    const std::string svg = SVGOf(p);
    EXPECT_EQ(CountOf(svg, "<pattern "), 1) << svg;
    EXPECT_EQ(CountOf(svg, "fill=\"#FFFFFF\""), 1) << svg;
    EXPECT_EQ(CountOf(svg, "url(#pattern1)"), 2);
    EXPECT_NE(svg.find("M0 0h1v1h-1z"), std::string::npos) << "two pixels a square: " << svg;
}

TEST(RecordingSVG, ModesAreBlendModesWhereThesePixelsAreTheSame) {
    constexpr CRGBColor kPure(65535, 0, 65535), kMixed(0x4040, 0x8080, 0x2020);
    const struct {
        EPenMode mode;
        const CRGBColor& color;
        const char* is; // somewhere in the document
        bool same;
    } rows[] = {
        {kPenMode_Copy, kMixed, "fill=\"#408020\"/>", true},
        {kPenMode_Transparent, kMixed, "fill=\"#408020\"/>", true},
        {kPenMode_NotCopy, kMixed, "fill=\"#BF7FDF\"/>", true},
        {kPenMode_Maximum, kMixed, "mix-blend-mode:lighten\"><rect", true},
        {kPenMode_Minimum, kMixed, "mix-blend-mode:darken\"><rect", true},
        {kPenMode_Blend, kMixed, "fill-opacity=\"0.5\"", true},
        {kPenMode_Add, kMixed, "mix-blend-mode:screen;mix-blend-mode:plus-lighter", true},
        {kPenMode_Or, kPure, "mix-blend-mode:lighten\"><rect", true},
        {kPenMode_Xor, kPure, "mix-blend-mode:difference\"><rect", true},
        {kPenMode_Bic, kPure, "mix-blend-mode:darken\"><rect", true},
        {kPenMode_Bic, kPure, "fill=\"#00FF00\"", true},
        {kPenMode_NotBic, kPure, "fill=\"#FF00FF\"", true},
        {kPenMode_NotXor, kPure, "fill=\"#00FF00\"", true},
        {kPenMode_Xor, kMixed, "<title>xor works on bits, shown by difference</title>", false},
        {kPenMode_Or, kMixed, "1 x or works on bits, shown by lighten", false},
        {kPenMode_Subtract, kMixed, "<title>subtract is held at 0", false},
    };
    for (const auto& row : rows) {
        const Painter p = NewRecorder();
        p->SetForegroundColor(row.color);
        p->SetPenMode(row.mode);
        p->FillRect({0, 0, 40, 40});
        const std::string svg = SVGOf(p);
        EXPECT_NE(svg.find(row.is), std::string::npos) << "mode " << row.mode << ": " << svg;
        EXPECT_EQ(svg.find("<desc>") == std::string::npos, row.same) << "mode " << row.mode;
    }
}

TEST(RecordingSVG, EveryCallHasTheModeThatIsItsOwn) {
    const Painter p = NewRecorder();
    p->SetPenMode(kPenMode_Xor);
    p->SetTextMode(kPenMode_Minimum);
    p->EraseRect({0, 0, 9, 9});
    p->OptimizedFillRect({0, 0, 9, 9}, CRGBColor(1, 2, 3), QLX_Painter::kAlphaBlend_Over,
                         QLX_Painter::kResolution_Logical, nullptr, {},
                         QLX_Painter::kAlphaBlend_Over);
    EXPECT_EQ(SVGOf(p).find("mix-blend-mode"), std::string::npos) << "erased and plain";
    (void)p->DrawTextBox({0, 0, 90, 30}, "box", QLX_Painter::kJustify_Left, true, true,
                         /*clip*/ true, /*erase*/ true);
    const std::string text = SVGOf(p);
    EXPECT_EQ(CountOf(text, "mix-blend-mode:darken"), 1) << text;
    EXPECT_NE(text.find("clip-path=\"url(#clip1)\" style=\"mix-blend-mode:darken\"><text"),
              std::string::npos)
        << "the clip and the mode on one group: " << text;

    const Painter q = NewRecorder();
    q->SetClip(Cmn_Rect<int>(1, 1, 8, 8));
    q->InvertRect({0, 0, 9, 9});
    q->BlendRect({0, 0, 9, 9}, CRGBColor(1, 2, 3), QLX_Painter::kBlend_Multiply);
    q->DrawImage(QLX_Image::Create(4, 4), {0, 0, 9, 9}, kPenMode_NotCopy);
    const std::string svg = SVGOf(q);
    EXPECT_NE(svg.find("<g clip-path=\"url(#clip1)\" style=\"mix-blend-mode:difference\">"),
              std::string::npos)
        << svg;
    EXPECT_NE(svg.find("style=\"mix-blend-mode:multiply\""), std::string::npos) << svg;
    EXPECT_NE(svg.find("filter=\"url(#filter"), std::string::npos) << svg;
    EXPECT_EQ(CountOf(svg, "<clipPath"), 1) << "one clip, defined once";
}

TEST(RecordingSVG, FramesAndLinesCoverThePixelsThatTheyCover) {
    const Painter p = NewRecorder();
    p->SetPenSize(2, 3);
    p->DrawRect({10, 10, 30, 30});
    p->MoveTo(40, 5, QLX_Painter::kResolution_Logical);
    p->LineTo(20, 5, false, QLX_Painter::kResolution_Logical, 0);
    p->DrawRegion(QLX_Region(Cmn_Rect<int>(50, 50, 60, 60)));
    const std::string svg = SVGOf(p);
    EXPECT_NE(svg.find("d=\"M10 10L10 10H30L30 10V30L30 30H10L10 30ZM12 13L12 13H28L28 13V27"),
              std::string::npos)
        << svg;
    EXPECT_NE(svg.find("<rect x=\"22\" y=\"5\" width=\"20\" height=\"3\""), std::string::npos)
        << "without its end, to the left: " << svg;
    EXPECT_NE(svg.find("<rect x=\"50\" y=\"53\" width=\"2\" height=\"4\""), std::string::npos)
        << svg;
}

TEST(RecordingSVG, EdgesAreHardWhereTheCallSaysSo) {
    const Painter p = NewRecorder();
    for (const bool antialias : {false, true}) {
        p->FillOval({0, 0, 9, 9}, antialias);
        p->DrawRoundRect({0, 0, 9, 9}, 2, 2, antialias, !antialias);
        p->DrawArc({0, 0, 9, 9}, 0, 90, antialias);
    }
    EXPECT_EQ(CountOf(SVGOf(p), "<g shape-rendering=\"crispEdges\">"), 3);
}

TEST(RecordingSVG, CanvasesCopiedToAndFroDoNotDouble) {
    const Painter p = NewRecorder();
    const Painter q = p->CreateOffscreenPainter({10, 10, 50, 50}, false, false);
    q->FillRect({12, 12, 20, 20});
    for (int i = 0; i < 64; ++i) {
        p->CopyCanvas(q, {10, 10, 50, 50}, {0, 0, 40, 40}, kPenMode_Copy, nullptr, {0, 0});
        q->CopyCanvas(p, {0, 0, 40, 40}, {10, 10, 50, 50}, kPenMode_Copy, nullptr, {0, 0});
    }
    const std::string svg = SVGOf(p);
    EXPECT_LT(svg.size(), 2000000U);
    EXPECT_EQ(CountOf(svg, "<g id=\"canvas"), 128);
}

TEST(RecordingSVG, ScrolledPixelsAndImagesOfCanvasesAreShownAgain) {
    const Painter p = NewRecorder();
    const Painter q = p->CreateOffscreenPainter({10, 20, 50, 60}, true, false);
    q->FillRect({12, 22, 20, 30});
    p->SetClip(Cmn_Rect<int>(0, 0, 60, 60));
    QLX_Region toRepaint;
    p->ScrollCanvas({0, 0, 40, 40}, 10, -5, toRepaint);
    p->DrawImage(p->CreateImage(q), {5, 5, 25, 25}, kPenMode_Copy);
    const std::string svg = SVGOf(p);
    EXPECT_NE(svg.find("<rect x=\"10\" y=\"0\" width=\"30\" height=\"35\"/></clipPath>"),
              std::string::npos)
        << svg;
    EXPECT_NE(svg.find("x=\"10\" y=\"-5\" width=\"40\" height=\"40\" viewBox=\"0 0 40 40\"><use"),
              std::string::npos)
        << svg;
    EXPECT_NE(svg.find("x=\"5\" y=\"5\" width=\"20\" height=\"20\" viewBox=\"10 20 40 40\"><use"),
              std::string::npos)
        << svg;
    EXPECT_EQ(svg.find("<desc>"), std::string::npos);
}

TEST(RecordingSVG, IconsStandInTheMiddleAndAreNotEnlarged) {
    const Painter p = NewRecorder();
    QLX_Icon icon(QLX_Image::Create(8, 8));
    icon.AddImage(QLX_Image::Create(16, 16));
    p->DrawIcon(icon, {0, 0, 10, 30}); // the wide one, made smaller
    p->DrawIcon(icon, {0, 0, 40, 30}); // the wide one at its size
    p->DrawIcon(icon, {0, 0, 8, 8});
    const std::string svg = SVGOf(p);
    for (const char* place : {"x=\"0\" y=\"10\" width=\"10\" height=\"10\"",
                              "x=\"12\" y=\"7\" width=\"16\" height=\"16\"",
                              "x=\"0\" y=\"0\" width=\"8\" height=\"8\""})
        EXPECT_NE(svg.find(place), std::string::npos) << place << " in " << svg;
}

TEST(RecordingSVG, AnOffscreenCanvasStartsInItsBackgroundAndIsSeenThroughItsMask) {
    const Painter p = NewRecorder();
    p->SetBackgroundColor(CRGBColor(0, 65535, 0));
    const Painter q = p->CreateOffscreenPainter({10, 10, 50, 50}, false, false);
    const QLX_Region mask(Cmn_Rect<int>(0, 0, 5, 5));
    p->CopyCanvas(q, {10, 10, 50, 50}, {10, 10, 50, 50}, kPenMode_Copy, &mask, {20, 30});
    const std::string svg = SVGOf(p);
    EXPECT_NE(svg.find("<rect x=\"10\" y=\"10\" width=\"40\" height=\"40\" fill=\"#00FF00\"/>"),
              std::string::npos)
        << svg;
    EXPECT_NE(svg.find("<rect x=\"20\" y=\"30\" width=\"5\" height=\"5\"/></clipPath>"),
              std::string::npos)
        << svg;
}

} // namespace
