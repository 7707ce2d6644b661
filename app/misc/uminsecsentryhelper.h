// Minutes and seconds in numeric entry fields.
#pragma once

#include "app/misc/ublockentryhelper.h"

/// "   0:00.000": minutes, seconds, milliseconds.
class QLX_API CMinutesAndSecondsEntryHelper : public CBlockEntryHelper {
  public:
    CMinutesAndSecondsEntryHelper() = default;

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
    [[nodiscard]] char GetPadding(int block) const override;
    bool TakePasted(TNumericEntryText* field, const CPastedTime& pasted,
                    std::int64_t& units) const override;
};

/// Minutes and seconds, or "----:--.---" for no value.
class QLX_API COptionalMinsSecsEntryHelper : public CMinutesAndSecondsEntryHelper {
  public:
    COptionalMinsSecsEntryHelper() = default;

  protected:
    [[nodiscard]] const char* GetEmptyText(TNumericEntryText* field) const override;
};
