// Laid-out lines of DirectWrite, kept: most of a window's texts are the same in the next frame.
#pragma once

#include <string_view>

#include "qlx/imaging/qlx_font.h"
#include "qlx/imaging/win32/qlx_nativehandles.h"

#include <dwrite.h>

/// A line ready to draw.
struct QLX_D2DLine {
    IDWriteTextLayout* layout = nullptr; ///< not owned; null when it cannot be made
    float baseline = 0;                  ///< from the layout's top, pixels
};

/// The kept lines: those used last, a thousand at most. User-interface thread.
class QLX_API QLX_D2DText {
  public:
    /// Valid until the next call. pixels is the em.
    [[nodiscard]] static QLX_D2DLine GetLine(std::string_view text, const QLX_Font& font,
                                             double pixels);
    /// Lines asked for and lines laid out since the last Clear: how well the cache serves.
    [[nodiscard]] static unsigned GetAskedCount() noexcept;
    [[nodiscard]] static unsigned GetLaidOutCount() noexcept;
    static void Clear();
};
