// One drawing that uses every operation, mode, pattern, text box and saver: what the contact sheet
// shows and the painters' tests compare.
#pragma once

#include "qlx/imaging/qlx_painter.h"

inline constexpr int kPainterSheetWidth = 760;
inline constexpr int kPainterSheetHeight = 850;

/// What of the sheet is drawn. Shapes depend on arithmetic alone, texts on fonts too.
enum EPainterSheetPart : unsigned {
    kSheet_Shapes = 1,
    kSheet_Texts = 2,
    kSheet_Canvases = 4, ///< what reads pixels back: scrolling, copies, images of canvases
    kSheet_All = 7
};

/// Draws the sheet, or parts of it in their places, at (0, 0) of a painter. The same calls every
/// time.
void DrawPainterSheet(const QLX_Painter::Ptr& painter, unsigned parts = kSheet_All);
