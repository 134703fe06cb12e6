#ifndef TESTS_SUPPORT_PIXELCOMPARE_H
#define TESTS_SUPPORT_PIXELCOMPARE_H

/// \file
/// Comparison of two pictures with limits, and the evidence when they differ.

#include "support/RgbaImage.h"

#include <gtest/gtest.h>

#include <string>

namespace test
{

/// How far two pictures may lie apart. A test that gives anything but the defaults says why.
struct PixelLimits
{
    int channel = 0;       ///< largest difference of a channel that counts as equal, 0 to 255
    double fraction = 0.0; ///< largest share of pixels that may differ by more than that, 0 to 1
    double mean = 255.0;   ///< largest mean difference over all channels of all pixels, 0 to 255
};

/// What a comparison of two pictures of one size found.
struct PixelDifference
{
    int largest = 0;        ///< over all channels
    double mean = 0.0;      ///< over all channels
    std::size_t pixels = 0; ///< with a channel that differs by more than the limit
};

/// Compares two pictures of the same size.
PixelDifference differenceOf(const RgbaImage &actual, const RgbaImage &expected, int channelLimit = 0);

/// Success if the pictures have one size and lie within the limits. On failure the message names the worst
/// pixels, and the folder "failed-images" of the working folder gets NAME-actual.png, NAME-expected.png and
/// NAME-difference.png (the difference scaled so that the largest is white). An empty name stands for the
/// name of the running test.
::testing::AssertionResult imagesMatch(const RgbaImage &actual, const RgbaImage &expected,
                                       const PixelLimits &limits = PixelLimits(),
                                       const std::string &name = "");

} // namespace test

#endif
