// qlxview: checks, formats, shows, translates and packs view descriptions.
#include <cstdio>
#include <exception>

#include "basekit/sys/sys_library.h"
#include "command.h"

int gExitStatus = kExitWell;

int main(int argc, char** argv) {
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
        ->trigger_on_parse();
    AddCheckCommand(app);
    AddFormatCommand(app);
    AddTreeCommand(app);
    AddGetCommand(app);
    // DIFF
    // MERGE
    // STRINGS
    AddPackCommand(app);
    AddUnpackCommand(app);
    AddListCommand(app);
    // SCHEMA
    // GIT
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? kExitWell : kExitFailed;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "qlxview: %s\n", error.what());
        return kExitFailed;
    }
    return gExitStatus;
}
