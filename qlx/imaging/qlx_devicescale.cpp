#include "qlx/imaging/qlx_devicescale.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int kSmallest = QLX_DeviceScale::kUnit / 8;
constexpr int kLargest = QLX_DeviceScale::kUnit * 16;

// Beyond these the product would leave 64 bits; the result is clamped to int anyway.
constexpr std::int64_t kFarEdge = std::int64_t{1} << 48;

[[nodiscard]] constexpr std::int64_t FloorDivide(std::int64_t value, std::int64_t by) noexcept {
    const std::int64_t quotient = value / by;
    return value % by < 0 ? quotient - 1 : quotient;
}

// The logical edge whose device edge is at most (up: at least) the given one, nearest to it. The
// mapping is monotone, so a guess and a step or two settle it.
[[nodiscard]] int InverseEdge(QLX_DeviceScale scale, int device, bool up) noexcept {
    std::int64_t guess =
        FloorDivide(std::int64_t{device} * QLX_DeviceScale::kUnit, scale.Get120ths());
    const bool many = scale.Get120ths() < QLX_DeviceScale::kUnit; // edges that share a pixel edge
    if (up) {
        while (scale.EdgeToDevice(guess) > device)
            --guess;
        while (scale.EdgeToDevice(guess) < device && guess < INT32_MAX)
            ++guess;
        while (many && scale.EdgeToDevice(guess - 1) >= device && guess > INT32_MIN)
            --guess;
    } else {
        while (scale.EdgeToDevice(guess) < device)
            ++guess;
        while (scale.EdgeToDevice(guess) > device && guess > INT32_MIN)
            --guess;
        while (many && scale.EdgeToDevice(guess + 1) <= device && guess < INT32_MAX)
            ++guess;
    }
    return Cmn_ClampTo<int>(guess);
}

} // namespace

QLX_DeviceScale::QLX_DeviceScale(double factor) noexcept {
    if (std::isnan(factor))
        return;
    const double count = std::clamp(factor * kUnit, double{kSmallest}, double{kLargest});
    mCount = static_cast<int>(std::lround(count));
}

QLX_DeviceScale QLX_DeviceScale::From120ths(int count) noexcept {
    QLX_DeviceScale scale;
    scale.mCount = std::clamp(count, kSmallest, kLargest);
    return scale;
}

int QLX_DeviceScale::ScaleEdge(std::int64_t logical) const noexcept {
    const std::int64_t near = std::clamp(logical, -kFarEdge, kFarEdge);
    return Cmn_ClampTo<int>(FloorDivide(near * mCount + kUnit / 2, kUnit));
}

Cmn_Rect<int> QLX_DeviceScale::RectToDevice(const Cmn_Rect<int>& logical) const noexcept {
    return {EdgeToDevice(logical.left), EdgeToDevice(logical.top), EdgeToDevice(logical.right),
            EdgeToDevice(logical.bottom)};
}

Cmn_Rect<int> QLX_DeviceScale::RectToLogical(const Cmn_Rect<int>& device) const noexcept {
    return {InverseEdge(*this, device.left, false), InverseEdge(*this, device.top, false),
            InverseEdge(*this, device.right, true), InverseEdge(*this, device.bottom, true)};
}

int QLX_DeviceScale::ThicknessToDevice(int logical) const noexcept {
    return logical <= 0 ? 0 : std::max(1, EdgeToDevice(logical));
}
