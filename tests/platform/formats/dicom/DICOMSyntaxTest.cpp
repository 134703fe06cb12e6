/// \file
/// One file of each way in which DICOM lays bytes out; those of the fuzz target's corpus, which a script writes.

#include <OSGDICOMCodec.h>

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

OSG_USING_NAMESPACE

namespace
{

/// The samples in the order of the file: the pictures' bottom rows, which come first in memory, come last.
std::vector<int> samplesOf(const std::string &name, PixelData &pixels)
{
    std::string error;
    EXPECT_TRUE(readDICOM(std::string(DICOM_CORPUS) + "/" + name, pixels, error)) << error;
    std::vector<int> samples;
    for(int y = pixels.height - 1; y >= 0; --y)
    {
        for(int x = 0; x < pixels.width; ++x)
        {
            const std::size_t at = std::size_t(y) * std::size_t(pixels.width) + std::size_t(x);
            std::uint16_t wide = 0;
            if(pixels.dataType == SampleUInt16)
                std::memcpy(&wide, pixels.data.data() + 2 * at, 2);
            samples.push_back(pixels.dataType == SampleUInt16 ? wide : pixels.data[at]);
        }
    }
    return samples;
}

TEST(DICOMSyntax, ExplicitLittleEndian)
{
    PixelData pixels;
    EXPECT_EQ(samplesOf("int16.dcm", pixels), (std::vector<int>{0, 1000, 1005, 4000}));
    EXPECT_EQ(pixels.valueSlope, 1.0);
    EXPECT_EQ(pixels.valueIntercept, -1000.0 - 1024.0);
    EXPECT_EQ(pixels.valueUnit, "HU");
    EXPECT_EQ(pixels.spacing[0], 0.75f);
    EXPECT_EQ(pixels.spacing[1], 0.5f);
}

TEST(DICOMSyntax, ImplicitLittleEndian)
{
    PixelData pixels;
    EXPECT_EQ(samplesOf("implicit.dcm", pixels), (std::vector<int>{0, 1, 2, 4095}));
    EXPECT_EQ(pixels.valueIntercept, -1024.0);
}

TEST(DICOMSyntax, ExplicitBigEndian)
{
    PixelData pixels;
    EXPECT_EQ(samplesOf("big.dcm", pixels), (std::vector<int>{0, 5, 10, 35}));
    EXPECT_EQ(pixels.valueIntercept, -5.0 - 1024.0);
}

TEST(DICOMSyntax, RunLengths)
{
    PixelData pixels;
    EXPECT_EQ(samplesOf("rle.dcm", pixels), (std::vector<int>{7, 7, 7, 7, 1, 2, 3, 4}));
}

TEST(DICOMSyntax, FramesOfOneFileThatAreTurnedOver)
{
    PixelData pixels;
    std::string error;
    ASSERT_TRUE(readDICOM(std::string(DICOM_CORPUS) + "/frames.dcm", pixels, error)) << error;
    EXPECT_EQ(pixels.depth, 3);
    EXPECT_EQ(pixels.data, (std::vector<std::uint8_t>{11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0}));
    EXPECT_EQ(pixels.valueSlope, -1.0);
    EXPECT_EQ(pixels.valueIntercept, -1024.0 + 11.0);
}

} // namespace
