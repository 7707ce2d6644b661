// The value types' debug information, once, in the installed library: compilers leave the
// description of a class with virtual operations to the source that has its table, and the library
// is otherwise built without. Compiled with -g; no code comes of it.
#include "basekit/cmn/cmn_refcount.h"
#include "newfilelibs/cmn/cmn_region.h"
#include "qlx/foundation/qlx_region.h"
#include "qlx/views/crgbcolor.h"
#include "qlx/views/ugeometry.h"

// A variable of a type is what makes the compiler describe it.
struct QLX_DebugTypes {
    QLX_Region* mRegion;
    Cmn_RegionCore<int>* mCore;
    Cmn_RectList* mRects;
    Cmn_Rect<int>* mRect;
    Cmn_Point<int>* mPoint;
    VRect* mViewRect;
    VPoint* mViewPoint;
    CRGBColor* mColor;
    Cmn_RefCountObject* mCounted;
    Cmn_ID mId;
};

extern QLX_DebugTypes* const kQLX_DebugTypes;
QLX_DebugTypes* const kQLX_DebugTypes = nullptr;
