// qlxview format: rewrites descriptions in their canonical form, comments and all.
#include <cstdio>

#include "command.h"
#include "description.h"

namespace {
struct Options {
    std::vector<std::string> mFiles;
    bool mCheck = false;
    bool mToOutput = false;
};

void FormatFile(const std::string& path, const Options& options) {
    const auto description = LoadDescription(path);
    if (!description) {
        gExitStatus = kExitFailed;
        return;
    }
    const std::vector<std::string> losses = description->FindLosses();
    if (!losses.empty()) {
        std::fprintf(stderr, "%s: not formatted, because something would be lost:\n", path.c_str());
        for (const std::string& loss : losses)
            std::fprintf(stderr, "  %s\n", loss.c_str());
        gExitStatus = kExitFailed;
        return;
    }
    const std::string text = description->GetCanonicalText();
    if (options.mToOutput) {
        std::fwrite(text.data(), 1, text.size(), stdout);
        return;
    }
    if (text == Sys_File::ReadAll(Sys_FileLoc(path)))
        return;
    if (options.mCheck) {
        std::printf("%s: not in canonical form\n", path.c_str());
        gExitStatus = std::max<int>(gExitStatus, kExitFound);
        return;
    }
    Sys_SafeWriter::Replace(Sys_FileLoc(path), text);
    std::printf("%s: formatted\n", path.c_str());
}

void AddFormatCommand(CLI::App& app, const char* name) {
    CLI::App* const command = app.add_subcommand(
        name, "Rewrites descriptions in canonical form, with the author's comments");
    const auto options = std::make_shared<Options>();
    command->add_option("FILE", options->mFiles, "XML sources")->required();
    command->add_flag("--check", options->mCheck,
                      "Change nothing; name the files that are not in canonical form");
    command->add_flag("--stdout", options->mToOutput, "Write the text to standard output instead");
    command->footer("A file is refused when something in it would be lost.\n"
                    "Example: qlxview format --check views/*.xml");
    command->callback([options] {
        for (const std::string& path : options->mFiles)
            FormatFile(path, *options);
    });
}
const ToolCommand gFormat(20, "format", AddFormatCommand);
} // namespace
