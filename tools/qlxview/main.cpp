// qlxview: checks, formats, shows, translates, compares and packs view descriptions.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string_view>
#include <vector>

#include "basekit/cmn/cmn_assert.h"
#include "basekit/sys/sys_arguments.h"
#include "basekit/sys/sys_library.h"
#include "command.h"

int gExitStatus = kExitWell;
const char* gProgramPath = "qlxview";
ToolCommand* ToolCommand::sFirst = nullptr;

ToolCommand::ToolCommand(int rank, const char* name, void (*add)(CLI::App& app, const char* name))
    : mRank(rank), mName(name), mAdd(add), mNext(sFirst) {
    sFirst = this;
}

void ToolCommand::AddAll(CLI::App& app) {
    std::vector<const ToolCommand*> commands;
    for (const ToolCommand* command = sFirst; command; command = command->mNext)
        commands.push_back(command);
    std::sort(commands.begin(), commands.end(), [](const ToolCommand* a, const ToolCommand* b) {
        return a->mRank != b->mRank ? a->mRank < b->mRank
                                    : std::string_view(a->mName) < std::string_view(b->mName);
    });
    for (const ToolCommand* command : commands)
        command->mAdd(app, command->mName);
}

int main(int argc, char** argv) {
    Sys_Arguments arguments(argc, argv);
    if (arguments.GetCount() > 0)
        gProgramPath = arguments.GetValues()[0];
    // What the library says by assertion about a file, the tool says with its place.
    Cmn_SetAssertionHandler([](const char*, const char*, int) {});
    CLI::App app("Checks, formats, shows, translates, compares and packs view descriptions.",
                 "qlxview");
    app.require_subcommand(1);
    app.footer("Exit status: 0 all is well, 1 something was found, 2 the work could not be done.\n"
               "'qlxview COMMAND --help' shows an example.");
    app.set_help_all_flag("--help-all", "Help for all commands");
    app.add_option_function<std::vector<std::string>>(
           "--load",
           [](const std::vector<std::string>& paths) {
               for (const std::string& path : paths)
                   Sys_LoadLibrary(Sys_FileLoc(path));
           },
           "A host's library whose classes are to be known; may be repeated")
        ->type_name("LIB")
        ->expected(1)
        ->take_all()
        ->trigger_on_parse();
    ToolCommand::AddAll(app);
    try {
        app.parse(arguments.GetCount(), arguments.GetValues());
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? kExitWell : kExitFailed;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "qlxview: %s\n", error.what());
        return kExitFailed;
    }
    // Findings that went nowhere are no findings.
    if (std::fflush(stdout) != 0 || std::ferror(stdout)) {
        std::fprintf(stderr, "qlxview: standard output: not written: %s\n", std::strerror(errno));
        return kExitFailed;
    }
    return gExitStatus;
}
