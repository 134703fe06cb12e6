/// \file
/// One file of each way in which DICOM lays bytes out; those of the fuzz target's corpus, which a script writes.

#include <OSGDICOMCodec.h>
#include <OSGDICOMRunLengths.h>
#include <OSGJPEGCodec.h>

#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <iterator>
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

/// Fragments as they lie in a file: an empty offset table, and one for each frame.
std::vector<std::uint8_t> itemsOf(const std::vector<std::vector<std::uint8_t>> &frames)
{
    std::vector<std::uint8_t> bytes;
    const auto add = [&](const std::vector<std::uint8_t> &item) {
        bytes.insert(bytes.end(), {0xfe, 0xff, 0x00, 0xe0, std::uint8_t(item.size()), std::uint8_t(item.size() >> 8), 0, 0});
        bytes.insert(bytes.end(), item.begin(), item.end());
    };
    add({});
    for(const std::vector<std::uint8_t> &frame : frames)
        add(frame);
    return bytes;
}

/// A frame of those segments, each at its place behind the head.
std::vector<std::uint8_t> frameOf(const std::vector<std::vector<std::uint8_t>> &segments)
{
    std::vector<std::uint8_t> frame(64, 0);
    frame[0] = std::uint8_t(segments.size());
    for(std::size_t i = 0; i < segments.size(); ++i)
    {
        frame[4 * (i + 1)] = std::uint8_t(frame.size());
        frame.insert(frame.end(), segments[i].begin(), segments[i].end());
    }
    return frame;
}

TEST(DICOMSyntax, JPEG)
{
    PixelData pixels;
    const std::vector<int> samples = samplesOf("jpeg.dcm", pixels);
    EXPECT_EQ(pixels.width, 9);
    EXPECT_EQ(pixels.height, 5);
    // The picture inside of it, by the reader of such pictures.
    std::ifstream in(std::string(DICOM_CORPUS) + "/../jpeg/grey.jpg", std::ios::binary);
    const std::vector<std::uint8_t> bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    PixelData inside;
    std::string error;
    ASSERT_TRUE(decodeJPEG(bytes.data(), bytes.size(), "grey", inside, error)) << error;
    for(std::size_t i = 0; i < samples.size(); ++i)
    {
        const std::size_t row = std::size_t(inside.height) - 1 - i / 9;
        EXPECT_NEAR(samples[i], inside.data[row * 9 + i % 9], 2) << i; // two decoders round by themselves
    }
}

TEST(DICOMSyntax, PixelsThatGDCMAssertsAgainstAreOneLineAndTheProcessGoesOn)
{
    std::ifstream in(std::string(DICOM_CORPUS) + "/jpeg.dcm", std::ios::binary);
    const std::vector<std::uint8_t> whole{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    // Behind the heads: the picture's own markers, each byte turned over.
    int refused = 0;
    for(std::size_t i = whole.size() - 380; i < whole.size() - 200; i += 3)
    {
        std::vector<std::uint8_t> changed = whole;
        changed[i] = std::uint8_t(~changed[i]);
        PixelData pixels;
        std::string error;
        if(decodeDICOM(changed.data(), changed.size(), "changed", pixels, error))
            continue;
        ++refused;
        EXPECT_EQ(error.rfind("changed: ", 0), 0u) << error;
        EXPECT_EQ(error.find('\n'), std::string::npos) << error;
    }
    EXPECT_GT(refused, 0);
}

TEST(DICOMRunLengths, LiteralsRepeatsAndNothingsOfBothPlanesOfTwoFrames)
{
    // High bytes 1 1 1 2, low bytes 5 6 7 7; then all 0x0304.
    const std::vector<std::uint8_t> items =
        itemsOf({frameOf({{0xfe, 1, 0x80, 0x00, 2}, {0x01, 5, 6, 0xff, 7}}), frameOf({{0xfd, 3}, {0xfd, 4}})});
    std::vector<std::uint16_t> samples(8, 0);
    std::string fault;
    ASSERT_TRUE(dicom::unpackRunLengths(items.data(), items.size(), 2, 4, 2,
                                        reinterpret_cast<std::uint8_t *>(samples.data()), fault))
        << fault;
    EXPECT_EQ(samples, (std::vector<std::uint16_t>{0x105, 0x106, 0x107, 0x207, 0x304, 0x304, 0x304, 0x304}));
}

TEST(DICOMRunLengths, WhatEndsEarlyOrPointsAstrayIsNoPicture)
{
    const std::vector<std::uint8_t> whole = itemsOf({frameOf({{0x03, 1, 2, 3, 4}})});
    std::uint8_t samples[4];
    std::string fault;
    ASSERT_TRUE(dicom::unpackRunLengths(whole.data(), whole.size(), 1, 4, 1, samples, fault));
    for(std::size_t size = 0; size < whole.size(); ++size)
    {
        const std::vector<std::uint8_t> cut(whole.begin(), whole.begin() + std::ptrdiff_t(size));
        EXPECT_FALSE(dicom::unpackRunLengths(cut.data(), cut.size(), 1, 4, 1, samples, fault)) << size;
        EXPECT_EQ(fault, "the run lengths of frame 1 make no picture");
    }
    EXPECT_FALSE(dicom::unpackRunLengths(whole.data(), whole.size(), 2, 4, 1, samples, fault)) << "one frame only";
    EXPECT_EQ(fault, "the run lengths of frame 2 make no picture");
    EXPECT_FALSE(dicom::unpackRunLengths(whole.data(), whole.size(), 1, 5, 1, samples, fault)) << "four pixels only";
    EXPECT_FALSE(dicom::unpackRunLengths(whole.data(), whole.size(), 1, 2, 2, samples, fault)) << "one plane only";
    for(const std::uint8_t place : {0, 63, 200, 255})
    {
        std::vector<std::uint8_t> astray = whole;
        astray[16 + 4] = place;
        EXPECT_FALSE(dicom::unpackRunLengths(astray.data(), astray.size(), 1, 4, 1, samples, fault)) << int(place);
    }
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
