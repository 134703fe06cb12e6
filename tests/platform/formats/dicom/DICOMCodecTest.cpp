#include <OSGDICOMCodec.h>
#include <OpenSG/OSGImageFileHandler.h>

#include <gtest/gtest.h>
#include <stdlib.h>

#include <filesystem>
#include <fstream>

#include "DICOMFiles.h"
#include "platform/formats/DamagedFiles.h"

using namespace osg;

namespace
{

using Words = std::vector<std::uint16_t>;
using Lines = std::vector<std::string>;

class DICOMCodec : public ::testing::Test
{
  protected:
    DICOMCodec()
    {
        char pattern[] = "/tmp/dicomXXXXXX";
        folder = mkdtemp(pattern);
    }
    ~DICOMCodec() override { std::filesystem::remove_all(folder); }

    void put(const std::string &name, const Bytes &bytes) const
    {
        std::ofstream out(folder + "/" + name, std::ios::binary);
        out.write(reinterpret_cast<const char *>(bytes.data()), std::streamsize(bytes.size()));
    }

    PixelData readFolder() const
    {
        PixelData out;
        std::string error;
        EXPECT_TRUE(readDICOM(folder, out, error)) << error;
        return out;
    }

    std::string folder;
};

Words words(const PixelData &out)
{
    Words values(out.data.size() / 2);
    std::memcpy(values.data(), out.data.data(), values.size() * 2);
    return values;
}

PixelData decoded(const DICOMFile &file)
{
    const Bytes bytes = file.bytes();
    PixelData out;
    std::string error;
    EXPECT_TRUE(decodeDICOM(bytes.data(), bytes.size(), "a.dcm", out, error)) << error;
    return out;
}

std::string refusal(const Bytes &bytes, std::uint64_t maxBytes = DefaultMaxPixelBytes)
{
    PixelData out;
    std::string error;
    EXPECT_FALSE(decodeDICOM(bytes.data(), bytes.size(), "a.dcm", out, error, maxBytes));
    EXPECT_TRUE(out.data.empty());
    return error;
}

bool decode(const std::uint8_t *bytes, std::size_t size, PixelData &out, std::string &error)
{
    return decodeDICOM(bytes, size, "a.dcm", out, error, 1 << 24);
}

/// What a sample stands for.
double valueOf(const PixelData &out, std::size_t i)
{
    const double sample = out.dataType == SampleUInt16 ? words(out)[i] : out.data[i];
    return out.valueSlope * sample + out.valueIntercept;
}

/// A CT slice whose four samples are 1000 * z and up.
DICOMFile ctSlice(int z, const std::string &series = "1.2.3")
{
    const std::int16_t base = std::int16_t(1000 * z);
    DICOMFile file(2, 2, {base, std::int16_t(base + 1), std::int16_t(base + 2), std::int16_t(base + 3)});
    file.place("0\\0\\" + std::to_string(z * 2) + ".5").rescale("1", "-1024");
    file.set(0x0020000e, "UI", text(series));
    return file;
}

} // namespace

TEST_F(DICOMCodec, ASignedCTKeepsItsHounsfieldUnitsExactly)
{
    const PixelData out =
        decoded(DICOMFile(2, 2, {-24, 0, 1024, 3071}).rescale("1", "-1024").place("0\\0\\0"));
    EXPECT_EQ(out.pixelFormat, 6409u);
    EXPECT_EQ(out.dataType, 5123u);
    EXPECT_EQ(out.valueUnit, "HU");
    // One frame is a picture: the bottom row comes first.
    EXPECT_EQ(words(out), (Words{1048, 3095, 0, 24}));
    EXPECT_EQ(out.valueSlope, 1.0);
    EXPECT_EQ(out.valueIntercept, -1048.0);
    EXPECT_EQ(valueOf(out, 0), 0.0);
    EXPECT_EQ(valueOf(out, 2), -1048.0);
    EXPECT_EQ(out.spacing[0], 0.5f);
    EXPECT_EQ(out.spacing[1], 0.75f);
}

TEST_F(DICOMCodec, AnUnsignedCTStaysAsItIs)
{
    const PixelData out = decoded(DICOMFile(2, 1, {0, 4095}).bits(16, 12, false).rescale("1", "-1024"));
    EXPECT_EQ(words(out), (Words{0, 4095}));
    EXPECT_EQ(out.valueIntercept, -1024.0);
    EXPECT_TRUE(out.notices.empty());
}

TEST_F(DICOMCodec, StoredBitsAloneCountAndCarryTheirSign)
{
    // Twelve bits with sign: 0xfff is -1; what lies above the twelve is an overlay.
    const PixelData out =
        decoded(DICOMFile(3, 1, {std::int16_t(0x0fff), std::int16_t(0x17ff), 0x0800}).bits(16, 12, true));
    EXPECT_EQ(valueOf(out, 0), -1.0);
    EXPECT_EQ(valueOf(out, 1), 2047.0);
    EXPECT_EQ(valueOf(out, 2), -2048.0);
}

TEST_F(DICOMCodec, EightBitsStayEight)
{
    DICOMFile file(2, 1, {});
    file.bits(8, 8, false).set(0x7fe00010, "OB", {3, 200}).set(0x00080060, "CS", text("US"));
    const PixelData out = decoded(file);
    EXPECT_EQ(out.dataType, 5121u);
    EXPECT_EQ(out.data, (Bytes{3, 200}));
    EXPECT_EQ(out.valueUnit, "");
}

TEST_F(DICOMCodec, MONOCHROME1IsTurnedOverAndItsValuesStay)
{
    DICOMFile file(3, 1, {0, 100, 1000});
    file.bits(16, 16, false).set(0x00280004, "CS", text("MONOCHROME1")).rescale("2", "10");
    const PixelData out = decoded(file);
    EXPECT_EQ(words(out), (Words{1000, 900, 0}));
    EXPECT_EQ(valueOf(out, 0), 10.0);
    EXPECT_EQ(valueOf(out, 1), 210.0);
    EXPECT_EQ(valueOf(out, 2), 2010.0);
}

TEST_F(DICOMCodec, TheUnitIsHounsfieldsWhereTheRescaleTypeSaysSo)
{
    DICOMFile file(1, 1, {300});
    file.set(0x00080060, "CS", text("OT"));
    EXPECT_EQ(decoded(file).valueUnit, "");
    file.set(0x00281054, "LO", text("HU"));
    EXPECT_EQ(decoded(file).valueUnit, "HU");
}

TEST_F(DICOMCodec, AFolderIsAVolumeOrderedByItsPlaces)
{
    put("c", ctSlice(0).bytes());
    put("a.dcm", ctSlice(2).bytes());
    put("b.dcm", ctSlice(1).bytes());
    put("notes.txt", text("not a slice"));
    const PixelData out = readFolder();
    EXPECT_EQ(out.width, 2);
    EXPECT_EQ(out.height, 2);
    EXPECT_EQ(out.depth, 3);
    // The rows stay as in the file.
    EXPECT_EQ(words(out), (Words{0, 1, 2, 3, 1000, 1001, 1002, 1003, 2000, 2001, 2002, 2003}));
    EXPECT_EQ(valueOf(out, 4), 1000.0 - 1024.0);
    EXPECT_EQ(out.spacing[0], 0.5f);
    EXPECT_EQ(out.spacing[1], 0.75f);
    EXPECT_EQ(out.spacing[2], 2.f);
    EXPECT_EQ(out.valueUnit, "HU");
}

TEST_F(DICOMCodec, TheHandlerReadsAFolderWithItsValues)
{
    ASSERT_TRUE(osgInit(0, nullptr));
    put("x1", ctSlice(1).bytes());
    put("x2", ctSlice(0).bytes());
    const ImagePtr image = ImageFileHandler::the().read(folder.c_str());
    ASSERT_TRUE(image != NullFC);
    EXPECT_EQ(image->getDepth(), 2);
    EXPECT_EQ(*image->findAttachmentField("SliceThickness"), "0.500000 0.750000 2.000000");
    EXPECT_EQ(*image->findAttachmentField("ValueScale"), "1 -1024");
    EXPECT_EQ(*image->findAttachmentField("ValueUnit"), "HU");
    addRefCP(image);
    subRefCP(image);
}

TEST_F(DICOMCodec, OfSeveralSeriesTheLongestIsTaken)
{
    put("1", ctSlice(0).bytes());
    put("2", ctSlice(1).bytes());
    put("0", ctSlice(7, "1.9").set(0x0008103e, "LO", text("Scout")).bytes());
    const PixelData out = readFolder();
    EXPECT_EQ(out.depth, 2);
    ASSERT_FALSE(out.notices.empty());
    EXPECT_EQ(out.notices[0], folder + ": holds 2 series, \"Thorax\" with 2 slices is taken");
}

TEST_F(DICOMCodec, BrokenFilesAndColoursOfAFolderAreLeftOutWithANotice)
{
    put("1", ctSlice(0).bytes());
    put("2", ctSlice(1).bytes());
    Bytes cut = ctSlice(2).bytes();
    cut.resize(cut.size() - 1);
    put("3", cut);
    DICOMFile colour(1, 1, {});
    colour.bits(8, 8, false).set(0x00280002, "US", number(3)).set(0x00280004, "CS", text("RGB"));
    colour.set(0x7fe00010, "OB", {1, 2, 3, 0});
    put("4", colour.bytes());
    const PixelData out = readFolder();
    EXPECT_EQ(out.depth, 2);
    ASSERT_FALSE(out.notices.empty());
    EXPECT_EQ(
        out.notices[0].rfind(folder + ": 2 files are no slices and left out, " + folder + "/3: byte ", 0), 0u)
        << out.notices[0];
    EXPECT_EQ(refusal(colour.bytes()), "a.dcm: pictures in colour (RGB) are not read");
}

TEST_F(DICOMCodec, SlopesThatDifferAreAppliedSliceBySlice)
{
    DICOMFile first(2, 1, {0, 100}), second(2, 1, {0, 100});
    put("1", first.place("0\\0\\0").rescale("1", "0").set(0x00080060, "CS", text("PT")).bytes());
    put("2", second.place("0\\0\\4").rescale("3", "0").set(0x00080060, "CS", text("PT")).bytes());
    const PixelData out = readFolder();
    EXPECT_EQ(words(out), (Words{0, 21845, 0, 65535}));
    EXPECT_NEAR(valueOf(out, 1), 100.0, 1e-9);
    EXPECT_NEAR(valueOf(out, 3), 300.0, 1e-9);
    EXPECT_EQ(out.valueUnit, "");
    EXPECT_EQ(out.notices[0], folder + ": slices differ in what their samples stand for");
}

TEST_F(DICOMCodec, TheFramesOfAFileAreSortedByTheirGroups)
{
    DICOMFile file(1, 1, {});
    file.set(0x7fe00010, "OW", asBytes<std::int16_t>({300, 301, 302})).set(0x00280008, "IS", text("3"));
    Bytes frames;
    for(const char *position : {"0\\0\\6", "0\\0\\0", "0\\0\\3"})
    {
        const Bytes place = element(0x00209113, "SQ", item(element(0x00200032, "DS", text(position))));
        const Bytes frame = item(place);
        frames.insert(frames.end(), frame.begin(), frame.end());
    }
    file.set(0x52009230, "SQ", frames);
    Bytes shared = element(0x00209116, "SQ", item(element(0x00200037, "DS", text("1\\0\\0\\0\\1\\0"))));
    const Bytes measures = element(0x00289110, "SQ", item(element(0x00280030, "DS", text("0.25\\0.125"))));
    const Bytes values = element(0x00289145, "SQ", item([] {
                                     Bytes both = element(0x00281052, "DS", text("-7"));
                                     const Bytes slope = element(0x00281053, "DS", text("2"));
                                     both.insert(both.end(), slope.begin(), slope.end());
                                     return both;
                                 }()));
    shared.insert(shared.end(), measures.begin(), measures.end());
    shared.insert(shared.end(), values.begin(), values.end());
    file.set(0x52009229, "SQ", item(shared));
    const PixelData out = decoded(file);
    EXPECT_EQ(out.depth, 3);
    EXPECT_EQ(valueOf(out, 0), 2 * 301 - 7);
    EXPECT_EQ(valueOf(out, 1), 2 * 302 - 7);
    EXPECT_EQ(valueOf(out, 2), 2 * 300 - 7);
    EXPECT_EQ(out.spacing[0], 0.125f);
    EXPECT_EQ(out.spacing[1], 0.25f);
    EXPECT_EQ(out.spacing[2], 3.f);
}

TEST_F(DICOMCodec, FramesWithoutGroupsKeepTheirOrder)
{
    DICOMFile file(1, 1, {});
    file.set(0x7fe00010, "OW", asBytes<std::int16_t>({300, 301, 302})).set(0x00280008, "IS", text("3"));
    file.place("0\\0\\0").set(0x00180088, "DS", text("1.5"));
    const PixelData out = decoded(file);
    EXPECT_EQ(valueOf(out, 0), 300.0);
    EXPECT_EQ(valueOf(out, 2), 302.0);
    EXPECT_EQ(out.spacing[2], 1.5f);
}

TEST_F(DICOMCodec, RunLengthsAreUnpacked)
{
    DICOMFile file(4, 1, {});
    file.bits(8, 8, false).syntax("1.2.840.10008.1.2.5");
    // One segment at byte 64: 4 times 9, by the count 257 - 4.
    Bytes frame(64, 0);
    frame[0] = 1;
    frame[4] = 64;
    frame.insert(frame.end(), {253, 9});
    Bytes pixels = {0xe0, 0x7f, 0x10, 0, 'O', 'B', 0, 0, 0xff, 0xff, 0xff, 0xff};
    const Bytes table = item({}), fragment = item(frame);
    pixels.insert(pixels.end(), table.begin(), table.end());
    pixels.insert(pixels.end(), fragment.begin(), fragment.end());
    pixels.insert(pixels.end(), {0xfe, 0xff, 0xdd, 0xe0, 0, 0, 0, 0});
    EXPECT_EQ(decoded(file.raw(0x7fe00010, pixels)).data, (Bytes{9, 9, 9, 9}));
}

TEST_F(DICOMCodec, EachRefusalIsOneLine)
{
    EXPECT_EQ(refusal({}), "a.dcm: byte 128: no DICOM signature");
    EXPECT_EQ(refusal(DICOMFile(2, 2, {1, 2, 3, 4}).bytes(), 7), "a.dcm: 8 bytes are over the limit of 7");
    EXPECT_EQ(refusal(DICOMFile(1, 1, {1}).bits(64, 64, false).bytes()),
              "a.dcm: samples of 64 in 64 bits are not read");
    EXPECT_EQ(refusal(DICOMFile(0, 0, {1}).bytes()), "a.dcm: no picture");
    EXPECT_EQ(refusal(DICOMFile(1, 1, {1}).set(0x00280008, "IS", text("9999999")).bytes()),
              "a.dcm: 1048577 frames are not read");
    DICOMFile deflated(1, 1, {1});
    EXPECT_NE(
        refusal(deflated.syntax("1.2.840.10008.1.2.1.99").bytes()).find("deflated data sets are not read"),
        std::string::npos);
    PixelData out;
    std::string error;
    EXPECT_FALSE(readDICOM(folder, out, error));
    EXPECT_EQ(error, folder + ": no DICOM files in this folder");
    EXPECT_FALSE(readDICOM(folder + "/none.dcm", out, error));
    EXPECT_EQ(error, folder + "/none.dcm: can't be opened: No such file or directory");
}

TEST_F(DICOMCodec, EveryTruncationIsRefused)
{
    EXPECT_EQ(readTruncations(ctSlice(1).bytes(), "a.dcm: ", decode), 0u);
}

TEST_F(DICOMCodec, FlippedBytesGivePixelsOrOneLine)
{
    readFlipped(ctSlice(1).bytes(), "a.dcm: ", 20261127, 4000, decode);
}
