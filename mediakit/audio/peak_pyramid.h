// What a waveform view draws from: minimum, maximum and energy of runs of samples, at every zoom
// from single samples to hours, made once and kept on disk.
#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "basekit/cmn/cmn_types.h"

/// Where the samples come from. Read is called from the pyramid's builder thread and, for close
/// zooms, from the thread that asks for columns; an implementation over one file handle locks.
class QLX_API Audio_SampleReader {
  public:
    virtual ~Audio_SampleReader();
    /// Sample frames in all (a frame is one sample of every channel).
    [[nodiscard]] virtual std::int64_t GetFrameCount() const = 0;
    [[nodiscard]] virtual int GetChannelCount() const = 0;
    /// Fills frameCount interleaved frames from start; full scale is 1. False when it cannot; what
    /// is in the buffer then counts as silence.
    virtual bool Read(std::int64_t start, std::int32_t frameCount, float* interleaved) = 0;
};

/// One run of samples of one channel. An empty run has all three zero.
struct Audio_Peak {
    float mMinimum = 0;
    float mMaximum = 0;
    float mRMS = 0;
};

/// A range of columns on the sample axis. Column k covers the frames from k*frames/columns to
/// (k+1)*frames/columns, both rounded down: bounds depend on k alone and never on what is in sight,
/// so scrolling moves columns and changes none. A zoom is framesPerColumn = mFrames / mColumns.
struct Audio_ColumnScale {
    std::int64_t mFrames = 1;  ///< above 0
    std::int64_t mColumns = 1; ///< above 0

    /// The first frame of a column; columns before the start are negative.
    [[nodiscard]] QLX_API std::int64_t FrameOfColumn(std::int64_t column) const;
    /// The column that holds a frame.
    [[nodiscard]] QLX_API std::int64_t ColumnOfFrame(std::int64_t frame) const;
};

/// Levels of peaks, the lowest over kBaseFrames frames each, every further one over kLevelFactor
/// peaks of the one below. Built by a thread of its own; columns may be asked for from one other
/// thread while it runs, and what is not built yet reads as absent.
class QLX_API Audio_PeakPyramid {
  public:
    static constexpr std::int32_t kBaseFrames = 256;
    static constexpr std::int32_t kLevelFactor = 4;
    /// Below so many frames a column, columns are computed from the samples themselves.
    static constexpr std::int32_t kReadSamplesBelow = 4 * kBaseFrames;

    /// Starts building at once. The cache path may be empty (no cache). The fingerprint stands for
    /// the audio's identity and state (size and time of change): a cache with another one is stale.
    Audio_PeakPyramid(std::shared_ptr<Audio_SampleReader> reader, std::string cachePath,
                      std::uint64_t fingerprint);
    /// Stops the builder and waits for it.
    ~Audio_PeakPyramid();
    Audio_PeakPyramid(const Audio_PeakPyramid&) = delete;
    Audio_PeakPyramid& operator=(const Audio_PeakPyramid&) = delete;

    /// Frames covered so far, from the start; grows until it is the frame count.
    [[nodiscard]] std::int64_t GetBuiltFrames() const {
        return mBuiltFrames.load(std::memory_order_acquire);
    }
    [[nodiscard]] bool IsComplete() const { return mComplete.load(std::memory_order_acquire); }
    /// Waits until everything is built; for tests and for programs without a window.
    void WaitUntilComplete();
    /// Whether the peaks came from the cache; meaningful once complete.
    [[nodiscard]] bool CameFromCache() const { return mCameFromCache; }

    /// Fills count columns of one channel from firstColumn on and answers how many of them, counted
    /// from the first, are known yet; the others stay untouched. Columns outside the audio are
    /// silent. Above kReadSamplesBelow frames a column the bounds are moved down to whole peaks of
    /// the level used (at most an eighth of a column), each peak belonging to exactly one column.
    std::int32_t GetColumns(int channel, const Audio_ColumnScale& scale, std::int64_t firstColumn,
                            std::int32_t count, Audio_Peak* columns);

  private:
    struct Level {
        std::int64_t mFramesPerPeak;
        std::vector<Audio_Peak> mPeaks; // interleaved by channel
    };

    void MakeLevels();
    void Build();
    void BuildBasePeaks();
    void FoldInto(std::size_t level, std::int64_t from, std::int64_t to);
    bool LoadCache();
    void SaveCache() const;
    Audio_Peak FromSamples(int channel, std::int64_t from, std::int64_t to);
    [[nodiscard]] Audio_Peak FromLevel(const Level& level, int channel, std::int64_t from,
                                       std::int64_t to) const;
    [[nodiscard]] const Level* LevelFor(const Audio_ColumnScale& scale) const;

    std::shared_ptr<Audio_SampleReader> mReader;
    std::string mCachePath;
    std::uint64_t mFingerprint;
    std::int64_t mFrameCount;
    int mChannelCount;
    std::vector<Level> mLevels; // sized before the builder starts, never resized after
    std::atomic<std::int64_t> mBuiltFrames{0};
    std::atomic<bool> mComplete{false};
    std::atomic<bool> mStop{false};
    bool mCameFromCache = false;
    std::vector<float> mSamples; // the asking thread's buffer for close zooms
    std::int64_t mSamplesStart = 0;
    std::int64_t mSamplesEnd = 0;
    std::thread mBuilder; // last: starts when everything else is there
};
