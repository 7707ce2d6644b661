#include "qlx/platform/testing/qlx_testdriver.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstring>
#include <utility>

#include "basekit/cmn/cmn_string.h"
#include "qlx/imaging/qlx_devicescale.h"
#include "qlx/imaging/qlx_recordingpainter.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/uevent.h"
#include "qlx/views/uviewserver.h"
#include "qlx/views/uwindow.h"

namespace {

// More turns than this without coming to rest are an endless loop of the program under test.
constexpr int kMaxTurns = 100000;

// A click that comes sooner after another one may be the second half of a double click.
constexpr double kBetweenClicks = 1.0; // seconds

struct NamedKey {
    const char* name;
    std::uint32_t code;
};

constexpr std::array<NamedKey, 24> kNamedKeys = {{{"Return", kDAW_Key_Return},
                                                  {"Enter", kDAW_Key_Enter},
                                                  {"Backspace", kDAW_Key_Backspace},
                                                  {"Delete", kDAW_Key_Delete},
                                                  {"Tab", kDAW_Key_Tab},
                                                  {"Escape", kDAW_Key_Escape},
                                                  {"Space", kDAW_Key_Space},
                                                  {"Left", kDAW_Key_Left},
                                                  {"Right", kDAW_Key_Right},
                                                  {"Up", kDAW_Key_Up},
                                                  {"Down", kDAW_Key_Down},
                                                  {"Home", kDAW_Key_Home},
                                                  {"End", kDAW_Key_End},
                                                  {"PageUp", kDAW_Key_PageUp},
                                                  {"PageDown", kDAW_Key_PageDown},
                                                  {"Insert", kDAW_Key_Insert},
                                                  {"Menu", kDAW_Key_Menu},
                                                  {"Pause", kDAW_Key_Pause},
                                                  {"Plus", '+'},
                                                  {"Minus", '-'},
                                                  {"Comma", ','},
                                                  {"Quote", '"'},
                                                  {"Apostrophe", '\''},
                                                  {"Hash", '#'}}};

bool ModifierBit(const std::string& name, std::uint32_t& bits) {
    if (name == "Ctrl")
        bits |= kQLX_Modifier_Command;
    else if (name == "Alt")
        bits |= kQLX_Modifier_Option;
    else if (name == "Win")
        bits |= kQLX_Modifier_Control;
    else if (name == "Shift")
        bits |= kQLX_Modifier_Shift;
    else
        return false;
    return true;
}

/// 0 for no key.
std::uint32_t KeyFromName(const std::string& name) {
    for (const NamedKey& key : kNamedKeys) {
        if (name == key.name)
            return key.code;
    }
    if (name.size() >= 2 && name[0] == 'F') {
        std::int32_t number = 0;
        if (Cmn_ParseInt32(name.substr(1), number) && number >= 1 && number <= 24)
            return number <= 12 ? kDAW_Key_F1 + static_cast<std::uint32_t>(number - 1)
                                : kDAW_Key_F13 + static_cast<std::uint32_t>(number - 13);
    }
    std::size_t position = 0;
    const std::uint32_t character = name.empty() ? 0 : Cmn_DecodeUTF8(name, position);
    return position == name.size() ? character : 0;
}

/// The key that types a character: letters in their capital form.
std::uint32_t KeyForCharacter(std::uint32_t character) {
    return character >= 'a' && character <= 'z' ? character - 'a' + 'A' : character;
}

std::uint32_t CharacterForKey(std::uint32_t keyCode, std::uint32_t modifiers) {
    const bool shift = (modifiers & kQLX_Modifier_Shift) != 0;
    if (keyCode >= 'A' && keyCode <= 'Z' && !shift)
        return keyCode - 'A' + 'a';
    return keyCode;
}

std::string Describe(const std::string& className, std::uint32_t identifier) {
    return className + " '" + Cmn_IDToString(identifier) + "'";
}

} // namespace

QLX_TestDriverError::~QLX_TestDriverError() = default;

struct QLX_TestDriver::State {
    QLX_HeadlessPlatform platform;
    TApplication* application = nullptr; // owned; null when the host's is used
    TWindow* window = nullptr;           // not owned
    std::vector<TWindow*> owned;         // freed at the end, where they are still open
    std::vector<TWindow*> opened;        // closed at the end
    Cmn_Point<int> pointer{0, 0};
    double lastClick = -kBetweenClicks; // seconds
    TDrawCosts costsAtReset;
    std::vector<TDrawnView> drawn;
    QLX_EventTraceLog trace;
    QLX_EventTraceSink* oldTrace = nullptr;
};

QLX_TestDriver::QLX_TestDriver() : mState(std::make_unique<State>()) {
    if (!gApplication)
        mState->application = new TApplication;
    mState->platform.Install();
    mState->oldTrace = QLX_EventTrace::Start(&mState->trace);
}

QLX_TestDriver::~QLX_TestDriver() {
    QLX_EventTrace::Start(mState->oldTrace);
    const std::vector<TWindow*> opened = mState->opened;
    for (TWindow* window : opened) {
        const auto& open = TWindow::GetWindows();
        if (std::find(open.begin(), open.end(), window) == open.end())
            continue;
        window->SetDrawLog(nullptr);
        const auto& owned = mState->owned;
        if (std::find(owned.begin(), owned.end(), window) != owned.end())
            window->Free();
        else
            window->Close();
    }
    mState->platform.Uninstall();
    if (mState->application)
        mState->application->Free();
}

QLX_HeadlessPlatform& QLX_TestDriver::GetPlatform() { return mState->platform; }

// Windows

void QLX_TestDriver::SetScale(int scale) { mState->platform.SetDisplayScale(scale); }

void QLX_TestDriver::OpenWindow(TWindow& window) {
    if (!window.Open())
        throw QLX_TestDriverError("the window could not be opened");
    mState->opened.push_back(&window);
    UseWindow(window);
    WaitForIdle();
}

TWindow& QLX_TestDriver::OpenWindow(const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento) {
    TWindow* window = TViewServer::Get()->NewWindow(memento);
    if (!window)
        throw QLX_TestDriverError("the description makes no window");
    mState->owned.push_back(window);
    OpenWindow(*window);
    return *window;
}

void QLX_TestDriver::UseWindow(TWindow& window) {
    if (TWindow* old = GetWindow())
        old->SetDrawLog(nullptr);
    mState->window = &window;
    window.SetDrawLog(&mState->drawn);
}

TWindow* QLX_TestDriver::GetWindow() {
    const auto& open = TWindow::GetWindows();
    if (std::find(open.begin(), open.end(), mState->window) == open.end())
        mState->window = nullptr;
    return mState->window;
}

TWindow& QLX_TestDriver::NeedWindow() {
    if (TWindow* window = GetWindow())
        return *window;
    throw QLX_TestDriverError("no window is open");
}

QLX_HeadlessWindow& QLX_TestDriver::NeedPort() {
    QLX_WindowPort* port = NeedWindow().GetPort();
    for (QLX_HeadlessWindow* window : mState->platform.GetWindows()) {
        if (window == port)
            return *window;
    }
    throw QLX_TestDriverError("the window is none of this driver's platform");
}

void QLX_TestDriver::ResizeWindow(int width, int height) {
    NeedPort().UserResize({width, height});
    WaitForIdle();
}

// Views

TView& QLX_TestDriver::Find(std::uint32_t identifier) {
    if (TView* view = NeedWindow().FindSubView(identifier, /*deep*/ true))
        return *view;
    throw QLX_TestDriverError("no view '" + Cmn_IDToString(identifier) + "' in window \"" +
                              NeedWindow().GetTitle() + "\"");
}

Cmn_Point<int> QLX_TestDriver::GetMiddle(std::uint32_t identifier) {
    TView& view = Find(identifier);
    VRect visible = view.GetVisibleRect();
    if (visible.Empty() || !view.IsShown())
        throw QLX_TestDriverError("view '" + Cmn_IDToString(identifier) + "' is not visible");
    view.LocalToWindowVRect(visible);
    const VPoint corner = NeedWindow().GetLocalOffset();
    return VPoint((visible.Left() + visible.Right()) / 2 - corner.h,
                  (visible.Top() + visible.Bottom()) / 2 - corner.v)
        .ToCmn_Point();
}

// Sending

void QLX_TestDriver::Send(const QLX_EventRef& event) {
    NeedPort().Inject(event);
    WaitForIdle();
}

void QLX_TestDriver::SendMouse(std::uint32_t kind, std::uint32_t modifiers, EMouseButton button) {
    mState->platform.GetHeadlessKeyboard().SetModifierBits(modifiers);
    Send(QLX_MakeMouseEvent(kind, mState->pointer, modifiers, button));
}

// The mouse

void QLX_TestDriver::MoveTo(Cmn_Point<int> where) {
    mState->pointer = where;
    SendMouse(kQLX_EventKind_MouseMoved, 0, kMouse_Left);
}

void QLX_TestDriver::Press(Cmn_Point<int> where, std::uint32_t modifiers, EMouseButton button) {
    if (where != mState->pointer)
        MoveTo(where);
    SendMouse(kQLX_EventKind_MouseDown, modifiers, button);
}

void QLX_TestDriver::Release(EMouseButton button) { SendMouse(kQLX_EventKind_MouseUp, 0, button); }

void QLX_TestDriver::Click(Cmn_Point<int> where, std::uint32_t modifiers, EMouseButton button) {
    StepPastDoubleClick();
    Press(where, modifiers, button);
    if (GetWindow())
        SendMouse(kQLX_EventKind_MouseUp, modifiers, button);
    mState->lastClick = QLX_HeadlessPlatform::GetNow();
}

void QLX_TestDriver::StepPastDoubleClick() {
    const double left = mState->lastClick + kBetweenClicks - QLX_HeadlessPlatform::GetNow();
    if (left > 0)
        Step(left);
}

void QLX_TestDriver::Click(std::uint32_t identifier, std::uint32_t modifiers) {
    Click(GetMiddle(identifier), modifiers);
}

void QLX_TestDriver::DoubleClick(Cmn_Point<int> where) {
    StepPastDoubleClick();
    Press(where);
    Release();
    Step(0.1);
    Press(where);
    if (GetWindow())
        Release();
    mState->lastClick = QLX_HeadlessPlatform::GetNow();
}

void QLX_TestDriver::Drag(Cmn_Point<int> from, Cmn_Point<int> to, int steps,
                          std::uint32_t modifiers) {
    Press(from, modifiers);
    for (int i = 1; i <= steps && GetWindow(); ++i) {
        mState->pointer = {from.x + (to.x - from.x) * i / steps,
                           from.y + (to.y - from.y) * i / steps};
        SendMouse(kQLX_EventKind_MouseMoved, modifiers, kMouse_Left);
    }
    if (GetWindow())
        SendMouse(kQLX_EventKind_MouseUp, modifiers, kMouse_Left);
    Step(1.0);
}

void QLX_TestDriver::Wheel(Cmn_Point<int> where, double notches, std::uint32_t modifiers) {
    if (where != mState->pointer)
        MoveTo(where);
    Send(QLX_MakeWheelEvent(where, {0, static_cast<int>(std::lround(notches * kWheel_Notch))},
                            modifiers));
}

void QLX_TestDriver::LoseCapture() { SendMouse(kQLX_EventKind_CaptureLost, 0, kMouse_Left); }

void QLX_TestDriver::LeaveWindow() { SendMouse(kQLX_EventKind_MouseLeft, 0, kMouse_Left); }

// The keyboard

void QLX_TestDriver::KeyDown(std::uint32_t keyCode, std::uint32_t modifiers, bool repeated) {
    QLX_HeadlessKeyboard& keyboard = mState->platform.GetHeadlessKeyboard();
    keyboard.SetModifierBits(modifiers);
    keyboard.SetKeyDown(static_cast<DAW_EKeyCode>(keyCode), true);
    Send(QLX_MakeKeyEvent(repeated ? kQLX_EventKind_AutoKey : kQLX_EventKind_KeyDown, keyCode,
                          CharacterForKey(keyCode, modifiers), modifiers));
}

void QLX_TestDriver::KeyUp(std::uint32_t keyCode, std::uint32_t modifiers) {
    QLX_HeadlessKeyboard& keyboard = mState->platform.GetHeadlessKeyboard();
    keyboard.SetKeyDown(static_cast<DAW_EKeyCode>(keyCode), false);
    keyboard.SetModifierBits(0);
    if (GetWindow()) // the key may have closed it
        Send(QLX_MakeKeyEvent(kQLX_EventKind_KeyUp, keyCode, CharacterForKey(keyCode, modifiers),
                              modifiers));
}

void QLX_TestDriver::Key(std::uint32_t keyCode, std::uint32_t modifiers) {
    KeyDown(keyCode, modifiers);
    KeyUp(keyCode, modifiers);
}

void QLX_TestDriver::Type(const std::string& text) {
    for (std::size_t position = 0; position < text.size();) {
        const std::uint32_t character = Cmn_DecodeUTF8(text, position);
        const bool capital = character >= 'A' && character <= 'Z';
        const std::uint32_t modifiers = capital ? kQLX_Modifier_Shift : 0U;
        const std::uint32_t code = KeyForCharacter(character);
        Send(QLX_MakeKeyEvent(kQLX_EventKind_KeyDown, code, character, modifiers));
        if (GetWindow())
            Send(QLX_MakeKeyEvent(kQLX_EventKind_KeyUp, code, character, modifiers));
    }
}

void QLX_TestDriver::Chord(const std::string& chord) {
    std::uint32_t modifiers = 0;
    std::size_t start = 0;
    for (;;) {
        const std::size_t plus = chord.find('+', start);
        if (plus == std::string::npos || plus + 1 == chord.size() ||
            !ModifierBit(chord.substr(start, plus - start), modifiers))
            break;
        start = plus + 1;
    }
    const std::uint32_t keyCode = KeyFromName(chord.substr(start));
    if (keyCode == 0)
        throw QLX_TestDriverError("\"" + chord + "\" is no key chord");
    Key(KeyForCharacter(keyCode), modifiers);
}

void QLX_TestDriver::Compose(const std::string& composing, const std::string& entered) {
    if (!composing.empty()) {
        const auto length = static_cast<int>(composing.size());
        Send(QLX_MakeCompositionEvent(composing, length, 0));
        Send(QLX_MakeCompositionEvent("", 0, 0));
    }
    Send(QLX_MakeTextEvent(entered));
}

// Time

void QLX_TestDriver::WaitForIdle() {
    QLX_HeadlessLoop& loop = mState->platform.GetHeadlessLoop();
    for (int turn = 0; turn < kMaxTurns; ++turn) {
        const std::uint64_t done = loop.GetTurnCount();
        loop.RunOnce(0);
        if (loop.GetTurnCount() == done)
            return;
    }
    throw QLX_TestDriverError("the event loop does not come to rest");
}

void QLX_TestDriver::Step(double seconds) {
    QLX_HeadlessLoop& loop = mState->platform.GetHeadlessLoop();
    const double end = QLX_HeadlessPlatform::GetNow() + seconds;
    WaitForIdle();
    for (int turn = 0; turn < kMaxTurns; ++turn) {
        const double left = end - QLX_HeadlessPlatform::GetNow();
        if (left <= 0)
            break;
        loop.RunOnce(left);
    }
    QLX_HeadlessPlatform::SetNow(std::max(end, QLX_HeadlessPlatform::GetNow()));
    WaitForIdle();
}

// Looking

QLX_Image::Ptr QLX_TestDriver::GetPicture() {
    WaitForIdle();
    if (QLX_Image::Ptr picture = NeedPort().GetPicture())
        return picture;
    throw QLX_TestDriverError("there is no picture: no size, or painters that have no pixels");
}

QLX_Image::Ptr QLX_TestDriver::GetPicture(std::uint32_t identifier) {
    const QLX_Image::Ptr whole = GetPicture();
    TView& view = Find(identifier);
    VRect visible = view.GetVisibleRect();
    view.LocalToWindowVRect(visible);
    const Cmn_Rect<int> part = NeedWindow().GetScale().RectToDevice(
        (visible - NeedWindow().GetLocalOffset()).ToCmn_Rect());
    const int width = part.right - part.left;
    const int height = part.bottom - part.top;
    if (width <= 0 || height <= 0)
        throw QLX_TestDriverError("view '" + Cmn_IDToString(identifier) + "' is not visible");
    std::vector<std::uint32_t> pixels;
    pixels.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (int y = part.top; y < part.bottom; ++y) {
        for (int x = part.left; x < part.right; ++x)
            pixels.push_back(whole->GetPixel(x, y));
    }
    return QLX_Image::Create(width, height, std::move(pixels));
}

void QLX_TestDriver::SavePicture(const std::string& path) { GetPicture()->ToPNGFile(path); }

std::string QLX_TestDriver::GetDrawing(std::uint32_t identifier) {
    TWindow& window = NeedWindow();
    TView& view = Find(identifier);
    const VPoint size = window.GetSize();
    const Cmn_RefCountPtr<QLX_PainterRecording> recording(new QLX_PainterRecording(
        Cmn_ClampTo<int>(size.h), Cmn_ClampTo<int>(size.v), window.GetScale()));
    window.DrawViewOn(QLX_Painter::Ptr(recording), &view, view.GetVisibleRect());
    return recording->Print();
}

std::string QLX_TestDriver::GetDrawing() { return GetDrawing(NeedWindow().GetIdentifier()); }

bool QLX_TestDriver::IsSamePicture(const QLX_Image::Ptr& a, const QLX_Image::Ptr& b) {
    return a && b && a->IsEqual(*b);
}

// Costs and routes

void QLX_TestDriver::ResetCosts() {
    WaitForIdle();
    NeedWindow().GetCosts() = {};
    mState->drawn.clear();
    mState->trace.mDeliveries.clear();
}

const TDrawCosts& QLX_TestDriver::GetCosts() {
    WaitForIdle();
    return NeedWindow().GetCosts();
}

std::vector<std::string> QLX_TestDriver::GetDrawnViews() const {
    std::vector<std::string> names;
    for (const TDrawnView& view : mState->drawn)
        names.push_back(Describe(view.mClassName, view.mIdentifier));
    return names;
}

const std::vector<QLX_EventDelivery>& QLX_TestDriver::GetRoutes() const {
    return mState->trace.mDeliveries;
}

std::string QLX_TestDriver::GetConsumer() const {
    const auto& routes = mState->trace.mDeliveries;
    for (auto route = routes.rbegin(); route != routes.rend(); ++route) {
        if (route->mMessage != EEventMessage::KeyDown &&
            route->mMessage != EEventMessage::CommandKey)
            continue;
        const QLX_EventHop* hop = route->GetConsumer();
        return hop ? Describe(hop->mClassName, hop->mIdentifier) : std::string();
    }
    return {};
}
