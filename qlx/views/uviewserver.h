// TViewServer: turns the containers of a view description into objects through the class registry,
// says what it could not make, and re-reads a description that changed under a living window.
#pragma once

#include <string>
#include <vector>

#include "qlx/foundation/uobject.h"

/// One thing in a description that could not be made.
struct QLX_API TViewServerProblem {
    std::string mClassName; ///< as the description names it; empty when it names none
    std::string mFile;      ///< the description's name
    std::string mPath;      ///< the elements on the way, as "viewhierarchy/view/view[3]/behavior"
    std::string mReason;    ///< "unknown class", "not a view", ...
    /// "file: path: reason: class"
    [[nodiscard]] std::string AsString() const;
};

/// Makes objects from containers. One server, made on first use, serves the process; a host may
/// install one of its own class to make views of its own kind. User-interface thread only.
class QLX_API TViewServer : public TObject {
  public:
    QLX_DECLARE_CLASS(TViewServer);
    using MementoPtr = Cmn_AliasedRefCountPtr<QLX_ViewMemento>;

    TViewServer();
    ~TViewServer() override;

    /// The server in use.
    [[nodiscard]] static TViewServer* Get();
    /// Puts another server in place; null brings back the framework's own. Not owned. Returns the
    /// previous one, null when that was the framework's own.
    static TViewServer* Install(TViewServer* server);

    // Problems are kept in order until taken, and each is traced when it is found; after a thousand
    // that nobody took no more are.

    [[nodiscard]] const std::vector<TViewServerProblem>& GetProblems() const { return mProblems; }
    [[nodiscard]] std::vector<TViewServerProblem> TakeProblems();

    // Where views came from, for inspectors: remembered only while someone wants it.

    /// With true the description of every view that is made or read again from now on is remembered
    /// until the view ends.
    static void SetRememberSources(bool remember);
    /// The container that a view was read from; null when it is not remembered.
    [[nodiscard]] static QLX_RawPropertyContainer* GetSource(const TObject* view);
    static void RememberSource(const TObject* view, QLX_RawPropertyContainer* container,
                               const MementoPtr& memento) {
        if (sRemembersSources)
            KeepSource(view, container, memento);
    }
    static void ForgetSource(const TObject* view) {
        if (sHasSources)
            DropSource(view);
    }

    // Slot order is part of the binary interface: append, never move.

    /// Makes the object that the container's "class" names and lets it read the container
    /// (TObject::ReadContainer) on behalf of the view. Null, with a problem noted, when there is no
    /// such class or it cannot be made by name. The caller owns the result and ends it with Free.
    /// The container has a current filter.
    [[nodiscard]] virtual TObject* NewObject(QLX_RawPropertyContainer* container,
                                             const MementoPtr& memento, TView* view);
    /// The same for a view. Never null: a class that is unknown or no view becomes a
    /// TPlaceholderView with the frame, the identifier and the subviews that the container gives
    /// it. The view is not yet in the superview, which is handed to the view's reading.
    [[nodiscard]] virtual TView* NewView(QLX_RawPropertyContainer* container,
                                         const MementoPtr& memento, TView* superView);
    /// Makes the views of a whole description: the first "view" of its root, with all inside it.
    /// Null, with a problem noted, when the description holds no view.
    [[nodiscard]] virtual TView* NewViewHierarchy(const MementoPtr& memento);
    /// The same for a description whose first view is a window; the window is not yet shown. Null,
    /// with a problem noted and the view freed, when it is something else.
    [[nodiscard]] virtual TWindow* NewWindow(const MementoPtr& memento);
    /// Brings a living tree in line with a description that changed. A view whose class, identifier
    /// and place among its siblings of the same identifier still stand in the description stays the
    /// same object and reads its properties again: what the user did to it (the target, values,
    /// scroll positions, selection) stays, as does the object that others point to. Views that are
    /// new are made, views that are gone are freed, and the order becomes the description's. Views
    /// without an identifier are matched by class and order. Subviews that no description made are
    /// left alone.
    virtual void ReReadHierarchy(TView* root, const MementoPtr& memento);

    /// Notes a problem.
    virtual void AddProblem(QLX_RawPropertyContainer* container, const MementoPtr& memento,
                            const std::string& className, const std::string& reason);

    /// Not supported: an assertion, and null.
    [[nodiscard]] TObject* Clone() override;

  private:
    static void KeepSource(const TObject* view, QLX_RawPropertyContainer* container,
                           const MementoPtr& memento);
    static void DropSource(const TObject* view);
    static bool sRemembersSources;
    static bool sHasSources;
    void ReReadInside(TView* view, QLX_RawPropertyContainer* container, const MementoPtr& memento);

    std::vector<TViewServerProblem> mProblems;
};
