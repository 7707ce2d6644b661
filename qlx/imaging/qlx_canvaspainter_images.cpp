// Images and canvases of the painters on pixels: which part goes where.

#include <algorithm>
#include <cmath>

#include "qlx/imaging/qlx_canvaspainter.h"

namespace {

// Lengths beyond int's, which GetWidth and GetHeight hold at its limit.
[[nodiscard]] std::int64_t Width(const Cmn_Rect<int>& rect) noexcept {
    return std::int64_t{rect.right} - rect.left;
}
[[nodiscard]] std::int64_t Height(const Cmn_Rect<int>& rect) noexcept {
    return std::int64_t{rect.bottom} - rect.top;
}

// The share of a destination that a part of its source takes.
[[nodiscard]] Cmn_Rect<int> ShareOf(const Cmn_Rect<int>& destination, const Cmn_Rect<int>& source,
                                    const Cmn_Rect<int>& part) noexcept {
    const auto place = [](int start, double share) {
        return Cmn_ClampTo<int>(start + std::int64_t(std::floor(share + 0.5)));
    };
    const double across = double(Width(destination)) / double(Width(source));
    const double down = double(Height(destination)) / double(Height(source));
    const double left = double(part.left) - source.left, top = double(part.top) - source.top;
    return {place(destination.left, left * across), place(destination.top, top * down),
            place(destination.left, (left + part.GetWidth()) * across),
            place(destination.top, (top + part.GetHeight()) * down)};
}

// A mode that is none is plain copying.
[[nodiscard]] EPenMode KnownMode(EPenMode mode) noexcept {
    return mode >= 0 && mode < kPenMode_Count ? mode : kPenMode_Copy;
}

[[nodiscard]] Cmn_Rect<int> Times(const Cmn_Rect<int>& rect, int times) noexcept {
    return {rect.left * times, rect.top * times, rect.right * times, rect.bottom * times};
}

} // namespace

bool QLX_CanvasPainter::IsSameSize(const Cmn_Rect<int>& a, const Cmn_Rect<int>& b) noexcept {
    return Width(a) == Width(b) && Height(a) == Height(b);
}

std::uint32_t* QLX_CanvasPainter::GetScratch(std::size_t pixels) {
    static std::vector<std::uint32_t> scratch; // grown to the largest use yet
    if (scratch.size() < pixels)
        scratch.resize(pixels);
    return scratch.data();
}

bool QLX_CanvasPainter::ReadPixels(const Cmn_Rect<int>& area, std::vector<std::uint32_t>& pixels) {
    QLX_Surface surface;
    Cmn_Point<int> corner;
    if (!BeginPixels(area, surface, corner))
        return false;
    const int width = area.GetWidth();
    pixels.resize(std::size_t(width) * std::size_t(area.GetHeight()));
    const std::uint32_t opaque = surface.hasAlpha ? 0 : 0xFF000000;
    std::uint32_t* out = pixels.data();
    for (int y = area.top; y < area.bottom; ++y, out += width) {
        const std::uint32_t* row = surface.At(area.left - corner.x, y - corner.y);
        std::transform(row, row + width, out,
                       [opaque](std::uint32_t pixel) { return pixel | opaque; });
    }
    EndPixels(false);
    return true;
}

QLX_Painter::ImagePtr QLX_CanvasPainter::GetPixels() {
    const Cmn_Rect<int> bounds = GetCanvasBounds();
    std::vector<std::uint32_t> pixels;
    if (!IsValid() || bounds.Empty() || !ReadPixels(bounds, pixels))
        return nullptr;
    return QLX_Image::Create(bounds.right, bounds.bottom, std::move(pixels));
}

// Images

void QLX_CanvasPainter::DrawImagePortion(const ImagePtr& image, const Cmn_Rect<int>& source,
                                         const Cmn_Rect<int>& destination, EPenMode mode,
                                         EResolution resolution) {
    if (!image || source.Empty() || destination.Empty())
        return;
    const Cmn_Rect<int> part = source & image->GetBounds();
    if (part.Empty())
        return;
    // What lies beyond the image leaves its share of the destination alone.
    const Cmn_Rect<int> to = part == source ? destination : ShareOf(destination, source, part);
    const QLX_Image& used =
        image->GetForScale(resolution == kResolution_Logical ? mScale.GetFactor() : 1);
    const int times = used.GetWidth() / image->GetWidth();
    DrawPicture({used.GetPixels(), used.GetWidth(), used.IsOpaque(), &used}, Times(part, times),
                ToCanvas(to, resolution), KnownMode(mode), nullptr);
}

void QLX_CanvasPainter::DrawImage(const ImagePtr& image, const Cmn_Rect<int>& rect, EPenMode mode) {
    if (image)
        DrawImagePortion(image, image->GetBounds(), rect, mode, kResolution_Logical);
}

void QLX_CanvasPainter::OptimizedDrawImage(const ImagePtr& image, const Cmn_Rect<int>& source,
                                           const Cmn_Rect<int>& destination,
                                           const Cmn_Rect<int>* clip, EResolution resolution) {
    if (!image || source.Empty() || destination.Empty() || !image->GetBounds().Contains(source)) {
        QLX_Painter::OptimizedDrawImage(image, source, destination, clip, resolution);
        return;
    }
    const QLX_Image& used =
        image->GetForScale(resolution == kResolution_Logical ? mScale.GetFactor() : 1);
    const int times = used.GetWidth() / image->GetWidth();
    const Cmn_Rect<int> limit = clip ? ToCanvas(*clip) : Cmn_Rect<int>();
    if (clip && clip->Empty())
        return;
    DrawPicture({used.GetPixels(), used.GetWidth(), used.IsOpaque(), &used}, Times(source, times),
                ToCanvas(destination, resolution), kPenMode_Copy, clip ? &limit : nullptr);
}

void QLX_CanvasPainter::OptimizedCopyPixelsFromOffscreen(const Cmn_Rect<int>& bufferBounds,
                                                         void* pixels, const Cmn_Rect<int>& source,
                                                         const Cmn_Rect<int>& destination,
                                                         bool opaque) {
    if (!pixels || source.Empty() || destination.Empty() || !bufferBounds.Contains(source))
        return;
    const Cmn_Rect<int> part(source.left - bufferBounds.left, source.top - bufferBounds.top,
                             source.right - bufferBounds.left, source.bottom - bufferBounds.top);
    DrawPicture({static_cast<const std::uint32_t*>(pixels), bufferBounds.GetWidth(), opaque}, part,
                ToCanvas(destination), kPenMode_Copy, nullptr);
}

void QLX_CanvasPainter::DrawIcon(const QLX_Icon& icon, const Cmn_Rect<int>& rect) {
    if (rect.Empty())
        return;
    const Cmn_Rect<int> pixels = ToCanvas(rect);
    const ImagePtr image = icon.GetImageFor(pixels.GetWidth());
    if (!image)
        return;
    DrawImage(image, QLX_Icon::GetPlace(*image, rect), kPenMode_Copy);
}

// Canvases

// Moving pixels in place would read what was just written, unless rows and columns are walked the
// right way round; a copy of the part that moves is as fast and has no wrong way.
void QLX_CanvasPainter::ScrollCanvas(const Cmn_Rect<int>& rect, int dx, int dy,
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
    const Cmn_Rect<int> from = ToCanvas(scrolled.GetBounds()) & GetCanvasBounds();
    QLX_Surface surface;
    Cmn_Point<int> corner;
    if (from.Empty() || arrived.IsEmpty() || !BeginPixels(from, surface, corner))
        return;
    const int width = from.GetWidth();
    std::uint32_t* const pixels = GetScratch(std::size_t(width) * std::size_t(from.GetHeight()));
    for (int y = from.top; y < from.bottom; ++y)
        std::copy_n(surface.At(from.left - corner.x, y - corner.y), width,
                    pixels + std::ptrdiff_t(y - from.top) * width);
    for (const Cmn_Rect<int>& piece : arrived.GetRectList()) {
        const Cmn_Rect<int> to = ToCanvas(piece) & GetCanvasBounds();
        for (int y = to.top; y < to.bottom; ++y)
            std::copy_n(pixels + std::ptrdiff_t(y - moveY - from.top) * width +
                            (to.left - moveX - from.left),
                        to.GetWidth(), surface.At(to.left - corner.x, y - corner.y));
    }
    EndPixels(true);
}

Cmn_Rect<int> QLX_CanvasPainter::GetOffscreenSize(const Cmn_Rect<int>& windowArea) const noexcept {
    const Cmn_Rect<int> device = mScale.RectToDevice(windowArea);
    if (Width(device) > QLX_Image::kMaximumSide || Height(device) > QLX_Image::kMaximumSide)
        return {};
    return {0, 0, device.GetWidth(), device.GetHeight()};
}

void QLX_CanvasPainter::BeginOffscreen(QLX_CanvasPainter& made, const Cmn_Rect<int>& area,
                                       bool copyContents) {
    made.mAlpha = 1; // the canvas itself starts whole
    if (!made.CanvasHasAlpha())
        made.EraseRect(area);
    const Cmn_Rect<int> wanted = ToCanvas(area);
    const Cmn_Rect<int> here = wanted & GetCanvasBounds();
    std::vector<std::uint32_t> pixels;
    if (copyContents && !here.Empty() && ReadPixels(here, pixels))
        made.DrawPicture({pixels.data(), here.GetWidth(), !CanvasHasAlpha()},
                         {0, 0, here.GetWidth(), here.GetHeight()},
                         MovedBack(here, wanted.GetTopLeft()), kPenMode_Copy, nullptr);
    made.mAlpha = mAlpha;
}

// From a copy where the canvas is no memory, and onto itself, so that overlapping does not matter.
void QLX_CanvasPainter::CopyCanvas(Ptr source, const Cmn_Rect<int>& sourceRect,
                                   const Cmn_Rect<int>& destinationRect, EPenMode mode,
                                   const QLX_Region* mask, Cmn_Point<int> maskOffset) {
    auto* from = dynamic_cast<QLX_CanvasPainter*>(source.Get());
    if (!from || !from->IsValid() || !IsValid() || sourceRect.Empty() || destinationRect.Empty())
        return;
    const Cmn_Rect<int> wanted = from->ToCanvas(sourceRect);
    Cmn_Rect<int> part = wanted & from->GetCanvasBounds();
    if (part.Empty())
        return;
    // Where the source has no pixels, the destination is left alone.
    Cmn_Rect<int> to = ToCanvas(destinationRect);
    if (part != wanted)
        to = ShareOf(to, wanted, part);
    std::vector<std::uint32_t> copy;
    QLX_CanvasPicture picture;
    picture.opaque = !from->CanvasHasAlpha();
    const QLX_Surface* memory = from->GetMemory();
    const QLX_Surface* own = GetMemory();
    if (memory && !(own && own->pixels == memory->pixels)) {
        picture.pixels = memory->pixels;
        picture.rowPixels = memory->rowPixels;
    } else {
        if (!from->ReadPixels(part, copy))
            return;
        picture.pixels = copy.data();
        picture.rowPixels = part.GetWidth();
        part = {0, 0, part.GetWidth(), part.GetHeight()};
    }
    if (!mask) {
        DrawPicture(picture, part, to, KnownMode(mode), nullptr);
        return;
    }
    const QLX_Region moved(mask->Offset(maskOffset.x, maskOffset.y));
    for (const Cmn_Rect<int>& rect : moved.GetRectList()) {
        const Cmn_Rect<int> limit = ToCanvas(rect);
        DrawPicture(picture, part, to, KnownMode(mode), &limit);
    }
}

void QLX_CanvasPainter::SaveIntoImage(ImagePtr image, int variant) {
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
    const double perUnit = variant == 2 ? 2 : 1;
    const Cmn_Rect<int> bounds(0, 0, target->GetWidth(), target->GetHeight());
    // The canvas's top left part of the image's logical size, sampled when resolutions differ.
    const Cmn_Rect<int> wantedPart(0, 0,
                                   int(std::lround(bounds.right / perUnit * mScale.GetFactor())),
                                   int(std::lround(bounds.bottom / perUnit * mScale.GetFactor())));
    const Cmn_Rect<int> part = wantedPart & GetCanvasBounds();
    std::vector<std::uint32_t> pixels;
    if (part.Empty() || !ReadPixels(part, pixels))
        return;
    const int width = int(std::lround(part.right / mScale.GetFactor() * perUnit));
    const int height = int(std::lround(part.bottom / mScale.GetFactor() * perUnit));
    const Cmn_Rect<int> all(0, 0, std::max(1, width), std::max(1, height));
    QLX_ScalePixels(pixels.data(), part.GetWidth(), part, all, all & bounds,
                    target->GetWritablePixels(), target->GetWidth());
    target->PixelsChanged();
    if (variant == 2 && !image->GetDouble())
        image->SetDouble(twice);
}

QLX_Painter::ImagePtr QLX_CanvasPainter::CreateImage(Ptr painter) {
    auto* from = painter ? dynamic_cast<QLX_CanvasPainter*>(painter.Get()) : this;
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
