#include "contactsheet.h"

#include <algorithm>
#include <numeric>
#include <stdexcept>

#include "basekit/sys/sys_file.h"
#include "qlx/imaging/qlx_font.h"
#include "qlx/imaging/qlx_painter.h"
#include "qlx/imaging/qlx_painterfactory.h"

namespace {
constexpr int kMargin = 12;
constexpr int kCaption = 20;
constexpr int kMarkWidth = 2;
constexpr std::uint32_t kMarkColor = 0xFFE00020;
constexpr std::uint32_t kSheetColor = 0xFF808890;

/// Each pixel the mean of those it stands for.
QLX_Image::Ptr MakeSmaller(const QLX_Image& image, int width) {
    const int height =
        std::max(1, static_cast<int>(std::int64_t{image.GetHeight()} * width / image.GetWidth()));
    std::vector<std::uint32_t> pixels;
    pixels.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    const auto edge = [](int at, int from, int to) {
        return static_cast<int>(std::int64_t{at} * from / to);
    };
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x) {
            const int left = edge(x, image.GetWidth(), width);
            const int right = std::max(left + 1, edge(x + 1, image.GetWidth(), width));
            const int top = edge(y, image.GetHeight(), height);
            const int bottom = std::max(top + 1, edge(y + 1, image.GetHeight(), height));
            std::uint32_t sums[4] = {};
            for (int v = top; v < bottom; ++v)
                for (int h = left; h < right; ++h)
                    for (int part = 0; part < 4; ++part)
                        sums[part] += image.GetPixel(h, v) >> (8 * part) & 0xFF;
            const auto count = static_cast<std::uint32_t>((right - left) * (bottom - top));
            std::uint32_t pixel = 0;
            for (int part = 0; part < 4; ++part)
                pixel |= (sums[part] + count / 2) / count << (8 * part);
            pixels.push_back(pixel);
        }
    return QLX_Image::Create(width, height, std::move(pixels));
}

void Fill(QLX_Image& image, const Cmn_Rect<int>& rect, std::uint32_t color) {
    const Cmn_Rect<int> cut(std::max(rect.left, 0), std::max(rect.top, 0),
                            std::min(rect.right, image.GetWidth()),
                            std::min(rect.bottom, image.GetHeight()));
    for (int y = cut.top; y < cut.bottom; ++y)
        for (int x = cut.left; x < cut.right; ++x)
            image.GetWritablePixels()[std::int64_t{y} * image.GetWidth() + x] = color;
}

void Frame(QLX_Image& image, const Cmn_Rect<int>& rect) {
    const Cmn_Rect<int> out(rect.left - kMarkWidth, rect.top - kMarkWidth, rect.right + kMarkWidth,
                            rect.bottom + kMarkWidth);
    Fill(image, {out.left, out.top, out.right, rect.top}, kMarkColor);
    Fill(image, {out.left, rect.bottom, out.right, out.bottom}, kMarkColor);
    Fill(image, {out.left, rect.top, rect.left, rect.bottom}, kMarkColor);
    Fill(image, {rect.right, rect.top, out.right, rect.bottom}, kMarkColor);
}

void Copy(const QLX_Image& from, QLX_Image& to, int left, int top) {
    for (int y = 0; y < from.GetHeight(); ++y)
        std::copy_n(from.GetPixels() + std::int64_t{y} * from.GetWidth(), from.GetWidth(),
                    to.GetWritablePixels() + std::int64_t{top + y} * to.GetWidth() + left);
}

void DrawCaptions(QLX_Image& sheet, const std::vector<SheetCell>& cells,
                  const std::vector<Cmn_Point<int>>& places) {
    const QLX_PixelBuffer buffer{sheet.GetWritablePixels(), sheet.GetWidth(), sheet.GetHeight(),
                                 sheet.GetWidth(), /*hasAlpha*/ false};
    const QLX_Painter::Ptr painter =
        QLX_PainterFactory::Get().MakeForBuffer(buffer, QLX_DeviceScale());
    if (!painter)
        return;
    painter->SetFont(QLX_FontMap::RetrieveFont(kFont_Interface, kFontSelect_Bold));
    painter->SetForegroundColor(CRGBColor(0xFFFF, 0xFFFF, 0xFFFF));
    for (std::size_t i = 0; i < cells.size(); ++i)
        painter->DrawSingleLineTextBox(
            {places[i].x, places[i].y - kCaption, sheet.GetWidth(), places[i].y}, cells[i].mCaption,
            /*ellipsis*/ false, nullptr);
    painter->Flush();
    QLX_PainterFactory::Get().Detach(*painter);
}
} // namespace

QLX_Image::Ptr WithMarks(const SheetCell& cell) {
    const QLX_Image& picture = *cell.mPicture;
    const QLX_Image::Ptr marked = QLX_Image::Create(
        picture.GetWidth(), picture.GetHeight(),
        {picture.GetPixels(),
         picture.GetPixels() + std::int64_t{picture.GetWidth()} * picture.GetHeight()});
    for (const Cmn_Rect<int>& mark : cell.mMarks)
        Frame(*marked, mark);
    marked->PixelsChanged();
    return marked;
}

QLX_Image::Ptr MakeContactSheet(const std::vector<SheetCell>& cells, int columns, int widthLimit) {
    const auto count = static_cast<int>(cells.size());
    const int rows = (count + columns - 1) / columns;
    std::vector<int> widths(static_cast<std::size_t>(columns));
    std::vector<int> heights(static_cast<std::size_t>(rows));
    std::vector<QLX_Image::Ptr> pictures;
    for (int i = 0; i < count; ++i) {
        QLX_Image::Ptr picture = WithMarks(cells[static_cast<std::size_t>(i)]);
        if (widthLimit > 0 && picture->GetWidth() > widthLimit)
            picture = MakeSmaller(*picture, widthLimit);
        int& width = widths[static_cast<std::size_t>(i % columns)];
        int& height = heights[static_cast<std::size_t>(i / columns)];
        width = std::max(width, picture->GetWidth());
        height = std::max(height, picture->GetHeight());
        pictures.push_back(picture);
    }
    const int width = std::accumulate(widths.begin(), widths.end(), kMargin * (columns + 1));
    const int height =
        std::accumulate(heights.begin(), heights.end(), (kMargin + kCaption) * rows + kMargin);
    const QLX_Image::Ptr sheet = QLX_Image::Create(width, height);
    if (!sheet)
        throw std::runtime_error("a sheet of " + std::to_string(width) + " by " +
                                 std::to_string(height) +
                                 " pixels cannot be made; choose fewer looks or a --width");
    Fill(*sheet, sheet->GetBounds(), kSheetColor);
    std::vector<Cmn_Point<int>> places;
    int top = kMargin + kCaption;
    for (int row = 0; row < rows; ++row) {
        int left = kMargin;
        for (int column = 0; column < columns && row * columns + column < count; ++column) {
            places.push_back({left, top});
            Copy(*pictures[static_cast<std::size_t>(row * columns + column)], *sheet, left, top);
            left += widths[static_cast<std::size_t>(column)] + kMargin;
        }
        top += heights[static_cast<std::size_t>(row)] + kMargin + kCaption;
    }
    DrawCaptions(*sheet, cells, places);
    sheet->PixelsChanged();
    return sheet;
}

void CheckMayWrite(const std::string& path, bool force) {
    if (!force && Sys_FileLoc(path).Exists())
        throw std::runtime_error(path + ": is there already; --force replaces it");
}

void SavePicture(const QLX_Image::Ptr& picture, const std::string& path, bool force) {
    CheckMayWrite(path, force);
    picture->ToPNGFile(path);
}
