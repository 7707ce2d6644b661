#include "app/misc/utimecodeentryhelper.h"

#include "app/misc/uentrypaste.h"
#include "app/misc/uentryshapes.h"
#include "app/misc/unumericentrytext.h"
#include "mediakit/time/time_muldiv.h"

namespace {

ETimeCodeFormat FormatOf(TNumericEntryText* field) {
    return field != nullptr ? field->GetTimeCodeFormat() : Time_Session::GetTimeCodeFormat();
}

const Time_FormatInfo& InfoOf(TNumericEntryText* field) {
    return Time_GetFormatInfo(FormatOf(field));
}

bool IsPosition(TNumericEntryText* field) { return field != nullptr && !field->IsDurationText(); }

} // namespace

CEntryLayout CTimeCodeEntryHelper::GetLayout(TNumericEntryText* field) const {
    const auto framesEnd = static_cast<short>(9 + InfoOf(field).frameDigits);
    const auto subframes = static_cast<short>(framesEnd + 1);
    if (HasSubframes())
        return {
            {0, 2}, {3, 5}, {6, 8}, {9, framesEnd}, {subframes, static_cast<short>(subframes + 2)}};
    return {{0, 2}, {3, 5}, {6, 8}, {9, framesEnd}};
}

// Deliberate: the zero text has ":" before the frames at every rate; the rate's own separator comes
// back when the text is normalised.
std::string CTimeCodeEntryHelper::GetZeroText(TNumericEntryText* field) const {
    std::string text = InfoOf(field).frameDigits == 3 ? "00:00:00:000" : "00:00:00:00";
    if (HasSubframes())
        text += ".00";
    return text;
}

bool CTimeCodeEntryHelper::MatchesShape(TNumericEntryText* field, const std::string& text) const {
    return Entry_IsTimeCode(text, InfoOf(field).frameDigits, HasSubframes());
}

Time_SMPTE CTimeCodeEntryHelper::ToTime(TNumericEntryText* field, std::int64_t units) const {
    Time_SMPTE time(FormatOf(field));
    if (HasSubframes())
        time.SetFromTotalSubframes(units);
    else
        time.SetFromTotalFrames(units);
    return time;
}

std::int64_t CTimeCodeEntryHelper::ToUnits(const Time_SMPTE& time) const {
    return HasSubframes() ? time.GetTotalSubframes() : time.GetTotalFrames();
}

bool CTimeCodeEntryHelper::ReadUnits(TNumericEntryText* field, const std::string& text,
                                     std::int64_t& units) const {
    Time_SMPTE time(FormatOf(field));
    if (!Time_SMPTEUtils::FromString(text, FormatOf(field), time))
        return false;
    units = ToUnits(time);
    return true;
}

void CTimeCodeEntryHelper::WriteUnits(TNumericEntryText* field, std::int64_t units,
                                      std::string& text) const {
    char characters[Time_SMPTEUtils::cMaxChars];
    text.assign(characters,
                Time_SMPTEUtils::ToChars(ToTime(field, units), HasSubframes(), characters));
}

// A step is scaled by its block as labels count, then the left-out numbers are taken off.
std::int64_t CTimeCodeEntryHelper::StepUnits(TNumericEntryText* field, std::int64_t units,
                                             int block, std::int64_t delta) const {
    constexpr int subframesBlock = 4;
    const std::int64_t unitsPerFrame = HasSubframes() ? Time_SMPTE::cSubframesPerFrame : 1;
    if (block == subframesBlock)
        return Cmn_SaturatingAdd(units, delta);
    const Time_FormatInfo& info = InfoOf(field);
    constexpr std::int64_t seconds[] = {3600, 60, 1};
    const std::int64_t labelled =
        block >= 0 && block < 3
            ? Time_SaturatingMultiply(delta, seconds[block] * info.framesPerSecond)
            : delta;
    const std::int64_t frames =
        info.IsDropFrame() ? Time_SMPTE::DropFrames(labelled, info.format) : labelled;
    return Cmn_SaturatingAdd(units, Time_SaturatingMultiply(frames, unitsPerFrame));
}

std::int64_t CTimeCodeEntryHelper::GetMaxUnits(TNumericEntryText* field) const {
    const std::int64_t frames = InfoOf(field).FramesPerDay();
    return HasSubframes() ? frames * Time_SMPTE::cSubframesPerFrame - 1 : frames - 1;
}

std::int64_t CTimeCodeEntryHelper::UnitsToSamples(TNumericEntryText* field,
                                                  std::int64_t units) const {
    const Time_SMPTE time = ToTime(field, units);
    return IsPosition(field) ? Time_SMPTEUtils::GetSamplesFromStartFrame(time).GetSamples()
                             : time.GetTotalSamples().GetSamples();
}

std::int64_t CTimeCodeEntryHelper::SamplesToUnits(TNumericEntryText* field,
                                                  std::int64_t samples) const {
    if (IsPosition(field))
        return ToUnits(Time_SMPTEUtils::FromSessionSample(Time_Sample(samples), FormatOf(field),
                                                          HasSubframes()));
    Time_SMPTE time(FormatOf(field));
    time.SetFromTotalSamples(Time_SampleLength(samples), Time_Session::GetSampleRate(),
                             HasSubframes());
    return ToUnits(time);
}

// A position before the session's start is reported as the start, unless the field allows it; where
// it does, and for a duration, the value is the length from label zero.
void CTimeCodeEntryHelper::FillData(TNumericEntryText* field, std::int64_t units,
                                    CNumericEntryData* data) const {
    data->mType = kEntryType_TimeCode;
    data->mSMPTE = ToTime(field, units);
    if (field->IsDurationText() || field->IsPreSessionTimeCodeAllowed()) {
        data->mValue = data->mSMPTE.GetTotalSamples().GetSamples();
    } else {
        const Time_SMPTE start =
            Time_SMPTEUtils::FromSessionSample(Time_Sample(), FormatOf(field), HasSubframes());
        if (data->mSMPTE < start && !data->mIsEmpty)
            data->mSMPTE = start;
        data->mValue = Time_SMPTEUtils::GetSamplesFromStartFrame(data->mSMPTE).GetSamples();
    }
    data->mFloatValue = static_cast<double>(data->mValue) / Time_Session::GetSampleRate();
}

bool CTimeCodeEntryHelper::TypesIntoWhole() const { return true; }

bool CTimeCodeEntryHelper::TakePasted(TNumericEntryText* field, const CPastedTime& pasted,
                                      std::int64_t& units) const {
    if (pasted.mKind != CPastedTime::Kind::TimeCode || pasted.mSMPTE.GetFormat() != FormatOf(field))
        return false;
    units = ToUnits(pasted.mSMPTE);
    return true;
}

bool CTimeCodeEntryHelper::HasSubframes() const { return false; }

bool CTimeCodeWSubsEntryHelper::HasSubframes() const { return true; }

const char* COptionalTimeCodeEntryHelper::GetEmptyText(TNumericEntryText* field) const {
    return InfoOf(field).frameDigits == 3 ? "--:--:--:---" : "--:--:--:--";
}
