/// \file
/// The baked maps of normals and tangents against a reference, and the textures as such.

#include "DropletScene.h"

OSG_USING_NAMESPACE
using namespace droplet_test;

namespace
{

typedef std::array<double, 3> Axis;

Axis normalized(const Axis &v)
{
    const double length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    return {v[0] / length, v[1] / length, v[2] / length};
}

/// A linear look-up of a repeating texture of bytes, three a texel.
Axis noiseAt(const UInt8 *bytes, int width, int height, double u, double v)
{
    const double x = u * width - 0.5, y = v * height - 0.5;
    const int x0 = int(std::floor(x)), y0 = int(std::floor(y));
    Axis sum = {0, 0, 0};
    for(int dy = 0; dy < 2; ++dy)
        for(int dx = 0; dx < 2; ++dx)
        {
            const double weight = (dx == 0 ? 1 - (x - x0) : x - x0) * (dy == 0 ? 1 - (y - y0) : y - y0);
            const int column = (x0 + dx + width) % width, row = (y0 + dy + height) % height;
            for(std::size_t c = 0; c < 3; ++c)
                sum[c] += weight * bytes[std::size_t(row * width + column) * 3 + c] / 255.0;
        }
    return sum;
}

/// The vector turned about an axis, clockwise seen against the axis: the matrix of the bake is written by
/// rows and read by columns. Rodrigues' formula.
Axis turned(const Axis &v, const Axis &axis, double angle)
{
    const double c = std::cos(angle), s = std::sin(-angle);
    const double along = axis[0] * v[0] + axis[1] * v[1] + axis[2] * v[2];
    const Axis cross = {axis[1] * v[2] - axis[2] * v[1], axis[2] * v[0] - axis[0] * v[2],
                          axis[0] * v[1] - axis[1] * v[0]};
    Axis result;
    for(std::size_t i = 0; i < 3; ++i)
        result[i] = v[i] * c + cross[i] * s + axis[i] * along * (1 - c);
    return result;
}

} // namespace

TEST(DropletBake, AgreesWithTheReference)
{
    Stage stage;
    // Far from the origin, small and lit by its own material: where the object is in the world makes no
    // difference.
    const TransformPtr place = Transform::create();
    Matrix far;
    far.setTranslate(500, 20, -900);
    place->setMatrix(far);
    endEditCP(place);
    const Held<NodePtr> object(makeNodeFor(place));
    object->addChild(makeObject(NullFC, 0.1f));

    for(const auto &[width, height, noiseWidth, noiseHeight, angle] :
        {std::tuple{64, 64, 32, 32, 0.52f}, {48, 80, 7, 5, 1.2f}, {64, 64, 32, 32, 0.0f}})
    {
        SCOPED_TRACE(angle);
        DropletFlow flow(object, NullFC, width, height, 0, NullFC);
        std::srand(99);
        flow.createNoiseMap(noiseWidth, noiseHeight);
        flow.bakeSurfaceMaps(angle);
        const Map normals = stage.read(flow.getNormalMap());
        const Map tangents = stage.read(flow.getTangentMap());
        ASSERT_EQ(normals.width, width);
        ASSERT_EQ(normals.height, height);
        const UInt8 *const noise = flow.getNoiseMap()->getImage()->getData();
        int skipped = 0;
        double error = 0;
        for(int y = 0; y < height; ++y)
            for(int x = 0; x < width; ++x)
            {
                Axis axis = noiseAt(noise, noiseWidth, noiseHeight, (x + 0.5) / width, (y + 0.5) / height);
                for(double &value : axis)
                    value = value * 2 - 1;
                const double length = std::sqrt(axis[0] * axis[0] + axis[1] * axis[1] + axis[2] * axis[2]);
                // Near the middle of the cube of noise the direction of the axis hangs on the last bits of
                // filtering.
                if(length < 0.1)
                {
                    ++skipped;
                    continue;
                }
                axis = normalized(axis);
                const Axis normal = turned({0, 0, 1}, axis, angle), tangent = turned({1, 0, 0}, axis, angle);
                // A filter of bytes may be a byte off in each of three numbers that span -1 to 1. The shorter
                // the axis, the more that turns it; and a turned axis moves the vector by |sin| + 2 (1 - cos)
                // of that.
                const double turnedBy = 2 * std::sqrt(3.0) / 255 / length;
                const double moves = std::abs(std::sin(angle)) + 2 * (1 - std::cos(angle));
                const double limit = 1.0 / 255 + 0.5 * turnedBy * double(moves);
                for(std::size_t c = 0; c < 3; ++c)
                {
                    ASSERT_NEAR(normals.at(x, y)[c], normal[c] * 0.5 + 0.5, limit) << x << ", " << y;
                    ASSERT_NEAR(tangents.at(x, y)[c], tangent[c] * 0.5 + 0.5, limit) << x << ", " << y;
                    error += std::abs(double(normals.at(x, y)[c]) - (normal[c] * 0.5 + 0.5));
                }
                ASSERT_EQ(normals.at(x, y)[3], 1.0f);
            }
        EXPECT_LT(skipped, width * height / 50);
        // On the whole it is about the rounding to bytes.
        EXPECT_LT(error / (3 * width * height), 0.75 / 255);
    }
}

TEST(DropletBake, CellsOutsideOfTheObjectKeepTheBackground)
{
    Stage stage;
    const Held<NodePtr> nothing(makeCoredNode<Group>());
    DropletFlow flow(nothing, NullFC, 16, 16, 0, NullFC);
    flow.bakeSurfaceMaps(0.52f);
    for(const auto &cell : stage.read(flow.getNormalMap()).cells)
        ASSERT_EQ(cell, (std::array<float, 4>{0, 0, 1, 0}));
    for(const auto &cell : stage.read(flow.getTangentMap()).cells)
        ASSERT_EQ(cell, (std::array<float, 4>{1, 0, 0, 0}));
}

TEST(DropletBake, LeavesTheSceneAndTheActionAsTheyAre)
{
    Stage stage;
    stage.action->setFrustumCulling(true);
    const Held<NodePtr> object(makeObject());
    const NodeCorePtr core = object->getCore();
    DropletFlow flow(object, NullFC, 16, 16, 0, NullFC);
    flow.bakeSurfaceMaps(0.52f);
    EXPECT_EQ(object->getCore(), core);
    EXPECT_EQ(core->getParents().size(), 1u) << "the bake's copy of the tree is still there";
    EXPECT_TRUE(stage.action->getFrustumCulling());
}

TEST(DropletMaps, HaveTheirFormatsAndRepeat)
{
    Stage stage;
    const Held<NodePtr> object(makeObject());
    DropletFlow flow(object, NullFC, 20, 30, 0, NullFC);
    struct Row
    {
        TextureChunkPtr texture;
        UInt32 internalFormat;
        UInt32 imageFormat;
        Int32 width, height;
    };
    for(const Row &row : {Row{flow.getSurfaceMap(0), 34842, 6408, 20, 30},
                          {flow.getSurfaceMap(1), 34842, 6408, 20, 30},
                          {flow.getNormalMap(), 32856, 6408, 20, 30},
                          {flow.getTangentMap(), 32856, 6408, 20, 30},
                          {flow.getNoiseMap(), 32856, 6407, 32, 32}})
    {
        EXPECT_EQ(row.texture->getInternalFormat(), row.internalFormat);
        EXPECT_EQ(row.texture->getEnvMode(), GLenum(GL_MODULATE));
        EXPECT_EQ(row.texture->getMinFilter(), 9729u);
        EXPECT_EQ(row.texture->getMagFilter(), 9729u);
        EXPECT_EQ(row.texture->getWrapS(), GLenum(GL_REPEAT));
        EXPECT_EQ(row.texture->getWrapT(), GLenum(GL_REPEAT));
        EXPECT_EQ(row.texture->getTarget(), GLenum(GL_TEXTURE_2D));
        EXPECT_EQ(row.texture->getImage()->getPixelFormat(), row.imageFormat);
        EXPECT_EQ(row.texture->getImage()->getDataType(), 5121);
        EXPECT_EQ(row.texture->getImage()->getWidth(), row.width);
        EXPECT_EQ(row.texture->getImage()->getHeight(), row.height);
    }
    const TextureChunkPtr splat = flow.getSources()->getSplat();
    EXPECT_EQ(splat->getInternalFormat(), 32856u);
    EXPECT_EQ(splat->getEnvMode(), GLenum(GL_MODULATE));
    EXPECT_EQ(splat->getWrapS(), 33071u);
    EXPECT_EQ(splat->getWrapT(), 33071u);
    EXPECT_EQ(splat->getMinFilter(), 9729u);
    EXPECT_EQ(splat->getMagFilter(), 9729u);
    EXPECT_EQ(splat->getTarget(), GLenum(GL_TEXTURE_2D));
    EXPECT_EQ(splat->getImage()->getPixelFormat(), 6407u);
    EXPECT_EQ(splat->getImage()->getWidth(), 128);
    // A map begins without liquid and at rest.
    for(UInt32 i = 0; i < 2; ++i)
        for(const auto &cell : stage.read(flow.getSurfaceMap(i)).cells)
            ASSERT_EQ(cell, (std::array<float, 4>{0, 0, 0, 0}));
}

TEST(DropletMaps, TheNoiseMapStaysTheSameTexture)
{
    Stage stage;
    const Held<NodePtr> object(makeObject());
    DropletFlow flow(object, NullFC, 16, 16, 0, NullFC);
    const TextureChunkPtr noise = flow.getNoiseMap();
    flow.createNoiseMap(8, 4);
    EXPECT_EQ(flow.getNoiseMap(), noise);
    EXPECT_EQ(noise->getImage()->getWidth(), 8);
    EXPECT_EQ(noise->getImage()->getHeight(), 4);
}
