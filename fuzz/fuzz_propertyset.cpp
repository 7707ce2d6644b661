// Any bytes as the stream of a set, in both byte orders; what was read is written and read back.
#include <cstdlib>

#include "basekit/cmn/cmn_assert.h"
#include "basekit/sys/sys_typedstream.h"
#include "qlx/persistence/qlx_propertyset.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    Cmn_SetAssertionHandler([](const char*, const char*, int) {});
    const bool swap = size > 0 && data[size - 1] % 2 != 0;
    Sys_TypedInStream in(data, size, swap);
    QLX_PropertySet set;
    set.StreamIn(in);
    Sys_TypedOutStream out(swap);
    set.StreamOut(out);
    Sys_TypedInStream back(out.GetBytes(), swap);
    QLX_PropertySet again;
    again.StreamIn(back);
    if (again != set || back.HasFailed() || back.GetRemaining() != 0)
        std::abort();
    return 0;
}
