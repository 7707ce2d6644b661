// The colour value that painters, properties and themes share, and its arithmetic.
#pragma once

#include <iosfwd>
#include <string>
#include <type_traits>

#include "basekit/cmn/cmn_types.h"

/// What a named colour is for. Only kRGBColorType_Font means something here: it sets the colour's
/// type flag. The others are the theme's own.
enum ECRGBColorType : int {
    kRGBColorType_General = 0,
    kRGBColorType_Background = 1,
    kRGBColorType_Foreground = 2,
    kRGBColorType_Frame = 3,
    kRGBColorType_Highlight = 4,
    kRGBColorType_Control = 5,
    kRGBColorType_Font = 6
};

/// Red, green, blue and alpha, 16 bits each; alpha 65535 is opaque. A value: copies are
/// independent, and a named colour keeps the components its name had when it was constructed.
///
/// Two habits to know. Arithmetic operators wrap at 16 bits, the "Bound" and "Offset" operations
/// hold at 65535. And a colour that is made from others is opaque and unnamed; what changes in
/// place keeps its alpha and its flags.
///
/// A floating result is cut toward zero to an integer, of which the low 16 bits are kept, whatever
/// its size or sign; what is no number counts as 0.
class QLX_API CRGBColor {
  public:
    static constexpr unsigned short kMaximum = 65535;

    /// Opaque black.
    constexpr CRGBColor() noexcept = default;
    constexpr CRGBColor(unsigned short red, unsigned short green, unsigned short blue,
                        unsigned short alpha = kMaximum) noexcept
        : mRed(red), mGreen(green), mBlue(blue), mAlpha(alpha) {}

    /// Registers the colour under its name with the theme colour table and takes the components
    /// that the table then holds for the name: the theme's, where it has an own opinion, or these.
    /// Without a table the components are as given and the colour stays unnamed. May run in a
    /// static initialiser and on any thread.
    CRGBColor(const std::string& name, unsigned short red, unsigned short green,
              unsigned short blue, unsigned short alpha, ECRGBColorType type);
    CRGBColor(const std::string& name, const CRGBColor& value, ECRGBColorType type);

    [[nodiscard]] constexpr unsigned short GetRed() const noexcept { return mRed; }
    [[nodiscard]] constexpr unsigned short GetGreen() const noexcept { return mGreen; }
    [[nodiscard]] constexpr unsigned short GetBlue() const noexcept { return mBlue; }
    [[nodiscard]] constexpr unsigned short GetAlpha() const noexcept { return mAlpha; }
    constexpr void SetRed(unsigned short red) noexcept { mRed = red; }
    constexpr void SetGreen(unsigned short green) noexcept { mGreen = green; }
    constexpr void SetBlue(unsigned short blue) noexcept { mBlue = blue; }
    constexpr void SetAlpha(unsigned short alpha) noexcept { mAlpha = alpha; }

    [[nodiscard]] constexpr bool IsOpaque() const noexcept { return mAlpha == kMaximum; }
    /// Whether the colour was constructed with a name while there was a theme colour table.
    [[nodiscard]] constexpr bool IsNamed() const noexcept { return mNamed; }
    /// Whether it was constructed with a name as kRGBColorType_Font.
    [[nodiscard]] constexpr bool IsFontColor() const noexcept { return mFontType; }
    /// Alpha, red, green and blue from the highest byte to the lowest, each its component's high
    /// byte.
    [[nodiscard]] constexpr std::uint32_t AsInt32() const noexcept {
        return HighByte(mAlpha) << 24 | HighByte(mRed) << 16 | HighByte(mGreen) << 8 |
               HighByte(mBlue);
    }

    // Component arithmetic: red, green and blue wrap; the result is opaque.

    [[nodiscard]] constexpr CRGBColor operator+(const CRGBColor& other) const noexcept {
        return Opaque() += other;
    }
    [[nodiscard]] constexpr CRGBColor operator-(const CRGBColor& other) const noexcept {
        return Opaque() -= other;
    }
    [[nodiscard]] constexpr CRGBColor operator*(const CRGBColor& other) const noexcept {
        return Opaque() *= other;
    }
    /// Integer quotients. A divisor component of zero is fatal: a message and abort.
    [[nodiscard]] CRGBColor operator/(const CRGBColor& other) const;

    [[nodiscard]] constexpr CRGBColor operator+(unsigned short scalar) const noexcept {
        return Opaque() += scalar;
    }
    [[nodiscard]] constexpr CRGBColor operator-(unsigned short scalar) const noexcept {
        return Opaque() -= scalar;
    }
    [[nodiscard]] constexpr CRGBColor operator*(unsigned short scalar) const noexcept {
        return Opaque() *= scalar;
    }
    /// Integer quotients. A zero divisor is fatal: a message and abort.
    [[nodiscard]] CRGBColor operator/(unsigned short scalar) const;
    /// The single-precision products, rounded by adding 0.5 in double precision and cutting.
    [[nodiscard]] CRGBColor operator*(float factor) const noexcept;

    // The same in place; alpha and flags stay.

    constexpr CRGBColor& operator+=(const CRGBColor& other) noexcept {
        return Set(Low16(mRed + other.mRed), Low16(mGreen + other.mGreen),
                   Low16(mBlue + other.mBlue));
    }
    constexpr CRGBColor& operator-=(const CRGBColor& other) noexcept {
        return Set(Low16(mRed - other.mRed), Low16(mGreen - other.mGreen),
                   Low16(mBlue - other.mBlue));
    }
    constexpr CRGBColor& operator*=(const CRGBColor& other) noexcept {
        return Set(Cmn_WrappingMultiply(mRed, other.mRed),
                   Cmn_WrappingMultiply(mGreen, other.mGreen),
                   Cmn_WrappingMultiply(mBlue, other.mBlue));
    }
    constexpr CRGBColor& operator+=(unsigned short scalar) noexcept {
        return *this += CRGBColor(scalar, scalar, scalar);
    }
    constexpr CRGBColor& operator-=(unsigned short scalar) noexcept {
        return *this -= CRGBColor(scalar, scalar, scalar);
    }
    constexpr CRGBColor& operator*=(unsigned short scalar) noexcept {
        return *this *= CRGBColor(scalar, scalar, scalar);
    }

    // Comparison

    /// The four components; the flags do not count.
    [[nodiscard]] friend constexpr bool operator==(const CRGBColor& a,
                                                   const CRGBColor& b) noexcept {
        return a.mRed == b.mRed && a.mGreen == b.mGreen && a.mBlue == b.mBlue &&
               a.mAlpha == b.mAlpha;
    }
    // Deliberate: green after blue. Saved colour lists are sorted in this order.
    [[nodiscard]] constexpr bool operator<(const CRGBColor& other) const noexcept {
        if (mRed != other.mRed)
            return mRed < other.mRed;
        if (mBlue != other.mBlue)
            return mBlue < other.mBlue;
        if (mGreen != other.mGreen)
            return mGreen < other.mGreen;
        return mAlpha < other.mAlpha;
    }

    // Blending and lightness

    /// Moves red, green and blue towards the other's by t, in single precision: 0 is this colour, 1
    /// the other. Alpha and flags stay.
    CRGBColor& Blend(const CRGBColor& other, float t) noexcept;
    /// The same as a new, opaque colour.
    [[nodiscard]] CRGBColor GetScaledBetween(const CRGBColor& other, float t) const noexcept;
    /// Towards white by percent or, when darken is set, only percent of each component; opaque.
    [[nodiscard]] CRGBColor GetScaled(bool darken, unsigned short percent) const noexcept;
    /// Each component plus the amount or, when darken is set, minus it, held within 0 and 65535;
    /// opaque.
    [[nodiscard]] CRGBColor GetOffsetBy(bool darken, unsigned short amount) const noexcept;

    /// A copy, unnamed, whose alpha is multiplied and held at 65535.
    [[nodiscard]] CRGBColor WithMultipliedAlpha(float factor) const noexcept;
    /// Multiplies red, green and blue, each held at 65535.
    void MultiplyByScalarAndBound(float factor) noexcept;
    /// Multiplies alpha, held at 65535.
    void MultiplyAlphaByScalarAndBound(float factor) noexcept;

    // The theme: these read the theme of the process, its variant and the user's settings. They are
    // the theme's part of the library. User-interface thread.

    /// The user's own colour for a name. Returns false and leaves color untouched when there is
    /// none.
    static bool GetUserCustomizedColor(const std::string& name, CRGBColor& color);
    /// Text and window background of the high-contrast variant that goes with the current one's
    /// brightness.
    [[nodiscard]] static CRGBColor GetGlobalHighContrastForegroundColor();
    [[nodiscard]] static CRGBColor GetGlobalHighContrastBackgroundColor();
    /// Luma of the theme's window background by the weights of ITU-R BT.709, 0 (black) to 1.
    [[nodiscard]] static float GetGlobalBackgroundBrightness();
    /// Which of a pair of foreground colours suits the theme: 0, the dark one, on a background of
    /// half brightness and above; 1, the light one, below.
    [[nodiscard]] static int GetGlobalForegroundColorIndex();

    /// Makes this a colour for text on the theme's background: sets the font flag and applies the
    /// font colour transformations.
    void SetupAsFontColor();
    /// In a high-contrast variant the colour becomes that variant's foreground. In the others its
    /// alpha goes into its brightness, and the user's text brightness is applied.
    void ApplyColorTransformationsForFontColors();
    /// Below 1 the colour moves towards the theme's background (0 is the background); above 1
    /// towards black on a light and white on a dark one (2 and more is that colour). A NaN changes
    /// nothing. Alpha stays.
    void ScaleColorByTextBrightness(float brightness);
    /// The opaque colour that this one shows on the theme's background.
    void RemoveAlphaAndApplyToBrightness();

  private:
    static constexpr std::uint32_t HighByte(unsigned short component) noexcept {
        return component >> 8;
    }
    static constexpr unsigned short Low16(int value) noexcept {
        return static_cast<unsigned short>(value);
    }
    [[nodiscard]] constexpr CRGBColor Opaque() const noexcept { return {mRed, mGreen, mBlue}; }
    constexpr CRGBColor& Set(unsigned short red, unsigned short green,
                             unsigned short blue) noexcept {
        mRed = red;
        mGreen = green;
        mBlue = blue;
        return *this;
    }
    void Register(const std::string& name, ECRGBColorType type);

    // The order is a promise to hosts.
    unsigned short mRed = 0;
    unsigned short mGreen = 0;
    unsigned short mBlue = 0;
    unsigned short mAlpha = kMaximum;
    bool mNamed = false;
    bool mFontType = false;
};

static_assert(std::is_trivially_copyable_v<CRGBColor>);

// Printer: "CRGBColor(red, green, blue, alpha)".
QLX_API std::ostream& operator<<(std::ostream& out, const CRGBColor& color);
