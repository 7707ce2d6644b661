#include "qlx/imaging/qlx_image.h"

#include <algorithm>
#include <cmath>
#include <new>
#include <stdexcept>
#include <utility>

#include "basekit/cmn/cmn_assert.h"
#include "basekit/sys/sys_file.h"

namespace {

constinit QLX_ImageCodec* sCodec = nullptr; // not owned

[[nodiscard]] bool IsAbsurd(int width, int height) noexcept {
    return width < 1 || height < 1 || width > QLX_Image::kMaximumSide ||
           height > QLX_Image::kMaximumSide;
}

// Brings colour bytes down to their alpha: what premultiplied arithmetic relies on.
[[nodiscard]] std::uint32_t Premultiplied(std::uint32_t pixel) noexcept {
    const std::uint32_t alpha = pixel >> 24;
    if (alpha == 255)
        return pixel;
    const auto held = [&](int shift) { return std::min(pixel >> shift & 255, alpha) << shift; };
    return alpha << 24 | held(16) | held(8) | held(0);
}

[[nodiscard]] QLX_ImageCodec& Codec() {
    if (!sCodec)
        throw std::runtime_error("no image codec is installed");
    return *sCodec;
}

// "a/name.png" gives "a/name@2x.png".
[[nodiscard]] std::string DoubleName(const std::string& path) {
    const std::size_t slash = path.find_last_of("/\\");
    const std::size_t dot = path.rfind('.');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash))
        return path + "@2x";
    return path.substr(0, dot) + "@2x" + path.substr(dot);
}

} // namespace

QLX_Image::QLX_Image(int width, int height, std::vector<std::uint32_t> pixels) noexcept
    : mWidth(width), mHeight(height), mPixels(std::move(pixels)) {}

QLX_Image::~QLX_Image() = default;

QLX_Image::Ptr QLX_Image::Create(int width, int height) {
    if (IsAbsurd(width, height))
        return nullptr;
    try {
        return Ptr(
            new QLX_Image(width, height, std::vector<std::uint32_t>(std::size_t(width) * height)));
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

QLX_Image::Ptr QLX_Image::Create(int width, int height, std::vector<std::uint32_t> pixels) {
    if (IsAbsurd(width, height) || pixels.size() != std::size_t(width) * height)
        return nullptr;
    std::transform(pixels.begin(), pixels.end(), pixels.begin(), Premultiplied);
    return Ptr(new QLX_Image(width, height, std::move(pixels)));
}

QLX_Image::Ptr QLX_Image::FromPNG(std::string_view bytes) { return Codec().DecodePNG(bytes); }

QLX_Image::Ptr QLX_Image::FromPNGFile(const std::string& path) {
    try {
        // Neither waits for what a pipe may never say nor reads a device without end.
        if (Sys_FileLoc(path).IsStream())
            throw std::runtime_error("is no file");
        const Ptr image = FromPNG(Sys_File::ReadAll(Sys_FileLoc(path)));
        const Sys_FileLoc doubleLoc(DoubleName(path));
        if (!doubleLoc.IsFile())
            return image;
        const Ptr twice = FromPNG(Sys_File::ReadAll(doubleLoc));
        if (twice->GetWidth() != 2 * image->GetWidth() ||
            twice->GetHeight() != 2 * image->GetHeight())
            throw std::runtime_error("its @2x file is not twice as wide and high");
        image->SetDouble(twice);
        return image;
    } catch (const Sys_FileError&) {
        throw; // it names the file already
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(path + ": " + error.what());
    }
}

std::string QLX_Image::ToPNG() const { return Codec().EncodePNG(*this); }

void QLX_Image::ToPNGFile(const std::string& path) const {
    try {
        Sys_SafeWriter::Replace(Sys_FileLoc(path), ToPNG());
    } catch (const Sys_FileError&) {
        throw;
    } catch (const std::runtime_error& error) {
        throw std::runtime_error(path + ": " + error.what());
    }
}

std::uint32_t QLX_Image::GetPixel(int x, int y) const noexcept {
    if (x < 0 || y < 0 || x >= mWidth || y >= mHeight)
        return 0;
    return mPixels[std::size_t(y) * mWidth + x];
}

bool QLX_Image::IsOpaque() const noexcept {
    if (mOpaque < 0)
        mOpaque = std::all_of(mPixels.begin(), mPixels.end(),
                              [](std::uint32_t pixel) { return pixel >> 24 == 255; });
    return mOpaque != 0;
}

void QLX_Image::PixelsChanged() noexcept {
    mOpaque = -1;
    ++mGeneration;
}

void QLX_Image::SetDouble(const Ptr& image) {
    const bool fits = !image || (image.Get() != this && image->mWidth == 2 * mWidth &&
                                 image->mHeight == 2 * mHeight && !image->mDouble);
    CMN_ASSERT(fits);
    if (fits)
        mDouble = image;
}

const QLX_Image& QLX_Image::GetForScale(double factor) const noexcept {
    return factor > 1 && mDouble ? *mDouble : *this;
}

bool QLX_Image::IsEqual(const QLX_Image& other) const noexcept {
    if (mWidth != other.mWidth || mHeight != other.mHeight || mPixels != other.mPixels)
        return false;
    if (!mDouble || !other.mDouble)
        return !mDouble && !other.mDouble;
    return mDouble->IsEqual(*other.mDouble);
}

QLX_Icon::QLX_Icon() noexcept = default;
QLX_Icon::QLX_Icon(const QLX_Image::Ptr& image) { AddImage(image); }
QLX_Icon::QLX_Icon(const QLX_Icon&) = default;
QLX_Icon& QLX_Icon::operator=(const QLX_Icon&) = default;
QLX_Icon::~QLX_Icon() = default;

void QLX_Icon::AddImage(const QLX_Image::Ptr& image) {
    if (!image)
        return;
    const auto place = std::lower_bound(
        mImages.begin(), mImages.end(), image->GetWidth(),
        [](const QLX_Image::Ptr& held, int width) { return held->GetWidth() < width; });
    if (place != mImages.end() && (*place)->GetWidth() == image->GetWidth())
        *place = image;
    else
        mImages.insert(place, image);
}

QLX_Image::Ptr QLX_Icon::GetImageFor(int width) const noexcept {
    for (const QLX_Image::Ptr& image : mImages)
        if (image->GetWidth() >= width)
            return image;
    return mImages.empty() ? nullptr : mImages.back();
}

Cmn_Rect<int> QLX_Icon::GetPlace(const QLX_Image& image, const Cmn_Rect<int>& rect) noexcept {
    const double fit = std::min({1.0, double(rect.GetWidth()) / image.GetWidth(),
                                 double(rect.GetHeight()) / image.GetHeight()});
    const int width = std::max(1, int(std::lround(image.GetWidth() * fit)));
    const int height = std::max(1, int(std::lround(image.GetHeight() * fit)));
    const int left = rect.left + (rect.GetWidth() - width) / 2;
    const int top = rect.top + (rect.GetHeight() - height) / 2;
    return {left, top, left + width, top + height};
}

QLX_ImageCodec::~QLX_ImageCodec() = default;

QLX_ImageCodec* QLX_ImageCodec::Get() noexcept { return sCodec; }

QLX_ImageCodec* QLX_ImageCodec::Install(QLX_ImageCodec* codec) noexcept {
    return std::exchange(sCodec, codec);
}
