// SDL's functions by pointer. SDL's library, with the forty behind it, is loaded when the first SDL
// platform is made: a program that opens no window of the desktop never waits for it.
#pragma once

#include <SDL.h>

// clang-format off
#define QLX_SDL_FUNCTIONS(F) \
    F(CaptureMouse) F(CreateSystemCursor) F(CreateWindow) F(DestroyWindow) F(FreeCursor) \
    F(GetClipboardText) F(GetCurrentVideoDriver) F(GetError) F(GetKeyboardState) F(GetModState) \
    F(GetMouseState) F(GetPixelFormatName) F(GetScancodeFromKey) F(GetWindowID) \
    F(GetWindowPosition) F(GetWindowSize) F(GetWindowSurface) F(HasClipboardText) F(HideWindow) \
    F(InitSubSystem) F(IsTextInputActive) F(PeepEvents) F(PollEvent) F(PumpEvents) F(PushEvent) \
    F(QuitSubSystem) F(RaiseWindow) F(RegisterEvents) F(SetClipboardText) F(SetCursor) \
    F(SetHint) F(SetTextInputRect) F(SetWindowMinimumSize) F(SetWindowModalFor) \
    F(SetWindowPosition) F(SetWindowSize) F(SetWindowTitle) F(ShowCursor) F(ShowWindow) \
    F(StartTextInput) F(UpdateWindowSurfaceRects) F(WaitEvent) F(WaitEventTimeout) F(free)
// clang-format on

/// Each under its name without the prefix.
struct QLX_SDLFunctions {
// A declared name in parentheses would be none. NOLINTNEXTLINE(bugprone-macro-parentheses)
#define QLX_SDL_FUNCTION(name) decltype(&::SDL_##name) name = nullptr;
    QLX_SDL_FUNCTIONS(QLX_SDL_FUNCTION)
#undef QLX_SDL_FUNCTION
};

/// Loads the library for the rest of the process. Throws std::runtime_error when it is not there or
/// lacks a function. A second call does nothing.
void QLX_LoadSDL();
/// All null before QLX_LoadSDL.
[[nodiscard]] const QLX_SDLFunctions& QLX_SDL();
