// Levels in numeric entry fields.
#pragma once

#include "app/misc/uintegerentryhelpers.h"

/// A level in decibels with one decimal: "-inf", "-6.5", "0.0", "+12.0". Numbers are tenths of a
/// decibel; -1440 (-144 dB, below 24 bits) and everything under it is "-inf".
///
/// The whole text, or its part before the point, or the part behind it is selected: stepping goes
/// by tenths in the whole and behind the point, by decibels before it. Digits always begin afresh.
class QLX_API CVolumeEntryHelper : public CNumberEntryHelper {
  public:
    CVolumeEntryHelper() = default;

    static constexpr std::int64_t kMinusInfinity = -1440;
    static constexpr std::int64_t kLoudest = 120; ///< +12 dB, where the field sets no bounds

    void CalculateHiliteSelection(TNumericEntryText* field, const VPoint& where) override;
    void DoTyping(TNumericEntryText* field, char character) override;
    void FloatValueToString(double value, std::string& text) override;
    bool HiliteNextBlock(TNumericEntryText* field, EBlockHiliteDirection direction,
                         bool wrap) override;
    void AddValueToCurrentSelection(TNumericEntryText* field, std::int64_t delta) override;
    void DoNumericEntryMath(TNumericEntryText* field, const std::string& base,
                            const std::string& operand, bool subtract,
                            std::string& result) override;
    void GetCallbackData(TNumericEntryText* field, CNumericEntryData* data) override;
    bool ParsePaste(TNumericEntryText* field, const std::string& pasted, std::string& text,
                    std::string& report) override;
    [[nodiscard]] bool HasShape(TNumericEntryText* field, const std::string& text) override;
    [[nodiscard]] bool IsSelection(TNumericEntryText* field, short start, short end) override;

    /// Tenths of a decibel of a text; false, value untouched, when it is none.
    static bool StringToIntegerValue(const std::string& text, std::int64_t& value);
    /// The text of a bound or a value.
    static void MinMaxValueToString(std::int64_t value, std::string& text);

  protected:
    bool ReadValue(const std::string& text, std::int64_t& value) const override;
    void WriteValue(std::int64_t value, std::string& text) const override;
    /// The field's float bounds in tenths, where it has any.
    void GetBounds(TNumericEntryText* field, std::int64_t& minimum,
                   std::int64_t& maximum) const override;
    [[nodiscard]] std::int64_t Allowed(TNumericEntryText* field, std::int64_t value) const override;
    [[nodiscard]] double GetScale() const override;
};
