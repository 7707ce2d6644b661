// What the subcommands share: how each joins the command line, and its exit status.
#pragma once

#include <CLI/CLI.hpp>

/// Exit statuses: all is well; the command found what it looks for (problems, differences, a file
/// that is not formatted); it could not do its work.
enum ExitStatus { kExitWell = 0, kExitFound = 1, kExitFailed = 2 };

/// Set by the subcommand that ran.
extern int gExitStatus;

// Each adds its subcommand with its options; parsing the command line then runs the one that is
// named.
void AddCheckCommand(CLI::App& app);
void AddFormatCommand(CLI::App& app);
void AddTreeCommand(CLI::App& app);
void AddGetCommand(CLI::App& app);
void AddPackCommand(CLI::App& app);
void AddUnpackCommand(CLI::App& app);
void AddListCommand(CLI::App& app);
void AddStringsCommand(CLI::App& app);
void AddDiffCommand(CLI::App& app);
void AddMergeCommand(CLI::App& app);
void AddSchemaCommand(CLI::App& app);
void AddInstallGitDriversCommand(CLI::App& app);
