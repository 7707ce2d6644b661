// What becomes of the X server's complaints.
#pragma once

#include <memory>

/// Keeps the process alive when the server no longer knows the window that an event was sent to.
///
/// SDL wakes its wait by an event to a window over a connection of its own. Requests of two
/// connections reach the server in any order, so a wake-up may arrive when its window is closed
/// already; Xlib's answer to that is the end of the process. SDL hears of it when it closes that
/// connection at the latest, and has put back by then what stood before it began: so this is put in
/// place before. Everything else goes to the handler that stood before this one.
class QLX_SDLXErrors {
  public:
    /// Before SDL's video begins. Does nothing where there is no X library. User-interface thread.
    QLX_SDLXErrors();
    /// After SDL's video has ended. Puts the handler back that stood before, unless somebody has
    /// put another in our place.
    ~QLX_SDLXErrors();
    QLX_SDLXErrors(const QLX_SDLXErrors&) = delete;
    QLX_SDLXErrors& operator=(const QLX_SDLXErrors&) = delete;

  private:
    bool mInPlace = false;
};
