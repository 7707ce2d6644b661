#include "basekit/sys/sys_arguments.h"

#include <utility>

void Sys_Arguments::SetTexts(std::vector<std::string> texts) {
    mTexts = std::move(texts);
    mPointers.clear();
    for (std::string& text : mTexts)
        mPointers.push_back(text.data());
    mPointers.push_back(nullptr);
}
