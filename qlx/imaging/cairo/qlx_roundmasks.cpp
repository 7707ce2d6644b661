#include "qlx/imaging/cairo/qlx_roundmasks.h"

#include <cstring>
#include <map>

namespace {

// A theme at one scale has a dozen or two; what animates its size must not fill the memory.
constexpr std::size_t kMostMasks = 256;

using Masks = std::map<QLX_RoundMaskKey, QLX_RoundMask>;

// The one used last is asked for again by the next control of its kind.
struct Kept {
    Masks masks;
    Masks::const_iterator last = masks.end();
};

Kept& TheKept() {
    static Kept kept;
    return kept;
}

} // namespace

const QLX_RoundMask* QLX_RoundMasks::Find(const QLX_RoundMaskKey& key) {
    Kept& kept = TheKept();
    if (kept.last == kept.masks.end() || kept.last->first != key)
        kept.last = kept.masks.find(key);
    return kept.last == kept.masks.end() ? nullptr : &kept.last->second;
}

const QLX_RoundMask& QLX_RoundMasks::Keep(const QLX_RoundMaskKey& key, const std::uint8_t* bytes,
                                          int rowBytes) {
    Kept& kept = TheKept();
    if (kept.masks.size() >= kMostMasks)
        kept.masks.clear();
    QLX_RoundMask& mask = kept.masks[key];
    const auto width = static_cast<std::size_t>(key.width);
    mask.bytes = std::make_unique<std::uint8_t[]>(width * static_cast<std::size_t>(key.height));
    for (int y = 0; y < key.height; ++y)
        std::memcpy(mask.bytes.get() + static_cast<std::size_t>(y) * width,
                    bytes + std::ptrdiff_t{y} * rowBytes, width);
    kept.last = kept.masks.end();
    return mask;
}
