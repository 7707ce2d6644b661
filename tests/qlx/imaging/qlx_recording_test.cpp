#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "newfilelibs/cmn/cmn_polygon.h"
#include "qlx/imaging/qlx_image.h"
#include "qlx/imaging/qlx_painterfactory.h"
#include "qlx/imaging/qlx_recordingpainter.h"
#include "qlx/imaging/qlx_statesavers.h"
#include "tests/support/painter_sheet.h"
#include "tests/support/seeds.h"

namespace {

QLX_Painter::Ptr NewRecorder(int width = 100, int height = 50) {
    return QLX_Painter::Ptr(new QLX_PainterRecording(width, height));
}
QLX_Recording& RecordingOf(const QLX_Painter::Ptr& painter) {
    return static_cast<QLX_PainterRecording*>(painter.Get())->GetRecording();
}
std::string Drawn(const QLX_Painter::Ptr& painter) {
    return RecordingOf(painter).Print(QLX_Recording::kPrint_Drawing);
}
std::string Complete(const QLX_Recording& recording) {
    return recording.Print(QLX_Recording::kPrint_Complete);
}

TEST(Recording, ALineNamesTheCallAndTheStateItDependsOn) {
    const auto p = NewRecorder();
    p->FillRect({0, 0, 10, 10});
    p->SetForegroundColor({65535, 0, 0, 0x8080});
    p->SetPenSize(2, 3);
    p->SetPenMode(kPenMode_Xor);
    p->SetPenPattern(kPenPattern_Gray);
    p->SetClip(Cmn_Rect<int>(5, 5, 20, 20));
    p->SetWindowOrigin({-3, 4});
    p->DrawRect({1, 2, 3, 4});
    p->InvertRect({0, 0, 1, 1});
    p->MoveTo(2, 30, QLX_Painter::kResolution_Logical);
    p->DrawString("a \"b\"\n\x01");
    EXPECT_EQ(Drawn(p),
              "FillRect (0, 0, 10, 10) | fg #000000\n"
              "DrawRect (1, 2, 3, 4) | fg #FF000080 bg #FFFFFF pen 2x3 mode xor pattern gray "
              "origin (-3, 4) clip (2, 9, 17, 24)\n"
              "InvertRect (0, 0, 1, 1) | origin (-3, 4) clip (2, 9, 17, 24)\n"
              "DrawString \"a \\\"b\\\"\\n\\x01\" | at 2, 30 fg #FF000080 font \"DejaVu Sans 12\" "
              "origin (-3, 4) clip (2, 9, 17, 24)\n");
}

TEST(Recording, EveryOperationSurvivesTextAndReplay) {
    const auto p = NewRecorder(kPainterSheetWidth, kPainterSheetHeight);
    DrawPainterSheet(p);
    const std::string text = Complete(RecordingOf(p));
    for (int i = int(EPainterCall::MoveTo); i < int(EPainterCall::Count); ++i)
        EXPECT_NE(text.find(QLX_Recording::GetName(EPainterCall(i))), std::string::npos)
            << QLX_Recording::GetName(EPainterCall(i)) << " is not on the sheet";

    const auto read = QLX_Recording::Parse(text, "sheet");
    EXPECT_TRUE(Complete(*read) == text);
    EXPECT_EQ(read->Print(QLX_Recording::kPrint_Drawing), Drawn(p));
    EXPECT_TRUE(read->AsSVG() == RecordingOf(p).AsSVG());
}

TEST(Recording, ReplayingPutsThePaintersStateBack) {
    const auto p = NewRecorder();
    p->SetForegroundColor({1, 2, 3});
    p->SetWindowOrigin({5, 6});
    p->FillRect({0, 0, 4, 4});
    const auto q = NewRecorder();
    RecordingOf(p).Replay(q);
    EXPECT_EQ(q->GetForegroundColor(), CRGBColor());
    EXPECT_EQ(q->GetWindowOrigin(), Cmn_Point<int>());
    EXPECT_EQ(Drawn(q), Drawn(p));
}

TEST(Recording, ImagesTravelWithTheirPixels) {
    const auto p = NewRecorder();
    const QLX_Image::Ptr image = QLX_Image::Create(2, 2, {0xFF112233, 0xFF112233, 0x80400000, 0});
    image->SetDouble(QLX_Image::Create(4, 4));
    p->DrawImage(image, {0, 0, 2, 2}, kPenMode_Copy);
    const std::string text = Complete(RecordingOf(p));
    EXPECT_EQ(text, "canvas 100x50 scale 120\n"
                    "image 1 2x2 2*FF112233 80400000 00000000\n"
                    "double 1 4x4 16*00000000\n"
                    "DrawImage image 1 (0, 0, 2, 2) copy\n");
    const auto read = QLX_Recording::Parse(text, "x");
    ASSERT_TRUE(read->GetImage({1}));
    EXPECT_TRUE(read->GetImage({1})->IsEqual(*image));
}

TEST(Recording, OffscreenPaintersRecordUnderTheirOwnNumber) {
    QLX_Painter::Ptr p = NewRecorder();
    {
        const StOffscreenPainter offscreen(p, Cmn_Rect<int>(10, 10, 30, 30));
        p->FillRect({12, 12, 14, 14});
    }
    EXPECT_EQ(RecordingOf(p).Print(QLX_Recording::kPrint_All),
              "CreateOffscreenPainter (10, 10, 30, 30) false true @1\n"
              "@1 FillRect (12, 12, 14, 14)\n"
              "CopyCanvas @1 (10, 10, 30, 30) (10, 10, 30, 30) copy null (0, 0)\n");
}

TEST(Recording, WhatIsNoRecordingIsToldWithItsPlace) {
    const struct {
        const char* why;
        const char* text;
        const char* message;
    } rows[] = {
        {"unknown call", "FillRect (0, 0, 1, 1)\nFillCircle (1, 2)\n",
         "f:2:1: unknown call \"FillCircle\""},
        {"a missing argument", "MoveTo 1 2\n", "f:1:11: unknown value \"\""},
        {"too many arguments", "FillRect (0, 0, 1, 1) 5\n",
         "f:1:23: more arguments than the call takes"},
        {"a broken rectangle", "FillRect (0, 0, 1 1)\n", "f:1:19: expected \",\""},
        {"a number beyond 32 bits", "FillRect (0, 0, 99999999999, 1)\n",
         "f:1:17: expected a number"},
        {"an open text", "DrawString \"abc\n", "f:1:16: the text is not closed"},
        {"an unknown escape", "DrawString \"\\q\"\n", "f:1:14: unknown escape"},
        {"no such canvas", "@1 FillRect (0, 0, 1, 1)\n", "f:1:3: no such canvas"},
        {"no such image", "DrawImage image 3 (0, 0, 1, 1) copy\n", "f:1:18: no such image"},
        {"an unknown mode", "SetPenMode stamp\n", "f:1:12: unknown value \"stamp\""},
        {"too few pixels", "image 1 2x2 3*FF000000\n", "f:1:23: fewer pixels than the image has"},
        {"too many pixels", "image 1 1x1 FF000000 FF000000\n",
         "f:1:30: more pixels than the image has"},
        {"an image of absurd size", "image 1 99999x1 00000000\n",
         "f:1:9: the number is out of range"},
        {"a canvas in the middle", "Flush\ncanvas 1x1 scale 120\n",
         "f:2:7: the canvas comes first"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.why);
        try {
            (void)QLX_Recording::Parse(row.text, "f");
            ADD_FAILURE() << "was read";
        } catch (const std::runtime_error& error) {
            EXPECT_STREQ(error.what(), row.message);
        }
    }
}

// Damages a text here and there: bytes changed, lines left out, doubled, exchanged or cut, numbers
// replaced by those at the limits.
std::string Damaged(const std::string& text, std::mt19937& random) {
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    for (unsigned i = 1 + random() % 4; i > 0 && lines.size() > 1; --i) {
        const std::size_t at = random() % lines.size();
        std::string& line = lines[at];
        switch (random() % 7) {
        case 0:
            lines.erase(lines.begin() + std::ptrdiff_t(at));
            break;
        case 1:
            lines.insert(lines.begin() + std::ptrdiff_t(at), lines[random() % lines.size()]);
            break;
        case 2:
            std::swap(line, lines[random() % lines.size()]);
            break;
        case 3:
            line.resize(random() % (line.size() + 1));
            break;
        case 4:
            if (!line.empty())
                line[random() % line.size()] = char(random());
            break;
        default: {
            const std::size_t digit =
                line.find_first_of("0123456789", random() % (line.size() + 1));
            if (digit == std::string::npos)
                break;
            const std::size_t end =
                std::min(line.find_first_not_of("0123456789.", digit), line.size());
            constexpr const char* kNumbers[] = {"2147483647", "-2147483648", "0",   "-1",
                                                "99",         "1e30",        "nan", "8"};
            line.replace(digit, end - digit, kNumbers[random() % std::size(kNumbers)]);
            break;
        }
        }
    }
    std::string out;
    for (const std::string& line : lines)
        out += line + '\n';
    return out;
}

TEST(Recording, DamagedRecordingsAreReadOrTold) {
    const auto p = NewRecorder(kPainterSheetWidth, kPainterSheetHeight);
    DrawPainterSheet(p);
    const std::string text = Complete(RecordingOf(p));
    int read = 0;
    for (unsigned seed = 1; seed <= SeedsToTry(150); ++seed) {
        SCOPED_TRACE(seed);
        std::mt19937 random(seed);
        const std::string damaged = Damaged(text, random);
        try {
            const auto recording = QLX_Recording::Parse(damaged, "d");
            ++read;
            EXPECT_FALSE(recording->AsSVG().empty());
            recording->Replay(NewRecorder());
            if (QLX_PainterMaker* maker = QLX_PainterFactory::Find("cairo"))
                recording->Replay(maker->MakeOffscreen(40, 30, QLX_DeviceScale(), true));
        } catch (const std::runtime_error& error) {
            EXPECT_TRUE(std::string(error.what()).starts_with("d:")) << error.what();
        }
    }
    EXPECT_GT(read, 20) << "most damage should be harmless enough to be read";
}

TEST(Recording, AnSVGHoldsNothingThatXMLRefuses) {
    const auto p = NewRecorder();
    p->DrawString("a<b & \"c\"\x01\xFF\xC3(\xED\xA0\x80\xEF\xBF\xBF\xE2\x82\xAC");
    const std::string svg = RecordingOf(p).AsSVG();
    constexpr const char* kBad = "\xEF\xBF\xBD";
    const std::string expected = std::string(">a&lt;b &amp; &quot;c&quot; ") + kBad + kBad + "(" +
                                 kBad + kBad + kBad + kBad + "\xE2\x82\xAC</text>";
    EXPECT_NE(svg.find(expected), std::string::npos) << svg;
}

TEST(Recording, NothingIsRecordedOnceTheTargetIsGone) {
    const auto p = NewRecorder();
    const auto clone = p->Clone();
    static_cast<QLX_PainterRecording*>(p.Get())->Detach();
    EXPECT_FALSE(clone->IsValid());
    clone->FillRect({0, 0, 9, 9});
    EXPECT_FALSE(clone->CreateOffscreenPainter({0, 0, 5, 5}, false, false));
    EXPECT_EQ(RecordingOf(p).Print(QLX_Recording::kPrint_All), "");
}

TEST(StateSavers, RestoreInTheOrderThatHostsRelyOn) {
    const auto p = NewRecorder();
    p->SetPenSize(2, 3);
    p->SetTextMode(kPenMode_Or);
    RecordingOf(p).Clear();
    { const QLX_StPenState pen(p); }
    { const QLX_StTextState text(p); }
    EXPECT_EQ(RecordingOf(p).Print(QLX_Recording::kPrint_All),
              "SetPenSize 2 3\nSetPenMode copy\nSetTextMode or\nSetPenPattern solid\n"
              "SetFont \"DejaVu Sans 12\"\nSetPenMode copy\nSetTextMode or\n");
}

TEST(StateSavers, CopyReleaseAndDisorder) {
    const auto p = NewRecorder();
    auto first = std::make_unique<QLX_StClipRgnState>(p, Cmn_Rect<int>(0, 0, 10, 10));
    auto second = std::make_unique<QLX_StClipRgnState>(p, Cmn_Rect<int>(2, 2, 20, 20));
    EXPECT_EQ(p->GetClipRegion().GetBounds(), Cmn_Rect<int>(2, 2, 10, 10));
    first.reset(); // out of order: each puts back what it saw
    EXPECT_EQ(p->GetClipRegion().GetBounds(), Cmn_Rect<int>(0, 0, 100, 50));
    second.reset();
    EXPECT_EQ(p->GetClipRegion().GetBounds(), Cmn_Rect<int>(0, 0, 10, 10));

    p->SetForegroundColor({1, 1, 1});
    QLX_StColorState saved(p);
    const QLX_StColorState copy(saved);
    saved.Release();
    p->SetForegroundColor({2, 2, 2});
    { const QLX_StColorState another(copy); }
    EXPECT_EQ(p->GetForegroundColor(), CRGBColor(1, 1, 1));

    QLX_StPaintState nothing{QLX_Painter::Ptr()};
    nothing.Normalize();
    nothing.Restore();
    QLX_Painter::Ptr none;
    { const StOffscreenPainter offscreen(none, Cmn_Rect<int>(0, 0, 5, 5)); }
    EXPECT_FALSE(none);
}

TEST(StateSavers, TheClipStaysInTheWindowWhenTheOriginMoves) {
    const auto p = NewRecorder();
    p->SetClip(Cmn_Rect<int>(10, 10, 20, 20));
    {
        const QLX_StOriginState origin(p);
        p->SetWindowOrigin({-10, -10});
        EXPECT_EQ(p->GetClipRegion().GetBounds(), Cmn_Rect<int>(0, 0, 10, 10));
        const QLX_StClipRgnState clip(p, Cmn_Rect<int>(5, 0, 50, 50));
        EXPECT_EQ(p->GetClipRegion().GetBounds(), Cmn_Rect<int>(5, 0, 10, 10));
    }
    EXPECT_EQ(p->GetClipRegion().GetBounds(), Cmn_Rect<int>(10, 10, 20, 20));
}

} // namespace
