#include "qlx/imaging/qlx_path.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr float kFarthest = 1e6F;

[[nodiscard]] float Held(float value) noexcept {
    return std::isnan(value) ? 0 : std::clamp(value, -kFarthest, kFarthest);
}

// Control points of a quarter ellipse lie this share of the radius from its ends: the usual cubic
// approximation, off by at most 0.03 % of the radius.
constexpr float kQuarter = 0.5522847498F;

struct Ellipse {
    float centerX, centerY, radiusX, radiusY;
    explicit Ellipse(const Cmn_Rect<int>& rect) noexcept
        : centerX(Held((float(rect.left) + float(rect.right)) / 2)),
          centerY(Held((float(rect.top) + float(rect.bottom)) / 2)),
          radiusX(std::fabs(Held((float(rect.right) - float(rect.left)) / 2))),
          radiusY(std::fabs(Held((float(rect.bottom) - float(rect.top)) / 2))) {}
};

} // namespace

QLX_Path::QLX_Path() = default;
QLX_Path::~QLX_Path() = default;

void QLX_Path::MoveTo(float x, float y) {
    mStart = {Held(x), Held(y)};
    mElements.push_back({EVerb::Move, {mStart, {}, {}}});
}

void QLX_Path::LineTo(float x, float y) {
    if (mElements.empty()) {
        MoveTo(x, y);
        return;
    }
    mElements.push_back({EVerb::Line, {{Held(x), Held(y)}, {}, {}}});
}

void QLX_Path::CurveTo(float x1, float y1, float x2, float y2, float x3, float y3) {
    if (mElements.empty())
        MoveTo(x1, y1);
    mElements.push_back(
        {EVerb::Curve, {{Held(x1), Held(y1)}, {Held(x2), Held(y2)}, {Held(x3), Held(y3)}}});
}

void QLX_Path::Close() {
    if (!mElements.empty() && mElements.back().verb != EVerb::Close)
        mElements.push_back({EVerb::Close, {}});
}

void QLX_Path::AddRect(const Cmn_Rect<int>& rect) {
    if (rect.Empty())
        return;
    MoveTo(float(rect.left), float(rect.top));
    LineTo(float(rect.right), float(rect.top));
    LineTo(float(rect.right), float(rect.bottom));
    LineTo(float(rect.left), float(rect.bottom));
    Close();
}

void QLX_Path::AddRoundRect(const Cmn_Rect<int>& rect, float radiusX, float radiusY) {
    if (rect.Empty())
        return;
    const float left = Held(float(rect.left)), top = Held(float(rect.top));
    const float right = Held(float(rect.right)), bottom = Held(float(rect.bottom));
    const float rx = std::clamp(Held(radiusX), 0.0F, (right - left) / 2);
    const float ry = std::clamp(Held(radiusY), 0.0F, (bottom - top) / 2);
    const float kx = rx * (1 - kQuarter), ky = ry * (1 - kQuarter);
    MoveTo(left + rx, top);
    LineTo(right - rx, top);
    CurveTo(right - kx, top, right, top + ky, right, top + ry);
    LineTo(right, bottom - ry);
    CurveTo(right, bottom - ky, right - kx, bottom, right - rx, bottom);
    LineTo(left + rx, bottom);
    CurveTo(left + kx, bottom, left, bottom - ky, left, bottom - ry);
    LineTo(left, top + ry);
    CurveTo(left, top + ky, left + kx, top, left + rx, top);
    Close();
}

void QLX_Path::AddOval(const Cmn_Rect<int>& rect) {
    const Ellipse ellipse(rect);
    AddRoundRect(rect, ellipse.radiusX, ellipse.radiusY);
}

void QLX_Path::AddArc(const Cmn_Rect<int>& rect, float startDegrees, float sweepDegrees) {
    if (rect.Empty())
        return;
    const Ellipse ellipse(rect);
    const float start = std::fmod(Held(startDegrees), 360.0F) * std::numbers::pi_v<float> / 180;
    const float sweep =
        std::clamp(Held(sweepDegrees), -360.0F, 360.0F) * std::numbers::pi_v<float> / 180;
    // Clockwise from twelve: x is the sine and y minus the cosine.
    const auto place = [&](float angle) {
        return Cmn_Point<float>(ellipse.centerX + ellipse.radiusX * std::sin(angle),
                                ellipse.centerY - ellipse.radiusY * std::cos(angle));
    };
    const auto first = place(start);
    LineTo(first.x, first.y);
    const int pieces =
        std::max(1, int(std::ceil(std::fabs(sweep) / (std::numbers::pi_v<float> / 2))));
    const float step = sweep / float(pieces);
    const float reach = 4.0F / 3 * std::tan(step / 4);
    for (int i = 0; i < pieces; ++i) {
        const float from = start + step * float(i), to = from + step;
        const auto a = place(from), b = place(to);
        CurveTo(a.x + reach * ellipse.radiusX * std::cos(from),
                a.y + reach * ellipse.radiusY * std::sin(from),
                b.x - reach * ellipse.radiusX * std::cos(to),
                b.y - reach * ellipse.radiusY * std::sin(to), b.x, b.y);
    }
}

void QLX_Path::Clear() {
    mElements.clear();
    mStart = {};
}

void QLX_Path::Add(const Element& element) {
    const auto& p = element.points;
    switch (element.verb) {
    case EVerb::Move:
        return MoveTo(p[0].x, p[0].y);
    case EVerb::Line:
        return LineTo(p[0].x, p[0].y);
    case EVerb::Curve:
        return CurveTo(p[0].x, p[0].y, p[1].x, p[1].y, p[2].x, p[2].y);
    case EVerb::Close:
        return Close();
    }
}

Cmn_Rect<int> QLX_Path::GetBounds() const noexcept {
    float left = kFarthest, top = kFarthest, right = -kFarthest, bottom = -kFarthest;
    bool any = false;
    for (const Element& element : mElements) {
        const int count = element.verb == EVerb::Curve ? 3 : element.verb == EVerb::Close ? 0 : 1;
        for (int i = 0; i < count; ++i) {
            any = true;
            left = std::min(left, element.points[i].x);
            top = std::min(top, element.points[i].y);
            right = std::max(right, element.points[i].x);
            bottom = std::max(bottom, element.points[i].y);
        }
    }
    if (!any)
        return {};
    return {int(std::floor(left)), int(std::floor(top)), int(std::ceil(right)),
            int(std::ceil(bottom))};
}
