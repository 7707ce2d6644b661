#include "tests/support/assertion_catcher.h"

#include <gtest/gtest.h>

#include "basekit/cmn/cmn_assert.h"

namespace {
AssertionCatcher* sInnermost = nullptr;
} // namespace

AssertionCatcher::AssertionCatcher() : mOuter(sInnermost) { sInnermost = this; }

AssertionCatcher::~AssertionCatcher() { sInnermost = mOuter; }

std::vector<std::string> AssertionCatcher::TakeTexts() {
    std::vector<std::string> texts;
    for (const Failure& failure : mFailures)
        texts.push_back(failure.mText);
    mFailures.clear();
    return texts;
}

void AssertionCatcher::Install() { Cmn_SetAssertionHandler(&AssertionCatcher::OnAssertion); }

void AssertionCatcher::OnAssertion(const char* text, const char* source, int line) {
    if (sInnermost)
        sInnermost->mFailures.push_back({text, source, line});
    else
        ADD_FAILURE_AT(source, line) << "unexpected assertion: " << text;
}
