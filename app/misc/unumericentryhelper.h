// CNumericEntryHelper: everything about a numeric entry field that depends on its format, and the
// registry that keeps one helper a format for all fields of the process.
#pragma once

#include <string>

#include "app/misc/unumericentrydata.h"
#include "qlx/views/ugeometry.h"

/// The rules of one format. Helpers hold no field's state: every operation receives the field it
/// works on, so one helper serves all fields of its format. Owned by the registry once registered.
/// User-interface thread.
class QLX_API CNumericEntryHelper {
  public:
    CNumericEntryHelper() = default;
    CNumericEntryHelper(const CNumericEntryHelper&) = delete;
    CNumericEntryHelper& operator=(const CNumericEntryHelper&) = delete;

    // Slot order is part of the binary interface: append, never move.

    virtual ~CNumericEntryHelper();
    /// Sets the field's selection to the block under a point in the field's local coordinates.
    virtual void CalculateHiliteSelection(TNumericEntryText* field, const VPoint& where) = 0;
    /// Applies one typed character; what the format does not take is ignored.
    virtual void DoTyping(TNumericEntryText* field, char character) = 0;
    /// The field has just come under this helper. Empty.
    virtual void FormatChanged(TNumericEntryText* field);
    /// A stored number in the format: samples for times (a length from zero), tenths of a decibel
    /// for levels, else the number itself.
    virtual void IntegerValueToString(std::int64_t value, std::string& text) = 0;
    /// The same for a fraction: times take seconds, levels decibels, whole-number formats round.
    virtual void FloatValueToString(double value, std::string& text) = 0;
    /// Brings the text into its normal form and within bounds. False, with the text untouched, when
    /// it is no value of the format.
    [[nodiscard]] virtual bool Validate(TNumericEntryText* field) = 0;
    /// Moves the selection to the neighbouring block. Answers whether it went past an end, where it
    /// stays without wrap.
    virtual bool HiliteNextBlock(TNumericEntryText* field, EBlockHiliteDirection direction,
                                 bool wrap) = 0;
    /// Steps the selected block; the value is held within its bounds.
    virtual void AddValueToCurrentSelection(TNumericEntryText* field, std::int64_t delta) = 0;
    /// Puts the format's zero text in place; the selection is the caller's business.
    virtual void ResetCurrentText(TNumericEntryText* field) = 0;
    /// base plus, or minus, operand; result is untouched when either is no value.
    virtual void DoNumericEntryMath(TNumericEntryText* field, const std::string& base,
                                    const std::string& operand, bool subtract,
                                    std::string& result) = 0;
    /// The field has become the target: makes a text that cannot be edited the zero text.
    virtual void PrepareTextForEditing(TNumericEntryText* field) = 0;
    /// Sets the selection that a fresh edit starts with.
    virtual void GetInitialSelection(TNumericEntryText* field) = 0;
    virtual void GetCallbackData(TNumericEntryText* field, CNumericEntryData* data) = 0;
    /// Replaces the text by the host's "now". Empty.
    virtual void CaptureTime(TNumericEntryText* field);
    /// The field's session settings (rate, start, sample rate) have changed. Empty.
    virtual void SessionChanged(TNumericEntryText* field);
    [[nodiscard]] virtual bool SupportsCalculation(ENumericEntryCalculationType type) = 0;
    /// The number that ResetCurrentText puts in place in whole-number formats.
    virtual void SetDefaultValueInt(std::int32_t value);
    /// A tap, in taps a minute. Empty.
    virtual void Tap(TNumericEntryText* field, std::int32_t perMinute);
    /// The field is the target no more. Empty.
    virtual void EditingEnded(TNumericEntryText* field);
    /// The field is about to draw its text. Empty.
    virtual void WillDraw(TNumericEntryText* field);

    /// A position in the format: samples from the session start, or a length when the field shows
    /// one. False when the format shows no times.
    virtual bool SampleToString(TNumericEntryText* field, std::int64_t samples, std::string& text);
    /// Reads pasted text that is in the format, with or without its separators, and gives its
    /// normal text. How it was understood, or why not, goes into report. The base knows no text.
    virtual bool ParsePaste(TNumericEntryText* field, const std::string& pasted, std::string& text,
                            std::string& report);
    /// What the field shows as samples: from the session start, or a length. False, samples
    /// untouched, when the format shows no times or the text is no value.
    virtual bool TextToSamples(TNumericEntryText* field, std::int64_t& samples);
    /// Whether a text has the format's shape, as it may stand in the field between two keys.
    [[nodiscard]] virtual bool HasShape(TNumericEntryText* field, const std::string& text) = 0;
    /// Whether a selection is one that typing can work on.
    [[nodiscard]] virtual bool IsSelection(TNumericEntryText* field, short start, short end);
    /// Whether "+" and "-" are typed as signs where they would otherwise start arithmetic.
    [[nodiscard]] virtual bool TypesSigns() const;
    /// The least and the greatest value that the field can hold, in what SetTextFromSample,
    /// SetTextFromFloatValue (levels) and SetTextFromIntegerValue (the rest) take. The field's
    /// bounds.
    virtual void GetValueRange(TNumericEntryText* field, double& minimum, double& maximum);

    [[nodiscard]] std::int32_t GetDefaultValueInt() const { return mDefaultValue; }

    // Registry

    /// The registry key of a format. Subframes matter for time code and feet, an optional value for
    /// time code (before subframes) and minutes and seconds.
    [[nodiscard]] static std::uint32_t MakeHelperMapKey(ENumericEntryFormat format,
                                                        bool useSubframes, bool optional);
    /// Registers the helper of a format and owns it for the life of the process. One that takes
    /// another's place leaves it alive: fields may still hold it. Null is ignored.
    static void RegisterHelperForFormat(ENumericEntryFormat format, bool useSubframes,
                                        bool optional, CNumericEntryHelper* helper);
    /// Null when nobody registered one.
    [[nodiscard]] static CNumericEntryHelper* GetHelperForFormat(ENumericEntryFormat format,
                                                                 bool useSubframes, bool optional);
    /// What serves fields of a format that nobody registered: it takes any text and does nothing.
    [[nodiscard]] static CNumericEntryHelper* GetHelperOfNoFormat();
    /// Grows with every registration, so that fields know to look again.
    [[nodiscard]] static std::uint32_t GetRegistryChangeCount();

    /// The host's source of "now" for "=", normally the playback position; null for none.
    static void RegisterCaptureTimeCallback(Time_SMPTE (*callback)());
    [[nodiscard]] static Time_SMPTE (*GetCaptureTimeCallback())();

  private:
    // The order of the fields is part of the binary interface.
    std::int32_t mDefaultValue = 0;
    bool mFlag = true; // the host's
};
