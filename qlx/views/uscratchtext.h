// StScratchText: a text for the length of a scope whose memory is used again by the next one. Not
// for hosts.
#pragma once

#include <string>

#include "basekit/cmn/cmn_internal.h"

/// A text with its place in the list of those that wait to be used again, all of them empty.
struct QLX_ScratchText {
    std::string mText;
    QLX_ScratchText* mNext = nullptr; // owned by the list
};
/// Null when none waits. Never destroyed: commands may be freed by other static destructors.
extern QLX_INTERNAL QLX_ScratchText* gScratchTexts;

/// A text, empty at first. User-interface thread.
class StScratchText {
  public:
    StScratchText() : mText(Take()) {}
    ~StScratchText() { Give(mText); }
    StScratchText(const StScratchText&) = delete;
    StScratchText& operator=(const StScratchText&) = delete;
    [[nodiscard]] std::string& operator*() { return mText->mText; }
    [[nodiscard]] std::string* operator->() { return &mText->mText; }

    /// For what outlives no scope but is not always needed: an empty text, given back later.
    [[nodiscard]] static QLX_ScratchText* Take() {
        QLX_ScratchText* const text = gScratchTexts;
        if (!text)
            return new QLX_ScratchText;
        gScratchTexts = text->mNext;
        return text;
    }
    static void Give(QLX_ScratchText* text) noexcept {
        if (text->mText.capacity() > kLargestKept)
            text->mText = std::string();
        else
            text->mText.clear();
        text->mNext = gScratchTexts;
        gScratchTexts = text;
    }

  private:
    static constexpr std::size_t kLargestKept = 4096;
    QLX_ScratchText* mText; // owned
};
