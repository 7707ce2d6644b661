// What a session holds, without a window: the edit selection and the values of the track.
#pragma once

#include <string>

#include "host/session_api.h"
#include "qlx/foundation/uobject.h"

/// Change codes of SessionModel::Changed.
enum ESessionChange : int {
    kSession_Selection = 1000,
    kSession_Track = 1001,
    kSession_Settings = 1002
};

/// Everything that can be undone. Positions and lengths in samples, half-open selection.
struct SessionState {
    std::int64_t mStart = 0;
    std::int64_t mEnd = 0;
    std::int32_t mGain = 0; ///< tenths of a decibel; the volume field's and slider's unit
    std::int32_t mPan = 0;  ///< -100 to 100
    std::string mTrackName = "Audio 1";

    friend bool operator==(const SessionState&, const SessionState&) = default;
};

/// The document. Its dependents hear of every change (ESessionChange).
class SESSION_API SessionModel : public TObject {
  public:
    static constexpr std::int32_t kLeastGain = -1200; ///< shown as "-inf"
    static constexpr std::int32_t kMostGain = 120;

    [[nodiscard]] const SessionState& GetState() const { return mState; }
    /// Puts a state in place, its values held within bounds, and tells the dependents.
    void SetState(const SessionState& state, int change);

    // Settings that are not undone

    [[nodiscard]] std::int64_t GetFrameCount() const { return mFrameCount; }
    void SetFrameCount(std::int64_t frames) { mFrameCount = frames; }
    [[nodiscard]] std::int64_t GetNudge() const { return mNudge; }
    void SetNudge(std::int64_t samples);
    [[nodiscard]] std::int64_t GetGrid() const { return mGrid; }
    void SetGrid(std::int64_t samples);
    [[nodiscard]] bool SnapsToGrid() const { return mSnaps; }
    void SetSnapsToGrid(bool snaps) { mSnaps = snaps; }
    /// The nearest grid line, or the position itself while nothing snaps.
    [[nodiscard]] std::int64_t Snap(std::int64_t position) const;

    // How the coupled fields change a selection: start moves the whole, end and length the end.

    [[nodiscard]] SessionState WithStart(std::int64_t start) const;
    [[nodiscard]] SessionState WithEnd(std::int64_t end) const;
    [[nodiscard]] SessionState WithLength(std::int64_t length) const;
    [[nodiscard]] SessionState WithSelection(std::int64_t start, std::int64_t end) const;
    /// The selection moved, held within the session without changing its length.
    [[nodiscard]] SessionState Moved(std::int64_t distance) const;

  private:
    SessionState mState;
    std::int64_t mFrameCount = 0;
    std::int64_t mNudge = 4800;
    std::int64_t mGrid = 48000;
    bool mSnaps = false;
};
