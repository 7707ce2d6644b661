#include "tests/support/picture_exchange.h"

#include <algorithm>
#include <filesystem>

#include "qlx/imaging/qlx_font.h"

const std::vector<ExchangedText>& GetExchangedTexts() {
    using P = QLX_Painter;
    static const std::vector<ExchangedText> texts = {
        {"Record enable", 12, kFontStyle_Plain, P::kJustify_Left, false, {10, 10, 250, 30}},
        {"01:02:03:04.55", 12, kFontStyle_Plain, P::kJustify_Right, false, {10, 40, 250, 60}},
        {"Centred Title", 18, kFontStyle_Bold, P::kJustify_Center, false, {10, 70, 250, 100}},
        {"A longer text that is broken between its words, three lines or more, as the width asks.",
         12,
         kFontStyle_Plain,
         P::kJustify_Left,
         true,
         {10, 110, 250, 200}},
        {"Both edges are met by every line of this paragraph except the last one.",
         12,
         kFontStyle_Plain,
         P::kJustify_Full,
         true,
         {270, 110, 510, 200}},
        {"Slanted words", 14, kFontStyle_Italic, P::kJustify_Left, false, {270, 10, 510, 35}},
        {"\xC3\x84rger, na\xC3\xAFve, \xC5\x81\xC3\xB3"
         "d\xC5\xBA, \xCE\xA9\xCE\xBC\xCE\xAD\xCE\xB3\xCE\xB1",
         13,
         kFontStyle_Plain,
         P::kJustify_Left,
         false,
         {270, 40, 510, 62}},
        {"48 pt", 48, kFontStyle_Plain, P::kJustify_Left, false, {10, 210, 250, 280}},
        {"tiny captions of a ruler 1|2|3",
         8,
         kFontStyle_Plain,
         P::kJustify_Left,
         false,
         {270, 210, 510, 225}},
        {"line one\nline two\nline three",
         12,
         kFontStyle_Plain,
         P::kJustify_Right,
         false,
         {270, 240, 510, 300}},
        {"WAVE AVATAR To. Ty. fi fl",
         16,
         kFontStyle_Plain,
         P::kJustify_Left,
         false,
         {10, 300, 400, 330}},
        {"Mono-like 0000011111",
         11,
         kFontStyle_Bold,
         P::kJustify_Center,
         false,
         {10, 340, 400, 360}},
    };
    return texts;
}

void DrawExchangedTexts(const QLX_Painter::Ptr& painter) {
    painter->SetBackgroundColor(CRGBColor(65535, 65535, 65535));
    painter->EraseRect({0, 0, kExchangedTextWidth, kExchangedTextHeight});
    painter->SetForegroundColor(CRGBColor());
    for (const ExchangedText& text : GetExchangedTexts()) {
        painter->SetFont(QLX_Font("", text.size, text.style));
        painter->DrawTextBox(text.box, text.text, text.justification, text.wrap, false, true,
                             false);
    }
}

std::string GetExchangePath(const std::string& name) {
    const std::filesystem::path folder = std::filesystem::path(QLX_SOURCE_DIR) / "build/exchange";
    std::filesystem::create_directories(folder);
    return (folder / name).generic_string();
}

Cmn_Rect<int> FindInk(const QLX_Image& picture, const Cmn_Rect<int>& box) {
    Cmn_Rect<int> ink;
    for (int y = box.top; y < box.bottom; ++y)
        for (int x = box.left; x < box.right; ++x)
            if ((picture.GetPixel(x, y) >> 8 & 255) < 0x90)
                ink = ink.Empty() ? Cmn_Rect<int>(x, y, x + 1, y + 1)
                                  : ink | Cmn_Rect<int>(x, y, x + 1, y + 1);
    return ink;
}

namespace {

struct Range {
    std::uint8_t low[3];
    std::uint8_t high[3];
};

// Of every pixel's nine neighbours, itself included.
std::vector<Range> RangesOf(const QLX_Image& picture) {
    const int width = picture.GetWidth(), height = picture.GetHeight();
    std::vector<Range> across(std::size_t(width) * std::size_t(height)), ranges(across.size());
    const auto unite = [](Range& range, const Range& other) {
        for (int i = 0; i < 3; ++i) {
            range.low[i] = std::min(range.low[i], other.low[i]);
            range.high[i] = std::max(range.high[i], other.high[i]);
        }
    };
    const auto single = [&](int x, int y) {
        const std::uint32_t pixel = picture.GetPixels()[std::size_t(y) * width + x];
        Range range{};
        for (int i = 0; i < 3; ++i)
            range.low[i] = range.high[i] = std::uint8_t(pixel >> (8 * i));
        return range;
    };
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            Range range = single(x, y);
            unite(range, single(std::max(0, x - 1), y));
            unite(range, single(std::min(width - 1, x + 1), y));
            across[std::size_t(y) * width + x] = range;
        }
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            Range range = across[std::size_t(y) * width + x];
            unite(range, across[std::size_t(std::max(0, y - 1)) * width + x]);
            unite(range, across[std::size_t(std::min(height - 1, y + 1)) * width + x]);
            ranges[std::size_t(y) * width + x] = range;
        }
    return ranges;
}

bool IsWithin(std::uint32_t pixel, const Range& range, int flat, int edge) {
    bool alike = true;
    for (int i = 0; i < 3; ++i)
        alike = alike && range.high[i] - range.low[i] <= flat;
    const int slack = alike ? flat : edge;
    for (int i = 0; i < 3; ++i) {
        const int value = int(pixel >> (8 * i) & 255);
        if (value < range.low[i] - slack || value > range.high[i] + slack)
            return false;
    }
    return true;
}

} // namespace

int CountBeyondOnePixel(const QLX_Image& picture, const QLX_Image& reference, int flat, int edge,
                        QLX_Image* differences) {
    if (picture.GetWidth() != reference.GetWidth() || picture.GetHeight() != reference.GetHeight())
        return reference.GetWidth() * reference.GetHeight();
    const std::vector<Range> ours = RangesOf(picture), theirs = RangesOf(reference);
    int count = 0;
    for (std::size_t i = 0; i < ours.size(); ++i) {
        const std::uint32_t pixel = picture.GetPixels()[i];
        const bool same = IsWithin(pixel, theirs[i], flat, edge) &&
                          IsWithin(reference.GetPixels()[i], ours[i], flat, edge);
        count += !same;
        if (differences)
            differences->GetWritablePixels()[i] =
                same ? 0xFFC0C0C0 | (pixel >> 2 & 0x3F3F3F) : 0xFFFF0000;
    }
    if (differences)
        differences->PixelsChanged();
    return count;
}
