// TNumericEntryTracker: dragging a numeric entry field up and down steps its block.
#pragma once

#include <string>

#include "qlx/views/utracker.h"

class TNumericEntryText;

/// One drag over a field. Movement counts once the pointer is more than five pixels above or below
/// the press; from then on each pixel upwards adds one to the block that was pressed. Escape takes
/// the drag back. A field that loses the keyboard in the middle keeps what was dragged until then
/// and follows the mouse no longer.
class QLX_API TNumericEntryTracker : public TTracker {
  public:
    QLX_DECLARE_CLASS(TNumericEntryTracker);
    /// Whether the field was the target before the press.
    explicit TNumericEntryTracker(bool wasTarget = false);
    ~TNumericEntryTracker() override;

    void TrackMouse(TrackPhase phase, const VPoint& anchor, const VPoint& previous,
                    const VPoint& next, TToolboxEvent* event) override;
    [[nodiscard]] TObject* Clone() override;

    /// How far from the press a drag begins, in pixels.
    static constexpr int kSlop = 5;

  private:
    void Begin();
    void Continue(const VPoint& anchor, const VPoint& previous, const VPoint& next);
    void End();
    void TakeBack();
    [[nodiscard]] bool IsOver();
    [[nodiscard]] TNumericEntryText* GetField() const;

    bool mWasTarget;
    bool mDragged = false;
    bool mIsOver = false;
    std::string mText; // before the drag
};
