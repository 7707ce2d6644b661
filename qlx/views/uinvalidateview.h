// TInvalidateView gathers what its tree wants drawn, as a region, and draws it once a frame. A
// window is one; a TInvalidateView further down lets a host draw a part of a window on a painter of
// its own.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "qlx/foundation/qlx_region.h"
#include "qlx/views/uview.h"

/// What drawing cost, counted since the last reset.
struct QLX_API TDrawCosts {
    std::uint64_t mFrames = 0;        ///< times that something was drawn
    std::uint64_t mViewsDrawn = 0;    ///< views whose Draw or DrawAdorners was called
    std::uint64_t mViewsVisited = 0;  ///< views looked at on the way, drawn or not
    std::uint64_t mPixelsPainted = 0; ///< logical pixels of the regions that were drawn
    std::uint64_t mPixelsShown = 0;   ///< device pixels handed to the screen
    std::uint64_t mRectsShown = 0;    ///< rectangles handed to the screen
};

/// A view that was drawn.
struct QLX_API TDrawnView {
    std::string mClassName;
    std::uint32_t mIdentifier = 0;
    VRect mArea; ///< local coordinates of the view
};

/// The top of a tree that is drawn on one painter. One that has no painter of its own and lies in
/// another one's tree is an ordinary view there.
class QLX_API TInvalidateView : public TView {
  public:
    QLX_DECLARE_CLASS(TInvalidateView);
    TInvalidateView();
    ~TInvalidateView() override;

    // What is to be drawn, in local coordinates

    void InvalidateRect(const VRect& rect);
    void InvalidateRegion(const QLX_Region& region);
    void ValidateAll();
    [[nodiscard]] const QLX_Region& GetInvalidRegion() const;
    [[nodiscard]] bool NeedsDrawing() const;

    /// Draws the invalid region and empties it. What becomes invalid during the drawing is drawn
    /// the next time. Nothing happens without a painter, or while drawing is already under way.
    void DrawInvalid();
    [[nodiscard]] bool IsDrawing() const { return mDrawing; }

    /// The painter to draw on; null for none. Its surface keeps its pixels from frame to frame.
    /// While drawing is under way the old one stays, since views hold it; the new one follows the
    /// frame.
    void SetDrawingPainter(const PainterPtr& painter);
    [[nodiscard]] const PainterPtr& GetDrawingPainter() const { return mPainter; }

    /// Draws a view of this tree, with what is inside it, on another painter: for pictures and
    /// recordings. Places are as in the window. What is invalid stays invalid, costs are not
    /// counted.
    void DrawViewOn(const PainterPtr& painter, TView* view, const VRect& area);

    // For TView

    /// Cuts a rectangle in local coordinates to what can be drawn now: the extent and, while
    /// drawing, the bounds of what is being drawn within it. False when nothing is left.
    bool ClipToDrawing(VRect& rect) const;
    /// Sets origin, clip and drawing environment for a view of this tree. False without a painter.
    bool FocusOn(TView* view);
    /// Says for which view FocusOn will be asked next, with what HandleDraw knows about it already:
    /// its offset and the rectangle to draw, both in the coordinates of this view.
    void ExpectFocus(const TView* view, const VPoint& toHere, const VRect& rect);
    [[nodiscard]] const TView* GetFocused() const { return mFocused; }
    void DropFocus() { mFocused = nullptr; }
    /// Moves what shows of a view by delta: rect is what is visible of it, in the coordinates of
    /// this view. Marks what comes into sight. False, and nothing done, where moving pixels does
    /// not give the picture that drawing anew would give: something lies in front, or drawing is
    /// under way.
    bool ScrollPixels(const TView* view, const VRect& rect, const VPoint& delta);

    [[nodiscard]] TDrawCosts& GetCosts() { return mCosts; }
    /// Appends every view that is drawn from now on; null for none. Not owned.
    void SetDrawLog(std::vector<TDrawnView>* log) { mDrawLog = log; }
    /// Draws every rectangle that was just drawn again in a colour for a moment. A debugging aid.
    void SetPaintFlashing(bool on) { mFlashing = on; }
    [[nodiscard]] bool IsPaintFlashing() const { return mFlashing; }

    TInvalidateView* GetInvalidateView() override;
    [[nodiscard]] TObject* Clone() override;

    // Slot order is part of the binary interface: append, never move.

    /// The first thing became invalid; a window asks for a frame here.
    virtual void BecameInvalid();
    /// The region was drawn, in local coordinates, and pixels were moved within it.
    virtual void Drawn(const QLX_Region& region);
    /// The same of a single rectangle, and nothing was moved. Calls Drawn.
    virtual void DrawnRect(const Cmn_Rect<int>& rect);

  private:
    friend class TView;
    struct Expected {
        const TView* view = nullptr; // not owned; only compared
        VPoint toHere;
        VRect rect;
    };
    void MergePending() const;
    bool DrawOneRect();
    void DrawFrame(const Cmn_Rect<int>& bounds, bool isRect, std::uint64_t pixels);
    /// Around the pieces of the drawn region in a rectangle, and how many they are.
    [[nodiscard]] Cmn_Rect<int> BoundsInDrawing(const Cmn_Rect<int>& rect, int& pieces) const;
    void SetClipFor(const VPoint& toHere, const VRect& rect);
    [[nodiscard]] bool IsCovered(const TView* view, const VRect& rect) const;

    // Rectangles wait in mPending until someone asks for the region, so that a thousand controls
    // that change in one turn cost a thousand pushes and one union.
    mutable std::vector<Cmn_Rect<int>> mPending; // local coordinates
    mutable QLX_Region mInvalid;                 // local coordinates
    QLX_Region mDrawRegion;                      // while drawing: what is being drawn
    Cmn_Rect<int> mDrawBounds{0, 0, 0, 0};       // of mDrawRegion
    QLX_Region mMoved;                           // moved by ScrollPixels since the last frame
    PainterPtr mPainter;
    const TView* mFocused = nullptr; // not owned; only compared
    Expected mExpected;
    TDrawCosts mCosts;
    std::vector<TDrawnView>* mDrawLog = nullptr; // not owned
    bool mDrawing = false;
    bool mDrawRegionIsRect = true;
    bool mFlashing = false;
    bool mPainterChanges = false; // set while drawing: mNextPainter follows
    PainterPtr mNextPainter;
};
