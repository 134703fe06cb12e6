/// \file
/// Comparison of two pictures.

#include "support/PixelCompare.h"

#include "support/Png.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>
#include <vector>

namespace
{

using test::RgbaImage;

/// The largest difference of the four channels of one pixel.
int pixelDifference(const RgbaImage &a, const RgbaImage &b, std::size_t pixel)
{
    int largest = 0;
    for (std::size_t i = 4 * pixel; i < 4 * pixel + 4; ++i)
    {
        largest = std::max(largest, std::abs(int(a.bytes[i]) - int(b.bytes[i])));
    }
    return largest;
}

std::string nameOfRunningTest()
{
    const ::testing::TestInfo *info = ::testing::UnitTest::GetInstance()->current_test_info();
    std::string name =
        info != nullptr ? std::string(info->test_suite_name()) + "." + info->name() : "picture";
    std::replace(name.begin(), name.end(), '/', '_');
    return name;
}

/// Absolute difference per channel, scaled so that the largest becomes 255; opaque, so that it can be looked
/// at.
RgbaImage differenceImage(const RgbaImage &a, const RgbaImage &b, int largest)
{
    RgbaImage image(a.width, a.height, {0, 0, 0, 255});
    for (std::size_t i = 0; i < image.bytes.size() && largest > 0; ++i)
    {
        if (i % 4 != 3)
        {
            image.bytes[i] =
                static_cast<std::uint8_t>(std::abs(int(a.bytes[i]) - int(b.bytes[i])) * 255 / largest);
        }
    }
    return image;
}

void describePixel(std::ostream &out, const RgbaImage &image, std::size_t pixel)
{
    out << "(";
    for (std::size_t c = 0; c < 4; ++c)
    {
        out << (c > 0 ? ", " : "") << int(image.bytes[4 * pixel + c]);
    }
    out << ")";
}

void describeWorst(std::ostream &out, const RgbaImage &actual, const RgbaImage &expected, int channelLimit)
{
    std::vector<std::pair<int, std::size_t>> worst;
    for (std::size_t pixel = 0; 4 * pixel < actual.bytes.size(); ++pixel)
    {
        const int difference = pixelDifference(actual, expected, pixel);
        if (difference > channelLimit)
        {
            worst.emplace_back(-difference, pixel);
        }
    }
    const std::size_t shown = std::min<std::size_t>(8, worst.size());
    std::partial_sort(worst.begin(), worst.begin() + static_cast<std::ptrdiff_t>(shown), worst.end());
    for (std::size_t i = 0; i < shown; ++i)
    {
        const std::size_t pixel = worst[i].second;
        const std::size_t width = static_cast<std::size_t>(actual.width);
        out << "\n  pixel (" << pixel % width << ", " << pixel / width << "): actual ";
        describePixel(out, actual, pixel);
        out << ", expected ";
        describePixel(out, expected, pixel);
    }
}

void writeEvidence(std::ostream &out, const std::string &name, const char *kind, const RgbaImage &image)
{
    const std::filesystem::path folder = std::filesystem::current_path() / "failed-images";
    std::error_code ignored;
    std::filesystem::create_directories(folder, ignored);
    const std::string path = (folder / (name + "-" + kind + ".png")).string();
    out << "\n  " << kind << ": " << path << (test::writePng(path, image) ? "" : " (could not be written)");
}

} // namespace

test::PixelDifference test::differenceOf(const RgbaImage &actual, const RgbaImage &expected, int channelLimit)
{
    PixelDifference result;
    double sum = 0.0;
    for (std::size_t i = 0; i < actual.bytes.size(); ++i)
    {
        sum += std::abs(int(actual.bytes[i]) - int(expected.bytes[i]));
    }
    result.mean = actual.bytes.empty() ? 0.0 : sum / double(actual.bytes.size());
    for (std::size_t pixel = 0; 4 * pixel < actual.bytes.size(); ++pixel)
    {
        const int difference = pixelDifference(actual, expected, pixel);
        result.largest = std::max(result.largest, difference);
        result.pixels += difference > channelLimit ? 1 : 0;
    }
    return result;
}

::testing::AssertionResult test::imagesMatch(const RgbaImage &actual, const RgbaImage &expected,
                                             const PixelLimits &limits, const std::string &name)
{
    const std::string stem = name.empty() ? nameOfRunningTest() : name;
    std::ostringstream evidence;
    if (actual.width != expected.width || actual.height != expected.height ||
        actual.bytes.size() != expected.bytes.size())
    {
        writeEvidence(evidence, stem, "actual", actual);
        writeEvidence(evidence, stem, "expected", expected);
        return ::testing::AssertionFailure()
               << "the pictures differ in size: actual " << actual.width << " x " << actual.height
               << ", expected " << expected.width << " x " << expected.height << evidence.str();
    }

    const PixelDifference found = differenceOf(actual, expected, limits.channel);
    const double count = double(actual.bytes.size()) / 4.0;
    if (double(found.pixels) <= limits.fraction * count && found.mean <= limits.mean)
    {
        return ::testing::AssertionSuccess();
    }
    describeWorst(evidence, actual, expected, limits.channel);
    writeEvidence(evidence, stem, "actual", actual);
    writeEvidence(evidence, stem, "expected", expected);
    writeEvidence(evidence, stem, "difference", differenceImage(actual, expected, found.largest));
    return ::testing::AssertionFailure()
           << found.pixels << " of " << count << " pixels differ by more than " << limits.channel
           << " (allowed " << limits.fraction * count << "); largest difference " << found.largest
           << ", mean " << found.mean << " (allowed " << limits.mean << ")" << evidence.str();
}
