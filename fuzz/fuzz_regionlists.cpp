// Bytes as operations on a few regions, done by the library and by the pairwise algorithms written
// out: the lists must be equal, cuts and order included.
#include <cstdio>
#include <cstdlib>
#include <limits>

#include "newfilelibs/cmn/cmn_region.h"
#include "tests/support/literal_region.h"

namespace {

using Rect = Cmn_Rect<int>;
using Core = Cmn_RegionCore<int>;
using literal::Rects;

// Longer lists take the pairwise algorithms too long.
constexpr std::size_t kMost = 60;

struct Both {
    Core mCore;
    Rects mRects;
};

// Takes the bytes one after the other; zeros when they are used up.
class Bytes {
  public:
    Bytes(const unsigned char* data, std::size_t size) : mData(data), mEnd(data + size) {}
    [[nodiscard]] bool IsAtEnd() const { return mData == mEnd; }
    unsigned Take() { return IsAtEnd() ? 0 : *mData++; }
    int TakeDelta() { return static_cast<int>(Take()) - 128; }
    /// Most lie close together, so that edges meet; the rest at the ends of what is possible.
    int TakeCoordinate() {
        const int byte = static_cast<int>(Take());
        if (byte < 240)
            return byte % 40;
        return byte < 248 ? std::numeric_limits<int>::min() + (byte - 240)
                          : std::numeric_limits<int>::max() - (byte - 248);
    }
    Rect TakeRect() {
        const int left = TakeCoordinate();
        const int top = TakeCoordinate();
        return {left, top, TakeCoordinate(), TakeCoordinate()};
    }

  private:
    const unsigned char* mData;
    const unsigned char* mEnd;
};

using CoreOperation = void (Core::*)(Core& result, const Core& other) const;

void Combine(Both& to, const Both& a, const Both& b, CoreOperation operation, Rects literally) {
    Both result;
    (a.mCore.*operation)(result.mCore, b.mCore);
    result.mRects = std::move(literally);
    to = result;
}

void ChangeOne(unsigned deed, Both& one, Bytes& bytes) {
    const int dx = bytes.TakeDelta();
    const int dy = bytes.TakeDelta();
    if (deed == 0) {
        one.mCore.Offset(dx, dy);
        one.mRects = literal::Offset(one.mRects, dx, dy);
    } else if (deed == 1) {
        one.mCore.Inset(dx / 32, dy / 32);
        one.mRects = literal::Inset(one.mRects, dx / 32, dy / 32);
    } else {
        const Rect within = bytes.TakeRect();
        one.mCore.OffsetWithin(dx, dy, within);
        one.mRects = literal::OffsetWithin(one.mRects, dx, dy, within);
    }
}

void Step(Both (&all)[4], Bytes& bytes) {
    const unsigned deed = bytes.Take();
    Both& to = all[deed >> 6 & 3];
    const Both a = all[deed >> 4 & 3];
    const Both b = all[bytes.Take() & 3];
    switch (deed & 15) {
    case 0:
        Combine(to, a, b, &Core::Union, literal::Union(a.mRects, b.mRects));
        break;
    case 1:
        Combine(to, a, b, &Core::Intersection, literal::Intersection(a.mRects, b.mRects));
        break;
    case 2:
        Combine(to, a, b, &Core::Difference, literal::Difference(a.mRects, b.mRects));
        break;
    case 3:
        Combine(to, a, b, &Core::Xor, literal::Xor(a.mRects, b.mRects));
        break;
    case 4:
    case 5:
    case 6:
        ChangeOne((deed & 15) - 4, to, bytes);
        break;
    default: {
        const Rect rect = bytes.TakeRect();
        to.mCore.UniteWith(rect);
        to.mRects = literal::Union(to.mRects, rect.Empty() ? Rects() : Rects{rect});
    }
    }
    if (to.mRects.size() > kMost)
        to = Both();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    Both all[4];
    Bytes bytes(data, std::min<std::size_t>(size, 600));
    while (!bytes.IsAtEnd()) {
        Step(all, bytes);
        for (const Both& one : all) {
            const Cmn_RectList& list = one.mCore.GetRectList();
            if (Rects(list.begin(), list.end()) != one.mRects) {
                std::fprintf(stderr, "a list is not what the pairwise algorithms come to\n");
                std::abort();
            }
        }
    }
    return 0;
}
