#pragma once

#include "tests/support/run_program.h"

using ToolRun = ProgramRun;

[[nodiscard]] inline ToolRun RunTool(const std::string& arguments) {
    return RunProgram("qlxview", arguments);
}
