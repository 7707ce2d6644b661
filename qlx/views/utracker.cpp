#include "qlx/views/utracker.h"

QLX_DEFINE_CLASS(TTracker, TObject);

TTracker::TTracker() = default;

TTracker::~TTracker() = default;

void TTracker::Cancel() { mCancelled = true; }

void TTracker::TrackMouse(TrackPhase, const VPoint&, const VPoint&, const VPoint&, TToolboxEvent*) {
}

void TTracker::TrackConstrain(const VPoint&, const VPoint&, VPoint&) {}

bool TTracker::TrackKey(TToolboxEvent*) { return false; }
