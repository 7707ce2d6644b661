#include "host/audio_file.h"

#include <sndfile.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <mutex>
#include <stdexcept>
#include <vector>

#include "basekit/sys/sys_file.h"

namespace {

// libsndfile's view of a file of the framework's, whose names are UTF-8 on every platform. Nothing
// may be thrown through the library: what cannot be read ends the file.

template <class Operation>
sf_count_t Guarded(Operation operation) noexcept {
    try {
        return static_cast<sf_count_t>(operation());
    } catch (const Sys_FileError&) {
        return 0;
    }
}

Sys_File& FileOf(void* data) { return *static_cast<Sys_File*>(data); }

sf_count_t GetLength(void* data) {
    return Guarded([data] { return FileOf(data).GetSize(); });
}

sf_count_t Seek(sf_count_t offset, int whence, void* data) {
    return Guarded([=] {
        Sys_File& file = FileOf(data);
        const auto from = static_cast<sf_count_t>(whence == SEEK_SET   ? 0
                                                  : whence == SEEK_CUR ? file.GetPosition()
                                                                       : file.GetSize());
        file.SetPosition(static_cast<std::uint64_t>(std::max<sf_count_t>(0, from + offset)));
        return file.GetPosition();
    });
}

sf_count_t ReadBytes(void* bytes, sf_count_t count, void* data) {
    return Guarded([=] { return FileOf(data).Read(bytes, static_cast<std::size_t>(count)); });
}

sf_count_t GetPosition(void* data) { return static_cast<sf_count_t>(FileOf(data).GetPosition()); }

SF_VIRTUAL_IO gFileAccess = {GetLength, Seek, ReadBytes, nullptr, GetPosition};

bool IsKnown(int majorFormat) {
    int count = 0;
    sf_command(nullptr, SFC_GET_FORMAT_MAJOR_COUNT, &count, sizeof count);
    for (int i = 0; i < count; ++i) {
        SF_FORMAT_INFO format{};
        format.format = i;
        sf_command(nullptr, SFC_GET_FORMAT_MAJOR, &format, sizeof format);
        if (format.format == majorFormat)
            return true;
    }
    return false;
}

/// Why libsndfile did not open a file. Of a format that it was built without it only says that
/// something is not implemented.
std::string GetReason(Sys_File& file) {
    constexpr struct {
        const char* mBegins;
        int mFormat;
        const char* mName;
    } kCodecs[] = {{"fLaC", SF_FORMAT_FLAC, "FLAC"},
                   {"OggS", SF_FORMAT_OGG, "Ogg"},
                   {"ID3", SF_FORMAT_MPEG, "MPEG"}};
    std::string reason = sf_strerror(nullptr);
    char begin[4] = {};
    file.SetPosition(0);
    if (file.Read(begin, sizeof begin) == sizeof begin)
        for (const auto& codec : kCodecs)
            if (std::strncmp(begin, codec.mBegins, std::strlen(codec.mBegins)) == 0 &&
                !IsKnown(codec.mFormat))
                reason = std::string(codec.mName) + " is not supported by this build";
    return reason;
}

/// One file handle, shared by the peaks' builder and close zooms: each read is a seek of its own.
class FileReader : public Audio_SampleReader {
  public:
    explicit FileReader(const std::string& path) : mFile(Sys_FileLoc(path), Sys_FileMode::Read) {
        mSound = sf_open_virtual(&gFileAccess, SFM_READ, &mInfo, &mFile);
        if (!mSound)
            throw std::runtime_error(path + ": " + GetReason(mFile));
    }
    ~FileReader() override { sf_close(mSound); }

    [[nodiscard]] const SF_INFO& GetInfo() const { return mInfo; }
    std::int64_t GetFrameCount() const override { return mInfo.frames; }
    int GetChannelCount() const override { return mInfo.channels; }
    bool Read(std::int64_t start, std::int32_t frames, float* interleaved) override {
        const std::lock_guard<std::mutex> lock(mMutex);
        if (sf_seek(mSound, start, SEEK_SET) != start)
            return false;
        return sf_readf_float(mSound, interleaved, frames) == frames;
    }

  private:
    Sys_File mFile;
    SNDFILE* mSound = nullptr; // owned
    SF_INFO mInfo{};
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
    SessionAudio audio;
    const auto reader = std::make_shared<FileReader>(path);
    audio.mReader = reader;
    const SF_INFO& info = reader->GetInfo();
    if (info.frames < 1 || info.channels < 1 || info.samplerate < 1 || !info.seekable)
        throw std::runtime_error(path + ": holds no audio that can be shown");
    audio.mSamplesPerSecond = info.samplerate;
    audio.mName = Sys_FileLoc(path).GetStem();
    audio.mCachePath = path + ".qlxpeaks";
    std::error_code error;
    const std::filesystem::path place(std::u8string(path.begin(), path.end()));
    const auto size = std::filesystem::file_size(place, error);
    const auto changed = std::filesystem::last_write_time(place, error).time_since_epoch().count();
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
