// qlxview render: pictures of a description's window, one look or many on a contact sheet.
#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>

#include "command.h"
#include "contactsheet.h"
#include "stage.h"

namespace {
struct Options {
    std::string mFile;
    std::string mOutput;
    LookOptions mLooks;
    int mWidth = 0;
    bool mEach = false;
    bool mForce = false;
};

/// "Transport-Compact-DEU-dark-1.25x.png"
std::string FileName(const std::string& file, const Look& look) {
    return Sys_FileLoc(file).GetStem() + "-" + look.GetLayoutName() + "-" + look.GetLanguageName() +
           "-" + look.GetThemeName() + "-" + ScaleText(look.mScale) + "x.png";
}

void PrintProblems(std::vector<Finding>& problems, std::map<std::string, bool>& known) {
    for (const Finding& problem : problems)
        if (!std::exchange(known[problem.mFile + std::to_string(problem.mLine) + problem.mText],
                           true))
            std::fputs(FindingsAsText({problem}).c_str(), stderr);
    if (!problems.empty())
        gExitStatus = kExitFound;
    problems.clear();
}

std::vector<SheetCell> TakePictures(const Description& description, const Description& widest,
                                    const std::vector<Look>& looks) {
    std::vector<SheetCell> cells;
    std::vector<Finding> problems;
    std::map<std::string, bool> known;
    for (const Look& look : looks) {
        Stage stage(look.mWidest ? widest : description, look, problems);
        cells.push_back({stage.GetPicture(), look.GetLabel(), {}});
        PrintProblems(problems, known);
    }
    return cells;
}

void Save(const QLX_Image::Ptr& picture, const std::string& path, bool force) {
    SavePicture(picture, path, force);
    std::printf("%s\n", path.c_str());
}

void Render(const Options& options) {
    const auto description = LoadDescription(options.mFile);
    const auto widest = description ? LoadDescription(options.mFile) : nullptr;
    if (!description || !widest) {
        gExitStatus = kExitFailed;
        return;
    }
    TakeWidestTexts(*widest);
    const std::vector<Look> looks = ChooseLooks(*description, options.mLooks);
    std::vector<std::string> paths{options.mOutput};
    if (options.mEach) {
        paths.clear();
        std::filesystem::create_directories(options.mOutput);
        for (const Look& look : looks)
            paths.push_back(options.mOutput + "/" + FileName(options.mFile, look));
    }
    for (const std::string& path : paths)
        CheckMayWrite(path, options.mForce);
    const std::vector<SheetCell> cells = TakePictures(*description, *widest, looks);
    if (options.mEach)
        for (std::size_t i = 0; i < cells.size(); ++i)
            Save(cells[i].mPicture, paths[i], options.mForce);
    else if (cells.size() == 1 && options.mWidth == 0)
        Save(cells[0].mPicture, options.mOutput, options.mForce);
    else
        Save(MakeContactSheet(cells, CountColumns(looks), options.mWidth), options.mOutput,
             options.mForce);
}

void AddRenderCommand(CLI::App& app, const char* name) {
    CLI::App* const command =
        app.add_subcommand(name, "Draws a description's window into a picture, without a display");
    const auto options = std::make_shared<Options>();
    command->add_option("FILE", options->mFile, "An XML source")->required();
    command
        ->add_option("-o,--output", options->mOutput,
                     "The PNG; several looks make it a contact sheet")
        ->required();
    options->mLooks.AddTo(*command);
    command->add_flag("--each", options->mEach,
                      "A picture for every look, in the folder that --output names");
    command
        ->add_option("--width", options->mWidth,
                     "Pictures on a sheet are at most this wide, pixels")
        ->check(CLI::Range(16, 16384));
    command->add_flag("-f,--force", options->mForce, "Replace pictures that are there");
    command->footer(
        "Exit status 1 when some view could not be made; the picture shows where.\n"
        "Example: qlxview --load ./libhost.so render views/Transport.xml -o /tmp/transport.png "
        "--layout all --language all --theme light,dark");
    command->callback([options] { Render(*options); });
}
const ToolCommand gRender(60, "render", AddRenderCommand);
} // namespace
