// Runs qlxview as its users do, and gathers what it says.
#pragma once

#include <string>
#include <vector>

struct ToolRun {
    int mStatus;
    std::string mOut;
    std::string mErr;
};

/// The arguments stand as in a shell; paths are relative to the source folder.
[[nodiscard]] ToolRun RunTool(const std::string& arguments);

/// A folder in the build folder, made empty.
[[nodiscard]] std::string FreshFolder(const std::string& name);

[[nodiscard]] std::string ReadText(const std::string& path);
void WriteText(const std::string& path, const std::string& text);
