// Time code in numeric entry fields: plain, with subframes, and with "no value".
#pragma once

#include "app/misc/ublockentryhelper.h"

/// "00:00:00:00": hours, minutes, seconds, frames; three frame digits above 100 frames a second.
/// Values go from zero to the last frame of the day.
class QLX_API CTimeCodeEntryHelper : public CBlockEntryHelper {
  public:
    CTimeCodeEntryHelper() = default;

  protected:
    [[nodiscard]] CEntryLayout GetLayout(TNumericEntryText* field) const override;
    [[nodiscard]] std::string GetZeroText(TNumericEntryText* field) const override;
    [[nodiscard]] bool MatchesShape(TNumericEntryText* field,
                                    const std::string& text) const override;
    bool ReadUnits(TNumericEntryText* field, const std::string& text,
                   std::int64_t& units) const override;
    void WriteUnits(TNumericEntryText* field, std::int64_t units, std::string& text) const override;
    [[nodiscard]] std::int64_t StepUnits(TNumericEntryText* field, std::int64_t units, int block,
                                         std::int64_t delta) const override;
    [[nodiscard]] std::int64_t GetMaxUnits(TNumericEntryText* field) const override;
    [[nodiscard]] std::int64_t UnitsToSamples(TNumericEntryText* field,
                                              std::int64_t units) const override;
    [[nodiscard]] std::int64_t SamplesToUnits(TNumericEntryText* field,
                                              std::int64_t samples) const override;
    void FillData(TNumericEntryText* field, std::int64_t units,
                  CNumericEntryData* data) const override;
    [[nodiscard]] bool TypesIntoWhole() const override;
    bool TakePasted(TNumericEntryText* field, const CPastedTime& pasted,
                    std::int64_t& units) const override;

    /// Whether units are hundredths of a frame.
    [[nodiscard]] virtual bool HasSubframes() const;

  private:
    [[nodiscard]] Time_SMPTE ToTime(TNumericEntryText* field, std::int64_t units) const;
    [[nodiscard]] std::int64_t ToUnits(const Time_SMPTE& time) const;
};

/// "00:00:00:00.00".
class QLX_API CTimeCodeWSubsEntryHelper : public CTimeCodeEntryHelper {
  public:
    CTimeCodeWSubsEntryHelper() = default;

  protected:
    [[nodiscard]] bool HasSubframes() const override;
};

/// Time code, or "--:--:--:--" for no value.
class QLX_API COptionalTimeCodeEntryHelper : public CTimeCodeEntryHelper {
  public:
    COptionalTimeCodeEntryHelper() = default;

  protected:
    [[nodiscard]] const char* GetEmptyText(TNumericEntryText* field) const override;
};
