#include "qlx/platform/sdl/qlx_sdlapi.h"

#include "basekit/sys/sys_library.h"

namespace {

QLX_SDLFunctions sFunctions;
bool sLoaded = false;

} // namespace

void QLX_LoadSDL() {
    if (sLoaded)
        return;
    const Sys_Library library("libSDL2-2.0.so.0");
#define QLX_SDL_FUNCTION(name) library.Find("SDL_" #name, sFunctions.name);
    QLX_SDL_FUNCTIONS(QLX_SDL_FUNCTION)
#undef QLX_SDL_FUNCTION
    sLoaded = true;
}

const QLX_SDLFunctions& QLX_SDL() { return sFunctions; }
