#include "app/misc/ufeetframesentryhelper.h"

#include "app/misc/uentrypaste.h"
#include "app/misc/uentryshapes.h"
#include "app/misc/unumericentrytext.h"

CEntryLayout CFeetAndFramesEntryHelper::GetLayout(TNumericEntryText*) const {
    if (HasSubframes())
        return {{0, 6}, {7, 9}, {10, 12}};
    return {{0, 6}, {7, 9}};
}

std::string CFeetAndFramesEntryHelper::GetZeroText(TNumericEntryText*) const {
    return HasSubframes() ? "     0+00.00" : "     0+00";
}

bool CFeetAndFramesEntryHelper::MatchesShape(TNumericEntryText*, const std::string& text) const {
    return Entry_IsFeetFrames(text, HasSubframes());
}

Time_FeetFrame CFeetAndFramesEntryHelper::ToTime(std::int64_t units) const {
    if (!HasSubframes())
        return Time_FeetFrame(units);
    Time_FeetFrame time;
    time.SetFromTotalSubframes(units);
    return time;
}

std::int64_t CFeetAndFramesEntryHelper::ToUnits(const Time_FeetFrame& time) const {
    return HasSubframes() ? time.GetTotalSubframes() : time.GetTotalFrames();
}

bool CFeetAndFramesEntryHelper::ReadUnits(TNumericEntryText*, const std::string& text,
                                          std::int64_t& units) const {
    Time_FeetFrame time;
    if (!time.FromString(text))
        return false;
    units = ToUnits(time);
    return true;
}

void CFeetAndFramesEntryHelper::WriteUnits(TNumericEntryText*, std::int64_t units,
                                           std::string& text) const {
    text = ToTime(units).ToString(HasSubframes());
}

// Whole feet and single frames are added as footage; frames beyond a foot become feet, the rest
// keeps the step's sign.
std::int64_t CFeetAndFramesEntryHelper::StepUnits(TNumericEntryText*, std::int64_t units, int block,
                                                  std::int64_t delta) const {
    constexpr int subframesBlock = 2;
    if (block == subframesBlock)
        return Cmn_SaturatingAdd(units, delta);
    const Time_FeetFrame step =
        block == 0 ? Time_FeetFrame::FromFeetAndFrames(delta, 0)
                   : Time_FeetFrame::FromFeetAndFrames(delta / Time_FeetFrame::cFramesPerFoot,
                                                       delta % Time_FeetFrame::cFramesPerFoot);
    return ToUnits(ToTime(units) + step);
}

std::int64_t CFeetAndFramesEntryHelper::GetMaxUnits(TNumericEntryText*) const {
    // All that six digits of feet can show.
    return ToUnits(Time_FeetFrame::FromFeetAndFrames(999999, 15, HasSubframes() ? 99 : 0));
}

std::int64_t CFeetAndFramesEntryHelper::UnitsToSamples(TNumericEntryText*,
                                                       std::int64_t units) const {
    return ToTime(units).GetSamples(Time_Session::GetSampleRate()).GetSamples();
}

std::int64_t CFeetAndFramesEntryHelper::SamplesToUnits(TNumericEntryText*,
                                                       std::int64_t samples) const {
    Time_FeetFrame time;
    time.SetFromSamples(Time_SampleLength(samples), Time_Session::GetSampleRate(), HasSubframes());
    return ToUnits(time);
}

void CFeetAndFramesEntryHelper::FillData(TNumericEntryText*, std::int64_t units,
                                         CNumericEntryData* data) const {
    data->mType = kEntryType_FeetFrames;
    data->mFeetFrame = ToTime(units);
}

char CFeetAndFramesEntryHelper::GetPadding(int block) const { return block == 0 ? ' ' : '0'; }

bool CFeetAndFramesEntryHelper::TakePasted(TNumericEntryText*, const CPastedTime& pasted,
                                           std::int64_t& units) const {
    if (pasted.mKind != CPastedTime::Kind::FeetFrames)
        return false;
    units = ToUnits(pasted.mFeetFrame);
    return true;
}

bool CFeetAndFramesEntryHelper::HasSubframes() const { return false; }

bool CFeetFramesWSubsEntryHelper::HasSubframes() const { return true; }
