/// \file
/// The comparison that tests of drawing rely on: it must tell pictures apart, and leave evidence.

#include "support/PixelCompare.h"
#include "support/Png.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>

namespace
{

using test::imagesMatch;
using test::PixelLimits;
using test::RgbaImage;

RgbaImage noise(int width, int height, unsigned seed)
{
    std::mt19937 random(seed);
    RgbaImage image(width, height);
    for (std::uint8_t &byte : image.bytes)
    {
        byte = static_cast<std::uint8_t>(random() & 255U);
    }
    return image;
}

std::string failedImage(const char *name)
{
    return (std::filesystem::current_path() / "failed-images" / name).string();
}

TEST(PixelCompare, TakesEqualPictures)
{
    const RgbaImage image = noise(7, 5, 1);
    EXPECT_TRUE(imagesMatch(image, image));
}

TEST(PixelCompare, RefusesOneChannelOffByOneUnlessTheLimitAllowsIt)
{
    const RgbaImage expected(4, 3, {10, 20, 30, 40});
    RgbaImage actual = expected;
    actual.set(2, 1, {10, 20, 30, 41});
    EXPECT_FALSE(imagesMatch(actual, expected, {}, "off-by-one"));
    PixelLimits one;
    one.channel = 1;
    EXPECT_TRUE(imagesMatch(actual, expected, one));
}

TEST(PixelCompare, CountsPixelsAgainstTheFraction)
{
    const RgbaImage expected(10, 10, {0, 0, 0, 255});
    RgbaImage actual = expected;
    actual.set(0, 0, {255, 0, 0, 255});
    actual.set(9, 9, {255, 0, 0, 255});
    PixelLimits limits;
    limits.fraction = 0.02;
    EXPECT_TRUE(imagesMatch(actual, expected, limits));
    limits.fraction = 0.019;
    EXPECT_FALSE(imagesMatch(actual, expected, limits, "fraction"));
}

TEST(PixelCompare, RefusesAMeanAboveItsLimit)
{
    const RgbaImage expected(2, 2, {0, 0, 0, 0});
    const RgbaImage actual(2, 2, {4, 4, 4, 4});
    PixelLimits limits;
    limits.channel = 4;
    limits.mean = 4.0;
    EXPECT_TRUE(imagesMatch(actual, expected, limits));
    limits.mean = 3.9;
    EXPECT_FALSE(imagesMatch(actual, expected, limits, "mean"));
}

TEST(PixelCompare, RefusesPicturesOfDifferentSize)
{
    const ::testing::AssertionResult result = imagesMatch(RgbaImage(2, 3), RgbaImage(3, 2), {}, "size");
    EXPECT_FALSE(result);
    EXPECT_NE(std::string(result.message()).find("actual 2 x 3, expected 3 x 2"), std::string::npos)
        << result.message();
}

TEST(PixelCompare, MeasuresLargestMeanAndCount)
{
    const RgbaImage a(2, 1, {0, 0, 0, 0});
    RgbaImage b = a;
    b.set(1, 0, {8, 0, 0, 24});
    const test::PixelDifference found = test::differenceOf(a, b, 5);
    EXPECT_EQ(found.largest, 24);
    EXPECT_DOUBLE_EQ(found.mean, 4.0);
    EXPECT_EQ(found.pixels, 1U);
}

TEST(PixelCompare, NamesTheWorstPixelFirstAndWritesThreePictures)
{
    const RgbaImage expected(3, 2, {0, 0, 0, 255});
    RgbaImage actual = expected;
    actual.set(1, 1, {3, 0, 0, 255});
    actual.set(2, 0, {0, 9, 0, 255});
    const ::testing::AssertionResult result = imagesMatch(actual, expected, {}, "worst");
    ASSERT_FALSE(result);
    const std::string message = result.message();
    const std::size_t first = message.find("pixel (2, 0): actual (0, 9, 0, 255), expected (0, 0, 0, 255)");
    const std::size_t second = message.find("pixel (1, 1): actual (3, 0, 0, 255), expected (0, 0, 0, 255)");
    ASSERT_NE(first, std::string::npos) << message;
    ASSERT_NE(second, std::string::npos) << message;
    EXPECT_LT(first, second);

    RgbaImage written;
    ASSERT_TRUE(test::readPng(failedImage("worst-actual.png"), written));
    EXPECT_EQ(written.bytes, actual.bytes);
    ASSERT_TRUE(test::readPng(failedImage("worst-expected.png"), written));
    EXPECT_EQ(written.bytes, expected.bytes);
    ASSERT_TRUE(test::readPng(failedImage("worst-difference.png"), written));
    EXPECT_EQ(written.at(2, 0), (RgbaImage::Pixel{0, 255, 0, 255}));
    EXPECT_EQ(written.at(1, 1), (RgbaImage::Pixel{85, 0, 0, 255}));
}

TEST(Png, GivesBackWhatWasWritten)
{
    const RgbaImage image = noise(13, 9, 20);
    const std::string path = (std::filesystem::temp_directory_path() / "tessaly-png-round-trip.png").string();
    ASSERT_TRUE(test::writePng(path, image));
    RgbaImage read;
    ASSERT_TRUE(test::readPng(path, read));
    EXPECT_EQ(read.width, 13);
    EXPECT_EQ(read.height, 9);
    EXPECT_EQ(read.bytes, image.bytes);
    std::filesystem::remove(path);
}

TEST(Png, LeavesThePictureAloneIfTheFileIsNoPng)
{
    const std::string path = (std::filesystem::temp_directory_path() / "tessaly-no-png.png").string();
    std::ofstream(path) << "not a picture";
    RgbaImage image(1, 1, {1, 2, 3, 4});
    EXPECT_FALSE(test::readPng(path, image));
    EXPECT_EQ(image.at(0, 0), (RgbaImage::Pixel{1, 2, 3, 4}));
    std::filesystem::remove(path);
    EXPECT_FALSE(test::readPng(path, image));
    EXPECT_FALSE(test::writePng("/no/such/folder/picture.png", image));
}

} // namespace
