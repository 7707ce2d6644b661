#include "qlx/imaging/cairo/qlx_pangoapi.h"

#include "basekit/sys/sys_library.h"

namespace {

// GLib's functions are found through Pango's library, which depends on it.
QLX_PangoFunctions Load() {
    QLX_PangoFunctions functions;
    const Sys_Library library("libpangoft2-1.0.so.0");
#define QLX_PANGO_FUNCTION(name) library.Find(#name, functions.name);
    QLX_PANGO_FUNCTIONS(QLX_PANGO_FUNCTION)
#undef QLX_PANGO_FUNCTION
    return functions;
}

} // namespace

const QLX_PangoFunctions& QLX_Pango() {
    static const QLX_PangoFunctions sFunctions = Load();
    return sFunctions;
}
