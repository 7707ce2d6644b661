// Images and canvases of the Windows painters.

#include <algorithm>
#include <cmath>

#include "qlx/imaging/win32/qlx_winedit.h"

namespace {

// Sampled pixels, grown to the largest use yet. User-interface thread, as painters.
std::vector<std::uint32_t>& Scratch(std::size_t pixels) {
    static std::vector<std::uint32_t> scratch;
    if (scratch.size() < pixels)
        scratch.resize(pixels);
    return scratch;
}

[[nodiscard]] bool SameSize(const Cmn_Rect<int>& a, const Cmn_Rect<int>& b) noexcept {
    return a.GetWidth() == b.GetWidth() && a.GetHeight() == b.GetHeight();
}

[[nodiscard]] EPenMode KnownMode(EPenMode mode) noexcept {
    return mode >= 0 && mode < kPenMode_Count ? mode : kPenMode_Copy;
}

// The share of a destination that belongs to a part of a source: what lies beyond the source leaves
// its share alone.
[[nodiscard]] Cmn_Rect<int> ShareOf(const Cmn_Rect<int>& destination, const Cmn_Rect<int>& source,
                                    const Cmn_Rect<int>& part) noexcept {
    if (part == source)
        return destination;
    const double across = double(destination.GetWidth()) / source.GetWidth();
    const double down = double(destination.GetHeight()) / source.GetHeight();
    const auto place = [](int from, double share) {
        return Cmn_ClampTo<int>(from + std::int64_t(std::floor(share + 0.5)));
    };
    return {place(destination.left, (double(part.left) - source.left) * across),
            place(destination.top, (double(part.top) - source.top) * down),
            place(destination.left, (double(part.right) - source.left) * across),
            place(destination.top, (double(part.bottom) - source.top) * down)};
}

} // namespace

bool QLX_PainterWindows::ReadPixels(const Cmn_Rect<int>& area, std::vector<std::uint32_t>& pixels) {
    QLX_Surface surface;
    Cmn_Point<int> corner;
    if (!mCanvas->BeginEdit(area, surface, corner))
        return false;
    const int width = area.GetWidth();
    pixels.resize(std::size_t(width) * std::size_t(area.GetHeight()));
    const std::uint32_t opaque = surface.hasAlpha ? 0 : 0xFF000000;
    std::uint32_t* out = pixels.data();
    for (int y = area.top; y < area.bottom; ++y, out += width)
        std::transform(surface.At(area.left - corner.x, y - corner.y),
                       surface.At(area.left - corner.x, y - corner.y) + width, out,
                       [opaque](std::uint32_t pixel) { return pixel | opaque; });
    mCanvas->EndEdit(false);
    return true;
}

// The part may reach beyond no edge of the picture; the callers see to that.
void QLX_PainterWindows::DrawPixels(const QLX_WinPicture& picture, const Cmn_Rect<int>& part,
                                    const Cmn_Rect<int>& destination, EPenMode mode,
                                    const Cmn_Rect<int>* limit) {
    const QLX_WinClip& clip = Clip();
    Cmn_Rect<int> shown = destination & clip.bounds;
    if (limit)
        shown = shown & *limit;
    if (part.Empty() || destination.Empty() || shown.Empty() || !IsValid())
        return;
    const unsigned alpha = unsigned(std::lround(mAlpha * 255));
    if (mCanvas->DrawPicture(clip, picture, part, destination, shown, mode, alpha))
        return;
    const std::uint32_t background = mBackgroundColor.AsInt32();
    if (SameSize(part, destination)) {
        EditClipped(
            &shown, 1,
            [&](const QLX_Surface& surface, const Cmn_Rect<int>& piece, Cmn_Point<int> corner) {
                const int down = part.top + piece.top + corner.y - destination.top;
                const int across = part.left + piece.left + corner.x - destination.left;
                QLX_CopySpans(surface, piece,
                              picture.pixels + std::ptrdiff_t(down) * picture.rowPixels + across,
                              picture.rowPixels, mode, alpha, picture.opaque, background);
            });
        return;
    }
    const int width = shown.GetWidth();
    std::vector<std::uint32_t>& pixels =
        Scratch(std::size_t(width) * std::size_t(shown.GetHeight()));
    QLX_ScalePixels(picture.pixels, picture.rowPixels, part, destination, shown, pixels.data(),
                    width);
    EditClipped(&shown, 1,
                [&](const QLX_Surface& surface, const Cmn_Rect<int>& piece, Cmn_Point<int> corner) {
                    QLX_CopySpans(surface, piece,
                                  pixels.data() +
                                      std::ptrdiff_t(piece.top + corner.y - shown.top) * width +
                                      (piece.left + corner.x - shown.left),
                                  width, mode, alpha, picture.opaque, background);
                });
}

void QLX_PainterWindows::DrawImagePortion(const ImagePtr& image, const Cmn_Rect<int>& source,
                                          const Cmn_Rect<int>& destination, EPenMode mode,
                                          EResolution resolution) {
    if (!image || source.Empty() || destination.Empty())
        return;
    const Cmn_Rect<int> part = source & image->GetBounds();
    if (part.Empty())
        return;
    const QLX_Image& used =
        image->GetForScale(resolution == kResolution_Logical ? mScale.GetFactor() : 1);
    const int times = used.GetWidth() / image->GetWidth();
    DrawPixels({used.GetPixels(), used.GetWidth(), used.IsOpaque(), &used},
               {part.left * times, part.top * times, part.right * times, part.bottom * times},
               ToCanvas(ShareOf(destination, source, part), resolution), KnownMode(mode), nullptr);
}

void QLX_PainterWindows::DrawImage(const ImagePtr& image, const Cmn_Rect<int>& rect,
                                   EPenMode mode) {
    if (image)
        DrawImagePortion(image, image->GetBounds(), rect, mode, kResolution_Logical);
}

void QLX_PainterWindows::OptimizedDrawImage(const ImagePtr& image, const Cmn_Rect<int>& source,
                                            const Cmn_Rect<int>& destination,
                                            const Cmn_Rect<int>* clip, EResolution resolution) {
    if (!image || source.Empty() || destination.Empty() || !image->GetBounds().Contains(source)) {
        QLX_Painter::OptimizedDrawImage(image, source, destination, clip, resolution);
        return;
    }
    if (clip && clip->Empty())
        return;
    const QLX_Image& used =
        image->GetForScale(resolution == kResolution_Logical ? mScale.GetFactor() : 1);
    const int times = used.GetWidth() / image->GetWidth();
    const Cmn_Rect<int> limit = clip ? ToCanvas(*clip) : Cmn_Rect<int>();
    DrawPixels(
        {used.GetPixels(), used.GetWidth(), used.IsOpaque(), &used},
        {source.left * times, source.top * times, source.right * times, source.bottom * times},
        ToCanvas(destination, resolution), kPenMode_Copy, clip ? &limit : nullptr);
}

void QLX_PainterWindows::OptimizedCopyPixelsFromOffscreen(const Cmn_Rect<int>& bufferBounds,
                                                          void* pixels, const Cmn_Rect<int>& source,
                                                          const Cmn_Rect<int>& destination,
                                                          bool opaque) {
    if (!pixels || source.Empty() || destination.Empty() || !bufferBounds.Contains(source))
        return;
    DrawPixels(
        {static_cast<const std::uint32_t*>(pixels), bufferBounds.GetWidth(), opaque, nullptr},
        {source.left - bufferBounds.left, source.top - bufferBounds.top,
         source.right - bufferBounds.left, source.bottom - bufferBounds.top},
        ToCanvas(destination), kPenMode_Copy, nullptr);
}

void QLX_PainterWindows::DrawIcon(const QLX_Icon& icon, const Cmn_Rect<int>& rect) {
    if (rect.Empty())
        return;
    const ImagePtr image = icon.GetImageFor(ToCanvas(rect).GetWidth());
    if (!image)
        return;
    // In the rectangle's middle, whole, and never enlarged beyond it.
    const double fit = std::min({1.0, double(rect.GetWidth()) / image->GetWidth(),
                                 double(rect.GetHeight()) / image->GetHeight()});
    const int width = std::max(1, int(image->GetWidth() * fit + 0.5));
    const int height = std::max(1, int(image->GetHeight() * fit + 0.5));
    const int left = rect.left + (rect.GetWidth() - width) / 2;
    const int top = rect.top + (rect.GetHeight() - height) / 2;
    DrawImage(image, {left, top, left + width, top + height}, kPenMode_Copy);
}

// A copy of the part that moves is as fast as moving in place, and has no wrong way round.
void QLX_PainterWindows::ScrollCanvas(const Cmn_Rect<int>& rect, int dx, int dy,
                                      QLX_Region& toRepaint) {
    toRepaint = QLX_Region();
    if (!IsValid() || rect.Empty() || (dx == 0 && dy == 0))
        return;
    QLX_Region scrolled(GetClipRegion().Intersection(QLX_Region(rect & GetBounds())));
    if (mHasSystemClip)
        scrolled = scrolled.Intersection(GetSystemClipRegion());
    if (scrolled.IsEmpty())
        return;
    if (!mScale.IsExactDistance(dx) || !mScale.IsExactDistance(dy)) {
        toRepaint = scrolled;
        return;
    }
    const QLX_Region arrived(scrolled.Offset(dx, dy).Intersection(scrolled));
    toRepaint = scrolled.Difference(arrived);
    const std::int64_t unit = mScale.Get120ths();
    const int moveX = int(dx * unit / QLX_DeviceScale::kUnit);
    const int moveY = int(dy * unit / QLX_DeviceScale::kUnit);
    const Cmn_Rect<int> from = ToCanvas(scrolled.GetBounds()) & mCanvas->GetBounds();
    QLX_Surface surface;
    Cmn_Point<int> corner;
    if (from.Empty() || arrived.IsEmpty() || !mCanvas->BeginEdit(from, surface, corner))
        return;
    const int width = from.GetWidth();
    std::vector<std::uint32_t>& pixels =
        Scratch(std::size_t(width) * std::size_t(from.GetHeight()));
    for (int y = from.top; y < from.bottom; ++y)
        std::copy_n(surface.At(from.left - corner.x, y - corner.y), width,
                    pixels.data() + std::ptrdiff_t(y - from.top) * width);
    for (const Cmn_Rect<int>& piece : arrived.GetRectList()) {
        const Cmn_Rect<int> to = ToCanvas(piece) & mCanvas->GetBounds();
        for (int y = to.top; y < to.bottom; ++y)
            std::copy_n(pixels.data() + std::ptrdiff_t(y - moveY - from.top) * width +
                            (to.left - moveX - from.left),
                        to.GetWidth(), surface.At(to.left - corner.x, y - corner.y));
    }
    mCanvas->EndEdit(true);
}

QLX_Painter::Ptr QLX_PainterWindows::CreateOffscreenPainter(const Cmn_Rect<int>& area,
                                                            bool withAlpha, bool copyContents) {
    if (!IsValid() || area.Empty())
        return nullptr;
    const Cmn_Rect<int> window = ToWindow(area);
    const Cmn_Rect<int> device = mScale.RectToDevice(window);
    if (device.Empty() || device.GetWidth() > QLX_Image::kMaximumSide ||
        device.GetHeight() > QLX_Image::kMaximumSide)
        return nullptr;
    QLX_PainterWindows* made =
        MakeOffscreen(device.GetWidth(), device.GetHeight(), withAlpha, window);
    if (!made)
        return nullptr;
    Ptr painter(made);
    made->mAlpha = 1; // the canvas itself starts whole
    if (!withAlpha)
        made->EraseRect(area);
    if (copyContents) {
        const Cmn_Rect<int> corner = ToCanvas(area);
        const Cmn_Rect<int> here = corner & mCanvas->GetBounds();
        std::vector<std::uint32_t> pixels;
        if (!here.Empty() && ReadPixels(here, pixels))
            made->DrawPixels({pixels.data(), here.GetWidth(), !mCanvas->HasAlpha(), nullptr},
                             {0, 0, here.GetWidth(), here.GetHeight()},
                             QLX_MovedBack(here, corner.GetTopLeft()), kPenMode_Copy, nullptr);
    }
    made->mAlpha = mAlpha;
    return painter;
}

void QLX_PainterWindows::CopyCanvas(Ptr source, const Cmn_Rect<int>& sourceRect,
                                    const Cmn_Rect<int>& destinationRect, EPenMode mode,
                                    const QLX_Region* mask, Cmn_Point<int> maskOffset) {
    auto* from = dynamic_cast<QLX_PainterWindows*>(source.Get());
    if (!from || !from->IsValid() || !IsValid() || sourceRect.Empty() || destinationRect.Empty())
        return;
    const Cmn_Rect<int> wanted = from->ToCanvas(sourceRect);
    const Cmn_Rect<int> there = wanted & from->mCanvas->GetBounds();
    const Cmn_Rect<int> to = ShareOf(ToCanvas(destinationRect), wanted, there);
    std::vector<std::uint32_t> pixels;
    if (there.Empty() || !from->ReadPixels(there, pixels))
        return;
    const QLX_WinPicture picture{pixels.data(), there.GetWidth(), !from->mCanvas->HasAlpha(),
                                 nullptr};
    const Cmn_Rect<int> part(0, 0, there.GetWidth(), there.GetHeight());
    if (!mask) {
        DrawPixels(picture, part, to, KnownMode(mode), nullptr);
        return;
    }
    const QLX_Region moved(mask->Offset(maskOffset.x, maskOffset.y));
    for (const Cmn_Rect<int>& rect : moved.GetRectList()) {
        const Cmn_Rect<int> limit = ToCanvas(rect);
        DrawPixels(picture, part, to, KnownMode(mode), &limit);
    }
}

void QLX_PainterWindows::SaveIntoImage(ImagePtr image, int variant) {
    if (!image || !IsValid())
        return;
    QLX_Image* target = image.Get();
    ImagePtr twice;
    if (variant == 2) {
        twice = image->GetDouble()
                    ? image->GetDoublePtr()
                    : QLX_Image::Create(2 * image->GetWidth(), 2 * image->GetHeight());
        target = twice.Get();
    }
    if (!target)
        return;
    const double perUnit = (variant == 2 ? 2 : 1) / mScale.GetFactor();
    // The canvas's top left part of the image's logical size, sampled when resolutions differ.
    const Cmn_Rect<int> part = Cmn_Rect<int>(0, 0, int(std::lround(target->GetWidth() / perUnit)),
                                             int(std::lround(target->GetHeight() / perUnit))) &
                               mCanvas->GetBounds();
    std::vector<std::uint32_t> pixels;
    if (part.Empty() || !ReadPixels(part, pixels))
        return;
    const Cmn_Rect<int> all(0, 0, std::max(1, int(std::lround(part.right * perUnit))),
                            std::max(1, int(std::lround(part.bottom * perUnit))));
    QLX_ScalePixels(pixels.data(), part.GetWidth(), part, all, all & target->GetBounds(),
                    target->GetWritablePixels(), target->GetWidth());
    target->PixelsChanged();
    if (variant == 2 && !image->GetDouble())
        image->SetDouble(twice);
}

QLX_Painter::ImagePtr QLX_PainterWindows::CreateImage(Ptr painter) {
    auto* from = painter ? dynamic_cast<QLX_PainterWindows*>(painter.Get()) : this;
    if (!from || !from->IsValid())
        return nullptr;
    const Cmn_Rect<int> bounds = from->GetBounds();
    const ImagePtr image = QLX_Image::Create(bounds.GetWidth(), bounds.GetHeight());
    if (!image)
        return nullptr;
    from->SaveIntoImage(image, 1);
    if (from->mScale.GetFactor() > 1)
        from->SaveIntoImage(image, 2);
    return image;
}
