// TViewServer: what it knows of views and windows, and the re-reading of a living tree.
#include <algorithm>
#include <string>
#include <vector>

#include "basekit/cmn/cmn_types.h"
#include "qlx/persistence/qlx_persistence.h"
#include "qlx/views/ulayout.h"
#include "qlx/views/uview.h"
#include "qlx/views/uviewplaceholder.h"
#include "qlx/views/uviewserver.h"
#include "qlx/views/uwindow.h"

namespace {

/// The first "view" below a root, through wrappers that are no views; null when there is none.
QLX_RawPropertyContainer* FindFirstView(QLX_RawPropertyContainer* container) {
    if (!container || container->GetName() == "view")
        return container;
    const auto views = container->GetChildren("view");
    if (!views.empty())
        return views.front();
    for (QLX_RawPropertyContainer* child : container->GetChildren()) {
        if (child->GetName() == "viewhierarchy" || child->GetName() == "container") {
            if (QLX_RawPropertyContainer* found = FindFirstView(child))
                return found;
        }
    }
    return nullptr;
}

QLX_RawPropertyContainer* Select(const TViewServer::MementoPtr& memento) {
    QLX_RawPropertyContainer* root = memento ? memento->GetRoot() : nullptr;
    if (root && !root->HasCurrentSet())
        root->SetCurrentFilter(QLX_PropertyFilter::DefaultFilter());
    return FindFirstView(root);
}

std::string ClassInDescription(QLX_RawPropertyContainer* container) {
    std::string name;
    container->GetStringProperty("class", name);
    return name;
}

std::uint32_t IdentifierInDescription(QLX_RawPropertyContainer* container) {
    std::uint32_t identifier = kNoIdentifier;
    container->GetIDTypeProperty("Identifier", identifier);
    return identifier;
}

bool IsNone(std::uint32_t identifier) { return identifier == 0 || identifier == kNoIdentifier; }

std::string ClassOf(TView* view) {
    if (auto* placeholder = QLX_ObjectCast<TPlaceholderView>(view))
        return placeholder->GetMissingClass();
    return view->GetClassDescDynamic()->GetClassName();
}

bool IsSame(TView* view, QLX_RawPropertyContainer* container) {
    const std::uint32_t identifier = IdentifierInDescription(container);
    const bool sameIdentifier = view->GetIdentifier() == identifier ||
                                (IsNone(view->GetIdentifier()) && IsNone(identifier));
    return sameIdentifier && ClassOf(view) == ClassInDescription(container);
}

/// The size that a description gives a view; the view's own where it gives none.
VPoint SizeInDescription(QLX_RawPropertyContainer* container, const TView* view) {
    VRect frame;
    VPoint size = view->GetSize();
    if (container->GetRectProperty("Frame", frame))
        size = frame.GetSize();
    container->GetPointProperty("Size", size);
    return size;
}

/// The frame just read holds for the size that the description gives the superview; brings it to
/// the size that the superview has now.
void FollowSize(TView* sub, const VPoint& designSize) {
    const TViewLayout* layout = sub->GetLayout();
    if (!layout)
        return;
    TViewLayout again = *layout;
    again.SetReference(sub->GetFrame(), designSize);
    sub->SetLayout(again);
    const VPoint size = sub->GetSuperView()->GetSize();
    if (!(size == designSize))
        sub->SuperViewChangedSize(designSize, size, /*redraw*/ true);
}

/// Puts the described subviews into the description's order, behind those that code added. Nothing
/// moves when they are in it already.
void OrderSubViews(TView* view, const std::vector<TView*>& described) {
    std::vector<TView*> wanted = described;
    for (int i = 1; i <= view->CountSubViews(); ++i) {
        TView* sub = view->GetSubView(i);
        if (std::find(described.begin(), described.end(), sub) == described.end())
            wanted.push_back(sub);
    }
    bool inOrder = true;
    for (std::size_t i = 0; i < wanted.size(); ++i)
        inOrder = inOrder && view->GetSubView(static_cast<int>(i) + 1) == wanted[i];
    if (inOrder)
        return;
    for (TView* sub : wanted)
        view->MakeLastSubView(sub);
}

} // namespace

TView* TViewServer::NewView(QLX_RawPropertyContainer* container, const MementoPtr& memento,
                            TView* superView) {
    TObject* object = NewObject(container, memento, superView);
    if (auto* view = QLX_ObjectCast<TView>(object))
        return view;
    const std::string className = ClassInDescription(container);
    if (object) {
        AddProblem(container, memento, className, "not a view");
        object->Free();
    }
    auto* placeholder = new TPlaceholderView;
    placeholder->SetMissingClass(className);
    placeholder->ReadContainer(container, memento, superView);
    return placeholder;
}

TView* TViewServer::NewViewHierarchy(const MementoPtr& memento) {
    QLX_RawPropertyContainer* container = Select(memento);
    if (!container) {
        AddProblem(nullptr, memento, "", "no view in the description");
        return nullptr;
    }
    return NewView(container, memento, nullptr);
}

TWindow* TViewServer::NewWindow(const MementoPtr& memento) {
    TView* view = NewViewHierarchy(memento);
    if (!view)
        return nullptr;
    if (auto* window = QLX_ObjectCast<TWindow>(view))
        return window;
    AddProblem(Select(memento), memento, view->GetClassDescDynamic()->GetClassName(),
               "not a window");
    view->Free();
    return nullptr;
}

void TViewServer::ReReadHierarchy(TView* root, const MementoPtr& memento) {
    QLX_RawPropertyContainer* container = Select(memento);
    if (!root || !container) {
        AddProblem(container, memento, "", "no view in the description");
        return;
    }
    if (ClassOf(root) != ClassInDescription(container)) {
        AddProblem(container, memento, ClassInDescription(container),
                   "the outermost view is of another class than the living one");
        return;
    }
    const TView::StDispatch dispatch;
    // The outermost view keeps the size and place that the user gave it.
    const VRect frame = root->GetFrame();
    root->ReReadProperties(container, memento);
    root->SetFrame(frame, /*redraw*/ true, /*layOut*/ false);
    ReReadInside(root, container, memento);
    root->ForceRedraw();
}

void TViewServer::ReReadInside(TView* view, QLX_RawPropertyContainer* container,
                               const MementoPtr& memento) {
    view->ReReadBehaviors(container, memento);
    view->ReadEnvironments(container, memento);
    view->ReReadAdorners(container, memento);

    std::vector<TView*> old;
    for (int i = 1; i <= view->CountSubViews(); ++i) {
        if (view->GetSubView(i)->IsFromDescription())
            old.push_back(view->GetSubView(i));
    }
    const VPoint designSize = SizeInDescription(container, view);
    std::vector<TView*> described;
    for (QLX_RawPropertyContainer* child : container->GetChildren("view")) {
        const auto same = std::find_if(old.begin(), old.end(),
                                       [child](TView* each) { return IsSame(each, child); });
        if (same == old.end()) {
            TView* sub = NewView(child, memento, view);
            view->AddSubView(sub);
            FollowSize(sub, designSize);
            described.push_back(sub);
            continue;
        }
        TView* sub = *same;
        old.erase(same);
        sub->ReReadProperties(child, memento);
        FollowSize(sub, designSize);
        described.push_back(sub);
        ReReadInside(sub, child, memento);
    }
    for (TView* gone : old)
        gone->Free();
    OrderSubViews(view, described);
}
