// What the subcommands share: how each joins the command line, and its exit status.
//
// A subcommand is one source file: it defines a ToolCommand, whose function adds the subcommand
// with its options and its callback. Nothing else has to know of it.
#pragma once

#include <CLI/CLI.hpp>

/// Exit statuses: all is well; the command found what it looks for (problems, differences,
/// conflicts, a file that is not formatted); it could not do its work.
enum ExitStatus { kExitWell = 0, kExitFound = 1, kExitFailed = 2 };

/// Set by the subcommand that ran.
extern int gExitStatus;

/// A static object a subcommand.
class ToolCommand {
  public:
    /// Commands are listed by rank, then name. The footer that add sets ends with an example.
    ToolCommand(int rank, const char* name, void (*add)(CLI::App& app, const char* name));
    /// Adds all of them.
    static void AddAll(CLI::App& app);

  private:
    int mRank;
    const char* mName;
    void (*mAdd)(CLI::App& app, const char* name);
    ToolCommand* mNext;
    static ToolCommand* sFirst;
};

/// How the tool was called, for what calls it again later.
extern const char* gProgramPath;
