#include "qlx/views/uactivity.h"

#include "qlx/views/uscratchtext.h"

constinit QLX_ScratchText* gScratchTexts = nullptr;

const std::string& CActivity::GetText() const {
    if (!mText) {
        mText = StScratchText::Take();
        mText->mText.append(mVerb).append(*mName);
    }
    return mText->mText;
}

void CActivity::Release() noexcept { StScratchText::Give(mText); }
