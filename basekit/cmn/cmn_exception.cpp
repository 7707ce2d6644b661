#include "basekit/cmn/cmn_exception.h"

L10N_ExceptionData::L10N_ExceptionData(std::string key, std::string text,
                                       std::vector<std::string> arguments)
    : mKey(std::move(key)), mArguments(std::move(arguments)) {
    mWhat = text.empty() ? mKey : Format(text);
}

std::string L10N_ExceptionData::Format(const std::string& text) const {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char next = text[i] == '%' && i + 1 < text.size() ? text[i + 1] : '\0';
        const std::size_t argument = next >= '1' && next <= '9' ? std::size_t(next - '1') : 9;
        if (next == '%') {
            result += '%';
            ++i;
        } else if (argument < mArguments.size()) {
            result += mArguments[argument];
            ++i;
        } else {
            result += text[i];
        }
    }
    return result;
}
