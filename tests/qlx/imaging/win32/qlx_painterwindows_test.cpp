#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "basekit/cmn/cmn_trace.h"
#include "qlx/imaging/qlx_painterfactory.h"
#include "qlx/imaging/qlx_recordingpainter.h"
#include "qlx/imaging/win32/qlx_d2dcanvas.h"
#include "qlx/imaging/win32/qlx_d2dmanager.h"
#include "qlx/imaging/win32/qlx_nativehandles.h"
#include "qlx/imaging/win32/qlx_painterdirect2d.h"
#include "qlx/imaging/win32/qlx_paintergdi.h"
#include "qlx/imaging/win32/qlx_winfonts.h"
#include "tests/support/painter_sheet.h"
#include "tests/support/picture_compare.h"
#include "tests/support/picture_exchange.h"

namespace {

using Rect = Cmn_Rect<int>;

struct Kind {
    const char* name;
    QLX_Painter::Ptr (*make)(int, int, QLX_DeviceScale, bool);
    // How far the smoothing of an edge may differ from Cairo's: edges rendered here have sixteen
    // shades, and wine's Direct2D leaves its own rough.
    int edge;
    // A handful of pixels in half a million: corners of patterns under a smooth edge.
    int mostOdd;
    bool systemsEdges;
};
constexpr Kind kKinds[] = {
    {"gdi", &QLX_PainterGDI::New, 64, 10, false},
    {"direct2d", &QLX_PainterDirect2D::New, 64, 10, false},
    {"direct2d with the system's edges", &QLX_PainterDirect2D::New, 200, 40, true}};

// Forces how Direct2D draws edges, for a scope.
class StEdges {
  public:
    explicit StEdges(const Kind& kind) {
        if (kind.systemsEdges)
            QLX_D2DManager::SimulateSmoothing(true);
    }
    StEdges(const StEdges&) = delete;
    StEdges& operator=(const StEdges&) = delete;
    ~StEdges() { QLX_D2DManager::Shutdown(); } // asked again
};

QLX_Image::Ptr PixelsOf(const QLX_Painter::Ptr& painter) {
    return static_cast<QLX_PainterWindows&>(*painter).GetPixels();
}

// What the native build wrote, else what is kept in the repository: a picture, and the calls that
// made it.
class Reference {
  public:
    explicit Reference(const std::string& scale) {
        const std::string picture = GetExchangePath("sheet-" + scale + ".png");
        std::ifstream file(GetExchangePath("sheet-" + scale + ".recording"), std::ios::binary);
        if (file && std::filesystem::exists(picture)) {
            std::stringstream text;
            text << file.rdbuf();
            mRecording = QLX_Recording::Parse(text.str(), "sheet-" + scale);
            mPicture = QLX_Image::FromPNGFile(picture);
        } else {
            mPicture = QLX_Image::FromPNGFile(QLX_TEST_GOLDEN "/painter-shapes-" + scale + ".png");
        }
    }
    [[nodiscard]] const QLX_Image& GetPicture() const { return *mPicture; }
    [[nodiscard]] QLX_Painter::Ptr Draw(const Kind& kind, double scale) const {
        const QLX_Painter::Ptr painter =
            kind.make(mRecording ? mRecording->GetWidth() : kPainterSheetWidth,
                      mRecording ? mRecording->GetHeight() : kPainterSheetHeight,
                      QLX_DeviceScale(scale), false);
        if (painter && mRecording)
            mRecording->Replay(painter);
        else if (painter)
            DrawPainterSheet(painter, kSheet_Shapes | kSheet_Canvases);
        return painter;
    }

  private:
    Cmn_RefCountPtr<QLX_Recording> mRecording; // null: the sheet as it is drawn here
    QLX_Image::Ptr mPicture;
};

// Pictures side by side, for looking at.
class ContactSheet {
  public:
    void Add(const QLX_Image& picture) { mPictures.push_back(Copy(picture)); }
    void Write(const std::string& name) const {
        int width = 0, height = 0;
        for (const QLX_Image::Ptr& picture : mPictures) {
            width += picture->GetWidth() + 8;
            height = std::max(height, picture->GetHeight());
        }
        const QLX_Image::Ptr sheet = QLX_Image::Create(width, height);
        int left = 0;
        for (const QLX_Image::Ptr& picture : mPictures) {
            for (int y = 0; y < picture->GetHeight(); ++y)
                for (int x = 0; x < picture->GetWidth(); ++x)
                    sheet->GetWritablePixels()[std::size_t(y) * width + left + x] =
                        picture->GetPixel(x, y);
            left += picture->GetWidth() + 8;
        }
        sheet->PixelsChanged();
        sheet->ToPNGFile(std::string(QLX_TEST_OUTPUT) + "/" + name);
    }

  private:
    static QLX_Image::Ptr Copy(const QLX_Image& picture) {
        return QLX_Image::Create(
            picture.GetWidth(), picture.GetHeight(),
            {picture.GetPixels(),
             picture.GetPixels() + std::size_t(picture.GetWidth()) * picture.GetHeight()});
    }
    std::vector<QLX_Image::Ptr> mPictures;
};

class PainterWindows : public testing::Test {
  protected:
    static void SetUpTestSuite() { QLX_WinFonts::InstallMeasure(); }
    static void TearDownTestSuite() {
        QLX_TextMeasure::Install(nullptr);
        QLX_D2DManager::Shutdown();
    }
    void TearDown() override {
        QLX_NativeHandles::FailCreationsAfter(-1);
        QLX_D2DManager::SimulateDeviceLoss(0);
    }
};

TEST_F(PainterWindows, TheSheetIsCairosWithinOnePixelAlongEdges) {
    for (const auto& [scale, name] : {std::pair(1.0, "1x"), {1.25, "1.25x"}, {2.0, "2x"}}) {
        const Reference reference(name);
        ContactSheet contact;
        contact.Add(reference.GetPicture());
        for (const Kind& kind : kKinds) {
            const StEdges edges(kind);
            const QLX_Painter::Ptr painter = reference.Draw(kind, scale);
            ASSERT_TRUE(painter) << kind.name;
            const QLX_Image::Ptr picture = PixelsOf(painter);
            const QLX_Image::Ptr differences =
                QLX_Image::Create(picture->GetWidth(), picture->GetHeight());
            EXPECT_LE(CountBeyondOnePixel(*picture, reference.GetPicture(), 2, kind.edge,
                                          differences.Get()),
                      kind.mostOdd)
                << kind.name << " at " << name;
            contact.Add(*picture);
            contact.Add(*differences);
        }
        contact.Write("windows-sheet-" + std::string(name) + ".png");
    }
}

TEST_F(PainterWindows, TextBoxesLieWhereCairosLie) {
    const std::string path = GetExchangePath("texts.png");
    if (!std::filesystem::exists(path))
        GTEST_SKIP() << "the native build has not written " << path;
    const QLX_Image::Ptr reference = QLX_Image::FromPNGFile(path);
    ContactSheet contact;
    contact.Add(*reference);
    for (const Kind& kind : kKinds) {
        if (kind.systemsEdges)
            continue;
        const QLX_Painter::Ptr painter =
            kind.make(kExchangedTextWidth, kExchangedTextHeight, QLX_DeviceScale(), false);
        DrawExchangedTexts(painter);
        const QLX_Image::Ptr picture = PixelsOf(painter);
        contact.Add(*picture);
        for (const ExchangedText& text : GetExchangedTexts()) {
            const Rect expected = FindInk(*reference, text.box);
            const Rect ink = FindInk(*picture, text.box);
            // The family has no slanted face: every library slants it at an angle of its own.
            const int most = text.style == kFontStyle_Italic ? 2 : 1;
            const bool near = std::abs(ink.left - expected.left) <= most &&
                              std::abs(ink.top - expected.top) <= most &&
                              std::abs(ink.right - expected.right) <= most &&
                              std::abs(ink.bottom - expected.bottom) <= most;
            EXPECT_TRUE(near) << kind.name << ", " << text.text << ": " << ink.left << ","
                              << ink.top << "," << ink.right << "," << ink.bottom << ", Cairo's "
                              << expected.left << "," << expected.top << "," << expected.right
                              << "," << expected.bottom;
        }
    }
    contact.Write("windows-texts.png");
}

// The lines of the trace while it lives.
class TraceLines {
  public:
    TraceLines() : mBefore(Cmn_SetTraceSink(Sink)) { Lines().clear(); }
    ~TraceLines() { Cmn_SetTraceSink(mBefore); }
    static bool Contains(std::string_view text) {
        return std::any_of(Lines().begin(), Lines().end(), [text](const std::string& line) {
            return line.find(text) != std::string::npos;
        });
    }

  private:
    static std::vector<std::string>& Lines() {
        static std::vector<std::string> lines;
        return lines;
    }
    static void Sink(const char* line) { Lines().emplace_back(line); }
    Cmn_TraceSink mBefore;
};

// A window without a title, for painters only.
class BareWindow {
  public:
    BareWindow(int width, int height)
        : mWindow(CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 20, 20, width, height,
                                  nullptr, nullptr, GetModuleHandleW(nullptr), nullptr)) {}
    ~BareWindow() { DestroyWindow(mWindow); }
    [[nodiscard]] HWND Get() const { return mWindow; }

  private:
    HWND mWindow;
};

QLX_PainterWindows& Of(const QLX_Painter::Ptr& painter) {
    return static_cast<QLX_PainterWindows&>(*painter);
}

// A small window of an audio host: panels, a field, a waveform, an image.
void DrawFrame(const QLX_Painter::Ptr& p, int number) {
    const Rect all = p->GetBounds();
    p->SetBackgroundColor(CRGBColor(0xE000, 0xE000, 0xE000));
    p->EraseRect(all);
    p->SetForegroundColor(CRGBColor(0x2000, 0x4000, 0x8000));
    p->FillRoundRect({8, 8, 120, 40}, 6, 6, true, false);
    p->SetForegroundColor(CRGBColor());
    p->DrawTextBox({10, 10, 118, 30}, std::to_string(number), QLX_Painter::kJustify_Right, false,
                   false, true, true);
    p->SetPenMode(kPenMode_Xor);
    p->FillRect({30, 50, 90, 60});
    p->SetPenMode(kPenMode_Add);
    p->FillOval({30, 65, 90, 85}, true);
    p->NormalizePen();
    p->SetClip(QLX_Region(Rect(0, 90, 60, 100)).Union(Rect(70, 95, 130, 110)));
    p->DrawOval({2, 88, 128, 112});
    p->SetClip(all);
    QLX_Painter::Ptr offscreen = p->CreateOffscreenPainter({100, 60, 116, 76}, false, false);
    ASSERT_TRUE(offscreen);
    offscreen->InvertRect({102, 62, 108, 70});
    p->CopyCanvas(offscreen, {100, 60, 116, 76}, {100, 60, 116, 76}, kPenMode_Copy, nullptr, {});
}

#if !defined(_MSC_VER) // which stores members another way
TEST_F(PainterWindows, OwnOperationsFollowTheInterfacesSlots) {
    // A virtual function's place, as the C++ ABI of the compiler stores it in a member pointer.
    const auto slot = [](auto member) {
        std::intptr_t words[2] = {};
        static_assert(sizeof member == sizeof words);
        std::memcpy(words, &member, sizeof words);
        return (words[0] - 1) / std::intptr_t(sizeof(void*));
    };
    using W = QLX_PainterWindows;
    const std::intptr_t first = slot(&W::CheckScaleFactor);
    EXPECT_EQ(slot(&W::GetHDC) - first, 1);
    EXPECT_EQ(slot(static_cast<void (W::*)(const Rect&)>(&W::AddDirtyRgn)) - first, 2);
    EXPECT_EQ(slot(static_cast<void (W::*)(const RECT&)>(&W::AddDirtyRgn)) - first, 3);
    EXPECT_EQ(slot(&W::GetHWnd) - first, 4);
    EXPECT_EQ(slot(&W::GetPainterKind) - first, 5);
    // Slots 3 and 107 of the table are the interface's handle and the window.
    EXPECT_EQ(first - slot(&QLX_Painter::GetRawNativeDrawingPort), 103 - 3);
}
#endif

TEST_F(PainterWindows, PiecesOfTheSheetGiveTheWholeSheetInGDI) {
    const unsigned parts = kSheet_Shapes | kSheet_Texts;
    const auto whole = QLX_PainterGDI::New(kPainterSheetWidth, kPainterSheetHeight);
    DrawPainterSheet(whole, parts);
    const auto pieces = QLX_PainterGDI::New(kPainterSheetWidth, kPainterSheetHeight);
    for (int left = 0; left < kPainterSheetWidth; left += 191) {
        Of(pieces).SetSystemClip(QLX_Region(Rect(left, 0, left + 191, kPainterSheetHeight)));
        DrawPainterSheet(pieces, parts);
    }
    EXPECT_TRUE(SamePictures(*PixelsOf(pieces), *PixelsOf(whole), "gdi-pieces"));
}

// Direct2D lays many rectangles down as one bitmap: they must look as when drawn one by one.
TEST_F(PainterWindows, ManyColumnsLookAlikeInBoth) {
    std::vector<int> low(300), high(300);
    for (int i = 0; i < 300; ++i) {
        low[std::size_t(i)] = -(i * 7 % 40);
        high[std::size_t(i)] = i % 11 == 0 ? -50 : i * 13 % 45;
    }
    for (const bool transparent : {false, true})
        for (const double scale : {1.0, 1.25}) {
            QLX_Image::Ptr pictures[2];
            for (int i = 0; i < 2; ++i) {
                const QLX_Painter::Ptr p = kKinds[i].make(320, 100, QLX_DeviceScale(scale), false);
                p->SetForegroundColor(CRGBColor(0xC000, 0x8000, 0));
                p->FillRect({0, 45, 320, 60});
                p->SetClip(QLX_Region(Rect(0, 0, 90, 100)).Union(Rect(95, 20, 310, 90)));
                p->OptimizedWaveformFill(4, 300, low.data(), high.data(), 50, 5, 95,
                                         CRGBColor(0, 0, 0x8000, transparent ? 0x6000 : 0xFFFF),
                                         nullptr, CRGBColor(), 1, QLX_Painter::kResolution_Logical);
                pictures[i] = PixelsOf(p);
            }
            EXPECT_TRUE(SamePictures(*pictures[1], *pictures[0], "many-columns", 1))
                << transparent << ", " << scale;
        }
}

// The dials of a mixer are one picture; another colour, size or join is another.
TEST_F(PainterWindows, ShapesAreRenderedOnceWhereverTheyLie) {
    const StEdges ask(kKinds[1]);
    const QLX_Painter::Ptr p = QLX_PainterDirect2D::New(400, 60, QLX_DeviceScale(), false);
    ASSERT_TRUE(p);
    if (QLX_D2DManager::SmoothsShapes())
        GTEST_SKIP() << "this Direct2D smooths edges itself";
    const unsigned before = QLX_D2DShapePictures::GetRenderedCount();
    for (int i = 0; i < 10; ++i)
        p->FillOval({i * 40, 10, i * 40 + 30, 40}, true);
    EXPECT_EQ(QLX_D2DShapePictures::GetRenderedCount() - before, 1U);
    const QLX_Image::Ptr picture = PixelsOf(p);
    for (int y = 0; y < 60; ++y)
        for (int x = 0; x < 40; ++x)
            ASSERT_EQ(picture->GetPixel(x, y), picture->GetPixel(x + 320, y)) << x << ", " << y;
    p->SetForegroundColor(CRGBColor(0xFFFF, 0, 0));
    p->FillOval({0, 10, 30, 40}, true);
    p->FillOval({0, 10, 31, 40}, true);
    p->DrawOval({0, 10, 31, 40});
    EXPECT_EQ(QLX_D2DShapePictures::GetRenderedCount() - before, 4U);
    QLX_D2DManager::SimulateDeviceLoss(1);
    p->Flush();
    p->FillOval({0, 10, 30, 40}, true); // what was kept went with the device
    EXPECT_EQ(QLX_D2DShapePictures::GetRenderedCount() - before, 5U);
    EXPECT_EQ(PixelsOf(p)->GetPixel(15, 25) & 0xFFFFFF, 0xFF0000U);
}

TEST_F(PainterWindows, TransparentOffscreensKeepTheirAlpha) {
    for (const Kind& kind : kKinds) {
        const QLX_Painter::Ptr painter = kind.make(40, 20, QLX_DeviceScale(), true);
        ASSERT_TRUE(painter);
        painter->SetForegroundColor(CRGBColor(65535, 0, 0));
        painter->FillRect({0, 0, 10, 20});
        painter->SetForegroundColor(CRGBColor(0, 0, 65535, 0x8000));
        painter->FillRect({10, 0, 20, 20});
        const QLX_Image::Ptr image = PixelsOf(painter);
        EXPECT_EQ(image->GetPixel(5, 5), 0xFFFF0000U) << kind.name;
        EXPECT_NEAR(int(image->GetPixel(15, 5) >> 24), 128, 1) << kind.name;
        EXPECT_NEAR(int(image->GetPixel(15, 5) & 255), 128, 1) << kind.name;
        EXPECT_EQ(image->GetPixel(30, 5), 0U) << kind.name;
    }
}

TEST_F(PainterWindows, ABorrowedContextDrawsOnTheCanvas) {
    for (const Kind& kind : kKinds) {
        const QLX_Painter::Ptr painter = kind.make(40, 20, QLX_DeviceScale(), false);
        painter->SetClip(QLX_Region(Rect(0, 0, 10, 10)).Union(Rect(20, 0, 30, 10)));
        {
            const auto context = Of(painter).GetHDC(QLX_HDCWrap::kClipped);
            ASSERT_TRUE(context) << kind.name;
            PatBlt(context->Get(), 0, 0, 40, 20, BLACKNESS);
        }
        const QLX_Image::Ptr image = PixelsOf(painter);
        EXPECT_EQ(image->GetPixel(5, 5) & 0xFFFFFF, 0U) << kind.name;
        EXPECT_EQ(image->GetPixel(15, 5) & 0xFFFFFF, 0xFFFFFFU) << kind.name;
        EXPECT_EQ(image->GetPixel(25, 5) & 0xFFFFFF, 0U) << kind.name;
        EXPECT_EQ(image->GetPixel(5, 15) & 0xFFFFFF, 0xFFFFFFU) << kind.name;
    }
}

// A foreign context (BeginPaint's, a printer's) shows what a bitmap of one's own shows.
TEST_F(PainterWindows, AForeignContextIsDrawnAsABitmapIs) {
    const auto own = QLX_PainterGDI::New(160, 120);
    DrawFrame(own, 7);
    const auto behind = QLX_PainterGDI::New(160, 120);
    {
        const auto context = Of(behind).GetHDC(0);
        const auto foreign =
            QLX_PainterGDI::NewForContext(context->Get(), 160, 120, QLX_DeviceScale());
        DrawFrame(foreign, 7);
    }
    EXPECT_TRUE(PixelsOf(behind)->IsEqual(*PixelsOf(own)));
}

struct MissingCase {
    const char* why;
    unsigned missing;
    const char* report;
};

TEST_F(PainterWindows, MissingLibrariesAreNamedAndGDIStandsIn) {
    const BareWindow window(120, 80);
    const MissingCase cases[] = {
        {"no Direct2D", QLX_D2DManager::kMissing_D2D, "Direct2D can't be loaded!!! (no d2d1.dll)"},
        {"Direct2D without its entry", QLX_D2DManager::kMissing_D2DEntry,
         "QLX_D2DManager::InitD2D -> ::GetProcAddress of \"D2D1CreateFactory\""},
        {"no DirectWrite", QLX_D2DManager::kMissing_DirectWrite,
         "DirectWrite can't be loaded!!! (no dwrite.dll)"},
        {"DirectWrite without its entry", QLX_D2DManager::kMissing_DirectWriteEntry,
         "QLX_D2DManager::InitD2D -> ::GetProcAddress of \"DWriteCreateFactory\""},
        {"no imaging component", QLX_D2DManager::kMissing_Imaging, "(no windowscodecs.dll)"}};
    for (const MissingCase& row : cases) {
        SCOPED_TRACE(row.why);
        const TraceLines trace;
        QLX_D2DManager::SimulateMissing(row.missing);
        EXPECT_FALSE(QLX_PainterDirect2D::New(10, 10));
        const auto painter =
            QLX_PainterFactory::Find("windows")->MakeForWindow(window.Get(), QLX_DeviceScale());
        ASSERT_TRUE(painter);
        EXPECT_EQ(Of(painter).GetPainterKind(), QLX_PainterWindows::kPainterKind_GDI);
        DrawFrame(painter, 1);
        EXPECT_TRUE(TraceLines::Contains(row.report)) << QLX_D2DManager::GetFailure();
    }
    QLX_D2DManager::SimulateMissing(QLX_D2DManager::kMissing_Nothing);
    const auto painter =
        QLX_PainterFactory::Find("windows")->MakeForWindow(window.Get(), QLX_DeviceScale());
    ASSERT_TRUE(painter);
    EXPECT_EQ(Of(painter).GetPainterKind(), QLX_PainterWindows::kPainterKind_Direct2D);
    EXPECT_EQ(painter->GetRawNativeDrawingPort(), window.Get());
}

TEST_F(PainterWindows, AnOptionForcesAPainter) {
    const BareWindow window(60, 40);
    QLX_PainterMaker& maker = *QLX_PainterFactory::Find("windows");
    for (const auto& [forced, kind] : {std::pair("gdi", QLX_PainterWindows::kPainterKind_GDI),
                                       {"direct2d", QLX_PainterWindows::kPainterKind_Direct2D}}) {
        _putenv_s("QLX_PAINTER", forced);
        const auto painter = maker.MakeForWindow(window.Get(), QLX_DeviceScale());
        ASSERT_TRUE(painter);
        EXPECT_EQ(Of(painter).GetPainterKind(), kind);
    }
    _putenv_s("QLX_PAINTER", "");
}

TEST_F(PainterWindows, ALostDeviceIsMadeAnewAndDrawnAgain) {
    const BareWindow window(160, 120);
    const auto painter = QLX_PainterDirect2D::NewForWindow(window.Get(), QLX_DeviceScale());
    ASSERT_TRUE(painter);
    auto& canvas = static_cast<QLX_D2DCanvas&>(Of(painter).GetCanvas());
    DrawFrame(painter, 1);
    painter->Flush();
    EXPECT_FALSE(canvas.TakeLoss());
    const TraceLines trace;
    QLX_D2DManager::SimulateDeviceLoss(1);
    DrawFrame(painter, 2);
    painter->Flush();
    EXPECT_TRUE(canvas.TakeLoss());
    EXPECT_TRUE(TraceLines::Contains("ID2D1RenderTarget::EndDraw (0x8899000C)"));
    DrawFrame(painter, 2);
    painter->Flush();
    EXPECT_FALSE(canvas.TakeLoss());
    EXPECT_EQ(canvas.GetTargetCount(), 2U);
    EXPECT_TRUE(painter->IsValid());
}

TEST_F(PainterWindows, AWindowWithoutSizeHasNoPainterAndAGoneOneDoesNothing) {
    const BareWindow none(0, 0);
    EXPECT_FALSE(QLX_PainterGDI::NewForWindow(none.Get(), QLX_DeviceScale()));
    EXPECT_FALSE(QLX_PainterDirect2D::NewForWindow(none.Get(), QLX_DeviceScale()));
    for (const auto make : {&QLX_PainterGDI::NewForWindow, &QLX_PainterDirect2D::NewForWindow}) {
        const BareWindow window(160, 120);
        const auto painter = make(window.Get(), QLX_DeviceScale());
        const auto clone = painter->Clone();
        QLX_PainterFactory::Find("gdi")->Detach(*painter);
        EXPECT_FALSE(clone->IsValid());
        clone->FillRect({0, 0, 10, 10});
        clone->DrawTextBox({0, 0, 50, 20}, "gone", QLX_Painter::kJustify_Left, true, true, true,
                           true);
        clone->Flush();
        EXPECT_EQ(clone->GetRawNativeDrawingPort(), nullptr);
    }
}

// Whichever creation fails, drawing goes on with what there is, and what is missing is said.
TEST_F(PainterWindows, ExhaustedHandlesAreReportedAndNothingBreaks) {
    for (int successes = 0; successes < 24; ++successes) {
        QLX_FreeMasks();
        QLX_WinFonts::Clear();
        const TraceLines trace;
        QLX_NativeHandles::FailCreationsAfter(successes);
        const auto painter = QLX_PainterGDI::New(160, 120);
        if (painter) {
            painter->FillRect({0, 0, 10, 10});
            painter->DrawTextBox({10, 10, 100, 40}, "text \xC3\xA9", QLX_Painter::kJustify_Center,
                                 true, true, true, true);
            painter->SetPenPattern(kPenPattern_Gray);
            painter->FillOval({20, 20, 60, 50}, true);
            painter->SetClip(QLX_Region(Rect(0, 0, 9, 9)).Union(Rect(30, 30, 70, 70)));
            painter->FillRect({0, 0, 100, 100});
        }
        QLX_NativeHandles::FailCreationsAfter(-1);
        if (successes < 4) {
            EXPECT_TRUE(TraceLines::Contains("failed: no ")) << successes;
        }
    }
    QLX_FreeMasks();
    QLX_WinFonts::Clear();
    const auto painter = QLX_PainterGDI::New(160, 120);
    ASSERT_TRUE(painter);
    DrawFrame(painter, 3);
}

TEST_F(PainterWindows, WindowsAreDrawnOnWithoutHandlesAsWellAsCanBe) {
    const BareWindow window(160, 120);
    for (const auto make : {&QLX_PainterGDI::NewForWindow, &QLX_PainterDirect2D::NewForWindow}) {
        QLX_Painter::Ptr painter;
        for (int successes = 0; successes < 10; ++successes) {
            QLX_FreeMasks();
            QLX_WinFonts::Clear();
            QLX_NativeHandles::FailCreationsAfter(successes);
            if (!painter)
                painter = make(window.Get(), QLX_DeviceScale());
            if (!painter)
                continue;
            painter->FillOval({20, 20, 60, 50}, true);
            painter->SetPenMode(kPenMode_Xor); // on the pixels
            painter->FillRect({0, 0, 50, 50});
            painter->NormalizePen();
            painter->DrawTextBox({10, 10, 100, 40}, "text", QLX_Painter::kJustify_Center, true,
                                 true, true, true);
            Of(painter).AddDirtyRgn(painter->GetBounds());
            painter->Flush();
        }
        QLX_NativeHandles::FailCreationsAfter(-1);
        if (!painter)
            painter = make(window.Get(), QLX_DeviceScale());
        ASSERT_TRUE(painter);
        painter->SetForegroundColor(CRGBColor(0, 0xFFFF, 0));
        painter->FillRect(painter->GetBounds());
        EXPECT_EQ(PixelsOf(painter)->GetPixel(100, 100) & 0xFFFFFF, 0x00FF00U);
    }
}

// Ten thousand repaints with GDI; of Direct2D's, which take a thousand times as long here, a few:
// the benchmark program does them all.
TEST_F(PainterWindows, HandlesAndReferencesDoNotGrowFromRepaintToRepaint) {
    const BareWindow window(160, 120);
    for (const auto make : {&QLX_PainterGDI::NewForWindow, &QLX_PainterDirect2D::NewForWindow}) {
        const auto painter = make(window.Get(), QLX_DeviceScale());
        ASSERT_TRUE(painter);
        const bool quick = Of(painter).GetPainterKind() == QLX_PainterWindows::kPainterKind_GDI;
        const int repaints = quick || std::getenv("QLX_LONG_TESTS") ? 10000 : 30;
        int held = 0;
        for (int i = 0; i < repaints + 20; ++i) {
            DrawFrame(painter, i % 15);
            Of(painter).AddDirtyRgn(painter->GetBounds());
            painter->Flush();
            if (i == 19) // every number has been laid out once
                held = QLX_NativeHandles::GetTotal();
        }
        EXPECT_EQ(QLX_NativeHandles::GetTotal(), held);
    }
}

TEST_F(PainterWindows, PicturesGoThroughPNGUnchanged) {
    const QLX_Image::Ptr image = QLX_Image::Create(5, 3);
    for (int i = 0; i < 15; ++i)
        image->GetWritablePixels()[i] = i < 5    ? 0xFF102030U + unsigned(i)
                                        : i < 10 ? 0x80402010U
                                                 : 0;
    image->PixelsChanged();
    EXPECT_TRUE(QLX_Image::FromPNG(image->ToPNG())->IsEqual(*image));
    const std::string whole = image->ToPNG();
    for (const std::size_t length : {std::size_t{0}, std::size_t{7}, std::size_t{20}})
        EXPECT_THROW((void)QLX_Image::FromPNG(std::string_view(whole).substr(0, length)),
                     std::runtime_error)
            << length;
}

} // namespace
