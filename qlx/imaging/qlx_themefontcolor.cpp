// The operations of CRGBColor that depend on the theme. They stand on this floor because the colour
// value knows nothing of themes.

#include <algorithm>
#include <cmath>

#include "qlx/imaging/qlx_themecolor.h"

namespace {

[[nodiscard]] EThemeVariant HighContrastVariant() noexcept {
    return QLX_Theme::IsDark() ? kTheme_DarkHighContrast : kTheme_LightHighContrast;
}

} // namespace

bool CRGBColor::GetUserCustomizedColor(const std::string& name, CRGBColor& color) {
    return QLX_Theme::FindUserColor(name, color);
}

CRGBColor CRGBColor::GetGlobalHighContrastForegroundColor() {
    return QLX_Theme::GetColor(kThemeColor_Text, HighContrastVariant());
}

CRGBColor CRGBColor::GetGlobalHighContrastBackgroundColor() {
    return QLX_Theme::GetColor(kThemeColor_WindowBackground, HighContrastVariant());
}

float CRGBColor::GetGlobalBackgroundBrightness() {
    const CRGBColor background = QLX_Theme::GetColor(kThemeColor_WindowBackground);
    return (0.2126F * float(background.mRed) + 0.7152F * float(background.mGreen) +
            0.0722F * float(background.mBlue)) /
           float(kMaximum);
}

int CRGBColor::GetGlobalForegroundColorIndex() {
    return GetGlobalBackgroundBrightness() >= 0.5F ? 0 : 1;
}

void CRGBColor::SetupAsFontColor() {
    mFontType = true;
    ApplyColorTransformationsForFontColors();
}

void CRGBColor::ApplyColorTransformationsForFontColors() {
    if (QLX_Theme::IsHighContrast()) {
        const CRGBColor foreground = GetGlobalHighContrastForegroundColor();
        Set(foreground.mRed, foreground.mGreen, foreground.mBlue);
        mAlpha = kMaximum;
        return;
    }
    RemoveAlphaAndApplyToBrightness();
    ScaleColorByTextBrightness(QLX_Theme::GetTextBrightness());
}

void CRGBColor::ScaleColorByTextBrightness(float brightness) {
    if (std::isnan(brightness) || brightness == 1)
        return;
    if (brightness < 1) {
        Blend(QLX_Theme::GetColor(kThemeColor_WindowBackground), 1 - std::max(brightness, 0.0F));
        return;
    }
    const unsigned short extreme = GetGlobalForegroundColorIndex() == 0 ? 0 : kMaximum;
    Blend({extreme, extreme, extreme}, std::min(brightness - 1, 1.0F));
}

void CRGBColor::RemoveAlphaAndApplyToBrightness() {
    if (!IsOpaque())
        Blend(QLX_Theme::GetColor(kThemeColor_WindowBackground),
              1 - float(mAlpha) / float(kMaximum));
    mAlpha = kMaximum;
}
