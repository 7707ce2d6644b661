#include "qlx/views/crgbcolor.h"

#include <cmath>
#include <cstdlib>
#include <ostream>

#include "basekit/cmn/cmn_trace.h"
#include "qlx/views/ucolortable.h"

namespace {

// fmod is exact, so this holds for every finite value; a cast alone is undefined outside the
// integer's range.
unsigned short CutToLow16(double value) noexcept {
    if (!std::isfinite(value))
        return 0;
    const auto remainder = static_cast<std::int32_t>(std::fmod(std::trunc(value), 65536.0));
    return static_cast<unsigned short>(static_cast<std::uint32_t>(remainder));
}

unsigned short MultiplyAndBound(unsigned short component, float factor) noexcept {
    const float product = static_cast<float>(component) * factor;
    return product >= 65536.0F ? CRGBColor::kMaximum : CutToLow16(product);
}

unsigned short Between(unsigned short from, unsigned short to, float t) noexcept {
    const float difference = static_cast<float>(int{to} - int{from});
    return CutToLow16(difference * t + static_cast<float>(from));
}

unsigned short Scaled(unsigned short component, bool darken, unsigned short percent) noexcept {
    const std::int64_t scale = percent;
    const std::int64_t result =
        darken ? component * scale / 100
               : component + (CRGBColor::kMaximum - std::int64_t{component}) * scale / 100;
    return static_cast<unsigned short>(result);
}

unsigned short OffsetBy(unsigned short component, bool darken, unsigned short amount) noexcept {
    return Cmn_ClampTo<unsigned short>(darken ? int{component} - int{amount}
                                              : int{component} + int{amount});
}

unsigned short Divide(unsigned short component, unsigned short divisor) {
    if (divisor == 0) {
        Cmn_TraceWrite("CRGBColor: division by zero");
        std::abort();
    }
    return component / divisor;
}

} // namespace

CRGBColor::CRGBColor(const std::string& name, unsigned short red, unsigned short green,
                     unsigned short blue, unsigned short alpha, ECRGBColorType type)
    : CRGBColor(red, green, blue, alpha) {
    Register(name, type);
}

CRGBColor::CRGBColor(const std::string& name, const CRGBColor& value, ECRGBColorType type)
    : CRGBColor(value.mRed, value.mGreen, value.mBlue, value.mAlpha) {
    Register(name, type);
}

void CRGBColor::Register(const std::string& name, ECRGBColorType type) {
    mNamed = CColorTable::RegisterWithPresent(name, *this, type);
    mFontType = type == kRGBColorType_Font;
}

CRGBColor CRGBColor::operator/(const CRGBColor& other) const {
    return {Divide(mRed, other.mRed), Divide(mGreen, other.mGreen), Divide(mBlue, other.mBlue)};
}

CRGBColor CRGBColor::operator/(unsigned short scalar) const {
    return *this / CRGBColor(scalar, scalar, scalar);
}

CRGBColor CRGBColor::operator*(float factor) const noexcept {
    const auto scaled = [factor](unsigned short component) {
        const float product = static_cast<float>(component) * factor;
        return CutToLow16(static_cast<double>(product) + 0.5);
    };
    return {scaled(mRed), scaled(mGreen), scaled(mBlue)};
}

CRGBColor& CRGBColor::Blend(const CRGBColor& other, float t) noexcept {
    return Set(Between(mRed, other.mRed, t), Between(mGreen, other.mGreen, t),
               Between(mBlue, other.mBlue, t));
}

CRGBColor CRGBColor::GetScaledBetween(const CRGBColor& other, float t) const noexcept {
    return Opaque().Blend(other, t);
}

CRGBColor CRGBColor::GetScaled(bool darken, unsigned short percent) const noexcept {
    return {Scaled(mRed, darken, percent), Scaled(mGreen, darken, percent),
            Scaled(mBlue, darken, percent)};
}

CRGBColor CRGBColor::GetOffsetBy(bool darken, unsigned short amount) const noexcept {
    return {OffsetBy(mRed, darken, amount), OffsetBy(mGreen, darken, amount),
            OffsetBy(mBlue, darken, amount)};
}

CRGBColor CRGBColor::WithMultipliedAlpha(float factor) const noexcept {
    return {mRed, mGreen, mBlue, MultiplyAndBound(mAlpha, factor)};
}

void CRGBColor::MultiplyByScalarAndBound(float factor) noexcept {
    Set(MultiplyAndBound(mRed, factor), MultiplyAndBound(mGreen, factor),
        MultiplyAndBound(mBlue, factor));
}

void CRGBColor::MultiplyAlphaByScalarAndBound(float factor) noexcept {
    mAlpha = MultiplyAndBound(mAlpha, factor);
}

std::ostream& operator<<(std::ostream& out, const CRGBColor& color) {
    return out << "CRGBColor(" << color.GetRed() << ", " << color.GetGreen() << ", "
               << color.GetBlue() << ", " << color.GetAlpha() << ')';
}
