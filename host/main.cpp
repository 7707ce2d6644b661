// session_host: a session window of an audio editor. With a display it opens a window; without one,
// or on request, it draws the same window into a picture.

#include <CLI/CLI.hpp>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <string>

#include "app/misc/qlx_init.h"
#include "basekit/sys/sys_arguments.h"
#include "basekit/sys/sys_file.h"
#include "host/audio_file.h"
#include "host/session_window.h"
#include "qlx/imaging/qlx_painterfactory.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/persistence/qlx_sourceformat.h"
#include "qlx/platform/headless/qlx_headless.h"
#include "qlx/platform/qlx_platform.h"
#include "qlx/platform/testing/qlx_playscript.h"
#include "qlx/platform/testing/qlx_testdriver.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/uviewserver.h"

namespace {

struct Options {
    std::string mAudioFile;
    std::string mDataFolder;
    std::string mPicture;
    std::string mPlay;
    std::string mRecord;
    std::string mLayout;
    std::string mLanguage;
    std::string mTheme = "dark";
    std::string mPainter;
    double mScale = 0;
};

void SetVariable(const char* name, const std::string& value) {
#if defined(_WIN32)
    _putenv_s(name, value.c_str());
#else
    ::setenv(name, value.c_str(), 1);
#endif
}

/// Ends when the window is closed.
class HostWindowWatcher : public QLX_EventLoopClient {
  public:
    bool DoTurn() override {
        if (TWindow::GetWindows().empty() && QLX_EventLoop::Get()->GetRunLevel() > 0)
            QLX_EventLoop::Get()->Quit();
        return false;
    }
    double GetNextWish() override { return std::numeric_limits<double>::infinity(); }
};

int ThemeOf(const std::string& name) {
    const std::string names[] = {"light", "dark", "light-contrast", "dark-contrast"};
    for (int i = 0; i < 4; ++i)
        if (names[i] == name)
            return i;
    throw std::runtime_error("--theme: \"" + name +
                             "\" is none of light, dark, light-contrast, dark-contrast");
}

SessionLook LookOf(const Options& options) {
    SessionLook look;
    if (options.mLayout != "Default")
        look.mLayout = options.mLayout;
    if (!look.mLayout.empty() && look.mLayout != "Compact" && look.mLayout != "Large")
        throw std::runtime_error("--layout: \"" + options.mLayout +
                                 "\" is none of Default, Compact, Large");
    if (!QLX_Language::FindLanguage(options.mLanguage, look.mLanguage))
        throw std::runtime_error("--language: \"" + options.mLanguage +
                                 "\" is none of ENU, FRA, DEU, JPN");
    look.mTheme = ThemeOf(options.mTheme);
    return look;
}

std::string DataFolder(const Options& options) {
    if (!options.mDataFolder.empty())
        return options.mDataFolder;
    // Beside the program, where packages put it, or in the sources.
    const Sys_FileLoc programs = Sys_FileLoc::ApplicationFolder();
    for (const Sys_FileLoc& folder :
         {programs.GetChild("session_data"),
          programs.GetParent().GetChild("share").GetChild("qlx").GetChild("host").GetChild("data")})
        if (folder.IsFolder())
            return folder.GetPath();
    return HOST_DATA_FOLDER;
}

using MementoPtr = Cmn_AliasedRefCountPtr<QLX_ViewMemento>;

MementoPtr ReadDescription(const std::string& folder) {
    const StCurrentLanguage english(QLX_Language::English);
    QLX_SourceViewFormat format(Sys_FileLoc(folder + "/session.xml"));
    try {
        return MementoPtr(format.ReadMemento(nullptr));
    } catch (const std::exception& reason) {
        std::string text = reason.what();
        for (const QLX_SourceProblem& problem : format.GetProblems())
            text += "\n" + problem.ToString();
        throw std::runtime_error(text);
    }
}

TSessionWindow* MakeWindow(const Options& options, const std::string& folder) {
    const MementoPtr memento = ReadDescription(folder);
    memento->GetRoot()->SetCurrentFilter(QLX_PropertyFilter::DefaultFilter());
    auto* window = QLX_ObjectCast<TSessionWindow>(TViewServer::Get()->NewWindow(memento));
    for (const TViewServerProblem& problem : TViewServer::Get()->TakeProblems())
        std::fprintf(stderr, "%s\n", problem.AsString().c_str());
    if (!window)
        throw std::runtime_error(folder + "/session.xml: its first view is no TSessionWindow");
    SessionAudio audio =
        options.mAudioFile.empty() ? MakeGeneratedAudio() : OpenAudioFile(options.mAudioFile);
    window->ISession(std::move(audio), memento, LookOf(options));
    return window;
}

int RunHeadless(const Options& options) {
    QLX_TestDriver driver;
    driver.SetScale(
        static_cast<int>((options.mScale > 0 ? options.mScale : 1) * kWindow_ScaleUnit));
    const std::string folder = DataFolder(options);
    TSessionWindow* window = MakeWindow(options, folder);
    SessionKeys keys(*window);
    keys.ReadFile(folder + "/session.keys");
    driver.OpenWindow(*window);
    window->WaitForPeaks();
    driver.WaitForIdle();
    std::unique_ptr<QLX_PlayRecorder> recorder;
    if (!options.mRecord.empty())
        recorder = std::make_unique<QLX_PlayRecorder>(options.mRecord);
    int failures = 0;
    if (!options.mPlay.empty()) {
        const QLX_PlayResult result = QLX_PlayScript::PlayFile(driver, options.mPlay);
        for (const std::string& failure : result.mFailures)
            std::fprintf(stderr, "%s\n", failure.c_str());
        std::printf("%s: %d steps, %d expectations, %zu failed\n", options.mPlay.c_str(),
                    result.mSteps, result.mExpectations, result.mFailures.size());
        failures = static_cast<int>(result.mFailures.size());
    }
    if (!options.mPicture.empty()) {
        driver.SavePicture(options.mPicture);
        std::printf("wrote %s\n", options.mPicture.c_str());
    }
    window->Close();
    window->Free();
    return failures == 0 ? 0 : 1;
}

int RunInWindow(const Options& options) {
    auto* application = new TApplication;
    const std::unique_ptr<QLX_Platform> platform = QLX_Platform::MakeNative();
    platform->Install();
    const std::string folder = DataFolder(options);
    TSessionWindow* window = MakeWindow(options, folder);
    {
        SessionKeys keys(*window);
        keys.ReadFile(folder + "/session.keys");
        HostWindowWatcher watcher;
        QLX_EventLoop::Get()->AddClient(&watcher);
        std::unique_ptr<QLX_PlayRecorder> recorder;
        if (!options.mRecord.empty())
            recorder = std::make_unique<QLX_PlayRecorder>(options.mRecord);
        if (!window->Open())
            throw std::runtime_error("the window cannot be opened");
        QLX_EventLoop::Get()->Run();
        QLX_EventLoop::Get()->RemoveClient(&watcher);
    }
    window->Free();
    platform->Uninstall();
    application->Free();
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App program("A session window of an audio editor, on the QLX framework.\n"
                     "Example: session_host --layout Compact --language FRA take1.wav");
    program.add_option("FILE", options.mAudioFile, "WAV or FLAC file to show (default: a signal)");
    program.add_option("--headless", options.mPicture, "draw the window into this PNG and end");
    program.add_option("--play", options.mPlay, "play this script without a display");
    program.add_option("--record", options.mRecord, "write what the user does to this script");
    program.add_option("--layout", options.mLayout, "Default, Compact or Large");
    program.add_option("--language", options.mLanguage, "ENU, FRA, DEU or JPN");
    program.add_option("--theme", options.mTheme, "light, dark, light-contrast or dark-contrast");
    program.add_option("--scale", options.mScale, "device pixels for a logical one, 1 to 3")
        ->check(CLI::Range(1.0, 3.0));
    program.add_option("--painter", options.mPainter,
                       "what draws: cairo; gdi or direct2d on Windows");
    program.add_option("--data", options.mDataFolder, "folder of session.xml and its tables");
    Sys_Arguments arguments(argc, argv);
    CLI11_PARSE(program, arguments.GetCount(), arguments.GetValues());
    try {
        QLX_Init::Init();
        if (!options.mPicture.empty() || !options.mPlay.empty())
            return RunHeadless(options);
        if (options.mScale > 0)
            SetVariable("QLX_SCALE", std::to_string(options.mScale));
        if (!options.mPainter.empty() && !QLX_PainterFactory::Choose(options.mPainter))
            throw std::runtime_error("--painter: there is no \"" + options.mPainter + "\" here");
        return RunInWindow(options);
    } catch (const std::exception& reason) {
        std::fprintf(stderr, "session_host: %s\n", reason.what());
        return 1;
    }
}
