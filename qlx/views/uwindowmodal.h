// Windows that keep the user's input from the others while they are open. Nothing blocks: the loop
// goes on, timers fire, and the windows behind go on drawing.
#pragma once

#include <functional>

#include "basekit/cmn/cmn_types.h"

class TWindow;

/// The modal windows, innermost last. User-interface thread.
class QLX_API QLX_ModalWindows {
  public:
    using ClosedCallback = std::function<void()>;

    /// From now on the windows that are open get no presses, keys, wheel or closing by the user;
    /// what they were tracking is cancelled. A window that is opened later is free. The callback is
    /// called when the modal window is closed, by whomever, and the others have their input back. A
    /// window that is modal already stays as it is.
    static void Begin(TWindow* window, ClosedCallback closed);
    /// Gives the others their input back without a call. A window that is not modal is ignored.
    static void End(TWindow* window);
    /// The innermost one; null when there is none.
    [[nodiscard]] static TWindow* GetInnermost();
    [[nodiscard]] static bool IsBlocked(const TWindow* window);

    /// For TWindow: the window is closed.
    static void WindowClosed(TWindow* window);
};
