// What the library of view classes offers to programs. Only Microsoft's compiler must be told; the
// others offer everything.
#pragma once

#if defined(_MSC_VER)
#if defined(SESSION_BUILDING)
#define SESSION_API __declspec(dllexport)
#else
#define SESSION_API __declspec(dllimport)
#endif
#else
#define SESSION_API
#endif
