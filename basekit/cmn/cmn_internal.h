// QLX_INTERNAL marks a variable that sources of the library share and hosts do not see: said at the
// declaration, it saves every reader a look-up in the library's table of addresses.
#pragma once

#if defined(_WIN32)
#define QLX_INTERNAL
#else
#define QLX_INTERNAL __attribute__((visibility("hidden")))
#endif
