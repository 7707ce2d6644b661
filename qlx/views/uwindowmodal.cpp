#include "qlx/views/uwindowmodal.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "qlx/views/uwindow.h"

namespace {

struct Modal {
    TWindow* mWindow;                     // not owned
    std::vector<const TWindow*> mBlocked; // not owned; only compared
    QLX_ModalWindows::ClosedCallback mClosed;
};

// Never destroyed: windows may be closed by other static destructors.
std::vector<Modal>& Modals() {
    static auto* const modals = new std::vector<Modal>;
    return *modals;
}

auto FindModal(const TWindow* window) {
    return std::find_if(Modals().begin(), Modals().end(),
                        [window](const Modal& each) { return each.mWindow == window; });
}

} // namespace

void QLX_ModalWindows::Begin(TWindow* window, ClosedCallback closed) {
    if (!window || FindModal(window) != Modals().end())
        return;
    const TView::StDispatch dispatch;
    Modal modal{window, {}, std::move(closed)};
    const std::vector<TWindow*> open = TWindow::GetWindows();
    for (const TWindow* each : open)
        if (each != window)
            modal.mBlocked.push_back(each);
    Modals().push_back(std::move(modal));
    for (TWindow* each : open) {
        if (each == window)
            continue;
        each->HideToolTip();
        each->CancelTracker();
    }
}

void QLX_ModalWindows::End(TWindow* window) {
    if (const auto modal = FindModal(window); modal != Modals().end())
        Modals().erase(modal);
}

TWindow* QLX_ModalWindows::GetInnermost() {
    return Modals().empty() ? nullptr : Modals().back().mWindow;
}

bool QLX_ModalWindows::IsBlocked(const TWindow* window) {
    return std::any_of(Modals().begin(), Modals().end(), [window](const Modal& modal) {
        return std::find(modal.mBlocked.begin(), modal.mBlocked.end(), window) !=
               modal.mBlocked.end();
    });
}

void QLX_ModalWindows::WindowClosed(TWindow* window) {
    for (Modal& modal : Modals())
        std::erase(modal.mBlocked, window); // its address may become another window's
    const auto modal = FindModal(window);
    if (modal == Modals().end())
        return;
    const ClosedCallback closed = std::move(modal->mClosed);
    Modals().erase(modal);
    if (closed)
        closed();
}
