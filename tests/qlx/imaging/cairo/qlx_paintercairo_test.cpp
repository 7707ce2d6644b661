#include <gtest/gtest.h>

#include <random>

#include "qlx/imaging/cairo/qlx_paintercairo.h"
#include "qlx/imaging/qlx_image.h"
#include "qlx/imaging/qlx_recordingpainter.h"
#include "qlx/imaging/qlx_statesavers.h"
#include "tests/support/painter_sheet.h"
#include "tests/support/picture_compare.h"

namespace {

using Rect = Cmn_Rect<int>;

QLX_Image::Ptr PixelsOf(const QLX_Painter::Ptr& painter) {
    return static_cast<QLX_PainterCairo*>(painter.Get())->GetPixels();
}
QLX_PainterState& StateOf(const QLX_Painter::Ptr& painter) {
    return *static_cast<QLX_PainterState*>(painter.Get());
}
QLX_Painter::Ptr NewSheet(double scale, unsigned parts) {
    const auto painter =
        QLX_PainterCairo::New(kPainterSheetWidth, kPainterSheetHeight, QLX_DeviceScale(scale));
    DrawPainterSheet(painter, parts);
    return painter;
}

TEST(PainterCairo, TheSheetLooksAsItDidWhenItWasLookedAt) {
    for (const auto& [scale, name] : {std::pair(1.0, "1x"), {1.25, "1.25x"}, {2.0, "2x"}}) {
        const std::string suffix = name;
        EXPECT_TRUE(MatchesGolden(*PixelsOf(NewSheet(scale, kSheet_Shapes | kSheet_Canvases)),
                                  "painter-shapes-" + suffix));
        EXPECT_TRUE(MatchesGolden(*PixelsOf(NewSheet(scale, kSheet_Texts)),
                                  "painter-texts-" + suffix, /*tolerance*/ 1));
    }
}

TEST(PainterCairo, AReplayedRecordingGivesTheSamePixels) {
    const QLX_Painter::Ptr recorder(
        new QLX_PainterRecording(kPainterSheetWidth, kPainterSheetHeight, QLX_DeviceScale(1.5)));
    DrawPainterSheet(recorder);
    const auto& recording = static_cast<QLX_PainterRecording*>(recorder.Get())->GetRecording();
    const auto read =
        QLX_Recording::Parse(recording.Print(QLX_Recording::kPrint_Complete), "sheet");
    const auto replayed =
        QLX_PainterCairo::New(kPainterSheetWidth, kPainterSheetHeight, QLX_DeviceScale(1.5));
    read->Replay(replayed);
    EXPECT_TRUE(
        SamePictures(*PixelsOf(replayed), *PixelsOf(NewSheet(1.5, kSheet_All)), "replayed"));
}

// The law behind repainting damage: whatever the pieces, every pixel comes out as in one go.
TEST(PainterCairo, PiecesOfTheSheetGiveTheWholeSheet) {
    for (const double scale : {1.0, 1.25, 1.5, 1.7, 2.0}) {
        SCOPED_TRACE(scale);
        const unsigned parts = kSheet_Shapes | kSheet_Texts;
        const auto whole = NewSheet(scale, parts);
        const auto pieces =
            QLX_PainterCairo::New(kPainterSheetWidth, kPainterSheetHeight, QLX_DeviceScale(scale));
        for (int top = 0; top < kPainterSheetHeight; top += 97)
            for (int left = 0; left < kPainterSheetWidth; left += 131) {
                QLX_Region piece(Rect(left, top, left + 131, top + 97));
                StateOf(pieces).SetSystemClip(piece);
                DrawPainterSheet(pieces, parts);
            }
        ASSERT_TRUE(SamePictures(*PixelsOf(pieces), *PixelsOf(whole), "pieces"));
    }
}

TEST(PainterCairo, OffscreenDrawingEqualsDrawingDirectly) {
    for (const double scale : {1.0, 1.25, 1.6, 2.0}) {
        SCOPED_TRACE(scale);
        const auto direct = QLX_PainterCairo::New(200, 150, QLX_DeviceScale(scale));
        const auto redirected = QLX_PainterCairo::New(200, 150, QLX_DeviceScale(scale));
        const auto draw = [](const QLX_Painter::Ptr& p) {
            p->SetPenPattern(kPenPattern_DiagonalStripes);
            p->FillRect({13, 17, 77, 51});
            p->NormalizePen();
            p->DrawOval({31, 21, 98, 70});
            p->MoveTo(33, 60, QLX_Painter::kResolution_Logical);
            p->DrawString("offscreen");
            p->InvertRect({40, 20, 55, 66});
        };
        for (const auto& p : {direct, redirected})
            p->SetWindowOrigin({-3, -5});
        draw(direct);
        {
            QLX_Painter::Ptr variable = redirected;
            const StOffscreenPainter offscreen(variable, Rect(11, 15, 99, 71));
            ASSERT_NE(variable.Get(), redirected.Get());
            EXPECT_EQ(variable->GetBounds(), Rect(11, 15, 99, 71));
            draw(variable);
        }
        EXPECT_TRUE(SamePictures(*PixelsOf(redirected), *PixelsOf(direct), "offscreen"));
    }
}

} // namespace
