#include "bench/peers/juce_painter.h"

#include <juce_graphics/juce_graphics.h>

struct JucePainter::State {
    juce::Image image;
    juce::Graphics graphics;
    juce::Font font{"DejaVu Sans", 12.0F, juce::Font::plain};
    std::vector<juce::GlyphArrangement> texts;
    juce::RectangleList<int> columns;

    State(int width, int height)
        : image(juce::Image::ARGB, width, height, true, juce::SoftwareImageType()),
          graphics(image) {}
};

JucePainter::JucePainter(int width, int height) : mState(std::make_unique<State>(width, height)) {}
JucePainter::~JucePainter() = default;

void JucePainter::Fill(int left, int top, int width, int height, std::uint32_t color) {
    mState->graphics.setColour(juce::Colour(color));
    mState->graphics.fillRect(left, top, width, height);
}

void JucePainter::Frame(int left, int top, int width, int height, std::uint32_t color) {
    mState->graphics.setColour(juce::Colour(color));
    mState->graphics.drawRect(left, top, width, height);
}

int JucePainter::PrepareText(const std::string& text, float x, float baseline) {
    juce::GlyphArrangement glyphs;
    glyphs.addLineOfText(mState->font, text, x, baseline);
    mState->texts.push_back(glyphs);
    return int(mState->texts.size()) - 1;
}

void JucePainter::DrawText(int number, std::uint32_t color) {
    mState->graphics.setColour(juce::Colour(color));
    mState->texts[std::size_t(number)].draw(mState->graphics);
}

void JucePainter::Columns(const std::vector<int>& tops, const std::vector<int>& bottoms,
                          std::uint32_t color) {
    mState->graphics.setColour(juce::Colour(color));
    for (std::size_t i = 0; i < tops.size(); ++i)
        mState->graphics.drawVerticalLine(int(i), float(tops[i]), float(bottoms[i] + 1));
}
