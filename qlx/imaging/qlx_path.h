// Outlines of straight lines and curves, made by a painter and filled or stroked by it.
#pragma once

#include <vector>

#include "basekit/cmn/cmn_refcount.h"
#include "newfilelibs/cmn/cmn_rect.h"

/// A path in the logical units of the painter that draws it. Coordinates that are not finite, or
/// beyond a million units, are held at that bound (a NaN is 0), so no painter meets what it cannot
/// draw. Shared by count; user-interface thread.
class QLX_API QLX_Path : public Cmn_RefCountObject {
  public:
    enum class EVerb : std::uint8_t { Move, Line, Curve, Close };
    /// One step: Move and Line use the first point, Curve (a cubic) two control points and the end.
    struct Element {
        EVerb verb;
        Cmn_Point<float> points[3];
        friend bool operator==(const Element&, const Element&) noexcept = default;
    };

    QLX_Path();
    ~QLX_Path() override;

    void MoveTo(float x, float y);
    /// Without a current point this moves there.
    void LineTo(float x, float y);
    void CurveTo(float x1, float y1, float x2, float y2, float x3, float y3);
    /// A line back to the last Move; nothing on an empty path.
    void Close();
    /// A closed rectangle; an empty one adds nothing.
    void AddRect(const Cmn_Rect<int>& rect);
    /// A closed rectangle with elliptic corners; radii are held to half the sides.
    void AddRoundRect(const Cmn_Rect<int>& rect, float radiusX, float radiusY);
    /// A closed ellipse that fills the rectangle.
    void AddOval(const Cmn_Rect<int>& rect);
    /// Part of the ellipse that fills the rectangle, in degrees clockwise from twelve o'clock;
    /// continues a path with a line to its start. Sweeps beyond a full turn count as one.
    void AddArc(const Cmn_Rect<int>& rect, float startDegrees, float sweepDegrees);
    void Clear();

    [[nodiscard]] bool IsEmpty() const noexcept { return mElements.empty(); }
    [[nodiscard]] const std::vector<Element>& GetElements() const noexcept { return mElements; }
    void Add(const Element& element);
    /// The smallest whole rectangle around all points, control points included; empty when there
    /// are none.
    [[nodiscard]] Cmn_Rect<int> GetBounds() const noexcept;

  private:
    std::vector<Element> mElements;
    Cmn_Point<float> mStart; // of the current figure
};
