#include "mediakit/audio/peak_cache.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <string_view>

#include "basekit/sys/sys_file.h"

namespace {

constexpr char kMagic[8] = {'Q', 'L', 'X', 'P', 'E', 'A', 'K', '1'};
constexpr std::size_t kHeaderSize = 8 + 8 + 8 + 4 + 4 + 8;
constexpr std::size_t kPeakSize = 12;

/// Of a whole file.
std::size_t SizeOf(std::size_t peakCount) { return kHeaderSize + peakCount * kPeakSize + 8; }

std::uint64_t Checksum(const unsigned char* bytes, std::size_t count) {
    std::uint64_t hash = 0xCBF29CE484222325u;
    for (std::size_t i = 0; i < count; ++i)
        hash = (hash ^ bytes[i]) * 0x100000001B3u;
    return hash;
}

void Append(std::vector<unsigned char>& bytes, std::uint64_t value, int count) {
    for (int i = 0; i < count; ++i)
        bytes.push_back(static_cast<unsigned char>(value >> 8 * i));
}

std::uint64_t Extract(const unsigned char* bytes, int count) {
    std::uint64_t value = 0;
    for (int i = 0; i < count; ++i)
        value |= static_cast<std::uint64_t>(bytes[i]) << 8 * i;
    return value;
}

std::vector<unsigned char> Header(const Audio_PeakCacheKey& key, std::size_t peakCount) {
    std::vector<unsigned char> bytes(kMagic, kMagic + sizeof kMagic);
    Append(bytes, key.mFingerprint, 8);
    Append(bytes, static_cast<std::uint64_t>(key.mFrameCount), 8);
    Append(bytes, static_cast<std::uint32_t>(key.mChannelCount), 4);
    Append(bytes, Audio_PeakPyramid::kBaseFrames, 4);
    Append(bytes, peakCount, 8);
    return bytes;
}

float ExtractFloat(const unsigned char* bytes) {
    return std::bit_cast<float>(static_cast<std::uint32_t>(Extract(bytes, 4)));
}

} // namespace

bool Audio_ReadPeakCache(std::string_view bytes, const Audio_PeakCacheKey& key,
                         std::vector<Audio_Peak>& peaks) {
    const std::vector<unsigned char> header = Header(key, peaks.size());
    const auto* const start = reinterpret_cast<const unsigned char*>(bytes.data());
    if (bytes.size() != SizeOf(peaks.size()) ||
        std::memcmp(start, header.data(), kHeaderSize) != 0 ||
        Extract(start + bytes.size() - 8, 8) != Checksum(start, bytes.size() - 8))
        return false;
    const unsigned char* at = start + kHeaderSize;
    for (Audio_Peak& peak : peaks) {
        peak = {ExtractFloat(at), ExtractFloat(at + 4), ExtractFloat(at + 8)};
        // No audio gives such a peak, and who draws it could not.
        if (!std::isfinite(peak.mMinimum) || !std::isfinite(peak.mMaximum) ||
            !std::isfinite(peak.mRMS))
            return false;
        at += kPeakSize;
    }
    return true;
}

std::string Audio_WritePeakCache(const Audio_PeakCacheKey& key,
                                 const std::vector<Audio_Peak>& peaks) {
    std::vector<unsigned char> bytes = Header(key, peaks.size());
    bytes.reserve(SizeOf(peaks.size()));
    for (const Audio_Peak& peak : peaks)
        for (const float value : {peak.mMinimum, peak.mMaximum, peak.mRMS})
            Append(bytes, std::bit_cast<std::uint32_t>(value), 4);
    Append(bytes, Checksum(bytes.data(), bytes.size()), 8);
    return {bytes.begin(), bytes.end()};
}

bool Audio_LoadPeakCache(const std::string& path, const Audio_PeakCacheKey& key,
                         std::vector<Audio_Peak>& peaks) {
    try {
        Sys_File file(Sys_FileLoc(path), Sys_FileMode::Read);
        if (file.GetSize() != SizeOf(peaks.size()))
            return false;
        std::string bytes(SizeOf(peaks.size()), '\0');
        return file.Read(bytes.data(), bytes.size()) == bytes.size() &&
               Audio_ReadPeakCache(bytes, key, peaks);
    } catch (const Sys_FileError&) {
        return false;
    }
}

bool Audio_SavePeakCache(const std::string& path, const Audio_PeakCacheKey& key,
                         const std::vector<Audio_Peak>& peaks) {
    try {
        Sys_SafeWriter::Replace(Sys_FileLoc(path), Audio_WritePeakCache(key, peaks));
    } catch (const Sys_FileError&) {
        return false;
    }
    return true;
}
