#include <OpenSG/OSGNIFTICodec.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

#include "VolumeFiles.h"

using namespace osg;

namespace
{

PixelData decoded(const Bytes &file)
{
    PixelData out;
    std::string error;
    EXPECT_TRUE(decodeNIFTI(file.data(), file.size(), "scan.nii", out, error)) << error;
    return out;
}

std::string refusal(const Bytes &file, std::uint64_t maxBytes = DefaultMaxPixelBytes)
{
    PixelData out;
    std::string error;
    EXPECT_FALSE(decodeNIFTI(file.data(), file.size(), "scan.nii", out, error, maxBytes));
    EXPECT_TRUE(out.data.empty());
    EXPECT_EQ(error.find('\n'), std::string::npos);
    return error;
}

Bytes smallFile()
{
    return niftiFile({3, 2, 2}, 2, 8, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
}

template <class T>
PixelData decodedVoxels(std::int16_t dataType, const std::vector<T> &values, bool swapped = false)
{
    return decoded(niftiFile({static_cast<std::int16_t>(values.size()), 1, 1}, dataType, 8 * sizeof(T),
                             asBytes(values, swapped), swapped));
}

using Words = std::vector<std::uint16_t>;
using Lines = std::vector<std::string>;

} // namespace

TEST(NIFTICodec, BytesComeAsTheyAreWithTheirSpacing)
{
    const PixelData out = decoded(smallFile());
    EXPECT_EQ(out.width, 3);
    EXPECT_EQ(out.height, 2);
    EXPECT_EQ(out.depth, 2);
    EXPECT_EQ(out.pixelFormat, 6409u);
    EXPECT_EQ(out.dataType, 5121u);
    EXPECT_EQ(out.data, (Bytes{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
    EXPECT_TRUE(out.hasSpacing);
    EXPECT_EQ(out.spacing[0], 0.5f);
    EXPECT_EQ(out.spacing[1], 0.75f);
    EXPECT_EQ(out.spacing[2], 2.f);
    EXPECT_TRUE(out.notices.empty());
}

TEST(NIFTICodec, APackedFileReadsAsThePlainOne)
{
    EXPECT_EQ(decoded(gzipped(smallFile())).data, decoded(smallFile()).data);
}

TEST(NIFTICodec, AFilePackedInTwoMembersReadsAsOne)
{
    const Bytes whole = smallFile();
    Bytes file = gzipped(Bytes(whole.begin(), whole.begin() + 200));
    const Bytes second = gzipped(Bytes(whole.begin() + 200, whole.end()));
    file.insert(file.end(), second.begin(), second.end());
    EXPECT_EQ(decoded(file).data, decoded(whole).data);
}

TEST(NIFTICodec, WordsOfEitherByteOrderComeAsTheyAre)
{
    for(const bool swapped : {false, true})
    {
        const PixelData out = decodedVoxels<std::uint16_t>(512, {0x1234, 65535, 0}, swapped);
        EXPECT_EQ(out.dataType, 5123u);
        EXPECT_EQ(fromBytes<std::uint16_t>(out.data), (Words{0x1234, 65535, 0}));
        EXPECT_EQ(out.spacing[1], 0.75f);
        EXPECT_TRUE(out.notices.empty());
    }
}

TEST(NIFTICodec, SignedWordsLoseTheirNegativeMinimum)
{
    const PixelData out = decodedVoxels<std::int16_t>(4, {-1024, 0, 3071}, true);
    EXPECT_EQ(fromBytes<std::uint16_t>(out.data), (Words{0, 1024, 4095}));
    EXPECT_EQ(out.notices,
              (Lines{"scan.nii: int16 voxels in [-1024, 3071], less their minimum, brought to 16 bits"}));
}

TEST(NIFTICodec, TheWidestSignedWordsFitSixteenBits)
{
    const PixelData out = decodedVoxels<std::int16_t>(4, {-32768, 32767});
    EXPECT_EQ(fromBytes<std::uint16_t>(out.data), (Words{0, 65535}));
}

TEST(NIFTICodec, IntegersThatFitAByteBecomeBytes)
{
    const PixelData out = decodedVoxels<std::int32_t>(8, {0, 200, 255});
    EXPECT_EQ(out.dataType, 5121u);
    EXPECT_EQ(out.data, (Bytes{0, 200, 255}));
    EXPECT_EQ(out.notices, (Lines{"scan.nii: int32 voxels in [0, 255] brought to 8 bits"}));

    const PixelData small = decodedVoxels<std::int8_t>(256, {-128, 127});
    EXPECT_EQ(small.data, (Bytes{0, 255}));
    EXPECT_EQ(small.notices,
              (Lines{"scan.nii: int8 voxels in [-128, 127], less their minimum, brought to 8 bits"}));
}

TEST(NIFTICodec, WideIntegersAreScaledToSixteenBits)
{
    const PixelData out = decodedVoxels<std::uint32_t>(768, {0, 131070, 4});
    EXPECT_EQ(fromBytes<std::uint16_t>(out.data), (Words{0, 65535, 2}));
    EXPECT_EQ(out.notices, (Lines{"scan.nii: uint32 voxels in [0, 131070] scaled to 16 bits"}));
}

TEST(NIFTICodec, TheExtremesOfSixtyFourBitsAreScaledWithoutOverflow)
{
    using Limits = std::numeric_limits<std::int64_t>;
    EXPECT_EQ(
        fromBytes<std::uint16_t>(decodedVoxels<std::int64_t>(1024, {Limits::min(), 0, Limits::max()}).data),
        (Words{0, 32768, 65535}));
    EXPECT_EQ(fromBytes<std::uint16_t>(
                  decodedVoxels<std::uint64_t>(1280, {0, std::numeric_limits<std::uint64_t>::max()}).data),
              (Words{0, 65535}));
}

TEST(NIFTICodec, FloatsAreScaledFromTheirRangeToSixteenBits)
{
    const PixelData out = decodedVoxels<float>(16, {-1.5f, 37.25f, 17.875f});
    EXPECT_EQ(out.dataType, 5123u);
    EXPECT_EQ(fromBytes<std::uint16_t>(out.data), (Words{0, 65535, 32768}));
    EXPECT_EQ(out.notices, (Lines{"scan.nii: float32 voxels in [-1.5, 37.25] scaled to 16 bits"}));
}

TEST(NIFTICodec, FloatsThatAreNotFiniteStandAtTheEnds)
{
    const float infinity = std::numeric_limits<float>::infinity();
    const PixelData out = decodedVoxels<float>(16, {NAN, infinity, -infinity, 1.f, 2.f});
    EXPECT_EQ(fromBytes<std::uint16_t>(out.data), (Words{0, 65535, 0, 0, 65535}));
    EXPECT_EQ(out.notices, (Lines{"scan.nii: float32 voxels in [1, 2] scaled to 16 bits, 3 not finite"}));
}

TEST(NIFTICodec, TheWidestDoublesAreScaledWithoutOverflow)
{
    const double most = std::numeric_limits<double>::max();
    EXPECT_EQ(fromBytes<std::uint16_t>(decodedVoxels<double>(64, {-most, most, 0.0}).data),
              (Words{0, 65535, 32768}));
    EXPECT_EQ(fromBytes<std::uint16_t>(decodedVoxels<double>(64, {3.0, 3.0}).data), (Words{0, 0}));
}

TEST(NIFTICodec, SlopeAndInterceptApplyWhereTheyChangeSomething)
{
    Bytes file = niftiFile({3, 1, 1}, 2, 8, {0, 50, 100});
    put<float>(file, 112, 2.f);
    put<float>(file, 116, -10.f);
    const PixelData out = decoded(file);
    EXPECT_EQ(fromBytes<std::uint16_t>(out.data), (Words{0, 32768, 65535}));
    EXPECT_EQ(
        out.notices,
        (Lines{"scan.nii: uint8 voxels with slope 2 and intercept -10 in [-10, 190] scaled to 16 bits"}));

    // What a sample stands for: the range of the values over 65535 steps.
    EXPECT_TRUE(out.hasValues);
    EXPECT_EQ(out.valueSlope, 190.0 / 65535.0 + 10.0 / 65535.0);
    EXPECT_EQ(out.valueIntercept, -10.0);
    EXPECT_EQ(out.valueUnit, "");

    put<float>(file, 112, 1.f);
    put<float>(file, 116, 0.f);
    EXPECT_EQ(decoded(file).data, (Bytes{0, 50, 100}));
    EXPECT_EQ(decoded(file).valueSlope, 1.0);
    EXPECT_EQ(decoded(file).valueIntercept, 0.0);
    put<float>(file, 112, 0.f);
    put<float>(file, 116, 7.f);
    EXPECT_EQ(decoded(file).data, (Bytes{0, 50, 100}));
}

TEST(NIFTICodec, WhatSamplesStandForIsToldOfEveryConversion)
{
    PixelData out = decodedVoxels<std::int16_t>(4, {-1000, 3000});
    EXPECT_TRUE(out.hasValues);
    EXPECT_EQ(out.valueSlope, 1.0);
    EXPECT_EQ(out.valueIntercept, -1000.0);
    out = decodedVoxels<std::int32_t>(8, {-70000, 70000});
    EXPECT_EQ(out.valueIntercept, -70000.0);
    EXPECT_NEAR(out.valueSlope * 65535 + out.valueIntercept, 70000.0, 1e-9);
    // A constant volume becomes 0; its slope can still be divided by.
    out = decodedVoxels<float>(16, {2.5f, 2.5f});
    EXPECT_EQ(out.valueSlope, 1.0);
    EXPECT_EQ(out.valueIntercept, 2.5);
    out = decodedVoxels<double>(64, {-1.5e308, 1.5e308});
    EXPECT_TRUE(std::isfinite(out.valueSlope));
    EXPECT_FALSE(decoded(niftiFile({1, 2, 1}, 128, 24, {1, 2, 3, 4, 5, 6})).hasValues);
}

TEST(NIFTICodec, ColoursComeAsRGBAndRGBA)
{
    const PixelData rgb = decoded(niftiFile({1, 2, 1}, 128, 24, {1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(rgb.pixelFormat, 6407u);
    EXPECT_EQ(rgb.data, (Bytes{1, 2, 3, 4, 5, 6}));
    const PixelData rgba = decoded(niftiFile({1, 1, 1}, 2304, 32, {1, 2, 3, 4}));
    EXPECT_EQ(rgba.pixelFormat, 6408u);
}

TEST(NIFTICodec, TheFirstOfSeveralFramesIsTakenWithANotice)
{
    const Bytes file = niftiFile({2, 1, 1, 3}, 2, 8, {1, 2, 3, 4, 5, 6});
    for(const Bytes &kind : {file, gzipped(file)})
    {
        const PixelData out = decoded(kind);
        EXPECT_EQ(out.data, (Bytes{1, 2}));
        EXPECT_EQ(out.notices, (Lines{"scan.nii: the first of 3 frames is taken"}));
    }
}

TEST(NIFTICodec, ASpacingOfZeroOrNaNCountsAsOne)
{
    Bytes file = smallFile();
    put<float>(file, 80, 0.f);
    put<float>(file, 84, NAN);
    put<float>(file, 88, -3.f);
    const PixelData out = decoded(file);
    EXPECT_EQ(out.spacing[0], 1.f);
    EXPECT_EQ(out.spacing[1], 1.f);
    EXPECT_EQ(out.spacing[2], 3.f);
}

TEST(NIFTICodec, EachFaultOfTheHeaderIsNamedWithItsByte)
{
    const auto with16 = [](std::size_t at, std::int16_t value) {
        Bytes file = smallFile();
        put<std::int16_t>(file, at, value);
        return refusal(file);
    };
    EXPECT_EQ(with16(40, 9), "scan.nii: byte 40: 9 dimensions, not 1 to 7");
    EXPECT_EQ(with16(42, -3), "scan.nii: byte 42: dimension 1 is -3");
    EXPECT_EQ(with16(46, 0), "scan.nii: byte 46: dimension 3 is 0");
    EXPECT_EQ(with16(70, 32), "scan.nii: byte 70: data type 32 is not read");
    EXPECT_EQ(with16(72, 16), "scan.nii: byte 72: 16 bits a voxel, data type 2 has 8");
    EXPECT_EQ(with16(0, 540), "scan.nii: byte 0: no NIfTI-1 header");

    Bytes file = smallFile();
    file[344] = 'x';
    EXPECT_EQ(refusal(file), "scan.nii: byte 344: no NIfTI-1 signature");
    std::memcpy(file.data() + 344, "ni1", 4);
    EXPECT_EQ(refusal(file), "scan.nii: byte 344: voxels in a file of their own are not read");
    file = smallFile();
    put<float>(file, 108, 100.f);
    EXPECT_EQ(refusal(file), "scan.nii: byte 108: the voxels can't start at byte 100.000000");
}

TEST(NIFTICodec, DimensionsBeyondTheFileAreRefusedBeforeMemoryIsAskedFor)
{
    const Bytes file = niftiFile({32767, 32767, 32767}, 64, 64, {1, 2, 3});
    EXPECT_EQ(refusal(file),
              "scan.nii: byte 355: the file ends here, but 32767 x 32767 x 32767 voxels of 8 bytes in 1 "
              "frames start at byte 352");
    EXPECT_EQ(refusal(gzipped(file)),
              "scan.nii: byte 355: the file ends here, but 32767 x 32767 x 32767 voxels of 8 "
              "bytes in 1 frames start at byte 352");
    const Bytes frames = niftiFile({1, 1, 1, 32767, 32767, 32767, 32767}, 2, 8, {1});
    EXPECT_EQ(refusal(frames).rfind("scan.nii: byte 353: the file ends here", 0), 0u);
}

TEST(NIFTICodec, AFileThatUnpacksPastTheLimitIsRefused)
{
    Bytes file = smallFile();
    file.resize(1 << 20);
    EXPECT_NE(refusal(gzipped(file), 100000).find("unpacks to more than the limit of 100000 bytes"),
              std::string::npos);
}

TEST(NIFTICodec, EveryTruncationIsRefused)
{
    for(const Bytes &file : {smallFile(), gzipped(smallFile())})
        for(std::size_t length = 0; length < file.size(); ++length)
        {
            const std::string error =
                refusal(Bytes(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(length)));
            EXPECT_EQ(error.rfind("scan.nii: ", 0), 0u) << error;
            EXPECT_NE(error.find("byte "), std::string::npos) << error;
        }
}

TEST(NIFTICodec, FlippedBytesGiveAVolumeOfTheHeadersSizeOrOneLine)
{
    const unsigned seed = 17;
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    int refused = 0;
    for(int i = 0; i < 6000; ++i)
    {
        Bytes file = i % 2 ? smallFile() : gzipped(smallFile());
        for(int flips = 0; flips < 4; ++flips)
            file[random() % (i % 4 == 1 ? 120 : file.size())] = static_cast<std::uint8_t>(random());
        PixelData out;
        std::string error;
        if(decodeNIFTI(file.data(), file.size(), "scan.nii", out, error, 1 << 20))
            EXPECT_EQ(out.data.size(), std::size_t(out.width) * std::size_t(out.height) *
                                           std::size_t(out.depth) * pixelChannels(out.pixelFormat) *
                                           (out.dataType == 5123u ? 2u : 1u));
        else
            ++refused;
        EXPECT_EQ(error.find('\n'), std::string::npos);
    }
    EXPECT_GT(refused, 2000);
}

TEST(NIFTICodec, SidesBehindTheLastDimensionMeanNothing)
{
    Bytes file = niftiFile({2, 1}, 2, 8, {1, 2});
    for(std::size_t at = 46; at < 56; at += 2)
        put<std::int16_t>(file, at, at == 48 ? -5 : 0);
    const PixelData out = decoded(file);
    EXPECT_EQ(out.depth, 1);
    EXPECT_EQ(out.data, (Bytes{1, 2}));
    EXPECT_TRUE(out.notices.empty());
}
