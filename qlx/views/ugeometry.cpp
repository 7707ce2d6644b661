#include "qlx/views/ugeometry.h"

#include <cinttypes>
#include <cstdio>
#include <ostream>

static_assert(sizeof(VRect) == 4 * sizeof(VCoordinate),
              "hosts read rectangles as four coordinates");
static_assert(sizeof(VPoint) == 2 * sizeof(VCoordinate));

namespace {

// Four 64-bit numbers of at most twenty characters, and the words around them.
constexpr std::size_t kTextSize = 112;
char sPointText[kTextSize];
char sRectText[kTextSize];

const char* Write(char (&text)[kTextSize], const VPoint& point) {
    std::snprintf(text, kTextSize, "VPoint(%" PRId64 ", %" PRId64 ")", point.h, point.v);
    return text;
}

const char* Write(char (&text)[kTextSize], const VRect& rect) {
    std::snprintf(text, kTextSize, "VRect(%" PRId64 ", %" PRId64 ", %" PRId64 ", %" PRId64 ")",
                  rect.Left(), rect.Top(), rect.Right(), rect.Bottom());
    return text;
}

} // namespace

VPoint::operator const char*() const { return Write(sPointText, *this); }

VRect::operator const char*() const { return Write(sRectText, *this); }

std::string VRect::AsString() const {
    char text[kTextSize];
    return Write(text, *this);
}

std::ostream& operator<<(std::ostream& out, const VPoint& point) {
    char text[kTextSize];
    return out << Write(text, point);
}

std::ostream& operator<<(std::ostream& out, const VRect& rect) {
    char text[kTextSize];
    return out << Write(text, rect);
}
