#include "app/misc/unumericentrydata.h"

#include "mediakit/time/time_muldiv.h"

Time_Typed CNumericEntryCallbackInfo::GetTimeTypedValue() const {
    if (mData.mType == kEntryType_BarsBeats || mData.mType == kEntryType_Duration)
        return Time_Typed(mData.mTicks);
    return Time_Typed(Time_Sample(mData.mValue));
}

Time_TypedLength CNumericEntryCallbackInfo::GetTimeTypedLength(const Time_Typed& start,
                                                               ELength_Dir direction) const {
    const bool inTicks = mData.mType == kEntryType_BarsBeats || mData.mType == kEntryType_Duration;
    if (mData.mIsDuration || mData.mType == kEntryType_Duration)
        return inTicks ? Time_TypedLength(mData.mTicks)
                       : Time_TypedLength(Time_SampleLength(mData.mValue));
    if (inTicks) {
        const Time_TickLength span = mData.mTicks - start.GetTicks();
        return Time_TypedLength(direction == ELength_Dir::Forward ? span : -span);
    }
    const Time_SampleLength span = Time_Sample(mData.mValue) - start.GetSample();
    return Time_TypedLength(direction == ELength_Dir::Forward ? span : -span);
}

Time_SampleLength CNumericEntryCallbackInfo::GetSampleLengthValue() const {
    return Time_SampleLength(mData.mValue);
}

std::int64_t CNumericEntryCallbackInfo::GetMilliSeconds() const {
    if (mData.mType == kEntryType_MinutesSeconds)
        return mData.mMinSec.GetMilliSeconds();
    return Time_MulDiv(mData.mValue, 1000, Time_Session::GetSampleRate(), Time_ERounding::Nearest);
}

ENumericEntryFormat TimeFormatToNumericEntryFormat(ETimeFormat format) {
    switch (format) {
    case kTimeFormat_BarsBeats:
        return kNumericEntry_BarsBeats;
    case kTimeFormat_MinutesSeconds:
        return kNumericEntry_MinutesSeconds;
    case kTimeFormat_FeetFrames:
        return kNumericEntry_FeetFrames;
    case kTimeFormat_Samples:
        return kNumericEntry_Samples;
    case kTimeFormat_TimeCode:
        break;
    }
    return kNumericEntry_TimeCode;
}

ETimeFormat NumericEntryFormatToTimeFormat(ENumericEntryFormat format) {
    switch (format) {
    case kNumericEntry_BarsBeats:
        return kTimeFormat_BarsBeats;
    case kNumericEntry_MinutesSeconds:
        return kTimeFormat_MinutesSeconds;
    case kNumericEntry_FeetFrames:
        return kTimeFormat_FeetFrames;
    case kNumericEntry_Samples:
        return kTimeFormat_Samples;
    default:
        return kTimeFormat_TimeCode;
    }
}
