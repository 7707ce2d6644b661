// Words to the compiler about the library's own variables and functions. None of them changes what
// a program does, and all are empty where a compiler does not know them.
#pragma once

// QLX_INTERNAL marks a variable that sources of the library share and hosts do not see: said at the
// declaration, it saves every reader a look-up in the library's table of addresses.
#if defined(_WIN32)
#define QLX_INTERNAL
#else
#define QLX_INTERNAL __attribute__((visibility("hidden")))
#endif

// QLX_MERGES_CALLS marks a function into which the compiler merges what it calls, as far as it can
// see it; QLX_STANDS_ALONE one that is never merged into its callers, as they would save registers
// for it.
#if defined(__GNUC__)
#define QLX_MERGES_CALLS [[gnu::flatten]]
#define QLX_STANDS_ALONE [[gnu::noinline]]
#else
#define QLX_MERGES_CALLS
#define QLX_STANDS_ALONE
#endif
