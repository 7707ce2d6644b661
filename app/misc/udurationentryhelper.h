// Bars, beats and ticks in numeric entry fields: as a position and as a length.
#pragma once

#include "app/misc/ublockentryhelper.h"

/// "   0|00|000": a length in bars, beats and ticks of the meter at the session's first bar. Beats
/// with more than 1000 ticks (half notes and longer) take four tick digits.
class QLX_API CDurationEntryHelper : public CBlockEntryHelper {
  public:
    CDurationEntryHelper() = default;

    /// Whether a text holds only what durations are made of: digits, blanks and "|".
    [[nodiscard]] static bool ValidDurationChars(const std::string& text);
    /// The text of a length; negative ones are shown as zero.
    [[nodiscard]] static std::string DurationToString(Time_TickLength length);

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
    [[nodiscard]] std::int64_t GetMinUnits(TNumericEntryText* field) const override;
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

/// "   1|01|000": a position by the session's meter map. The framework's own helper of format 1; a
/// host with maps of its own registers another.
class QLX_API CBarsBeatsEntryHelper : public CDurationEntryHelper {
  public:
    CBarsBeatsEntryHelper() = default;

  protected:
    [[nodiscard]] std::string GetZeroText(TNumericEntryText* field) const override;
    bool ReadUnits(TNumericEntryText* field, const std::string& text,
                   std::int64_t& units) const override;
    void WriteUnits(TNumericEntryText* field, std::int64_t units, std::string& text) const override;
    [[nodiscard]] std::int64_t StepUnits(TNumericEntryText* field, std::int64_t units, int block,
                                         std::int64_t delta) const override;
    [[nodiscard]] std::int64_t GetMinUnits(TNumericEntryText* field) const override;
    [[nodiscard]] std::int64_t GetMaxUnits(TNumericEntryText* field) const override;
    void FillData(TNumericEntryText* field, std::int64_t units,
                  CNumericEntryData* data) const override;
    void MendLaterBlocks(TNumericEntryText* field, std::string& text, int block) const override;
    bool TakePasted(TNumericEntryText* field, const CPastedTime& pasted,
                    std::int64_t& units) const override;
    void DoNumericEntryMath(TNumericEntryText* field, const std::string& base,
                            const std::string& operand, bool subtract,
                            std::string& result) override;
};
