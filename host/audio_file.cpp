#include "host/audio_file.h"

#include <sndfile.h>

#include <cmath>
#include <complex>
#include <filesystem>
#include <mutex>
#include <stdexcept>
#include <vector>

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

/// Plucked notes over a sweep that rises and breaks off, the same every sixteen seconds.
class GeneratedReader : public Audio_SampleReader {
  public:
    static constexpr std::int32_t kRate = 48000;
    static constexpr std::int64_t kFrames = std::int64_t{120} * kRate;

    GeneratedReader() {
        for (std::int32_t i = 0; i < kBeat; ++i) {
            const double seconds = static_cast<double>(i) / kRate;
            mPluck[i] =
                static_cast<float>(std::exp(-9 * seconds) * std::sin(kTurn * 220 * seconds));
        }
        // The sweep's phase grows by a little more with each frame: two rotations a frame instead
        // of a sine.
        std::complex<double> phase = 0.35;
        std::complex<double> step = std::polar(1.0, kTurn * 110 / kRate);
        const std::complex<double> faster = std::polar(1.0, kTurn * 12 / kRate / kRate);
        for (float& sample : mSweep) {
            sample = static_cast<float>(phase.imag());
            phase *= step;
            step *= faster;
        }
    }

    std::int64_t GetFrameCount() const override { return kFrames; }
    int GetChannelCount() const override { return 2; }
    bool Read(std::int64_t start, std::int32_t frames, float* interleaved) override {
        for (std::int32_t i = 0; i < frames; ++i) {
            const auto place = static_cast<std::size_t>((start + i) % kPhrase);
            const bool silent = place > kPhrase / 8 * 7;
            const float loud =
                silent ? 0.0F : 0.25F + 0.8F * static_cast<float>(place) / float{kPhrase};
            const float pluck = loud * mPluck[place % kBeat];
            const float sweep = loud * mSweep[place];
            interleaved[2 * i] = 0.8F * pluck + 0.4F * sweep;
            interleaved[2 * i + 1] = 0.5F * pluck - 0.6F * sweep;
        }
        return true;
    }

  private:
    static constexpr double kTurn = 6.283185307179586;
    static constexpr std::int32_t kBeat = kRate / 2;
    static constexpr std::int32_t kPhrase = 16 * kRate;
    std::vector<float> mPluck = std::vector<float>(kBeat);
    std::vector<float> mSweep = std::vector<float>(kPhrase);
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
