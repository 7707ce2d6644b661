// The Windows side of sys_library.
#include "basekit/sys/sys_library.h"

#include <string>

#include <windows.h>

void Sys_LoadLibrary(const Sys_FileLoc& loc) {
    const std::string& path = loc.GetPath();
    std::wstring wide(path.size(), L'\0'); // UTF-16 takes no more units than UTF-8 takes bytes
    const int length = MultiByteToWideChar(CP_UTF8, 0, path.data(), static_cast<int>(path.size()),
                                           wide.data(), static_cast<int>(wide.size()));
    wide.resize(static_cast<std::size_t>(length));
    if (!LoadLibraryW(wide.c_str()))
        throw Sys_FileError(path, "the library cannot be loaded, error " +
                                      std::to_string(GetLastError()));
}
