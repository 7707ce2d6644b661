// What a host does first with an installed library: subclass, make by name, catch what the library
// throws. The debugger test stops in ShowToDebugger and prints its variables.
#include <cstdio>
#include <string>

#include "basekit/cmn/cmn_failure.h"
#include "newfilelibs/cmn/cmn_region.h"
#include "qlx/foundation/qlx_region.h"
#include "qlx/foundation/uclassdesc.h"
#include "qlx/foundation/uobject.h"
#include "qlx/views/crgbcolor.h"
#include "qlx/views/ugeometry.h"

class THostObject : public TObject {
  public:
    QLX_DECLARE_CLASS(THostObject);
};
QLX_DEFINE_CLASS(THostObject, TObject)

class HostCounted : public Cmn_RefCountObject {
  public:
    int mAnswer = 42;
};

namespace {

int sFailures = 0;

void Check(bool holds, const char* what) {
    if (!holds) {
        std::printf("does not hold: %s\n", what);
        ++sFailures;
    }
}

void CheckRegistry() {
    ClassDesc::InitUClassDesc();
    auto* object = static_cast<TObject*>(ClassDesc::NewByClassName("THostObject"));
    Check(object && object->DescendsFrom(&TObject::fgClassDesc), "a host's class is made by name");
    Check(QLX_ObjectCast<THostObject>(object) != nullptr, "and is what it says");
    if (object)
        object->Free();
}

void CheckFailures() {
    int code = 0;
    try {
        (void)ClassDesc::NewByClassID(32000);
    } catch (const Cmn_Failure& failure) {
        code = failure.GetCode();
    }
    Check(code == kFailure_UnknownClassID, "a failure crosses the library's boundary");
}

[[gnu::noinline]] void ShowToDebugger() {
    const Cmn_Point<int> point(3, -4);
    const Cmn_Rect<int> rect(1, 2, 30, 40);
    const VPoint viewPoint(5, 6);
    const VRect viewRect(10, 20, 30, 50);
    const QLX_Region region =
        QLX_Region(Cmn_Rect<int>(0, 0, 10, 10)).Union(QLX_Region(Cmn_Rect<int>(20, 0, 30, 10)));
    const CRGBColor color(0x1234, 0, 0xFFFF);
    const Cmn_ID id = Cmn_FourChar("dlog");
    const Cmn_RefCountPtr<HostCounted> counted(new HostCounted);
    const Cmn_RefCountPtr<HostCounted> nothing;
    Check(region.GetRectList().size() == 2, "two rectangles apart"); // the debugger stops here
    Check(point.x == 3 && rect.GetWidth() == 29 && viewPoint.h == 5, "points and rectangles");
    Check(viewRect.GetSize().v == 30 && color.GetRed() == 0x1234 && id == 0x646C6F67, "values");
    Check(counted->mAnswer == 42 && !nothing, "counted pointers");
}

} // namespace

int main() {
    CheckRegistry();
    CheckFailures();
    ShowToDebugger();
    if (sFailures == 0)
        std::puts("all holds");
    return sFailures == 0 ? 0 : 1;
}
