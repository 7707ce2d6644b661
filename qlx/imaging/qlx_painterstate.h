// The state that every painter keeps, in one place: colours, pen, font, text mode, identifier,
// origin, clip, scale and the pen's place.
#pragma once

#include "qlx/foundation/qlx_region.h"
#include "qlx/imaging/qlx_devicescale.h"
#include "qlx/imaging/qlx_font.h"
#include "qlx/imaging/qlx_painter.h"
#include "qlx/imaging/qlx_textlayout.h"

/// The shared base of all painters, platform ones included. It implements the state operations of
/// QLX_Painter and adds no virtual operation, so that a platform's family of painters can add its
/// own right behind the interface's.
class QLX_API QLX_PainterState : public QLX_Painter {
  public:
    ~QLX_PainterState() override;

    void SetIdentifier(int identifier) override;
    int GetIdentifier() override;
    void Activate() override;
    bool IsActive() override;

    Cmn_Rect<int> GetBounds() override;
    QLX_Region GetSystemClipRegion() override;
    Cmn_Rect<int> RestrictToSystemClip(const Cmn_Rect<int>& rect) override;
    Cmn_Point<int> GetOrigin() override;
    void SetWindowOrigin(Cmn_Point<int> origin) override;
    Cmn_Point<int> GetWindowOrigin() override;
    QLX_Region GetClipRegion() override;
    void SetClip(const QLX_Region& region) override;
    void SetClip(const Cmn_Rect<int>& rect) override;

    void SetAlpha(float alpha) override;
    const CRGBColor& GetForegroundColor() override;
    void SetForegroundColor(const CRGBColor& color) override;
    void SetForeground(EThemeColor color) override;
    const CRGBColor& GetBackgroundColor() override;
    void SetBackgroundColor(const CRGBColor& color) override;
    void SetBackground(EThemeColor color) override;
    CRGBColor GetThemeColor(EThemeColor color) override;
    const CRGBColor& GetHighlightColor() override;
    void SetHighlightColor(const CRGBColor& color) override;

    Cmn_Point<short> GetPenSize() override;
    void SetPenSize(short horizontal, short vertical) override;
    EPenMode GetPenMode() override;
    void SetPenMode(EPenMode mode) override;
    EPenPattern GetPenPattern() override;
    void SetPenPattern(EPenPattern pattern) override;
    void NormalizePen() override;
    const QLX_Font& GetFont() override;
    void SetFont(const QLX_Font& font) override;
    EPenMode GetTextMode() override;
    void SetTextMode(EPenMode mode) override;

    void MoveTo(float x, float y, EResolution resolution) override;
    void LineOfLength(int dx, int dy, bool includeEnd, EResolution resolution) override;
    int MeasureStringWidth(const std::string& text) override;
    PathPtr CreateNewPath() override;
    ImagePtr CreateEmptyImage(int width, int height) override;

    // For the owner of the target, not part of drawing

    [[nodiscard]] QLX_DeviceScale GetScale() const noexcept { return mScale; }
    [[nodiscard]] float GetAlpha() const noexcept { return mAlpha; }
    /// Restricts drawing to a region in window coordinates (logical units, whatever the origin), as
    /// window systems do while a window is repainted. It stays in force under every SetClip.
    void SetSystemClip(const QLX_Region& regionInWindow);
    void ClearSystemClip() noexcept;
    /// The pixels of a region that have a pixel outside it within a pen's size: what DrawRegion
    /// draws.
    [[nodiscard]] static QLX_Region GetFrame(const QLX_Region& region, Cmn_Point<short> pen);

  protected:
    /// Canvas in window coordinates, logical units.
    QLX_PainterState(const Cmn_Rect<int>& windowBounds, QLX_DeviceScale scale);
    /// For Clone: the state of another painter, on the same canvas.
    QLX_PainterState(const QLX_PainterState& other);
    QLX_PainterState& operator=(const QLX_PainterState&) = delete;

    /// Takes over what another painter draws with (colours, pen, font, modes, alpha, origin, not
    /// the clip).
    void CopyDrawingState(const QLX_PainterState& other);

    // Coordinates. Device coordinates here are the window's: offscreen canvases subtract their
    // corner last.

    /// The device pixel that local (0, 0) falls on.
    [[nodiscard]] Cmn_Point<int> GetLocalDeviceOrigin() const noexcept;
    [[nodiscard]] Cmn_Rect<int> ToWindow(const Cmn_Rect<int>& local) const noexcept;
    [[nodiscard]] int EdgeXToDevice(std::int64_t x, EResolution resolution) const noexcept;
    [[nodiscard]] int EdgeYToDevice(std::int64_t y, EResolution resolution) const noexcept;
    [[nodiscard]] Cmn_Rect<int> ToDevice(const Cmn_Rect<int>& local,
                                         EResolution resolution) const noexcept;
    /// Not rounded; held within +-1e6, a NaN is 0.
    [[nodiscard]] Cmn_Point<double> PointToDevice(double x, double y,
                                                  EResolution resolution) const noexcept;
    [[nodiscard]] int ThicknessToDevice(int thickness, EResolution resolution) const noexcept;

    /// The clip in window coordinates: what SetClip set, without the system clip.
    [[nodiscard]] const QLX_Region& GetWindowClip() const;

    // Data members keep their order.

    CRGBColor mForegroundColor;
    CRGBColor mBackgroundColor{65535, 65535, 65535};
    CRGBColor mHighlightColor{0xB3B3, 0xD7D7, 0xFFFF};
    Cmn_Point<short> mPenSize{1, 1};
    EPenMode mPenMode = kPenMode_Copy;
    EPenPattern mPenPattern = kPenPattern_Solid;
    QLX_Font mFont;
    EPenMode mTextMode = kPenMode_Copy;
    int mIdentifier = 0;
    float mAlpha = 1;
    bool mActive = false;
    QLX_DeviceScale mScale;
    Cmn_Rect<int> mWindowBounds; // the canvas, in window coordinates
    Cmn_Point<int> mWindowOrigin;
    Cmn_Point<double> mPenPlace; // device

    // The clip as it was given, in the local system of that moment; the rectangle form spares
    // making a region.
    bool mClipIsRect = true;
    Cmn_Rect<int> mClipRect;
    mutable QLX_Region mClipRegion; // of mClipRect once somebody asks
    mutable bool mClipRegionMade = false;
    Cmn_Point<int> mClipOrigin; // the window origin when it was set
    mutable QLX_Region mWindowClip;
    mutable bool mWindowClipMade = false;
    bool mHasSystemClip = false;
    QLX_Region mSystemClip; // window coordinates
    /// Grows when anything changes that decides which pixels are clipped.
    unsigned mClipGeneration = 1;
    QLX_TextLayout mLayout; // reused from call to call
};
