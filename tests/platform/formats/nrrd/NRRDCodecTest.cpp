#include <OSGNRRDCodec.h>

#include <gtest/gtest.h>
#include <stdlib.h>
#include <zlib.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <thread>

#include "platform/formats/DamagedFiles.h"

using namespace osg;

namespace
{

class NRRDCodec : public ::testing::Test
{
  protected:
    NRRDCodec()
    {
        char pattern[] = "/tmp/nrrdXXXXXX";
        folder = mkdtemp(pattern);
    }
    ~NRRDCodec() override { std::filesystem::remove_all(folder); }

    void put(const std::string &name, const Bytes &bytes) const
    {
        std::ofstream out(folder + "/" + name, std::ios::binary);
        out.write(reinterpret_cast<const char *>(bytes.data()), std::streamsize(bytes.size()));
    }

    std::string folder;
};

/// A file whose header has the given lines; its voxels follow.
Bytes nrrdFile(const std::string &lines, const Bytes &voxels = {})
{
    const std::string text = "NRRD0004\n" + lines + "\n";
    Bytes file(text.begin(), text.end());
    file.insert(file.end(), voxels.begin(), voxels.end());
    return file;
}

std::string header(const std::string &type, const std::string &sizes,
                   const std::string &more = "encoding: raw\n")
{
    const auto axes = 1 + std::count(sizes.begin(), sizes.end(), ' ');
    return "type: " + type + "\ndimension: " + std::to_string(axes) + "\nsizes: " + sizes +
           "\nendian: little\n" + more;
}

template <class T>
Bytes asBytes(const std::vector<T> &values, bool swapped = false)
{
    Bytes bytes;
    for(T value : values)
    {
        std::uint8_t raw[sizeof(T)];
        std::memcpy(raw, &value, sizeof(T));
        for(std::size_t i = 0; i < sizeof(T); ++i)
            bytes.push_back(raw[swapped ? sizeof(T) - 1 - i : i]);
    }
    return bytes;
}

std::vector<std::uint16_t> words(const PixelData &out)
{
    std::vector<std::uint16_t> values(out.data.size() / 2);
    std::memcpy(values.data(), out.data.data(), values.size() * 2);
    return values;
}

PixelData decoded(const Bytes &file, const std::string *folder = nullptr)
{
    PixelData out;
    std::string error;
    EXPECT_TRUE(decodeNRRD(file.data(), file.size(), folder, "a.nrrd", out, error)) << error;
    return out;
}

std::string refusal(const Bytes &file, const std::string *folder = nullptr,
                    std::uint64_t maxBytes = DefaultMaxPixelBytes)
{
    PixelData out;
    std::string error;
    EXPECT_FALSE(decodeNRRD(file.data(), file.size(), folder, "a.nrrd", out, error, maxBytes));
    EXPECT_TRUE(out.data.empty());
    EXPECT_EQ(error.find('\n'), std::string::npos);
    return error;
}

bool decode(const std::uint8_t *bytes, std::size_t size, PixelData &out, std::string &error)
{
    return decodeNRRD(bytes, size, nullptr, "a.nrrd", out, error, 1 << 24);
}

const Bytes Eight = {1, 2, 3, 4, 5, 6, 7, 8};

Bytes gzipped(const Bytes &bytes)
{
    z_stream stream = {};
    deflateInit2(&stream, 9, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY);
    Bytes out(bytes.size() + 200);
    stream.next_in = const_cast<Bytef *>(bytes.data());
    stream.avail_in = static_cast<uInt>(bytes.size());
    stream.next_out = out.data();
    stream.avail_out = static_cast<uInt>(out.size());
    deflate(&stream, Z_FINISH);
    out.resize(stream.total_out);
    deflateEnd(&stream);
    return out;
}

} // namespace

TEST_F(NRRDCodec, VoxelsStayInTheirOrder)
{
    const PixelData out = decoded(nrrdFile(header("uchar", "2 2 2"), Eight));
    EXPECT_EQ(out.width, 2);
    EXPECT_EQ(out.height, 2);
    EXPECT_EQ(out.depth, 2);
    EXPECT_EQ(out.pixelFormat, 6409u);
    EXPECT_EQ(out.data, Eight);
    EXPECT_FALSE(out.hasSpacing);
    EXPECT_TRUE(out.hasValues);
}

TEST_F(NRRDCodec, TwoAxesAreAPictureWhoseBottomRowIsTheFirstInMemory)
{
    const PixelData out = decoded(nrrdFile(header("uchar", "2 4"), Eight));
    EXPECT_EQ(out.depth, 1);
    EXPECT_EQ(out.data, (Bytes{7, 8, 5, 6, 3, 4, 1, 2}));
}

TEST_F(NRRDCodec, EveryEncodingReadsAsThePlainFile)
{
    EXPECT_EQ(decoded(nrrdFile(header("uchar", "2 2 2", "encoding: gzip\n"), gzipped(Eight))).data, Eight);
    const std::string ascii = "1 2 3 4 5 6\n7 8\n", hex = "0102030405060708\n";
    EXPECT_EQ(
        decoded(nrrdFile(header("uchar", "2 2 2", "encoding: ascii\n"), Bytes(ascii.begin(), ascii.end())))
            .data,
        Eight);
    EXPECT_EQ(
        decoded(nrrdFile(header("uchar", "2 2 2", "encoding: hex\n"), Bytes(hex.begin(), hex.end()))).data,
        Eight);
}

TEST_F(NRRDCodec, Bzip2IsReadOrRefusedInOneLine)
{
    const Bytes packed = {0x42, 0x5a, 0x68, 0x39, 0x31, 0x41, 0x59, 0x26, 0x53, 0x59, 0xeb,
                          0xf4, 0x72, 0x27, 0x00, 0x00, 0x00, 0x40, 0x00, 0x3f, 0xc0, 0x20,
                          0x00, 0x31, 0x0c, 0x08, 0x19, 0x1a, 0x69, 0x93, 0x35, 0x73, 0xf9,
                          0x45, 0xdc, 0x91, 0x4e, 0x14, 0x24, 0x3a, 0xfd, 0x1c, 0x89, 0xc0};
    const Bytes file = nrrdFile(header("uchar", "2 2 2", "encoding: bzip2\n"), packed);
    PixelData out;
    std::string error;
    if(decodeNRRD(file.data(), file.size(), nullptr, "a.nrrd", out, error))
        EXPECT_EQ(out.data, Eight);
    else
        EXPECT_NE(error.find("bzip2"), std::string::npos) << error;
}

TEST_F(NRRDCodec, AllTypesAndBothByteOrdersAreRead)
{
    EXPECT_EQ(words(decoded(nrrdFile(header("ushort", "2 1 1"), asBytes<std::uint16_t>({0x1234, 0xabcd})))),
              (std::vector<std::uint16_t>{0x1234, 0xabcd}));
    const std::string big = "type: ushort\ndimension: 3\nsizes: 2 1 1\nendian: big\nencoding: raw\n";
    EXPECT_EQ(words(decoded(nrrdFile(big, asBytes<std::uint16_t>({0x1234, 0xabcd}, true)))),
              (std::vector<std::uint16_t>{0x1234, 0xabcd}));

    PixelData out = decoded(nrrdFile(header("short", "2 1 1"), asBytes<std::int16_t>({-1000, 2000})));
    EXPECT_EQ(words(out), (std::vector<std::uint16_t>{0, 3000}));
    EXPECT_EQ(out.valueIntercept, -1000.0);
    EXPECT_EQ(out.notices,
              (std::vector<std::string>{
                  "a.nrrd: int16 voxels in [-1000, 2000], less their minimum, brought to 16 bits"}));
    EXPECT_EQ(decoded(nrrdFile(header("signed char", "2 1 1"), asBytes<std::int8_t>({-3, 4}))).data,
              (Bytes{0, 7}));
    EXPECT_EQ(decoded(nrrdFile(header("int", "2 1 1"), asBytes<std::int32_t>({-3, 4}))).data, (Bytes{0, 7}));
    EXPECT_EQ(decoded(nrrdFile(header("uint", "2 1 1"), asBytes<std::uint32_t>({70000, 70007}))).data,
              (Bytes{0, 7}));
    EXPECT_EQ(decoded(nrrdFile(header("longlong", "2 1 1"), asBytes<std::int64_t>({-3, 4}))).data,
              (Bytes{0, 7}));
    EXPECT_EQ(decoded(nrrdFile(header("uint64", "2 1 1"), asBytes<std::uint64_t>({3, 4}))).data,
              (Bytes{3, 4}));
    EXPECT_EQ(words(decoded(nrrdFile(header("float", "3 1 1"), asBytes<float>({-1.f, 0.f, 1.f})))),
              (std::vector<std::uint16_t>{0, 32768, 65535}));
    EXPECT_EQ(words(decoded(nrrdFile(header("double", "2 1 1"), asBytes<double>({-1.0, 1.0})))),
              (std::vector<std::uint16_t>{0, 65535}));
}

TEST_F(NRRDCodec, TheSpacingIsStatedOrTheLengthOfADirection)
{
    PixelData out =
        decoded(nrrdFile(header("uchar", "2 2 2", "encoding: raw\nspacings: 0.5 0.75 2\n"), Eight));
    EXPECT_TRUE(out.hasSpacing);
    EXPECT_EQ(out.spacing[0], 0.5f);
    EXPECT_EQ(out.spacing[1], 0.75f);
    EXPECT_EQ(out.spacing[2], 2.f);
    out = decoded(nrrdFile(
        header(
            "uchar", "2 2 2",
            "encoding: raw\nspace: left-posterior-superior\nspace directions: (3,4,0) (0,-2,0) (0,0,0.5)\n"),
        Eight));
    EXPECT_TRUE(out.hasSpacing);
    EXPECT_EQ(out.spacing[0], 5.f);
    EXPECT_EQ(out.spacing[1], 2.f);
    EXPECT_EQ(out.spacing[2], 0.5f);
    out = decoded(nrrdFile(header("uchar", "2 2 2", "encoding: raw\nspacings: nan 3 nan\n"), Eight));
    EXPECT_EQ(out.spacing[0], 1.f);
    EXPECT_EQ(out.spacing[1], 3.f);
    EXPECT_EQ(out.spacing[2], 1.f);
}

TEST_F(NRRDCodec, ThreeBytesToAVoxelAreRGBAndOneIsGrey)
{
    PixelData out = decoded(nrrdFile(header("uchar", "3 1 2 1"), {1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(out.pixelFormat, 6407u);
    EXPECT_EQ(out.height, 2);
    EXPECT_EQ(out.data, (Bytes{1, 2, 3, 4, 5, 6}));
    EXPECT_FALSE(out.hasValues);
    out = decoded(nrrdFile(header("uchar", "1 2 2 2"), Eight));
    EXPECT_EQ(out.pixelFormat, 6409u);
    EXPECT_EQ(out.data, Eight);
    out = decoded(nrrdFile(header("uchar", "3 2 1", "encoding: raw\nkinds: RGB-color domain domain\n"),
                           {1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(out.pixelFormat, 6407u);
    EXPECT_EQ(out.width, 2);
    EXPECT_EQ(out.depth, 1);
    EXPECT_EQ(refusal(nrrdFile(header("float", "3 1 1 1"), Bytes(12))),
              "a.nrrd: 3 float32 to a voxel are not read");
}

TEST_F(NRRDCodec, OfALastAxisTheFirstPartIsTaken)
{
    const PixelData out = decoded(nrrdFile(
        header("uchar", "5 1 1 2", "encoding: raw\nkinds: domain domain domain time\n"), Bytes(10, 7)));
    EXPECT_EQ(out.data, Bytes(5, 7));
    EXPECT_EQ(out.notices, (std::vector<std::string>{"a.nrrd: the first of 2 parts is taken"}));
}

TEST_F(NRRDCodec, VoxelsBesideTheHeaderAreRead)
{
    put("v.raw", Eight);
    put("v.raw.gz", gzipped(Eight));
    put("s1.raw", {1, 2, 3, 4});
    put("s2.raw", {5, 6, 7, 8});
    EXPECT_EQ(decoded(nrrdFile(header("uchar", "2 2 2", "encoding: raw\ndata file: v.raw\n")), &folder).data,
              Eight);
    EXPECT_EQ(
        decoded(nrrdFile(header("uchar", "2 2 2", "encoding: gzip\ndata file: v.raw.gz\n")), &folder).data,
        Eight);
    EXPECT_EQ(decoded(nrrdFile(header("uchar", "2 2 2", "encoding: raw\ndata file: " + folder + "/v.raw\n")),
                      &folder)
                  .data,
              Eight);
    EXPECT_EQ(
        decoded(nrrdFile(header("uchar", "2 2 2", "encoding: raw\ndata file: s%d.raw 1 2 1\n")), &folder)
            .data,
        Eight);
    // Such a list ends with the file.
    EXPECT_EQ(
        decoded(nrrdFile(header("uchar", "2 2 2", "encoding: raw\ndata file: LIST\ns1.raw\ns2.raw")), &folder)
            .data,
        Eight);
}

TEST_F(NRRDCodec, FilesBesideTheHeaderThatCantBeTakenAreNamed)
{
    const auto fault = [](const std::string &line, const std::string *in) {
        return refusal(nrrdFile(header("uchar", "2 2 2", "encoding: raw\ndata file: " + line + "\n")), in);
    };
    EXPECT_EQ(fault("v.raw", nullptr), "a.nrrd: voxels in a file of their own can't be read from a stream");
    EXPECT_EQ(fault("no.raw", &folder),
              "a.nrrd: " + folder + "/no.raw: can't be opened: No such file or directory");
    EXPECT_EQ(fault("-", &folder), "a.nrrd: -: is no regular file");
    EXPECT_EQ(fault("/dev/zero", &folder), "a.nrrd: /dev/zero: is no regular file");
    EXPECT_EQ(fault("s%s.raw 1 2 1", &folder), "a.nrrd: no names of files with numbers: s%s.raw 1 2 1");
    EXPECT_EQ(fault("s%d%n.raw 1 2 1", &folder), "a.nrrd: no names of files with numbers: s%d%n.raw 1 2 1");
    put("short.raw", {1, 2, 3});
    EXPECT_EQ(fault("short.raw", &folder), "a.nrrd: 2 x 2 x 2 voxels of type uint8 can't be in 3 bytes");
}

TEST_F(NRRDCodec, EachRefusalIsOneLine)
{
    EXPECT_EQ(refusal({}), "a.nrrd: byte 0: no NRRD signature");
    // teem would write such a line past the end of its own message.
    EXPECT_EQ(refusal(nrrdFile("type; " + std::string(2000, '8') + "\n", Eight)),
              "a.nrrd: a line of the header is longer than 500 bytes");
    const std::string open = "NRRD0004\ntype: uchar\ndimension: 3";
    EXPECT_EQ(refusal(Bytes(open.begin(), open.end())),
              "a.nrrd: byte 33: the header is no text with an empty line at its end");
    EXPECT_EQ(refusal({0x89, 'P', 'N', 'G', 13, 10, 26, 10, 0, 0}), "a.nrrd: byte 0: no NRRD signature");
    EXPECT_EQ(refusal(nrrdFile(header("uchar", "2000 2000 2000"), Eight)),
              "a.nrrd: 2000 x 2000 x 2000 voxels of type uint8 can't be in " +
                  std::to_string(nrrdFile(header("uchar", "2000 2000 2000"), Eight).size()) + " bytes");
    EXPECT_EQ(refusal(nrrdFile(header("uchar", "2 2 2"), Eight), nullptr, 7),
              "a.nrrd: 8 bytes are over the limit of 7");
    EXPECT_EQ(refusal(nrrdFile(header("uchar", "8"), Eight)), "a.nrrd: 8 samples are no volume");
    EXPECT_EQ(refusal(nrrdFile(header("block", "2 1 1", "encoding: raw\nblock size: 4\n"), Eight)),
              "a.nrrd: voxels of type block are not read");
}

TEST_F(NRRDCodec, TheHostsLocaleChangesNothing)
{
    const char *const before = setlocale(LC_ALL, "de_DE.UTF-8");
    const PixelData out =
        decoded(nrrdFile(header("uchar", "2 2 2", "encoding: raw\nspacings: 0.5 0.75 2\n"), Eight));
    EXPECT_EQ(out.spacing[0], 0.5f);
    if(before)
        setlocale(LC_ALL, "C");
}

TEST_F(NRRDCodec, ThreadsReadAtTheSameTime)
{
    const Bytes good = nrrdFile(header("uchar", "2 2 2"), Eight),
                bad = nrrdFile(header("uchar", "2 2 0"), Eight);
    std::vector<std::thread> threads;
    for(int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for(int i = 0; i < 50; ++i)
            {
                PixelData out;
                std::string error;
                EXPECT_TRUE(decodeNRRD(good.data(), good.size(), nullptr, "a.nrrd", out, error));
                EXPECT_FALSE(decodeNRRD(bad.data(), bad.size(), nullptr, "a.nrrd", out, error));
                EXPECT_EQ(error.rfind("a.nrrd: ", 0), 0u);
            }
        });
    for(std::thread &thread : threads)
        thread.join();
}

TEST_F(NRRDCodec, EveryTruncationIsRefused)
{
    EXPECT_EQ(readTruncations(nrrdFile(header("uchar", "2 2 2"), Eight), "a.nrrd: ", decode), 0u);
    // The check sum of gzip and the line end behind ascii are not needed for the voxels.
    EXPECT_LE(readTruncations(nrrdFile(header("uchar", "2 2 2", "encoding: gzip\n"), gzipped(Eight)),
                              "a.nrrd: ", decode),
              8u);
    const std::string ascii = "1 2 3 4 5 6\n7 8\n";
    EXPECT_LE(readTruncations(
                  nrrdFile(header("uchar", "2 2 2", "encoding: ascii\n"), Bytes(ascii.begin(), ascii.end())),
                  "a.nrrd: ", decode),
              1u);
}

TEST_F(NRRDCodec, FlippedBytesGiveVoxelsOrOneLine)
{
    readFlipped(nrrdFile(header("ushort", "2 2 2", "encoding: raw\nspacings: 0.5 0.75 2\n"), Bytes(16, 3)),
                "a.nrrd: ", 20261124, 4000, decode);
    readFlipped(nrrdFile(header("uchar", "2 2 2", "encoding: gzip\n"), gzipped(Eight)), "a.nrrd: ", 20261125,
                4000, decode);
}
