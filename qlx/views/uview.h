// TView, the rectangle that everything on the screen is made of. Views form a tree: a view has one
// superview, an ordered list of subviews (the last one lies in front), a frame in its superview's
// coordinates and a scrollable coordinate system of its own. It draws itself and then its subviews,
// and hands a press to the front-most subview under the pointer before it looks at it itself.
//
// Three coordinate systems: local (of one view, its extent's top-left is the local offset),
// superview, and window (the local system of the root of the view's tree). Units are logical
// pixels; what a fractional display scale makes of them is the painter's business.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "qlx/imaging/qlx_painter.h"
#include "qlx/views/ucommandhandler.h"
#include "qlx/views/ugeometry.h"
#include "qlx/views/uviewaccessibility.h"

class TAdorner;
class TDrawingEnvironment;
class TInvalidateView;
class TList;
class TTracker;
class TViewLayout;
class TViewState;
class TWindow;
struct TAccessibleInfo;
struct TViewExtras;

/// How strongly a view's highlighting shows.
enum EHighlight : int {
    kHighlight_Off = 0,
    kHighlight_Dim = 1, ///< in a window that is not active
    kHighlight_On = 2
};

/// Shapes of the mouse pointer; a platform shows the nearest that it has.
enum ECursor : int {
    kCursor_Arrow = 0,
    kCursor_IBeam,
    kCursor_Cross,
    kCursor_Hand,
    kCursor_Wait,
    kCursor_SizeHorizontal,
    kCursor_SizeVertical,
    kCursor_SizeAll,
    kCursor_SizeFalling, ///< top-left to bottom-right
    kCursor_SizeRising,  ///< bottom-left to top-right
    kCursor_Forbidden,
    kCursor_Hidden,
    kCursor_Count
};

/// Coordinates of frames and origins are held within plus and minus this (about 10^12), so that
/// sums along any tree that fits into memory stay within 64 bits.
inline constexpr std::int64_t kView_MaxCoordinate = std::int64_t{1} << 40;

/// See the top of this file. A view is owned by its superview from AddSubView until RemoveSubView;
/// a view in no tree is owned by who made it. It is ended with Free, which takes it out of its
/// superview first, and which may be called at any time, also from inside the view's own Draw or
/// DoMouseCommand: the view leaves the tree at once and its memory goes when the outermost dispatch
/// has returned. User-interface thread only.
class QLX_API TView : public TCommandHandler {
  public:
    QLX_DECLARE_CLASS(TView);
    using PainterPtr = Cmn_AliasedRefCountPtr<QLX_Painter>;
    using MementoPtr = Cmn_AliasedRefCountPtr<QLX_ViewMemento>;

    TView();
    /// Frees the subviews and adorners. Reached through Free, not by delete.
    ~TView() override;
    TView(const TView&) = delete;
    TView& operator=(const TView&) = delete;

    /// Sets the frame and joins the superview (null: none), in front of its other subviews.
    void IView(TView* superView, const VRect& frame);

    // The tree

    [[nodiscard]] TView* GetSuperView() const { return mSuperView; }
    /// The subviews, back to front; null when there are none. Not to be changed by the caller.
    [[nodiscard]] TList* GetSubViews() const { return mSubViews; }
    [[nodiscard]] int CountSubViews() const;
    /// The n-th subview from the back, counting from 1; null when there is none.
    [[nodiscard]] TView* GetSubView(int n) const;
    /// Whether the view is a direct subview.
    [[nodiscard]] bool ContainsSubView(const TView* sub) const;
    /// Whether this view lies, at any depth, inside the other one. A view does not lie in itself.
    [[nodiscard]] bool IsContainedIn(const TView* other) const;
    /// The view at the top of this tree: this one when it has no superview.
    [[nodiscard]] TView* GetRootView();
    [[nodiscard]] TWindow* GetWindow() override;
    [[nodiscard]] const TWindow* GetWindow() const override;

    // Geometry without virtual cost

    [[nodiscard]] const VPoint& GetLocation() const { return mLocation; }
    [[nodiscard]] const VPoint& GetSize() const { return mSize; }
    /// The top-left corner of the extent: the negation of the local origin.
    [[nodiscard]] const VPoint& GetLocalOffset() const { return mOffset; }
    /// Changes the size in place.
    void Resize(const VPoint& size, bool redraw);

    void LocalToSuperVRect(VRect& rect) const;
    void LocalToWindowVRect(VRect& rect) const;
    void WindowToLocalVRect(VRect& rect) const;
    /// Region coordinates are 32-bit and saturate.
    void LocalToSuperRegion(QLX_Region& region) const;
    void SuperToLocalRegion(QLX_Region& region) const;
    /// From the other view's local coordinates into this one's. Both are in one tree.
    void ConvertVPointFromOtherView(const TView* other, VPoint& point) const;
    void ConvertVRectFromOtherView(const TView* other, VRect& rect) const;

    // Scrolling

    /// Scrolls by moving what is already on the screen where that gives the same picture as drawing
    /// anew, and redraws only what comes into sight.
    void ScrollTo(const VPoint& localOrigin);
    /// Scrolls this view and those around it as far as needed to bring the local rectangle into
    /// sight.
    void RevealRect(const VRect& local);

    // Drawing

    /// Marks a part for drawing, in local coordinates. Drawing happens once a frame. Nothing
    /// happens for a view that is not shown or in no window.
    void InvalidateVRect(const VRect& local);
    /// Draws what is marked in this view's window now.
    void UpdateNow();
    /// Sets the painter up for this view: origin, clip, drawing environment. False when there is
    /// nothing to draw on. HandleDraw does it; code that draws at other times does it itself.
    bool Focus();
    /// The painter that draws this view's window; null when there is none. Origin and clip are this
    /// view's inside Draw and after Focus.
    [[nodiscard]] const PainterPtr& GetPainter();
    /// How many HandleDraw loops over subviews are under way.
    [[nodiscard]] static int GetDrawNesting() { return sDrawNesting; }

    /// Pen, colours and font that hold when Draw begins; null for the painter's standard ones.
    /// Owned.
    void SetDrawingEnvironment(TDrawingEnvironment* environment);
    [[nodiscard]] TDrawingEnvironment* GetDrawingEnvironment() const;

    // Adorners: what is drawn around the view's own drawing, from the lowest order to the highest

    /// Takes an adorner over; those of equal order stay in the order of adding. Null is ignored.
    void AddAdorner(TAdorner* adorner, bool redraw = true);
    /// Hands an adorner back to the caller. One that is not in the list is ignored.
    void RemoveAdorner(TAdorner* adorner, bool redraw = true);
    [[nodiscard]] TAdorner* GetAdornerWithIdentifier(std::uint32_t identifier) const;
    [[nodiscard]] int CountAdorners() const;
    /// The n-th adorner in drawing order, counting from 1; null when there is none.
    [[nodiscard]] TAdorner* GetAdorner(int n) const;
    /// Whether DrawAdorners and HighlightAdorners are used at all.
    [[nodiscard]] bool HasAdorners() const;

    // States: named sets of settings from the description

    /// Applies the state of that name; false, and nothing done, when there is none.
    bool SetState(const std::string& name);
    /// The name of the state applied last; empty before.
    [[nodiscard]] const std::string& GetState() const;
    /// Takes a state over; one of the same name is replaced.
    void AddState(TViewState* state);

    // Layout: see ulayout.h

    void SetLayout(const TViewLayout& layout);
    /// Null when the view has none: it stays where it is in its superview.
    [[nodiscard]] const TViewLayout* GetLayout() const;
    void SetMinimumSize(const VPoint& size);
    [[nodiscard]] VPoint GetMinimumSize() const;

    // The mouse

    /// With false, presses never reach the subviews.
    void SetSubViewsTakePresses(bool take) { mSubViewsTakePresses = take; }
    [[nodiscard]] bool SubViewsTakePresses() const { return mSubViewsTakePresses; }
    /// The deepest shown view under a local point: front-most first, this view when no subview is
    /// hit; null when the point is outside.
    [[nodiscard]] TView* FindViewAt(const VPoint& local);
    /// Gives the mouse to a tracker until the button is released. The tracker is owned by the
    /// window from here on. False (and the tracker freed) when the view is in no window.
    bool BeginTracking(TTracker* tracker, const VPoint& local, TToolboxEvent* event);
    [[nodiscard]] bool IsMouseOver() const { return mMouseOver; }
    void SetCursor(ECursor cursor);
    [[nodiscard]] ECursor GetCursor() const;
    void SetToolTip(const std::string& text);

    // The keyboard

    /// Among the views of a window that want to be the target Tab goes by this number, then by tree
    /// order; 0 unless set, and a negative number leaves the view out.
    void SetTabOrder(int order);
    [[nodiscard]] int GetTabOrder() const;

    // Marks

    /// FindSubView does not look into a separate container from outside.
    void SetSeparateContainer(bool separate) { mSeparateContainer = separate; }
    [[nodiscard]] bool IsSeparateContainer() const { return mSeparateContainer; }
    void SetAccessibilityDetached(bool detached) { mAccessibilityDetached = detached; }
    [[nodiscard]] bool IsAccessibilityDetached() const { return mAccessibilityDetached; }
    void SetAccessibleName(const std::string& name);
    /// Whether a description made this view (and re-reading the description may free it).
    [[nodiscard]] bool IsFromDescription() const { return mFromDescription; }
    /// Whether the view was hidden because its superview was when it was added.
    [[nodiscard]] bool IsHiddenBySuperView() const { return mHiddenBySuperView; }
    /// The view's own show state, whatever its superviews' are.
    [[nodiscard]] bool GetShownFlag() const { return mShown; }

    // Slot order is part of the binary interface: append, never move.

    /// What to add to a local point to get the superview's.
    virtual void GetLocalOffsetInSuper(VPoint& offset) const;
    /// Scrolls: the local origin goes to this distance from the view's top-left corner. See the
    /// source for the order of what follows.
    virtual void SetLocalOrigin(const VPoint& origin, bool redraw);
    virtual void LocalToSuper(VPoint& point) const;
    virtual void SuperToLocal(VPoint& point) const;
    virtual void SuperToLocalVRect(VRect& rect) const;
    virtual void LocalToWindow(VPoint& point) const;
    virtual void WindowToLocal(VPoint& point) const;
    /// Takes a view over, in front of the other subviews. Null is ignored. A view that would
    /// contain itself is refused with an assertion. One that has a superview leaves it first.
    virtual void AddSubView(TView* sub);
    /// Hands a subview back to the caller. A view that is no subview of this one is ignored.
    virtual void RemoveSubView(TView* sub);
    /// To the back.
    virtual void MakeFirstSubView(TView* sub);
    /// To the front.
    virtual void MakeLastSubView(TView* sub);
    /// This view, or the first view with that identifier: the subviews from the back, each
    /// followed, with deep, by what is inside it. Null when there is none.
    [[nodiscard]] virtual TView* FindSubView(unsigned id, bool deep);
    /// Sets place and size. With redraw the old and the new place are marked for drawing; with
    /// layOut the subviews follow a change of size. Inverted edges count as no size; coordinates
    /// are held within kView_MaxCoordinate.
    virtual void SetFrame(const VRect& frame, bool redraw, bool layOut);
    /// Moves the view; tells accessibility when it really moved.
    virtual void Locate(const VPoint& where, bool redraw);
    /// Makes the painter forget that it was set up for this view.
    virtual void InvalidateFocus();
    /// Brings the visible rectangle up to date. The views inside follow when they are asked; with
    /// subViewsNow they follow at once.
    virtual void UpdateCoordinates(bool subViewsNow);
    /// Draws the view's own picture; area is the part that needs it, in local coordinates. Nothing
    /// here.
    virtual void Draw(const VRect& area);
    /// Draws the view and what is inside it.
    virtual void HandleDraw(const VRect& area);
    /// Draws the adorners, and calls Draw between those below and those above.
    virtual void DrawAdorners(const VRect& area);
    virtual void HighlightAdorners(const VRect& area, bool on, EHighlight highlight);
    [[nodiscard]] virtual EHighlight GetCurrentHL() const;
    /// Marks the whole view for drawing.
    virtual void ForceRedraw();
    /// Whether the view is shown and the local point lies in its extent, half-open.
    [[nodiscard]] virtual bool ContainsMouse(const VPoint& local) const;
    /// A press, in local coordinates. True when someone took it: the subviews from the front, then
    /// the behaviours, then DoMouseCommand.
    virtual bool HandleMouseDown(const VPoint& local, TToolboxEvent* event);
    /// The view that gathers what is to be drawn; null in a tree that is in no window.
    [[nodiscard]] virtual TInvalidateView* GetInvalidateView();
    /// The area that the view covers and is hit in, in local coordinates.
    [[nodiscard]] virtual VRect GetExtent() const;
    /// The view's place in its superview's coordinates.
    [[nodiscard]] virtual VRect GetFrame() const;
    /// Whether some of a local rectangle lies within what is visible of the view.
    [[nodiscard]] virtual bool IsRectVisible(const VRect& local) const;
    [[nodiscard]] virtual bool IsVisible() const;
    /// The part of the extent that all superviews let through, in local coordinates; all zeros when
    /// there is none.
    [[nodiscard]] virtual VRect GetVisibleRect() const;
    /// Sets the view's own show state.
    virtual void Show(bool shown, bool redraw);
    /// Whether the view and all its superviews are shown.
    [[nodiscard]] virtual bool IsShown() const;
    /// Tells the accessibility listener, if there is one. The codes are EAccessibilityCode's.
    virtual void AccessibilityNotification(int code, TObject* argument);
    /// A subview has joined.
    virtual void AddedASubView(TView* sub);
    /// A subview has left.
    virtual void RemovedASubView(TView* sub);
    /// The view is now in that superview (null: in none). Sets the chain of handlers.
    virtual void BeInSuperView(TView* superView);

    /// The view's own answer to a press that no subview and no behaviour took. Often begins
    /// tracking or makes the view the target. False passes the press on to what lies behind.
    virtual bool DoMouseCommand(const VPoint& local, TToolboxEvent* event);
    /// A press of another button than the first: the front-most subview under the pointer, then
    /// DoOtherButton. Neither HandleMouseDown nor behaviours, which would take it for the first
    /// button's. QLX_GetMouseButton tells which it is.
    virtual bool HandleOtherButton(const VPoint& local, TToolboxEvent* event);
    virtual bool DoOtherButton(const VPoint& local, TToolboxEvent* event);
    /// The release of a press that this view took and that no tracker follows: behaviours,
    /// DoMouseUp.
    virtual bool HandleMouseUp(const VPoint& local, TToolboxEvent* event);
    virtual bool DoMouseUp(const VPoint& local, TToolboxEvent* event);
    /// A turn of the wheel: the front-most subview under the pointer, then the behaviours, then
    /// DoMouseWheel. True when someone used it. QLX_GetWheelDelta reads how far.
    virtual bool HandleMouseWheel(const VPoint& local, TToolboxEvent* event);
    virtual bool DoMouseWheel(const VPoint& local, TToolboxEvent* event);
    /// Sets the pointer's shape: front-most subview, behaviours, DoSetCursor.
    virtual bool HandleSetCursor(const VPoint& local);
    /// Shows the view's cursor when it has one.
    virtual bool DoSetCursor(const VPoint& local);
    /// The pointer came over this view or one inside it.
    virtual void DoMouseEnter(const VPoint& local, TToolboxEvent* event);
    /// The pointer moved over this view, and over none inside it.
    virtual void DoMouseMove(const VPoint& local, TToolboxEvent* event);
    /// The pointer left. The event is null when the view was hidden or moved away under it.
    virtual void DoMouseLeave(TToolboxEvent* event);
    /// The text to show when the pointer rests at a point, and the local area for which it holds.
    /// False when there is none; the view itself answers SetToolTip's text for its extent.
    virtual bool GetToolTip(const VPoint& local, std::string& text, VRect& area) const;
    /// Text that was typed or composed by an input method, in UTF-8. False passes it on to the next
    /// handler's view. Only views that edit text care; keys arrive through the handler chain as
    /// well.
    virtual bool DoTextInput(const std::string& text);
    /// Text being composed: shown in place, not yet part of the value. Empty when it ends.
    virtual bool DoTextComposition(const std::string& text, int caret, int selectionLength);
    /// Whether the platform should offer its input methods while this view is the target, and if so
    /// where the caret is, in local coordinates.
    [[nodiscard]] virtual bool GetTextInputArea(VRect& caret) const;
    /// Pens, colours and font for drawing. Called by Focus; the painter is never null.
    virtual void DoFocus(const PainterPtr& painter);
    /// The superview's size changed; the view follows as its layout says.
    virtual void SuperViewChangedSize(const VPoint& oldSize, const VPoint& newSize, bool redraw);
    /// Tells the subviews that this view's size changed.
    virtual void DoLayout(const VPoint& oldSize, const VPoint& newSize, bool redraw);
    /// The smallest size at which the view and, by their layouts, its subviews have what they need.
    [[nodiscard]] virtual VPoint CalcMinFrame() const;
    /// The frame that the view's layout gives it in a superview of that size.
    [[nodiscard]] virtual VRect ComputeFrame(const VPoint& superSize) const;
    /// Whether RevealRect may change this view's local origin. False here.
    [[nodiscard]] virtual bool IsScrollable() const;
    /// Fills in what the view knows about itself.
    virtual void GetAccessibleInfo(TAccessibleInfo& info) const;
    /// Makes and adds what the container holds under "view".
    virtual void ReadSubViews(QLX_RawPropertyContainer* container, const MementoPtr& memento);
    /// Makes and adds what the container holds under "adorner".
    virtual void ReadAdorners(QLX_RawPropertyContainer* container, const MementoPtr& memento);
    /// Makes and adds what the container holds under "drawingenvironment" and "state".
    virtual void ReadEnvironments(QLX_RawPropertyContainer* container, const MementoPtr& memento);

    /// Reads the properties of a description that changed while the view lives. What the user did
    /// to the view stays: here the scroll position; a class with a value or a selection overrides
    /// this to keep it.
    virtual void ReReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento);

    // Overrides

    void ReadContainer(QLX_RawPropertyContainer* container, const MementoPtr& memento,
                       TView* view) override;
    void ReadProperties(QLX_RawPropertyContainer* container, const MementoPtr& memento) override;
    /// The copy has copies of the subviews, behaviours and adorners, and no superview.
    [[nodiscard]] TObject* Clone() override;
    void Free() override;
    void SetEnable(bool enable) override;

    /// While one lives, freed views leave their tree at once and are deleted when the outermost
    /// scope ends. Whatever calls into views from outside (windows, drawing, timers) opens one.
    class QLX_API StDispatch {
      public:
        StDispatch();
        ~StDispatch();
        StDispatch(const StDispatch&) = delete;
        StDispatch& operator=(const StDispatch&) = delete;
    };

    /// Walks the subviews while calls out of the loop may add, remove, free or reorder them: each
    /// view that was a subview at the start, and still is one when its turn comes, is visited once.
    class QLX_API SubViewWalk {
      public:
        enum class Order { BackToFront, FrontToBack };
        SubViewWalk(const TView* view, Order order);
        ~SubViewWalk();
        SubViewWalk(const SubViewWalk&) = delete;
        SubViewWalk& operator=(const SubViewWalk&) = delete;
        /// The next subview; null at the end.
        [[nodiscard]] TView* Next();

      private:
        static constexpr int kInline = 24;
        StDispatch mDispatch; // keeps the memory of freed subviews until the walk is over
        const TView* mView;
        TView** mViews; // mInline, or owned
        int mCount;
        int mNext;
        bool mBackToFront;
        TView* mInline[kInline];
    };

  protected:
    friend class TInvalidateView;
    friend class TWindow;
    friend class TViewServer;

    /// What few views have; made when first needed.
    TViewExtras& NeedExtras();

  private:
    struct DrawContext;
    void Reorder(TView* sub, bool toFront);
    void DrawSelf(const VRect& area);
    void DrawSubViews(const VRect& area, TInvalidateView* invalidateView,
                      const VPoint& toInvalidate);
    [[nodiscard]] VPoint GetOffsetTo(const TInvalidateView* invalidateView) const;
    /// Of the exception that is being handled. Once a view, so that a view that fails in every
    /// frame does not fill the log.
    void ReportException(const char* operation);
    void AbandonCopy();
    void LeaveTarget();
    [[nodiscard]] bool HasInside(const TEventHandler* handler) const;
    void FreeSubViews();
    void ReReadAdorners(QLX_RawPropertyContainer* container, const MementoPtr& memento);
    void ReReadBehaviors(QLX_RawPropertyContainer* container, const MementoPtr& memento);
    static void ForgetDrawContext();
    static void DeleteFreedViews();

    // The order of the fields is part of the binary interface.
    TView* mSuperView = nullptr; // not owned
    TList* mSubViews = nullptr;  // owned, with the views in it; null when there are none
    VPoint mLocation;            // superview coordinates
    VPoint mSize;                // height, width
    VPoint mOffset;              // local coordinates of the top-left corner
    bool mShown = true;
    bool mHiddenBySuperView = false;
    mutable VRect mVisibleRect; // local coordinates; see GetVisibleRect
    mutable std::uint32_t mVisibleStamp = 0;
    bool mSubViewsTakePresses = true;
    bool mSeparateContainer = false;
    bool mAccessibilityDetached = false;
    bool mFromDescription = false;
    bool mMouseOver = false;
    bool mFreed = false;
    bool mReportedException = false;
    std::unique_ptr<TViewExtras> mExtras; // null while everything in it is as at birth

    static int sDrawNesting;
    static DrawContext sDrawContext;
    static std::uint32_t sCoordinateStamp; // moves on with every change of a place, size or tree
};
