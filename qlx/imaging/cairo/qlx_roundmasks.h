// Coverage of rounded rectangles, rendered once for each kind and kept.
#pragma once

#include <compare>
#include <cstdint>
#include <memory>

/// What decides the coverage of a rounded rectangle whose edges lie on whole pixels.
struct QLX_RoundMaskKey {
    int width = 0;  ///< pixels
    int height = 0; ///< pixels
    double radiusX = 0;
    double radiusY = 0;
    int across = 0; ///< thickness of a frame's upright sides, pixels; 0 in both for a fill
    int down = 0;
    bool antialias = true;
    bool topOnly = false;
    friend auto operator<=>(const QLX_RoundMaskKey&, const QLX_RoundMaskKey&) = default;
};

/// Coverage bytes in rows of the key's width.
struct QLX_RoundMask {
    std::unique_ptr<std::uint8_t[]> bytes;
};

/// The masks kept. User-interface thread, as painters.
class QLX_RoundMasks {
  public:
    /// Larger ones are not kept.
    static constexpr int kMostSide = 96;

    /// The mask of a key; null when it has not been rendered.
    [[nodiscard]] static const QLX_RoundMask* Find(const QLX_RoundMaskKey& key);
    /// Keeps a copy of rendered coverage, whose rows are rowBytes apart.
    static const QLX_RoundMask& Keep(const QLX_RoundMaskKey& key, const std::uint8_t* bytes,
                                     int rowBytes);
};
