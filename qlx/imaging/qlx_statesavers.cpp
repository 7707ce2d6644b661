#include "qlx/imaging/qlx_statesavers.h"

// Colours

QLX_StColorState::QLX_StColorState(const QLX_Painter::Ptr& painter) : QLX_StPainterState(painter) {
    Save();
}

QLX_StColorState::~QLX_StColorState() { Restore(); }

void QLX_StColorState::Save() {
    if (!mPainter)
        return;
    mForeground = mPainter->GetForegroundColor();
    mBackground = mPainter->GetBackgroundColor();
}

void QLX_StColorState::Restore() {
    if (!mPainter)
        return;
    mPainter->SetForegroundColor(mForeground);
    mPainter->SetBackgroundColor(mBackground);
}

void QLX_StColorState::Normalize() {
    if (!mPainter)
        return;
    mPainter->SetForeground(kThemeColor_Text);
    mPainter->SetBackground(kThemeColor_WindowBackground);
}

// Pen

QLX_StPenState::QLX_StPenState(const QLX_Painter::Ptr& painter) : QLX_StPainterState(painter) {
    Save();
}

QLX_StPenState::~QLX_StPenState() { Restore(); }

void QLX_StPenState::Save() {
    if (!mPainter)
        return;
    const Cmn_Point<short> size = mPainter->GetPenSize();
    mWidth = size.x;
    mHeight = size.y;
    mPenMode = mPainter->GetPenMode();
    mTextMode = mPainter->GetTextMode();
    mPattern = mPainter->GetPenPattern();
}

void QLX_StPenState::Restore() {
    if (!mPainter)
        return;
    mPainter->SetPenSize(mWidth, mHeight);
    mPainter->SetPenMode(mPenMode);
    mPainter->SetTextMode(mTextMode);
    mPainter->SetPenPattern(mPattern);
}

void QLX_StPenState::Normalize() {
    if (mPainter)
        mPainter->NormalizePen();
}

// Text

QLX_StTextState::QLX_StTextState(const QLX_Painter::Ptr& painter) : QLX_StPainterState(painter) {
    Save();
}

QLX_StTextState::~QLX_StTextState() { Restore(); }

void QLX_StTextState::Save() {
    if (!mPainter)
        return;
    mFont = mPainter->GetFont();
    mPenMode = mPainter->GetPenMode();
    mTextMode = mPainter->GetTextMode();
}

void QLX_StTextState::Restore() {
    if (!mPainter)
        return;
    mPainter->SetFont(mFont);
    mPainter->SetPenMode(mPenMode);
    mPainter->SetTextMode(mTextMode);
}

void QLX_StTextState::Normalize() {
    if (mPainter)
        mPainter->SetFont(QLX_FontMap::RetrieveFont(kFont_Interface, kFontSelect_Plain));
}

// Colours, pen and text

QLX_StPaintState::QLX_StPaintState(const QLX_Painter::Ptr& painter)
    : mColors(painter), mPen(painter), mText(painter) {}

QLX_StPaintState::~QLX_StPaintState() = default;

void QLX_StPaintState::Save() {
    mColors.Save();
    mPen.Save();
    mText.Save();
}

void QLX_StPaintState::Restore() {
    mText.Restore();
    mPen.Restore();
    mColors.Restore();
}

void QLX_StPaintState::Normalize() {
    mColors.Normalize();
    mPen.Normalize();
    mText.Normalize();
}

void QLX_StPaintState::Release() noexcept {
    mColors.Release();
    mPen.Release();
    mText.Release();
}

// Clip

QLX_StClipRgnState::QLX_StClipRgnState(const QLX_Painter::Ptr& painter)
    : QLX_StPainterState(painter) {
    Save();
}

QLX_StClipRgnState::QLX_StClipRgnState(const QLX_Painter::Ptr& painter, const Cmn_Rect<int>& rect)
    : QLX_StClipRgnState(painter) {
    ClipToIntersection(rect);
}

QLX_StClipRgnState::QLX_StClipRgnState(const QLX_Painter::Ptr& painter, const QLX_Region& region)
    : QLX_StClipRgnState(painter) {
    ClipToIntersection(region);
}

QLX_StClipRgnState::~QLX_StClipRgnState() { Restore(); }

void QLX_StClipRgnState::Save() {
    if (mPainter)
        mClip = mPainter->GetClipRegion();
}

void QLX_StClipRgnState::Restore() {
    if (mPainter)
        mPainter->SetClip(mClip);
}

void QLX_StClipRgnState::ClipToIntersection(const Cmn_Rect<int>& rect) {
    if (!mPainter)
        return;
    if (mClip.IsRectangular()) // the usual case, without making a region
        mPainter->SetClip(mClip.GetBounds() & rect);
    else
        ClipToIntersection(QLX_Region(rect));
}

void QLX_StClipRgnState::ClipToIntersection(const QLX_Region& region) {
    if (mPainter)
        mPainter->SetClip(QLX_Region(mClip.Intersection(region)));
}

void QLX_StClipRgnState::ClipToDifference(const Cmn_Rect<int>& rect) {
    ClipToDifference(QLX_Region(rect));
}

void QLX_StClipRgnState::ClipToDifference(const QLX_Region& region) {
    if (mPainter)
        mPainter->SetClip(QLX_Region(mClip.Difference(region)));
}

void QLX_StClipRgnState::SectWithCurrent(const Cmn_Rect<int>& rect) {
    SectWithCurrent(QLX_Region(rect));
}

void QLX_StClipRgnState::SectWithCurrent(const QLX_Region& region) {
    if (mPainter)
        mPainter->SetClip(QLX_Region(mPainter->GetClipRegion().Intersection(region)));
}

void QLX_StClipRgnState::DiffWithCurrent(const Cmn_Rect<int>& rect) {
    DiffWithCurrent(QLX_Region(rect));
}

void QLX_StClipRgnState::DiffWithCurrent(const QLX_Region& region) {
    if (mPainter)
        mPainter->SetClip(QLX_Region(mPainter->GetClipRegion().Difference(region)));
}

void QLX_StClipRgnState::Normalize() {
    if (mPainter)
        mPainter->SetClip(mPainter->GetBounds());
}

// Origin

QLX_StOriginState::QLX_StOriginState(const QLX_Painter::Ptr& painter)
    : QLX_StPainterState(painter) {
    Save();
}

QLX_StOriginState::~QLX_StOriginState() { Restore(); }

void QLX_StOriginState::Save() {
    if (mPainter)
        mOrigin = mPainter->GetWindowOrigin();
}

void QLX_StOriginState::Restore() {
    if (mPainter)
        mPainter->SetWindowOrigin(mOrigin);
}

void QLX_StOriginState::Normalize() {
    if (mPainter)
        mPainter->SetWindowOrigin({0, 0});
}

// Offscreen

StOffscreenPainter::StOffscreenPainter(Cmn_AliasedRefCountPtr<QLX_Painter>& painter,
                                       const Cmn_Rect<int>& area)
    : mVariable(painter) {
    if (!painter)
        return;
    mOffscreen = painter->CreateOffscreenPainter(area, /*withAlpha*/ false, /*copyContents*/ true);
    if (!mOffscreen)
        return;
    mReplaced = painter;
    painter = mOffscreen;
}

StOffscreenPainter::~StOffscreenPainter() {
    if (!mReplaced)
        return;
    const Cmn_Rect<int> bounds = mOffscreen->GetBounds();
    mReplaced->CopyCanvas(mOffscreen, bounds, bounds, kPenMode_Copy, nullptr, {0, 0});
    mVariable = mReplaced;
}
