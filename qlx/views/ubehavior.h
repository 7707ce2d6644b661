// TBehavior: something attached to a handler that sees its messages before the handler itself does,
// so that one piece of behaviour serves handlers of any class.
#pragma once

#include "qlx/foundation/uobject.h"
#include "qlx/views/ueventhandler.h"

class VPoint;
class VRect;

/// An element of a handler's behaviour list. A behaviour consumes a message by not calling the
/// inherited Do, whose default goes to the next enabled behaviour and after the last one to the
/// owner's own Do.
///
/// The list is doubly linked; each behaviour owns the ones after it and is owned by its handler. A
/// behaviour may be removed, freed or disabled while a message is with it or with others of the
/// list: what is passed on after that goes on from where the behaviour stands then, and nowhere
/// when it stands in no list. User-interface thread.
class QLX_API TBehavior : public TObject {
  public:
    QLX_DECLARE_CLASS(TBehavior);
    TBehavior();
    ~TBehavior() override;

    void IBehavior(std::uint32_t identifier);

    /// Reads "Enabled" and "Identifier".
    void ReadProperties(QLX_RawPropertyContainer* container,
                        const Cmn_AliasedRefCountPtr<QLX_ViewMemento>& memento) override;
    /// The copy belongs to no handler and stands in no list.
    [[nodiscard]] TObject* Clone() override;
    /// Frees the behaviours after this one too. Take a behaviour out of its list first to free it
    /// alone.
    void Free() override;

    // Slot order is part of the binary interface: append, never move.

    /// Ticks between two calls of DoIdle, kNoIdle for none.
    virtual void SetIdleFreq(std::int32_t ticks);
    [[nodiscard]] virtual std::int32_t NextIdle();
    virtual void HandleIdle(IdlePhase phase);
    /// Called when the idle frequency is due. After true the call does not count as one: the
    /// behaviour stays due.
    virtual bool DoIdle(IdlePhase phase);
    virtual void SetNextBehavior(TBehavior* next);
    virtual void SetPreviousBehavior(TBehavior* previous);
    [[nodiscard]] virtual TBehavior* GetNextBehavior();
    [[nodiscard]] virtual TBehavior* GetNextEnabledBehavior();
    virtual void SetOwner(TEventHandler* owner);
    [[nodiscard]] virtual bool IsOwnerSelected();
    virtual void SelectOwner(bool selected);
    [[nodiscard]] virtual bool IsEnabled();
    virtual void SetEnabled(bool enabled);
    /// Puts a behaviour before (after) another one of the list that begins here, and sets its owner
    /// to this one's; before the first one it becomes the handler's first. Null, and a place that
    /// is not in the list, are ignored.
    virtual void InsertBefore(TBehavior* behavior, TBehavior* place);
    virtual void InsertAfter(TBehavior* behavior, TBehavior* place);
    /// Links a behaviour after the last one; its owner is left alone.
    virtual void AppendBehavior(TBehavior* behavior);
    /// Takes out a behaviour that stands after this one in the list, and clears its links and
    /// owner.
    virtual void RemoveBehavior(TBehavior* behavior);
    virtual void DoCommandKeyEvent(TToolboxEvent* event);
    virtual void DoEvent(std::int32_t number, TEventHandler* source, TEvent* event);
    virtual void DoKeyEvent(TToolboxEvent* event);
    virtual void DoKeyUp(TToolboxEvent* event);
    virtual void DoMenuCommand(std::int32_t command);
    virtual void DoSetupMenus();
    /// An object that the owner depends on has changed. Goes along the behaviours only.
    virtual void DoBehaviorUpdate(int change, TObject* changedObject, TObject* changedBy,
                                  TDependencySpace* space);

    // Called by views before their own code; true says that the behaviour consumed the event.
    // Points and areas are in the view's local coordinates.

    virtual bool DoMouseCommand(const VPoint& mouse, TToolboxEvent* event);
    virtual bool DoMouseUp(const VPoint& mouse, TToolboxEvent* event);
    virtual bool DoMouseWheel(const VPoint& mouse, TToolboxEvent* event);
    /// Called after the view's own drawing, on top of it.
    virtual void Draw(const VRect& area);
    virtual bool DoSetCursor(const VPoint& mouse);
    virtual bool DoToolboxEvent(TToolboxEvent* event);

    [[nodiscard]] std::uint32_t GetIdentifier() const { return mIdentifier; }
    void SetIdentifier(std::uint32_t identifier) { mIdentifier = identifier; }
    [[nodiscard]] TEventHandler* GetOwner() const { return mOwner; }
    [[nodiscard]] TBehavior* GetPreviousBehavior() const { return mPrevious; }
    [[nodiscard]] std::int32_t GetIdleFreq() const { return mIdleFreq; }

  private:
    friend class TEventHandler;
    [[nodiscard]] TBehavior* ThisOrNextEnabled();
    void Unlink();
    void TakeFromOwner();

    // The order of the fields is part of the binary interface.
    std::uint32_t mIdentifier = kNoIdentifier;
    TEventHandler* mOwner = nullptr; // not owned
    bool mEnabled = true;
    bool mOwnerSelected = false;
    TBehavior* mPrevious = nullptr;   // not owned
    TBehavior* mNext = nullptr;       // owned
    std::int32_t mIdleFreq = kNoIdle; // ticks
    std::uint32_t mLastIdle = 0;      // tick of the last idle call; 0: none yet
};
