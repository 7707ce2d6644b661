// What a painter does with arguments that nobody should pass, and what it costs to call.

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <functional>
#include <limits>
#include <random>
#include <stdexcept>

#include "basekit/cmn/cmn_string.h"
#include "qlx/foundation/qlx_region.h"
#include "qlx/imaging/cairo/qlx_glyphcache.h"
#include "qlx/imaging/cairo/qlx_paintercairo.h"
#include "qlx/imaging/qlx_font.h"
#include "qlx/imaging/qlx_image.h"
#include "qlx/imaging/qlx_path.h"
#include "qlx/imaging/qlx_statesavers.h"
#include "tests/support/allocation_counter.h"
#include "tests/support/painter_player.h"
#include "tests/support/picture_compare.h"
#include "tests/support/seeds.h"

namespace {

using Rect = Cmn_Rect<int>;
using Painter = QLX_Painter::Ptr;
constexpr int kLowest = std::numeric_limits<int>::min();
constexpr int kHighest = std::numeric_limits<int>::max();
constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr CRGBColor kRed(65535, 0, 0);

QLX_Image::Ptr PixelsOf(const Painter& painter) {
    return static_cast<QLX_PainterCairo*>(painter.Get())->GetPixels();
}
Painter NewCanvas(int width = 40, int height = 30, double scale = 1) {
    const Painter p = QLX_PainterCairo::New(width, height, QLX_DeviceScale(scale));
    p->SetForegroundColor(kRed);
    p->SetBackgroundColor(CRGBColor(0, 65535, 0));
    return p;
}
QLX_Image::Ptr SmallImage() {
    return QLX_Image::Create(4, 4, std::vector<std::uint32_t>(16, 0xFF0000FF));
}
int CountChanged(const QLX_Image& image) {
    int count = 0;
    for (int y = 0; y < image.GetHeight(); ++y)
        for (int x = 0; x < image.GetWidth(); ++x)
            count += image.GetPixel(x, y) != 0xFFFFFFFF;
    return count;
}

struct RectCall {
    const char* name;
    std::function<void(const Painter&, const Rect&)> call;
    bool fills; // every pixel of the rectangle changes
};
const std::vector<RectCall>& RectCalls() {
    static const std::vector<RectCall> calls = {
        {"FillRect", [](const Painter& p, const Rect& r) { p->FillRect(r); }, true},
        {"EraseRect", [](const Painter& p, const Rect& r) { p->EraseRect(r); }, true},
        {"InvertRect", [](const Painter& p, const Rect& r) { p->InvertRect(r); }, true},
        {"BlendRect",
         [](const Painter& p, const Rect& r) {
             p->BlendRect(r, kRed, QLX_Painter::kBlend_Multiply);
         },
         true},
        {"FillRegion", [](const Painter& p, const Rect& r) { p->FillRegion(QLX_Region(r)); }, true},
        {"OptimizedFillRect",
         [](const Painter& p, const Rect& r) {
             p->OptimizedFillRect(r, kRed, QLX_Painter::kAlphaBlend_Over,
                                  QLX_Painter::kResolution_Logical, nullptr, kRed,
                                  QLX_Painter::kAlphaBlend_Over);
         },
         true},
        {"DrawImage",
         [](const Painter& p, const Rect& r) { p->DrawImage(SmallImage(), r, kPenMode_Copy); },
         true},
        {"FillRoundRect",
         [](const Painter& p, const Rect& r) { p->FillRoundRect(r, 3, 3, true, false); }, true},
        {"FillOval", [](const Painter& p, const Rect& r) { p->FillOval(r, true); }, true},
        {"EraseRoundRect",
         [](const Painter& p, const Rect& r) { p->EraseRoundRect(r, 3, 3, true); }, true},
        {"HighlightRect",
         [](const Painter& p, const Rect& r) {
             p->SetBackgroundColor(CRGBColor(65535, 65535, 65535));
             p->HighlightRect(r, &kRed);
         },
         true},
        {"DrawRect", [](const Painter& p, const Rect& r) { p->DrawRect(r); }, false},
        {"DrawOval", [](const Painter& p, const Rect& r) { p->DrawOval(r); }, false},
        {"DrawRoundRect",
         [](const Painter& p, const Rect& r) { p->DrawRoundRect(r, 5, 5, true, true); }, false},
        {"DrawArc", [](const Painter& p, const Rect& r) { p->DrawArc(r, 0, 300, true); }, false},
        {"DrawRegion", [](const Painter& p, const Rect& r) { p->DrawRegion(QLX_Region(r)); },
         false},
        {"DrawTextBox",
         [](const Painter& p, const Rect& r) {
             (void)p->DrawTextBox(r, "words in a box", QLX_Painter::kJustify_Full, true, true,
                                  /*clip*/ true, /*erase*/ false);
         },
         false},
        {"DrawSingleLineTextBox",
         [](const Painter& p, const Rect& r) { p->DrawSingleLineTextBox(r, "t", true, nullptr); },
         false},
        {"DrawIcon",
         [](const Painter& p, const Rect& r) { p->DrawIcon(QLX_Icon(SmallImage()), r); }, false},
        {"CopyCanvas",
         [](const Painter& p, const Rect& r) {
             p->CopyCanvas(p, r, r, kPenMode_NotCopy, nullptr, {0, 0});
         },
         false},
        {"ScrollCanvas",
         [](const Painter& p, const Rect& r) {
             QLX_Region toRepaint;
             p->ScrollCanvas(r, kHighest, kLowest, toRepaint);
         },
         false},
        {"CreateOffscreenPainter",
         [](const Painter& p, const Rect& r) { (void)p->CreateOffscreenPainter(r, true, true); },
         false},
    };
    return calls;
}

TEST(PainterLimits, EmptyAndInvertedRectanglesDrawNothing) {
    const struct {
        const char* why;
        Rect rect;
    } rows[] = {
        {"empty", {5, 5, 5, 5}},
        {"no width", {5, 0, 5, 30}},
        {"no height", {0, 5, 40, 5}},
        {"left and right exchanged", {30, 2, 10, 20}},
        {"top and bottom exchanged", {2, 20, 30, 5}},
        {"inverted both ways by everything", {kHighest, kHighest, kLowest, kLowest}},
        {"beside the canvas", {40, 0, 80, 30}},
        {"far away", {kHighest - 9, kHighest - 9, kHighest, kHighest}},
        {"far the other way", {kLowest, kLowest, kLowest + 9, kLowest + 9}},
    };
    for (const auto& row : rows)
        for (const double scale : {1.0, 1.5})
            for (const RectCall& call : RectCalls()) {
                const Painter p = NewCanvas(40, 30, scale);
                call.call(p, row.rect);
                EXPECT_EQ(CountChanged(*PixelsOf(p)), 0) << call.name << ", " << row.why;
            }
}

TEST(PainterLimits, GiganticRectanglesCoverTheCanvas) {
    const struct {
        const char* why;
        Rect rect;
    } rows[] = {
        {"everything there is", {kLowest, kLowest, kHighest, kHighest}},
        {"wider than an int can say", {-2000000000, -5000, 2000000000, 5000}},
        {"from afar", {-100000, -100000, 100000, 100000}},
    };
    for (const auto& row : rows)
        for (const double scale : {1.0, 1.5, 16.0})
            for (const RectCall& call : RectCalls()) {
                const Painter p = NewCanvas(8, 6, scale);
                call.call(p, row.rect);
                const QLX_Image::Ptr pixels = PixelsOf(p);
                if (call.fills) {
                    EXPECT_EQ(CountChanged(*pixels), pixels->GetWidth() * pixels->GetHeight())
                        << call.name << ", " << row.why << ", scale " << scale;
                }
            }
}

// A clip of one rectangle is drawn in without a detour, one of two is not: the pixels are the same,
// and they are those that the rectangles say.
TEST(PainterLimits, FillsTakeTheSamePixelsOnEitherRoad) {
    for (unsigned seed = 1; seed <= SeedsToTry(500); ++seed) {
        std::mt19937 random(seed);
        const auto place = [&](int most) {
            const unsigned kind = random() % 20;
            return kind == 0 ? kLowest : kind == 1 ? kHighest : int(random() % unsigned(most)) - 10;
        };
        const Cmn_Point<int> origin(int(random() % 30) - 15, int(random() % 30) - 15);
        const Rect clip(int(random() % 20), int(random() % 15), 20 + int(random() % 20),
                        15 + int(random() % 15));
        const Rect left(clip.left, clip.top, 20, clip.bottom), right(20, clip.top, clip.right, 15);
        const Rect below(20, 15, clip.right, clip.bottom);
        const Painter direct = NewCanvas(), general = NewCanvas();
        direct->SetClip(clip);
        QLX_Region pieces(left); // together the clip, kept apart by a rectangle off the canvas
        pieces.UniteWith(right);
        pieces.UniteWith(below);
        pieces.UniteWith(Rect(100, 100, 101, 101));
        general->SetClip(pieces);
        std::vector<std::uint32_t> should(40 * 30, 0xFFFFFFFF);
        for (int call = 0; call < 6; ++call) {
            const Rect rect(place(50), place(40), place(50), place(40));
            const CRGBColor color(static_cast<unsigned short>(random() % 256 * 257), 0, 65535);
            for (const Painter& p : {direct, general}) {
                p->SetWindowOrigin(origin);
                p->SetForegroundColor(color);
                if (call % 2 == 0)
                    p->FillRect(rect);
                else
                    p->OptimizedFillRect(rect, color, QLX_Painter::kAlphaBlend_Over,
                                         QLX_Painter::kResolution_Logical, nullptr, color,
                                         QLX_Painter::kAlphaBlend_Over);
            }
            for (int y = clip.top; y < clip.bottom; ++y)
                for (int x = clip.left; x < clip.right; ++x)
                    if (x + origin.x >= rect.left && x + origin.x < rect.right &&
                        y + origin.y >= rect.top && y + origin.y < rect.bottom)
                        should[std::size_t(y) * 40 + std::size_t(x)] = color.AsInt32();
        }
        const QLX_Image::Ptr pixels = PixelsOf(direct);
        ASSERT_TRUE(pixels->IsEqual(*QLX_Image::Create(40, 30, should))) << "seed " << seed;
        ASSERT_TRUE(pixels->IsEqual(*PixelsOf(general))) << "seed " << seed;
    }
}

TEST(PainterLimits, OriginsAndClipsFromAnywhere) {
    const Cmn_Point<int> origins[] = {
        {kLowest, kLowest}, {kHighest, kHighest}, {kLowest, kHighest}};
    for (const auto& origin : origins) {
        const Painter p = NewCanvas();
        p->SetWindowOrigin(origin);
        p->SetClip(Rect(kLowest, kLowest, kHighest, kHighest));
        p->FillRect({-100, -100, 100, 100});
        p->MoveTo(0, 0, QLX_Painter::kResolution_Logical);
        p->DrawString("x");
        (void)p->GetBounds();
        (void)p->GetClipRegion();
        EXPECT_EQ(CountChanged(*PixelsOf(p)), 0);
        p->SetWindowOrigin({0, 0});
        p->SetClip(p->GetBounds());
        p->FillRect({0, 0, 2, 2});
        EXPECT_EQ(CountChanged(*PixelsOf(p)), 4);
    }
}

TEST(PainterLimits, NumbersThatAreNone) {
    const float places[] = {kNaN, kInfinity, -kInfinity, 3e38F, -3e38F, 0, 5};
    for (const float x : places)
        for (const float y : places)
            for (const float thickness : {0.0F, kNaN, kInfinity, -1.0F}) {
                const Painter p = NewCanvas();
                p->MoveTo(x, 3, QLX_Painter::kResolution_Device);
                p->LineTo(7, y, true, QLX_Painter::kResolution_Logical, thickness);
                p->LineOfLength(kHighest, kLowest, true, QLX_Painter::kResolution_Logical);
                p->DrawString("a");
                const QLX_Painter::PathPtr path = p->CreateNewPath();
                path->MoveTo(x, y);
                path->CurveTo(y, x, 5, thickness, 20, 20);
                path->AddArc({0, 0, 9, 9}, x, y);
                p->FillPath(path);
                p->DrawPath(path, true, QLX_Painter::kLineJoin_Miter);
            }
    const struct {
        const char* why;
        float alpha;
        std::uint32_t pixel;
    } alphas[] = {{"no number is whole", kNaN, 0xFFFF0000},
                  {"above one", kInfinity, 0xFFFF0000},
                  {"below zero", -kInfinity, 0xFFFFFFFF}};
    for (const auto& row : alphas) {
        const Painter p = NewCanvas();
        p->SetAlpha(row.alpha);
        p->FillRect({0, 0, 5, 5});
        EXPECT_EQ(PixelsOf(p)->GetPixel(2, 2), row.pixel) << row.why;
    }
}

TEST(PainterLimits, EnumerationsOutOfRangeFallBack) {
    const Painter p = NewCanvas();
    p->SetPenMode(EPenMode(99));
    p->SetTextMode(EPenMode(-1));
    p->SetPenPattern(EPenPattern(kHighest));
    EXPECT_EQ(p->GetPenMode(), kPenMode_Copy);
    EXPECT_EQ(p->GetTextMode(), kPenMode_Copy);
    EXPECT_EQ(p->GetPenPattern(), kPenPattern_Solid);
    p->SetPenSize(-5, std::numeric_limits<short>::min());
    EXPECT_EQ(p->GetPenSize(), Cmn_Point<short>(0, 0));
    p->DrawRect({0, 0, 20, 20});
    p->MoveTo(0, 0, QLX_Painter::kResolution_Logical);
    p->LineTo(20, 20, true, QLX_Painter::kResolution_Logical, 0);
    EXPECT_EQ(CountChanged(*PixelsOf(p)), 0);
}

TEST(PainterLimits, MalformedTextShowsTheReplacementCharacter) {
    const struct {
        const char* why;
        std::string text;
        int replacements;
    } rows[] = {
        {"a byte that begins nothing", "\xFF", 1}, {"a lonely continuation", "\x80", 1},
        {"a cut sequence", "\xE2\x82", 2},         {"an overlong slash", "\xC0\xAF", 2},
        {"a surrogate", "\xED\xA0\x80", 3},        {"beyond Unicode", "\xF4\x90\x80\x80", 4},
    };
    for (const auto& row : rows) {
        std::string well;
        for (int i = 0; i < row.replacements; ++i)
            well += "\xEF\xBF\xBD";
        const Painter a = NewCanvas(), b = NewCanvas();
        for (const auto& [p, text] : {std::pair(a, row.text), std::pair(b, well)}) {
            p->MoveTo(2, 20, QLX_Painter::kResolution_Logical);
            p->DrawString(text);
        }
        EXPECT_TRUE(SamePictures(*PixelsOf(a), *PixelsOf(b), "malformed")) << row.why;
        EXPECT_EQ(a->MeasureStringWidthF(row.text), b->MeasureStringWidthF(well)) << row.why;
    }
}

TEST(PainterLimits, AFontWhoseFileCannotBeUsedIsTheStandardOne) {
    const std::string folder = ::testing::TempDir();
    const std::string cut = folder + "qlx_cut.ttf", empty = folder + "qlx_empty.ttf";
    {
        std::ifstream whole(QLX_GlyphCache::GetFontFile("DejaVu Sans", false), std::ios::binary);
        std::string begin(5000, '\0');
        whole.read(begin.data(), 5000);
        std::ofstream(cut, std::ios::binary) << begin;
        std::ofstream(empty, std::ios::binary) << "";
    }
    const struct {
        const char* why;
        std::string path;
    } rows[] = {{"not there", folder + "nobody.ttf"},
                {"empty", empty},
                {"cut after its tables' list", cut},
                {"a folder", folder},
                {"no path", ""}};
    for (const auto& row : rows) {
        QLX_GlyphCache::AddFontFile("Broken", false, row.path);
        const Painter a = NewCanvas(), b = NewCanvas();
        a->SetFont(QLX_Font("Broken", 12));
        b->SetFont(QLX_Font("DejaVu Sans", 12));
        for (const Painter& p : {a, b}) {
            p->MoveTo(2, 20, QLX_Painter::kResolution_Logical);
            p->DrawString("Ag");
        }
        EXPECT_GT(CountChanged(*PixelsOf(a)), 0) << row.why;
        EXPECT_TRUE(SamePictures(*PixelsOf(a), *PixelsOf(b), "broken-font")) << row.why;
        EXPECT_EQ(a->MeasureStringWidthF("Ag"), b->MeasureStringWidthF("Ag")) << row.why;
        EXPECT_EQ(a->MeasureStringHeight(50, "Ag", QLX_Painter::kWrap_None),
                  b->MeasureStringHeight(50, "Ag", QLX_Painter::kWrap_None))
            << row.why;
    }
    std::remove(cut.c_str());
    std::remove(empty.c_str());
}

// Many different characters in a gigantic size, most of them off the canvas.
std::string ManyCharacters(int count) {
    std::string text;
    for (int i = 0; i < count; ++i)
        Cmn_AppendUTF8(text, char32_t(0x4E00 + i));
    return text;
}

TEST(PainterLimits, GiganticTextsRenderOnlyWhatCanShow) {
    const std::string text = ManyCharacters(500);
    const Painter p = NewCanvas();
    p->SetFont(QLX_Font("DejaVu Sans", 1000));
    const float width = p->MeasureStringWidthF(text);
    const std::uint64_t before = QLX_GlyphCache::GetRenderedCount();
    p->MoveTo(-250000, 20, QLX_Painter::kResolution_Logical);
    p->DrawString(text);
    EXPECT_LT(QLX_GlyphCache::GetRenderedCount() - before, 20U);
    p->MoveTo(0, 100000, QLX_Painter::kResolution_Logical);
    p->DrawString(text);
    EXPECT_LT(QLX_GlyphCache::GetRenderedCount() - before, 20U);
    // The pen moves by the whole width all the same, back into the picture here.
    p->SetFont(QLX_Font("DejaVu Sans", 1000));
    p->MoveTo(5 - width, 20000, QLX_Painter::kResolution_Logical);
    p->DrawString(text);
    p->LineTo(5, -20000, true, QLX_Painter::kResolution_Logical, 0);
    EXPECT_EQ(PixelsOf(p)->GetPixel(5, 10), 0xFFFF0000U);
}

TEST(PainterLimits, GlyphsAreThrownAwayWhileOneFontStays) {
    const Painter p = NewCanvas();
    p->SetFont(QLX_Font("DejaVu Sans", 900));
    const unsigned before = QLX_GlyphCache::GetGeneration();
    const std::string text = ManyCharacters(400);
    for (std::size_t at = 0; at < text.size(); at += 3) {
        p->MoveTo(0, 20, QLX_Painter::kResolution_Logical);
        p->DrawString(text.substr(at, 3));
    }
    EXPECT_GT(QLX_GlyphCache::GetGeneration(), before);
    QLX_GlyphCache::Clear();
}

TEST(PainterLimits, NothingIsDrawnFromNull) {
    const Painter p = NewCanvas();
    p->DrawImage(nullptr, {0, 0, 9, 9}, kPenMode_Copy);
    p->DrawImagePortion(nullptr, {0, 0, 9, 9}, {0, 0, 9, 9}, kPenMode_Copy,
                        QLX_Painter::kResolution_Logical);
    p->DrawIcon(QLX_Icon(), {0, 0, 9, 9});
    p->DrawPath(nullptr, true, QLX_Painter::kLineJoin_Miter);
    p->FillPath(nullptr);
    p->CopyCanvas(nullptr, {0, 0, 9, 9}, {0, 0, 9, 9}, kPenMode_Copy, nullptr, {0, 0});
    p->SaveIntoImage(nullptr, 1);
    p->OptimizedDrawBackgroundImage(nullptr, 9, 9, 2, QLX_Painter::kResolution_Logical);
    p->OptimizedWaveformFill(0, 9, nullptr, nullptr, 0, 0, 9, kRed, nullptr, kRed, 1,
                             QLX_Painter::kResolution_Logical);
    p->OptimizedCopyPixelsFromOffscreen({0, 0, 9, 9}, nullptr, {0, 0, 9, 9}, {0, 0, 9, 9}, true);
    EXPECT_EQ(CountChanged(*PixelsOf(p)), 0);
    EXPECT_TRUE(
        p->GetOffscreenBuffer(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
}

TEST(PainterLimits, ImagesOfNoOrAbsurdSizeAreNull) {
    constexpr int kMost = QLX_Image::kMaximumSide;
    const Painter p = NewCanvas();
    for (const auto& [width, height] :
         {std::pair(0, 5), {5, 0}, {-1, 5}, {kLowest, kLowest}, {kMost + 1, 1}, {1, kHighest}}) {
        EXPECT_FALSE(QLX_Image::Create(width, height)) << width << "x" << height;
        EXPECT_FALSE(p->CreateEmptyImage(width, height)) << width << "x" << height;
        EXPECT_FALSE(QLX_PainterCairo::New(width, height)) << width << "x" << height;
    }
    EXPECT_TRUE(QLX_Image::Create(kMost, 1));
    EXPECT_FALSE(QLX_Image::Create(2, 2, std::vector<std::uint32_t>(3)));
}

TEST(PainterLimits, DamagedPNGsAreToldWithTheReason) {
    const std::string good = SmallImage()->ToPNG();
    const auto changed = [&](std::size_t place, char byte) {
        std::string bytes = good;
        bytes[place] = byte;
        return bytes;
    };
    const struct {
        const char* why;
        std::string bytes;
        const char* reason;
    } rows[] = {
        {"nothing", "", "not a PNG file"},
        {"another kind of file", "GIF89a and so on", "not a PNG file"},
        {"only the signature", good.substr(0, 8), "the PNG has no header"},
        {"no width", changed(19, 0), "a PNG of 0 by 4 pixels is not read"},
        {"gigabytes asked for", changed(16, 0x7F), "a PNG of 2130706436 by 4 pixels is not read"},
        {"more than can be packed", changed(18, 0x3F), "a PNG of 16132 by 4 pixels is more than"},
        {"cut in the data", good.substr(0, good.size() - 20), "the PNG is damaged"},
        {"a changed header byte", changed(24, 3), "the PNG is damaged"},
    };
    for (const auto& row : rows)
        try {
            (void)QLX_Image::FromPNG(row.bytes);
            ADD_FAILURE() << row.why << " was read";
        } catch (const std::runtime_error& error) {
            EXPECT_TRUE(std::string_view(error.what()).starts_with(row.reason))
                << row.why << ": " << error.what();
        }
    EXPECT_TRUE(QLX_Image::FromPNG(good)->IsEqual(*SmallImage()));
}

TEST(PainterLimits, CallsDoNothingOnceTheTargetIsGone) {
    std::vector<std::uint32_t> memory(40 * 30, 0xFFFFFFFF);
    QLX_PixelBuffer buffer;
    buffer.pixels = memory.data();
    buffer.width = buffer.rowPixels = 40;
    buffer.height = 30;
    QLX_PainterMaker* maker = QLX_PainterFactory::Find("cairo");
    const Painter p = maker->MakeForBuffer(buffer, QLX_DeviceScale());
    const Painter clone = p->Clone();
    const QLX_StClipRgnState saver(p, Rect(1, 1, 5, 5));
    maker->Detach(*p);
    EXPECT_FALSE(p->IsValid());
    EXPECT_FALSE(clone->IsValid());
    for (const RectCall& call : RectCalls())
        call.call(p, {0, 0, 40, 30});
    EXPECT_FALSE(p->CreateOffscreenPainter({0, 0, 5, 5}, false, false));
    EXPECT_FALSE(p->CreateImage(nullptr));
    EXPECT_FALSE(
        p->GetOffscreenBuffer(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr));
    EXPECT_EQ(p->GetClipRegion().GetBounds(), Rect(1, 1, 5, 5));
    EXPECT_EQ(memory, std::vector<std::uint32_t>(40 * 30, 0xFFFFFFFF));
}

TEST(PainterLimits, RandomCallsKeepTheLaws) {
    for (unsigned seed = 1; seed <= SeedsToTry(400); ++seed) {
        std::mt19937 random(seed);
        std::string bytes(std::size_t(random() % 600), '\0');
        for (char& byte : bytes)
            byte = char(random());
        ASSERT_EQ(BrokenPainterLaw(bytes), "") << "seed " << seed;
    }
}

// What views call on every repaint takes nothing from the heap once it was called before.
TEST(PainterLimits, DrawingAllocatesNothingOnceItIsWarm) {
    const Painter p = NewCanvas(200, 100);
    const QLX_Image::Ptr image = SmallImage();
    const std::string text = "01:23:45:12", japanese = "\xE6\x99\x82\xE9\x96\x93",
                      joined = "\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D",
                      prose = "words that wrap into several lines of a box";
    const QLX_Font counter = QLX_FontMap::RetrieveFont(kFont_Counter, kFontSelect_Plain);
    const QLX_Region region(
        QLX_Region(Rect(10, 10, 90, 90)).Difference(QLX_Region(Rect(20, 20, 40, 40))));
    const std::vector<int> low(200, 20), high(200, 70);
    const Painter none;
    const struct {
        const char* name;
        std::function<void()> call;
    } rows[] = {
        {"FillRect",
         [&] {
             p->FillRect({1, 1, 50, 50});
         }},
        {"DrawRect",
         [&] {
             p->DrawRect({1, 1, 50, 50});
         }},
        {"patterned fill",
         [&] {
             p->SetPenPattern(kPenPattern_Gray);
             p->FillRect({1, 1, 50, 50});
             p->NormalizePen();
         }},
        {"InvertRect",
         [&] {
             p->InvertRect({1, 1, 50, 50});
         }},
        {"FillRegion", [&] { p->FillRegion(region); }},
        {"SetClip of a rectangle", [&] { p->SetClip(Rect(0, 0, 180, 90)); }},
        {"digits",
         [&] {
             p->SetFont(counter);
             p->MoveTo(5, 40, QLX_Painter::kResolution_Logical);
             p->DrawString(text);
         }},
        {"other simple scripts",
         [&] {
             p->MoveTo(5, 60, QLX_Painter::kResolution_Logical);
             p->DrawString(japanese);
         }},
        {"a laid out script",
         [&] {
             p->MoveTo(5, 60, QLX_Painter::kResolution_Logical);
             p->DrawString(joined);
         }},
        {"DrawTextBox",
         [&] {
             (void)p->DrawTextBox({5, 5, 90, 90}, prose, QLX_Painter::kJustify_Full, true, true,
                                  true, true);
         }},
        {"DrawSingleLineTextBox",
         [&] {
             p->DrawSingleLineTextBox({5, 5, 60, 25}, prose, true, none);
         }},
        {"DrawStringJustified",
         [&] {
             p->DrawStringJustified({5, 5, 90, 90}, text, QLX_Painter::kJustify_Center,
                                    QLX_Painter::kJustify_Middle, QLX_Painter::kResolution_Logical);
         }},
        {"measuring", [&] { (void)p->MeasureStringWidthF(text); }},
        {"DrawImage",
         [&] {
             p->DrawImage(image, {5, 5, 9, 9}, kPenMode_Copy);
         }},
        {"a stretched image",
         [&] {
             p->DrawImage(image, {5, 5, 60, 60}, kPenMode_Copy);
         }},
        {"a waveform",
         [&] {
             p->OptimizedWaveformFill(0, 200, low.data(), high.data(), 0, 0, 100, kRed, none, kRed,
                                      1, QLX_Painter::kResolution_Logical);
         }},
        {"a meter's part",
         [&] {
             p->OptimizedFillRect({5, 5, 12, 80}, kRed, QLX_Painter::kAlphaBlend_Ignore,
                                  QLX_Painter::kResolution_Logical, none, kRed,
                                  QLX_Painter::kAlphaBlend_Ignore);
         }},
        {"scrolling",
         [&] {
             QLX_Region toRepaint;
             p->ScrollCanvas({0, 0, 100, 80}, 0, 0, toRepaint);
         }},
        {"savers",
         [&] {
             const QLX_StPaintState paint(p);
             const QLX_StOriginState origin(p);
             p->SetWindowOrigin({3, 4});
         }},
    };
    for (const auto& row : rows) {
        row.call();
        row.call();
        const AllocationCounter counter;
        for (int i = 0; i < 10; ++i)
            row.call();
        EXPECT_EQ(counter.GetCount(), 0U) << row.name;
    }
}

} // namespace
