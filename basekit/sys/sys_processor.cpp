#include "basekit/sys/sys_processor.h"

#if defined(_MSC_VER) && (defined(_M_X64) || defined(_M_IX86))
#include <immintrin.h>
#include <intrin.h>
#endif

// The compilers' own questions are asked, since the registers' bits take privileged knowledge of
// the operating system on top of the processor's.
bool Sys_HasAVX2() noexcept {
#if defined(__GNUC__) && (defined(__x86_64__) || defined(__i386__))
    __builtin_cpu_init(); // this may be asked while static objects are made
    return __builtin_cpu_supports("avx2") != 0;
#elif defined(_MSC_VER) && (defined(_M_X64) || defined(_M_IX86))
    int words[4];
    __cpuid(words, 0);
    if (words[0] < 7)
        return false;
    __cpuid(words, 1);
    constexpr int kOSXSAVE = 1 << 27;
    if ((words[2] & kOSXSAVE) == 0 || (_xgetbv(0) & 6) != 6)
        return false;
    __cpuidex(words, 7, 0);
    return (words[1] & 1 << 5) != 0;
#else
    return false;
#endif
}
