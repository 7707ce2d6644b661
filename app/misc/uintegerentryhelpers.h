// Whole numbers in numeric entry fields: integers, signed integers, offsets with a sign, meter
// denominators, samples.
#pragma once

#include "app/misc/unumericentryhelper.h"

/// A format whose text is one number: one block, always selected as a whole. Numbers say how digits
/// enter and what they allow.
class QLX_API CNumberEntryHelper : public CNumericEntryHelper {
  public:
    void CalculateHiliteSelection(TNumericEntryText* field, const VPoint& where) override;
    void IntegerValueToString(std::int64_t value, std::string& text) override;
    void FloatValueToString(double value, std::string& text) override;
    [[nodiscard]] bool Validate(TNumericEntryText* field) override;
    /// One block: nowhere to go, so every move ends at an end.
    bool HiliteNextBlock(TNumericEntryText* field, EBlockHiliteDirection direction,
                         bool wrap) override;
    /// Adds, or goes to the neighbour in the fixed number set, and holds the bounds at once.
    void AddValueToCurrentSelection(TNumericEntryText* field, std::int64_t delta) override;
    void ResetCurrentText(TNumericEntryText* field) override;
    void DoNumericEntryMath(TNumericEntryText* field, const std::string& base,
                            const std::string& operand, bool subtract,
                            std::string& result) override;
    void PrepareTextForEditing(TNumericEntryText* field) override;
    void GetInitialSelection(TNumericEntryText* field) override;
    void GetCallbackData(TNumericEntryText* field, CNumericEntryData* data) override;
    [[nodiscard]] bool SupportsCalculation(ENumericEntryCalculationType type) override;
    bool ParsePaste(TNumericEntryText* field, const std::string& pasted, std::string& text,
                    std::string& report) override;
    [[nodiscard]] bool HasShape(TNumericEntryText* field, const std::string& text) override;
    [[nodiscard]] bool IsSelection(TNumericEntryText* field, short start, short end) override;
    void GetValueRange(TNumericEntryText* field, double& minimum, double& maximum) override;

    /// The longest text that typing makes.
    static constexpr std::size_t kMaxCharacters = 31;

  protected:
    /// A text as a number. Beyond 64 bits it is held at the limits; false when it holds no number.
    virtual bool ReadValue(const std::string& text, std::int64_t& value) const;
    virtual void WriteValue(std::int64_t value, std::string& text) const;
    virtual void GetBounds(TNumericEntryText* field, std::int64_t& minimum,
                           std::int64_t& maximum) const;
    /// The value nearest to one within the bounds that the format allows.
    [[nodiscard]] virtual std::int64_t Allowed(TNumericEntryText* field, std::int64_t value) const;
    [[nodiscard]] virtual std::int64_t StepValue(TNumericEntryText* field, std::int64_t value,
                                                 std::int64_t delta) const;

    /// How many of the numbers make one of the unit that users count in.
    [[nodiscard]] virtual double GetScale() const;

    /// Puts a text in place and, while the field has the keyboard, selects all of it.
    void Put(TNumericEntryText* field, const std::string& text) const;
    static void GetWhole(TNumericEntryText* field);
    [[nodiscard]] std::int64_t Held(TNumericEntryText* field, std::int64_t value) const;
};

/// An integer within the field's bounds.
class QLX_API CIntegerValueEntryHelper : public CNumberEntryHelper {
  public:
    CIntegerValueEntryHelper() = default;
    void DoTyping(TNumericEntryText* field, char character) override;
};

/// An integer whose "+" and "-" are typed as signs.
class QLX_API CSignedIntegerValueEntryHelper : public CIntegerValueEntryHelper {
  public:
    CSignedIntegerValueEntryHelper() = default;
    [[nodiscard]] bool TypesSigns() const override;
};

/// An offset, always with its sign: "+0", "+12", "-7".
class QLX_API CPlusValueEntryHelper : public CNumberEntryHelper {
  public:
    CPlusValueEntryHelper() = default;
    void DoTyping(TNumericEntryText* field, char character) override;
    static void StaticIntegerValueToString(std::int64_t value, std::string& text);

  protected:
    void WriteValue(std::int64_t value, std::string& text) const override;
};

/// The lower number of a meter: 1, 2, 4, ... 64, within the field's bounds.
class QLX_API CMeterDenominatorEntryHelper : public CNumberEntryHelper {
  public:
    CMeterDenominatorEntryHelper() = default;
    void DoTyping(TNumericEntryText* field, char character) override;
    [[nodiscard]] bool SupportsCalculation(ENumericEntryCalculationType type) override;
    /// False, value untouched, when the text holds no number.
    static bool StringToIntegerValue(const std::string& text, std::int64_t& value);

  protected:
    void GetBounds(TNumericEntryText* field, std::int64_t& minimum,
                   std::int64_t& maximum) const override;
    [[nodiscard]] std::int64_t Allowed(TNumericEntryText* field, std::int64_t value) const override;
    [[nodiscard]] std::int64_t StepValue(TNumericEntryText* field, std::int64_t value,
                                         std::int64_t delta) const override;

  private:
    /// Corrects a number outside the bounds while it is being typed.
    void LocalValidateAndChange(TNumericEntryText* field) const;
};

/// A position or length in samples, within the session's range. No arithmetic.
class QLX_API CDecimalSamplesEntryHelper : public CNumberEntryHelper {
  public:
    CDecimalSamplesEntryHelper() = default;
    void DoTyping(TNumericEntryText* field, char character) override;
    [[nodiscard]] bool SupportsCalculation(ENumericEntryCalculationType type) override;
    void FloatValueToString(double value, std::string& text) override;
    void CaptureTime(TNumericEntryText* field) override;
    void GetCallbackData(TNumericEntryText* field, CNumericEntryData* data) override;
    bool SampleToString(TNumericEntryText* field, std::int64_t samples, std::string& text) override;
    bool ParsePaste(TNumericEntryText* field, const std::string& pasted, std::string& text,
                    std::string& report) override;
    [[nodiscard]] bool HasShape(TNumericEntryText* field, const std::string& text) override;
    bool TextToSamples(TNumericEntryText* field, std::int64_t& samples) override;

  protected:
    void GetBounds(TNumericEntryText* field, std::int64_t& minimum,
                   std::int64_t& maximum) const override;
};
