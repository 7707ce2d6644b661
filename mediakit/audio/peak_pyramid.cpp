#include "mediakit/audio/peak_pyramid.h"

#include <algorithm>
#include <cmath>

#include "mediakit/audio/peak_cache.h"

Audio_SampleReader::~Audio_SampleReader() = default;

namespace {

constexpr std::int32_t kFramesPerRead = 16384; // a multiple of the base peak
static_assert(kFramesPerRead % Audio_PeakPyramid::kBaseFrames == 0);

// Quotient rounded down, also for negative dividends, without a product that could overflow: the
// whole part and the rest are scaled apart.
std::int64_t ScaleDown(std::int64_t value, std::int64_t numerator, std::int64_t denominator) {
    std::int64_t whole = value / denominator;
    std::int64_t rest = value % denominator;
    if (rest < 0) {
        rest += denominator;
        --whole;
    }
    return whole * numerator + rest * numerator / denominator;
}

// Gathers minimum, maximum and energy; the sum is kept in double so that hours of quiet still
// count.
class Gatherer {
  public:
    void AddSample(float value) {
        mPeak.mMinimum = mCount ? std::min(mPeak.mMinimum, value) : value;
        mPeak.mMaximum = mCount ? std::max(mPeak.mMaximum, value) : value;
        mSquares += static_cast<double>(value) * value;
        mCount += 1;
    }
    void AddPeak(const Audio_Peak& peak, double weight) {
        mPeak.mMinimum = mCount ? std::min(mPeak.mMinimum, peak.mMinimum) : peak.mMinimum;
        mPeak.mMaximum = mCount ? std::max(mPeak.mMaximum, peak.mMaximum) : peak.mMaximum;
        mSquares += static_cast<double>(peak.mRMS) * peak.mRMS * weight;
        mCount += weight;
    }
    [[nodiscard]] Audio_Peak Result() const {
        Audio_Peak result = mPeak;
        result.mRMS = mCount ? static_cast<float>(std::sqrt(mSquares / mCount)) : 0.0f;
        return result;
    }

  private:
    Audio_Peak mPeak;
    double mSquares = 0;
    double mCount = 0;
};

// A sample that is no number must not spread through every level above it.
float Cleaned(float value) { return std::isfinite(value) ? value : 0.0f; }

} // namespace

std::int64_t Audio_ColumnScale::FrameOfColumn(std::int64_t column) const {
    return ScaleDown(column, mFrames, mColumns);
}

std::int64_t Audio_ColumnScale::ColumnOfFrame(std::int64_t frame) const {
    // The largest column whose first frame is not behind the frame; the estimate is off by at most
    // one.
    std::int64_t column = ScaleDown(frame, mColumns, mFrames);
    while (FrameOfColumn(column + 1) <= frame)
        ++column;
    while (FrameOfColumn(column) > frame)
        --column;
    return column;
}

Audio_PeakPyramid::Audio_PeakPyramid(std::shared_ptr<Audio_SampleReader> reader,
                                     std::string cachePath, std::uint64_t fingerprint)
    : mReader(std::move(reader)), mCachePath(std::move(cachePath)), mFingerprint(fingerprint),
      mFrameCount(std::max<std::int64_t>(0, mReader->GetFrameCount())),
      mChannelCount(std::max(1, mReader->GetChannelCount())) {
    MakeLevels();
    mBuilder = std::thread([this] { Build(); });
}

Audio_PeakPyramid::~Audio_PeakPyramid() {
    mStop.store(true, std::memory_order_relaxed);
    if (mBuilder.joinable())
        mBuilder.join();
}

void Audio_PeakPyramid::WaitUntilComplete() {
    if (mBuilder.joinable())
        mBuilder.join();
}

void Audio_PeakPyramid::MakeLevels() {
    std::int64_t framesPerPeak = kBaseFrames;
    for (;;) {
        const std::int64_t peaks = (mFrameCount + framesPerPeak - 1) / framesPerPeak;
        mLevels.push_back({framesPerPeak, {}});
        mLevels.back().mPeaks.resize(static_cast<std::size_t>(peaks * mChannelCount));
        if (peaks <= 1)
            return;
        framesPerPeak *= kLevelFactor;
    }
}

void Audio_PeakPyramid::Build() {
    if (LoadCache()) {
        mCameFromCache = true;
    } else {
        BuildBasePeaks();
        if (mStop.load(std::memory_order_relaxed))
            return;
        SaveCache();
    }
    mBuiltFrames.store(mFrameCount, std::memory_order_release);
    mComplete.store(true, std::memory_order_release);
}

void Audio_PeakPyramid::BuildBasePeaks() {
    std::vector<float> block(static_cast<std::size_t>(kFramesPerRead) * mChannelCount);
    for (std::int64_t start = 0; start < mFrameCount; start += kFramesPerRead) {
        if (mStop.load(std::memory_order_relaxed))
            return;
        const auto frames =
            static_cast<std::int32_t>(std::min<std::int64_t>(kFramesPerRead, mFrameCount - start));
        if (!mReader->Read(start, frames, block.data()))
            std::fill(block.begin(), block.end(), 0.0f);
        for (std::int32_t from = 0; from < frames; from += kBaseFrames) {
            const std::int32_t to = std::min(from + kBaseFrames, frames);
            for (int channel = 0; channel < mChannelCount; ++channel) {
                Gatherer gatherer;
                for (std::int32_t frame = from; frame < to; ++frame)
                    gatherer.AddSample(Cleaned(block[frame * mChannelCount + channel]));
                mLevels[0].mPeaks[(start + from) / kBaseFrames * mChannelCount + channel] =
                    gatherer.Result();
            }
        }
        const std::int64_t end = start + frames;
        for (std::size_t level = 1; level < mLevels.size(); ++level)
            FoldInto(level, start, end);
        mBuiltFrames.store(end, std::memory_order_release);
    }
}

// Folds the peaks of the level below over the frames from..to. A peak that is only partly there yet
// is folded from what there is, and again when the rest has come; askers do not look beyond
// mBuiltFrames.
void Audio_PeakPyramid::FoldInto(std::size_t index, std::int64_t from, std::int64_t to) {
    Level& level = mLevels[index];
    const Level& below = mLevels[index - 1];
    const std::int64_t known = (to + below.mFramesPerPeak - 1) / below.mFramesPerPeak;
    for (std::int64_t peak = from / level.mFramesPerPeak; peak * level.mFramesPerPeak < to;
         ++peak) {
        const std::int64_t last = std::min((peak + 1) * kLevelFactor, known);
        for (int channel = 0; channel < mChannelCount; ++channel) {
            Gatherer gatherer;
            for (std::int64_t child = peak * kLevelFactor; child < last; ++child) {
                const std::int64_t frames =
                    std::min(below.mFramesPerPeak, mFrameCount - child * below.mFramesPerPeak);
                gatherer.AddPeak(below.mPeaks[child * mChannelCount + channel],
                                 static_cast<double>(frames));
            }
            level.mPeaks[peak * mChannelCount + channel] = gatherer.Result();
        }
    }
}

// The highest level of which a column spans at least eight peaks; null when samples are needed.
const Audio_PeakPyramid::Level* Audio_PeakPyramid::LevelFor(const Audio_ColumnScale& scale) const {
    if (scale.mFrames / scale.mColumns < kReadSamplesBelow)
        return nullptr;
    const Level* best = &mLevels[0];
    for (const Level& level : mLevels)
        if (level.mFramesPerPeak <= scale.mFrames / scale.mColumns / 8)
            best = &level;
    return best;
}

Audio_Peak Audio_PeakPyramid::FromLevel(const Level& level, int channel, std::int64_t from,
                                        std::int64_t to) const {
    const std::int64_t count = static_cast<std::int64_t>(level.mPeaks.size()) / mChannelCount;
    const std::int64_t first = std::max<std::int64_t>(0, from / level.mFramesPerPeak);
    const std::int64_t last = std::min(count, to / level.mFramesPerPeak);
    Gatherer gatherer;
    for (std::int64_t peak = first; peak < last; ++peak)
        gatherer.AddPeak(level.mPeaks[peak * mChannelCount + channel], 1.0);
    return gatherer.Result();
}

Audio_Peak Audio_PeakPyramid::FromSamples(int channel, std::int64_t from, std::int64_t to) {
    from = std::max<std::int64_t>(0, from);
    to = std::min(mFrameCount, to);
    if (from >= to)
        return {};
    // Neighbouring columns share one read: a whole block is fetched when the run leaves the last
    // one.
    if (from < mSamplesStart || to > mSamplesEnd) {
        mSamplesStart = from;
        mSamplesEnd =
            std::min(mFrameCount, from + std::max<std::int64_t>(kFramesPerRead, to - from));
        mSamples.resize(static_cast<std::size_t>(mSamplesEnd - mSamplesStart) * mChannelCount);
        if (!mReader->Read(mSamplesStart, static_cast<std::int32_t>(mSamplesEnd - mSamplesStart),
                           mSamples.data()))
            std::fill(mSamples.begin(), mSamples.end(), 0.0f);
    }
    Gatherer gatherer;
    for (std::int64_t frame = from; frame < to; ++frame)
        gatherer.AddSample(Cleaned(mSamples[(frame - mSamplesStart) * mChannelCount + channel]));
    return gatherer.Result();
}

std::int32_t Audio_PeakPyramid::GetColumns(int channel, const Audio_ColumnScale& scale,
                                           std::int64_t firstColumn, std::int32_t count,
                                           Audio_Peak* columns) {
    if (channel < 0 || channel >= mChannelCount || scale.mFrames <= 0 || scale.mColumns <= 0)
        return 0;
    const Level* level = LevelFor(scale);
    const std::int64_t built = level ? GetBuiltFrames() : mFrameCount;
    for (std::int32_t i = 0; i < count; ++i) {
        const std::int64_t from = scale.FrameOfColumn(firstColumn + i);
        // A column narrower than a sample shows the sample that it lies in.
        const std::int64_t to = std::max(from + 1, scale.FrameOfColumn(firstColumn + i + 1));
        if (std::min(to, mFrameCount) > built)
            return i;
        if (to <= 0 || from >= mFrameCount)
            columns[i] = {};
        else if (!level)
            columns[i] = FromSamples(channel, from, to);
        else if (to >=
                 mFrameCount) // the last peak may be a short one: it belongs to the last column
            columns[i] = FromLevel(*level, channel, from, mFrameCount + level->mFramesPerPeak - 1);
        else
            columns[i] = FromLevel(*level, channel, from, to);
    }
    return count;
}

bool Audio_PeakPyramid::LoadCache() {
    if (mCachePath.empty())
        return false;
    const Audio_PeakCacheKey key{mFingerprint, mFrameCount, mChannelCount};
    if (!Audio_LoadPeakCache(mCachePath, key, mLevels[0].mPeaks))
        return false;
    for (std::size_t level = 1; level < mLevels.size(); ++level)
        FoldInto(level, 0, mFrameCount);
    return true;
}

// A cache that cannot be written costs time at the next start and nothing else.
void Audio_PeakPyramid::SaveCache() const {
    if (!mCachePath.empty())
        Audio_SavePeakCache(mCachePath, {mFingerprint, mFrameCount, mChannelCount},
                            mLevels[0].mPeaks);
}
