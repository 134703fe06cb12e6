/// \file
/// The colour filter: its picture against its formulas on the processor, its uniforms, its table.

#include "FilterScene.h"

#include <Tessaly/OSGImprovedColorDisplayFilter.h>

OSG_USING_NAMESPACE
using namespace filter_test;

namespace
{

const Matrix mixing(0.8f, 0.1f, 0.05f, 0.02f, //
                    0.15f, 0.7f, 0.2f, 0.01f, //
                    0.02f, 0.1f, 0.9f, 0.03f, //
                    0.05f, 0.1f, 0.0f, 0.9f);

struct Settings
{
    Real32 gamma = 2.4f;
    Matrix matrix;
    UInt32 width = 1, height = 1, depth = 2;
    std::vector<Vec3f> table = {Vec3f(0, 0, 0), Vec3f(1, 1, 1)};
};

/// A table that bends each channel in another way and changes over the screen.
std::vector<Vec3f> bentTable(UInt32 width, UInt32 height, UInt32 depth)
{
    std::vector<Vec3f> table;
    for(UInt32 z = 0; z < depth; ++z)
        for(UInt32 y = 0; y < height; ++y)
            for(UInt32 x = 0; x < width; ++x)
            {
                const Real32 s = width > 1 ? Real32(x) / Real32(width - 1) : 0.3f;
                const Real32 t = height > 1 ? Real32(y) / Real32(height - 1) : 0.6f;
                const Real32 v = depth > 1 ? Real32(z) / Real32(depth - 1) : 0.5f;
                table.push_back(
                    Vec3f(v * (0.5f + 0.5f * s), v * v * (1.f - 0.4f * t), 1.f - v * (0.3f + 0.7f * s * t)));
            }
    return table;
}

/// An entry's channel as the byte that the table holds, 0 to 1; trilinear between the entries, which lie on
/// the ends of the axes.
double lookUp(const Settings &settings, double s, double t, double value, std::size_t channel)
{
    const UInt32 size[3] = {settings.width, settings.height, settings.depth};
    const double place[3] = {s, t, value};
    UInt32 low[3], high[3];
    double weight[3];
    for(int i = 0; i < 3; ++i)
    {
        const double at = std::min(std::max(place[i], 0.0), 1.0) * (size[i] - 1.0);
        low[i] = UInt32(at);
        high[i] = std::min(low[i] + 1, size[i] - 1);
        weight[i] = at - low[i];
    }
    double sum = 0;
    for(int corner = 0; corner < 8; ++corner)
    {
        UInt32 index[3];
        double share = 1;
        for(int i = 0; i < 3; ++i)
        {
            const bool upper = (corner >> i & 1) != 0;
            index[i] = upper ? high[i] : low[i];
            share *= upper ? weight[i] : 1 - weight[i];
        }
        const Vec3f &entry = settings.table[(index[2] * size[1] + index[1]) * size[0] + index[0]];
        sum += share * std::floor(entry[UInt32(channel)] * 255.0) / 255.0;
    }
    return sum;
}

test::RgbaImage filtered(const test::RgbaImage &input, const Settings &settings)
{
    test::RgbaImage result(input.width, input.height);
    for(int y = 0; y < input.height; ++y)
        for(int x = 0; x < input.width; ++x)
        {
            double color[4];
            for(std::size_t c = 0; c < 4; ++c)
                color[c] = input.at(x, y)[c] / 255.0;
            for(int c = 0; c < 3; ++c)
                color[c] = std::pow(color[c], double(settings.gamma));
            double mixed[4] = {0, 0, 0, 0};
            for(UInt32 column = 0; column < 4; ++column)
                for(UInt32 row = 0; row < 4; ++row)
                    mixed[column] += color[row] * double(settings.matrix[column][row]);
            test::RgbaImage::Pixel pixel;
            for(std::size_t c = 0; c < 3; ++c)
                pixel[c] = std::uint8_t(std::lround(
                    255 * lookUp(settings, (x + 0.5) / input.width, (y + 0.5) / input.height, mixed[c], c)));
            pixel[3] = std::uint8_t(std::lround(255 * std::min(std::max(mixed[3], 0.0), 1.0)));
            result.set(x, y, pixel);
        }
    return result;
}

class ColorFilterTest : public FilterTest
{
  protected:
    void set(const Settings &settings)
    {
        filter->setGamma(settings.gamma);
        filter->setMatrix(settings.matrix);
        filter->setWidth(settings.width);
        filter->setHeight(settings.height);
        filter->setDepth(settings.depth);
        filter->editMFTable()->setValues(settings.table);
        endEditCP(filter.ptr);
    }
    SHLChunkPtr chunk() { return program("ImprovedColorDisplayFilter"); }
    /// The table's texture: the second one of the group's material.
    TextureChunkPtr tableTexture()
    {
        return TextureChunkPtr::dcast(
            filters->findReadbackGroup("ImprovedColorDisplayFilter")->getMaterial()->getChunk(1));
    }
    std::vector<UInt8> tableBytes() { return tableTexture()->getImage()->getMFPixel()->getValues(); }

    Held<ImprovedColorDisplayFilterPtr> filter;
};

/// Half a step of rounding on either side, and what a driver's 8 bits of filter weight cost.
const test::PixelLimits twoSteps = {2, 0.0, 255.0};

} // namespace

TEST_F(ColorFilterTest, ThePictureIsThatOfTheFormulasForSeveralTables)
{
    struct Case
    {
        const char *name;
        Real32 gamma;
        Matrix matrix;
        UInt32 width, height, depth;
    };
    for(const Case &c :
        {Case{"a plain table", 2.4f, Matrix(), 1, 1, 2}, Case{"a matrix", 1.0f, mixing, 1, 1, 2},
         Case{"both", 2.4f, mixing, 1, 1, 2}, Case{"one layer", 1.f, mixing, 3, 2, 1},
         Case{"a curve", 0.6f, Matrix(), 1, 1, 17}, Case{"over the screen", 1.8f, mixing, 2, 2, 4},
         Case{"odd sides", 2.2f, mixing, 5, 3, 9}})
    {
        SCOPED_TRACE(c.name);
        Settings settings;
        settings.gamma = c.gamma;
        settings.matrix = c.matrix;
        settings.width = c.width;
        settings.height = c.height;
        settings.depth = c.depth;
        settings.table = bentTable(c.width, c.height, c.depth);
        set(settings);
        use({filter.ptr});
        LogCapture log(LOG_WARNING);
        stage.frame();
        EXPECT_EQ(log.text(), "");
        EXPECT_TRUE(test::imagesMatch(stage.pixels(), filtered(input, settings), twoSteps,
                                      std::string("color-") + c.name));
    }
}

TEST_F(ColorFilterTest, TheIdentityTableGivesTheLinearisedPictureWhereverOnTheScreen)
{
    const Settings settings;
    set(settings);
    use({filter.ptr});
    stage.frame();
    const test::RgbaImage got = stage.pixels();
    for(int y = 0; y < height; ++y)
        for(int x = 0; x < width; ++x)
            for(std::size_t c = 0; c < 3; ++c)
                ASSERT_NEAR(got.at(x, y)[c], 255 * std::pow(input.at(x, y)[c] / 255.0, 2.4), 2.0);
}

TEST_F(ColorFilterTest, TheEndsOfAValueReadTheCentresOfTheFirstAndTheLastLayer)
{
    Settings settings;
    settings.depth = 5;
    settings.table = {Vec3f(0.2f, 0.4f, 0.6f), Vec3f(1, 1, 1), Vec3f(0, 0, 0), Vec3f(1, 1, 1),
                      Vec3f(0.8f, 0.6f, 0.4f)};
    set(settings);
    use({filter.ptr});
    picture = [](double x, double) {
        return x < 0.5 ? std::array<double, 4>{0, 0, 0, 1} : std::array<double, 4>{1, 1, 1, 1};
    };
    stage.frame();
    EXPECT_EQ(stage.pixels().at(3, 3), (test::RgbaImage::Pixel{51, 102, 153, 255}));
    EXPECT_EQ(stage.pixels().at(width - 3, 3), (test::RgbaImage::Pixel{204, 153, 102, 255}));
}

TEST_F(ColorFilterTest, ADefaultFilterWarnsAndHasTheIdentityTable)
{
    use({filter.ptr});
    LogCapture log(LOG_WARNING);
    stage.frame();
    stage.frame();
    EXPECT_EQ(log.text(), "Wrong shanding table size\n");
    EXPECT_EQ(log.messages()[0].level, LOG_WARNING);
    EXPECT_EQ(tableBytes(), (std::vector<UInt8>{0, 0, 0, 255, 255, 255}));
    EXPECT_EQ(uniform<Int32>(chunk(), "shadingWidth"), 1);
    EXPECT_EQ(uniform<Int32>(chunk(), "shadingHeight"), 1);
    EXPECT_EQ(uniform<Int32>(chunk(), "shadingDepth"), 2);
    EXPECT_TRUE(test::imagesMatch(stage.pixels(), filtered(input, Settings()), twoSteps));
}

TEST_F(ColorFilterTest, ATableOfAnotherSizeIsReplacedByTheIdentity)
{
    for(const std::array<UInt32, 3> &size : {std::array<UInt32, 3>{3, 3, 3}, std::array<UInt32, 3>{0, 1, 2},
                                             std::array<UInt32, 3>{65536, 65536, 1}})
    {
        Settings settings;
        settings.width = size[0];
        settings.height = size[1];
        settings.depth = size[2];
        if(size[0] != 3)
            settings.table.clear();
        set(settings);
        use({filter.ptr});
        LogCapture log(LOG_WARNING);
        stage.frame();
        EXPECT_EQ(log.text(), "Wrong shanding table size\n");
        EXPECT_TRUE(test::imagesMatch(stage.pixels(), filtered(input, Settings()), twoSteps));
    }
}

TEST_F(ColorFilterTest, TheUniformsAreTheFields)
{
    Settings settings;
    settings.gamma = 1.7f;
    settings.matrix = mixing;
    settings.width = 2;
    settings.height = 3;
    settings.depth = 4;
    settings.table = bentTable(2, 3, 4);
    set(settings);
    filter->setDebugColor(Vec4f(0.1f, 0.2f, 0.3f, 0.4f));
    use({filter.ptr});
    stage.frame();
    EXPECT_EQ(uniform<Int32>(chunk(), "grabTexture"), 0);
    EXPECT_EQ(uniform<Int32>(chunk(), "shadingTexture"), 1);
    EXPECT_FLOAT_EQ(uniform<Real32>(chunk(), "gamma"), 1.7f);
    EXPECT_TRUE(uniform<Matrix>(chunk(), "colorMatrix") == mixing);
    EXPECT_EQ(uniform<Int32>(chunk(), "shadingWidth"), 2);
    EXPECT_EQ(uniform<Int32>(chunk(), "shadingHeight"), 3);
    EXPECT_EQ(uniform<Int32>(chunk(), "shadingDepth"), 4);
    EXPECT_FALSE(hasUniform(chunk(), "debugColor"));
    filter->setDebugMode(1);
    use({filter.ptr});
    stage.frame();
    EXPECT_EQ(uniform<Vec4f>(chunk(), "debugColor"), Vec4f(0.1f, 0.2f, 0.3f, 0.4f));
}

TEST_F(ColorFilterTest, TheTablesTextureIsOnUnitOneAndSetAsPromised)
{
    set(Settings());
    for(const Int32 mode : {0, 1, 2, -1})
    {
        filter->setDebugMode(mode);
        use({filter.ptr});
        stage.frame();
        const TextureChunkPtr texture = tableTexture();
        ASSERT_TRUE(texture != NullFC);
        const UInt32 wanted = mode == 2 ? GL_NEAREST : GL_LINEAR;
        EXPECT_EQ(texture->getMinFilter(), wanted);
        EXPECT_EQ(texture->getMagFilter(), wanted);
        EXPECT_EQ(texture->getWrapS(), UInt32(GL_CLAMP_TO_EDGE));
        EXPECT_EQ(texture->getWrapT(), UInt32(GL_CLAMP_TO_EDGE));
        EXPECT_EQ(texture->getWrapR(), UInt32(GL_CLAMP_TO_EDGE));
        EXPECT_EQ(texture->getNPOTMatrixScale(), 1u);
        EXPECT_FALSE(texture->getScale());
        EXPECT_EQ(texture->getImage()->getPixelFormat(), UInt32(GL_RGB));
        EXPECT_EQ(texture->getImage()->getDataType(), GL_UNSIGNED_BYTE);
        const StatePtr state =
            filters->findReadbackGroup("ImprovedColorDisplayFilter")->getMaterial()->getState();
        EXPECT_TRUE(state->getChunk(TextureChunk::getStaticClassId() + 1) == texture);
        // The debug program alone reads with an explicit level.
        EXPECT_EQ(chunk()->getFragmentProgram().find("texture3DLod") != std::string::npos, mode != 0);
    }
}

TEST_F(ColorFilterTest, TheDebugProgramShowsTheTopLayerOverTheScreen)
{
    Settings settings;
    settings.width = 4;
    settings.height = 3;
    settings.depth = 3;
    settings.table = bentTable(4, 3, 3);
    set(settings);
    filter->setDebugMode(1);
    use({filter.ptr});
    stage.frame();
    const test::RgbaImage got = stage.pixels();
    for(int y = 0; y < height; ++y)
        for(int x = 0; x < width; ++x)
        {
            for(std::size_t c = 0; c < 3; ++c)
                ASSERT_NEAR(got.at(x, y)[c],
                            255 * lookUp(settings, (x + 0.5) / width, (y + 0.5) / height, 1.0, c), 2.0);
            ASSERT_NEAR(got.at(x, y)[3], 127.5, 1.0);
        }
    // Not filtered, the layer shows as 4 x 3 fields; the entries are the centres of texels, of which the
    // screen shows the outer ones by half.
    filter->setDebugMode(2);
    use({filter.ptr});
    stage.frame();
    const test::RgbaImage fields = stage.pixels();
    for(int y = 0; y < 3; ++y)
        for(int x = 0; x < 4; ++x)
            for(std::size_t c = 0; c < 3; ++c)
                EXPECT_NEAR(
                    fields.at(std::min(x * width / 3, width - 1), std::min(y * height / 2, height - 1))[c],
                    std::floor(255 * settings.table[std::size_t((2 * 3 + y) * 4 + x)][UInt32(c)]), 1.0);
}

TEST_F(ColorFilterTest, LaterChangesOfFieldsDoNotComeThrough)
{
    set(Settings());
    use({filter.ptr});
    stage.frame();
    const test::RgbaImage before = stage.pixels();
    filter->setGamma(1.f);
    filter->setDebugMode(1);
    endEditCP(filter.ptr);
    stage.frame();
    EXPECT_EQ(stage.pixels().bytes, before.bytes);
    EXPECT_FLOAT_EQ(uniform<Real32>(chunk(), "gamma"), 2.4f);
}

TEST_F(ColorFilterTest, WherePicturesArePaddedTheTextureMatricesSeeToIt)
{
    Window::maskExtension("GL_ARB_texture_non_power_of_two");
    Settings settings;
    settings.width = 3;
    settings.height = 5;
    settings.depth = 6;
    settings.table = bentTable(3, 5, 6);
    set(settings);
    use({filter.ptr});
    stage.frame();
    EXPECT_TRUE(test::imagesMatch(stage.pixels(), filtered(input, settings), twoSteps));
}

TEST_F(ColorFilterTest, InAPartOfTheWindowThePlaceIsThatInTheViewport)
{
    stage.port->setSize(20, 10, 69, 49);
    endEditCP(stage.port.ptr);
    Settings settings;
    settings.width = 4;
    settings.height = 4;
    settings.depth = 3;
    settings.table = bentTable(4, 4, 3);
    set(settings);
    use({filter.ptr});
    stage.frame();
    ASSERT_EQ(input.width, 50);
    EXPECT_TRUE(test::imagesMatch(test::readPixels(20, 10, 50, 40), filtered(input, settings), twoSteps));
    stage.port->setSize(5, 5, 64, 34);
    endEditCP(stage.port.ptr);
    stage.frame();
    ASSERT_EQ(input.width, 60);
    EXPECT_TRUE(test::imagesMatch(test::readPixels(5, 5, 60, 30), filtered(input, settings), twoSteps));
}
