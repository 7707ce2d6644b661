// The POSIX side of sys_library.
#include "basekit/sys/sys_library.h"

#include <dlfcn.h>

void Sys_LoadLibrary(const Sys_FileLoc& loc) {
    if (dlopen(loc.GetPath().c_str(), RTLD_NOW | RTLD_GLOBAL))
        return;
    const char* const reason = dlerror();
    throw Sys_FileError(loc.GetPath(), reason ? reason : "the library cannot be loaded");
}
