// qlxview install-git-drivers: makes git compare and merge descriptions by element.
#include <cstdio>
#include <cstdlib>

#include "command.h"
#include "description.h"

namespace {
struct Options {
    std::string mFolder = ".";
    std::string mPattern = "*.xml";
    std::string mProgram = "qlxview";
};

/// One word for the platform's shell.
std::string ShellWord(const std::string& text) {
#ifdef _WIN32
    return "\"" + text + "\"";
#else
    std::string out = "'";
    for (const char c : text)
        out += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return out + "'";
#endif
}

void SetConfig(const Options& options, const std::string& name, const std::string& value) {
    const std::string command =
        "git -C " + ShellWord(options.mFolder) + " config " + name + " " + ShellWord(value);
    if (std::system(command.c_str()) != 0)
        throw std::runtime_error(options.mFolder + ": git refused to set " + name);
}

void Install(const Options& options) {
    SetConfig(options, "diff.qlxview.command", options.mProgram + " git-diff");
    SetConfig(options, "diff.qlxview.textconv", options.mProgram + " tree");
    SetConfig(options, "merge.qlxview.name", "View descriptions by element");
    SetConfig(options, "merge.qlxview.driver", options.mProgram + " merge %O %A %B --path %P");
    const Sys_FileLoc attributes = Sys_FileLoc(options.mFolder).GetChild(".gitattributes");
    const std::string line = options.mPattern + " diff=qlxview merge=qlxview";
    std::string text = attributes.IsFile() ? Sys_File::ReadAll(attributes) : std::string();
    if (("\n" + text + "\n").find("\n" + line + "\n") != std::string::npos) {
        std::printf("%s: has the drivers already\n", attributes.GetPath().c_str());
        return;
    }
    if (!text.empty() && text.back() != '\n')
        text += "\n";
    Sys_SafeWriter::Replace(attributes, text + line + "\n");
    std::printf("%s: %s\n", attributes.GetPath().c_str(), line.c_str());
}

void AddGitDriversCommand(CLI::App& app, const char* name) {
    CLI::App* const command = app.add_subcommand(
        name, "Makes git compare and merge the descriptions of a repository by element");
    const auto options = std::make_shared<Options>();
    command->add_option("FOLDER", options->mFolder,
                        "The repository; without it the current folder");
    command->add_option("--pattern", options->mPattern,
                        "Which files, as in .gitattributes (*.xml)");
    command->add_option("--program", options->mProgram,
                        "How git is to call this program (qlxview)");
    command->footer("The drivers go into the repository's own configuration, which is not shared;\n"
                    "the pattern goes into .gitattributes, which is.\n"
                    "Example: qlxview install-git-drivers --pattern 'views/*.xml'");
    command->callback([options] { Install(*options); });
}
const ToolCommand gGitDrivers(62, "install-git-drivers", AddGitDriversCommand);
} // namespace
