#include "qlx/views/uevent.h"

#include "basekit/cmn/cmn_assert.h"
#include "newfilelibs/cmn/cmn_rect.h"
#include "newfilelibs/daw/daw_eventmodifiers.h"
#include "qlx/views/qlx_keyboard.h"
#include "qlx/views/uapplication.h"
#include "qlx/views/ueventhandler.h"

QLX_DEFINE_CLASS(TToolboxEvent, TObject)
QLX_DEFINE_CLASS(TEvent, TObject)

// TToolboxEvent

TToolboxEvent::TToolboxEvent() = default;
TToolboxEvent::~TToolboxEvent() = default;

bool TToolboxEvent::HasModifier(std::uint32_t bit) const {
    std::uint32_t bits = 0;
    mEvent.GetProperty(kQLX_EventProperty_Modifiers, &bits, sizeof bits);
    return (bits & bit) != 0;
}

bool TToolboxEvent::IsCommandKeyPressed() { return HasModifier(kQLX_Modifier_Command); }

bool TToolboxEvent::IsShiftKeyPressed() { return HasModifier(kQLX_Modifier_Shift); }

bool TToolboxEvent::IsOptionKeyPressed() { return HasModifier(kQLX_Modifier_Option); }

bool TToolboxEvent::IsControlKeyPressed() { return HasModifier(kQLX_Modifier_Control); }

bool TToolboxEvent::IsAutoKeyEvent() { return mEvent.GetID().mKind == kQLX_EventKind_AutoKey; }

TObject* TToolboxEvent::Clone() {
    Cmn_Assert("TToolboxEvent::Clone is not supported", "qlx/views/uevent", __LINE__);
    return nullptr;
}

void TToolboxEvent::IToolboxEvent(TEventHandler*, const QLX_EventRef& event) {
    mEvent = event;
    mEventKind = event.GetID().mKind;
    std::uint32_t bits = 0;
    event.GetProperty(kQLX_EventProperty_Modifiers, &bits, sizeof bits);
    bits |= QLX_Keyboard::sHWCModifierComposite;
    event.SetProperty(kQLX_EventProperty_Modifiers, &bits, sizeof bits);
    mCharacterCode = 0;
    mKeyCode = 0;
    mKeyState = 0;
}

std::uint16_t TToolboxEvent::GetEventModifiers() const {
    std::uint32_t bits = 0;
    mEvent.GetProperty(kQLX_EventProperty_Modifiers, &bits, sizeof bits);
    return static_cast<std::uint16_t>(bits);
}

Cmn_AliasedRefCountPtr<DAW_EventModifiers> TToolboxEvent::GetDAWEventModifiers() const {
    return QLX_Keyboard::GetDAWModifiers(GetEventModifiers());
}

Cmn_Point<int> TToolboxEvent::GetEventWhere() const {
    Cmn_Point<int> where{};
    mEvent.GetProperty(kQLX_EventProperty_Where, &where, sizeof where);
    return where;
}

// TEvent

bool TEvent::ShouldFreeOnCompletion() { return true; }

bool TEvent::IsReadyToPost() { return true; }

bool TEvent::IsReadyToExecute() { return true; }

bool TEvent::IsRecurring() { return false; }

TEventHandler* TEvent::GetHandler() { return mHandler ? mHandler : gApplication; }

void TEvent::Process() {
    if (TEventHandler* const handler = GetHandler())
        handler->HandleEvent(mEventNumber, mSource, this);
}

bool TEvent::Merge(TEvent*) { return true; }
