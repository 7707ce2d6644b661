#include "app/misc/uentryshapes.h"

#include <boost/regex.hpp>

namespace {

bool Matches(const std::string& text, const boost::regex& shape) {
    return boost::regex_match(text, shape);
}

// The pieces between the digit counts, and a last one for subframes.
std::string TimeCodePattern(int frameDigits, bool withSubframes) {
    std::string pattern = "^[0-9]{2}\\:[0-9]{2}\\:[0-9]{2}(\\:|\\;)[0-9]{";
    pattern += std::to_string(frameDigits);
    if (withSubframes)
        pattern += "}\\.[0-9]{2";
    return pattern + "}$";
}

std::string FeetPattern(bool withSubframes) {
    std::string pattern = "^(?=[ 0-9]{6}) *[0-9]+\\+[0-9]{2";
    if (withSubframes)
        pattern += "}\\.[0-9]{2";
    return pattern + "}$";
}

constexpr std::size_t cMinutesSecondsLength = 11;
constexpr std::size_t cFeetLength = 9;
constexpr std::size_t cSubframesLength = 3;

} // namespace

bool Entry_IsTimeCode(const std::string& text, int frameDigits, bool withSubframes) {
    static const boost::regex shapes[] = {
        boost::regex(TimeCodePattern(2, false)), boost::regex(TimeCodePattern(2, true)),
        boost::regex(TimeCodePattern(3, false)), boost::regex(TimeCodePattern(3, true))};
    return Matches(text, shapes[(frameDigits == 3 ? 2 : 0) + (withSubframes ? 1 : 0)]);
}

bool Entry_IsFeetFrames(const std::string& text, bool withSubframes) {
    static const boost::regex shapes[] = {boost::regex(FeetPattern(false)),
                                          boost::regex(FeetPattern(true))};
    // The look-ahead asks for six characters of feet at least; the length makes it exactly six.
    const std::size_t length = cFeetLength + (withSubframes ? cSubframesLength : 0);
    return text.size() == length && Matches(text, shapes[withSubframes ? 1 : 0]);
}

bool Entry_IsMinutesSeconds(const std::string& text) {
    static const boost::regex shape("^ *\\d{1,4}\\:\\d{2}\\.\\d{3}$");
    return text.size() == cMinutesSecondsLength && Matches(text, shape);
}

bool Entry_IsBarsBeats(const std::string& text, int tickDigits) {
    static const boost::regex shapes[] = {
        boost::regex("^(?=[ 0-9]{4}\\|) *[0-9]{1,4}\\|[0-9]{2}\\|[0-9]{3}$"),
        boost::regex("^(?=[ 0-9]{4}\\|) *[0-9]{1,4}\\|[0-9]{2}\\|[0-9]{4}$")};
    return Matches(text, shapes[tickDigits == 4 ? 1 : 0]);
}

bool Entry_IsInteger(const std::string& text, bool whileTyping) {
    static const boost::regex finished("^[-+]?[0-9]{1,31}$");
    static const boost::regex typing("^[-+]?[0-9]{0,31}$");
    return Matches(text, whileTyping ? typing : finished);
}

bool Entry_IsLevel(const std::string& text, bool whileTyping) {
    static const boost::regex finished("^(-inf|[-+]?[0-9]{1,3}(\\.[0-9])?)$");
    static const boost::regex typing("^(-inf|[-+]?[0-9]{0,3}(\\.[0-9]?)?)$");
    return Matches(text, whileTyping ? typing : finished);
}
