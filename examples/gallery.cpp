// Shows every control of the framework in every state, in a window or as pictures.
//
//   gallery                      opens a window
//   gallery FOLDER               writes gallery-light-1x.png and so on into FOLDER

#include <cstdio>
#include <exception>
#include <limits>
#include <memory>
#include <string>

#include "app/misc/qlx_init.h"
#include "qlx/imaging/qlx_themecolor.h"
#include "qlx/platform/qlx_platform.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/qlx_eventloop.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/umenumanager.h"
#include "qlx/views/uwindow.h"
#include "tests/support/gallery.h"

namespace {

/// Ends the loop when the window is closed.
class ClosedWatcher : public QLX_EventLoopClient {
  public:
    bool DoTurn() override {
        if (TWindow::GetWindows().empty())
            QLX_EventLoop::Get()->Quit();
        return false;
    }
    double GetNextWish() override { return std::numeric_limits<double>::infinity(); }
};

void ShowInWindow() {
    auto* application = new TApplication;
    const std::unique_ptr<QLX_Platform> platform = QLX_Platform::MakeNative();
    platform->Install();
    SetGalleryMenus();
    TWindow* window = MakeGallery(QLX_GALLERY_FOLDER);
    ClosedWatcher watcher;
    QLX_EventLoop::Get()->AddClient(&watcher);
    if (window->Open())
        QLX_EventLoop::Get()->Run();
    QLX_EventLoop::Get()->RemoveClient(&watcher);
    window->Free();
    TMenuManager::RemoveAllMenus();
    platform->Uninstall();
    application->Free();
}

void WritePictures(const std::string& folder) {
    const std::pair<EThemeVariant, const char*> themes[] = {
        {kTheme_Light, "light"}, {kTheme_Dark, "dark"}, {kTheme_DarkHighContrast, "contrast"}};
    for (const auto& [variant, theme] : themes) {
        QLX_Theme::SetVariant(variant);
        for (const int scale : {1, 2}) {
            QLX_TestDriver driver;
            driver.SetScale(scale * kWindow_ScaleUnit);
            SetGalleryMenus();
            TWindow* window = MakeGallery(QLX_GALLERY_FOLDER);
            driver.OpenWindow(*window);
            const std::string path =
                folder + "/gallery-" + theme + "-" + std::to_string(scale) + "x.png";
            driver.SavePicture(path);
            std::printf("%s\n", path.c_str());
            window->Free();
            TMenuManager::RemoveAllMenus();
        }
    }
}

} // namespace

int main(int argumentCount, char** arguments) {
    try {
        QLX_Init::Init();
        if (argumentCount > 1)
            WritePictures(arguments[1]);
        else
            ShowInWindow();
    } catch (const std::exception& reason) {
        std::fprintf(stderr, "gallery: %s\n", reason.what());
        return 1;
    }
    return 0;
}
