#include "qlx/imaging/qlx_textlayout.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "qlx/imaging/qlx_utf8.h"

namespace {

constexpr std::string_view kEllipsis = "\xE2\x80\xA6";

[[nodiscard]] bool IsIdeographic(char32_t code) noexcept {
    return (code >= 0x3040 && code <= 0x30FF) || (code >= 0x31F0 && code <= 0x31FF) ||
           (code >= 0x3400 && code <= 0x9FFF) || (code >= 0xF900 && code <= 0xFAFF) ||
           (code >= 0xAC00 && code <= 0xD7A3) || (code >= 0x20000 && code <= 0x3FFFD);
}

// Closing punctuation and small kana never begin a line (JIS X 4051, its strictest common part).
[[nodiscard]] bool MayNotBeginLine(char32_t code) noexcept {
    constexpr std::u32string_view kClosing =
        U"!),.:;?]}\u3001\u3002\u3005\u300D\u300F\u3011\u3015\u30FB\u30FC\uFF01\uFF09\uFF0C\uFF0E"
        U"\uFF1A\uFF1B\uFF1F\u3041\u3043\u3045\u3047\u3049\u3063\u3083\u3085\u3087\u30A1\u30A3"
        U"\u30A5\u30A7\u30A9\u30C3\u30E3\u30E5\u30E7";
    return kClosing.find(code) != std::u32string_view::npos;
}

// Whether a line may end between two characters.
[[nodiscard]] bool MayBreakBetween(char32_t before, char32_t after) noexcept {
    if (after == ' ' || after == '\t' || MayNotBeginLine(after))
        return false;
    if (before == ' ' || before == '\t' || before == '-' || before == 0x200B || before == 0x2013 ||
        before == 0x2014)
        return true;
    return IsIdeographic(before) || IsIdeographic(after);
}

[[nodiscard]] bool IsSpace(char character) noexcept {
    return character == ' ' || character == '\t';
}

[[nodiscard]] std::size_t WithoutTrailingSpaces(std::string_view text, std::size_t begin,
                                                std::size_t end) noexcept {
    while (end > begin && IsSpace(text[end - 1]))
        --end;
    return end;
}

// Room for what adding up many advances loses.
constexpr float kSlack = 1.0F / 64;

} // namespace

// The line is measured as one: in scripts that join letters it is narrower than its characters.
void QLX_TextLayout::AddLine(std::size_t begin, std::size_t end, bool paragraphEnd) {
    Line line;
    line.begin = begin;
    line.end = WithoutTrailingSpaces(mText, begin, end);
    line.paragraphEnd = paragraphEnd;
    line.width = QLX_TextMeasure::Get().MeasureWidth(mFont, mText.substr(begin, line.end - begin));
    mLines.push_back(line);
}

// Greedy: adds character by character and falls back to the last place where the line may end.
// Trailing spaces hang over the edge and never cause a break. A line's width is summed up from its
// own beginning: where the lines before it broke does not show in where it breaks.
void QLX_TextLayout::BreakParagraph(std::size_t begin, std::size_t end, float width,
                                    QLX_Painter::EWrapKind wrap) {
    QLX_TextMeasure& measure = QLX_TextMeasure::Get();
    if (wrap == QLX_Painter::kWrap_None || begin == end) {
        AddLine(begin, end, true);
        return;
    }
    std::size_t lineBegin = begin, breakPlace = begin;
    float lineWidth = 0, widthSinceBreak = 0;
    char32_t previous = 0;
    for (std::size_t place = begin; place < end;) {
        const std::size_t characterBegin = place;
        const char32_t code = QLX_NextCodePoint(mText, place);
        const float advance =
            measure.MeasureWidth(mFont, mText.substr(characterBegin, place - characterBegin));
        if (characterBegin > lineBegin &&
            (wrap == QLX_Painter::kWrap_Character || MayBreakBetween(previous, code))) {
            breakPlace = characterBegin;
            widthSinceBreak = 0;
        }
        const bool hangs = code == ' ' || code == '\t';
        // What a break moves to the next line may be too wide for that one too.
        while (!hangs && lineWidth + advance > width + kSlack && characterBegin > lineBegin) {
            if (breakPlace == lineBegin) { // one long word: cut it here
                breakPlace = characterBegin;
                widthSinceBreak = 0;
            }
            AddLine(lineBegin, breakPlace, false);
            lineBegin = breakPlace;
            lineWidth = widthSinceBreak;
        }
        lineWidth += advance;
        widthSinceBreak += advance;
        previous = code;
    }
    AddLine(lineBegin, end, true);
}

void QLX_TextLayout::LayOut(std::string_view text, const QLX_Font& font, float width,
                            QLX_Painter::EWrapKind wrap) {
    mText = text;
    mFont = font;
    mLines.clear();
    mPlaced.clear();
    const QLX_FontMetrics metrics = font.GetMetrics();
    mLineHeight = std::max(1, metrics.GetLineHeight());
    mBaseline = metrics.GetBaseline();
    if (std::isnan(width))
        width = 0;
    if (text.empty())
        return;
    for (std::size_t begin = 0;;) {
        const std::size_t end = std::min(text.find_first_of("\r\n", begin), text.size());
        BreakParagraph(begin, end, width, wrap);
        if (end == text.size())
            return;
        begin = end + (text.compare(end, 2, "\r\n") == 0 ? 2 : 1);
    }
}

int QLX_TextLayout::GetHeight() const noexcept {
    return Cmn_ClampTo<int>(std::int64_t(mLines.size()) * mLineHeight);
}

std::string_view QLX_TextLayout::Shorten(std::string_view text, float width, bool force,
                                         std::string& buffer) {
    QLX_TextMeasure& measure = QLX_TextMeasure::Get();
    if (!force && measure.MeasureWidth(mFont, text) <= width + kSlack)
        return text;
    const float room = width - measure.MeasureWidth(mFont, kEllipsis) + kSlack;
    std::size_t fits = 0;
    float used = 0;
    for (std::size_t place = 0; place < text.size();) {
        const std::size_t begin = place;
        (void)QLX_NextCodePoint(text, place);
        used += measure.MeasureWidth(mFont, text.substr(begin, place - begin));
        if (used > room)
            break;
        fits = place;
    }
    fits = WithoutTrailingSpaces(text, 0, fits);
    buffer.assign(text.substr(0, fits));
    buffer.append(kEllipsis);
    return buffer;
}

std::string_view QLX_TextLayout::CutToWidth(std::string_view text, const QLX_Font& font,
                                            float width) {
    mFont = font;
    return Shorten(text, std::isnan(width) ? 0 : width, false, mSingle);
}

// Word by word, with the room that is left shared out among the gaps.
void QLX_TextLayout::PlaceJustified(const Line& line, std::string_view text, float left,
                                    float width, int baseline) {
    const auto gaps = std::count(text.begin(), text.end(), ' ');
    if (gaps == 0 || line.paragraphEnd || line.width >= width) {
        mPlaced.push_back({text, left, baseline});
        return;
    }
    QLX_TextMeasure& measure = QLX_TextMeasure::Get();
    const float space = measure.MeasureWidth(mFont, " ");
    const float extra = (width - line.width) / float(gaps);
    float x = left;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(' ', begin), text.size());
        const std::string_view word = text.substr(begin, end - begin);
        if (!word.empty())
            mPlaced.push_back({word, x, baseline});
        x += measure.MeasureWidth(mFont, word) + space + extra;
        begin = end + 1;
    }
}

void QLX_TextLayout::Place(const Cmn_Rect<int>& rect, QLX_Painter::EJustification justification,
                           bool ellipsis) {
    mPlaced.clear();
    const float left = float(rect.left), width = float(rect.GetWidth());
    std::size_t count = mLines.size();
    if (ellipsis)
        count =
            std::min(count, std::max<std::size_t>(1, std::max(0, rect.GetHeight()) / mLineHeight));
    if (mCut.size() < count && ellipsis)
        mCut.resize(count);
    for (std::size_t i = 0; i < count; ++i) {
        const Line& line = mLines[i];
        const std::int64_t baseline =
            std::int64_t{rect.top} + std::int64_t(i) * mLineHeight + mBaseline;
        if (baseline - mBaseline > std::numeric_limits<int>::max() - mLineHeight)
            return;
        std::string_view text = mText.substr(line.begin, line.end - line.begin);
        float lineWidth = line.width;
        const bool moreFollow = i + 1 == count && count < mLines.size();
        if (ellipsis && (moreFollow || lineWidth > width + kSlack)) {
            text = Shorten(text, width, moreFollow, mCut[i]);
            lineWidth = QLX_TextMeasure::Get().MeasureWidth(mFont, text);
        }
        if (justification == QLX_Painter::kJustify_Full) {
            PlaceJustified(line, text, left, width, int(baseline));
            continue;
        }
        float x = left;
        if (justification == QLX_Painter::kJustify_Center)
            x += (width - lineWidth) / 2;
        else if (justification == QLX_Painter::kJustify_Right)
            x += width - lineWidth;
        mPlaced.push_back({text, x, int(baseline)});
    }
}
