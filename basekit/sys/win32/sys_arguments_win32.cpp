#include "basekit/sys/sys_arguments.h"

#include <utility>

#include <windows.h>

#include <shellapi.h>

namespace {

std::string ToUTF8(const wchar_t* text) {
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, -1, nullptr, 0, nullptr, nullptr);
    if (size <= 1)
        return {};
    std::string narrow(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, -1, narrow.data(), size, nullptr, nullptr);
    narrow.pop_back(); // the terminator
    return narrow;
}

} // namespace

Sys_Arguments::Sys_Arguments(int argc, char** argv) {
    std::vector<std::string> texts;
    int count = 0;
    if (wchar_t** wide = CommandLineToArgvW(GetCommandLineW(), &count)) {
        for (int i = 0; i < count; ++i)
            texts.push_back(ToUTF8(wide[i]));
        LocalFree(wide);
    } else {
        texts.assign(argv, argv + argc);
    }
    SetTexts(std::move(texts));
}
