#include "qlx/platform/sdl/qlx_sdlwindow.h"

#include <algorithm>
#include <array>

#include "basekit/cmn/cmn_trace.h"
#include "qlx/imaging/qlx_painterfactory.h"
#include "qlx/platform/sdl/qlx_sdlapi.h"
#include "qlx/platform/sdl/qlx_sdlstate.h"
#include "qlx/views/uview.h"

namespace {

Uint32 FlagsFor(const QLX_WindowSettings& settings) {
    Uint32 flags = SDL_WINDOW_HIDDEN;
    if (settings.mResizable)
        flags |= SDL_WINDOW_RESIZABLE;
    if (!settings.mFrame)
        flags |= SDL_WINDOW_BORDERLESS;
    if (settings.mPopup)
        flags |= SDL_WINDOW_POPUP_MENU | SDL_WINDOW_SKIP_TASKBAR | SDL_WINDOW_ALWAYS_ON_TOP;
    if (settings.mDialog)
        flags |= SDL_WINDOW_UTILITY;
    return flags;
}

} // namespace

QLX_SDLWindow::QLX_SDLWindow(QLX_SDLPlatform::State& platform, const QLX_WindowSettings& settings,
                             QLX_WindowPortClient* client)
    : mPlatform(platform), mClient(client),
      mScale(QLX_DeviceScale::From120ths(platform.displayScale)) {
    const Cmn_Point<int> size = ToDevice(settings.mSize);
    const Cmn_Point<int> place = ToDevice(settings.mPlace);
    const int x = settings.mPlaced ? place.x : static_cast<int>(SDL_WINDOWPOS_UNDEFINED);
    const int y = settings.mPlaced ? place.y : static_cast<int>(SDL_WINDOWPOS_UNDEFINED);
    // SDL knows no window without size; the views' size decides what is drawn.
    mWindow = QLX_SDL().CreateWindow(settings.mTitle.c_str(), x, y, std::max(size.x, 1),
                                     std::max(size.y, 1), FlagsFor(settings));
    if (!mWindow) {
        Cmn_TraceWrite("SDL_CreateWindow: %s", QLX_SDL().GetError());
        return;
    }
    if (settings.mDialog) {
        if (QLX_SDLWindow* owner = platform.FindWindow(platform.focusedID))
            QLX_SDL().SetWindowModalFor(mWindow, owner->mWindow);
    }
    platform.windows.push_back(this);
}

QLX_SDLWindow::~QLX_SDLWindow() {
    if (mPainter)
        QLX_PainterFactory::Get().Detach(*mPainter);
    std::erase(mPlatform.windows, this);
    if (mWindow)
        QLX_SDL().DestroyWindow(mWindow);
}

Uint32 QLX_SDLWindow::GetID() const { return QLX_SDL().GetWindowID(mWindow); }

Cmn_Point<int> QLX_SDLWindow::ToDevice(Cmn_Point<int> size) const {
    return {mScale.EdgeToDevice(size.x), mScale.EdgeToDevice(size.y)};
}

Cmn_Point<int> QLX_SDLWindow::ToLogical(int x, int y) const {
    const auto map = [this](int value) {
        const std::int64_t scaled = std::int64_t{value} * QLX_DeviceScale::kUnit;
        const int unit = mScale.Get120ths();
        return static_cast<int>(scaled >= 0 ? scaled / unit : -((-scaled + unit - 1) / unit));
    };
    return {map(x), map(y)};
}

Cmn_Point<int> QLX_SDLWindow::GetSize() const {
    int width = 0;
    int height = 0;
    QLX_SDL().GetWindowSize(mWindow, &width, &height);
    const Cmn_Rect<int> covered = mScale.RectToLogical({0, 0, width, height});
    return {covered.right, covered.bottom};
}

void QLX_SDLWindow::SetSize(Cmn_Point<int> size) {
    const Cmn_Point<int> device = ToDevice(size);
    QLX_SDL().SetWindowSize(mWindow, std::max(device.x, 1), std::max(device.y, 1));
}

void QLX_SDLWindow::SetMinimumSize(Cmn_Point<int> size) {
    const Cmn_Point<int> device = ToDevice(size);
    if (device.x > 0 && device.y > 0)
        QLX_SDL().SetWindowMinimumSize(mWindow, device.x, device.y);
}

Cmn_Point<int> QLX_SDLWindow::GetPlace() const {
    int x = 0;
    int y = 0;
    QLX_SDL().GetWindowPosition(mWindow, &x, &y);
    return ToLogical(x, y);
}

void QLX_SDLWindow::SetPlace(Cmn_Point<int> place) {
    const Cmn_Point<int> device = ToDevice(place);
    QLX_SDL().SetWindowPosition(mWindow, device.x, device.y);
}

void QLX_SDLWindow::SetTitle(const std::string& title) {
    QLX_SDL().SetWindowTitle(mWindow, title.c_str());
}

void QLX_SDLWindow::Show(bool shown) {
    if (shown)
        QLX_SDL().ShowWindow(mWindow);
    else
        QLX_SDL().HideWindow(mWindow);
}

void QLX_SDLWindow::Activate() { QLX_SDL().RaiseWindow(mWindow); }

// Painting

void QLX_SDLWindow::SurfaceChanged() { mSurfaceIsStale = true; }

const QLX_WindowPort::PainterPtr& QLX_SDLWindow::GetPainter() {
    if (!mSurfaceIsStale && mPainter)
        return mPainter;
    if (mPainter)
        QLX_PainterFactory::Get().Detach(*mPainter);
    mPainter.Reset();
    SDL_Surface* surface = QLX_SDL().GetWindowSurface(mWindow);
    if (!surface) {
        Cmn_TraceWrite("SDL_GetWindowSurface: %s", QLX_SDL().GetError());
        return mPainter;
    }
    if (surface->format->BytesPerPixel != 4 || surface->format->Rmask != 0x00FF0000U ||
        surface->format->Bmask != 0x000000FFU) {
        Cmn_TraceWrite("the window's pixels are %s, which the painters cannot draw",
                       QLX_SDL().GetPixelFormatName(surface->format->format));
        return mPainter;
    }
    mPainter = QLX_PainterFactory::Get().MakeForBuffer(
        {static_cast<std::uint32_t*>(surface->pixels), surface->w, surface->h, surface->pitch / 4,
         /*hasAlpha*/ false},
        mScale);
    mSurfaceIsStale = false;
    return mPainter;
}

void QLX_SDLWindow::Present(const std::vector<Cmn_Rect<int>>& rects) {
    int width = 0;
    int height = 0;
    QLX_SDL().GetWindowSize(mWindow, &width, &height);
    std::vector<SDL_Rect>& shown = mPlatform.presentRects;
    shown.clear();
    for (const Cmn_Rect<int>& rect : rects) {
        const int right = std::min(rect.right, width);
        const int bottom = std::min(rect.bottom, height);
        if (rect.left < right && rect.top < bottom)
            shown.push_back({rect.left, rect.top, right - rect.left, bottom - rect.top});
    }
    // A resize that has not been told yet makes the surface invalid: its event brings a full
    // redraw.
    if (!shown.empty() && !mSurfaceIsStale &&
        QLX_SDL().UpdateWindowSurfaceRects(mWindow, shown.data(), static_cast<int>(shown.size())) !=
            0)
        mSurfaceIsStale = true;
}

// Pointer and text

void QLX_SDLWindow::SetCursor(ECursor cursor) { mPlatform.ShowCursor(cursor); }

void QLX_SDLWindow::SetCapture(bool capture) {
    QLX_SDL().CaptureMouse(capture ? SDL_TRUE : SDL_FALSE);
}

void QLX_SDLWindow::SetTextInput(const Cmn_Rect<int>* caret) {
    if (!caret)
        return;
    const Cmn_Rect<int> device = mScale.RectToDevice(*caret);
    const SDL_Rect rect{device.left, device.top, device.right - device.left,
                        device.bottom - device.top};
    QLX_SDL().SetTextInputRect(&rect);
}
