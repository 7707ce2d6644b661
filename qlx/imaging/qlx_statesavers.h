// Scope objects that remember a part of a painter's state and put it back.
#pragma once

#include "qlx/foundation/qlx_region.h"
#include "qlx/imaging/qlx_font.h"
#include "qlx/imaging/qlx_painter.h"

/// What all savers share: a counted reference to the painter. A saver restores in its destructor
/// unless Release ended it before; a copy restores the same state on its own. With a null painter
/// nothing happens.
class QLX_API QLX_StPainterState {
  public:
    /// Lets go of the painter without restoring; the destructor then does nothing.
    void Release() noexcept { mPainter.Reset(); }
    [[nodiscard]] const QLX_Painter::Ptr& GetPainter() const noexcept { return mPainter; }

  protected:
    explicit QLX_StPainterState(const QLX_Painter::Ptr& painter) noexcept : mPainter(painter) {}
    QLX_StPainterState(const QLX_StPainterState&) noexcept = default;
    QLX_StPainterState& operator=(const QLX_StPainterState&) noexcept = default;
    ~QLX_StPainterState() = default;

    QLX_Painter::Ptr mPainter; // counted
};

/// Foreground and background colour.
class QLX_API QLX_StColorState : public QLX_StPainterState {
  public:
    explicit QLX_StColorState(const QLX_Painter::Ptr& painter);
    QLX_StColorState(const QLX_StColorState&) = default;
    QLX_StColorState& operator=(const QLX_StColorState&) = default;
    ~QLX_StColorState();

    /// Takes the state again; Restore puts that back.
    void Save();
    void Restore();
    /// The theme's text colour on its window background.
    void Normalize();

  private:
    CRGBColor mForeground;
    CRGBColor mBackground;
};

/// Pen size, pen mode, text mode and pen pattern; restored in that order.
class QLX_API QLX_StPenState : public QLX_StPainterState {
  public:
    explicit QLX_StPenState(const QLX_Painter::Ptr& painter);
    QLX_StPenState(const QLX_StPenState&) = default;
    QLX_StPenState& operator=(const QLX_StPenState&) = default;
    ~QLX_StPenState();

    void Save();
    void Restore();
    /// NormalizePen.
    void Normalize();

  private:
    short mWidth = 1;
    short mHeight = 1;
    EPenMode mPenMode = kPenMode_Copy;
    EPenMode mTextMode = kPenMode_Copy;
    EPenPattern mPattern = kPenPattern_Solid;
};

/// Font, pen mode and text mode; restored in that order.
class QLX_API QLX_StTextState : public QLX_StPainterState {
  public:
    explicit QLX_StTextState(const QLX_Painter::Ptr& painter);
    QLX_StTextState(const QLX_StTextState&) = default;
    QLX_StTextState& operator=(const QLX_StTextState&) = default;
    ~QLX_StTextState();

    void Save();
    void Restore();
    /// The standard interface font; the modes stay.
    void Normalize();

  private:
    QLX_Font mFont;
    EPenMode mPenMode = kPenMode_Copy;
    EPenMode mTextMode = kPenMode_Copy;
};

/// Colours, pen and text together. Restores text, then pen, then colours.
class QLX_API QLX_StPaintState {
  public:
    explicit QLX_StPaintState(const QLX_Painter::Ptr& painter);
    ~QLX_StPaintState();
    QLX_StPaintState(const QLX_StPaintState&) = default;
    QLX_StPaintState& operator=(const QLX_StPaintState&) = default;

    void Save();
    void Restore();
    /// The standard colours, a normal pen and the standard interface font.
    void Normalize();
    void Release() noexcept;

  private:
    QLX_StColorState mColors;
    QLX_StPenState mPen;
    QLX_StTextState mText;
};

/// The clip region.
class QLX_API QLX_StClipRgnState : public QLX_StPainterState {
  public:
    explicit QLX_StClipRgnState(const QLX_Painter::Ptr& painter);
    /// Narrow the clip at once.
    QLX_StClipRgnState(const QLX_Painter::Ptr& painter, const Cmn_Rect<int>& rect);
    QLX_StClipRgnState(const QLX_Painter::Ptr& painter, const QLX_Region& region);
    QLX_StClipRgnState(const QLX_StClipRgnState&) = default;
    QLX_StClipRgnState& operator=(const QLX_StClipRgnState&) = default;
    ~QLX_StClipRgnState();

    void Save();
    void Restore();
    /// The clip that was saved, within or without an area: several calls do not add up.
    void ClipToIntersection(const Cmn_Rect<int>& rect);
    void ClipToIntersection(const QLX_Region& region);
    void ClipToDifference(const Cmn_Rect<int>& rect);
    void ClipToDifference(const QLX_Region& region);
    /// The clip in force now, within or without an area: calls add up.
    void SectWithCurrent(const Cmn_Rect<int>& rect);
    void SectWithCurrent(const QLX_Region& region);
    void DiffWithCurrent(const Cmn_Rect<int>& rect);
    void DiffWithCurrent(const QLX_Region& region);
    /// The whole canvas.
    void Normalize();

  private:
    QLX_Region mClip;
};

/// The window origin.
class QLX_API QLX_StOriginState : public QLX_StPainterState {
  public:
    explicit QLX_StOriginState(const QLX_Painter::Ptr& painter);
    QLX_StOriginState(const QLX_StOriginState&) = default;
    QLX_StOriginState& operator=(const QLX_StOriginState&) = default;
    ~QLX_StOriginState();

    void Save();
    void Restore();
    /// (0, 0).
    void Normalize();

  private:
    Cmn_Point<int> mOrigin;
};

/// Redirects a painter variable to an offscreen canvas for a scope, then copies the canvas back in
/// one piece: nothing half drawn is ever seen. The canvas starts with what the target shows. The
/// variable must outlive the scope. When no canvas can be had, drawing goes to the target directly.
class QLX_API StOffscreenPainter {
  public:
    StOffscreenPainter(Cmn_AliasedRefCountPtr<QLX_Painter>& painter, const Cmn_Rect<int>& area);
    ~StOffscreenPainter();
    StOffscreenPainter(const StOffscreenPainter&) = delete;
    StOffscreenPainter& operator=(const StOffscreenPainter&) = delete;

  private:
    QLX_Painter::Ptr& mVariable; // not owned
    QLX_Painter::Ptr mReplaced;  // counted; null when the variable was left alone
    QLX_Painter::Ptr mOffscreen; // counted
};
