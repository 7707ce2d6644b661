// Libraries that are loaded while the program runs.
#pragma once

#include <string>

#include "basekit/sys/sys_file.h"

/// Loads a library for the rest of the process; its static objects run, so classes that it defines
/// are registered (index them with ClassDesc::InitUClassDesc). A bare name is looked for where the
/// platform looks for libraries. Throws Sys_FileError.
QLX_API void Sys_LoadLibrary(const Sys_FileLoc& loc);

/// A library whose functions are asked for by name, for those that only some runs of a program
/// need. It stays loaded to the end of the process; its names join nobody else's.
class QLX_API Sys_Library {
  public:
    /// Throws Sys_FileError.
    explicit Sys_Library(const std::string& name);
    /// Throws Sys_FileError when the library has no such function.
    [[nodiscard]] void* Find(const char* function) const;
    /// The same into a pointer to the function.
    template <class Function>
    void Find(const char* name, Function*& function) const {
        function = reinterpret_cast<Function*>(Find(name));
    }

  private:
    std::string mName;
    void* mHandle = nullptr;
};
