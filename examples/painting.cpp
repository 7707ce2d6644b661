// Painting with code: a channel strip drawn once, shown as a picture at two scales, as the list of
// its calls, and as SVG. docs/painting.md explains it.
//
//   painting [FOLDER]      writes into FOLDER (default: the current one)

#include <cmath>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

#include "qlx/foundation/qlx_region.h"
#include "qlx/imaging/qlx_font.h"
#include "qlx/imaging/qlx_painterfactory.h"
#include "qlx/imaging/qlx_path.h"
#include "qlx/imaging/qlx_recordingpainter.h"
#include "qlx/imaging/qlx_statesavers.h"

namespace {

using Painter = QLX_Painter::Ptr;
using Rect = Cmn_Rect<int>;

constexpr int kWidth = 220, kHeight = 120;

// A meter is a few filled rectangles, which need no painter state at all.
void DrawMeter(const Painter& painter, const Rect& rect, float level) {
    const auto part = [&](float from, float to, EThemeColor color) {
        const auto y = [&](float share) {
            return rect.bottom - int(std::lround(share * float(rect.GetHeight())));
        };
        const CRGBColor paint = painter->GetThemeColor(color);
        painter->OptimizedFillRect({rect.left, y(to), rect.right, y(from)}, paint,
                                   QLX_Painter::kAlphaBlend_Over, QLX_Painter::kResolution_Logical,
                                   nullptr, paint, QLX_Painter::kAlphaBlend_Over);
    };
    part(0, 1, kThemeColor_MeterBackground);
    part(0, std::min(level, 0.6F), kThemeColor_MeterLow);
    if (level > 0.6F)
        part(0.6F, std::min(level, 0.85F), kThemeColor_MeterMiddle);
    if (level > 0.85F)
        part(0.85F, level, kThemeColor_MeterHigh);
}

// A waveform is one call for all of its columns.
void DrawWaveform(const Painter& painter, const Rect& rect) {
    const QLX_StClipRgnState clip(painter, rect); // until the end of this function
    painter->SetBackground(kThemeColor_WaveformBackground);
    painter->EraseRect(rect);
    std::vector<int> minima, maxima;
    for (int x = 0; x < rect.GetWidth(); ++x) {
        const double swing = 0.45 * rect.GetHeight() * std::sin(x * 0.31) * std::sin(x * 0.022);
        minima.push_back(-int(std::fabs(swing)));
        maxima.push_back(int(std::fabs(swing)));
    }
    const CRGBColor color = painter->GetThemeColor(kThemeColor_Waveform);
    painter->OptimizedWaveformFill(rect.left, rect.GetWidth(), minima.data(), maxima.data(),
                                   (rect.top + rect.bottom) / 2, rect.top, rect.bottom, color,
                                   nullptr, color, /*columnWidth*/ 1,
                                   QLX_Painter::kResolution_Logical);
}

void DrawStrip(const Painter& painter) {
    const QLX_StPaintState state(painter); // colours, pen, font: as they were when this returns
    painter->SetBackground(kThemeColor_WindowBackground);
    painter->EraseRect({0, 0, kWidth, kHeight});
    painter->SetForeground(kThemeColor_ControlFrame);
    painter->DrawRoundRect({0, 0, kWidth, kHeight}, 6, 6, /*antialias*/ true, /*topOnly*/ false);

    painter->SetForeground(kThemeColor_Text);
    painter->SetFont(QLX_FontMap::RetrieveFont(kFont_Interface, kFontSelect_Bold));
    (void)painter->DrawTextBox({10, 8, 150, 24}, "Lead vocals, second take of the evening",
                               QLX_Painter::kJustify_Left, /*wrap*/ false, /*ellipsis*/ true,
                               /*clip*/ true, /*erase*/ false);
    painter->SetFont(QLX_FontMap::RetrieveFont(kFont_Counter, kFontSelect_Plain));
    painter->DrawStringJustified({10, 92, 150, 112}, "01:23:45:12", QLX_Painter::kJustify_Right,
                                 QLX_Painter::kJustify_Middle, QLX_Painter::kResolution_Logical);
    DrawWaveform(painter, {10, 30, 150, 90});
    DrawMeter(painter, {166, 10, 174, 110}, 0.72F);
    DrawMeter(painter, {178, 10, 186, 110}, 0.91F);

    // Coordinates of their own for a part: its corner is (0, 0) until the scope ends.
    const QLX_StOriginState origin(painter);
    painter->SetWindowOrigin({-194, -50});
    const QLX_Painter::PathPtr path = painter->CreateNewPath();
    path->MoveTo(0, 0);
    path->LineTo(16, 9);
    path->LineTo(0, 18);
    path->Close();
    painter->SetForeground(kThemeColor_ControlMark);
    painter->FillPath(path);
}

bool WritePicture(const std::string& path, double scale) {
    const Painter painter = QLX_PainterFactory::Get().MakeOffscreen(
        kWidth, kHeight, QLX_DeviceScale(scale), /*withAlpha*/ false);
    if (!painter)
        return false;
    DrawStrip(painter);
    painter->SaveToFile(std::wstring(path.begin(), path.end()));
    std::printf("%s\n", path.c_str());
    return true;
}

} // namespace

int main(int argumentCount, char** arguments) {
    const std::string folder = argumentCount > 1 ? std::string(arguments[1]) + "/" : "";
    if (!WritePicture(folder + "strip-1x.png", 1) || !WritePicture(folder + "strip-2x.png", 2))
        return 1;
    const Painter recorder(new QLX_PainterRecording(kWidth, kHeight));
    DrawStrip(recorder);
    const auto& recording = static_cast<QLX_PainterRecording*>(recorder.Get())->GetRecording();
    std::ofstream(folder + "strip.svg") << recording.AsSVG();
    std::printf("%s", recording.Print(QLX_Recording::kPrint_Drawing).c_str());
    return 0;
}
