// Feet and frames in numeric entry fields.
#pragma once

#include "app/misc/ublockentryhelper.h"

/// "     0+00": feet and film frames, sixteen to the foot.
class QLX_API CFeetAndFramesEntryHelper : public CBlockEntryHelper {
  public:
    CFeetAndFramesEntryHelper() = default;

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

    /// Whether units are hundredths of a frame.
    [[nodiscard]] virtual bool HasSubframes() const;

  private:
    [[nodiscard]] Time_FeetFrame ToTime(std::int64_t units) const;
    [[nodiscard]] std::int64_t ToUnits(const Time_FeetFrame& time) const;
};

/// "     0+00.00".
class QLX_API CFeetFramesWSubsEntryHelper : public CFeetAndFramesEntryHelper {
  public:
    CFeetFramesWSubsEntryHelper() = default;

  protected:
    [[nodiscard]] bool HasSubframes() const override;
};
