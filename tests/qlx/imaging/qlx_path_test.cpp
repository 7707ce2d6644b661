#include "qlx/imaging/qlx_path.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr int kHighest = std::numeric_limits<int>::max();
constexpr int kLowest = std::numeric_limits<int>::min();

std::string VerbsOf(const QLX_Path& path) {
    std::string verbs;
    for (const QLX_Path::Element& element : path.GetElements())
        verbs += "MLCZ"[int(element.verb)];
    return verbs;
}

TEST(Path, FiguresBeginWhereTheyMust) {
    QLX_Path path;
    path.Close();
    EXPECT_TRUE(path.IsEmpty()) << "nothing to close";
    path.LineTo(3, 4);
    path.LineTo(5, 6);
    path.Close();
    EXPECT_EQ(VerbsOf(path), "MLZ") << "a line without a place moves there";
    EXPECT_EQ(path.GetBounds(), Cmn_Rect<int>(3, 4, 5, 6));
    path.Clear();
    EXPECT_TRUE(path.IsEmpty());
    EXPECT_TRUE(path.GetBounds().Empty());
}

TEST(Path, NumbersThatAreNoneAreHeld) {
    QLX_Path path;
    for (const float bad : {kNaN, kInfinity, -kInfinity, 3e38F}) {
        path.MoveTo(bad, bad);
        path.LineTo(1, bad);
        path.CurveTo(bad, 1, 2, bad, bad, bad);
        path.AddArc({0, 0, 10, 10}, bad, bad);
        path.AddRoundRect({0, 0, 10, 10}, bad, bad);
    }
    path.AddRect({kLowest, kLowest, kHighest, kHighest});
    path.AddOval({kHighest - 1, 0, kHighest, 1});
    for (const QLX_Path::Element& element : path.GetElements())
        for (const Cmn_Point<float>& point : element.points) {
            EXPECT_LE(std::abs(point.x), 1e6F);
            EXPECT_LE(std::abs(point.y), 1e6F);
        }
}

TEST(Path, ClosedShapesStayWithinTheirRectangle) {
    const Cmn_Rect<int> rect(10, 20, 50, 40);
    const struct {
        const char* name;
        void (*add)(QLX_Path&, const Cmn_Rect<int>&);
    } rows[] = {
        {"rectangle", [](QLX_Path& p, const Cmn_Rect<int>& r) { p.AddRect(r); }},
        {"oval", [](QLX_Path& p, const Cmn_Rect<int>& r) { p.AddOval(r); }},
        {"round", [](QLX_Path& p, const Cmn_Rect<int>& r) { p.AddRoundRect(r, 5, 7); }},
        {"very round", [](QLX_Path& p, const Cmn_Rect<int>& r) { p.AddRoundRect(r, 500, 700); }},
        {"not round", [](QLX_Path& p, const Cmn_Rect<int>& r) { p.AddRoundRect(r, -1, 3); }},
    };
    for (const auto& row : rows) {
        QLX_Path path;
        row.add(path, rect);
        EXPECT_EQ(path.GetBounds(), rect) << row.name;
        EXPECT_EQ(VerbsOf(path).back(), 'Z') << row.name;
        QLX_Path none;
        row.add(none, {10, 20, 10, 40});
        row.add(none, {50, 20, 10, 40});
        EXPECT_TRUE(none.IsEmpty()) << row.name << " of an empty rectangle";
    }
}

TEST(Path, ArcsRunClockwiseFromTwelveOClock) {
    const Cmn_Rect<int> circle(0, 0, 200, 200);
    const struct {
        const char* why;
        float start, sweep;
        float fromX, fromY, toX, toY;
    } rows[] = {
        {"a quarter", 0, 90, 100, 0, 200, 100},
        {"the other way", 0, -90, 100, 0, 0, 100},
        {"from three to nine", 90, 180, 200, 100, 0, 100},
        {"beyond a turn is one", 0, 1000, 100, 0, 100, 0},
        {"a start beyond a turn", 450, 90, 200, 100, 100, 200},
    };
    for (const auto& row : rows) {
        QLX_Path path;
        path.AddArc(circle, row.start, row.sweep);
        ASSERT_FALSE(path.IsEmpty()) << row.why;
        const Cmn_Point<float> first = path.GetElements().front().points[0];
        const QLX_Path::Element& end = path.GetElements().back();
        const Cmn_Point<float> last =
            end.verb == QLX_Path::EVerb::Curve ? end.points[2] : end.points[0];
        EXPECT_NEAR(first.x, row.fromX, 0.1) << row.why;
        EXPECT_NEAR(first.y, row.fromY, 0.1) << row.why;
        EXPECT_NEAR(last.x, row.toX, 0.1) << row.why;
        EXPECT_NEAR(last.y, row.toY, 0.1) << row.why;
        // Every end lies on the circle.
        for (const QLX_Path::Element& element : path.GetElements()) {
            const Cmn_Point<float>& at =
                element.points[element.verb == QLX_Path::EVerb::Curve ? 2 : 0];
            if (element.verb != QLX_Path::EVerb::Close) {
                EXPECT_NEAR(std::hypot(at.x - 100, at.y - 100), 100, 0.1) << row.why;
            }
        }
    }
}

TEST(Path, AnArcContinuesAFigureWithALine) {
    QLX_Path path;
    path.MoveTo(100, 100);
    path.AddArc({0, 0, 200, 200}, 0, 90);
    EXPECT_EQ(VerbsOf(path).substr(0, 3), "MLC");
}

} // namespace
