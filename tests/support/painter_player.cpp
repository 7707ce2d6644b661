#include "tests/support/painter_player.h"

#include <cstring>
#include <limits>
#include <memory>
#include <stdexcept>
#include <vector>

#include "newfilelibs/cmn/cmn_polygon.h"
#include "qlx/foundation/qlx_region.h"
#include "qlx/imaging/qlx_font.h"
#include "qlx/imaging/qlx_image.h"
#include "qlx/imaging/qlx_painterfactory.h"
#include "qlx/imaging/qlx_path.h"
#include "qlx/imaging/qlx_recordingpainter.h"
#include "qlx/imaging/qlx_statesavers.h"

namespace {

using Rect = Cmn_Rect<int>;

class Player {
  public:
    Player(const QLX_Painter::Ptr& painter, std::string_view bytes) : p(painter), mBytes(bytes) {
        mImage = QLX_Image::Create(7, 5, std::vector<std::uint32_t>(35, 0x80402010));
        mImage->SetDouble(QLX_Image::Create(14, 10, std::vector<std::uint32_t>(140, 0xFF336699)));
    }

    void Play(int maximum) {
        for (int i = 0; i < maximum && !mBytes.empty(); ++i)
            switch (Byte() % 6) {
            case 0:
                State();
                break;
            case 1:
                Family();
                break;
            case 2:
                Canvases();
                break;
            case 3:
                Savers();
                break;
            default:
                Shapes();
                break;
            }
    }

  private:
    unsigned Byte() {
        if (mBytes.empty())
            return 0;
        const auto byte = static_cast<unsigned char>(mBytes.front());
        mBytes.remove_prefix(1);
        return byte;
    }
    bool Bool() { return (Byte() & 1) != 0; }
    /// Mostly near the canvas, sometimes anywhere, sometimes at a limit.
    int Int() {
        const unsigned kind = Byte();
        constexpr int kMaximum = std::numeric_limits<int>::max();
        switch (kind >> 4) {
        case 0:
            return kMaximum - int(kind & 15);
        case 1:
            return -kMaximum - 1 + int(kind & 15);
        case 2:
            return int(Byte() | Byte() << 8 | Byte() << 16 | Byte() << 24);
        case 3:
            return int(Byte() << 8) - 32768;
        default:
            return int(kind) - 100;
        }
    }
    int Small() { return int(Byte() % 12) - 1; }
    float Float() {
        switch (Byte() % 12) {
        case 0:
            return std::numeric_limits<float>::quiet_NaN();
        case 1:
            return std::numeric_limits<float>::infinity();
        case 2:
            return -std::numeric_limits<float>::infinity();
        case 3:
            return std::numeric_limits<float>::max();
        case 4:
            return std::numeric_limits<float>::denorm_min();
        case 5:
            return float(Int()) / 7;
        default:
            return float(Byte()) / 4 - 10;
        }
    }
    float FontSize() {
        // Gigantic ones are allowed and slow, so they are rare.
        const unsigned which = Byte();
        return which == 0   ? 1e9F
               : which == 1 ? std::numeric_limits<float>::quiet_NaN()
                            : float(which % 40) - 2;
    }
    Rect Box() {
        const int left = Int(), top = Int();
        if (Bool())
            return {left, top, Int(), Int()}; // inverted half of the time
        return {left, top, Cmn_SaturatingAdd(left, int(Byte() % 64)),
                Cmn_SaturatingAdd(top, int(Byte() % 64))};
    }
    QLX_Region Region() {
        QLX_Region region;
        for (unsigned i = Byte() % 4; i > 0; --i)
            region.UniteWith(Box());
        return region;
    }
    CRGBColor Color() {
        const auto component = [&] { return static_cast<unsigned short>(Byte() * 257); };
        CRGBColor color(component(), component(), component());
        if (Bool())
            color.SetAlpha(component());
        return color;
    }
    std::string Text() {
        constexpr std::string_view kTexts[] = {
            "",
            "Track 1",
            "line\nline\r\nlast\r",
            "\xE6\x99\x82\xE9\x96\x93",
            "\xD7\xA9\xD7\x9C 1 \xD9\x85\xD8\xB1",
            "e\xCC\x81\xF0\x9F\x8E\xB5",
            "\xED\xA0\x80\xC0\x80\xF8\xFF",
            "a very long line of words that wraps into many lines and is cut at last"};
        const unsigned which = Byte();
        if (which % 4 != 0)
            return std::string(kTexts[which / 4 % std::size(kTexts)]);
        const std::size_t wanted = Byte() % 24;
        const std::size_t length = std::min(wanted, mBytes.size());
        std::string text(mBytes.substr(0, length));
        mBytes.remove_prefix(length);
        return text;
    }
    template <class Enum>
    Enum Any(int count) { // at times just outside
        return static_cast<Enum>(int(Byte()) % (count + 2) - 1);
    }
    QLX_Painter::EResolution Resolution() {
        return Bool() ? QLX_Painter::kResolution_Device : QLX_Painter::kResolution_Logical;
    }
    QLX_Painter::ImagePtr Image() { return Byte() % 8 == 0 ? nullptr : mImage; }
    QLX_Painter::Ptr Other() {
        switch (Byte() % 4) {
        case 0:
            return p;
        case 1:
            return mCanvas;
        default:
            return nullptr;
        }
    }

    void State() {
        switch (Byte() % 16) {
        case 0:
            return p->SetWindowOrigin({Int(), Int()});
        case 1:
            return p->SetClip(Box());
        case 2:
            return p->SetClip(Region());
        case 3:
            return p->SetAlpha(Float());
        case 4:
            return p->SetForegroundColor(Color());
        case 5:
            return p->SetBackgroundColor(Color());
        case 6:
            return p->SetHighlightColor(Color());
        case 7:
            return p->SetPenSize(short(Int()), short(Int()));
        case 8:
            return p->SetPenMode(Any<EPenMode>(kPenMode_Count));
        case 9:
            return p->SetPenPattern(Any<EPenPattern>(kPenPattern_Count));
        case 10:
            return p->NormalizePen();
        case 11:
            return p->SetFont(QLX_Font(Bool() ? "DejaVu Sans Mono" : "nobody's font", FontSize(),
                                       std::uint16_t(Byte() % 16)));
        case 12:
            return p->SetTextMode(Any<EPenMode>(kPenMode_Count));
        case 13:
            return p->SetForeground(EThemeColor(Byte() % kThemeColor_Count));
        case 14:
            return p->MoveTo(Float(), Float(), Resolution());
        default:
            (void)p->GetClipRegion();
            (void)p->GetSystemClipRegion();
            (void)p->RestrictToSystemClip(Box());
            (void)p->MeasureStringHeight(Int(), Text(), Any<QLX_Painter::EWrapKind>(3));
            (void)p->MeasureStringWidth(Text());
            return;
        }
    }

    void Shapes() {
        switch (Byte() % 30) {
        case 0:
            return p->LineTo(Float(), Float(), Bool(), Resolution(), Float());
        case 1:
            return p->LineOfLength(Int(), Int(), Bool(), Resolution());
        case 2:
            return p->DrawRect(Box());
        case 3:
            return p->DrawRoundRect(Box(), Int(), Int(), Bool(), Bool());
        case 4:
            return p->DrawOval(Box());
        case 5:
            return p->DrawArc(Box(), Int(), Int(), Bool());
        case 6:
            return p->DrawPolygon(Polygon(), Bool(), Bool());
        case 7:
            return p->DrawRegion(Region());
        case 8:
            return p->DrawChar(char(Byte()));
        case 9:
            return p->DrawString(Text());
        case 10:
            return p->DrawStringJustified(Box(), Text(), Any<QLX_Painter::EJustification>(4),
                                          Any<QLX_Painter::EVerticalJustification>(3),
                                          Resolution());
        case 11:
        case 12:
            (void)p->DrawTextBox(Box(), Text(), Any<QLX_Painter::EJustification>(4), Bool(), Bool(),
                                 Bool(), Bool());
            return;
        case 13:
            return p->DrawSingleLineTextBox(Box(), Text(), Bool(), Other());
        case 14:
            return p->DrawImage(Image(), Box(), Any<EPenMode>(kPenMode_Count));
        case 15:
            return p->DrawImagePortion(Image(), Box(), Box(), Any<EPenMode>(kPenMode_Count),
                                       Resolution());
        case 16:
            return p->DrawIcon(Bool() ? QLX_Icon(mImage) : QLX_Icon(), Box());
        case 17:
            return p->FillRect(Box());
        case 18:
            return p->FillRoundRect(Box(), Int(), Int(), Bool(), Bool());
        case 19:
            return p->FillOval(Box(), Bool());
        case 20:
            return p->FillPolygon(Polygon());
        case 21:
            return p->FillRegion(Region());
        case 22:
            return p->EraseRect(Box());
        case 23:
            return p->EraseRoundRect(Box(), Int(), Int(), Bool());
        case 24:
            return p->EraseRegion(Region());
        case 25:
            return p->BlendRect(Box(), Color(),
                                Any<QLX_Painter::EBlendMode>(QLX_Painter::kBlend_Count));
        case 26:
            return p->BlendRegion(Region(), Color(),
                                  Any<QLX_Painter::EBlendMode>(QLX_Painter::kBlend_Count));
        case 27:
            p->InvertRect(Box());
            return p->InvertRegion(Region());
        case 28:
            p->HighlightRect(Box(), nullptr);
            return p->HighlightRegion(Region(), nullptr);
        default:
            return Path();
        }
    }

    Cmn_Polygon<int> Polygon() {
        std::vector<Cmn_Point<int>> points;
        for (unsigned i = Byte() % 6; i > 0; --i) {
            const int x = Int();
            points.push_back({x, Int()});
        }
        return Cmn_Polygon<int>(std::move(points));
    }

    void Path() {
        const QLX_Painter::PathPtr path = p->CreateNewPath();
        for (unsigned i = Byte() % 6; path && i > 0; --i)
            switch (Byte() % 8) {
            case 0:
                path->MoveTo(Float(), Float());
                break;
            case 1:
                path->CurveTo(Float(), Float(), Float(), Float(), Float(), Float());
                break;
            case 2:
                path->Close();
                break;
            case 3:
                path->AddRoundRect(Box(), Float(), Float());
                break;
            case 4:
                path->AddArc(Box(), Float(), Float());
                break;
            case 5:
                path->AddOval(Box());
                break;
            default:
                path->LineTo(Float(), Float());
                break;
            }
        if (Bool())
            p->FillPath(path);
        else
            p->DrawPath(Byte() % 8 == 0 ? nullptr : path, Bool(), Any<QLX_Painter::ELineJoin>(3));
    }

    void Family() {
        int numbers[4][8];
        for (auto& row : numbers)
            for (int& number : row)
                number = Int();
        const int(&a)[8] = numbers[0], (&b)[8] = numbers[1], (&c)[8] = numbers[2],
              (&d)[8] = numbers[3];
        const CRGBColor colors[] = {Color(), Color()};
        const int indexes[8] = {0, 1, 1, 0, 1, 0, 0, 1};
        const int count = Small() - 1;
        const auto blend = Any<QLX_Painter::EAlphaBlendType>(3);
        const auto some = Bool() ? Cmn_PolyVector<CRGBColor>::Borrow(colors, 2)
                                 : Cmn_PolyVector<CRGBColor>::Repeat(colors[0], 8);
        const int held = std::min(count, 8);
        switch (Byte() % 16) {
        case 0:
            return p->OptimizedVerticalLine(Int(), Int(), Int(), colors[0], Resolution());
        case 1:
            return p->OptimizedHorizontalLine(Int(), Int(), Int(), colors[0], Resolution());
        case 2:
        case 3:
            return p->OptimizedWaveformFill(Int(), held, a, Bool() ? b : nullptr, Int(), Int(),
                                            Int(), colors[0], Other(), colors[1], Int(),
                                            Resolution());
        case 4:
            return p->OptimizedVerticalLines(held, a, b, c, Bool() ? d : nullptr, some, blend,
                                             Resolution());
        case 5:
            return p->OptimizedHorizontalLines(held, a, b, c, Bool() ? d : nullptr, some, blend,
                                               Resolution());
        case 6:
            return p->OptimizedIdenticalVerticalLines(held, a, Bool() ? indexes : nullptr, colors,
                                                      Int(), Int(), Int(), blend, Resolution(),
                                                      Int());
        case 7:
            return p->OptimizedIdenticalHorizontalLines(held, a, Bool() ? indexes : nullptr, colors,
                                                        Int(), Int(), Int(), Resolution());
        case 8:
            return p->OptimizedWaveformOutline(Int(), held, a, Int(), Bool(), Int(), Int(),
                                               colors[0], Other(), colors[1], Int(), Resolution());
        case 9: {
            const Rect clip = Box();
            return p->OptimizedDrawImage(Image(), Box(), Box(), Bool() ? &clip : nullptr,
                                         Resolution());
        }
        case 10: {
            const Rect clip = Box();
            const QLX_Painter::Ptr second = Other();
            return p->OptimizedDrawImage(Image(), held, a, Int(), Bool() ? &clip : nullptr,
                                         Resolution(), Bool() ? &second : nullptr);
        }
        case 11: {
            const Cmn_PolyVector<QLX_Painter::ImagePtr> images{mImage, nullptr};
            return p->OptimizedDrawImages(images, held, Bool() ? indexes : a, b, c, Resolution());
        }
        case 12:
            return p->OptimizedDrawBackgroundImage(Image(), Int(), Int(), Int(), Resolution());
        case 13:
            return p->OptimizedFillRect(Box(), colors[0], blend, Resolution(), Other(), colors[1],
                                        blend);
        case 14:
            return p->OptimizedFillRoundRect(Box(), Int(), colors[0], blend, Resolution(), Other(),
                                             colors[1], blend);
        default: {
            std::uint32_t pixels[6 * 4];
            std::fill_n(pixels, 24, 0x7F102030U);
            return p->OptimizedCopyPixelsFromOffscreen({2, 3, 8, 7}, Bool() ? pixels : nullptr,
                                                       Box(), Box(), Bool());
        }
        }
    }

    void Canvases() {
        switch (Byte() % 9) {
        case 0: {
            const Rect area = Box();
            if (std::int64_t{area.GetWidth()} * area.GetHeight() < 65536)
                mCanvas = p->CreateOffscreenPainter(area, Bool(), Bool());
            return;
        }
        case 1: {
            const QLX_Region mask = Region();
            return p->CopyCanvas(Other(), Box(), Box(), Any<EPenMode>(kPenMode_Count),
                                 Bool() ? &mask : nullptr, {Int(), Int()});
        }
        case 2: {
            QLX_Region toRepaint;
            return p->ScrollCanvas(Box(), Int(), Int(), toRepaint);
        }
        case 3:
            return p->SaveIntoImage(p->CreateEmptyImage(Small(), Small()), Small());
        case 4:
            if (const QLX_Painter::ImagePtr image = p->CreateImage(Other()))
                p->DrawImage(image, Box(), kPenMode_Copy);
            return;
        case 5: {
            void* bits = nullptr;
            int width = 0, height = 0, rowBytes = 0;
            (void)p->GetOffscreenBuffer(&bits, &width, &height, &rowBytes, nullptr, nullptr,
                                        nullptr);
            return;
        }
        case 6: // draw on the canvas from now on, or come back
            if (mCanvas)
                std::swap(p, mCanvas);
            return;
        case 7:
            if (const QLX_Painter::Ptr clone = p->Clone())
                clone->FillRect(Box());
            return;
        default: {
            const Rect area = Box();
            if (std::int64_t{area.GetWidth()} * area.GetHeight() >= 65536)
                return;
            QLX_Painter::Ptr variable = p;
            const StOffscreenPainter offscreen(variable, area);
            variable->FillOval(Box(), Bool());
            return;
        }
        }
    }

    // Savers end by age, by youth, or all at once with the player.
    void Savers() {
        switch (Byte() % 8) {
        case 0:
            mPens.push_back(std::make_unique<QLX_StPenState>(p));
            return;
        case 1:
            mPaints.push_back(std::make_unique<QLX_StPaintState>(p));
            return;
        case 2:
            mClips.push_back(std::make_unique<QLX_StClipRgnState>(p, Box()));
            return;
        case 3:
            mOrigins.push_back(std::make_unique<QLX_StOriginState>(p));
            return;
        case 4:
            End(mPens);
            return;
        case 5:
            if (!mPaints.empty() && Bool())
                mPaints.back()->Normalize();
            End(mPaints);
            return;
        case 6:
            if (!mClips.empty()) {
                mClips.front()->DiffWithCurrent(Box());
                mClips.front()->ClipToDifference(Region());
            }
            End(mClips);
            return;
        default:
            End(mOrigins);
            return;
        }
    }
    template <class List>
    void End(List& savers) {
        if (savers.empty())
            return;
        const auto place = Bool() ? savers.begin() : savers.end() - 1;
        if (Byte() % 4 == 0)
            (*place)->Release();
        savers.erase(place);
    }

    QLX_Painter::Ptr p;
    std::string_view mBytes;
    QLX_Painter::Ptr mCanvas;
    QLX_Image::Ptr mImage;
    std::vector<std::unique_ptr<QLX_StPenState>> mPens;
    std::vector<std::unique_ptr<QLX_StPaintState>> mPaints;
    std::vector<std::unique_ptr<QLX_StClipRgnState>> mClips;
    std::vector<std::unique_ptr<QLX_StOriginState>> mOrigins;
};

constexpr int kWidth = 61, kHeight = 43, kRow = 70, kGuardRows = 2;
constexpr std::uint32_t kGuard = 0xDEADBEEF;

[[nodiscard]] std::string PlayOnPixels(std::string_view bytes, bool hasAlpha, double scale) {
    QLX_PainterMaker* maker = QLX_PainterFactory::Find("cairo");
    if (!maker)
        return {};
    std::vector<std::uint32_t> memory(std::size_t(kRow) * (kHeight + 2 * kGuardRows), kGuard);
    QLX_PixelBuffer buffer;
    buffer.pixels = memory.data() + kRow * kGuardRows;
    buffer.width = kWidth;
    buffer.height = kHeight;
    buffer.rowPixels = kRow;
    buffer.hasAlpha = hasAlpha;
    for (int y = 0; y < kHeight; ++y)
        std::fill_n(buffer.pixels + y * kRow, kWidth, hasAlpha ? 0x80402010U : 0xFFFFFFFFU);
    const QLX_Painter::Ptr painter = maker->MakeForBuffer(buffer, QLX_DeviceScale(scale));
    PlayPainterBytes(painter, bytes);
    for (int y = -kGuardRows; y < kHeight + kGuardRows; ++y)
        for (int x = 0; x < kRow; ++x) {
            const std::uint32_t pixel = buffer.pixels[y * kRow + x];
            const bool inside = y >= 0 && y < kHeight && x < kWidth;
            const auto place = [&] {
                return " at (" + std::to_string(x) + ", " + std::to_string(y) + ")";
            };
            if (!inside && pixel != kGuard)
                return "a pixel outside the canvas was written" + place();
            const unsigned alpha = pixel >> 24;
            if (inside && hasAlpha &&
                ((pixel >> 16 & 255) > alpha || (pixel >> 8 & 255) > alpha ||
                 (pixel & 255) > alpha))
                return "a pixel is not premultiplied" + place();
        }
    maker->Detach(*painter);
    memory.assign(memory.size(), kGuard);
    PlayPainterBytes(painter, bytes);
    if (memory != std::vector<std::uint32_t>(memory.size(), kGuard))
        return "a painter drew on a target that is gone";
    return painter->IsValid() ? "a painter calls a target valid that is gone" : std::string();
}

[[nodiscard]] std::string PlayOnRecorder(std::string_view bytes) {
    const QLX_Painter::Ptr recorder(new QLX_PainterRecording(kWidth, kHeight));
    PlayPainterBytes(recorder, bytes, 60);
    const auto& recording = static_cast<QLX_PainterRecording*>(recorder.Get())->GetRecording();
    // Reading drops what draws nothing anyway (copies from nowhere, lists of negative length); what
    // was read once stays.
    std::string text = recording.Print(QLX_Recording::kPrint_Complete);
    try {
        text = QLX_Recording::Parse(text, "played")->Print(QLX_Recording::kPrint_Complete);
        const auto read = QLX_Recording::Parse(text, "read");
        const std::string again = read->Print(QLX_Recording::kPrint_Complete);
        if (again != text)
            return "a recording changed when it was read:\n" + text + "\nbecame\n" + again;
        (void)read->AsSVG();
    } catch (const std::runtime_error& error) {
        return std::string("a recording cannot be read: ") + error.what() + "\n" + text;
    }
    return {};
}

} // namespace

void PlayPainterBytes(const QLX_Painter::Ptr& painter, std::string_view bytes, int maximum) {
    Player(painter, bytes).Play(maximum);
}

std::string BrokenPainterLaw(std::string_view bytes) {
    if (bytes.empty())
        return {};
    constexpr double kScales[] = {1, 1.25, 1.5, 2, 0.7, 1.9};
    const auto choice = static_cast<unsigned char>(bytes.front());
    const std::string broken =
        PlayOnPixels(bytes.substr(1), (choice & 1) != 0, kScales[choice / 2 % std::size(kScales)]);
    return broken.empty() ? PlayOnRecorder(bytes.substr(1)) : broken;
}
