// PNG through Cairo, installed as the image codec when the library is loaded.

#include <cstring>
#include <iterator>
#include <memory>
#include <stdexcept>

#include "qlx/imaging/qlx_image.h"

#include <cairo.h>

namespace {

struct DestroySurface {
    void operator()(cairo_surface_t* surface) const noexcept { cairo_surface_destroy(surface); }
};
using SurfacePtr = std::unique_ptr<cairo_surface_t, DestroySurface>;

struct Bytes {
    std::string_view left;
};

cairo_status_t ReadSome(void* closure, unsigned char* data, unsigned int length) {
    auto& bytes = *static_cast<Bytes*>(closure);
    if (bytes.left.size() < length)
        return CAIRO_STATUS_READ_ERROR;
    std::memcpy(data, bytes.left.data(), length);
    bytes.left.remove_prefix(length);
    return CAIRO_STATUS_SUCCESS;
}

cairo_status_t WriteSome(void* closure, const unsigned char* data, unsigned int length) {
    static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), length);
    return CAIRO_STATUS_SUCCESS;
}

[[nodiscard]] unsigned BigEndian32(std::string_view bytes, std::size_t at) noexcept {
    unsigned value = 0;
    for (std::size_t i = 0; i < 4; ++i)
        value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
    return value;
}

// Bits of a pixel in the file, by its header.
[[nodiscard]] std::size_t PixelBits(std::string_view header) noexcept {
    constexpr std::size_t kSamples[] = {1, 1, 3, 1, 2, 1, 4}; // by colour type
    const std::size_t colorType = static_cast<unsigned char>(header[25]);
    const std::size_t depth = static_cast<unsigned char>(header[24]);
    return depth * (colorType < std::size(kSamples) ? kSamples[colorType] : 1);
}

// The size is looked at before anything is decoded, so that a small file cannot ask for gigabytes:
// no more than deflate can have packed into it, which makes 1032 bytes of one at most.
void CheckHeader(std::string_view bytes) {
    constexpr std::string_view kSignature("\x89PNG\r\n\x1A\n", 8);
    if (!bytes.starts_with(kSignature))
        throw std::runtime_error("not a PNG file");
    constexpr std::size_t kMostUnpacked = 1032;
    if (bytes.size() < 26 || bytes.substr(12, 4) != "IHDR")
        throw std::runtime_error("the PNG has no header");
    const unsigned width = BigEndian32(bytes, 16), height = BigEndian32(bytes, 20);
    if (width == 0 || height == 0 || width > unsigned(QLX_Image::kMaximumSide) ||
        height > unsigned(QLX_Image::kMaximumSide) || std::size_t(width) * height > (1U << 26))
        throw std::runtime_error("a PNG of " + std::to_string(width) + " by " +
                                 std::to_string(height) + " pixels is not read");
    if (std::size_t(width) * height * PixelBits(bytes) / 8 / kMostUnpacked > bytes.size())
        throw std::runtime_error("a PNG of " + std::to_string(width) + " by " +
                                 std::to_string(height) + " pixels is more than its file holds");
}

[[noreturn]] void Fail(const char* what, cairo_status_t status) {
    throw std::runtime_error(std::string(what) + ": " + cairo_status_to_string(status));
}

class CairoCodec final : public QLX_ImageCodec {
  public:
    QLX_Image::Ptr DecodePNG(std::string_view encoded) override {
        CheckHeader(encoded);
        Bytes bytes{encoded};
        const SurfacePtr surface(cairo_image_surface_create_from_png_stream(ReadSome, &bytes));
        if (const auto status = cairo_surface_status(surface.get()); status != CAIRO_STATUS_SUCCESS)
            Fail("the PNG is damaged", status);
        const cairo_format_t format = cairo_image_surface_get_format(surface.get());
        if (format != CAIRO_FORMAT_ARGB32 && format != CAIRO_FORMAT_RGB24)
            throw std::runtime_error("the PNG's pixel form is not read");
        const int width = cairo_image_surface_get_width(surface.get());
        const int height = cairo_image_surface_get_height(surface.get());
        const int stride = cairo_image_surface_get_stride(surface.get());
        const unsigned char* data = cairo_image_surface_get_data(surface.get());
        std::vector<std::uint32_t> pixels(std::size_t(width) * height);
        for (int y = 0; y < height; ++y)
            std::memcpy(pixels.data() + std::size_t(y) * width, data + std::ptrdiff_t(y) * stride,
                        std::size_t(width) * 4);
        if (format == CAIRO_FORMAT_RGB24)
            for (std::uint32_t& pixel : pixels)
                pixel |= 0xFF000000;
        return QLX_Image::Create(width, height, std::move(pixels));
    }

    std::string EncodePNG(const QLX_Image& image) override {
        const cairo_format_t format = image.IsOpaque() ? CAIRO_FORMAT_RGB24 : CAIRO_FORMAT_ARGB32;
        const SurfacePtr surface(
            cairo_image_surface_create(format, image.GetWidth(), image.GetHeight()));
        if (const auto status = cairo_surface_status(surface.get()); status != CAIRO_STATUS_SUCCESS)
            Fail("the PNG cannot be made", status);
        cairo_surface_flush(surface.get());
        const int stride = cairo_image_surface_get_stride(surface.get());
        unsigned char* data = cairo_image_surface_get_data(surface.get());
        for (int y = 0; y < image.GetHeight(); ++y)
            std::memcpy(data + std::ptrdiff_t(y) * stride,
                        image.GetPixels() + std::size_t(y) * image.GetWidth(),
                        std::size_t(image.GetWidth()) * 4);
        cairo_surface_mark_dirty(surface.get());
        std::string out;
        if (const auto status = cairo_surface_write_to_png_stream(surface.get(), WriteSome, &out);
            status != CAIRO_STATUS_SUCCESS)
            Fail("the PNG cannot be made", status);
        return out;
    }
};

[[maybe_unused]] const bool sInstalled = [] {
    static CairoCodec codec;
    QLX_ImageCodec::Install(&codec);
    return true;
}();

} // namespace
