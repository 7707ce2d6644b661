// Compiled with AVX2 switched on. Nothing from the standard library or our inline functions may be
// used: a copy of it made here could be the one that the linker keeps for the whole library, and
// fail on processors without.

#include "qlx/imaging/qlx_maskrows.h"

#if defined(__AVX2__)

#include <immintrin.h>

namespace {

// Eight pixels at once, in the arithmetic of the general loop: d * 256 + 128 + (color - d) *
// weight, shifted, with weights of 0 to 256. The difference may be negative, but the sum fits a
// lane, so what wraps on the way unwraps.
template <bool kWhole>
struct Cover {
    __m256i color, lanes, opaque;
    __m128i alpha;

    explicit Cover(const QLX_MaskRows& what) noexcept
        : color(_mm256_set1_epi32(int(what.color))),
          lanes(_mm256_unpacklo_epi8(color, _mm256_setzero_si256())),
          opaque(what.hasAlpha ? _mm256_setzero_si256() : _mm256_set1_epi32(int(0xFF000000U))),
          alpha(_mm_set1_epi16(short(what.alpha))) {}

    // Coverages in 16-bit lanes to weights.
    [[nodiscard]] __m128i Weights(__m128i coverages) const noexcept {
        if constexpr (!kWhole) { // / 255, rounded
            const __m128i x = _mm_add_epi16(_mm_mullo_epi16(coverages, alpha), _mm_set1_epi16(128));
            coverages = _mm_srli_epi16(_mm_add_epi16(x, _mm_srli_epi16(x, 8)), 8);
        }
        return _mm_add_epi16(coverages, _mm_srli_epi16(coverages, 7));
    }

    void Eight(std::uint32_t* p, const std::uint8_t* mask) const noexcept {
        // Pixels 0, 1, 4, 5 and 2, 3, 6, 7: the order in which bytes are widened.
        const __m256i low =
            _mm256_setr_epi8(0, 1, 0, 1, 0, 1, 0, 1, 2, 3, 2, 3, 2, 3, 2, 3, //
                             8, 9, 8, 9, 8, 9, 8, 9, 10, 11, 10, 11, 10, 11, 10, 11);
        const __m256i high =
            _mm256_setr_epi8(4, 5, 4, 5, 4, 5, 4, 5, 6, 7, 6, 7, 6, 7, 6, 7, //
                             12, 13, 12, 13, 12, 13, 12, 13, 14, 15, 14, 15, 14, 15, 14, 15);
        const __m256i zero = _mm256_setzero_si256();
        const __m256i half = _mm256_set1_epi8(char(0x80));
        auto* place = reinterpret_cast<__m256i*>(p);
        const __m256i weights = _mm256_broadcastsi128_si256(
            Weights(_mm_cvtepu8_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(mask)))));
        const __m256i d = _mm256_or_si256(_mm256_loadu_si256(place), opaque);
        const __m256i a = _mm256_mullo_epi16(_mm256_sub_epi16(lanes, _mm256_unpacklo_epi8(d, zero)),
                                             _mm256_shuffle_epi8(weights, low));
        const __m256i b = _mm256_mullo_epi16(_mm256_sub_epi16(lanes, _mm256_unpackhi_epi8(d, zero)),
                                             _mm256_shuffle_epi8(weights, high));
        const __m256i x = _mm256_add_epi16(_mm256_unpacklo_epi8(half, d), a);
        const __m256i y = _mm256_add_epi16(_mm256_unpackhi_epi8(half, d), b);
        _mm256_storeu_si256(place,
                            _mm256_packus_epi16(_mm256_srli_epi16(x, 8), _mm256_srli_epi16(y, 8)));
    }

    void Four(std::uint32_t* p, const std::uint8_t* mask) const noexcept {
        const __m128i zero = _mm_setzero_si128();
        const __m128i half = _mm_set1_epi8(char(0x80));
        auto* place = reinterpret_cast<__m128i*>(p);
        const __m128i four = Weights(_mm_cvtepu8_epi16(_mm_loadu_si32(mask)));
        const __m128i weights = _mm_unpacklo_epi16(four, four);
        const __m128i color4 = _mm256_castsi256_si128(lanes);
        const __m128i d = _mm_or_si128(_mm_loadu_si128(place), _mm256_castsi256_si128(opaque));
        const __m128i a = _mm_mullo_epi16(_mm_sub_epi16(color4, _mm_unpacklo_epi8(d, zero)),
                                          _mm_unpacklo_epi32(weights, weights));
        const __m128i b = _mm_mullo_epi16(_mm_sub_epi16(color4, _mm_unpackhi_epi8(d, zero)),
                                          _mm_unpackhi_epi32(weights, weights));
        const __m128i x = _mm_add_epi16(_mm_unpacklo_epi8(half, d), a);
        const __m128i y = _mm_add_epi16(_mm_unpackhi_epi8(half, d), b);
        _mm_storeu_si128(place, _mm_packus_epi16(_mm_srli_epi16(x, 8), _mm_srli_epi16(y, 8)));
    }

    // Shapes are wide and mostly empty or full.
    void Wide(std::uint32_t* p, const std::uint8_t* mask, int columns) const noexcept {
        int i = 0;
        for (; i + 8 <= columns; i += 8) {
            const long long eight =
                _mm_cvtsi128_si64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(mask + i)));
            if (eight == 0)
                continue;
            if (kWhole && eight == -1)
                _mm256_storeu_si256(reinterpret_cast<__m256i*>(p + i), color);
            else
                Eight(p + i, mask + i);
        }
        if (i < columns)
            Four(p + i, mask + i);
    }
};

template <bool kWhole>
void Lay(const QLX_MaskRows& what) noexcept {
    const Cover<kWhole> cover(what);
    std::uint32_t* p = what.pixels;
    const std::uint8_t* mask = what.mask;
    if (what.columns == 8)
        for (int rows = what.rows; rows > 0; --rows, p += what.rowPixels, mask += what.maskRow)
            cover.Eight(p, mask);
    else if (what.columns == 4)
        for (int rows = what.rows; rows > 0; --rows, p += what.rowPixels, mask += what.maskRow)
            cover.Four(p, mask);
    else
        for (int rows = what.rows; rows > 0; --rows, p += what.rowPixels, mask += what.maskRow)
            cover.Wide(p, mask, what.columns);
}

} // namespace

void QLX_LayMaskRowsAVX2(const QLX_MaskRows& what) noexcept {
    if (what.alpha == 255)
        Lay<true>(what);
    else
        Lay<false>(what);
}

#endif
