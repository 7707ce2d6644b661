// The one door to <windows.h>: without the rarely used parts, and without the macros that would
// rename this library's own operations. For files in win32 folders.
#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#undef CreateFont
#undef CreateWindow
#undef DrawText
#undef FindWindow
#undef GetClassName
#undef GetMessage
#undef GetObject
#undef LoadImage
#undef PostMessage
#undef SendMessage
#undef far
#undef near
#undef small
