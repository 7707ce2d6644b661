#include "qlx/imaging/qlx_painter.h"

#include "qlx/imaging/qlx_font.h"
#include "qlx/imaging/qlx_textlayout.h"

QLX_Painter::~QLX_Painter() = default;

void QLX_Painter::WillDraw() {}

void QLX_Painter::DidDraw() {}

void QLX_Painter::SaveToFile(const std::wstring&) {}

int QLX_Painter::MeasureStringHeight(int width, const std::string& text, EWrapKind wrap) {
    if (text.empty())
        return 0;
    QLX_TextLayout layout;
    layout.LayOut(text, GetFont(), float(width), wrap);
    return layout.GetHeight();
}

float QLX_Painter::MeasureStringWidthF(const std::string& text) {
    return QLX_TextMeasure::Get().MeasureWidth(GetFont(), text);
}
