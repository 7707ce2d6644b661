// Images and canvases: pixels copied where sizes agree, sampled where they do not.

#include <algorithm>
#include <cmath>

#include "qlx/imaging/cairo/qlx_cairoclip.h"
#include "qlx/imaging/qlx_image.h"

namespace {

// Sampled or saved pixels, grown to the largest use yet. User-interface thread, as painters.
std::vector<std::uint32_t>& Scratch(std::size_t pixels) {
    static std::vector<std::uint32_t> scratch;
    if (scratch.size() < pixels)
        scratch.resize(pixels);
    return scratch;
}

// Lengths beyond int's, which GetWidth and GetHeight hold at its limit.
[[nodiscard]] std::int64_t Width(const Cmn_Rect<int>& rect) noexcept {
    return std::int64_t{rect.right} - rect.left;
}
[[nodiscard]] std::int64_t Height(const Cmn_Rect<int>& rect) noexcept {
    return std::int64_t{rect.bottom} - rect.top;
}

[[nodiscard]] bool SameSize(const Cmn_Rect<int>& a, const Cmn_Rect<int>& b) noexcept {
    return Width(a) == Width(b) && Height(a) == Height(b);
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

} // namespace

// The part may reach beyond no edge of the picture; the callers see to that.
void QLX_PainterCairo::DrawPixels(const Picture& picture, const Cmn_Rect<int>& part,
                                  const Cmn_Rect<int>& destination, EPenMode mode,
                                  const Cmn_Rect<int>* clip) {
    if (part.Empty() || destination.Empty() || mCanvas->IsGone())
        return;
    const QLX_Surface& surface = mCanvas->GetSurface();
    const unsigned alpha = unsigned(std::lround(mAlpha * 255));
    const std::uint32_t background = mBackgroundColor.AsInt32();
    const bool scaled = !SameSize(part, destination);
    ForClipped(clip ? destination & *clip : destination, [&](const Cmn_Rect<int>& piece) {
        if (!scaled) {
            const std::uint32_t* source =
                picture.pixels +
                std::ptrdiff_t(part.top + (piece.top - destination.top)) * picture.row + part.left +
                (piece.left - destination.left);
            QLX_CopySpans(surface, piece, source, picture.row, mode, alpha, picture.opaque,
                          background);
            return;
        }
        const int width = piece.GetWidth();
        std::vector<std::uint32_t>& pixels =
            Scratch(std::size_t(width) * std::size_t(piece.GetHeight()));
        QLX_ScalePixels(picture.pixels, picture.row, part, destination, piece, pixels.data(),
                        width);
        QLX_CopySpans(surface, piece, pixels.data(), width, mode, alpha, picture.opaque,
                      background);
    });
}

void QLX_PainterCairo::DrawImagePortion(const ImagePtr& image, const Cmn_Rect<int>& source,
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
    const bool keepMode = mode >= 0 && mode < kPenMode_Count;
    DrawPixels({used.GetPixels(), used.GetWidth(), used.IsOpaque()},
               {part.left * times, part.top * times, part.right * times, part.bottom * times},
               ToCanvas(to, resolution), keepMode ? mode : kPenMode_Copy, nullptr);
}

void QLX_PainterCairo::DrawImage(const ImagePtr& image, const Cmn_Rect<int>& rect, EPenMode mode) {
    if (image)
        DrawImagePortion(image, image->GetBounds(), rect, mode, kResolution_Logical);
}

void QLX_PainterCairo::OptimizedDrawImage(const ImagePtr& image, const Cmn_Rect<int>& source,
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
    DrawPixels(
        {used.GetPixels(), used.GetWidth(), used.IsOpaque()},
        {source.left * times, source.top * times, source.right * times, source.bottom * times},
        ToCanvas(destination, resolution), kPenMode_Copy, clip ? &limit : nullptr);
}

void QLX_PainterCairo::OptimizedCopyPixelsFromOffscreen(const Cmn_Rect<int>& bufferBounds,
                                                        void* pixels, const Cmn_Rect<int>& source,
                                                        const Cmn_Rect<int>& destination,
                                                        bool opaque) {
    if (!pixels || source.Empty() || destination.Empty() || !bufferBounds.Contains(source))
        return;
    const Cmn_Rect<int> part(source.left - bufferBounds.left, source.top - bufferBounds.top,
                             source.right - bufferBounds.left, source.bottom - bufferBounds.top);
    DrawPixels({static_cast<const std::uint32_t*>(pixels), bufferBounds.GetWidth(), opaque}, part,
               ToCanvas(destination), kPenMode_Copy, nullptr);
}

void QLX_PainterCairo::DrawIcon(const QLX_Icon& icon, const Cmn_Rect<int>& rect) {
    if (rect.Empty())
        return;
    const Cmn_Rect<int> pixels = ToCanvas(rect);
    const ImagePtr image = icon.GetImageFor(pixels.GetWidth());
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

// Moving pixels in place would read what was just written, unless rows and columns are walked the
// right way round; a copy of the part that moves is as fast and has no wrong way.
void QLX_PainterCairo::ScrollCanvas(const Cmn_Rect<int>& rect, int dx, int dy,
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
    const QLX_Surface& surface = mCanvas->GetSurface();
    const Cmn_Rect<int> from = ToCanvas(scrolled.GetBounds()) & CanvasBounds();
    if (from.Empty() || arrived.IsEmpty())
        return;
    const int width = from.GetWidth();
    std::vector<std::uint32_t>& pixels =
        Scratch(std::size_t(width) * std::size_t(from.GetHeight()));
    for (int y = from.top; y < from.bottom; ++y)
        std::copy_n(surface.At(from.left, y), width,
                    pixels.data() + std::ptrdiff_t(y - from.top) * width);
    for (const Cmn_Rect<int>& piece : arrived.GetRectList()) {
        const Cmn_Rect<int> to = ToCanvas(piece) & CanvasBounds();
        for (int y = to.top; y < to.bottom; ++y)
            std::copy_n(pixels.data() + std::ptrdiff_t(y - moveY - from.top) * width +
                            (to.left - moveX - from.left),
                        to.GetWidth(), surface.At(to.left, y));
    }
}

QLX_Painter::Ptr QLX_PainterCairo::CreateOffscreenPainter(const Cmn_Rect<int>& area, bool withAlpha,
                                                          bool copyContents) {
    if (!IsValid() || area.Empty())
        return nullptr;
    const Cmn_Rect<int> window = ToWindow(area);
    const Cmn_Rect<int> device = mScale.RectToDevice(window);
    const auto canvas = QLX_CairoCanvas::New(device.GetWidth(), device.GetHeight(), withAlpha);
    if (!canvas)
        return nullptr;
    auto* made = new QLX_PainterCairo(*this, canvas, window);
    Ptr painter(made);
    made->mAlpha = 1; // the canvas itself starts whole
    if (!withAlpha)
        made->EraseRect(area);
    if (copyContents) {
        const Cmn_Rect<int> here = ToCanvas(area) & CanvasBounds();
        const Cmn_Rect<int> corner = ToCanvas(area);
        for (int y = here.top; y < here.bottom; ++y)
            std::copy_n(mCanvas->GetSurface().At(here.left, y), here.GetWidth(),
                        canvas->GetSurface().At(here.left - corner.left, y - corner.top));
    }
    made->mAlpha = mAlpha;
    return painter;
}

void QLX_PainterCairo::CopyTo(const Picture& source, const Cmn_Rect<int>& part,
                              const Cmn_Rect<int>& to, EPenMode mode, const QLX_Region* mask) {
    if (!mask) {
        DrawPixels(source, part, to, mode, nullptr);
        return;
    }
    for (const Cmn_Rect<int>& rect : mask->GetRectList()) {
        const Cmn_Rect<int> limit = ToCanvas(rect);
        DrawPixels(source, part, to, mode, &limit);
    }
}

void QLX_PainterCairo::CopyCanvas(Ptr source, const Cmn_Rect<int>& sourceRect,
                                  const Cmn_Rect<int>& destinationRect, EPenMode mode,
                                  const QLX_Region* mask, Cmn_Point<int> maskOffset) {
    const auto* from = dynamic_cast<const QLX_PainterCairo*>(source.Get());
    if (!from || from->mCanvas->IsGone() || !IsValid() || sourceRect.Empty() ||
        destinationRect.Empty())
        return;
    const QLX_Surface& surface = from->mCanvas->GetSurface();
    Cmn_Rect<int> part = from->ToCanvas(sourceRect);
    Cmn_Rect<int> to = ToCanvas(destinationRect);
    const Cmn_Rect<int> there = part & from->CanvasBounds();
    if (there.Empty())
        return;
    if (there != part) { // where the source has no pixels, the destination is left alone
        to = ShareOf(to, part, there);
        part = there;
    }
    const QLX_Region moved =
        mask ? QLX_Region(mask->Offset(maskOffset.x, maskOffset.y)) : QLX_Region();
    const bool keepMode = mode >= 0 && mode < kPenMode_Count;
    const EPenMode used = keepMode ? mode : kPenMode_Copy;
    if (from->mCanvas == mCanvas) { // onto itself: from a copy, so that overlapping does not matter
        const int width = part.GetWidth();
        std::vector<std::uint32_t> copy;
        copy.reserve(std::size_t(width) * std::size_t(part.GetHeight()));
        for (int y = part.top; y < part.bottom; ++y)
            copy.insert(copy.end(), surface.At(part.left, y), surface.At(part.left, y) + width);
        CopyTo({copy.data(), width, !surface.hasAlpha}, {0, 0, width, part.GetHeight()}, to, used,
               mask ? &moved : nullptr);
        return;
    }
    CopyTo({surface.pixels, surface.rowPixels, !surface.hasAlpha}, part, to, used,
           mask ? &moved : nullptr);
}

void QLX_PainterCairo::SaveIntoImage(ImagePtr image, int variant) {
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
    const QLX_Surface& surface = mCanvas->GetSurface();
    const double perUnit = variant == 2 ? 2 : 1;
    const Cmn_Rect<int> bounds(0, 0, target->GetWidth(), target->GetHeight());
    // The canvas's top left part of the image's logical size, sampled when resolutions differ.
    const Cmn_Rect<int> wantedPart(0, 0,
                                   int(std::lround(bounds.right / perUnit * mScale.GetFactor())),
                                   int(std::lround(bounds.bottom / perUnit * mScale.GetFactor())));
    const Cmn_Rect<int> part = wantedPart & CanvasBounds();
    if (part.Empty())
        return;
    const int width = int(std::lround(part.right / mScale.GetFactor() * perUnit));
    const int height = int(std::lround(part.bottom / mScale.GetFactor() * perUnit));
    const Cmn_Rect<int> to = Cmn_Rect<int>(0, 0, std::max(1, width), std::max(1, height)) & bounds;
    const Cmn_Rect<int> all(0, 0, std::max(1, width), std::max(1, height));
    QLX_ScalePixels(surface.pixels, surface.rowPixels, part, all, to, target->GetWritablePixels(),
                    target->GetWidth());
    if (!surface.hasAlpha)
        for (int y = 0; y < to.bottom; ++y)
            for (int x = 0; x < to.right; ++x)
                target->GetWritablePixels()[std::size_t(y) * target->GetWidth() + x] |= 0xFF000000;
    target->PixelsChanged();
    if (variant == 2 && !image->GetDouble())
        image->SetDouble(twice);
}

QLX_Painter::ImagePtr QLX_PainterCairo::CreateImage(Ptr painter) {
    auto* from = painter ? dynamic_cast<QLX_PainterCairo*>(painter.Get()) : this;
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
