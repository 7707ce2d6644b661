#include "qlx/views/udialog.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "basekit/cmn/cmn_string.h"
#include "newfilelibs/daw/daw_types.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/views/qlx_eventloop.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/ubuttons.h"
#include "qlx/views/uevent.h"
#include "qlx/views/umenulayer.h"
#include "qlx/views/uwindowmodal.h"

QLX_DEFINE_CLASS(TDialog, TWindow)

QLX_DialogTexts& QLX_DialogTexts::Get() {
    static auto* const texts = new QLX_DialogTexts;
    return *texts;
}

TDialog::TDialog() {
    GetSettings().mDialog = true;
    GetSettings().mResizable = false;
}

TDialog::~TDialog() { Ended(kDialog_Closed); }

void TDialog::Free() {
    SetFreeOnClose(false);
    Ended(kDialog_Closed);
    TWindow::Free();
}

// Opening

bool TDialog::OpenModal(Completion completion) {
    if (IsOpen())
        return false;
    const StDispatch dispatch;
    if (TMenuLayer* menus = TMenuLayer::GetOpen())
        menus->Close();
    mOwner = TWindow::GetActiveWindow();
    PlaceOver(mOwner);
    if (!Open(/*show*/ false))
        return false;
    mModal = true;
    mCompletion = std::move(completion);
    QLX_ModalWindows::Begin(this, [this] { Ended(kDialog_Closed); });
    ChooseInitialTarget();
    ShowWindow(true);
    return true;
}

std::uint32_t TDialog::RunModal() {
    struct Outcome {
        bool mEnded = false;
        std::uint32_t mButton = kDialog_Closed;
    };
    const auto outcome = std::make_shared<Outcome>();
    QLX_EventLoop* loop = QLX_EventLoop::Get();
    const bool opened = loop && OpenModal([outcome](std::uint32_t button) {
                            outcome->mEnded = true;
                            outcome->mButton = button;
                        });
    if (!opened)
        return kDialog_Closed;
    loop->RunWhile([&outcome] { return !outcome->mEnded; });
    if (!outcome->mEnded) // the loop was told to quit, so nobody will ever push a button
        Ended(kDialog_Closed);
    return outcome->mButton;
}

void TDialog::PlaceOver(const TWindow* owner) {
    if (!owner || !owner->GetPort() || GetSettings().mPlaced)
        return;
    const Cmn_Point<int> place = owner->GetPort()->GetPlace();
    const VPoint spare = owner->GetSize() - GetSize();
    // A third of the way down is where people look first.
    GetSettings().mPlace = {std::max(0, place.x + Cmn_ClampTo<int>(spare.h / 2)),
                            std::max(0, place.y + Cmn_ClampTo<int>(spare.v / 3))};
    GetSettings().mPlaced = true;
}

void TDialog::ChooseInitialTarget() {
    TView* wanted = mInitialTarget ? FindSubView(mInitialTarget, /*deep*/ true) : nullptr;
    if (!wanted) {
        const std::vector<TView*> views = GetTabViews();
        wanted = views.empty() ? nullptr : views.front();
    }
    if (wanted)
        SetWindowTarget(wanted);
}

// Ending

void TDialog::Ended(std::uint32_t button) {
    if (!std::exchange(mModal, false))
        return;
    const StDispatch dispatch; // closing may free the dialog
    const Completion completion = std::exchange(mCompletion, {});
    TWindow* const owner = std::exchange(mOwner, nullptr);
    QLX_ModalWindows::End(this);
    Close();
    const auto& open = TWindow::GetWindows();
    if (std::find(open.begin(), open.end(), owner) != open.end())
        owner->Activate();
    if (completion)
        completion(button);
}

bool TDialog::EndWith(std::uint32_t button) {
    const StDispatch dispatch; // a validator may do anything
    TButton* const pushed = QLX_ObjectCast<TButton>(FindSubView(button, /*deep*/ true));
    const bool cancels = pushed && pushed->GetRole() == TButton::kRole_Cancel;
    if (!cancels) {
        TEventHandler* const target = GetWindowTarget();
        if (const std::int32_t refusal = target ? target->WillingToResignTarget() : 0) {
            target->ValidationFailed(refusal);
            return false;
        }
        if (mValidator && !mValidator(button))
            return false;
    }
    if (mModal)
        Ended(button);
    else
        Close();
    return true;
}

bool TDialog::IsClosing(const TButton* button) const {
    return button->GetRole() != TButton::kRole_None ||
           std::find(mClosing.begin(), mClosing.end(),
                     const_cast<TButton*>(button)->GetIdentifier()) != mClosing.end();
}

void TDialog::GatherClosing(TView* view, std::vector<TButton*>& buttons) const {
    for (int i = 1; i <= view->CountSubViews(); ++i) {
        TView* sub = view->GetSubView(i);
        TButton* button = QLX_ObjectCast<TButton>(sub);
        if (button && IsClosing(button) && button->IsShown())
            buttons.push_back(button);
        GatherClosing(sub, buttons);
    }
}

bool TDialog::Cancel() {
    if (TButton* button = TButton::FindRole(this, TButton::kRole_Cancel)) {
        button->Push();
        return true;
    }
    std::vector<TButton*> closing;
    GatherClosing(this, closing);
    if (closing.size() != 1 || !closing.front()->IsEnabled())
        return false;
    closing.front()->Push();
    return true;
}

void TDialog::AddClosingButton(std::uint32_t identifier) { mClosing.push_back(identifier); }

void TDialog::SetValidator(Validator validator) { mValidator = std::move(validator); }

// Events

void TDialog::DoEvent(std::int32_t number, TEventHandler* source, TEvent* event) {
    TButton* button = number == kControlEvent_Pressed ? QLX_ObjectCast<TButton>(source) : nullptr;
    if (button && button->IsContainedIn(this) && IsClosing(button))
        EndWith(button->GetIdentifier());
    else if (!mModal)
        TWindow::DoEvent(number, source, event);
}

void TDialog::DoKeyEvent(TToolboxEvent* event) {
    const StDispatch dispatch; // a pushed button may end and free the dialog
    const std::uint32_t key = event->mKeyCode;
    const bool repeats = event->IsAutoKeyEvent(); // the key may be held from before it opened
    if (key == kDAW_Key_Return || key == kDAW_Key_Enter) {
        TButton* button = TButton::FindRole(this, TButton::kRole_Default);
        if (button && !repeats)
            button->Push();
        return;
    }
    if (key == kDAW_Key_Escape) {
        if (!repeats)
            Cancel();
        return;
    }
    if (key == kDAW_Key_Tab || !mModal)
        TWindow::DoKeyEvent(event);
}

void TDialog::DoCommandKeyEvent(TToolboxEvent* event) {
    if (!mModal) // what lies behind a modal dialog is not for the keyboard
        TWindow::DoCommandKeyEvent(event);
}

void TDialog::CloseRequested() {
    if (mModal)
        Cancel();
    else
        TWindow::CloseRequested();
}

void TDialog::GetAccessibleInfo(TAccessibleInfo& info) const {
    TWindow::GetAccessibleInfo(info);
    info.mRole = "dialog";
    info.mName = GetTitle();
}

void TDialog::ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) {
    TWindow::ReadProperties(container, memento);
    container->GetIDTypeProperty("InitialTarget", mInitialTarget);
    std::string closing;
    if (!container->GetStringProperty("ClosingButtons", closing))
        return;
    mClosing.clear();
    for (std::size_t from = 0; from < closing.size(); from += 5) // four characters and a blank
        mClosing.push_back(Cmn_StringToID(closing.substr(from, 4)));
}
