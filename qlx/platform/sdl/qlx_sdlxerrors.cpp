#include "qlx/platform/sdl/qlx_sdlxerrors.h"

#include <cstring>

#include "basekit/cmn/cmn_trace.h"
#include "basekit/sys/sys_library.h"
#include "qlx/platform/sdl/qlx_sdlapi.h"

#include <X11/Xlib.h>
#include <X11/Xproto.h>

namespace {

using SetHandler = XErrorHandler(XErrorHandler);

SetHandler* sSetHandler = nullptr;
XErrorHandler sBefore = nullptr;

int Handle(Display* display, XErrorEvent* error) {
    if (error->error_code == BadWindow && error->request_code == X_SendEvent) {
        Cmn_TraceWrite("X: an event came too late for window 0x%lx", error->resourceid);
        return 0;
    }
    return sBefore ? sBefore(display, error) : 0;
}

} // namespace

QLX_SDLXErrors::QLX_SDLXErrors() {
    const char* driver = QLX_SDL().GetCurrentVideoDriver();
    if (!driver || std::strcmp(driver, "x11") != 0)
        return;
    if (!sSetHandler) {
        try {
            Sys_Library("libX11.so.6").Find("XSetErrorHandler", sSetHandler); // SDL's own, again
        } catch (const Sys_FileError&) {
            return;
        }
    }
    const XErrorHandler before = sSetHandler(&Handle);
    if (before != &Handle)
        sBefore = before;
    mInPlace = true;
}

QLX_SDLXErrors::~QLX_SDLXErrors() {
    if (!mInPlace)
        return;
    const XErrorHandler ours = sSetHandler(sBefore);
    if (ours != &Handle)
        sSetHandler(ours);
}
