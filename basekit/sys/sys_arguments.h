// The arguments of a program.
#pragma once

#include <string>
#include <vector>

#include "basekit/cmn/cmn_types.h"

/// What main() was given, in UTF-8 on every platform. On Windows main's own arguments are in the
/// machine's code page, where every other character of a file's name is lost; there the command
/// line is asked again.
class QLX_API Sys_Arguments {
  public:
    Sys_Arguments(int argc, char** argv);

    [[nodiscard]] int GetCount() const noexcept { return static_cast<int>(mTexts.size()); }
    /// As main has them: the program's name first, null at the end. Valid as long as this lives.
    [[nodiscard]] char** GetValues() noexcept { return mPointers.data(); }

  private:
    std::vector<std::string> mTexts;
    std::vector<char*> mPointers; // into mTexts

    void SetTexts(std::vector<std::string> texts);
};
