// Windows of the Win32 platform under messages made up by the test: everything that the system may
// send, in any order, without a keyboard, a mouse or an input method.
#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "basekit/cmn/cmn_trace.h"
#include "qlx/imaging/qlx_painterfactory.h"
#include "qlx/imaging/win32/qlx_d2dmanager.h"
#include "qlx/imaging/win32/qlx_painterwindows.h"
#include "qlx/platform/win32/qlx_win32.h"
#include "qlx/platform/win32/qlx_win32keys.h"
#include "qlx/platform/win32/qlx_win32state.h"
#include "qlx/views/qlx_windowevents.h"
#include "qlx/views/uview.h"

#ifndef WM_DPICHANGED
#define WM_DPICHANGED 0x02E0
#endif

namespace {

// Collects what a window sends.
class Listener : public QLX_WindowPortClient {
  public:
    void PortEvent(const QLX_EventRef& event) override {
        events.push_back(event);
        if (throws)
            throw std::runtime_error("a view's fault");
        if (closes)
            port.reset();
    }
    [[nodiscard]] const QLX_EventRef* Find(std::uint32_t eventClass, std::uint32_t kind) const {
        for (const QLX_EventRef& event : events)
            if (event.GetID() == QLX_EventID{eventClass, kind})
                return &event;
        return nullptr;
    }
    std::vector<QLX_EventRef> events;
    std::unique_ptr<QLX_WindowPort> port;
    bool throws = false;
    bool closes = false;
};

class Win32Platform : public testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(QLX_PainterFactory::Choose("gdi"));
        platform = std::make_unique<QLX_Win32Platform>();
        platform->Install();
        QLX_WindowSettings settings;
        settings.mTitle = "messages \xC3\xA9";
        settings.mSize = {200, 100};
        settings.mPlace = {50, 60};
        settings.mPlaced = true;
        listener.port = platform->GetWindowFactory().MakePort(settings, &listener);
        ASSERT_TRUE(listener.port);
        listener.port->Show(true);
        Turn();
        listener.events.clear();
    }
    void TearDown() override {
        QLX_CompositionSource::Install(nullptr);
        listener.port.reset();
        platform.reset();
        QLX_PainterFactory::Choose("windows");
    }
    void Turn() const {
        for (int i = 0; i < 5; ++i)
            platform->GetEventLoop().RunOnce(0);
    }
    [[nodiscard]] HWND Window() const {
        return static_cast<HWND>(listener.port->GetNativeHandle());
    }
    LRESULT Send(UINT message, WPARAM wParam, LPARAM lParam) const {
        return SendMessageW(Window(), message, wParam, lParam);
    }

    std::unique_ptr<QLX_Win32Platform> platform;
    Listener listener;
};

constexpr LPARAM At(int x, int y) { return LPARAM(y) << 16 | (x & 0xFFFF); }

struct Row {
    const char* why;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    std::uint32_t eventClass;
    std::uint32_t kind;
};

TEST_F(Win32Platform, MessagesBecomeEventsOfTheTable) {
    const Row rows[] = {
        {"press", WM_LBUTTONDOWN, MK_LBUTTON, At(7, 9), 1, 3},
        {"double click is a press", WM_LBUTTONDBLCLK, MK_LBUTTON, At(7, 9), 1, 3},
        {"right press", WM_RBUTTONDOWN, MK_RBUTTON, At(7, 9), 1, 3},
        {"middle double click", WM_MBUTTONDBLCLK, MK_MBUTTON, At(7, 9), 1, 3},
        {"release", WM_LBUTTONUP, 0, At(7, 9), 1, 1},
        {"press on the frame", WM_NCLBUTTONDOWN, HTBORDER, At(55, 62), 1, 3},
        {"move", WM_MOUSEMOVE, 0, At(7, 9), 1, 6},
        {"wheel", WM_MOUSEWHEEL, WPARAM(-240 & 0xFFFF) << 16, At(60, 70), 1, 7},
        {"key", WM_KEYDOWN, 'A', 0x001E0001, 2, 8},
        {"system key", WM_SYSKEYDOWN, 'A', 0x201E0001, 2, 8},
        {"character", WM_CHAR, 0xC9, 1, 2, 8},
        {"repeated key", WM_KEYDOWN, 'A', 0x401E0001, 2, 9},
        {"key up", WM_KEYUP, 'A', LPARAM(0xC01E0001), 2, 10},
        {"system key up", WM_SYSKEYUP, 'A', LPARAM(0xE01E0001), 2, 10},
        {"size", WM_SIZE, SIZE_RESTORED, At(200, 100), 3, 30},
        {"paint", WM_PAINT, 0, 0, 3, 32},
        {"close", WM_CLOSE, 0, 0, 3, 33},
        {"activation", WM_ACTIVATE, WA_ACTIVE, 0, 3, 34},
        {"deactivation", WM_ACTIVATE, WA_INACTIVE, 0, 3, 35},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.why);
        listener.events.clear();
        Send(row.message, row.wParam, row.lParam);
        const QLX_EventRef* event = listener.Find(row.eventClass, row.kind);
        ASSERT_TRUE(event);
        MSG record{};
        ASSERT_TRUE(event->GetProperty(0x41616183, &record, 48));
        EXPECT_EQ(record.hwnd, Window());
        EXPECT_EQ(record.message, row.message);
        EXPECT_EQ(record.wParam, row.wParam);
        EXPECT_EQ(record.lParam, row.lParam);
    }
}

TEST_F(Win32Platform, HeldKeysAreModifierBits) {
    const struct {
        std::vector<int> held;
        std::uint32_t bits;
    } rows[] = {{{}, 0},
                {{VK_SHIFT}, 1},
                {{VK_LWIN}, 2},
                {{VK_RWIN}, 2},
                {{VK_MENU}, 4},
                {{VK_CONTROL}, 8},
                {{VK_SHIFT, VK_CONTROL}, 9},
                {{VK_SHIFT, VK_LWIN, VK_MENU, VK_CONTROL}, 15},
                // AltGr, which the system reports as both, types characters and is no modifier.
                {{VK_CONTROL, VK_LCONTROL, VK_MENU, VK_RMENU}, 0}};
    BYTE before[256] = {};
    ASSERT_TRUE(GetKeyboardState(before));
    for (const auto& row : rows) {
        BYTE keys[256] = {};
        for (const int key : row.held)
            keys[key] = 0x80;
        SetKeyboardState(keys);
        for (const UINT message : {UINT(WM_LBUTTONDOWN), UINT(WM_KEYUP), UINT(WM_MOUSEMOVE)}) {
            listener.events.clear();
            Send(message, 'A', At(3, 4));
            ASSERT_FALSE(listener.events.empty());
            std::uint32_t bits = 99;
            EXPECT_TRUE(listener.events.back().GetProperty(0x4161616C, &bits, 4));
            EXPECT_EQ(bits, row.bits) << message;
        }
    }
    SetKeyboardState(before);
}

TEST_F(Win32Platform, ActivationOfTheApplicationIsToldOnce) {
    Send(WM_ACTIVATEAPP, FALSE, 0);
    listener.events.clear();
    Send(WM_ACTIVATEAPP, TRUE, 0);
    Send(WM_ACTIVATEAPP, TRUE, 0);
    ASSERT_TRUE(listener.Find(4, 12));
    EXPECT_EQ(listener.events.size(), 1U);
}

TEST_F(Win32Platform, PlacesAreLogicalAndWheelsComeFromTheScreen) {
    Send(WM_LBUTTONDOWN, MK_LBUTTON, At(-3, 20));
    Cmn_Point<int> where;
    ASSERT_TRUE(listener.events.back().GetProperty(kQLX_EventProperty_Where, &where, sizeof where));
    EXPECT_EQ(where, Cmn_Point<int>(-3, 20)); // a drag beyond the left edge
    POINT screen{30, 40};
    ClientToScreen(Window(), &screen);
    Send(WM_MOUSEWHEEL, WPARAM(120) << 16, At(screen.x, screen.y));
    ASSERT_TRUE(listener.events.back().GetProperty(kQLX_EventProperty_Where, &where, sizeof where));
    EXPECT_EQ(where, Cmn_Point<int>(30, 40));
    EXPECT_EQ(QLX_GetWheelDelta(listener.events.back()), Cmn_Point<int>(0, 120));
    Send(WM_MOUSEHWHEEL, WPARAM(-60 & 0xFFFF) << 16, At(screen.x, screen.y));
    EXPECT_EQ(QLX_GetWheelDelta(listener.events.back()), Cmn_Point<int>(-60, 0));
}

TEST_F(Win32Platform, AKeyAndItsCharacterAreOneEvent) {
    // As the queue has them after TranslateMessage.
    PostMessageW(Window(), WM_KEYDOWN, 'Q', 0x00100001);
    Turn();
    ASSERT_FALSE(listener.events.empty());
    EXPECT_EQ(listener.events.size(), 1U);
    std::uint32_t code = 0, character[3] = {};
    ASSERT_TRUE(listener.events[0].GetProperty(kQLX_EventProperty_KeyCode, &code, 4));
    ASSERT_TRUE(listener.events[0].GetProperty(kQLX_EventProperty_Character, character, 12));
    EXPECT_EQ(code, std::uint32_t('Q'));
    EXPECT_EQ(character[0], std::uint32_t('q'));
}

TEST_F(Win32Platform, CharactersBeyondTheFirstPlaneComeWhole) {
    Send(WM_CHAR, 0xDD1E, 1); // a low half without its high one is nothing
    EXPECT_TRUE(listener.events.empty());
    Send(WM_CHAR, 0xD834, 1);
    Send(WM_CHAR, 0xDD1E, 1);
    ASSERT_EQ(listener.events.size(), 1U);
    std::uint32_t character[3] = {};
    ASSERT_TRUE(listener.events[0].GetProperty(kQLX_EventProperty_Character, character, 12));
    EXPECT_EQ(character[0], 0x1D11EU);
}

TEST_F(Win32Platform, KeysHaveTheFrameworksNumbers) {
    const struct {
        WPARAM key;
        bool extended;
        std::uint32_t code;
    } rows[] = {{VK_RETURN, false, kDAW_Key_Return},
                {VK_RETURN, true, kDAW_Key_Enter},
                {VK_NUMPAD5, false, '5'},
                {VK_DECIMAL, false, '.'},
                {VK_F1, false, kDAW_Key_F1},
                {VK_F24, false, kDAW_Key_F24},
                {VK_LEFT, true, kDAW_Key_Left},
                {VK_DELETE, true, kDAW_Key_Delete},
                {VK_CONTROL, true, kDAW_Key_RightControl},
                {'7', false, '7'},
                {'Z', false, 'Z'}};
    for (const auto& row : rows)
        EXPECT_EQ(QLX_Win32KeyCode(row.key, row.extended), row.code) << row.key;
    for (const std::uint32_t code : {std::uint32_t(kDAW_Key_F1), std::uint32_t(kDAW_Key_Home),
                                     std::uint32_t('A'), std::uint32_t(kDAW_Key_Escape)})
        EXPECT_EQ(QLX_Win32KeyCode(WPARAM(QLX_Win32VirtualKey(DAW_EKeyCode(code))), false), code);
}

// A made-up input method.
class Composition : public QLX_CompositionSource {
  public:
    bool GetText(HWND, DWORD part, std::wstring& text, int& caret) override {
        const auto found = texts.find(part);
        if (found == texts.end())
            return false;
        text = found->second;
        caret = at;
        return true;
    }
    std::map<DWORD, std::wstring> texts;
    int at = 0;
};

TEST_F(Win32Platform, ComposedTextIsShownWhileItGrowsAndTypedWhenItIsDone) {
    Composition source;
    QLX_CompositionSource::Install(&source);
    Send(WM_IME_STARTCOMPOSITION, 0, 0);
    source.texts[GCS_COMPSTR] = L"\x304B\x306A";
    source.at = 2;
    Send(WM_IME_COMPOSITION, 0, GCS_COMPSTR | GCS_CURSORPOS);
    const QLX_EventRef* event = listener.Find(2, kQLX_EventKind_TextComposition);
    ASSERT_TRUE(event);
    EXPECT_EQ(QLX_GetEventText(*event), "\xE3\x81\x8B\xE3\x81\xAA");
    std::int32_t caret = 0;
    ASSERT_TRUE(event->GetProperty(kQLX_EventProperty_Caret, &caret, 4));
    EXPECT_EQ(caret, 2);
    listener.events.clear();
    source.texts.clear();
    source.texts[GCS_RESULTSTR] = L"\x4EEE\x540D";
    Send(WM_IME_COMPOSITION, 0, GCS_RESULTSTR);
    Send(WM_IME_ENDCOMPOSITION, 0, 0);
    event = listener.Find(2, kQLX_EventKind_TextInput);
    ASSERT_TRUE(event);
    EXPECT_EQ(QLX_GetEventText(*event), "\xE4\xBB\xAE\xE5\x90\x8D");
    EXPECT_FALSE(listener.Find(2, kQLX_EventKind_KeyDown)); // nothing is typed twice
}

TEST_F(Win32Platform, AnotherMonitorsScaleChangesSizeAndPainter) {
    const auto before = listener.port->GetPainter();
    ASSERT_TRUE(before);
    RECT suggested{50, 60, 50 + 320, 60 + 180};
    Send(WM_DPICHANGED, MAKEWPARAM(144, 144), reinterpret_cast<LPARAM>(&suggested));
    EXPECT_TRUE(listener.Find(3, kQLX_EventKind_ScaleChanged));
    EXPECT_EQ(listener.port->GetScale(), 180);
    RECT client{};
    GetClientRect(Window(), &client);
    EXPECT_EQ(listener.port->GetSize().x, (client.right * 120 + 179) / 180);
    const auto after = listener.port->GetPainter();
    ASSERT_TRUE(after);
    EXPECT_EQ(static_cast<QLX_PainterState&>(*after).GetScale().Get120ths(), 180);
    Send(WM_LBUTTONDOWN, MK_LBUTTON, At(30, 45));
    Cmn_Point<int> where;
    ASSERT_TRUE(listener.events.back().GetProperty(kQLX_EventProperty_Where, &where, sizeof where));
    EXPECT_EQ(where, Cmn_Point<int>(20, 30));
}

TEST_F(Win32Platform, TimersAndPostedCallsGoOnWhileTheFrameIsDragged) {
    int fired = 0, posted = 0;
    platform->GetEventLoop().StartTimer(0, 0, [&] { ++fired; });
    platform->GetEventLoop().Post([&] { ++posted; });
    Send(WM_ENTERSIZEMOVE, 0, 0);
    // What the system's loop does meanwhile: it takes messages itself.
    MSG message;
    for (int i = 0; i < 200 && (fired == 0 || posted == 0); ++i) {
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE))
            DispatchMessageW(&message);
        Sleep(5);
    }
    Send(WM_EXITSIZEMOVE, 0, 0);
    EXPECT_EQ(fired, 1);
    EXPECT_EQ(posted, 1);
}

TEST_F(Win32Platform, NothingThrownLeavesTheProcedureButTheLoopThrowsItOn) {
    listener.throws = true;
    EXPECT_NO_THROW(Send(WM_LBUTTONDOWN, MK_LBUTTON, At(1, 1)));
    EXPECT_THROW(Turn(), std::runtime_error);
    listener.throws = false;
    EXPECT_NO_THROW(Turn());
    Send(WM_LBUTTONUP, 0, At(1, 1));
    EXPECT_TRUE(listener.Find(1, 1));
}

TEST_F(Win32Platform, AWindowMayCloseFromAnyOfItsEvents) {
    for (const UINT message :
         {UINT(WM_LBUTTONDOWN), UINT(WM_KEYDOWN), UINT(WM_CHAR), UINT(WM_SIZE), UINT(WM_PAINT),
          UINT(WM_CLOSE), UINT(WM_MOUSEWHEEL), UINT(WM_NCLBUTTONDOWN), UINT(WM_IME_ENDCOMPOSITION),
          UINT(WM_ACTIVATE), UINT(WM_MOVE)}) {
        Listener closing;
        closing.port = platform->GetWindowFactory().MakePort({}, &closing);
        ASSERT_TRUE(closing.port);
        const HWND window = static_cast<HWND>(closing.port->GetNativeHandle());
        closing.closes = true;
        SendMessageW(window, message, 'A', 1);
        EXPECT_FALSE(IsWindow(window)) << message;
        Turn();
    }
}

TEST_F(Win32Platform, AnyMessageInAnyOrderIsSurvived) {
    unsigned random = 12345;
    const auto next = [&] { return random = random * 1664525U + 1013904223U; };
    const UINT messages[] = {WM_LBUTTONDOWN,
                             WM_LBUTTONUP,
                             WM_MOUSEMOVE,
                             WM_MOUSELEAVE,
                             WM_KEYDOWN,
                             WM_KEYUP,
                             WM_CHAR,
                             WM_DEADCHAR,
                             WM_SYSCHAR,
                             WM_UNICHAR,
                             WM_IME_CHAR,
                             WM_SETCURSOR,
                             WM_IME_STARTCOMPOSITION,
                             WM_IME_COMPOSITION,
                             WM_IME_ENDCOMPOSITION,
                             WM_CAPTURECHANGED,
                             WM_EXITSIZEMOVE,
                             WM_ENTERSIZEMOVE,
                             WM_TIMER,
                             WM_MOUSEWHEEL,
                             WM_ERASEBKGND,
                             WM_SIZE,
                             WM_ACTIVATEAPP,
                             WM_MOUSEACTIVATE};
    for (int i = 0; i < 3000; ++i) {
        const UINT message = messages[(next() >> 16) % std::size(messages)];
        Send(message, next() >> 20, LPARAM(next() >> 8));
    }
    for (int i = 0; i < 20; ++i)
        Send(WM_EXITSIZEMOVE, 0, 0);
    Turn();
    listener.events.clear();
    Send(WM_LBUTTONDOWN, MK_LBUTTON, At(7, 9));
    EXPECT_TRUE(listener.Find(1, 3));
}

TEST_F(Win32Platform, CaptureIsLostOnceAndGivenBackQuietly) {
    listener.port->SetCapture(true);
    EXPECT_EQ(GetCapture(), Window());
    listener.port->SetCapture(false);
    EXPECT_FALSE(listener.Find(1, kQLX_EventKind_CaptureLost));
    listener.port->SetCapture(true);
    ReleaseCapture(); // as when the system takes it
    EXPECT_TRUE(listener.Find(1, kQLX_EventKind_CaptureLost));
}

TEST_F(Win32Platform, TheClipboardKeepsLinesAndAccents) {
    const std::string text = "one\ntwo \xC3\xA9 \xF0\x9D\x84\x9E";
    platform->GetClipboard().SetText(text);
    std::string read;
    ASSERT_TRUE(platform->GetClipboard().GetText(read));
    EXPECT_EQ(read, text);
}

TEST_F(Win32Platform, SizesPlacesAndTitlesReachTheWindow) {
    EXPECT_EQ(listener.port->GetSize(), Cmn_Point<int>(200, 100));
    EXPECT_EQ(listener.port->GetPlace(), Cmn_Point<int>(50, 60));
    listener.port->SetSize({150, 90});
    EXPECT_EQ(listener.port->GetSize(), Cmn_Point<int>(150, 90));
    listener.port->SetMinimumSize({120, 80});
    listener.port->SetSize({10, 10});
    EXPECT_GE(listener.port->GetSize().x, 120);
    wchar_t title[64] = {};
    GetWindowTextW(Window(), title, 64);
    EXPECT_STREQ(title, L"messages \x00E9");
}

// The window's pixels on the screen, for both painters: what was drawn, also after a new size, and
// after a lost device.
TEST_F(Win32Platform, BothPaintersShowWhatIsDrawn) {
    for (const char* maker : {"gdi", "direct2d"}) {
        SCOPED_TRACE(maker);
        QLX_PainterFactory::Choose(maker);
        Listener shown;
        QLX_WindowSettings settings;
        settings.mSize = {80, 60};
        settings.mFrame = false;
        settings.mPlaced = true;
        settings.mPlace = {300, 300};
        shown.port = platform->GetWindowFactory().MakePort(settings, &shown);
        shown.port->Show(true);
        Turn();
        const auto draw = [&](const CRGBColor& color) {
            const auto painter = shown.port->GetPainter();
            ASSERT_TRUE(painter);
            painter->SetForegroundColor(color);
            painter->FillRect(painter->GetBounds());
            shown.port->Present({{0, 0, 200, 200}});
        };
        draw(CRGBColor(65535, 0, 0));
        shown.port->SetSize({120, 70});
        Turn();
        draw(CRGBColor(0, 0x8000, 0));
        const auto painter = shown.port->GetPainter();
        EXPECT_EQ(painter->GetBounds(), Cmn_Rect<int>(0, 0, 120, 70));
        const QLX_Image::Ptr pixels = static_cast<QLX_PainterWindows&>(*painter).GetPixels();
        ASSERT_TRUE(pixels);
        EXPECT_EQ(pixels->GetPixel(119, 69) & 0xFFFFFF, 0x008000U);
        shown.events.clear();
        QLX_D2DManager::SimulateDeviceLoss(1);
        draw(CRGBColor(0, 0, 65535));
        QLX_D2DManager::SimulateDeviceLoss(0);
        Turn();
        EXPECT_EQ(shown.Find(3, kQLX_EventKind_Exposed) != nullptr,
                  std::strcmp(maker, "direct2d") == 0);
        draw(CRGBColor(0, 0, 65535));
        shown.port.reset();
    }
    QLX_PainterFactory::Choose("windows");
    QLX_D2DManager::Shutdown();
}

// A frameless window, drawn on by the painter of a maker's choice.
class ShownWindow {
  public:
    ShownWindow(QLX_Win32Platform& platform, const char* maker) {
        QLX_PainterFactory::Choose(maker);
        QLX_WindowSettings settings;
        settings.mSize = {80, 60};
        settings.mFrame = false;
        settings.mPlaced = true;
        settings.mPlace = {300, 300};
        listener.port = platform.GetWindowFactory().MakePort(settings, &listener);
        listener.port->Show(true);
    }
    ~ShownWindow() {
        listener.port.reset();
        QLX_PainterFactory::Choose("windows");
        QLX_D2DManager::Shutdown();
    }
    [[nodiscard]] QLX_PainterWindows* Painter() const {
        const auto painter = listener.port->GetPainter();
        return painter ? static_cast<QLX_PainterWindows*>(painter.Get()) : nullptr;
    }
    void Draw(const CRGBColor& color) const {
        if (QLX_PainterWindows* painter = Painter()) {
            painter->SetForegroundColor(color);
            painter->FillRect(painter->GetBounds());
        }
        listener.port->Present({{0, 0, 200, 200}});
    }
    Listener listener;
};

TEST_F(Win32Platform, AWindowWithoutSizeIsNotDrawnAndComesBack) {
    for (const char* maker : {"gdi", "direct2d"}) {
        SCOPED_TRACE(maker);
        const ShownWindow shown(*platform, maker);
        Turn();
        shown.Draw(CRGBColor(65535, 0, 0));
        for (int i = 0; i < 3; ++i) {
            shown.listener.port->SetSize({0, 0});
            Turn();
            shown.Draw(CRGBColor(0, 0, 65535));
            EXPECT_FALSE(shown.Painter());
            shown.listener.port->SetSize({50, 40});
            Turn();
            shown.Draw(CRGBColor(0, 65535, 0));
            ASSERT_TRUE(shown.Painter());
            EXPECT_EQ(shown.Painter()->GetPixels()->GetPixel(49, 39) & 0xFFFFFF, 0x00FF00U);
        }
    }
}

// The device goes away for good: what was Direct2D's window goes on with GDI.
TEST_F(Win32Platform, ADeviceThatDoesNotComeBackLeavesTheWindowToGDI) {
    const ShownWindow shown(*platform, "direct2d");
    Turn();
    shown.Draw(CRGBColor(65535, 0, 0));
    ASSERT_EQ(shown.Painter()->GetPainterKind(), QLX_PainterWindows::kPainterKind_Direct2D);
    QLX_D2DManager::SimulateDeviceLoss(1);
    QLX_D2DManager::SimulateNoTargets(true);
    shown.Draw(CRGBColor(0, 65535, 0));
    shown.Draw(CRGBColor(0, 0, 65535));
    ASSERT_TRUE(shown.Painter());
    EXPECT_EQ(shown.Painter()->GetPainterKind(), QLX_PainterWindows::kPainterKind_GDI);
    EXPECT_EQ(shown.Painter()->GetPixels()->GetPixel(79, 59) & 0xFFFFFF, 0x0000FFU);
    QLX_D2DManager::SimulateNoTargets(false);
    QLX_D2DManager::SimulateDeviceLoss(0);
}

// Losses in every frame are survived, and the first frame that is not lost shows.
TEST_F(Win32Platform, ADeviceMayBeLostAgainAndAgain) {
    const ShownWindow shown(*platform, "direct2d");
    Turn();
    QLX_D2DManager::SimulateDeviceLoss(5);
    for (int i = 0; i < 8; ++i) {
        shown.Draw(CRGBColor(0, std::uint16_t(0x1000 * i), 0));
        Turn();
    }
    QLX_D2DManager::SimulateDeviceLoss(0);
    shown.Draw(CRGBColor(0, 65535, 0));
    ASSERT_TRUE(shown.Painter());
    EXPECT_EQ(shown.Painter()->GetPainterKind(), QLX_PainterWindows::kPainterKind_Direct2D);
    EXPECT_EQ(shown.Painter()->GetPixels()->GetPixel(0, 0) & 0xFFFFFF, 0x00FF00U);
}

} // namespace
