// The native window, seen from the framework: a surface with a painter, a way to show parts of it,
// a title and a place, pointer shapes, capture and input methods. Events come back as QLX_Events
// (qlx_windowevents.h). A platform makes windows through its factory.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "basekit/cmn/cmn_refcount.h"
#include "newfilelibs/cmn/cmn_rect.h"
#include "qlx/foundation/qlx_fwd.h"

enum ECursor : int;

/// How many parts of a unit scale factors are counted in: 120 is 1, 150 is 1.25, 240 is 2.
inline constexpr int kWindow_ScaleUnit = 120;

/// What a new native window is to be. Sizes and places are logical pixels.
struct QLX_API QLX_WindowSettings {
    std::string mTitle; ///< UTF-8
    Cmn_Point<int> mSize{640, 480};
    Cmn_Point<int> mPlace{0, 0}; ///< on the screen, of the contents' top-left corner
    bool mPlaced = false;        ///< false: the system chooses the place
    bool mResizable = true;
    bool mFrame = true;   ///< title bar and borders
    bool mPopup = false;  ///< above other windows and without activation: menus, tool tips
    bool mDialog = false; ///< belongs to the window that is active now
};

/// Gets what happens to a native window. Not owned by the port.
class QLX_API QLX_WindowPortClient {
  public:
    virtual ~QLX_WindowPortClient();
    /// Called from the event loop only. The client may close the port from inside.
    virtual void PortEvent(const QLX_EventRef& event) = 0;
};

/// One native window. User-interface thread only. Deleting it closes the window; events that are
/// still queued for it are dropped.
class QLX_API QLX_WindowPort {
  public:
    using PainterPtr = Cmn_AliasedRefCountPtr<QLX_Painter>;

    QLX_WindowPort() = default;
    QLX_WindowPort(const QLX_WindowPort&) = delete;
    QLX_WindowPort& operator=(const QLX_WindowPort&) = delete;
    virtual ~QLX_WindowPort();

    /// The size of the contents in logical pixels; may be zero.
    [[nodiscard]] virtual Cmn_Point<int> GetSize() const = 0;
    virtual void SetSize(Cmn_Point<int> size) = 0;
    virtual void SetMinimumSize(Cmn_Point<int> size) = 0;
    /// On the screen, logical pixels.
    [[nodiscard]] virtual Cmn_Point<int> GetPlace() const = 0;
    virtual void SetPlace(Cmn_Point<int> place) = 0;
    /// Device pixels for 120 logical ones: kWindow_ScaleUnit and up.
    [[nodiscard]] virtual int GetScale() const = 0;

    virtual void SetTitle(const std::string& title) = 0;
    virtual void Show(bool shown) = 0;
    /// Asks the system to bring the window to the front and give it the keyboard.
    virtual void Activate() = 0;

    /// The painter on the window's surface, which keeps its pixels from frame to frame; null for a
    /// window without size. After a change of size or scale it is another painter on a surface
    /// whose pixels are undefined. The port owns the surface: a painter kept beyond is not valid.
    [[nodiscard]] virtual const PainterPtr& GetPainter() = 0;
    /// Shows rectangles of the surface, in device pixels.
    virtual void Present(const std::vector<Cmn_Rect<int>>& rects) = 0;

    virtual void SetCursor(ECursor cursor) = 0;
    /// With true the mouse's events come here while a button is held, wherever the pointer goes.
    virtual void SetCapture(bool capture) = 0;
    /// Offers the input methods, with the caret at a rectangle in window coordinates; null ends it.
    virtual void SetTextInput(const Cmn_Rect<int>* caret) = 0;
    /// The system's handle of the window; its type is the platform's own.
    [[nodiscard]] virtual void* GetNativeHandle() const = 0;
};

/// Makes native windows; one a platform.
class QLX_API QLX_WindowPortFactory {
  public:
    virtual ~QLX_WindowPortFactory();
    /// A window that is not yet shown. Null, with a line of the trace, when the system refuses.
    [[nodiscard]] virtual std::unique_ptr<QLX_WindowPort>
    MakePort(const QLX_WindowSettings& settings, QLX_WindowPortClient* client) = 0;

    /// The factory in use; null before a platform is installed.
    [[nodiscard]] static QLX_WindowPortFactory* Get();
    /// Not owned. Returns the previous one.
    static QLX_WindowPortFactory* Install(QLX_WindowPortFactory* factory);
};
