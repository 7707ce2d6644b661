// TView: reading itself and what is inside it from a view description.
//
// Properties of every view, all optional: "Frame" (rect: top, left, bottom, right in superview
// coordinates) or "Location" and "Size" (points: vertical, horizontal); "LocalOrigin" (point);
// "Shown" (bool); "SubViewsTakePresses", "SeparateContainer", "AccessibilityDetached" (bools);
// "ToolTip", "AccessibleName" (localised strings, or plain ones); "TabOrder" (int32); "Cursor"
// (string, a name of kCursorNames); "LayoutLeft", "LayoutTop", "LayoutRight", "LayoutBottom"
// (strings, see ulayout.h); "MinimumSize" (point).
#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

#include "qlx/persistence/qlx_persistence.h"
#include "qlx/views/uadorner.h"
#include "qlx/views/ubehavior.h"
#include "qlx/views/uview.h"
#include "qlx/views/uviewenvironment.h"
#include "qlx/views/uviewextras.h"
#include "qlx/views/uviewserver.h"

namespace {

constexpr std::array<std::string_view, kCursor_Count> kCursorNames = {
    "arrow",         "ibeam",    "cross",        "hand",        "wait",      "size-horizontal",
    "size-vertical", "size-all", "size-falling", "size-rising", "forbidden", "hidden"};

bool CursorFromName(std::string_view name, ECursor& cursor) {
    for (std::size_t i = 0; i < kCursorNames.size(); ++i) {
        if (kCursorNames[i] == name) {
            cursor = static_cast<ECursor>(i);
            return true;
        }
    }
    return false;
}

/// A text in the language that the container has selected, or the plain string of that name.
bool ReadText(QLX_RawPropertyContainer& container, const TView::MementoPtr& memento,
              const char* name, std::string& text) {
    std::string key;
    if (memento && container.GetStringKeyProperty(name, key)) {
        text = memento->GetLocalizedStringProperty(&container, name);
        if (!text.empty())
            return true;
    }
    return container.GetStringProperty(name, text);
}

void Problem(QLX_RawPropertyContainer* container, const TView::MementoPtr& memento,
             const std::string& reason) {
    std::string className;
    container->GetStringProperty("class", className);
    TViewServer::Get()->AddProblem(container, memento, className, reason);
}

void ReadEdge(QLX_RawPropertyContainer* container, const TView::MementoPtr& memento,
              const char* name, EEdgeRule& rule, bool& found) {
    std::string text;
    if (!container->GetStringProperty(name, text))
        return;
    if (TViewLayout::RuleFromString(text, rule))
        found = true;
    else
        Problem(container, memento, std::string(name) + " is no edge rule: \"" + text + "\"");
}

bool ReadLayout(QLX_RawPropertyContainer* container, const TView::MementoPtr& memento,
                TViewLayout& layout) {
    EEdgeRule left = kEdge_Near;
    EEdgeRule top = kEdge_Near;
    EEdgeRule right = kEdge_Size;
    EEdgeRule bottom = kEdge_Size;
    bool found = false;
    ReadEdge(container, memento, "LayoutLeft", left, found);
    ReadEdge(container, memento, "LayoutTop", top, found);
    ReadEdge(container, memento, "LayoutRight", right, found);
    ReadEdge(container, memento, "LayoutBottom", bottom, found);
    layout = TViewLayout(left, top, right, bottom);
    return found;
}

void ReadFrame(QLX_RawPropertyContainer* container, TView* view) {
    VRect frame = view->GetFrame();
    VPoint location = view->GetLocation();
    VPoint size = view->GetSize();
    const bool hasLocation = container->GetPointProperty("Location", location);
    const bool hasSize = container->GetPointProperty("Size", size);
    if (container->GetRectProperty("Frame", frame)) {
        if (hasLocation)
            frame += location - frame[kTopLeft];
        if (hasSize)
            frame = {frame[kTopLeft], frame[kTopLeft] + size};
    } else if (hasLocation || hasSize) {
        frame = {location, location + size};
    } else {
        return;
    }
    view->SetFrame(frame, /*redraw*/ true, /*layOut*/ false);
}

} // namespace

void TView::ReadContainer(QLX_RawPropertyContainer* container, const MementoPtr& memento,
                          TView* view) {
    TCommandHandler::ReadContainer(container, memento, view); // properties and behaviours
    mFromDescription = true;
    TViewServer::RememberSource(this, container, memento);
    for (TBehavior* each = GetFirstBehavior(); each; each = each->GetNextBehavior())
        NeedExtras().mDescribedBehaviors.push_back(each);
    ReadEnvironments(container, memento);
    ReadAdorners(container, memento);
    ReadSubViews(container, memento);
}

void TView::ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) {
    TCommandHandler::ReadProperties(container, memento);
    ReadFrame(container, this);

    VPoint origin = -mOffset;
    if (container->GetPointProperty("LocalOrigin", origin))
        SetLocalOrigin(origin, /*redraw*/ true);
    bool flag = mShown;
    if (container->GetBoolProperty("Shown", flag))
        Show(flag, /*redraw*/ true);
    container->GetBoolProperty("SubViewsTakePresses", mSubViewsTakePresses);
    container->GetBoolProperty("SeparateContainer", mSeparateContainer);
    container->GetBoolProperty("AccessibilityDetached", mAccessibilityDetached);

    std::string text;
    if (ReadText(*container, memento, "ToolTip", text))
        SetToolTip(text);
    if (ReadText(*container, memento, "AccessibleName", text))
        SetAccessibleName(text);
    std::int32_t order = GetTabOrder();
    if (container->GetInt32Property("TabOrder", order))
        SetTabOrder(order);
    if (container->GetStringProperty("Cursor", text)) {
        ECursor cursor = kCursor_Arrow;
        if (CursorFromName(text, cursor))
            SetCursor(cursor);
        else
            Problem(container, memento, "Cursor is no pointer shape: \"" + text + "\"");
    }
    VPoint minimum;
    if (container->GetPointProperty("MinimumSize", minimum))
        SetMinimumSize(minimum);
    TViewLayout layout;
    if (ReadLayout(container, memento, layout))
        SetLayout(layout);
}

void TView::ReadSubViews(QLX_RawPropertyContainer* container, const MementoPtr& memento) {
    for (QLX_RawPropertyContainer* child : container->GetChildren("view"))
        AddSubView(TViewServer::Get()->NewView(child, memento, this));
}

void TView::ReadAdorners(QLX_RawPropertyContainer* container, const MementoPtr& memento) {
    for (QLX_RawPropertyContainer* child : container->GetChildren("adorner")) {
        TObject* object = TViewServer::Get()->NewObject(child, memento, this);
        if (auto* adorner = QLX_ObjectCast<TAdorner>(object)) {
            adorner->mFromDescription = true;
            AddAdorner(adorner);
        } else if (object) {
            Problem(child, memento, "not an adorner");
            object->Free();
        }
    }
}

void TView::ReadEnvironments(QLX_RawPropertyContainer* container, const MementoPtr& memento) {
    for (QLX_RawPropertyContainer* child : container->GetChildren("drawingenvironment")) {
        TObject* object = TViewServer::Get()->NewObject(child, memento, this);
        if (auto* environment = QLX_ObjectCast<TDrawingEnvironment>(object)) {
            SetDrawingEnvironment(environment);
        } else if (object) {
            Problem(child, memento, "not a drawing environment");
            object->Free();
        }
    }
    for (QLX_RawPropertyContainer* child : container->GetChildren("state")) {
        TObject* object = TViewServer::Get()->NewObject(child, memento, this);
        if (auto* state = QLX_ObjectCast<TViewState>(object)) {
            AddState(state);
        } else if (object) {
            Problem(child, memento, "not a state");
            object->Free();
        }
    }
    std::string name;
    if (container->GetStringProperty("State", name) && !SetState(name))
        Problem(container, memento, "State names no state: \"" + name + "\"");
}

// Reading again

void TView::ReReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) {
    const VPoint origin = -mOffset;
    TViewServer::RememberSource(this, container, memento);
    ReadProperties(container, memento);
    SetLocalOrigin(origin, /*redraw*/ true);
}

// Those of the description are made anew: adorners keep nothing of the user's.
void TView::ReReadAdorners(QLX_RawPropertyContainer* container, const MementoPtr& memento) {
    for (int i = CountAdorners(); i >= 1; --i) {
        TAdorner* adorner = GetAdorner(i);
        if (!adorner->mFromDescription)
            continue;
        RemoveAdorner(adorner);
        adorner->Free();
    }
    ReadAdorners(container, memento);
}

// A behaviour whose class and identifier still stand in the description stays and reads its
// properties; behaviours that code added are left alone.
void TView::ReReadBehaviors(QLX_RawPropertyContainer* container, const MementoPtr& memento) {
    std::vector<TBehavior*> described;
    if (mExtras)
        described.swap(mExtras->mDescribedBehaviors);
    std::vector<TBehavior*> old;
    for (TBehavior* each = GetFirstBehavior(); each; each = each->GetNextBehavior()) {
        if (std::find(described.begin(), described.end(), each) != described.end())
            old.push_back(each);
    }
    for (QLX_RawPropertyContainer* child : container->GetChildren("behavior")) {
        std::string className;
        std::uint32_t identifier = kNoIdentifier;
        child->GetStringProperty("class", className);
        child->GetIDTypeProperty("Identifier", identifier);
        const auto same = std::find_if(old.begin(), old.end(), [&](const TBehavior* each) {
            return each->GetIdentifier() == identifier &&
                   each->GetClassDescDynamic()->GetClassName() == className;
        });
        if (same != old.end()) {
            (*same)->ReadProperties(child, memento);
            NeedExtras().mDescribedBehaviors.push_back(*same);
            old.erase(same);
            continue;
        }
        TObject* object = TViewServer::Get()->NewObject(child, memento, this);
        if (auto* behavior = QLX_ObjectCast<TBehavior>(object)) {
            AddBehavior(behavior);
            NeedExtras().mDescribedBehaviors.push_back(behavior);
        } else if (object) {
            object->Free();
        }
    }
    for (TBehavior* gone : old) {
        RemoveBehavior(gone);
        gone->Free();
    }
}

// States

bool TView::SetState(const std::string& name) {
    if (!mExtras)
        return false;
    for (TViewState* state : mExtras->mStates) {
        if (state->GetName() == name) {
            mExtras->mState = name;
            state->Apply(this);
            return true;
        }
    }
    return false;
}

const std::string& TView::GetState() const {
    static const std::string kNone;
    return mExtras ? mExtras->mState : kNone;
}

void TView::AddState(TViewState* state) {
    if (!state)
        return;
    auto& states = NeedExtras().mStates;
    for (TViewState*& each : states) {
        if (each->GetName() == state->GetName()) {
            each->Free();
            each = state;
            return;
        }
    }
    states.push_back(state);
}
