// The file in which the base level of a peak pyramid is kept beside the audio.
//
// Layout, all numbers little-endian: 8 bytes "QLXPEAK1"; fingerprint (8 bytes); frame count (8);
// channel count (4); frames a peak (4); number of peaks over all channels (8); the peaks,
// interleaved by channel, as three 32-bit IEEE floats each (minimum, maximum, RMS); FNV-1a (64
// bits) over everything before it (8). A file that differs in any of it from what is expected is
// not used.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "mediakit/audio/peak_pyramid.h"

/// What a cache must have been made from to be of use.
struct Audio_PeakCacheKey {
    std::uint64_t mFingerprint;
    std::int64_t mFrameCount;
    std::int32_t mChannelCount;
};

/// Fills peaks from a file's bytes as Audio_LoadPeakCache does from the file.
QLX_API bool Audio_ReadPeakCache(std::string_view bytes, const Audio_PeakCacheKey& key,
                                 std::vector<Audio_Peak>& peaks);
/// The bytes of a whole file.
[[nodiscard]] QLX_API std::string Audio_WritePeakCache(const Audio_PeakCacheKey& key,
                                                       const std::vector<Audio_Peak>& peaks);

/// Fills peaks (whose size says how many are expected). False, and peaks of no meaning, when the
/// file is absent, stale, short or damaged.
QLX_API bool Audio_LoadPeakCache(const std::string& path, const Audio_PeakCacheKey& key,
                                 std::vector<Audio_Peak>& peaks);

/// Replaces the file in one step, so a reader meets a whole one or none. False when it cannot.
QLX_API bool Audio_SavePeakCache(const std::string& path, const Audio_PeakCacheKey& key,
                                 const std::vector<Audio_Peak>& peaks);
