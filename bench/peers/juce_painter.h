// JUCE's software renderer behind plain functions, so that its headers stay in one file.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// Draws on an image of its own of 32 bits a pixel, in 0xAARRGGBB colours.
class JucePainter {
  public:
    JucePainter(int width, int height);
    JucePainter(const JucePainter&) = delete;
    JucePainter& operator=(const JucePainter&) = delete;
    ~JucePainter();

    void Fill(int left, int top, int width, int height, std::uint32_t color);
    void Frame(int left, int top, int width, int height, std::uint32_t color);
    /// Lays a text out once; returns its number. The font is DejaVu Sans of 12 pixels.
    int PrepareText(const std::string& text, float x, float baseline);
    void DrawText(int number, std::uint32_t color);
    /// Columns x from tops to bottoms, both included, all in one call.
    void Columns(const std::vector<int>& tops, const std::vector<int>& bottoms,
                 std::uint32_t color);

  private:
    struct State;
    std::unique_ptr<State> mState;
};
