#include "qlx/views/qlx_windowevents.h"

#include <array>
#include <string>

#include "basekit/sys/sys_clock.h"
#include "qlx/views/uevent.h"

namespace {

QLX_EventRef New(std::uint32_t eventClass, std::uint32_t kind) {
    return QLX_EventRef::New({eventClass, kind}, Sys_Clock_Seconds());
}

template <class Value>
void Set(const QLX_EventRef& event, std::uint32_t key, const Value& value) {
    event.SetProperty(key, &value, sizeof value);
}

template <class Value>
Value Get(const QLX_EventRef& event, std::uint32_t key) {
    Value value{};
    event.GetProperty(key, &value, sizeof value);
    return value;
}

void SetText(const QLX_EventRef& event, const std::string& text) {
    Set(event, kQLX_EventProperty_TextLength, static_cast<std::int32_t>(text.size()));
    if (!text.empty())
        event.SetProperty(kQLX_EventProperty_Text, text.data(), text.size());
}

} // namespace

QLX_EventRef QLX_MakeMouseEvent(std::uint32_t kind, Cmn_Point<int> where, std::uint32_t modifiers,
                                EMouseButton button) {
    QLX_EventRef event = New(kQLX_EventClass_Mouse, kind);
    Set(event, kQLX_EventProperty_Modifiers, modifiers);
    Set(event, kQLX_EventProperty_Where, where);
    Set(event, kQLX_EventProperty_Button, static_cast<std::int32_t>(button));
    return event;
}

QLX_EventRef QLX_MakeWheelEvent(Cmn_Point<int> where, Cmn_Point<int> delta,
                                std::uint32_t modifiers) {
    QLX_EventRef event = New(kQLX_EventClass_Mouse, kQLX_EventKind_MouseWheel);
    Set(event, kQLX_EventProperty_Modifiers, modifiers);
    Set(event, kQLX_EventProperty_Where, where);
    Set(event, kQLX_EventProperty_WheelDelta, delta);
    return event;
}

QLX_EventRef QLX_MakeKeyEvent(std::uint32_t kind, std::uint32_t keyCode, std::uint32_t character,
                              std::uint32_t modifiers) {
    QLX_EventRef event = New(kQLX_EventClass_Keyboard, kind);
    Set(event, kQLX_EventProperty_Modifiers, modifiers);
    Set(event, kQLX_EventProperty_KeyCode, keyCode);
    Set(event, kQLX_EventProperty_Character, std::array<std::uint32_t, 3>{character, 0, 0});
    return event;
}

QLX_EventRef QLX_MakeTextEvent(const std::string& text) {
    QLX_EventRef event = New(kQLX_EventClass_Keyboard, kQLX_EventKind_TextInput);
    SetText(event, text);
    return event;
}

QLX_EventRef QLX_MakeCompositionEvent(const std::string& text, int caret, int selected) {
    QLX_EventRef event = New(kQLX_EventClass_Keyboard, kQLX_EventKind_TextComposition);
    SetText(event, text);
    Set(event, kQLX_EventProperty_Caret, static_cast<std::int32_t>(caret));
    Set(event, kQLX_EventProperty_Selected, static_cast<std::int32_t>(selected));
    return event;
}

QLX_EventRef QLX_MakeWindowEvent(std::uint32_t kind) { return New(kQLX_EventClass_Window, kind); }

Cmn_Point<int> QLX_GetWheelDelta(const QLX_EventRef& event) {
    return Get<Cmn_Point<int>>(event, kQLX_EventProperty_WheelDelta);
}

EMouseButton QLX_GetMouseButton(const QLX_EventRef& event) {
    return static_cast<EMouseButton>(Get<std::int32_t>(event, kQLX_EventProperty_Button));
}

int QLX_GetClickCount(const QLX_EventRef& event) {
    return Get<std::int32_t>(event, kQLX_EventProperty_ClickCount);
}

std::string QLX_GetEventText(const QLX_EventRef& event) {
    const auto length = Get<std::int32_t>(event, kQLX_EventProperty_TextLength);
    if (length <= 0)
        return {};
    std::string text(static_cast<std::size_t>(length), '\0');
    if (!event.GetProperty(kQLX_EventProperty_Text, text.data(), text.size()))
        text.clear();
    return text;
}

Cmn_Point<int> QLX_GetWheelDelta(TToolboxEvent* event) {
    return event ? QLX_GetWheelDelta(event->GetEvent()) : Cmn_Point<int>{};
}

EMouseButton QLX_GetMouseButton(TToolboxEvent* event) {
    return event ? QLX_GetMouseButton(event->GetEvent()) : kMouse_Left;
}

int QLX_GetClickCount(TToolboxEvent* event) {
    return event ? QLX_GetClickCount(event->GetEvent()) : 0;
}
