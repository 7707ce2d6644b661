#include "mediakit/audio/peak_pyramid.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <random>

namespace {

class MemoryReader : public Audio_SampleReader {
  public:
    MemoryReader(std::int64_t frames, int channels, unsigned seed) : mChannels(channels) {
        std::minstd_rand random(seed);
        std::uniform_real_distribution<float> level(-1.0f, 1.0f);
        for (std::int64_t i = 0; i < frames * channels; ++i)
            mSamples.push_back(level(random));
    }
    std::int64_t GetFrameCount() const override {
        return static_cast<std::int64_t>(mSamples.size()) / mChannels;
    }
    int GetChannelCount() const override { return mChannels; }
    bool Read(std::int64_t start, std::int32_t frames, float* out) override {
        ++mReads;
        std::copy_n(&mSamples[start * mChannels], frames * mChannels, out);
        return !mBroken;
    }
    std::vector<float> mSamples;
    int mChannels;
    int mReads = 0;
    bool mBroken = false;
};

std::string CachePath(const char* name) {
    const std::string path = std::string(QLX_TEST_OUTPUT) + "/" + name;
    std::filesystem::remove(path);
    return path;
}

std::vector<Audio_Peak> Columns(Audio_PeakPyramid& pyramid, int channel,
                                const Audio_ColumnScale& scale, std::int64_t first, int count) {
    std::vector<Audio_Peak> columns(count);
    EXPECT_EQ(pyramid.GetColumns(channel, scale, first, count, columns.data()), count);
    return columns;
}

bool Same(const Audio_Peak& a, const Audio_Peak& b) {
    return a.mMinimum == b.mMinimum && a.mMaximum == b.mMaximum && a.mRMS == b.mRMS;
}

} // namespace

TEST(PeakPyramid, ScaleAndItsInverseAgreeForOddRatios) {
    for (const Audio_ColumnScale scale : {Audio_ColumnScale{1, 1},
                                          {7, 3},
                                          {3, 7},
                                          {44100, 13},
                                          {1, 32},
                                          {std::int64_t{1} << 31, 3}})
        for (std::int64_t column = -50; column < 50; ++column) {
            const std::int64_t frame = scale.FrameOfColumn(column);
            EXPECT_LE(frame, scale.FrameOfColumn(column + 1));
            EXPECT_EQ(scale.FrameOfColumn(scale.ColumnOfFrame(frame)), frame);
        }
}

TEST(PeakPyramid, EveryZoomShowsTheExtremesOfTheWholeSignalOnceAndScrollingChangesNoColumn) {
    auto reader = std::make_shared<MemoryReader>(100'003, 2, 5);
    reader->mSamples[2 * 77'777] = 3.5f;       // left
    reader->mSamples[2 * 100'002 + 1] = -4.0f; // right, the very last frame
    Audio_PeakPyramid pyramid(reader, "", 0);
    pyramid.WaitUntilComplete();
    for (const std::int64_t framesPerColumn :
         {1, 3, 100, 1023, 1024, 1500, 4096, 30'000, 200'000}) {
        SCOPED_TRACE(framesPerColumn);
        const Audio_ColumnScale scale{framesPerColumn, 1};
        const int count = static_cast<int>(100'002 / framesPerColumn + 1);
        const std::vector<Audio_Peak> left = Columns(pyramid, 0, scale, 0, count);
        const std::vector<Audio_Peak> right = Columns(pyramid, 1, scale, 0, count);
        int peaks = 0;
        int dips = 0;
        for (int i = 0; i < count; ++i) {
            peaks += left[i].mMaximum == 3.5f;
            dips += right[i].mMinimum == -4.0f;
        }
        EXPECT_EQ(peaks, 1);
        EXPECT_EQ(dips, 1);
        const int offset = count / 3;
        const std::vector<Audio_Peak> scrolled = Columns(pyramid, 0, scale, offset, count - offset);
        for (int i = 0; i < count - offset; ++i)
            ASSERT_TRUE(Same(scrolled[i], left[i + offset])) << i;
    }
}

TEST(PeakPyramid, EnergyOfASineIsTheSameAtEveryLevel) {
    auto reader = std::make_shared<MemoryReader>(0, 1, 1);
    for (int i = 0; i < 1 << 18; ++i)
        reader->mSamples.push_back(std::sin(static_cast<float>(i % 64) * 6.2831853f / 64));
    Audio_PeakPyramid pyramid(reader, "", 0);
    pyramid.WaitUntilComplete();
    for (const std::int64_t framesPerColumn : {64, 1024, 8192, 65536})
        for (const Audio_Peak& column : Columns(pyramid, 0, {framesPerColumn, 1}, 0,
                                                (1 << 18) / static_cast<int>(framesPerColumn)))
            ASSERT_NEAR(column.mRMS, std::sqrt(0.5), 1e-3);
}

TEST(PeakPyramid, OutsideOfTheAudioIsSilentAndBadRequestsAnswerNothing) {
    Audio_PeakPyramid pyramid(std::make_shared<MemoryReader>(1000, 1, 2), "", 0);
    pyramid.WaitUntilComplete();
    for (const std::int64_t first : {std::int64_t{-40}, std::int64_t{4'000'000'000'000}})
        for (const Audio_Peak& column : Columns(pyramid, 0, {100, 1}, first, 40))
            EXPECT_TRUE(Same(column, {}));
    Audio_Peak column;
    EXPECT_EQ(pyramid.GetColumns(1, {100, 1}, 0, 1, &column), 0);
    EXPECT_EQ(pyramid.GetColumns(-1, {100, 1}, 0, 1, &column), 0);
    EXPECT_EQ(pyramid.GetColumns(0, {0, 1}, 0, 1, &column), 0);
    Audio_PeakPyramid empty(std::make_shared<MemoryReader>(0, 2, 2), "", 0);
    empty.WaitUntilComplete();
    EXPECT_TRUE(Same(Columns(empty, 1, {5000, 1}, 0, 1)[0], {}));
}

TEST(PeakPyramid, SamplesThatAreNoNumbersAndBlocksThatCannotBeReadCountAsSilence) {
    auto reader = std::make_shared<MemoryReader>(4096, 1, 3);
    reader->mSamples[10] = std::numeric_limits<float>::quiet_NaN();
    reader->mSamples[11] = std::numeric_limits<float>::infinity();
    Audio_PeakPyramid pyramid(reader, "", 0);
    pyramid.WaitUntilComplete();
    EXPECT_LE(Columns(pyramid, 0, {4096, 1}, 0, 1)[0].mMaximum, 1.0f);
    auto broken = std::make_shared<MemoryReader>(4096, 1, 3);
    broken->mBroken = true;
    Audio_PeakPyramid silent(broken, "", 0);
    silent.WaitUntilComplete();
    EXPECT_TRUE(Same(Columns(silent, 0, {2048, 1}, 0, 2)[1], {}));
}

TEST(PeakPyramid, CacheIsUsedWhenItFitsAndRebuiltWhenStaleOrDamaged) {
    const std::string path = CachePath("peaks.qlxpeaks");
    const auto fromCache = [&](std::uint64_t fingerprint) {
        Audio_PeakPyramid pyramid(std::make_shared<MemoryReader>(50'000, 2, 9), path, fingerprint);
        pyramid.WaitUntilComplete();
        EXPECT_GT(Columns(pyramid, 1, {25'000, 1}, 0, 2)[1].mMaximum, 0.9f);
        return pyramid.CameFromCache();
    };
    EXPECT_FALSE(fromCache(1));
    EXPECT_TRUE(fromCache(1));
    EXPECT_FALSE(fromCache(2)) << "the audio has changed";
    EXPECT_TRUE(fromCache(2));
    const auto size = std::filesystem::file_size(path);
    for (const std::uintmax_t at : {std::uintmax_t{0}, std::uintmax_t{20}, size / 2, size - 1}) {
        std::fstream file(path, std::ios::binary | std::ios::in | std::ios::out);
        file.seekg(static_cast<std::streamoff>(at));
        const char flipped = static_cast<char>(file.get() ^ 0x10);
        file.seekp(static_cast<std::streamoff>(at));
        file.put(flipped);
        file.close();
        EXPECT_FALSE(fromCache(2)) << "byte " << at << " flipped";
        EXPECT_TRUE(fromCache(2));
    }
    std::filesystem::resize_file(path, size / 2);
    EXPECT_FALSE(fromCache(2)) << "truncated";
}

TEST(PeakPyramid, AFolderThatCannotBeWrittenCostsOnlyTheCache) {
    Audio_PeakPyramid pyramid(std::make_shared<MemoryReader>(3000, 1, 4),
                              "/nonexistent-folder/peaks", 1);
    pyramid.WaitUntilComplete();
    EXPECT_TRUE(pyramid.IsComplete());
}
