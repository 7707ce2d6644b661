#include "qlx/imaging/qlx_recordingpainter.h"

#include <algorithm>

#include "basekit/cmn/cmn_assert.h"
#include "basekit/sys/sys_file.h"
#include "qlx/imaging/qlx_image.h"
#include "qlx/imaging/qlx_path.h"
#include "qlx/imaging/qlx_utf8.h"

namespace {

using Argument = QLX_RecordedArgument;

// Each kind of argument as the recording keeps it. Images are numbered by the painter beforehand.
template <class T>
[[nodiscard]] Argument Keep(const T& value) {
    if constexpr (std::is_enum_v<T>)
        return int(value);
    else if constexpr (std::is_same_v<T, short>)
        return int(value);
    else
        return value;
}
template <class T>
[[nodiscard]] Argument KeepOptional(const T* value) {
    return value ? Argument(*value) : Argument();
}
[[nodiscard]] QLX_RecordedNumbers KeepNumbers(const int* values, int count) {
    if (!values)
        return std::nullopt;
    return std::vector<int>(values, values + std::max(0, count));
}
[[nodiscard]] std::vector<CRGBColor> KeepColors(const Cmn_PolyVector<CRGBColor>& colors,
                                                int count) {
    std::vector<CRGBColor> kept;
    const std::size_t used = std::min(colors.size(), std::size_t(std::max(0, count)));
    for (std::size_t i = 0; i < used; ++i)
        kept.push_back(colors[i]);
    return kept;
}
// As many of an array of colours as the indexes reach.
[[nodiscard]] std::vector<CRGBColor> KeepIndexedColors(const CRGBColor* colors, const int* indexes,
                                                       int count) {
    if (!colors || count <= 0)
        return {};
    const int last = indexes ? *std::max_element(indexes, indexes + count) : 0;
    return std::vector<CRGBColor>(colors, colors + std::max(0, last) + 1);
}

} // namespace

QLX_PainterRecording::QLX_PainterRecording(int width, int height, QLX_DeviceScale scale)
    : QLX_PainterRecording(
          Cmn_RefCountPtr<QLX_Recording>(new QLX_Recording(width, height, scale))) {}

QLX_PainterRecording::QLX_PainterRecording(const Cmn_RefCountPtr<QLX_Recording>& recording)
    : QLX_PainterState({0, 0, recording->GetWidth(), recording->GetHeight()},
                       recording->GetScale()),
      mRecording(recording), mTarget(new Target) {}

QLX_PainterRecording::QLX_PainterRecording(const QLX_PainterRecording& parent,
                                           const Cmn_Rect<int>& windowArea, bool withAlpha)
    : QLX_PainterState(windowArea, parent.mScale), mRecording(parent.mRecording),
      mTarget(new Target), mCanvas(parent.mRecording->NewCanvas()), mWithAlpha(withAlpha) {
    CopyDrawingState(parent);
}

QLX_PainterRecording::QLX_PainterRecording(const QLX_PainterRecording& other) = default;

QLX_PainterRecording::~QLX_PainterRecording() = default;

std::string QLX_PainterRecording::Print() const {
    return mRecording->Print(QLX_Recording::kPrint_Drawing);
}

QLX_RecordedState QLX_PainterRecording::GetState() {
    QLX_RecordedState state;
    state.foreground = mForegroundColor;
    state.background = mBackgroundColor;
    state.highlight = mHighlightColor;
    state.penSize = mPenSize;
    state.penMode = mPenMode;
    state.textMode = mTextMode;
    state.penPattern = mPenPattern;
    state.alpha = mAlpha;
    state.font = mFont;
    state.origin = mWindowOrigin;
    state.penPlace = {mPenPlace.x / mScale.GetFactor() + mWindowOrigin.x,
                      mPenPlace.y / mScale.GetFactor() + mWindowOrigin.y};
    state.clip = GetClipRegion();
    state.clipped = !(state.clip.IsRectangular() && state.clip.GetBounds().Contains(GetBounds()));
    return state;
}

template <class... Arguments>
void QLX_PainterRecording::Record(EPainterCall call, Arguments&&... arguments) {
    if (mTarget->gone)
        return;
    QLX_RecordedCall recorded;
    recorded.call = call;
    recorded.canvas = mCanvas;
    recorded.arguments = {Argument(std::forward<Arguments>(arguments))...};
    recorded.state = GetState();
    mRecording->Add(std::move(recorded));
}

QLX_RecordedCanvas QLX_PainterRecording::CanvasOf(const Ptr& painter) const {
    if (!painter)
        return {QLX_RecordedCanvas::kNone};
    const auto* recording = dynamic_cast<const QLX_PainterRecording*>(painter.Get());
    if (!recording || recording->mRecording != mRecording)
        return {QLX_RecordedCanvas::kForeign};
    return {recording->mCanvas};
}

QLX_Painter::Ptr QLX_PainterRecording::Clone() { return Ptr(new QLX_PainterRecording(*this)); }

void* QLX_PainterRecording::GetRawNativeDrawingPort() { return nullptr; }

void QLX_PainterRecording::SaveToFile(const std::wstring& path) {
    const std::string name = QLX_WideToUTF8(path);
    const std::string text = name.ends_with(".svg")
                                 ? mRecording->AsSVG()
                                 : mRecording->Print(QLX_Recording::kPrint_Complete);
    try {
        Sys_SafeWriter::Replace(Sys_FileLoc(name), text);
    } catch (const Sys_FileError& error) {
        Cmn_Assert(error.what(), __FILE__, __LINE__);
    }
}

bool QLX_PainterRecording::IsValid() { return !mTarget->gone; }

// State

void QLX_PainterRecording::SetIdentifier(int identifier) {
    Record(EPainterCall::SetIdentifier, identifier);
    QLX_PainterState::SetIdentifier(identifier);
}
void QLX_PainterRecording::Activate() {
    Record(EPainterCall::Activate);
    QLX_PainterState::Activate();
}
void QLX_PainterRecording::Flush() { Record(EPainterCall::Flush); }
void QLX_PainterRecording::SetWindowOrigin(Cmn_Point<int> origin) {
    Record(EPainterCall::SetWindowOrigin, origin);
    QLX_PainterState::SetWindowOrigin(origin);
}
void QLX_PainterRecording::SetClip(const QLX_Region& region) {
    Record(EPainterCall::SetClipRegion, region);
    QLX_PainterState::SetClip(region);
}
void QLX_PainterRecording::SetClip(const Cmn_Rect<int>& rect) {
    Record(EPainterCall::SetClipRect, rect);
    QLX_PainterState::SetClip(rect);
}
void QLX_PainterRecording::SetAlpha(float alpha) {
    Record(EPainterCall::SetAlpha, alpha);
    QLX_PainterState::SetAlpha(alpha);
}
void QLX_PainterRecording::SetForegroundColor(const CRGBColor& color) {
    Record(EPainterCall::SetForegroundColor, color);
    QLX_PainterState::SetForegroundColor(color);
}
void QLX_PainterRecording::SetForeground(EThemeColor color) {
    Record(EPainterCall::SetForeground, Keep(color));
    mForegroundColor = QLX_Theme::GetColor(color);
}
void QLX_PainterRecording::SetBackgroundColor(const CRGBColor& color) {
    Record(EPainterCall::SetBackgroundColor, color);
    QLX_PainterState::SetBackgroundColor(color);
}
void QLX_PainterRecording::SetBackground(EThemeColor color) {
    Record(EPainterCall::SetBackground, Keep(color));
    mBackgroundColor = QLX_Theme::GetColor(color);
}
void QLX_PainterRecording::SetHighlightColor(const CRGBColor& color) {
    Record(EPainterCall::SetHighlightColor, color);
    QLX_PainterState::SetHighlightColor(color);
}
void QLX_PainterRecording::SetPenSize(short horizontal, short vertical) {
    Record(EPainterCall::SetPenSize, Keep(horizontal), Keep(vertical));
    QLX_PainterState::SetPenSize(horizontal, vertical);
}
void QLX_PainterRecording::SetPenMode(EPenMode mode) {
    QLX_PainterState::SetPenMode(mode);
    Record(EPainterCall::SetPenMode, Keep(mPenMode));
}
void QLX_PainterRecording::SetPenPattern(EPenPattern pattern) {
    QLX_PainterState::SetPenPattern(pattern);
    Record(EPainterCall::SetPenPattern, Keep(mPenPattern));
}
void QLX_PainterRecording::NormalizePen() {
    Record(EPainterCall::NormalizePen);
    QLX_PainterState::NormalizePen();
}
void QLX_PainterRecording::SetFont(const QLX_Font& font) {
    Record(EPainterCall::SetFont, font);
    QLX_PainterState::SetFont(font);
}
void QLX_PainterRecording::SetTextMode(EPenMode mode) {
    QLX_PainterState::SetTextMode(mode);
    Record(EPainterCall::SetTextMode, Keep(mTextMode));
}

// Lines

void QLX_PainterRecording::MoveTo(float x, float y, EResolution resolution) {
    Record(EPainterCall::MoveTo, x, y, Keep(resolution));
    QLX_PainterState::MoveTo(x, y, resolution);
}
void QLX_PainterRecording::LineTo(float x, float y, bool includeEnd, EResolution resolution,
                                  float thickness) {
    Record(EPainterCall::LineTo, x, y, includeEnd, Keep(resolution), thickness);
    QLX_PainterState::MoveTo(x, y, resolution);
}
void QLX_PainterRecording::LineOfLength(int dx, int dy, bool includeEnd, EResolution resolution) {
    Record(EPainterCall::LineOfLength, dx, dy, includeEnd, Keep(resolution));
    const double unit = resolution == kResolution_Logical ? mScale.GetFactor() : 1;
    mPenPlace = {mPenPlace.x + dx * unit, mPenPlace.y + dy * unit};
}

// The Optimized family

void QLX_PainterRecording::OptimizedVerticalLine(int x, int top, int bottom, const CRGBColor& color,
                                                 EResolution resolution) {
    Record(EPainterCall::OptimizedVerticalLine, x, top, bottom, color, Keep(resolution));
}
void QLX_PainterRecording::OptimizedHorizontalLine(int left, int right, int y,
                                                   const CRGBColor& color, EResolution resolution) {
    Record(EPainterCall::OptimizedHorizontalLine, left, right, y, color, Keep(resolution));
}
void QLX_PainterRecording::OptimizedWaveformFill(int x, int count, const int* minima,
                                                 const int* maxima, int yOffset, int top,
                                                 int bottom, const CRGBColor& color,
                                                 const Ptr& second, const CRGBColor& secondColor,
                                                 int columnWidth, EResolution resolution) {
    Record(EPainterCall::OptimizedWaveformFill, x, count, KeepNumbers(minima, count),
           KeepNumbers(maxima, count), yOffset, top, bottom, color, CanvasOf(second), secondColor,
           columnWidth, Keep(resolution));
}
void QLX_PainterRecording::OptimizedVerticalLines(int count, const int* xs, const int* tops,
                                                  const int* bottoms, const int* widths,
                                                  const Cmn_PolyVector<CRGBColor>& colors,
                                                  EAlphaBlendType blend, EResolution resolution) {
    Record(EPainterCall::OptimizedVerticalLines, count, KeepNumbers(xs, count),
           KeepNumbers(tops, count), KeepNumbers(bottoms, count), KeepNumbers(widths, count),
           KeepColors(colors, count), Keep(blend), Keep(resolution));
}
void QLX_PainterRecording::OptimizedIdenticalVerticalLines(
    int count, const int* xs, const int* colorIndexes, const CRGBColor* colors, int top, int bottom,
    int width, EAlphaBlendType blend, EResolution resolution, int xOffset) {
    Record(EPainterCall::OptimizedIdenticalVerticalLines, count, KeepNumbers(xs, count),
           KeepNumbers(colorIndexes, count), KeepIndexedColors(colors, colorIndexes, count), top,
           bottom, width, Keep(blend), Keep(resolution), xOffset);
}
void QLX_PainterRecording::OptimizedHorizontalLines(int count, const int* ys, const int* lefts,
                                                    const int* rights, const int* heights,
                                                    const Cmn_PolyVector<CRGBColor>& colors,
                                                    EAlphaBlendType blend, EResolution resolution) {
    Record(EPainterCall::OptimizedHorizontalLines, count, KeepNumbers(ys, count),
           KeepNumbers(lefts, count), KeepNumbers(rights, count), KeepNumbers(heights, count),
           KeepColors(colors, count), Keep(blend), Keep(resolution));
}
void QLX_PainterRecording::OptimizedIdenticalHorizontalLines(int count, const int* ys,
                                                             const int* colorIndexes,
                                                             const CRGBColor* colors, int left,
                                                             int right, int height,
                                                             EResolution resolution) {
    Record(EPainterCall::OptimizedIdenticalHorizontalLines, count, KeepNumbers(ys, count),
           KeepNumbers(colorIndexes, count), KeepIndexedColors(colors, colorIndexes, count), left,
           right, height, Keep(resolution));
}
void QLX_PainterRecording::OptimizedWaveformOutline(int x, int count, const int* ys, int yOffset,
                                                    bool connect, int top, int bottom,
                                                    const CRGBColor& color, const Ptr& second,
                                                    const CRGBColor& secondColor, int thickness,
                                                    EResolution resolution) {
    Record(EPainterCall::OptimizedWaveformOutline, x, count, KeepNumbers(ys, count), yOffset,
           connect, top, bottom, color, CanvasOf(second), secondColor, thickness, Keep(resolution));
}
void QLX_PainterRecording::OptimizedDrawImage(const ImagePtr& image, const Cmn_Rect<int>& source,
                                              const Cmn_Rect<int>& destination,
                                              const Cmn_Rect<int>* clip, EResolution resolution) {
    Record(EPainterCall::OptimizedDrawImage, mRecording->NumberOf(image), source, destination,
           KeepOptional(clip), Keep(resolution));
}
void QLX_PainterRecording::OptimizedDrawImage(const ImagePtr& image, int count, const int* xs,
                                              int y, const Cmn_Rect<int>* clip,
                                              EResolution resolution, const Ptr* second) {
    Record(EPainterCall::OptimizedDrawImageRow, mRecording->NumberOf(image), count,
           KeepNumbers(xs, count), y, KeepOptional(clip), Keep(resolution),
           CanvasOf(second ? *second : Ptr()));
}
void QLX_PainterRecording::OptimizedDrawImages(const Cmn_PolyVector<ImagePtr>& images, int count,
                                               const int* imageIndexes, const int* xs,
                                               const int* ys, EResolution resolution) {
    std::vector<QLX_RecordedImage> numbers;
    for (std::size_t i = 0; i < images.size(); ++i)
        numbers.push_back(mRecording->NumberOf(images[i]));
    Record(EPainterCall::OptimizedDrawImages, std::move(numbers), count,
           KeepNumbers(imageIndexes, count), KeepNumbers(xs, count), KeepNumbers(ys, count),
           Keep(resolution));
}
void QLX_PainterRecording::OptimizedDrawBackgroundImage(const ImagePtr& image, int width,
                                                        int height, int border,
                                                        EResolution resolution) {
    Record(EPainterCall::OptimizedDrawBackgroundImage, mRecording->NumberOf(image), width, height,
           border, Keep(resolution));
}
void QLX_PainterRecording::OptimizedFillRect(const Cmn_Rect<int>& rect, const CRGBColor& color,
                                             EAlphaBlendType blend, EResolution resolution,
                                             const Ptr& second, const CRGBColor& secondColor,
                                             EAlphaBlendType secondBlend) {
    Record(EPainterCall::OptimizedFillRect, rect, color, Keep(blend), Keep(resolution),
           CanvasOf(second), secondColor, Keep(secondBlend));
}
void QLX_PainterRecording::OptimizedFillRoundRect(const Cmn_Rect<int>& rect, int radius,
                                                  const CRGBColor& color, EAlphaBlendType blend,
                                                  EResolution resolution, const Ptr& second,
                                                  const CRGBColor& secondColor,
                                                  EAlphaBlendType secondBlend) {
    Record(EPainterCall::OptimizedFillRoundRect, rect, radius, color, Keep(blend), Keep(resolution),
           CanvasOf(second), secondColor, Keep(secondBlend));
}
void QLX_PainterRecording::OptimizedCopyPixelsFromOffscreen(const Cmn_Rect<int>& bufferBounds,
                                                            void* pixels,
                                                            const Cmn_Rect<int>& source,
                                                            const Cmn_Rect<int>& destination,
                                                            bool opaque) {
    const Cmn_Rect<int> used = source & bufferBounds;
    if (!pixels || used.Empty() || used != source || used.GetWidth() > QLX_Image::kMaximumSide ||
        used.GetHeight() > QLX_Image::kMaximumSide)
        return;
    const auto* first = static_cast<const std::uint32_t*>(pixels);
    std::vector<std::uint32_t> part;
    for (int y = used.top; y < used.bottom; ++y) {
        const auto* row = first + std::size_t(y - bufferBounds.top) * bufferBounds.GetWidth() +
                          (used.left - bufferBounds.left);
        part.insert(part.end(), row, row + used.GetWidth());
    }
    const ImagePtr image = QLX_Image::Create(used.GetWidth(), used.GetHeight(), std::move(part));
    Record(EPainterCall::OptimizedCopyPixelsFromOffscreen, mRecording->NumberOf(image), destination,
           opaque);
}

// Outlines

void QLX_PainterRecording::DrawRect(const Cmn_Rect<int>& rect) {
    Record(EPainterCall::DrawRect, rect);
}
void QLX_PainterRecording::DrawRoundRect(const Cmn_Rect<int>& rect, int radiusX, int radiusY,
                                         bool antialias, bool topOnly) {
    Record(EPainterCall::DrawRoundRect, rect, radiusX, radiusY, antialias, topOnly);
}
void QLX_PainterRecording::DrawOval(const Cmn_Rect<int>& rect) {
    Record(EPainterCall::DrawOval, rect);
}
void QLX_PainterRecording::DrawArc(const Cmn_Rect<int>& rect, int startDegrees, int sweepDegrees,
                                   bool antialias) {
    Record(EPainterCall::DrawArc, rect, startDegrees, sweepDegrees, antialias);
}
void QLX_PainterRecording::DrawPolygon(const Cmn_Polygon<int>& polygon, bool closed,
                                       bool antialias) {
    Record(EPainterCall::DrawPolygon, polygon, closed, antialias);
}
void QLX_PainterRecording::DrawRegion(const QLX_Region& region) {
    Record(EPainterCall::DrawRegion, region);
}

// Text

void QLX_PainterRecording::DrawChar(char character) {
    Record(EPainterCall::DrawChar, int(static_cast<unsigned char>(character)));
    mPenPlace.x +=
        double(QLX_TextMeasure::Get().MeasureWidth(mFont, {&character, 1})) * mScale.GetFactor();
}
void QLX_PainterRecording::DrawString(const std::string& text) {
    Record(EPainterCall::DrawString, text);
    mPenPlace.x += double(QLX_TextMeasure::Get().MeasureWidth(mFont, text)) * mScale.GetFactor();
}
void QLX_PainterRecording::DrawStringJustified(const Cmn_Rect<int>& rect, const std::string& text,
                                               EJustification justification,
                                               EVerticalJustification vertical,
                                               EResolution resolution) {
    Record(EPainterCall::DrawStringJustified, rect, text, Keep(justification), Keep(vertical),
           Keep(resolution));
}
int QLX_PainterRecording::DrawTextBox(const Cmn_Rect<int>& rect, const std::string& text,
                                      EJustification justification, bool wrap, bool ellipsis,
                                      bool clip, bool erase) {
    Record(EPainterCall::DrawTextBox, rect, text, Keep(justification), wrap, ellipsis, clip, erase);
    mLayout.LayOut(text, mFont, float(rect.GetWidth()), wrap ? kWrap_Word : kWrap_None);
    return mLayout.GetHeight();
}
void QLX_PainterRecording::DrawSingleLineTextBox(const Cmn_Rect<int>& rect, const std::string& text,
                                                 bool ellipsis, const Ptr& second) {
    Record(EPainterCall::DrawSingleLineTextBox, rect, text, ellipsis, CanvasOf(second));
}

// Images and canvases

void QLX_PainterRecording::DrawImage(const ImagePtr& image, const Cmn_Rect<int>& rect,
                                     EPenMode mode) {
    Record(EPainterCall::DrawImage, mRecording->NumberOf(image), rect, Keep(mode));
}
void QLX_PainterRecording::DrawImagePortion(const ImagePtr& image, const Cmn_Rect<int>& source,
                                            const Cmn_Rect<int>& destination, EPenMode mode,
                                            EResolution resolution) {
    Record(EPainterCall::DrawImagePortion, mRecording->NumberOf(image), source, destination,
           Keep(mode), Keep(resolution));
}
void QLX_PainterRecording::DrawIcon(const QLX_Icon& icon, const Cmn_Rect<int>& rect) {
    std::vector<QLX_RecordedImage> numbers;
    for (const ImagePtr& image : icon.GetImages())
        numbers.push_back(mRecording->NumberOf(image));
    Record(EPainterCall::DrawIcon, std::move(numbers), rect);
}
void QLX_PainterRecording::ScrollCanvas(const Cmn_Rect<int>& rect, int dx, int dy,
                                        QLX_Region& toRepaint) {
    Record(EPainterCall::ScrollCanvas, rect, dx, dy);
    const QLX_Region scrolled(GetClipRegion().Intersection(QLX_Region(rect)));
    if (!IsValid() || scrolled.IsEmpty() || (dx == 0 && dy == 0))
        toRepaint = QLX_Region();
    else if (!mScale.IsExactDistance(dx) || !mScale.IsExactDistance(dy))
        toRepaint = scrolled;
    else
        toRepaint = scrolled.Difference(scrolled.Offset(dx, dy));
}
QLX_Painter::Ptr QLX_PainterRecording::CreateOffscreenPainter(const Cmn_Rect<int>& area,
                                                              bool withAlpha, bool copyContents) {
    if (!IsValid() || area.Empty() || area.GetWidth() > QLX_Image::kMaximumSide ||
        area.GetHeight() > QLX_Image::kMaximumSide)
        return nullptr;
    const Ptr made(new QLX_PainterRecording(*this, ToWindow(area), withAlpha));
    Record(EPainterCall::CreateOffscreenPainter, area, withAlpha, copyContents, CanvasOf(made));
    return made;
}
bool QLX_PainterRecording::IsOffscreen() { return mCanvas != 0; }
bool QLX_PainterRecording::OffscreenWillBeOverlayed() { return mWithAlpha; }
void QLX_PainterRecording::DrawPath(const PathPtr& path, bool antialias, ELineJoin join) {
    if (path)
        Record(EPainterCall::DrawPath, PathPtr(new QLX_Path(*path)), antialias, Keep(join));
}
void QLX_PainterRecording::FillPath(const PathPtr& path) {
    if (path)
        Record(EPainterCall::FillPath, PathPtr(new QLX_Path(*path)));
}
void QLX_PainterRecording::CopyCanvas(Ptr source, const Cmn_Rect<int>& sourceRect,
                                      const Cmn_Rect<int>& destinationRect, EPenMode mode,
                                      const QLX_Region* mask, Cmn_Point<int> maskOffset) {
    Record(EPainterCall::CopyCanvas, CanvasOf(source), sourceRect, destinationRect, Keep(mode),
           KeepOptional(mask), maskOffset);
}
void QLX_PainterRecording::SaveIntoImage(ImagePtr image, int variant) {
    Record(EPainterCall::SaveIntoImage, mRecording->NumberOf(image), variant);
}
QLX_Painter::ImagePtr QLX_PainterRecording::CreateImage(Ptr painter) {
    const Cmn_Rect<int> bounds = painter ? painter->GetBounds() : GetBounds();
    const ImagePtr image = QLX_Image::Create(bounds.GetWidth(), bounds.GetHeight());
    if (image && IsValid())
        Record(EPainterCall::CreateImage, CanvasOf(painter), mRecording->NumberOf(image));
    return image;
}
bool QLX_PainterRecording::GetOffscreenBuffer(void**, int*, int*, int*, Cmn_Rect<int>*, void**,
                                              void**) {
    return false;
}

// Fills

void QLX_PainterRecording::FillRect(const Cmn_Rect<int>& rect) {
    Record(EPainterCall::FillRect, rect);
}
void QLX_PainterRecording::FillRoundRect(const Cmn_Rect<int>& rect, int radiusX, int radiusY,
                                         bool antialias, bool topOnly) {
    Record(EPainterCall::FillRoundRect, rect, radiusX, radiusY, antialias, topOnly);
}
void QLX_PainterRecording::FillOval(const Cmn_Rect<int>& rect, bool antialias) {
    Record(EPainterCall::FillOval, rect, antialias);
}
void QLX_PainterRecording::FillPolygon(const Cmn_Polygon<int>& polygon) {
    Record(EPainterCall::FillPolygon, polygon);
}
void QLX_PainterRecording::FillRegion(const QLX_Region& region) {
    Record(EPainterCall::FillRegion, region);
}
void QLX_PainterRecording::EraseRect(const Cmn_Rect<int>& rect) {
    Record(EPainterCall::EraseRect, rect);
}
void QLX_PainterRecording::EraseRoundRect(const Cmn_Rect<int>& rect, int radiusX, int radiusY,
                                          bool antialias) {
    Record(EPainterCall::EraseRoundRect, rect, radiusX, radiusY, antialias);
}
void QLX_PainterRecording::EraseRegion(const QLX_Region& region) {
    Record(EPainterCall::EraseRegion, region);
}
void QLX_PainterRecording::BlendRect(const Cmn_Rect<int>& rect, CRGBColor color, EBlendMode mode) {
    Record(EPainterCall::BlendRect, rect, color, Keep(mode));
}
void QLX_PainterRecording::BlendRegion(const QLX_Region& region, CRGBColor color, EBlendMode mode) {
    Record(EPainterCall::BlendRegion, region, color, Keep(mode));
}
void QLX_PainterRecording::InvertRect(const Cmn_Rect<int>& rect) {
    Record(EPainterCall::InvertRect, rect);
}
void QLX_PainterRecording::InvertRegion(const QLX_Region& region) {
    Record(EPainterCall::InvertRegion, region);
}
void QLX_PainterRecording::HighlightRect(const Cmn_Rect<int>& rect, const CRGBColor* color) {
    Record(EPainterCall::HighlightRect, rect, KeepOptional(color));
}
void QLX_PainterRecording::HighlightRegion(const QLX_Region& region, const CRGBColor* color) {
    Record(EPainterCall::HighlightRegion, region, KeepOptional(color));
}
