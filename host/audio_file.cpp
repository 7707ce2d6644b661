#include "host/audio_file.h"

#include <sndfile.h>

#include <cmath>
#include <filesystem>
#include <mutex>
#include <stdexcept>

namespace {

/// One file handle, shared by the peaks' builder and close zooms: each read is a seek of its own.
class FileReader : public Audio_SampleReader {
  public:
    FileReader(SNDFILE* file, const SF_INFO& info) : mFile(file), mInfo(info) {}
    ~FileReader() override { sf_close(mFile); }

    std::int64_t GetFrameCount() const override { return mInfo.frames; }
    int GetChannelCount() const override { return mInfo.channels; }
    bool Read(std::int64_t start, std::int32_t frames, float* interleaved) override {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (sf_seek(mFile, start, SEEK_SET) != start)
            return false;
        return sf_readf_float(mFile, interleaved, frames) == frames;
    }

  private:
    SNDFILE* mFile; // owned
    SF_INFO mInfo;
    std::mutex mMutex;
};

class GeneratedReader : public Audio_SampleReader {
  public:
    static constexpr std::int32_t kRate = 48000;
    static constexpr std::int64_t kFrames = std::int64_t{120} * kRate;

    std::int64_t GetFrameCount() const override { return kFrames; }
    int GetChannelCount() const override { return 2; }
    bool Read(std::int64_t start, std::int32_t frames, float* interleaved) override {
        for (std::int32_t i = 0; i < frames; ++i) {
            const double seconds = static_cast<double>(start + i) / kRate;
            const double beat = std::fmod(seconds, 0.5);
            const double phrase = std::fmod(seconds, 16.0);
            const double loud = phrase > 14 ? 0.0 : 0.25 + 0.7 * phrase / 14;
            const double burst = std::exp(-beat * 9) * std::sin(seconds * 6.283185307 * 220);
            const double sweep = 0.35 * std::sin(seconds * 6.283185307 * (110 + 12 * phrase));
            interleaved[2 * i] = static_cast<float>(loud * (0.8 * burst + 0.4 * sweep));
            interleaved[2 * i + 1] = static_cast<float>(loud * (0.5 * burst - 0.6 * sweep));
        }
        return true;
    }
};

} // namespace

SessionAudio OpenAudioFile(const std::string& path) {
    SF_INFO info{};
    SNDFILE* file = sf_open(path.c_str(), SFM_READ, &info);
    if (!file)
        throw std::runtime_error(path + ": " + sf_strerror(nullptr));
    SessionAudio audio;
    audio.mReader = std::make_shared<FileReader>(file, info);
    if (info.frames < 1 || info.channels < 1 || info.samplerate < 1 || !info.seekable)
        throw std::runtime_error(path + ": holds no audio that can be shown");
    audio.mSamplesPerSecond = info.samplerate;
    audio.mName = std::filesystem::path(path).stem().string();
    audio.mCachePath = path + ".qlxpeaks";
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    const auto changed = std::filesystem::last_write_time(path, error).time_since_epoch().count();
    audio.mFingerprint = static_cast<std::uint64_t>(size) * 0x9E3779B97F4A7C15u ^
                         static_cast<std::uint64_t>(changed);
    return audio;
}

SessionAudio MakeGeneratedAudio() {
    SessionAudio audio;
    audio.mReader = std::make_shared<GeneratedReader>();
    audio.mSamplesPerSecond = GeneratedReader::kRate;
    audio.mName = "Audio 1";
    return audio;
}
