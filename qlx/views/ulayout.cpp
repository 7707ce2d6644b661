#include "qlx/views/ulayout.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

constexpr std::array<const char*, 5> kRuleNames = {"near", "far", "middle", "proportional", "size"};

/// Two edges of one axis.
struct Span {
    VCoordinate first;
    VCoordinate last;
};

/// a * b / c to the nearest integer, halves upward, for any values that coordinates have.
VCoordinate MulDiv(VCoordinate a, VCoordinate b, VCoordinate c) {
    if (c == 0)
        return a;
    return static_cast<VCoordinate>(std::floor(static_cast<long double>(a) * b / c + 0.5L));
}

/// Where an edge goes; kEdge_Size is its caller's.
VCoordinate PlaceEdge(EEdgeRule rule, VCoordinate edge, VCoordinate reference, VCoordinate size) {
    switch (rule) {
    case kEdge_Far:
        return edge + (size - reference);
    case kEdge_Middle:
        return edge + (size / 2 - reference / 2);
    case kEdge_Proportional:
        return MulDiv(edge, size, reference);
    default:
        return edge;
    }
}

Span Place(EEdgeRule firstRule, EEdgeRule lastRule, Span span, VCoordinate reference,
           VCoordinate size, VCoordinate minimum) {
    const VCoordinate length = span.last - span.first;
    Span placed;
    // Two edges that both keep the distance from each other leave nothing to go by: near wins.
    const bool firstFollows = firstRule == kEdge_Size && lastRule != kEdge_Size;
    placed.first = PlaceEdge(firstRule, span.first, reference, size);
    placed.last = PlaceEdge(lastRule, span.last, reference, size);
    if (lastRule == kEdge_Size)
        placed.last = placed.first + length;
    else if (firstFollows)
        placed.first = placed.last - length;
    const VCoordinate least = std::max<VCoordinate>(minimum, 0);
    if (placed.last - placed.first < least) {
        const bool keepLast = firstFollows || (firstRule == kEdge_Far && lastRule == kEdge_Far);
        if (keepLast)
            placed.first = placed.last - least;
        else
            placed.last = placed.first + least;
    }
    return placed;
}

/// The least length of the superview in which the rules leave room for a length.
VCoordinate LeastFor(EEdgeRule firstRule, EEdgeRule lastRule, Span span, VCoordinate reference,
                     VCoordinate needed) {
    const VCoordinate length = span.last - span.first;
    const VCoordinate before = std::max<VCoordinate>(span.first, 0);
    const VCoordinate after = std::max<VCoordinate>(reference - span.last, 0);
    if (firstRule == kEdge_Proportional && lastRule == kEdge_Proportional)
        return length > 0 ? MulDiv(needed, reference, length) : needed;
    if (lastRule == kEdge_Far && firstRule == kEdge_Near)
        return before + needed + after;
    if (lastRule == kEdge_Far || firstRule == kEdge_Far)
        return std::max(needed, length) + after;
    return before + std::max(needed, lastRule == kEdge_Size ? length : needed);
}

} // namespace

void TViewLayout::SetReference(const VRect& frame, const VPoint& superSize) {
    mFrame = frame;
    mSuperSize = superSize;
    mHasReference = true;
}

VRect TViewLayout::Compute(const VPoint& superSize, const VPoint& minimum) const {
    const Span h =
        Place(mLeft, mRight, {mFrame.Left(), mFrame.Right()}, mSuperSize.h, superSize.h, minimum.h);
    const Span v =
        Place(mTop, mBottom, {mFrame.Top(), mFrame.Bottom()}, mSuperSize.v, superSize.v, minimum.v);
    return {h.first, v.first, h.last, v.last};
}

VPoint TViewLayout::LeastSuperSize(const VPoint& minimum) const {
    return {LeastFor(mLeft, mRight, {mFrame.Left(), mFrame.Right()}, mSuperSize.h, minimum.h),
            LeastFor(mTop, mBottom, {mFrame.Top(), mFrame.Bottom()}, mSuperSize.v, minimum.v)};
}

bool TViewLayout::RuleFromString(const std::string& text, EEdgeRule& rule) {
    for (std::size_t i = 0; i < kRuleNames.size(); ++i) {
        if (text == kRuleNames[i]) {
            rule = static_cast<EEdgeRule>(i);
            return true;
        }
    }
    return false;
}

const char* TViewLayout::RuleToString(EEdgeRule rule) {
    return kRuleNames[std::min<std::size_t>(rule, kRuleNames.size() - 1)];
}
