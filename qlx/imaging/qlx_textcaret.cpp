#include "qlx/imaging/qlx_textcaret.h"

#include <algorithm>
#include <utility>

#include "qlx/imaging/qlx_utf8.h"

namespace {

float WidthOf(const QLX_Font& font, std::string_view text) {
    return QLX_TextMeasure::Get().MeasureWidth(font, text);
}

/// Characters stand one behind the other, each as wide as by itself.
class PlainCarets final : public QLX_TextCarets {
  public:
    float PlaceOf(const QLX_Font& font, std::string_view line, std::size_t offset) override {
        return WidthOf(font, line.substr(0, offset));
    }
    std::size_t OffsetAt(const QLX_Font& font, std::string_view line, float place) override {
        float left = 0;
        for (std::size_t offset = 0; offset < line.size();) {
            std::size_t next = offset;
            static_cast<void>(QLX_NextCodePoint(line, next));
            const float width = WidthOf(font, line.substr(offset, next - offset));
            if (place < left + width / 2)
                return offset;
            left += width;
            offset = next;
        }
        return line.size();
    }
    std::vector<Span> SpansOf(const QLX_Font& font, std::string_view line, std::size_t from,
                              std::size_t to) override {
        if (from >= to)
            return {};
        const float left = PlaceOf(font, line, from);
        return {{left, left + WidthOf(font, line.substr(from, to - from))}};
    }
    bool RunsToTheLeft(std::string_view) override { return false; }
};

PlainCarets sPlain;
QLX_TextCarets* sInstalled = nullptr;

} // namespace

QLX_TextCarets::~QLX_TextCarets() = default;

QLX_TextCarets& QLX_TextCarets::Get() noexcept { return sInstalled ? *sInstalled : sPlain; }

QLX_TextCarets& QLX_TextCarets::GetBuiltIn() noexcept { return sPlain; }

QLX_TextCarets* QLX_TextCarets::Install(QLX_TextCarets* carets) noexcept {
    return std::exchange(sInstalled, carets);
}
