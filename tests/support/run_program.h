// Runs the project's programs as their users do, and gathers what they say.
#pragma once

#include <string>

struct ProgramRun {
    int mStatus;
    std::string mOut;
    std::string mErr;
};

/// A program of the build's bin folder. The arguments stand as in a shell; paths are relative to
/// the source folder.
[[nodiscard]] ProgramRun RunProgram(const std::string& name, const std::string& arguments);

/// A folder in the build folder, made empty.
[[nodiscard]] std::string FreshFolder(const std::string& name);

[[nodiscard]] std::string ReadText(const std::string& path);
void WriteText(const std::string& path, const std::string& text);
