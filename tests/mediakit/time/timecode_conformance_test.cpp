// Writes docs/data/timecode-conformance.tsv from the odometer, and holds the file and the library
// to each other. Run with QLX_WRITE_CONFORMANCE=1 to write the file anew.
#include <cstdlib>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <vector>

#include <gtest/gtest.h>

#include "mediakit/time/time_smpte.h"
#include "timecode_odometer.h"

namespace {

const char cPath[] = QLX_SOURCE_DIR "/docs/data/timecode-conformance.tsv";

// A frame is awkward next to every place where counting carries or leaves numbers out.
bool IsAwkward(const TimecodeOdometer& at, const OdometerRate& rate) {
    const bool edge = (at.GetSeconds() == 59 && at.GetFrames() >= rate.frames - 2) ||
                      (at.GetSeconds() == 0 && at.GetFrames() <= rate.dropped + 1);
    const bool placeOfInterest =
        (at.GetHours() == 0 &&
         (at.GetMinutes() <= 2 || (at.GetMinutes() >= 8 && at.GetMinutes() <= 11) ||
          at.GetMinutes() == 59)) ||
        ((at.GetHours() == 1 || at.GetHours() == 10) && at.GetMinutes() <= 1) ||
        (at.GetHours() == 9 && at.GetMinutes() == 59) ||
        (at.GetHours() == 23 && (at.GetMinutes() == 50 || at.GetMinutes() == 59));
    const bool firstSeconds = at.GetFrameNumber() < 4 ||
                              (at.GetHours() == 0 && at.GetMinutes() == 0 && at.GetSeconds() <= 1 &&
                               (at.GetFrames() == 0 || at.GetFrames() == rate.frames - 1));
    return firstSeconds || (edge && placeOfInterest);
}

// Days are walked in one pass a rate, six sample odometers running along.
std::string MakeTable() {
    std::ostringstream out;
    out << "# Time-code frames at the awkward places of every rate: number from zero, label, and "
           "the\n"
           "# sample at which the frame begins (nearest sample, halves up) at six sample rates.\n"
           "rate\tframe\ttext";
    for (const int samplesPerSecond : cOdometerSampleRates)
        out << '\t' << samplesPerSecond;
    out << '\n';
    for (const OdometerRate& rate : cOdometerRates) {
        std::vector<SampleOdometer> samples;
        for (const int samplesPerSecond : cOdometerSampleRates)
            samples.emplace_back(rate, samplesPerSecond);
        for (TimecodeOdometer at(rate); !at.IsDayOver(); at.Step()) {
            if (IsAwkward(at, rate)) {
                out << rate.name << '\t' << at.GetFrameNumber() << '\t' << at.Text();
                for (const SampleOdometer& sample : samples)
                    out << '\t' << sample.Nearest();
                out << '\n';
            }
            for (SampleOdometer& sample : samples)
                sample.Step();
        }
    }
    return out.str();
}

std::string ReadFile() {
    std::ifstream in(cPath, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

std::vector<std::string> Split(const std::string& line) {
    std::vector<std::string> fields;
    std::istringstream in(line);
    for (std::string field; std::getline(in, field, '\t');)
        fields.push_back(field);
    return fields;
}

} // namespace

TEST(TimecodeConformance, FileIsWhatTheOdometerCounts) {
    const std::string table = MakeTable();
    if (std::getenv("QLX_WRITE_CONFORMANCE") != nullptr)
        std::ofstream(cPath, std::ios::binary) << table;
    EXPECT_EQ(ReadFile(), table) << "write it anew with QLX_WRITE_CONFORMANCE=1";
}

TEST(TimecodeConformance, LibraryAgreesWithEveryRow) {
    std::istringstream in(ReadFile());
    std::set<std::string> rates;
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#' || line.rfind("rate", 0) == 0)
            continue;
        const std::vector<std::string> row = Split(line);
        ASSERT_EQ(row.size(), 9u) << line;
        rates.insert(row[0]);
        ETimeCodeFormat format{};
        ASSERT_TRUE(Time_FindFormat(row[0].c_str(), format)) << line;
        const std::int64_t frame = std::stoll(row[1]);
        const Time_SMPTE time(format, frame);
        EXPECT_EQ(Time_SMPTEUtils::ToString(time), row[2]) << line;
        Time_SMPTE read(format);
        ASSERT_TRUE(Time_SMPTEUtils::FromString(row[2], format, read)) << line;
        EXPECT_EQ(read.GetTotalFrames(), frame) << line;
        for (std::size_t i = 0; i < 6; ++i) {
            const int samplesPerSecond = cOdometerSampleRates[i];
            const Time_SampleLength samples = time.GetTotalSamples(samplesPerSecond);
            EXPECT_EQ(samples.GetSamples(), std::stoll(row[3 + i])) << line;
            read.SetFromTotalSamples(samples, samplesPerSecond);
            EXPECT_EQ(read.GetTotalFrames(), frame) << line;
        }
    }
    EXPECT_EQ(rates.size(), 19u);
}
