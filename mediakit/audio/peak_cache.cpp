#include "mediakit/audio/peak_cache.h"

#include <bit>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace {

constexpr char kMagic[8] = {'Q', 'L', 'X', 'P', 'E', 'A', 'K', '1'};
constexpr std::size_t kHeaderSize = 8 + 8 + 8 + 4 + 4 + 8;
constexpr std::size_t kPeakSize = 12;

std::uint64_t Checksum(const std::vector<unsigned char>& bytes, std::size_t count) {
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

bool Audio_LoadPeakCache(const std::string& path, const Audio_PeakCacheKey& key,
                         std::vector<Audio_Peak>& peaks) {
    std::error_code error;
    const std::uintmax_t expected = kHeaderSize + peaks.size() * kPeakSize + 8;
    if (std::filesystem::file_size(path, error) != expected || error)
        return false;
    std::vector<unsigned char> bytes(static_cast<std::size_t>(expected));
    std::ifstream file(path, std::ios::binary);
    if (!file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(expected)))
        return false;
    const std::vector<unsigned char> header = Header(key, peaks.size());
    if (std::memcmp(bytes.data(), header.data(), kHeaderSize) != 0)
        return false;
    if (Extract(&bytes[bytes.size() - 8], 8) != Checksum(bytes, bytes.size() - 8))
        return false;
    const unsigned char* at = &bytes[kHeaderSize];
    for (Audio_Peak& peak : peaks) {
        peak = {ExtractFloat(at), ExtractFloat(at + 4), ExtractFloat(at + 8)};
        at += kPeakSize;
    }
    return true;
}

bool Audio_SavePeakCache(const std::string& path, const Audio_PeakCacheKey& key,
                         const std::vector<Audio_Peak>& peaks) {
    std::vector<unsigned char> bytes = Header(key, peaks.size());
    bytes.reserve(bytes.size() + peaks.size() * kPeakSize + 8);
    for (const Audio_Peak& peak : peaks)
        for (const float value : {peak.mMinimum, peak.mMaximum, peak.mRMS})
            Append(bytes, std::bit_cast<std::uint32_t>(value), 4);
    Append(bytes, Checksum(bytes, bytes.size()), 8);

    const std::string beside = path + ".new";
    std::ofstream file(beside, std::ios::binary | std::ios::trunc);
    file.write(reinterpret_cast<const char*>(bytes.data()),
               static_cast<std::streamsize>(bytes.size()));
    file.close();
    std::error_code error;
    if (file)
        std::filesystem::rename(beside, path, error);
    if (file && !error)
        return true;
    std::filesystem::remove(beside, error);
    return false;
}
