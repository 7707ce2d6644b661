// What sys_file asks of the platform beside the file system itself. Not for hosts.
#pragma once

#include <string>

enum class Sys_PathKind { Nothing, File, Folder };

/// What lies at a path, links followed; devices and pipes count as files.
[[nodiscard]] Sys_PathKind Sys_GetPathKind(const std::string& path);
/// Whether a device or a pipe lies there, which is written to and never replaced.
[[nodiscard]] bool Sys_IsStream(const std::string& path);
/// The running program's own path.
[[nodiscard]] std::string Sys_GetProgramPath();
[[nodiscard]] unsigned long Sys_GetProcessID();
/// Turns every separator that the platform knows into '/'.
void Sys_NormalizeSeparators(std::string& path);
/// Whether the path is a root, which has no parent and keeps its last '/'.
[[nodiscard]] bool Sys_IsRootPath(const std::string& path);
