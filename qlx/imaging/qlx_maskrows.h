// The rows of glyph masks, for processors with 256-bit integer instructions. The source file is
// compiled for them, so it and this header define nothing that another file could come to share.
#pragma once

#include <cstddef>
#include <cstdint>

/// One colour laid over pixels through coverage. Columns come in whole fours: both sides have them.
struct QLX_MaskRows {
    std::uint32_t* pixels; ///< premultiplied 0xAARRGGBB; not owned
    std::ptrdiff_t rowPixels;
    const std::uint8_t* mask; ///< coverage, a byte a pixel; not owned
    std::ptrdiff_t maskRow;
    int columns; ///< a multiple of 4
    int rows;
    std::uint32_t color; ///< 0xFFRRGGBB
    std::uint32_t alpha; ///< weighs all coverage, 0 to 255
    bool hasAlpha;       ///< false: the pixels' top byte counts as 255
};

/// Gives what the general loop gives, byte for byte. To be called only where Sys_HasAVX2 says so.
void QLX_LayMaskRowsAVX2(const QLX_MaskRows& what) noexcept;
