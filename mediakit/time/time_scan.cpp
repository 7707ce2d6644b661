#include "mediakit/time/time_scan.h"

#include <charconv>

bool Time_TakeDigits(std::string_view& text, std::size_t most, std::int64_t& value,
                     std::size_t& count) noexcept {
    value = 0;
    count = 0;
    while (count < text.size() && count < most && text[count] >= '0' && text[count] <= '9')
        value = value * 10 + (text[count++] - '0');
    text.remove_prefix(count);
    return count != 0;
}

bool Time_TakeChar(std::string_view& text, char wanted) noexcept {
    if (text.empty() || text.front() != wanted)
        return false;
    text.remove_prefix(1);
    return true;
}

void Time_AppendPadded(std::string& text, std::uint64_t value, std::size_t width, char padding) {
    char digits[24];
    const char* const end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    const auto count = static_cast<std::size_t>(end - digits);
    if (count < width)
        text.append(width - count, padding);
    text.append(digits, count);
}

std::string Time_SignedInWidth(bool negative, std::uint64_t distance, std::size_t width) {
    std::string digits;
    if (negative)
        digits += '-';
    Time_AppendPadded(digits, distance, 1, '0');
    return digits.size() < width ? std::string(width - digits.size(), ' ') + digits : digits;
}
