// A list of painter calls with the state each was made in: printed as text, read back, replayed
// into any painter, or shown as SVG.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "newfilelibs/cmn/cmn_polygon.h"
#include "qlx/foundation/qlx_region.h"
#include "qlx/imaging/qlx_devicescale.h"
#include "qlx/imaging/qlx_font.h"
#include "qlx/imaging/qlx_painter.h"

/// The operations that are recorded: those that draw, and those that change what later ones draw.
/// Questions are not. The order is free; the names that texts use are in qlx_recording.cpp.
enum class EPainterCall : std::uint8_t {
    Activate,
    Flush,
    SetIdentifier,
    SetWindowOrigin,
    SetClipRegion,
    SetClipRect,
    SetAlpha,
    SetForegroundColor,
    SetForeground,
    SetBackgroundColor,
    SetBackground,
    SetHighlightColor,
    SetPenSize,
    SetPenMode,
    SetPenPattern,
    NormalizePen,
    SetFont,
    SetTextMode,
    MoveTo,
    LineTo,
    LineOfLength,
    OptimizedVerticalLine,
    OptimizedHorizontalLine,
    OptimizedWaveformFill,
    OptimizedVerticalLines,
    OptimizedIdenticalVerticalLines,
    OptimizedHorizontalLines,
    OptimizedIdenticalHorizontalLines,
    OptimizedWaveformOutline,
    OptimizedDrawImage,
    OptimizedDrawImageRow,
    OptimizedDrawImages,
    OptimizedDrawBackgroundImage,
    OptimizedFillRect,
    OptimizedFillRoundRect,
    OptimizedCopyPixelsFromOffscreen,
    DrawRect,
    DrawRoundRect,
    DrawOval,
    DrawArc,
    DrawPolygon,
    DrawRegion,
    DrawChar,
    DrawString,
    DrawStringJustified,
    DrawTextBox,
    DrawSingleLineTextBox,
    DrawImage,
    DrawImagePortion,
    DrawIcon,
    ScrollCanvas,
    FillRect,
    FillRoundRect,
    FillOval,
    FillPolygon,
    FillRegion,
    EraseRect,
    EraseRoundRect,
    EraseRegion,
    BlendRect,
    BlendRegion,
    InvertRect,
    InvertRegion,
    HighlightRect,
    HighlightRegion,
    CreateOffscreenPainter,
    DrawPath,
    FillPath,
    CopyCanvas,
    SaveIntoImage,
    CreateImage,
    Count
};

/// The state that a drawing call was made in.
struct QLX_RecordedState {
    CRGBColor foreground;
    CRGBColor background;
    CRGBColor highlight;
    Cmn_Point<short> penSize{1, 1};
    EPenMode penMode = kPenMode_Copy;
    EPenMode textMode = kPenMode_Copy;
    EPenPattern penPattern = kPenPattern_Solid;
    float alpha = 1;
    QLX_Font font;
    Cmn_Point<int> origin;      ///< the window origin
    Cmn_Point<double> penPlace; ///< local, logical
    QLX_Region clip;            ///< local coordinates
    bool clipped = false;       ///< whether the clip is less than the canvas
};

/// Which canvas an argument means: 0 is the recording's first, kNone a null painter, kForeign one
/// that was not made by this recording (replaying leaves it out).
struct QLX_RecordedCanvas {
    static constexpr int kNone = -1;
    static constexpr int kForeign = -2;
    int number = kNone;
    friend bool operator==(QLX_RecordedCanvas, QLX_RecordedCanvas) = default;
};
/// An image by its number in the recording; 0 is null.
struct QLX_RecordedImage {
    int number = 0;
    friend bool operator==(QLX_RecordedImage, QLX_RecordedImage) = default;
};

using QLX_RecordedNumbers = std::optional<std::vector<int>>; ///< absent: a null array
using QLX_RecordedArgument =
    std::variant<std::monostate, bool, int, float, std::string, Cmn_Point<int>, Cmn_Rect<int>,
                 CRGBColor, QLX_Font, QLX_Region, Cmn_Polygon<int>, QLX_Painter::PathPtr,
                 QLX_RecordedImage, QLX_RecordedCanvas, QLX_RecordedNumbers, std::vector<CRGBColor>,
                 std::vector<QLX_RecordedImage>>;

/// One call: which operation, and its arguments in order.
struct QLX_RecordedCall {
    EPainterCall call;
    int canvas = 0; ///< on which it was made
    std::vector<QLX_RecordedArgument> arguments;
    QLX_RecordedState state; ///< as it was before the call
};

/// A recording: canvases, images and calls in their order. User-interface thread.
///
/// The text form has one line a call: "FillRect (0, 0, 10, 10)", on canvases other than the first
/// with
/// "@1 " in front. Rectangles are left, top, right, bottom; points x, y; colours "#RRGGBB", with
/// alpha
/// "#RRGGBBAA", with 16 bits a component sixteen digits; modes and the like by name; texts quoted
/// with backslash escapes; "null" where nothing was given.
class QLX_API QLX_Recording : public Cmn_RefCountObject {
  public:
    enum EPrintKind {
        kPrint_Drawing, ///< only calls that draw, each followed by " | " and what of the state it
                        ///< depends on
        kPrint_All,     ///< all calls, no state
        kPrint_Complete ///< kPrint_All with the canvas and the pixels of images: what Parse reads
                        ///< back
    };

    QLX_Recording(int width, int height, QLX_DeviceScale scale);
    ~QLX_Recording() override;

    /// Logical size of the first canvas.
    [[nodiscard]] int GetWidth() const noexcept { return mWidth; }
    [[nodiscard]] int GetHeight() const noexcept { return mHeight; }
    [[nodiscard]] QLX_DeviceScale GetScale() const noexcept { return mScale; }

    [[nodiscard]] const std::vector<QLX_RecordedCall>& GetCalls() const noexcept { return mCalls; }
    void Add(QLX_RecordedCall call);
    /// Forgets the calls and, when no canvas but the first is left, its images.
    void Clear();

    /// Number of an image, given at its first use; 0 for null. The recording counts a reference.
    [[nodiscard]] QLX_RecordedImage NumberOf(const QLX_Painter::ImagePtr& image);
    /// Null for 0 and unknown numbers.
    [[nodiscard]] QLX_Painter::ImagePtr GetImage(QLX_RecordedImage image) const;
    /// A number for one more canvas.
    [[nodiscard]] int NewCanvas() noexcept { return ++mLastCanvas; }

    /// One line a call; the same calls give the same text on every machine.
    [[nodiscard]] std::string Print(EPrintKind kind) const;
    /// Reads kPrint_Complete's text (and kPrint_All's, for calls without images, on a canvas of 0
    /// by 0). Throws std::runtime_error "source:line:column: reason".
    [[nodiscard]] static Cmn_RefCountPtr<QLX_Recording> Parse(std::string_view text,
                                                              const std::string& source);
    /// Makes all calls on a painter; offscreen canvases are made by it. Offscreen canvases end with
    /// the replay.
    void Replay(const QLX_Painter::Ptr& painter) const;
    /// A picture of the drawing calls for looking at: an SVG document. Patterns are tiles, modes
    /// the blend modes that give the same pixels. Where there is none (bitwise modes of colours
    /// between black and white, subtracting, highlighting) the nearest is shown; the document's
    /// description counts these, and each has a title that says so. Offscreen canvases appear where
    /// they are copied.
    [[nodiscard]] std::string AsSVG() const;

    [[nodiscard]] static const char* GetName(EPainterCall call) noexcept;
    /// Whether the call puts pixels on a canvas.
    [[nodiscard]] static bool IsDrawing(EPainterCall call) noexcept;

  private:
    friend class QLX_RecordingReader;
    /// Replay without putting the painter's state back.
    void ReplayCalls(const QLX_Painter::Ptr& painter) const;

    int mWidth;
    int mHeight;
    QLX_DeviceScale mScale;
    int mLastCanvas = 0;
    std::vector<QLX_RecordedCall> mCalls;
    std::vector<QLX_Painter::ImagePtr> mImages; // counted; number minus one
    std::map<const QLX_Image*, int> mNumbers;
};
