#include "qlx/platform/sdl/qlx_sdlxerrors.h"

#include <utility>

#include "basekit/cmn/cmn_trace.h"
#include "basekit/sys/sys_library.h"

#include <X11/Xlib.h>
#include <X11/Xproto.h>

namespace {

using SetHandler = XErrorHandler(XErrorHandler);

SetHandler* sSetHandler = nullptr;
XErrorHandler sFirst = nullptr;  // what stood before this one the first time
XErrorHandler sBefore = nullptr; // and the last time
bool sIsInside = false;

int Handle(Display* display, XErrorEvent* error) {
    if (error->error_code == BadWindow && error->request_code == X_SendEvent) {
        Cmn_TraceWrite("X: an event came too late for window 0x%lx", error->resourceid);
        return 0;
    }
    // Where SDL's video goes on while platforms come and go, its own handler stands before this one
    // and comes back to it.
    const bool isAgain = std::exchange(sIsInside, true);
    const XErrorHandler next = isAgain ? sFirst : sBefore;
    const int answer = next ? next(display, error) : 0;
    sIsInside = isAgain;
    return answer;
}

} // namespace

QLX_SDLXErrors::QLX_SDLXErrors() {
    if (!sSetHandler) {
        try {
            Sys_Library("libX11.so.6")
                .Find("XSetErrorHandler", sSetHandler); // the one that SDL takes
        } catch (const Sys_FileError&) {
            return;
        }
    }
    const XErrorHandler before = sSetHandler(&Handle);
    if (before != &Handle)
        sBefore = before;
    if (!sFirst)
        sFirst = sBefore;
    mInPlace = true;
}

QLX_SDLXErrors::~QLX_SDLXErrors() {
    if (!mInPlace)
        return;
    const XErrorHandler ours = sSetHandler(sBefore);
    if (ours != &Handle)
        sSetHandler(ours);
}
