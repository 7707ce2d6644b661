// Audio for the session: a file that libsndfile reads, or a generated signal.
#pragma once

#include <memory>
#include <string>

#include "host/session_api.h"
#include "mediakit/audio/peak_pyramid.h"

/// Audio with its rate and an identity for caches.
struct SessionAudio {
    std::shared_ptr<Audio_SampleReader> mReader;
    std::int32_t mSamplesPerSecond = 48000;
    std::string mName;
    std::string mCachePath;         ///< empty: nothing is kept on disk
    std::uint64_t mFingerprint = 0; ///< changes when the file does
};

/// Opens a WAV, FLAC or other file of libsndfile's. Throws std::runtime_error "path: reason".
[[nodiscard]] SESSION_API SessionAudio OpenAudioFile(const std::string& path);

/// Two minutes of stereo: bursts, a sweep and pauses, the same every time.
[[nodiscard]] SESSION_API SessionAudio MakeGeneratedAudio();
