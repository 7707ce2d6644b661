// CBlockEntryHelper: what the formats made of blocks share (time code, minutes and seconds, feet
// and frames, bars and beats, durations).
#pragma once

#include "app/misc/uentryblocks.h"
#include "app/misc/unumericentryhelper.h"

struct CPastedTime;

/// A format whose text is blocks of fixed width and whose value is a whole number of its smallest
/// unit (frames, milliseconds, ticks). A format says where its blocks lie and how text and units
/// become each other; typing, moving, stepping, arithmetic, pasting and validation follow from
/// that.
class QLX_API CBlockEntryHelper : public CNumericEntryHelper {
  public:
    void CalculateHiliteSelection(TNumericEntryText* field, const VPoint& where) override;
    void DoTyping(TNumericEntryText* field, char character) override;
    void IntegerValueToString(std::int64_t value, std::string& text) override;
    void FloatValueToString(double value, std::string& text) override;
    [[nodiscard]] bool Validate(TNumericEntryText* field) override;
    bool HiliteNextBlock(TNumericEntryText* field, EBlockHiliteDirection direction,
                         bool wrap) override;
    void AddValueToCurrentSelection(TNumericEntryText* field, std::int64_t delta) override;
    void ResetCurrentText(TNumericEntryText* field) override;
    void DoNumericEntryMath(TNumericEntryText* field, const std::string& base,
                            const std::string& operand, bool subtract,
                            std::string& result) override;
    void PrepareTextForEditing(TNumericEntryText* field) override;
    void GetInitialSelection(TNumericEntryText* field) override;
    void GetCallbackData(TNumericEntryText* field, CNumericEntryData* data) override;
    void CaptureTime(TNumericEntryText* field) override;
    [[nodiscard]] bool SupportsCalculation(ENumericEntryCalculationType type) override;
    bool SampleToString(TNumericEntryText* field, std::int64_t samples, std::string& text) override;
    bool ParsePaste(TNumericEntryText* field, const std::string& pasted, std::string& text,
                    std::string& report) override;
    bool TextToSamples(TNumericEntryText* field, std::int64_t& samples) override;
    [[nodiscard]] bool HasShape(TNumericEntryText* field, const std::string& text) override;
    [[nodiscard]] bool IsSelection(TNumericEntryText* field, short start, short end) override;
    void GetValueRange(TNumericEntryText* field, double& minimum, double& maximum) override;

  protected:
    // What a format says about itself. The field may be null where a text is made for none; the
    // session's settings hold then.

    [[nodiscard]] virtual CEntryLayout GetLayout(TNumericEntryText* field) const = 0;
    [[nodiscard]] virtual std::string GetZeroText(TNumericEntryText* field) const = 0;
    [[nodiscard]] virtual bool MatchesShape(TNumericEntryText* field,
                                            const std::string& text) const = 0;
    /// A text of the right shape as units. Fields out of range carry.
    virtual bool ReadUnits(TNumericEntryText* field, const std::string& text,
                           std::int64_t& units) const = 0;
    virtual void WriteUnits(TNumericEntryText* field, std::int64_t units,
                            std::string& text) const = 0;
    /// A value stepped by delta in a block; block -1 is the whole text.
    [[nodiscard]] virtual std::int64_t StepUnits(TNumericEntryText* field, std::int64_t units,
                                                 int block, std::int64_t delta) const = 0;
    [[nodiscard]] virtual std::int64_t GetMinUnits(TNumericEntryText* field) const;
    [[nodiscard]] virtual std::int64_t GetMaxUnits(TNumericEntryText* field) const = 0;
    /// Samples from the session start, or of a length.
    [[nodiscard]] virtual std::int64_t UnitsToSamples(TNumericEntryText* field,
                                                      std::int64_t units) const = 0;
    [[nodiscard]] virtual std::int64_t SamplesToUnits(TNumericEntryText* field,
                                                      std::int64_t samples) const = 0;
    /// Fills what is special to the format; type, value and flags that all formats have are done.
    virtual void FillData(TNumericEntryText* field, std::int64_t units,
                          CNumericEntryData* data) const = 0;
    /// The text of "no value"; null for formats that always have one.
    [[nodiscard]] virtual const char* GetEmptyText(TNumericEntryText* field) const;
    /// What the first digit leaves of the rest of its block.
    [[nodiscard]] virtual char GetPadding(int block) const;
    /// Whether digits may fill the whole text from the right; otherwise they go to the first block.
    [[nodiscard]] virtual bool TypesIntoWhole() const;
    /// After a digit in a block the later ones became zeros; formats that count from one mend them.
    virtual void MendLaterBlocks(TNumericEntryText* field, std::string& text, int block) const;
    /// Takes a pasted time over when it is in the format's own units. False lets it be converted
    /// through samples.
    virtual bool TakePasted(TNumericEntryText* field, const CPastedTime& pasted,
                            std::int64_t& units) const;

    [[nodiscard]] std::int64_t Clamp(TNumericEntryText* field, std::int64_t units) const;
    [[nodiscard]] bool IsEmptyText(TNumericEntryText* field, const std::string& text) const;

  private:
    [[nodiscard]] std::string UnitsToText(TNumericEntryText* field, std::int64_t units) const;
    bool PasteDigits(TNumericEntryText* field, const std::string& digits,
                     std::int64_t& units) const;
};
