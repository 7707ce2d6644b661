#include "mediakit/time/time_typed.h"

#include "mediakit/time/time_format.h"

Time_Sample Time_Typed::GetSample() const {
    if (mType == Time_EType::Samples)
        return Time_Sample(mValue);
    return Time_SessionTempoMap().ToSample(Time_TickLength(mValue), Time_Session::GetSampleRate());
}

Time_TickLength Time_Typed::GetTicks() const {
    if (mType == Time_EType::Ticks)
        return Time_TickLength(mValue);
    return Time_SessionTempoMap().FromSample(Time_Sample(mValue), Time_Session::GetSampleRate());
}

Time_Typed Time_TypedLength::GetOtherEnd(const Time_Typed& anchor, ELength_Dir direction) const {
    if (mType == Time_EType::Samples) {
        const Time_SampleLength length(mValue);
        return Time_Typed(anchor.GetSample() +
                          (direction == ELength_Dir::Forward ? length : -length));
    }
    const Time_TickLength length(mValue);
    return Time_Typed(anchor.GetTicks() + (direction == ELength_Dir::Forward ? length : -length));
}

Time_SampleLength Time_TypedLength::GetSamples(const Time_Typed& anchor,
                                               ELength_Dir direction) const {
    if (mType == Time_EType::Samples)
        return Time_SampleLength(mValue);
    const Time_SampleLength span = GetOtherEnd(anchor, direction).GetSample() - anchor.GetSample();
    return direction == ELength_Dir::Forward ? span : -span;
}
