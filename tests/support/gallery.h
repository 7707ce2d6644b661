// The window of examples/gallery: every control of the framework in every state, as its description
// says, with the menus, levels and audio that a description cannot hold.
#pragma once

#include <functional>
#include <string>
#include <vector>

class TWindow;

/// Makes the window; the caller opens it and ends it with Free. Throws std::runtime_error when the
/// description in the folder cannot be read or names what there is not.
[[nodiscard]] TWindow* MakeGallery(const std::string& folder);
/// Puts the gallery's menus into the menu bar, in place of what is there.
void SetGalleryMenus();

/// Goes through an open gallery by keys alone, from the first control to the last and around: at
/// each one it presses what changes it, and Tab. Press gets the names that QLX_TestDriver::Chord
/// takes and returns when the window has taken the key in. Answers what did not go as it should,
/// and how many controls it met.
struct GalleryWalk {
    int mVisited = 0;
    std::vector<std::string> mProblems;
};
[[nodiscard]] GalleryWalk WalkGallery(TWindow& window,
                                      const std::function<void(const std::string& key)>& press);
