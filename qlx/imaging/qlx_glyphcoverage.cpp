#include "qlx/imaging/qlx_glyphcoverage.h"

#include <algorithm>
#include <utility>

#include "basekit/cmn/cmn_string.h"
#include "qlx/imaging/qlx_font.h"

namespace {
QLX_GlyphCoverage* sInstalled = nullptr;
} // namespace

QLX_GlyphCoverage::~QLX_GlyphCoverage() = default;

QLX_GlyphCoverage* QLX_GlyphCoverage::Get() noexcept { return sInstalled; }

QLX_GlyphCoverage* QLX_GlyphCoverage::Install(QLX_GlyphCoverage* coverage) noexcept {
    return std::exchange(sInstalled, coverage);
}

std::vector<char32_t> QLX_GlyphCoverage::FindMissing(const QLX_Font& font, std::string_view text) {
    std::vector<char32_t> missing;
    for (std::size_t place = 0; sInstalled && place < text.size();) {
        const char32_t character = Cmn_DecodeUTF8(text, place);
        if (character >= 0x20 && !sInstalled->HasGlyph(font, character) &&
            std::find(missing.begin(), missing.end(), character) == missing.end())
            missing.push_back(character);
    }
    return missing;
}
