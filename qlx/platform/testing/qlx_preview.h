// How a tool that shows a description's window asks the host's classes for something to show: the
// window of a host that has not been started is empty.
//
//     void TMyWindow::DoEvent(std::int32_t number, TEventHandler* source, TEvent* event) {
//         if (number == kEvent_Preview)
//             ShowAsExample(*static_cast<TPreviewEvent*>(event));
//         else
//             TWindow::DoEvent(number, source, event);
//     }
#pragma once

#include <string>

#include "qlx/foundation/qlx_fwd.h"
#include "qlx/views/uevent.h"

/// The number under which a window gets a TPreviewEvent, with itself as the source: before it is
/// opened, and again whenever another look or a description that changed was read into it. One that
/// does not know the number passes it on, and nothing happens.
inline constexpr std::int32_t kEvent_Preview = 0x70727677; // 'prvw'

/// What a window is told. Layout, language and theme to show are the ones that are selected when it
/// arrives: the current filter of the memento's root, QLX_Language and QLX_Theme.
class QLX_API TPreviewEvent : public TEvent {
  public:
    QLX_DECLARE_CLASS(TPreviewEvent);
    using MementoPtr = Cmn_AliasedRefCountPtr<QLX_ViewMemento>;
    TPreviewEvent();
    ~TPreviewEvent() override;

    /// The description that the window was made from.
    [[nodiscard]] const MementoPtr& GetMemento() const { return mMemento; }
    /// The folder that the description lies in, for the files beside it.
    [[nodiscard]] const std::string& GetFolder() const { return mFolder; }
    /// Not supported: an assertion, and null.
    [[nodiscard]] TObject* Clone() override;

    /// Sends one to a window, at once.
    static void Send(TWindow& window, const MementoPtr& memento, const std::string& folder);

  private:
    MementoPtr mMemento; // counted
    std::string mFolder;
};
