#include "app/misc/uentryblocks.h"

#include <algorithm>

CEntryLayout::CEntryLayout(std::initializer_list<CEntryBlock> blocks) {
    for (const CEntryBlock& block : blocks)
        if (mCount < kMaxBlocks)
            mBlocks[mCount++] = block;
}

int CEntryLayout::CountDigits() const noexcept {
    int digits = 0;
    for (int i = 0; i < mCount; ++i)
        digits += mBlocks[i].Width();
    return digits;
}

int CEntryLayout::FindBlock(const CEntryBlock& selection) const noexcept {
    // In a format of one block the block is the whole.
    if (mCount < 2)
        return -1;
    for (int i = 0; i < mCount; ++i)
        if (mBlocks[i] == selection)
            return i;
    return -1;
}

int CEntryLayout::FindBlockAt(int character) const noexcept {
    int found = 0;
    for (int i = 0; i < mCount; ++i)
        if (mBlocks[i].mStart <= character)
            found = i;
    return found;
}

bool CEntryLayout::IsSelection(const CEntryBlock& selection) const noexcept {
    return selection == GetWhole() || FindBlock(selection) >= 0;
}

bool CEntryLayout::Move(CEntryBlock& selection, EBlockHiliteDirection direction,
                        bool wrap) const noexcept {
    const int block = FindBlock(selection);
    if (block < 0) {
        if (mCount != 0)
            selection = mBlocks[0];
        return false;
    }
    const bool next = direction == kBlock_Next;
    const bool atEnd = block == (next ? mCount - 1 : 0);
    if (atEnd) {
        if (wrap)
            selection = mBlocks[next ? 0 : mCount - 1];
        return true;
    }
    selection = mBlocks[next ? block + 1 : block - 1];
    return false;
}

void CEntryLayout::ZeroFrom(std::string& text, int block) const {
    for (int i = block; i < mCount; ++i)
        std::fill(text.begin() + mBlocks[i].mStart, text.begin() + mBlocks[i].mEnd, '0');
}

void CEntryLayout::TypeIntoBlock(CEntryState& state, int block, char digit, char padding) const {
    if (state.mText.size() != static_cast<std::size_t>(GetLength()))
        return;
    const auto first = state.mText.begin() + mBlocks[block].mStart;
    const auto last = state.mText.begin() + mBlocks[block].mEnd;
    if (state.mTypedCount == 0)
        std::fill(first, last, padding);
    std::rotate(first, first + 1, last);
    *(last - 1) = digit;
    // What was typed long ago has left the block; only so much can still be there.
    state.mTypedCount = std::min(state.mTypedCount + 1, CountDigits());
    ZeroFrom(state.mText, block + 1);
}

void CEntryLayout::TypeIntoWhole(CEntryState& state, char digit) const {
    if (state.mText.size() != static_cast<std::size_t>(GetLength()) || mCount == 0)
        return;
    const int places = CountDigits();
    const int shifted = std::min(state.mTypedCount + 1, places);
    // From the right: each place takes what stood in the place to its right.
    char carried = digit;
    state.mTypedCount = shifted;
    int left = shifted;
    for (int block = mCount - 1; block >= 0; --block)
        for (int at = mBlocks[block].mEnd - 1; at >= mBlocks[block].mStart; --at) {
            if (left-- == 0)
                return;
            std::swap(carried, state.mText[static_cast<std::size_t>(at)]);
        }
}

void CEntryLayout::TypePointIntoWhole(CEntryState& state) const {
    if (state.mText.size() != static_cast<std::size_t>(GetLength()) || mCount == 0)
        return;
    // How far the typed digits reach after the move: past the zeroed block and, of the block they
    // were in, as many digits as its left neighbour has room for.
    int count = 2;
    int right = 0; // digits to the right of the block that is looked at
    for (int block = mCount - 1; block >= 0; --block) {
        const int width = mBlocks[block].Width();
        const int typedHere = std::min(state.mTypedCount - right, width);
        if (typedHere <= 0)
            break;
        const int room = block == 0 ? 0 : mBlocks[block - 1].Width();
        count = right + width + std::min(typedHere, room);
        right += width;
    }
    // The rightmost block always moves. Its left neighbour follows one digit sooner than it has
    // typed digits of its own, every other one as soon as it has.
    int reach = 0;
    int moved = 1;
    for (int block = mCount - 1; block >= 1; --block) {
        reach += mBlocks[block].Width();
        const int threshold = block == mCount - 1 ? 0 : block == mCount - 2 ? reach - 1 : reach;
        if (count > threshold)
            moved = mCount - block;
        else
            break;
    }
    for (int block = mCount - 1 - moved; block < mCount - 1; ++block) {
        const CEntryBlock& to = mBlocks[block];
        const CEntryBlock& from = mBlocks[block + 1];
        const int width = std::min(to.Width(), from.Width());
        const std::string digits = state.mText.substr(static_cast<std::size_t>(from.mEnd - width),
                                                      static_cast<std::size_t>(width));
        std::fill(state.mText.begin() + to.mStart, state.mText.begin() + to.mEnd, '0');
        std::copy(digits.begin(), digits.end(), state.mText.begin() + to.mEnd - width);
    }
    ZeroFrom(state.mText, mCount - 1);
    state.mTypedCount = std::min(count, CountDigits());
}
