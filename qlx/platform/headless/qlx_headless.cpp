#include "qlx/platform/headless/qlx_headless.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <condition_variable>
#include <mutex>

#include "basekit/sys/sys_clock.h"
#include "qlx/imaging/qlx_devicescale.h"
#include "qlx/imaging/qlx_painterfactory.h"
#include "qlx/views/uview.h"

namespace {

double sNow = 1000.0; // seconds

double ReadClock() { return sNow; }

class MemoryClipboard : public QLX_Clipboard {
  public:
    bool GetText(std::string& text) override {
        if (!mHasText)
            return false;
        text = mText;
        return true;
    }
    void SetText(const std::string& text) override {
        mText = text;
        mHasText = true;
    }

  private:
    std::string mText;
    bool mHasText = false;
};

} // namespace

// The loop

struct QLX_HeadlessLoop::Sleep {
    std::mutex lock;
    std::condition_variable changed;
    bool woken = false; // guarded by lock
    double realSeconds = 0;
};

QLX_HeadlessLoop::QLX_HeadlessLoop(QLX_HeadlessPlatform& platform)
    : mPlatform(platform), mSleep(std::make_unique<Sleep>()) {}

QLX_HeadlessLoop::~QLX_HeadlessLoop() = default;

void QLX_HeadlessLoop::SetWaitForThreads(double realSeconds) { mSleep->realSeconds = realSeconds; }

bool QLX_HeadlessLoop::DispatchNative() { return mPlatform.DeliverOne(); }

bool QLX_HeadlessLoop::WaitNative(double seconds) {
    if (std::isfinite(seconds)) {
        sNow += std::max(seconds, 0.0);
        return true;
    }
    std::unique_lock guard(mSleep->lock);
    if (mSleep->realSeconds > 0)
        mSleep->changed.wait_for(guard, std::chrono::duration<double>(mSleep->realSeconds),
                                 [this] { return mSleep->woken; });
    return std::exchange(mSleep->woken, false);
}

void QLX_HeadlessLoop::WakeNative() {
    {
        const std::lock_guard guard(mSleep->lock);
        mSleep->woken = true;
    }
    mSleep->changed.notify_one();
}

// The keyboard

QLX_HeadlessKeyboard::~QLX_HeadlessKeyboard() = default;

bool QLX_HeadlessKeyboard::IsKeyDown(DAW_EKeyCode key) const {
    return std::find(mKeys.begin(), mKeys.end(), key) != mKeys.end();
}

void QLX_HeadlessKeyboard::SetKeyDown(DAW_EKeyCode key, bool down) {
    std::erase(mKeys, key);
    if (down)
        mKeys.push_back(key);
}

// Windows

QLX_HeadlessWindow::QLX_HeadlessWindow(QLX_HeadlessPlatform& platform,
                                       const QLX_WindowSettings& settings,
                                       QLX_WindowPortClient* client)
    : mPlatform(platform), mClient(client), mTitle(settings.mTitle), mSize(settings.mSize),
      mPlace(settings.mPlace), mScale(platform.GetDisplayScale()), mPopup(settings.mPopup),
      mCursor(kCursor_Arrow) {
    mPlatform.mWindows.push_back(this);
}

QLX_HeadlessWindow::~QLX_HeadlessWindow() {
    DropSurface();
    mPlatform.WindowGone(this);
}

void QLX_HeadlessWindow::DropSurface() {
    if (mPainter)
        QLX_PainterFactory::Get().Detach(*mPainter);
    mPainter.Reset();
    mSurface.clear();
    mScreen.clear();
    mPresented.clear();
    mWidth = 0;
    mHeight = 0;
}

void QLX_HeadlessWindow::SetSize(Cmn_Point<int> size) {
    size = {std::max(size.x, 0), std::max(size.y, 0)};
    if (size == mSize)
        return;
    mSize = size;
    Inject(QLX_MakeWindowEvent(kQLX_EventKind_Resized));
}

void QLX_HeadlessWindow::SetMinimumSize(Cmn_Point<int> size) { mMinimum = size; }

void QLX_HeadlessWindow::UserResize(Cmn_Point<int> size) {
    SetSize({std::max(size.x, mMinimum.x), std::max(size.y, mMinimum.y)});
}

void QLX_HeadlessWindow::SetPlace(Cmn_Point<int> place) {
    if (place == mPlace)
        return;
    mPlace = place;
    Inject(QLX_MakeWindowEvent(kQLX_EventKind_Moved));
}

void QLX_HeadlessWindow::SetScale(int scale) {
    if (scale == mScale)
        return;
    mScale = scale;
    Inject(QLX_MakeWindowEvent(kQLX_EventKind_ScaleChanged));
}

void QLX_HeadlessWindow::Show(bool shown) {
    if (shown == mShown)
        return;
    mShown = shown;
    if (mPopup)
        return;
    if (shown)
        mPlatform.MakeActive(this);
    else if (mPlatform.mActive == this)
        mPlatform.MakeActive(nullptr);
}

void QLX_HeadlessWindow::Activate() {
    if (mShown)
        mPlatform.MakeActive(this);
}

// The old painter goes with its pixels; whoever still holds it holds one that is not valid.
const QLX_WindowPort::PainterPtr& QLX_HeadlessWindow::GetPainter() {
    const QLX_DeviceScale scale = QLX_DeviceScale::From120ths(mScale);
    const Cmn_Rect<int> surface = scale.RectToDevice({0, 0, mSize.x, mSize.y});
    if (surface.right == mWidth && surface.bottom == mHeight && mPainter &&
        mPainter->GetIdentifier() == mScale)
        return mPainter;
    DropSurface();
    if (surface.right <= 0 || surface.bottom <= 0)
        return mPainter;
    mWidth = surface.right;
    mHeight = surface.bottom;
    const std::size_t pixels = static_cast<std::size_t>(mWidth) * static_cast<std::size_t>(mHeight);
    mSurface.assign(pixels, 0xFF000000U);
    mScreen.assign(pixels, 0xFF000000U);
    QLX_PainterMaker& maker = QLX_PainterFactory::Get();
    mPainter = maker.MakeForBuffer({mSurface.data(), mWidth, mHeight, mWidth, false}, scale);
    if (!mPainter) {
        mSurface.clear();
        mScreen.clear();
        mPainter = maker.MakeOffscreen(mSize.x, mSize.y, scale, /*withAlpha*/ false);
    }
    if (mPainter)
        mPainter->SetIdentifier(mScale);
    return mPainter;
}

void QLX_HeadlessWindow::Present(const std::vector<Cmn_Rect<int>>& rects) {
    mPresented = rects;
    if (mScreen.empty())
        return;
    for (const Cmn_Rect<int>& rect : rects) {
        // A resize that has not been told yet leaves a surface of the old size; its event brings a
        // full redraw.
        const Cmn_Rect<int> shown = rect & Cmn_Rect<int>(0, 0, mWidth, mHeight);
        for (int y = shown.top; y < shown.bottom; ++y) {
            const auto row = static_cast<std::ptrdiff_t>(y) * mWidth;
            std::copy(mSurface.begin() + row + shown.left, mSurface.begin() + row + shown.right,
                      mScreen.begin() + row + shown.left);
        }
    }
}

void QLX_HeadlessWindow::SetTextInput(const Cmn_Rect<int>* caret) {
    mTextInput = caret != nullptr;
    if (caret)
        mTextInputArea = *caret;
}

void QLX_HeadlessWindow::Inject(const QLX_EventRef& event) { mPlatform.Inject(this, event); }

QLX_Image::Ptr QLX_HeadlessWindow::GetPicture() const {
    if (mScreen.empty())
        return nullptr;
    std::vector<std::uint32_t> pixels = mScreen;
    for (std::uint32_t& pixel : pixels)
        pixel |= 0xFF000000U;
    return QLX_Image::Create(mWidth, mHeight, std::move(pixels));
}

// The platform

QLX_HeadlessPlatform::QLX_HeadlessPlatform()
    : mLoop(*this), mFactory(*this), mClipboard(std::make_unique<MemoryClipboard>()) {
    sNow = 1000.0;
    mOldClock = Sys_SetClockSource(&ReadClock);
}

QLX_HeadlessPlatform::~QLX_HeadlessPlatform() {
    Uninstall();
    Sys_SetClockSource(mOldClock);
}

double QLX_HeadlessPlatform::GetNow() { return sNow; }

void QLX_HeadlessPlatform::SetNow(double seconds) { sNow = seconds; }

std::unique_ptr<QLX_WindowPort>
QLX_HeadlessPlatform::Factory::MakePort(const QLX_WindowSettings& settings,
                                        QLX_WindowPortClient* client) {
    return std::make_unique<QLX_HeadlessWindow>(mPlatform, settings, client);
}

void QLX_HeadlessPlatform::Inject(QLX_HeadlessWindow* window, const QLX_EventRef& event) {
    mEvents.push_back({window, event});
}

bool QLX_HeadlessPlatform::DeliverOne() {
    if (mEvents.empty())
        return false;
    const Waiting next = mEvents.front();
    mEvents.pop_front();
    next.window->GetClient()->PortEvent(next.event);
    return true;
}

void QLX_HeadlessPlatform::WindowGone(QLX_HeadlessWindow* window) {
    std::erase(mWindows, window);
    std::erase_if(mEvents, [window](const Waiting& each) { return each.window == window; });
    if (mActive == window)
        mActive = nullptr;
}

void QLX_HeadlessPlatform::MakeActive(QLX_HeadlessWindow* window) {
    if (mActive == window)
        return;
    if (mActive)
        mActive->Inject(QLX_MakeWindowEvent(kQLX_EventKind_Deactivated));
    mActive = window;
    if (window)
        window->Inject(QLX_MakeWindowEvent(kQLX_EventKind_Activated));
}
