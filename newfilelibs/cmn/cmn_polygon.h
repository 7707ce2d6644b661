// A polygon as painters take it.
#pragma once

#include <initializer_list>
#include <vector>

#include "newfilelibs/cmn/cmn_rect.h"

/// Corners in order; the last one joins the first. A value.
template <class T>
class Cmn_Polygon {
  public:
    Cmn_Polygon() = default;
    Cmn_Polygon(std::initializer_list<Cmn_Point<T>> points) : mPoints(points) {}
    explicit Cmn_Polygon(std::vector<Cmn_Point<T>> points) : mPoints(std::move(points)) {}
    /// The rectangle's corners, clockwise from the top left.
    explicit Cmn_Polygon(const Cmn_Rect<T>& rect)
        : mPoints{{rect.left, rect.top},
                  {rect.right, rect.top},
                  {rect.right, rect.bottom},
                  {rect.left, rect.bottom}} {}

    [[nodiscard]] std::size_t size() const noexcept { return mPoints.size(); }
    [[nodiscard]] bool empty() const noexcept { return mPoints.empty(); }
    [[nodiscard]] const Cmn_Point<T>* data() const noexcept { return mPoints.data(); }
    [[nodiscard]] auto begin() const noexcept { return mPoints.begin(); }
    [[nodiscard]] auto end() const noexcept { return mPoints.end(); }
    [[nodiscard]] const Cmn_Point<T>& operator[](std::size_t index) const noexcept {
        return mPoints[index];
    }
    [[nodiscard]] Cmn_Point<T>& operator[](std::size_t index) noexcept { return mPoints[index]; }
    [[nodiscard]] friend bool operator==(const Cmn_Polygon&, const Cmn_Polygon&) = default;

    /// The smallest and largest coordinates of the corners; all zeros without corners.
    [[nodiscard]] Cmn_Rect<T> GetBounds() const noexcept {
        if (mPoints.empty())
            return {};
        Cmn_Rect<T> bounds(mPoints.front(), mPoints.front());
        for (const Cmn_Point<T>& point : mPoints)
            bounds |= Cmn_Rect<T>(point, point);
        return bounds;
    }

    void Append(const Cmn_Point<T>& point) { mPoints.push_back(point); }
    void Clear() noexcept { mPoints.clear(); }
    /// Moves every corner; wraps on overflow.
    Cmn_Polygon& operator+=(const Cmn_Point<T>& delta) noexcept {
        for (Cmn_Point<T>& point : mPoints)
            point += delta;
        return *this;
    }
    [[nodiscard]] friend Cmn_Polygon operator+(Cmn_Polygon polygon,
                                               const Cmn_Point<T>& delta) noexcept {
        return polygon += delta;
    }

  private:
    std::vector<Cmn_Point<T>> mPoints;
};
