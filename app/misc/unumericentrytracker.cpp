#include "app/misc/unumericentrytracker.h"

#include <cstdlib>

#include "app/misc/unumericentrytext.h"

QLX_DEFINE_CLASS(TNumericEntryTracker, TTracker)

TNumericEntryTracker::TNumericEntryTracker(bool wasTarget) : mWasTarget(wasTarget) {}

TNumericEntryTracker::~TNumericEntryTracker() = default;

// A drag that has not begun: what is under way belongs to one press.
TObject* TNumericEntryTracker::Clone() { return new TNumericEntryTracker(mWasTarget); }

TNumericEntryText* TNumericEntryTracker::GetField() const {
    return QLX_ObjectCast<TNumericEntryText>(GetView());
}

void TNumericEntryTracker::TrackMouse(TrackPhase phase, const VPoint& anchor,
                                      const VPoint& previous, const VPoint& next, TToolboxEvent*) {
    const TView::StDispatch dispatch;
    if (GetField() == nullptr)
        return;
    switch (phase) {
    case kTrack_Begin:
        Begin();
        break;
    case kTrack_Continue:
        Continue(anchor, previous, next);
        break;
    case kTrack_End:
        End();
        break;
    case kTrack_Cancel:
        TakeBack();
        break;
    }
}

// Tab or the program has ended the edit that the drag was part of: its value stands as it is.
bool TNumericEntryTracker::IsOver() {
    mIsOver = mIsOver || !GetField()->IsTarget();
    return mIsOver;
}

void TNumericEntryTracker::Begin() {
    TNumericEntryText* const field = GetField();
    mText = field->GetText();
    field->Changed(kNumericEntry_TrackingBegins, field);
    if (!field->mGone)
        field->UpdateClient(0, false, false, false, false, /*fromTracking*/ true, kTrack_Begin);
}

void TNumericEntryTracker::Continue(const VPoint& anchor, const VPoint& previous,
                                    const VPoint& next) {
    TNumericEntryText* const field = GetField();
    if (IsOver() || (!mDragged && std::llabs(next.v - anchor.v) <= kSlop))
        return;
    mDragged = true;
    const VCoordinate upwards = previous.v - next.v;
    if (upwards == 0 || field->IsWildcard())
        return;
    field->AddValueToCurrentSelection(upwards);
    field->SetTypedCount(0);
    field->UpdateClient(upwards > 0 ? 1 : -1, false, false, false, false, /*fromTracking*/ true,
                        kTrack_Continue);
}

void TNumericEntryTracker::End() {
    TNumericEntryText* const field = GetField();
    field->Changed(kNumericEntry_TrackingEnds, field);
    if (!mDragged || field->mGone)
        return;
    field->UpdateClient(0, false, false, false, false, /*fromTracking*/ true, kTrack_End);
    if (field->mGone)
        return;
    if (!IsOver() && (!mWasTarget || field->mResignAfterTracking))
        TNumericEntryText::RestoreOldTarget();
}

void TNumericEntryTracker::TakeBack() {
    TNumericEntryText* const field = GetField();
    field->Changed(kNumericEntry_TrackingEnds, field);
    if (!mDragged || field->mGone)
        return;
    if (!IsOver())
        field->ChangeText(mText);
    field->UpdateClient(0, false, false, false, false, /*fromTracking*/ true, kTrack_End);
}
