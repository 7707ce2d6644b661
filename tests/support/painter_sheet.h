// One drawing that uses every operation, mode, pattern, text box and saver: what the contact sheet
// shows and the painters' tests compare.
#pragma once

#include "qlx/imaging/qlx_painter.h"

inline constexpr int kPainterSheetWidth = 760;
inline constexpr int kPainterSheetHeight = 900;

/// Draws the sheet at (0, 0) of a painter. The same calls every time.
void DrawPainterSheet(const QLX_Painter::Ptr& painter);
