#include "app/misc/uminsecsentryhelper.h"

#include "app/misc/uentrypaste.h"
#include "app/misc/uentryshapes.h"
#include "app/misc/unumericentrytext.h"
#include "mediakit/time/time_muldiv.h"

CEntryLayout CMinutesAndSecondsEntryHelper::GetLayout(TNumericEntryText*) const {
    return {{0, 4}, {5, 7}, {8, 11}};
}

std::string CMinutesAndSecondsEntryHelper::GetZeroText(TNumericEntryText*) const {
    return "   0:00.000";
}

bool CMinutesAndSecondsEntryHelper::MatchesShape(TNumericEntryText*,
                                                 const std::string& text) const {
    return Entry_IsMinutesSeconds(text);
}

bool CMinutesAndSecondsEntryHelper::ReadUnits(TNumericEntryText*, const std::string& text,
                                              std::int64_t& units) const {
    Time_MinSec time;
    if (!time.FromString(text))
        return false;
    units = time.GetMilliSeconds();
    return true;
}

void CMinutesAndSecondsEntryHelper::WriteUnits(TNumericEntryText*, std::int64_t units,
                                               std::string& text) const {
    text = Time_MinSec(units).ToString();
}

std::int64_t CMinutesAndSecondsEntryHelper::StepUnits(TNumericEntryText*, std::int64_t units,
                                                      int block, std::int64_t delta) const {
    const std::int64_t milliseconds = block == 0 ? 60000 : block == 1 ? 1000 : 1;
    return Cmn_SaturatingAdd(units, Time_SaturatingMultiply(delta, milliseconds));
}

std::int64_t CMinutesAndSecondsEntryHelper::GetMaxUnits(TNumericEntryText*) const {
    return std::int64_t{9999} * 60000 + 59999; // all that four digits of minutes can show
}

std::int64_t CMinutesAndSecondsEntryHelper::UnitsToSamples(TNumericEntryText*,
                                                           std::int64_t units) const {
    return Time_MinSec(units).GetSamples(Time_Session::GetSampleRate()).GetSamples();
}

std::int64_t CMinutesAndSecondsEntryHelper::SamplesToUnits(TNumericEntryText*,
                                                           std::int64_t samples) const {
    Time_MinSec time;
    time.SetFromSamples(Time_SampleLength(samples), Time_Session::GetSampleRate());
    return time.GetMilliSeconds();
}

void CMinutesAndSecondsEntryHelper::FillData(TNumericEntryText*, std::int64_t units,
                                             CNumericEntryData* data) const {
    data->mType = kEntryType_MinutesSeconds;
    data->mMinSec = Time_MinSec(units);
}

char CMinutesAndSecondsEntryHelper::GetPadding(int block) const { return block == 0 ? ' ' : '0'; }

bool CMinutesAndSecondsEntryHelper::TakePasted(TNumericEntryText*, const CPastedTime& pasted,
                                               std::int64_t& units) const {
    if (pasted.mKind != CPastedTime::Kind::Clock)
        return false;
    units = pasted.mMilliseconds;
    return true;
}

const char* COptionalMinsSecsEntryHelper::GetEmptyText(TNumericEntryText*) const {
    return "----:--.---";
}
