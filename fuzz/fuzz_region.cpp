// Any bytes as region data, as a window system hands them over: refused, or a region that gives the
// same rectangles again.
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "qlx/foundation/qlx_nativeregion.h"

namespace {
using Block = std::vector<unsigned char>;

Block DataOf(QLX_NativeRegionHandle region) {
    Block block(QLX_NativeRegion_GetData(region, 0, nullptr));
    if (QLX_NativeRegion_GetData(region, static_cast<std::uint32_t>(block.size()), block.data()) !=
        block.size())
        block.clear();
    return block;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    const QLX_NativeRegionHandle region =
        QLX_NativeRegion_CreateFromData(static_cast<std::uint32_t>(size), data);
    if (!region)
        return 0;
    const Block once = DataOf(region);
    QLX_NativeRegion_Delete(region);
    const QLX_NativeRegionHandle again =
        QLX_NativeRegion_CreateFromData(static_cast<std::uint32_t>(once.size()), once.data());
    if (once.empty() || !again || DataOf(again) != once) {
        std::fprintf(stderr, "a region changed when it was written and read\n");
        std::abort();
    }
    QLX_NativeRegion_Delete(again);
    return 0;
}
