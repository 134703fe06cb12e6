#include <OpenSG/OSGDATCodec.h>

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <random>

#include "VolumeFiles.h"

using namespace osg;

namespace
{

std::string parseRefusal(const std::string &text)
{
    DATHeader header;
    std::string error;
    EXPECT_FALSE(
        parseDAT(reinterpret_cast<const std::uint8_t *>(text.data()), text.size(), "v.dat", header, error));
    EXPECT_EQ(error.find('\n'), std::string::npos);
    return error;
}

DATHeader parsed(const std::string &text)
{
    DATHeader header;
    std::string error;
    EXPECT_TRUE(
        parseDAT(reinterpret_cast<const std::uint8_t *>(text.data()), text.size(), "v.dat", header, error))
        << error;
    return header;
}

class DATFile : public ::testing::Test
{
  protected:
    DATFile()
    {
        char name[] = "/tmp/datfileXXXXXX";
        folder = ::mkdtemp(name);
    }
    ~DATFile() override
    {
        for(const char *name : {"/v.dat", "/v.raw"})
            std::remove((folder + name).c_str());
        ::rmdir(folder.c_str());
    }
    void write(const std::string &name, const Bytes &bytes) const
    {
        std::ofstream out(folder + name, std::ios::binary);
        out.write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    }

    std::string folder;
};

const char *const smallText = "ObjectFileName: v.raw\nResolution: 2 3 4\n";

} // namespace

TEST(DATCodec, TheTextIsReadKeyByKey)
{
    const DATHeader header =
        parsed("ObjectFileName:\thead scan.raw\r\nTaggedFileName: ---\r\nResolution: 256 128 109\r\n"
               "SliceThickness: 1 0.5 1.5e0\r\nFormat: USHORT\r\nNbrTags: 0\r\n"
               "ObjectType: TEXTURE_VOLUME_OBJECT\r\nObjectModel: RGBA\r\n\r\nEndian: BIG");
    EXPECT_EQ(header.rawName, "head scan.raw");
    EXPECT_EQ(header.size[0], 256);
    EXPECT_EQ(header.size[1], 128);
    EXPECT_EQ(header.size[2], 109);
    EXPECT_TRUE(header.hasSpacing);
    EXPECT_EQ(header.spacing[1], 0.5f);
    EXPECT_EQ(header.spacing[2], 1.5f);
    EXPECT_EQ(header.sample, SampleType::UInt16);
    EXPECT_EQ(header.pixelFormat, 6408u);
    EXPECT_TRUE(header.bigEndian);
}

TEST(DATCodec, EachFaultIsNamedWithItsLine)
{
    EXPECT_EQ(parseRefusal(""), "v.dat: no ObjectFileName up to the end");
    EXPECT_EQ(parseRefusal("ObjectFileName: v.raw\n"), "v.dat: no Resolution up to the end");
    EXPECT_EQ(parseRefusal("\n\nhello\n"), "v.dat: line 3: no key with a colon: \"hello\"");
    EXPECT_EQ(parseRefusal("Resolution: 1 2\n"),
              "v.dat: line 1: no resolution of three numbers from 1 to 65536: \"1 2\"");
    EXPECT_EQ(parseRefusal("Resolution: 1 -2 3\n"),
              "v.dat: line 1: no resolution of three numbers from 1 to 65536: \"1 -2 3\"");
    EXPECT_EQ(parseRefusal("Resolution: 1 2 99999999999999999999\n"),
              "v.dat: line 1: no resolution of three numbers from 1 to 65536: \"1 2 99999999999999999999\"");
    EXPECT_EQ(parseRefusal("SliceThickness: 1 0 1\n"),
              "v.dat: line 1: no thickness of three numbers over 0: \"1 0 1\"");
    EXPECT_EQ(parseRefusal("Format: NIBBLE\n"), "v.dat: line 1: unknown format \"NIBBLE\"");
    EXPECT_EQ(parseRefusal("ObjectModel: CMYK\n"), "v.dat: line 1: unknown object model \"CMYK\"");
    EXPECT_EQ(parseRefusal("Endian: MIDDLE\n"), "v.dat: line 1: unknown byte order \"MIDDLE\"");
    EXPECT_EQ(parseRefusal("ObjectFileName:\n"), "v.dat: line 1: no file name \"\"");
    EXPECT_EQ(parseRefusal(std::string(65537, 'a')), "v.dat: 65537 bytes are no description of a volume");
}

TEST_F(DATFile, TheVoxelsAreReadFromBesideTheText)
{
    Bytes voxels(24);
    for(std::size_t i = 0; i < 24; ++i)
        voxels[i] = static_cast<std::uint8_t>(i * 10);
    write("/v.dat", textBytes(smallText));
    write("/v.raw", voxels);
    PixelData out;
    std::string error;
    ASSERT_TRUE(readDATFile(folder + "/v.dat", out, error)) << error;
    EXPECT_EQ(out.width, 2);
    EXPECT_EQ(out.height, 3);
    EXPECT_EQ(out.depth, 4);
    EXPECT_EQ(out.data, voxels);
    EXPECT_FALSE(out.hasSpacing);
    EXPECT_TRUE(out.notices.empty());
}

TEST_F(DATFile, ARawFileThatIsTooShortIsRefused)
{
    write("/v.dat", textBytes(smallText));
    for(std::size_t length = 0; length < 24; ++length)
    {
        write("/v.raw", Bytes(length));
        PixelData out;
        std::string error;
        EXPECT_FALSE(readDATFile(folder + "/v.dat", out, error));
        EXPECT_EQ(error, folder + "/v.raw: byte " + std::to_string(length) +
                             ": the file ends here, but 2 x 3 x 4 voxels take 24 bytes");
    }
}

TEST_F(DATFile, BytesThatAreLeftOverGetANotice)
{
    write("/v.dat", textBytes(smallText));
    write("/v.raw", Bytes(30));
    PixelData out;
    std::string error;
    ASSERT_TRUE(readDATFile(folder + "/v.dat", out, error)) << error;
    EXPECT_EQ(out.notices, (std::vector<std::string>{folder + "/v.raw: the last 6 bytes are left over"}));
}

TEST_F(DATFile, AnRGBAModelWithBytesForOneChannelIsOneChannel)
{
    write("/v.dat", textBytes(std::string(smallText) + "ObjectModel: RGBA\n"));
    write("/v.raw", Bytes(24));
    PixelData out;
    std::string error;
    ASSERT_TRUE(readDATFile(folder + "/v.dat", out, error)) << error;
    EXPECT_EQ(out.pixelFormat, 6409u);
    EXPECT_EQ(out.notices, (std::vector<std::string>{folder + "/v.raw: holds one channel, not 4"}));
}

TEST_F(DATFile, FilesThatAreMissingAreNamed)
{
    PixelData out;
    std::string error;
    EXPECT_FALSE(readDATFile(folder + "/v.dat", out, error));
    EXPECT_EQ(error, folder + "/v.dat: can't be opened: No such file or directory");
    write("/v.dat", textBytes(smallText));
    EXPECT_FALSE(readDATFile(folder + "/v.dat", out, error));
    EXPECT_EQ(error, folder + "/v.raw: can't be opened: No such file or directory");
}

TEST_F(DATFile, VoxelsAreNotReadFromADevice)
{
    write("/v.dat", textBytes("ObjectFileName: /dev/zero\nResolution: 2 3 4\n"));
    PixelData out;
    std::string error;
    EXPECT_FALSE(readDATFile(folder + "/v.dat", out, error));
    EXPECT_EQ(error, "/dev/zero: is no regular file");
}

TEST_F(DATFile, WhatIsWrittenReadsBack)
{
    const std::vector<std::uint16_t> voxels = {1, 2, 3, 4, 5, 65535, 7, 8};
    PixelView in;
    in.width = in.height = in.depth = 2;
    in.dataType = 5123;
    in.spacing[2] = 2.5f;
    in.data = reinterpret_cast<const std::uint8_t *>(voxels.data());
    std::string error;
    ASSERT_TRUE(writeDATFile(folder + "/v.dat", in, error)) << error;
    PixelData out;
    ASSERT_TRUE(readDATFile(folder + "/v.dat", out, error)) << error;
    EXPECT_EQ(out.dataType, 5123u);
    EXPECT_EQ(fromBytes<std::uint16_t>(out.data), voxels);
    EXPECT_EQ(out.spacing[0], 1.f);
    EXPECT_EQ(out.spacing[2], 2.5f);
}

TEST(DATCodec, BigEndianFloatsAreScaledToSixteenBits)
{
    DATHeader header;
    header.size[0] = 3;
    header.size[1] = header.size[2] = 1;
    header.sample = SampleType::Float32;
    header.bigEndian = true;
    const Bytes raw = asBytes<float>({0.f, 1.f, 0.5f}, true);
    PixelData out;
    std::string error;
    ASSERT_TRUE(decodeDAT(header, raw.data(), raw.size(), "v.raw", out, error)) << error;
    EXPECT_EQ(fromBytes<std::uint16_t>(out.data), (std::vector<std::uint16_t>{0, 65535, 32768}));
    EXPECT_EQ(out.notices, (std::vector<std::string>{"v.raw: float32 voxels in [0, 1] scaled to 16 bits"}));
}

TEST(DATCodec, FlippedBytesOfTheTextGiveASaneHeaderOrOneLine)
{
    const unsigned seed = 23;
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    int refused = 0;
    for(int i = 0; i < 5000; ++i)
    {
        std::string text = std::string(smallText) + "SliceThickness: 1 1 1\nFormat: FLOAT\n";
        for(int flips = 0; flips < 2; ++flips)
            text[random() % text.size()] = static_cast<char>(random());
        DATHeader header;
        std::string error;
        if(parseDAT(reinterpret_cast<const std::uint8_t *>(text.data()), text.size(), "v.dat", header, error))
        {
            for(const int side : header.size)
                EXPECT_TRUE(side >= 1 && side <= 65536);
        }
        else
        {
            ++refused;
            EXPECT_EQ(error.rfind("v.dat: ", 0), 0u);
            EXPECT_EQ(error.find('\n'), std::string::npos);
        }
    }
    EXPECT_GT(refused, 500);
}
