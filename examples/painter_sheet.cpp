// Draws the contact sheet of the painter: every operation, mode, pattern, text box and saver, at
// scales 1, 1.25, 1.5 and 2, as pictures, as a recording and as SVG.
//
//   painter_sheet [FOLDER]      writes into FOLDER (default: the current one)

#include <cstdio>
#include <fstream>
#include <string>

#include "qlx/imaging/qlx_painterfactory.h"
#include "qlx/imaging/qlx_recordingpainter.h"
#include "tests/support/painter_sheet.h"

namespace {

bool WritePicture(const std::string& path, double scale) {
    const QLX_Painter::Ptr painter = QLX_PainterFactory::Get().MakeOffscreen(
        kPainterSheetWidth, kPainterSheetHeight, QLX_DeviceScale(scale), /*withAlpha*/ false);
    if (!painter)
        return false;
    DrawPainterSheet(painter);
    painter->SaveToFile(std::wstring(path.begin(), path.end()));
    std::printf("%s\n", path.c_str());
    return true;
}

bool WriteText(const std::string& path, const std::string& text) {
    std::ofstream file(path, std::ios::binary);
    file << text;
    std::printf("%s\n", path.c_str());
    return file.good();
}

} // namespace

int main(int argumentCount, char** arguments) {
    const std::string folder = argumentCount > 1 ? std::string(arguments[1]) + "/" : "";
    bool good = true;
    if (QLX_PainterFactory::Find("cairo"))
        good = WritePicture(folder + "painter-sheet-1x.png", 1) &&
               WritePicture(folder + "painter-sheet-1.25x.png", 1.25) &&
               WritePicture(folder + "painter-sheet-1.5x.png", 1.5) &&
               WritePicture(folder + "painter-sheet-2x.png", 2);
    const QLX_Painter::Ptr recorder(
        new QLX_PainterRecording(kPainterSheetWidth, kPainterSheetHeight));
    DrawPainterSheet(recorder);
    const QLX_Recording& recording =
        static_cast<QLX_PainterRecording*>(recorder.Get())->GetRecording();
    good =
        WriteText(folder + "painter-sheet.txt", recording.Print(QLX_Recording::kPrint_Complete)) &&
        good;
    good = WriteText(folder + "painter-sheet.svg", recording.AsSVG()) && good;
    return good ? 0 : 1;
}
