// Drawings that two builds of the library make and compare: the native one writes what Cairo drew,
// the Windows one replays the same calls. The pictures lie in build/exchange; without them the kept
// pictures of tests/golden serve.
#pragma once

#include <string>
#include <vector>

#include "qlx/imaging/qlx_image.h"
#include "qlx/imaging/qlx_painter.h"

/// A text box whose ink is compared by where it lies.
struct ExchangedText {
    const char* text;
    float size;
    std::uint16_t style;
    QLX_Painter::EJustification justification;
    bool wrap;
    Cmn_Rect<int> box;
};
[[nodiscard]] const std::vector<ExchangedText>& GetExchangedTexts();
inline constexpr int kExchangedTextWidth = 520;
inline constexpr int kExchangedTextHeight = 420;
/// Black on white, every box in its place.
void DrawExchangedTexts(const QLX_Painter::Ptr& painter);

/// "build/exchange/NAME".
[[nodiscard]] std::string GetExchangePath(const std::string& name);

/// The smallest rectangle around what is darker than a light grey within a box of a picture; empty
/// for no ink.
[[nodiscard]] Cmn_Rect<int> FindInk(const QLX_Image& picture, const Cmn_Rect<int>& box);

/// How many pixels of a picture are not what the reference has within one pixel: each channel must
/// lie in the range of the reference's nine pixels around it, give or take `flat` where these are
/// all alike, and `edge` where an edge passes, whose smoothing may differ; and the other way round.
/// Every such pixel is red in differences, when given.
[[nodiscard]] int CountBeyondOnePixel(const QLX_Image& picture, const QLX_Image& reference,
                                      int flat, int edge, QLX_Image* differences = nullptr);
