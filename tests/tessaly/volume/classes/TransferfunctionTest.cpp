#include "volume/SimpleTransferfunction.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <unistd.h>

#include "VolumeScene.h"
#include "volume/PreintTransferFunction.h"
#include "volume/TransferText.h"
#include "volume/VolumeData.h"

using namespace osg;

namespace
{

/// A text file that goes at the end.
class TextFile
{
  public:
    explicit TextFile(const std::string &text)
    {
        std::string path = (std::filesystem::temp_directory_path() / "transferXXXXXX").string();
        const int file = mkstemp(path.data());
        EXPECT_NE(file, -1);
        close(file);
        _path = path;
        std::ofstream(_path) << text;
    }
    ~TextFile() { std::filesystem::remove(_path); }
    TextFile(const TextFile &) = delete;
    TextFile &operator=(const TextFile &) = delete;
    std::string path() const { return _path.string(); }

  private:
    std::filesystem::path _path;
};

/// A table of one RGBA entry throughout.
template <class ChannelT>
ImagePtr constantTable(int width, int height, ChannelT red, ChannelT green, ChannelT blue, ChannelT alpha)
{
    const ImagePtr image = Image::create();
    image->set(6408, width, height, 1, 1, 1, 0.0, nullptr, sizeof(ChannelT) == 1 ? 5121 : 5131, true, 1);
    const ChannelT entry[4] = {red, green, blue, alpha};
    for(int i = 0; i < width * height; ++i)
        std::memcpy(image->getData() + std::size_t(i) * sizeof(entry), entry, sizeof(entry));
    endEditCP(image);
    return image;
}

Real32 halfAt(const ImagePtr &image, std::size_t index) { return valueAt<Real16>(image, index); }

} // namespace

TEST(Transferfunction, TheDefaultPointsGiveARampOfGrey)
{
    SimpleTransferfunction function;
    EXPECT_TRUE(function.getTransferTexture() == NullFC);
    EXPECT_TRUE(function.getTransferImage() == NullFC);
    EXPECT_TRUE(function.setVolumeData(nullptr));
    const ImagePtr table = function.getTransferImage();
    ASSERT_TRUE(table != NullFC);
    EXPECT_EQ(table->getWidth(), 256);
    EXPECT_EQ(table->getHeight(), 1);
    EXPECT_EQ(table->getPixelFormat(), 6408u);
    EXPECT_EQ(table->getDataType(), 5121);
    for(std::size_t channel = 0; channel < 4; ++channel)
    {
        EXPECT_EQ(valueAt<UInt8>(table, channel), 0);
        EXPECT_EQ(valueAt<UInt8>(table, 4 * 255 + channel), 254);
    }
    expectSettings(function.getTransferTexture(), 33071, 9729, 32859);
    EXPECT_EQ(function.getTransferTexture().getRefCount(), 1);
    // A table of the right kind stays.
    function.setVolumeData(nullptr);
    EXPECT_TRUE(function.getTransferImage() == table);
}

TEST(Transferfunction, AChangeOfFormGoesBackToThePoints)
{
    SimpleTransferfunction function;
    function.setVolumeData(nullptr);
    function.dependentTexture = 1;
    function.setVolumeData(nullptr);
    const ImagePtr table = function.getTransferImage();
    EXPECT_EQ(table->getHeight(), 256);
    EXPECT_EQ(table->getDataType(), 5131);
    EXPECT_EQ(halfAt(table, 4 * 32768 + 3), 0.5f);
    function.dependentTexture = 0;
    function.setVolumeData(nullptr);
    EXPECT_EQ(function.getTransferImage()->getDataType(), 5121);
}

TEST(Transferfunction, AFileThatIsMissingIsReported)
{
    SimpleTransferfunction simple;
    PreintTransferFunction preint;
    LogCapture log;
    EXPECT_FALSE(simple.setTransferfunctionFile("no/such/file"));
    EXPECT_FALSE(preint.setTransferfunctionFile("no/such/file"));
    EXPECT_EQ(log.text(), "Couldn't load file no/such/file!\nCouldn't load file no/such/file!\n");
    EXPECT_EQ(log.count(LOG_WARNING), 2u);
}

TEST(Transferfunction, OpacityThatEndsEarlyFillsTheWholeChannel)
{
    const TextFile file("2 0 0  0.5 1\n2\n0 0 0 0\n0.5 1 0 0.2\n");
    SimpleTransferfunction function;
    ASSERT_TRUE(function.setTransferfunctionFile(file.path()));
    const ImagePtr table = function.getTransferImage();
    for(std::size_t i = 0; i < 256; ++i)
        EXPECT_EQ(valueAt<UInt8>(table, 4 * i + 3), 255);
    EXPECT_EQ(valueAt<UInt8>(table, 4 * 64), 127);
    for(std::size_t i = 128; i < 256; ++i)
    {
        EXPECT_EQ(valueAt<UInt8>(table, 4 * i), 255);
        EXPECT_EQ(valueAt<UInt8>(table, 4 * i + 2), 51);
    }
}

TEST(Transferfunction, AFinishedChunkIsKept)
{
    const Held<TextureChunkPtr> texture(makeTexture(constantTable<UInt8>(256, 1, 1, 2, 3, 255)));
    {
        SimpleTransferfunction function;
        EXPECT_FALSE(function.setTransferTexture(NullFC));
        EXPECT_TRUE(function.setTransferTexture(texture));
        EXPECT_EQ(texture.get().getRefCount(), 2);
        EXPECT_TRUE(function.setTransferTexture(texture));
        EXPECT_EQ(texture.get().getRefCount(), 2);
        expectSettings(texture, 33071, 9729, 32859);
        function.setVolumeData(nullptr);
        EXPECT_EQ(valueAt<UInt8>(function.getTransferImage(), 1), 2);
    }
    EXPECT_EQ(texture.get().getRefCount(), 1);
}

TEST(Transferfunction, NoImageIsOnlyNoted)
{
    SimpleTransferfunction function;
    LogCapture log;
    function.setTransferfunction(NullFC);
    EXPECT_EQ(log.text(LOG_NOTICE), "Empty transferfunction\n");
    EXPECT_TRUE(function.getTransferTexture() == NullFC);
}

TEST(Transferfunction, DerivedTablesNeedATable)
{
    SimpleTransferfunction function;
    LogCapture log;
    EXPECT_FALSE(function.calcSummedAreaTable());
    EXPECT_EQ(log.text(LOG_WARNING), "Die Transferfunction ist leer!\n");
    log.clear();
    EXPECT_FALSE(function.calcDependTransferTextur());
    EXPECT_EQ(log.text(LOG_WARNING), "Die Summed Area Table ist leer\n");
    log.clear();
    function.setVolumeData(nullptr);
    ASSERT_TRUE(function.calcSummedAreaTable());
    const Held<TextureChunkPtr> empty(TextureChunk::create());
    function.setTransferTexture(empty);
    EXPECT_FALSE(function.calcDependTransferTextur());
    EXPECT_EQ(log.text(LOG_WARNING), "Die Transferfunction ist leer!\n");
}

TEST(Transferfunction, SumsOfOpacity)
{
    SimpleTransferfunction function;
    function.setTransferfunction(constantTable<UInt8>(256, 1, 9, 9, 9, 255));
    ASSERT_TRUE(function.calcSummedAreaTable());
    const ImagePtr sums = function.getSummedAreaImage();
    EXPECT_EQ(sums->getPixelFormat(), 6406u);
    EXPECT_EQ(sums->getDataType(), 5126);
    EXPECT_EQ(sums->getHeight(), 1);
    EXPECT_EQ(valueAt<Real32>(sums, 0), 255.0f);
    EXPECT_EQ(valueAt<Real32>(sums, 255), 65280.0f);

    function.setTransferfunction(constantTable<UInt8>(256, 1, 9, 9, 9, 0));
    ASSERT_TRUE(function.calcSummedAreaTable());
    for(std::size_t i = 0; i < 256; ++i)
        EXPECT_EQ(valueAt<Real32>(function.getSummedAreaImage(), i), 0.0f);

    // Half floats: one sum through all rows.
    function.setTransferfunction(
        constantTable<Real16>(256, 256, Real16(0.f), Real16(0.f), Real16(0.f), Real16(0.5f)));
    ASSERT_TRUE(function.calcSummedAreaTable());
    EXPECT_EQ(function.getSummedAreaImage()->getHeight(), 256);
    EXPECT_EQ(valueAt<Real32>(function.getSummedAreaImage(), 256), 257 * 0.5f);
    EXPECT_EQ(valueAt<Real32>(function.getSummedAreaImage(), 65535), 32768.0f);

    // Any other type counts as success and leaves what was there.
    const ImagePtr before = function.getSummedAreaImage();
    const ImagePtr words = Image::create();
    words->set(6408, 256, 1, 1, 1, 1, 0.0, nullptr, 5123, true, 1);
    function.setTransferfunction(words);
    EXPECT_EQ(standardOutput([&] { EXPECT_TRUE(function.calcSummedAreaTable()); }),
              "Format der Transferfunktion konnte nicht erkannt werden\n");
    EXPECT_TRUE(function.getSummedAreaImage() == before);
}

TEST(Transferfunction, AShortTableIsNotReadBeyondItsEnd)
{
    SimpleTransferfunction function;
    const ImagePtr rgb = Image::create();
    const UInt8 pixels[6] = {10, 20, 30, 40, 50, 60};
    rgb->set(6407, 2, 1, 1, 1, 1, 0.0, pixels, 5121, true, 1);
    function.setTransferfunction(rgb);
    EXPECT_TRUE(function.calcSummedAreaTable());
    EXPECT_TRUE(function.calcDependTransferTextur());
    PreintTransferFunction preint;
    EXPECT_TRUE(preint.calcPreIntTable(rgb));
    preint.dependentTexture = 1;
    EXPECT_TRUE(preint.calcPreIntTable(rgb));
}

TEST(Transferfunction, TextOfEachForm)
{
    SimpleTransferfunction function;
    EXPECT_EQ(function.getShaderCode(), tessaly::simpleTransferfunctionText(0));
    function.dependentTexture = 1;
    EXPECT_EQ(function.getShaderCode(), tessaly::simpleTransferfunctionText(1));
    function.dependentTexture = 2;
    EXPECT_EQ(function.getShaderCode(), "");
    PreintTransferFunction preint;
    EXPECT_EQ(preint.getShaderCode(), tessaly::preintTransferFunctionText(0));
    preint.dependentTexture = 1;
    EXPECT_EQ(preint.getShaderCode(), tessaly::preintTransferFunctionText(1));
}

TEST(Transferfunction, BindsItsTables)
{
    const Held<ChunkMaterialPtr> material(ChunkMaterial::create());
    const Held<SHLChunkPtr> shader(SHLChunk::create());
    UInt32 unit = 4;
    SimpleTransferfunction simple;
    simple.setVolumeData(nullptr);
    simple.setShaderParameters(NullFC, shader, unit, nullptr);
    simple.setShaderParameters(material, NullFC, unit, nullptr);
    EXPECT_EQ(unit, 4u);
    EXPECT_FALSE(hasUniform(shader, "correctionFactor"));
    simple.setShaderParameters(material, shader, unit, nullptr);
    EXPECT_EQ(unit, 5u);
    EXPECT_EQ(uniform<Int32>(shader, "transferFunction"), 4);
    EXPECT_EQ(uniform<Real32>(shader, "correctionFactor"), 200.0f);
    ASSERT_EQ(material->getChunks().size(), 1u);
    EXPECT_TRUE(material->getChunks(0) == simple.getTransferTexture());
    EXPECT_EQ(material->getSlots(0), -2);

    PreintTransferFunction preint;
    preint.setVolumeData(nullptr);
    preint.setShaderParameters(material, shader, unit, nullptr);
    EXPECT_EQ(unit, 6u);
    EXPECT_EQ(uniform<Int32>(shader, "preIntTable"), 5);
    EXPECT_EQ(uniform<Int32>(shader, "transferFunction"), 4);
    EXPECT_TRUE(material->getChunks(1) == preint.getPreIntTable());
    preint.dependentTexture = 1;
    preint.setShaderParameters(material, shader, unit, nullptr);
    EXPECT_EQ(unit, 8u);
    EXPECT_EQ(uniform<Int32>(shader, "preIntTable"), 6);
    EXPECT_EQ(uniform<Int32>(shader, "transferFunction"), 7);
    ASSERT_EQ(material->getChunks().size(), 4u);
    EXPECT_TRUE(material->getChunks(3) == preint.getTransferTexture());
}

TEST(PreintTransferFunction, NeedsATable)
{
    PreintTransferFunction function;
    LogCapture log;
    EXPECT_FALSE(function.calcPreIntTable(NullFC));
    EXPECT_EQ(log.text(LOG_WARNING),
              "Transferfunction does not exist! Preintegration could not be calculated.\n");
    EXPECT_TRUE(function.getPreIntTable() == NullFC);
    function.dependentTexture = 2;
    EXPECT_TRUE(function.calcPreIntTable(constantTable<UInt8>(256, 1, 0, 0, 0, 0)));
    EXPECT_TRUE(function.getPreIntTable() == NullFC);
    EXPECT_FALSE(function.setTransferTexture(NullFC));
}

TEST(PreintTransferFunction, AveragesOfAConstantTable)
{
    PreintTransferFunction function;
    const Held<TextureChunkPtr> texture(makeTexture(constantTable<UInt8>(256, 1, 255, 51, 0, 51)));
    ASSERT_TRUE(function.setTransferTexture(texture));
    const TextureChunkPtr table = function.getPreIntTable();
    ASSERT_TRUE(table != NullFC);
    EXPECT_EQ(table->getImage()->getDataType(), 5131);
    EXPECT_EQ(table->getImage()->getHeight(), 256);
    expectSettings(table, 33071, 9729, 34842);
    for(const std::size_t entry : {std::size_t(0), std::size_t(7 * 256 + 7), std::size_t(3 * 256 + 200)})
    {
        EXPECT_NEAR(halfAt(table->getImage(), 4 * entry), 0.2f, 2e-4f);
        EXPECT_NEAR(halfAt(table->getImage(), 4 * entry + 1), 0.04f, 2e-4f);
        EXPECT_EQ(halfAt(table->getImage(), 4 * entry + 2), 0.0f);
        EXPECT_NEAR(halfAt(table->getImage(), 4 * entry + 3), 0.2f, 2e-4f);
    }
}

TEST(PreintTransferFunction, FollowsTheVoxelsType)
{
    LogCapture log;
    const Held<TextureChunkPtr> words(makeVolume<UInt16>(8, 8, 8, 5000));
    VolumeData volume;
    standardOutput([&] { volume.setVolume(words, false); });
    PreintTransferFunction function;
    // The first call makes the table only; the table's filters end as linear.
    EXPECT_TRUE(function.setVolumeData(&volume));
    EXPECT_EQ(function.dependentTexture, 1u);
    expectSettings(function.getTransferTexture(), 33071, 9729, 32859);
    EXPECT_EQ(function.getPreIntTable()->getImage()->getDataType(), 5126);
    expectSettings(function.getPreIntTable(), 33071, 9728, 34836);
    // A later one computes the integrals last, which leaves the table without filtering.
    EXPECT_TRUE(function.setVolumeData(&volume));
    expectSettings(function.getTransferTexture(), 33071, 9728, 32859);

    const Held<TextureChunkPtr> bytes(makeVolume<UInt8>(8, 8, 8, 50));
    VolumeData other;
    standardOutput([&] { other.setVolume(bytes, false); });
    EXPECT_TRUE(function.setVolumeData(&other));
    EXPECT_EQ(function.dependentTexture, 0u);
    EXPECT_EQ(function.getTransferImage()->getDataType(), 5121);
    EXPECT_EQ(function.getPreIntTable()->getImage()->getDataType(), 5131);
}

TEST(PreintTransferFunction, FullOpacityIntegratesToTheNumberOfSteps)
{
    PreintTransferFunction function;
    function.dependentTexture = 1;
    const Real16 one(1.0f);
    ASSERT_TRUE(function.calcPreIntTable(constantTable<Real16>(256, 256, one, one, one, one)));
    EXPECT_EQ(valueAt<Real32>(function.getPreIntTable()->getImage(), 3), 0.0f);
    EXPECT_EQ(valueAt<Real32>(function.getPreIntTable()->getImage(), 4 * 65535 + 3), 65535.0f);
    // The chunk of the table is made where it is missing.
    ASSERT_TRUE(function.getTransferTexture() != NullFC);
    EXPECT_EQ(function.getTransferTexture()->getMinFilter(), 9728u);
}

TEST(PreintTransferFunction, ReadsAFile)
{
    const TextFile file("1 0 0.4\n1 0 1 1 1\n");
    PreintTransferFunction function;
    ASSERT_TRUE(function.setTransferfunctionFile(file.path()));
    EXPECT_EQ(valueAt<UInt8>(function.getTransferImage(), 3), 102);
    EXPECT_NEAR(halfAt(function.getPreIntTable()->getImage(), 3), 0.4f, 3e-4f);
}
