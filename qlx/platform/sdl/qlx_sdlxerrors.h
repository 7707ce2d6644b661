// What becomes of the X server's complaints.
#pragma once

#include <memory>

/// Keeps the process alive when the server no longer knows the window that an event was sent to.
///
/// SDL wakes its wait by an event to a window over a connection of its own. Requests of two
/// connections reach the server in any order, so a wake-up may arrive when its window is closed
/// already; Xlib's answer to that is the end of the process. Everything else goes to the handler
/// that stood before.
class QLX_SDLXErrors {
  public:
    /// Does nothing where X is not what shows the windows. User-interface thread.
    QLX_SDLXErrors();
    /// Puts the handler back that stood before, unless somebody has put another in our place.
    ~QLX_SDLXErrors();
    QLX_SDLXErrors(const QLX_SDLXErrors&) = delete;
    QLX_SDLXErrors& operator=(const QLX_SDLXErrors&) = delete;

  private:
    bool mInPlace = false;
};
