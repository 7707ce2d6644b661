// TTracker follows the mouse from a press to its release: what a drag does, apart from the view
// that began it.
#pragma once

#include "qlx/foundation/uobject.h"
#include "qlx/views/ugeometry.h"

/// Where in its life a tracking is.
enum TrackPhase : int {
    kTrack_Begin = 0,
    kTrack_Continue = 1,
    kTrack_End = 2,
    kTrack_Cancel = 3 ///< Escape, loss of the mouse, the view gone: nothing of the drag may remain
};

/// One drag. Given to TView::BeginTracking, which makes the window its owner; freed after the end
/// or cancellation. All points are in the view's local coordinates, and the view may scroll
/// meanwhile.
class QLX_API TTracker : public TObject {
  public:
    QLX_DECLARE_CLASS(TTracker);
    TTracker();
    ~TTracker() override;

    /// Null once the view is gone; no phase but kTrack_Cancel follows then.
    [[nodiscard]] TView* GetView() const { return mView; }
    /// Where the press was.
    [[nodiscard]] const VPoint& GetAnchor() const { return mAnchor; }
    /// Where the mouse was at the previous call.
    [[nodiscard]] const VPoint& GetPrevious() const { return mPrevious; }
    /// Ends the tracking from inside: kTrack_Cancel follows at once.
    void Cancel();
    /// How far the mouse has to go before movement counts; 0 unless set.
    void SetHysteresis(VCoordinate pixels) { mHysteresis = pixels; }
    /// With true the tracker hears of time too while the button is held: TrackMouse is called again
    /// with the last point at this interval in seconds (scrolling at an edge). 0 turns it off.
    void SetRepeat(double seconds) { mRepeat = seconds; }
    [[nodiscard]] double GetRepeat() const { return mRepeat; }
    /// Whether the mouse has gone further than the hysteresis.
    [[nodiscard]] bool HasMoved() const { return mMoved; }

    // Slot order is part of the binary interface: append, never move.

    /// One step. The point has been through TrackConstrain. The event is null for repeats and for a
    /// cancellation that no event caused.
    virtual void TrackMouse(TrackPhase phase, const VPoint& anchor, const VPoint& previous,
                            const VPoint& next, TToolboxEvent* event);
    /// May move the point before TrackMouse sees it: to a grid, along one axis, into a rectangle.
    virtual void TrackConstrain(const VPoint& anchor, const VPoint& previous, VPoint& next);
    /// A key went down meanwhile. True keeps it from the target. Escape never comes here.
    virtual bool TrackKey(TToolboxEvent* event);

  private:
    friend class TWindow;
    TView* mView = nullptr; // not owned
    VPoint mAnchor;
    VPoint mPrevious;
    VCoordinate mHysteresis = 0;
    double mRepeat = 0;
    bool mMoved = false;
    bool mCancelled = false;
};
