// The words of numeric entry fields: formats, directions, and the records in which a field hands
// its value to the host.
#pragma once

#include <string>

#include "mediakit/time/time_feetframe.h"
#include "mediakit/time/time_minsec.h"
#include "mediakit/time/time_smpte.h"
#include "mediakit/time/time_typed.h"

class TNumericEntryText;

/// What a field is typed in. The values are the keys of the helper registry and stand in view
/// descriptions ("FormatOverride"): they never change.
enum ENumericEntryFormat : std::int32_t {
    kNumericEntry_None = 0,
    kNumericEntry_BarsBeats = 1,
    kNumericEntry_MinutesSeconds = 2,
    kNumericEntry_TimeCode = 4,
    kNumericEntry_FeetFrames = 8,
    kNumericEntry_Samples = 16,
    kNumericEntry_Integer = 32,
    kNumericEntry_HostTap = 128,  ///< the host's; takes tap entry and notifies on Return
    kNumericEntry_HostText = 256, ///< the host's; takes letters, digits, "#" and "-"
    kNumericEntry_Volume = 512,
    kNumericEntry_SignedInteger = 2048,
    kNumericEntry_MeterDenominator = 8192,
    kNumericEntry_Duration = 16384,
    kNumericEntry_PlusValue = 32768,
    kNumericEntry_HostTap2 = 65536 ///< the host's second one with tap entry
};

/// The host's time formats, as its counters and rulers number them.
enum ETimeFormat : std::int32_t {
    kTimeFormat_BarsBeats = 0,
    kTimeFormat_MinutesSeconds = 1,
    kTimeFormat_TimeCode = 2,
    kTimeFormat_FeetFrames = 3,
    kTimeFormat_Samples = 4
};

enum EBlockHiliteDirection : std::int32_t {
    kBlock_Previous = 1, ///< towards the left
    kBlock_Next = 2      ///< towards the right
};

enum ENumericEntryCalculationType : std::int32_t {
    kCalculation_Add = 0,
    kCalculation_Subtract = 1
};

/// Whether "+" and "-" collect an operand.
enum EArithmeticMode : std::int32_t {
    kArithmetic_None = 0,
    kArithmetic_Adding = 1,
    kArithmetic_Subtracting = 2
};

/// Menu commands that a field which is the target carries out.
enum ENumericEntryCommand : std::int32_t {
    kEntryCommand_Cut = 103,
    kEntryCommand_Copy = 104,
    kEntryCommand_Paste = 105,
    kEntryCommand_Clear = 106
};

/// What a record holds. 20 is time code's number in every host; the others continue from it.
enum ENumericEntryType : std::int32_t {
    kEntryType_None = 0,
    kEntryType_TimeCode = 20,
    kEntryType_MinutesSeconds = 21,
    kEntryType_FeetFrames = 22,
    kEntryType_Samples = 23,
    kEntryType_BarsBeats = 24,
    kEntryType_Duration = 25,
    kEntryType_Number = 26, ///< an integer; for levels tenths of a decibel
    kEntryType_Level = 27
};

/// A field's value, filled by its format's helper. Plain data.
struct QLX_API CNumericEntryData {
    // The order of the fields is part of the binary interface.
    ETimeCodeFormat mTimeCodeFormat = ETimeCodeFormat::F30;
    Time_SMPTE mSMPTE{ETimeCodeFormat::F30};
    Time_MinSec mMinSec;
    Time_FeetFrame mFeetFrame;
    Time_TickLength mTicks; ///< bars and beats: from bar 1; a duration: its length
    /// For times the position from the session start, or the length, in samples; else the number.
    std::int64_t mValue = 0;
    double mFloatValue = 0;
    std::int32_t mType = kEntryType_None;
    bool mIsDuration = false; ///< a length, not a position
    bool mIsEmpty = false;    ///< an optional field without a value
    bool mIsWildcard = false; ///< the text is "*"
};

/// What the client's callback receives: the value, and what the user did.
class QLX_API CNumericEntryCallbackInfo {
  public:
    CNumericEntryCallbackInfo(TNumericEntryText* field, const CNumericEntryData& data) noexcept
        : mField(field), mData(data) {}

    [[nodiscard]] const CNumericEntryData& GetData() const noexcept { return mData; }
    /// The field that calls; not owned. May be freed by the callback.
    [[nodiscard]] TNumericEntryText* GetField() const noexcept { return mField; }

    /// The position: ticks for bars and beats, samples from the session start for everything else.
    [[nodiscard]] Time_Typed GetTimeTypedValue() const;
    /// The length. A position answers its distance from start, which lies behind it (Forward) or
    /// before it (Backward).
    [[nodiscard]] Time_TypedLength GetTimeTypedLength(const Time_Typed& start,
                                                      ELength_Dir direction) const;
    /// The value as a length in samples.
    [[nodiscard]] Time_SampleLength GetSampleLengthValue() const;
    /// The value in whole milliseconds at the session's sample rate; nearest, halves up.
    [[nodiscard]] std::int64_t GetMilliSeconds() const;

    // What the user did: the key, or 0 and the step's sign while the mouse drags.
    short mKeyOrStep = 0;
    bool mCommandKey = false;
    bool mShiftKey = false;
    bool mOptionKey = false;
    bool mControlKey = false;
    bool mFromTracking = false;
    int mTrackPhase = 0; ///< TrackPhase

  private:
    TNumericEntryText* mField;
    CNumericEntryData mData;
};
