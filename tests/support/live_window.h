// A window on the headless platform as a host runs it: nobody records routes or drawings, so what a
// program does there costs what it costs a user.
#pragma once

#include "qlx/platform/headless/qlx_headless.h"
#include "qlx/views/qlx_windowevents.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/uwindow.h"

class LiveWindow {
  public:
    /// Opened by Open, once it has its views.
    LiveWindow(int width, int height) : mApplication(new TApplication), mWindow(new TWindow) {
        mPlatform.Install();
        mWindow->IWindow("live", VPoint(width, height));
    }
    ~LiveWindow() {
        mWindow->Free();
        mPlatform.Uninstall();
        mApplication->Free();
    }
    LiveWindow(const LiveWindow&) = delete;
    LiveWindow& operator=(const LiveWindow&) = delete;

    [[nodiscard]] bool Open() {
        if (!mWindow->Open())
            return false;
        Run();
        return true;
    }
    [[nodiscard]] TWindow* GetWindow() const { return mWindow; }
    void Inject(const QLX_EventRef& event) {
        static_cast<QLX_HeadlessWindow*>(mWindow->GetPort())->Inject(event);
    }
    /// Turns the loop until nothing is due.
    void Run() {
        QLX_HeadlessLoop& loop = mPlatform.GetHeadlessLoop();
        std::uint64_t done = 0;
        do {
            done = loop.GetTurnCount();
            loop.RunOnce(0);
        } while (loop.GetTurnCount() != done);
    }

  private:
    QLX_HeadlessPlatform mPlatform;
    TApplication* mApplication; // ended with Free
    TWindow* mWindow;           // ended with Free
};
