// How a view follows its superview's size. Each of its four edges stands at a fixed distance from
// the superview's near or far edge or from its middle, or moves in proportion. Frames are computed
// from the frame and the superview size that the layout was made for, never from the last result,
// so that thousands of resizes leave no drift and the first size gives back the first frame.
#pragma once

#include <string>

#include "basekit/cmn/cmn_types.h"
#include "qlx/views/ugeometry.h"

/// What an edge keeps.
enum EEdgeRule : std::uint8_t {
    kEdge_Near = 0,         ///< its distance from the superview's left or top edge
    kEdge_Far = 1,          ///< its distance from the superview's right or bottom edge
    kEdge_Middle = 2,       ///< its distance from the superview's middle
    kEdge_Proportional = 3, ///< its share of the superview's width or height
    kEdge_Size = 4          ///< the view's width or height: its distance from the opposite edge
};

/// A value. Properties of a view that has one: "LayoutLeft", "LayoutTop", "LayoutRight",
/// "LayoutBottom" (strings "near", "far", "middle", "proportional", "size"; absent: "near" for left
/// and top, "size" for right and bottom), "MinimumSize" (point).
class QLX_API TViewLayout {
  public:
    TViewLayout() = default;
    TViewLayout(EEdgeRule left, EEdgeRule top, EEdgeRule right, EEdgeRule bottom)
        : mLeft(left), mTop(top), mRight(right), mBottom(bottom) {}

    /// The frame and superview size that the rules hold for.
    void SetReference(const VRect& frame, const VPoint& superSize);
    [[nodiscard]] bool HasReference() const { return mHasReference; }
    [[nodiscard]] const VRect& GetReferenceFrame() const { return mFrame; }
    [[nodiscard]] const VPoint& GetReferenceSize() const { return mSuperSize; }

    /// The frame in a superview of that size, at least minimum in size. A view that its minimum
    /// pushes beyond its rules keeps the edge whose rule is stronger: near and middle before far,
    /// left and top before right and bottom. The reference must have been set.
    [[nodiscard]] VRect Compute(const VPoint& superSize, const VPoint& minimum) const;

    /// The least superview size in which the view has at least that size.
    [[nodiscard]] VPoint LeastSuperSize(const VPoint& minimum) const;

    [[nodiscard]] EEdgeRule GetLeft() const { return mLeft; }
    [[nodiscard]] EEdgeRule GetTop() const { return mTop; }
    [[nodiscard]] EEdgeRule GetRight() const { return mRight; }
    [[nodiscard]] EEdgeRule GetBottom() const { return mBottom; }
    /// "near", "far", "middle", "proportional" or "size"; false, rule untouched, for anything else.
    static bool RuleFromString(const std::string& text, EEdgeRule& rule);
    [[nodiscard]] static const char* RuleToString(EEdgeRule rule);

  private:
    EEdgeRule mLeft = kEdge_Near;
    EEdgeRule mTop = kEdge_Near;
    EEdgeRule mRight = kEdge_Size;
    EEdgeRule mBottom = kEdge_Size;
    bool mHasReference = false;
    VRect mFrame;
    VPoint mSuperSize;
};
