// Any bytes as a peak cache, once as they are and once with the checksum made right: nothing but
// finite peaks of the audio that was asked for comes out.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "mediakit/audio/peak_cache.h"

namespace {
constexpr Audio_PeakCacheKey kKey{1, 1000, 2};

void LookAt(std::string_view bytes) {
    std::vector<Audio_Peak> peaks(8);
    if (!Audio_ReadPeakCache(bytes, kKey, peaks))
        return;
    for (const Audio_Peak& peak : peaks)
        for (const float value : {peak.mMinimum, peak.mMaximum, peak.mRMS})
            if (!std::isfinite(value)) {
                std::fprintf(stderr, "a peak is no number\n");
                std::abort();
            }
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
    std::string bytes(reinterpret_cast<const char*>(data), size);
    LookAt(bytes);
    // The real head and a right sum, so that what is between them is looked at.
    std::string made = Audio_WritePeakCache(kKey, std::vector<Audio_Peak>(8));
    const std::size_t head = made.size() - 8 - 8 * 12;
    for (std::size_t i = 0; i < bytes.size() && head + i + 8 < made.size(); ++i)
        made[head + i] = bytes[i];
    std::uint64_t sum = 0xCBF29CE484222325u;
    for (std::size_t i = 0; i + 8 < made.size(); ++i)
        sum = (sum ^ static_cast<unsigned char>(made[i])) * 0x100000001B3u;
    for (std::size_t i = 0; i < 8; ++i)
        made[made.size() - 8 + i] = static_cast<char>(sum >> 8 * i);
    LookAt(made);
    return 0;
}
