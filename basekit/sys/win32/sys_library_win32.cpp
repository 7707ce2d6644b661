// The Windows side of sys_library.
#include "basekit/sys/sys_library.h"

#include <string>

#include <windows.h>

namespace {

HMODULE Load(const std::string& path) {
    std::wstring wide(path.size(), L'\0'); // UTF-16 takes no more units than UTF-8 takes bytes
    const int length = MultiByteToWideChar(CP_UTF8, 0, path.data(), static_cast<int>(path.size()),
                                           wide.data(), static_cast<int>(wide.size()));
    wide.resize(static_cast<std::size_t>(length));
    const HMODULE library = LoadLibraryW(wide.c_str());
    if (!library)
        throw Sys_FileError(path, "the library cannot be loaded, error " +
                                      std::to_string(GetLastError()));
    return library;
}

} // namespace

void Sys_LoadLibrary(const Sys_FileLoc& loc) { (void)Load(loc.GetPath()); }

Sys_Library::Sys_Library(const std::string& name) : mName(name), mHandle(Load(name)) {}

void* Sys_Library::Find(const char* function) const {
    if (const FARPROC found = GetProcAddress(static_cast<HMODULE>(mHandle), function))
        return reinterpret_cast<void*>(found);
    throw Sys_FileError(mName, std::string("the library has no function ") + function);
}
