// qlxview preview: a window that follows its description.
#include <cstdio>
#include <iostream>
#include <limits>
#include <memory>

#include "app/misc/qlx_init.h"
#include "command.h"
#include "previewer.h"
#include "qlx/platform/qlx_platform.h"
#include "qlx/platform/testing/qlx_playscript.h"
#include "qlx/views/uapplication.h"

namespace {
struct Options {
    std::string mFile;
    LookOptions mLooks;
    bool mHeadless = false;
};

/// Ends the loop when the window is closed.
class WindowWatcher : public QLX_EventLoopClient {
  public:
    WindowWatcher() { QLX_EventLoop::Get()->AddClient(this); }
    ~WindowWatcher() override { QLX_EventLoop::Get()->RemoveClient(this); }
    bool DoTurn() override {
        if (TWindow::GetWindows().empty() && QLX_EventLoop::Get()->GetRunLevel() > 0)
            QLX_EventLoop::Get()->Quit();
        return false;
    }
    double GetNextWish() override { return std::numeric_limits<double>::infinity(); }
};

void RunInWindow(const Options& options, const Look& look) {
    const std::unique_ptr<QLX_Platform> platform = QLX_Platform::MakeNative();
    auto* const application = new TApplication;
    platform->Install();
    {
        Previewer previewer(options.mFile, look, [](TWindow& window) {
            if (!window.Open())
                throw std::runtime_error("the window cannot be opened");
        });
        const WindowWatcher watcher;
        QLX_EventLoop::Get()->Run();
        gExitStatus = previewer.HasErrors() ? kExitFound : kExitWell;
    }
    platform->Uninstall();
    application->Free();
}

/// Plays the lines of standard input as they come, each half a second after the one before, so that
/// a file that changed meanwhile has been read.
void RunHeadless(const Options& options, const Look& look) {
    QLX_TestDriver driver;
    driver.SetScale(look.mScale);
    Previewer previewer(options.mFile, look,
                        [&driver](TWindow& window) { driver.OpenWindow(window); });
    bool failed = false;
    std::string line;
    for (std::string above; std::getline(std::cin, line); above += '\n') {
        driver.Step(0.5);
        driver.UseWindow(previewer.GetWindow());
        const QLX_PlayResult result = QLX_PlayScript::PlayText(driver, above + line, "stdin");
        for (const std::string& failure : result.mFailures)
            std::fprintf(stderr, "%s\n", failure.c_str());
        failed = failed || !result.mFailures.empty();
    }
    driver.Step(0.5);
    gExitStatus = failed || previewer.HasErrors() ? kExitFound : kExitWell;
}

void Preview(const Options& options) {
    if (!Sys_FileLoc(options.mFile).Exists())
        throw std::runtime_error(options.mFile + ": there is no such file");
    Look look;
    try {
        look = ChooseLooks(Description(options.mFile), options.mLooks).front();
    } catch (const std::exception& error) {
        // A file that cannot be read yet may be mended while it is shown.
        if (!options.mLooks.mLayouts.empty() || !options.mLooks.mLanguages.empty())
            throw;
    }
    if (!options.mHeadless && !options.mLooks.mScales.empty())
        throw std::runtime_error("--scale is for --headless; QLX_SCALE sets the display's scale");
    QLX_Init::Init();
    if (options.mHeadless)
        RunHeadless(options, look);
    else
        RunInWindow(options, look);
}

void AddPreviewCommand(CLI::App& app, const char* name) {
    CLI::App* const command = app.add_subcommand(
        name, "Shows a description in a window that follows the file, with its problems in place");
    const auto options = std::make_shared<Options>();
    command->add_option("FILE", options->mFile, "An XML source")->required();
    options->mLooks.AddTo(*command);
    command->add_flag("--headless", options->mHeadless,
                      "Without a display: plays the lines of standard input (see play)");
    command->footer("F5 reads again; F6, F7, F8 show the next layout, language, theme; F9 hides "
                    "the marks.\nExit status 1 when the file has errors at the end.\n"
                    "Example: qlxview --load ./libhost.so preview views/Transport.xml");
    command->callback([options] { Preview(*options); });
}
const ToolCommand gPreview(62, "preview", AddPreviewCommand);
} // namespace
