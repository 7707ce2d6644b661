// Pictures in memory: 32-bit pixels that painters draw and offscreen canvases are saved into.
// Reading and writing PNG goes through the installed QLX_ImageCodec.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "basekit/cmn/cmn_refcount.h"
#include "newfilelibs/cmn/cmn_rect.h"

/// A picture: premultiplied pixels, alpha in the top byte, then red, green, blue (0xAARRGGBB as a
/// number), rows from the top without gaps. It may carry a second set of pixels at twice the
/// resolution, which painters take when their scale is above 1. Shared by count; pixels are meant
/// to be changed only before the image is handed around. User-interface thread.
class QLX_API QLX_Image : public Cmn_RefCountObject {
  public:
    using Ptr = Cmn_AliasedRefCountPtr<QLX_Image>;
    /// Larger sides are refused everywhere: 16384 squared is a gigabyte already.
    static constexpr int kMaximumSide = 16384;

    /// Transparent pixels. Null when a side is not within 1 and kMaximumSide or memory is short.
    [[nodiscard]] static Ptr Create(int width, int height);
    /// Takes over pixels; null when their count is not width times height. Colour bytes above their
    /// alpha are brought down to it.
    [[nodiscard]] static Ptr Create(int width, int height, std::vector<std::uint32_t> pixels);

    /// Reads a PNG file, and "name@2x.png" beside "name.png" as its double-resolution pixels when
    /// that file is there. Throws std::runtime_error "path: reason".
    [[nodiscard]] static Ptr FromPNGFile(const std::string& path);
    /// Reads a PNG in memory. Throws std::runtime_error with the reason.
    [[nodiscard]] static Ptr FromPNG(std::string_view bytes);
    /// The picture as a PNG (the pixels at scale 1). Throws std::runtime_error.
    [[nodiscard]] std::string ToPNG() const;
    /// Throws std::runtime_error "path: reason".
    void ToPNGFile(const std::string& path) const;

    ~QLX_Image() override;

    // Size

    /// Logical units, which are the pixels at scale 1.
    [[nodiscard]] int GetWidth() const noexcept { return mWidth; }
    [[nodiscard]] int GetHeight() const noexcept { return mHeight; }
    [[nodiscard]] Cmn_Rect<int> GetBounds() const noexcept { return {0, 0, mWidth, mHeight}; }

    // Pixels

    [[nodiscard]] const std::uint32_t* GetPixels() const noexcept { return mPixels.data(); }
    /// For changing pixels; call PixelsChanged afterwards.
    [[nodiscard]] std::uint32_t* GetWritablePixels() noexcept { return mPixels.data(); }
    /// Outside the picture: 0.
    [[nodiscard]] std::uint32_t GetPixel(int x, int y) const noexcept;
    /// Whether every pixel's alpha is 255; found once and remembered until PixelsChanged.
    [[nodiscard]] bool IsOpaque() const noexcept;
    void PixelsChanged() noexcept;
    /// Grows with every PixelsChanged, so that painters can keep what they made of the pixels.
    [[nodiscard]] std::uint32_t GetGeneration() const noexcept { return mGeneration; }

    // Double resolution

    /// Null when there is none.
    [[nodiscard]] const QLX_Image* GetDouble() const noexcept { return mDouble.Get(); }
    [[nodiscard]] Ptr GetDoublePtr() const noexcept { return mDouble; }
    /// Sets or (null) removes the picture at twice the resolution. One that is not exactly twice as
    /// wide and high is asserted and ignored.
    void SetDouble(const Ptr& image);
    /// The image to draw from at a scale factor: the double one above 1, if there is one.
    [[nodiscard]] const QLX_Image& GetForScale(double factor) const noexcept;

    /// Same size and pixels, the double resolution included.
    [[nodiscard]] bool IsEqual(const QLX_Image& other) const noexcept;

  private:
    QLX_Image(int width, int height, std::vector<std::uint32_t> pixels) noexcept;

    int mWidth;
    int mHeight;
    std::vector<std::uint32_t> mPixels;
    mutable signed char mOpaque = -1; // -1: not looked at yet
    std::uint32_t mGeneration = 0;
    Ptr mDouble; // counted
};

/// An icon: one picture in several sizes. Copies share the pictures.
class QLX_API QLX_Icon {
  public:
    QLX_Icon() noexcept;
    explicit QLX_Icon(const QLX_Image::Ptr& image);
    QLX_Icon(const QLX_Icon&);
    QLX_Icon& operator=(const QLX_Icon&);
    ~QLX_Icon();

    /// Adds a size; null is ignored. Of two with one size the later stands.
    void AddImage(const QLX_Image::Ptr& image);
    [[nodiscard]] bool IsEmpty() const noexcept { return mImages.empty(); }
    /// The picture that suits a size in pixels best: the smallest at least as wide, else the
    /// widest. Null when the icon is empty.
    [[nodiscard]] QLX_Image::Ptr GetImageFor(int width) const noexcept;
    /// Where a picture of an icon stands in a rectangle that is not empty: in the middle, whole,
    /// never larger than it is.
    [[nodiscard]] static Cmn_Rect<int> GetPlace(const QLX_Image& image,
                                                const Cmn_Rect<int>& rect) noexcept;
    /// Ascending by width.
    [[nodiscard]] const std::vector<QLX_Image::Ptr>& GetImages() const noexcept { return mImages; }

  private:
    std::vector<QLX_Image::Ptr> mImages; // counted
};

/// The wall between images and the library that packs them. User-interface thread.
class QLX_API QLX_ImageCodec {
  public:
    virtual ~QLX_ImageCodec();
    /// Throws std::runtime_error with the reason.
    [[nodiscard]] virtual QLX_Image::Ptr DecodePNG(std::string_view bytes) = 0;
    [[nodiscard]] virtual std::string EncodePNG(const QLX_Image& image) = 0;

    /// Null when none is installed.
    [[nodiscard]] static QLX_ImageCodec* Get() noexcept;
    /// Not owned. Returns the previous one.
    static QLX_ImageCodec* Install(QLX_ImageCodec* codec) noexcept;
};
