// qlxview play: plays scripts of a user's actions in a description's window and checks what they
// expect.
#include <cstdio>
#include <memory>

#include "command.h"
#include "qlx/platform/testing/qlx_playscript.h"
#include "stage.h"

namespace {
struct Options {
    std::string mFile;
    std::vector<std::string> mScripts;
    LookOptions mLooks;
};

void PlayOne(const Description& description, const Look& look, const std::string& script) {
    std::vector<Finding> problems;
    Stage stage(description, look, problems);
    for (const Finding& problem : problems)
        std::fputs(FindingsAsText({problem}).c_str(), stderr);
    const QLX_PlayResult result = QLX_PlayScript::PlayFile(stage.GetDriver(), script);
    for (const std::string& failure : result.mFailures)
        std::fprintf(stderr, "%s\n", failure.c_str());
    std::printf("%s (%s): %d steps, %d expectations, %zu failed\n", script.c_str(),
                look.GetLabel().c_str(), result.mSteps, result.mExpectations,
                result.mFailures.size());
    if (!result.mFailures.empty() || !problems.empty())
        gExitStatus = kExitFound;
}

void Play(const Options& options) {
    const auto description = LoadDescription(options.mFile);
    const auto widest = description ? LoadDescription(options.mFile) : nullptr;
    if (!description || !widest) {
        gExitStatus = kExitFailed;
        return;
    }
    TakeWidestTexts(*widest);
    for (const Look& look : ChooseLooks(*description, options.mLooks))
        for (const std::string& script : options.mScripts)
            PlayOne(look.mWidest ? *widest : *description, look, script);
}

void AddPlayCommand(CLI::App& app, const char* name) {
    CLI::App* const command = app.add_subcommand(
        name, "Plays a script of a user's actions in a description's window, without a display");
    const auto options = std::make_shared<Options>();
    command->add_option("FILE", options->mFile, "An XML source")->required();
    command->add_option("SCRIPT", options->mScripts, "Play scripts, each in a window of its own")
        ->required();
    options->mLooks.AddTo(*command);
    command->footer("Exit status 1 when an expectation failed or a step could not be done.\n"
                    "Example: qlxview --load ./libhost.so play views/Transport.xml smoke.play "
                    "--layout all");
    command->callback([options] { Play(*options); });
}
const ToolCommand gPlay(63, "play", AddPlayCommand);
} // namespace
