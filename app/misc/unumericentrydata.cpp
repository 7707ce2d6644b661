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
