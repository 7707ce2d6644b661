// The colours of the theme: numbered for painters, named for descriptions and named colours, in
// four variants (light and dark, each with high contrast), read from theme files.
#pragma once

#include <string>
#include <string_view>

#include "qlx/views/crgbcolor.h"

/// The colours that the framework's own views ask for. Files name them without the prefix
/// ("ControlFace"). The numbers are kept: append.
enum EThemeColor : int {
    kThemeColor_WindowBackground = 0,
    kThemeColor_Text,
    kThemeColor_DisabledText,
    kThemeColor_Highlight, ///< behind selected text and list rows
    kThemeColor_HighlightText,
    kThemeColor_ControlFace,
    kThemeColor_ControlPressed,
    kThemeColor_ControlFrame,
    kThemeColor_ControlLight,
    kThemeColor_ControlShadow,
    kThemeColor_ControlText,
    kThemeColor_ControlMark, ///< check marks, slider thumbs, knob pointers
    kThemeColor_FieldBackground,
    kThemeColor_FieldText,
    kThemeColor_FieldFrame,
    kThemeColor_FocusRing,
    kThemeColor_MenuBackground,
    kThemeColor_MenuText,
    kThemeColor_MenuHighlight,
    kThemeColor_MenuHighlightText,
    kThemeColor_ListBackground,
    kThemeColor_ListAlternate,
    kThemeColor_ListText,
    kThemeColor_ScrollTrack,
    kThemeColor_ScrollThumb,
    kThemeColor_MeterBackground,
    kThemeColor_MeterLow,
    kThemeColor_MeterMiddle,
    kThemeColor_MeterHigh,
    kThemeColor_MeterClip,
    kThemeColor_WaveformBackground,
    kThemeColor_Waveform,
    kThemeColor_WaveformRMS,
    kThemeColor_RulerBackground,
    kThemeColor_RulerText,
    kThemeColor_GridLine,
    kThemeColor_Selection,
    kThemeColor_PlaybackCursor,
    kThemeColor_Link,
    kThemeColor_Caution,
    kThemeColor_Error,
    kThemeColor_ToolTipBackground,
    kThemeColor_ToolTipText,
    kThemeColor_Count
};

/// The variants of a theme.
enum EThemeVariant : int {
    kTheme_Light = 0,
    kTheme_Dark,
    kTheme_LightHighContrast,
    kTheme_DarkHighContrast,
    kTheme_VariantCount
};

/// The theme of the process. User-interface thread, except that named colours may register from any
/// thread: the library has a CColorTable present from its loading on, and the theme's and the
/// user's colours are layers of it. Colours that views fetched stay as they are when the theme
/// changes: the window invalidates everything and the views ask again.
/// The built-in theme is also there as files, to start one's own from: light.theme, dark.theme and
/// high-contrast.theme, in share/qlx/themes of an installed library.
class QLX_API QLX_Theme {
  public:
    /// The colour in the current variant; out of range: opaque black, asserted.
    [[nodiscard]] static CRGBColor GetColor(EThemeColor color);
    /// The same in a given variant.
    [[nodiscard]] static CRGBColor GetColor(EThemeColor color, EThemeVariant variant);

    /// The name in files, for example "ControlFace"; "" out of range.
    [[nodiscard]] static const char* GetName(EThemeColor color) noexcept;
    /// Returns false and leaves color untouched for an unknown name.
    static bool FindByName(std::string_view name, EThemeColor& color) noexcept;

    [[nodiscard]] static EThemeVariant GetVariant() noexcept;
    /// Switches the variant: theme colours and the theme's named colours follow.
    static void SetVariant(EThemeVariant variant);
    [[nodiscard]] static bool IsDark() noexcept;
    [[nodiscard]] static bool IsHighContrast() noexcept;

    /// Reads a theme from text over the built-in one, so a file needs to name only what it changes.
    /// The text has sections "[light]", "[dark]", "[light high contrast]", "[dark high contrast]"
    /// of lines "Name = #RRGGBB", "#RRGGBBAA" or "$OtherName" (the colour that name has in this
    /// section);
    /// '#' at the start of a line and ';' begin comments. Names that are not EThemeColor's are kept
    /// for named colours. Throws std::runtime_error "source:line:column: reason" and then changes
    /// nothing.
    static void LoadText(std::string_view text, const std::string& source);
    /// LoadText of a file's bytes, whose byte order mark is skipped. A file that cannot be read
    /// throws "path: reason".
    static void LoadFile(const std::string& path);
    /// The theme in the form that LoadText reads: all variants, colours in their order.
    [[nodiscard]] static std::string AsText();
    /// Back to the built-in theme in its light variant, without the user's colours and brightness.
    static void Reset();

    /// The user's own colour for a name, above every theme and variant.
    static void SetUserColor(const std::string& name, const CRGBColor& color);
    static void ClearUserColors();
    /// Returns false and leaves color untouched when the user has none for the name.
    static bool FindUserColor(std::string_view name, CRGBColor& color);

    /// How bright the user wants texts, 0 to 2; 1, as designed, at first. Held to that range, a NaN
    /// is 1. Font colours (CRGBColor::SetupAsFontColor) follow.
    static void SetTextBrightness(float brightness);
    [[nodiscard]] static float GetTextBrightness() noexcept;

    /// Grows whenever GetColor may answer differently.
    [[nodiscard]] static std::uint32_t GetGeneration() noexcept;

    /// "#RRGGBB" or "#RRGGBBAA"; each byte is repeated into 16 bits. Returns false, color
    /// untouched, for any other text.
    static bool ParseColor(std::string_view text, CRGBColor& color) noexcept;
    /// The same form, alpha only when the colour is not opaque; the components' high bytes.
    [[nodiscard]] static std::string FormatColor(const CRGBColor& color);
};
