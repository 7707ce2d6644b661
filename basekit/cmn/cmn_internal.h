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

// QLX_API_INLINE marks a function of an exported class that is compiled into its callers and that
// the library offers by its name all the same.
#if defined(_WIN32)
#define QLX_API_INLINE // as all functions of an exported class
#else
#define QLX_API_INLINE __attribute__((visibility("default")))
#endif

// QLX_MERGES_CALLS marks a function into which the compiler merges what it calls, as far as it can
// see it; QLX_MERGED one that is merged into whoever calls it; QLX_STANDS_ALONE one that never is,
// as its callers would save registers for it. QLX_KEPT marks a constant that nobody seems to use.
#if defined(__GNUC__)
#define QLX_MERGES_CALLS [[gnu::flatten]]
#define QLX_MERGED [[gnu::always_inline]]
#define QLX_STANDS_ALONE [[gnu::noinline]]
#define QLX_KEPT [[gnu::used]]
#else
#define QLX_MERGES_CALLS
#define QLX_MERGED
#define QLX_STANDS_ALONE
#define QLX_KEPT [[maybe_unused]]
#endif
