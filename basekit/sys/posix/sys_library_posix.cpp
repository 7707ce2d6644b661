// The POSIX side of sys_library.
#include "basekit/sys/sys_library.h"

#include <dlfcn.h>

void Sys_LoadLibrary(const Sys_FileLoc& loc) {
    if (dlopen(loc.GetPath().c_str(), RTLD_NOW | RTLD_GLOBAL))
        return;
    const char* const reason = dlerror();
    throw Sys_FileError(loc.GetPath(), reason ? reason : "the library cannot be loaded");
}

Sys_Library::Sys_Library(const std::string& name)
    : mName(name), mHandle(dlopen(name.c_str(), RTLD_LAZY | RTLD_LOCAL)) {
    if (mHandle)
        return;
    const char* const reason = dlerror();
    throw Sys_FileError(name, reason ? reason : "the library cannot be loaded");
}

void* Sys_Library::Find(const char* function) const {
    if (void* const found = dlsym(mHandle, function))
        return found;
    throw Sys_FileError(mName, std::string("the library has no function ") + function);
}
