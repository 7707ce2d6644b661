// Libraries that are loaded while the program runs.
#pragma once

#include "basekit/sys/sys_file.h"

/// Loads a library for the rest of the process; its static objects run, so classes that it defines
/// are registered (index them with ClassDesc::InitUClassDesc). A bare name is looked for where the
/// platform looks for libraries. Throws Sys_FileError.
QLX_API void Sys_LoadLibrary(const Sys_FileLoc& loc);
