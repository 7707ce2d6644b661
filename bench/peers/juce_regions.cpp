#include "bench/peers/juce_regions.h"

#include <juce_graphics/juce_graphics.h>

// The header defines colour constants, whose constructor is the only other code it asks for.
#include <juce_graphics/colour/juce_Colour.cpp>

namespace {

juce::Rectangle<int> ToJuce(const Cmn_Rect<int>& rect) {
    return juce::Rectangle<int>::leftTopRightBottom(rect.left, rect.top, rect.right, rect.bottom);
}

} // namespace

struct JuceRegion::List {
    juce::RectangleList<int> mRects;
};

JuceRegion::JuceRegion() : mList(std::make_unique<List>()) {}
JuceRegion::JuceRegion(const JuceRegion& other) : mList(std::make_unique<List>(*other.mList)) {}
JuceRegion& JuceRegion::operator=(const JuceRegion& other) {
    mList->mRects = other.mList->mRects;
    return *this;
}
JuceRegion::~JuceRegion() = default;

JuceRegion::JuceRegion(const std::vector<Cmn_Rect<int>>& rects) : JuceRegion() {
    for (const Cmn_Rect<int>& rect : rects)
        Add(rect);
}

void JuceRegion::Add(const Cmn_Rect<int>& rect) { mList->mRects.add(ToJuce(rect)); }
void JuceRegion::Add(const JuceRegion& other) { mList->mRects.add(other.mList->mRects); }
void JuceRegion::Subtract(const JuceRegion& other) { mList->mRects.subtract(other.mList->mRects); }
void JuceRegion::Intersect(const JuceRegion& other) { mList->mRects.clipTo(other.mList->mRects); }
bool JuceRegion::ContainsPoint(int x, int y) const { return mList->mRects.containsPoint(x, y); }
int JuceRegion::Count() const { return mList->mRects.getNumRectangles(); }
