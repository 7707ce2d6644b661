// Whether the texts of a window fit into the boxes that show them, found out by recording what its
// views draw: every text with the box or the place it is given, and what is painted over it later.
#pragma once

#include <string>
#include <vector>

#include "description.h"
#include "newfilelibs/cmn/cmn_rect.h"

class TWindow;

struct FitProblem {
    std::string
        mRule; ///< "text-width", "text-height", "text-cut", "text-covered", "glyph", "frame"
    bool mError = true;
    QLX_SourceObserver::Place mPlace; ///< of the view
    std::string mView;                ///< "TButton 'play'"
    std::string mText;                ///< what is shown; empty for a frame
    std::string mReason;              ///< "needs 84 of 72 in width"
    Cmn_Rect<int> mBox;               ///< logical pixels of the window
};

/// Looks at an open window as it stands, then at what its controls can show besides: every
/// choice of a popup, every time format and the bounds of a numeric field, views that are hidden.
/// The window is as before afterwards. A text fits when, in device pixels, it is no wider and no
/// higher than its box, inside the view, not painted over by another view, and every character of
/// it has a glyph. What a user scrolls (edit texts, lists, the content of scrollers) may be cut
/// where it is scrolled. Frames of neighbours that overlap in part, and frames that stick out of
/// their superview, are warnings.
[[nodiscard]] std::vector<FitProblem> FindFitProblems(TWindow& window,
                                                      const Description& description);
