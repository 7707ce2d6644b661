// The POSIX side of sys_library.
#include "basekit/sys/sys_library.h"

#include <dlfcn.h>

namespace {

// Why the library could not be loaded. The loader names the file first, which the error does too.
std::string GetReason(const std::string& name) {
    const char* const reason = dlerror();
    std::string text = reason ? reason : "the library cannot be loaded";
    if (text.starts_with(name + ": "))
        text.erase(0, name.size() + 2);
    return text;
}

} // namespace

void Sys_LoadLibrary(const Sys_FileLoc& loc) {
    if (dlopen(loc.GetPath().c_str(), RTLD_NOW | RTLD_GLOBAL))
        return;
    throw Sys_FileError(loc.GetPath(), GetReason(loc.GetPath()));
}

Sys_Library::Sys_Library(const std::string& name)
    : mName(name), mHandle(dlopen(name.c_str(), RTLD_LAZY | RTLD_LOCAL)) {
    if (mHandle)
        return;
    throw Sys_FileError(name, GetReason(name));
}

void* Sys_Library::Find(const char* function) const {
    if (void* const found = dlsym(mHandle, function))
        return found;
    throw Sys_FileError(mName, std::string("the library has no function ") + function);
}
