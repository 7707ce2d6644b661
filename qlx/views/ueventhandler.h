// TEventHandler: whatever can receive keys, menu commands, idle time or notifications. Handlers
// form singly linked chains; what one does not consume goes on to the next.
#pragma once

#include "qlx/foundation/uobject.h"

struct _CPoint;

/// The moments of idle time.
enum IdlePhase : std::int32_t {
    kIdlePhase_Begin = 0,    ///< the application has just run out of events
    kIdlePhase_Continue = 1, ///< it still has none: the phase in which idle frequencies count
    kIdlePhase_End = 2       ///< an event has come
};

/// The idle frequency of who wants no idle time, and the answer of NextIdle for "never".
inline constexpr std::int32_t kNoIdle = 0x7FFFFFFF;
/// The identifier of who was given none: four blanks.
inline constexpr std::uint32_t kNoIdentifier = 0x20202020;

/// Event numbers by which a handler announces changes of the target.
enum ETargetEvent : std::int32_t {
    kEvent_ResignedWindowTarget = 25,
    kEvent_BecameTarget = 26,
    kEvent_ResignedTarget = 27
};

/// A link of the chain, with a list of behaviours that see everything before it does.
///
/// Every message has two layers. Handle is called by whoever delivers it: the message goes to the
/// first enabled behaviour, else to the handler's own Do. Do is the handler's own work, overridden
/// by subclasses; its default passes the message to the next handler. A handler consumes a message
/// by not calling the inherited Do: no answer says "handled" along the chain.
///
/// Nothing in here looks at the handler again once it has passed a message on, so a handler may be
/// taken out of its chain or freed by whoever the message goes to next. The owner of a chain takes
/// a handler out of it (RemoveHandler) before freeing it. User-interface thread.
class QLX_API TEventHandler : public TObject {
  public:
    using ValidationCallback = void (*)(TEventHandler* handler);
    /// Makes the object that a container describes and lets it read the container. Null when it
    /// cannot be made. The caller owns the result.
    using ObjectMaker = TObject* (*)(QLX_RawPropertyContainer* container,
                                     const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento,
                                     TView* view);

    QLX_DECLARE_CLASS(TEventHandler);
    TEventHandler();
    ~TEventHandler() override;

    /// Sets the next handler (not owned).
    void IEventHandler(TEventHandler* next);

    // TObject

    void DoUpdate(int change, TObject* changedObject, TObject* changedBy,
                  TDependencySpace* space) override;
    /// Reads the properties, then makes the objects stored under "behavior" and adds the behaviours
    /// among them.
    void ReadContainer(QLX_RawPropertyContainer* container,
                       const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento,
                       TView* view) override;
    /// Reads "Enabled" and "Identifier".
    void ReadProperties(QLX_RawPropertyContainer* container,
                        const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento) override;
    /// The copy has the same next handler and copies of the behaviours. It is freed, and the
    /// exception passed on, when a behaviour cannot be copied.
    [[nodiscard]] TObject* Clone() override;
    /// Moves the target away from this handler, forgets it wherever the application remembers it,
    /// then frees the behaviours and the handler.
    void Free() override;

    // Slot order is part of the binary interface: append, never move.

    virtual void BecameWindowTarget();
    [[nodiscard]] virtual TEventHandler* GetNextHandler();
    /// Called when the idle frequency is due. After true the call does not count as one: the
    /// handler stays due.
    virtual bool DoIdle(IdlePhase phase);
    virtual void DoEvent(std::int32_t number, TEventHandler* source, TEvent* event);
    virtual void HandleEvent(std::int32_t number, TEventHandler* source, TEvent* event);
    virtual void SetEnable(bool enable);
    [[nodiscard]] virtual bool IsEnabled();
    /// Whether two presses at these places count as clicks on one spot.
    [[nodiscard]] virtual bool DoMultiClick(const _CPoint& first, const _CPoint& second);
    virtual void DoKeyEvent(TToolboxEvent* event);
    virtual void DoKeyUp(TToolboxEvent* event);
    virtual void HandleKeyCommand(TToolboxEvent* event);
    virtual void DoCommandKeyEvent(TToolboxEvent* event);
    virtual void HandleCommandKey(TToolboxEvent* event);
    /// Fills the event's key code and character code.
    virtual void KeyEventToComponents(TToolboxEvent* event);
    virtual void DoMenuCommand(std::int32_t command);
    virtual void DoSetupMenus();
    virtual void HandleSetupMenus();
    /// Fills in the help for where the event is; untouched when nobody has any.
    virtual void DoHelp(TToolboxEvent* event, std::string& result);
    [[nodiscard]] virtual TWindow* GetWindow();
    [[nodiscard]] virtual const TWindow* GetWindow() const;
    /// Whether a click or Tab makes this handler the target.
    [[nodiscard]] virtual bool WantsToBeTarget();
    /// 0 when the handler may lose the target, else a code for ValidationFailed.
    [[nodiscard]] virtual std::int32_t WillingToResignTarget();
    [[nodiscard]] virtual bool WantsToResignTargetFromAnotherClick();
    /// Calls the validation callback, when there is one.
    virtual void ValidationSucceeded();
    virtual void ValidationFailed(std::int32_t code);
    virtual void SetTargetSelection(bool select);
    virtual void ResignedWindowTarget();
    virtual void BecameTarget();
    virtual void ResignedTarget();
    /// Makes this handler the application's target, unless the present one refuses to resign.
    virtual bool BecomeTarget();
    /// Asks the application's present target to resign; the application is the target afterwards.
    /// False when it refuses.
    virtual bool ResignTarget();
    virtual void Terminate();
    [[nodiscard]] virtual bool IsTarget();
    /// Selects what begins with the typed text, in handlers that show a list.
    virtual void DoKeySelection(const std::string& typed);
    [[nodiscard]] virtual std::uint32_t GetIdentifier();
    virtual void SetIdentifier(std::uint32_t identifier);
    /// Ticks between two calls of DoIdle, kNoIdle for none.
    [[nodiscard]] virtual std::int32_t GetIdleFreq();
    /// Also enters the handler with the application's idle time.
    virtual void SetIdleFreq(std::int32_t ticks);
    /// Takes a behaviour out of the list; the caller owns it afterwards. Nothing happens when it is
    /// not in the list.
    virtual void RemoveBehavior(TBehavior* behavior);
    /// Appends a behaviour (null is ignored) and owns it from now on. One that belongs to a handler
    /// already is taken from it first.
    virtual void AddBehavior(TBehavior* behavior);
    [[nodiscard]] virtual TBehavior* GetFirstBehavior();
    [[nodiscard]] virtual TBehavior* GetFirstEnabledBehavior();
    [[nodiscard]] virtual TBehavior* GetBehaviorWithIdentifier(std::uint32_t identifier);
    /// Tells every behaviour whether its owner is selected.
    virtual void SelectOwner(bool selected);
    [[nodiscard]] virtual TEvent* RetrieveAnEvent();
    /// Gives an event to the end of the chain, where the application queues it. The chain owns it
    /// from now on: with nobody to take it, it is freed when it frees on completion. The event goes
    /// before those that wait already when atFront is set.
    virtual void PostAndConsumeEvent(TEvent* event, bool atFront);
    /// The same for a command.
    virtual void PostCommand(TCommand* command);

    // Chain

    /// Appends a handler at the end of this chain and returns this. A handler that is in it
    /// already, null included, changes nothing.
    TEventHandler* AddHandler(TEventHandler* handler);
    /// Takes this handler out of the chain that begins at head, clears its next link and returns
    /// the chain's new head. Nothing happens when it is not in that chain.
    TEventHandler* RemoveHandler(TEventHandler* head);

    // Messages

    void HandleKeyUp(TToolboxEvent* event);
    void HandleMenuCommand(std::int32_t command);
    /// The tick at which the handler or one of its behaviours next wants idle time; kNoIdle for
    /// never. Deliberate: a handler's own wish counts from now, a behaviour's from its last idle
    /// call.
    [[nodiscard]] std::int32_t NextIdle();
    void HandleIdle(IdlePhase phase);

    /// Called by ValidationSucceeded. Returns the previous one.
    ValidationCallback SetValidationCallback(ValidationCallback callback);

    /// What ReadContainer makes behaviours with. The view server puts itself in; before that, and
    /// for null, it is the class registry and the container's "class". Returns the previous one.
    static ObjectMaker SetObjectMaker(ObjectMaker maker);

  private:
    friend class TBehavior;
    class QuietWalk;
    static void PassKeyFrom(TEventHandler* handler, TToolboxEvent* event);
    void FreeBehaviors();
    void LeaveApplication();

    // The order of the fields is part of the binary interface.
    TEventHandler* mNextHandler = nullptr; // not owned
    TBehavior* mFirstBehavior = nullptr;   // owned, with the list behind it
    std::int32_t mIdleFreq = kNoIdle;      // ticks
    std::uint32_t mLastIdle = 0;           // tick of the last idle call; 0: none yet
    bool mEnabled = true;
    std::uint32_t mIdentifier = kNoIdentifier;
    ValidationCallback mValidationCallback = nullptr;
};

/// How far apart two presses may be and still be clicks on one spot: 4 on either axis.
extern QLX_API _CPoint gStdHysteresis;
