#include "mediakit/time/time_sample.h"

#include <charconv>

std::string Time_SampleUtils::ToString(Time_Sample position) {
    return std::to_string(position.GetSamples());
}

bool Time_SampleUtils::FromString(std::string_view text, Time_Sample& position) noexcept {
    if (!text.empty() && text.front() == '+') {
        text.remove_prefix(1);
        if (!text.empty() && text.front() == '-')
            return false;
    }
    std::int64_t samples = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, samples);
    if (error != std::errc() || stop != end)
        return false;
    position = Time_Sample(samples);
    return true;
}
