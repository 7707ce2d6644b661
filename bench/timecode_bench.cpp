// How fast frames become labels and labels frames, against the plainest loop that does the same
// work: divide and modulo by the fields, characters one by one.
#include <cstring>

#include <benchmark/benchmark.h>

#include "mediakit/time/time_smpte.h"

namespace {

constexpr std::int64_t cFrames = 10'000'000;

struct PlainRate {
    std::int64_t framesPerSecond;
    std::int64_t drop;
};

// The rates must not be constants the compiler can divide by: a session's rate is chosen at run
// time.
PlainRate PlainRateOf(ETimeCodeFormat format) {
    const Time_FormatInfo& info = Time_GetFormatInfo(format);
    PlainRate rate{info.framesPerSecond, info.droppedPerMinute};
    benchmark::DoNotOptimize(rate);
    return rate;
}

void PlainToText(std::int64_t frames, const PlainRate& rate, char* out) {
    if (rate.drop != 0) {
        const std::int64_t tenMinutes = rate.framesPerSecond * 600 - rate.drop * 9;
        const std::int64_t minute = rate.framesPerSecond * 60 - rate.drop;
        const std::int64_t tens = frames / tenMinutes;
        const std::int64_t rest = frames % tenMinutes;
        frames += rate.drop * 9 * tens;
        if (rest >= rate.framesPerSecond * 60)
            frames += rate.drop * ((rest - rate.framesPerSecond * 60) / minute + 1);
    }
    const std::int64_t seconds = frames / rate.framesPerSecond;
    const std::int64_t fields[] = {seconds / 3600, seconds / 60 % 60, seconds % 60,
                                   frames % rate.framesPerSecond};
    for (int i = 0; i < 4; ++i) {
        out[i * 3] = static_cast<char>('0' + fields[i] / 10);
        out[i * 3 + 1] = static_cast<char>('0' + fields[i] % 10);
        if (i < 3)
            out[i * 3 + 2] = i == 2 && rate.drop != 0 ? ';' : ':';
    }
}

std::int64_t PlainFromText(const char* text, const PlainRate& rate) {
    const auto two = [text](int at) { return (text[at] - '0') * 10 + (text[at + 1] - '0'); };
    const std::int64_t minutes = two(0) * 60 + two(3);
    std::int64_t frames = (minutes * 60 + two(6)) * rate.framesPerSecond + two(9);
    if (rate.drop != 0)
        frames -= rate.drop * (minutes - minutes / 10);
    return frames;
}

void Plain(benchmark::State& state) {
    const PlainRate rate = PlainRateOf(static_cast<ETimeCodeFormat>(state.range(0)));
    for (auto _ : state) {
        std::int64_t wrong = 0;
        char text[16];
        for (std::int64_t frame = 0; frame < cFrames; ++frame) {
            PlainToText(frame % 2073600, rate, text);
            benchmark::DoNotOptimize(text);
            wrong += PlainFromText(text, rate) != frame % 2073600;
        }
        if (wrong != 0)
            state.SkipWithError("wrong frames");
    }
    state.SetItemsProcessed(state.iterations() * cFrames);
}

void Library(benchmark::State& state) {
    const auto format = static_cast<ETimeCodeFormat>(state.range(0));
    for (auto _ : state) {
        std::int64_t wrong = 0;
        char text[Time_SMPTEUtils::cMaxChars];
        Time_SMPTE read(format);
        for (std::int64_t frame = 0; frame < cFrames; ++frame) {
            const std::size_t length =
                Time_SMPTEUtils::ToChars(Time_SMPTE(format, frame % 2073600), false, text);
            benchmark::DoNotOptimize(text);
            Time_SMPTEUtils::FromString(std::string_view(text, length), format, read);
            wrong += read.GetTotalFrames() != frame % 2073600;
        }
        if (wrong != 0)
            state.SkipWithError("wrong frames");
    }
    state.SetItemsProcessed(state.iterations() * cFrames);
}

void LibraryStrings(benchmark::State& state) {
    const auto format = static_cast<ETimeCodeFormat>(state.range(0));
    for (auto _ : state) {
        std::int64_t wrong = 0;
        Time_SMPTE read(format);
        for (std::int64_t frame = 0; frame < cFrames; ++frame) {
            const std::string text = Time_SMPTEUtils::ToString(Time_SMPTE(format, frame % 2073600));
            Time_SMPTEUtils::FromString(text, format, read);
            wrong += read.GetTotalFrames() != frame % 2073600;
        }
        if (wrong != 0)
            state.SkipWithError("wrong frames");
    }
    state.SetItemsProcessed(state.iterations() * cFrames);
}

void ToSamples(benchmark::State& state) {
    const auto format = static_cast<ETimeCodeFormat>(state.range(0));
    std::int64_t frame = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(Time_SMPTE(format, frame).GetTotalSamples(48000));
        frame = frame == 2073599 ? 0 : frame + 1;
    }
}

constexpr auto c25 = static_cast<int>(ETimeCodeFormat::F25);
constexpr auto cDrop = static_cast<int>(ETimeCodeFormat::F2997Drop);

} // namespace

BENCHMARK(Plain)->Name("Timecode_RoundTrip10M/plain_loop")->Arg(c25)->Arg(cDrop);
BENCHMARK(Library)->Name("Timecode_RoundTrip10M/chars")->Arg(c25)->Arg(cDrop);
BENCHMARK(LibraryStrings)->Name("Timecode_RoundTrip10M/strings")->Arg(c25)->Arg(cDrop);
BENCHMARK(ToSamples)->Name("Timecode_ToSamples")->Arg(cDrop);

BENCHMARK_MAIN();
