#include "host/session_model.h"

#include <algorithm>

void SessionModel::SetState(const SessionState& state, int change) {
    mState = state;
    mState.mStart = std::clamp<std::int64_t>(state.mStart, 0, mFrameCount);
    mState.mEnd = std::clamp(state.mEnd, mState.mStart, mFrameCount);
    mState.mGain = std::clamp(state.mGain, kLeastGain, kMostGain);
    mState.mPan = std::clamp(state.mPan, -100, 100);
    Changed(change, this);
}

void SessionModel::SetNudge(std::int64_t samples) {
    mNudge = std::clamp<std::int64_t>(samples, 1, std::max<std::int64_t>(1, mFrameCount));
    Changed(kSession_Settings, this);
}

void SessionModel::SetGrid(std::int64_t samples) {
    mGrid = std::max<std::int64_t>(1, samples);
    Changed(kSession_Settings, this);
}

std::int64_t SessionModel::Snap(std::int64_t position) const {
    return mSnaps ? (position + mGrid / 2) / mGrid * mGrid : position;
}

SessionState SessionModel::WithStart(std::int64_t start) const {
    SessionState state = mState;
    const std::int64_t length = state.mEnd - state.mStart;
    state.mStart = std::clamp<std::int64_t>(start, 0, mFrameCount);
    state.mEnd = std::min(state.mStart + length, mFrameCount);
    return state;
}

SessionState SessionModel::WithEnd(std::int64_t end) const {
    SessionState state = mState;
    state.mEnd = std::clamp<std::int64_t>(end, 0, mFrameCount);
    state.mStart = std::min(state.mStart, state.mEnd);
    return state;
}

SessionState SessionModel::WithLength(std::int64_t length) const {
    return WithEnd(mState.mStart + std::max<std::int64_t>(0, length));
}

SessionState SessionModel::WithSelection(std::int64_t start, std::int64_t end) const {
    SessionState state = mState;
    state.mStart = std::clamp<std::int64_t>(std::min(start, end), 0, mFrameCount);
    state.mEnd = std::clamp<std::int64_t>(std::max(start, end), 0, mFrameCount);
    return state;
}

SessionState SessionModel::Moved(std::int64_t distance) const {
    SessionState state = mState;
    const std::int64_t held =
        std::clamp(distance, -state.mStart, std::max<std::int64_t>(0, mFrameCount - state.mEnd));
    state.mStart += held;
    state.mEnd += held;
    return state;
}
