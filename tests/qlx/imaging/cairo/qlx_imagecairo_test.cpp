// Pictures in PNG files, their double resolution, and how painters choose and stretch them.

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <stdexcept>

#include "qlx/imaging/cairo/qlx_paintercairo.h"
#include "qlx/imaging/qlx_image.h"

namespace {

using Rect = Cmn_Rect<int>;
constexpr std::uint32_t kRed = 0xFFFF0000, kBlue = 0xFF0000FF, kWhite = 0xFFFFFFFF;

QLX_Image::Ptr Plain(int size, std::uint32_t pixel) {
    return QLX_Image::Create(size, size, std::vector<std::uint32_t>(size * size, pixel));
}
QLX_Image::Ptr PixelsOf(const QLX_Painter::Ptr& painter) {
    return static_cast<QLX_PainterCairo*>(painter.Get())->GetPixels();
}
std::string FileName(const char* name) { return std::string(QLX_TEST_OUTPUT) + "/" + name; }

TEST(ImageFiles, TheDoubleIsReadFromBeside) {
    const std::string single = FileName("beside.png"), twice = FileName("beside@2x.png");
    Plain(3, kRed)->ToPNGFile(single);
    std::remove(twice.c_str());
    EXPECT_EQ(QLX_Image::FromPNGFile(single)->GetDouble(), nullptr);
    Plain(6, kBlue)->ToPNGFile(twice);
    const QLX_Image::Ptr image = QLX_Image::FromPNGFile(single);
    ASSERT_NE(image->GetDouble(), nullptr);
    EXPECT_EQ(image->GetDouble()->GetPixel(5, 5), kBlue);
    EXPECT_EQ(image->GetWidth(), 3) << "sizes are logical";
    Plain(5, kBlue)->ToPNGFile(twice);
    try {
        (void)QLX_Image::FromPNGFile(single);
        ADD_FAILURE() << "a double of the wrong size was taken";
    } catch (const std::runtime_error& error) {
        EXPECT_EQ(std::string(error.what()),
                  single + ": its @2x file is not twice as wide and high");
    }
    std::remove(twice.c_str());
    EXPECT_THROW((void)QLX_Image::FromPNGFile(FileName("nowhere.png")), std::runtime_error);
    EXPECT_THROW(Plain(1, kRed)->ToPNGFile(FileName("no/such/folder.png")), std::runtime_error);
}

TEST(ImageFiles, PixelsSurviveTheFile) {
    const QLX_Image::Ptr image =
        QLX_Image::Create(2, 2, {0xFF123456, 0x80402010, 0x00000000, 0xFFFFFFFF});
    EXPECT_TRUE(QLX_Image::FromPNG(image->ToPNG())->IsEqual(*image));
    EXPECT_EQ(QLX_Image::Create(1, 1, {0x10FFFFFF})->GetPixel(0, 0), 0x10101010U)
        << "colour above alpha is brought down";
}

TEST(Images, PaintersTakeTheDoubleAboveScaleOne) {
    const QLX_Image::Ptr image = Plain(4, kRed);
    image->SetDouble(Plain(8, kBlue));
    for (const auto& [scale, expected] : {std::pair(1.0, kRed), {1.25, kBlue}, {2.0, kBlue}}) {
        const auto p = QLX_PainterCairo::New(10, 10, QLX_DeviceScale(scale));
        p->DrawImage(image, {0, 0, 4, 4}, kPenMode_Copy);
        EXPECT_EQ(PixelsOf(p)->GetPixel(2, 2), expected) << scale;
    }
}

// Corners of a background keep their size, edges stretch one way, the middle both.
TEST(Images, NineParts) {
    const QLX_Image::Ptr image = Plain(9, kRed);
    for (int i = 3; i < 6; ++i)
        for (int k = 3; k < 6; ++k)
            image->GetWritablePixels()[i * 9 + k] = kBlue;
    image->PixelsChanged();
    const auto p = QLX_PainterCairo::New(60, 40);
    p->OptimizedDrawBackgroundImage(image, 50, 30, 3, QLX_Painter::kResolution_Logical);
    const QLX_Image::Ptr pixels = PixelsOf(p);
    for (int y = 0; y < 40; ++y)
        for (int x = 0; x < 60; ++x) {
            const bool inside = x < 50 && y < 30;
            const bool middle = x >= 3 && x < 47 && y >= 3 && y < 27;
            ASSERT_EQ(pixels->GetPixel(x, y), !inside  ? kWhite
                                              : middle ? kBlue
                                                       : kRed)
                << x << ", " << y;
        }
}

TEST(Images, WhatLiesBeyondTheSourceIsLeftAlone) {
    const auto p = QLX_PainterCairo::New(20, 20);
    p->DrawImagePortion(Plain(4, kRed), {-4, 0, 4, 4}, {0, 0, 16, 8}, kPenMode_Copy,
                        QLX_Painter::kResolution_Logical);
    EXPECT_EQ(PixelsOf(p)->GetPixel(7, 3), kWhite);
    EXPECT_EQ(PixelsOf(p)->GetPixel(8, 3), kRed);
}

TEST(Images, IconsGiveThePictureThatSuits) {
    QLX_Icon icon;
    EXPECT_FALSE(icon.GetImageFor(16));
    icon.AddImage(Plain(32, kBlue));
    icon.AddImage(Plain(16, kRed));
    icon.AddImage(nullptr);
    EXPECT_EQ(icon.GetImageFor(10)->GetWidth(), 16);
    EXPECT_EQ(icon.GetImageFor(17)->GetWidth(), 32);
    EXPECT_EQ(icon.GetImageFor(99)->GetWidth(), 32);
    icon.AddImage(Plain(16, kBlue));
    EXPECT_EQ(icon.GetImages().size(), 2U);
    EXPECT_EQ(icon.GetImageFor(16)->GetPixel(0, 0), kBlue) << "the later of a size stands";
}

TEST(Images, CanvasesBecomeImagesWithTheirDouble) {
    const auto p = QLX_PainterCairo::New(10, 8, QLX_DeviceScale(2));
    p->SetForegroundColor(CRGBColor(65535, 0, 0));
    p->FillRect({0, 0, 5, 8});
    const QLX_Painter::ImagePtr image = p->CreateImage(nullptr);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->GetBounds(), Rect(0, 0, 10, 8));
    ASSERT_NE(image->GetDouble(), nullptr);
    EXPECT_EQ(image->GetPixel(4, 4), kRed);
    EXPECT_EQ(image->GetPixel(5, 4), kWhite);
    EXPECT_EQ(image->GetDouble()->GetPixel(9, 9), kRed);
    EXPECT_EQ(image->GetDouble()->GetPixel(10, 9), kWhite);
}

} // namespace
