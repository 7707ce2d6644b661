// PNG through the Windows Imaging Component.

#include <stdexcept>

#include "qlx/imaging/qlx_image.h"
#include "qlx/imaging/win32/qlx_d2dmanager.h"

#include <algorithm>

namespace {

[[nodiscard]] IWICImagingFactory& Factory() {
    IWICImagingFactory* factory = QLX_D2DManager::GetImagingFactory();
    if (!factory)
        throw std::runtime_error("the Windows Imaging Component is missing (no windowscodecs.dll)");
    return *factory;
}

void Check(HRESULT result, const char* reason) {
    if (FAILED(result))
        throw std::runtime_error(reason);
}

// Calls a function that hands a new reference out.
template <class Interface, class Call>
[[nodiscard]] QLX_ComPtr<Interface> Made(Call call, const char* reason) {
    Interface* made = nullptr;
    Check(call(&made), reason);
    QLX_ComPtr<Interface> pointer;
    pointer.Adopt(made);
    return pointer;
}

class WICCodec final : public QLX_ImageCodec {
  public:
    QLX_Image::Ptr DecodePNG(std::string_view bytes) override;
    std::string EncodePNG(const QLX_Image& image) override;
};

QLX_Image::Ptr WICCodec::DecodePNG(std::string_view bytes) {
    constexpr const char* kNotPNG = "not a PNG image";
    constexpr std::string_view kSignature("\x89PNG\r\n\x1a\n", 8);
    if (bytes.substr(0, 8) != kSignature)
        throw std::runtime_error(kNotPNG);
    IWICImagingFactory& factory = Factory();
    const auto stream = Made<IWICStream>(
        [&](IWICStream** out) { return factory.CreateStream(out); }, "no memory for a stream");
    Check(stream->InitializeFromMemory(reinterpret_cast<BYTE*>(const_cast<char*>(bytes.data())),
                                       DWORD(bytes.size())),
          kNotPNG);
    const auto decoder = Made<IWICBitmapDecoder>(
        [&](IWICBitmapDecoder** out) {
            return factory.CreateDecoderFromStream(stream.Get(), nullptr,
                                                   WICDecodeMetadataCacheOnDemand, out);
        },
        "damaged PNG image");
    const auto frame = Made<IWICBitmapFrameDecode>(
        [&](IWICBitmapFrameDecode** out) { return decoder->GetFrame(0, out); },
        "damaged PNG image");
    UINT width = 0, height = 0;
    Check(frame->GetSize(&width, &height), "damaged PNG image");
    const QLX_Image::Ptr image = QLX_Image::Create(int(std::min<UINT>(width, 1U << 20)),
                                                   int(std::min<UINT>(height, 1U << 20)));
    if (!image)
        throw std::runtime_error("the PNG image is too large");
    const auto converter = Made<IWICFormatConverter>(
        [&](IWICFormatConverter** out) { return factory.CreateFormatConverter(out); },
        "no memory for a converter");
    Check(converter->Initialize(frame.Get(), GUID_WICPixelFormat32bppPBGRA, WICBitmapDitherTypeNone,
                                nullptr, 0, WICBitmapPaletteTypeCustom),
          "a PNG image of unknown pixels");
    Check(converter->CopyPixels(nullptr, width * 4, width * height * 4,
                                reinterpret_cast<BYTE*>(image->GetWritablePixels())),
          "damaged PNG image");
    image->PixelsChanged();
    return image;
}

// PNG keeps colours that are not multiplied by their alpha.
std::vector<std::uint32_t> Straight(const QLX_Image& image) {
    std::vector<std::uint32_t> pixels(
        image.GetPixels(), image.GetPixels() + std::size_t(image.GetWidth()) * image.GetHeight());
    for (std::uint32_t& pixel : pixels) {
        const std::uint32_t alpha = pixel >> 24;
        if (alpha == 0 || alpha == 255)
            continue;
        const auto channel = [&](int shift) {
            return std::min<std::uint32_t>(255, ((pixel >> shift & 255) * 255 + alpha / 2) / alpha)
                   << shift;
        };
        pixel = alpha << 24 | channel(16) | channel(8) | channel(0);
    }
    return pixels;
}

std::string WICCodec::EncodePNG(const QLX_Image& image) {
    constexpr const char* kFailed = "the PNG image cannot be written";
    IWICImagingFactory& factory = Factory();
    const auto memory = Made<IStream>(
        [](IStream** out) { return CreateStreamOnHGlobal(nullptr, TRUE, out); }, kFailed);
    const auto encoder = Made<IWICBitmapEncoder>(
        [&](IWICBitmapEncoder** out) {
            return factory.CreateEncoder(GUID_ContainerFormatPng, nullptr, out);
        },
        kFailed);
    Check(encoder->Initialize(memory.Get(), WICBitmapEncoderNoCache), kFailed);
    const auto frame = Made<IWICBitmapFrameEncode>(
        [&](IWICBitmapFrameEncode** out) { return encoder->CreateNewFrame(out, nullptr); },
        kFailed);
    Check(frame->Initialize(nullptr), kFailed);
    Check(frame->SetSize(UINT(image.GetWidth()), UINT(image.GetHeight())), kFailed);
    WICPixelFormatGUID format = GUID_WICPixelFormat32bppBGRA;
    Check(frame->SetPixelFormat(&format), kFailed);
    std::vector<std::uint32_t> pixels = Straight(image);
    Check(frame->WritePixels(UINT(image.GetHeight()), UINT(image.GetWidth()) * 4,
                             UINT(pixels.size() * 4), reinterpret_cast<BYTE*>(pixels.data())),
          kFailed);
    Check(frame->Commit(), kFailed);
    Check(encoder->Commit(), kFailed);
    STATSTG info{};
    Check(memory->Stat(&info, STATFLAG_NONAME), kFailed);
    std::string bytes(std::size_t(info.cbSize.QuadPart), '\0');
    Check(memory->Seek({}, STREAM_SEEK_SET, nullptr), kFailed);
    ULONG read = 0;
    Check(memory->Read(bytes.data(), ULONG(bytes.size()), &read), kFailed);
    bytes.resize(read);
    return bytes;
}

[[maybe_unused]] const bool sInstalled = [] {
    static WICCodec codec;
    QLX_ImageCodec::Install(&codec);
    return true;
}();

} // namespace
