#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "qlx/imaging/cairo/qlx_paintercairo.h"
#include "qlx/imaging/qlx_recordingpainter.h"
#include "tests/support/painter_sheet.h"
#include "tests/support/picture_exchange.h"

namespace {

// Written beside and renamed, so that a Windows build that reads at the same time sees a whole
// file.
template <class Write>
void WriteWhole(const std::string& name, Write write) {
    const std::string path = GetExchangePath(name);
    const std::string passing = GetExchangePath("passing-" + name);
    write(passing);
    std::filesystem::rename(passing, path);
}

// What the Windows painters are compared with: the calls, and what they look like here.
TEST(PictureExchange, TheSheetAndItsPictureAreThereForTheWindowsBuild) {
    for (const auto& [scale, name] : {std::pair(1.0, "1x"), {1.25, "1.25x"}, {2.0, "2x"}}) {
        const QLX_Painter::Ptr recorder(new QLX_PainterRecording(
            kPainterSheetWidth, kPainterSheetHeight, QLX_DeviceScale(scale)));
        DrawPainterSheet(recorder, kSheet_Shapes | kSheet_Canvases);
        const auto& recording = static_cast<QLX_PainterRecording*>(recorder.Get())->GetRecording();
        WriteWhole("sheet-" + std::string(name) + ".recording", [&](const std::string& path) {
            std::ofstream(path, std::ios::binary)
                << recording.Print(QLX_Recording::kPrint_Complete);
        });
        const QLX_Painter::Ptr cairo =
            QLX_PainterCairo::New(kPainterSheetWidth, kPainterSheetHeight, QLX_DeviceScale(scale));
        recording.Replay(cairo);
        const QLX_Image::Ptr picture = static_cast<QLX_PainterCairo&>(*cairo).GetPixels();
        WriteWhole("sheet-" + std::string(name) + ".png",
                   [&](const std::string& path) { picture->ToPNGFile(path); });
        EXPECT_FALSE(FindInk(*picture, picture->GetBounds()).Empty());
    }
}

TEST(PictureExchange, TheTextBoxesAreThereForTheWindowsBuild) {
    const QLX_Painter::Ptr cairo = QLX_PainterCairo::New(kExchangedTextWidth, kExchangedTextHeight);
    DrawExchangedTexts(cairo);
    const QLX_Image::Ptr picture = static_cast<QLX_PainterCairo&>(*cairo).GetPixels();
    for (const ExchangedText& text : GetExchangedTexts())
        EXPECT_FALSE(FindInk(*picture, text.box).Empty()) << text.text;
    WriteWhole("texts.png", [&](const std::string& path) { picture->ToPNGFile(path); });
}

} // namespace
